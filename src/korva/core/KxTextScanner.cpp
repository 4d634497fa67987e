#include "korva/core/KxTextScanner.h"

#include <algorithm>

const char* KxTextScanner::skipBlanks() {
    while (p_ < end_) {
        if (isBlank(*p_)) {
            ++p_;
        } else if (*p_ == '#') {
            while (p_ < end_ && *p_ != '\n') {
                ++p_;
            }
        } else {
            break;
        }
    }
    return p_;
}

KxTextScanner::Token KxTextScanner::peek() {
    skipBlanks();
    if (p_ >= end_) {
        return END;
    }
    return *p_ == '"' ? QUOTED : *p_ == '{' ? OPEN : *p_ == '}' ? CLOSE : WORD;
}

KxTextScanner::Token KxTextScanner::next(std::string& value) {
    Token t = peek();
    value.clear();
    if (t == END) {
        return END;
    }
    if (t == OPEN || t == CLOSE) {
        ++p_;
        return t;
    }
    if (t == WORD) {
        const char* start = p_;
        while (p_ < end_ && !isBlank(*p_) && *p_ != '"' && *p_ != '{' && *p_ != '}' && *p_ != '#') {
            ++p_;
        }
        value.assign(start, p_);
        return WORD;
    }
    for (++p_; p_ < end_ && *p_ != '"'; ++p_) {
        char c = *p_;
        if (c == '\\') {
            if (++p_ >= end_) {
                break;
            }
            c = *p_ == 'n' ? '\n' : *p_ == 'r' ? '\r' : *p_ == 't' ? '\t' : *p_;
        }
        value += c;
    }
    if (p_ >= end_) {
        return BAD;
    }
    ++p_;
    return QUOTED;
}

int KxTextScanner::lineAt(const char* p) const {
    return 1 + static_cast<int>(std::count(begin_, p, '\n'));
}

void KxTextScanner::appendQuoted(std::string& out, const std::string& s) {
    out += '"';
    for (char c : s) {
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                out += c;
        }
    }
    out += '"';
}
