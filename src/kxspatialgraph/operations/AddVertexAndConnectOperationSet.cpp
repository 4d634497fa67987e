#include "kxspatialgraph/operations/AddVertexAndConnectOperationSet.h"

#include "kxspatialgraph/operations/AddVertexOperation.h"

AddVertexAndConnectOperationSet::AddVertexAndConnectOperationSet(KxSpatialGraph* graph, const Vec3f& position,
                                                                 const DArray<Vec3f>* points,
                                                                 const DArray<float>* radii,
                                                                 const SpatialGraphSelection& highlighted,
                                                                 const SpatialGraphSelection& visible)
    : OperationSet(graph, highlighted, visible),
      position_(position),
      points_(points ? *points : DArray<Vec3f>()),
      radii_(radii ? *radii : DArray<float>()) {}

void AddVertexAndConnectOperationSet::build() {
    SpatialGraphSelection none(graph_);
    newVertex_ = run(new AddVertexOperation(graph_, position_, none, working()))->getNewVertexNum();
    traceFromSelectionTo(newVertex_, points_, radii_);
}
