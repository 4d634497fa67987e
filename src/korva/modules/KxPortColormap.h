#pragma once

#include <Inventor/SbColor.h>

class KxColormap;

// Where a module takes colours for data values from: a colormap (borrowed,
// may be null) read over its own range or over a local range of the port,
// and a constant colour used when no colormap is attached. Minimal host port.
class KxPortColormap {
public:
    void setColormap(const KxColormap* colormap) { colormap_ = colormap; }
    const KxColormap* getColormap() const { return colormap_; }
    void setDefaultColor(const SbColor& color) { defaultColor_ = color; }
    const SbColor& getDefaultColor() const { return defaultColor_; }
    // A local range replaces the colormap's own range.
    void setLocalRange(bool on, float minCoord = 0.0f, float maxCoord = 1.0f);
    bool hasLocalRange() const { return localRange_; }
    float getMinValue() const;
    float getMaxValue() const;

    SbColor getColor(float value) const;

private:
    const KxColormap* colormap_ = nullptr;
    SbColor defaultColor_ = SbColor(0.8f, 0.8f, 0.8f);
    bool localRange_ = false;
    float localMin_ = 0.0f;
    float localMax_ = 1.0f;
};
