#pragma once

#include <unistd.h>

#include <climits>
#include <string>

// The korva program built beside the running benchmark program, for
// benchmarks that time or measure korva itself; "" if it cannot be found.
inline std::string korvaBeside() {
    char self[PATH_MAX];
    ssize_t n = readlink("/proc/self/exe", self, sizeof(self) - 1);
    if (n <= 0) {
        return "";
    }
    std::string path(self, static_cast<size_t>(n));
    return path.substr(0, path.rfind('/') + 1) + "korva";
}
