#pragma once

#include "kxspatialgraph/operations/DeleteOperation.h"

// Deletes every vertex without edges, whatever is highlighted; undo puts
// them back and restores the highlighted selection.
class FindAndDeleteIsolatedVertices : public DeleteOperation {
public:
    FindAndDeleteIsolatedVertices(KxSpatialGraph* graph, SpatialGraphSelection highlighted,
                                  SpatialGraphSelection visible);

    void exec() override;
    void undo() override;

private:
    SpatialGraphSelection savedHighlighted_;
};
