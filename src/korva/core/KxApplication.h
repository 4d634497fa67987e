#pragma once

#include <string>

// Facts about the running host that data objects may word their reports by.
// The host program sets them once at start; nothing here reads the environment.
class KxApplication {
public:
    // The skin's name, "Korva" unless the host set another. Under the skin
    // "Korva" a graph's report speaks of nodes and segments, else of vertices and edges.
    static const char* getSkinName();
    static void setSkinName(const char* name);

private:
    static std::string& skinName();
};
