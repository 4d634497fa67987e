#pragma once

#include <cstddef>
#include <string>

#include "korva/base/BitField.h"
#include "korva/base/Color.h"
#include "korva/base/DArray.h"

class EdgeVertexAttribute;
class KxData;
class KxSpatialGraph;
class KxSpatialGraphInterface;

// Neuron morphologies in NEURON's HOC language: the subset of "create",
// section blocks, "pt3dclear()", "pt3dadd(x, y, z, d)" and "connect" (see
// HocParser, docs/hoc.md). One edge per section; "thickness" holds the
// diameter d.

// A new graph read from the file, or null after "Error reading file.\n" (the
// file cannot be read) or the parser's line/tag error. The caller owns it.
KxSpatialGraph* loadHOCToKxSpatialGraph(const char* filename);
// The same from text in memory; name appears in messages only.
KxSpatialGraph* loadHOCFromMemory(const char* text, size_t length, const char* name);
// loadHOCToKxSpatialGraph, then adds the graph to the object pool under the
// file's name: 1, or 0 with nothing added.
int loadHOCToKorva(const char* filename);
// Turns the reader's statement-by-statement messages on or off (process-wide).
void setHOCReaderDebug(bool on);

// The colour of the next label the HOC reader makes: a process-wide counter
// n gives hue = fract(n / 6.37), saturation and value 0.8.
Color nextHOCLabelColor();

// Appends value as printf's "%f" writes it in the "C" locale.
void appendHOCNumber(std::string& out, double value);

// Gives edge its rank unless it has one already, then walks on through its
// source and then its target (each vertex once, by visited): the rank stays
// at an unbranched joint (rank 1 becomes 2) and grows by one at a vertex with
// three or more edges. Iterative, in the order of the recursive definition.
void createRank(const KxSpatialGraph& graph, EdgeVertexAttribute* ranks, int rank, int edge,
                BitField& visited);

// Writes the graph as HOC: one section per edge, named after its "topology"
// label or "section_%d", and one connect statement per edge below a rank-1
// edge. 1 on success; 0 without an int edge attribute "Ranks" ("Error: No
// root segments specified!") or when the file cannot be written.
int writeHOC(const KxSpatialGraphInterface* graph, const char* filename);
// Records edge's parent and tree, then does so for every edge reached through
// edge's source and then its target that has no parent yet (parentOf < 0).
// A root passes itself as parent. Iterative, in the recursive order.
void connectSections(const KxSpatialGraphInterface* graph, int edge, int parentEdge, DArray<int>& parentOf,
                     DArray<int>& treeOf, int tree);

// The package's entries for ".hoc" files in the host's format registry.
extern "C" {
int kxspatialgraphReadHOC(const char* filename);
int kxspatialgraphWriteHOC(KxData* data, const char* filename);
}
