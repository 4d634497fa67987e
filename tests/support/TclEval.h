#pragma once

#include <string>

#include <gtest/gtest.h>
#include <tcl.h>

#include "korva/core/KxTclInterpreter.h"

// The result of a script that must succeed.
inline std::string evalOk(KxTclInterpreter& tcl, const char* script) {
    EXPECT_EQ(tcl.eval(script), TCL_OK) << script << ": " << tcl.result();
    return tcl.result();
}

// The result of a script that must fail.
inline std::string evalError(KxTclInterpreter& tcl, const char* script) {
    EXPECT_EQ(tcl.eval(script), TCL_ERROR) << script << ": " << tcl.result();
    return tcl.result();
}
