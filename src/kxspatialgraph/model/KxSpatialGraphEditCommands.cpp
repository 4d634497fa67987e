// The graph's editing commands: `{graph} edit OPERATION ...` builds an
// Operation from the words and a selection, checks everything that the
// operations leave to their caller (indices, counts, which points can become
// vertices), and runs it on the session's undo stack.

#include "kxspatialgraph/model/KxSpatialGraphEditCommands.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <tcl.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxUndoCommands.h"
#include "korva/core/KxUndoStack.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/operations/AddTracedEdgeOperationSet.h"
#include "kxspatialgraph/operations/AddVertexAndConnectOperationSet.h"
#include "kxspatialgraph/operations/AddVertexOperation.h"
#include "kxspatialgraph/operations/ConnectOperation.h"
#include "kxspatialgraph/operations/ConnectPointToPointOperationSet.h"
#include "kxspatialgraph/operations/ConnectPointToVertexOperationSet.h"
#include "kxspatialgraph/operations/ConnectSelectionOperationSet.h"
#include "kxspatialgraph/operations/ConnectTracedPointToVertexOperationSet.h"
#include "kxspatialgraph/operations/ConnectTracedVertexToPointOperationSet.h"
#include "kxspatialgraph/operations/DeleteOperation.h"
#include "kxspatialgraph/operations/FindAndConvertVerticesToPointsOperationSet.h"
#include "kxspatialgraph/operations/FindAndDeleteIsolatedVertices.h"
#include "kxspatialgraph/operations/InsertEdgePointsOperation.h"
#include "kxspatialgraph/operations/MoveOperation.h"
#include "kxspatialgraph/operations/MoveVertexOperationSet.h"
#include "kxspatialgraph/operations/MultipleVerticesToPointsOperationSet.h"
#include "kxspatialgraph/operations/OperationUndoCommand.h"
#include "kxspatialgraph/operations/PointToVertexOperation.h"
#include "kxspatialgraph/operations/ReplaceOperation.h"
#include "kxspatialgraph/operations/SmoothOperation.h"
#include "kxspatialgraph/operations/SplitEdgeWithNewVertexAndConnectOperationSet.h"
#include "kxspatialgraph/operations/SplitEdgeWithNewVertexOperationSet.h"
#include "kxspatialgraph/operations/VertexToPointOperation.h"

namespace {

// Prints the line and makes it the command's failed result; answers false so
// that checks read `return fail(...)`.
bool fail(Tcl_Interp* interp, const String& line) {
    theMsg->printf("%s", line.getString());
    Tcl_SetObjResult(interp, Tcl_NewStringObj(line.getString(), -1));
    return false;
}

// The words of a Tcl list, freed with the object.
class ListWords {
public:
    bool split(Tcl_Interp* interp, const char* list) {
        if (Tcl_SplitList(interp, list, &count_, &words_) != TCL_OK) {
            return fail(interp, String::format("Error: %s", Tcl_GetStringResult(interp)));
        }
        return true;
    }
    ~ListWords() { Tcl_Free(reinterpret_cast<char*>(words_)); }
    int size() const { return count_; }
    const char* operator[](int i) const { return words_[i]; }

private:
    int count_ = 0;
    const char** words_ = nullptr;
};

bool parseInt(Tcl_Interp* interp, const char* word, int& value) {
    if (Tcl_GetInt(interp, word, &value) != TCL_OK) {
        return fail(interp, String::format("Error: %s", Tcl_GetStringResult(interp)));
    }
    return true;
}

bool parseIndex(Tcl_Interp* interp, const char* word, int count, const char* what, int& index) {
    if (!parseInt(interp, word, index)) {
        return false;
    }
    if (index < 0 || index >= count) {
        return fail(interp, String::format("Error: %s %d out of range (%d).", what, index, count));
    }
    return true;
}

bool parseFloat(Tcl_Interp* interp, const char* word, float& value) {
    double v = 0.0;
    if (Tcl_GetDouble(interp, word, &v) != TCL_OK) {
        return fail(interp, String::format("Error: %s", Tcl_GetStringResult(interp)));
    }
    value = static_cast<float>(v);
    return true;
}

bool parseFloats(Tcl_Interp* interp, const char* list, DArray<float>& values) {
    ListWords words;
    if (!words.split(interp, list)) {
        return false;
    }
    values.resize(words.size());
    for (int i = 0; i < words.size(); ++i) {
        if (!parseFloat(interp, words[i], values[i])) {
            return false;
        }
    }
    return true;
}

// A flat list x y z x y z ...
bool parsePoints(Tcl_Interp* interp, const char* list, DArray<Vec3f>& points) {
    DArray<float> values;
    if (!parseFloats(interp, list, values)) {
        return false;
    }
    if (values.size() % 3 != 0) {
        return fail(interp, String::format("Error: \"%s\" is not a list of x y z triples.", list));
    }
    points.resize(values.size() / 3);
    for (int i = 0; i < points.size(); ++i) {
        points[i] = Vec3f(values[3 * i], values[3 * i + 1], values[3 * i + 2]);
    }
    return true;
}

bool parsePosition(Tcl_Interp* interp, char** words, Vec3f& p) {
    return parseFloat(interp, words[0], p.x) && parseFloat(interp, words[1], p.y) &&
           parseFloat(interp, words[2], p.z);
}

// Everything after the operation's name: positional words, the highlighted
// selection and the options some operations take.
struct EditArgs {
    explicit EditArgs(const KxSpatialGraph& graph) : selection(&graph) {}

