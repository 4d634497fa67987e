#include <GL/glew.h>

#include <gtest/gtest.h>

#include <memory>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoSeparator.h>

#include "korva/data/KxColormap.h"
#include "korva/viewer/KxOffscreenRenderer.h"
#include "kxspatialgraph/view/SoTubeSet.h"
#include "support/RenderFixtures.h"
#include "support/SoTubeSetTestAccess.h"

// Pixel tests of the GPU tubes in the 100 × 100 orthographic view of
// makePixelScene (x, y in [-5, 5], one pixel per 0.1 units). Tube radius is
// 0.5 (scale) unless a test says otherwise.
namespace {

// Line 0 along x at y = 2, line 1 along x at y = -2, line 2 along the view
// axis at (3, 0) (only its end cap faces the camera):
//
//   0 ==========
//                  2 (o)
//   1 ==========
const Vec3f kTop[] = {Vec3f(-4, 2, 0), Vec3f(0, 2, 0), Vec3f(4, 2, 0)};
const Vec3f kBottom[] = {Vec3f(-4, -2, 0), Vec3f(4, -2, 0)};
const Vec3f kAxial[] = {Vec3f(3, 0, -1), Vec3f(3, 0, 1)};
const float kTopValues[] = {0.0f, 5.0f, 10.0f};
const float kBottomValues[] = {10.0f, 10.0f};
const float kAxialValues[] = {0.0f, 0.0f};

const SbColor kBlue(0, 0, 1), kRed(1, 0, 0), kGreen(0, 1, 0), kYellow(1, 1, 0), kBlack(0, 0, 0);

struct TubeScene {
    SoSeparator* root;
    SoTubeSet* tubes;
    KxColormap colormap;

    TubeScene() {
        SoTubeSet::initClass();
        root = makePixelScene();
        tubes = new SoTubeSet;
        tubes->setNumLines(3);
        tubes->setLine(0, 3, kTop);
        tubes->setLine(1, 2, kBottom);
        tubes->setLine(2, 2, kAxial);
        tubes->setTubeScale(0.5f);
        tubes->setUniformLineColor(kYellow);
        const float rgba[] = {0, 0, 1, 1, 1, 0, 0, 1};
        colormap = KxColormap(2, rgba, 0.0f, 10.0f);
        root->addChild(tubes);
    }
    ~TubeScene() { root->unref(); }

    // Colour by a point attribute: blue at 0, red at 10.
    void colourByPoints() {
        tubes->setLineColors(0, kTopValues);
        tubes->setLineColors(1, kBottomValues);
        tubes->setLineColors(2, kAxialValues);
        tubes->setColormap(colormap);
        tubes->setColormapDataWindow(0.0f, 10.0f);
        tubes->setConstantColor(false);
        tubes->setColorPerLine(false);
        tubes->touch();
    }
};

#define EXPECT_HUE(renderer, x, y, colour)                                                \
    do {                                                                                  \
        std::string why;                                                                  \
        EXPECT_TRUE(pixelHue(renderer, pixelColumn(x), pixelRow(y), colour, why)) << why; \
    } while (0)

#define EXPECT_BACKGROUND(renderer, x, y)                                                     \
    do {                                                                                      \
        std::string why;                                                                      \
        EXPECT_TRUE(pixelNear(renderer, pixelColumn(x), pixelRow(y), kBlack, 0, why)) << why; \
    } while (0)

}  // namespace

TEST(SoTubeSetRenderTest, ConstantColourAndTubeWidth) {
    TubeScene scene;
    KxOffscreenRenderer renderer(100, 100);
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_HUE(renderer, 0.0f, 2.0f, kYellow);
    EXPECT_HUE(renderer, -2.0f, 2.3f, kYellow);  // inside radius 0.5
    EXPECT_BACKGROUND(renderer, -2.0f, 2.7f);    // outside it
    EXPECT_HUE(renderer, 0.0f, -2.0f, kYellow);
    EXPECT_HUE(renderer, 3.0f, 0.0f, kYellow);  // the end cap of the axial tube
    EXPECT_BACKGROUND(renderer, 0.0f, 0.0f);

    // Radius per point and the scale uniform change the width without new geometry.
    const float radii[] = {3.0f, 3.0f, 3.0f};
    scene.tubes->setLineRadii(0, radii);
    scene.tubes->setConstantRadius(false);
    scene.tubes->touch();
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_HUE(renderer, -2.0f, 3.3f, kYellow);  // 1.3 from the axis, within 3 × 0.5
}

TEST(SoTubeSetRenderTest, PointAttributeRunsAlongTheColormap) {
    TubeScene scene;
    scene.colourByPoints();
    KxOffscreenRenderer renderer(100, 100);
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_HUE(renderer, -3.7f, 2.0f, kBlue);  // value near 0
    EXPECT_HUE(renderer, 3.7f, 2.0f, kRed);    // value near 10
    EXPECT_HUE(renderer, 0.0f, -2.0f, kRed);   // 10 all along
    EXPECT_HUE(renderer, 3.0f, 0.0f, kBlue);   // the cap takes the end point's value

    // A window of range 0 maps every value to the first entry.
    scene.tubes->setColormapDataWindow(5.0f, 5.0f);
    scene.tubes->touch();
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_HUE(renderer, 3.7f, 2.0f, kBlue);
    EXPECT_HUE(renderer, 0.0f, -2.0f, kBlue);
}

