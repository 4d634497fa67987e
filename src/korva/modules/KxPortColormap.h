#pragma once

#include <Inventor/SbColor.h>

#include "korva/modules/KxConnection.h"

class KxColormap;

// Where a module takes colours for data values from: a connection to a
// colormap (the pool's default colormap, if there is one, when the port is
// made), a constant colour used when none is connected, and an optional
// local range that replaces the colormap's own. Console, besides those of a
// connection: setDefaultColor R G B, setLocalRange 0|1 ?MIN MAX?,
// getLocalRange; all three are saved.
class KxPortColormap : public KxConnection {
public:
    explicit KxPortColormap(KxModule* owner = nullptr, const char* name = "colormap",
                            const char* label = "Colormap");

    // Connects a colormap of the pool; one outside the pool (a fixed table of
    // the caller, which must outlive its use here) is borrowed without
    // change notification. Null disconnects.
    void setColormap(const KxColormap* colormap);
    const KxColormap* getColormap() const;
    void setDefaultColor(const SbColor& color);
    const SbColor& getDefaultColor() const { return defaultColor_; }
    // A local range replaces the colormap's own range.
    void setLocalRange(bool on, float minCoord = 0.0f, float maxCoord = 1.0f);
    bool hasLocalRange() const { return localRange_; }
    float getMinValue() const;
    float getMaxValue() const;

    // The colormap's colour at value over the port's range, or the constant colour.
    SbColor getColor(float value) const;

    int parse(Tcl_Interp* interp, int argc, char** argv) override;
    std::string usage() const override;
    void save(std::string& out, const char* moduleLabel) const override;

private:
    const KxColormap* borrowed_ = nullptr;
    SbColor defaultColor_ = SbColor(0.8f, 0.8f, 0.8f);
    bool localRange_ = false;
    float localMin_ = 0.0f;
    float localMax_ = 1.0f;
};
