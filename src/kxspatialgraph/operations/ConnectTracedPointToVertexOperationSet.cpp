#include "kxspatialgraph/operations/ConnectTracedPointToVertexOperationSet.h"

ConnectTracedPointToVertexOperationSet::ConnectTracedPointToVertexOperationSet(
    KxSpatialGraph* graph, const DArray<Vec3f>* points, const DArray<float>* radii,
    const SpatialGraphSelection& highlighted, const SpatialGraphSelection& visible)
    : OperationSet(graph, highlighted, visible),
      points_(points ? *points : DArray<Vec3f>()),
      radii_(radii ? *radii : DArray<float>()) {}

void ConnectTracedPointToVertexOperationSet::build() {
    int vertex = highlighted_.getSelectedVertex(0);
    int newVertex = convertPointToVertex(selectedPoint(0));
    if (newVertex >= 0) {
        addTracedEdge(newVertex, vertex, points_, radii_);
    }
}
