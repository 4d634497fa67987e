// Console commands that read a graph back: counts, coordinates, attribute
// values and label groups, so that a script can check what it built. They
// mirror the building commands (getValue answers what setValue sets).

#include <charconv>
#include <string>

#include <tcl.h>

#include "korva/core/KxCommandReply.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/GraphAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/model/SpatialGraphCommand.h"

namespace {

using namespace SpatialGraphCommandArgs;

// Floats in their shortest exact text ("0.1", not 0.10000000149...), whatever the locale.
Tcl_Obj* floatObj(float value) {
    char text[32];
    auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return Tcl_NewStringObj(text, static_cast<int>(end - text));
}

void appendCoords(Tcl_Obj* list, const Vec3f& c) {
    for (int k = 0; k < 3; ++k) {
        Tcl_ListObjAppendElement(nullptr, list, floatObj(c[k]));
    }
}

int reply(Tcl_Interp* interp, Tcl_Obj* result) {
    Tcl_SetObjResult(interp, result);
    return TCL_OK;
}

// The one index a command takes; false after its usage or error line.
bool indexArgument(Tcl_Interp* interp, int nargs, char** args, const char* text, int count, const char* what,
                   int& index) {
    if (nargs != 1) {
        KxCommandReply::usage(interp, text);
        return false;
    }
    return parseIndex(interp, args[0], count, what, index);
}

// getNumVertices, getNumEdges
int getNumVerticesCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char**, const char* text) {
    return nargs ? KxCommandReply::usage(interp, text) : reply(interp, Tcl_NewIntObj(graph.getNumVertices()));
}

int getNumEdgesCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char**, const char* text) {
    return nargs ? KxCommandReply::usage(interp, text) : reply(interp, Tcl_NewIntObj(graph.getNumEdges()));
}

// getNumEdgePoints ?edge? -> points of the edge, or of all edges
int getNumEdgePointsCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args,
                            const char* text) {
    if (nargs > 1) {
        return KxCommandReply::usage(interp, text);
    }
    int e = 0;
    if (nargs == 0) {
        return reply(interp, Tcl_NewIntObj(graph.getTotalNumEdgePoints()));
    }
    if (!parseIndex(interp, args[0], graph.getNumEdges(), "Edge", e)) {
        return TCL_ERROR;
    }
    return reply(interp, Tcl_NewIntObj(graph.getNumEdgePoints(e)));
}

// getVertex v -> x y z
int getVertexCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    int v = 0;
    if (!indexArgument(interp, nargs, args, text, graph.getNumVertices(), "Vertex", v)) {
        return TCL_ERROR;
    }
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    appendCoords(list, graph.getVertexCoords(v));
    return reply(interp, list);
}

// getEdge e -> source target
int getEdgeCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    int e = 0;
    if (!indexArgument(interp, nargs, args, text, graph.getNumEdges(), "Edge", e)) {
        return TCL_ERROR;
    }
    Tcl_Obj* ends[2] = {Tcl_NewIntObj(graph.getEdgeSource(e)), Tcl_NewIntObj(graph.getEdgeTarget(e))};
    return reply(interp, Tcl_NewListObj(2, ends));
}

// getEdgePoints e -> x y z x y z ... from the source to the target
int getEdgePointsCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args,
                         const char* text) {
    int e = 0;
    if (!indexArgument(interp, nargs, args, text, graph.getNumEdges(), "Edge", e)) {
        return TCL_ERROR;
    }
    int n = 0;
    const Vec3f* points = graph.getEdgePoints(e, n);
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    for (int p = 0; p < n; ++p) {
        appendCoords(list, points[p]);
    }
    return reply(interp, list);
}

// getAttributes VERTEX|EDGE|POINT -> {name type nDataVar} ...
int getAttributesCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args,
                         const char* text) {
    KxSpatialGraph::Location loc;
    if (nargs != 1 || !parseLocation(args[0], loc)) {
        return KxCommandReply::usage(interp, text);
    }
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    for (int i = 0; i < graph.numAttributes(loc); ++i) {
        const GraphAttribute* a = graph.attribute(loc, i);
        Tcl_Obj* fields[3] = {Tcl_NewStringObj(a->getName(), -1),
                              Tcl_NewStringObj(a->getPrimType() == PrimType::INT32 ? "int" : "float", -1),
                              Tcl_NewIntObj(a->getNumDataVar())};
        Tcl_ListObjAppendElement(nullptr, list, Tcl_NewListObj(3, fields));
    }
    return reply(interp, list);
}

