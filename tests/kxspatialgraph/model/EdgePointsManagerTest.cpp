#include <gtest/gtest.h>

#include "kxspatialgraph/model/EdgePointsManager.h"

namespace {

// Points of edge e are (e, i, 0) so every point names its owner.
DArray<Vec3f> pointsFor(int e, int n) {
    DArray<Vec3f> p(n);
    for (int i = 0; i < n; ++i) {
        p[i] = Vec3f(static_cast<float>(e), static_cast<float>(i), 0);
    }
    return p;
}

std::vector<int> offsets(const EdgePointsManager& m) {
    return std::vector<int>(m.getOffsets().begin(), m.getOffsets().end());
}

}  // namespace

TEST(EdgePointsManagerTest, AddAndRemoveSingleEdgesKeepOffsetsAsPrefixSums) {
    EdgePointsManager m;
    EXPECT_EQ(m.getNumEdges(), 0);
    EXPECT_EQ(m.getTotalNumEdgePoints(), 0);
    EXPECT_EQ(offsets(m), (std::vector<int>{0}));

    m.addEdge(pointsFor(0, 2));
    m.addEdge(pointsFor(1, 3));
    EXPECT_EQ(offsets(m), (std::vector<int>{0, 2, 5}));
    EXPECT_EQ(m.getEdgePoint(1, 2), Vec3f(1, 2, 0));

    m.removeEdge(0);
    EXPECT_EQ(offsets(m), (std::vector<int>{0, 3}));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(m.getAllPoints()[i], Vec3f(1, static_cast<float>(i), 0));
    }

    m.insertEdgeBefore(0, pointsFor(7, 4));
    m.insertEdgeBefore(2, pointsFor(8, 1));  // at the end: appends
    EXPECT_EQ(offsets(m), (std::vector<int>{0, 4, 7, 8}));
    EXPECT_EQ(m.getEdgePoint(0, 3), Vec3f(7, 3, 0));
    EXPECT_EQ(m.getEdgePoint(1, 0), Vec3f(1, 0, 0));
    EXPECT_EQ(m.getEdgePoint(2, 0), Vec3f(8, 0, 0));

    m.clear();
    EXPECT_EQ(offsets(m), (std::vector<int>{0}));
    EXPECT_EQ(m.getTotalNumEdgePoints(), 0);
}

TEST(EdgePointsManagerTest, EditingPointsOfOneEdgeShiftsOnlyLaterEdges) {
    EdgePointsManager m;
    for (int e = 0; e < 3; ++e) {
        m.addEdge(pointsFor(e, 3));
    }
    m.removeEdgePoints(1, 1, 0);
    EXPECT_EQ(offsets(m), (std::vector<int>{0, 3, 6, 9}));

    m.setEdgePoints(1, pointsFor(5, 1));  // fewer points: total shrinks
    EXPECT_EQ(offsets(m), (std::vector<int>{0, 3, 4, 7}));
    EXPECT_EQ(m.getEdgePoint(1, 0), Vec3f(5, 0, 0));
    EXPECT_EQ(m.getEdgePoint(2, 2), Vec3f(2, 2, 0));

    m.setEdgePoints(0, pointsFor(6, 5));  // more points
    EXPECT_EQ(offsets(m), (std::vector<int>{0, 5, 6, 9}));
    EXPECT_EQ(m.getEdgePoint(0, 4), Vec3f(6, 4, 0));
    EXPECT_EQ(m.getEdgePoint(2, 0), Vec3f(2, 0, 0));

    m.insertEdgePoints(2, 1, DArray<Vec3f>{Vec3f(9, 9, 9), Vec3f(8, 8, 8)});
    EXPECT_EQ(offsets(m), (std::vector<int>{0, 5, 6, 11}));
    EXPECT_EQ(m.getEdgePoint(2, 0), Vec3f(2, 0, 0));
    EXPECT_EQ(m.getEdgePoint(2, 1), Vec3f(9, 9, 9));
    EXPECT_EQ(m.getEdgePoint(2, 3), Vec3f(2, 1, 0));

    m.removeEdgePoints(0, 1, 3);
    EXPECT_EQ(offsets(m), (std::vector<int>{0, 2, 3, 8}));
    EXPECT_EQ(m.getEdgePoint(0, 1), Vec3f(6, 4, 0));
    EXPECT_EQ(m.getEdgePoint(1, 0), Vec3f(5, 0, 0));
}
