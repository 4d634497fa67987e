#include "support/GraphComparison.h"

#include <algorithm>
#include <cstring>
#include <sstream>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/model/GraphAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

const char* const kLocationNames[3] = {"vertex", "edge", "point"};

std::string str(const Vec3f& v) {
    std::ostringstream out;
    out << "(" << v.x << ", " << v.y << ", " << v.z << ")";
    return out.str();
}

template <class T>
std::string list(const std::vector<T>& values) {
    std::ostringstream out;
    out << "[";
    for (size_t i = 0; i < values.size(); ++i) {
        out << (i ? ", " : "") << values[i];
    }
    out << "]";
    return out.str();
}

std::string compareAttribute(const char* location, int k, const GraphSnapshot::Attribute& a,
                             const GraphSnapshot::Attribute& b, const GraphComparisonOptions& options) {
    std::ostringstream out;
    out << location << " attribute " << k << " ";
    if (a.name != b.name) {
        return out.str() + "name: " + a.name + " vs " + b.name;
    }
    out << a.name << ": ";
    if (options.compareAttributeIds && a.id != b.id) {
        return out.str() + "id " + std::to_string(a.id) + " vs " + std::to_string(b.id);
    }
    if (a.primType != b.primType || a.nDataVar != b.nDataVar) {
        return out.str() + "type/components differ";
    }
    if (a.offsets != b.offsets) {
        return out.str() + "point offsets " + list(a.offsets) + " vs " + list(b.offsets);
    }
    if (a.bytes.size() != b.bytes.size()) {
        return out.str() + std::to_string(a.bytes.size()) + " vs " + std::to_string(b.bytes.size()) +
               " bytes";
    }
    auto mismatch = std::mismatch(a.bytes.begin(), a.bytes.end(), b.bytes.begin());
    if (mismatch.first != a.bytes.end()) {
        return out.str() + "bytes differ at offset " + std::to_string(mismatch.first - a.bytes.begin());
    }
    return "";
}

}  // namespace

GraphSnapshot takeSnapshot(const KxSpatialGraph& g) {
    GraphSnapshot s;
    for (int v = 0; v < g.getNumVertices(); ++v) {
        s.coords.push_back(g.getVertexCoords(v));
        const auto& list = g.getIncidentEdges(v);
        s.incidence.emplace_back(list.begin(), list.end());
    }
    for (int e = 0; e < g.getNumEdges(); ++e) {
        s.edges.emplace_back(g.getEdgeSource(e), g.getEdgeTarget(e));
        int n = 0;
        const Vec3f* p = g.getEdgePoints(e, n);
        s.points.emplace_back(p, p + n);
    }
    for (int loc = 0; loc < 3; ++loc) {
        auto location = static_cast<KxSpatialGraph::Location>(loc);
        for (int k = 0; k < g.numAttributes(location); ++k) {
            const GraphAttribute* a = g.attribute(location, k);
            GraphSnapshot::Attribute snap;
            snap.name = a->getName();
            snap.id = a->getId();
            snap.primType = a->getPrimType().getType();
            snap.nDataVar = a->getNumDataVar();
            const unsigned char* bytes = static_cast<const unsigned char*>(a->dataPtr());
            snap.bytes.assign(
                bytes, bytes + static_cast<size_t>(a->size()) * static_cast<size_t>(a->getElementSize()));
            if (location == KxSpatialGraph::POINT) {
                const auto& offsets = static_cast<const PointAttribute*>(a)->getOffsets();
                snap.offsets.assign(offsets.begin(), offsets.end());
            }
            s.attributes[loc].push_back(std::move(snap));
        }
    }
    for (const char* name : g.getLabelGroups().keys()) {
        s.labelGroups.push_back(name);
    }
    std::sort(s.labelGroups.begin(), s.labelGroups.end());
    s.parameters = g.parameters().toText();
    std::memcpy(s.transform, g.getTransform().getValue(), sizeof(s.transform));
    s.hasFixedBox = g.hasFixedBoundingBox();
    return s;
}