// getValue VERTEX|EDGE name index  or  getValue POINT name edge point -> value...
int getValueCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    KxSpatialGraph::Location loc;
    if (nargs < 2 || !parseLocation(args[0], loc) || nargs != 2 + elementWords(loc)) {
        return KxCommandReply::usage(interp, text);
    }
    const GraphAttribute* a = graph.findAttribute(loc, args[1]);
    if (!a) {
        return KxCommandReply::failf(interp, "Error: %s attribute %s not found.", args[0], args[1]);
    }
    int e = 0, p = 0;
    if (!parseElement(graph, interp, loc, args + 2, e, p)) {
        return TCL_ERROR;
    }
    const unsigned char* bytes = loc == KxSpatialGraph::POINT
                                     ? static_cast<const PointAttribute*>(a)->genericDataAtPoint(e, p)
                                     : static_cast<const EdgeVertexAttribute*>(a)->genericDataAtIdx(e);
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    for (int i = 0; i < a->getNumDataVar(); ++i) {
        Tcl_ListObjAppendElement(nullptr, list,
                                 a->getPrimType() == PrimType::INT32
                                     ? Tcl_NewIntObj(reinterpret_cast<const int*>(bytes)[i])
                                     : floatObj(reinterpret_cast<const float*>(bytes)[i]));
    }
    return reply(interp, list);
}

// getLabelGroups -> names
int getLabelGroupsCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char**, const char* text) {
    if (nargs) {
        return KxCommandReply::usage(interp, text);
    }
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    graph.getLabelGroups().forEach([list](const char* name, HierarchicalLabels*) {
        Tcl_ListObjAppendElement(nullptr, list, Tcl_NewStringObj(name, -1));
    });
    return reply(interp, list);
}

// The label group named by args[0] and, when withId, the label id args[1]
// (else 0, the root), for a command of wanted arguments; null after its
// usage or error line.
const HierarchicalLabels* findLabel(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args,
                                    const char* text, int wanted, bool withId, int& id) {
    if (nargs != wanted) {
        KxCommandReply::usage(interp, text);
        return nullptr;
    }
    const HierarchicalLabels* group = graph.getLabelGroup(args[0]);
    id = 0;
    if (!group) {
        KxCommandReply::failf(interp, "Error: Label group %s not found.", args[0]);
        return nullptr;
    }
    if (withId && !parseInt(interp, args[1], id)) {
        return nullptr;
    }
    if (!group->getLabelBundle(id)) {
        KxCommandReply::failf(interp, "Error: Label group %s has no label with id %d.", args[0], id);
        return nullptr;
    }
    return group;
}

// getLabelChildren group ?id? -> ids of the label's children (the root's without id)
int getLabelChildrenCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args,
                            const char* text) {
    int id = 0;
    const HierarchicalLabels* group =
        findLabel(graph, interp, nargs, args, text, nargs == 2 ? 2 : 1, nargs == 2, id);
    if (!group) {
        return TCL_ERROR;
    }
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    for (int child : group->getChildIds(id)) {
        Tcl_ListObjAppendElement(nullptr, list, Tcl_NewIntObj(child));
    }
    return reply(interp, list);
}

// getLabelName group id -> name
int getLabelNameCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    int id = 0;
    const HierarchicalLabels* group = findLabel(graph, interp, nargs, args, text, 2, true, id);
    String name;
    if (!group || !group->getLabelName(id, name)) {
        return TCL_ERROR;
    }
    return reply(interp, Tcl_NewStringObj(name.getString(), -1));
}

// getLabelColor group id -> r g b
int getLabelColorCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args,
                         const char* text) {
    int id = 0;
    const HierarchicalLabels* group = findLabel(graph, interp, nargs, args, text, 2, true, id);
    if (!group) {
        return TCL_ERROR;
    }
    SbColor color;
    if (!group->getLabelColor(id, color)) {
        return KxCommandReply::failf(interp, "Error: Label %d of group %s has no colour.", id, args[0]);
    }
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    appendCoords(list, Vec3f(color[0], color[1], color[2]));
    return reply(interp, list);
}

// getLabelId group name -> id, -1 if the group has no label of that name
int getLabelIdCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    int id = 0;
    const HierarchicalLabels* group = findLabel(graph, interp, nargs, args, text, 2, false, id);
    if (!group) {
        return TCL_ERROR;
    }
    return reply(
        interp,
        Tcl_NewIntObj(group->hasLabel(String(args[1])) ? group->getLabelIdFromName(String(args[1])) : -1));
}

}  // namespace

const SpatialGraphCommandTable& spatialGraphQueryCommands() {
    static const SpatialGraphCommandTable table = {
        {"getNumVertices", "getNumVertices", getNumVerticesCommand},
        {"getNumEdges", "getNumEdges", getNumEdgesCommand},
        {"getNumEdgePoints", "getNumEdgePoints ?edge?", getNumEdgePointsCommand},
        {"getVertex", "getVertex index", getVertexCommand},
        {"getEdge", "getEdge index", getEdgeCommand},
        {"getEdgePoints", "getEdgePoints edge", getEdgePointsCommand},
        {"getAttributes", "getAttributes VERTEX|EDGE|POINT", getAttributesCommand},
        {"getValue", "getValue VERTEX|EDGE name index | getValue POINT name edge point", getValueCommand},
        {"getLabelGroups", "getLabelGroups", getLabelGroupsCommand},
        {"getLabelChildren", "getLabelChildren group ?id?", getLabelChildrenCommand},
        {"getLabelName", "getLabelName group id", getLabelNameCommand},
        {"getLabelColor", "getLabelColor group id", getLabelColorCommand},
        {"getLabelId", "getLabelId group name", getLabelIdCommand},
    };
    return table;
}
