#pragma once

#include <cstddef>
#include <memory>
#include <string>

// The whole contents of a regular file in memory, for readers that parse from
// memory: the file is mapped read-only, or read with one pass when it cannot
// be mapped. The bytes stay valid as long as any copy of share() lives.
class KxFileContents {
public:
    // False with the reason in error (an errno text, "not a regular file", ...).
    bool load(const char* filename, std::string& error);

    const char* data() const { return buffer_.get(); }
    size_t size() const { return size_; }
    const std::shared_ptr<char>& share() const { return buffer_; }

private:
    std::shared_ptr<char> buffer_;
    size_t size_ = 0;
};
