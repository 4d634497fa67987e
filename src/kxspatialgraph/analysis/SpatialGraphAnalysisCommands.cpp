#include "kxspatialgraph/analysis/SpatialGraphAnalysisCommands.h"

#include <cstring>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/analysis/SpatialGraphFunctions.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace {

int fail(Tcl_Interp* interp, const String& message) {
    theMsg->printf("%s", message.getString());
    Tcl_SetObjResult(interp, Tcl_NewStringObj(message.getString(), -1));
    return TCL_ERROR;
}

int totalLength(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char**, const char* usage) {
    if (nargs != 0) {
        return fail(interp, String::format("USAGE: %s", usage));
    }
    Tcl_SetObjResult(interp, Tcl_NewDoubleObj(SpatialGraphFunctions::getTotalEdgeLength(&graph)));
    return TCL_OK;
}

int edgeLength(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* usage) {
    int e = 0;
    if (nargs != 1) {
        return fail(interp, String::format("USAGE: %s", usage));
    }
    if (Tcl_GetInt(interp, args[0], &e) != TCL_OK) {
        return fail(interp, String::format("Error: %s", Tcl_GetStringResult(interp)));
    }
    if (e < 0 || e >= graph.getNumEdges()) {
        return fail(interp, String::format("Error: Edge %d out of range (%d).", e, graph.getNumEdges()));
    }
    Tcl_SetObjResult(interp, Tcl_NewDoubleObj(SpatialGraphFunctions::getEdgeLength(&graph, e)));
    return TCL_OK;
}

struct Command {
    const char* name;
    const char* usage;
    int (*run)(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* usage);
};

const Command kCommands[] = {
    {"totalLength", "totalLength", totalLength},
    {"edgeLength", "edgeLength e", edgeLength},
};

}  // namespace

namespace SpatialGraphAnalysisCommands {

bool parse(KxSpatialGraph& graph, Tcl_Interp* interp, int argc, char** argv, int& result) {
    for (const Command& c : kCommands) {
        if (argc >= 2 && std::strcmp(argv[1], c.name) == 0) {
            result = c.run(graph, interp, argc - 2, argv + 2, c.usage);
            return true;
        }
    }
    return false;
}

void registerCommands() {
    for (const Command& c : kCommands) {
        theClassRegistry->registerCommand("KxSpatialGraph", c.name, c.usage);
    }
}

}  // namespace SpatialGraphAnalysisCommands
