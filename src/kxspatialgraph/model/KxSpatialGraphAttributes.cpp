// Attribute operations of KxSpatialGraph and the bookkeeping that keeps every
// attribute in step with the editing primitives.

#include <cstring>

#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

// Whether the k-th attribute of a location has a supplied value: its id is
// listed and the values (parallel to the attribute list) reach entry k.
bool isSupplied(const GraphAttribute* a, int k, const DArray<int>& ids, int numValues) {
    return k < numValues && ids.find(a->getId()) >= 0;
}

template <class List>
GraphAttribute* findIn(const List& list, const char* name) {
    for (GraphAttribute* a : list) {
        if (std::strcmp(a->getName(), name) == 0) {
            return a;
        }
    }
    return nullptr;
}

template <class List>
bool contains(const List& list, const GraphAttribute* a) {
    for (const GraphAttribute* b : list) {
        if (b == a) {
            return true;
        }
    }
    return false;
}

template <class List>
bool removeFrom(List& list, const GraphAttribute* a) {
    for (int i = 0; i < list.size(); ++i) {
        if (list[i] == a) {
            delete list[i];
            list.remove(i);
            return true;
        }
    }
    return false;
}

template <class List>
void deleteAll(List& list) {
    for (GraphAttribute* a : list) {
        delete a;
    }
    list.clear();
}

}  // namespace

const char* KxSpatialGraph::locationName(Location loc) {
    static const char* const kNames[] = {"VERTEX", "EDGE", "POINT"};
    return kNames[loc];
}

// ---- Bookkeeping helpers ----------------------------------------------------------

void KxSpatialGraph::appendValues(DArray<EdgeVertexAttribute*>& list) {
    for (EdgeVertexAttribute* a : list) {
        a->append(1);
    }
}

void KxSpatialGraph::removeValue(DArray<EdgeVertexAttribute*>& list, int i) {
    for (EdgeVertexAttribute* a : list) {
        a->remove(i, 1);
    }
}

void KxSpatialGraph::insertValue(DArray<EdgeVertexAttribute*>& list, int index, bool append,
                                 const DArray<TypedElement>& values, const DArray<int>& ids) {
    for (int k = 0; k < list.size(); ++k) {
        EdgeVertexAttribute* a = list[k];
        bool supplied = isSupplied(a, k, ids, values.size());
        if (append) {
            // Only a supplied value is appended; insertBefore would do nothing here.
            if (supplied) {
                a->append(1);
                a->setValue(a->size() - 1, values[k]);
            }
            continue;
        }
        a->insertBefore(index, 1);
        if (supplied) {
            a->setValue(index, values[k]);
        }
    }
}

void KxSpatialGraph::insertMultipleValues(DArray<EdgeVertexAttribute*>& list, const DArray<int>& indices,
                                          const DArray<TypedData2D>& values, const DArray<int>& ids) {
    static const TypedData2D kZeros;
    for (int k = 0; k < list.size(); ++k) {
        EdgeVertexAttribute* a = list[k];
        a->insertMultipleValues(indices, isSupplied(a, k, ids, values.size()) ? values[k] : kZeros);
    }
}

void KxSpatialGraph::addPointBlocks(int numPoints) {
    for (PointAttribute* a : pointAttributes_) {
        a->addEdge(numPoints);
    }
}

void KxSpatialGraph::removePointBlocks(int e) {
    for (PointAttribute* a : pointAttributes_) {
        a->removeEdge(e);
    }
}

void KxSpatialGraph::insertPointBlock(int index, int numPoints, const DArray<TypedData2D>& values,
                                      const DArray<int>& ids) {
    for (int k = 0; k < pointAttributes_.size(); ++k) {
        PointAttribute* a = pointAttributes_[k];
        if (isSupplied(a, k, ids, values.size())) {
            a->insertEdgeBefore(index, values[k]);
        } else {
            a->insertEdgeBefore(index, numPoints);
        }
    }
}

void KxSpatialGraph::insertMultiplePointBlocks(const DArray<int>& indices,
                                               const DArray<DArray<Vec3f>>& points,
                                               const DArray<DArray<TypedData2D>>& values,
                                               const DArray<int>& ids) {
    for (int k = 0; k < pointAttributes_.size(); ++k) {
        PointAttribute* a = pointAttributes_[k];
        if (isSupplied(a, k, ids, values.size()) && values[k].size() == indices.size()) {
            a->insertValuesForMultipleEdges(indices, values[k]);
            continue;
        }
        DArray<TypedData2D> zeros(indices.size());
        for (int j = 0; j < indices.size(); ++j) {
            zeros[j].reset(a->getPrimType(), points[j].size(), a->getNumDataVar());
        }
        a->insertValuesForMultipleEdges(indices, zeros);
    }
}

