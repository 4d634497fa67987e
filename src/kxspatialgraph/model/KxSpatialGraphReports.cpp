// Consistency check and text reports of KxSpatialGraph.

#include <algorithm>
#include <cstdint>
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

// Each check below tests one invariant, prints one line per fault and
// answers false if it found any. All of them together run in time linear
// in the vertices, edges and points, with a few flat arrays and no
// allocation per vertex, so that graphs of millions of edges are checked
// after every load.
bool KxSpatialGraph::isConsistent() const {
    bool ok = checkEdgeEndsInRange();
    ok = checkIncidenceLists() && ok;
    ok = checkEdgePointCounts() && ok;
    ok = checkEndPointsMeetVertices() && ok;
    ok = checkValueCounts(vertexAttributes_, getNumVertices(), "vertices", "vertex") && ok;
    ok = checkValueCounts(edgeAttributes_, getNumEdges(), "edges", "edge") && ok;
    ok = checkPointValueCounts() && ok;
    return ok;
}

bool KxSpatialGraph::checkEdgeEndsInRange() const {
    bool ok = true;
    for (int e = 0; e < getNumEdges(); ++e) {
        if (!isVertex(getEdgeSource(e))) {
            theMsg->printf("Error: Edge source out of range: Edge: %d. Source: %d. #vertices: %d.", e,
                           getEdgeSource(e), getNumVertices());
            ok = false;
        }
        if (!isVertex(getEdgeTarget(e))) {
            theMsg->printf("Error: Edge target out of range: Edge: %d. Target: %d. #vertices: %d.", e,
                           getEdgeTarget(e), getNumVertices());
            ok = false;
        }
    }
    return ok;
}

int KxSpatialGraph::incidenceMultiplicity(int e, int v) const {
    return (getEdgeSource(e) == v ? 1 : 0) + (getEdgeTarget(e) == v ? 1 : 0);
}

int64_t KxSpatialGraph::numEdgeEndsBelow(int numLists) const {
    int64_t ends = 0;
    for (const SpatialGraphEdge& edge : edges_) {
        ends += (edge.getSource() >= 0 && edge.getSource() < numLists ? 1 : 0) +
                (edge.getTarget() >= 0 && edge.getTarget() < numLists ? 1 : 0);
    }
    return ends;
}

// How many entries each vertex's list must have: one per edge end at it.
std::vector<int> KxSpatialGraph::expectedDegrees() const {
    std::vector<int> degree(static_cast<size_t>(getNumVertices()), 0);
    for (const SpatialGraphEdge& edge : edges_) {
        for (int v : {edge.getSource(), edge.getTarget()}) {
            if (isVertex(v)) {
                ++degree[static_cast<size_t>(v)];
            }
        }
    }
    return degree;
}

// The list of v holds exactly its expected edges, each as often as it has
// ends at v, when it is as long as the expected degree and every listed
// edge is listed as often as it has ends at v.
bool KxSpatialGraph::incidenceListMatches(int v, int degree, std::vector<uint8_t>& counts) const {
    return incidence_[v].size() == degree && incidenceEntriesMatch(v, counts);
}

// Every edge listed for v is an edge and is listed as often as it has ends at
// v. counts is per-edge scratch, all zero before and after.
bool KxSpatialGraph::incidenceEntriesMatch(int v, std::vector<uint8_t>& counts) const {
    const IncidenceList& list = incidence_[v];
    for (int e : list) {
        if (e < 0 || e >= getNumEdges()) {
            return false;
        }
    }
    for (int e : list) {
        uint8_t& c = counts[static_cast<size_t>(e)];
        c = c < 3 ? c + 1 : c;
    }
    bool ok = true;
    for (int e : list) {
        ok = ok && counts[static_cast<size_t>(e)] == incidenceMultiplicity(e, v);
    }
    for (int e : list) {
        counts[static_cast<size_t>(e)] = 0;
    }
    return ok;
}

bool KxSpatialGraph::checkIncidenceLists() const {
    bool ok = true;
    if (incidence_.size() != getNumVertices()) {
        theMsg->printf("Error: Incorrect size of incidence list: %d (#vertices: %d)", incidence_.size(),
                       getNumVertices());
        ok = false;
    }
    // Every list holding only its own edges, each as often as it has ends
    // there, and the lists together as long as there are edge ends at their
    // vertices, means every list is complete. Only when that fails are the
    // expected degrees counted, to find the faulty lists.
    const int numLists = std::min(getNumVertices(), incidence_.size());
    std::vector<uint8_t> counts(static_cast<size_t>(getNumEdges()), 0);
    int64_t listed = 0;
    bool entriesMatch = true;
    for (int v = 0; v < numLists; ++v) {
        listed += incidence_[v].size();
        entriesMatch = incidenceEntriesMatch(v, counts) && entriesMatch;
    }
    if (entriesMatch && listed == numEdgeEndsBelow(numLists)) {
        return ok;
    }
    std::vector<int> degree = expectedDegrees();
    std::vector<int> faulty;
    for (int v = 0; v < numLists; ++v) {
        if (!incidenceListMatches(v, degree[static_cast<size_t>(v)], counts)) {
            faulty.push_back(v);
        }
    }
    if (!faulty.empty()) {
        reportIncidenceFaults(faulty, degree);
        ok = false;
    }
    return ok;
}

