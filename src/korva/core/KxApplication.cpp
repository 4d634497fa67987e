#include "korva/core/KxApplication.h"

#include <cstdlib>

const char* KxApplication::getSkinName() {
    const char* skin = std::getenv("KORVA_SKIN");
    return skin && *skin ? skin : "Korva";
}
