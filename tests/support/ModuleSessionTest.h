#pragma once

#include <gtest/gtest.h>

#include "korva/core/KxConsoleCommands.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxPackageLoader.h"
#include "korva/core/KxTclInterpreter.h"
#include "korva/modules/KxSessionState.h"

// Tests of the package's modules in a session: the console's and the saved
// state's commands on tcl_, the package loaded, and the object pool emptied
// afterwards.
class ModuleSessionTest : public ::testing::Test {
protected:
    ModuleSessionTest() : tcl_(*theObjectPool) {
        installConsoleCommands(tcl_);
        KxSessionState::installCommands(tcl_);
    }
    ~ModuleSessionTest() override { theObjectPool->clear(); }
    void SetUp() override { ASSERT_TRUE(thePackageLoader->load("kxspatialgraph")); }

    KxTclInterpreter tcl_;
};
