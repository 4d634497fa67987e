// Console commands of KxSpatialGraph: `{graph} command args`. Besides merge
// and applyTransform the graph answers a few small building commands, so that
// scripts can make graphs (docs/spatialgraph-commands.md). Every command
// checks its arguments: the editing primitives behind them do not.

#include "kxspatialgraph/model/KxSpatialGraph.h"

#include <cstring>
#include <string>
#include <vector>

#include <tcl.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxParamBundle.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "kxspatialgraph/analysis/SpatialGraphAnalysisCommands.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraphEditCommands.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

// A console command of the graph; args are the words after the command word,
// text is the usage line ("merge otherDataSet").
using Command = int (*)(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text);

int usage(Tcl_Interp* interp, const char* text) {
    theMsg->printf("USAGE: %s\n", text);
    Tcl_SetObjResult(interp, Tcl_ObjPrintf("USAGE: %s", text));
    return TCL_ERROR;
}

int fail(Tcl_Interp* interp, const String& message) {
    theMsg->printf("%s", message.getString());
    Tcl_SetObjResult(interp, Tcl_NewStringObj(message.getString(), -1));
    return TCL_ERROR;
}

// A number that Tcl could not read leaves Tcl's message in the result; it
// goes to the console as well.
int badNumber(Tcl_Interp* interp) {
    return fail(interp, String::format("Error: %s", Tcl_GetStringResult(interp)));
}

int changed(KxSpatialGraph& graph, Tcl_Interp* interp, int result) {
    graph.touch(KxData::NEW_DATA);
    graph.fire();
    Tcl_SetObjResult(interp, Tcl_NewIntObj(result));
    return TCL_OK;
}

bool parseLocation(const char* word, KxSpatialGraph::Location& loc) {
    static const char* const names[] = {"VERTEX", "EDGE", "POINT"};
    for (int i = 0; i < 3; ++i) {
        if (std::strcmp(word, names[i]) == 0) {
            loc = static_cast<KxSpatialGraph::Location>(i);
            return true;
        }
    }
    return false;
}

bool parseFloats(Tcl_Interp* interp, int n, char** words, float* values) {
    for (int i = 0; i < n; ++i) {
        double v = 0.0;
        if (Tcl_GetDouble(interp, words[i], &v) != TCL_OK) {
            return false;
        }
        values[i] = static_cast<float>(v);
    }
    return true;
}

bool parseIndex(Tcl_Interp* interp, const char* word, int count, const char* what, int& index) {
    if (Tcl_GetInt(interp, word, &index) != TCL_OK) {
        badNumber(interp);
        return false;
    }
    if (index < 0 || index >= count) {
        fail(interp, String::format("Error: %s %d out of range (%d).", what, index, count));
        return false;
    }
    return true;
}

int mergeCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    if (nargs != 1) {
        return usage(interp, text);
    }
    KxData* data = theObjectPool->findData(args[0]);
    if (!data || !data->isOfType("KxSpatialGraph")) {
        theMsg->printf("Data sets must be of same type");
        Tcl_SetObjResult(interp, Tcl_NewStringObj("Data sets must be of same type", -1));
        return TCL_ERROR;
    }
    if (!graph.merge(static_cast<KxSpatialGraph*>(data))) {
        Tcl_SetObjResult(interp, Tcl_ObjPrintf("Error: cannot merge %s into %s", args[0], graph.getLabel()));
        return TCL_ERROR;
    }
    graph.touch(KxData::ALL_PARTS);
    graph.fire();
    return TCL_OK;
}

int applyTransformCommand(KxSpatialGraph& graph, Tcl_Interp*, int nargs, char**, const char*) {
    if (nargs > 0) {
        theMsg->printf("Warning: additional arguments ignored");
    }
    graph.applyTransform();
    graph.touch(KxData::ALL_PARTS);
    graph.fire();
    return TCL_OK;
}

// addVertex x y z -> index
int addVertexCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    Vec3f c;
    if (nargs != 3) {
        return usage(interp, text);
    }
    if (!parseFloats(interp, 3, args, c.data())) {
        return badNumber(interp);
    }
    return changed(graph, interp, graph.addVertex(c));
}

