#include "kxspatialgraph/operations/SplitEdgeWithNewVertexOperationSet.h"

#include "kxspatialgraph/operations/InsertEdgePointsOperation.h"

SplitEdgeWithNewVertexOperationSet::SplitEdgeWithNewVertexOperationSet(
    KxSpatialGraph* graph, const Vec3f& position, int edge, int pointIndex,
    const SpatialGraphSelection& highlighted, const SpatialGraphSelection& visible)
    : OperationSet(graph, highlighted, visible), position_(position), edge_(edge), pointIndex_(pointIndex) {}

void SplitEdgeWithNewVertexOperationSet::build() {
    SpatialGraphPoint at(edge_, pointIndex_);
    DArray<Vec3f> inserted;
    inserted.append(position_);
    run(new InsertEdgePointsOperation(graph_, inserted, selectionOfPoint(at), working()));
    newVertex_ = convertPointToVertex(at);
}
