#include "kxspatialgraph/operations/AddVertexOperation.h"

#include "kxspatialgraph/model/KxSpatialGraph.h"

AddVertexOperation::AddVertexOperation(KxSpatialGraph* graph, const Vec3f& coords,
                                       const SpatialGraphSelection& highlighted,
                                       const SpatialGraphSelection& visible)
    : Operation(graph, highlighted, visible), coords_(coords) {}

void AddVertexOperation::exec() {
    newVertex_ = graph_->addVertex(coords_);
}

void AddVertexOperation::undo() {
    graph_->removeVertex(newVertex_);
}

SpatialGraphSelection AddVertexOperation::getHighlightSelectionAfterOperation() const {
    SpatialGraphSelection selection(graph_);
    selection.selectVertex(newVertex_);
    return selection;
}
