// Resolving graph specs through the search paths: 10,000 specs against 20
// search paths, with the table of JSON files filled (every directory listed)
// and empty (every try asks the file system). The counter fs_calls_per_resolve
// is the number of tries that went to the file system, per resolve.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolverContext.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>

#include "assets/DmAssetFileSystemProbe.h"

#include <benchmark/benchmark.h>

#include <boost/filesystem.hpp>

#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kesto;
namespace fs = boost::filesystem;

constexpr int kSearchPaths = 20;
constexpr int kSpecs = 10000;

/// 20 directories s00..s19 holding 10,000 graph files between them: file i
/// lies in directory i % 20, so a spec is found after 10.5 tries on average.
/// Made once for the whole run and removed at exit.
class Tree {
public:
    Tree() : m_root(fs::temp_directory_path() / fs::unique_path("kestodm-assetbench-%%%%-%%%%")) {
        fs::create_directories(m_root);
        m_root = fs::canonical(m_root);
        for (int d = 0; d < kSearchPaths; ++d) {
            fs::create_directories(directory(d));
        }
        for (int i = 0; i < kSpecs; ++i) {
            std::string const name = fileName(i);
            std::ofstream(directory(i % kSearchPaths) / name) << "{}";
            m_found.push_back("halvern:" + name);
            m_missing.push_back("halvern:missing" + std::to_string(i) + ".json");
        }
    }
    Tree(Tree const&) = delete;
    Tree& operator=(Tree const&) = delete;
    ~Tree() {
        boost::system::error_code ignored;
        fs::remove_all(m_root, ignored);
    }

    fs::path directory(int d) const {
        char name[8];
        std::snprintf(name, sizeof name, "s%02d", d);
        return m_root / name;
    }
    static std::string fileName(int i) {
        char name[16];
        std::snprintf(name, sizeof name, "f%05d.json", i);
        return name;
    }
    std::vector<std::string> const& found() const { return m_found; }
    std::vector<std::string> const& missing() const { return m_missing; }

private:
    fs::path m_root;
    std::vector<std::string> m_found;
    std::vector<std::string> m_missing;
};

Tree const& tree() {
    static Tree const s_tree;
    return s_tree;
}

std::shared_ptr<DmLibrary> makeLibrary(bool listed) {
    auto library = DmLibrary::newLibrary(std::make_shared<BaContext>(), nullptr, DmExternOperator::kSafe);
    for (int d = 0; d < kSearchPaths; ++d) {
        std::string const directory = tree().directory(d).string();
        library->addURISearchPath(directory);
        if (listed) {
            library->cacheJsonFilenamesForLoad(directory);
        }
    }
    return library;
}

void resolveAll(benchmark::State& state, bool listed, std::vector<std::string> const& specs,
                bool expectFound) {
    auto const library = makeLibrary(listed);
    auto context = DmAssetResolverContext::newAssetResolverContext();
    context->setLibrary(library);
    Internal::resetAssetFileSystemCallCount();
    std::int64_t resolves = 0;
    for (auto _ : state) {
        for (std::string const& spec : specs) {
            auto const reference = std::make_shared<DmAssetReference>(spec);
            bool const resolved = library->resolveAssetReference(reference, context);
            if (resolved != expectFound) {
                state.SkipWithError("unexpected answer");
                return;
            }
            benchmark::DoNotOptimize(resolved);
        }
        resolves += static_cast<std::int64_t>(specs.size());
    }
    state.SetItemsProcessed(resolves);
    state.counters["fs_calls_per_resolve"] =
        static_cast<double>(Internal::assetFileSystemCallCount()) / static_cast<double>(resolves);
}

void BM_ResolveFoundListed(benchmark::State& state) {
    resolveAll(state, true, tree().found(), true);
}
BENCHMARK(BM_ResolveFoundListed)->Unit(benchmark::kMillisecond);

void BM_ResolveFoundUnlisted(benchmark::State& state) {
    resolveAll(state, false, tree().found(), true);
}
BENCHMARK(BM_ResolveFoundUnlisted)->Unit(benchmark::kMillisecond);

void BM_ResolveMissingListed(benchmark::State& state) {
    resolveAll(state, true, tree().missing(), false);
}
BENCHMARK(BM_ResolveMissingListed)->Unit(benchmark::kMillisecond);

void BM_ResolveMissingUnlisted(benchmark::State& state) {
    resolveAll(state, false, tree().missing(), false);
}
BENCHMARK(BM_ResolveMissingUnlisted)->Unit(benchmark::kMillisecond);

} // namespace
