#pragma once

class KorvaMesh;
class KxSpatialGraph;

// Import of the older skeleton layout of KorvaMesh files: a point graph in
// which every point lists its neighbours ("Vertices"/"Coordinates",
// "Vertices"/"NeighbourCount", "Edges"/"NeighbourList", optional radii and
// material types). Points with other than two neighbours become vertices;
// each run of two-neighbour points between them becomes the points of one
// edge, imported once although it is reachable from both ends. A closed ring
// of two-neighbour points becomes a loop edge on its first point, a point
// without neighbours a vertex without edges.

// A new graph, or null after an "Error: " line when the required arrays are
// missing or the neighbour data is inconsistent (indices out of range, counts
// past the lists). The caller owns the result.
KxSpatialGraph* loadSkeletonGraph(const KorvaMesh& mesh, const char* filename);

// loadSkeletonGraph, then adds the graph to the object pool under the file's
// name. 1 on success, 0 (nothing added) on failure.
int loadSkeletonGraphToKorva(const KorvaMesh& mesh, const char* filename);
