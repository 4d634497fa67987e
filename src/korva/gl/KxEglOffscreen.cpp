#include "korva/gl/KxEglOffscreen.h"

#include <cstring>
#include <mutex>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/glx.h>
#include <Inventor/C/glue/gl.h>
#include <Inventor/SoDB.h>
#include <Inventor/errors/SoDebugError.h>

#include "korva/core/KxMessageConsole.h"

namespace {

// Coin 4.0 hands the callback's context pointer to a GLX-only size query that
// reads a flag at byte offset 64, so the record starts with zeroed padding
// that the query may read harmlessly.
struct EglContext {
    unsigned char coinScratch[128];
    EGLDisplay display;
    EGLContext context;
    EGLSurface surface;
    // What was current before makeCurrent, restored by releaseCurrent. Only
    // one context can be current per thread across GLX and EGL.
    EGLDisplay prevDisplay;
    EGLContext prevContext;
    EGLSurface prevDraw;
    EGLSurface prevRead;
    Display* prevGlxDisplay;
    GLXContext prevGlxContext;
    GLXDrawable prevGlxDrawable;
};

EGLDisplay theDisplay() {
    static EGLDisplay display = EGL_NO_DISPLAY;
    static std::once_flag once;
    std::call_once(once, [] {
        auto getPlatformDisplay =
            reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
        if (!getPlatformDisplay) {
            return;
        }
        EGLDisplay d = getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        EGLint major = 0, minor = 0;
        if (d != EGL_NO_DISPLAY && eglInitialize(d, &major, &minor)) {
            display = d;
        }
    });
    return display;
}

void* createCb(unsigned int width, unsigned int height) {
    return KxEglOffscreen::createContext(width, height);
}

SbBool makeCurrentCb(void* context) {
    return KxEglOffscreen::makeCurrent(context) ? TRUE : FALSE;
}

void reinstateCb(void* context) {
    KxEglOffscreen::releaseCurrent(context);
}

void destructCb(void* context) {
    KxEglOffscreen::destroyContext(context);
}

// Coin asks GLX whether rendering is direct even for our EGL contexts and
// warns that there is no GLX context; that warning is noise here. Everything
// else goes to the handler that was installed before.
SoErrorCB* previousDebugHandler = nullptr;
void* previousDebugData = nullptr;

void debugFilter(const SoError* error, void* data) {
    if (error->getDebugString().find("glxglue_isdirect") >= 0) {
        return;
    }
    if (previousDebugHandler) {
        previousDebugHandler(error, data);
    }
}

}  // namespace

bool KxEglOffscreen::install() {
    static bool ok = false;
    static std::once_flag once;
    std::call_once(once, [] {
        SoDB::init();
        if (theDisplay() == EGL_NO_DISPLAY) {
            theMsg->printf("Error: No EGL display for offscreen rendering.");
            return;
        }
        static cc_glglue_offscreen_cb_functions callbacks = {createCb, makeCurrentCb, reinstateCb,
                                                             destructCb};
        cc_glglue_context_set_offscreen_cb_functions(&callbacks);
        previousDebugHandler = SoDebugError::getHandlerCallback();
        previousDebugData = SoDebugError::getHandlerData();
        SoDebugError::setHandlerCallback(debugFilter, previousDebugData);
        ok = true;
    });
    return ok;
}

void* KxEglOffscreen::createContext(unsigned int width, unsigned int height) {
    EGLDisplay display = theDisplay();
    if (display == EGL_NO_DISPLAY) {
        return nullptr;
    }
    const EGLint configAttribs[] = {EGL_SURFACE_TYPE,
                                    EGL_PBUFFER_BIT,
                                    EGL_RENDERABLE_TYPE,
                                    EGL_OPENGL_BIT,
                                    EGL_RED_SIZE,
                                    8,
                                    EGL_GREEN_SIZE,
                                    8,
                                    EGL_BLUE_SIZE,
                                    8,
                                    EGL_ALPHA_SIZE,
                                    8,
                                    EGL_DEPTH_SIZE,
                                    24,
                                    EGL_NONE};
    EGLConfig config;
    EGLint numConfigs = 0;
    if (!eglChooseConfig(display, configAttribs, &config, 1, &numConfigs) || numConfigs < 1) {
        return nullptr;
    }
    eglBindAPI(EGL_OPENGL_API);
    const EGLint surfaceAttribs[] = {EGL_WIDTH, static_cast<EGLint>(width), EGL_HEIGHT,
                                     static_cast<EGLint>(height), EGL_NONE};
    EGLSurface surface = eglCreatePbufferSurface(display, config, surfaceAttribs);
    if (surface == EGL_NO_SURFACE) {
        return nullptr;
    }
    EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    if (context == EGL_NO_CONTEXT) {
        eglDestroySurface(display, surface);
        return nullptr;
    }
    auto* c = new EglContext;
    std::memset(c, 0, sizeof(*c));
    c->display = display;
    c->context = context;
    c->surface = surface;
    return c;
}

bool KxEglOffscreen::makeCurrent(void* context) {
    auto* c = static_cast<EglContext*>(context);
    if (!c) {
        return false;
    }
    c->prevGlxContext = glXGetCurrentContext();
    if (c->prevGlxContext) {
        c->prevGlxDisplay = glXGetCurrentDisplay();
        c->prevGlxDrawable = glXGetCurrentDrawable();
        glXMakeCurrent(c->prevGlxDisplay, None, nullptr);
    }
    c->prevDisplay = eglGetCurrentDisplay();
    c->prevContext = eglGetCurrentContext();
    c->prevDraw = eglGetCurrentSurface(EGL_DRAW);
    c->prevRead = eglGetCurrentSurface(EGL_READ);
    eglBindAPI(EGL_OPENGL_API);
    return eglMakeCurrent(c->display, c->surface, c->surface, c->context) == EGL_TRUE;
}

void KxEglOffscreen::releaseCurrent(void* context) {
    auto* c = static_cast<EglContext*>(context);
    if (!c) {
        return;
    }
    if (c->prevContext != EGL_NO_CONTEXT && c->prevContext != c->context) {
        eglMakeCurrent(c->prevDisplay, c->prevDraw, c->prevRead, c->prevContext);
    } else {
        eglMakeCurrent(c->display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    }
    if (c->prevGlxContext) {
        glXMakeCurrent(c->prevGlxDisplay, c->prevGlxDrawable, c->prevGlxContext);
    }
    c->prevContext = EGL_NO_CONTEXT;
    c->prevGlxContext = nullptr;
}

void KxEglOffscreen::destroyContext(void* context) {
    auto* c = static_cast<EglContext*>(context);
    if (!c) {
        return;
    }
    if (eglGetCurrentContext() == c->context) {
        eglMakeCurrent(c->display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    }
    eglDestroyContext(c->display, c->context);
    eglDestroySurface(c->display, c->surface);
    delete c;
}
