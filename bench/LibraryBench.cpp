// Costs of the library's lookups: finding a type by name (built-in, in nested
// namespaces, and an array form made on demand), and the table of JSON files
// against asking the file system.
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmStructType.h>

#include <benchmark/benchmark.h>

#include <boost/filesystem.hpp>

#include <sys/stat.h>

#include <fstream>
#include <memory>
#include <string>
#include <utility>

namespace {

using namespace Kesto;
namespace fs = boost::filesystem;

std::shared_ptr<DmLibrary> makeLibrary() {
    auto library = DmLibrary::newLibrary(std::make_shared<BaContext>(), nullptr, DmExternOperator::kSafe);
    auto const& global = library->getGlobalNamespace();
    for (char const* path : {"a", "a::b"}) {
        auto type = DmLibrary::createStructType("T");
        type->addMember("x", DmLibrary::getIntType());
        type->setNamespace(global->fetchNamespace(path).get(), kFailOnClash);
    }
    // Some neighbours, so that the maps are not trivially small.
    for (int i = 0; i < 32; ++i) {
        global->fetchNamespace("n" + std::to_string(i));
    }
    return library;
}

void retrieve(benchmark::State& state, std::string const& name) {
    auto const library = makeLibrary();
    std::shared_ptr<DmBaseType const> out;
    if (!library->retrieveType(name, out)) {
        state.SkipWithError("type not found");
        return;
    }
    for (auto _ : state) {
        bool const found = library->retrieveType(name, out);
        benchmark::DoNotOptimize(found);
        benchmark::DoNotOptimize(out.get());
    }
}

void BM_RetrieveTypeBuiltIn(benchmark::State& state) {
    retrieve(state, "int");
}
BENCHMARK(BM_RetrieveTypeBuiltIn);

void BM_RetrieveTypeNamespaced(benchmark::State& state) {
    retrieve(state, "a::b::T");
}
BENCHMARK(BM_RetrieveTypeNamespaced);

void BM_RetrieveTypeArray(benchmark::State& state) {
    retrieve(state, "array<array<a::T>>");
}
BENCHMARK(BM_RetrieveTypeArray);

void BM_RetrieveTypeMissing(benchmark::State& state) {
    auto const library = makeLibrary();
    std::shared_ptr<DmBaseType const> out;
    for (auto _ : state) {
        bool const found = library->retrieveType("a::b::Missing", out);
        benchmark::DoNotOptimize(found);
    }
}
BENCHMARK(BM_RetrieveTypeMissing);

/// A directory of 200 JSON files, listed into a library's table.
class JsonDirectory {
public:
    JsonDirectory() : m_path(fs::temp_directory_path() / fs::unique_path("kestodm-bench-%%%%-%%%%")) {
        fs::create_directories(m_path);
        for (int i = 0; i < 200; ++i) {
            std::ofstream(file("graph" + std::to_string(i) + ".json")) << "{}";
        }
        m_library->cacheJsonFilenamesForLoad(m_path.string());
    }
    JsonDirectory(JsonDirectory const&) = delete;
    JsonDirectory& operator=(JsonDirectory const&) = delete;
    ~JsonDirectory() {
        boost::system::error_code ignored;
        fs::remove_all(m_path, ignored);
    }

    std::string file(std::string const& name) const { return (m_path / name).string(); }
    DmLibrary& library() { return *m_library; }

private:
    fs::path m_path;
    std::shared_ptr<DmLibrary> m_library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), nullptr, DmExternOperator::kSafe);
};

void BM_JsonTableKnownFile(benchmark::State& state) {
    JsonDirectory directory;
    std::string const path = directory.file("graph117.json");
    for (auto _ : state) {
        auto const cached = directory.library().isJsonFilenameCachedForLoad(path);
        benchmark::DoNotOptimize(cached);
    }
}
BENCHMARK(BM_JsonTableKnownFile);

void BM_JsonTableMissingFile(benchmark::State& state) {
    JsonDirectory directory;
    std::string const path = directory.file("absent.json");
    for (auto _ : state) {
        auto const cached = directory.library().isJsonFilenameCachedForLoad(path);
        benchmark::DoNotOptimize(cached);
    }
}
BENCHMARK(BM_JsonTableMissingFile);

void BM_StatKnownFile(benchmark::State& state) {
    JsonDirectory directory;
    std::string const path = directory.file("graph117.json");
    struct stat info {};
    for (auto _ : state) {
        int const result = ::stat(path.c_str(), &info);
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(BM_StatKnownFile);

void BM_StatMissingFile(benchmark::State& state) {
    JsonDirectory directory;
    std::string const path = directory.file("absent.json");
    struct stat info {};
    for (auto _ : state) {
        int const result = ::stat(path.c_str(), &info);
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(BM_StatMissingFile);

} // namespace
