#include "korva/core/KxObject.h"

#include <cstring>

#include <tcl.h>

#include "korva/core/KxInfoTags.h"

KxObject::~KxObject() = default;

bool KxObject::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxObject") == 0;
}

void KxObject::info(KxInfoTags& tags) const {
    tags.add("Data Class:", "%s", getTypeName());
}

int KxObject::parse(Tcl_Interp* interp, int argc, char** argv) {
    if (argc < 2) {
        Tcl_SetObjResult(interp, Tcl_ObjPrintf("USAGE: %s command ?args?", getLabel()));
        return TCL_ERROR;
    }
    const char* cmd = argv[1];
    if (std::strcmp(cmd, "getLabel") == 0) {
        Tcl_SetObjResult(interp, Tcl_NewStringObj(getLabel(), -1));
        return TCL_OK;
    }
    if (std::strcmp(cmd, "getTypeName") == 0) {
        Tcl_SetObjResult(interp, Tcl_NewStringObj(getTypeName(), -1));
        return TCL_OK;
    }
    if (std::strcmp(cmd, "info") == 0) {
        KxInfoTags tags;
        info(tags);
        Tcl_SetObjResult(interp, Tcl_NewStringObj(tags.toText().c_str(), -1));
        return TCL_OK;
    }
    return unknownCommand(interp, cmd);
}

int KxObject::unknownCommand(Tcl_Interp* interp, const char* cmd) const {
    Tcl_SetObjResult(interp, Tcl_ObjPrintf("Error: %s has no command \"%s\"", getLabel(), cmd));
    return TCL_ERROR;
}
