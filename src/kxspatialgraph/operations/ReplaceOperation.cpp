#include "kxspatialgraph/operations/ReplaceOperation.h"

#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

ReplaceOperation::ReplaceOperation(KxSpatialGraph* graph, int edge, const DArray<Vec3f>& points,
                                   const SpatialGraphSelection& highlighted,
                                   const SpatialGraphSelection& visible)
    : Operation(graph, highlighted, visible),
      edge_(edge),
      newPoints_(points),
      valid_(checkEdge("ReplaceOperation", edge)) {
    if (!valid_) {
        return;
    }
    oldPoints_ = graph->getEdgePoints(edge);
    for (int k = 0; k < graph->getNumEdgePointAttributes(); ++k) {
        const PointAttribute* a = graph->getEdgePointAttribute(k);
        oldPointAttributeIds_.append(a->getId());
        oldPointValues_.append(a->getValues(edge));
    }
}

void ReplaceOperation::exec() {
    if (valid_) {
        graph_->setEdgePoints(edge_, newPoints_);
    }
}

void ReplaceOperation::undo() {
    if (!valid_) {
        return;
    }
    graph_->setEdgePoints(edge_, oldPoints_);
    // Setting the old points alone would leave zeros where a replacement with
    // fewer points cut values off; restoring them makes the undo exact, which
    // composite moves rely on. Values are matched to attributes by id.
    for (int k = 0; k < graph_->getNumEdgePointAttributes(); ++k) {
        PointAttribute* a = graph_->getEdgePointAttribute(k);
        int saved = oldPointAttributeIds_.find(a->getId());
        if (saved >= 0) {
            a->setValues(edge_, oldPointValues_[saved]);
        }
    }
}
