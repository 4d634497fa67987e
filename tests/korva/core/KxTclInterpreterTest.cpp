#include <gtest/gtest.h>

#include <tcl.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "korva/core/KxConsoleCommands.h"
#include "korva/core/KxData.h"
#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"
#include "support/TclEval.h"

namespace {

// Answers its label and arguments, so tests see which object got the call.
class EchoData : public KxData {
public:
    int parse(Tcl_Interp* interp, int argc, char** argv) override {
        if (argc >= 3 && std::string(argv[1]) == "throw") {
            throwNamed(argv[2]);
        }
        if (argc >= 2 && std::string(argv[1]) == "echo") {
            std::string reply = getLabel();
            for (int i = 2; i < argc; ++i) {
                reply += std::string(" ") + argv[i];
            }
            Tcl_SetObjResult(interp, Tcl_NewStringObj(reply.c_str(), -1));
            return TCL_OK;
        }
        return KxData::parse(interp, argc, argv);
    }

private:
    static void throwNamed(const std::string& what) {
        if (what == "bad_alloc") {
            throw std::bad_alloc();
        }
        if (what == "length_error") {
            std::vector<char>().reserve(std::vector<char>().max_size() + 1);
        }
        if (what == "runtime_error") {
            throw std::runtime_error("boom");
        }
        throw 42;
    }
};

class KxTclInterpreterTest : public ::testing::Test {
protected:
    KxTclInterpreterTest() : tcl_(pool_) { installConsoleCommands(tcl_); }

    std::string ok(const char* script) { return evalOk(tcl_, script); }
    std::string error(const char* script) { return evalError(tcl_, script); }

    KxObjectPool pool_;
    KxTclInterpreter tcl_;
};

}  // namespace

TEST_F(KxTclInterpreterTest, PoolObjectsAreCommandsThatFollowTheirLabelsButNeverHideTclCommands) {
    KxData* d = new EchoData;
    pool_.add(d, "my graph");
    EXPECT_EQ(ok("{my graph} echo a {b c}"), "my graph a b c");
    EXPECT_EQ(ok("{my graph} getTypeName"), "KxData");
    pool_.rename(d, "other");
    EXPECT_EQ(ok("other echo"), "other");
    EXPECT_EQ(error("{my graph} echo"), "invalid command name \"my graph\"");
    pool_.remove(d);
    EXPECT_EQ(error("other echo"), "invalid command name \"other\"");
    // Unknown object commands and missing arguments fail with a message.
    pool_.add(new EchoData, "e");
    EXPECT_EQ(error("e frobnicate"),
              "Error: Object e has no command \"frobnicate\"; \"{e} help\" lists its commands.");
    EXPECT_EQ(error("e"), "USAGE: {e} command ?args?");
    // Labels never hide Tcl commands.
    EXPECT_STREQ(pool_.add(new EchoData, "set"), "set2");
    EXPECT_STREQ(pool_.add(new EchoData, "load"), "load2");
    EXPECT_EQ(ok("set x 5"), "5");
    EXPECT_EQ(ok("load2 echo"), "load2");
}

TEST_F(KxTclInterpreterTest, CreateAllAndRemove) {
    EXPECT_EQ(ok("create KxData notes"), "notes");
    EXPECT_EQ(ok("create KxSpatialData"), "KxSpatialData");
    EXPECT_EQ(ok("create KxData notes"), "notes2");
    EXPECT_EQ(ok("all"), "notes KxSpatialData notes2");
    EXPECT_EQ(ok("all KxSpatialData"), "KxSpatialData");
    EXPECT_EQ(ok("all KxData"), "notes KxSpatialData notes2");
    ok("remove notes notes2");
    EXPECT_EQ(ok("all"), "KxSpatialData");
    ok("remove -all");
    EXPECT_EQ(pool_.size(), 0);

    KxMessageCapture capture;
    EXPECT_EQ(error("remove ghost"), "Error: No object \"ghost\".");
    EXPECT_EQ(error("create KxNothing"), "Error: Unknown class \"KxNothing\".");
    EXPECT_EQ(capture.lines(), (std::vector<std::string>{"Error: No object \"ghost\".",
                                                         "Error: Unknown class \"KxNothing\"."}));
    EXPECT_EQ(error("create"), "USAGE: create CLASS ?LABEL?");
}

TEST_F(KxTclInterpreterTest, ParametersAndChangeNotificationFromTheConsole) {
    ok("create KxData d");
    KxData* d = pool_.findData("d");
    unsigned int fired = 0;
    d->addListener([&](KxData&, unsigned int mask) { fired |= mask; });
    ok("d setParameters {\"Id\" int 7 \"Sub\" { \"name\" string \"x\" }}");
    EXPECT_EQ(fired, static_cast<unsigned int>(KxData::NEW_PARAMETERS));
    int id = 0;
    EXPECT_TRUE(d->parameters().findInt("Id", id));
    EXPECT_EQ(id, 7);
    EXPECT_EQ(ok("d isModified"), "1");
    EXPECT_EQ(ok("d parameters"), "\"Id\" int 7\n\"Sub\" {\n  \"name\" string \"x\"\n}\n");
    EXPECT_EQ(error("d setParameters {\"Id\" int x}"),
              "Error: Bad parameters (line 1: bad int value 'x' for \"Id\").");
    EXPECT_TRUE(d->parameters().findInt("Id", id)) << "a failed set leaves the parameters alone";
}

TEST_F(KxTclInterpreterTest, LoadOfUnknownFilesFailsWithTheErrorLine) {
    KxMessageCapture capture;
    EXPECT_EQ(error("load /no/such/file.swc"),
              "Error: Cannot read file /no/such/file.swc: No such file or directory.");
    EXPECT_EQ(capture.lines(), std::vector<std::string>{
                                   "Error: Cannot read file /no/such/file.swc: No such file or directory."});
    EXPECT_EQ(ok("catch {load} msg; set msg"), "USAGE: load FILE ?FILE ...?");
    // Shared libraries and Tcl's own argument forms go to Tcl's load.
    const char* tclCalls[] = {"load /no/such/libx.so", "load /no/such/libx.so.1 X",
                              "load -global /no/libx.so", "load {} NoSuchStaticPackage"};
    for (const char* script : tclCalls) {
        SCOPED_TRACE(script);
        std::string message = error(script);
        EXPECT_EQ(message.find("Error: "), std::string::npos) << message;
        EXPECT_NE(message.find("load"), std::string::npos) << message;
    }
    EXPECT_EQ(error("save Nothing x y"), "Error: Unknown file format \"Nothing\".");
}

TEST_F(KxTclInterpreterTest, ExceptionsBecomeErrorLinesAndTclErrors) {
    pool_.add(new EchoData, "e");
    struct Case {
        const char* script;
        const char* line;
    };
    const Case cases[] = {
        {"e throw bad_alloc", "Error: out of memory"},
        {"e throw length_error", "Error: out of memory (a size beyond what can be allocated)"},
        {"e throw runtime_error", "Error: internal failure: boom"},
        {"e throw int", "Error: internal failure"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.script);
        KxMessageCapture capture;
        EXPECT_EQ(error(c.script), c.line);
        EXPECT_EQ(capture.lines(), std::vector<std::string>{c.line});
    }
}
