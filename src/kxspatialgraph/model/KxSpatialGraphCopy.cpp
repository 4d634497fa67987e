// Whole-graph copy and merge of KxSpatialGraph.

#include "kxspatialgraph/model/KxSpatialGraph.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include <Inventor/SbMatrix.h>

#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/GraphAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

// Copies src's values into dst from value firstValue on, as far as both reach
// (the attributes have equal element sizes).
void copyValues(GraphAttribute* dst, int firstValue, const GraphAttribute* src) {
    int n = std::min(src->size(), dst->size() - firstValue);
    if (n <= 0) {
        return;
    }
    size_t elementSize = dst->getElementSize();
    std::memcpy(static_cast<unsigned char*>(dst->dataPtr()) + static_cast<size_t>(firstValue) * elementSize,
                src->dataPtr(), static_cast<size_t>(n) * elementSize);
}

struct LocationNames {
    KxSpatialGraph::Location location;
    const char* upper;    // "VERTEX"
    const char* capital;  // "Vertex"
    const char* lower;    // "vertex"
};

const LocationNames kLocations[] = {
    {KxSpatialGraph::VERTEX, "VERTEX", "Vertex", "vertex"},
    {KxSpatialGraph::EDGE, "EDGE", "Edge", "edge"},
    {KxSpatialGraph::POINT, "POINT", "Point", "point"},
};

// Every attribute of graph at that location needs a partner in other with the
// same name, primitive type and number of components. Prints the first
// mismatch.
bool attributesMatch(const KxSpatialGraph& graph, const KxSpatialGraph& other, const LocationNames& names) {
    for (int i = 0; i < graph.numAttributes(names.location); ++i) {
        const GraphAttribute* a = graph.attribute(names.location, i);
        const GraphAttribute* b = other.findAttribute(names.location, a->getName());
        if (!b) {
            theMsg->printf("Error: %s attribute %s not found. Aborting.", names.capital, a->getName());
            return false;
        }
        if (a->getPrimType() != b->getPrimType()) {
            theMsg->printf("Error: Primtype of %s attribute %s not matching. Aborting.", names.lower,
                           a->getName());
            return false;
        }
        if (a->getNumDataVar() != b->getNumDataVar()) {
            theMsg->printf("Error: number of values of %s attribute %s not matching. Aborting.", names.lower,
                           a->getName());
            return false;
        }
    }
    return true;
}

bool canMerge(const KxSpatialGraph& graph, const KxSpatialGraph& other) {
    for (const LocationNames& names : kLocations) {
        if (graph.numAttributes(names.location) != other.numAttributes(names.location)) {
            theMsg->printf("Error: number of %s attributes does not match. Aborting merge.", names.upper);
            return false;
        }
    }
    for (const LocationNames& names : kLocations) {
        if (!attributesMatch(graph, other, names)) {
            return false;
        }
    }
    return true;
}

}  // namespace

void KxSpatialGraph::copyFrom(const KxSpatialGraph* other) {
    if (other == this) {
        return;
    }
    clear();
    parameters().copyContentsFrom(other->parameters());
    setTransform(other->getTransform());

    setSizeHint(other->getNumVertices(), other->getNumEdges(), other->getTotalNumEdgePoints());
    for (int v = 0; v < other->getNumVertices(); ++v) {
        addVertex(other->getVertexCoords(v));
    }
    for (int e = 0; e < other->getNumEdges(); ++e) {
        int n = 0;
        const Vec3f* points = other->getEdgePoints(e, n);
        addEdge(other->getEdgeSource(e), other->getEdgeTarget(e), points, n);
    }

    // Point attributes first, then edge, then vertex ones: ids are handed out in that order.
    for (Location loc : {POINT, EDGE, VERTEX}) {
        for (int i = 0; i < other->numAttributes(loc); ++i) {
            const GraphAttribute* source = other->attribute(loc, i);
            GraphAttribute* copy =
                addAttribute(source->getName(), loc, source->getPrimType(), source->getNumDataVar());
            copyValues(copy, 0, source);
            KxParamBundle* group =
                other->getLabelGroup(source) ? parameters().getBundle(source->getName()) : nullptr;
            if (group) {
                addExistingLabelGroup(group);
            }
        }
    }
}

KxSpatialGraph* KxSpatialGraph::duplicate() const {
    KxSpatialGraph* copy = new KxSpatialGraph;
    copy->copyFrom(this);
    return copy;
}

bool KxSpatialGraph::merge(const KxSpatialGraph* other) {
    if (other == this) {
        // Reading from the graph while appending to it would chase its own tail.
        KxSpatialGraph copy;
        copy.copyFrom(this);
        return merge(&copy);
    }
    if (!canMerge(*this, *other)) {
        return false;
    }
    // Other's coordinates into this graph's frame: other's transformation,
    // then the inverse of ours. Equal transformations cancel exactly.
    SbMatrix toThisFrame = SbMatrix::identity();
    if (other->getTransform() != getTransform()) {
        SbMatrix inverse = getTransform().inverse();
        const float* m = inverse[0];
        // Coin answers a singular matrix's inverse with the matrix itself.
        if (getTransform().det4() == 0.0f ||
            !std::all_of(m, m + 16, [](float x) { return std::isfinite(x); })) {
            theMsg->printf(
                "Error: The transformation of the graph to merge into cannot be inverted. Aborting merge.");
            return false;
        }
        toThisFrame = other->getTransform();
        toThisFrame.multRight(inverse);
    }
    const int nV = getNumVertices();
    const int nE = getNumEdges();
    setSizeHint(nV + other->getNumVertices(), nE + other->getNumEdges(),
                getTotalNumEdgePoints() + other->getTotalNumEdgePoints());

    for (int v = 0; v < other->getNumVertices(); ++v) {
        addVertex(transformPoint(toThisFrame, other->getVertexCoords(v)));
    }
    std::vector<Vec3f> points;
    for (int e = 0; e < other->getNumEdges(); ++e) {
        int n = 0;
        const Vec3f* source = other->getEdgePoints(e, n);
        points.resize(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) {
            points[static_cast<size_t>(i)] = transformPoint(toThisFrame, source[i]);
        }
        addEdge(other->getEdgeSource(e) + nV, other->getEdgeTarget(e) + nV, points.data(), n);
    }

    for (EdgeVertexAttribute* a : vertexAttributes_) {
        copyValues(a, nV, other->findVertexAttribute(a->getName()));
    }
    for (EdgeVertexAttribute* a : edgeAttributes_) {
        copyValues(a, nE, other->findEdgeAttribute(a->getName()));
    }
    for (PointAttribute* a : pointAttributes_) {
        const DArray<int>& offsets = a->getOffsets();
        copyValues(a, nE < offsets.size() ? offsets[nE] : a->size(),
                   other->findEdgePointAttribute(a->getName()));
    }
    return true;
}
