#include "kxspatialgraph/KxSpatialGraphPackage.h"

#include <string>

#include <gtest/gtest.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxConsoleCommands.h"
#include "korva/core/KxObject.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"
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
