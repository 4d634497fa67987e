#pragma once

#include "korva/base/DArray.h"
#include "korva/base/Vec3f.h"
#include "kxspatialgraph/operations/OperationSet.h"

// Splits an edge at a new vertex (as SplitEdgeWithNewVertexOperationSet) and
// joins the new vertex by a traced edge to the first selected vertex or, when
// no vertex is selected, to the first selected edge point (which becomes a
// vertex). That point is taken as selected: the caller names it in the graph
// as it is after the split. The new vertex is highlighted afterwards.
class SplitEdgeWithNewVertexAndConnectOperationSet : public OperationSet {
public:
    // Null points or radii count as empty.
    SplitEdgeWithNewVertexAndConnectOperationSet(KxSpatialGraph* graph, const Vec3f& position, int edge,
                                                 int pointIndex, const DArray<Vec3f>* points,
                                                 const DArray<float>* radii,
                                                 const SpatialGraphSelection& highlighted,
                                                 const SpatialGraphSelection& visible);

protected:
    void build() override;

private:
    Vec3f position_;
    int edge_;
    int pointIndex_;
    DArray<Vec3f> points_;
    DArray<float> radii_;
};
