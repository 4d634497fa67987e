// Random sequences of editing operations on random graphs: every undo must
// give back the graph as it was before the exec, every redo the graph as the
// first exec left it, and the graph must stay consistent throughout.
// KORVA_MODEL_SEEDS=N runs N seeds instead of the fixed few.

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/operations/AddTracedEdgeOperationSet.h"
#include "kxspatialgraph/operations/AddVertexAndConnectOperationSet.h"
#include "kxspatialgraph/operations/AddVertexOperation.h"
#include "kxspatialgraph/operations/ConnectPointToPointOperationSet.h"
#include "kxspatialgraph/operations/ConnectPointToVertexOperationSet.h"
#include "kxspatialgraph/operations/ConnectSelectionOperationSet.h"
#include "kxspatialgraph/operations/DeleteOperation.h"
#include "kxspatialgraph/operations/FindAndConvertVerticesToPointsOperationSet.h"
#include "kxspatialgraph/operations/FindAndDeleteIsolatedVertices.h"
#include "kxspatialgraph/operations/InsertEdgePointsOperation.h"
#include "kxspatialgraph/operations/MoveVertexOperationSet.h"
#include "kxspatialgraph/operations/PointToVertexOperation.h"
#include "kxspatialgraph/operations/SmoothOperation.h"
#include "kxspatialgraph/operations/SplitEdgeWithNewVertexAndConnectOperationSet.h"
#include "kxspatialgraph/operations/VertexToPointOperation.h"
#include "support/GraphComparison.h"
#include "support/GraphFixtures.h"

namespace {

using Rng = std::mt19937;

int pick(Rng& rng, int n) {
    return std::uniform_int_distribution<int>(0, n - 1)(rng);
}

bool chance(Rng& rng, double p) {
    return std::bernoulli_distribution(p)(rng);
}

Vec3f randomPoint(Rng& rng) {
    std::uniform_real_distribution<float> coord(-10.0f, 10.0f);
    return Vec3f(coord(rng), coord(rng), coord(rng));
}

// A polyline of n points from a to b with random interior points.
DArray<Vec3f> randomPolyline(Rng& rng, const Vec3f& a, const Vec3f& b, int n) {
    DArray<Vec3f> points{a};
    for (int i = 1; i < n - 1; ++i) {
        points.append(randomPoint(rng));
    }
    points.append(b);
    return points;
}

void fillRandomValues(KxSpatialGraph& g, Rng& rng) {
    for (int loc = 0; loc < 3; ++loc) {
        auto location = static_cast<KxSpatialGraph::Location>(loc);
        for (int k = 0; k < g.numAttributes(location); ++k) {
            GraphAttribute* a = g.attribute(location, k);
            auto* bytes = static_cast<unsigned char*>(a->dataPtr());
            for (size_t i = 0; i < a->size() * a->getElementSize(); ++i) {
                bytes[i] = static_cast<unsigned char>(pick(rng, 256));
            }
        }
    }
}

// Vertices, edges (loops and parallel edges included) with 2 to 5 points,
// isolated vertices, attributes on all three locations and a label group.
std::unique_ptr<KxSpatialGraph> randomGraph(Rng& rng) {
    auto g = std::make_unique<KxSpatialGraph>();
    int numVertices = 2 + pick(rng, 8);
    for (int v = 0; v < numVertices; ++v) {
        g->addVertex(randomPoint(rng));
    }
    int numEdges = pick(rng, 12);
    for (int e = 0; e < numEdges; ++e) {
        int s = pick(rng, numVertices);
        int t = chance(rng, 0.1) ? s : pick(rng, numVertices);
        g->addEdge(s, t, randomPolyline(rng, g->getVertexCoords(s), g->getVertexCoords(t), 2 + pick(rng, 4)));
    }
    HierarchicalLabels* labels = g->addNewLabelGroup("Regions", true, true, false);
    labels->addLabel(0, "Soma", SbColor(1, 0, 0));
    g->addAttribute("VertexVec", KxSpatialGraph::VERTEX, PrimType::FLOAT32, 3);
    g->addAttribute("Weight", KxSpatialGraph::EDGE, PrimType::FLOAT32, 1);
    g->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1);
    g->addAttribute("PointId", KxSpatialGraph::POINT, PrimType::INT32, 2);
    fillRandomValues(*g, rng);
    return g;
}

