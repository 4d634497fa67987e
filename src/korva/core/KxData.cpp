#include "korva/core/KxData.h"

#include <cstring>

#include <tcl.h>

#include "korva/core/KxInfoTags.h"

KxData::KxData() : parameters_("Parameters") {}

KxData::~KxData() = default;

bool KxData::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxData") == 0;
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
    // Listeners may add or remove listeners: call a snapshot.
    auto listeners = listeners_;
    for (auto& entry : listeners) {
        entry.second(*this, mask);
    }
}

int KxData::addListener(Listener listener) {
    int id = nextListenerId_++;
    listeners_.emplace_back(id, std::move(listener));
    return id;
}

void KxData::removeListener(int id) {
    for (auto it = listeners_.begin(); it != listeners_.end(); ++it) {
        if (it->first == id) {
            listeners_.erase(it);
            return;
        }
    }
}

void KxData::info(KxInfoTags& tags) const {
    tags.add("Data Class:", "%s", getTypeName());
}

int KxData::parse(Tcl_Interp* interp, int argc, char** argv) {
    if (argc < 2) {
        Tcl_SetObjResult(interp, Tcl_ObjPrintf("USAGE: %s command ?args?", getLabel()));
        return TCL_ERROR;
    }
    const char* cmd = argv[1];
    if (std::strcmp(cmd, "getLabel") == 0) {
        Tcl_SetObjResult(interp, Tcl_NewStringObj(getLabel(), -1));
        return TCL_OK;
    }
    if (std::strcmp(cmd, "info") == 0) {
        KxInfoTags tags;
        info(tags);
        Tcl_SetObjResult(interp, Tcl_NewStringObj(tags.toText().c_str(), -1));
        return TCL_OK;
    }
    if (std::strcmp(cmd, "parameters") == 0) {
        Tcl_SetObjResult(interp, Tcl_NewStringObj(parameters_.toText().c_str(), -1));
        return TCL_OK;
    }
    if (std::strcmp(cmd, "isModified") == 0) {
        Tcl_SetObjResult(interp, Tcl_NewBooleanObj(modified_));
        return TCL_OK;
    }
    Tcl_SetObjResult(interp, Tcl_ObjPrintf("Error: %s has no command \"%s\"", getLabel(), cmd));
    return TCL_ERROR;
}
