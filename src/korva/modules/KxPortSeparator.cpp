#include "korva/modules/KxPortSeparator.h"

#include <tcl.h>

#include "korva/core/KxCommandReply.h"

KxPortSeparator::KxPortSeparator(KxModule* owner, const char* name) : KxPort(owner, name, "") {}

int KxPortSeparator::parseSetValue(Tcl_Interp* interp, int /*argc*/, char** /*argv*/) {
    return noValue(interp);
}

int KxPortSeparator::parseGetValue(Tcl_Interp* interp, int /*argc*/, char** /*argv*/) const {
    return noValue(interp);
}

int KxPortSeparator::noValue(Tcl_Interp* interp) const {
    return KxCommandReply::failf(interp, "Error: Port %s is a separator and holds no value.", getName());
}
