#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxApplication.h"
#include "korva/core/KxInfoTags.h"
#include "korva/core/KxParamBundle.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"

using namespace GraphFixtures;

namespace {

using Edges = std::vector<std::pair<int, int>>;
using Ints = std::vector<int>;
using Lists = std::vector<Ints>;

}  // namespace

TEST(KxSpatialGraphTest, RemovingEdgesKeepsListOrderAndMovesLoopsDownTwice) {
    // Vertex 1's list is 0, 2, 1: not ascending, so the order must survive.
    auto build = [](KxSpatialGraph& g) {
        for (int i = 0; i < 4; ++i) {
            g.addVertex(Vec3f(static_cast<float>(i), 0, 0));
        }
        g.addEdge(0, 1);
        g.addEdge(2, 1);
        g.addEdge(1, 3);
        g.setEdgeTarget(1, 3);
        g.setEdgeTarget(1, 1);
    };
    KxSpatialGraph g;
    KxSpatialGraph bulk;
    build(g);
    build(bulk);
    EXPECT_EQ(takeSnapshot(g).incidence[1], (Ints{0, 2, 1}));
    g.removeEdge(0);
    bulk.removeMultipleEdges(DArray<int>{0});
    for (const KxSpatialGraph* r : {&g, &bulk}) {
        EXPECT_EQ(takeSnapshot(*r).incidence, (Lists{{}, {1, 0}, {0}, {1}}));
        EXPECT_EQ(takeSnapshot(*r).edges, (Edges{{2, 1}, {1, 3}}));
        expectConsistent(*r);
    }

    // A later self-loop moves down with both of its entries, one by one or in bulk.
    auto loop = makeLoop();
    loop->removeEdge(1);
    EXPECT_EQ(takeSnapshot(*loop).incidence[2], (Ints{1, 2, 2}));
    EXPECT_EQ(takeSnapshot(*loop).edges, (Edges{{0, 1}, {2, 0}, {2, 2}}));
    auto loopBulk = makeLoop();
    loopBulk->removeMultipleEdges(DArray<int>{0, 1});
    EXPECT_EQ(takeSnapshot(*loopBulk).incidence, (Lists{{0}, {}, {0, 1, 1}}));
}

TEST(KxSpatialGraphTest, RemovingVerticesRenumbersEdgeEndsOnly) {
    auto g = makeTwoComponents();
    g->removeVertex(5);
    g->removeVertex(0);  // vertex 0 still has edge 0: the edge keeps index 0
    EXPECT_EQ(takeSnapshot(*g).edges, (Edges{{0, 0}, {0, 1}, {2, 3}}));

    // An unknown end is stored without a list entry (no crash) and renumbering leaves it as it is.
    KxSpatialGraph h;
    h.addVertex(Vec3f(0, 0, 0));
    h.addEdge(0, 3);
    EXPECT_EQ(takeSnapshot(h).incidence, (Lists{{0}}));
    h.addVertex(Vec3f(1, 0, 0));
    h.addVertex(Vec3f(2, 0, 0));
    h.removeMultipleVertices(DArray<int>{1});
    EXPECT_EQ(h.getEdgeTarget(0), 3);
}

TEST(KxSpatialGraphTest, ReattachingMovesListEntryAndEndPoint) {
    auto g = makeY();
    g->setEdgeSource(2, 1);  // 3->0 becomes 1->0
    g->setEdgeTarget(0, 3);  // 0->1 becomes 0->3
    EXPECT_EQ(takeSnapshot(*g).incidence, (Lists{{0, 1, 2}, {2}, {1}, {0}}));
    EXPECT_EQ(g->getEdgePoint(0, 2), g->getVertexCoords(3));
    expectConsistent(*g);
    // An end outside the graph has no coordinates to take: the points stay.
    const Vec3f first = g->getEdgePoint(2, 0);
    g->setEdgeSource(2, 99);
    EXPECT_EQ(g->getEdgePoint(2, 0), first);
}

TEST(KxSpatialGraphTest, HasEdgeWalksTheFirstVertexList) {
    auto g = makeTwoComponents();
    // (0, 0) deliberately: any edge at 0.
    std::vector<bool> found;
    for (auto [a, b] : Edges{{0, 1}, {1, 0}, {0, 2}, {0, 0}, {5, 5}, {5, 0}}) {
        found.push_back(g->hasEdge(a, b));
    }
    EXPECT_EQ(found, (std::vector<bool>{true, true, false, true, false, false}));
}

TEST(KxSpatialGraphTest, InfoNamesElementsInTheSkinsWords) {
    auto g = makeChain(3);
    KxInfoTags korva;
    g->info(korva);
    EXPECT_EQ(korva.toText(), "Data Class: KxSpatialGraph\nNodes:      3\nSegments:   2\nPoints:     5\n");
    KxApplication::setSkinName("Other");
    KxInfoTags other;
    g->info(other);
    KxApplication::setSkinName("Korva");
    EXPECT_EQ(other.toText(), "Data Class: KxSpatialGraph\nVertices:   3\nEdges:      2\nPoints:     5\n");
}

TEST(KxSpatialGraphTest, ClearKeepsTransformAndOtherParameters) {
    auto g = makeY();
    addIdentityMarkers(*g);
    g->addNewLabelGroup("Neuron", true, true, false)->addLabel(0, "Axon", SbColor(1, 0, 0));
    g->parameters().addBundle("Notes");
    SbMatrix m;
    m.setTranslate(SbVec3f(1, 2, 3));
    g->setTransform(m);
    g->setBoundingBox(Box3f(0, 1, 0, 1, 0, 1));
    g->clear();
    // Deleting the group takes its bundle out of the parameters; other bundles
    // and the transformation stay, the fixed box goes.
    KxSpatialGraph cleared;
    cleared.parameters().addBundle("Notes");
    cleared.setTransform(m);
    EXPECT_EQ(describeDifference(cleared, *g), "");
    // A group made again under the old name starts with its root label only.
    EXPECT_EQ(g->addNewLabelGroup("Neuron", true, true, false)->getNumLabels(), 1);
}
