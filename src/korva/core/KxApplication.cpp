#include "korva/core/KxApplication.h"

std::string& KxApplication::skinName() {
    static std::string name = "Korva";
    return name;
}

const char* KxApplication::getSkinName() {
    return skinName().c_str();
}

void KxApplication::setSkinName(const char* name) {
    skinName() = name && *name ? name : "Korva";
}
