#include "korva/modules/KxPortFloatSlider.h"

#include <algorithm>
#include <cstring>

#include <tcl.h>

#include "korva/core/KxCommandReply.h"

KxPortFloatSlider::KxPortFloatSlider(KxModule* owner, const char* name, const char* label, float minValue,
                                     float maxValue)
    : KxPort(owner, name, label), value_(minValue), min_(minValue), max_(maxValue) {
    setMinMax(minValue, maxValue);
}

void KxPortFloatSlider::setValue(float value) {
    float clamped = std::clamp(value, min_, max_);
    if (clamped != value_) {
        value_ = clamped;
        touch();
    }
}

void KxPortFloatSlider::setMinMax(float minValue, float maxValue) {
    min_ = std::min(minValue, maxValue);
    max_ = std::max(minValue, maxValue);
    setValue(value_);
}

int KxPortFloatSlider::parse(Tcl_Interp* interp, int argc, char** argv) {
    const char* cmd = argc >= 2 ? argv[1] : "";
    if (std::strcmp(cmd, "setMinMax") == 0) {
        float lo = 0.0f;
        float hi = 0.0f;
        if (argc != 4) {
            return KxCommandReply::usage(interp, (std::string(getName()) + " setMinMax min max").c_str());
        }
        if (!readFloat(interp, argv[2], lo) || !readFloat(interp, argv[3], hi)) {
            return TCL_ERROR;
        }
        setMinMax(lo, hi);
        return TCL_OK;
    }
    if (std::strcmp(cmd, "getMinMax") == 0) {
        Tcl_SetObjResult(interp, Tcl_NewStringObj((formatFloat(min_) + " " + formatFloat(max_)).c_str(), -1));
        return TCL_OK;
    }
    return KxPort::parse(interp, argc, argv);
}

std::string KxPortFloatSlider::usage() const {
    return KxPort::usage() + " | setMinMax min max | getMinMax";
}

void KxPortFloatSlider::save(std::string& out, const char* moduleLabel) const {
    out += std::string("{") + moduleLabel + "} {" + getName() + "} setMinMax " + formatFloat(min_) + " " +
           formatFloat(max_) + "\n";
    appendSetValueLine(out, moduleLabel, formatFloat(value_));
}

int KxPortFloatSlider::parseSetValue(Tcl_Interp* interp, int argc, char** argv) {
    float value = 0.0f;
    if (argc != 1) {
        return setValueUsageError(interp);
    }
    if (!readFloat(interp, argv[0], value)) {
        return TCL_ERROR;
    }
    setValue(value);
    return TCL_OK;
}

int KxPortFloatSlider::parseGetValue(Tcl_Interp* interp, int argc, char** /*argv*/) const {
    if (argc != 0) {
        return setValueUsageError(interp);
    }
    return replyFloat(interp, value_);
}
