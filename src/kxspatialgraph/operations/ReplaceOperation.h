#pragma once

#include "korva/base/TypedData2D.h"
#include "kxspatialgraph/operations/Operation.h"

// Replaces an edge's polyline; undo puts back the polyline, and the edge's
// point attribute values, that the edge had when the operation was
// constructed. An edge outside the graph is refused with an error line at
// construction; exec and undo then do nothing.
class ReplaceOperation : public Operation {
public:
    ReplaceOperation(KxSpatialGraph* graph, int edge, const DArray<Vec3f>& points,
                     const SpatialGraphSelection& highlighted, const SpatialGraphSelection& visible);

    void exec() override;
    void undo() override;

private:
    int edge_;
    DArray<Vec3f> newPoints_;
    DArray<Vec3f> oldPoints_;
    // Per point attribute: its id and the edge's values.
    DArray<int> oldPointAttributeIds_;
    DArray<TypedData2D> oldPointValues_;
    bool valid_;
};
