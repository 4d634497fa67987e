#pragma once

#include "korva/modules/KxPort.h"

// A visual divider between groups of ports; it holds no value.
class KxPortSeparator : public KxPort {
public:
    KxPortSeparator(KxModule* owner, const char* name);

protected:
    int parseSetValue(Tcl_Interp* interp, int argc, char** argv) override;
    int parseGetValue(Tcl_Interp* interp, int argc, char** argv) const override;
    const char* setValueUsage() const override { return "(no value)"; }

private:
    int noValue(Tcl_Interp* interp) const;
};
