#pragma once

struct Tcl_Interp;
class KxSpatialGraph;

// `{graph} edit OPERATION ?args? ?selection?`: runs one editing operation on
// the graph through the session's undo stack, so that the console's `undo`
// takes it back (docs/spatialgraph-commands.md). argv[1] is "edit". Indices
// are checked before anything changes; the answer is the selection that the
// operation highlights afterwards.
int parseEditCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int argc, char** argv);

// Makes `edit` known to the console's help.
void registerEditCommands();
