// Editing and traversal on graphs of a million edges: deleting and restoring
// a tenth of the edges, listing components, and the searches along a chain
// that a recursive search could not survive.

#include <memory>

#include <benchmark/benchmark.h>

#include "LongChain.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/operations/DeleteOperation.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"

namespace {

const int kNumEdges = 1000000;
const int kPointsPerEdge = 10;

// The long chain with its end points moved onto the vertices, so that the
// consistency checks the deletion runs find nothing to print.
std::unique_ptr<KxSpatialGraph> consistentChain(int pointsPerEdge) {
    auto g = makeLongChain(kNumEdges, pointsPerEdge);
    for (int e = 0; e < g->getNumEdges(); ++e) {
        g->setEdgePoint(e, 0, g->getVertexCoords(e));
        g->setEdgePoint(e, pointsPerEdge - 1, g->getVertexCoords(e + 1));
    }
    return g;
}

// The chain with one attribute per location, as a traced graph has.
std::unique_ptr<KxSpatialGraph> chainWithAttributes() {
    auto g = consistentChain(kPointsPerEdge);
    g->addAttribute("Radius", KxSpatialGraph::VERTEX, PrimType::FLOAT32, 1);
    auto* ranks =
        static_cast<EdgeVertexAttribute*>(g->addAttribute("Ranks", KxSpatialGraph::EDGE, PrimType::INT32, 1));
    for (int e = 0; e < g->getNumEdges(); ++e) {
        ranks->setIntDataAtIdx(e, e + 1);
    }
    g->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1);
    return g;
}

// Goal: exec + undo of a delete of 10 % of the edges (every tenth, with the
// vertices they leave isolated) under 1 s.
void BM_DeleteTenthOfEdgesExecUndo(benchmark::State& state) {
    auto g = chainWithAttributes();
    SpatialGraphSelection highlighted(g.get());
    for (int e = 0; e < kNumEdges; e += 10) {
        highlighted.selectEdge(e);
    }
    highlighted.selectVertex(0);
    SpatialGraphSelection visible(g.get());
    visible.selectAllVerticesAndEdges();
    for (auto _ : state) {
        DeleteOperation op(g.get(), highlighted, visible);
        op.exec();
        benchmark::DoNotOptimize(op.getVisibleSelectionAfterOperation().getNumEdges());
        op.undo();
    }
    state.counters["edges"] = g->getNumEdges();
    state.SetLabel("goal: < 1000 ms");
}
BENCHMARK(BM_DeleteTenthOfEdgesExecUndo)->Unit(benchmark::kMillisecond)->Iterations(3);

// Goal: all components of a 1 M-edge graph of 100 chains under 500 ms.
void BM_AllConnectedComponents(benchmark::State& state) {
    auto g = consistentChain(2);
    DArray<int> cuts;
    for (int e = 0; e < kNumEdges; e += kNumEdges / 100) {
        cuts.append(e);
    }
    g->removeMultipleEdges(cuts);
    SpatialGraphSelection all(g.get());
    all.selectAllVerticesAndEdges();
    int found = 0;
    for (auto _ : state) {
        found = g->getAllConnectedComponents(all).size();
    }
    state.counters["components"] = found;
    state.SetLabel("goal: < 500 ms");
}
BENCHMARK(BM_AllConnectedComponents)->Unit(benchmark::kMillisecond)->Iterations(3);

// Goal for each search along a 1 M-edge chain: under 200 ms, no stack overflow.
void BM_DepthFirstSearchChain(benchmark::State& state) {
    auto g = consistentChain(2);
    for (auto _ : state) {
        benchmark::DoNotOptimize(g->getConnectedComponent(0).getNumSelectedEdges());
    }
    state.SetLabel("goal: < 200 ms");
}
BENCHMARK(BM_DepthFirstSearchChain)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_RankGuidedSearchChain(benchmark::State& state) {
    auto g = chainWithAttributes();
    for (auto _ : state) {
        benchmark::DoNotOptimize(g->getSubTreeByVertex(0, false).getNumSelectedEdges());
    }
    state.SetLabel("goal: < 200 ms");
}
BENCHMARK(BM_RankGuidedSearchChain)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ShortestPathChain(benchmark::State& state) {
    auto g = consistentChain(2);
    for (auto _ : state) {
        benchmark::DoNotOptimize(g->getShortestPath(0, kNumEdges).getNumSelectedEdges());
    }
    state.SetLabel("goal: < 200 ms");
}
BENCHMARK(BM_ShortestPathChain)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
