#pragma once

#include "kxspatialgraph/operations/Operation.h"

// Appends a vertex at the given coordinates; undo removes it again. Relies on
// undo happening in stack order, so that a redo gets the same index.
class AddVertexOperation : public Operation {
public:
    AddVertexOperation(KxSpatialGraph* graph, const Vec3f& coords, const SpatialGraphSelection& highlighted,
                       const SpatialGraphSelection& visible);

    void exec() override;
    void undo() override;
    // Only the new vertex, sized to the graph.
    SpatialGraphSelection getHighlightSelectionAfterOperation() const override;

    // The index exec() gave the new vertex; -1 before.
    int getNewVertexNum() const { return newVertex_; }

private:
    Vec3f coords_;
    int newVertex_ = -1;
};
