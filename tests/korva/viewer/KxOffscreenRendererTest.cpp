#include <gtest/gtest.h>

#include <QImage>

#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoTranslation.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/inventor/KxInventor.h"
#include "korva/viewer/KxOffscreenRenderer.h"
#include "support/RenderFixtures.h"

namespace {

void addFlatSquare(SoSeparator* root, float x, float y, const SbColor& colour) {
    auto* group = new SoSeparator;
    auto* model = new SoLightModel;
    model->model = SoLightModel::BASE_COLOR;
    group->addChild(model);
    auto* base = new SoBaseColor;
    base->rgb = colour;
    group->addChild(base);
    auto* move = new SoTranslation;
    move->translation.setValue(x, y, 0.0f);
    group->addChild(move);
    auto* cube = new SoCube;
    cube->width = cube->height = cube->depth = 2.0f;
    group->addChild(cube);
    root->addChild(group);
}

}  // namespace

TEST(KxOffscreenRendererTest, RendersWithoutDisplayTopRowFirstInMemoryAndInPng) {
    SoSeparator* root = makePixelScene();
    addFlatSquare(root, 0.0f, 3.0f, SbColor(1, 0, 0));
    addFlatSquare(root, 0.0f, -3.0f, SbColor(0, 1, 0));
    KxOffscreenRenderer renderer(100, 100);
    renderer.setBackgroundColor(SbColor(0, 0, 1));
    ASSERT_TRUE(renderer.render(root));
    root->unref();

    std::string why;
    EXPECT_TRUE(pixelNear(renderer, pixelColumn(0), pixelRow(3), SbColor(1, 0, 0), 2, why)) << why;
    EXPECT_TRUE(pixelNear(renderer, pixelColumn(0), pixelRow(-3), SbColor(0, 1, 0), 2, why)) << why;
    EXPECT_TRUE(pixelNear(renderer, 2, 2, SbColor(0, 0, 1), 2, why)) << why;

    std::string path = testOutputPath("offscreen_flip.png");
    ASSERT_TRUE(renderer.writeImage(path.c_str()));
    QImage image(QString::fromStdString(path));
    ASSERT_EQ(image.width(), 100);
    ASSERT_EQ(image.height(), 100);
    EXPECT_EQ(image.pixelColor(pixelColumn(0), pixelRow(3)).red(), 255);
    EXPECT_EQ(image.pixelColor(pixelColumn(0), pixelRow(-3)).green(), 255);
}

TEST(KxOffscreenRendererTest, FailuresAreReported) {
    KxMessageCapture capture;
    KxInventor::init();
    KxOffscreenRenderer renderer(10, 10);
    EXPECT_FALSE(renderer.writeImage(testOutputPath("never.png").c_str()));
    EXPECT_FALSE(renderer.render(nullptr));
    auto* root = new SoSeparator;
    root->ref();
    ASSERT_TRUE(renderer.render(root));
    root->unref();
    EXPECT_FALSE(renderer.writeImage("/nonexistent-folder/picture.png"));
    EXPECT_EQ(capture.numErrors(), 3) << capture.text();
}
