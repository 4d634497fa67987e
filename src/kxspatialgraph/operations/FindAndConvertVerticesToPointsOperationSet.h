#pragma once

#include "kxspatialgraph/operations/MultipleVerticesToPointsOperationSet.h"

// Converts to edge points the selected vertices (every vertex when none is
// selected) that have two different incident edges. The vertices are chosen
// at construction, so the conversion itself never skips one.
class FindAndConvertVerticesToPointsOperationSet : public MultipleVerticesToPointsOperationSet {
public:
    FindAndConvertVerticesToPointsOperationSet(KxSpatialGraph* graph,
                                               const SpatialGraphSelection& highlighted,
                                               const SpatialGraphSelection& visible);
};
