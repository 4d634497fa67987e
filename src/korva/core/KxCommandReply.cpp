#include "korva/core/KxCommandReply.h"

#include <cctype>
#include <cstdarg>

#include <tcl.h>

#include "korva/core/KxMessageConsole.h"

KxCommandReply::ErrorTap::ErrorTap() {
    id_ = theMsg->addTap([this](const std::string& line) {
        if (first_.empty() && line.compare(0, 7, "Error: ") == 0) {
            first_ = line;
        }
    });
}

KxCommandReply::ErrorTap::~ErrorTap() {
    theMsg->removeTap(id_);
}

int KxCommandReply::failWith(Tcl_Interp* interp, const ErrorTap& tap, const std::string& fallback) {
    if (tap.first().empty()) {
        return fail(interp, fallback);
    }
    Tcl_SetObjResult(interp, Tcl_NewStringObj(tap.first().c_str(), -1));
    return TCL_ERROR;
}

int KxCommandReply::usage(Tcl_Interp* interp, const char* usage) {
    return fail(interp, std::string("USAGE: ") + usage);
}

int KxCommandReply::fail(Tcl_Interp* interp, const std::string& line) {
    theMsg->print(line);
    Tcl_SetObjResult(interp, Tcl_NewStringObj(line.c_str(), static_cast<int>(line.size())));
    return TCL_ERROR;
}

int KxCommandReply::failf(Tcl_Interp* interp, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    String line = String::vformat(fmt, args);
    va_end(args);
    return fail(interp, line.std());
}

int KxCommandReply::failWithTclMessage(Tcl_Interp* interp) {
    std::string message = Tcl_GetStringResult(interp);
    if (!message.empty()) {
        message[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(message[0])));
    }
    if (!message.empty() && message.back() != '.') {
        message += '.';
    }
    return fail(interp, "Error: " + message);
}
