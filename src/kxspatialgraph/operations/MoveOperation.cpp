#include "kxspatialgraph/operations/MoveOperation.h"

#include "kxspatialgraph/model/KxSpatialGraph.h"

MoveOperation::MoveOperation(KxSpatialGraph* graph, int vertex, const Vec3f& coords,
                             const SpatialGraphSelection& highlighted, const SpatialGraphSelection& visible)
    : Operation(graph, highlighted, visible),
      vertex_(vertex),
      newCoords_(coords),
      valid_(checkVertex("MoveOperation", vertex)) {
    if (valid_) {
        oldCoords_ = graph->getVertexCoords(vertex);
    }
}

void MoveOperation::exec() {
    if (!valid_) {
        return;
    }
    graph_->setVertexCoords(vertex_, newCoords_);
}

void MoveOperation::undo() {
    if (!valid_) {
        return;
    }
    graph_->setVertexCoords(vertex_, oldCoords_);
}
