#include "kxspatialgraph/operations/OperationSet.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/operations/AddTracedEdgeOperationSet.h"
#include "kxspatialgraph/operations/AddVertexAndConnectOperationSet.h"
#include "kxspatialgraph/operations/ConnectSelectionOperationSet.h"
#include "kxspatialgraph/operations/FindAndConvertVerticesToPointsOperationSet.h"
#include "kxspatialgraph/operations/MultipleVerticesToPointsOperationSet.h"
#include "kxspatialgraph/operations/SplitEdgeWithNewVertexAndConnectOperationSet.h"
#include "kxspatialgraph/operations/SplitEdgeWithNewVertexOperationSet.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"

using namespace GraphFixtures;
using Graph = std::unique_ptr<KxSpatialGraph>;
using G = KxSpatialGraph;
using Ends = std::vector<std::pair<int, int>>;

namespace {

SpatialGraphSelection select(const KxSpatialGraph* g, std::vector<int> vertices,
                             std::vector<SpatialGraphPoint> points = {}) {
    SpatialGraphSelection s(g);
    for (int v : vertices) {
        s.selectVertex(v);
    }
    for (const SpatialGraphPoint& p : points) {
        s.selectPoint(p);
    }
    return s;
}

SpatialGraphSelection everything(const KxSpatialGraph* g) {
    SpatialGraphSelection s(g);
    s.selectAllVerticesAndEdges();
    s.selectAllPoints();
    return s;
}

// Appends the vertices at the positions and straight edges between the given pairs.
Graph grow(Graph g, std::vector<Vec3f> positions, Ends edges) {
    for (const Vec3f& p : positions) {
        g->addVertex(p);
    }
    for (auto [s, t] : edges) {
        g->addEdge(s, t);
    }
    return g;
}

//   0 - 1        2 - 3   (x axis)    4 - 5 (at x = 2, y = 3 and 4)
Graph threeChains() {
    return grow(makeChain(2), {{5, 0, 0}, {6, 0, 0}, {2, 3, 0}, {2, 4, 0}}, {{2, 3}, {4, 5}});
}

// "V4 H: 3 E: 0-1 1-3 3-2": the number of vertices, the highlighted
// vertices and every edge's ends.
std::string outcome(const KxSpatialGraph& g, const Operation& op) {
    const SpatialGraphSelection& highlighted = op.getHighlightSelectionAfterOperation();
    std::string out = "V" + std::to_string(g.getNumVertices()) + " H:";
    for (int v = 0; v < highlighted.getNumVertices(); ++v) {
        out += highlighted.isSelectedVertex(v) ? " " + std::to_string(v) : "";
    }
    out += " E:";
    for (int e = 0; e < g.getNumEdges(); ++e) {
        out += " " + std::to_string(g.getEdgeSource(e)) + "-" + std::to_string(g.getEdgeTarget(e));
    }
    return out;
}

struct SetCase {
    const char* name;
    std::shared_ptr<KxSpatialGraph> graph;
    std::function<Operation*(KxSpatialGraph*)> make;
    std::vector<std::string> messages;
    const char* outcome;  // after exec
};

}  // namespace

