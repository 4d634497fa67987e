#pragma once

#include <cstdio>

class KxData;
class KxSpatialGraph;

// What `korva trees` tells a batch user about a graph: its trees (lines,
// ranks, first line), its loops with their lines, the loop-generating lines,
// and optionally one row per line. It can also keep the results in the graph:
// the branch rank plus one in the edge label group "Ranks" (labels "Rank1",
// "Rank2", ...), the tree index in the int edge attribute "Tree" and the
// loop index (-1 outside loops) in "Loop". A label per tree would not scale to
// graphs of many thousand trees, hence plain indices there.
class TreeReport {
public:
    static void write(KxSpatialGraph* graph, FILE* out, bool listLines, bool label);
};

// The entry the korva executable resolves in the loaded package. data must be
// a spatial graph; 1 on success, 0 after an "Error: " line.
extern "C" int kxspatialgraphReportTrees(KxData* data, FILE* out, int listLines, int label);
