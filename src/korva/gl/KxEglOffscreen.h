#pragma once

// Headless OpenGL through EGL on Mesa's surfaceless platform.
//
// Coin creates offscreen contexts through GLX only, which fails without an X
// server. install() registers EGL-based offscreen callbacks with Coin once, so
// that SoOffscreenRenderer works unchanged with no display. It also calls
// SoDB::init() first, so it may be the first Inventor call of a program.
class KxEglOffscreen {
public:
    // Idempotent. Answers false (with an "Error: " line, once) when no EGL
    // display can be opened; Coin then keeps its own GLX path.
    static bool install();

    // A small pbuffer context that callers may make current to ask the driver
    // questions when no other context is current. Null when EGL is missing.
    static void* createContext(unsigned int width, unsigned int height);
    static bool makeCurrent(void* context);
    static void releaseCurrent(void* context);
    static void destroyContext(void* context);
};
