#include "korva/data/KxColormap.h"

#include <algorithm>
#include <cmath>

KxColormap::KxColormap() : rgba_{0, 0, 0, 1, 1, 1, 1, 1} {}

KxColormap::KxColormap(int n, const float* rgba, float minCoord, float maxCoord)
    : rgba_(rgba, rgba + 4 * std::max(n, 0)), min_(minCoord), max_(maxCoord) {
    if (rgba_.empty()) {
        rgba_ = {0, 0, 0, 1};
    }
}

void KxColormap::setEntry(int i, const SbColor& color, float alpha) {
    if (i < 0 || i >= getNumEntries()) {
        return;
    }
    float* e = &rgba_[4 * static_cast<size_t>(i)];
    e[0] = color[0];
    e[1] = color[1];
    e[2] = color[2];
    e[3] = alpha;
}

void KxColormap::resize(int n) {
    int old = getNumEntries();
    rgba_.resize(4 * static_cast<size_t>(std::max(n, 1)), 0.0f);
    for (int i = old; i < getNumEntries(); ++i) {
        rgba_[4 * static_cast<size_t>(i) + 3] = 1.0f;
    }
}

void KxColormap::setMinMax(float minCoord, float maxCoord) {
    min_ = minCoord;
    max_ = maxCoord;
}

SbColor KxColormap::getColorAtFraction(float t) const {
    int n = getNumEntries();
    if (!(t > 0.0f)) {  // also NaN
        t = 0.0f;
    }
    float position = std::min(t, 1.0f) * static_cast<float>(n - 1);
    int lower = std::min(static_cast<int>(std::floor(position)), n - 1);
    int upper = std::min(lower + 1, n - 1);
    float w = position - static_cast<float>(lower);
    const float* a = getEntry(lower);
    const float* b = getEntry(upper);
    return SbColor(a[0] + w * (b[0] - a[0]), a[1] + w * (b[1] - a[1]), a[2] + w * (b[2] - a[2]));
}

SbColor KxColormap::getColor(float v, float minCoord, float maxCoord) const {
    float range = maxCoord - minCoord;
    return getColorAtFraction(range > 0.0f ? (v - minCoord) / range : 0.0f);
}
