#include "kxspatialgraph/analysis/LineEnds.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace {

// Bit patterns that are equal exactly when the floats compare equal (NaN excluded).
uint32_t equalityBits(float f) {
    if (f == 0.0f) {
        f = 0.0f;  // -0 compares equal to 0
    }
    uint32_t bits = 0;
    std::memcpy(&bits, &f, sizeof bits);
    return bits;
}

struct VertexKey {
    uint32_t x, y, z;
    int vertex;
    bool operator<(const VertexKey& o) const {
        if (x != o.x)
            return x < o.x;
        if (y != o.y)
            return y < o.y;
        return z < o.z;
    }
    bool samePlace(const VertexKey& o) const { return x == o.x && y == o.y && z == o.z; }
};

}  // namespace

LineEnds::LineEnds(const KxSpatialGraph* graph) {
    int numVertices = graph->getNumVertices();
    std::vector<VertexKey> keys;
    keys.reserve(static_cast<size_t>(numVertices));
    for (int v = 0; v < numVertices; ++v) {
        Vec3f c = graph->getVertexCoords(v);
        if (!std::isnan(c.x) && !std::isnan(c.y) && !std::isnan(c.z)) {
            keys.push_back({equalityBits(c.x), equalityBits(c.y), equalityBits(c.z), v});
        }
    }
    std::sort(keys.begin(), keys.end());
    DArray<int> vertexPosition(numVertices, -1);
    for (size_t k = 0; k < keys.size(); ++k) {
        if (k > 0 && !keys[k].samePlace(keys[k - 1])) {
            ++numPositions_;
        }
        vertexPosition[keys[k].vertex] = numPositions_;
    }
    if (!keys.empty()) {
        ++numPositions_;
    }
    numPlaces_ = numPositions_;

    auto positionOf = [&](int v) {
        bool placed = v >= 0 && v < numVertices && vertexPosition[v] >= 0;
        return placed ? vertexPosition[v] : numPositions_++;
    };
    int numEdges = graph->getNumEdges();
    source_.resize(numEdges);
    target_.resize(numEdges);
    selfLoop_.resize(numEdges);
    for (int e = 0; e < numEdges; ++e) {
        int s = graph->getEdgeSource(e);
        int t = graph->getEdgeTarget(e);
        source_[e] = positionOf(s);
        target_[e] = positionOf(t);
        selfLoop_[e] = s == t;
    }
}