// addEdge source target ?x y z ...? -> index; the optional points lie between
// the two end vertices.
int addEdgeCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    if (nargs < 2 || (nargs - 2) % 3 != 0) {
        return usage(interp, text);
    }
    int s = 0, t = 0;
    if (!parseIndex(interp, args[0], graph.getNumVertices(), "Vertex", s) ||
        !parseIndex(interp, args[1], graph.getNumVertices(), "Vertex", t)) {
        return TCL_ERROR;
    }
    int numInner = (nargs - 2) / 3;
    std::vector<Vec3f> points(static_cast<size_t>(numInner) + 2);
    points.front() = graph.getVertexCoords(s);
    points.back() = graph.getVertexCoords(t);
    for (int i = 0; i < numInner; ++i) {
        if (!parseFloats(interp, 3, args + 2 + 3 * i, points[static_cast<size_t>(i) + 1].data())) {
            return badNumber(interp);
        }
    }
    return changed(graph, interp, graph.addEdge(s, t, points.data(), static_cast<int>(points.size())));
}

// addAttribute name VERTEX|EDGE|POINT int|float ?nDataVar?
int addAttributeCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    KxSpatialGraph::Location loc;
    int nDataVar = 1;
    if (nargs < 3 || nargs > 4 || !parseLocation(args[1], loc)) {
        return usage(interp, text);
    }
    bool isInt = std::strcmp(args[2], "int") == 0;
    if (!isInt && std::strcmp(args[2], "float") != 0) {
        return usage(interp, text);
    }
    // The same bound as attributes read from files.
    if (nargs == 4 && (Tcl_GetInt(interp, args[3], &nDataVar) != TCL_OK || nDataVar < 1 ||
                       nDataVar > KorvaMesh::kMaxComponents)) {
        return fail(interp, String::format("Error: nDataVar must be a number from 1 to %d, not \"%s\".",
                                           KorvaMesh::kMaxComponents, args[3]));
    }
    graph.addAttribute(args[0], loc, isInt ? PrimType::INT32 : PrimType::FLOAT32, nDataVar);
    graph.touch(KxData::NEW_DATA);
    graph.fire();
    return TCL_OK;
}

// setValue VERTEX|EDGE name index value...  or  setValue POINT name edge point value...
int setValueCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    KxSpatialGraph::Location loc;
    if (nargs < 4 || !parseLocation(args[0], loc)) {
        return usage(interp, text);
    }
    GraphAttribute* a = graph.findAttribute(loc, args[1]);
    if (!a) {
        return fail(interp, String::format("Error: %s attribute %s not found.", args[0], args[1]));
    }
    int e = 0, p = 0;
    int count = loc == KxSpatialGraph::VERTEX ? graph.getNumVertices() : graph.getNumEdges();
    if (!parseIndex(interp, args[2], count, loc == KxSpatialGraph::VERTEX ? "Vertex" : "Edge", e)) {
        return TCL_ERROR;
    }
    int firstValue = 3;
    if (loc == KxSpatialGraph::POINT) {
        if (!parseIndex(interp, args[3], graph.getNumEdgePoints(e), "Point", p)) {
            return TCL_ERROR;
        }
        firstValue = 4;
    }
    if (nargs - firstValue != a->getNumDataVar()) {
        return fail(interp, String::format("Error: attribute %s takes %d values per element.", a->getName(),
                                           a->getNumDataVar()));
    }
    // All components are read before the value is touched.
    std::vector<unsigned char> value(a->getElementSize());
    for (int i = 0; i < a->getNumDataVar(); ++i) {
        char* word = args[firstValue + i];
        bool ok = false;
        if (a->getPrimType() == PrimType::INT32) {
            ok = Tcl_GetInt(interp, word, reinterpret_cast<int*>(value.data()) + i) == TCL_OK;
        } else if (a->getPrimType() == PrimType::FLOAT32) {
            ok = parseFloats(interp, 1, &word, reinterpret_cast<float*>(value.data()) + i);
        } else {
            return fail(interp,
                        String::format("Error: attribute %s is neither int nor float.", a->getName()));
        }
        if (!ok) {
            return badNumber(interp);
        }
    }
    unsigned char* bytes = loc == KxSpatialGraph::POINT
                               ? static_cast<PointAttribute*>(a)->genericDataAtPoint(e, p)
                               : static_cast<EdgeVertexAttribute*>(a)->genericDataAtIdx(e);
    std::memcpy(bytes, value.data(), value.size());
    return changed(graph, interp, e);
}

// addLabelGroup name VERTEX|EDGE|POINT...
int addLabelGroupCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args,
                         const char* text) {
    bool at[3] = {false, false, false};
    if (nargs < 2) {
        return usage(interp, text);
    }
    for (int i = 1; i < nargs; ++i) {
        KxSpatialGraph::Location loc;
        if (!parseLocation(args[i], loc)) {
            return usage(interp, text);
        }
        at[loc] = true;
    }
    graph.addNewLabelGroup(args[0], at[KxSpatialGraph::EDGE], at[KxSpatialGraph::VERTEX],
                           at[KxSpatialGraph::POINT]);
    graph.touch(KxData::NEW_DATA | KxData::NEW_PARAMETERS);
    graph.fire();
    return TCL_OK;
}