// Rebuilds the expected lists of every vertex in one flat array (edges
// ascending within each, as the edges come), and for each faulty vertex
// compares them with its stored list, both sorted, position by position.
void KxSpatialGraph::reportIncidenceFaults(const std::vector<int>& faulty,
                                           const std::vector<int>& degree) const {
    std::vector<int> offsets(degree.size() + 1, 0);
    for (size_t v = 0; v < degree.size(); ++v) {
        offsets[v + 1] = offsets[v] + degree[v];
    }
    std::vector<int> expected(static_cast<size_t>(offsets.back()));
    std::vector<int> fill(offsets.begin(), offsets.end() - 1);
    for (int e = 0; e < getNumEdges(); ++e) {
        for (int v : {getEdgeSource(e), getEdgeTarget(e)}) {
            if (isVertex(v)) {
                expected[static_cast<size_t>(fill[static_cast<size_t>(v)]++)] = e;
            }
        }
    }
    std::vector<int> stored;
    for (int v : faulty) {
        stored.assign(incidence_[v].begin(), incidence_[v].end());
        std::sort(stored.begin(), stored.end());
        const int* should = expected.data() + offsets[static_cast<size_t>(v)];
        const int shouldSize = degree[static_cast<size_t>(v)];
        if (static_cast<int>(stored.size()) != shouldSize) {
            theMsg->printf(
                "Error: Inconsistent incident list length for vertex %d. IncidentEdges: %d. "
                "tmpIncidentEdges: %d.",
                v, static_cast<int>(stored.size()), shouldSize);
        }
        for (int i = 0; i < std::min(static_cast<int>(stored.size()), shouldSize); ++i) {
            if (stored[static_cast<size_t>(i)] != should[i]) {
                theMsg->printf("Error: Inconsistent incidence list item for vertex %d: is: %d. should be: %d",
                               v, stored[static_cast<size_t>(i)], should[i]);
            }
        }
    }
}

bool KxSpatialGraph::checkEdgePointCounts() const {
    bool ok = true;
    for (int e = 0; e < getNumEdges(); ++e) {
        if (getNumEdgePoints(e) < 2) {
            theMsg->printf("Error: Edge %d has %d points. Should be at least 2.", e, getNumEdgePoints(e));
            ok = false;
        }
    }
    return ok;
}

bool KxSpatialGraph::checkEndPointsMeetVertices() const {
    bool ok = true;
    for (int e = 0; e < getNumEdges(); ++e) {
        int n = getNumEdgePoints(e);
        if (n > 0) {
            ok = endPointMatches("source", getEdgeSource(e), e, getEdgePoint(e, 0)) && ok;
            ok = endPointMatches("target", getEdgeTarget(e), e, getEdgePoint(e, n - 1)) && ok;
        }
    }
    return ok;
}

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

bool KxSpatialGraph::checkValueCounts(const DArray<EdgeVertexAttribute*>& list, int count,
                                      const char* elements, const char* element) const {
    bool ok = true;
    for (const EdgeVertexAttribute* a : list) {
        if (a->size() != count) {
            theMsg->printf("Error: unequal number of %s (%d) and %s values (%d) for attribute %s", elements,
                           count, element, a->size(), a->getName());
            ok = false;
        }
    }
    return ok;
}

bool KxSpatialGraph::checkPointValueCounts() const {
    const int numPoints = getTotalNumEdgePoints();
    bool ok = true;
    for (const PointAttribute* a : pointAttributes_) {
        if (a->size() != numPoints) {
            theMsg->printf("Error: unequal number of edge points (%d) and point values (%d) for attribute %s",
                           numPoints, a->size(), a->getName());
            // Deliberate: the remaining point attributes are not examined.
            return false;
        }
        for (int e = 0; e < getNumEdges(); ++e) {
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
    for (Location loc : {VERTEX, EDGE, POINT}) {
        for (int i = 0; i < numAttributes(loc); ++i) {
            const GraphAttribute* a = attribute(loc, i);
            const HierarchicalLabels* group = getLabelGroup(a);
            tags.add("Attribute:", "%s (%s, %s, %d)%s%s", a->getName(), locationName(loc),
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
