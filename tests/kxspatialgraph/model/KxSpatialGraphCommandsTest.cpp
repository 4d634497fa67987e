#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tcl.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"
#include "support/TclEval.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"

using namespace GraphFixtures;

namespace {

using Lines = std::vector<std::string>;

// Graphs live in the session's pool, where `merge` looks its argument up.
class KxSpatialGraphCommandsTest : public ::testing::Test {
protected:
    KxSpatialGraphCommandsTest() : tcl_(*theObjectPool) {}
    ~KxSpatialGraphCommandsTest() override { theObjectPool->clear(); }

    KxSpatialGraph* add(std::unique_ptr<KxSpatialGraph> graph, const char* label) {
        KxSpatialGraph* g = graph.release();
        theObjectPool->add(g, label);
        g->addListener([this](KxData&, unsigned int mask) { fired_.push_back(mask); });
        return g;
    }
    std::string ok(const char* script) { return evalOk(tcl_, script); }
    std::string error(const char* script) { return evalError(tcl_, script); }

    KxTclInterpreter tcl_;
    std::vector<unsigned int> fired_;
};

}  // namespace

TEST_F(KxSpatialGraphCommandsTest, MergeAndApplyTransformChangeTheGraphAndFireOnce) {
    KxSpatialGraph* g = add(makeChain(2), "chain");
    add(makeY(), "y");
    ok("chain merge y");  // what a merge makes is checked below the console
    EXPECT_EQ(g->getNumVertices(), 6);
    EXPECT_EQ(fired_, (std::vector<unsigned int>{KxData::ALL_PARTS}));
    EXPECT_TRUE(g->isModified());

    ok("chain setTransform 2 0 0 0  0 2 0 0  0 0 2 0  5 6 7 1");
    fired_.clear();
    KxMessageCapture capture;
    ok("chain applyTransform now please");
    EXPECT_EQ(capture.lines(), Lines{"Warning: additional arguments ignored"});
    EXPECT_EQ(g->getVertexCoords(1), Vec3f(7, 6, 7));
    EXPECT_EQ(fired_, (std::vector<unsigned int>{KxData::ALL_PARTS}));
}

TEST_F(KxSpatialGraphCommandsTest, CommandsRejectBadArgumentsWithoutChanges) {
    KxSpatialGraph* g = add(makeChain(2), "g");
    add(makeY(), "y");
    theObjectPool->add(new KxData, "plain");
    ok("g addAttribute Dir EDGE int 2");
    ok("g addLabelGroup Kind VERTEX");
    // Labels 1..98 each under the one before: the deepest a label may nest.
    ok("for {set i 0} {$i < 98} {incr i} {g addLabel Kind $i L$i 1 1 1}");
    GraphSnapshot before = takeSnapshot(*g);
    fired_.clear();

    struct Case {
        const char* script;
        const char* line;
    };
    const Case cases[] = {
        {"g addVertex 1 2", "USAGE: addVertex x y z"},
        {"g addVertex 1 2 zz", "Error: Expected floating-point number but got \"zz\"."},
        {"g addEdge 0 2", "Error: Vertex 2 out of range (2)."},
        {"g addEdge 0 1 5 5", "USAGE: addEdge source target ?x y z ...?"},
        {"g addAttribute A CORNER int", "USAGE: addAttribute name VERTEX|EDGE|POINT int|float ?nDataVar?"},
        {"g addAttribute A VERTEX double", "USAGE: addAttribute name VERTEX|EDGE|POINT int|float ?nDataVar?"},
        {"g addAttribute A VERTEX int 0", "Error: nDataVar must be a number from 1 to 65536, not \"0\"."},
        {"g addAttribute A VERTEX int 600000000",
         "Error: nDataVar must be a number from 1 to 65536, not \"600000000\"."},
        {"g addAttribute NumEdgePoints EDGE int",
         "Error: NumEdgePoints is the name of one of the graph's own arrays in files."},
        {"g addLabelGroup VertexCoordinates VERTEX",
         "Error: VertexCoordinates is the name of one of the graph's own arrays in files."},
        {"g setValue EDGE Missing 0 1", "Error: EDGE attribute Missing not found."},
        {"g setValue EDGE Dir 1 1 2", "Error: Edge 1 out of range (1)."},
        {"g setValue EDGE Dir 0 1", "Error: Attribute Dir takes 2 values per element."},
        {"g setValue EDGE Dir 0 1 x", "Error: Expected integer but got \"x\"."},
        {"g addLabelGroup Kind", "USAGE: addLabelGroup name VERTEX|EDGE|POINT..."},
        {"g addLabel Nope 0 A 1 1 1", "Error: Label group Nope not found."},
        {"g addLabel Kind 99 A 1 1 1", "Error: Label group Kind has no label with id 99."},
        {"g addLabel Kind 98 A 1 1 1", "Error: Labels nest at most 100 levels deep."},
        {"g getBoundingBox sideways", "USAGE: getBoundingBox ?transformed?"},
        {"g totalLength now", "USAGE: totalLength"},
        {"g merge", "USAGE: merge otherDataSet"},
        {"g merge y g", "USAGE: merge otherDataSet"},
        {"g merge nothing", "Data sets must be of same type"},
        {"g merge plain", "Data sets must be of same type"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.script);
        KxMessageCapture capture;
        error(c.script);
        EXPECT_EQ(capture.lines(), Lines{c.line});
        EXPECT_TRUE(sameGraph(before, *g));
    }
    EXPECT_TRUE(fired_.empty());
}