// addLabel group parentId name r g b -> id
int addLabelCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    int parentId = 0;
    float rgb[3];
    if (nargs != 6) {
        return usage(interp, text);
    }
    HierarchicalLabels* labels = graph.getLabelGroup(args[0]);
    if (!labels) {
        return fail(interp, String::format("Error: label group %s not found.", args[0]));
    }
    if (Tcl_GetInt(interp, args[1], &parentId) != TCL_OK || !parseFloats(interp, 3, args + 3, rgb)) {
        return badNumber(interp);
    }
    int id = labels->addLabel(parentId, args[2], SbColor(rgb));
    if (id < 0 && labels->getLabelBundle(parentId)) {
        return fail(interp,
                    String::format("Error: labels nest at most %d levels deep.", KxParamBundle::kMaxDepth));
    }
    if (id < 0) {
        return fail(interp,
                    String::format("Error: label group %s has no label with id %d.", args[0], parentId));
    }
    graph.touch(KxData::NEW_PARAMETERS);
    graph.fire();
    Tcl_SetObjResult(interp, Tcl_NewIntObj(id));
    return TCL_OK;
}

// getBoundingBox ?transformed? -> xmin xmax ymin ymax zmin zmax
int getBoundingBoxCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args,
                          const char* text) {
    bool transformed = nargs == 1 && std::strcmp(args[0], "transformed") == 0;
    if (nargs > 1 || (nargs == 1 && !transformed)) {
        return usage(interp, text);
    }
    float box[6];
    graph.computeBoundingBox(box, transformed);
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    for (float v : box) {
        Tcl_ListObjAppendElement(interp, list, Tcl_NewDoubleObj(v));
    }
    Tcl_SetObjResult(interp, list);
    return TCL_OK;
}

// isConsistent -> 1 or 0; the faults go to the console.
int isConsistentCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int, char**, const char*) {
    Tcl_SetObjResult(interp, Tcl_NewBooleanObj(graph.isConsistent()));
    return TCL_OK;
}

struct NamedCommand {
    const char* name;
    const char* usage;
    Command run;
};

const NamedCommand kCommands[] = {
    {"merge", "merge otherDataSet", mergeCommand},
    {"applyTransform", "applyTransform", applyTransformCommand},
    {"addVertex", "addVertex x y z", addVertexCommand},
    {"addEdge", "addEdge source target ?x y z ...?", addEdgeCommand},
    {"addAttribute", "addAttribute name VERTEX|EDGE|POINT int|float ?nDataVar?", addAttributeCommand},
    {"setValue", "setValue VERTEX|EDGE name index value... | setValue POINT name edge point value...",
     setValueCommand},
    {"addLabelGroup", "addLabelGroup name VERTEX|EDGE|POINT...", addLabelGroupCommand},
    {"addLabel", "addLabel group parentId name r g b", addLabelCommand},
    {"getBoundingBox", "getBoundingBox ?transformed?", getBoundingBoxCommand},
    {"isConsistent", "isConsistent", isConsistentCommand},
};

// help: one usage line per command of the graph.
int helpCommand(Tcl_Interp* interp) {
    std::string text;
    for (const NamedCommand& c : kCommands) {
        text += c.usage;
        text += '\n';
    }
    text += SpatialGraphAnalysisCommands::usageLines();
    Tcl_SetObjResult(interp, Tcl_NewStringObj(text.c_str(), -1));
    return TCL_OK;
}

}  // namespace

void KxSpatialGraph::registerConsoleCommands() {
    for (const NamedCommand& c : kCommands) {
        theClassRegistry->registerCommand("KxSpatialGraph", c.name, c.usage);
    }
    SpatialGraphAnalysisCommands::registerCommands();
}

int KxSpatialGraph::parse(Tcl_Interp* interp, int argc, char** argv) {
    int result = TCL_OK;
    if (SpatialGraphAnalysisCommands::parse(*this, interp, argc, argv, result)) {
        return result;
    }
    if (argc >= 2) {
        for (const NamedCommand& c : kCommands) {
            if (std::strcmp(argv[1], c.name) == 0) {
                return c.run(*this, interp, argc - 2, argv + 2, c.usage);
            }
        }
        if (std::strcmp(argv[1], "help") == 0) {
            return helpCommand(interp);
        }
        if (std::strcmp(argv[1], "edit") == 0) {
            return parseEditCommand(*this, interp, argc, argv);
        }
    }
    return KxSpatialData::parse(interp, argc, argv);
}
