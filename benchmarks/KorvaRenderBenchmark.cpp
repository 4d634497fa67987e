// `korva render` end to end (load, build the scene, draw offscreen on the
// software renderer, write the PNG) of a graph of 1 M edge points: 100 000
// random walks of 10 points in a cube, no thickness attribute, at 800×600.
// Time and peak memory come from /usr/bin/time around the korva program
// beside this one, once with the GPU tubes and once with the legacy tubes
// (KORVA_LEGACY_TUBES=1). Goals: GPU tubes under 4 s and 600 MB peak; legacy
// tubes within 2× of that (under 8 s and 1200 MB).
//
// Run in a Release build when the machine is quiet, e.g.
//   build/release/bin/KorvaRenderBenchmark

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include "KorvaBeside.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace {

constexpr int kEdges = 100000;
constexpr int kPointsPerEdge = 10;

std::string tempPath(const char* name) {
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/" + name;
}

const std::string& graphFile() {
    static std::string path;
    if (path.empty()) {
        path = tempPath("korva-render-bench.kxm");
        KxSpatialGraph g;
        g.setSizeHint(2 * kEdges, kEdges, kEdges * kPointsPerEdge);
        std::mt19937 random(11);
        std::uniform_real_distribution<float> start(0.0f, 1000.0f), step(-2.0f, 2.0f);
        DArray<Vec3f> points(kPointsPerEdge);
        for (int e = 0; e < kEdges; ++e) {
            Vec3f p(start(random), start(random), start(random));
            for (int i = 0; i < kPointsPerEdge; ++i) {
                points[i] = p;
                p += Vec3f(step(random), step(random), step(random));
            }
            g.addEdge(g.addVertex(points[0]), g.addVertex(points.last()), points);
        }
        g.saveKorvaMesh(path.c_str());
    }
    return path;
}

struct RenderRun {
    bool ok = false;
    double seconds = 0;
    double peakMB = 0;
};

// One `korva render` of the graph, timed from here; its peak as /usr/bin/time
// reports it.
RenderRun renderOnce(bool legacy) {
    const std::string report =
        tempPath(legacy ? "korva-render-bench-legacy.peak" : "korva-render-bench.peak");
    const std::string image = tempPath("korva-render-bench.png");
    const std::string command = std::string("KORVA_LEGACY_TUBES=") + (legacy ? "1" : "0") +
                                " /usr/bin/time -f %M -o '" + report + "' '" + korvaBeside() + "' render '" +
                                graphFile() + "' '" + image + "' > /dev/null 2>&1";
    RenderRun run;
    auto start = std::chrono::steady_clock::now();
    run.ok = std::system(command.c_str()) == 0;
    run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    long peakKb = -1;
    std::ifstream in(report);
    in >> peakKb;
    run.peakMB = peakKb * 1024.0 / 1e6;
    std::remove(report.c_str());
    std::remove(image.c_str());
    run.ok = run.ok && peakKb > 0;
    return run;
}

// Each mode renders once; its time and its peak are two rows, each with its goal.
const RenderRun& runOf(bool legacy) {
    static RenderRun runs[2];
    static bool done[2] = {false, false};
    if (!done[legacy]) {
        runs[legacy] = renderOnce(legacy);
        done[legacy] = true;
    }
    return runs[legacy];
}

void BM_RenderTime(benchmark::State& state) {
    const bool legacy = state.range(0) != 0;
    graphFile();
    for (auto _ : state) {
        const RenderRun& run = runOf(legacy);
        if (!run.ok) {
            state.SkipWithError("korva render failed (needs /usr/bin/time and korva beside this program)");
            return;
        }
        state.SetIterationTime(run.seconds);
    }
    state.SetLabel(legacy ? "legacy tubes; goal: < 8 s" : "goal: < 4 s");
}

void BM_RenderPeakMemory(benchmark::State& state) {
    const bool legacy = state.range(0) != 0;
    graphFile();
    for (auto _ : state) {
        if (!runOf(legacy).ok) {
            state.SkipWithError("korva render failed (needs /usr/bin/time and korva beside this program)");
            return;
        }
    }
    state.counters["peak_MB"] = runOf(legacy).peakMB;
    state.SetLabel(legacy ? "legacy tubes; goal: peak_MB <= 1200" : "goal: peak_MB <= 600");
}

BENCHMARK(BM_RenderTime)
    ->ArgName("legacy")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RenderPeakMemory)
    ->ArgName("legacy")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
