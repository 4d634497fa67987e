// Throughput of the morphology formats on a generated tree of 1 million SWC
// points (a branch about every 50 points, types 1 to 4, varying radii):
// SWC import (text in memory to a consistent graph), SWC export and
// Neurolucida export (graph to text in memory). Goal: SWC import >= 240 MB/s.
//
// Run briefly in a Release build, e.g.
//   build/test/bin/MorphologyFormatsBenchmark --benchmark_min_time=0.1
#include <memory>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/formats/SpatialGraphNeurolucida.h"
#include "kxspatialgraph/formats/SpatialGraphSWC.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/MorphologyGenerators.h"

namespace {

const std::string& treeText() {
    static const std::string text = MorphologyGenerators::branchingTree(1000000, 50);
    return text;
}

const KxSpatialGraph& tree() {
    static std::unique_ptr<KxSpatialGraph> graph(readSWC(treeText().data(), treeText().size(), "tree.swc"));
    return *graph;
}

void BM_SWCImport(benchmark::State& state) {
    const std::string& text = treeText();
    KxMessageCapture capture;
    for (auto _ : state) {
        std::unique_ptr<KxSpatialGraph> graph(readSWC(text.data(), text.size(), "tree.swc"));
        benchmark::DoNotOptimize(graph.get());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
    state.SetLabel("goal: >= 240 MB/s");
}

template <class Write>
void measureExport(benchmark::State& state, Write write) {
    const KxSpatialGraph& graph = tree();
    KxMessageCapture capture;
    size_t bytes = 0;
    for (auto _ : state) {
        std::ostringstream out;
        write(graph.getSpatialGraphInterface(), out);
        bytes += out.str().size();
    }
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
}

void BM_SWCExport(benchmark::State& state) {
    measureExport(state, [](const KxSpatialGraphInterface* g, std::ostream& out) { writeSWC(g, out); });
}

void BM_NeurolucidaExport(benchmark::State& state) {
    measureExport(state, SpatialGraph2Neurolucida);
}

BENCHMARK(BM_SWCImport)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SWCExport)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_NeurolucidaExport)->Unit(benchmark::kMillisecond);

}  // namespace
