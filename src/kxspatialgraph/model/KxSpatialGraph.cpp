#include "kxspatialgraph/model/KxSpatialGraph.h"

#include <cstring>

#include "korva/base/HugePages.h"
#include "kxspatialgraph/model/EdgeBlockLayout.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraphInterfaceImpl.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

// Old index -> new index after removing the listed indices (ascending), -1
// for a removed one.
DArray<int> removalMap(int count, const DArray<int>& removed) {
    DArray<int> map(count);
    int next = 0;
    for (int i = 0; i < count; ++i) {
        if (next < removed.size() && removed[next] == i) {
            map[i] = -1;
            ++next;
        } else {
            map[i] = i - next;
        }
    }
    return map;
}

// Old index -> new index after inserting new elements at the final positions
// `inserted` (ascending).
DArray<int> insertionMap(int count, const DArray<int>& inserted) {
    DArray<int> map(count);
    int next = 0;
    for (int i = 0; i < count; ++i) {
        while (next < inserted.size() && inserted[next] <= i + next) {
            ++next;
        }
        map[i] = i + next;
    }
    return map;
}

// Grows array to newCount and moves each old element i to map[i], back to
// front: every element moves up or stays, never onto one still to move. The
// places of new elements are left for the caller.
template <class T>
void moveToInsertionPlaces(DArray<T>& array, const DArray<int>& map, int newCount) {
    array.resize(newCount);
    for (int i = map.size() - 1; i >= 0; --i) {
        if (map[i] != i) {
            array[map[i]] = std::move(array[i]);
        }
    }
}

}  // namespace

KxSpatialGraph::KxSpatialGraph() : interface_(new KxSpatialGraphInterfaceImpl(this)) {}

KxSpatialGraph::~KxSpatialGraph() {
    deleteAllLabelGroups();
    deleteAllAttributes();
    delete interface_;
}

bool KxSpatialGraph::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxSpatialGraph") == 0 || KxSpatialData::isOfType(typeName);
}

void* KxSpatialGraph::getInterface(const char* name) const {
    bool asked = std::strcmp(name, "KxSpatialGraphInterface") == 0 ||
                 std::strcmp(name, "KxSpatialGraphInterfaceImpl") == 0;
    return asked ? interface_ : nullptr;
}

bool KxSpatialGraph::hasEdge(int u, int v) const {
    for (int e : incidence_[u]) {
        if (edges_[e].getSource() == v || edges_[e].getTarget() == v) {
            return true;
        }
    }
    return false;
}

// ---- Incidence helpers ------------------------------------------------------

void KxSpatialGraph::attachEdge(int e, int v) {
    if (isVertex(v)) {
        incidence_[v].append(e);
    }
}

void KxSpatialGraph::detachEdge(int e, int v) {
    if (!isVertex(v)) {
        return;
    }
    IncidenceList& list = incidence_[v];
    int at = list.find(e);
    if (at >= 0) {
        list.remove(at);
    }
}

// ---- Edge points ----------------------------------------------------------------

void KxSpatialGraph::setEdgePoints(int e, const DArray<Vec3f>& pts) {
    points_.setEdgePoints(e, pts);
    for (PointAttribute* a : pointAttributes_) {
        a->resizeEdgePoints(e, pts.size());
    }
}

void KxSpatialGraph::insertEdgePoints(int e, int i, const DArray<Vec3f>& pts) {
    points_.insertEdgePoints(e, i, pts);
    for (PointAttribute* a : pointAttributes_) {
        a->insertEdgePoints(e, i, pts.size());
    }
}

void KxSpatialGraph::insertMultipleEdgePoints(const DArray<SpatialGraphPoint>& at, const DArray<int>& counts,
                                              const DArray<Vec3f>& pts) {
    points_.insertMultipleEdgePoints(at, counts, pts);
    for (PointAttribute* a : pointAttributes_) {
        a->insertMultipleEdgePoints(at, counts);
    }
}

void KxSpatialGraph::removeEdgePoints(int e, int i, int n) {
    points_.removeEdgePoints(e, i, n);
    for (PointAttribute* a : pointAttributes_) {
        a->removeEdgePoints(e, i, n);
    }
}

