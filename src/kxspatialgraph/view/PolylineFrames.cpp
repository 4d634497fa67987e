#include "kxspatialgraph/view/PolylineFrames.h"

#include <algorithm>
#include <cmath>

namespace {

Vec3f normalised(const Vec3f& v) {
    Vec3f n = v;
    n.normalize();
    return n;
}

// Unit tangent at every point: the mean of the directions of the steps
// before and after it (a zero step repeats the previous direction).
std::vector<Vec3f> averagedTangents(const Vec3f* points, int n, bool closed) {
    std::vector<Vec3f> t(static_cast<size_t>(n) + 1, Vec3f());
    for (int i = 0; i + 1 < n; ++i) {
        Vec3f step = points[i + 1] - points[i];
        t[i + 1] = step.normalize() > 0.0f ? step : t[i];
    }
    if (closed) {
        Vec3f step = points[0] - points[n - 1];
        t[0] = step.normalize() > 0.0f ? step : t[n - 1];
    } else {
        t[0] = t[1];
        t[n] = t[n - 1];
    }
    for (int i = 0; i < n; ++i) {
        Vec3f sum = t[i] + t[i + 1];
        if (sum.normalize() > 0.0f) {
            t[i] = sum;
        }
    }
    if (closed) {
        t[n - 1] = t[0];
    }
    t.pop_back();
    return t;
}

const double kEpsilon = 1e-16;

Vec3f firstNormal(const Vec3f& tangent) {
    double x = tangent.x, y = tangent.y, z = tangent.z, xy = x * x + y * y;
    if (std::fabs(z) > kEpsilon && xy > kEpsilon) {
        return normalised(Vec3f(tangent.x, tangent.y, static_cast<float>(-xy / z)));
    }
    return std::fabs(z) > kEpsilon ? Vec3f(1.0f, 0.0f, 0.0f) : Vec3f(0.0f, 0.0f, 1.0f);
}

}  // namespace

void PolylineFrames::compute(const Vec3f* points, int n, bool closed) {
    normals.assign(static_cast<size_t>(std::max(n, 0)), Vec3f());
    binormals.assign(normals.size(), Vec3f());
    if (n <= 0 || !points) {
        return;
    }
    std::vector<Vec3f> tangents = averagedTangents(points, n, closed);
    Vec3f normal = firstNormal(tangents[0]);
    for (int i = 0; i < n; ++i) {
        if (i > 0) {
            Vec3f projected = normal - tangents[i] * normal.dot(tangents[i]);
            // A projection too short to normalise keeps the previous normal.
            if (projected.length() > kEpsilon) {
                normal = normalised(projected);
            }
        }
        normals[i] = normal;
        binormals[i] = normalised(normal.cross(tangents[i]));
    }
}
