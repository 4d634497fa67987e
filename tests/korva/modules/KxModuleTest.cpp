#include "korva/modules/KxModule.h"

#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxConsoleCommands.h"
#include "korva/core/KxData.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"
#include "korva/modules/KxCompModule.h"
#include "korva/modules/KxPortColorList.h"
#include "korva/modules/KxPortDoIt.h"
#include "korva/modules/KxPortFloatSlider.h"
#include "korva/modules/KxPortGeneric.h"
#include "korva/modules/KxPortInfo.h"
#include "korva/modules/KxPortMenu.h"
#include "korva/modules/KxPortSeparator.h"
#include "korva/modules/KxPortToggleList.h"
#include "korva/modules/KxSessionState.h"
#include "support/TclEval.h"
#include "support/TempDir.h"

namespace {

double valueOf(const KxData& data) {
    double v = 0.0;
    data.parameters().findDouble("value", v);
    return v;
}

// Multiplies the parameter "value" of its input by "factor" into a result,
// when "doIt" is pressed; counts its update and compute calls.
class ScaleModule : public KxCompModule {
public:
    ScaleModule() : KxCompModule({"KxData"}) {
        fields.addFloatField(1.5f, "%.1f", 8);
        fields.addButton("Apply");
        setCreateButton(&doIt);
    }
    const char* getTypeName() const override { return "ScaleModule"; }

    KxPortFloatSlider factor{this, "factor", "Factor", 0.0f, 10.0f};
    KxPortToggleList options{this, "options", "Options", 2};
    KxPortMenu mode{this, "mode", "Mode", 3};
    KxPortSeparator line{this, "line"};
    KxPortGeneric fields{this, "fields", "Fields"};
    KxPortColorList colors{this, "colors", "Colors", 2};
    KxPortInfo info{this, "info", "Info"};
    KxConnection extra{this, "extra", "Extra", {"KxData"}};
    KxPortDoIt doIt{this, "doIt"};
    int updates = 0;
    int computes = 0;
    bool sawFieldNew = false;

protected:
    void update() override {
        ++updates;
        info.setValue(portData.getSource() ? "connected" : "none");
    }
    void compute() override {
        ++computes;
        sawFieldNew = fields.isItemNew(0);
        auto* input = portData.getSource<KxData>();
        if (!doIt.wasHit() || !input) {
            return;
        }
        KxData* result = getReusableResult("KxData");
        if (!result) {
            result = new KxData;
            result->setLabel(makeResultLabel("scaled").c_str());
        }
        double scaled = valueOf(*input) * factor.getValue();
        result->parameters().setDoubles("value", &scaled, 1);
        setResult(result);
    }
};

// A number file: the text of one number; read into a data object with the
// parameter "value", labelled by the file's name.
int readNumber(const char* filename) {
    std::ifstream in(filename);
    double value = 0.0;
    if (!(in >> value)) {
        return 0;
    }
    auto* data = new KxData;
    data->parameters().setDoubles("value", &value, 1);
    std::string name = filename;
    theObjectPool->add(data, name.substr(name.rfind('/') + 1).c_str());
    return 1;
}

class KxModuleTest : public ::testing::Test {
protected:
    KxModuleTest() : tcl_(*theObjectPool) {
        installConsoleCommands(tcl_);
        KxSessionState::installCommands(tcl_);
        theClassRegistry->registerClass("ScaleModule", "test", []() -> KxObject* { return new ScaleModule; });
        KxFileFormat format;
        format.name = "Number";
        format.extensions = {"num"};
        format.read = readNumber;
        theFileFormats->addFormat(format);
    }
    ~KxModuleTest() override {
        theObjectPool->clear();
        theFileFormats->removeFormat("Number");
        theClassRegistry->unregisterClass("ScaleModule");
    }

    std::string writeNumber(const char* name, double value) {
        std::ofstream(dir_.path(name)) << value << "\n";
        return dir_.path(name);
    }
    ScaleModule* module(const char* label) { return dynamic_cast<ScaleModule*>(theObjectPool->find(label)); }

