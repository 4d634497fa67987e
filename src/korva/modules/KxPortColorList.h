#pragma once

#include <vector>

#include <Inventor/SbColor.h>

#include "korva/modules/KxPort.h"

// A list of colours (RGB in 0..1). Console: setValue ?index? R G B,
// getValue ?index?; saved as one setValue line per colour.
class KxPortColorList : public KxPort {
public:
    KxPortColorList(KxModule* owner, const char* name, const char* label, int numColors = 1);

    int getNumColors() const { return static_cast<int>(colors_.size()); }
    // New colours are white.
    void setNumColors(int n);
    const SbColor& getColor(int i = 0) const { return colors_[static_cast<size_t>(i)]; }
    // Marks the port new when the colour changes.
    void setColor(int i, const SbColor& color);

    void save(std::string& out, const char* moduleLabel) const override;

protected:
    int parseSetValue(Tcl_Interp* interp, int argc, char** argv) override;
    int parseGetValue(Tcl_Interp* interp, int argc, char** argv) const override;
    const char* setValueUsage() const override { return "?index? r g b"; }

private:
    std::vector<SbColor> colors_;
};