TEST(SoTubeSetRenderTest, HighlightColourInConstantAndColormapModes) {
    TubeScene scene;
    scene.tubes->setHighlightColor(kGreen);
    scene.tubes->highlighted.set1Value(1, 1);
    KxOffscreenRenderer renderer(100, 100);
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_HUE(renderer, 0.0f, 2.0f, kYellow);
    EXPECT_HUE(renderer, 0.0f, -2.0f, kGreen);

    scene.colourByPoints();
    scene.tubes->highlighted.set1Value(2, 1);
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_HUE(renderer, 3.7f, 2.0f, kRed);
    EXPECT_HUE(renderer, 0.0f, -2.0f, kGreen);
    EXPECT_HUE(renderer, 3.0f, 0.0f, kGreen);  // highlighted cap
}

TEST(SoTubeSetRenderTest, ClearedVisibleBitHidesTubeAndCaps) {
    TubeScene scene;
    scene.tubes->visible.set1Value(0, 0);
    scene.tubes->visible.set1Value(2, 0);
    KxOffscreenRenderer renderer(100, 100);
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_BACKGROUND(renderer, 0.0f, 2.0f);
    EXPECT_BACKGROUND(renderer, 3.0f, 0.0f);
    EXPECT_HUE(renderer, 0.0f, -2.0f, kYellow);

    // Without caps the axial tube is seen edge-on: nothing at its centre.
    scene.tubes->visible.set1Value(2, 1);
    scene.tubes->drawCaps(false);
    scene.tubes->touch();
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_BACKGROUND(renderer, 3.0f, 0.0f);
}

TEST(SoTubeSetRenderTest, OneRecordPerContextAndDestroyedContextsForgotten) {
    TubeScene scene;
    auto first = std::make_unique<KxOffscreenRenderer>(40, 40);
    auto second = std::make_unique<KxOffscreenRenderer>(40, 40);
    ASSERT_TRUE(first->render(scene.root));
    ASSERT_TRUE(second->render(scene.root));
    EXPECT_EQ(SoTubeSetTestAccess::numContextGroups(*scene.tubes), 2);
    int firstId = static_cast<int>(first->getCacheContextId());
    int secondId = static_cast<int>(second->getCacheContextId());
    EXPECT_NE(SoTubeSetTestAccess::contextGroup(*scene.tubes, firstId), nullptr);
    EXPECT_NE(SoTubeSetTestAccess::contextGroup(*scene.tubes, secondId), nullptr);
    second.reset();
    EXPECT_EQ(SoTubeSetTestAccess::numContextGroups(*scene.tubes), 1);
    EXPECT_EQ(SoTubeSetTestAccess::contextGroup(*scene.tubes, secondId), nullptr);
    // Rendering again in the surviving context uploads nothing new and still draws.
    ASSERT_TRUE(first->render(scene.root));
    EXPECT_EQ(SoTubeSetTestAccess::numContextGroups(*scene.tubes), 1);
}

// Every GL name a context's record creates is gone after the context's
// destruction callback: checked from a callback node drawn after the tubes,
// while their context is still current.
TEST(SoTubeSetRenderTest, DestroyedContextFreesEveryNameItCreated) {
    TubeScene scene;
    scene.colourByPoints();  // per-point colours and radii use every buffer
    const float radii[] = {1.0f, 2.0f, 1.0f};
    scene.tubes->setLineRadii(0, radii);
    scene.tubes->setConstantRadius(false);
    scene.tubes->touch();
    struct Check {
        SoTubeSet* tubes;
        int namesBefore = 0, namesAfter = 0, expected = 0;
    } check{scene.tubes};
    auto* callback = new SoCallback;
    callback->setCallback(
        [](void* data, SoAction* action) {
            auto* c = static_cast<Check*>(data);
            if (!action->isOfType(SoGLRenderAction::getClassTypeId())) {
                return;
            }
            int id = static_cast<int>(SoGLCacheContextElement::get(action->getState()));
            SoTubeSetTestAccess::ContextGroup* group = SoTubeSetTestAccess::contextGroup(*c->tubes, id);
            if (!group) {
                return;
            }
            const auto buffers = group->buffers;
            const GLuint texture = group->colormapTexture;
            auto countNames = [&] {
                int n = glIsTexture(texture) ? 1 : 0;
                for (GLuint b : buffers) {
                    n += glIsBuffer(b) ? 1 : 0;
                }
                return n;
            };
            c->expected = static_cast<int>(buffers.size()) + 1;
            c->namesBefore = countNames();
            SoTubeSetTestAccess::destroyContext(*c->tubes, id);
            c->namesAfter = countNames();
        },
        &check);
    scene.root->addChild(callback);
    KxOffscreenRenderer renderer(40, 40);
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_EQ(check.namesBefore, check.expected);
    EXPECT_EQ(check.namesAfter, 0);
    EXPECT_EQ(SoTubeSetTestAccess::numContextGroups(*scene.tubes), 0);
}
