#pragma once

// What the OpenGL driver offers. Shapes that need GLSL programs and buffer
// objects ask before choosing their drawing path.
class KxGLCapabilities {
public:
    // Loads the GL entry points for the current context (GLEW). Call with a
    // context current, e.g. inside GLRender; cheap after the first success.
    // Under EGL, GLEW reports a missing GLX display although every entry point
    // is loaded; that counts as success.
    static bool initGlew();

    // True when the current context draws instanced arrays (attributes per
    // instance). Call after initGlew().
    static bool hasInstancing();

    // True when GLSL programs, vertex buffer objects, float textures and
    // instanced arrays are available. Asked without a current context, it opens a small headless
    // context to find out; the answer is kept. It answers false when
    // legacyForced(), so the fallback paths can be forced and tested.
    static bool hasShadersAndBuffers();

    // True when the environment variable KORVA_LEGACY_TUBES holds a true word
    // (1, yes, true, on; any case). Unset, empty and the false words (0, no,
    // false, off) leave the choice to the driver; other values are ignored
    // with a warning.
    static bool legacyForced();

    // Forgets the kept answer (tests change the environment variable).
    static void resetForTesting();
};
