#include "kxspatialgraph/KxSpatialGraphPackage.h"

namespace {
bool gInitialised = false;
}

extern "C" int korvapackage_kxspatialgraph_init() {
    if (gInitialised) {
        return 1;
    }
    gInitialised = true;
    return 1;
}
