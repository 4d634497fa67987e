#include "support/RenderFixtures.h"

#include <cmath>
#include <cstdlib>
#include <cstdio>
#include <sys/stat.h>

#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>

#include "korva/inventor/KxInventor.h"
#include "korva/viewer/KxOffscreenRenderer.h"

SoSeparator* makePixelScene() {
    KxInventor::init();
    auto* root = new SoSeparator;
    root->ref();
    auto* camera = new SoOrthographicCamera;
    camera->position.setValue(0.0f, 0.0f, 50.0f);
    camera->height = 10.0f;
    camera->nearDistance = 1.0f;
    camera->farDistance = 100.0f;
    root->addChild(camera);
    root->addChild(new SoDirectionalLight);
    return root;
}

int pixelColumn(float x) {
    return static_cast<int>((x + 5.0f) * 10.0f);
}

int pixelRow(float y) {
    return static_cast<int>((5.0f - y) * 10.0f);
}

namespace {

std::string describe(int x, int y, const unsigned char rgb[3]) {
    char text[96];
    std::snprintf(text, sizeof(text), "pixel (%d, %d) is (%d, %d, %d)", x, y, rgb[0], rgb[1], rgb[2]);
    return text;
}

}  // namespace

bool pixelNear(const KxOffscreenRenderer& renderer, int x, int y, const SbColor& colour, int tolerance,
               std::string& why) {
    unsigned char rgb[3];
    renderer.getPixel(x, y, rgb);
    for (int c = 0; c < 3; ++c) {
        auto expected = static_cast<int>(std::lround(colour[c] * 255.0f));
        if (std::abs(expected - rgb[c]) > tolerance) {
            why = describe(x, y, rgb);
            return false;
        }
    }
    return true;
}

bool pixelHue(const KxOffscreenRenderer& renderer, int x, int y, const SbColor& colour, std::string& why) {
    unsigned char rgb[3];
    renderer.getPixel(x, y, rgb);
    for (int c = 0; c < 3; ++c) {
        bool on = colour[c] > 0.5f;
        if ((on && rgb[c] < 100) || (!on && rgb[c] > 60)) {
            why = describe(x, y, rgb);
            return false;
        }
    }
    return true;
}

std::string testOutputPath(const char* name) {
    const char* dir = std::getenv("KORVA_TEST_TMPDIR");
    std::string folder = dir && *dir ? dir : "/tmp";
    mkdir(folder.c_str(), 0755);
    return folder + "/" + name;
}

std::vector<bool> coverage(const KxOffscreenRenderer& renderer, float x, const std::vector<float>& ys) {
    std::vector<bool> covered;
    for (float y : ys) {
        unsigned char rgb[3];
        renderer.getPixel(pixelColumn(x), pixelRow(y), rgb);
        covered.push_back(rgb[0] + rgb[1] + rgb[2] > 0);
    }
    return covered;
}
