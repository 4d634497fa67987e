#pragma once

#include <string>
#include <utility>
#include <vector>

#include "korva/base/String.h"

// The tagged lines a data object reports about itself ("Data Class:", counts,
// ...). Objects add tags in order; the host prints them aligned or hands them
// to a script.
class KxInfoTags {
public:
    void add(const char* tag, const char* fmt, ...) KX_PRINTF_FORMAT(3, 4);

    int size() const { return static_cast<int>(tags_.size()); }
    const std::string& getTag(int i) const { return tags_[static_cast<size_t>(i)].first; }
    const std::string& getValue(int i) const { return tags_[static_cast<size_t>(i)].second; }
    // The value of the first tag of that name, or null.
    const char* find(const char* tag) const;

    // One line per tag, values aligned in a column.
    std::string toText() const;

private:
    std::vector<std::pair<std::string, std::string>> tags_;
};
