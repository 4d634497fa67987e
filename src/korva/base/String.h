#pragma once

#include <cstdarg>
#include <string>

#if defined(__GNUC__)
#define KX_PRINTF_FORMAT(fmtIndex, firstArg) __attribute__((format(printf, fmtIndex, firstArg)))
#else
#define KX_PRINTF_FORMAT(fmtIndex, firstArg)
#endif

// Byte string with printf-style formatting. A thin layer over std::string that
// adds the formatting the console, reports and file writers use.
class String {
public:
    String() = default;
    String(const char* text) : text_(text ? text : "") {}
    String(const char* text, size_t length) : text_(text, length) {}
    String(const std::string& text) : text_(text) {}

    static String format(const char* fmt, ...) KX_PRINTF_FORMAT(1, 2);
    static String vformat(const char* fmt, va_list args);

    // Replaces the contents with the formatted text.
    void printf(const char* fmt, ...) KX_PRINTF_FORMAT(2, 3);
    // Appends the formatted text.
    void appendf(const char* fmt, ...) KX_PRINTF_FORMAT(2, 3);

    const char* getString() const { return text_.c_str(); }
    operator const char*() const { return text_.c_str(); }
    int length() const { return static_cast<int>(text_.size()); }
    bool isEmpty() const { return text_.empty(); }

    String& operator+=(const char* text) {
        text_ += text;
        return *this;
    }
    String& operator+=(const String& text) {
        text_ += text.text_;
        return *this;
    }
    bool operator==(const String& other) const { return text_ == other.text_; }
    bool operator!=(const String& other) const { return text_ != other.text_; }
    bool operator==(const char* other) const { return text_ == (other ? other : ""); }
    bool operator!=(const char* other) const { return !(*this == other); }
    bool operator<(const String& other) const { return text_ < other.text_; }

    std::string& std() { return text_; }
    const std::string& std() const { return text_; }

private:
    std::string text_;
};