// ---- Adding --------------------------------------------------------------------------

int KxSpatialGraph::addVertex(const Vec3f& c) {
    int v = coords_.size();
    coords_.append(c);
    incidence_.append(IncidenceList());
    appendValues(vertexAttributes_);
    return v;
}

int KxSpatialGraph::addEdge(int s, int t) {
    Vec3f ends[2] = {isVertex(s) ? coords_[s] : Vec3f(), isVertex(t) ? coords_[t] : Vec3f()};
    return addEdge(s, t, ends, 2);
}

int KxSpatialGraph::addEdge(int s, int t, const DArray<Vec3f>& points) {
    return addEdge(s, t, points.dataPtr(), points.size());
}

int KxSpatialGraph::addEdge(int s, int t, const Vec3f* points, int numPoints) {
    int e = edges_.size();
    edges_.append(SpatialGraphEdge(s, t));
    attachEdge(e, s);
    attachEdge(e, t);
    points_.addEdge(points, numPoints);
    appendValues(edgeAttributes_);
    addPointBlocks(numPoints);
    return e;
}

void KxSpatialGraph::appendMultipleVertices(const Vec3f* coords, int n) {
    EdgeBlockLayout::reserveForGrowth(coords_.std(),
                                      static_cast<size_t>(coords_.size()) + static_cast<size_t>(n));
    coords_.append(n, coords);
    EdgeBlockLayout::reserveForGrowth(incidence_.std(),
                                      static_cast<size_t>(incidence_.size()) + static_cast<size_t>(n));
    incidence_.resize(incidence_.size() + n);
    for (EdgeVertexAttribute* a : vertexAttributes_) {
        a->append(n);
    }
}

void KxSpatialGraph::appendMultipleEdges(const int* ends, const int* pointCounts, const Vec3f* points,
                                         int n) {
    const int first = edges_.size();
    EdgeBlockLayout::reserveForGrowth(edges_.std(), static_cast<size_t>(first) + static_cast<size_t>(n));
    for (int k = 0; k < n; ++k) {
        edges_.append(SpatialGraphEdge(ends[2 * k], ends[2 * k + 1]));
        attachEdge(first + k, ends[2 * k]);
        attachEdge(first + k, ends[2 * k + 1]);
    }
    points_.appendEdges(points, pointCounts, n);
    for (EdgeVertexAttribute* a : edgeAttributes_) {
        a->append(n);
    }
    for (PointAttribute* a : pointAttributes_) {
        a->appendEdges(pointCounts, n);
    }
}

// ---- Removing one element ------------------------------------------------------------

void KxSpatialGraph::removeVertex(int v) {
    for (SpatialGraphEdge& edge : edges_) {
        if (edge.getSource() > v) {
            edge.setSource(edge.getSource() - 1);
        }
        if (edge.getTarget() > v) {
            edge.setTarget(edge.getTarget() - 1);
        }
    }
    coords_.remove(v);
    incidence_.remove(v);
    removeValue(vertexAttributes_, v);
}

void KxSpatialGraph::removeEdge(int e) {
    detachEdge(e, edges_[e].getSource());
    detachEdge(e, edges_[e].getTarget());
    // Later edges move down by one. Searching the first occurrence of f twice
    // decreases both entries of a later self-loop; f - 1 is never still
    // present because f - 1 was renumbered (or removed) just before.
    for (int f = e + 1; f < edges_.size(); ++f) {
        for (int v : {edges_[f].getSource(), edges_[f].getTarget()}) {
            if (!isVertex(v)) {
                continue;
            }
            int at = incidence_[v].find(f);
            if (at >= 0) {
                incidence_[v][at] = f - 1;
            }
        }
    }
    edges_.remove(e);
    points_.removeEdge(e);
    removeValue(edgeAttributes_, e);
    removePointBlocks(e);
}

// ---- Removing several elements -------------------------------------------------------

