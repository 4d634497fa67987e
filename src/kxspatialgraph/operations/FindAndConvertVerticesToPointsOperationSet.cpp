#include "kxspatialgraph/operations/FindAndConvertVerticesToPointsOperationSet.h"

#include "kxspatialgraph/model/KxSpatialGraph.h"

FindAndConvertVerticesToPointsOperationSet::FindAndConvertVerticesToPointsOperationSet(
    KxSpatialGraph* graph, const SpatialGraphSelection& highlighted, const SpatialGraphSelection& visible)
    : MultipleVerticesToPointsOperationSet(graph, highlighted, visible) {
    bool all = highlighted_.getNumSelectedVertices() == 0;
    SpatialGraphSelection chosen(graph_);
    for (int v = 0; v < graph_->getNumVertices(); ++v) {
        const KxSpatialGraph::IncidenceList& edges = graph_->getIncidentEdges(v);
        if ((all || (v < highlighted_.getNumVertices() && highlighted_.isSelectedVertex(v))) &&
            edges.size() == 2 && edges[0] != edges[1]) {
            chosen.selectVertex(v);
        }
    }
    highlighted_ = chosen;
    startCursors();
}
