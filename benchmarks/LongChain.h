#pragma once

#include <memory>

#include "kxspatialgraph/model/KxSpatialGraph.h"

// A chain of numEdges edges along x, each with pointsPerEdge points: the large
// graph the bulk-path benchmarks work on. With sizeHint the graph reserves its
// arrays up front, as a file reader does.
inline std::unique_ptr<KxSpatialGraph> makeLongChain(int numEdges, int pointsPerEdge, bool sizeHint = true) {
    auto g = std::make_unique<KxSpatialGraph>();
    if (sizeHint) {
        g->setSizeHint(numEdges + 1, numEdges, numEdges * pointsPerEdge);
    }
    for (int v = 0; v <= numEdges; ++v) {
        g->addVertex(Vec3f(static_cast<float>(v), 0, 0));
    }
    std::unique_ptr<Vec3f[]> points(new Vec3f[static_cast<size_t>(pointsPerEdge)]);
    for (int e = 0; e < numEdges; ++e) {
        for (int i = 0; i < pointsPerEdge; ++i) {
            points[i] = Vec3f(
                static_cast<float>(e) + static_cast<float>(i) / static_cast<float>(pointsPerEdge - 1), 0, 0);
        }
        g->addEdge(e, e + 1, points.get(), pointsPerEdge);
    }
    return g;
}
