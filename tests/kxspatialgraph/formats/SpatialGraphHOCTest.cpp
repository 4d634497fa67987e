#include "kxspatialgraph/formats/SpatialGraphHOC.h"

#include <algorithm>
#include <fstream>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "fuzz/KorvaMeshMutator.h"
#include "korva/core/KxMessageCapture.h"
#include "korva/korvamesh/KorvaMeshTestSupport.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "support/DecimalCommaLocale.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"
#include "support/HocTrees.h"
#include "support/TempDir.h"

namespace {

std::unique_ptr<KxSpatialGraph> read(const std::string& text) {
    return std::unique_ptr<KxSpatialGraph>(loadHOCFromMemory(text.data(), text.size(), "test.hoc"));
}

// "section/rank(source>target)#points" per edge, space-separated, with the
// names of the edge's labels.
std::string summary(const KxSpatialGraph& g) {
    EdgeVertexAttribute* topology = g.findEdgeAttribute("topology");
    EdgeVertexAttribute* ranks = g.findEdgeAttribute("Ranks");
    std::string s;
    for (int e = 0; e < g.getNumEdges(); ++e) {
        String name, rank;
        g.getLabelName(topology, topology ? topology->getIntDataAtIdx(e) : 0, name);
        g.getLabelName(ranks, ranks->getIntDataAtIdx(e), rank);
        s += (e ? " " : "") + name.std() + "/" + rank.std() + "(" + std::to_string(g.getEdgeSource(e)) + ">" +
             std::to_string(g.getEdgeTarget(e)) + ")#" + std::to_string(g.getNumEdgePoints(e));
    }
    return s;
}

// A Y whose left arm branches again; the children are listed first.
const char* const kBranchingY = R"(create soma, dend[4]
connect dend[0](0), soma(1)
connect dend[1](0), soma(1)
connect dend[2](0), dend[0](1)
connect dend[3](0), dend[0](1)
soma { pt3dclear() pt3dadd(0, 0, 0, 8) pt3dadd(0, 10, 0, 6) }
dend[0] { pt3dadd(0, 10, 0, 2) pt3dadd(-5, 15, 0, 1.5) }
dend[1] { pt3dadd(0, 10, 0, 2) pt3dadd(5, 15, 1, 1.5) }
dend[2] { pt3dadd(-5, 15, 0, 1) pt3dadd(-7, 20, 0, 1) pt3dadd(-8, 25, 0, 0.5) }
dend[3] { pt3dadd(-5, 15, 0, 1) pt3dadd(-3, 20, 0, 1) }
)";

std::string fixture(const char* name) {
    return readFileBytes(std::string(KORVA_FIXTURES_DIR "/external/hoc2swc/") + name);
}

