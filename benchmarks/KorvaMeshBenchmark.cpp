// Save and load throughput of KorvaMesh graph files in the binary and the
// ASCII encoding, for two shapes:
//  - chain: 100 000 edges of 100 points (10 M points), two point attributes;
//  - segments: 1 M separate edges of 10 points (2 M vertices), one float
//    point attribute: the vessel networks users load, ~196 MB binary.
// Each file's throughput is reported next to the time `cat FILE > /dev/null`
// takes for it, i.e. reading it from the page cache. Goals: binary load
// >= 1 GB/s, ASCII load >= 300 MB/s for the segments (>= 100 MB/s for the
// chain); isConsistent() on the loaded segments < 50 ms; `korva info` of the
// binary segments file peaks at no more than the file plus the graph.
//
// Run briefly in a Release build, e.g.
//   build/release/bin/KorvaMeshBenchmark --benchmark_min_time=0.1
#include <malloc.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "kxspatialgraph/formats/SpatialGraphKorvaMesh.h"
#include "KorvaBeside.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

enum Shape { kChain = 0, kSegments = 1 };
const char* const kShapeNames[] = {"chain", "segments"};

constexpr int kChainEdges = 100000;
constexpr int kChainPointsPerEdge = 100;
constexpr int kSegmentEdges = 1000000;
constexpr int kSegmentPointsPerEdge = 10;

