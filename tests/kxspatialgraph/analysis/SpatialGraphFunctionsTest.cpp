#include "kxspatialgraph/analysis/SpatialGraphFunctions.h"

#include <cmath>
#include <vector>

#include <Inventor/SbRotation.h>
#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"
#include "support/SelectionBits.h"

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

// Several gaps of one edge and several edges in one pass: the inserted points
// land in their own gaps, and the old points keep their values.
TEST(SpatialGraphFunctionsTest, ResamplingFillsEveryGapOfEveryEdgeAndRefusesBadDistances) {
    KxSpatialGraph g;
    g.addVertex(Vec3f(0, 0, 0));
    g.addVertex(Vec3f(17, 0, 0));
    g.addEdge(0, 1, DArray<Vec3f>{Vec3f(0, 0, 0), Vec3f(10, 0, 0), Vec3f(11, 0, 0), Vec3f(17, 0, 0)});
    g.addEdge(1, 0);
    GraphFixtures::addIdentityMarkers(g);
    ASSERT_TRUE(SpatialGraphFunctions::resampleWithMaximumPointDistance(&g, 3));
    expectConsistent(g);
    std::vector<float> xs;
    std::vector<int> markers;
    for (int p = 0; p < g.getNumEdgePoints(0); ++p) {
        xs.push_back(g.getEdgePoint(0, p)[0]);
        markers.push_back(g.findEdgePointAttribute("PointMarker")->getIntDataAtPoint(0, p));
    }
    EXPECT_EQ(xs, (std::vector<float>{0, 2.5f, 5, 7.5f, 10, 11, 14, 17}));
    EXPECT_EQ(markers, (std::vector<int>{0, 0, 0, 0, 1, 2, 0, 3}));
    EXPECT_EQ(g.getNumEdgePoints(1), 7);

    KxMessageCapture console;
    GraphSnapshot before = takeSnapshot(g);
    for (float bad : {0.0f, -1.0f, NAN, 1e-9f}) {
        EXPECT_FALSE(SpatialGraphFunctions::resampleWithMaximumPointDistance(&g, bad));
    }
    EXPECT_EQ(console.numErrors(), 4);
    EXPECT_TRUE(sameGraph(before, g));
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
    EXPECT_EQ(selectionBits(s, false), "V:00001 E:010");
    s = SpatialGraphFunctions::getEdgesWithLabelId(g.get(), "Unknown", 0);
    EXPECT_EQ(selectionBits(s, false), "V:00000 E:000");
    BitField sub = SpatialGraphFunctions::getLabelIdsInSubTree(g->getLabelGroup("Neuron"), "Axon");
    EXPECT_TRUE(sub.size() == branch + 1 && sub.count() == 1 && sub.test(branch));
    EXPECT_TRUE(SpatialGraphFunctions::getLabelIdsInSubTree(g->getLabelGroup("Neuron"), "None").isEmpty());
}
