#include <gtest/gtest.h>

#include <GL/glew.h>

#include <cstdlib>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoSeparator.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/gl/KxGLCapabilities.h"
#include "korva/gl/KxShaderProgram.h"
#include "korva/viewer/KxOffscreenRenderer.h"
#include "support/RenderFixtures.h"

namespace {

const char* kVertex = R"(#version 120
void main() {
    gl_Position = ftransform();
#ifdef KORVA_CLIP_PLANES
    gl_ClipVertex = gl_ModelViewMatrix * gl_Vertex;
#endif
}
)";

// Green by default, blue with the macro BLUE; the red channel is a uniform.
const char* kFragment = R"(#version 120
uniform float red;
void main() {
#ifdef BLUE
    gl_FragColor = vec4(red, 0.0, 1.0, 1.0);
#else
    gl_FragColor = vec4(red, 1.0, 0.0, 1.0);
#endif
}
)";

struct DrawRequest {
    KxShaderProgram* program;
    bool applied = false;
    int contextId = -1;
};

// Draws the square x, y in [-2, 2] with the program applied.
void drawSquare(void* data, SoAction* action) {
    if (!action->isOfType(SoGLRenderAction::getClassTypeId())) {
        return;
    }
    auto* request = static_cast<DrawRequest*>(data);
    request->contextId = static_cast<int>(SoGLCacheContextElement::get(action->getState()));
    request->applied = request->program->apply(request->contextId);
    glBegin(GL_QUADS);
    glVertex3f(-2, -2, 0);
    glVertex3f(2, -2, 0);
    glVertex3f(2, 2, 0);
    glVertex3f(-2, 2, 0);
    glEnd();
    KxShaderProgram::off();
}

bool renderSquare(KxOffscreenRenderer& renderer, DrawRequest& request) {
    SoSeparator* root = makePixelScene();
    auto* callback = new SoCallback;
    callback->setCallback(drawSquare, &request);
    root->addChild(callback);
    bool ok = renderer.render(root);
    root->unref();
    return ok;
}

}  // namespace

TEST(KxShaderProgramTest, MacrosGoRightAfterTheVersionLine) {
    EXPECT_EQ(KxShaderProgram::insertMacros("#version 120\nvoid main() {}\n", {"A", "B 2"}),
              "#version 120\n#define A\n#define B 2\nvoid main() {}\n");
    EXPECT_EQ(KxShaderProgram::insertMacros("// lead\n#version 120\nx\n", {"A"}),
              "// lead\n#version 120\n#define A\nx\n");
    EXPECT_EQ(KxShaderProgram::insertMacros("void main() {}\n", {"A"}), "#define A\nvoid main() {}\n");
    EXPECT_EQ(KxShaderProgram::insertMacros("#version 120", {"A"}), "#version 120\n#define A\n");
}

TEST(KxShaderProgramTest, MacroSetsAndUniformsReachThePixels) {
    KxShaderProgram program(kVertex, kFragment, "test");
    program.setUniform("red", 1.0f);
    program.enableClipPlanes(true);
    DrawRequest request{&program};
    KxOffscreenRenderer renderer(100, 100);
    ASSERT_TRUE(renderSquare(renderer, request));
    ASSERT_TRUE(request.applied);
    std::string why;
    EXPECT_TRUE(pixelNear(renderer, 50, 50, SbColor(1, 1, 0), 1, why)) << why;
    EXPECT_TRUE(pixelNear(renderer, 5, 5, SbColor(0, 0, 0), 1, why)) << why;

    program.addMacro("BLUE");
    program.setUniform("red", 0.0f);
    ASSERT_TRUE(renderSquare(renderer, request));
    EXPECT_TRUE(pixelNear(renderer, 50, 50, SbColor(0, 0, 1), 1, why)) << why;
    // One program per macro set in this context.
    EXPECT_EQ(program.numPrograms(request.contextId), 2);
}

TEST(KxShaderProgramTest, BrokenSourceReportsOnceAndFallsBack) {
    KxShaderProgram program(kVertex, "#version 120\nvoid main() { gl_FragColor = nonsense; }\n", "broken");
    DrawRequest request{&program};
    KxMessageCapture capture;
    KxOffscreenRenderer renderer(20, 20);
    ASSERT_TRUE(renderSquare(renderer, request));
    ASSERT_TRUE(renderSquare(renderer, request));
    EXPECT_FALSE(request.applied);
    EXPECT_EQ(capture.numErrors(), 1) << capture.text();
}

TEST(KxShaderProgramTest, MissingResourceFileIsAnError) {
    KxMessageCapture capture;
    EXPECT_EQ(KxShaderProgram::create("kxspatialgraph", "no_such_shader.glsl", "no_such_either.glsl"),
              nullptr);
    ASSERT_EQ(capture.numErrors(), 1);
    EXPECT_NE(capture.text().find("no_such_shader.glsl"), std::string::npos);
}

TEST(KxGLCapabilitiesTest, HeadlessDriverHasShadersUnlessLegacyIsForced) {
    KxGLCapabilities::resetForTesting();
    EXPECT_TRUE(KxGLCapabilities::hasShadersAndBuffers());
    struct Case {
        const char* value;
        bool forced;
        int warnings;
    } cases[] = {
        {"1", true, 0},  {"yes", true, 0}, {"TRUE", true, 0},   {"On", true, 0},   {"", false, 0},
        {"0", false, 0}, {"no", false, 0}, {"False", false, 0}, {"OFF", false, 0}, {"maybe", false, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        setenv("KORVA_LEGACY_TUBES", c.value, 1);
        KxMessageCapture capture;
        EXPECT_EQ(KxGLCapabilities::hasShadersAndBuffers(), !c.forced);
        EXPECT_EQ(static_cast<int>(capture.lines().size()), c.warnings) << capture.text();
    }
    unsetenv("KORVA_LEGACY_TUBES");
}
