#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/operations/ReplaceOperation.h"
#include "kxspatialgraph/operations/SmoothOperation.h"
#include "kxspatialgraph/operations/VertexToPointOperation.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"

using namespace GraphFixtures;

namespace {

std::vector<int> pointMarkers(const KxSpatialGraph& g, int e) {
    const PointAttribute* markers = g.findEdgePointAttribute("PointMarker");
    std::vector<int> values;
    for (int p = 0; p < g.getNumEdgePoints(e); ++p) {
        values.push_back(markers->getIntDataAtPoint(e, p));
    }
    return values;
}

std::vector<float> xs(const DArray<Vec3f>& points) {
    std::vector<float> values;
    for (const Vec3f& p : points) {
        values.push_back(p.x);
    }
    return values;
}

}  // namespace

TEST(OperationEffectsTest, SmoothEdgeAveragesOnePassExactly) {
    const DArray<Vec3f> p{Vec3f(0, 0, 0), Vec3f(3, 1, 2), Vec3f(6, 5, 4), Vec3f(12, 0, 8), Vec3f(24, 2, 16)};
    struct Case {
        const char* name;
        DArray<Vec3f> points;
        int n;
        bool x, y, z;
        std::vector<float> x_;
        float y1;  // y of point 1 afterwards
    };
    const Case cases[] = {
        {"n = 3 changes the interior points only", p, 3, true, true, true, {0, 3, 7, 14, 24}, 2},
        {"n = 1 changes nothing", p, 1, true, true, true, {0, 3, 6, 12, 24}, 1},
        {"n = 4 sums 3 points and divides by 4", p, 4, true, true, true, {0, 2.25f, 5.25f, 10.5f, 24}, 1.5f},
        {"n = 2 halves the interior points but keeps the ends",
         p,
         2,
         true,
         true,
         true,
         {0, 1.5f, 3, 6, 24},
         0.5f},
        {"only x enabled", p, 3, true, false, false, {0, 3, 7, 14, 24}, 1},
        {"fewer points than 2h + 1", DArray<Vec3f>{p[0], p[1]}, 3, true, true, true, {0, 3}, 1},
    };
    auto g = makeChain(2);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SmoothOperation op(g.get(), SpatialGraphSelection(g.get()), SpatialGraphSelection(g.get()));
        op.setDirection(c.x, c.y, c.z);
        DArray<Vec3f> smoothed = op.smoothEdge(c.points, c.n);
        EXPECT_EQ(xs(smoothed), c.x_);
        EXPECT_FLOAT_EQ(smoothed[1].y, c.y1);
        EXPECT_EQ(smoothed[0], c.points[0]);
        EXPECT_EQ(smoothed.last(), c.points.last());
    }
}

TEST(OperationEffectsTest, VertexToPointJoinsPolylinesAndValuesTowardsTheFarEnds) {
    // Vertex 1 lies between vertex 0 at (0,0,0) and vertex 2 at (4,0,0); the
    // first edge has 3 points, the second 4.
    struct Case {
        const char* name;
        bool firstStartsAtVertex;
        bool secondStartsAtVertex;
        std::vector<int> joinedMarkers;
    };
    const Case cases[] = {
        {"ending, then starting at it: directions kept", false, true, {0, 1, 10000, 10001, 10002, 10003}},
        {"both starting at it: the first is reversed", true, true, {2, 1, 10000, 10001, 10002, 10003}},
        {"both ending at it: the second is reversed", false, false, {0, 1, 10003, 10002, 10001, 10000}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        KxSpatialGraph g;
        const Vec3f at[3] = {Vec3f(0, 0, 0), Vec3f(2, 0, 0), Vec3f(4, 0, 0)};
        for (const Vec3f& v : at) {
            g.addVertex(v);
        }
        const Vec3f p1(1, 0, 0), p3(3, 0, 0), p35(3.5f, 0, 0);
        c.firstStartsAtVertex ? g.addEdge(1, 0, {at[1], p1, at[0]}) : g.addEdge(0, 1, {at[0], p1, at[1]});
        c.secondStartsAtVertex ? g.addEdge(1, 2, {at[1], p3, p35, at[2]})
                               : g.addEdge(2, 1, {at[2], p35, p3, at[1]});
        addIdentityMarkers(g);
        GraphSnapshot before = takeSnapshot(g);
        SpatialGraphSelection highlighted(&g);
        highlighted.selectVertex(1);
        VertexToPointOperation op(&g, highlighted, SpatialGraphSelection(&g));
        op.exec();
        GraphSnapshot after = takeSnapshot(g);
        EXPECT_EQ(after.coords, (std::vector<Vec3f>{at[0], at[2]}));
        ASSERT_EQ(after.edges, (std::vector<std::pair<int, int>>{{0, 1}}));
        EXPECT_EQ(after.points[0], (std::vector<Vec3f>{at[0], p1, at[1], p3, p35, at[2]}));
        EXPECT_EQ(pointMarkers(g, 0), c.joinedMarkers);
        EXPECT_EQ(g.findEdgeAttribute("EdgeMarker")->getIntDataAtIdx(0), 2000);
        expectConsistent(g);
        op.undo();
        EXPECT_TRUE(sameGraph(before, g));
    }
}

TEST(OperationEffectsTest, AnEdgeJustPastTheLastIsRefusedAndNothingChanges) {
    std::unique_ptr<KxSpatialGraph> g = makeChain(3);
    GraphSnapshot before = takeSnapshot(*g);
    KxMessageCapture capture;
    ReplaceOperation op(g.get(), 2, DArray<Vec3f>{{0, 0, 0}, {1, 1, 1}}, SpatialGraphSelection(g.get()),
                        SpatialGraphSelection(g.get()));
    op.exec();
    op.undo();
    EXPECT_TRUE(capture.contains("Error: ReplaceOperation: edge 2 does not exist (2 edges)."));
    EXPECT_TRUE(sameGraph(before, *g));
}
