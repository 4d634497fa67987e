#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include <Inventor/nodes/SoSeparator.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/viewer/KxOffscreenRenderer.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/view/SpatialGraphDefaultScene.h"
#include "support/GraphFixtures.h"
#include "support/RenderFixtures.h"

namespace {

const char* kFallback =
    "SpatialGraphView: Crucial OpenGL features are missing! Falling back to legacy tube rendering ...";

// Two straight edges across the pixel scene, "thickness" 0.5 and 0.3:
//   0 ============ 1     y = 1
//   2 ============ 3     y = -2
std::unique_ptr<KxSpatialGraph> makeTwoTubes() {
    auto graph = std::make_unique<KxSpatialGraph>();
    graph->addVertex(Vec3f(-4, 1, 0));
    graph->addVertex(Vec3f(4, 1, 0));
    graph->addVertex(Vec3f(-4, -2, 0));
    graph->addVertex(Vec3f(4, -2, 0));
    graph->addEdge(0, 1, GraphFixtures::straightPoints(Vec3f(-4, 1, 0), Vec3f(4, 1, 0), 3));
    graph->addEdge(2, 3, GraphFixtures::straightPoints(Vec3f(-4, -2, 0), Vec3f(4, -2, 0), 2));
    auto* thickness = static_cast<PointAttribute*>(
        graph->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
    for (int e = 0; e < 2; ++e) {
        for (int p = 0; p < graph->getNumEdgePoints(e); ++p) {
            thickness->setFloatDataAtPoint(e == 0 ? 0.5f : 0.3f, e, p);
        }
    }
    return graph;
}

// Renders the default scene of the graph in the pixel scene.
void renderDefault(const KxSpatialGraph& graph, KxOffscreenRenderer& renderer) {
    SoSeparator* root = makePixelScene();
    SoSeparator* scene = SpatialGraphDefaultScene::build(&graph);
    ASSERT_NE(scene, nullptr);
    root->addChild(scene);
    ASSERT_TRUE(renderer.render(root));
    root->unref();
}

const std::vector<float> kProbes = {1.8f, 1.4f, 1.0f, 0.6f, 0.2f, -1.5f, -1.8f, -2.0f, -2.2f, -2.5f};

}  // namespace

TEST(SpatialGraphDefaultSceneTest, LegacyTubesCoverTheSamePlaceAsGpuTubes) {
    auto graph = makeTwoTubes();
    KxOffscreenRenderer renderer(100, 100);
    unsetenv("KORVA_LEGACY_TUBES");
    renderDefault(*graph, renderer);
    std::string why;
    EXPECT_TRUE(pixelHue(renderer, pixelColumn(0), pixelRow(1), SbColor(1, 1, 1), why)) << why;
    std::vector<bool> gpu = coverage(renderer, 1.0f, kProbes);
    const std::vector<bool> expected = {false, true, true, true, false, false, true, true, true, false};
    EXPECT_EQ(gpu, expected);
    renderer.writeImage(testOutputPath("default_scene_gpu.png").c_str());

    setenv("KORVA_LEGACY_TUBES", "1", 1);
    KxMessageCapture capture;
    renderDefault(*graph, renderer);
    unsetenv("KORVA_LEGACY_TUBES");
    EXPECT_FALSE(capture.contains(kFallback)) << "forced on purpose, nothing is missing";
    EXPECT_TRUE(pixelHue(renderer, pixelColumn(0), pixelRow(1), SbColor(1, 1, 1), why)) << why;
    EXPECT_EQ(coverage(renderer, 1.0f, kProbes), gpu);
    renderer.writeImage(testOutputPath("default_scene_legacy.png").c_str());
}
