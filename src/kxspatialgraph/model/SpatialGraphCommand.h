#pragma once

#include <vector>

#include "kxspatialgraph/model/KxSpatialGraph.h"

struct Tcl_Interp;

// One console command of a spatial graph: `{graph} name args`. run gets the
// words after the command's name and the command's usage line; it answers
// TCL_OK with its reply as the Tcl result, or fails through KxCommandReply.
struct SpatialGraphCommand {
    using Run = int (*)(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* usage);
    const char* name;
    const char* usage;
    Run run;
};

// The graph's commands come in tables, one per source file; parse and help
// see every table that spatialGraphCommandTables() (KxSpatialGraphCommands.cpp)
// lists, so a new group of commands is a new file with its table plus one
// line there.
using SpatialGraphCommandTable = std::vector<SpatialGraphCommand>;
const std::vector<const SpatialGraphCommandTable*>& spatialGraphCommandTables();
// Merging, transforming and building (KxSpatialGraphCommands.cpp).
const SpatialGraphCommandTable& spatialGraphBuildingCommands();
// Reading back counts, coordinates, values and labels (SpatialGraphQueryCommands.cpp).
const SpatialGraphCommandTable& spatialGraphQueryCommands();

// Argument parsing shared by the tables. Each answers false after printing
// its "Error: " line and making it the Tcl result, so a command just fails
// with TCL_ERROR.
namespace SpatialGraphCommandArgs {
// VERTEX, EDGE or POINT; prints nothing (a wrong word is a usage error).
bool parseLocation(const char* word, KxSpatialGraph::Location& loc);
bool parseInt(Tcl_Interp* interp, const char* word, int& value);
bool parseFloats(Tcl_Interp* interp, int n, char** words, float* values);
// An index in 0 .. count - 1; what names the element ("Vertex", "Edge", ...).
bool parseIndex(Tcl_Interp* interp, const char* word, int count, const char* what, int& index);
// Words that name one element at loc: 1 (vertex or edge index), 2 for POINT.
inline int elementWords(KxSpatialGraph::Location loc) {
    return loc == KxSpatialGraph::POINT ? 2 : 1;
}
// The element of an attribute at loc: one index (vertex or edge) or, for
// POINT, an edge and a point along it. Answers the number of words used
// (elementWords(loc)), or 0 after the error line. words must hold them.
int parseElement(const KxSpatialGraph& graph, Tcl_Interp* interp, KxSpatialGraph::Location loc, char** words,
                 int& index, int& point);
// Marks the graph changed, notifies once and answers result.
int changed(KxSpatialGraph& graph, Tcl_Interp* interp, int result);
}  // namespace SpatialGraphCommandArgs
