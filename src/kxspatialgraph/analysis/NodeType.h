#pragma once

// Kind of a vertex by its number of incident edges; a self-loop counts twice.
struct NodeType {
    enum Enum {
        ISOLATED_NODE = 0,      // no edge
        ENDING_NODE = 1,        // one
        INTERMEDIATE_NODE = 2,  // two
        BRANCHING_NODE = 3      // three or more
    };
};
