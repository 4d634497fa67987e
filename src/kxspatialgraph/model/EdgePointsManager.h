#pragma once

#include "korva/base/DArray.h"
#include "korva/base/Vec3f.h"
#include "kxspatialgraph/model/SpatialGraphPoint.h"

// The polylines of all edges of one graph in one flat array: the points of
// edge 0, then edge 1, ... without gaps, plus offsets (edge count + 1 entries,
// offsets[e] = index of edge e's point 0, last entry = total point count).
// Whole-graph passes read one contiguous block; editing one edge moves the
// points behind it once. No operation checks its indices; an edge may hold any
// number of points (the graph's consistency check demands at least two).
class EdgePointsManager {
public:
    EdgePointsManager();

    int getNumEdges() const { return offsets_.size() - 1; }
    int getTotalNumEdgePoints() const { return points_.size(); }
    int getNumEdgePoints(int e) const { return offsets_[e + 1] - offsets_[e]; }

    // Pointer to edge e's first point in the flat array, n set to its point
    // count. Valid until the next edit.
    const Vec3f* getEdgePoints(int e, int& n) const;
    Vec3f* getEdgePoints(int e, int& n);
    DArray<Vec3f> getEdgePoints(int e) const;
    Vec3f getEdgePoint(int e, int i) const { return points_[offsets_[e] + i]; }
    void setEdgePoint(int e, int i, const Vec3f& p) { points_[offsets_[e] + i] = p; }

    // Replaces edge e's points by pts (any count); later edges move.
    void setEdgePoints(int e, const DArray<Vec3f>& pts) { setEdgePoints(e, pts.dataPtr(), pts.size()); }
    void setEdgePoints(int e, const Vec3f* pts, int n);
    // Inserts pts before point i of edge e.
    void insertEdgePoints(int e, int i, const DArray<Vec3f>& pts);
    // Inserts counts[k] points, taken in order from pts, before point at[k]
    // (at ascending, no duplicates), in one pass over the points.
    void insertMultipleEdgePoints(const DArray<SpatialGraphPoint>& at, const DArray<int>& counts,
                                  const DArray<Vec3f>& pts);
    // Removes n points of edge e starting at point i; n = 0 changes nothing.
    void removeEdgePoints(int e, int i, int n);

    // Appends a new last edge. The pointer form must not point into this manager.
    void addEdge(const DArray<Vec3f>& pts) { addEdge(pts.dataPtr(), pts.size()); }
    void addEdge(const Vec3f* pts, int n);
    // Appends n new last edges, edge k with counts[k] points taken in order
    // from pts, growing each array once. pts must not point into this manager.
    void appendEdges(const Vec3f* pts, const int* counts, int n);
    // Inserts a new edge at index e (e = edge count appends).
    void insertEdgeBefore(int e, const DArray<Vec3f>& pts);
    void removeEdge(int e);

    // Inserts new edges at the final positions `indices` (ascending), pts
    // parallel to indices, in one pass over the points.
    void insertMultipleEdges(const DArray<int>& indices, const DArray<DArray<Vec3f>>& pts);
    // Removes the listed edges (ascending, no duplicates) in one compaction pass.
    void removeMultipleEdges(const DArray<int>& indices);

    // Reserves room for numPoints points if that exceeds the current count,
    // and for numEdges edges' offsets if given.
    void setSizeHint(int numPoints, int numEdges = -1);
    // No points, offsets [0].
    void clear();

    // The whole flat arrays, for whole-graph passes and writers.
    const DArray<Vec3f>& getAllPoints() const { return points_; }
    const DArray<int>& getOffsets() const { return offsets_; }
    // Bytes held by both arrays (capacity, not count).
    size_t getMemoryUsage() const;

private:
    unsigned char* bytes() { return reinterpret_cast<unsigned char*>(points_.dataPtr()); }
    void growTo(int count);

    DArray<Vec3f> points_;
    DArray<int> offsets_;
};
