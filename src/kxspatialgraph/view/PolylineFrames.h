#pragma once

#include <vector>

#include "korva/base/Vec3f.h"

// One frame per point of a polyline, for sweeping a cross-section along it:
// averaged tangents, a first normal derived from the first tangent, each
// following normal projected off its tangent, binormal = normal × tangent.
struct PolylineFrames {
    std::vector<Vec3f> normals;
    std::vector<Vec3f> binormals;

    // Replaces the frames by those of the n points (none when n <= 0 or
    // points is null). A closed line also joins its last point to its first.
    void compute(const Vec3f* points, int n, bool closed);
};
