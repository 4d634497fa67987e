#include <gtest/gtest.h>

#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "support/GraphFixtures.h"

using namespace GraphFixtures;

TEST(KxSpatialGraphTraversalTest, ConnectedComponentSelectsReachableVerticesAndEdges) {
    auto g = makeTwoComponents();
    SpatialGraphSelection first = g->getConnectedComponent(2);
    EXPECT_EQ(first.getNumVertices(), 6);
    EXPECT_EQ(first.getNumEdges(), 3);
    for (int v = 0; v < 6; ++v) {
        EXPECT_EQ(first.isSelectedVertex(v), v <= 2) << v;
    }
    for (int e = 0; e < 3; ++e) {
        EXPECT_EQ(first.isSelectedEdge(e), e <= 1) << e;
    }
    SpatialGraphSelection isolated = g->getSpatialGraphInterface()->doGetConnectedComponent(5);
    EXPECT_EQ(isolated.getNumSelectedVertices(), 1);
    EXPECT_EQ(isolated.getNumSelectedEdges(), 0);

    // A self-loop is selected and leads back to its vertex.
    auto loop = makeLoop();
    SpatialGraphSelection all = loop->getConnectedComponent(0);
    EXPECT_EQ(all.getNumSelectedVertices(), 3);
    EXPECT_EQ(all.getNumSelectedEdges(), 4);
}

TEST(KxSpatialGraphTraversalTest, SearchDoesNotFollowSelectedEdgesAndSurvivesLongChains) {
    auto g = makeChain(5);
    SpatialGraphSelection s(g->getNumVertices(), g->getNumEdges());
    s.selectEdge(2);  // blocks the way from 1 to 3
    g->depthFirstSearch(1, s);
    EXPECT_TRUE(s.isSelectedVertex(0));
    EXPECT_TRUE(s.isSelectedVertex(2));
    EXPECT_FALSE(s.isSelectedVertex(3));
    EXPECT_FALSE(s.isSelectedEdge(3));

    auto chain = makeChain(100000);
    EXPECT_EQ(chain->getConnectedComponent(0).getNumSelectedEdges(), 99999);
}
