#pragma once

#include <cstdint>
#include <vector>

#include <Inventor/SbColor.h>

class SoNode;
class SoOffscreenRenderer;

// Renders a scene into memory without any window or X server (EGL on Mesa,
// see KxEglOffscreen) and writes the picture as PNG or JPEG. Each renderer owns its
// own GL context, so two renderers are two rendering contexts to the shapes.
class KxOffscreenRenderer {
public:
    KxOffscreenRenderer(int width, int height);
    ~KxOffscreenRenderer();
    KxOffscreenRenderer(const KxOffscreenRenderer&) = delete;
    KxOffscreenRenderer& operator=(const KxOffscreenRenderer&) = delete;

    void setBackgroundColor(const SbColor& color);

    // Renders the scene. A scene without a camera is seen through a
    // perspective camera that frames it, lit by a light along the view
    // direction. False, with an "Error: " line, when rendering fails.
    bool render(SoNode* scene);

    int getWidth() const { return width_; }
    int getHeight() const { return height_; }
    // Red, green and blue (0..255) of pixel (x, y) of the last picture, y
    // counted from the top. Black outside the picture or before a render.
    void getPixel(int x, int y, unsigned char rgb[3]) const;
    // Writes the last picture in the format path's extension names (see
    // kImageFormats); false, with an "Error: " line, on failure or another extension.
    bool writeImage(const char* path) const;
    static constexpr const char* kImageFormats = "PNG (.png) or JPEG (.jpg, .jpeg)";
    // "PNG" or "JPEG" by path's extension, or null.
    static const char* imageFormatOf(const char* path);
    // imageFormatOf(path), or null after an "Error: " line naming the formats.
    static const char* checkImagePath(const char* path);
    // The cache-context id under which shapes saw this renderer's context in the last render.
    uint32_t getCacheContextId() const;

private:
    int width_;
    int height_;
    SoOffscreenRenderer* renderer_;
    uint32_t contextId_ = 0;
    std::vector<unsigned char> pixels_;  // RGB rows, top row first
};
