#include "kxspatialgraph/operations/FindAndDeleteIsolatedVertices.h"

#include "kxspatialgraph/model/KxSpatialGraph.h"

FindAndDeleteIsolatedVertices::FindAndDeleteIsolatedVertices(KxSpatialGraph* graph,
                                                             SpatialGraphSelection highlighted,
                                                             SpatialGraphSelection visible)
    : DeleteOperation(graph, highlighted, visible) {}

void FindAndDeleteIsolatedVertices::exec() {
    savedHighlighted_ = highlighted_;
    highlighted_.clear();
    highlighted_.resize(graph_->getNumVertices(), graph_->getNumEdges());
    for (int v = 0; v < graph_->getNumVertices(); ++v) {
        if (graph_->getIncidentEdges(v).isEmpty()) {
            highlighted_.selectVertex(v);
        }
    }
    DeleteOperation::exec();
}

void FindAndDeleteIsolatedVertices::undo() {
    DeleteOperation::undo();
    highlighted_ = savedHighlighted_;
}
