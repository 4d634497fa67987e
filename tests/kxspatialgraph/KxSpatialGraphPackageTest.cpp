#include "kxspatialgraph/KxSpatialGraphPackage.h"

#include <cstdio>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxConsoleCommands.h"
#include "korva/core/KxObject.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"
#include "support/TclEval.h"

TEST(KxSpatialGraphPackageTest, RegistersTheGraphClass) {
    korvapackage_kxspatialgraph_init();
    std::unique_ptr<KxObject> object(theClassRegistry->createInstance("KxSpatialGraph"));
    ASSERT_NE(object, nullptr);
    EXPECT_STREQ(object->getTypeName(), "KxSpatialGraph");
    EXPECT_STREQ(theClassRegistry->getPackage("KxSpatialGraph"), "kxspatialgraph");
    for (const char* name : {"KxSpatialGraphInterface", "KxSpatialGraphInterfaceImpl",
                             "KxSpatialGraphSelectionInterface", "KxSpatialGraphSelectionInterfaceImpl"}) {
        EXPECT_STREQ(theClassRegistry->getPackage(name), "kxspatialgraph") << name;
    }
}

TEST(KxSpatialGraphPackageTest, ConsoleHelpListsTheGraphCommands) {
    korvapackage_kxspatialgraph_init();
    EXPECT_FALSE(theClassRegistry->registerCommand("NoSuchClass", "merge", "merge otherDataSet"));
    KxObjectPool pool;
    KxTclInterpreter tcl(pool);
    installConsoleCommands(tcl);
    std::string help = evalOk(tcl, "help");
    size_t graph = help.find("  KxSpatialGraph\n");
    ASSERT_NE(graph, std::string::npos) << help;
    EXPECT_EQ(help.find("      {label} merge otherDataSet\n"), help.find('\n', graph) + 1) << help;
    EXPECT_NE(help.find("      {label} applyTransform\n"), std::string::npos) << help;
}

// The example builds two neurons (x 0..10 and 20..30, y 0..6, z 0..1), merges
// them, scales by 2 and moves by 5 in z, so the baked box is known by hand.
TEST(KxSpatialGraphPackageTest, GraphBasicsExampleRunsInKorva) {
    // Coin keeps a few objects for the life of the korva process; the leak
    // checker of a sanitizer build must not fail the script for them.
    std::string command = std::string("ASAN_OPTIONS=detect_leaks=0 " KORVA_BINARY_DIR "/bin/korva ") +
                          KORVA_SOURCE_DIR + "/examples/graph_basics.tcl 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::string output;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        output.append(buffer, n);
    }
    EXPECT_EQ(pclose(pipe), 0) << output;
    EXPECT_NE(output.find("Bounding box after applyTransform: 0.0 60.0 0.0 12.0 5.0 7.0"), std::string::npos)
        << output;
    EXPECT_NE(output.find("\"Dendrite\" {"), std::string::npos) << output;
}
