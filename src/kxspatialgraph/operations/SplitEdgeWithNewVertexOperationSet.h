#pragma once

#include "korva/base/Vec3f.h"
#include "kxspatialgraph/operations/OperationSet.h"

// Splits an edge at a new vertex: inserts the position as edge point number
// pointIndex of the edge (before the point that had that index) and turns that
// point into a vertex, which is highlighted afterwards.
class SplitEdgeWithNewVertexOperationSet : public OperationSet {
public:
    SplitEdgeWithNewVertexOperationSet(KxSpatialGraph* graph, const Vec3f& position, int edge, int pointIndex,
                                       const SpatialGraphSelection& highlighted,
                                       const SpatialGraphSelection& visible);
    // The vertex the last exec created; -1 when the split did not happen.
    int getNewVertexNum() const { return newVertex_; }

protected:
    void build() override;

private:
    Vec3f position_;
    int edge_;
    int pointIndex_;
};
