#include "kxspatialgraph/operations/InsertEdgePointsOperation.h"

#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

InsertEdgePointsOperation::InsertEdgePointsOperation(KxSpatialGraph* graph, const DArray<Vec3f>& points,
                                                     const SpatialGraphSelection& highlighted,
                                                     const SpatialGraphSelection& visible)
    : Operation(graph, highlighted, visible), points_(points) {
    if (highlighted.getNumSelectedPoints() == 0) {
        theMsg->printf("Error: InsertEdgePointsOperation: no edge point selected.");
        return;
    }
    SpatialGraphPoint at = highlighted.getSelectedPoint(0);
    edge_ = at.edgeNum;
    pointIndex_ = at.pointNum;
    valid_ = checkEdge("InsertEdgePointsOperation", edge_);
    if (valid_ && (pointIndex_ < 0 || pointIndex_ > graph->getNumEdgePoints(edge_))) {
        theMsg->printf("Error: InsertEdgePointsOperation: edge %d has no point %d.", edge_, pointIndex_);
        valid_ = false;
    }
}

void InsertEdgePointsOperation::exec() {
    if (valid_) {
        graph_->insertEdgePoints(edge_, pointIndex_, points_);
    }
}

void InsertEdgePointsOperation::undo() {
    if (valid_) {
        graph_->removeEdgePoints(edge_, pointIndex_, points_.size());
    }
}

SpatialGraphSelection InsertEdgePointsOperation::getHighlightSelectionAfterOperation() const {
    return SpatialGraphSelection(graph_);
}

SpatialGraphSelection InsertEdgePointsOperation::getVisibleSelectionAfterOperation() const {
    return visible_;
}
