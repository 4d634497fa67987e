#include "korva/core/KxInfoTags.h"

#include <algorithm>
#include <cstdarg>

void KxInfoTags::add(const char* tag, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    String value = String::vformat(fmt, args);
    va_end(args);
    tags_.emplace_back(tag, value.std());
}

const char* KxInfoTags::find(const char* tag) const {
    for (const auto& t : tags_) {
        if (t.first == tag) {
            return t.second.c_str();
        }
    }
    return nullptr;
}

std::string KxInfoTags::toText() const {
    size_t width = 0;
    for (const auto& t : tags_) {
        width = std::max(width, t.first.size());
    }
    std::string out;
    for (const auto& t : tags_) {
        out += t.first;
        out.append(width + 1 - t.first.size(), ' ');
        out += t.second;
        out += '\n';
    }
    return out;
}