SpatialGraphSelection randomSelection(const KxSpatialGraph& g, Rng& rng, double p) {
    SpatialGraphSelection s(&g);
    for (int v = 0; v < g.getNumVertices(); ++v) {
        if (chance(rng, p)) {
            s.selectVertex(v);
        }
    }
    for (int e = 0; e < g.getNumEdges(); ++e) {
        if (chance(rng, p)) {
            s.selectEdge(e);
        }
        if (chance(rng, p / 2)) {
            s.selectAllPointsOnEdge(e);
        }
    }
    return s;
}

// A random edge point at an index in [1, count - 1 - fromEnd] of a random
// edge with at least minPoints points; (-1, -1) when the edge has fewer.
SpatialGraphPoint randomInteriorPoint(const KxSpatialGraph& g, Rng& rng, int minPoints, int fromEnd) {
    int e = g.getNumEdges() > 0 ? pick(rng, g.getNumEdges()) : -1;
    if (e < 0 || g.getNumEdgePoints(e) < minPoints) {
        return SpatialGraphPoint();
    }
    return SpatialGraphPoint(e, 1 + pick(rng, g.getNumEdgePoints(e) - 1 - fromEnd));
}

// Builds a valid operation with random arguments on the graph, or null when
// the graph offers no place for one. Composite operations join as rows.
struct OperationMaker {
    const char* name;
    std::function<std::unique_ptr<Operation>(KxSpatialGraph&, Rng&)> make;
};

// An operation on a random selection, with a random visible selection.
template <class Op>
std::unique_ptr<Operation> onRandomSelection(KxSpatialGraph& g, Rng& rng) {
    return std::make_unique<Op>(&g, randomSelection(g, rng, 0.3), randomSelection(g, rng, 0.5));
}