void KxSpatialGraph::removeMultipleVertices(const DArray<int>& indices) {
    if (indices.isEmpty()) {
        return;
    }
    int count = coords_.size();
    DArray<int> map = removalMap(count, indices);
    for (int v = indices[0]; v < count; ++v) {
        int to = map[v];
        if (to < 0 || to == v) {
            continue;
        }
        coords_[to] = coords_[v];
        incidence_[to] = std::move(incidence_[v]);
        for (EdgeVertexAttribute* a : vertexAttributes_) {
            a->copy(to, v);
        }
    }
    int kept = count - indices.size();
    coords_.resize(kept);
    incidence_.resize(kept);
    for (EdgeVertexAttribute* a : vertexAttributes_) {
        a->removeLast(indices.size());
    }
    mapEdgeEnds(map);
}

void KxSpatialGraph::mapEdgeEnds(const DArray<int>& map) {
    for (SpatialGraphEdge& edge : edges_) {
        int s = edge.getSource();
        int t = edge.getTarget();
        edge.setSource(s >= 0 && s < map.size() ? map[s] : s);
        edge.setTarget(t >= 0 && t < map.size() ? map[t] : t);
    }
}

void KxSpatialGraph::removeMultipleEdges(const DArray<int>& indices) {
    if (indices.isEmpty()) {
        return;
    }
    int count = edges_.size();
    DArray<int> map = removalMap(count, indices);
    for (int e = indices[0]; e < count; ++e) {
        if (map[e] >= 0) {
            edges_[map[e]] = edges_[e];
        }
    }
    edges_.resize(count - indices.size());
    for (EdgeVertexAttribute* a : edgeAttributes_) {
        a->removeMultipleValues(indices);
    }
    for (PointAttribute* a : pointAttributes_) {
        a->removeMultipleEdges(indices);
    }
    points_.removeMultipleEdges(indices);
    // Back to front, so removing an entry does not disturb the ones still to visit.
    for (IncidenceList& list : incidence_) {
        for (int i = list.size() - 1; i >= 0; --i) {
            int to = list[i] >= 0 && list[i] < count ? map[list[i]] : list[i];
            if (to < 0) {
                list.remove(i);
            } else {
                list[i] = to;
            }
        }
    }
}

// ---- Inserting -----------------------------------------------------------------------

void KxSpatialGraph::insertVertex(int index, const Vec3f& c, const DArray<TypedElement>& values,
                                  const DArray<int>& attributeIds) {
    bool append = index >= coords_.size();
    if (append) {
        coords_.append(c);
        incidence_.append(IncidenceList());
    } else {
        coords_.insert(index, c);
        incidence_.insert(index, IncidenceList());
        for (SpatialGraphEdge& edge : edges_) {
            if (edge.getSource() >= index) {
                edge.setSource(edge.getSource() + 1);
            }
            if (edge.getTarget() >= index) {
                edge.setTarget(edge.getTarget() + 1);
            }
        }
    }
    insertValue(vertexAttributes_, append ? coords_.size() - 1 : index, append, values, attributeIds);
}

void KxSpatialGraph::insertEdge(int index, const SpatialGraphEdge& edge, const DArray<Vec3f>& points,
                                const DArray<TypedElement>& edgeValues, const DArray<int>& edgeAttributeIds,
                                const DArray<TypedData2D>& pointValues,
                                const DArray<int>& pointAttributeIds) {
    bool append = index >= edges_.size();
    if (append) {
        index = edges_.size();
    }
    edges_.insert(index, edge);
    points_.insertEdgeBefore(index, points);
    for (IncidenceList& list : incidence_) {
        for (int& entry : list) {
            if (entry >= index) {
                ++entry;
            }
        }
    }
    attachEdge(index, edge.getSource());
    attachEdge(index, edge.getTarget());
    insertValue(edgeAttributes_, index, append, edgeValues, edgeAttributeIds);
    insertPointBlock(index, points.size(), pointValues, pointAttributeIds);
}