// Any statement outside the subset fails the whole load with its line and
// the parser's tag; so do the real files, where they call procedures.
TEST(SpatialGraphHOCTest, ReadsTheStatementsOfTheSubsetAndFailsOnAnyOther) {
    struct Case {
        std::string text;
        const char* expected;  // the summary, or the last message
        const char* warning = nullptr;
    } cases[] = {
        {"create soma\nsoma {\n pt3dclear()\n pt3dadd(0,0,0,2)\n pt3dadd(0,0,5,2)\n pt3dadd(0,0,9,3)\n}",
         "soma/Rank1(0>1)#3"},
        // Ends meet without connect.
        {"create a, b\na { pt3dadd(0,0,0,1) pt3dadd(1,0,0,1) }\nb { pt3dadd(1,0,0,1) pt3dadd(2,0,0,1) }",
         "a/Rank1(0>1)#2 b/Rank2(1>2)#2"},
        // Branch points raise the rank.
        {kBranchingY,
         "soma/Rank1(0>1)#2 dend/Rank2(1>2)#2 dend/Rank2(1>3)#2 dend/Rank3(2>4)#3 dend/Rank3(2>5)#2"},
        {"/* a\nheader */ create a // the only one\r\naccess a\r\npt3dadd(+1e1, -2.5E-1, .5, 3.)\r\n"
         "pt3dadd(1, 2, 3, 4);",
         "a/Rank1(0>1)#2"},
        {"create d[3]\nd [ 2. ] { pt3dadd(0,0,0,1) pt3dadd(1,0,0,1) }\n"
         "d[                   0.] { pt3dadd(5,0,0,1) pt3dadd(6,0,0,1) }",
         "d/Rank1(0>1)#2 d/Rank1(2>3)#2"},
        // pt3dclear drops points, pt3dadd without a section is ignored.
        {"pt3dadd(9,9,9,9)\ncreate a\na { pt3dadd(7,7,7,7) pt3dclear() pt3dadd(0,0,0,1) pt3dadd(1,1,1,1) }",
         "a/Rank1(0>1)#2"},
        {"create a, b\na { { } b { pt3dadd(5,0,0,1) pt3dadd(6,0,0,1) } pt3dadd(0,0,0,1)\npt3dadd(1,0,0,1) }",
         "a/Rank1(0>1)#2 b/Rank1(2>3)#2"},
        // Creating again keeps the points; sections without points make no edge.
        {"create a\na { pt3dadd(0,0,0,1) pt3dadd(1,0,0,1) }\ncreate a", "a/Rank1(0>1)#2"},
        {"create a, b[3]\nb[2] { pt3dadd(0,0,0,1) pt3dadd(1,0,0,1) }", "b/Rank1(0>1)#2"},
        // A connect off the section ends joins nothing; dend keeps rank 0.
        {"create soma, dend\nsoma { pt3dadd(0,0,0,8) pt3dadd(0,5,0,8) pt3dadd(0,9,0,8) }\n"
         "dend { pt3dadd(0,5,0,1) pt3dadd(5,5,0,1) }\nconnect dend(0), soma(0.5)\nconnect dend(1), soma(1)",
         "soma/Rank1(0>1)#3 dend/Ranks(2>3)#2",
         "Warning: 2 connect statement(s) join sections where their end points do not meet (the first in "
         "line "
         "4); the graph does not join those sections, and what hangs only there gets rank 0."},
        {"create soma\ndend { }", "Error reading file at line 2. Tag: 10"},
        {"create d[2]\nd[2] { }", "Error reading file at line 2. Tag: 10"},
        {"create d[99999999999]", "Error reading file at line 1. Tag: 10"},
        {"create 5", "Error reading file at line 1. Tag: 5"},
        {"create a,\n", "Error reading file at line 1. Tag: 11"},
        {"access (", "Error reading file at line 1. Tag: 1"},
        {"create a\na { pt3dadd(1,2,3) }", "Error reading file at line 2. Tag: 2"},
        {"create a\na { pt3dadd(1,x,3,4) }", "Error reading file at line 2. Tag: 10"},
        {"create a\na { pt3dadd(1,2,3,4)\npt3dadd(1,1e39,3,4) }", "Error reading file at line 3. Tag: 5"},
        {"create a\na { pt3dadd(1,2,\n3,4) }", "Error reading file at line 2. Tag: 11"},
        {"create a\n\na { pt3dclear(1) }", "Error reading file at line 3. Tag: 5"},
        {"create a, b\nconnect a(0) b(1)", "Error reading file at line 2. Tag: 10"},
        {"create a, b\nconnect a, b(1)", "Error reading file at line 2. Tag: 3"},
        {"create a, b\nconnect a(0), c(1)", "Error reading file at line 2. Tag: 10"},
        {"proc f() { }", "Error reading file at line 1. Tag: 10"},
        {"create a\n/* open\n\n", "Error reading file at line 2. Tag: -1"},
        {fixture("CA1.hoc"), "Error reading file at line 2076. Tag: 10"},
        {fixture("NoTemplate.hoc"), "Error reading file at line 3. Tag: 10"},
        {fixture("TestCell.hoc"), "Error reading file at line 3. Tag: 10"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.substr(0, 80));
        KxMessageCapture capture;
        std::unique_ptr<KxSpatialGraph> g = read(c.text);
        if (!g) {
            ASSERT_FALSE(capture.lines().empty());
            EXPECT_EQ(capture.lines().back(), c.expected);
            EXPECT_EQ(capture.lines().size(),
                      std::string(c.expected).find("-1") != std::string::npos ? 2u : 1u);
            EXPECT_EQ(capture.lines().size() == 2, capture.contains("EOF in comment"));
            continue;
        }
        EXPECT_EQ(summary(*g), c.expected);
        std::vector<std::string> lines{"Close file"};
        if (c.warning) {
            lines.push_back(c.warning);
        }
        EXPECT_EQ(capture.lines(), lines);
        expectConsistent(*g);
    }
    KxMessageCapture capture;
    EXPECT_FALSE(loadHOCToKxSpatialGraph("/nonexistent.hoc"));
    EXPECT_EQ(capture.lines(), (std::vector<std::string>{"FILE IO Error", "Error reading file."}));
}

