#include "korva/modules/KxPortGeneric.h"

#include <clocale>
#include <cstdio>

#include <tcl.h>

KxPortGeneric::KxPortGeneric(KxModule* owner, const char* name, const char* label)
    : KxPort(owner, name, label) {}

int KxPortGeneric::addFloatField(float value, const char* format, int width) {
    Item field;
    field.value = value;
    field.format = format ? format : "%g";
    field.width = width;
    items_.push_back(field);
    return getNumItems() - 1;
}

int KxPortGeneric::addButton(const char* label) {
    Item button;
    button.button = true;
    button.label = label ? label : "";
    items_.push_back(button);
    return getNumItems() - 1;
}

void KxPortGeneric::setFloat(int i, float value) {
    Item& field = items_[static_cast<size_t>(i)];
    if (field.value != value) {
        field.value = value;
        setItemNew(i);
    }
}

void KxPortGeneric::setButton(int i, bool down) {
    items_[static_cast<size_t>(i)].value = down ? 1.0f : 0.0f;
    if (down) {
        setItemNew(i);
    }
}

void KxPortGeneric::setItemNew(int i, bool isNew) {
    items_[static_cast<size_t>(i)].isNew = isNew;
    if (isNew) {
        touch();
    }
}

std::string KxPortGeneric::formatField(int i) const {
    // The format is a printf format; the user interface shows numbers with a
    // decimal point whatever the process locale says.
    std::string text = formatFloat(item(i).value);
    char buffer[64];
    int n = std::snprintf(buffer, sizeof(buffer), item(i).format.c_str(), static_cast<double>(item(i).value));
    if (n > 0 && static_cast<size_t>(n) < sizeof(buffer)) {
        text.assign(buffer, static_cast<size_t>(n));
        const char* point = std::localeconv()->decimal_point;
        if (point[0] != '.' && point[0] != '\0') {
            for (char& c : text) {
                c = c == point[0] ? '.' : c;
            }
        }
    }
    return text;
}

void KxPortGeneric::untouch() {
    KxPort::untouch();
    for (Item& it : items_) {
        it.isNew = false;
        if (it.button) {
            it.value = 0.0f;
        }
    }
}

void KxPortGeneric::save(std::string& out, const char* moduleLabel) const {
    for (int i = 0; i < getNumItems(); ++i) {
        if (!isButton(i)) {
            appendSetValueLine(out, moduleLabel, std::to_string(i) + " " + formatFloat(getFloat(i)));
        }
    }
}

int KxPortGeneric::parseSetValue(Tcl_Interp* interp, int argc, char** argv) {
    int index = 0;
    float value = 0.0f;
    if (argc != 2) {
        return setValueUsageError(interp);
    }
    if (!readIndex(interp, argv[0], getNumItems(), index) || !readFloat(interp, argv[1], value)) {
        return TCL_ERROR;
    }
    if (isButton(index)) {
        setButton(index, value != 0.0f);
    } else {
        setFloat(index, value);
    }
    return TCL_OK;
}

int KxPortGeneric::parseGetValue(Tcl_Interp* interp, int argc, char** argv) const {
    int index = 0;
    return readItemIndex(interp, argc, argv, getNumItems(), index) ? replyFloat(interp, getFloat(index))
                                                                   : TCL_ERROR;
}
