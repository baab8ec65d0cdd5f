#include <KestoDM/foundation/LinkedHashMap.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using LinkedMap = Kesto::LinkedHashMap<std::string, int, Kesto::StringHasher, Kesto::StringCompare>;
using StdMap = std::unordered_map<std::string, int>;

// Node-like names, so that keys share prefixes as they do in real graphs.
std::vector<std::string> makeKeys(std::size_t n) {
    std::vector<std::string> keys;
    keys.reserve(n);
    for (std::size_t i = 0; i < n; ++i)
        keys.push_back("node" + std::to_string(i * 2654435761u % 1000003u));
    return keys;
}

template <class Map>
void insertKeys(benchmark::State& state) {
    auto const keys = makeKeys(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        Map map;
        int value = 0;
        for (auto const& key : keys)
            map.insert({key, value++});
        benchmark::DoNotOptimize(map);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Map>
void findKeys(benchmark::State& state) {
    auto const keys = makeKeys(static_cast<std::size_t>(state.range(0)));
    Map map;
    int value = 0;
    for (auto const& key : keys)
        map.insert({key, value++});
    for (auto _ : state) {
        long sum = 0;
        for (auto const& key : keys)
            sum += map.find(key)->second;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_LinkedHashMapInsert(benchmark::State& state) {
    insertKeys<LinkedMap>(state);
}
void BM_UnorderedMapInsert(benchmark::State& state) {
    insertKeys<StdMap>(state);
}
void BM_LinkedHashMapFind(benchmark::State& state) {
    findKeys<LinkedMap>(state);
}
void BM_UnorderedMapFind(benchmark::State& state) {
    findKeys<StdMap>(state);
}

} // namespace

BENCHMARK(BM_LinkedHashMapInsert)->Arg(64)->Arg(1024)->Arg(16384);
BENCHMARK(BM_UnorderedMapInsert)->Arg(64)->Arg(1024)->Arg(16384);
BENCHMARK(BM_LinkedHashMapFind)->Arg(64)->Arg(1024)->Arg(16384);
BENCHMARK(BM_UnorderedMapFind)->Arg(64)->Arg(1024)->Arg(16384);
