#include "korva/modules/KxPortToggleList.h"

#include <algorithm>

#include <tcl.h>

KxPortToggleList::KxPortToggleList(KxModule* owner, const char* name, const char* label, int numItems)
    : KxPort(owner, name, label) {
    setNumItems(numItems);
}

void KxPortToggleList::setNumItems(int n) {
    size_t count = static_cast<size_t>(std::max(n, 0));
    labels_.resize(count);
    values_.resize(count, 0);
}

void KxPortToggleList::setValue(int i, int value) {
    int& current = values_[static_cast<size_t>(i)];
    if (current != value) {
        current = value;
        touch();
    }
}

void KxPortToggleList::releaseAll() {
    std::fill(values_.begin(), values_.end(), 0);
}

void KxPortToggleList::save(std::string& out, const char* moduleLabel) const {
    for (int i = 0; i < getNumItems(); ++i) {
        appendSetValueLine(out, moduleLabel, std::to_string(i) + " " + std::to_string(getValue(i)));
    }
}

int KxPortToggleList::parseSetValue(Tcl_Interp* interp, int argc, char** argv) {
    int index = 0;
    char** values = nullptr;
    int value = 0;
    if (!readItemCall(interp, argc, argv, getNumItems(), 1, index, values) ||
        !readInt(interp, values[0], value)) {
        return TCL_ERROR;
    }
    setValue(index, value != 0 ? 1 : 0);
    // A button pressed again from the console counts as a press even if it was down.
    touch();
    return TCL_OK;
}

int KxPortToggleList::parseGetValue(Tcl_Interp* interp, int argc, char** argv) const {
    int index = 0;
    return readItemIndex(interp, argc, argv, getNumItems(), index) ? replyInt(interp, getValue(index))
                                                                   : TCL_ERROR;
}
