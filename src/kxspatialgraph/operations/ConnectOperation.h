#pragma once

#include "kxspatialgraph/operations/Operation.h"

// Adds an edge from the first to the second selected vertex of the
// highlighted selection (ascending index order); undo removes it. A missing
// end is passed on as -1.
class ConnectOperation : public Operation {
public:
    ConnectOperation(KxSpatialGraph* graph, const SpatialGraphSelection& highlighted,
                     const SpatialGraphSelection& visible);

    void exec() override;
    void undo() override;
    // Both are the construction-time selections grown by one edge, the new
    // (last) edge selected; the visible one also has all its points selected.
    SpatialGraphSelection getHighlightSelectionAfterOperation() const override;
    SpatialGraphSelection getVisibleSelectionAfterOperation() const override;

    // The polyline the new edge takes (call before exec()). Deliberate: a
    // polyline of fewer than 3 points is ignored and the edge stays straight.
    void setEdgePoints(const DArray<Vec3f>& points) { polyline_ = points; }

    int getNewEdgeNum() const { return newEdge_; }

private:
    SpatialGraphSelection withNewEdge(const SpatialGraphSelection& selection) const;

    DArray<Vec3f> polyline_;
    int newEdge_ = -1;
};
