#pragma once

#include <string>

#include "korva/base/String.h"

struct Tcl_Interp;

// How every console command of the host and its packages reports a failure:
// the line is printed once on the message console and becomes the command's
// Tcl result, and the command fails with TCL_ERROR. The session that runs
// the command sees the line was printed and does not print it again.
class KxCommandReply {
public:
    // Remembers the first "Error: " line printed while it lives, so that a
    // command whose work printed the reason fails with that line.
    class ErrorTap {
    public:
        ErrorTap();
        ~ErrorTap();
        ErrorTap(const ErrorTap&) = delete;
        ErrorTap& operator=(const ErrorTap&) = delete;
        const std::string& first() const { return first_; }

    private:
        int id_;
        std::string first_;
    };

    // A wrong call: "USAGE: <usage>", e.g. usage(interp, "merge otherDataSet").
    static int usage(Tcl_Interp* interp, const char* usage);
    // A bad value or a failed action; line is a whole "Error: ..." line.
    static int fail(Tcl_Interp* interp, const std::string& line);
    // Fails with the first line the tap saw (printed already), or prints fallback.
    static int failWith(Tcl_Interp* interp, const ErrorTap& tap, const std::string& fallback);
    static int failf(Tcl_Interp* interp, const char* fmt, ...) KX_PRINTF_FORMAT(2, 3);
    // Tcl's own message in the interpreter's result (a word that is not a
    // number, say) as "Error: <message>".
    static int failWithTclMessage(Tcl_Interp* interp);
};
