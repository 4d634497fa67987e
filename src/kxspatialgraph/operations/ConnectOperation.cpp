#include "kxspatialgraph/operations/ConnectOperation.h"

#include "kxspatialgraph/model/KxSpatialGraph.h"

ConnectOperation::ConnectOperation(KxSpatialGraph* graph, const SpatialGraphSelection& highlighted,
                                   const SpatialGraphSelection& visible)
    : Operation(graph, highlighted, visible) {}

void ConnectOperation::exec() {
    startCursors();
    int source = vertexCursor_.next();
    int target = vertexCursor_.next();
    newEdge_ = graph_->addEdge(source, target);
    if (polyline_.size() >= 3) {
        graph_->setEdgePoints(newEdge_, polyline_);
    }
}

void ConnectOperation::undo() {
    graph_->removeEdge(newEdge_);
}

SpatialGraphSelection ConnectOperation::withNewEdge(const SpatialGraphSelection& selection) const {
    SpatialGraphSelection grown = selection;
    grown.resize(selection.getNumVertices(), selection.getNumEdges() + 1);
    grown.selectEdge(selection.getNumEdges());
    return grown;
}

SpatialGraphSelection ConnectOperation::getHighlightSelectionAfterOperation() const {
    return withNewEdge(highlighted_);
}

SpatialGraphSelection ConnectOperation::getVisibleSelectionAfterOperation() const {
    SpatialGraphSelection visible = withNewEdge(visible_);
    visible.selectAllPointsOnEdge(visible_.getNumEdges());
    return visible;
}
