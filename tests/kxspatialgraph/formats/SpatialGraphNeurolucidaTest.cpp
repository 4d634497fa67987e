#include "kxspatialgraph/formats/SpatialGraphNeurolucida.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "kxspatialgraph/formats/SpatialGraphSWC.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/DecimalCommaLocale.h"
#include "support/GraphFixtures.h"
#include "support/MorphologyGenerators.h"

namespace {

const char* const kHeaderEnd = ";   and the users of the kxspatialgraph package\n";

// The file without its seven header lines.
std::string body(const KxSpatialGraph& graph) {
    std::ostringstream out;
    SpatialGraph2Neurolucida(graph.getSpatialGraphInterface(), out);
    std::string text = out.str();
    size_t end = text.find(kHeaderEnd);
    EXPECT_EQ(text.rfind(";   V3 text file written for MicroBrightField products\n", 0), 0u);
    EXPECT_EQ(std::count(text.begin(), text.begin() + static_cast<long>(end), '\n'), 6);
    return end == std::string::npos ? text : text.substr(end + std::strlen(kHeaderEnd));
}

std::unique_ptr<KxSpatialGraph> makePath() {
    auto g = std::make_unique<KxSpatialGraph>();
    g->addVertex(Vec3f(0, 0, 0));
    g->addVertex(Vec3f(11, 0, 0));
    g->addEdge(0, 1, GraphFixtures::straightPoints(Vec3f(0, 0, 0), Vec3f(11, 0, 0), 12));
    return g;
}

// A 10-point loop at vertex 0 on a circle of radius 2 in the x-y plane.
std::unique_ptr<KxSpatialGraph> makeContour() {
    auto g = std::make_unique<KxSpatialGraph>();
    g->addVertex(Vec3f(2, 0, 1));
    DArray<Vec3f> points;
    const Vec3f ring[] = {{2, 0, 1},      {1, 1.5f, 1}, {0, 2, 1},     {-1, 1.5f, 1},    {-2, 0, 1},
                          {-1, -1.5f, 1}, {0, -2, 1},   {1, -1.5f, 1}, {1.5f, -0.5f, 1}, {2, 0, 1}};
    for (const Vec3f& p : ring) {
        points.append(p);
    }
    g->addEdge(0, 0, points);
    return g;
}

// Branch vertex 1 reached from end 0, then two branches to 2 and 3 (edge 2 runs backwards, 3 -> 1).
std::unique_ptr<KxSpatialGraph> makeFork() {
    auto g = std::make_unique<KxSpatialGraph>();
    for (const Vec3f& v : {Vec3f(0, 0, 0), Vec3f(1, 0, 0), Vec3f(2, 1, 0), Vec3f(2, -1, 0.5f)}) {
        g->addVertex(v);
    }
    g->addEdge(0, 1);
    g->addEdge(1, 2);
    g->addEdge(3, 1);
    return g;
}

// Vertices 0 -> 1 -> 2 -> 0 and vertex 3 alone: no end vertex, no loop edge.
std::unique_ptr<KxSpatialGraph> makeCycle() {
    auto g = std::make_unique<KxSpatialGraph>();
    for (int v = 0; v < 4; ++v) {
        g->addVertex(Vec3f(static_cast<float>(v), static_cast<float>(v * v), 0));
    }
    g->addEdge(0, 1);
    g->addEdge(1, 2);
    g->addEdge(2, 0);
    return g;
}

TEST(SpatialGraphNeurolucidaTest, WritesTreesSplitsAndContoursWithFlippedYAndZ) {
    struct Case {
        const char* name;
        std::unique_ptr<KxSpatialGraph> graph;
        const char* body;
    } cases[] = {
        {"path of 12 points: inner point 6 and the end are written", makePath(),
         "( (Color White)\n(Axon)\n(Object)\n(0 -0 -0  1) ; Root\n(6 -0 -0  1) ; 1\n(11 -0 -0  1) ; 2\n"
         " Normal\n) ; End of Object\n"},
        {"loop of 10 points", makeContour(),
         "(\"vessel\"\n(Color RGB(255, 0, 128))\n(Closed)\n"
         "(2 -0 -1  1) ; 1,1\n(1 -1.5 -1  1) ; 1,2\n(0 -2 -1  1) ; 1,3\n(-1 -1.5 -1  1) ; 1,4\n"
         "(-2 -0 -1  1) ; 1,5\n(-1 1.5 -1  1) ; 1,6\n(0 2 -1  1) ; 1,7\n(1 1.5 -1  1) ; 1,8\n"
         "(1.5 0.5 -1  1) ; 1,9 Closure point\n) ; End of contour\n"},
        {"fork", makeFork(),
         "( (Color White)\n(Axon)\n(Object)\n(0 -0 -0  1) ; Root\n(1 -0 -0  1) ; 1\n"
         "(\n(2 -1 -0  1) ; 1\n Normal\n|\n(2 1 -0.5  1) ; 1\n Normal\n) ; End of Split\n) ; End of "
         "Object\n"},
        {"a cycle of three vertices and an isolated vertex", makeCycle(), ""},
        {"a loop of two points is no contour",
         [] {
             auto g = std::make_unique<KxSpatialGraph>();
             g->addEdge(g->addVertex(Vec3f(1, 2, 3)), 0);
             return g;
         }(),
         ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(body(*c.graph), c.body);
    }
}

TEST(SpatialGraphNeurolucidaTest, DeepNestingNeedsNoDeepStackAndNumbersIgnoreTheLocale) {
    std::string swc = MorphologyGenerators::nestedBranches(200000);
    std::unique_ptr<KxSpatialGraph> g(readSWC(swc.data(), swc.size(), "nested.swc"));
    ASSERT_TRUE(g);
    std::string text = body(*g);
    EXPECT_EQ(std::count(text.begin(), text.end(), '|'), 199998);
    EXPECT_EQ(text.rfind(") ; End of Object\n"), text.size() - 18) << "one object";

    std::unique_ptr<KxSpatialGraph> path = makePath();
    path->setVertexCoords(0, Vec3f(0.5f, 0, 0));
    path->setEdgePoint(0, 0, Vec3f(0.5f, 0, 0));
    DecimalCommaLocale locale;
    if (!locale.active()) {
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    std::ostringstream out;
    SpatialGraph2Neurolucida(path->getSpatialGraphInterface(), out);
    EXPECT_NE(out.str().find("(0.5 -0 -0  1) ; Root\n"), std::string::npos) << out.str();
}

}  // namespace
