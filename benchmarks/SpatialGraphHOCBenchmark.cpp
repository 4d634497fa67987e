// HOC import and export throughput on a generated neuron of 1 million
// points: sections of 50 points, each hanging off the end of a random
// earlier one, four section types, varying diameters. Goals: import and
// export >= 50 MB/s each (the text is about 40 MB).
//
// Run briefly in a Release build, e.g.
//   build/test/bin/SpatialGraphHOCBenchmark --benchmark_min_time=0.1
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/formats/SpatialGraphHOC.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/HocTrees.h"

namespace {

const std::string& bigText() {
    static const std::string text = HocTrees::makeRandomTree(1000000, 50);
    return text;
}

std::string exportPath() {
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/hoc-bench.hoc";
}

void setThroughput(benchmark::State& state, size_t bytes) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
    state.SetLabel("goal: >= 50 MB/s");
}

void BM_ImportHOC(benchmark::State& state) {
    const std::string& text = bigText();
    for (auto _ : state) {
        KxMessageCapture quiet;
        std::unique_ptr<KxSpatialGraph> g(loadHOCFromMemory(text.data(), text.size(), "bench.hoc"));
        if (!g || g->getTotalNumEdgePoints() < 990000) {
            state.SkipWithError("import failed");
        }
    }
    setThroughput(state, text.size());
}
BENCHMARK(BM_ImportHOC)->Unit(benchmark::kMillisecond);

void BM_ExportHOC(benchmark::State& state) {
    KxMessageCapture quiet;
    std::unique_ptr<KxSpatialGraph> g(loadHOCFromMemory(bigText().data(), bigText().size(), "bench.hoc"));
    const std::string path = exportPath();
    for (auto _ : state) {
        if (!writeHOC(g->getSpatialGraphInterface(), path.c_str())) {
            state.SkipWithError("export failed");
        }
    }
    struct stat info {};
    stat(path.c_str(), &info);
    std::remove(path.c_str());
    setThroughput(state, static_cast<size_t>(info.st_size));
}
BENCHMARK(BM_ExportHOC)->Unit(benchmark::kMillisecond);

}  // namespace
