#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"
#include "support/SelectionBits.h"

using namespace GraphFixtures;

namespace {

// A small branched tree with branch ranks, and an isolated vertex 5.
//   0 --e0 r1-- 1 --e1 r2-- 2 --e3 r3-- 4        5
//                \--e2 r2-- 3
std::unique_ptr<KxSpatialGraph> makeRankedTree(bool withRanks) {
    auto g = std::make_unique<KxSpatialGraph>();
    for (int v = 0; v < 6; ++v) {
        g->addVertex(Vec3f(static_cast<float>(v), 0, 0));
    }
    const int ends[4][2] = {{0, 1}, {1, 2}, {1, 3}, {2, 4}};
    for (const auto& e : ends) {
        g->addEdge(e[0], e[1]);
    }
    if (withRanks) {
        auto* ranks = static_cast<EdgeVertexAttribute*>(
            g->addAttribute("Ranks", KxSpatialGraph::EDGE, PrimType::INT32, 1));
        const int values[4] = {1, 2, 2, 3};
        for (int e = 0; e < 4; ++e) {
            ranks->setIntDataAtIdx(e, values[e]);
        }
    }
    return g;
}

struct SearchCase {
    const char* name;
    std::function<std::unique_ptr<KxSpatialGraph>()> graph;
    std::function<SpatialGraphSelection(const KxSpatialGraph&)> search;
    const char* expected;
};

}  // namespace

TEST(KxSpatialGraphSearchTest, SearchesSelectTheExpectedElements) {
    auto ranked = [] { return makeRankedTree(true); };
    auto twoComponents = [] { return makeTwoComponents(); };
    const SearchCase cases[] = {
        {"connected component", twoComponents,
         [](const KxSpatialGraph& g) { return g.getConnectedComponent(2); }, "V:111000 E:110"},
        {"a self-loop is selected and leads back to its vertex", makeLoop,
         [](const KxSpatialGraph& g) { return g.getConnectedComponent(0); }, "V:111 E:1111"},
        {"search does not follow selected edges", [] { return makeChain(5); },
         [](const KxSpatialGraph& g) {
             SpatialGraphSelection s = selectionFromBits(g, "", "0010");
             g.depthFirstSearch(1, s);
             return s;
         },
         "V:11100 E:1110"},
        // Shortest paths. makeLoop: 0-1 (e0), 1-2 (e1), 2-0 (e2), loop at 2 (e3).
        {"shortest path to itself", makeLoop, [](const KxSpatialGraph& g) { return g.getShortestPath(1, 1); },
         "V:010 E:0000"},
        {"shortest path takes the fewest edges", makeLoop,
         [](const KxSpatialGraph& g) { return g.getShortestPath(0, 2); }, "V:101 E:0010"},
        {"unreachable target", twoComponents, [](const KxSpatialGraph& g) { return g.getShortestPath(0, 4); },
         "V:000000 E:000"},
        // Components. makeTwoComponents: 0-1-2 (e0, e1), 3-4 (e2), 5.
        {"one edge touches its component", twoComponents,
         [](const KxSpatialGraph& g) {
             return g.getConnectedComponentFromSelection(selectionFromBits(g, "", "001"));
         },
         "V:000110 E:001"},
        {"one edge contains no component", twoComponents,
         [](const KxSpatialGraph& g) {
             return g.getConnectedComponentsContainedInSelection(selectionFromBits(g, "", "001"));
         },
         "V:000000 E:000"},
        {"whole components are contained, partial ones are not", twoComponents,
         [](const KxSpatialGraph& g) {
             return g.getConnectedComponentsContainedInSelection(selectionFromBits(g, "111101", "110"));
         },
         "V:111001 E:110"},
        // Subtrees by rank.
        {"edge subtree climbing", ranked,
         [](const KxSpatialGraph& g) { return g.getSubTreeByEdge(1, false); }, "V:011010 E:0101"},
        {"edge subtree descending", ranked,
         [](const KxSpatialGraph& g) { return g.getSubTreeByEdge(1, true); }, "V:111000 E:1100"},
        {"vertex subtree from a rank-1 end takes the whole tree", ranked,
         [](const KxSpatialGraph& g) { return g.getSubTreeByVertex(0, false); }, "V:111110 E:1111"},
        {"vertex subtree climbing from the lowest rank", ranked,
         [](const KxSpatialGraph& g) { return g.getSubTreeByVertex(2, false); }, "V:001010 E:0001"},
        {"vertex subtree descending follows the lowest rank itself", ranked,
         [](const KxSpatialGraph& g) { return g.getSubTreeByVertex(2, true); }, "V:111000 E:1100"},
        {"vertex subtree of an isolated vertex", ranked,
         [](const KxSpatialGraph& g) { return g.getSubTreeByVertex(5, true); }, "V:000001 E:0000"},
        {"subtree without Ranks", [] { return makeRankedTree(false); },
         [](const KxSpatialGraph& g) { return g.getSubTreeByEdge(1, false); }, "V:000000 E:0000"},
    };
    for (const SearchCase& c : cases) {
        SCOPED_TRACE(c.name);
        std::unique_ptr<KxSpatialGraph> g = c.graph();
        EXPECT_EQ(selectionBits(c.search(*g), false), c.expected);
    }
    // Long chains must not exhaust the stack.
    EXPECT_EQ(makeChain(100000)->getConnectedComponent(0).getNumSelectedEdges(), 99999);
}

TEST(KxSpatialGraphSearchTest, ComponentsAreCountedListedEdgesFirstAndCopiedOut) {
    auto g = makeTwoComponents();
    addIdentityMarkers(*g);
    EXPECT_EQ(g->getNumComponentsInSelection(selectionFromBits(*g, "", "001")), 1);
    EXPECT_EQ(g->getNumComponentsInSelection(selectionFromBits(*g, "100000", "001")), 2);
    DArray<SpatialGraphSelection> all = g->getAllConnectedComponents(selectionFromBits(*g, "100001", "001"));
    ASSERT_EQ(all.size(), 3);
    EXPECT_EQ(selectionBits(all[0], false), "V:000110 E:001");
    EXPECT_EQ(selectionBits(all[1], false), "V:111000 E:110");
    EXPECT_EQ(selectionBits(all[2], false), "V:000001 E:000");
    EXPECT_FALSE(g->breadthFirstSearch(0, 5, all[0]));

    // The subgraph keeps the selected elements with their values.
    GraphSnapshot before = takeSnapshot(*g);
    std::unique_ptr<KxSpatialGraph> sub(g->getSubgraph(selectionFromBits(*g, "000111", "001")));
    EXPECT_TRUE(sameGraph(before, *g));
    g->removeMultipleEdges(DArray<int>{0, 1});
    g->removeMultipleVertices(DArray<int>{0, 1, 2});
    EXPECT_EQ(describeDifference(*g, *sub, {false, false}), "");
}
