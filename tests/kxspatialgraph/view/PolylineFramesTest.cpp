#include <gtest/gtest.h>

#include "kxspatialgraph/view/PolylineFrames.h"

namespace {

void expectUnitFrame(const Vec3f& tangent, const Vec3f& normal, const Vec3f& binormal) {
    EXPECT_NEAR(normal.length(), 1.0f, 1e-5f);
    EXPECT_NEAR(binormal.length(), 1.0f, 1e-5f);
    EXPECT_NEAR(normal.dot(tangent), 0.0f, 1e-5f);
    EXPECT_NEAR(binormal.dot(tangent), 0.0f, 1e-5f);
    EXPECT_NEAR(binormal.dot(normal), 0.0f, 1e-5f);
}

}  // namespace

TEST(PolylineFramesTest, FramesAreOrthonormalAlongBendsAndDegenerateSteps) {
    // A bent line with a repeated point: p1 == p2.
    const Vec3f points[] = {Vec3f(0, 0, 0), Vec3f(1, 0, 0), Vec3f(1, 0, 0), Vec3f(1, 1, 0), Vec3f(1, 1, 1)};
    PolylineFrames frames;
    frames.compute(points, 5, false);
    const std::vector<Vec3f>& normals = frames.normals;
    const std::vector<Vec3f>& binormals = frames.binormals;
    ASSERT_EQ(normals.size(), 5u);
    // At the end points the tangent is the first and last segment.
    expectUnitFrame(Vec3f(1, 0, 0), normals[0], binormals[0]);
    expectUnitFrame(Vec3f(0, 0, 1), normals[4], binormals[4]);

    // Straight along z: the first normal is (1, 0, 0).
    const Vec3f alongZ[] = {Vec3f(0, 0, 0), Vec3f(0, 0, 2)};
    frames.compute(alongZ, 2, false);
    EXPECT_EQ(normals[0], Vec3f(1, 0, 0));
    EXPECT_EQ(normals[1], Vec3f(1, 0, 0));
    expectUnitFrame(Vec3f(0, 0, 1), normals[1], binormals[1]);

    // One point: no tangent, normal (0, 0, 1).
    frames.compute(alongZ, 1, false);
    ASSERT_EQ(normals.size(), 1u);
    EXPECT_EQ(normals[0], Vec3f(0, 0, 1));

    // General direction: normal from the tangent's x, y and z.
    const Vec3f diagonal[] = {Vec3f(0, 0, 0), Vec3f(1, 2, 2)};
    frames.compute(diagonal, 2, false);
    expectUnitFrame(Vec3f(1, 2, 2) / 3.0f, normals[0], binormals[0]);
}
