#pragma once

#include <charconv>
#include <string>

// SWC text of generated trees, for the format tests and benchmarks. Ids count
// from 1 in file order; every parent comes before its children.
namespace MorphologyGenerators {

inline void appendSWCLine(std::string& out, int id, int type, float x, float y, float z, float radius,
                          int parent) {
    char number[64];
    auto append = [&](std::to_chars_result r, char after) {
        out.append(number, static_cast<size_t>(r.ptr - number));
        out += after;
    };
    append(std::to_chars(number, number + sizeof(number), id), ' ');
    append(std::to_chars(number, number + sizeof(number), type), ' ');
    for (float v : {x, y, z, radius}) {
        append(std::to_chars(number, number + sizeof(number), v, std::chars_format::fixed, 3), ' ');
    }
    append(std::to_chars(number, number + sizeof(number), parent), '\n');
}

// numPoints points in sections of sectionLength; section s > 0 hangs at the
// last point of section (s - 1) / 2, so every section end branches in two.
// Section 0 has type 1, the others types 2 to 4; radii vary along a section.
inline std::string branchingTree(int numPoints, int sectionLength = 50) {
    std::string out;
    out.reserve(static_cast<size_t>(numPoints) * 48);
    for (int id = 1; id <= numPoints; ++id) {
        int section = (id - 1) / sectionLength;
        int k = (id - 1) % sectionLength;
        int parent = id - 1;
        if (id == 1) {
            parent = -1;
        } else if (k == 0) {
            parent = ((section - 1) / 2 + 1) * sectionLength;
        }
        float x = static_cast<float>(section % 97) + 0.25f * static_cast<float>(k);
        const int row = section / 97;
        float y = static_cast<float>(row) - 0.125f * static_cast<float>(k % 7);
        float z = 0.5f * static_cast<float>((static_cast<unsigned>(id) * 7919u) % 13u);
        float radius = 0.25f + 0.125f * static_cast<float>((static_cast<unsigned>(id) * 31u) % 16u);
        appendSWCLine(out, id, section == 0 ? 1 : 2 + section % 3, x, y, z, radius, parent);
    }
    return out;
}

// A spine of depth points, each with a one-point side branch: depth branch
// points nested one inside the other.
inline std::string nestedBranches(int depth) {
    std::string out;
    for (int i = 0; i < depth; ++i) {
        float x = static_cast<float>(i);
        appendSWCLine(out, 2 * i + 1, 3, x, 0.0f, 0.0f, 1.0f, i == 0 ? -1 : 2 * i - 1);
        appendSWCLine(out, 2 * i + 2, 3, x, 1.0f, 0.0f, 0.5f, 2 * i + 1);
    }
    return out;
}

}  // namespace MorphologyGenerators