void KxSpatialGraph::deleteAllAttributes() {
    deleteAll(vertexAttributes_);
    deleteAll(edgeAttributes_);
    deleteAll(pointAttributes_);
}

// ---- Attribute operations ------------------------------------------------------------

GraphAttribute* KxSpatialGraph::addAttribute(const char* name, Location loc, PrimType type, int nDataVar) {
    return addAttribute(name, loc, type, nDataVar, nullptr);
}

GraphAttribute* KxSpatialGraph::addAttribute(const char* name, Location loc, PrimType type, int nDataVar,
                                             const void* values) {
    if (loc != VERTEX && loc != EDGE && loc != POINT) {
        return nullptr;
    }
    if (GraphAttribute* existing = findAttribute(loc, name)) {
        if (existing->getNumDataVar() == nDataVar && existing->getPrimType() == type.getType()) {
            if (values && existing->size() > 0) {
                std::memcpy(existing->dataPtr(), values,
                            static_cast<size_t>(existing->size()) * existing->getElementSize());
            }
            return existing;
        }
        deleteAttribute(existing);
    }
    if (loc == POINT) {
        PointAttribute* a = new PointAttribute(this, name, type, nDataVar);
        a->init(points_.getOffsets(), values);
        pointAttributes_.append(a);
        return a;
    }
    EdgeVertexAttribute* a = new EdgeVertexAttribute(this, name, type, nDataVar);
    if (loc == EDGE) {
        a->init(getNumEdges(), values);
        edgeAttributes_.append(a);
    } else {
        a->init(getNumVertices(), values);
        vertexAttributes_.append(a);
    }
    return a;
}

GraphAttribute* KxSpatialGraph::findAttribute(Location loc, const char* name) const {
    switch (loc) {
        case VERTEX:
            return findIn(vertexAttributes_, name);
        case EDGE:
            return findIn(edgeAttributes_, name);
        case POINT:
            return findIn(pointAttributes_, name);
    }
    return nullptr;
}

EdgeVertexAttribute* KxSpatialGraph::findVertexAttribute(const char* name) const {
    return static_cast<EdgeVertexAttribute*>(findIn(vertexAttributes_, name));
}

EdgeVertexAttribute* KxSpatialGraph::findEdgeAttribute(const char* name) const {
    return static_cast<EdgeVertexAttribute*>(findIn(edgeAttributes_, name));
}

PointAttribute* KxSpatialGraph::findEdgePointAttribute(const char* name) const {
    return static_cast<PointAttribute*>(findIn(pointAttributes_, name));
}

int KxSpatialGraph::numAttributes(Location loc) const {
    switch (loc) {
        case VERTEX:
            return vertexAttributes_.size();
        case EDGE:
            return edgeAttributes_.size();
        case POINT:
            return pointAttributes_.size();
    }
    return 0;
}

GraphAttribute* KxSpatialGraph::attribute(Location loc, int i) const {
    switch (loc) {
        case VERTEX:
            return vertexAttributes_[i];
        case EDGE:
            return edgeAttributes_[i];
        case POINT:
            return pointAttributes_[i];
    }
    return nullptr;
}

int KxSpatialGraph::getAttributeLocation(const GraphAttribute* a) const {
    if (contains(vertexAttributes_, a)) {
        return VERTEX;
    }
    if (contains(edgeAttributes_, a)) {
        return EDGE;
    }
    return contains(pointAttributes_, a) ? POINT : -1;
}

void KxSpatialGraph::deleteAttribute(GraphAttribute* a) {
    if (!removeFrom(vertexAttributes_, a) && !removeFrom(edgeAttributes_, a)) {
        removeFrom(pointAttributes_, a);
    }
}

void KxSpatialGraph::deleteAttribute(Location loc, int i) {
    if (GraphAttribute* a = attribute(loc, i)) {
        deleteAttribute(a);
    }
}

void KxSpatialGraph::setEdgeAttributeValues(int e, const DArray<TypedElement>& v) {
    for (int k = 0; k < edgeAttributes_.size() && k < v.size(); ++k) {
        edgeAttributes_[k]->setValue(e, v[k]);
    }
}

void KxSpatialGraph::setPointAttributeValues(int e, const DArray<TypedData2D>& v) {
    for (int k = 0; k < pointAttributes_.size() && k < v.size(); ++k) {
        pointAttributes_[k]->setValues(e, v[k]);
    }
}
