// Graph searches of KxSpatialGraph that answer with selections. Every search
// keeps its own stack or queue instead of recursing, visiting edges in the
// order of the incidence lists as a recursive search would.

#include <algorithm>
#include <climits>
#include <vector>

#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/operations/DeleteOperation.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"

namespace {

// One level of the recursive search: the vertex, the next position in its
// incidence list and the threshold that edges leaving it must pass.
struct Frame {
    int vertex;
    int next;
    int threshold;
};

// Edge e's value as an int, whatever the attribute's type.
int edgeValue(const EdgeVertexAttribute* attribute, int e) {
    if (attribute->getPrimType() == PrimType::INT32) {
        return attribute->getIntDataAtIdx(e);
    }
    return static_cast<int>(attribute->getValue(e).getDouble(0));
}

int otherEnd(const SpatialGraphEdge& edge, int v) {
    return edge.getSource() == v ? edge.getTarget() : edge.getSource();
}

// The first selected index at or after from (bits are only ever cleared
// while a caller walks, so it never needs to look back); -1 if none.
template <class IsSelected>
int firstSelected(int& from, int count, IsSelected isSelected) {
    while (from < count && !isSelected(from)) {
        ++from;
    }
    return from < count ? from : -1;
}

// Hands each component touched by the selection to handOn: first those of
// the selected edges' sources, then those of the remaining selected vertices.
template <class HandOn>
void forEachComponentTouching(const KxSpatialGraph& graph, const SpatialGraphSelection& selection,
                              HandOn handOn) {
    SpatialGraphSelection working = selection;
    working.resize(graph.getNumVertices(), graph.getNumEdges());
    int edge = 0;
    while (firstSelected(edge, graph.getNumEdges(), [&](int e) { return working.isSelectedEdge(e); }) >= 0) {
        int source = graph.getEdgeSource(edge);
        if (source < 0 || source >= graph.getNumVertices()) {
            working.deselectEdge(edge);
            continue;
        }
        SpatialGraphSelection component = graph.getConnectedComponent(source);
        working.subtractSelection(component);
        working.deselectEdge(edge);  // in case a damaged incidence list lacks it
        handOn(component);
    }
    int vertex = 0;
    while (firstSelected(vertex, graph.getNumVertices(),
                         [&](int v) { return working.isSelectedVertex(v); }) >= 0) {
        SpatialGraphSelection component = graph.getConnectedComponent(vertex);
        working.subtractSelection(component);
        handOn(component);
    }
}

}  // namespace

void KxSpatialGraph::depthFirstSearch(int vertex, SpatialGraphSelection& selection) const {
    depthFirstSearch(vertex, 0, nullptr, selection, false);
}

void KxSpatialGraph::depthFirstSearch(int vertex, int threshold, const EdgeVertexAttribute* attribute,
                                      SpatialGraphSelection& selection, bool decreasing) const {
    if (!isVertex(vertex)) {
        return;
    }
    if (attribute && attribute->size() < getNumEdges()) {
        theMsg->printf("Error: depthFirstSearch: attribute %s has no value for every edge.",
                       attribute->getName());
        return;
    }
    // Without an attribute every edge is followed.
    std::vector<Frame> stack;
    selection.selectVertex(vertex);
    stack.push_back({vertex, 0, threshold});
    while (!stack.empty()) {
        Frame& frame = stack.back();
        const IncidenceList& list = incidence_[frame.vertex];
        if (frame.next >= list.size()) {
            stack.pop_back();
            continue;
        }
        int e = list[frame.next++];
        if (selection.isSelectedEdge(e)) {
            continue;
        }
        int value = frame.threshold;
        if (attribute) {
            value = edgeValue(attribute, e);
            if (decreasing ? value >= frame.threshold : value <= frame.threshold) {
                continue;
            }
        }
        selection.selectEdge(e);
        int other = otherEnd(edges_[e], frame.vertex);
        if (isVertex(other)) {
            selection.selectVertex(other);
            stack.push_back({other, 0, value});
        }
    }
}

bool KxSpatialGraph::breadthFirstSearch(int from, int to, SpatialGraphSelection& selection) const {
    if (!isVertex(from) || !isVertex(to)) {
        return false;
    }
    std::vector<int> parent(static_cast<size_t>(getNumVertices()), -1);
    parent[from] = from;
    // A first-in-first-out queue: pushed at the back, read from head on.
    std::vector<int> queue{from};
    size_t head = 0;
    for (;;) {
        if (head == queue.size()) {
            return false;
        }
        int v = queue[head++];
        if (v == to) {
            break;
        }
        for (int e : incidence_[v]) {
            int w = otherEnd(edges_[e], v);
            if (isVertex(w) && parent[w] == -1) {
                parent[w] = v;
                queue.push_back(w);
            }
        }
    }
    selection.selectVertex(to);
    for (int c = to; c != from; c = parent[c]) {
        int p = parent[c];
        selection.selectVertex(p);
        for (int e : incidence_[c]) {
            if (otherEnd(edges_[e], c) == p) {
                selection.selectEdge(e);
                break;
            }
        }
    }
    return true;
}

