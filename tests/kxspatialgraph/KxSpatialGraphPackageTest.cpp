#include "kxspatialgraph/KxSpatialGraphPackage.h"

#include <string>

#include <gtest/gtest.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxConsoleCommands.h"
#include "korva/core/KxObject.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"
#include "support/KorvaRunner.h"
#include "support/TclEval.h"

// `{label} help` of every class create can make lists the commands of its
// base classes too, and the object answers each of them.
TEST(KxSpatialGraphPackageTest, EveryObjectAnswersEveryCommandItsHelpLists) {
    korvapackage_kxspatialgraph_init();
    KxObjectPool pool;
    KxTclInterpreter tcl(pool);
    installConsoleCommands(tcl);
    for (const std::string& name : theClassRegistry->classNames()) {
        if (!theClassRegistry->isCreatable(name.c_str())) {
            continue;
        }
        SCOPED_TRACE(name);
        std::string label = evalOk(tcl, ("create " + name).c_str());
        std::string help = evalOk(tcl, ("{" + label + "} help").c_str());
        EXPECT_NE(help.find("\ngetTypeName\n"), std::string::npos) << help;
        bool data = pool.find(label.c_str())->isOfType("KxData");
        EXPECT_EQ(help.find("\nsetParameters text\n") != std::string::npos, data) << help;
        size_t start = 0;
        for (size_t end = help.find('\n'); end != std::string::npos;
             start = end + 1, end = help.find('\n', start)) {
            std::string word = help.substr(start, help.find_first_of(" \n", start) - start);
            tcl.eval(("{" + label + "} " + word).c_str());
            EXPECT_EQ(tcl.result().find("has no command"), std::string::npos) << word;
        }
    }
}

// The example builds two neurons (x 0..10 and 20..30, y 0..6, z 0..1), merges
// them, scales by 2 and moves by 5 in z, so the baked box is known by hand.
TEST(KxSpatialGraphPackageTest, GraphBasicsExampleRunsInKorva) {
    KorvaRun run = runKorva({KORVA_SOURCE_DIR "/examples/graph_basics.tcl"});
    std::string output = run.out + run.err;
    EXPECT_EQ(run.status, 0) << output;
    EXPECT_NE(output.find("Bounding box after applyTransform: 0.0 60.0 0.0 12.0 5.0 7.0"), std::string::npos)
        << output;
    EXPECT_NE(output.find("\"Dendrite\" {"), std::string::npos) << output;
}
