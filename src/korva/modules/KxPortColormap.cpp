#include "korva/modules/KxPortColormap.h"

#include <cstring>
#include <string>

#include <tcl.h>

#include "korva/core/KxCommandReply.h"
#include "korva/core/KxObjectPool.h"
#include "korva/data/KxColormap.h"

KxPortColormap::KxPortColormap(KxModule* owner, const char* name, const char* label)
    : KxConnection(owner, name, label, {"KxColormap"}) {
    if (KxColormap* colormap = KxColormap::findDefault()) {
        connect(colormap);
        untouch();
    }
}

void KxPortColormap::setColormap(const KxColormap* colormap) {
    bool inPool = colormap && theObjectPool->contains(colormap);
    // A pool object is never const: the pool owns and edits it.
    connect(inPool ? const_cast<KxColormap*>(colormap) : nullptr);
    if (borrowed_ != (inPool ? nullptr : colormap)) {
        borrowed_ = inPool ? nullptr : colormap;
        touch();
    }
}

const KxColormap* KxPortColormap::getColormap() const {
    const KxColormap* connected = getSource<KxColormap>();
    return connected ? connected : borrowed_;
}

void KxPortColormap::setDefaultColor(const SbColor& color) {
    if (color != defaultColor_) {
        defaultColor_ = color;
        touch();
    }
}

void KxPortColormap::setLocalRange(bool on, float minCoord, float maxCoord) {
    localRange_ = on;
    localMin_ = minCoord;
    localMax_ = maxCoord;
    touch();
}

float KxPortColormap::getMinValue() const {
    const KxColormap* colormap = getColormap();
    return localRange_ || !colormap ? localMin_ : colormap->getMinCoord();
}

float KxPortColormap::getMaxValue() const {
    const KxColormap* colormap = getColormap();
    return localRange_ || !colormap ? localMax_ : colormap->getMaxCoord();
}

SbColor KxPortColormap::getColor(float value) const {
    const KxColormap* colormap = getColormap();
    if (!colormap) {
        return defaultColor_;
    }
    return colormap->getColor(value, getMinValue(), getMaxValue());
}

int KxPortColormap::parse(Tcl_Interp* interp, int argc, char** argv) {
    const char* cmd = argc >= 2 ? argv[1] : "";
    float v[3] = {0.0f, 0.0f, 0.0f};
    if (std::strcmp(cmd, "setDefaultColor") == 0) {
        if (argc != 5) {
            return KxCommandReply::usage(interp, usage().c_str());
        }
        for (int k = 0; k < 3; ++k) {
            if (!readFloat(interp, argv[2 + k], v[k])) {
                return TCL_ERROR;
            }
        }
        setDefaultColor(SbColor(v));
        return TCL_OK;
    }
    if (std::strcmp(cmd, "setLocalRange") == 0) {
        int on = 0;
        if (argc != 3 && argc != 5) {
            return KxCommandReply::usage(interp, usage().c_str());
        }
        if (!readInt(interp, argv[2], on) ||
            (argc == 5 && (!readFloat(interp, argv[3], v[0]) || !readFloat(interp, argv[4], v[1])))) {
            return TCL_ERROR;
        }
        setLocalRange(on != 0, argc == 5 ? v[0] : localMin_, argc == 5 ? v[1] : localMax_);
        return TCL_OK;
    }
    if (std::strcmp(cmd, "getLocalRange") == 0) {
        std::string text =
            std::to_string(localRange_ ? 1 : 0) + " " + formatFloat(localMin_) + " " + formatFloat(localMax_);
        Tcl_SetObjResult(interp, Tcl_NewStringObj(text.c_str(), -1));
        return TCL_OK;
    }
    return KxConnection::parse(interp, argc, argv);
}

std::string KxPortColormap::usage() const {
    return KxConnection::usage() + " | setDefaultColor r g b | setLocalRange 0|1 ?min max? | getLocalRange";
}

void KxPortColormap::save(std::string& out, const char* moduleLabel) const {
    KxConnection::save(out, moduleLabel);
    std::string port = std::string("{") + moduleLabel + "} {" + getName() + "} ";
    out += port + "setDefaultColor " + formatFloat(defaultColor_[0]) + " " + formatFloat(defaultColor_[1]) +
           " " + formatFloat(defaultColor_[2]) + "\n";
    out += port + "setLocalRange " + (localRange_ ? "1 " : "0 ") + formatFloat(localMin_) + " " +
           formatFloat(localMax_) + "\n";
}
