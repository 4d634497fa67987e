#include "kxspatialgraph/model/KxSpatialGraphEditCommands.h"

#include <gtest/gtest.h>

#include <string>

#include "korva/core/KxConsoleCommands.h"
#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"
#include "support/TclEval.h"

using namespace GraphFixtures;

namespace {

// A session with the console commands (undo, redo) and one marked chain "g":
//   0 --[2]-- 1 --[3]-- 2 --[4]-- 3 --[2]-- 4
class KxSpatialGraphEditCommandsTest : public ::testing::Test {
protected:
    KxSpatialGraphEditCommandsTest() : tcl_(pool_) {
        installConsoleCommands(tcl_);
        auto chain = makeChain(5);
        addIdentityMarkers(*chain);
        graph_ = chain.release();
        pool_.add(graph_, "g");
    }

    KxObjectPool pool_;
    KxTclInterpreter tcl_;
    KxSpatialGraph* graph_;
};

}  // namespace

TEST_F(KxSpatialGraphEditCommandsTest, DeleteUndoRedoFromTheConsole) {
    GraphSnapshot before = takeSnapshot(*graph_);
    SpatialGraphSelection subtree(graph_);
    subtree.selectVertex(3);
    subtree.selectVertex(4);
    subtree.selectEdge(3);
    String edges, vertices;
    subtree.serialize(edges, vertices);
    std::string script = "g edit delete -edges 2 -selection {" + std::string(edges.getString()) + " " +
                         vertices.getString() + "}";
    EXPECT_EQ(evalOk(tcl_, script.c_str()), "-vertices {} -edges {} -points {} -allPoints {}");
    EXPECT_EQ(graph_->getNumVertices(), 3);
    EXPECT_EQ(graph_->getNumEdges(), 2);
    GraphSnapshot deleted = takeSnapshot(*graph_);

    EXPECT_EQ(evalOk(tcl_, "undo"), "delete on g");
    EXPECT_TRUE(sameGraph(before, *graph_));
    EXPECT_EQ(evalOk(tcl_, "redo"), "delete on g");
    EXPECT_TRUE(sameGraph(deleted, *graph_));
    EXPECT_EQ(evalOk(tcl_, "g edit addVertex 7 0 0"), "-vertices 3 -edges {} -points {} -allPoints {}");
    evalOk(tcl_, "undo; undo");
    EXPECT_TRUE(sameGraph(before, *graph_));

    // An edit by another command makes the graph's edits impossible to undo exactly.
    evalOk(tcl_, "redo; g addVertex 0 0 0");
    KxMessageCapture capture;
    EXPECT_EQ(evalError(tcl_, "undo"), "Error: Nothing to undo.");
    EXPECT_EQ(evalError(tcl_, "redo"), "Error: Nothing to redo.");

    // A split connects to a selected vertex as well as to a selected point.
    const int numVertices = graph_->getNumVertices();
    evalOk(tcl_, "g edit splitEdgeAndConnect 1.5 0 0 1 1 -vertices 0");
    EXPECT_EQ(graph_->getNumVertices(), numVertices + 1);
}

TEST_F(KxSpatialGraphEditCommandsTest, WrongCallsFailAndChangeNothing) {
    const struct {
        const char* script;
        const char* result;
    } cases[] = {
        {"g edit",
         "USAGE: edit OPERATION ?args? ?-vertices LIST? ?-edges LIST? ?-points {{edge point} ...}? "
         "?-allPoints LIST? ?-selection {EDGES VERTICES}?"},
        {"g edit frobnicate", "Error: Unknown edit operation \"frobnicate\"; \"g edit help\" lists them."},
        {"g edit move 1 0 0", "USAGE: edit move vertex x y z"},
        {"g edit delete -vertices", "USAGE: edit delete SELECTION"},
        {"g edit delete -vertices {1 9}", "Error: Vertex 9 out of range (5)."},
        {"g edit delete -points {{0 2}}", "Error: Point 2 out of range (2)."},
        {"g edit addVertex 1 a 0", "Error: expected floating-point number but got \"a\""},
        {"g edit connect -vertices 0",
         "Error: This edit needs 2 selected vertices and 0 selected edge points, not 1 and 0."},
        {"g edit pointToVertex -points {{1 2}}",
         "Error: Point 2 of edge 1 is an end point; only inner points become vertices."},
        {"g edit vertexToPoint -vertices 0", "Error: Vertex 0 does not join two different edges."},
        {"g edit splitEdge 0 0 0 1 3", "Error: Edge 1 is split before point 1 to 2, not 3."},
        {"g edit insertPoints {5 5 5} -points {{1 0}}",
         "Error: Points go into edge 1 before point 1 to 2, not before 0."},
        {"g edit replace 0 {0 0 0 1 0}", "Error: \"0 0 0 1 0\" is not a list of x y z triples."},
        {"g edit connectPointToPoint -points {{2 1} {2 2}}",
         "Error: Point 2 of edge 2 is not an inner point once point 1 of edge 2 is a vertex."},
        {"g edit splitEdgeAndConnect 1 1 1 2 1 -points {{2 2}}",
         "Error: Point 2 of edge 2 is not an inner point once edge 2 is split before point 1."},
        {"g edit addTracedEdge {} -points {{2 1} {2 2}}",
         "Error: The two edge points of a traced edge must lie on different edges."},
    };
    GraphSnapshot before = takeSnapshot(*graph_);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script);
        KxMessageCapture capture;
        EXPECT_EQ(evalError(tcl_, c.script), c.result);
        EXPECT_EQ(capture.lines(), std::vector<std::string>{c.result});
        EXPECT_TRUE(sameGraph(before, *graph_));
    }
    KxMessageCapture capture;
    evalError(tcl_, "undo");
}
