#include "kxspatialgraph/analysis/SpatialGraphFunctions.h"

#include <climits>
#include <cmath>

#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxWorkArea.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/operations/DeleteOperation.h"

namespace {

bool checkIndex(int index, int count, const char* what) {
    if (index >= 0 && index < count) {
        return true;
    }
    theMsg->printf("Error: %s %d is not in the graph (%d %ss).", what, index, count, what);
    return false;
}

bool isVertex(const KxSpatialGraph* graph, int v) {
    return checkIndex(v, graph->getNumVertices(), "vertex");
}

bool isEdge(const KxSpatialGraph* graph, int e) {
    return checkIndex(e, graph->getNumEdges(), "edge");
}

float polylineLength(const Vec3f* points, int n) {
    float length = 0.0f;
    for (int i = 1; i < n; ++i) {
        length += points[i].distance(points[i - 1]);
    }
    return length;
}

// How many points go between two points d apart; the 0.001 keeps a distance
// that is an exact multiple of maxDistance from receiving one point too many.
double pointsBetween(float d, float maxDistance) {
    return d > maxDistance ? std::floor((d - 0.001) / maxDistance) : 0.0;
}

// Appends the points inserted between old neighbours a and b. Inserting k
// points and moving on by one point examines the pairs between the inserted
// points in turn (not the pair ending at the first of them), so points still
// too far apart get points of their own; a stack holds the points to come.
// Evenly spaced points are never too far apart, so this happens only through
// rounding; far from the origin, where float steps exceed the distance,
// rounding could go on forever. Deliberate: a pair gets at most twice its
// first count plus 16 points, then the rest are taken as they are.
void resamplePair(const Vec3f& a, const Vec3f& b, float maxDistance, DArray<Vec3f>& out,
                  DArray<Vec3f>& ahead) {
    Vec3f last = a;
    ahead.clear();
    double budget = -1.0;
    while (true) {
        Vec3f next = ahead.isEmpty() ? b : ahead.last();
        double wanted = pointsBetween(next.distance(last), maxDistance);
        budget = budget < 0.0 ? 2.0 * wanted + 16.0 : budget;
        int k = wanted <= budget ? static_cast<int>(wanted) : 0;
        budget -= k;
        if (k > 0) {
            Vec3f step = next - last;
            for (int j = k; j >= 2; --j) {
                ahead.append(last + step * static_cast<float>(j) / static_cast<float>(k + 1));
            }
            last = last + step * 1.0f / static_cast<float>(k + 1);
            out.append(last);
            continue;
        }
        if (ahead.isEmpty()) {
            return;
        }
        out.append(next);
        last = next;
        ahead.remove(ahead.size() - 1);
    }
}

SpatialGraphSelection withLabelId(const KxSpatialGraph* graph, KxSpatialGraph::Location location,
                                  const char* attributeName, int labelId) {
    SpatialGraphSelection selection(graph);
    const EdgeVertexAttribute* a = nullptr;
    if (attributeName) {
        a = location == KxSpatialGraph::EDGE ? graph->findEdgeAttribute(attributeName)
                                             : graph->findVertexAttribute(attributeName);
    }
    if (!a || a->getPrimType() != PrimType::INT32) {
        return selection;
    }
    for (int i = 0; i < a->size(); ++i) {
        if (a->getIntDataAtIdx(i) == labelId) {
            location == KxSpatialGraph::EDGE ? selection.selectEdge(i) : selection.selectVertex(i);
        }
    }
    return selection;
}

DArray<int> nodesOfType(const KxSpatialGraph* graph, NodeType::Enum type) {
    DArray<int> nodes;
    for (int v = 0; v < graph->getNumVertices(); ++v) {
        if (SpatialGraphFunctions::getNodeType(graph, v) == type) {
            nodes.append(v);
        }
    }
    return nodes;
}

}  // namespace

NodeType::Enum SpatialGraphFunctions::getNodeType(const KxSpatialGraph* graph, int v) {
    int degree = isVertex(graph, v) ? graph->getIncidentEdges(v).size() : 0;
    return degree >= 3 ? NodeType::BRANCHING_NODE : static_cast<NodeType::Enum>(degree);
}

