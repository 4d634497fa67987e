#include "support/GraphFixtures.h"

#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace GraphFixtures {

DArray<Vec3f> straightPoints(const Vec3f& a, const Vec3f& b, int n) {
    DArray<Vec3f> points(n);
    for (int i = 0; i < n; ++i) {
        float t = static_cast<float>(i) / static_cast<float>(n - 1);
        points[i] = a + (b - a) * t;
    }
    points[0] = a;
    points[n - 1] = b;
    return points;
}

namespace {

void connect(KxSpatialGraph& g, int s, int t, int numPoints) {
    g.addEdge(s, t, straightPoints(g.getVertexCoords(s), g.getVertexCoords(t), numPoints));
}

}  // namespace

std::unique_ptr<KxSpatialGraph> makeChain(int n) {
    auto g = std::make_unique<KxSpatialGraph>();
    for (int i = 0; i < n; ++i) {
        g->addVertex(Vec3f(static_cast<float>(i), 0, 0));
    }
    for (int i = 0; i + 1 < n; ++i) {
        connect(*g, i, i + 1, 2 + i % 3);
    }
    return g;
}

std::unique_ptr<KxSpatialGraph> makeY() {
    auto g = std::make_unique<KxSpatialGraph>();
    g->addVertex(Vec3f(0, 0, 0));
    g->addVertex(Vec3f(-1, 2, 0));
    g->addVertex(Vec3f(1, 2, 0.5f));
    g->addVertex(Vec3f(2, 0, -1));
    connect(*g, 0, 1, 3);
    connect(*g, 0, 2, 4);
    connect(*g, 3, 0, 2);
    return g;
}

std::unique_ptr<KxSpatialGraph> makeLoop() {
    auto g = std::make_unique<KxSpatialGraph>();
    g->addVertex(Vec3f(0, 2, 0));
    g->addVertex(Vec3f(2, 2, 0));
    g->addVertex(Vec3f(1, 0, 0));
    connect(*g, 0, 1, 3);
    connect(*g, 1, 2, 2);
    connect(*g, 2, 0, 4);
    Vec3f c = g->getVertexCoords(2);
    g->addEdge(
        2, 2,
        DArray<Vec3f>{c, c + Vec3f(0.5f, -0.5f, 0), c + Vec3f(0, -1, 0), c + Vec3f(-0.5f, -0.5f, 0), c});
    return g;
}

std::unique_ptr<KxSpatialGraph> makeTwoComponents() {
    auto g = std::make_unique<KxSpatialGraph>();
    for (int i = 0; i < 3; ++i) {
        g->addVertex(Vec3f(static_cast<float>(i), 0, 0));
    }
    g->addVertex(Vec3f(0, 5, 0));
    g->addVertex(Vec3f(3, 5, 1));
    g->addVertex(Vec3f(9, 9, 9));
    connect(*g, 0, 1, 3);
    connect(*g, 1, 2, 2);
    connect(*g, 3, 4, 4);
    return g;
}

void addIdentityMarkers(KxSpatialGraph& graph) {
    auto* vertexMarker = static_cast<EdgeVertexAttribute*>(
        graph.addAttribute("VertexMarker", KxSpatialGraph::VERTEX, PrimType::INT32, 1));
    auto* vertexVec = static_cast<EdgeVertexAttribute*>(
        graph.addAttribute("VertexVec", KxSpatialGraph::VERTEX, PrimType::FLOAT32, 3));
    for (int v = 0; v < graph.getNumVertices(); ++v) {
        vertexMarker->setIntDataAtIdx(v, 1000 + v);
        float* f = vertexVec->floatDataAtIdx(v);
        f[0] = static_cast<float>(v);
        f[1] = -static_cast<float>(v);
        f[2] = 0.5f * static_cast<float>(v);
    }
    auto* edgeMarker = static_cast<EdgeVertexAttribute*>(
        graph.addAttribute("EdgeMarker", KxSpatialGraph::EDGE, PrimType::INT32, 1));
    auto* pointMarker = static_cast<PointAttribute*>(
        graph.addAttribute("PointMarker", KxSpatialGraph::POINT, PrimType::INT32, 1));
    for (int e = 0; e < graph.getNumEdges(); ++e) {
        edgeMarker->setIntDataAtIdx(e, 2000 + e);
        for (int p = 0; p < graph.getNumEdgePoints(e); ++p) {
            pointMarker->setIntDataAtPoint(e, p, 10000 * e + p);
        }
    }
}

}  // namespace GraphFixtures
