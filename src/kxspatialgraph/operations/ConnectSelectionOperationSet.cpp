#include "kxspatialgraph/operations/ConnectSelectionOperationSet.h"

#include <limits>

#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace {

// Vertices of s with exactly one incident edge, ascending.
DArray<int> endVertices(const KxSpatialGraph& graph, const SpatialGraphSelection& s) {
    DArray<int> ends;
    for (int v = 0; v < s.getNumVertices(); ++v) {
        if (s.isSelectedVertex(v) && graph.getIncidentEdges(v).size() == 1) {
            ends.append(v);
        }
    }
    return ends;
}

}  // namespace

void ConnectSelectionOperationSet::build() {
    SpatialGraphSelection w = graph_->getConnectedComponentFromSelection(highlighted_);
    theMsg->printf("Number of components in selection: %d", graph_->getNumComponentsInSelection(w));
    while (graph_->getNumComponentsInSelection(w) >= 2) {
        SpatialGraphSelection source = graph_->getConnectedComponent(w.getSelectedVertex(0));
        DArray<int> sourceEnds = endVertices(*graph_, source);
        if (sourceEnds.isEmpty()) {
            theMsg->printf("Source component has no end points. Not connecting.");
            w.subtractSelection(source);
            continue;
        }
        SpatialGraphSelection rest = w;
        rest.subtractSelection(source);
        DArray<int> targetEnds = endVertices(*graph_, rest);
        if (targetEnds.isEmpty()) {
            theMsg->printf("Target component has no end points. Not connecting.");
            w.subtractSelection(rest);
            continue;
        }
        // Strictly smaller wins, so the first pair found keeps a tie.
        float best = std::numeric_limits<float>::infinity();
        int a = -1, b = -1;
        for (int i = 0; i < sourceEnds.size(); ++i) {
            for (int j = 0; j < targetEnds.size(); ++j) {
                float d =
                    graph_->getVertexCoords(sourceEnds[i]).distance(graph_->getVertexCoords(targetEnds[j]));
                if (d < best) {
                    best = d;
                    a = sourceEnds[i];
                    b = targetEnds[j];
                }
            }
        }
        connect(a, b);
        // The new edge belongs to the joined component; keep w sized to the graph.
        w.resize(graph_->getNumVertices(), graph_->getNumEdges());
    }
}
