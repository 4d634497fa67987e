#include "kxspatialgraph/operations/ConnectPointToPointOperationSet.h"

ConnectPointToPointOperationSet::ConnectPointToPointOperationSet(KxSpatialGraph* graph,
                                                                 const SpatialGraphPoint* point,
                                                                 const DArray<Vec3f>* points,
                                                                 const DArray<float>* radii,
                                                                 const SpatialGraphSelection& highlighted,
                                                                 const SpatialGraphSelection& visible)
    : OperationSet(graph, highlighted, visible),
      point_(point ? *point : SpatialGraphPoint()),
      points_(points ? *points : DArray<Vec3f>()),
      radii_(radii ? *radii : DArray<float>()) {}

void ConnectPointToPointOperationSet::build() {
    SpatialGraphPoint second = highlighted_.getNumSelectedPoints() >= 2 ? selectedPoint(1) : point_;
    int a = convertPointToVertex(selectedPoint(0));
    if (a < 0) {
        return;
    }
    int b = convertPointToVertex(second);
    if (b < 0) {
        return;
    }
    // The traced edge's selection holds just the two new vertices, so the
    // points converted here are not converted again.
    addTracedEdge(a, b, points_, radii_);
}
