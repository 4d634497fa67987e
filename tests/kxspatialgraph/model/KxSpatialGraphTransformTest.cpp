#include <array>
#include <limits>

#include <gtest/gtest.h>

#include <Inventor/SbRotation.h>

#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"

using namespace GraphFixtures;

namespace {

using Box = std::array<float, 6>;

Box box(const KxSpatialGraph& g, bool transformed) {
    Box b;
    g.computeBoundingBox(b.data(), transformed);
    return b;
}

Box toArray(const Box3f& b) {
    return {b[0], b[1], b[2], b[3], b[4], b[5]};
}

// Vertices (0,0,0) and (1,1,1) joined by an edge that bulges out through
// (5,-2,0.5), and a vertex (-1,0,0.5) without edges.
std::unique_ptr<KxSpatialGraph> makeBulge() {
    auto g = std::make_unique<KxSpatialGraph>();
    g->addVertex(Vec3f(0, 0, 0));
    g->addVertex(Vec3f(1, 1, 1));
    g->addVertex(Vec3f(-1, 0, 0.5f));
    g->addEdge(0, 1, DArray<Vec3f>{Vec3f(0, 0, 0), Vec3f(5, -2, 0.5f), Vec3f(1, 1, 1)});
    return g;
}

SbMatrix translateAndScale() {
    // Scale by 2, then move by (1, 2, 3): p -> 2p + (1, 2, 3).
    SbMatrix m;
    m.setTransform(SbVec3f(1, 2, 3), SbRotation::identity(), SbVec3f(2, 2, 2));
    return m;
}

}  // namespace

TEST(KxSpatialGraphTransformTest, BoundingBoxCoversEdgePointsAndVerticesUnlessStored) {
    auto g = makeBulge();
    EXPECT_EQ(box(*g, false), (Box{-1, 5, -2, 1, 0, 1}));
    g->setTransform(translateAndScale());
    EXPECT_EQ(box(*g, true), (Box{-1, 11, -2, 4, 3, 5}));
    EXPECT_EQ(box(*g, false), (Box{-1, 5, -2, 1, 0, 1}));
    // A fixed box wins, transformed or not.
    g->setBoundingBox(Box3f(0, 1, 0, 1, 0, 1));
    EXPECT_EQ(box(*g, false), (Box{0, 1, 0, 1, 0, 1}));
    EXPECT_EQ(box(*g, true), (Box{0, 1, 0, 1, 0, 1}));

    // Deliberate: vertices without edges report the stored box, by default the empty one.
    KxSpatialGraph vertices;
    vertices.addVertex(Vec3f(1, 2, 3));
    const float big = std::numeric_limits<float>::max();
    EXPECT_EQ(box(vertices, true), (Box{big, -big, big, -big, big, -big}));
}

TEST(KxSpatialGraphTransformTest, PointsAreDividedByTheHomogeneousW) {
    // w = x + 1: (1, 0, 0) becomes (1, 0, 0, 2), i.e. (0.5, 0, 0); (3, 4, 0) -> (0.75, 1, 0).
    SbMatrix m = SbMatrix::identity();
    m[0][3] = 1.0f;
    EXPECT_EQ(KxSpatialGraph::transformPoint(m, Vec3f(1, 0, 0)), Vec3f(0.5f, 0, 0));
    EXPECT_EQ(KxSpatialGraph::transformPoint(m, Vec3f(3, 4, 0)), Vec3f(0.75f, 1, 0));

    KxSpatialGraph g;
    g.addVertex(Vec3f(1, 0, 0));
    g.addVertex(Vec3f(3, 4, 0));
    g.addEdge(0, 1, DArray<Vec3f>{Vec3f(1, 0, 0), Vec3f(3, 0, 0), Vec3f(3, 4, 0)});
    g.setTransform(m);
    EXPECT_EQ(box(g, true), (Box{0.5f, 0.75f, 0, 1, 0, 0}));
    // Baking moves vertices and every edge point, and resets the transformation.
    g.applyTransform();
    EXPECT_EQ(g.getEdgePoint(0, 1), Vec3f(0.75f, 0, 0));
    EXPECT_TRUE(g.isTransformIdentity());
    expectConsistent(g);
}

TEST(KxSpatialGraphTransformTest, BoundingBoxOfSelection) {
    auto g = makeBulge();
    g->setTransform(translateAndScale());  // ignored: untransformed coordinates
    SpatialGraphSelection s(g.get());
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_EQ(toArray(g->getBoundingBoxOfSelection(s)), (Box{inf, -inf, inf, -inf, inf, -inf}));

    s.selectEdge(0);
    EXPECT_EQ(toArray(g->getBoundingBoxOfSelection(s)), (Box{0, 5, -2, 1, 0, 1}));
    s.selectVertex(2);
    EXPECT_EQ(toArray(g->getBoundingBoxOfSelection(s)), (Box{-1, 5, -2, 1, 0, 1}));

    SpatialGraphSelection points(g.get());
    points.selectPoint(SpatialGraphPoint(0, 1));
    points.selectPoint(SpatialGraphPoint(0, 7));  // past the edge's end: skipped
    points.selectPoint(SpatialGraphPoint(3, 0));  // no such edge: skipped
    points.selectAllPointsOnEdge(0);              // all-points bits do not count
    EXPECT_EQ(toArray(g->getBoundingBoxOfSelection(points)), (Box{5, 5, -2, -2, 0.5f, 0.5f}));

    // A selection sized for a larger graph reads only what the graph has.
    SpatialGraphSelection larger(10, 10);
    larger.selectAllVerticesAndEdges();
    EXPECT_EQ(toArray(g->getBoundingBoxOfSelection(larger)), (Box{-1, 5, -2, 1, 0, 1}));
}
