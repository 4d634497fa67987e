#include "korva/modules/KxPortRadioBox.h"

#include <algorithm>

#include <tcl.h>

KxPortRadioBox::KxPortRadioBox(KxModule* owner, const char* name, const char* label, int numItems)
    : KxPort(owner, name, label) {
    setNumItems(numItems);
}

void KxPortRadioBox::setNumItems(int n) {
    labels_.resize(static_cast<size_t>(std::max(n, 0)));
    if (value_ >= getNumItems()) {
        value_ = 0;
    }
}

void KxPortRadioBox::setValue(int index) {
    if (index >= 0 && index < getNumItems() && index != value_) {
        value_ = index;
        touch();
    }
}

void KxPortRadioBox::save(std::string& out, const char* moduleLabel) const {
    if (getNumItems() == 0) {
        return;  // items come from an input; without them there is no choice to restore
    }
    appendSetValueLine(out, moduleLabel, std::to_string(value_));
}

int KxPortRadioBox::parseSetValue(Tcl_Interp* interp, int argc, char** argv) {
    int index = 0;
    if (argc != 1) {
        return setValueUsageError(interp);
    }
    if (!readIndex(interp, argv[0], getNumItems(), index)) {
        return TCL_ERROR;
    }
    setValue(index);
    return TCL_OK;
}

int KxPortRadioBox::parseGetValue(Tcl_Interp* interp, int argc, char** /*argv*/) const {
    if (argc != 0) {
        return setValueUsageError(interp);
    }
    return replyInt(interp, value_);
}
