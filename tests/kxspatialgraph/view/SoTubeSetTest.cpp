#include <gtest/gtest.h>

#include <utility>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>

#include "korva/data/KxColormap.h"
#include "kxspatialgraph/view/SoTubeSet.h"
#include "support/SoTubeSetTestAccess.h"

namespace {

SoTubeSet* makeTubeSet() {
    SoTubeSet::initClass();
    auto* tubes = new SoTubeSet;
    tubes->ref();
    return tubes;
}

// Blue at the first entry, red at the last.
KxColormap blueToRed() {
    const float rgba[] = {0, 0, 1, 1, 1, 0, 0, 1};
    return KxColormap(2, rgba, 0.0f, 1.0f);
}

// The x range of the tubes' bounding box.
std::pair<float, float> xRange(SoTubeSet* tubes) {
    SoGetBoundingBoxAction action(SbViewportRegion(10, 10));
    action.apply(tubes);
    SbVec3f lo, hi;
    action.getBoundingBox().getBounds(lo, hi);
    return {lo[0], hi[0]};
}

}  // namespace

TEST(SoTubeSetTest, ContextRecordsDirtyFlagHandOverAndBoundingBox) {
    SoTubeSet* tubes = makeTubeSet();
    // No lines: nothing to draw, no record.
    EXPECT_EQ(SoTubeSetTestAccess::prepareContext(*tubes, 7), nullptr);
    EXPECT_EQ(SoTubeSetTestAccess::numContextGroups(*tubes), 0);

    const Vec3f line[] = {Vec3f(0, 0, 0), Vec3f(1, 0, 0)};
    const float radii[] = {2.0f, 3.0f};
    tubes->setNumLines(1);
    tubes->setLine(0, 2, line);
    bool created = false;
    SoTubeSetTestAccess::ContextGroup* first = SoTubeSetTestAccess::prepareContext(*tubes, 7, &created);
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(created);
    EXPECT_TRUE(first->geometryDirty && first->radiiDirty && first->colorsDirty && first->colormapDirty);
    // Pretend the context uploaded everything.
    first->geometryDirty = first->radiiDirty = first->colorsDirty = first->colormapDirty = false;

    tubes->setLineRadii(0, radii);
    SoTubeSetTestAccess::ContextGroup* second = SoTubeSetTestAccess::prepareContext(*tubes, 8, &created);
    EXPECT_TRUE(created);
    EXPECT_EQ(SoTubeSetTestAccess::numContextGroups(*tubes), 2);
    // The radii change reached the first context too, and nothing else did.
    EXPECT_TRUE(first->radiiDirty);
    EXPECT_FALSE(first->geometryDirty);
    EXPECT_FALSE(first->colorsDirty);
    EXPECT_FLOAT_EQ(SoTubeSetTestAccess::capRecord(*tubes, 0, 0)[3], 2.0f);
    EXPECT_FLOAT_EQ(SoTubeSetTestAccess::capRecord(*tubes, 0, 1)[3], 3.0f);
    EXPECT_EQ(SoTubeSetTestAccess::prepareContext(*tubes, 8, &created), second);
    EXPECT_FALSE(created);

    tubes->setColormap(blueToRed());
    EXPECT_TRUE(first->colormapDirty);

    SoTubeSetTestAccess::destroyContext(*tubes, 7);
    EXPECT_EQ(SoTubeSetTestAccess::contextGroup(*tubes, 7), nullptr);
    EXPECT_EQ(SoTubeSetTestAccess::contextGroup(*tubes, 8), second);
    SoTubeSetTestAccess::destroyContext(*tubes, 8);

    // Deliberate: the box's margin is the largest radius, never below one scale unit.
    tubes->setConstantRadius(false);
    tubes->setTubeScale(2.0f);
    EXPECT_EQ(xRange(tubes), std::make_pair(-6.0f, 7.0f));
    const float small[] = {0.1f, 0.2f};
    tubes->setLineRadii(0, small);
    tubes->touch();
    EXPECT_EQ(xRange(tubes), std::make_pair(-2.0f, 3.0f));
    tubes->unref();
}

TEST(SoTubeSetTest, PerLineColoursFollowTheDataWindow) {
    SoTubeSet* tubes = makeTubeSet();
    const int values[] = {-5, 0, 5, 10, 20};
    tubes->setNumLines(5);
    tubes->setColormap(blueToRed());
    tubes->setUniformColorsPerLine(values);
    tubes->setConstantColor(false);
    tubes->setColorPerLine(true);
    tubes->setColormapDataWindow(0.0f, 10.0f);
    EXPECT_EQ(SoTubeSetTestAccess::lineColor(*tubes, 0), SbColor(0, 0, 1));  // below min: first entry
    EXPECT_EQ(SoTubeSetTestAccess::lineColor(*tubes, 1), SbColor(0, 0, 1));
    EXPECT_EQ(SoTubeSetTestAccess::lineColor(*tubes, 3), SbColor(1, 0, 0));
    EXPECT_EQ(SoTubeSetTestAccess::lineColor(*tubes, 4), SbColor(1, 0, 0));  // above max: last entry
    SbColor middle = SoTubeSetTestAccess::lineColor(*tubes, 2);
    EXPECT_NEAR(middle[0], 128.0f / 255.0f, 1e-5f);  // entry round(255 / 2) = 128
    tubes->setColormapDataWindow(5.0f, 5.0f);        // range 0: every value gives the first entry
    for (unsigned int line = 0; line < 5; ++line) {
        EXPECT_EQ(SoTubeSetTestAccess::lineColor(*tubes, line), SbColor(0, 0, 1)) << line;
    }
    tubes->highlighted.set1Value(4, 1);
    tubes->setHighlightColor(SbColor(0, 1, 0));
    EXPECT_EQ(SoTubeSetTestAccess::lineColor(*tubes, 4), SbColor(0, 1, 0));
    tubes->setConstantColor(true);
    tubes->setUniformLineColor(SbColor(1, 1, 0));
    EXPECT_EQ(SoTubeSetTestAccess::lineColor(*tubes, 1), SbColor(1, 1, 0));
    // Deliberate: the fourth float of every colormap entry repeats red.
    EXPECT_EQ(SoTubeSetTestAccess::colormap(*tubes)[4 * 255 + 3], 1.0f);
    tubes->unref();
}
