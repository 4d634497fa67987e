#include <GL/glew.h>

#include <gtest/gtest.h>

#include <memory>
#include <cmath>
#include <random>
#include <vector>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoClipPlane.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
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

TEST(SoTubeSetRenderTest, WidthsColoursHighlightsAndHiddenTubes) {
    TubeScene scene;
    scene.tubes->setHighlightColor(kGreen);
    scene.tubes->highlighted.set1Value(1, 1);
    KxOffscreenRenderer renderer(100, 100);
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_HUE(renderer, 0.0f, 2.0f, kYellow);
    EXPECT_HUE(renderer, -2.0f, 2.3f, kYellow);  // inside radius 0.5
    EXPECT_BACKGROUND(renderer, -2.0f, 2.7f);    // outside it
    EXPECT_HUE(renderer, 0.0f, -2.0f, kGreen);
    EXPECT_HUE(renderer, 3.0f, 0.0f, kYellow);  // the end cap of the axial tube
    EXPECT_BACKGROUND(renderer, 0.0f, 0.0f);

    // Radii per point; colours by a point attribute run along the colormap.
    const float radii[] = {3.0f, 3.0f, 3.0f};
    scene.tubes->setLineRadii(0, radii);
    scene.tubes->setConstantRadius(false);
    scene.colourByPoints();
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_HUE(renderer, -3.7f, 2.0f, kBlue);  // value near 0
    EXPECT_HUE(renderer, -3.7f, 3.3f, kBlue);  // 1.3 from the axis, within 3 × 0.5
    EXPECT_HUE(renderer, 3.7f, 2.0f, kRed);    // value near 10
    EXPECT_HUE(renderer, 0.0f, -2.0f, kGreen);
    EXPECT_HUE(renderer, 3.0f, 0.0f, kBlue);  // the cap takes the end point's value

    // A window of range 0 maps every value to the first entry.
    scene.tubes->setColormapDataWindow(5.0f, 5.0f);
    scene.tubes->highlighted.set1Value(2, 1);
    scene.tubes->touch();
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_HUE(renderer, 3.7f, 2.0f, kBlue);
    EXPECT_HUE(renderer, 0.0f, -2.0f, kGreen);
    EXPECT_HUE(renderer, 3.0f, 0.0f, kGreen);  // highlighted cap

    // A cleared visible bit hides tube and caps.
    scene.tubes->visible.set1Value(0, 0);
    scene.tubes->visible.set1Value(2, 0);
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_BACKGROUND(renderer, 0.0f, 2.0f);
    EXPECT_BACKGROUND(renderer, 3.0f, 0.0f);
    EXPECT_HUE(renderer, 0.0f, -2.0f, kGreen);

    // Without caps the axial tube is seen edge-on: nothing at its centre.
    scene.tubes->visible.set1Value(2, 1);
    scene.tubes->drawCaps(false);
    scene.tubes->touch();
    ASSERT_TRUE(renderer.render(scene.root));
    EXPECT_BACKGROUND(renderer, 3.0f, 0.0f);
}

// One record per context, forgotten when its context is destroyed; every GL
// name a record creates is gone after its context's destruction callback:
// checked from a callback node drawn after the tubes, while their context is
// still current.
TEST(SoTubeSetRenderTest, OneRecordPerContextFreedWithEveryNameItCreated) {
    TubeScene scene;
    scene.colourByPoints();  // per-point colours and radii use every buffer
    const float radii[] = {1.0f, 2.0f, 1.0f};
    scene.tubes->setLineRadii(0, radii);
    scene.tubes->setConstantRadius(false);
    scene.tubes->touch();
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
    ASSERT_TRUE(first->render(scene.root));
    EXPECT_EQ(check.namesBefore, check.expected);
    EXPECT_EQ(check.namesAfter, 0);
    EXPECT_EQ(SoTubeSetTestAccess::numContextGroups(*scene.tubes), 0);
}

namespace {

// Smooth arcs sampled far under a pixel apart (as traced centre lines are),
// radius and colour value changing slowly along them.
struct FineArcs {
    static constexpr int kLines = 60, kPoints = 400;
    std::vector<Vec3f> points;
    std::vector<float> values, radii;

    FineArcs() {
        std::mt19937 random(5);
        std::uniform_real_distribution<float> centre(-3.0f, 3.0f), bend(0.5f, 2.0f), turn(0.0f, 6.28f);
        for (int line = 0; line < kLines; ++line) {
            const Vec3f c(centre(random), centre(random), 0.3f * centre(random));
            const float r = bend(random), start = turn(random);
            for (int i = 0; i < kPoints; ++i) {
                const float t = static_cast<float>(i) / (kPoints - 1);
                const float a = start + 1.5f * t;
                points.push_back(c + Vec3f(r * std::cos(a), r * std::sin(a), 0.5f * t));
                values.push_back(t * (kPoints - 1));
                radii.push_back(1.0f + 0.3f * std::sin(3.0f * t));
            }
        }
    }

