#include "korva/base/String.h"

#include <cstdio>

String String::vformat(const char* fmt, va_list args) {
    va_list copy;
    va_copy(copy, args);
    int n = std::vsnprintf(nullptr, 0, fmt, copy);
    va_end(copy);
    String result;
    if (n <= 0) {
        return result;
    }
    result.text_.resize(static_cast<size_t>(n) + 1);
    std::vsnprintf(&result.text_[0], result.text_.size(), fmt, args);
    result.text_.resize(static_cast<size_t>(n));
    return result;
}

String String::format(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    String result = vformat(fmt, args);
    va_end(args);
    return result;
}

void String::printf(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    *this = vformat(fmt, args);
    va_end(args);
}

void String::appendf(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    text_ += vformat(fmt, args).text_;
    va_end(args);
}
