#include "kxspatialgraph/operations/VertexToPointOperation.h"

#include <algorithm>

#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace {

// Slot of edge e in the saved pair, which is kept in ascending order.
int savedSlot(const SavedEdges& saved, int e) {
    return saved.indices()[0] == e ? 0 : 1;
}

}  // namespace

VertexToPointOperation::VertexToPointOperation(KxSpatialGraph* graph,
                                               const SpatialGraphSelection& highlighted,
                                               const SpatialGraphSelection& visible)
    : Operation(graph, highlighted, visible) {}

bool VertexToPointOperation::canConvert(int v) const {
    if (!checkVertex("VertexToPointOperation", v)) {
        return false;
    }
    const KxSpatialGraph::IncidenceList& edges = graph_->getIncidentEdges(v);
    if (edges.size() != 2 || edges[0] == edges[1]) {
        theMsg->printf("Error: VertexToPointOperation: vertex %d does not join two distinct edges.", v);
        return false;
    }
    return true;
}

void VertexToPointOperation::exec() {
    startCursors();
    vertex_ = vertexCursor_.next();
    done_ = canConvert(vertex_);
    if (!done_) {
        return;
    }
    const KxSpatialGraph::IncidenceList& edges = graph_->getIncidentEdges(vertex_);
    // A redo joins the edges in the order of the first exec: the undo
    // re-attached them in ascending order, which may differ from the
    // incidence order the first exec saw.
    bool sameEdges =
        (edges[0] == first_ && edges[1] == second_) || (edges[0] == second_ && edges[1] == first_);
    if (!sameEdges) {
        first_ = edges[0];
        second_ = edges[1];
    }
    savedVertex_.save(*graph_, DArray<int>{vertex_});
    savedEdges_.save(*graph_, DArray<int>{std::min(first_, second_), std::max(first_, second_)});

    // The far ends of both edges.
    int a = startsAtVertex(first_) ? graph_->getEdgeTarget(first_) : graph_->getEdgeSource(first_);
    int b = startsAtVertex(second_) ? graph_->getEdgeTarget(second_) : graph_->getEdgeSource(second_);
    joinedEdge_ = graph_->addEdge(a, b);
    graph_->setEdgePoints(joinedEdge_, joinedPolyline());
    for (int k = 0; k < graph_->getNumEdgeAttributes(); ++k) {
        graph_->getEdgeAttribute(k)->copy(joinedEdge_, first_);
    }
    setJoinedPointValues(joinedEdge_);
    graph_->removeMultipleEdges(savedEdges_.indices());
    graph_->removeVertex(vertex_);
}

void VertexToPointOperation::undo() {
    if (!done_) {
        return;
    }
    savedVertex_.reinsert(*graph_);
    savedEdges_.reinsert(*graph_);
    graph_->removeEdge(joinedEdge_);
}

bool VertexToPointOperation::startsAtVertex(int e) const {
    return savedEdges_.ends(savedSlot(savedEdges_, e)).getSource() == vertex_;
}

DArray<Vec3f> VertexToPointOperation::joinedPolyline() const {
    // P1 runs to the vertex and loses its last point; P2 runs away from it,
    // so the vertex's position survives as P2's first point.
    DArray<Vec3f> p1 = savedEdges_.polyline(savedSlot(savedEdges_, first_));
    DArray<Vec3f> p2 = savedEdges_.polyline(savedSlot(savedEdges_, second_));
    if (startsAtVertex(first_)) {
        std::reverse(p1.begin(), p1.end());
    }
    if (!startsAtVertex(second_)) {
        std::reverse(p2.begin(), p2.end());
    }
    p1.resize(p1.size() - 1);
    p1.append(p2);
    return p1;
}

void VertexToPointOperation::setJoinedPointValues(int joined) const {
    DArray<TypedData2D> values;
    for (const DArray<TypedData2D>& blocks : savedEdges_.pointValues()) {
        const TypedData2D& v1 = blocks[savedSlot(savedEdges_, first_)];
        const TypedData2D& v2 = blocks[savedSlot(savedEdges_, second_)];
        int n1 = v1.getNumRows() - 1;
        TypedData2D joinedValues(v1.getPrimType(), n1 + v2.getNumRows(), v1.getNumComponents());
        // Towards the vertex without the value at it, then away from it.
        bool reverseFirst = startsAtVertex(first_);
        SavedEdges::copyRows(v1, reverseFirst ? 1 : 0, n1, reverseFirst, joinedValues, 0);
        SavedEdges::copyRows(v2, 0, v2.getNumRows(), !startsAtVertex(second_), joinedValues, n1);
        values.append(joinedValues);
    }
    graph_->setPointAttributeValues(joined, values);
}

SpatialGraphSelection VertexToPointOperation::getVisibleSelectionAfterOperation() const {
    if (!done_) {
        return visible_;
    }
    int numVertices = visible_.getNumVertices();
    int numEdges = visible_.getNumEdges();
    SpatialGraphSelection result = visible_;
    result.resize(numVertices - 1, numEdges - 1);
    // Deliberate: the copy keeps its bits and states are only added, so an
    // element that moved down stays selected where the old occupant was.
    for (int v = vertex_ + 1; v < numVertices; ++v) {
        if (visible_.isSelectedVertex(v)) {
            result.selectVertex(v - 1);
        }
    }
    const DArray<int>& removed = savedEdges_.indices();
    for (int e = 0; e < numEdges; ++e) {
        if (e == removed[0] || e == removed[1]) {
            continue;
        }
        int to = e - (e > removed[0]) - (e > removed[1]);
        if (visible_.isSelectedEdge(e)) {
            result.selectEdge(to);
        }
        if (visible_.allPointsOnEdgeSelected(e)) {
            result.selectAllPointsOnEdge(to);
        }
    }
    result.selectEdge(numEdges - 2);
    result.selectAllPointsOnEdge(numEdges - 2);
    return result;
}
