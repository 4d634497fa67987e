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
