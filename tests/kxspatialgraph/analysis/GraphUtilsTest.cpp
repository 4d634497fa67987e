#include "kxspatialgraph/analysis/GraphUtils.h"

#include <cmath>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
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

std::unique_ptr<KxSpatialGraph> makeGraph(const std::vector<Vec3f>& vertices,
                                          const std::vector<std::pair<int, int>>& edges) {
    auto g = std::make_unique<KxSpatialGraph>();
    for (const Vec3f& v : vertices) {
        g->addVertex(v);
    }
    for (auto [s, t] : edges) {
        g->addEdge(s, t);
    }
    return g;
}

void setThickness(KxSpatialGraph& g, const std::vector<float>& perLine) {
    auto* a = static_cast<PointAttribute*>(
        g.addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
    for (int e = 0; e < g.getNumEdges(); ++e) {
        for (int p = 0; p < g.getNumEdgePoints(e); ++p) {
            a->setFloatDataAtPoint(perLine[static_cast<size_t>(e)], e, p);
        }
    }
}

}  // namespace

TEST(GraphUtilsTest, FindsTheTreesAndLoopsOfSmallGraphs) {
    const Vec3f a(0, 0, 0), b(1, 0, 0), c(1, 1, 0), d(0, 1, 0);
    struct Case {
        const char* name;
        std::vector<Vec3f> vertices;
        std::vector<std::pair<int, int>> edges;
        std::vector<float> thickness;  // per line; none when empty
        Lines startLines;
        LineSets trees, loops;
        Lines loopy, generating;
    };
    const Case cases[] = {
        {"pieces joined at equal coordinates", {a, b, b, c}, {{0, 1}, {2, 3}}, {}, {}, {{0, 1}}, {}, {}, {}},
        {"self-loop first", {a, b}, {{0, 0}, {0, 1}}, {}, {}, {{0}, {1}}, {{0}}, {0}, {0}},
        {"parallel twins", {a, b, a, b}, {{0, 1}, {3, 2}}, {}, {}, {{0, 1}}, {{0, 1}}, {0, 1}, {0}},
        {"triangle", {a, b, c}, {{0, 1}, {1, 2}, {2, 0}}, {}, {}, {{0, 1, 2}}, {{2, 1}}, {2, 1}, {}},
        {"triangle, two start lines", {a, b, c}, {{0, 1}, {1, 2}, {2, 0}}, {}, {0, 2}, {{0, 2}}, {}, {}, {}},
        {"square",
         {a, b, c, d},
         {{0, 1}, {1, 2}, {2, 3}, {3, 0}},
         {},
         {},
         {{0, 1, 2, 3}},
         {{3, 2, 1}},
         {3, 2, 1},
         {3}},
        {"thin square",
         {a, b, c, d},
         {{0, 1}, {1, 2}, {2, 3}, {3, 0}},
         {3, 3, 1, 2},
         {},
         {{0, 1, 2, 3}},
         {{3, 2, 1}},
         {3, 2, 1},
         {2}},
    };
    KxMessageCapture console;
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        auto g = makeGraph(test.vertices, test.edges);
        if (!test.thickness.empty()) {
            setThickness(*g, test.thickness);
        }
        LineSets trees, loops;
        Lines ranks, loopy, generating;
        DArray<GraphUtils::LineLocation> locations;
        GraphUtils::identifyTrees(g.get(), trees, ranks, locations, test.startLines);
        GraphUtils::identifyLoops(g.get(), loops, loopy, test.startLines);
        EXPECT_EQ(text(trees), text(test.trees));
        EXPECT_EQ(text(loops), text(test.loops));
        EXPECT_EQ(text(loopy), text(test.loopy));
        if (test.startLines.isEmpty()) {
            GraphUtils::getLoopGeneratingLines(g.get(), generating);
            EXPECT_EQ(text(generating), text(test.generating));
        }
    }
}

// 0: a-b, 1: b-c, then c branches into 2: c-d and 3: c-e, and 4: e-f. The
// siblings 2 and 3 touch each other, so 2 continues into 3 as a chain and 3
// comes twice: the defined procedure, kept as it is.
TEST(GraphUtilsTest, RanksCountBranchingsFromTheStartLine) {
    auto g = makeGraph({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 1, 0}, {3, -1, 0}, {4, -1, 0}},
                       {{0, 1}, {1, 2}, {2, 3}, {2, 4}, {4, 5}});
    Lines treeLines;
    LineSets levels;
    KxMessageCapture console;
    testing::internal::CaptureStdout();
    GraphUtils::identifyTree(g.get(), 0, treeLines, levels);
    std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(text(treeLines), "[0 1 2 3 4 3 ]");
    EXPECT_EQ(text(levels), "[0 ][1 ][2 3 4 3 ]");
    EXPECT_EQ(printed.substr(0, 40), "rank1 [0] line [0]\nrank1 [1] line [1]\nra");
    EXPECT_NE(printed.find("rank2 [2] line [4]\n"), std::string::npos);
    EXPECT_TRUE(console.contains("calculating topology"));
}

TEST(GraphUtilsTest, ConnectionIgnoresTheEndTouchingThePreviousLine) {
    // 0: a-b, 1: b-c, 2: c-a (closing), 3: b-b self-loop, 4: a NaN vertex shared by 5 and 6.
    auto g = makeGraph({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {-0.0f, 0, 0}, {NAN, 0, 0}},
                       {{0, 1}, {1, 2}, {2, 3}, {1, 1}, {4, 0}, {4, 1}});
    // a, b, previous line, connected
    const int cases[][4] = {{1, 0, -1, 1}, {1, 0, 0, 0},  {1, 2, 0, 1},  {2, 0, -1, 1}, {2, 0, 1, 1},
                            {3, 0, -1, 0}, {0, 3, -1, 1}, {4, 5, -1, 0}, {4, 0, -1, 1}, {0, 9, -1, 0}};
    for (const int* c : cases) {
        EXPECT_EQ(GraphUtils::checkIfLinesAreConnected(g.get(), c[0], c[1], c[2]), c[3] != 0)
            << c[0] << " " << c[1] << " " << c[2];
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
    EXPECT_EQ(GraphUtils::identifyLoopRecur(g.get(), loopy, pending, -1, 0), -2);
    ASSERT_EQ(loopy.size(), n - 1);
    EXPECT_EQ(loopy[0], n - 1);
    EXPECT_EQ(loopy.last(), 1);
    Lines generating;
    GraphUtils::getLoopGeneratingLines(g.get(), generating);
    EXPECT_EQ(text(generating), "[" + std::to_string(n - 1) + " ]");
}