    void addTo(SoTubeSet& tubes) const {
        tubes.setNumLines(kLines);
        for (unsigned int line = 0; line < kLines; ++line) {
            tubes.setLine(line, kPoints, &points[line * kPoints]);
            tubes.setLineColors(line, &values[line * kPoints]);
            tubes.setLineRadii(line, &radii[line * kPoints]);
        }
    }
};

std::vector<unsigned char> pixels(const KxOffscreenRenderer& renderer) {
    std::vector<unsigned char> rgb;
    for (int y = 0; y < renderer.getHeight(); ++y) {
        for (int x = 0; x < renderer.getWidth(); ++x) {
            unsigned char p[3];
            renderer.getPixel(x, y, p);
            rgb.insert(rgb.end(), p, p + 3);
        }
    }
    return rgb;
}

// Fraction of pixels whose channels all differ by at most `steps` (0: identical).
double fractionOfPixelsWithin(const std::vector<unsigned char>& a, const std::vector<unsigned char>& b,
                              int steps) {
    size_t equal = 0;
    for (size_t i = 0; i < a.size(); i += 3) {
        bool same = true;
        for (size_t c = i; c < i + 3; ++c) {
            same = same && std::abs(a[c] - b[c]) <= steps;
        }
        equal += same ? 1 : 0;
    }
    return 3.0 * static_cast<double>(equal) / static_cast<double>(a.size());
}

}  // namespace

TEST(SoTubeSetRenderTest, LevelOfDetailDrawsWhatFullDetailDrawsAndFollowsTheCamera) {
    SoTubeSet::initClass();
    SoSeparator* root = makePixelScene();
    auto* camera = static_cast<SoOrthographicCamera*>(root->getChild(0));
    auto* tubes = new SoTubeSet;
    root->addChild(tubes);
    FineArcs walks;
    walks.addTo(*tubes);
    const float rgba[] = {0, 0, 1, 1, 1, 0, 0, 1};
    tubes->setColormap(KxColormap(2, rgba, 0.0f, FineArcs::kPoints - 1.0f));
    tubes->setColormapDataWindow(0.0f, FineArcs::kPoints - 1.0f);
    tubes->setConstantColor(false);
    tubes->setConstantRadius(false);
    tubes->setTubeScale(0.15f);
    const size_t numPoints = walks.points.size();

    KxOffscreenRenderer renderer(200, 200);
    SoTubeSetTestAccess::setLevelOfDetail(*tubes, false);
    ASSERT_TRUE(renderer.render(root));
    EXPECT_EQ(SoTubeSetTestAccess::numKeptPoints(*tubes), numPoints);
    const std::vector<unsigned char> full = pixels(renderer);

    SoTubeSetTestAccess::setLevelOfDetail(*tubes, true);
    ASSERT_TRUE(renderer.render(root));
    const size_t keptFar = SoTubeSetTestAccess::numKeptPoints(*tubes);
    EXPECT_LT(keptFar, numPoints / 2);
    // Merging costs bit-exactness: a run merged into one straight piece lies
    // off the finely sampled arc by about step² / (8 × arc radius), a few
    // thousandths of a pixel here, and the shading across a tube changes by
    // tens of colour steps per pixel, so about one tube pixel in five rounds
    // to the neighbouring step (93.9 % of all pixels identical, 99.65 %
    // within one step).
    const std::vector<unsigned char> merged = pixels(renderer);
    EXPECT_GE(fractionOfPixelsWithin(full, merged, 0), 0.93);
    EXPECT_GE(fractionOfPixelsWithin(full, merged, 1), 0.99);

    // Ten times closer, a step is most of a pixel: most points come back.
    camera->height = 1.0f;
    ASSERT_TRUE(renderer.render(root));
    EXPECT_GT(SoTubeSetTestAccess::numKeptPoints(*tubes), 3 * keptFar);
    camera->height = 10.0f;
    ASSERT_TRUE(renderer.render(root));
    EXPECT_EQ(SoTubeSetTestAccess::numKeptPoints(*tubes), keptFar);
    root->unref();
}

// Capped tubes are drawn without their inner faces; a clip plane, which could
// open them, brings those back. One that cuts nothing must change no pixel.
TEST(SoTubeSetRenderTest, LeavingOutInnerFacesChangesNoPixel) {
    SoTubeSet::initClass();
    SoSeparator* root = makePixelScene();
    auto* tubes = new SoTubeSet;
    root->addChild(tubes);
    FineArcs arcs;
    arcs.addTo(*tubes);
    tubes->setConstantRadius(false);
    tubes->setTubeScale(0.15f);
    // Two tubes along the view axis, one pointing at the camera and one away
    // from it: each shows the camera one of its two kinds of end cap.
    auto* axial = new SoTubeSet;
    root->addChild(axial);
    const Vec3f towards[] = {Vec3f(-4, -4, -1), Vec3f(-4, -4, 1)};
    const Vec3f away[] = {Vec3f(4, 4, 1), Vec3f(4, 4, -1)};
    axial->setNumLines(2);
    axial->setLine(0, 2, towards);
    axial->setLine(1, 2, away);
    axial->setTubeScale(0.5f);
    KxOffscreenRenderer renderer(200, 200);
    ASSERT_TRUE(renderer.render(root));
    const std::vector<unsigned char> outsideOnly = pixels(renderer);

    auto* plane = new SoClipPlane;
    plane->plane = SbPlane(SbVec3f(0, 0, 1), -90.0f);
    root->insertChild(plane, 2);
    ASSERT_TRUE(renderer.render(root));
    EXPECT_EQ(fractionOfPixelsWithin(outsideOnly, pixels(renderer), 0), 1.0);
    root->unref();
}
