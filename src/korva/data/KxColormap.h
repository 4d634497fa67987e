#pragma once

#include <vector>

#include <Inventor/SbColor.h>

// A colormap: RGBA entries spread evenly over a data range [min, max].
// Minimal host type; values between entries are interpolated linearly and
// values outside the range take the end entries.
class KxColormap {
public:
    // A grey ramp from black to white over [0, 1].
    KxColormap();
    // n entries of 4 floats each (red, green, blue, alpha in 0..1).
    KxColormap(int n, const float* rgba, float minCoord, float maxCoord);

    int getNumEntries() const { return static_cast<int>(rgba_.size() / 4); }
    const float* getEntry(int i) const { return &rgba_[4 * static_cast<size_t>(i)]; }
    void setEntry(int i, const SbColor& color, float alpha = 1.0f);
    // Resizes to n entries; new entries are black and opaque.
    void resize(int n);

    float getMinCoord() const { return min_; }
    float getMaxCoord() const { return max_; }
    void setMinMax(float minCoord, float maxCoord);

    // Colour at fraction t of the entries (0: first entry, 1: last), clamped.
    SbColor getColorAtFraction(float t) const;
    // Colour at data value v over [min, max]; a range of 0 gives the first entry.
    SbColor getColor(float v) const { return getColor(v, min_, max_); }
    // Colour at data value v over another range.
    SbColor getColor(float v, float minCoord, float maxCoord) const;

private:
    std::vector<float> rgba_;
    float min_ = 0.0f;
    float max_ = 1.0f;
};
