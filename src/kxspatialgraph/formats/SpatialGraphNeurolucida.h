#pragma once

#include <iosfwd>

class KxData;
class KxSpatialGraphInterface;

// Export of a graph as a Neurolucida V3 ASCII file (there is no reader):
// loops through a single vertex become closed contours, every tree with an
// end vertex one object of nested splits. Components without end points and
// isolated vertices are not written.

// Writes the whole file to out: header comments, contours, trees.
void SpatialGraph2Neurolucida(const KxSpatialGraphInterface* graph, std::ostream& out);

// Writes filename; 1, or 0 after an "Error: " line for a null graph or a file
// that cannot be written.
int saveNeurolucidaASCII(const KxSpatialGraphInterface* graph, const char* filename);

// The host's format table entry (resources/kxspatialgraph/kxspatialgraph.rc).
extern "C" int kxspatialgraphWriteNeurolucida(KxData* data, const char* filename);