    std::vector<char*> words;
    SpatialGraphSelection selection;
    DArray<Vec3f> polyline;
    DArray<float> radii;
    bool hasStart = false;
    Vec3f start;
    int numPointsToAverage = 3;
    bool direction[3] = {true, true, true};
    bool removeIntermediate = false;
};

bool addIndices(Tcl_Interp* interp, const KxSpatialGraph& graph, const char* option, const char* list,
                SpatialGraphSelection& s) {
    bool vertices = std::strcmp(option, "-vertices") == 0;
    ListWords words;
    if (!words.split(interp, list)) {
        return false;
    }
    for (int i = 0; i < words.size(); ++i) {
        int index = 0;
        if (vertices) {
            if (!parseIndex(interp, words[i], graph.getNumVertices(), "Vertex", index)) {
                return false;
            }
            s.selectVertex(index);
        } else if (!parseIndex(interp, words[i], graph.getNumEdges(), "Edge", index)) {
            return false;
        } else if (std::strcmp(option, "-edges") == 0) {
            s.selectEdge(index);
        } else {
            s.selectAllPointsOnEdge(index);
        }
    }
    return true;
}

// -points {{edge point} ...}
bool addPoints(Tcl_Interp* interp, const KxSpatialGraph& graph, const char* list, SpatialGraphSelection& s) {
    ListWords pairs;
    if (!pairs.split(interp, list)) {
        return false;
    }
    for (int i = 0; i < pairs.size(); ++i) {
        ListWords pair;
        if (!pair.split(interp, pairs[i])) {
            return false;
        }
        if (pair.size() != 2) {
            return fail(interp, String::format("Error: \"%s\" is not an edge point {edge point}.", pairs[i]));
        }
        SpatialGraphPoint p;
        if (!parseIndex(interp, pair[0], graph.getNumEdges(), "Edge", p.edgeNum) ||
            !parseIndex(interp, pair[1], graph.getNumEdgePoints(p.edgeNum), "Point", p.pointNum)) {
            return false;
        }
        s.selectPoint(p);
    }
    return true;
}

// -selection {EDGES VERTICES}: the two strings of a serialised selection.
bool addSerialized(Tcl_Interp* interp, const KxSpatialGraph& graph, const char* list,
                   SpatialGraphSelection& s) {
    ListWords strings;
    if (!strings.split(interp, list)) {
        return false;
    }
    if (strings.size() != 2) {
        return fail(interp, "Error: -selection takes a list of two strings: {edges vertices}.");
    }
    SpatialGraphSelection read(&graph);
    read.deserialize(strings[0], strings[1]);
    s.addSelection(read);
    return true;
}

bool parseDirection(Tcl_Interp* interp, const char* list, bool* direction) {
    ListWords words;
    if (!words.split(interp, list)) {
        return false;
    }
    if (words.size() != 3) {
        return fail(interp, "Error: -direction takes three booleans {x y z}.");
    }
    for (int i = 0; i < 3; ++i) {
        int on = 0;
        if (Tcl_GetBoolean(interp, words[i], &on) != TCL_OK) {
            return fail(interp, String::format("Error: %s", Tcl_GetStringResult(interp)));
        }
        direction[i] = on != 0;
    }
    return true;
}

// One option and its value; false after an error line.
bool parseOption(Tcl_Interp* interp, const KxSpatialGraph& graph, const char* option, const char* value,
                 EditArgs& a) {
    if (!std::strcmp(option, "-vertices") || !std::strcmp(option, "-edges") ||
        !std::strcmp(option, "-allPoints")) {
        return addIndices(interp, graph, option, value, a.selection);
    }
    if (!std::strcmp(option, "-points")) {
        return addPoints(interp, graph, value, a.selection);
    }
    if (!std::strcmp(option, "-selection")) {
        return addSerialized(interp, graph, value, a.selection);
    }
    if (!std::strcmp(option, "-polyline")) {
        return parsePoints(interp, value, a.polyline);
    }
    if (!std::strcmp(option, "-radii")) {
        return parseFloats(interp, value, a.radii);
    }
    if (!std::strcmp(option, "-n")) {
        if (!parseInt(interp, value, a.numPointsToAverage)) {
            return false;
        }
        return a.numPointsToAverage >= 1 || fail(interp, "Error: -n must be at least 1.");
    }
    if (!std::strcmp(option, "-direction")) {
        return parseDirection(interp, value, a.direction);
    }
    DArray<float> start;
    if (!parseFloats(interp, value, start)) {
        return false;
    }
    if (start.size() != 3) {
        return fail(interp, "Error: -start takes one position {x y z}.");
    }
    a.hasStart = true;
    a.start = Vec3f(start[0], start[1], start[2]);
    return true;
}

bool isOption(const char* word) {
    static const char* const options[] = {
        "-vertices", "-edges", "-points", "-allPoints", "-selection",         "-polyline",
        "-radii",    "-start", "-n",      "-direction", "-removeIntermediate"};
    for (const char* o : options) {
        if (std::strcmp(word, o) == 0) {
            return true;
        }
    }
    return false;
}

// ---- Checks of what the operations take for granted ------------------------

bool inner(const KxSpatialGraph& graph, const SpatialGraphPoint& p) {
    return p.pointNum > 0 && p.pointNum < graph.getNumEdgePoints(p.edgeNum) - 1;
}

// The selected points that become vertices must be inner points of their edges.
bool innerPoints(Tcl_Interp* interp, const KxSpatialGraph& graph, const SpatialGraphSelection& s, int count) {
    for (int i = 0; i < count && i < s.getNumSelectedPoints(); ++i) {
        SpatialGraphPoint p = s.getSelectedPoint(i);
        if (!inner(graph, p)) {
            return fail(interp,
                        String::format("Error: Point %d of edge %d is an end point; only inner points "
                                       "become vertices.",
                                       p.pointNum, p.edgeNum));
        }
    }
    return true;
}

// The selection holds exactly numVertices vertices and numPoints points.
bool selects(Tcl_Interp* interp, const SpatialGraphSelection& s, int numVertices, int numPoints) {
    if (s.getNumSelectedVertices() != numVertices || s.getNumSelectedPoints() != numPoints) {
        return fail(interp, String::format("Error: This edit needs %d selected vertices and %d selected edge "
                                           "points, not %d and %d.",
                                           numVertices, numPoints, s.getNumSelectedVertices(),
                                           s.getNumSelectedPoints()));
    }
    return true;
}

bool convertible(Tcl_Interp* interp, const KxSpatialGraph& graph, int v) {
    const KxSpatialGraph::IncidenceList& edges = graph.getIncidentEdges(v);
    if (edges.size() != 2 || edges[0] == edges[1]) {
        return fail(interp, String::format("Error: Vertex %d does not join two different edges.", v));
    }
    return true;
}

// The number of points of edge e once point k of edge `split` (of m points)
// has become a vertex: that edge goes, the later edges move down by one, and
// its halves (points 0..k and k..m-1) become the last two edges.
int pointsAfterConversion(const KxSpatialGraph& graph, int split, int k, int m, int e) {
    const int n = graph.getNumEdges();
    if (e < split) {
        return graph.getNumEdgePoints(e);
    }
    if (e < n - 1) {
        return graph.getNumEdgePoints(e + 1);
    }
    if (e == n - 1) {
        return k + 1;
    }
    return e == n ? m - k : 0;
}

// A point that the edit names as the graph is after an earlier conversion
// (`step` says which) must be an inner point there; checked before anything
// changes, so that the edit is not left half done.
bool innerAfterConversion(Tcl_Interp* interp, const KxSpatialGraph& graph, int split, int k, int m,
                          const SpatialGraphPoint& p, const String& step) {
    const int count = pointsAfterConversion(graph, split, k, m, p.edgeNum);
    if (p.pointNum > 0 && p.pointNum < count - 1) {
        return true;
    }
    return fail(interp, String::format("Error: Point %d of edge %d is not an inner point once %s.",
                                       p.pointNum, p.edgeNum, step.getString()));
}

// A split inserts before point index, which must lie inside the edge.
bool splitPoint(Tcl_Interp* interp, const KxSpatialGraph& graph, char** words, int& edge, int& point) {
    if (!parseIndex(interp, words[0], graph.getNumEdges(), "Edge", edge)) {
        return false;
    }
    int n = graph.getNumEdgePoints(edge);
    if (!parseInt(interp, words[1], point)) {
        return false;
    }
    if (point < 1 || point > n - 1) {
        return fail(interp, String::format("Error: Edge %d is split before point 1 to %d, not %d.", edge,
                                           n - 1, point));
    }
    return true;
}

// ---- The operations ---------------------------------------------------------

using Builder = Operation* (*)(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a,
                               const SpatialGraphSelection& vis);

Operation* addVertex(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a, const SpatialGraphSelection& vis) {
    Vec3f p;
    if (!parsePosition(interp, a.words.data(), p)) {
        return nullptr;
    }
    return new AddVertexOperation(&g, p, a.selection, vis);
}

Operation* connect(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a, const SpatialGraphSelection& vis) {
    if (!selects(interp, a.selection, 2, 0)) {
        return nullptr;
    }
    auto* op = new ConnectOperation(&g, a.selection, vis);
    op->setEdgePoints(a.polyline);
    return op;
}

Operation* move(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a, const SpatialGraphSelection& vis) {
    int v = 0;
    Vec3f p;
    if (!parseIndex(interp, a.words[0], g.getNumVertices(), "Vertex", v) ||
        !parsePosition(interp, &a.words[1], p)) {
        return nullptr;
    }
    return new MoveOperation(&g, v, p, a.selection, vis);
}

Operation* replace(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a, const SpatialGraphSelection& vis) {
    int e = 0;
    DArray<Vec3f> points;
    if (!parseIndex(interp, a.words[0], g.getNumEdges(), "Edge", e) ||
        !parsePoints(interp, a.words[1], points)) {
        return nullptr;
    }
    if (points.size() < 2) {
        fail(interp, "Error: A polyline needs at least 2 points.");
        return nullptr;
    }
    return new ReplaceOperation(&g, e, points, a.selection, vis);
}

Operation* insertPoints(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a,
                        const SpatialGraphSelection& vis) {
    DArray<Vec3f> points;
    if (!selects(interp, a.selection, 0, 1) || !parsePoints(interp, a.words[0], points)) {
        return nullptr;
    }
    // Points inserted before point 0 would come before the source vertex's
    // point and detach the edge from its vertex.
    const SpatialGraphPoint at = a.selection.getSelectedPoint(0);
    if (at.pointNum < 1) {
        fail(interp, String::format("Error: Points go into edge %d before point 1 to %d, not before %d.",
                                    at.edgeNum, g.getNumEdgePoints(at.edgeNum) - 1, at.pointNum));
        return nullptr;
    }
    return new InsertEdgePointsOperation(&g, points, a.selection, vis);
}

Operation* smooth(KxSpatialGraph& g, Tcl_Interp*, EditArgs& a, const SpatialGraphSelection& vis) {
    auto* op = new SmoothOperation(&g, a.selection, vis);
    op->setNumPointsToAverage(a.numPointsToAverage);
    op->setDirection(a.direction[0], a.direction[1], a.direction[2]);
    return op;
}

// An operation that takes nothing but the selection.
template <class Op>
Operation* onSelection(KxSpatialGraph& g, Tcl_Interp*, EditArgs& a, const SpatialGraphSelection& vis) {
    return new Op(&g, a.selection, vis);
}

Operation* vertexToPoint(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a,
                         const SpatialGraphSelection& vis) {
    if (!selects(interp, a.selection, 1, 0) || !convertible(interp, g, a.selection.getSelectedVertex(0))) {
        return nullptr;
    }
    return new VertexToPointOperation(&g, a.selection, vis);
}

Operation* pointToVertex(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a,
                         const SpatialGraphSelection& vis) {
    if (!selects(interp, a.selection, 0, 1) || !innerPoints(interp, g, a.selection, 1)) {
        return nullptr;
    }
    return new PointToVertexOperation(&g, a.selection, vis);
}

Operation* addTracedEdge(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a,
                         const SpatialGraphSelection& vis) {
    const SpatialGraphSelection& s = a.selection;
    int numPoints = s.getNumSelectedPoints();
    int total = s.getNumSelectedVertices() + numPoints;
    if (!parsePoints(interp, a.words[0], a.polyline) || !innerPoints(interp, g, s, numPoints)) {
        return nullptr;
    }
    if (total > 2) {
        fail(interp, "Error: A traced edge joins at most two selected vertices or edge points.");
        return nullptr;
    }
    if (total == 0 && g.getNumVertices() < 2) {
        fail(interp,
             "Error: Nothing selected: the traced edge would join the last two vertices, but there are "
             "fewer.");
        return nullptr;
    }
    if (numPoints == 2 && s.getSelectedPoint(0).edgeNum == s.getSelectedPoint(1).edgeNum) {
        fail(interp, "Error: The two edge points of a traced edge must lie on different edges.");
        return nullptr;
    }
    if (a.hasStart) {
        return new AddTracedEdgeOperationSet(&g, a.start, a.polyline, a.radii, s, vis);
    }
    return new AddTracedEdgeOperationSet(&g, a.polyline, a.radii, s, vis);
}

// The vertex or, failing that, the edge point that a new vertex is traced from.
bool oneVertexOrPoint(Tcl_Interp* interp, const KxSpatialGraph& g, const SpatialGraphSelection& s) {
    if (s.getNumSelectedVertices() > 0) {
        return true;
    }
    if (s.getNumSelectedPoints() == 0) {
        return fail(interp, "Error: Select a vertex or an edge point to connect the new vertex to.");
    }
    return innerPoints(interp, g, s, 1);
}

Operation* addVertexAndConnect(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a,
                               const SpatialGraphSelection& vis) {
    Vec3f p;
    if (!parsePosition(interp, a.words.data(), p) || !oneVertexOrPoint(interp, g, a.selection)) {
        return nullptr;
    }
    return new AddVertexAndConnectOperationSet(&g, p, &a.polyline, &a.radii, a.selection, vis);
}

Operation* splitEdge(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a, const SpatialGraphSelection& vis) {
    Vec3f p;
    int edge = 0, point = 0;
    if (!parsePosition(interp, a.words.data(), p) || !splitPoint(interp, g, &a.words[3], edge, point)) {
        return nullptr;
    }
    return new SplitEdgeWithNewVertexOperationSet(&g, p, edge, point, a.selection, vis);
}

Operation* splitEdgeAndConnect(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a,
                               const SpatialGraphSelection& vis) {
    Vec3f p;
    int edge = 0, point = 0;
    if (!parsePosition(interp, a.words.data(), p) || !splitPoint(interp, g, &a.words[3], edge, point)) {
        return nullptr;
    }
    if (a.selection.getNumSelectedVertices() == 0 && a.selection.getNumSelectedPoints() == 0) {
        fail(interp, "Error: Select a vertex or an edge point to connect the new vertex to.");
        return nullptr;
    }
    // The split inserts the new point before `point` and makes it a vertex.
    if (a.selection.getNumSelectedVertices() == 0 &&
        !innerAfterConversion(interp, g, edge, point, g.getNumEdgePoints(edge) + 1,
                              a.selection.getSelectedPoint(0),
                              String::format("edge %d is split before point %d", edge, point))) {
        return nullptr;
    }
    return new SplitEdgeWithNewVertexAndConnectOperationSet(&g, p, edge, point, &a.polyline, &a.radii,
                                                            a.selection, vis);
}

// moveVertex v x y z ?edge polyline ...?
Operation* moveVertex(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a, const SpatialGraphSelection& vis) {
    int v = 0;
    Vec3f p;
    if ((a.words.size() - 4) % 2 != 0) {
        fail(interp, "Error: moveVertex takes pairs of an edge and its new polyline after the position.");
        return nullptr;
    }
    if (!parseIndex(interp, a.words[0], g.getNumVertices(), "Vertex", v) ||
        !parsePosition(interp, &a.words[1], p)) {
        return nullptr;
    }
    SmallArray<int, 2> edges;
    DArray<DArray<Vec3f>> polylines;
    for (size_t i = 4; i < a.words.size(); i += 2) {
        int e = 0;
        DArray<Vec3f> points;
        if (!parseIndex(interp, a.words[i], g.getNumEdges(), "Edge", e) ||
            !parsePoints(interp, a.words[i + 1], points)) {
            return nullptr;
        }
        if (points.size() < 2) {
            fail(interp, "Error: A polyline needs at least 2 points.");
            return nullptr;
        }
        edges.append(e);
        polylines.append(points);
    }
    return new MoveVertexOperationSet(&g, v, p, edges, polylines, a.selection, vis);
}

Operation* connectPointToVertex(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a,
                                const SpatialGraphSelection& vis) {
    if (!selects(interp, a.selection, 1, 1) || !innerPoints(interp, g, a.selection, 1)) {
        return nullptr;
    }
    auto* op = new ConnectPointToVertexOperationSet(&g, a.selection, vis);
    op->setRemoveIntermediateVertices(a.removeIntermediate);
    return op;
}

// The second point is named in the graph as the first conversion leaves it.
Operation* connectPointToPoint(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a,
                               const SpatialGraphSelection& vis) {
    if (!selects(interp, a.selection, 0, 2) || !innerPoints(interp, g, a.selection, 1)) {
        return nullptr;
    }
    const SpatialGraphPoint first = a.selection.getSelectedPoint(0);
    if (!innerAfterConversion(
            interp, g, first.edgeNum, first.pointNum, g.getNumEdgePoints(first.edgeNum),
            a.selection.getSelectedPoint(1),
            String::format("point %d of edge %d is a vertex", first.pointNum, first.edgeNum))) {
        return nullptr;
    }
    return new ConnectPointToPointOperationSet(&g, nullptr, &a.polyline, &a.radii, a.selection, vis);
}

Operation* connectTracedVertexToPoint(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a,
                                      const SpatialGraphSelection& vis) {
    if (!selects(interp, a.selection, 1, 1) || !innerPoints(interp, g, a.selection, 1)) {
        return nullptr;
    }
    return new ConnectTracedVertexToPointOperationSet(&g, &a.polyline, &a.radii, a.selection, vis);
}

Operation* connectTracedPointToVertex(KxSpatialGraph& g, Tcl_Interp* interp, EditArgs& a,
                                      const SpatialGraphSelection& vis) {
    if (!selects(interp, a.selection, 1, 1) || !innerPoints(interp, g, a.selection, 1)) {
        return nullptr;
    }
    return new ConnectTracedPointToVertexOperationSet(&g, &a.polyline, &a.radii, a.selection, vis);
}

struct EditCommand {
    const char* name;
    const char* usage;
    int minWords;
    int maxWords;  // -1: any number
    Builder build;
};

const EditCommand kEditCommands[] = {
    {"addVertex", "edit addVertex x y z", 3, 3, addVertex},
    {"connect", "edit connect ?-polyline POINTS? SELECTION(2 vertices)", 0, 0, connect},
    {"move", "edit move vertex x y z", 4, 4, move},
    {"replace", "edit replace edge POINTS", 2, 2, replace},
    {"insertPoints", "edit insertPoints POINTS SELECTION(1 point)", 1, 1, insertPoints},
    {"smooth", "edit smooth ?-n N? ?-direction {x y z}? SELECTION(edges)", 0, 0, smooth},
    {"delete", "edit delete SELECTION", 0, 0, onSelection<DeleteOperation>},
    {"deleteIsolated", "edit deleteIsolated", 0, 0, onSelection<FindAndDeleteIsolatedVertices>},
    {"vertexToPoint", "edit vertexToPoint SELECTION(1 vertex)", 0, 0, vertexToPoint},
    {"pointToVertex", "edit pointToVertex SELECTION(1 point)", 0, 0, pointToVertex},
    {"addTracedEdge", "edit addTracedEdge POINTS ?-radii R? ?-start {x y z}? SELECTION", 1, 1, addTracedEdge},
    {"addVertexAndConnect", "edit addVertexAndConnect x y z ?-polyline POINTS? ?-radii R? SELECTION", 3, 3,
     addVertexAndConnect},
    {"splitEdge", "edit splitEdge x y z edge point", 5, 5, splitEdge},
    {"splitEdgeAndConnect",
     "edit splitEdgeAndConnect x y z edge point ?-polyline POINTS? ?-radii R? SELECTION", 5, 5,
     splitEdgeAndConnect},
    {"moveVertex", "edit moveVertex vertex x y z ?edge POINTS ...?", 4, -1, moveVertex},
    {"connectSelection", "edit connectSelection SELECTION", 0, 0, onSelection<ConnectSelectionOperationSet>},
    {"verticesToPoints", "edit verticesToPoints SELECTION(vertices)", 0, 0,
     onSelection<MultipleVerticesToPointsOperationSet>},
    {"findAndConvertVerticesToPoints", "edit findAndConvertVerticesToPoints ?SELECTION?", 0, 0,
     onSelection<FindAndConvertVerticesToPointsOperationSet>},
    {"connectPointToVertex", "edit connectPointToVertex ?-removeIntermediate? SELECTION(1 vertex, 1 point)",
     0, 0, connectPointToVertex},
    {"connectPointToPoint", "edit connectPointToPoint ?-polyline POINTS? ?-radii R? SELECTION(2 points)", 0,
     0, connectPointToPoint},
    {"connectTracedVertexToPoint",
     "edit connectTracedVertexToPoint ?-polyline POINTS? ?-radii R? SELECTION(1 vertex, 1 point)", 0, 0,
     connectTracedVertexToPoint},
    {"connectTracedPointToVertex",
     "edit connectTracedPointToVertex ?-polyline POINTS? ?-radii R? SELECTION(1 vertex, 1 point)", 0, 0,
     connectTracedPointToVertex},
};

const char* const kEditUsage =
    "edit OPERATION ?args? ?-vertices LIST? ?-edges LIST? ?-points {{edge point} ...}? "
    "?-allPoints LIST? ?-selection {EDGES VERTICES}?";

int usage(Tcl_Interp* interp, const char* text) {
    fail(interp, String::format("USAGE: %s", text));
    return TCL_ERROR;
}

// The usage lines of every operation.
int listOperations(Tcl_Interp* interp) {
    std::string text;
    for (const EditCommand& c : kEditCommands) {
        text += c.usage;
        text += '\n';
    }
    Tcl_SetObjResult(interp, Tcl_NewStringObj(text.c_str(), -1));
    return TCL_OK;
}

// "-vertices {..} -edges {..} -points {{e p} ..} -allPoints {..}": the same
// options that name a selection, so an answer can be passed on.
Tcl_Obj* describeSelection(const SpatialGraphSelection& s) {
    Tcl_Obj* vertices = Tcl_NewListObj(0, nullptr);
    Tcl_Obj* edges = Tcl_NewListObj(0, nullptr);
    Tcl_Obj* points = Tcl_NewListObj(0, nullptr);
    Tcl_Obj* allPoints = Tcl_NewListObj(0, nullptr);
    for (int v = 0; v < s.getNumVertices(); ++v) {
        if (s.isSelectedVertex(v)) {
            Tcl_ListObjAppendElement(nullptr, vertices, Tcl_NewIntObj(v));
        }
    }
    for (int e = 0; e < s.getNumEdges(); ++e) {
        if (s.isSelectedEdge(e)) {
            Tcl_ListObjAppendElement(nullptr, edges, Tcl_NewIntObj(e));
        }
        if (s.allPointsOnEdgeSelected(e)) {
            Tcl_ListObjAppendElement(nullptr, allPoints, Tcl_NewIntObj(e));
        }
    }
    for (int i = 0; i < s.getNumSelectedPoints(); ++i) {
        Tcl_Obj* pair[2] = {Tcl_NewIntObj(s.getSelectedPoint(i).edgeNum),
                            Tcl_NewIntObj(s.getSelectedPoint(i).pointNum)};
        Tcl_ListObjAppendElement(nullptr, points, Tcl_NewListObj(2, pair));
    }
    Tcl_Obj* parts[8] = {
        Tcl_NewStringObj("-vertices", -1), vertices, Tcl_NewStringObj("-edges", -1),     edges,
        Tcl_NewStringObj("-points", -1),   points,   Tcl_NewStringObj("-allPoints", -1), allPoints};
    return Tcl_NewListObj(8, parts);
}

}  // namespace