SpatialGraphSelection KxSpatialGraph::getConnectedComponent(int vertex) const {
    SpatialGraphSelection selection(this);
    depthFirstSearch(vertex, selection);
    return selection;
}

SpatialGraphSelection KxSpatialGraph::getShortestPath(int from, int to) const {
    SpatialGraphSelection selection(this);
    breadthFirstSearch(from, to, selection);
    return selection;
}

SpatialGraphSelection KxSpatialGraph::getSubTreeByEdge(int edge, bool decreasing) const {
    SpatialGraphSelection selection(this);
    const EdgeVertexAttribute* ranks = findEdgeAttribute("Ranks");
    if (!ranks || edge < 0 || edge >= getNumEdges()) {
        return selection;
    }
    int rank = edgeValue(ranks, edge);
    depthFirstSearch(getEdgeSource(edge), rank, ranks, selection, decreasing);
    depthFirstSearch(getEdgeTarget(edge), rank, ranks, selection, decreasing);
    selection.selectEdge(edge);
    return selection;
}

SpatialGraphSelection KxSpatialGraph::getSubTreeByVertex(int vertex, bool decreasing) const {
    SpatialGraphSelection selection(this);
    const EdgeVertexAttribute* ranks = findEdgeAttribute("Ranks");
    if (!ranks || !isVertex(vertex)) {
        return selection;
    }
    const IncidenceList& list = incidence_[vertex];
    int lowest = INT_MAX;
    for (int e : list) {
        lowest = std::min(lowest, edgeValue(ranks, e));
    }
    int start = vertex;
    if (lowest == 1 && list.size() == 1) {
        // A terminal vertex on a rank-1 line: the line itself belongs to the tree.
        selection.selectVertex(vertex);
        selection.selectEdge(list[0]);
        start = otherEnd(edges_[list[0]], vertex);
    }
    // Descending, edges of the lowest rank itself are followed too. An
    // isolated vertex keeps INT_MAX, which must not overflow.
    int threshold = decreasing && lowest < INT_MAX ? lowest + 1 : lowest;
    depthFirstSearch(start, threshold, ranks, selection, decreasing);
    return selection;
}

int KxSpatialGraph::getNumComponentsInSelection(const SpatialGraphSelection& selection) const {
    int count = 0;
    forEachComponentTouching(*this, selection, [&](const SpatialGraphSelection&) { ++count; });
    return count;
}

SpatialGraphSelection KxSpatialGraph::getConnectedComponentFromSelection(
    const SpatialGraphSelection& selection) const {
    SpatialGraphSelection result = selection;
    forEachComponentTouching(*this, selection,
                             [&](const SpatialGraphSelection& component) { result.addSelection(component); });
    return result;
}

DArray<SpatialGraphSelection> KxSpatialGraph::getAllConnectedComponents(
    const SpatialGraphSelection& selection) const {
    DArray<SpatialGraphSelection> components;
    forEachComponentTouching(*this, selection,
                             [&](const SpatialGraphSelection& component) { components.append(component); });
    return components;
}

SpatialGraphSelection KxSpatialGraph::getConnectedComponentsContainedInSelection(
    const SpatialGraphSelection& selection) const {
    SpatialGraphSelection result = selection;
    result.clear();
    SpatialGraphSelection working = selection;
    working.resize(getNumVertices(), getNumEdges());
    int vertex = 0;
    while (firstSelected(vertex, getNumVertices(), [&](int v) { return working.isSelectedVertex(v); }) >= 0) {
        SpatialGraphSelection component = getConnectedComponent(vertex);
        if (component.isSubsetVertices(selection) && component.isSubsetEdges(selection)) {
            result.addSelection(component);
        }
        working.subtractSelection(component);
    }
    return result;
}

KxSpatialGraph* KxSpatialGraph::getSubgraph(const SpatialGraphSelection& selection) const {
    KxSpatialGraph* subgraph = duplicate();
    SpatialGraphSelection unselected = selection;
    unselected.toggleAll();
    DeleteOperation deletion(subgraph, unselected, SpatialGraphSelection(subgraph));
    deletion.exec();
    return subgraph;
}
