#include "korva/gl/KxGLCapabilities.h"

#include <strings.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>

#include <GL/glew.h>
#include <EGL/egl.h>
#include <GL/glx.h>

#include "korva/core/KxMessageConsole.h"
#include "korva/gl/KxEglOffscreen.h"

namespace {

bool glewReady = false;
int cachedAnswer = -1;  // -1: not asked yet

bool isOneOf(const char* value, std::initializer_list<const char*> words) {
    for (const char* word : words) {
        if (strcasecmp(value, word) == 0) {
            return true;
        }
    }
    return false;
}

bool queryCurrentContext() {
    return KxGLCapabilities::initGlew() && GLEW_VERSION_2_0 && GLEW_ARB_vertex_buffer_object &&
           GLEW_ARB_texture_float && KxGLCapabilities::hasInstancing();
}

}  // namespace

bool KxGLCapabilities::initGlew() {
    if (glewReady) {
        return true;
    }
    glewExperimental = GL_TRUE;
    GLenum result = glewInit();
    // GLEW_ERROR_NO_GLX_DISPLAY: the entry points are loaded all the same.
    glewReady = result == GLEW_OK || result == GLEW_ERROR_NO_GLX_DISPLAY;
    return glewReady;
}

bool KxGLCapabilities::hasInstancing() {
    return GLEW_ARB_instanced_arrays && GLEW_ARB_draw_instanced;
}

bool KxGLCapabilities::legacyForced() {
    const char* value = std::getenv("KORVA_LEGACY_TUBES");
    if (!value || isOneOf(value, {"", "0", "no", "false", "off"})) {
        return false;
    }
    if (isOneOf(value, {"1", "yes", "true", "on"})) {
        return true;
    }
    static std::string warned;
    if (warned != value) {
        warned = value;
        theMsg->printf("Warning: KORVA_LEGACY_TUBES=\"%s\" is neither a true nor a false word; ignored.",
                       value);
    }
    return false;
}

bool KxGLCapabilities::hasShadersAndBuffers() {
    if (legacyForced()) {
        return false;
    }
    if (cachedAnswer >= 0) {
        return cachedAnswer == 1;
    }
    if (eglGetCurrentContext() != EGL_NO_CONTEXT || glXGetCurrentContext()) {
        cachedAnswer = queryCurrentContext() ? 1 : 0;
        return cachedAnswer == 1;
    }
    bool answer = false;
    void* context = KxEglOffscreen::createContext(16, 16);
    if (context && KxEglOffscreen::makeCurrent(context)) {
        answer = queryCurrentContext();
        KxEglOffscreen::releaseCurrent(context);
    }
    KxEglOffscreen::destroyContext(context);
    cachedAnswer = answer ? 1 : 0;
    return answer;
}

void KxGLCapabilities::resetForTesting() {
    cachedAnswer = -1;
}