bool SpatialGraphFunctions::isEndingNode(const KxSpatialGraph* graph, int v) {
    return getNodeType(graph, v) == NodeType::ENDING_NODE;
}

bool SpatialGraphFunctions::isBranchingNode(const KxSpatialGraph* graph, int v) {
    return getNodeType(graph, v) == NodeType::BRANCHING_NODE;
}

DArray<int> SpatialGraphFunctions::getEndingNodes(const KxSpatialGraph* graph) {
    return nodesOfType(graph, NodeType::ENDING_NODE);
}

DArray<int> SpatialGraphFunctions::getBranchingNodes(const KxSpatialGraph* graph) {
    return nodesOfType(graph, NodeType::BRANCHING_NODE);
}

int SpatialGraphFunctions::getNumberOfNodesOfTypeInSelection(const KxSpatialGraph* graph,
                                                             const SpatialGraphSelection& selection,
                                                             NodeType::Enum type) {
    int count = 0;
    int n = std::min(selection.getNumVertices(), graph->getNumVertices());
    for (int v = 0; v < n; ++v) {
        count += selection.isSelectedVertex(v) && getNodeType(graph, v) == type;
    }
    return count;
}

bool SpatialGraphFunctions::isContour(const KxSpatialGraph* graph, int e) {
    if (!isEdge(graph, e)) {
        return false;
    }
    int s = graph->getEdgeSource(e);
    int t = graph->getEdgeTarget(e);
    if (s == t) {
        return true;
    }
    int n = graph->getNumVertices();
    return s >= 0 && s < n && t >= 0 && t < n &&
           graph->getVertexCoords(s).distance(graph->getVertexCoords(t)) < 0.0001;
}

bool SpatialGraphFunctions::isContourVertex(const KxSpatialGraph* graph, int v) {
    if (!isVertex(graph, v)) {
        return false;
    }
    const KxSpatialGraph::IncidenceList& edges = graph->getIncidentEdges(v);
    if (edges.size() == 2) {
        return edges[0] == edges[1];
    }
    return edges.size() == 1 && isContour(graph, edges[0]);
}

float SpatialGraphFunctions::getEdgeLength(const KxSpatialGraph* graph, int e) {
    if (!isEdge(graph, e)) {
        return 0.0f;
    }
    int n = 0;
    const Vec3f* points = graph->getEdgePoints(e, n);
    return polylineLength(points, n);
}

double SpatialGraphFunctions::getTotalEdgeLength(const KxSpatialGraph* graph) {
    double total = 0.0;
    for (int e = 0; e < graph->getNumEdges(); ++e) {
        total += getEdgeLength(graph, e);
    }
    return total;
}

Vec3f SpatialGraphFunctions::getTransformedPoint(const SbMatrix& m, const Vec3f& p) {
    return KxSpatialGraph::transformPoint(m, p);
}

Vec3f SpatialGraphFunctions::getTransformedPoint(const KxSpatialGraph* graph, const Vec3f& p) {
    return KxSpatialGraph::transformPoint(graph->getTransform(), p);
}

DArray<Vec3f> SpatialGraphFunctions::getTransformedEdgePoints(const KxSpatialGraphInterface* graph, int e) {
    DArray<Vec3f> points;
    if (!checkIndex(e, graph->doGetNumEdges(), "edge")) {
        return points;
    }
    SbMatrix m = graph->doGetTransform();
    int n = 0;
    const Vec3f* p = graph->doGetEdgePoints(e, n);
    points.resize(n);
    for (int i = 0; i < n; ++i) {
        points[i] = KxSpatialGraph::transformPoint(m, p[i]);
    }
    return points;
}

Box3f SpatialGraphFunctions::getTransformedEdgeBoundingBox(const KxSpatialGraphInterface* graph, int e) {
    Box3f box(0.0f, -1.0e10f, 0.0f, -1.0e10f, 0.0f, -1.0e10f);
    DArray<Vec3f> points = getTransformedEdgePoints(graph, e);
    for (int i = 0; i < points.size(); ++i) {
        if (i == 0) {
            box = Box3f(points[0].x, points[0].x, points[0].y, points[0].y, points[0].z, points[0].z);
        }
        box.extendBy(points[i]);
    }
    return box;
}

