#include "korva/modules/KxPort.h"

#include <charconv>
#include <cstring>

#include <tcl.h>

#include "korva/core/KxCommandReply.h"
#include "korva/modules/KxModule.h"

KxPort::KxPort(KxModule* owner, const char* name, const char* label)
    : owner_(owner), name_(name ? name : ""), label_(label ? label : "") {
    if (owner_) {
        owner_->addPort(this);
    }
}

KxPort::~KxPort() {
    if (owner_) {
        owner_->removePort(this);
    }
}

int KxPort::parse(Tcl_Interp* interp, int argc, char** argv) {
    const char* cmd = argc >= 2 ? argv[1] : "";
    if (std::strcmp(cmd, "setValue") == 0) {
        return parseSetValue(interp, argc - 2, argv + 2);
    }
    if (std::strcmp(cmd, "getValue") == 0) {
        return parseGetValue(interp, argc - 2, argv + 2);
    }
    return KxCommandReply::usage(interp, usage().c_str());
}

std::string KxPort::usage() const {
    return name_ + " setValue " + setValueUsage() + " | getValue ?index?";
}

void KxPort::save(std::string& /*out*/, const char* /*moduleLabel*/) const {}

std::string KxPort::formatFloat(float value) {
    char buffer[32];
    std::to_chars_result r = std::to_chars(buffer, buffer + sizeof(buffer), value);
    return std::string(buffer, r.ptr);
}

int KxPort::setValueUsageError(Tcl_Interp* interp) const {
    return KxCommandReply::usage(interp, (name_ + " setValue " + setValueUsage()).c_str());
}

bool KxPort::readIndex(Tcl_Interp* interp, const char* word, int count, int& index) {
    if (!readInt(interp, word, index)) {
        return false;
    }
    if (index < 0 || index >= count) {
        KxCommandReply::failf(interp, "Error: Index %d is out of range 0..%d.", index, count - 1);
        return false;
    }
    return true;
}

bool KxPort::readFloat(Tcl_Interp* interp, const char* word, float& value) {
    double d = 0.0;
    if (Tcl_GetDouble(interp, word, &d) != TCL_OK) {
        KxCommandReply::failWithTclMessage(interp);
        return false;
    }
    value = static_cast<float>(d);
    return true;
}

bool KxPort::readInt(Tcl_Interp* interp, const char* word, int& value) {
    if (Tcl_GetInt(interp, word, &value) != TCL_OK) {
        KxCommandReply::failWithTclMessage(interp);
        return false;
    }
    return true;
}

bool KxPort::readItemCall(Tcl_Interp* interp, int argc, char** argv, int count, int numValues, int& index,
                          char**& values) const {
    index = 0;
    if (argc == numValues + 1) {
        if (!readIndex(interp, argv[0], count, index)) {
            return false;
        }
        values = argv + 1;
        return true;
    }
    if (argc != numValues) {
        setValueUsageError(interp);
        return false;
    }
    values = argv;
    return true;
}

bool KxPort::readItemIndex(Tcl_Interp* interp, int argc, char** argv, int count, int& index) const {
    index = 0;
    if (argc > 1) {
        KxCommandReply::usage(interp, (name_ + " getValue ?index?").c_str());
        return false;
    }
    return argc == 0 || readIndex(interp, argv[0], count, index);
}

int KxPort::replyFloat(Tcl_Interp* interp, float value) {
    Tcl_SetObjResult(interp, Tcl_NewStringObj(formatFloat(value).c_str(), -1));
    return TCL_OK;
}

int KxPort::replyInt(Tcl_Interp* interp, int value) {
    Tcl_SetObjResult(interp, Tcl_NewIntObj(value));
    return TCL_OK;
}

void KxPort::appendSetValueLine(std::string& out, const char* moduleLabel, const std::string& values) const {
    out += std::string("{") + moduleLabel + "} {" + name_ + "} setValue " + values + "\n";
}
