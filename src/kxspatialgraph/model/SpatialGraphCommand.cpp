#include "kxspatialgraph/model/SpatialGraphCommand.h"

#include <cstring>

#include <tcl.h>

#include "korva/core/KxCommandReply.h"

namespace SpatialGraphCommandArgs {

bool parseLocation(const char* word, KxSpatialGraph::Location& loc) {
    for (KxSpatialGraph::Location candidate :
         {KxSpatialGraph::VERTEX, KxSpatialGraph::EDGE, KxSpatialGraph::POINT}) {
        if (std::strcmp(word, KxSpatialGraph::locationName(candidate)) == 0) {
            loc = candidate;
            return true;
        }
    }
    return false;
}

bool parseInt(Tcl_Interp* interp, const char* word, int& value) {
    if (Tcl_GetInt(interp, word, &value) != TCL_OK) {
        KxCommandReply::failWithTclMessage(interp);
        return false;
    }
    return true;
}

bool parseFloats(Tcl_Interp* interp, int n, char** words, float* values) {
    for (int i = 0; i < n; ++i) {
        double v = 0.0;
        if (Tcl_GetDouble(interp, words[i], &v) != TCL_OK) {
            KxCommandReply::failWithTclMessage(interp);
            return false;
        }
        values[i] = static_cast<float>(v);
    }
    return true;
}

bool parseIndex(Tcl_Interp* interp, const char* word, int count, const char* what, int& index) {
    if (!parseInt(interp, word, index)) {
        return false;
    }
    if (index < 0 || index >= count) {
        KxCommandReply::failf(interp, "Error: %s %d out of range (%d).", what, index, count);
        return false;
    }
    return true;
}

int parseElement(const KxSpatialGraph& graph, Tcl_Interp* interp, KxSpatialGraph::Location loc, char** words,
                 int& index, int& point) {
    point = 0;
    if (loc == KxSpatialGraph::VERTEX) {
        return parseIndex(interp, words[0], graph.getNumVertices(), "Vertex", index) ? 1 : 0;
    }
    if (!parseIndex(interp, words[0], graph.getNumEdges(), "Edge", index)) {
        return 0;
    }
    if (loc == KxSpatialGraph::EDGE) {
        return 1;
    }
    return parseIndex(interp, words[1], graph.getNumEdgePoints(index), "Point", point) ? 2 : 0;
}

int changed(KxSpatialGraph& graph, Tcl_Interp* interp, int result) {
    graph.touch(KxData::NEW_DATA);
    graph.fire();
    Tcl_SetObjResult(interp, Tcl_NewIntObj(result));
    return TCL_OK;
}

}  // namespace SpatialGraphCommandArgs
