#pragma once

#include "korva/base/DArray.h"
#include "kxspatialgraph/model/SpatialGraphPoint.h"
#include "kxspatialgraph/operations/OperationSet.h"

// Turns two edge points into vertices and joins them by a traced edge
// (radii in "thickness"). The points are the first two selected edge points;
// the given point stands in for the second when only one is selected. The
// second point is used as given, with no renumbering for the first
// conversion, so the caller names it in the graph as it is after that one.
class ConnectPointToPointOperationSet : public OperationSet {
public:
    // Null point, points or radii count as none or empty.
    ConnectPointToPointOperationSet(KxSpatialGraph* graph, const SpatialGraphPoint* point,
                                    const DArray<Vec3f>* points, const DArray<float>* radii,
                                    const SpatialGraphSelection& highlighted,
                                    const SpatialGraphSelection& visible);

protected:
    void build() override;

private:
    SpatialGraphPoint point_;
    DArray<Vec3f> points_;
    DArray<float> radii_;
};