void registerEditCommands() {
    theClassRegistry->registerCommand("KxSpatialGraph", "edit", kEditUsage);
}

int parseEditCommand(KxSpatialGraph& graph, Tcl_Interp* interp, int argc, char** argv) {
    if (argc < 3) {
        return usage(interp, kEditUsage);
    }
    if (std::strcmp(argv[2], "help") == 0) {
        return listOperations(interp);
    }
    const EditCommand* command = nullptr;
    for (const EditCommand& c : kEditCommands) {
        if (std::strcmp(argv[2], c.name) == 0) {
            command = &c;
        }
    }
    if (!command) {
        fail(interp, String::format("Error: Unknown edit operation \"%s\"; \"%s edit help\" lists them.",
                                    argv[2], graph.getLabel()));
        return TCL_ERROR;
    }
    EditArgs args(graph);
    for (int i = 3; i < argc; ++i) {
        if (!isOption(argv[i])) {
            args.words.push_back(argv[i]);
        } else if (std::strcmp(argv[i], "-removeIntermediate") == 0) {
            args.removeIntermediate = true;
        } else if (i + 1 == argc) {
            return usage(interp, command->usage);
        } else if (!parseOption(interp, graph, argv[i], argv[i + 1], args)) {
            return TCL_ERROR;
        } else {
            ++i;
        }
    }
    int numWords = static_cast<int>(args.words.size());
    if (numWords < command->minWords || (command->maxWords >= 0 && numWords > command->maxWords)) {
        return usage(interp, command->usage);
    }
    SpatialGraphSelection visible(&graph);
    visible.selectAllVerticesAndEdges();
    visible.selectAllPoints();
    Operation* op = command->build(graph, interp, args, visible);
    if (!op) {
        return TCL_ERROR;
    }
    auto undoable = std::make_unique<OperationUndoCommand>(&graph, op, command->name);
    const Operation& done = undoable->operation();
    if (KxUndoStack* stack = findUndoStack(interp)) {
        stack->push(std::move(undoable));
    } else {
        undoable->exec();
    }
    Tcl_SetObjResult(interp, describeSelection(done.getHighlightSelectionAfterOperation()));
    return TCL_OK;
}
