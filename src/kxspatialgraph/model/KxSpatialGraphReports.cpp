// Consistency check and text reports of KxSpatialGraph.

#include <algorithm>
#include <cstring>
#include <vector>

#include "korva/core/KxApplication.h"
#include "korva/core/KxInfoTags.h"
#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

const float kEndPointTolerance = 0.0001f;

}  // namespace

bool KxSpatialGraph::endPointMatches(const char* end, int v, int e, const Vec3f& point) const {
    if (!isVertex(v) || coords_[v].distance(point) <= kEndPointTolerance) {
        return true;
    }
    const Vec3f& c = coords_[v];
    theMsg->printf(
        "Error: %s vertex %d coordinates (%.5f, %.5f, %.5f) of edge %d do not equal point coords "
        "(%.5f, %.5f, %.5f)",
        end, v, c.x, c.y, c.z, e, point.x, point.y, point.z);
    return false;
}

bool KxSpatialGraph::isConsistent() const {
    bool ok = true;
    int numVertices = getNumVertices();
    int numEdges = getNumEdges();

    for (int e = 0; e < numEdges; ++e) {
        int s = getEdgeSource(e);
        int t = getEdgeTarget(e);
        if (!isVertex(s)) {
            theMsg->printf("Error: Edge source out of range: Edge: %d. Source: %d. #vertices: %d.", e, s,
                           numVertices);
            ok = false;
        }
        if (!isVertex(t)) {
            theMsg->printf("Error: Edge target out of range: Edge: %d. Target: %d. #vertices: %d.", e, t,
                           numVertices);
            ok = false;
        }
    }

    std::vector<std::vector<int>> rebuilt(static_cast<size_t>(numVertices));
    for (int e = 0; e < numEdges; ++e) {
        for (int v : {getEdgeSource(e), getEdgeTarget(e)}) {
            if (isVertex(v)) {
                rebuilt[static_cast<size_t>(v)].push_back(e);
            }
        }
    }
    if (incidence_.size() != numVertices) {
        theMsg->printf("Error: Incorrect size of incidence list: %d (#vertices: %d)", incidence_.size(),
                       numVertices);
        ok = false;
    }
    for (int v = 0; v < std::min(numVertices, incidence_.size()); ++v) {
        std::vector<int> stored(incidence_[v].begin(), incidence_[v].end());
        std::vector<int>& expected = rebuilt[static_cast<size_t>(v)];
        if (stored.size() != expected.size()) {
            theMsg->printf(
                "Error: Inconsistent incident list length for vertex %d. IncidentEdges: %d. "
                "tmpIncidentEdges: %d.",
                v, static_cast<int>(stored.size()), static_cast<int>(expected.size()));
            ok = false;
        }
        std::sort(stored.begin(), stored.end());
        std::sort(expected.begin(), expected.end());
        for (size_t i = 0; i < std::min(stored.size(), expected.size()); ++i) {
            if (stored[i] != expected[i]) {
                theMsg->printf("Error: Inconsistent incidence list item for vertex %d: is: %d. should be: %d",
                               v, stored[i], expected[i]);
                ok = false;
            }
        }
    }

    for (int e = 0; e < numEdges; ++e) {
        if (getNumEdgePoints(e) < 2) {
            theMsg->printf("Error: Edge %d has %d points. Should be at least 2.", e, getNumEdgePoints(e));
            ok = false;
        }
    }

    for (int e = 0; e < numEdges; ++e) {
        int n = getNumEdgePoints(e);
        if (n == 0) {
            continue;
        }
        int s = getEdgeSource(e);
        int t = getEdgeTarget(e);
        Vec3f first = getEdgePoint(e, 0);
        Vec3f last = getEdgePoint(e, n - 1);
        ok = endPointMatches("source", s, e, first) && ok;
        ok = endPointMatches("target", t, e, last) && ok;
    }

    for (const EdgeVertexAttribute* a : vertexAttributes_) {
        if (a->size() != numVertices) {
            theMsg->printf("Error: unequal number of vertices (%d) and vertex values (%d) for attribute %s",
                           numVertices, a->size(), a->getName());
            ok = false;
        }
    }
    for (const EdgeVertexAttribute* a : edgeAttributes_) {
        if (a->size() != numEdges) {
            theMsg->printf("Error: unequal number of edges (%d) and edge values (%d) for attribute %s",
                           numEdges, a->size(), a->getName());
            ok = false;
        }
    }
    int numPoints = getTotalNumEdgePoints();
    for (const PointAttribute* a : pointAttributes_) {
        if (a->size() != numPoints) {
            theMsg->printf("Error: unequal number of edge points (%d) and point values (%d) for attribute %s",
                           numPoints, a->size(), a->getName());
            ok = false;
            // Deliberate: the remaining point attributes are not examined.
            break;
        }
        for (int e = 0; e < numEdges; ++e) {
            int values = e < a->getNumEdges() ? a->getNumEdgePoints(e) : 0;
            if (values != getNumEdgePoints(e)) {
                theMsg->printf(
                    "Error: unequal number of edge points (%d) and point values (%d) for edge %d of "
                    "attribute %s",
                    getNumEdgePoints(e), values, e, a->getName());
                ok = false;
                break;
            }
        }
    }
    return ok;
}

void KxSpatialGraph::info(KxInfoTags& tags) const {
    KxSpatialData::info(tags);
    bool korva = std::strcmp(KxApplication::getSkinName(), "Korva") == 0;
    tags.add(korva ? "Nodes:" : "Vertices:", "%d", getNumVertices());
    tags.add(korva ? "Segments:" : "Edges:", "%d", getNumEdges());
    tags.add("Points:", "%d", getTotalNumEdgePoints());
    static const char* const locations[] = {"VERTEX", "EDGE", "POINT"};
    for (int loc = VERTEX; loc <= POINT; ++loc) {
        for (int i = 0; i < numAttributes(static_cast<Location>(loc)); ++i) {
            const GraphAttribute* a = attribute(static_cast<Location>(loc), i);
            const HierarchicalLabels* group = getLabelGroup(a);
            tags.add("Attribute:", "%s (%s, %s, %d)%s%s", a->getName(), locations[loc],
                     a->getPrimType() == PrimType::INT32 ? "int" : "float", a->getNumDataVar(),
                     group ? ", label group " : "", group ? group->getLabelGroupName() : "");
        }
    }
    labelGroups_.forEach([&tags](const char* name, const HierarchicalLabels* group) {
        // The group's root is no label of its own.
        tags.add("Label group:", "%s (%d labels)", name, group->getNumLabels() - 1);
    });
}

String KxSpatialGraph::printEdges() const {
    String text("Edges\n");
    for (int e = 0; e < getNumEdges(); ++e) {
        text.appendf("Edge %d (%d--%d)\n", e, getEdgeSource(e), getEdgeTarget(e));
    }
    theMsg->print(text.std());
    return text;
}

String KxSpatialGraph::printIncidentEdges() const {
    String text("IncidentEdges\n");
    for (int v = 0; v < incidence_.size(); ++v) {
        text.appendf("Vertex %d\n", v);
        for (int e : incidence_[v]) {
            text.appendf("%d\n", e);
        }
    }
    theMsg->print(text.std());
    return text;
}

String KxSpatialGraph::getLoggingInfo() const {
    return String::format("%d, %d", getNumEdges(), getNumVertices());
}
