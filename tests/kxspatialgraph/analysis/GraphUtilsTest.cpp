#include "kxspatialgraph/analysis/GraphUtils.h"

#include <cmath>
#include <memory>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "QuadraticLineAnalysis.h"
#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

using Lines = DArray<int>;
using LineSets = DArray<DArray<int>>;

std::string text(const Lines& lines) {
    std::string s = "[";
    for (int line : lines) {
        s += std::to_string(line) + " ";
    }
    return s + "]";
}

std::string text(const LineSets& sets) {
    std::string s;
    for (const Lines& lines : sets) {
        s += text(lines);
    }
    return s;
}

// Few places, so that ends coincide across vertices; -0 beside 0, now and
// then a NaN vertex; self-loops and parallel lines on purpose.
std::unique_ptr<KxSpatialGraph> randomGraph(std::mt19937& rng) {
    auto pick = [&](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
    std::vector<Vec3f> places{Vec3f(0, 0, 0)};
    for (int i = pick(7); i >= 0; --i) {
        places.emplace_back(float(pick(3)), float(pick(3)), float(pick(2)));
    }
    auto g = std::make_unique<KxSpatialGraph>();
    for (int i = pick(12); i >= 0; --i) {
        Vec3f c = places[static_cast<size_t>(pick(static_cast<int>(places.size())))];
        g->addVertex(pick(30) == 0 ? Vec3f(NAN, 0, 0)
                                   : (c == Vec3f(0, 0, 0) && pick(2) ? Vec3f(-0.0f, 0, 0) : c));
    }
    for (int i = pick(30); i > 0; --i) {
        int s = pick(g->getNumVertices()), t = pick(g->getNumVertices());
        if (pick(8) == 0) {
            t = s;
        } else if (g->getNumEdges() > 0 && pick(6) == 0) {
            int twin = pick(g->getNumEdges());
            t = g->getEdgeSource(twin);
            s = g->getEdgeTarget(twin);
        }
        g->addEdge(s, t);
    }
    auto* thickness = static_cast<PointAttribute*>(
        g->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
    for (int e = 0; e < g->getNumEdges(); ++e) {
        const float t = float(1 + pick(3));
        for (int p = 0; p < g->getNumEdgePoints(e); ++p) {
            thickness->setFloatDataAtPoint(t, e, p);
        }
    }
    if (pick(2)) {
        auto* ranks = static_cast<EdgeVertexAttribute*>(
            g->addAttribute("Ranks", KxSpatialGraph::EDGE, PrimType::INT32, 1));
        for (int e = 0; e < g->getNumEdges(); ++e) {
            ranks->setIntDataAtIdx(e, pick(5));
        }
    }
    return g;
}

void expectSameTrees(const KxSpatialGraph* g, const Lines& startLines) {
    LineSets trees, expectedTrees;
    Lines ranks, expectedRanks;
    DArray<GraphUtils::LineLocation> locations, expectedLocations;
    GraphUtils::identifyTrees(g, trees, ranks, locations, startLines);
    QuadraticLineAnalysis::trees(g, expectedTrees, expectedRanks, expectedLocations, startLines);
    EXPECT_TRUE(trees == expectedTrees) << text(trees) << " vs " << text(expectedTrees);
    EXPECT_TRUE(ranks == expectedRanks) << text(ranks) << " vs " << text(expectedRanks);
    for (int e = 0; e < g->getNumEdges(); ++e) {
        EXPECT_EQ(locations[e].tree, expectedLocations[e].tree) << "line " << e;
        EXPECT_EQ(locations[e].position, expectedLocations[e].position) << "line " << e;
    }
}

void expectSameLoops(const KxSpatialGraph* g, const Lines& startLines) {
    LineSets loops, expectedLoops;
    Lines loopy, expectedLoopy;
    GraphUtils::identifyLoops(g, loops, loopy, startLines);
    QuadraticLineAnalysis::loops(g, expectedLoops, expectedLoopy, startLines);
    EXPECT_TRUE(loops == expectedLoops) << text(loops) << " vs " << text(expectedLoops);
    EXPECT_TRUE(loopy == expectedLoopy) << text(loopy) << " vs " << text(expectedLoopy);
}

}  // namespace

TEST(GraphUtilsTest, GivesTheQuadraticProceduresResultsOnRandomGraphs) {
    std::mt19937 rng(20261123);
    KxMessageCapture console;
    for (int round = 0; round < 600; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        auto g = randomGraph(rng);
        if (round % 4 == 3) {
            g->deleteAttribute(g->findEdgePointAttribute("thickness"));
        }
        int n = g->getNumEdges();
        Lines startLines;
        for (int e = 0; e < n; ++e) {
            if (rng() % 3 == 0) {
                startLines.append(e);
            }
        }
        for (const Lines& start : {Lines(), startLines}) {
            expectSameTrees(g.get(), start);
            expectSameLoops(g.get(), start);
        }
        Lines generating;
        GraphUtils::getLoopGeneratingLines(g.get(), generating);
        Lines expectedGenerating = QuadraticLineAnalysis::loopGeneratingLines(g.get());
        EXPECT_TRUE(generating == expectedGenerating)
            << text(generating) << " vs " << text(expectedGenerating);
        if (n == 0) {
            continue;
        }

        int start = static_cast<int>(rng() % static_cast<unsigned>(n));
        Lines treeLines, expectedLines;
        LineSets levels, expectedLevels;
        testing::internal::CaptureStdout();
        GraphUtils::identifyTree(g.get(), start, treeLines, levels);
        std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_EQ(printed, QuadraticLineAnalysis::tree(g.get(), start, expectedLines, expectedLevels));
        EXPECT_TRUE(treeLines == expectedLines) << text(treeLines) << " vs " << text(expectedLines);
        EXPECT_TRUE(levels == expectedLevels) << text(levels) << " vs " << text(expectedLevels);

        // One step of the walk from a partly finished state.
        Lines pending(n), loopy, expectedLoopy;
        for (int e = 0; e < n; ++e) {
            pending[e] = rng() % 4 == 0 ? -1 : e;
        }
        Lines expectedPending = pending;
        int prev = static_cast<int>(rng() % static_cast<unsigned>(n + 1)) - 1;
        int result = GraphUtils::identifyLoopRecur(g.get(), loopy, pending, prev, start);
        QuadraticLineAnalysis::LoopWalk walk{g.get(), expectedLoopy, expectedPending, {}};
        EXPECT_EQ(result, walk.recur(prev, start));
        EXPECT_TRUE(loopy == expectedLoopy) << text(loopy) << " vs " << text(expectedLoopy);
        EXPECT_TRUE(pending == expectedPending) << text(pending) << " vs " << text(expectedPending);
    }
}

// A ring of many lines: the walk goes once around without exhausting the stack.
TEST(GraphUtilsTest, WalksARingOfManyLines) {
    const int n = 300000;
    auto g = std::make_unique<KxSpatialGraph>();
    for (int v = 0; v < n; ++v) {
        g->addVertex(Vec3f(std::cos(v * 2e-5f), std::sin(v * 2e-5f), 0));
    }
    for (int e = 0; e < n; ++e) {
        g->addEdge(e, (e + 1) % n);
    }
    Lines pending(n, 0), loopy;
    {
        KxMessageCapture refused;
        EXPECT_EQ(GraphUtils::identifyLoopRecur(g.get(), loopy, pending, -1, n), -1) << "no line n";
        EXPECT_FALSE(GraphUtils::checkIfLinesAreConnected(g.get(), 0, n, -1));
    }
    EXPECT_EQ(GraphUtils::identifyLoopRecur(g.get(), loopy, pending, -1, 0), -2);
    ASSERT_EQ(loopy.size(), n - 1);
    EXPECT_EQ(loopy[0], n - 1);
    EXPECT_EQ(loopy.last(), 1);
    Lines generating;
    GraphUtils::getLoopGeneratingLines(g.get(), generating);
    EXPECT_EQ(text(generating), "[" + std::to_string(n - 1) + " ]");
}

// Walked from itself, a line ending at a NaN vertex counts that end: NaN
// equals nothing, so the end does not touch the line itself, and the walk
// leaves the self-loop at the other end alone.
TEST(GraphUtilsTest, ALineEndAtNaNDoesNotTouchItsOwnLine) {
    auto g = std::make_unique<KxSpatialGraph>();
    for (float x : {1.0f, 2.0f, -0.0f, 3.0f, std::nanf("")}) {
        g->addVertex(Vec3f(x, 0, 0));
    }
    g->addEdge(4, 2);
    g->addEdge(2, 2);
    g->addEdge(3, 1);
    Lines pending{-1, 1, 2}, loopy, expectedLoopy;
    Lines expectedPending = pending;
    QuadraticLineAnalysis::LoopWalk walk{g.get(), expectedLoopy, expectedPending, {}};
    EXPECT_EQ(GraphUtils::identifyLoopRecur(g.get(), loopy, pending, 0, 0), walk.recur(0, 0));
    EXPECT_TRUE(loopy == expectedLoopy) << text(loopy) << " vs " << text(expectedLoopy);
    EXPECT_TRUE(pending == expectedPending) << text(pending) << " vs " << text(expectedPending);
}
