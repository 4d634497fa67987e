#pragma once

#include <algorithm>
#include <limits>

#include "korva/base/Vec3f.h"

// Axis-aligned box as six floats in the order xmin, xmax, ymin, ymax, zmin,
// zmax. A new box is empty (min > max).
class Box3f {
public:
    Box3f() { makeEmpty(); }
    Box3f(float xmin, float xmax, float ymin, float ymax, float zmin, float zmax)
        : b_{xmin, xmax, ymin, ymax, zmin, zmax} {}

    float& operator[](int i) { return b_[i]; }
    const float& operator[](int i) const { return b_[i]; }
    float* data() { return b_; }
    const float* data() const { return b_; }

    void makeEmpty() {
        for (int axis = 0; axis < 3; ++axis) {
            b_[2 * axis] = std::numeric_limits<float>::max();
            b_[2 * axis + 1] = -std::numeric_limits<float>::max();
        }
    }
    bool isEmpty() const { return b_[0] > b_[1] || b_[2] > b_[3] || b_[4] > b_[5]; }

    void extendBy(const Vec3f& p) {
        for (int axis = 0; axis < 3; ++axis) {
            b_[2 * axis] = std::min(b_[2 * axis], p[axis]);
            b_[2 * axis + 1] = std::max(b_[2 * axis + 1], p[axis]);
        }
    }
    void extendBy(const Box3f& other) {
        if (other.isEmpty()) {
            return;
        }
        extendBy(other.getMin());
        extendBy(other.getMax());
    }

    Vec3f getMin() const { return Vec3f(b_[0], b_[2], b_[4]); }
    Vec3f getMax() const { return Vec3f(b_[1], b_[3], b_[5]); }
    Vec3f getCenter() const { return (getMin() + getMax()) * 0.5f; }

    bool operator==(const Box3f& o) const { return std::equal(b_, b_ + 6, o.b_); }
    bool operator!=(const Box3f& o) const { return !(*this == o); }

private:
    float b_[6];
};
