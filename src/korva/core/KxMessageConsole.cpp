#include "korva/core/KxMessageConsole.h"

#include <cstdarg>
#include <cstdio>

KxMessageConsole& KxMessageConsole::instance() {
    static KxMessageConsole console;
    return console;
}

void KxMessageConsole::printf(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    String text = String::vformat(fmt, args);
    va_end(args);
    print(text.std());
}

void KxMessageConsole::print(const std::string& text) {
    size_t length = text.size();
    if (length > 0 && text[length - 1] == '\n') {
        --length;
    }
    size_t start = 0;
    while (true) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos || end >= length) {
            emitLine(text.substr(start, length - start));
            return;
        }
        emitLine(text.substr(start, end - start));
        start = end + 1;
    }
}

KxMessageConsole::Sink KxMessageConsole::setSink(Sink sink) {
    Sink previous = std::move(sink_);
    sink_ = std::move(sink);
    return previous;
}

void KxMessageConsole::emitLine(const std::string& line) {
    if (line.compare(0, 7, "Error: ") == 0) {
        ++numErrorLines_;
    }
    taps_.call(line);
    if (sink_) {
        sink_(line);
        return;
    }
    bool problem = line.compare(0, 7, "Error: ") == 0 || line.compare(0, 9, "Warning: ") == 0;
    FILE* out = problem ? stderr : stdout;
    std::fputs(line.c_str(), out);
    std::fputc('\n', out);
    std::fflush(out);
}
