#pragma once

#include "kxspatialgraph/operations/Operation.h"

// Inserts points into an edge before the first selected edge point of the
// highlighted selection (taken at construction); undo removes them again.
// The new points get zero point attribute values. Without a selected point
// on an existing edge the operation is refused with an error line and does
// nothing.
class InsertEdgePointsOperation : public Operation {
public:
    InsertEdgePointsOperation(KxSpatialGraph* graph, const DArray<Vec3f>& points,
                              const SpatialGraphSelection& highlighted, const SpatialGraphSelection& visible);

    void exec() override;
    void undo() override;
    // Nothing highlighted, sized to the graph.
    SpatialGraphSelection getHighlightSelectionAfterOperation() const override;
    // The visible selection given at construction.
    SpatialGraphSelection getVisibleSelectionAfterOperation() const override;

private:
    DArray<Vec3f> points_;
    int edge_ = -1;
    int pointIndex_ = -1;
    bool valid_ = false;
};
