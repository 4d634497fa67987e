// Whole-graph passes on a large graph: copying, merging, baking the
// transformation, bounding boxes, and the serialised strings of a selection of
// every edge. Each should be one linear pass over the points.

#include <memory>

#include <benchmark/benchmark.h>

#include "LongChain.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"

namespace {

const int kPointsPerEdge = 10;

// A chain of numEdges edges of kPointsPerEdge points with one float attribute
// per point and one int attribute per edge.
std::unique_ptr<KxSpatialGraph> buildGraph(int numEdges) {
    auto g = makeLongChain(numEdges, kPointsPerEdge);
    g->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1);
    g->addAttribute("Ranks", KxSpatialGraph::EDGE, PrimType::INT32, 1);
    return g;
}

void BM_CopyFrom(benchmark::State& state) {
    auto g = buildGraph(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::unique_ptr<KxSpatialGraph> copy(g->duplicate());
        benchmark::DoNotOptimize(copy->getTotalNumEdgePoints());
    }
    state.SetItemsProcessed(state.iterations() * g->getTotalNumEdgePoints());
}
BENCHMARK(BM_CopyFrom)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_Merge(benchmark::State& state) {
    auto other = buildGraph(static_cast<int>(state.range(0)));
    SbMatrix shift;
    shift.setTranslate(SbVec3f(0, 10, 0));
    other->setTransform(shift);
    for (auto _ : state) {
        state.PauseTiming();
        auto g = buildGraph(static_cast<int>(state.range(0)));
        state.ResumeTiming();
        g->merge(other.get());
        benchmark::DoNotOptimize(g->getTotalNumEdgePoints());
    }
    state.SetItemsProcessed(state.iterations() * other->getTotalNumEdgePoints());
}
BENCHMARK(BM_Merge)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ApplyTransform(benchmark::State& state) {
    auto g = buildGraph(static_cast<int>(state.range(0)));
    SbMatrix scale;
    scale.setScale(1.0001f);
    for (auto _ : state) {
        g->setTransform(scale);
        g->applyTransform();
    }
    state.SetItemsProcessed(state.iterations() * g->getTotalNumEdgePoints());
}
BENCHMARK(BM_ApplyTransform)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_BoundingBox(benchmark::State& state) {
    auto g = buildGraph(static_cast<int>(state.range(0)));
    SbMatrix scale;
    scale.setScale(2.0f);
    g->setTransform(scale);
    bool transformed = state.range(1) != 0;
    float box[6];
    for (auto _ : state) {
        g->computeBoundingBox(box, transformed);
        benchmark::DoNotOptimize(box[1]);
    }
    state.SetItemsProcessed(state.iterations() * g->getTotalNumEdgePoints());
}
BENCHMARK(BM_BoundingBox)->Args({1000000, 0})->Args({1000000, 1})->Unit(benchmark::kMillisecond);

void BM_SelectionStrings(benchmark::State& state) {
    int numEdges = static_cast<int>(state.range(0));
    SpatialGraphSelection s(numEdges + 1, numEdges);
    for (int e = 0; e < numEdges; e += 3) {
        s.selectEdge(e);
    }
    String edges, vertices;
    for (auto _ : state) {
        s.serialize(edges, vertices);
        SpatialGraphSelection back(numEdges + 1, numEdges);
        back.deserialize(edges, vertices);
        benchmark::DoNotOptimize(back.getNumSelectedEdges());
    }
    state.counters["edgeChars"] = edges.length();
}
BENCHMARK(BM_SelectionStrings)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
