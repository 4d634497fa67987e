#pragma once

#include <functional>
#include <string>
#include <utility>

#include "korva/base/CallbackList.h"
#include "korva/base/String.h"

// The host's message console. Every line the system reports to the user goes
// through printf: "Error: " and "Warning: " lines as well as plain reports.
// By default plain lines go to stdout and error and warning lines to stderr;
// a sink installed with setSink receives every line instead (tests capture
// lines this way). One call prints one line; a trailing newline is dropped and
// inner newlines split the text into several lines.
class KxMessageConsole {
public:
    using Sink = std::function<void(const std::string& line)>;

    static KxMessageConsole& instance();

    void printf(const char* fmt, ...) KX_PRINTF_FORMAT(2, 3);
    void print(const std::string& text);

    // Installs a sink and returns the previous one (empty means the default output).
    Sink setSink(Sink sink);

    // A tap sees every line as well, without changing where it goes (the
    // console commands use one to put a failure's "Error: " line into the Tcl
    // result). Answers an id for removeTap.
    int addTap(Sink tap) { return taps_.add(std::move(tap)); }
    void removeTap(int id) { taps_.remove(id); }

    // "Error: " lines printed so far; a caller compares two counts to learn
    // whether a callee has already reported its failure.
    int numErrorLines() const { return numErrorLines_; }

private:
    KxMessageConsole() = default;
    void emitLine(const std::string& line);

    Sink sink_;
    int numErrorLines_ = 0;
    CallbackList<void(const std::string&)> taps_;
};

#define theMsg (&KxMessageConsole::instance())
