#pragma once

#include <Inventor/SbColor.h>

// RGB colour as three floats in 0..1.
class Color {
public:
    float r = 0.0f, g = 0.0f, b = 0.0f;

    Color() = default;
    Color(float rr, float gg, float bb) : r(rr), g(gg), b(bb) {}
    explicit Color(const float* rgb) : r(rgb[0]), g(rgb[1]), b(rgb[2]) {}
    Color(const SbColor& c) : r(c[0]), g(c[1]), b(c[2]) {}
    operator SbColor() const { return SbColor(r, g, b); }

    float& operator[](int i) { return (&r)[i]; }
    const float& operator[](int i) const { return (&r)[i]; }
    float* data() { return &r; }
    const float* data() const { return &r; }

    bool operator==(const Color& o) const { return r == o.r && g == o.g && b == o.b; }
    bool operator!=(const Color& o) const { return !(*this == o); }

    // Colour from hue, saturation and value, all in 0..1.
    static Color fromHSV(float h, float s, float v) {
        SbColor c;
        c.setHSVValue(h, s, v);
        return Color(c);
    }
};
