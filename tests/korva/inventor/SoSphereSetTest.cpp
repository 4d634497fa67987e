#include <gtest/gtest.h>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/nodes/SoSeparator.h>

#include "korva/inventor/KxInventor.h"
#include "korva/inventor/SoSphereSet.h"
#include "korva/inventor/SoSphereSetDetail.h"
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

// Index of the sphere hit by a ray down -z through (x, y), or -1.
int pickSphere(SoNode* root, float x, float y) {
    SoRayPickAction pick(SbViewportRegion(100, 100));
    pick.setRay(SbVec3f(x, y, 20), SbVec3f(0, 0, -1));
    pick.apply(root);
    const SoPickedPoint* picked = pick.getPickedPoint();
    if (!picked) {
        return -1;
    }
    const SoDetail* detail = picked->getDetail();
    if (!detail || !detail->isOfType(SoSphereSetDetail::getClassTypeId())) {
        return -2;
    }
    return static_cast<const SoSphereSetDetail*>(detail)->getSphereIndex();
}

}  // namespace

TEST(SoSphereSetTest, PickReportsSphereIndexOfDrawnSpheresOnly) {
    SoSphereSet* spheres = makeThreeSpheres();
    auto* root = new SoSeparator;
    root->ref();
    root->addChild(spheres);
    EXPECT_EQ(pickSphere(root, 3.2f, 0.3f), 2);
    EXPECT_EQ(pickSphere(root, -3.0f, 0.0f), 0);
    EXPECT_EQ(pickSphere(root, 1.5f, 0.0f), -1);

    spheres->select(2, false);  // mode 0 hides unselected spheres
    EXPECT_EQ(pickSphere(root, 3.2f, 0.3f), -1);
    spheres->mode = 1;
    EXPECT_EQ(pickSphere(root, 3.2f, 0.3f), 2);

    spheres->setRadii(1, 1, nullptr, 0.0f);  // radius 0: nothing to hit
    EXPECT_EQ(pickSphere(root, 0.0f, 0.0f), -1);
    spheres->scale = 3.0f;  // radius 3 around x = 3 reaches x = 0.5
    EXPECT_EQ(pickSphere(root, 0.5f, 0.0f), 2);
    root->unref();
}

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
