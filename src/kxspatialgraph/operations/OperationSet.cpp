#include "kxspatialgraph/operations/OperationSet.h"

#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/operations/AddTracedEdgeOperationSet.h"
#include "kxspatialgraph/operations/ConnectOperation.h"
#include "kxspatialgraph/operations/ConnectTracedPointToVertexOperationSet.h"
#include "kxspatialgraph/operations/PointToVertexOperation.h"

OperationSet::OperationSet(KxSpatialGraph* graph, const SpatialGraphSelection& highlighted,
                           const SpatialGraphSelection& visible)
    : Operation(graph, highlighted, visible) {}

OperationSet::~OperationSet() {
    for (int i = 0; i < operations_.size(); ++i) {
        delete operations_[i];
    }
}

void OperationSet::exec() {
    if (operations_.isEmpty()) {
        build();
        return;
    }
    for (int i = 0; i < operations_.size(); ++i) {
        operations_[i]->exec();
    }
}

void OperationSet::undo() {
    for (int i = operations_.size() - 1; i >= 0; --i) {
        operations_[i]->undo();
    }
}

SpatialGraphSelection OperationSet::getVisibleSelectionAfterOperation() const {
    if (operations_.isEmpty()) {
        return visible_;
    }
    return operations_.last()->getVisibleSelectionAfterOperation();
}

SpatialGraphSelection OperationSet::getHighlightSelectionAfterOperation() const {
    return selectionOfVertices(newVertex_);
}

SpatialGraphSelection OperationSet::selectionOfVertices(int a, int b) const {
    SpatialGraphSelection s(graph_);
    for (int v : {a, b}) {
        if (v >= 0) {
            s.selectVertex(v);
        }
    }
    return s;
}

SpatialGraphSelection OperationSet::selectionOfPoint(const SpatialGraphPoint& p) const {
    SpatialGraphSelection s(graph_);
    s.selectPoint(p);
    return s;
}

SpatialGraphPoint OperationSet::selectedPoint(int i) const {
    return i < highlighted_.getNumSelectedPoints() ? highlighted_.getSelectedPoint(i) : SpatialGraphPoint();
}

int OperationSet::convertPointToVertex(const SpatialGraphPoint& p) {
    return run(new PointToVertexOperation(graph_, selectionOfPoint(p), working()))->getNewVertexNum();
}

void OperationSet::addTracedEdge(int a, int b, const DArray<Vec3f>& points, const DArray<float>& radii) {
    run(new AddTracedEdgeOperationSet(graph_, points, radii, selectionOfVertices(a, b), working()));
}

void OperationSet::traceFromSelectionTo(int vertex, const DArray<Vec3f>& points, const DArray<float>& radii) {
    int selected = highlighted_.getSelectedVertex(0);
    if (selected >= 0) {
        addTracedEdge(selected, vertex, points, radii);
    } else if (highlighted_.getNumSelectedPoints() > 0) {
        SpatialGraphSelection ends = selectionOfPoint(selectedPoint(0));
        ends.selectVertex(vertex);
        run(new ConnectTracedPointToVertexOperationSet(graph_, &points, &radii, ends, working()));
    }
}

void OperationSet::connect(int a, int b) {
    run(new ConnectOperation(graph_, selectionOfVertices(a, b), working()));
}

bool OperationSet::canConvertToPoint(int v) const {
    const KxSpatialGraph::IncidenceList& edges = graph_->getIncidentEdges(v);
    if (edges.size() != 2) {
        theMsg->printf("Cannot convert node %d, number of incident segments is %d\n", v, edges.size());
        return false;
    }
    if (edges[0] == edges[1]) {
        theMsg->printf("Cannot convert node %d, as it is start and end of segment %d\n", v, edges[0]);
        return false;
    }
    return true;
}