std::unique_ptr<KxSpatialGraph> makeChain() {
    auto g = std::make_unique<KxSpatialGraph>();
    g->setSizeHint(kChainEdges + 1, kChainEdges, kChainEdges * kChainPointsPerEdge);
    DArray<Vec3f> points(kChainPointsPerEdge);
    g->addVertex(Vec3f(0, 0, 0));
    for (int e = 0; e < kChainEdges; ++e) {
        for (int p = 0; p < kChainPointsPerEdge; ++p) {
            float t = e + p / float(kChainPointsPerEdge - 1);
            points[p] = Vec3f(t, 1e-4f * p * (kChainPointsPerEdge - 1 - p) * (e % 7), 0.37f * (p % 11));
        }
        g->addVertex(points.last());
        g->addEdge(e, e + 1, points);
    }
    auto* thickness = static_cast<PointAttribute*>(
        g->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
    auto* label =
        static_cast<PointAttribute*>(g->addAttribute("Label", KxSpatialGraph::POINT, PrimType::INT32, 1));
    for (int e = 0; e < kChainEdges; ++e) {
        for (int p = 0; p < kChainPointsPerEdge; ++p) {
            thickness->setFloatDataAtPoint(0.5f + 0.01f * p, e, p);
            label->setIntDataAtPoint(e, p, e % 13);
        }
    }
    return g;
}

// Short straight segments on a grid, each with its own two end vertices.
std::unique_ptr<KxSpatialGraph> makeSegments() {
    auto g = std::make_unique<KxSpatialGraph>();
    g->setSizeHint(2 * kSegmentEdges, kSegmentEdges, kSegmentEdges * kSegmentPointsPerEdge);
    DArray<Vec3f> points(kSegmentPointsPerEdge);
    for (int e = 0; e < kSegmentEdges; ++e) {
        const int layer = e / 10000;
        Vec3f start(static_cast<float>(e % 100), static_cast<float>(e / 100 % 100),
                    static_cast<float>(layer));
        for (int p = 0; p < kSegmentPointsPerEdge; ++p) {
            points[p] = start + Vec3f(0.05f * p, 0.03f * p * (e % 3), 0.01f * p);
        }
        int s = g->addVertex(points[0]);
        int t = g->addVertex(points.last());
        g->addEdge(s, t, points);
    }
    auto* radius = static_cast<PointAttribute*>(
        g->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
    for (int e = 0; e < kSegmentEdges; ++e) {
        for (int p = 0; p < kSegmentPointsPerEdge; ++p) {
            radius->setFloatDataAtPoint(0.2f + 0.01f * p + 0.001f * (e % 17), e, p);
        }
    }
    return g;
}

KxSpatialGraph& graphOf(int shape) {
    static std::unique_ptr<KxSpatialGraph> graphs[2];
    std::unique_ptr<KxSpatialGraph>& g = graphs[shape];
    if (!g) {
        g = shape == kChain ? makeChain() : makeSegments();
    }
    return *g;
}

int numPointsOf(int shape) {
    return shape == kChain ? kChainEdges * kChainPointsPerEdge : kSegmentEdges * kSegmentPointsPerEdge;
}

KxSpatialGraph::KorvaMeshEncoding encodingOf(bool ascii) {
    return ascii ? KxSpatialGraph::KorvaMeshEncoding::Ascii : KxSpatialGraph::KorvaMeshEncoding::Binary;
}

std::string fileFor(bool ascii, int shape) {
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/korvamesh-bench-" + kShapeNames[shape] +
           (ascii ? "-ascii.kxm" : ".kxm");
}

int64_t fileSize(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 ? st.st_size : 0;
}

// Writes each file once, so that the load and cat benchmarks can run alone.
const std::string& ensureFile(bool ascii, int shape) {
    static std::string paths[2][2];
    std::string& path = paths[ascii][shape];
    if (path.empty()) {
        path = fileFor(ascii, shape);
        graphOf(shape).saveKorvaMesh(path.c_str(), encodingOf(ascii));
    }
    return path;
}

bool isAscii(const benchmark::State& state) {
    return state.range(0) != 0;
}
int shapeOf(const benchmark::State& state) {
    return static_cast<int>(state.range(1));
}

void BM_Save(benchmark::State& state) {
    KxSpatialGraph& g = graphOf(shapeOf(state));
    const std::string path = fileFor(isAscii(state), shapeOf(state));
    for (auto _ : state) {
        if (!g.saveKorvaMesh(path.c_str(), encodingOf(isAscii(state)))) {
            state.SkipWithError("save failed");
        }
    }
    state.SetBytesProcessed(state.iterations() * fileSize(path));
    state.counters["file_MB"] = fileSize(path) / 1e6;
}

std::unique_ptr<KxSpatialGraph> loadGraph(const std::string& path) {
    std::unique_ptr<KorvaMesh> mesh = KorvaMesh::read(path.c_str());
    return std::unique_ptr<KxSpatialGraph>(mesh ? readKorvaMeshToSpatialGraph(*mesh, path.c_str()) : nullptr);
}

void BM_LoadGraph(benchmark::State& state) {
    const std::string& path = ensureFile(isAscii(state), shapeOf(state));
    for (auto _ : state) {
        std::unique_ptr<KxSpatialGraph> g = loadGraph(path);
        if (!g || g->getTotalNumEdgePoints() != numPointsOf(shapeOf(state))) {
            state.SkipWithError("load failed");
        }
    }
    state.SetBytesProcessed(state.iterations() * fileSize(path));
    const bool chainAscii = isAscii(state) && shapeOf(state) == kChain;
    state.SetLabel(!isAscii(state) ? "goal: >= 1 GB/s"
                   : chainAscii    ? "goal: >= 100 MB/s"
                                   : "goal: >= 300 MB/s");
}

// The KorvaMesh library alone: file to mesh, without building the graph.
void BM_ReadMesh(benchmark::State& state) {
    const std::string& path = ensureFile(isAscii(state), shapeOf(state));
    for (auto _ : state) {
        std::unique_ptr<KorvaMesh> mesh = KorvaMesh::read(path.c_str());
        if (!mesh) {
            state.SkipWithError("read failed");
        }
        benchmark::DoNotOptimize(mesh.get());
    }
    state.SetBytesProcessed(state.iterations() * fileSize(path));
}

void BM_Cat(benchmark::State& state) {
    const std::string& path = ensureFile(isAscii(state), shapeOf(state));
    const std::string command = "cat '" + path + "' > /dev/null";
    for (auto _ : state) {
        if (std::system(command.c_str()) != 0) {
            state.SkipWithError("cat failed");
        }
    }
    state.SetBytesProcessed(state.iterations() * fileSize(path));
}

// The check every reader runs after loading, on the loaded segments.
void BM_IsConsistentAfterLoad(benchmark::State& state) {
    std::unique_ptr<KxSpatialGraph> g = loadGraph(ensureFile(false, kSegments));
    bool ok = false;
    for (auto _ : state) {
        ok = g && g->isConsistent();
        benchmark::DoNotOptimize(ok);
    }
    state.SetLabel(ok ? "goal: < 50 ms" : "inconsistent graph");
}

size_t allocatedBytes() {
    struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// Peak resident memory (kB) of `korva info path` as /usr/bin/time reports
// it, or -1 if it could not run. Deliberate: not measured with wait4() on a
// child of this process, because a child started from this large process
// inherits its peak.
long peakOfKorvaInfo(const std::string& korva, const std::string& path) {
    const std::string report = path + ".peak";
    const std::string command =
        "/usr/bin/time -f %M -o '" + report + "' '" + korva + "' info '" + path + "' > /dev/null 2>&1";
    long peakKb = -1;
    if (std::system(command.c_str()) == 0) {
        std::ifstream in(report);
        in >> peakKb;
    }
    std::remove(report.c_str());
    return peakKb;
}

// A one-edge graph file: what `korva info` needs without a large graph.
const std::string& tinyFile() {
    static std::string path;
    if (path.empty()) {
        const char* dir = std::getenv("TMPDIR");
        path = std::string(dir && *dir ? dir : "/tmp") + "/korvamesh-bench-tiny.kxm";
        KxSpatialGraph g;
        g.addEdge(g.addVertex(Vec3f(0, 0, 0)), g.addVertex(Vec3f(1, 0, 0)));
        g.saveKorvaMesh(path.c_str());
    }
    return path;
}

// Peak memory of `korva info` on the binary segments file, less the peak of
// `korva info` on a one-edge file (the program and its libraries), against
// the file plus the graph it becomes (the graph's heap bytes, measured here by
// loading it once).
void BM_InfoPeakMemory(benchmark::State& state) {
    const std::string& path = ensureFile(false, kSegments);
    const std::string korva = korvaBeside();
    const long baseKb = peakOfKorvaInfo(korva, tinyFile());
    size_t before = allocatedBytes();
    std::unique_ptr<KxSpatialGraph> g = loadGraph(path);
    const double graphBytes = static_cast<double>(allocatedBytes() - before);
    g.reset();
    long peakKb = -1;
    for (auto _ : state) {
        peakKb = peakOfKorvaInfo(korva, path);
    }
    if (peakKb < 0 || baseKb < 0) {
        state.SkipWithError("korva info failed (needs /usr/bin/time and korva beside this program)");
        return;
    }
    const double peak = (peakKb - baseKb) * 1024.0;
    state.counters["program_MB"] = baseKb * 1024.0 / 1e6;
    state.counters["peak_MB"] = peak / 1e6;
    state.counters["file_MB"] = fileSize(path) / 1e6;
    state.counters["graph_MB"] = graphBytes / 1e6;
    state.counters["peakOverFileAndGraph"] = peak / (static_cast<double>(fileSize(path)) + graphBytes);
    state.SetLabel("goal: peakOverFileAndGraph <= 1");
}

void encodingsAndShapes(benchmark::internal::Benchmark* b) {
    b->ArgNames({"ascii", "segments"})->ArgsProduct({{0, 1}, {kChain, kSegments}});
    b->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK(BM_Save)->Apply(encodingsAndShapes);
BENCHMARK(BM_Cat)->Apply(encodingsAndShapes);
BENCHMARK(BM_ReadMesh)->Apply(encodingsAndShapes);
BENCHMARK(BM_LoadGraph)->Apply(encodingsAndShapes);
BENCHMARK(BM_IsConsistentAfterLoad)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(BM_InfoPeakMemory)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

}  // namespace