const std::vector<OperationMaker>& operationMakers() {
    static const std::vector<OperationMaker> makers = {
        {"AddVertexOperation",
         [](KxSpatialGraph& g, Rng& rng) -> std::unique_ptr<Operation> {
             return std::make_unique<AddVertexOperation>(&g, randomPoint(rng), SpatialGraphSelection(&g),
                                                         randomSelection(g, rng, 0.5));
         }},
        {"InsertEdgePointsOperation",
         [](KxSpatialGraph& g, Rng& rng) -> std::unique_ptr<Operation> {
             SpatialGraphPoint at = randomInteriorPoint(g, rng, 2, 0);
             if (at.edgeNum < 0) {
                 return nullptr;
             }
             SpatialGraphSelection highlighted(&g);
             highlighted.selectPoint(at);
             DArray<Vec3f> points;
             for (int i = 0; i <= pick(rng, 3); ++i) {
                 points.append(randomPoint(rng));
             }
             return std::make_unique<InsertEdgePointsOperation>(&g, points, highlighted,
                                                                randomSelection(g, rng, 0.5));
         }},
        {"SmoothOperation",
         [](KxSpatialGraph& g, Rng& rng) -> std::unique_ptr<Operation> {
             auto op = std::make_unique<SmoothOperation>(&g, randomSelection(g, rng, 0.6),
                                                         randomSelection(g, rng, 0.5));
             // Deliberate: averaging 2 points also halves the end points; not a valid edit.
             const int counts[] = {1, 3, 4, 5};
             op->setNumPointsToAverage(counts[pick(rng, 4)]);
             op->setDirection(chance(rng, 0.7), chance(rng, 0.7), chance(rng, 0.7));
             return op;
         }},
        {"DeleteOperation", onRandomSelection<DeleteOperation>},
        {"FindAndDeleteIsolatedVertices", onRandomSelection<FindAndDeleteIsolatedVertices>},
        {"VertexToPointOperation",
         [](KxSpatialGraph& g, Rng& rng) -> std::unique_ptr<Operation> {
             int v = pick(rng, g.getNumVertices());
             const auto& edges = g.getIncidentEdges(v);
             if (edges.size() != 2 || edges[0] == edges[1]) {
                 return nullptr;
             }
             SpatialGraphSelection highlighted(&g);
             highlighted.selectVertex(v);
             return std::make_unique<VertexToPointOperation>(&g, highlighted, randomSelection(g, rng, 0.5));
         }},
        {"PointToVertexOperation",
         [](KxSpatialGraph& g, Rng& rng) -> std::unique_ptr<Operation> {
             SpatialGraphPoint at = randomInteriorPoint(g, rng, 3, 1);
             if (at.edgeNum < 0) {
                 return nullptr;
             }
             SpatialGraphSelection highlighted(&g);
             highlighted.selectPoint(at);
             return std::make_unique<PointToVertexOperation>(&g, highlighted, randomSelection(g, rng, 0.5));
         }},
        // Composite operations. Connecting, moving and replacing polylines
        // are covered through the sets that run them (traced edges, moving
        // a vertex with its edges). Traced polylines run from the new edge's
        // source (the lower vertex index) to its target, so the graph stays
        // consistent.
        {"ConnectSelectionOperationSet", onRandomSelection<ConnectSelectionOperationSet>},
        {"FindAndConvertVerticesToPointsOperationSet",
         [](KxSpatialGraph& g, Rng& rng) -> std::unique_ptr<Operation> {
             return std::make_unique<FindAndConvertVerticesToPointsOperationSet>(
                 &g, randomSelection(g, rng, chance(rng, 0.3) ? 0.0 : 0.4), randomSelection(g, rng, 0.5));
         }},
        {"AddTracedEdgeOperationSet",
         [](KxSpatialGraph& g, Rng& rng) -> std::unique_ptr<Operation> {
             SpatialGraphSelection ends(&g);
             Vec3f start = randomPoint(rng);
             Vec3f from, to;
             int n = g.getNumVertices();
             if (n < 2) {
                 return nullptr;
             }
             int a = pick(rng, n), b = pick(rng, n);
             SpatialGraphPoint p = randomInteriorPoint(g, rng, 3, 1);
             SpatialGraphPoint q = randomInteriorPoint(g, rng, 3, 1);
             switch (pick(rng, 3)) {
                 case 0:  // two vertices
                     if (a == b) {
                         return nullptr;
                     }
                     ends.selectVertex(a);
                     ends.selectVertex(b);
                     from = g.getVertexCoords(std::min(a, b));
                     to = g.getVertexCoords(std::max(a, b));
                     break;
                 case 1:  // a point made a vertex and a new one at the start position
                     if (p.edgeNum < 0) {
                         return nullptr;
                     }
                     ends.selectPoint(p);
                     from = g.getEdgePoint(p.edgeNum, p.pointNum);
                     to = start;
                     break;
                 default:  // two points on different edges
                     if (p.edgeNum < 0 || q.edgeNum < 0 || p.edgeNum == q.edgeNum) {
                         return nullptr;
                     }
                     ends.selectPoint(p);
                     ends.selectPoint(q);
                     from = g.getEdgePoint(p.edgeNum, p.pointNum);
                     to = g.getEdgePoint(q.edgeNum, q.pointNum);
             }
             DArray<Vec3f> points = randomPolyline(rng, from, to, 2 + pick(rng, 4));
             DArray<float> radii(pick(rng, points.size() + 2), 0.5f);
             return std::make_unique<AddTracedEdgeOperationSet>(&g, start, points, radii, ends,
                                                                randomSelection(g, rng, 0.5));
         }},
        {"AddVertexAndConnectOperationSet",
         [](KxSpatialGraph& g, Rng& rng) -> std::unique_ptr<Operation> {
             if (g.getNumVertices() == 0) {
                 return nullptr;
             }
             SpatialGraphSelection from(&g);
             Vec3f position = randomPoint(rng);
             DArray<Vec3f> points;
             SpatialGraphPoint p = randomInteriorPoint(g, rng, 3, 1);
             if (chance(rng, 0.5) || p.edgeNum < 0) {
                 int v = pick(rng, g.getNumVertices());
                 from.selectVertex(v);
                 points = randomPolyline(rng, g.getVertexCoords(v), position, 2 + pick(rng, 4));
             } else {
                 // The new vertex is added before the point becomes one, so it is the source.
                 from.selectPoint(p);
                 points =
                     randomPolyline(rng, position, g.getEdgePoint(p.edgeNum, p.pointNum), 2 + pick(rng, 4));
             }
             DArray<float> radii(points.size(), 1.5f);
             return std::make_unique<AddVertexAndConnectOperationSet>(&g, position, &points, &radii, from,
                                                                      randomSelection(g, rng, 0.5));
         }},
        {"SplitEdgeWithNewVertexAndConnectOperationSet",
         [](KxSpatialGraph& g, Rng& rng) -> std::unique_ptr<Operation> {
             SpatialGraphPoint at = randomInteriorPoint(g, rng, 2, 0);
             if (at.edgeNum < 0) {
                 return nullptr;
             }
             Vec3f position = randomPoint(rng);
             SpatialGraphSelection from(&g);
             int v = pick(rng, g.getNumVertices());
             from.selectVertex(v);
             DArray<Vec3f> points = randomPolyline(rng, g.getVertexCoords(v), position, 2 + pick(rng, 4));
             return std::make_unique<SplitEdgeWithNewVertexAndConnectOperationSet>(
                 &g, position, at.edgeNum, at.pointNum, &points, nullptr, from, randomSelection(g, rng, 0.5));
         }},
        {"MoveVertexOperationSet",
         [](KxSpatialGraph& g, Rng& rng) -> std::unique_ptr<Operation> {
             // The vertex's edges get new polylines that end at its new position.
             if (g.getNumVertices() == 0) {
                 return nullptr;
             }
             int v = pick(rng, g.getNumVertices());
             Vec3f position = randomPoint(rng);
             SmallArray<int, 2> edges;
             DArray<DArray<Vec3f>> polylines;
             const KxSpatialGraph::IncidenceList& incident = g.getIncidentEdges(v);
             for (int i = 0; i < incident.size(); ++i) {
                 int e = incident[i];
                 if (std::find(incident.begin(), incident.begin() + i, e) != incident.begin() + i) {
                     continue;  // a self-loop is listed twice
                 }
                 int s = g.getEdgeSource(e), t = g.getEdgeTarget(e);
                 edges.append(e);
                 polylines.append(randomPolyline(rng, s == v ? position : g.getVertexCoords(s),
                                                 t == v ? position : g.getVertexCoords(t), 2 + pick(rng, 4)));
             }
             return std::make_unique<MoveVertexOperationSet>(&g, v, position, edges, polylines,
                                                             randomSelection(g, rng, 0.3),
                                                             randomSelection(g, rng, 0.5));
         }},
        {"ConnectPointToVertexOperationSet",
         [](KxSpatialGraph& g, Rng& rng) -> std::unique_ptr<Operation> {
             SpatialGraphPoint p = randomInteriorPoint(g, rng, 3, 1);
             if (p.edgeNum < 0) {
                 return nullptr;
             }
             SpatialGraphSelection ends(&g);
             ends.selectVertex(pick(rng, g.getNumVertices()));
             ends.selectPoint(p);
             auto op =
                 std::make_unique<ConnectPointToVertexOperationSet>(&g, ends, randomSelection(g, rng, 0.5));
             op->setRemoveIntermediateVertices(chance(rng, 0.5));
             return op;
         }},
        {"ConnectPointToPointOperationSet",
         [](KxSpatialGraph& g, Rng& rng) -> std::unique_ptr<Operation> {
             SpatialGraphPoint p = randomInteriorPoint(g, rng, 3, 1);
             SpatialGraphPoint q = randomInteriorPoint(g, rng, 3, 1);
             if (p.edgeNum < 0 || q.edgeNum < 0 || p.edgeNum == q.edgeNum) {
                 return nullptr;
             }
             DArray<Vec3f> points = randomPolyline(rng, g.getEdgePoint(p.edgeNum, p.pointNum),
                                                   g.getEdgePoint(q.edgeNum, q.pointNum), 2 + pick(rng, 4));
             // The second point is named as the first conversion leaves the graph.
             SpatialGraphPoint second(q.edgeNum > p.edgeNum ? q.edgeNum - 1 : q.edgeNum, q.pointNum);
             SpatialGraphSelection first(&g);
             first.selectPoint(p);
             return std::make_unique<ConnectPointToPointOperationSet>(&g, &second, &points, nullptr, first,
                                                                      randomSelection(g, rng, 0.5));
         }},
    };
    return makers;
}

