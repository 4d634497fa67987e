#include "kxspatialgraph/operations/DeleteOperation.h"

#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace {

// The leading entries of ascending indices that lie below limit.
DArray<int> indicesBelow(DArray<int> indices, int limit) {
    int n = 0;
    while (n < indices.size() && indices[n] < limit) {
        ++n;
    }
    indices.resize(n);
    return indices;
}

}  // namespace

DeleteOperation::DeleteOperation(KxSpatialGraph* graph, const SpatialGraphSelection& highlighted,
                                 const SpatialGraphSelection& visible)
    : Operation(graph, highlighted, visible) {}

void DeleteOperation::exec() {
    startCursors();
    DArray<int> vertices = indicesBelow(vertexCursor_.remaining(), graph_->getNumVertices());
    for (int v : vertices) {
        for (int e : graph_->getIncidentEdges(v)) {
            if (e >= highlighted_.getNumEdges() || !highlighted_.isSelectedEdge(e)) {
                highlighted_.deselectVertex(v);
                break;
            }
        }
    }
    startCursors();
    removedEdges_.save(*graph_, indicesBelow(edgeCursor_.remaining(), graph_->getNumEdges()));
    graph_->removeMultipleEdges(removedEdges_.indices());
    removedVertices_.save(*graph_, indicesBelow(vertexCursor_.remaining(), graph_->getNumVertices()));
    graph_->removeMultipleVertices(removedVertices_.indices());
    graph_->isConsistent();
}

void DeleteOperation::undo() {
    removedVertices_.reinsert(*graph_);
    removedEdges_.reinsert(*graph_);
    graph_->isConsistent();
}

SpatialGraphSelection DeleteOperation::getVisibleSelectionAfterOperation() const {
    const DArray<int>& goneVertices = removedVertices_.indices();
    const DArray<int>& goneEdges = removedEdges_.indices();
    int numVertices = visible_.getNumVertices();
    int numEdges = visible_.getNumEdges();
    SpatialGraphSelection result(numVertices - indicesBelow(goneVertices, numVertices).size(),
                                 numEdges - indicesBelow(goneEdges, numEdges).size());
    int gone = 0;
    for (int v = 0; v < numVertices; ++v) {
        if (gone < goneVertices.size() && goneVertices[gone] == v) {
            ++gone;
        } else if (visible_.isSelectedVertex(v)) {
            result.selectVertex(v - gone);
        }
    }
    gone = 0;
    for (int e = 0; e < numEdges; ++e) {
        if (gone < goneEdges.size() && goneEdges[gone] == e) {
            ++gone;
            continue;
        }
        if (visible_.isSelectedEdge(e)) {
            result.selectEdge(e - gone);
        }
        if (visible_.allPointsOnEdgeSelected(e)) {
            result.selectAllPointsOnEdge(e - gone);
        }
    }
    return result;
}