    TempDir dir_;
    KxTclInterpreter tcl_;
};

TEST_F(KxModuleTest, PortsAnswerTheValuesSetFromTheConsoleAndRefuseBadCalls) {
    evalOk(tcl_, "create ScaleModule M");
    struct Case {
        const char* set;
        const char* get;
        const char* expected;
    } cases[] = {
        {"M factor setValue 2.5", "M factor getValue", "2.5"},
        {"M factor setValue 99", "M factor getValue", "10"},  // clamped into the range
        {"M factor setMinMax 5 -5", "M factor getMinMax", "-5 5"},
        {"M options setValue 1 1", "M options getValue 1", "1"},
        {"M mode setValue 2", "M mode getValue", "2"},
        {"M fields setValue 0 0.25", "M fields getValue 0", "0.25"},
        {"M colors setValue 1 0 0.5 1", "M colors getValue 1", "0 0.5 1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.set);
        evalOk(tcl_, c.set);
        EXPECT_EQ(evalOk(tcl_, c.get), c.expected);
    }
    // Bad port calls fail with one line.
    const char* scripts[] = {"M options setValue 2 1",    "M mode setValue 3",  "M factor setValue abc",
                             "M colors setValue 0 2 0 0", "M info setValue x",  "M line getValue",
                             "M data connect nothing",    "M fields setValue 0"};
    for (const char* script : scripts) {
        SCOPED_TRACE(script);
        KxMessageCapture capture;
        std::string reply = evalError(tcl_, script);
        EXPECT_EQ(capture.lines().size(), 1u) << capture.text();
        EXPECT_TRUE(reply.rfind("Error: ", 0) == 0 || reply.rfind("USAGE: ", 0) == 0) << reply;
    }
}

TEST_F(KxModuleTest, ChangesFireUpdateThenComputeAndButtonsAreMomentary) {
    evalOk(tcl_, ("load " + writeNumber("a.num", 4.0)).c_str());
    evalOk(tcl_, "create ScaleModule M");
    ScaleModule* m = module("M");
    evalOk(tcl_, "M data connect a.num");
    EXPECT_EQ(m->updates, 1);
    EXPECT_EQ(m->computes, 1);
    EXPECT_STREQ(m->info.getValue(), "connected");
    EXPECT_EQ(m->getResult(), nullptr);  // no press yet

    evalOk(tcl_, "M factor setValue 0.5");
    EXPECT_EQ(evalOk(tcl_, "M create"), "a.scaled");
    // A leading dot starts no extension; a suffix that is not a word comes without a dot.
    EXPECT_EQ(KxCompModule::composeLabel(".hidden", "_labeled"), ".hidden_labeled");
    EXPECT_EQ(KxCompModule::composeLabel("tree", "x"), "tree.x");
    KxData* first = m->getResult();
    ASSERT_NE(first, nullptr);
    EXPECT_DOUBLE_EQ(valueOf(*first), 2.0);
    EXPECT_FALSE(m->doIt.wasHit());

    // The input fires a change: recomputed, but without a press the result stays.
    double six = 6.0;
    theObjectPool->findData("a.num")->parameters().setDoubles("value", &six, 1);
    theObjectPool->findData("a.num")->touch();
    theObjectPool->findData("a.num")->fire();
    EXPECT_EQ(m->computes, 4);
    EXPECT_DOUBLE_EQ(valueOf(*first), 2.0);

    // A second press reuses the result; after its removal a new one is made.
    evalOk(tcl_, "M doIt setValue 1");
    EXPECT_EQ(m->getResult(), first);
    EXPECT_DOUBLE_EQ(valueOf(*first), 3.0);
    evalOk(tcl_, "remove a.scaled");
    EXPECT_EQ(m->getResult(), nullptr);
    EXPECT_EQ(evalOk(tcl_, "M create"), "a.scaled");

    evalOk(tcl_, "M fields setValue 0 7");
    EXPECT_TRUE(m->sawFieldNew);
    EXPECT_FALSE(m->fields.isItemNew(0));
    EXPECT_EQ(m->fields.formatField(0), "7.0");
}

TEST_F(KxModuleTest, ConnectionsAcceptTheirClassesAndForgetRemovedSources) {
    evalOk(tcl_, "create ScaleModule M");
    evalOk(tcl_, "create ScaleModule N");
    ScaleModule* m = module("M");
    {
        KxMessageCapture capture;
        evalError(tcl_, "M data connect N");
        EXPECT_TRUE(capture.contains("Error: Port data accepts KxData; N is a ScaleModule."))
            << capture.text();
    }
    evalOk(tcl_, ("load " + writeNumber("b.num", 1.0)).c_str());
    evalOk(tcl_, "M extra connect b.num");
    EXPECT_EQ(evalOk(tcl_, "M extra getValue"), "b.num");
    int computes = m->computes;
    evalOk(tcl_, "remove b.num");
    EXPECT_EQ(m->extra.getSource(), nullptr);
    EXPECT_EQ(m->computes, computes + 1);
}

TEST_F(KxModuleTest, SavedStateRestoresPortsConnectionsAndResults) {
    evalOk(tcl_, ("load " + writeNumber("a.num", 4.0) + " " + writeNumber("b.num", 1.0)).c_str());
    evalOk(tcl_, "create ScaleModule M; M data connect a.num; M extra connect b.num");
    evalOk(tcl_, "M factor setMinMax 0 100; M factor setValue 25; M options setValue 1 1; M mode setValue 2");
    evalOk(tcl_, "M fields setValue 0 0.125; M colors setValue 1 0.25 0.5 0.75; M create");
    // A second module computes from the first one's result.
    evalOk(tcl_, "create ScaleModule N; N data connect a.scaled; N factor setValue 2; N create");
    std::string ports = KxSessionState::write(*theObjectPool);
    std::string state = dir_.path("session.tcl");
    evalOk(tcl_, ("saveState " + state).c_str());

    theObjectPool->clear();
    evalOk(tcl_, ("source " + state).c_str());
    EXPECT_EQ(KxSessionState::write(*theObjectPool), ports);
    ASSERT_NE(theObjectPool->findData("a.scaled"), nullptr);
    EXPECT_DOUBLE_EQ(valueOf(*theObjectPool->findData("a.scaled")), 100.0);
    KxData* second = module("N")->getResult();
    ASSERT_NE(second, nullptr);
    EXPECT_DOUBLE_EQ(valueOf(*second), 200.0);
}

}  // namespace
