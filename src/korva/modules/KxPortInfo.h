#pragma once

#include <string>

#include "korva/modules/KxPort.h"

// A line of text the module shows the user. getValue answers the text;
// the text is the module's to set, so setValue is refused and nothing is saved.
class KxPortInfo : public KxPort {
public:
    KxPortInfo(KxModule* owner, const char* name, const char* label);

    const char* getValue() const { return text_.c_str(); }
    void setValue(const char* text) { text_ = text ? text : ""; }

protected:
    int parseSetValue(Tcl_Interp* interp, int argc, char** argv) override;
    int parseGetValue(Tcl_Interp* interp, int argc, char** argv) const override;
    const char* setValueUsage() const override { return "(not settable)"; }

private:
    std::string text_;
};
