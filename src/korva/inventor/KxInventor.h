#pragma once

// Starts the scene-graph library and registers the host's own node, field
// and detail classes. Idempotent; every entry that builds scenes calls it.
class KxInventor {
public:
    static void init();
};
