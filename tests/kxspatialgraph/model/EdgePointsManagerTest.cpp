#include <string>
#include <vector>

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

// "70 71 | 10 11 12": the points of each edge as the digits of x, y (and z when
// not 0), edges split where the offsets say. A '?' marks a point that
// getEdgePoint reads differently from the stored array.
std::string layout(const EdgePointsManager& m) {
    const auto& offsets = m.getOffsets();
    std::string out;
    for (int e = 0; e + 1 < offsets.size(); ++e) {
        out += e ? " |" : "";
        for (int i = offsets[e]; i < offsets[e + 1]; ++i) {
            Vec3f p = m.getAllPoints()[i];
            out += " " + std::to_string(static_cast<int>(p.x)) + std::to_string(static_cast<int>(p.y)) +
                   (p.z != 0 ? std::to_string(static_cast<int>(p.z)) : "") +
                   (m.getEdgePoint(e, i - offsets[e]) == p ? "" : "?");
        }
    }
    return out + " (" + std::to_string(m.getNumEdges()) + "/" + std::to_string(m.getTotalNumEdgePoints()) +
           ")";
}

}  // namespace

TEST(EdgePointsManagerTest, EditingEdgesAndTheirPointsShiftsOnlyLaterEdges) {
    EdgePointsManager m;
    for (int e = 0; e < 3; ++e) {
        m.addEdge(pointsFor(e, 3));
    }
    m.removeEdgePoints(1, 1, 0);
    EXPECT_EQ(layout(m), " 00 01 02 | 10 11 12 | 20 21 22 (3/9)");
    m.setEdgePoints(1, pointsFor(5, 1));  // fewer points: total shrinks
    EXPECT_EQ(layout(m), " 00 01 02 | 50 | 20 21 22 (3/7)");
    m.setEdgePoints(0, pointsFor(6, 5));  // more points
    EXPECT_EQ(layout(m), " 60 61 62 63 64 | 50 | 20 21 22 (3/9)");
    m.insertEdgePoints(2, 1, DArray<Vec3f>{Vec3f(9, 9, 9), Vec3f(8, 8, 8)});
    EXPECT_EQ(layout(m), " 60 61 62 63 64 | 50 | 20 999 888 21 22 (3/11)");
    m.removeEdgePoints(0, 1, 3);
    EXPECT_EQ(layout(m), " 60 64 | 50 | 20 999 888 21 22 (3/8)");
    m.removeEdge(0);
    m.insertEdgeBefore(0, pointsFor(7, 1));
    m.insertEdgeBefore(3, pointsFor(8, 2));  // at the end: appends
    EXPECT_EQ(layout(m), " 70 | 50 | 20 999 888 21 22 | 80 81 (4/9)");
    m.clear();
    EXPECT_EQ(layout(m), " (0/0)");
    m.addEdge(pointsFor(1, 2));
    EXPECT_EQ(layout(m), " 10 11 (1/2)");
}
