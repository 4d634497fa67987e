#pragma once

#include "kxspatialgraph/operations/Operation.h"
#include "kxspatialgraph/operations/SavedEdges.h"

// Splits the edge of the first highlighted edge point at that point, which
// becomes a new last vertex: the edge is replaced by two new last edges
// (source -> new vertex, new vertex -> target) sharing the point, both with
// the edge's edge values and the point values of their ranges. Undo puts the
// edge back at its index and removes the new edges and vertex. The first and
// last point of an edge cannot be converted: a message says so and nothing
// changes.
class PointToVertexOperation : public Operation {
public:
    PointToVertexOperation(KxSpatialGraph* graph, const SpatialGraphSelection& highlighted,
                           const SpatialGraphSelection& visible);

    void exec() override;
    void undo() override;
    // Only the new vertex, sized to the highlighted selection grown by one
    // vertex and one edge.
    SpatialGraphSelection getHighlightSelectionAfterOperation() const override;
    // The visible selection grown by one vertex and one edge, states only
    // added: the new vertex, surviving edges remapped, the two new edges with
    // all their points. The visible selection as given when refused.
    SpatialGraphSelection getVisibleSelectionAfterOperation() const override;

    // The vertex exec() created; -1 before, or when the point was refused.
    int getNewVertexNum() const { return newVertex_; }

private:
    bool canConvert(int e, int k) const;
    void addHalves(const DArray<Vec3f>& polyline);

    int edge_ = -1;
    int pointIndex_ = -1;
    SavedEdges savedEdge_;
    int newVertex_ = -1;
    DArray<int> newEdges_;
    bool done_ = false;
};
