// Throughput of the base containers on the sizes readers meet: a million
// vertices numbered through a HashTable, coordinates appended to a DArray,
// incidence lists in SmallArrays.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "korva/base/DArray.h"
#include "korva/base/HashTable.h"
#include "korva/base/SmallArray.h"

namespace {

// Keys as file readers see them: ids in no particular order.
std::vector<int> scatteredKeys(int n) {
    std::vector<int> keys(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) {
        keys[static_cast<size_t>(i)] =
            static_cast<int>((static_cast<long long>(i) * 2654435761LL) % 2147483647LL);
    }
    return keys;
}

void BM_HashTableInsertInt(benchmark::State& state) {
    std::vector<int> keys = scatteredKeys(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        HashTable<int, int> table;
        for (size_t i = 0; i < keys.size(); ++i) {
            table.insert(keys[i], static_cast<int>(i));
        }
        benchmark::DoNotOptimize(table.size());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_HashTableInsertInt)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

void BM_HashTableLookupInt(benchmark::State& state) {
    std::vector<int> keys = scatteredKeys(static_cast<int>(state.range(0)));
    HashTable<int, int> table;
    for (size_t i = 0; i < keys.size(); ++i) {
        table.insert(keys[i], static_cast<int>(i));
    }
    for (auto _ : state) {
        long long sum = 0;
        for (int key : keys) {
            sum += *table.lookup(key);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_HashTableLookupInt)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

void BM_HashTableInsertString(benchmark::State& state) {
    std::vector<std::string> names;
    for (int i = 0; i < state.range(0); ++i) {
        names.push_back("section_" + std::to_string(i));
    }
    for (auto _ : state) {
        HashTable<const char*, int> table;
        for (size_t i = 0; i < names.size(); ++i) {
            table.insert(names[i].c_str(), static_cast<int>(i));
        }
        benchmark::DoNotOptimize(table.size());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_HashTableInsertString)->Arg(1 << 18)->Unit(benchmark::kMillisecond);

void BM_DArrayAppend(benchmark::State& state) {
    for (auto _ : state) {
        DArray<float> coords;
        for (int i = 0; i < state.range(0); ++i) {
            coords.append(static_cast<float>(i));
        }
        benchmark::DoNotOptimize(coords.dataPtr());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_DArrayAppend)->Arg(3 << 20)->Unit(benchmark::kMillisecond);

// Incidence lists of a tree: most vertices have up to two edges (inline), every
// tenth branches to three (heap).
void BM_SmallArrayIncidenceLists(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        DArray<SmallArray<int, 2>> lists(n);
        for (int v = 0; v < n; ++v) {
            int degree = v % 10 == 0 ? 3 : 2;
            for (int e = 0; e < degree; ++e) {
                lists[v].append(v + e);
            }
        }
        benchmark::DoNotOptimize(lists.dataPtr());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SmallArrayIncidenceLists)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

}  // namespace
