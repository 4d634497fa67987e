#include "kxspatialgraph/operations/SplitEdgeWithNewVertexAndConnectOperationSet.h"

#include "kxspatialgraph/operations/SplitEdgeWithNewVertexOperationSet.h"

SplitEdgeWithNewVertexAndConnectOperationSet::SplitEdgeWithNewVertexAndConnectOperationSet(
    KxSpatialGraph* graph, const Vec3f& position, int edge, int pointIndex, const DArray<Vec3f>* points,
    const DArray<float>* radii, const SpatialGraphSelection& highlighted,
    const SpatialGraphSelection& visible)
    : OperationSet(graph, highlighted, visible),
      position_(position),
      edge_(edge),
      pointIndex_(pointIndex),
      points_(points ? *points : DArray<Vec3f>()),
      radii_(radii ? *radii : DArray<float>()) {}

void SplitEdgeWithNewVertexAndConnectOperationSet::build() {
    SpatialGraphSelection onEdge = selectionOfPoint(SpatialGraphPoint(edge_, pointIndex_));
    newVertex_ =
        run(new SplitEdgeWithNewVertexOperationSet(graph_, position_, edge_, pointIndex_, onEdge, working()))
            ->getNewVertexNum();
    if (newVertex_ < 0) {
        return;
    }
    traceFromSelectionTo(newVertex_, points_, radii_);
}
