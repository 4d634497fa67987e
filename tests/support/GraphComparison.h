#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/base/Vec3f.h"

class KxSpatialGraph;

// Whole-graph comparison for tests: exec -> undo == before, copies, file
// round trips. A snapshot holds everything that makes up a graph's content;
// describeDifference() names the first mismatch.
struct GraphSnapshot {
    struct Attribute {
        std::string name;
        int id = -1;
        int primType = -1;
        int nDataVar = 0;
        std::vector<unsigned char> bytes;
        std::vector<int> offsets;  // point attributes only
    };

    std::vector<Vec3f> coords;
    std::vector<std::pair<int, int>> edges;
    std::vector<std::vector<int>> incidence;
    std::vector<std::vector<Vec3f>> points;
    std::vector<Attribute> attributes[3];  // by location VERTEX, EDGE, POINT
    std::vector<std::string> labelGroups;  // registered group names, sorted
    std::string parameters;                // text form of the parameter bundle
    float transform[16] = {};
    bool hasFixedBox = false;
};

struct GraphComparisonOptions {
    // Copies and file round trips create new attributes with new ids.
    bool compareAttributeIds = true;
    // Undo re-appends edges to incidence lists, so by default lists are
    // compared as multisets.
    bool exactIncidenceOrder = false;
};

GraphSnapshot takeSnapshot(const KxSpatialGraph& graph);

// Empty when equal; otherwise the first mismatch, e.g. "edge 3: (1, 2) vs (1, 4)".
std::string describeDifference(const GraphSnapshot& expected, const GraphSnapshot& actual,
                               const GraphComparisonOptions& options = {});
std::string describeDifference(const KxSpatialGraph& expected, const KxSpatialGraph& actual,
                               const GraphComparisonOptions& options = {});

// Success, or the first difference.
::testing::AssertionResult sameGraph(const GraphSnapshot& expected, const KxSpatialGraph& actual,
                                     const GraphComparisonOptions& options = {});

// Runs isConsistent() with the console captured; on failure the message holds
// the captured lines.
::testing::AssertionResult graphIsConsistent(const KxSpatialGraph& graph);
inline void expectConsistent(const KxSpatialGraph& graph) {
    EXPECT_TRUE(graphIsConsistent(graph));
}
