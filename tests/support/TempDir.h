#pragma once

#include <string>
#include <vector>

// A fresh directory for one test, below $KORVA_TEST_TMPDIR (or the system's
// temporary folder), removed with everything in it when the object dies.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return path_; }
    // path()/name
    std::string path(const std::string& name) const { return path_ + "/" + name; }
    // Names of the entries, sorted.
    std::vector<std::string> list() const;

private:
    std::string path_;
};

// The whole file as bytes; empty if it cannot be read.
std::string readFileBytes(const std::string& path);
// Replaces the file's contents with the bytes.
void writeFileBytes(const std::string& path, const std::string& bytes);
