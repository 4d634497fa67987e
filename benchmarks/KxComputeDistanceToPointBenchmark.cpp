// Distance along the graph over one component of ten million edge points
// (100 000 edges of 100 points in a chain, reference in the middle).
// Goal: under 5 s, the same bound as the other passes over 10 M points.

#include <vector>

#include <benchmark/benchmark.h>

#include "kxspatialgraph/analysis/KxComputeDistanceToPoint.h"
#include "LongChain.h"

namespace {

void distanceToPoint(benchmark::State& state) {
    const int numEdges = static_cast<int>(state.range(0));
    auto g = makeLongChain(numEdges, 100);
    std::vector<float> values(static_cast<size_t>(g->getTotalNumEdgePoints()));
    for (auto _ : state) {
        KxComputeDistanceToPoint::computeDistances(g.get(), numEdges / 2, 50, values.data());
        benchmark::DoNotOptimize(values.data());
    }
    state.SetLabel("goal: < 5 s for 10 M points");
    state.counters["points/s"] =
        benchmark::Counter(static_cast<double>(values.size()), benchmark::Counter::kIsIterationInvariantRate);
}

}  // namespace

BENCHMARK(distanceToPoint)->Arg(100000)->Unit(benchmark::kMillisecond);
