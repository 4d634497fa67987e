// Segment statistics over a graph of a million edges (4 points each, with
// "thickness" and one labelled edge attribute of 10 labels). Goal: under 1 s
// for the whole spreadsheet (segment table and label table).

#include <benchmark/benchmark.h>

#include "korva/data/KxSpreadSheet.h"
#include "kxspatialgraph/analysis/KxSpatialGraphStats.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "LongChain.h"

namespace {

void statistics(benchmark::State& state) {
    const int numEdges = static_cast<int>(state.range(0));
    auto g = makeLongChain(numEdges, 4);
    auto* t = static_cast<PointAttribute*>(
        g->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
    for (int e = 0; e < numEdges; ++e) {
        for (int p = 0; p < 4; ++p) {
            t->setFloatDataAtPoint(0.5f + 0.1f * static_cast<float>(p), e, p);
        }
    }
    g->addNewLabelGroup("Region", true, false, false);
    for (int l = 1; l <= 10; ++l) {
        g->addLabel("Region", 0, ("Region" + std::to_string(l)).c_str(), SbColor(1, 0, 0));
    }
    EdgeVertexAttribute* region = g->findEdgeAttribute("Region");
    for (int e = 0; e < numEdges; ++e) {
        region->setIntDataAtIdx(e, e % 11);
    }
    for (auto _ : state) {
        KxSpreadSheet sheet;
        KxSpatialGraphStats::computeTables(g.get(), nullptr, sheet);
        benchmark::DoNotOptimize(sheet.getTable(0)->getNumRows());
    }
    state.SetLabel("goal: < 1 s for 1 M edges");
    state.counters["edges/s"] =
        benchmark::Counter(static_cast<double>(numEdges), benchmark::Counter::kIsIterationInvariantRate);
}

}  // namespace

BENCHMARK(statistics)->Arg(1000000)->Unit(benchmark::kMillisecond);
