// Tree and loop identification on large generated graphs, and resampling of
// ten million points. Goals: identifyTrees and identifyLoops under 5 s each
// for a million lines, resampling 10 M points under 5 s.

#include <cmath>
#include <memory>

#include <benchmark/benchmark.h>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/analysis/GraphUtils.h"
#include "kxspatialgraph/analysis/SpatialGraphFunctions.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "LongChain.h"

namespace {

// A vessel-like network: a square grid of about numLines lines, every line
// with two vertices of its own, so lines meet only by equal coordinates and
// every grid cell is a loop.
std::unique_ptr<KxSpatialGraph> makeGridNetwork(int numLines) {
    int side = static_cast<int>(std::sqrt(numLines / 2.0)) + 1;
    auto g = std::make_unique<KxSpatialGraph>();
    g->setSizeHint(2 * numLines, numLines, 2 * numLines);
    auto addLine = [&](float x0, float y0, float x1, float y1) {
        int s = g->addVertex(Vec3f(x0, y0, 0));
        int t = g->addVertex(Vec3f(x1, y1, 0));
        g->addEdge(s, t);
    };
    for (int i = 0; g->getNumEdges() < numLines; ++i) {
        const int row = i / side;
        float x = static_cast<float>(i % side), y = static_cast<float>(row);
        addLine(x, y, x + 1, y);
        if (g->getNumEdges() < numLines) {
            addLine(x, y, x, y + 1);
        }
    }
    return g;
}

// A binary tree of numLines lines sharing vertices, branching at every vertex.
std::unique_ptr<KxSpatialGraph> makeBinaryTree(int numLines) {
    auto g = std::make_unique<KxSpatialGraph>();
    g->setSizeHint(numLines + 1, numLines, 2 * numLines);
    g->addVertex(Vec3f(0, 0, 0));
    for (int e = 0; e < numLines; ++e) {
        int parent = e / 2;
        Vec3f c = g->getVertexCoords(parent);
        float depth = std::floor(std::log2(static_cast<float>(e + 2)));
        int v = g->addVertex(c + Vec3f(e % 2 ? 1.0f : -1.0f, 1.0f, 0.0f) *
                                     std::ldexp(1000.0f, -static_cast<int>(depth) / 2));
        g->addEdge(parent, v);
    }
    return g;
}

void identifyTrees(benchmark::State& state, std::unique_ptr<KxSpatialGraph> (*make)(int)) {
    auto g = make(static_cast<int>(state.range(0)));
    KxMessageCapture console;
    DArray<DArray<int>> trees;
    DArray<int> ranks;
    DArray<GraphUtils::LineLocation> locations;
    for (auto _ : state) {
        GraphUtils::identifyTrees(g.get(), trees, ranks, locations);
    }
    state.SetLabel("1 M lines; goal: < 5 s");
    state.counters["trees"] = trees.size();
}

void identifyLoops(benchmark::State& state, std::unique_ptr<KxSpatialGraph> (*make)(int)) {
    auto g = make(static_cast<int>(state.range(0)));
    DArray<DArray<int>> loops;
    DArray<int> loopy;
    for (auto _ : state) {
        GraphUtils::identifyLoops(g.get(), loops, loopy);
    }
    state.SetLabel("1 M lines; goal: < 5 s");
    state.counters["loops"] = loops.size();
}

void BM_ResampleTenMillionPoints(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto g = makeLongChain(1000000, 10);
        state.ResumeTiming();
        SpatialGraphFunctions::resampleWithMaximumPointDistance(g.get(), 0.1f);
        state.counters["points"] = g->getTotalNumEdgePoints();
    }
    state.SetLabel("10 M points; goal: < 5 s");
}

}  // namespace

BENCHMARK_CAPTURE(identifyTrees, grid, makeGridNetwork)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(identifyTrees, tree, makeBinaryTree)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(identifyLoops, grid, makeGridNetwork)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(identifyLoops, chain, [](int n) { return makeLongChain(n, 2); })
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ResampleTenMillionPoints)->Unit(benchmark::kMillisecond)->Iterations(1);
