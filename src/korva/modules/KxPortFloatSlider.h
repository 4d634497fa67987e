#pragma once

#include "korva/modules/KxPort.h"

// One float value inside a settable range [min, max]; values set outside
// the range are clamped into it. Console: setValue V, getValue, setMinMax
// MIN MAX, getMinMax; saved as a setMinMax and a setValue line.
class KxPortFloatSlider : public KxPort {
public:
    KxPortFloatSlider(KxModule* owner, const char* name, const char* label, float minValue = 0.0f,
                      float maxValue = 1.0f);

    float getValue() const { return value_; }
    void setValue(float value);
    float getMinValue() const { return min_; }
    float getMaxValue() const { return max_; }
    // Swaps the bounds when min > max and clamps the value into the new range.
    void setMinMax(float minValue, float maxValue);

    int parse(Tcl_Interp* interp, int argc, char** argv) override;
    std::string usage() const override;
    void save(std::string& out, const char* moduleLabel) const override;

protected:
    int parseSetValue(Tcl_Interp* interp, int argc, char** argv) override;
    int parseGetValue(Tcl_Interp* interp, int argc, char** argv) const override;
    const char* setValueUsage() const override { return "value"; }

private:
    float value_;
    float min_;
    float max_;
};
