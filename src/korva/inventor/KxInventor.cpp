#include "korva/inventor/KxInventor.h"

#include <mutex>

#include <Inventor/SoDB.h>

#include "korva/inventor/SoMFBit.h"
#include "korva/inventor/SoSphereSet.h"
#include "korva/inventor/SoSphereSetDetail.h"

void KxInventor::init() {
    static std::once_flag once;
    std::call_once(once, [] {
        SoDB::init();
        SoMFBit::initClass();
        SoSphereSetDetail::initClass();
        SoSphereSet::initClass();
    });
}

// Coin keeps a few objects from SoDB::init() for the life of the process (the
// global "realTime" field, ...). LeakSanitizer finds these suppressions in any
// loaded library, so every program that starts Coin through the host (tests,
// the korva executable) is spared those reports in sanitizer builds.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libCoin.so\n";
}
