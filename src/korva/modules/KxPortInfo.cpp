#include "korva/modules/KxPortInfo.h"

#include <tcl.h>

#include "korva/core/KxCommandReply.h"

KxPortInfo::KxPortInfo(KxModule* owner, const char* name, const char* label) : KxPort(owner, name, label) {}

int KxPortInfo::parseSetValue(Tcl_Interp* interp, int /*argc*/, char** /*argv*/) {
    return KxCommandReply::failf(interp, "Error: Port %s only shows text; it cannot be set.", getName());
}

int KxPortInfo::parseGetValue(Tcl_Interp* interp, int argc, char** /*argv*/) const {
    if (argc != 0) {
        return KxCommandReply::usage(interp, (std::string(getName()) + " getValue").c_str());
    }
    Tcl_SetObjResult(interp, Tcl_NewStringObj(text_.c_str(), -1));
    return TCL_OK;
}
