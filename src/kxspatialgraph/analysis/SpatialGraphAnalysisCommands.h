#pragma once

#include <tcl.h>

class KxSpatialGraph;

// Console commands of a graph that the analysis answers: "totalLength" (the
// sum of all edge lengths) and "edgeLength e", both in the graph's own
// coordinates. KxSpatialGraph::parse offers every command here first.
namespace SpatialGraphAnalysisCommands {

// Runs argv[1] if it is one of these commands: true, with the Tcl status in result.
bool parse(KxSpatialGraph& graph, Tcl_Interp* interp, int argc, char** argv, int& result);
// Makes the command words known to the console's help.
void registerCommands();

}  // namespace SpatialGraphAnalysisCommands
