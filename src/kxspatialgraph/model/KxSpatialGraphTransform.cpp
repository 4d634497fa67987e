// Transformation and bounding boxes of KxSpatialGraph.

#include "kxspatialgraph/model/KxSpatialGraph.h"

#include <limits>

#include <Inventor/SbMatrix.h>

#include "kxspatialgraph/selection/SpatialGraphSelection.h"

void KxSpatialGraph::applyTransform() {
    const SbMatrix m = getTransform();
    for (int v = 0; v < getNumVertices(); ++v) {
        setVertexCoords(v, transformPoint(m, getVertexCoords(v)));
    }
    for (int e = 0; e < getNumEdges(); ++e) {
        for (int i = 0; i < getNumEdgePoints(e); ++i) {
            setEdgePoint(e, i, transformPoint(m, getEdgePoint(e, i)));
        }
    }
    setTransform(SbMatrix::identity());
}

void KxSpatialGraph::computeBoundingBox(float* box, bool transformed) const {
    // Deliberate: a graph with vertices but no edges reports the stored box.
    if (getNumEdges() == 0 || hasFixedBoundingBox()) {
        std::copy(getStoredBoundingBox().data(), getStoredBoundingBox().data() + 6, box);
        return;
    }
    const SbMatrix m = getTransform();
    Box3f result;  // min 3.4028235e38, max -3.4028235e38 on each axis
    auto extend = [&](const Vec3f& p) { result.extendBy(transformed ? transformPoint(m, p) : p); };
    for (int e = 0; e < getNumEdges(); ++e) {
        int n = 0;
        const Vec3f* points = getEdgePoints(e, n);
        for (int i = 0; i < n; ++i) {
            extend(points[i]);
        }
    }
    for (int v = 0; v < getNumVertices(); ++v) {
        extend(getVertexCoords(v));
    }
    std::copy(result.data(), result.data() + 6, box);
}

Box3f KxSpatialGraph::getBoundingBoxOfSelection(const SpatialGraphSelection& s) const {
    const float inf = std::numeric_limits<float>::infinity();
    Box3f box(inf, -inf, inf, -inf, inf, -inf);
    const int numEdges = std::min(s.getNumEdges(), getNumEdges());
    for (int e = 0; e < numEdges; ++e) {
        if (s.isSelectedEdge(e)) {
            int n = 0;
            const Vec3f* points = getEdgePoints(e, n);
            for (int i = 0; i < n; ++i) {
                box.extendBy(points[i]);
            }
        }
    }
    const int numVertices = std::min(s.getNumVertices(), getNumVertices());
    for (int v = 0; v < numVertices; ++v) {
        if (s.isSelectedVertex(v)) {
            box.extendBy(getVertexCoords(v));
        }
    }
    // List entries outside the graph are skipped.
    for (int k = 0; k < s.getNumSelectedPoints(); ++k) {
        SpatialGraphPoint p = s.getSelectedPoint(k);
        if (p.edgeNum >= 0 && p.edgeNum < getNumEdges() && p.pointNum >= 0 &&
            p.pointNum < getNumEdgePoints(p.edgeNum)) {
            box.extendBy(getEdgePoint(p.edgeNum, p.pointNum));
        }
    }
    return box;
}

Vec3f KxSpatialGraph::transformPoint(const SbMatrix& m, const Vec3f& p) {
    SbVec3f out;
    m.multVecMatrix(SbVec3f(p), out);
    return Vec3f(out);
}
