// Costs of a library's life: newLibrary, which makes the logger, the global
// namespace and the 21 built-in definitions with their namespaces, metadata,
// icons and documentation; its release; and reset, which drops the user
// content and builds the built-in definitions again.
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

using namespace Kesto;

std::shared_ptr<DmLibrary> newLibrary(std::shared_ptr<BaContext> const& context) {
    return DmLibrary::newLibrary(context, nullptr, DmExternOperator::kSafe);
}

/// newLibrary alone; the release happens outside the timed part.
void BM_NewLibrary(benchmark::State& state) {
    auto const context = std::make_shared<BaContext>();
    for (auto _ : state) {
        auto library = newLibrary(context);
        benchmark::DoNotOptimize(library.get());
        state.PauseTiming();
        library.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_NewLibrary)->Unit(benchmark::kMicrosecond);

/// newLibrary and the release of the last reference.
void BM_NewAndReleaseLibrary(benchmark::State& state) {
    auto const context = std::make_shared<BaContext>();
    for (auto _ : state) {
        auto library = newLibrary(context);
        benchmark::DoNotOptimize(library.get());
    }
}
BENCHMARK(BM_NewAndReleaseLibrary)->Unit(benchmark::kMicrosecond);

/// reset of a library that holds nothing but its built-in definitions.
void BM_Reset(benchmark::State& state) {
    auto const library = newLibrary(std::make_shared<BaContext>());
    for (auto _ : state) {
        if (!library->reset()) {
            state.SkipWithError("reset failed");
            break;
        }
        benchmark::DoNotOptimize(library->getGlobalNamespace().get());
    }
}
BENCHMARK(BM_Reset)->Unit(benchmark::kMicrosecond);

/// reset of a library holding state.range(0) namespaces with an empty
/// compound each, which the reset drops; they are made outside the timed part.
void BM_ResetDroppingContent(benchmark::State& state) {
    auto const library = newLibrary(std::make_shared<BaContext>());
    auto const count = state.range(0);
    for (auto _ : state) {
        state.PauseTiming();
        auto const& global = library->getGlobalNamespace();
        for (long i = 0; i < count; ++i) {
            auto const ns = global->fetchNamespace("ns" + std::to_string(i));
            auto compound = DmCompound::createCompound("graph");
            compound->setScope(ns.get(), kFailOnClash);
        }
        state.ResumeTiming();
        if (!library->reset()) {
            state.SkipWithError("reset failed");
            break;
        }
    }
    state.counters["namespaces"] = static_cast<double>(count);
}
BENCHMARK(BM_ResetDroppingContent)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

} // namespace
