#include "kxspatialgraph/analysis/SpatialGraphFunctions.h"

#include <cmath>
#include <random>

#include <Inventor/SbRotation.h>
#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"

namespace {

// The plain procedure: one insertEdgePoints call per gap, moving on by one point.
void resampleOneGapAtATime(KxSpatialGraph& g, float m) {
    for (int e = 0; e < g.getNumEdges(); ++e) {
        for (int i = 1; i < g.getNumEdgePoints(e); ++i) {
            Vec3f a = g.getEdgePoint(e, i - 1), b = g.getEdgePoint(e, i);
            float d = (b - a).length();
            if (d > m) {
                int k = static_cast<int>((d - 0.001) / m);
                DArray<Vec3f> points;
                for (int j = 1; j <= k; ++j) {
                    points.append(a + (b - a) * static_cast<float>(j) / static_cast<float>(k + 1));
                }
                g.insertEdgePoints(e, i, points);
            }
        }
    }
}

}  // namespace

TEST(SpatialGraphFunctionsTest, KindsOfVerticesAndContours) {
    // 0 -- 1 -- 2 with 2 -- 3, 2 -- 4; a loop edge at 5; 6 and 7 0.00005 apart, 8 and 9 0.0002 apart; 10
    // alone.
    auto g = std::make_unique<KxSpatialGraph>();
    for (Vec3f c :
         {Vec3f(0, 0, 0), Vec3f(1, 0, 0), Vec3f(2, 0, 0), Vec3f(3, 1, 0), Vec3f(3, -1, 0), Vec3f(5, 5, 5),
          Vec3f(6, 0, 0), Vec3f(6.00005f, 0, 0), Vec3f(7, 0, 0), Vec3f(7.0002f, 0, 0), Vec3f(9, 9, 9)}) {
        g->addVertex(c);
    }
    for (auto [s, t] : {std::pair{0, 1}, {1, 2}, {2, 3}, {2, 4}, {5, 5}, {6, 7}, {8, 9}}) {
        g->addEdge(s, t);
    }
    EXPECT_TRUE(SpatialGraphFunctions::getEndingNodes(g.get()) == (DArray<int>{0, 3, 4, 6, 7, 8, 9}));
    EXPECT_TRUE(SpatialGraphFunctions::getBranchingNodes(g.get()) == (DArray<int>{2}));
    EXPECT_EQ(SpatialGraphFunctions::getNodeType(g.get(), 5), NodeType::INTERMEDIATE_NODE);
    EXPECT_EQ(SpatialGraphFunctions::getNodeType(g.get(), 10), NodeType::ISOLATED_NODE);
    SpatialGraphSelection selection(g.get());
    selection.selectAllVertices();
    EXPECT_EQ(SpatialGraphFunctions::getNumberOfNodesOfTypeInSelection(g.get(), selection,
                                                                       NodeType::INTERMEDIATE_NODE),
              2);
    const int cases[][3] = {{4, 5, 1}, {5, 6, 1}, {6, 8, 0}, {0, 0, 0}};  // edge, its vertex, contour
    for (const int* c : cases) {
        EXPECT_EQ(SpatialGraphFunctions::isContour(g.get(), c[0]), c[2] != 0) << c[0];
        EXPECT_EQ(SpatialGraphFunctions::isContourVertex(g.get(), c[1]), c[2] != 0) << c[1];
    }
    KxMessageCapture console;
    EXPECT_FALSE(SpatialGraphFunctions::isContour(g.get(), 7));
    EXPECT_EQ(console.numErrors(), 1);
}

TEST(SpatialGraphFunctionsTest, RemovingContoursKeepsVerticesWithOtherEdges) {
    // A loop edge at 0, which also starts a chain 0 - 1 - 2; an edge between 3 and 4, 0.00005 apart.
    auto g = GraphFixtures::makeChain(3);
    g->addVertex(Vec3f(5, 5, 5));
    g->addVertex(Vec3f(5.00005f, 5, 5));
    g->addEdge(3, 4);
    g->addEdge(0, 0);
    GraphFixtures::addIdentityMarkers(*g);
    auto expected = GraphFixtures::makeChain(3);
    GraphFixtures::addIdentityMarkers(*expected);
    GraphSnapshot unchanged = takeSnapshot(*expected);
    EXPECT_EQ(SpatialGraphFunctions::removeContours(g.get()), 2);
    EXPECT_TRUE(sameGraph(takeSnapshot(*expected), *g, {false, true}));
    EXPECT_EQ(SpatialGraphFunctions::removeContours(expected.get()), 0);
    EXPECT_TRUE(sameGraph(unchanged, *expected));
}

