#include "kxspatialgraph/formats/SkeletonGraphKorvaMesh.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "support/GraphComparison.h"
#include "support/GraphMeshes.h"

namespace {

// Each edge as the x coordinates of its points (which are the point indices).
std::vector<std::vector<int>> edgeRuns(const KxSpatialGraph& g) {
    std::vector<std::vector<int>> runs;
    for (int e = 0; e < g.getNumEdges(); ++e) {
        std::vector<int> run;
        for (int p = 0; p < g.getNumEdgePoints(e); ++p) {
            run.push_back(static_cast<int>(g.getEdgePoint(e, p).x));
        }
        runs.push_back(run);
    }
    return runs;
}

std::unique_ptr<KxSpatialGraph> load(Skeleton& s, KxMessageCapture& capture) {
    std::unique_ptr<KxSpatialGraph> g(loadSkeletonGraph(s.build(), "skeleton.kxm"));
    EXPECT_TRUE(g) << capture.text();
    if (g) {
        EXPECT_TRUE(graphIsConsistent(*g));
    }
    return g;
}

using Runs = std::vector<std::vector<int>>;

TEST(SkeletonGraphKorvaMeshTest, ImportsEveryRunOnce) {
    struct Case {
        const char* what;
        std::vector<std::vector<int>> neighbours;
        int vertices;
        Runs runs;
    } cases[] = {
        {"three points in a line", {{1}, {0, 2}, {1}}, 2, {{0, 1, 2}}},
        {"two ends joined directly", {{1}, {0}}, 2, {{0, 1}}},
        // 0 is a branch point with three arms of different lengths.
        {"branch point",
         {{1, 3, 6}, {0, 2}, {1}, {0, 4}, {3, 5}, {4}, {0}},
         4,
         {{0, 1, 2}, {0, 3, 4, 5}, {0, 6}}},
        // Three branch points 0, 2, 3: 0 and 2 joined by a run, 2-3 and 0-3 directly.
        {"branch points joined directly",
         {{1, 3, 4}, {0, 2}, {1, 3, 5}, {2, 0, 6}, {0}, {2}, {3}},
         6,
         {{0, 1, 2}, {0, 3}, {0, 4}, {2, 3}, {2, 5}, {3, 6}}},
        // A loop from 0 back to 0 through 1, 2, 3, and an arm to 4.
        {"loop", {{1, 3, 4}, {0, 2}, {1, 3}, {2, 0}, {0}}, 2, {{0, 1, 2, 3, 0}, {0, 4}}},
        // A closed ring of two-neighbour points becomes a loop on its first point.
        {"ring", {{1, 2}, {0, 2}, {1, 0}}, 1, {{0, 1, 2, 0}}},
        {"ring beside a line", {{1}, {0}, {3, 4}, {2, 4}, {3, 2}}, 3, {{0, 1}, {2, 3, 4, 2}}},
        // A point without neighbours stays as a vertex of its own.
        {"isolated point last", {{1}, {0}, {}}, 3, {{0, 1}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Skeleton s;
        s.neighbours = c.neighbours;
        KxMessageCapture capture;
        std::unique_ptr<KxSpatialGraph> g = load(s, capture);
        ASSERT_TRUE(g);
        EXPECT_EQ(g->getNumVertices(), c.vertices);
        EXPECT_EQ(edgeRuns(*g), c.runs);
        EXPECT_TRUE(capture.lines().empty()) << capture.text();
        // Each point's radius is its thickness; no types, no material labels.
        const PointAttribute* thickness = g->findEdgePointAttribute("Thickness");
        ASSERT_TRUE(thickness);
        for (int e = 0; e < g->getNumEdges(); ++e) {
            for (int p = 0; p < g->getNumEdgePoints(e); ++p) {
                EXPECT_EQ(thickness->getFloatDataAtPoint(e, p), 0.5f + g->getEdgePoint(e, p).x);
            }
        }
        EXPECT_FALSE(g->getLabelGroup("Materials"));
    }
}

TEST(SkeletonGraphKorvaMeshTest, MaterialTypesBecomeALabelGroup) {
    Skeleton s;
    s.neighbours = {{1}, {0, 2}, {1, 3}, {2}};
    s.withRadii = false;
    // Point 2 has no type entry: label 0. File id 5 is the second material.
    s.types = {{5, 7}, {9}, {}, {0}};
    KxParamBundle* materials = s.mesh.getParameters().addBundle("Materials");
    KxParamBundle* bone = materials->addBundle("Bone");
    bone->setInt("Id", 9);
    bone->setColor(Color(1, 1, 1));
    KxParamBundle* vessel = materials->addBundle("Vessel");
    vessel->setInt("Id", 5);
    vessel->setColor(Color(1, 0, 0));
    KxMessageCapture capture;
    std::unique_ptr<KxSpatialGraph> g = load(s, capture);
    ASSERT_TRUE(g);
    HierarchicalLabels* labels = g->getLabelGroup("Materials");
    ASSERT_TRUE(labels);
    SbColor root;
    ASSERT_TRUE(labels->getLabelColor(0, root));
    EXPECT_EQ(root, SbColor(0.8f, 0.8f, 0.8f));
    int boneId = labels->getLabelIdFromName("Bone");
    int vesselId = labels->getLabelIdFromName("Vessel");
    EXPECT_NE(boneId, vesselId);
    SbColor red;
    ASSERT_TRUE(labels->getLabelColor(vesselId, red));
    EXPECT_EQ(red, SbColor(1, 0, 0));
    PointAttribute* values = g->findEdgePointAttribute("Materials");
    ASSERT_TRUE(values);
    std::vector<int> ids;
    for (int p = 0; p < 4; ++p) {
        ids.push_back(values->getIntDataAtPoint(0, p));
    }
    EXPECT_EQ(ids, (std::vector<int>{vesselId, boneId, 0, 0}));
    EXPECT_FALSE(g->findEdgePointAttribute("Thickness")) << "the file has no radii";
}

TEST(SkeletonGraphKorvaMeshTest, RefusesBrokenNeighbourData) {
    struct Case {
        const char* what;
        std::vector<std::vector<int>> neighbours;
        const char* problem;
        int lyingCount = 0;  // replaces point 1's neighbour count when not 0
    } cases[] = {
        {"index out of range", {{1}, {0, 7}, {1}}, "neighbour index out of range (point 1)"},
        {"negative index", {{-1}}, "neighbour index out of range (point 0)"},
        // 1 and 2 point at each other only: the walk from 0 would never end.
        {"lists disagree", {{1}, {2, 2}, {1, 1}}, "does not end"},
        {"ring lists disagree", {{1, 1}, {2, 2}, {1, 1}}, "does not close"},
        {"count past the list",
         {{1}, {0}},
         "Error: skeleton graph skeleton.kxm: neighbour count past the end of NeighbourList (point 1).",
         5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Skeleton s;
        s.neighbours = c.neighbours;
        s.build();
        if (c.lyingCount != 0) {
            s.counts[1] = c.lyingCount;
        }
        KxMessageCapture capture;
        EXPECT_FALSE(loadSkeletonGraph(s.mesh, "skeleton.kxm"));
        ASSERT_EQ(capture.numErrors(), 1) << capture.text();
        EXPECT_NE(capture.lines()[0].find(c.problem), std::string::npos) << capture.text();
    }

    KorvaMesh empty;
    KxMessageCapture capture;
    EXPECT_EQ(loadSkeletonGraphToKorva(empty, "none.kxm"), 0);
    EXPECT_EQ(capture.numErrors(), 1);
}

}  // namespace
