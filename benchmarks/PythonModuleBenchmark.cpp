// The Python module's bulk paths, measured inside one process with an
// embedded interpreter that imports the module from the build tree:
// - loading a generated 1 million point SWC file (the tree of
//   MorphologyFormatsBenchmark) through kxspatialgraph.load and through the
//   format registry from C++, as korva does. Goal: Python costs at most 5 %
//   more than C++.
// - kxspatialgraph.from_arrays on 10 million points in 100 000 edges, given
//   as NumPy arrays. Goal: memory speed; bytes processed are the arrays'.
//
// Run briefly in a Release build, e.g.
//   build/test/bin/PythonModuleBenchmark --benchmark_min_time=0.1
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <pybind11/embed.h>

#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxObjectPool.h"
#include "support/MorphologyGenerators.h"

namespace py = pybind11;

namespace {

// The interpreter and the module, made once before the first benchmark, so
// that both load paths run with the module's session in place.
py::module_& module() {
    static py::scoped_interpreter interpreter = [] {
        // The interpreter the module was built for, whatever python3 comes
        // first on PATH: another one would not see Debian's NumPy.
        PyConfig config;
        PyConfig_InitPythonConfig(&config);
        PyConfig_SetBytesString(&config, &config.program_name, KORVA_PYTHON_EXECUTABLE);
        return py::scoped_interpreter(&config);
    }();
    static py::module_ kxspatialgraph = [] {
        py::module_::import("sys").attr("path").attr("insert")(0, KORVA_PYTHON_DIR);
        return py::module_::import("kxspatialgraph");
    }();
    return kxspatialgraph;
}

// A generated tree written to a temporary file, removed at exit.
class SWCFile {
public:
    SWCFile() {
        char name[] = "/tmp/kxspatialgraph-benchmark-XXXXXX";
        int fd = mkstemp(name);
        path_ = std::string(name) + ".swc";
        std::string text = MorphologyGenerators::branchingTree(1000000, 50);
        FILE* file = std::fopen(path_.c_str(), "wb");
        std::fwrite(text.data(), 1, text.size(), file);
        std::fclose(file);
        close(fd);
        unlink(name);
        size_ = text.size();
    }
    ~SWCFile() { unlink(path_.c_str()); }
    const char* path() const { return path_.c_str(); }
    size_t size() const { return size_; }

private:
    std::string path_;
    size_t size_ = 0;
};

const SWCFile& swcFile() {
    static SWCFile file;
    return file;
}

void BM_LoadSWCFromCpp(benchmark::State& state) {
    module();
    KxMessageCapture capture;
    for (auto _ : state) {
        std::vector<KxObject*> created;
        theFileFormats->load(swcFile().path(), created, *theObjectPool);
        for (KxObject* object : created) {
            theObjectPool->remove(object);
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * swcFile().size()));
    state.SetLabel("the reference for BM_LoadSWCFromPython");
}

void BM_LoadSWCFromPython(benchmark::State& state) {
    py::object load = module().attr("load");
    py::str path(swcFile().path());
    for (auto _ : state) {
        // The graph leaves the session with the Python object, as in C++.
        load(path);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * swcFile().size()));
    state.SetLabel("goal <= 5 % more time than BM_LoadSWCFromCpp");
}

void BM_BuildFromArrays(benchmark::State& state) {
    py::module_& kxspatialgraph = module();  // starts the interpreter
    py::dict scope;
    scope["kxspatialgraph"] = kxspatialgraph;
    py::exec(R"(
import numpy as np
n, e = 10_000_000, 100_000
points = np.random.default_rng(1).random((n, 3), dtype=np.float32)
offsets = np.linspace(0, n, e + 1).astype(np.int32)
vertices = np.empty((2 * e, 3), np.float32)
vertices[0::2], vertices[1::2] = points[offsets[:-1]], points[offsets[1:] - 1]
edges = np.arange(2 * e, dtype=np.int32).reshape(e, 2)
nbytes = points.nbytes + offsets.nbytes + vertices.nbytes + edges.nbytes
build = lambda: kxspatialgraph.from_arrays(vertices, edges, points, offsets)
)",
             scope);
    py::object build = scope["build"];
    for (auto _ : state) {
        build();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * scope["nbytes"].cast<int64_t>());
    state.SetLabel("goal: memory speed");
}

BENCHMARK(BM_LoadSWCFromCpp)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadSWCFromPython)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BuildFromArrays)->Unit(benchmark::kMillisecond);

}  // namespace