// Each set: its messages, counts, highlighted vertices and new edges after
// exec, and undo back to the graph it started from. (Random exec, undo and
// redo sequences of every set are in OperationModelTest.)
TEST(OperationSetTest, CompositeEditsReportAndUndoExactly) {
    const std::vector<SetCase> cases = {
        {"connect three chains nearest first, first pair wins a tie",
         threeChains(),
         [](G* g) {
             return new ConnectSelectionOperationSet(g, select(g, {0, 2, 4}), everything(g));
         },
         {"Number of components in selection: 3"},
         "V6 H: E: 0-1 2-3 4-5 1-4 0-2"},
        {"closed loop as source",
         grow(makeLoop(), {{5, 0, 0}, {6, 0, 0}}, {{3, 4}}),
         [](G* g) {
             return new ConnectSelectionOperationSet(g, select(g, {0, 3}), everything(g));
         },
         {"Number of components in selection: 2", "Source component has no end points. Not connecting."},
         "V5 H: E: 0-1 1-2 2-0 2-2 3-4"},
        {"closed loop as target",
         grow(makeChain(2), {{5, 0, 0}, {6, 0, 0}, {5, 1, 0}}, {{2, 3}, {3, 4}, {4, 2}}),
         [](G* g) {
             return new ConnectSelectionOperationSet(g, select(g, {0, 2}), everything(g));
         },
         {"Number of components in selection: 2", "Target component has no end points. Not connecting."},
         "V5 H: E: 0-1 2-3 3-4 4-2"},
        {"vertices of degree 1, 2, 3",
         grow(makeY(), {{0, 9, 0}}, {{1, 4}}),
         [](G* g) {
             return new MultipleVerticesToPointsOperationSet(g, select(g, {0, 1, 3}), everything(g));
         },
         {"Cannot convert node 3, number of incident segments is 1",
          "Cannot convert node 0, number of incident segments is 3", "Converted 1 nodes to points"},
         "V4 H: E: 0-1 2-0 0-3"},
        {"vertex on a self-loop",
         grow(std::make_unique<KxSpatialGraph>(), {{1, 0, 0}}, {{0, 0}}),
         [](G* g) { return new MultipleVerticesToPointsOperationSet(g, select(g, {0}), everything(g)); },
         {"Cannot convert node 0, as it is start and end of segment 0", "Converted 0 nodes to points"},
         "V1 H: E: 0-0"},
        {"find all convertible vertices",
         makeChain(4),
         [](G* g) { return new FindAndConvertVerticesToPointsOperationSet(g, select(g, {}), everything(g)); },
         {"Converted 2 nodes to points"},
         "V2 H: E: 0-1"},
        {"split an edge",
         makeChain(3),
         [](G* g) {
             return new SplitEdgeWithNewVertexOperationSet(g, Vec3f(1.2f, 1, 0), 1, 1, select(g, {}),
                                                           everything(g));
         },
         {},
         "V4 H: 3 E: 0-1 1-3 3-2"},
        {"split an edge and trace from a vertex",
         grow(makeChain(3), {{1.5f, 5, 0}}, {}),
         [](G* g) {
             return new SplitEdgeWithNewVertexAndConnectOperationSet(g, Vec3f(1.2f, 1, 0), 1, 1, nullptr,
                                                                     nullptr, select(g, {3}), everything(g));
         },
         {},
         "V5 H: 4 E: 0-1 1-4 4-2 3-4"},
        {"add a vertex and trace from a point",
         makeChain(3),
         [](G* g) {
             return new AddVertexAndConnectOperationSet(g, Vec3f(1.5f, 2, 0), nullptr, nullptr,
                                                        select(g, {}, {{1, 1}}), everything(g));
         },
         {},
         "V5 H: 3 E: 0-1 1-4 4-2 3-4"},
    };
    for (const SetCase& c : cases) {
        SCOPED_TRACE(c.name);
        KxSpatialGraph* g = c.graph.get();
        addIdentityMarkers(*g);
        GraphSnapshot before = takeSnapshot(*g);
        std::unique_ptr<Operation> op(c.make(g));
        KxMessageCapture capture;
        op->exec();
        EXPECT_EQ(capture.lines(), c.messages);
        EXPECT_EQ(outcome(*g, *op), c.outcome);
        expectConsistent(*g);
        op->undo();
        EXPECT_TRUE(sameGraph(before, *g));
    }
}

TEST(OperationSetTest, TracedEdgeStoresRadiiInThicknessItCreatesAndRemoves) {
    Graph g = makeChain(2);
    AddTracedEdgeOperationSet set(g.get(), Vec3f(3, 0, 0), straightPoints({1, 0, 0}, {3, 0, 0}, 3),
                                  DArray<float>{1.5f, 2.5f, 3.5f, 9.0f}, select(g.get(), {1}),
                                  everything(g.get()));
    set.exec();
    EXPECT_EQ(outcome(*g, set), "V3 H: 2 E: 0-1 1-2");
    PointAttribute* thickness = g->findEdgePointAttribute("thickness");
    ASSERT_NE(thickness, nullptr);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(thickness->getFloatDataAtPoint(1, i), 1.5f + i);  // the fourth radius has no point
    }
    EXPECT_EQ(thickness->getFloatDataAtPoint(0, 0), 0.0f);
    set.undo();
    EXPECT_EQ(g->findEdgePointAttribute("thickness"), nullptr);
}
