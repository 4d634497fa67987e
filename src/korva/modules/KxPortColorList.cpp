#include "korva/modules/KxPortColorList.h"

#include <algorithm>

#include <tcl.h>

#include "korva/core/KxCommandReply.h"

KxPortColorList::KxPortColorList(KxModule* owner, const char* name, const char* label, int numColors)
    : KxPort(owner, name, label) {
    setNumColors(numColors);
}

void KxPortColorList::setNumColors(int n) {
    colors_.resize(static_cast<size_t>(std::max(n, 0)), SbColor(1.0f, 1.0f, 1.0f));
}

void KxPortColorList::setColor(int i, const SbColor& color) {
    SbColor& current = colors_[static_cast<size_t>(i)];
    if (current != color) {
        current = color;
        touch();
    }
}

namespace {
std::string colorText(const SbColor& c) {
    return KxPort::formatFloat(c[0]) + " " + KxPort::formatFloat(c[1]) + " " + KxPort::formatFloat(c[2]);
}
}  // namespace

void KxPortColorList::save(std::string& out, const char* moduleLabel) const {
    for (int i = 0; i < getNumColors(); ++i) {
        appendSetValueLine(out, moduleLabel, std::to_string(i) + " " + colorText(getColor(i)));
    }
}

int KxPortColorList::parseSetValue(Tcl_Interp* interp, int argc, char** argv) {
    int index = 0;
    char** values = nullptr;
    if (!readItemCall(interp, argc, argv, getNumColors(), 3, index, values)) {
        return TCL_ERROR;
    }
    float rgb[3];
    for (int k = 0; k < 3; ++k) {
        if (!readFloat(interp, values[k], rgb[k])) {
            return TCL_ERROR;
        }
        if (rgb[k] < 0.0f || rgb[k] > 1.0f) {
            return KxCommandReply::failf(interp, "Error: Colour components lie in 0..1, not %s.", values[k]);
        }
    }
    setColor(index, SbColor(rgb));
    return TCL_OK;
}

int KxPortColorList::parseGetValue(Tcl_Interp* interp, int argc, char** argv) const {
    int index = 0;
    if (!readItemIndex(interp, argc, argv, getNumColors(), index)) {
        return TCL_ERROR;
    }
    Tcl_SetObjResult(interp, Tcl_NewStringObj(colorText(getColor(index)).c_str(), -1));
    return TCL_OK;
}
