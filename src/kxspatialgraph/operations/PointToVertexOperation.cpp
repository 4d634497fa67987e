#include "kxspatialgraph/operations/PointToVertexOperation.h"

#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

PointToVertexOperation::PointToVertexOperation(KxSpatialGraph* graph,
                                               const SpatialGraphSelection& highlighted,
                                               const SpatialGraphSelection& visible)
    : Operation(graph, highlighted, visible) {}

bool PointToVertexOperation::canConvert(int e, int k) const {
    if (!checkEdge("PointToVertexOperation", e)) {
        return false;
    }
    if (k == 0 || k == graph_->getNumEdgePoints(e) - 1) {
        theMsg->printf("Cannot convert first or last point on edge to vertex");
        return false;
    }
    if (k < 0 || k >= graph_->getNumEdgePoints(e)) {
        theMsg->printf("Error: PointToVertexOperation: edge %d has no point %d.", e, k);
        return false;
    }
    return true;
}

void PointToVertexOperation::exec() {
    done_ = false;
    newVertex_ = -1;
    if (highlighted_.getNumSelectedPoints() == 0) {
        theMsg->printf("Error: PointToVertexOperation: no edge point selected.");
        return;
    }
    SpatialGraphPoint point = highlighted_.getSelectedPoint(0);
    edge_ = point.edgeNum;
    pointIndex_ = point.pointNum;
    if (!canConvert(edge_, pointIndex_)) {
        return;
    }
    savedEdge_.save(*graph_, DArray<int>{edge_});
    const DArray<Vec3f>& polyline = savedEdge_.polyline(0);
    newVertex_ = graph_->addVertex(polyline[pointIndex_]);
    addHalves(polyline);
    graph_->removeEdge(edge_);
    done_ = true;
}

// Adds (source, new vertex) with points 0..k and (new vertex, target) with
// points k..m-1 as the next two edges; point k belongs to both.
void PointToVertexOperation::addHalves(const DArray<Vec3f>& polyline) {
    int k = pointIndex_;
    int m = polyline.size();
    int lengths[2] = {k + 1, m - k};
    int firstRows[2] = {0, k};
    int n = graph_->getNumEdges();
    newEdges_ = DArray<int>{n, n + 1};
    const SpatialGraphEdge& ends = savedEdge_.ends(0);
    DArray<SpatialGraphEdge> halves{SpatialGraphEdge(ends.getSource(), newVertex_),
                                    SpatialGraphEdge(newVertex_, ends.getTarget())};
    DArray<DArray<Vec3f>> points(2);
    for (int h = 0; h < 2; ++h) {
        points[h].append(lengths[h], polyline.dataPtr() + firstRows[h]);
    }
    DArray<TypedData2D> edgeValues;
    for (const TypedData2D& value : savedEdge_.edgeValues()) {
        TypedData2D twice(value.getPrimType(), 2, value.getNumComponents());
        SavedEdges::copyRows(value, 0, 1, false, twice, 0);
        SavedEdges::copyRows(value, 0, 1, false, twice, 1);
        edgeValues.append(twice);
    }
    DArray<DArray<TypedData2D>> pointValues;
    for (const DArray<TypedData2D>& blocks : savedEdge_.pointValues()) {
        const TypedData2D& block = blocks[0];
        DArray<TypedData2D> parts(2);
        for (int h = 0; h < 2; ++h) {
            parts[h].reset(block.getPrimType(), lengths[h], block.getNumComponents());
            SavedEdges::copyRows(block, firstRows[h], lengths[h], false, parts[h], 0);
        }
        pointValues.append(parts);
    }
    graph_->insertMultipleEdges(newEdges_, halves, points, edgeValues, savedEdge_.edgeAttributeIds(),
                                pointValues, savedEdge_.pointAttributeIds());
}

void PointToVertexOperation::undo() {
    if (!done_) {
        return;
    }
    savedEdge_.reinsert(*graph_);
    graph_->removeEdge(newEdges_[1]);
    graph_->removeEdge(newEdges_[0]);
    graph_->removeVertex(newVertex_);
}

SpatialGraphSelection PointToVertexOperation::getHighlightSelectionAfterOperation() const {
    if (!done_) {
        return Operation::getHighlightSelectionAfterOperation();
    }
    SpatialGraphSelection result(highlighted_.getNumVertices() + 1, highlighted_.getNumEdges() + 1);
    result.selectVertex(highlighted_.getNumVertices());
    return result;
}

SpatialGraphSelection PointToVertexOperation::getVisibleSelectionAfterOperation() const {
    if (!done_) {
        return visible_;
    }
    int numVertices = visible_.getNumVertices();
    int numEdges = visible_.getNumEdges();
    SpatialGraphSelection result = visible_;
    result.resize(numVertices + 1, numEdges + 1);
    result.selectVertex(numVertices);
    // Deliberate: the copy keeps its bits and states are only added, so an
    // edge that moved down stays selected where the old occupant was, and a
    // visible edge above the split edge also gets all points selected at its
    // old index.
    for (int e = 0; e < numEdges; ++e) {
        if (e < edge_ && visible_.isSelectedEdge(e)) {
            result.selectAllPointsOnEdge(e);
        } else if (e > edge_) {
            if (visible_.isSelectedEdge(e)) {
                result.selectEdge(e - 1);
                result.selectAllPointsOnEdge(e);
            }
            if (visible_.allPointsOnEdgeSelected(e)) {
                result.selectAllPointsOnEdge(e - 1);
            }
        }
    }
    for (int e = numEdges - 1; e <= numEdges; ++e) {
        result.selectEdge(e);
        result.selectAllPointsOnEdge(e);
    }
    return result;
}