TEST(SpatialGraphFunctionsTest, ResamplingInsertsEvenlySpacedPoints) {
    struct Case {
        float maxDistance;
        int numPoints;
        float spacing;
    } cases[] = {{3, 5, 2.5f}, {5, 3, 5}, {10, 2, 10}, {20, 2, 10}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.maxDistance);
        auto g = GraphFixtures::makeChain(2);
        g->setVertexCoords(1, Vec3f(10, 0, 0));
        g->setEdgePoint(0, 1, Vec3f(10, 0, 0));
        ASSERT_TRUE(SpatialGraphFunctions::resampleWithMaximumPointDistance(g.get(), c.maxDistance));
        ASSERT_EQ(g->getNumEdgePoints(0), c.numPoints);
        for (int i = 1; i < c.numPoints; ++i) {
            EXPECT_FLOAT_EQ(g->getEdgePoint(0, i).distance(g->getEdgePoint(0, i - 1)), c.spacing);
        }
        EXPECT_FLOAT_EQ(SpatialGraphFunctions::getEdgeLength(g.get(), 0), 10);
    }
}

TEST(SpatialGraphFunctionsTest, ResamplingInOnePassEqualsOneGapAtATime) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<float> coordinate(-20, 20);
    auto g = GraphFixtures::makeChain(30);
    for (int e = 0; e < g->getNumEdges(); ++e) {
        for (int i = 0; i < g->getNumEdgePoints(e); ++i) {
            g->setEdgePoint(e, i, Vec3f(coordinate(rng), coordinate(rng), i % 2 ? 0 : 3.0f * e));
        }
    }
    GraphFixtures::addIdentityMarkers(*g);
    auto expected = g->duplicate();
    KxMessageCapture console;
    for (float m : {7.0f, 3.0f, 1.5f, 0.25f}) {
        SCOPED_TRACE(m);
        resampleOneGapAtATime(*static_cast<KxSpatialGraph*>(expected), m);
        ASSERT_TRUE(SpatialGraphFunctions::resampleWithMaximumPointDistance(g.get(), m));
        EXPECT_TRUE(sameGraph(takeSnapshot(*expected), *g, {false, true}));
    }
    delete expected;
    GraphSnapshot before = takeSnapshot(*g);
    for (float bad : {0.0f, -1.0f, NAN, 1e-9f}) {
        EXPECT_FALSE(SpatialGraphFunctions::resampleWithMaximumPointDistance(g.get(), bad));
    }
    EXPECT_EQ(console.numErrors(), 4);
    EXPECT_TRUE(sameGraph(before, *g));
}

TEST(SpatialGraphFunctionsTest, TransformedEdgeGeometry) {
    auto g = GraphFixtures::makeChain(3);
    SbMatrix m;
    m.setTransform(SbVec3f(1, 0, 0), SbRotation::identity(), SbVec3f(2, 3, 4));
    g->setTransform(m);
    EXPECT_FLOAT_EQ(SpatialGraphFunctions::getTransformedEdgeLength(g.get(), 1), 2);
    Box3f box = SpatialGraphFunctions::getTransformedEdgeBoundingBox(g->getSpatialGraphInterface(), 1);
    EXPECT_TRUE(box == Box3f(3, 5, 0, 0, 0, 0));
    g->setEdgePoints(1, DArray<Vec3f>{Vec3f(1, 1, 1)});
    box = SpatialGraphFunctions::getTransformedEdgeBoundingBox(g->getSpatialGraphInterface(), 1);
    EXPECT_TRUE(box == Box3f(3, 3, 3, 3, 4, 4));
    g->setEdgePoints(1, DArray<Vec3f>());
    box = SpatialGraphFunctions::getTransformedEdgeBoundingBox(g->getSpatialGraphInterface(), 1);
    EXPECT_TRUE(box == Box3f(0, -1e10f, 0, -1e10f, 0, -1e10f));
}

TEST(SpatialGraphFunctionsTest, ElementsWithALabel) {
    auto g = GraphFixtures::makeY();
    g->addVertex(Vec3f(9, 9, 9));
    g->addNewLabelGroup("Neuron", true, true, false);
    int axon = g->addLabel("Neuron", 0, "Axon", SbColor(1, 0, 0));
    int branch = g->addLabel("Neuron", axon, "Branch", SbColor(0, 1, 0));
    g->findEdgeAttribute("Neuron")->setIntDataAtIdx(1, axon);
    g->findEdgeAttribute("Neuron")->setIntDataAtIdx(2, branch);
    g->findVertexAttribute("Neuron")->setIntDataAtIdx(4, axon);
    SpatialGraphSelection s = SpatialGraphFunctions::getEdgesAndVerticesWithLabelId(g.get(), "Neuron", axon);
    EXPECT_EQ(s.getNumVertices(), 5);
    EXPECT_TRUE(s.getEdgeSelection().test(1) && s.getNumSelectedEdges() == 1);
    EXPECT_TRUE(s.getVertexSelection().test(4) && s.getNumSelectedVertices() == 1);
    s = SpatialGraphFunctions::getEdgesWithLabelId(g.get(), "Unknown", 0);
    EXPECT_TRUE(s.isEmpty());
    EXPECT_EQ(s.getNumEdges(), 3);
    BitField sub = SpatialGraphFunctions::getLabelIdsInSubTree(g->getLabelGroup("Neuron"), "Axon");
    EXPECT_TRUE(sub.size() == branch + 1 && sub.count() == 1 && sub.test(branch));
    EXPECT_TRUE(SpatialGraphFunctions::getLabelIdsInSubTree(g->getLabelGroup("Neuron"), "None").isEmpty());
}
