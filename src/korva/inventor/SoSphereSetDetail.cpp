#include "korva/inventor/SoSphereSetDetail.h"

#include <mutex>

SO_DETAIL_SOURCE(SoSphereSetDetail);

void SoSphereSetDetail::initClass() {
    static std::once_flag once;
    std::call_once(once, [] { SO_DETAIL_INIT_CLASS(SoSphereSetDetail, SoDetail); });
}