struct Done {
    std::unique_ptr<Operation> op;
    GraphSnapshot before;
    std::string name;
};

// Runs steps random steps on random graphs: mostly new operations (exec, undo,
// redo), sometimes an undo from the stack, which is unwound when it grows.
void runSeed(unsigned seed, int steps) {
    Rng rng(seed);
    std::unique_ptr<KxSpatialGraph> g = randomGraph(rng);
    std::vector<Done> stack;
    KxMessageCapture capture;
    for (int step = 0; step < steps; ++step) {
        SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
        if (!stack.empty() && (chance(rng, 0.25) || stack.size() > 30 || g->getNumEdges() > 40)) {
            Done& last = stack.back();
            SCOPED_TRACE("undo of " + last.name);
            last.op->undo();
            ASSERT_TRUE(sameGraph(last.before, *g));
            stack.pop_back();
            continue;
        }
        if (stack.empty() && chance(rng, 0.05)) {
            g = randomGraph(rng);
        }
        // Only adding a vertex works on a graph without vertices.
        int row = g->getNumVertices() == 0 ? 0 : pick(rng, static_cast<int>(operationMakers().size()));
        const OperationMaker& maker = operationMakers()[row];
        SCOPED_TRACE(maker.name);
        std::unique_ptr<Operation> op = maker.make(*g, rng);
        if (!op) {
            continue;
        }
        GraphSnapshot before = takeSnapshot(*g);
        op->exec();
        ASSERT_TRUE(graphIsConsistent(*g));
        GraphSnapshot after = takeSnapshot(*g);
        op->undo();
        ASSERT_TRUE(sameGraph(before, *g));
        op->exec();
        ASSERT_TRUE(sameGraph(after, *g));
        ASSERT_EQ(capture.numErrors(), 0) << capture.text();
        stack.push_back({std::move(op), std::move(before), maker.name});
    }
    while (!stack.empty()) {
        stack.back().op->undo();
        ASSERT_TRUE(sameGraph(stack.back().before, *g));
        stack.pop_back();
    }
}

}  // namespace

TEST(OperationModelTest, UndoAndRedoRestoreTheGraphExactly) {
    int seeds = 10;
    if (const char* env = std::getenv("KORVA_MODEL_SEEDS")) {
        seeds = std::max(1, std::atoi(env));
    }
    for (int s = 0; s < seeds; ++s) {
        runSeed(1000u + static_cast<unsigned>(s), 400);
        if (HasFatalFailure()) {
            return;
        }
    }
}