TEST_F(KxSpatialGraphCommandsTest, BuildingCommandsMakeAConsistentGraphThatQueriesReadBack) {
    KxSpatialGraph* g = add(std::make_unique<KxSpatialGraph>(), "g");
    EXPECT_EQ(ok("g addVertex 0 0 0"), "0");
    EXPECT_EQ(ok("g addVertex 10 0.1 0"), "1");
    EXPECT_EQ(ok("g addEdge 0 1 5 2 0"), "0");
    EXPECT_EQ(ok("g addEdge 1 1"), "1");
    ok("g addAttribute Dir EDGE int 2; g setValue EDGE Dir 0 -3 7");
    ok("g addAttribute thickness POINT float; g setValue POINT thickness 0 1 0.1");
    ok("g addAttribute mass VERTEX float; g setValue VERTEX mass 1 2.5");
    ok("g addLabelGroup Kind EDGE");
    EXPECT_EQ(ok("g addLabel Kind 0 Axon 1 0.5 0"), "1");
    EXPECT_EQ(ok("g addLabel Kind 1 Bouton 0 0 1"), "2");
    ok("g addLabel Kind 0 Dendrite 0 1 0");
    expectConsistent(*g);
    struct Case {
        const char* script;
        const char* result;
    };
    const Case cases[] = {
        {"g getNumVertices", "2"},
        {"g getNumEdges", "2"},
        {"g getNumEdgePoints", "5"},
        {"g getNumEdgePoints 0", "3"},
        {"g getVertex 1", "10 0.1 0"},
        {"g getEdge 0", "0 1"},
        {"g getEdge 1", "1 1"},
        {"g isConsistent", "1"},
        {"g getBoundingBox", "0.0 10.0 0.0 2.0 0.0 0.0"},
        {"g getEdgePoints 0", "0 0 0 5 2 0 10 0.1 0"},
        {"g getAttributes EDGE", "{Dir int 2} {Kind int 1}"},
        {"g getValue EDGE Dir 0", "-3 7"},
        {"g getValue POINT thickness 0 1", "0.1"},
        {"g getValue POINT thickness 0 2", "0"},
        {"g getValue VERTEX mass 1", "2.5"},
        {"g getLabelGroups", "Kind"},
        {"g getLabelChildren Kind", "1 3"},
        {"g getLabelChildren Kind 1", "2"},
        {"g getLabelName Kind 2", "Bouton"},
        {"g getLabelColor Kind 1", "1 0.5 0"},
        {"g getLabelId Kind Dendrite", "3"},
        {"g getLabelId Kind Soma", "-1"},
        {"g edgeLength 0", "10.733996391296387"},
        {"g edgeLength 1", "0.0"},
        {"g totalLength", "10.733996391296387"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.script);
        EXPECT_EQ(ok(c.script), c.result);
    }
    const Case errors[] = {
        {"g getValue POINT thickness 0",
         "USAGE: getValue VERTEX|EDGE name index | getValue POINT name edge point"},
        {"g getValue POINT thickness 0 3", "Error: Point 3 out of range (3)."},
        {"g getValue EDGE Nope 0", "Error: EDGE attribute Nope not found."},
        {"g getVertex 2", "Error: Vertex 2 out of range (2)."},
        {"g getLabelName Kind 9", "Error: Label group Kind has no label with id 9."},
        {"g getLabelColor Nope 1", "Error: Label group Nope not found."},
        {"g getNumEdges 1", "USAGE: getNumEdges"},
        {"g edgeLength 2", "Error: Edge 2 out of range (2)."},
        {"g edgeLength x", "Error: expected integer but got \"x\""},
        {"g edgeLength", "USAGE: edgeLength e"},
    };
    for (const Case& c : errors) {
        SCOPED_TRACE(c.script);
        KxMessageCapture capture;
        EXPECT_EQ(error(c.script), c.result);
        EXPECT_EQ(capture.lines(), Lines{c.result});
    }
    // The label groups live in the bundle that setParameters replaces.
    ok("g setParameters {\"Kind\" { \"Soma\" { \"Id\" int 4 } } \"mass\" { }}");
    EXPECT_EQ(ok("g getLabelName Kind 4"), "Soma");
    EXPECT_EQ(ok("lsort [g getLabelGroups]"), "Kind mass");
    ok("g setParameters {}");
    EXPECT_EQ(ok("g getLabelGroups"), "");
}