std::string write(const KxSpatialGraph& g, const TempDir& dir, const char* name) {
    std::string path = dir.path(name);
    EXPECT_EQ(writeHOC(g.getSpatialGraphInterface(), path.c_str()), 1);
    return path;
}

// Numbers are read and written alike under a locale with a decimal comma.
TEST(SpatialGraphHOCTest, WritesTheSubsetExactly) {
    TempDir dir;
    DecimalCommaLocale locale;
    std::unique_ptr<KxSpatialGraph> g = read(
        "create soma, dend[2]\nsoma { pt3dadd(0,0,0,8) pt3dadd(0,1e-7,0,6) }\n"
        "dend[1] { pt3dadd(1.5,2,3,2) pt3dadd(0,1e-7,0,1.25) }");
    ASSERT_TRUE(g);
    g->addEdge(g->addVertex(Vec3f(1, 2, 3)), 1);  // an edge without a section name
    // Labels that cannot name sections: not an identifier, and a second "dend".
    EdgeVertexAttribute* topology = g->findEdgeAttribute("topology");
    topology->setIntDataAtIdx(g->addEdge(g->addVertex(Vec3f(4, 5, 6)), 1),
                              g->addLabel("topology", 0, "apical dendrite", SbColor(1, 0, 0)));
    topology->setIntDataAtIdx(g->addEdge(g->addVertex(Vec3f(7, 8, 9)), 1),
                              g->addLabel("topology", 1, "dend", SbColor(1, 0, 0)));
    EXPECT_EQ(readFileBytes(write(*g, dir, "out.hoc")),
              "create soma[                   1.]\ncreate dend[                   1.]\ncreate section_2\n"
              "create section_3\ncreate section_4\n"
              "soma[0.] {\npt3dclear()\npt3dadd(0.000000,0.000000,0.000000,8.000000)\n"
              "pt3dadd(0.000000,0.000000,0.000000,6.000000)\n}\n\n"
              "dend[0.] {\npt3dclear()\npt3dadd(1.500000,2.000000,3.000000,2.000000)\n"
              "pt3dadd(0.000000,0.000000,0.000000,1.250000)\n}\n\n"
              "section_2 {\npt3dclear()\npt3dadd(1.000000,2.000000,3.000000,0.000000)\n"
              "pt3dadd(0.000000,0.000000,0.000000,0.000000)\n}\n\n"
              "section_3 {\npt3dclear()\npt3dadd(4.000000,5.000000,6.000000,0.000000)\n"
              "pt3dadd(0.000000,0.000000,0.000000,0.000000)\n}\n\n"
              "section_4 {\npt3dclear()\npt3dadd(7.000000,8.000000,9.000000,0.000000)\n"
              "pt3dadd(0.000000,0.000000,0.000000,0.000000)\n}\n\n"
              "connect dend[0.](1), soma[0.](1)\nconnect section_2(1), dend[0.](1)\n"
              "connect section_3(1), section_2(1)\nconnect section_4(1), section_3(1)\n");
}

TEST(SpatialGraphHOCTest, WriterRefusesGraphsWithoutRanksAndDropsIsolatedVertices) {
    TempDir dir;
    std::unique_ptr<KxSpatialGraph> y = GraphFixtures::makeY();
    KxMessageCapture capture;
    EXPECT_EQ(writeHOC(y->getSpatialGraphInterface(), dir.path("y.hoc").c_str()), 0);
    EXPECT_TRUE(capture.contains("Error: No root segments specified!"));
    EXPECT_NE(capture.text().find("korva trees FILE -o OUT.hoc"), std::string::npos);
    EXPECT_TRUE(dir.list().empty());
    y->addNewLabelGroup("Ranks", true, false, false);
    y->addVertex(Vec3f(9, 9, 9));
    EXPECT_EQ(writeHOC(y->getSpatialGraphInterface(), dir.path("missing/y.hoc").c_str()), 0);
    capture.clear();
    write(*y, dir, "y.hoc");
    EXPECT_EQ(capture.lines(), std::vector<std::string>{"Warning: Isolated node 4 will be ignored!"});
}

