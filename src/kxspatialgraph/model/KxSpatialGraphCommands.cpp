// Console commands of KxSpatialGraph: `{graph} command args`. Besides merge
// and applyTransform the graph answers a few small building commands, so that
// scripts can make graphs, and the query commands of
// SpatialGraphQueryCommands.cpp (docs/spatialgraph-commands.md). Every command
// checks its arguments: the editing primitives behind them do not.

#include "kxspatialgraph/model/KxSpatialGraph.h"

#include <cstring>
#include <string>
#include <vector>

#include <tcl.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxCommandReply.h"
#include "korva/core/KxParamBundle.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "kxspatialgraph/analysis/SpatialGraphAnalysisCommands.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraphEditCommands.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/model/SpatialGraphCommand.h"

namespace {

using namespace SpatialGraphCommandArgs;

int mergeCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    if (nargs != 1) {
        return KxCommandReply::usage(interp, text);
    }
    KxData* data = theObjectPool->findData(args[0]);
    if (!data || !data->isOfType("KxSpatialGraph")) {
        return KxCommandReply::fail(interp, "Data sets must be of same type");
    }
    // merge() prints why it refuses.
    KxCommandReply::ErrorTap tap;
    if (!graph.merge(static_cast<KxSpatialGraph*>(data))) {
        return KxCommandReply::failWith(
            interp, tap, String::format("Error: Cannot merge %s into %s.", args[0], graph.getLabel()).std());
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
        return KxCommandReply::usage(interp, text);
    }
    if (!parseFloats(interp, 3, args, c.data())) {
        return TCL_ERROR;
    }
    return changed(graph, interp, graph.addVertex(c));
}

// addEdge source target ?x y z ...? -> index; the optional points lie between
// the two end vertices.
int addEdgeCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    if (nargs < 2 || (nargs - 2) % 3 != 0) {
        return KxCommandReply::usage(interp, text);
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
            return TCL_ERROR;
        }
    }
    return changed(graph, interp, graph.addEdge(s, t, points.data(), static_cast<int>(points.size())));
}

// An attribute of such a name could not be saved: the console has no way
// to rename or delete one made by mistake.
bool nameCanBeSaved(Tcl_Interp* interp, const char* name) {
    if (!KxSpatialGraph::isKorvaMeshArrayName(name)) {
        return true;
    }
    KxCommandReply::failf(interp, "Error: %s is the name of one of the graph's own arrays in files.", name);
    return false;
}

// addAttribute name VERTEX|EDGE|POINT int|float ?nDataVar?
int addAttributeCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    KxSpatialGraph::Location loc;
    int nDataVar = 1;
    if (nargs < 3 || nargs > 4 || !parseLocation(args[1], loc)) {
        return KxCommandReply::usage(interp, text);
    }
    bool isInt = std::strcmp(args[2], "int") == 0;
    if (!isInt && std::strcmp(args[2], "float") != 0) {
        return KxCommandReply::usage(interp, text);
    }
    // The same bound as attributes read from files.
    if (nargs == 4 && (Tcl_GetInt(interp, args[3], &nDataVar) != TCL_OK || nDataVar < 1 ||
                       nDataVar > KorvaMesh::kMaxComponents)) {
        return KxCommandReply::failf(interp, "Error: nDataVar must be a number from 1 to %d, not \"%s\".",
                                     KorvaMesh::kMaxComponents, args[3]);
    }
    if (!nameCanBeSaved(interp, args[0])) {
        return TCL_ERROR;
    }
    graph.addAttribute(args[0], loc, isInt ? PrimType::INT32 : PrimType::FLOAT32, nDataVar);
    graph.touch(KxData::NEW_DATA);
    graph.fire();
    return TCL_OK;
}

