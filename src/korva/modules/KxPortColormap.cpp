#include "korva/modules/KxPortColormap.h"

#include "korva/data/KxColormap.h"

void KxPortColormap::setLocalRange(bool on, float minCoord, float maxCoord) {
    localRange_ = on;
    localMin_ = minCoord;
    localMax_ = maxCoord;
}

float KxPortColormap::getMinValue() const {
    return localRange_ || !colormap_ ? localMin_ : colormap_->getMinCoord();
}

float KxPortColormap::getMaxValue() const {
    return localRange_ || !colormap_ ? localMax_ : colormap_->getMaxCoord();
}

SbColor KxPortColormap::getColor(float value) const {
    if (!colormap_) {
        return defaultColor_;
    }
    return colormap_->getColor(value, getMinValue(), getMaxValue());
}
