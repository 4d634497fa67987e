#pragma once

#include <string>
#include <vector>

// Runs the built korva executable as a user would and captures what it says.
struct KorvaRun {
    int status;  // exit code, -1 if korva did not exit normally
    std::string out;
    std::string err;
};

struct KorvaRunOptions {
    std::string workingDir;                // empty: the test's own
    std::string input;                     // stdin (never a terminal)
    bool testPackage = false;              // also load the test package (tests/support/testpackage)
    std::vector<std::string> environment;  // extra NAME=value settings
    std::vector<std::string> launcher;     // a command korva runs under, e.g. xvfb-run and its options
};

KorvaRun runKorva(const std::vector<std::string>& args, const KorvaRunOptions& options = {});

// Number of times what occurs in text.
int countOccurrences(const std::string& text, const std::string& what);
