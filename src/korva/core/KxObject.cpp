#include "korva/core/KxObject.h"

#include <cstring>
#include <string>

#include <tcl.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxCommandReply.h"
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
        return KxCommandReply::usage(interp, (std::string("{") + getLabel() + "} command ?args?").c_str());
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
    if (std::strcmp(cmd, "help") == 0) {
        std::string text;
        for (const std::string& usage : theClassRegistry->commandUsages(*this)) {
            text += usage + "\n";
        }
        Tcl_SetObjResult(interp, Tcl_NewStringObj(text.c_str(), -1));
        return TCL_OK;
    }
    return unknownCommand(interp, cmd);
}

int KxObject::unknownCommand(Tcl_Interp* interp, const char* cmd) const {
    return KxCommandReply::failf(interp,
                                 "Error: Object %s has no command \"%s\"; \"{%s} help\" lists its commands.",
                                 getLabel(), cmd, getLabel());
}