// Edges as (points, thickness, section name, rank), sorted: what a round
// trip keeps while it renumbers vertices and groups edges by section name.
std::vector<std::string> edgeContents(const KxSpatialGraph& g) {
    std::vector<std::string> edges;
    EdgeVertexAttribute* topology = g.findEdgeAttribute("topology");
    for (int e = 0; e < g.getNumEdges(); ++e) {
        String s;
        g.getLabelName(topology, topology ? topology->getIntDataAtIdx(e) : 0, s);
        s.appendf(" rank %d:", g.findEdgeAttribute("Ranks")->getIntDataAtIdx(e));
        for (int i = 0; i < g.getNumEdgePoints(e); ++i) {
            Vec3f p = g.getEdgePoint(e, i);
            s.appendf(" %g %g %g %g", p[0], p[1], p[2],
                      g.findEdgePointAttribute("thickness")->getFloatDataAtPoint(e, i));
        }
        edges.push_back(s.std());
    }
    std::sort(edges.begin(), edges.end());
    return edges;
}

TEST(SpatialGraphHOCTest, RoundTripsKeepSectionsAndReachAFixedPoint) {
    struct Case {
        const char* name;
        std::string text;
    } cases[] = {{"branching Y", kBranchingY}, {"random tree", HocTrees::makeRandomTree(2000, 7)}};
    TempDir dir;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::unique_ptr<KxSpatialGraph> first = read(c.text);
        ASSERT_TRUE(first);
        std::unique_ptr<KxSpatialGraph> second(loadHOCToKxSpatialGraph(write(*first, dir, "1.hoc").c_str()));
        ASSERT_TRUE(second);
        EXPECT_EQ(edgeContents(*first), edgeContents(*second));
        std::unique_ptr<KxSpatialGraph> third(loadHOCToKxSpatialGraph(write(*second, dir, "2.hoc").c_str()));
        ASSERT_TRUE(third);
        // Label colours come from the reader's counter; everything else is equal.
        GraphSnapshot expected = takeSnapshot(*second), actual = takeSnapshot(*third);
        expected.parameters = actual.parameters = "";
        GraphComparisonOptions options;
        options.compareAttributeIds = false;
        EXPECT_EQ(describeDifference(expected, actual, options), "");
    }
}

// Deep trees import and export without recursion: one tree, so every section
// but the root is connected to its parent in the export.
void expectDeepTreeRoundTrip(const std::string& text, int numEdges, int numPoints, int maxRank) {
    TempDir dir;
    std::unique_ptr<KxSpatialGraph> g = read(text);
    ASSERT_TRUE(g);
    EXPECT_EQ(g->getNumEdges(), numEdges);
    EXPECT_EQ(g->getTotalNumEdgePoints(), numPoints);
    EXPECT_EQ(g->getLabelGroup("Ranks")->getMaxLabelId(), maxRank);
    std::ifstream hoc(write(*g, dir, "deep.hoc"));
    int connects = 0;
    for (std::string line; std::getline(hoc, line);) {
        connects += line.compare(0, 8, "connect ") == 0 ? 1 : 0;
    }
    EXPECT_EQ(connects, numEdges - 1);
}

TEST(SpatialGraphHOCTest, DeepTreesNeedNoDeepStack) {
    {
        SCOPED_TRACE("a chain of a million points");
        expectDeepTreeRoundTrip(HocTrees::makeChain(500000, 2), 500000, 1000000, 2);
    }
    SCOPED_TRACE("two hundred thousand branch points, one inside another");
    expectDeepTreeRoundTrip(HocTrees::makeComb(400000), 400000, 800000, 200000);
}

TEST(SpatialGraphHOCTest, DamagedFilesNeverCrashTheReader) {
    TempDir dir;
    std::unique_ptr<KxSpatialGraph> y = read(kBranchingY);
    ASSERT_TRUE(y);
    KorvaMeshMutator mutator(31);
    int built = 0;
    for (const std::string& seed : {std::string(kBranchingY), readFileBytes(write(*y, dir, "y.hoc"))}) {
        for (int n = 0; n < 2000; ++n) {
            std::string input = mutator.mutate(seed);
            KxMessageCapture capture;
            std::unique_ptr<KxSpatialGraph> g = read(input);
            built += g ? 1 : 0;
            ASSERT_TRUE(g || (!capture.lines().empty() &&
                              capture.lines().back().compare(0, 26, "Error reading file at line") == 0))
                << input;
        }
    }
    EXPECT_GT(built, 0);
}

}  // namespace
