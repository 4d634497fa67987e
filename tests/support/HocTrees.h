#pragma once

#include <charconv>
#include <cstdint>
#include <string>
#include <vector>

// HOC texts of generated morphologies for tests and benchmarks. Sections
// are created as arrays named after the SWC structure types.
namespace HocTrees {

inline void appendNumber(std::string& out, double v) {
    char buffer[32];
    out.append(buffer, std::to_chars(buffer, buffer + sizeof(buffer), v).ptr);
}

inline void appendPoint(std::string& out, double x, double y, double z, double d) {
    out += "pt3dadd(";
    for (double v : {x, y, z}) {
        appendNumber(out, v);
        out += ", ";
    }
    appendNumber(out, d);
    out += ")\n";
}

// numSections sections of pointsPerSection points; section s starts where
// its parent ends. parentOf(s) < s names the parent (-1: a root).
template <class ParentOf>
std::string makeTree(int numSections, int pointsPerSection, ParentOf parentOf) {
    static const char* const kTypes[] = {"soma", "axon", "dend", "apic"};
    std::vector<double> ends(3 * static_cast<size_t>(numSections));
    std::string text;
    for (int t = 0; t < 4; ++t) {
        text += std::string("create ") + kTypes[t] + "[" + std::to_string(numSections / 4 + 1) + "]\n";
    }
    std::string connects;
    for (int s = 0; s < numSections; ++s) {
        const int parent = parentOf(s);
        const std::string name = std::string(kTypes[s % 4]) + "[" + std::to_string(s / 4) + "]";
        double* at = &ends[3 * static_cast<size_t>(s)];
        const double* from = parent < 0 ? nullptr : &ends[3 * static_cast<size_t>(parent)];
        text += name + " {\npt3dclear()\n";
        for (int i = 0; i < pointsPerSection; ++i) {
            // Each section turns its own way, so that no two sections share points.
            at[0] = (from ? from[0] : s) + i * 0.5 * (1 + s % 3);
            at[1] = (from ? from[1] : 0) + i * 0.25 * (s % 5 - 2.0);
            at[2] = (from ? from[2] : 0) + i * 0.125 * (s % 7 + 1);
            appendPoint(text, at[0], at[1], at[2], 0.25 + 0.0625 * ((s + i) % 16));
        }
        text += "}\n";
        if (from) {
            connects += "connect " + name + "(0), " + kTypes[parent % 4] + "[" + std::to_string(parent / 4) +
                        "](1)\n";
        }
    }
    return text + connects;
}

// An unbranched chain.
inline std::string makeChain(int numSections, int pointsPerSection) {
    return makeTree(numSections, pointsPerSection, [](int s) { return s - 1; });
}

// A comb: every even section continues the spine, every odd one is a leaf
// beside it, so the tree branches numSections / 2 times, one inside another.
inline std::string makeComb(int numSections) {
    return makeTree(numSections, 2, [](int s) { return s == 0 ? -1 : s % 2 == 1 ? s - 1 : s - 2; });
}

// About numPoints points in sections of pointsPerSection, each hanging off
// the end of a random earlier section.
inline std::string makeRandomTree(int numPoints, int pointsPerSection) {
    uint32_t state = 12345;
    return makeTree(numPoints / pointsPerSection, pointsPerSection, [&state](int s) {
        state = state * 1664525u + 1013904223u;
        return s == 0 ? -1 : static_cast<int>((state >> 8) % static_cast<uint32_t>(s));
    });
}

}  // namespace HocTrees
