#include <gtest/gtest.h>

#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "support/GraphFixtures.h"
#include "support/SelectionBits.h"

using namespace GraphFixtures;

TEST(KxSpatialGraphTraversalTest, ConnectedComponentSelectsReachableVerticesAndEdges) {
    auto g = makeTwoComponents();
    EXPECT_EQ(selectionBits(g->getConnectedComponent(2), false), "V:111000 E:110");
    EXPECT_EQ(selectionBits(g->getSpatialGraphInterface()->doGetConnectedComponent(5), false),
              "V:000001 E:000");
    // A self-loop is selected and leads back to its vertex.
    EXPECT_EQ(selectionBits(makeLoop()->getConnectedComponent(0), false), "V:111 E:1111");
}

TEST(KxSpatialGraphTraversalTest, SearchDoesNotFollowSelectedEdgesAndSurvivesLongChains) {
    auto g = makeChain(5);
    SpatialGraphSelection s(g->getNumVertices(), g->getNumEdges());
    s.selectEdge(2);  // blocks the way from 1 to 3
    g->depthFirstSearch(1, s);
    EXPECT_EQ(selectionBits(s, false), "V:11100 E:1110");

    auto chain = makeChain(100000);
    EXPECT_EQ(chain->getConnectedComponent(0).getNumSelectedEdges(), 99999);
}
