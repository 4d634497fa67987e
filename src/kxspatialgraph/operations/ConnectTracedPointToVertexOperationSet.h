#pragma once

#include "korva/base/DArray.h"
#include "kxspatialgraph/operations/OperationSet.h"

// Turns the first selected edge point into a vertex and joins it by a traced
// edge (points from the new vertex to the selected vertex, radii in
// "thickness") to the first selected vertex.
class ConnectTracedPointToVertexOperationSet : public OperationSet {
public:
    // Null points or radii count as empty.
    ConnectTracedPointToVertexOperationSet(KxSpatialGraph* graph, const DArray<Vec3f>* points,
                                           const DArray<float>* radii,
                                           const SpatialGraphSelection& highlighted,
                                           const SpatialGraphSelection& visible);

protected:
    void build() override;
    DArray<Vec3f> points_;
    DArray<float> radii_;
};
