// Save and load throughput of KorvaMesh graph files: a graph of 10 million
// edge points (100 000 edges of 100 points) with two point attributes, in the
// binary and the ASCII encoding. Each file's throughput is reported next to
// the time `cat FILE > /dev/null` takes for it, i.e. reading it from the page
// cache. Goals: binary load >= 1 GB/s, ASCII load >= 100 MB/s.
//
// Run briefly in a Release build, e.g.
//   build-release/bin/KorvaMeshBenchmark --benchmark_min_time=0.1
#include <sys/stat.h>

#include <cstdlib>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/korvamesh/KorvaMesh.h"
#include "kxspatialgraph/formats/SpatialGraphKorvaMesh.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

constexpr int kEdges = 100000;
constexpr int kPointsPerEdge = 100;

const KxSpatialGraph& bigGraph() {
    static std::unique_ptr<KxSpatialGraph> graph = [] {
        auto g = std::make_unique<KxSpatialGraph>();
        g->setSizeHint(kEdges + 1, kEdges, kEdges * kPointsPerEdge);
        DArray<Vec3f> points(kPointsPerEdge);
        g->addVertex(Vec3f(0, 0, 0));
        for (int e = 0; e < kEdges; ++e) {
            for (int p = 0; p < kPointsPerEdge; ++p) {
                float t = e + p / float(kPointsPerEdge - 1);
                points[p] = Vec3f(t, 1e-4f * p * (kPointsPerEdge - 1 - p) * (e % 7), 0.37f * (p % 11));
            }
            g->addVertex(points.last());
            g->addEdge(e, e + 1, points);
        }
        auto* thickness = static_cast<PointAttribute*>(
            g->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
        auto* label =
            static_cast<PointAttribute*>(g->addAttribute("Label", KxSpatialGraph::POINT, PrimType::INT32, 1));
        for (int e = 0; e < kEdges; ++e) {
            for (int p = 0; p < kPointsPerEdge; ++p) {
                thickness->setFloatDataAtPoint(0.5f + 0.01f * p, e, p);
                label->setIntDataAtPoint(e, p, e % 13);
            }
        }
        return g;
    }();
    return *graph;
}

std::string fileFor(bool ascii) {
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") +
           (ascii ? "/korvamesh-bench-ascii.kxm" : "/korvamesh-bench.kxm");
}

int64_t fileSize(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 ? st.st_size : 0;
}

// Writes the file once, so that the load and cat benchmarks can run alone.
const std::string& ensureFile(bool ascii) {
    static std::string paths[2];
    std::string& path = paths[ascii];
    if (path.empty()) {
        path = fileFor(ascii);
        const_cast<KxSpatialGraph&>(bigGraph())
            .saveKorvaMesh(path.c_str(), (ascii ? KxSpatialGraph::KorvaMeshEncoding::Ascii
                                                : KxSpatialGraph::KorvaMeshEncoding::Binary));
    }
    return path;
}

void BM_Save(benchmark::State& state) {
    const bool ascii = state.range(0) != 0;
    KxSpatialGraph& g = const_cast<KxSpatialGraph&>(bigGraph());
    const std::string path = fileFor(ascii);
    for (auto _ : state) {
        if (!g.saveKorvaMesh(path.c_str(), (ascii ? KxSpatialGraph::KorvaMeshEncoding::Ascii
                                                  : KxSpatialGraph::KorvaMeshEncoding::Binary))) {
            state.SkipWithError("save failed");
        }
    }
    state.SetBytesProcessed(state.iterations() * fileSize(path));
    state.counters["file_MB"] = fileSize(path) / 1e6;
}

void BM_LoadGraph(benchmark::State& state) {
    const std::string& path = ensureFile(state.range(0) != 0);
    for (auto _ : state) {
        std::unique_ptr<KorvaMesh> mesh = KorvaMesh::read(path.c_str());
        std::unique_ptr<KxSpatialGraph> g(mesh ? readKorvaMeshToSpatialGraph(*mesh, path.c_str()) : nullptr);
        if (!g || g->getTotalNumEdgePoints() != kEdges * kPointsPerEdge) {
            state.SkipWithError("load failed");
        }
    }
    state.SetBytesProcessed(state.iterations() * fileSize(path));
}

// The KorvaMesh library alone: file to mesh, without building the graph.
void BM_ReadMesh(benchmark::State& state) {
    const std::string& path = ensureFile(state.range(0) != 0);
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
    const std::string& path = ensureFile(state.range(0) != 0);
    const std::string command = "cat '" + path + "' > /dev/null";
    for (auto _ : state) {
        if (std::system(command.c_str()) != 0) {
            state.SkipWithError("cat failed");
        }
    }
    state.SetBytesProcessed(state.iterations() * fileSize(path));
}

void encodings(benchmark::internal::Benchmark* b) {
    b->ArgName("ascii")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK(BM_Save)->Apply(encodings);
BENCHMARK(BM_Cat)->Apply(encodings);
BENCHMARK(BM_ReadMesh)->Apply(encodings);
BENCHMARK(BM_LoadGraph)->Apply(encodings);

}  // namespace