std::string describeDifference(const GraphSnapshot& a, const GraphSnapshot& b,
                               const GraphComparisonOptions& options) {
    if (a.coords.size() != b.coords.size()) {
        return "vertex count " + std::to_string(a.coords.size()) + " vs " + std::to_string(b.coords.size());
    }
    if (a.edges.size() != b.edges.size()) {
        return "edge count " + std::to_string(a.edges.size()) + " vs " + std::to_string(b.edges.size());
    }
    for (size_t v = 0; v < a.coords.size(); ++v) {
        if (a.coords[v] != b.coords[v]) {
            return "vertex " + std::to_string(v) + " coords " + str(a.coords[v]) + " vs " + str(b.coords[v]);
        }
    }
    for (size_t e = 0; e < a.edges.size(); ++e) {
        if (a.edges[e] != b.edges[e]) {
            return "edge " + std::to_string(e) + ": (" + std::to_string(a.edges[e].first) + ", " +
                   std::to_string(a.edges[e].second) + ") vs (" + std::to_string(b.edges[e].first) + ", " +
                   std::to_string(b.edges[e].second) + ")";
        }
    }
    for (size_t v = 0; v < a.incidence.size(); ++v) {
        std::vector<int> x = a.incidence[v];
        std::vector<int> y = b.incidence[v];
        if (!options.exactIncidenceOrder) {
            std::sort(x.begin(), x.end());
            std::sort(y.begin(), y.end());
        }
        if (x != y) {
            return "incidence list of vertex " + std::to_string(v) + ": " + list(a.incidence[v]) + " vs " +
                   list(b.incidence[v]);
        }
    }
    for (size_t e = 0; e < a.points.size(); ++e) {
        if (a.points[e].size() != b.points[e].size()) {
            return "edge " + std::to_string(e) + " has " + std::to_string(a.points[e].size()) + " vs " +
                   std::to_string(b.points[e].size()) + " points";
        }
        for (size_t p = 0; p < a.points[e].size(); ++p) {
            if (a.points[e][p] != b.points[e][p]) {
                return "edge " + std::to_string(e) + " point " + std::to_string(p) + ": " +
                       str(a.points[e][p]) + " vs " + str(b.points[e][p]);
            }
        }
    }
    for (int loc = 0; loc < 3; ++loc) {
        const auto& x = a.attributes[loc];
        const auto& y = b.attributes[loc];
        if (x.size() != y.size()) {
            return std::string(kLocationNames[loc]) + " attribute count " + std::to_string(x.size()) +
                   " vs " + std::to_string(y.size());
        }
        for (size_t k = 0; k < x.size(); ++k) {
            std::string d = compareAttribute(kLocationNames[loc], static_cast<int>(k), x[k], y[k], options);
            if (!d.empty()) {
                return d;
            }
        }
    }
    if (a.labelGroups != b.labelGroups) {
        return "label groups " + list(a.labelGroups) + " vs " + list(b.labelGroups);
    }
    if (a.parameters != b.parameters) {
        return "parameters differ:\n" + a.parameters + "\nvs\n" + b.parameters;
    }
    // Bit for bit: a copy or round trip must reproduce the matrix exactly.
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
    if (std::memcmp(a.transform, b.transform, sizeof(a.transform)) != 0) {
        return "transformations differ";
    }
    if (a.hasFixedBox != b.hasFixedBox) {
        return "fixed bounding box flag differs";
    }
    return "";
}

std::string describeDifference(const KxSpatialGraph& expected, const KxSpatialGraph& actual,
                               const GraphComparisonOptions& options) {
    return describeDifference(takeSnapshot(expected), takeSnapshot(actual), options);
}

::testing::AssertionResult sameGraph(const GraphSnapshot& expected, const KxSpatialGraph& actual,
                                     const GraphComparisonOptions& options) {
    std::string d = describeDifference(expected, takeSnapshot(actual), options);
    if (d.empty()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "graphs differ: " << d;
}

::testing::AssertionResult graphIsConsistent(const KxSpatialGraph& graph) {
    KxMessageCapture capture;
    if (graph.isConsistent()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "isConsistent() failed:\n" << capture.text();
}
