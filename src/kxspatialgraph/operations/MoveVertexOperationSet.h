#pragma once

#include "korva/base/DArray.h"
#include "korva/base/SmallArray.h"
#include "korva/base/Vec3f.h"
#include "kxspatialgraph/operations/OperationSet.h"

// Moves a vertex and replaces the polylines of the listed edges (usually the
// vertex's edges, so that their ends follow it). Both selections given at
// construction are reported again after the edit.
class MoveVertexOperationSet : public OperationSet {
public:
    // polylines[i] is the new polyline of edges[i].
    MoveVertexOperationSet(KxSpatialGraph* graph, int vertex, const Vec3f& position,
                           const SmallArray<int, 2>& edges, const DArray<DArray<Vec3f>>& polylines,
                           const SpatialGraphSelection& highlighted, const SpatialGraphSelection& visible);
    SpatialGraphSelection getHighlightSelectionAfterOperation() const override { return highlighted_; }
    SpatialGraphSelection getVisibleSelectionAfterOperation() const override { return visible_; }

protected:
    void build() override;

private:
    int vertex_;
    Vec3f position_;
    SmallArray<int, 2> edges_;
    DArray<DArray<Vec3f>> polylines_;
};
