#pragma once

#include <cstddef>
#include <iosfwd>
#include <vector>

class GraphAttribute;
class KxSpatialGraph;
class KxSpatialGraphInterface;
class KxData;
class MorphologyTextWriter;
class PointAttribute;
class Vec3f;

// SWC neuron morphologies: one sample point per line (id, type, x, y, z,
// radius, parent id; parent -1 for a root). Branch points, end points and
// roots become vertices, the unbranched runs between them edges running from
// the leaf side towards the root; the radius goes into the point attribute
// "thickness", the type into the point label attribute "Topology", whose
// label "Label%d" of each type from 1 to 255 has the type as its id.

// A new graph from SWC text, or null after an "Error: " line naming the line
// when a data line has fewer than 7 numbers or an id, type or parent that is
// not an integer. Records are numbered in the order their ids (or parent ids)
// first appear, and vertices in that order. Blank and '#' lines are skipped;
// a last line without a newline is dropped with a warning. name appears in
// messages. The caller owns the result.
KxSpatialGraph* readSWC(const char* bytes, size_t size, const char* name);

// Reads filename with readSWC and adds the graph to the object pool under the
// file's name: 1, or 0 (nothing added) after an "Error: " line.
int loadSWCToKorva(const char* filename);

// Writes one SWC point per edge point, starting at the edges of rank 1 (edge
// attribute "Ranks"), then those of rank 0 (every edge without "Ranks", with
// a warning), each walked through everything connected at its far ends. 1, or
// 0 for a null graph or a file that cannot be written (after an "Error: " line).
int writeSWC(const KxSpatialGraphInterface* graph, const char* filename);
// The same text to a stream; answers the stream's state.
bool writeSWC(const KxSpatialGraphInterface* graph, std::ostream& out);

// Writes edge's points as SWC lines unless it is visited (walking away from
// the end at from; the first point is left out when parent is not -1, being
// the parent's point), then, depth first, every unvisited edge at the far
// vertex. topology is an edge or point attribute or null. Answers the next
// free id. Works with its own stack, so deep trees do not exhaust the
// program's stack.
int writeEdge(int edge, const Vec3f& from, int parent, int next, std::vector<bool>& visited,
              const KxSpatialGraphInterface* graph, const GraphAttribute* topology,
              const PointAttribute* thickness, MorphologyTextWriter& file);

// The host's format table entries (resources/kxspatialgraph/kxspatialgraph.rc).
extern "C" {
int kxspatialgraphReadSWC(const char* filename);
int kxspatialgraphWriteSWC(KxData* data, const char* filename);
}