float SpatialGraphFunctions::getTransformedEdgeLength(const KxSpatialGraph* graph, int e) {
    DArray<Vec3f> points = getTransformedEdgePoints(graph->getSpatialGraphInterface(), e);
    return polylineLength(points.dataPtr(), points.size());
}

bool SpatialGraphFunctions::resampleWithMaximumPointDistance(KxSpatialGraph* graph, float maxDistance) {
    if (!(maxDistance > 0.0f)) {
        theMsg->printf("Error: the maximum point distance must be positive, not %g.", maxDistance);
        return false;
    }
    const EdgePointsManager& storage = graph->getEdgePointsManager();
    const DArray<Vec3f>& points = storage.getAllPoints();
    const DArray<int>& offsets = storage.getOffsets();
    // The original pairs tell how many points will be added (pairs between
    // added points receive none, short of rounding); refuse before building.
    double expected = points.size();
    for (int e = 0; e < graph->getNumEdges(); ++e) {
        for (int i = offsets[e] + 1; i < offsets[e + 1]; ++i) {
            expected += pointsBetween(points[i].distance(points[i - 1]), maxDistance);
        }
    }
    if (expected > INT_MAX / 2) {
        theMsg->printf(
            "Error: resampling to a point distance of %g would make %.0f points; the graph holds at "
            "most %d.",
            maxDistance, expected, INT_MAX / 2);
        return false;
    }

    theWorkArea->startWorking("Resampling edges...", graph->getNumEdges());
    DArray<SpatialGraphPoint> at;
    DArray<int> counts;
    DArray<Vec3f> added, ahead;
    added.reserve(static_cast<int>(expected) - points.size());
    for (int e = 0; e < graph->getNumEdges(); ++e) {
        for (int i = offsets[e] + 1; i < offsets[e + 1]; ++i) {
            int before = added.size();
            resamplePair(points[i - 1], points[i], maxDistance, added, ahead);
            if (added.size() > before) {
                at.append(SpatialGraphPoint(e, i - offsets[e]));
                counts.append(added.size() - before);
            }
        }
        theWorkArea->step();
    }
    graph->insertMultipleEdgePoints(at, counts, added);
    theWorkArea->stopWorking();
    return true;
}

int SpatialGraphFunctions::removeContours(KxSpatialGraph* graph) {
    SpatialGraphSelection contours(graph);
    int count = 0;
    for (int e = 0; e < graph->getNumEdges(); ++e) {
        if (isContour(graph, e)) {
            contours.selectEdge(e);
            for (int v : {graph->getEdgeSource(e), graph->getEdgeTarget(e)}) {
                if (v >= 0 && v < graph->getNumVertices()) {
                    contours.selectVertex(v);
                }
            }
            ++count;
        }
    }
    SpatialGraphSelection visible(graph);
    visible.selectAllVerticesAndEdges();
    DeleteOperation deletion(graph, contours, visible);
    deletion.exec();
    return count;
}

SpatialGraphSelection SpatialGraphFunctions::getEdgesWithLabelId(const KxSpatialGraph* graph,
                                                                 const char* attributeName, int labelId) {
    return withLabelId(graph, KxSpatialGraph::EDGE, attributeName, labelId);
}

SpatialGraphSelection SpatialGraphFunctions::getVerticesWithLabelId(const KxSpatialGraph* graph,
                                                                    const char* attributeName, int labelId) {
    return withLabelId(graph, KxSpatialGraph::VERTEX, attributeName, labelId);
}

SpatialGraphSelection SpatialGraphFunctions::getEdgesAndVerticesWithLabelId(const KxSpatialGraph* graph,
                                                                            const char* attributeName,
                                                                            int labelId) {
    SpatialGraphSelection selection = getVerticesWithLabelId(graph, attributeName, labelId);
    selection.addSelection(getEdgesWithLabelId(graph, attributeName, labelId));
    return selection;
}

BitField SpatialGraphFunctions::getLabelIdsInSubTree(const HierarchicalLabels* labels, const String& name) {
    int maxId = labels->getMaxLabelId();
    BitField ids(maxId + 1);
    int id = labels->getLabelIdFromName(name);
    if (id < 0) {
        return ids;
    }
    for (int child : labels->getChildIds(id)) {
        if (child >= 0 && child <= maxId) {
            ids.set(child);
        }
    }
    return ids;
}
