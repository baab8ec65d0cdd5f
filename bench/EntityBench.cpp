// Costs of the entity roots: making and dropping named entities (each one
// registers in and leaves the process-wide UID table) and finding them again.
#include <KestoDM/foundation/DmNamedEntity.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace {

class BenchEntity : public Kesto::DmNamedEntity {
public:
    explicit BenchEntity(std::string name) : DmNamedEntity(std::move(name), true) {}
};

void BM_EntityCreateDestroy(benchmark::State& state) {
    for (auto _ : state) {
        auto entity = std::make_shared<BenchEntity>("node");
        benchmark::DoNotOptimize(entity.get());
    }
}
BENCHMARK(BM_EntityCreateDestroy);

// Many live entities, made and dropped in bulk: the table grows, and dead
// pairs pile up until compaction clears them.
void BM_EntityCreateDestroyBatch(benchmark::State& state) {
    auto const count = static_cast<std::size_t>(state.range(0));
    std::vector<std::shared_ptr<BenchEntity>> entities;
    entities.reserve(count);
    for (auto _ : state) {
        for (std::size_t i = 0; i < count; ++i) {
            entities.push_back(std::make_shared<BenchEntity>("node"));
        }
        entities.clear();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}
BENCHMARK(BM_EntityCreateDestroyBatch)->Arg(1000)->Arg(100000);

void BM_FindByRuntimeUID(benchmark::State& state) {
    auto const count = static_cast<std::size_t>(state.range(0));
    std::vector<std::shared_ptr<BenchEntity>> entities;
    std::vector<Kesto::DmNamedEntity::RuntimeUID> uids;
    for (std::size_t i = 0; i < count; ++i) {
        entities.push_back(std::make_shared<BenchEntity>("node"));
        uids.push_back(entities.back()->getRuntimeUID());
    }
    std::size_t next = 0;
    for (auto _ : state) {
        auto found = Kesto::DmNamedEntity::findByRuntimeUID(uids[next]);
        benchmark::DoNotOptimize(found.get());
        next = next + 1 == count ? 0 : next + 1;
    }
}
BENCHMARK(BM_FindByRuntimeUID)->Arg(8)->Arg(1000)->Arg(100000);

void BM_FindByRuntimeUIDMissing(benchmark::State& state) {
    auto const count = static_cast<std::size_t>(state.range(0));
    std::vector<std::shared_ptr<BenchEntity>> entities;
    for (std::size_t i = 0; i < count; ++i) {
        entities.push_back(std::make_shared<BenchEntity>("node"));
    }
    Kesto::DmNamedEntity::RuntimeUID gone = 0;
    {
        BenchEntity const dead("gone");
        gone = dead.getRuntimeUID();
    }
    for (auto _ : state) {
        auto found = Kesto::DmNamedEntity::findByRuntimeUID(gone);
        benchmark::DoNotOptimize(found.get());
    }
}
BENCHMARK(BM_FindByRuntimeUIDMissing)->Arg(1000)->Arg(100000);

} // namespace
