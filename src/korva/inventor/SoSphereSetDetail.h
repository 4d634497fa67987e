#pragma once

#include <Inventor/details/SoDetail.h>
#include <Inventor/details/SoSubDetail.h>

// Pick detail of an SoSphereSet: the index of the sphere that was hit.
class SoSphereSetDetail : public SoDetail {
    typedef SoDetail inherited;
    SO_DETAIL_HEADER(SoSphereSetDetail);

public:
    static void initClass();
    SoSphereSetDetail() = default;
    explicit SoSphereSetDetail(int sphereIndex) : sphereIndex_(sphereIndex) {}
    ~SoSphereSetDetail() override = default;

    SoDetail* copy() const override { return new SoSphereSetDetail(sphereIndex_); }
    int getSphereIndex() const { return sphereIndex_; }
    void setSphereIndex(int index) { sphereIndex_ = index; }

private:
    int sphereIndex_ = -1;
};
