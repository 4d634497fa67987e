#include <gtest/gtest.h>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/nodes/SoSeparator.h>

#include "korva/inventor/KxInventor.h"
#include "korva/inventor/SoSphereSet.h"
#include "korva/viewer/KxOffscreenRenderer.h"
#include "support/RenderFixtures.h"

namespace {

// Three spheres of radius 1 on the x axis at -3, 0 and 3:
//   (0)   (1)   (2)
SoSphereSet* makeThreeSpheres() {
    KxInventor::init();
    auto* spheres = new SoSphereSet;
    spheres->setNumSpheres(3);
    const SbVec3f centres[] = {SbVec3f(-3, 0, 0), SbVec3f(0, 0, 0), SbVec3f(3, 0, 0)};
    spheres->setCoords(0, 3, centres);
    return spheres;
}

}  // namespace

TEST(SoSphereSetTest, BoundingBoxCoversDrawnSpheres) {
    SoSphereSet* spheres = makeThreeSpheres();
    spheres->ref();
    const float radii[] = {0.5f, 2.0f};
    spheres->setRadii(1, 2, radii);
    const SbVec3f far(100, 0, 0);
    spheres->setCoords(-1, 1, &far);  // refused: no sphere before the first
    spheres->select(0, false);
    SoGetBoundingBoxAction box(SbViewportRegion(100, 100));
    box.apply(spheres);
    SbVec3f lo, hi;
    box.getBoundingBox().getBounds(lo, hi);
    EXPECT_FLOAT_EQ(lo[0], -0.5f);
    EXPECT_FLOAT_EQ(hi[0], 5.0f);
    EXPECT_FLOAT_EQ(lo[1], -2.0f);
    spheres->mode = 1;  // unselected spheres are drawn too
    spheres->scale = 2.0f;
    box.apply(spheres);
    box.getBoundingBox().getBounds(lo, hi);
    EXPECT_FLOAT_EQ(lo[0], -5.0f);
    EXPECT_FLOAT_EQ(hi[0], 7.0f);
    spheres->unref();
}

TEST(SoSphereSetTest, RendersColoursHighlightAndHidesUnselected) {
    SoSphereSet* spheres = makeThreeSpheres();
    const SbColor colours[] = {SbColor(0, 1, 0), SbColor(0, 1, 0), SbColor(0, 0, 1)};
    spheres->setColors(0, 3, colours);
    spheres->highlight(1, true);
    spheres->highlightColor.setValue(1, 0, 0);
    spheres->select(0, false);
    SoSeparator* root = makePixelScene();
    root->addChild(spheres);
    KxOffscreenRenderer renderer(100, 100);
    ASSERT_TRUE(renderer.render(root));
    root->unref();
    std::string why;
    EXPECT_TRUE(pixelNear(renderer, pixelColumn(-3), pixelRow(0), SbColor(0, 0, 0), 0, why)) << why;
    EXPECT_TRUE(pixelHue(renderer, pixelColumn(0), pixelRow(0), SbColor(1, 0, 0), why)) << why;
    EXPECT_TRUE(pixelHue(renderer, pixelColumn(3), pixelRow(0), SbColor(0, 0, 1), why)) << why;
    EXPECT_TRUE(pixelNear(renderer, pixelColumn(1.5f), pixelRow(0), SbColor(0, 0, 0), 0, why)) << why;
}
