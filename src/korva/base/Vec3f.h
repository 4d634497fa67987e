#pragma once

#include <cmath>

#include <Inventor/SbVec3f.h>

// Three 32-bit floats x, y, z: a position or direction.
class Vec3f {
public:
    float x = 0.0f, y = 0.0f, z = 0.0f;

    Vec3f() = default;
    Vec3f(float xx, float yy, float zz) : x(xx), y(yy), z(zz) {}
    explicit Vec3f(const float* v) : x(v[0]), y(v[1]), z(v[2]) {}
    Vec3f(const SbVec3f& v) : x(v[0]), y(v[1]), z(v[2]) {}
    operator SbVec3f() const { return SbVec3f(x, y, z); }

    float& operator[](int i) { return (&x)[i]; }
    const float& operator[](int i) const { return (&x)[i]; }
    float* data() { return &x; }
    const float* data() const { return &x; }

    Vec3f operator+(const Vec3f& o) const { return Vec3f(x + o.x, y + o.y, z + o.z); }
    Vec3f operator-(const Vec3f& o) const { return Vec3f(x - o.x, y - o.y, z - o.z); }
    Vec3f operator-() const { return Vec3f(-x, -y, -z); }
    Vec3f operator*(float s) const { return Vec3f(x * s, y * s, z * s); }
    Vec3f operator/(float s) const { return Vec3f(x / s, y / s, z / s); }
    Vec3f& operator+=(const Vec3f& o) { return *this = *this + o; }
    Vec3f& operator-=(const Vec3f& o) { return *this = *this - o; }
    Vec3f& operator*=(float s) { return *this = *this * s; }
    bool operator==(const Vec3f& o) const { return x == o.x && y == o.y && z == o.z; }
    bool operator!=(const Vec3f& o) const { return !(*this == o); }

    float dot(const Vec3f& o) const { return x * o.x + y * o.y + z * o.z; }
    Vec3f cross(const Vec3f& o) const {
        return Vec3f(y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x);
    }
    float length() const { return std::sqrt(dot(*this)); }
    float distance(const Vec3f& o) const { return (*this - o).length(); }
    // Scales to unit length; a zero vector stays zero. Returns the old length.
    float normalize() {
        float len = length();
        if (len > 0.0f) {
            *this = *this / len;
        }
        return len;
    }
};

inline Vec3f operator*(float s, const Vec3f& v) {
    return v * s;
}
