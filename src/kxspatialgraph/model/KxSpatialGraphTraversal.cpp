// Graph searches of KxSpatialGraph that answer with selections.

#include <utility>
#include <vector>

#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"

void KxSpatialGraph::depthFirstSearch(int vertex, SpatialGraphSelection& selection) const {
    // (vertex, next position in its incidence list): the explicit form of the
    // recursion, visiting edges in the same order.
    std::vector<std::pair<int, int>> stack;
    selection.selectVertex(vertex);
    stack.emplace_back(vertex, 0);
    while (!stack.empty()) {
        int v = stack.back().first;
        int i = stack.back().second++;
        const IncidenceList& list = incidence_[v];
        if (i >= list.size()) {
            stack.pop_back();
            continue;
        }
        int e = list[i];
        if (selection.isSelectedEdge(e)) {
            continue;
        }
        selection.selectEdge(e);
        int other = edges_[e].getSource() == v ? edges_[e].getTarget() : edges_[e].getSource();
        if (isVertex(other)) {
            selection.selectVertex(other);
            stack.emplace_back(other, 0);
        }
    }
}

SpatialGraphSelection KxSpatialGraph::getConnectedComponent(int vertex) const {
    SpatialGraphSelection selection(getNumVertices(), getNumEdges());
    depthFirstSearch(vertex, selection);
    return selection;
}
