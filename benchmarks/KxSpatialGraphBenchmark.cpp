// Bulk paths of the graph store: building a large graph, removing and
// re-inserting a share of its edges in one pass, and the memory a built graph
// holds per edge point.

#include <malloc.h>

#include <memory>

#include <benchmark/benchmark.h>

#include "korva/base/TypedData2D.h"
#include "LongChain.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace {

const int kPointsPerEdge = 10;

std::unique_ptr<KxSpatialGraph> buildGraph(int numEdges, bool sizeHint = true) {
    return makeLongChain(numEdges, kPointsPerEdge, sizeHint);
}

// Every k-th edge, k chosen so that about percent % of the edges are listed.
DArray<int> spreadEdges(int numEdges, int percent) {
    DArray<int> edges;
    int step = 100 / percent;
    for (int e = 0; e < numEdges; e += step) {
        edges.append(e);
    }
    return edges;
}

size_t allocatedBytes() {
    struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

void BM_BuildGraph(benchmark::State& state) {
    int numEdges = static_cast<int>(state.range(0));
    for (auto _ : state) {
        auto g = buildGraph(numEdges);
        benchmark::DoNotOptimize(g->getTotalNumEdgePoints());
    }
    state.SetItemsProcessed(state.iterations() * numEdges * kPointsPerEdge);
}
BENCHMARK(BM_BuildGraph)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(3);

// Args: edge count, percent removed. Time must follow the graph size, not
// count x size: one compaction pass whatever the percentage.
void BM_RemoveMultipleEdges(benchmark::State& state) {
    int numEdges = static_cast<int>(state.range(0));
    DArray<int> removed = spreadEdges(numEdges, static_cast<int>(state.range(1)));
    for (auto _ : state) {
        state.PauseTiming();
        auto g = buildGraph(numEdges);
        state.ResumeTiming();
        g->removeMultipleEdges(removed);
        benchmark::DoNotOptimize(g->getNumEdges());
        state.PauseTiming();
        g.reset();
        state.ResumeTiming();
    }
    state.counters["removed"] = removed.size();
}
BENCHMARK(BM_RemoveMultipleEdges)
    ->Args({1000000, 1})
    ->Args({1000000, 10})
    ->Args({1000000, 50})
    ->Args({250000, 10})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

// Removes percent % of the edges (saving their data as an undo would) and
// times putting them back with one insertMultipleEdges.
void BM_InsertMultipleEdges(benchmark::State& state) {
    int numEdges = static_cast<int>(state.range(0));
    DArray<int> edges = spreadEdges(numEdges, static_cast<int>(state.range(1)));
    for (auto _ : state) {
        state.PauseTiming();
        auto g = buildGraph(numEdges);
        DArray<SpatialGraphEdge> ends;
        DArray<DArray<Vec3f>> points;
        for (int e : edges) {
            ends.append(g->getEdge(e));
            points.append(g->getEdgePoints(e));
        }
        g->removeMultipleEdges(edges);
        state.ResumeTiming();
        g->insertMultipleEdges(edges, ends, points, DArray<TypedData2D>(), DArray<int>(),
                               DArray<DArray<TypedData2D>>(), DArray<int>());
        benchmark::DoNotOptimize(g->getNumEdges());
        state.PauseTiming();
        g.reset();
        state.ResumeTiming();
    }
    state.counters["inserted"] = edges.size();
}
BENCHMARK(BM_InsertMultipleEdges)
    ->Args({1000000, 1})
    ->Args({1000000, 10})
    ->Args({1000000, 50})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

// Bytes the built graph holds, per edge point and relative to the raw
// 12 bytes per point plus 4 bytes per edge offset (goal: ratio <= 1.5).
void BM_GraphMemory(benchmark::State& state) {
    int numEdges = static_cast<int>(state.range(0));
    bool sizeHint = state.range(1) != 0;
    double bytes = 0;
    for (auto _ : state) {
        size_t before = allocatedBytes();
        auto g = buildGraph(numEdges, sizeHint);
        bytes = static_cast<double>(allocatedBytes() - before);
        benchmark::DoNotOptimize(g->getNumEdges());
    }
    double numPoints = static_cast<double>(numEdges) * kPointsPerEdge;
    state.counters["bytesPerPoint"] = bytes / numPoints;
    state.counters["ratioToRaw"] = bytes / (12.0 * numPoints + 4.0 * numEdges);
    state.SetLabel("goal: ratioToRaw <= 1.5");
}
BENCHMARK(BM_GraphMemory)
    ->Args({1000000, 1})
    ->Args({1000000, 0})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

// The consistency check that every reader runs after loading, on a
// consistent chain with one attribute per location (goal: < 50 ms for
// 1 M edges of 10 points).
void BM_IsConsistent(benchmark::State& state) {
    auto g = buildGraph(static_cast<int>(state.range(0)));
    g->addAttribute("VertexValue", KxSpatialGraph::VERTEX, PrimType::INT32, 1);
    g->addAttribute("EdgeValue", KxSpatialGraph::EDGE, PrimType::INT32, 1);
    g->addAttribute("PointValue", KxSpatialGraph::POINT, PrimType::FLOAT32, 1);
    bool ok = false;
    for (auto _ : state) {
        ok = g->isConsistent();
        benchmark::DoNotOptimize(ok);
    }
    state.SetLabel(ok ? "goal: < 50 ms" : "inconsistent graph");
}
BENCHMARK(BM_IsConsistent)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
