#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "support/GraphFixtures.h"
#include "support/KxSpatialGraphTestAccess.h"

using namespace GraphFixtures;

namespace {

struct BrokenGraphCase {
    const char* name;
    std::function<void(KxSpatialGraph&)> breakIt;
    std::vector<std::string> expectedLines;
};

// Each case breaks one invariant of a marked chain 0 -[2]- 1 -[3]- 2 and
// lists every line isConsistent() must print, in order.
std::vector<BrokenGraphCase> brokenGraphCases() {
    return {
        {"source out of range",
         [](KxSpatialGraph& g) { g.removeMultipleVertices(DArray<int>{0}); },
         {"Error: Edge source out of range: Edge: 0. Source: -1. #vertices: 2."}},
        {"target out of range",
         [](KxSpatialGraph& g) {
             g.addEdge(0, 7, DArray<Vec3f>{g.getVertexCoords(0), Vec3f(5, 5, 5)});
         },
         {"Error: Edge target out of range: Edge: 2. Target: 7. #vertices: 3."}},
        {"number of incidence lists",
         [](KxSpatialGraph& g) {
             KxSpatialGraphTestAccess::incidence(g).append(KxSpatialGraph::IncidenceList());
         },
         {"Error: Incorrect size of incidence list: 4 (#vertices: 3)"}},
        {"incidence list length",
         [](KxSpatialGraph& g) { KxSpatialGraphTestAccess::incidence(g)[1].append(5); },
         {"Error: Inconsistent incident list length for vertex 1. IncidentEdges: 3. tmpIncidentEdges: 2."}},
        {"incidence list item",
         [](KxSpatialGraph& g) { KxSpatialGraphTestAccess::incidence(g)[1][1] = 0; },
         {"Error: Inconsistent incidence list item for vertex 1: is: 0. should be: 1"}},
        {"incidence list naming an edge that does not exist",
         [](KxSpatialGraph& g) { KxSpatialGraphTestAccess::incidence(g)[1][1] = 9; },
         {"Error: Inconsistent incidence list item for vertex 1: is: 9. should be: 1"}},
        {"self-loop listed once, its neighbour twice",
         [](KxSpatialGraph& g) {
             g.addEdge(2, 2);
             KxSpatialGraphTestAccess::incidence(g)[2][2] = 1;
         },
         {"Error: Inconsistent incidence list item for vertex 2: is: 1. should be: 2"}},
        {"edge with one point, other edges still checked",
         [](KxSpatialGraph& g) {
             g.setEdgePoints(0, DArray<Vec3f>{g.getVertexCoords(0)});
             g.setVertexCoords(2, Vec3f(2, 1, 0));
         },
         {"Error: Edge 0 has 1 points. Should be at least 2.",
          "Error: target vertex 1 coordinates (1.00000, 0.00000, 0.00000) of edge 0 do not equal "
          "point coords (0.00000, 0.00000, 0.00000)",
          "Error: target vertex 2 coordinates (2.00000, 1.00000, 0.00000) of edge 1 do not equal "
          "point coords (2.00000, 0.00000, 0.00000)"}},
        {"moved vertex",
         [](KxSpatialGraph& g) { g.setVertexCoords(1, Vec3f(1, 0.5f, 0)); },
         {"Error: target vertex 1 coordinates (1.00000, 0.50000, 0.00000) of edge 0 do not equal "
          "point coords (1.00000, 0.00000, 0.00000)",
          "Error: source vertex 1 coordinates (1.00000, 0.50000, 0.00000) of edge 1 do not equal "
          "point coords (1.00000, 0.00000, 0.00000)"}},
        {"vertex moved within the tolerance",
         [](KxSpatialGraph& g) { g.setVertexCoords(1, Vec3f(1, 0.00009f, 0)); },
         {}},
        {"vertex values",
         [](KxSpatialGraph& g) { g.findVertexAttribute("VertexVec")->append(1); },
         {"Error: unequal number of vertices (3) and vertex values (4) for attribute VertexVec"}},
        {"edge values",
         [](KxSpatialGraph& g) { g.findEdgeAttribute("EdgeMarker")->removeLast(1); },
         {"Error: unequal number of edges (2) and edge values (1) for attribute EdgeMarker"}},
        {"point value total stops the point attribute checks",
         [](KxSpatialGraph& g) {
             g.addAttribute("Second", KxSpatialGraph::POINT, PrimType::FLOAT32, 2);
             g.findEdgePointAttribute("PointMarker")->addEdge(3);
             g.findEdgePointAttribute("Second")->addEdge(1);
         },
         {"Error: unequal number of edge points (5) and point values (8) for attribute PointMarker"}},
        {"point values per edge, each attribute once",
         [](KxSpatialGraph& g) {
             g.addAttribute("Second", KxSpatialGraph::POINT, PrimType::FLOAT32, 2);
             PointAttribute* first = g.findEdgePointAttribute("PointMarker");
             first->removeEdgePoints(0, 0, 1);
             first->insertEdgePoints(1, 0, 1);
             PointAttribute* second = g.findEdgePointAttribute("Second");
             second->insertEdgePoints(0, 0, 1);
             second->removeEdgePoints(1, 0, 1);
         },
         {"Error: unequal number of edge points (2) and point values (1) for edge 0 of attribute PointMarker",
          "Error: unequal number of edge points (2) and point values (3) for edge 0 of attribute Second"}},
    };
}

}  // namespace

TEST(KxSpatialGraphConsistencyTest, EachBrokenInvariantPrintsItsExactLines) {
    for (const BrokenGraphCase& c : brokenGraphCases()) {
        SCOPED_TRACE(c.name);
        auto g = makeChain(3);
        addIdentityMarkers(*g);
        c.breakIt(*g);
        KxMessageCapture capture;
        EXPECT_EQ(g->isConsistent(), c.expectedLines.empty());
        EXPECT_EQ(capture.lines(), c.expectedLines);
    }
}
