#include "korva/core/KxData.h"

#include <cstring>

#include <tcl.h>

#include "korva/core/KxCommandReply.h"

KxData::KxData() : parameters_("Parameters") {}

KxData::~KxData() = default;

bool KxData::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxData") == 0 || KxObject::isOfType(typeName);
}

void KxData::touch(unsigned int mask) {
    touched_ |= mask;
    modified_ = true;
}

void KxData::fire() {
    unsigned int mask = touched_;
    if (!mask) {
        return;
    }
    touched_ = 0;
    listeners_.call(*this, mask);
}

int KxData::parse(Tcl_Interp* interp, int argc, char** argv) {
    const char* cmd = argc >= 2 ? argv[1] : "";
    if (std::strcmp(cmd, "parameters") == 0) {
        Tcl_SetObjResult(interp, Tcl_NewStringObj(parameters_.toText().c_str(), -1));
        return TCL_OK;
    }
    if (std::strcmp(cmd, "setParameters") == 0) {
        if (argc != 3) {
            return KxCommandReply::usage(interp, "setParameters text");
        }
        std::string error;
        if (!parameters_.fromText(argv[2], std::strlen(argv[2]), error)) {
            return KxCommandReply::failf(interp, "Error: Bad parameters (%s).", error.c_str());
        }
        parametersReplaced();
        touch(NEW_PARAMETERS);
        fire();
        return TCL_OK;
    }
    if (std::strcmp(cmd, "isModified") == 0) {
        Tcl_SetObjResult(interp, Tcl_NewBooleanObj(modified_));
        return TCL_OK;
    }
    return KxObject::parse(interp, argc, argv);
}
