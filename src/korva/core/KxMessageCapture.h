#pragma once

#include <string>
#include <vector>

#include "korva/core/KxMessageConsole.h"

// Collects the console's lines while it lives and restores the previous sink
// when it dies. Used by tests and by code that wants to inspect messages.
class KxMessageCapture {
public:
    KxMessageCapture();
    ~KxMessageCapture();
    KxMessageCapture(const KxMessageCapture&) = delete;
    KxMessageCapture& operator=(const KxMessageCapture&) = delete;

    const std::vector<std::string>& lines() const { return lines_; }
    // All lines joined with newlines, for failure messages.
    std::string text() const;
    bool contains(const std::string& line) const;
    // Number of lines starting with "Error: ".
    int numErrors() const;
    void clear() { lines_.clear(); }

private:
    std::vector<std::string> lines_;
    KxMessageConsole::Sink previous_;
};