void KxSpatialGraph::insertMultipleVertices(const DArray<int>& indices, const DArray<Vec3f>& coords,
                                            const DArray<TypedData2D>& values,
                                            const DArray<int>& attributeIds) {
    if (indices.isEmpty()) {
        return;
    }
    int oldCount = coords_.size();
    int newCount = oldCount + indices.size();
    DArray<int> map = insertionMap(oldCount, indices);
    moveToInsertionPlaces(coords_, map, newCount);
    moveToInsertionPlaces(incidence_, map, newCount);
    for (int k = 0; k < indices.size(); ++k) {
        coords_[indices[k]] = coords[k];
        incidence_[indices[k]] = IncidenceList();
    }
    // The incidence lists moved with their vertices, so reattaching an edge
    // is only renaming its ends; the lists keep their order.
    mapEdgeEnds(map);
    insertMultipleValues(vertexAttributes_, indices, values, attributeIds);
}

void KxSpatialGraph::insertMultipleEdges(const DArray<int>& indices, const DArray<SpatialGraphEdge>& edges,
                                         const DArray<DArray<Vec3f>>& points,
                                         const DArray<TypedData2D>& edgeValues,
                                         const DArray<int>& edgeAttributeIds,
                                         const DArray<DArray<TypedData2D>>& pointValues,
                                         const DArray<int>& pointAttributeIds) {
    if (indices.isEmpty()) {
        return;
    }
    int oldCount = edges_.size();
    int newCount = oldCount + indices.size();
    DArray<int> map = insertionMap(oldCount, indices);
    moveToInsertionPlaces(edges_, map, newCount);
    for (int k = 0; k < indices.size(); ++k) {
        edges_[indices[k]] = edges[k];
    }
    for (IncidenceList& list : incidence_) {
        for (int& entry : list) {
            if (entry >= 0 && entry < oldCount) {
                entry = map[entry];
            }
        }
    }
    for (int k = 0; k < indices.size(); ++k) {
        attachEdge(indices[k], edges[k].getSource());
        attachEdge(indices[k], edges[k].getTarget());
    }
    points_.insertMultipleEdges(indices, points);
    insertMultipleValues(edgeAttributes_, indices, edgeValues, edgeAttributeIds);
    insertMultiplePointBlocks(indices, points, pointValues, pointAttributeIds);
}

// ---- Reattaching -----------------------------------------------------------------------

void KxSpatialGraph::setEdgeSource(int e, int v) {
    detachEdge(e, edges_[e].getSource());
    edges_[e].setSource(v);
    attachEdge(e, v);
    if (isVertex(v) && points_.getNumEdgePoints(e) > 0) {
        points_.setEdgePoint(e, 0, coords_[v]);
    }
}

void KxSpatialGraph::setEdgeTarget(int e, int v) {
    detachEdge(e, edges_[e].getTarget());
    edges_[e].setTarget(v);
    attachEdge(e, v);
    int n = points_.getNumEdgePoints(e);
    if (isVertex(v) && n > 0) {
        points_.setEdgePoint(e, n - 1, coords_[v]);
    }
}

// ---- Capacity and clearing ------------------------------------------------------------

void KxSpatialGraph::setSizeHint(int numVertices, int numEdges, int numPoints) {
    if (numVertices > coords_.capacity()) {
        size_t n = static_cast<size_t>(std::max(numVertices, coords_.size()));
        HugePages::reserve(coords_.std(), n);
        HugePages::reserve(incidence_.std(), n);
        for (EdgeVertexAttribute* a : vertexAttributes_) {
            a->remax(numVertices);
        }
    }
    if (numEdges > edges_.capacity()) {
        HugePages::reserve(edges_.std(), static_cast<size_t>(std::max(numEdges, edges_.size())));
        for (EdgeVertexAttribute* a : edgeAttributes_) {
            a->remax(numEdges);
        }
    }
    points_.setSizeHint(numPoints, numEdges);
}

void KxSpatialGraph::clear() {
    deleteAllLabelGroups();
    deleteAllAttributes();
    points_.clear();
    edges_.clearAndFree();
    incidence_.clearAndFree();
    coords_.clearAndFree();
    hasFixedBox_ = false;
}