// setValue VERTEX|EDGE name index value...  or  setValue POINT name edge point value...
int setValueCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int nargs, char** args, const char* text) {
    KxSpatialGraph::Location loc;
    if (nargs < 2 || !parseLocation(args[0], loc) || nargs < 3 + elementWords(loc)) {
        return KxCommandReply::usage(interp, text);
    }
    GraphAttribute* a = graph.findAttribute(loc, args[1]);
    if (!a) {
        return KxCommandReply::failf(interp, "Error: %s attribute %s not found.", args[0], args[1]);
    }
    int e = 0, p = 0;
    int firstValue = 2 + parseElement(graph, interp, loc, args + 2, e, p);
    if (firstValue == 2) {
        return TCL_ERROR;
    }
    if (nargs - firstValue != a->getNumDataVar()) {
        return KxCommandReply::failf(interp, "Error: Attribute %s takes %d values per element.", a->getName(),
                                     a->getNumDataVar());
    }
    if (a->getPrimType() != PrimType::INT32 && a->getPrimType() != PrimType::FLOAT32) {
        return KxCommandReply::failf(interp, "Error: Attribute %s is neither int nor float.", a->getName());
    }
    // All components are read before the value is touched.
    std::vector<unsigned char> value(a->getElementSize());
    for (int i = 0; i < a->getNumDataVar(); ++i) {
        char* word = args[firstValue + i];
        bool ok = a->getPrimType() == PrimType::INT32
                      ? parseInt(interp, word, reinterpret_cast<int*>(value.data())[i])
                      : parseFloats(interp, 1, &word, reinterpret_cast<float*>(value.data()) + i);
        if (!ok) {
            return TCL_ERROR;
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
        return KxCommandReply::usage(interp, text);
    }
    for (int i = 1; i < nargs; ++i) {
        KxSpatialGraph::Location loc;
        if (!parseLocation(args[i], loc)) {
            return KxCommandReply::usage(interp, text);
        }
        at[loc] = true;
    }
    if (!nameCanBeSaved(interp, args[0])) {
        return TCL_ERROR;
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
        return KxCommandReply::usage(interp, text);
    }
    HierarchicalLabels* labels = graph.getLabelGroup(args[0]);
    if (!labels) {
        return KxCommandReply::failf(interp, "Error: Label group %s not found.", args[0]);
    }
    if (!parseInt(interp, args[1], parentId) || !parseFloats(interp, 3, args + 3, rgb)) {
        return TCL_ERROR;
    }
    int id = labels->addLabel(parentId, args[2], SbColor(rgb));
    if (id < 0 && labels->getLabelBundle(parentId)) {
        return KxCommandReply::failf(interp, "Error: Labels nest at most %d levels deep.",
                                     KxParamBundle::kMaxDepth);
    }
    if (id < 0) {
        return KxCommandReply::failf(interp, "Error: Label group %s has no label with id %d.", args[0],
                                     parentId);
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
        return KxCommandReply::usage(interp, text);
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

}  // namespace

const SpatialGraphCommandTable& spatialGraphBuildingCommands() {
    static const SpatialGraphCommandTable table = {
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
    return table;
}

const std::vector<const SpatialGraphCommandTable*>& spatialGraphCommandTables() {
    static const std::vector<const SpatialGraphCommandTable*> tables = {
        &spatialGraphBuildingCommands(),
        &spatialGraphQueryCommands(),
    };
    return tables;
}

void KxSpatialGraph::registerConsoleCommands() {
    for (const SpatialGraphCommandTable* table : spatialGraphCommandTables()) {
        for (const SpatialGraphCommand& c : *table) {
            theClassRegistry->registerCommand("KxSpatialGraph", c.name, c.usage);
        }
    }
    SpatialGraphAnalysisCommands::registerCommands();
}

int KxSpatialGraph::parse(Tcl_Interp* interp, int argc, char** argv) {
    int result = TCL_OK;
    if (SpatialGraphAnalysisCommands::parse(*this, interp, argc, argv, result)) {
        return result;
    }
    if (argc >= 2) {
        for (const SpatialGraphCommandTable* table : spatialGraphCommandTables()) {
            for (const SpatialGraphCommand& c : *table) {
                if (std::strcmp(argv[1], c.name) == 0) {
                    return c.run(*this, interp, argc - 2, argv + 2, c.usage);
                }
            }
        }
        if (std::strcmp(argv[1], "edit") == 0) {
            return parseEditCommand(*this, interp, argc, argv);
        }
    }
    return KxSpatialData::parse(interp, argc, argv);
}
