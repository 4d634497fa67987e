#include "kxspatialgraph/formats/SpatialGraphSWC.h"

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "support/DecimalCommaLocale.h"
#include "support/GraphComparison.h"
#include "support/MorphologyGenerators.h"
#include "support/PackageFormatsTest.h"
#include "support/TempDir.h"

namespace {

std::unique_ptr<KxSpatialGraph> read(const std::string& text) {
    return std::unique_ptr<KxSpatialGraph>(readSWC(text.data(), text.size(), "t.swc"));
}

// The captured lines joined by newlines.
std::string messages(const KxMessageCapture& capture) {
    std::string text = capture.text();
    return text.empty() || text.back() != '\n' ? text : text.substr(0, text.size() - 1);
}

std::string write(const KxSpatialGraph& graph) {
    std::ostringstream out;
    EXPECT_TRUE(writeSWC(graph.getSpatialGraphInterface(), out));
    return out.str();
}

// Each edge as "source>target:" and its points' "x,y,z/radius/type", then
// the Topology labels as "id=name".
std::string runs(const KxSpatialGraph& g) {
    const PointAttribute* thickness = g.findEdgePointAttribute("thickness");
    const PointAttribute* topology = g.findEdgePointAttribute("Topology");
    String s;
    for (int e = 0; e < g.getNumEdges(); ++e) {
        s.appendf("%d>%d:", g.getEdgeSource(e), g.getEdgeTarget(e));
        for (int p = 0; p < g.getNumEdgePoints(e); ++p) {
            const Vec3f q = g.getEdgePoint(e, p);
            s.appendf(" %g,%g,%g/%g/%d", q[0], q[1], q[2], thickness->getFloatDataAtPoint(e, p),
                      topology->getIntDataAtPoint(e, p));
        }
        s.appendf("; ");
    }
    String name;
    for (int id : g.getLabelGroup("Topology")->getChildIds(0)) {
        g.getLabelName(topology, id, name);
        s.appendf("%d=%s ", id, name.getString());
    }
    return s.std();
}

// The polylines as a sorted list of undirected segments between
// "x y z radius type" points: what an export keeps while it re-roots the
// tree, which splits and joins lines and repeats the new root's point.
std::vector<std::string> segments(const KxSpatialGraph& g) {
    const PointAttribute* thickness = g.findEdgePointAttribute("thickness");
    const PointAttribute* topology = g.findEdgePointAttribute("Topology");
    auto key = [&](int e, int p) {
        const Vec3f q = g.getEdgePoint(e, p);
        return String::format("%f %f %f %f %d", q[0], q[1], q[2], thickness->getFloatDataAtPoint(e, p),
                              topology->getIntDataAtPoint(e, p))
            .std();
    };
    std::vector<std::string> list;
    for (int e = 0; e < g.getNumEdges(); ++e) {
        for (int p = 1; p < g.getNumEdgePoints(e); ++p) {
            const std::string a = key(e, p - 1), b = key(e, p);
            if (a != b) {
                list.push_back(std::min(a, b) + " | " + std::max(a, b));
            }
        }
    }
    std::sort(list.begin(), list.end());
    return list;
}

// Vertices -1: the text is refused.
TEST(SpatialGraphSWCTest, ReadsLinesAsTheyComeAndSaysWhatItDropsReplacesOrRefuses) {
    struct Case {
        const char* text;
        int vertices, edges, points;
        const char* messages;
    } cases[] = {
        // CRLF, blank lines, a signed number, a comment after the columns, a
        // number too small for a float.
        {"# head\r\n\r\n  \t\n1 1 0 0 0 1 -1\r\n2 3 +1 0 1e-50 0.5 1 # tip\r\n", 2, 1, 3, ""},
        {"1 1 0 0 0 1 -1\n2 3 1 0 0 1 1\n3 3 2 0 0 1 2", 2, 1, 3,
         "Warning: t.swc: line 3 has no newline at its end and is ignored."},
        {"1 1 0 0 0 1 -1\n2 3 1 0 0 1 1\n# no newline", 2, 1, 3, ""},
        // The repeated line counts twice as child of 2, which becomes a branch point.
        {"1 1 0 0 0 1 -1\n2 3 1 0 0 1 1\n3 3 2 0 0 1 2\n3 3 2 1 0 1 2\n", 3, 2, 5,
         "Warning: t.swc: 1 line(s) repeat an id read before (the first in line 4); each replaces the "
         "earlier point, whose parent keeps counting it as a child."},
        {"1 1 0 0 0 1 -1\n8 3 1 0 0 1 7\n9 3 2 0 0 1 7\n", 4, 2, 4,
         "Warning: t.swc: 1 parent id(s) have no line of their own (the first: 7); each becomes a point at "
         "the origin with radius 0 and type 0.\nWarning point (0.000000,0.000000,0.000000) is isolated ..."},
        {"1 1 5 6 7 1 -1\n", 1, 0, 0, "Warning point (5.000000,6.000000,7.000000) is isolated ..."},
        {"", 0, 0, 0, ""},
        {"1 1 0 0 0 1 -1\n2 3 0 0 1 1\n", -1, 0, 0,
         "Error: t.swc, line 2: expected 7 numbers (id, type, x, y, z, radius, parent) but found 6."},
        {"1 1 0 0 0 # 1 -1\n", -1, 0, 0,
         "Error: t.swc, line 1: expected 7 numbers (id, type, x, y, z, radius, parent) but found 5."},
        {"1.5 1 0 0 0 1 -1\n", -1, 0, 0, "Error: t.swc, line 1: the id column \"1.5\" is not an integer."},
        {"# c\n\n1 1 0 0 0 1 -1.0\n", -1, 0, 0,
         "Error: t.swc, line 3: the parent column \"-1.0\" is not an integer."},
        {"1 soma 0 0 0 1 -1\n", -1, 0, 0,
         "Error: t.swc, line 1: the type column \"soma\" is not an integer."},
        {"1 1 0 1,5 0 1 -1\n", -1, 0, 0,
         "Error: t.swc, line 1: the y column \"1,5\" is not a finite number."},
        {"1 1 0 0 0 nan -1\n", -1, 0, 0,
         "Error: t.swc, line 1: the radius column \"nan\" is not a finite number."},
        {"1 1 0 0 1e99 1 -1\n", -1, 0, 0,
         "Error: t.swc, line 1: the z column \"1e99\" is not a finite number."},
        {"99999999999 1 0 0 0 1 -1\n", -1, 0, 0,
         "Error: t.swc, line 1: the id column \"99999999999\" is not an integer."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        KxMessageCapture capture;
        std::unique_ptr<KxSpatialGraph> g = read(c.text);
        EXPECT_EQ(messages(capture), c.messages);
        if (c.vertices < 0) {
            EXPECT_FALSE(g);
            continue;
        }
        ASSERT_TRUE(g);
        EXPECT_EQ(g->getNumVertices(), c.vertices);
        EXPECT_EQ(g->getNumEdges(), c.edges);
        EXPECT_EQ(g->getTotalNumEdgePoints(), c.points);
        expectConsistent(*g);
    }
}

// Numbers are read alike under a locale with a decimal comma.
TEST(SpatialGraphSWCTest, RunsGoFromTheLeavesToTheRootInIdTableOrder) {
    struct Case {
        const char* text;
        const char* runs;
    } cases[] = {
        // A root with one child: the run ends with the root's point twice.
        {"1 1 0 0 0 3 -1\n2 3 1 0 0 2 1\n3 3 2 0 0 1 2\n",
         "0>1: 2,0,0/1/3 1,0,0/2/3 0,0,0/3/1 0,0,0/3/1; 1=Label1 3=Label3 "},
        // Unsorted ids: records in order of first appearance 5, 4, 1, -1, 6, 7; each
        // type's label has the type as id; type 0 has none.
        {"5 3 2 0 0 0.5 4\n4 3 1 0 0 0.75 1\n1 1 0 0 0 2 -1\n6 2 0 1 0 0.25 1\n7 0 0 2 0 1 6\n",
         "0>1: 2,0,0/0.5/3 1,0,0/0.75/3 0,0,0/2/1; 2>1: 0,2,0/1/0 0,1,0/0.25/2 0,0,0/2/1; 1=Label1 2=Label2 "
         "3=Label3 "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        std::unique_ptr<KxSpatialGraph> g;
        {
            DecimalCommaLocale locale;
            g = read(c.text);
        }
        ASSERT_TRUE(g);
        expectConsistent(*g);
        EXPECT_EQ(runs(*g), c.runs);
    }
}

// A hand-made graph:  A --e0[3]--> B <--e1[2]-- C, B --e2[2]--> D, E alone.
std::unique_ptr<KxSpatialGraph> makeWriterGraph(bool withAttributes) {
    auto g = std::make_unique<KxSpatialGraph>();
    Vec3f a(0, 0, 0), b(1, 0, 0), c(2, 0, 0), d(1, 1, 0);
    for (const Vec3f& v : {a, b, c, d, Vec3f(5, 5, 5)}) {
        g->addVertex(v);
    }
    g->addEdge(0, 1, DArray<Vec3f>{a, Vec3f(0.5f, 0, 0), b});
    g->addEdge(2, 1, DArray<Vec3f>{c, b});
    g->addEdge(1, 3, DArray<Vec3f>{b, d});
    if (withAttributes) {
        auto* ranks = static_cast<EdgeVertexAttribute*>(
            g->addAttribute("Ranks", KxSpatialGraph::EDGE, PrimType::INT32, 1));
        auto* thickness = static_cast<PointAttribute*>(
            g->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
        auto* topology = static_cast<PointAttribute*>(
            g->addAttribute("Topology", KxSpatialGraph::POINT, PrimType::INT32, 1));
        const int rank[] = {1, 0, 2};
        const int types[3][3] = {{1, 3, 3}, {2, 4}, {3, 4}};
        for (int e = 0; e < 3; ++e) {
            ranks->setIntDataAtIdx(e, rank[e]);
            for (int p = 0; p < g->getNumEdgePoints(e); ++p) {
                thickness->setFloatDataAtPoint(0.25f * static_cast<float>(e * 4 + p + 1), e, p);
                topology->setIntDataAtPoint(e, p, types[e][p]);
            }
        }
    }
    return g;
}

TEST(SpatialGraphSWCTest, WriterWalksFromRankedLinesAndWritesExactColumns) {
    struct Case {
        bool withAttributes;
        const char* text;
        const char* messages;
    } cases[] = {
        {true,
         " 1 1 0.000000 0.000000 0.000000 0.250000 -1\n"
         " 2 3 0.500000 0.000000 0.000000 0.500000 1\n"
         " 3 3 1.000000 0.000000 0.000000 0.750000 2\n"
         " 4 2 2.000000 0.000000 0.000000 1.250000 3\n"
         " 5 4 1.000000 1.000000 0.000000 2.500000 3\n"
         " 6 0 5.000000 5.000000 5.000000 0.0 -1\n",
         "Warning: Not all segments have rank information specified!\nWarning: Isolated node 4 ..."},
        {false,
         " 1 1 0.000000 0.000000 0.000000 1.000000 -1\n"
         " 2 1 0.500000 0.000000 0.000000 1.000000 1\n"
         " 3 1 1.000000 0.000000 0.000000 1.000000 2\n"
         " 4 1 2.000000 0.000000 0.000000 1.000000 3\n"
         " 5 1 1.000000 1.000000 0.000000 1.000000 3\n"
         " 6 0 5.000000 5.000000 5.000000 0.0 -1\n",
         "Warning: Not all segments have rank information specified!\nWarning: Isolated node 4 ..."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.withAttributes);
        std::unique_ptr<KxSpatialGraph> g = makeWriterGraph(c.withAttributes);
        DecimalCommaLocale locale;  // numbers are written alike under it
        KxMessageCapture capture;
        EXPECT_EQ(write(*g), c.text);
        EXPECT_EQ(messages(capture), c.messages);
    }
    // Without the unranked edge no rank warning: edge 2 (rank 2) is reached from edge 0.
    std::unique_ptr<KxSpatialGraph> g = makeWriterGraph(true);
    static_cast<EdgeVertexAttribute*>(g->findEdgeAttribute("Ranks"))->setIntDataAtIdx(1, 1);
    KxMessageCapture capture;
    EXPECT_EQ(write(*g).substr(0, 45), " 1 1 0.000000 0.000000 0.000000 0.250000 -1\n ");
    EXPECT_EQ(messages(capture), "Warning: Isolated node 4 ...");
}

// Every fixture loads consistently, and its export describes the same tree.
TEST(SpatialGraphSWCTest, RealFilesLoadAndSurviveARoundTrip) {
    struct Case {
        const char* file;
        int vertices, edges, points;
    } cases[] = {
        {"BlueCelluLab/C210401C.swc", 332, 331, 7487},
        {"BlueCelluLab/rr110330_C3_idA.swc", 247, 246, 16923},
        {"MorphIO/disconnected_neurite.swc", 8, 6, 14},
        {"MorphIO/neurite_wrong_root_point.swc", 3, 2, 8},
        {"MorphIO/reversed_NRN_neurite_order.swc", 4, 3, 9},
        {"MorphIO/simple-trailing-space.swc", 2, 1, 4},
        {"MorphIO/simple-windows-eol.swc", 7, 6, 14},
        {"MorphIO/simple.swc", 7, 6, 14},
        {"MorphIO/soma_cylinders.swc", 4, 3, 9},
        {"MorphIO/soma_three_points_cylinder.swc", 2, 1, 3},
        {"MorphIO/three_point_soma.swc", 7, 6, 28},
        {"NEURON/c91662.swc", 196, 195, 1704},
        {"NeuroM/Neuron.swc", 86, 85, 931},
        {"NeuroM/Neuron_disconnected_components.swc", 94, 89, 931},
        {"NeuroM/Neuron_missing_ids.swc", 8, 6, 13},
        {"NeuroM/empty_segments.swc", 2, 1, 4},
        {"NeuroM/repeated_id.swc", 3, 2, 7},
        {"NeuroM/sample_disordered.swc", 9, 8, 60},
        {"NeuroM/simple_reversed.swc", 7, 6, 14},
        {"NeuroM/split_soma_two_neurites.swc", 5, 4, 14},
        {"NeuroM/undefined_type.swc", 7, 6, 14},
        {"hoc2swc/CA1.swc", 174, 173, 2589},
        {"hoc2swc/NoTemplate.swc", 3, 2, 27},
        {"hoc2swc/TestCell.swc", 3, 2, 27},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        KxMessageCapture capture;
        std::unique_ptr<KxSpatialGraph> g =
            read(readFileBytes(KORVA_FIXTURES_DIR "/external/" + std::string(c.file)));
        ASSERT_TRUE(g) << capture.text();
        EXPECT_EQ(g->getNumVertices(), c.vertices);
        EXPECT_EQ(g->getNumEdges(), c.edges);
        EXPECT_EQ(g->getTotalNumEdgePoints(), c.points);
        expectConsistent(*g);
        std::unique_ptr<KxSpatialGraph> again = read(write(*g));
        ASSERT_TRUE(again);
        EXPECT_EQ(segments(*again), segments(*g));
        EXPECT_EQ(capture.numErrors(), 0) << capture.text();
    }
}

using SpatialGraphSWCFilesTest = PackageFormatsTest;

TEST_F(SpatialGraphSWCFilesTest, MissingFileFailsWithoutAddingAnything) {
    KxMessageCapture capture;
    int poolSize = theObjectPool->size();
    EXPECT_EQ(loadSWCToKorva(dir_.path("none.swc").c_str()), 0);
    EXPECT_EQ(theObjectPool->size(), poolSize);
    EXPECT_TRUE(capture.contains("Error while opening \"" + dir_.path("none.swc") + "\" ..."));
    EXPECT_EQ(writeSWC(nullptr, dir_.path("x.swc").c_str()), 0);
    EXPECT_EQ(writeSWC(read("1 1 0 0 0 1 -1\n")->getSpatialGraphInterface(), dir_.path("no/x.swc").c_str()),
              0);
}

TEST(SpatialGraphSWCTest, DeepTreesNeedNoDeepStack) {
    struct Case {
        std::string text;
        int vertices, edges, linesWritten;
    } cases[] = {
        // The root with one child is written twice.
        {MorphologyGenerators::branchingTree(1000000, 1000000), 2, 1, 1000001},
        // The last spine point has one child: 2 * 200000 - 1 vertices.
        {MorphologyGenerators::nestedBranches(200000), 399999, 399998, 400000},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.vertices);
        KxMessageCapture capture;
        std::unique_ptr<KxSpatialGraph> g = read(c.text);
        ASSERT_TRUE(g);
        EXPECT_EQ(g->getNumVertices(), c.vertices);
        EXPECT_EQ(g->getNumEdges(), c.edges);
        std::string text = write(*g);
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), c.linesWritten);
        std::unique_ptr<KxSpatialGraph> back = read(text);
        ASSERT_TRUE(back);
        EXPECT_EQ(back->getTotalNumEdgePoints(), g->getTotalNumEdgePoints() + (c.edges == 1 ? 1 : 0));
    }
}

// The tree's text with every id and parent id of lines [first, end) moved
// by offset (roots keep -1), and the parents pointing into those lines too.
std::string withIdsMoved(const std::string& text, int first, int end, long long offset) {
    std::istringstream in(text);
    std::ostringstream out;
    std::string line;
    auto moved = [&](long long id) { return id >= first && id < end ? id + offset : id; };
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        long long id, parent;
        std::string type, x, y, z, r;
        fields >> id >> type >> x >> y >> z >> r >> parent;
        out << moved(id) << ' ' << type << ' ' << x << ' ' << y << ' ' << z << ' ' << r << ' '
            << moved(parent) << '\n';
    }
    return out.str();
}

// Ids that count up from 1 and ids anywhere else in int's range are looked up
// by different means; the graph must not depend on which.
TEST(SpatialGraphSWCTest, IdsFarFromTheLineCountReadLikeSmallOnes) {
    const std::string text = MorphologyGenerators::branchingTree(3000, 40);
    std::unique_ptr<KxSpatialGraph> first = read(text);
    ASSERT_TRUE(first);
    GraphSnapshot expected = takeSnapshot(*first);
    struct Case {
        int first, end;
        long long offset;
    } cases[] = {
        {1, 3001, 2000000000},   // all beyond
        {1, 3001, -2000000000},  // all negative
        {1000, 2000, 100000},    // a middle third beyond, the rest small
        {2500, 3001, -1000000},  // the last lines negative
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.offset);
        std::unique_ptr<KxSpatialGraph> g = read(withIdsMoved(text, c.first, c.end, c.offset));
        ASSERT_TRUE(g);
        GraphSnapshot actual = takeSnapshot(*g);
        // Label colours come from one counter per process, so every read differs there.
        EXPECT_NE(actual.parameters, expected.parameters);
        actual.parameters = expected.parameters;
        EXPECT_EQ(describeDifference(expected, actual, {false, true}), "");
    }
}

}  // namespace
