// Loading whole graph files: DmLibrary::loadGraph of valid synthetic graphs
// (GraphChainGenerator.h) against RapidJSON alone reading and parsing the
// same file.
//
// The files (a chain and a wide graph of loops and nested compounds, of
// 1,000, 10,000 and 100,000 operator nodes; the argument is the number of
// nodes) are written once per process to a temporary directory and read from
// the page cache. Before a file is benchmarked, it is loaded once into a
// library whose error stream is a std::ostringstream: anything printed
// aborts the benchmark with the printed text.
//
//   BM_LoadGraph{Chain,Wide}        loadGraph into a fresh library; making
//                                   the library and releasing it afterwards
//                                   run with the clock paused
//   BM_RapidJsonReadParse{Chain,Wide}  a new aligned buffer, one fread, then
//                                   Document::ParseInsitu, as the library
//                                   reads and parses (the reference unit
//                                   JsonLoadBench/RapidJsonAlone.cpp)
//   BM_PairLoadVsRapidJsonChain     both of the above alternated in one loop,
//                                   each timed with the thread's CPU clock;
//                                   the counter `ratio` is load / RapidJSON
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>

#include "GraphChainGenerator.h"
#include "JsonLoadBench/ReferenceParsers.h"
#include "PairedTiming.h"

#include <benchmark/benchmark.h>

#include <boost/filesystem.hpp>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

namespace {

using namespace Kesto;

// Files

enum class Shape { kChain, kWide };

/// The generated files, by shape and node count, removed at exit.
class GraphFiles {
public:
    GraphFiles()
        : m_directory(boost::filesystem::temp_directory_path() /
                      boost::filesystem::unique_path("kesto-graphload-%%%%-%%%%")) {
        boost::filesystem::create_directories(m_directory);
    }
    ~GraphFiles() {
        boost::system::error_code ignored;
        boost::filesystem::remove_all(m_directory, ignored);
    }

    /// The path of the file, written on first use; empty when it could not be
    /// written.
    std::string const& path(Shape shape, std::size_t nodes) {
        auto const key = std::make_pair(shape, nodes);
        auto found = m_files.find(key);
        if (found == m_files.end()) {
            KestoBench::GraphCounts counts;
            std::string const text = shape == Shape::kChain ? KestoBench::chainGraph(nodes, &counts)
                                                            : KestoBench::wideGraph(nodes, &counts);
            std::string path = (m_directory / ((shape == Shape::kChain ? "chain-" : "wide-") +
                                               std::to_string(nodes) + ".json"))
                                   .string();
            if (!KestoBench::writeText(path, text)) {
                path.clear();
            }
            found = m_files.emplace(key, File{path, text.size(), counts}).first;
        }
        return found->second.path;
    }

    std::size_t bytes(Shape shape, std::size_t nodes) { return file(shape, nodes).bytes; }
    KestoBench::GraphCounts const& counts(Shape shape, std::size_t nodes) {
        return file(shape, nodes).counts;
    }

private:
    struct File {
        std::string path;
        std::size_t bytes;
        KestoBench::GraphCounts counts;
    };
    File const& file(Shape shape, std::size_t nodes) {
        path(shape, nodes);
        return m_files.at(std::make_pair(shape, nodes));
    }

    boost::filesystem::path m_directory;
    std::map<std::pair<Shape, std::size_t>, File> m_files;
};

GraphFiles& files() {
    static GraphFiles s_files;
    return s_files;
}

void reportShape(benchmark::State& state, Shape shape, bool rate = true) {
    auto const nodes = static_cast<std::size_t>(state.range(0));
    if (rate) {
        state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                                static_cast<std::int64_t>(files().bytes(shape, nodes)));
    }
    KestoBench::GraphCounts const& counts = files().counts(shape, nodes);
    state.counters["nodes"] = static_cast<double>(counts.nodes);
    state.counters["compounds"] = static_cast<double>(counts.compounds);
    state.counters["connections"] = static_cast<double>(counts.connections);
    state.counters["values"] = static_cast<double>(counts.values);
    state.counters["MiB"] = static_cast<double>(files().bytes(shape, nodes)) / (1 << 20);
}

// The library's load

std::shared_ptr<DmLibrary> newLibrary(std::ostream& errors) {
    return DmLibrary::newLibrary(std::make_shared<BaContext>(), &errors, DmExternOperator::kSafe);
}

/// Loads `path` into a fresh library once; the text the library printed, or
/// a line of its own when the load failed without printing.
std::string checkLoad(std::string const& path) {
    if (path.empty()) {
        return "the graph file could not be written";
    }
    std::ostringstream errors;
    auto const library = newLibrary(errors);
    DmStatus const status = library->loadGraph(path, "", DmLibrary::LoadOptions());
    std::string printed = errors.str();
    if (status != DmStatus::kSuccess && printed.empty()) {
        printed = "loadGraph failed without a message";
    }
    return printed;
}

/// The file of the state's shape and size, checked once per process; null
/// after SkipWithError when it does not load cleanly.
std::string const* checkedPath(benchmark::State& state, Shape shape) {
    static std::map<std::string, std::string> s_printed;
    std::string const& path = files().path(shape, static_cast<std::size_t>(state.range(0)));
    auto found = s_printed.find(path);
    if (found == s_printed.end()) {
        found = s_printed.emplace(path, checkLoad(path)).first;
    }
    if (!found->second.empty()) {
        std::fprintf(stderr, "%s does not load cleanly:\n%s\n", path.c_str(), found->second.c_str());
        state.SkipWithError(("the graph file does not load cleanly: " + found->second).c_str());
        return nullptr;
    }
    return &path;
}

void loadGraph(benchmark::State& state, Shape shape) {
    std::string const* const path = checkedPath(state, shape);
    if (path == nullptr) {
        return;
    }
    std::ostringstream errors;
    for (auto _ : state) {
        state.PauseTiming();
        auto library = newLibrary(errors);
        state.ResumeTiming();
        DmStatus const status = library->loadGraph(*path, "", DmLibrary::LoadOptions());
        state.PauseTiming();
        library.reset();
        if (status != DmStatus::kSuccess) {
            state.SkipWithError(("loadGraph failed: " + errors.str()).c_str());
            return;
        }
        state.ResumeTiming();
    }
    reportShape(state, shape);
}

void BM_LoadGraphChain(benchmark::State& state) {
    loadGraph(state, Shape::kChain);
}
BENCHMARK(BM_LoadGraphChain)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_LoadGraphWide(benchmark::State& state) {
    loadGraph(state, Shape::kWide);
}
BENCHMARK(BM_LoadGraphWide)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// RapidJSON alone

struct FreeDeleter {
    void operator()(char* memory) const noexcept { std::free(memory); }
};
using Buffer = std::unique_ptr<char, FreeDeleter>;

/// The whole file in a new buffer aligned to 16, zero-terminated and padded
/// with zeros to a multiple of 16: open, seek to the end for the size, one
/// fread, close. Null on a failure.
Buffer readFile(std::string const& path, std::size_t& size) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        return nullptr;
    }
    Buffer buffer;
    if (std::fseek(file, 0, SEEK_END) == 0) {
        long const end = std::ftell(file);
        if (end >= 0 && std::fseek(file, 0, SEEK_SET) == 0) {
            size = static_cast<std::size_t>(end);
            std::size_t const padded = (size + 1 + 15) / 16 * 16;
            buffer.reset(static_cast<char*>(std::aligned_alloc(16, padded)));
            if (buffer) {
                std::memset(buffer.get() + size, 0, padded - size);
                if (size != 0 && std::fread(buffer.get(), 1, size, file) != size) {
                    buffer.reset();
                }
            }
        }
    }
    std::fclose(file);
    return buffer;
}

/// Reads and parses `path`; false when either failed.
bool rapidJsonReadParse(std::string const& path) {
    std::size_t size = 0;
    Buffer const text = readFile(path, size);
    return text && KestoBench::parseInsitu(text.get(), size) != 0;
}

void rapidJson(benchmark::State& state, Shape shape) {
    std::string const* const path = checkedPath(state, shape);
    if (path == nullptr) {
        return;
    }
    for (auto _ : state) {
        if (!rapidJsonReadParse(*path)) {
            state.SkipWithError("read or parse failed");
            return;
        }
    }
    reportShape(state, shape);
}

void BM_RapidJsonReadParseChain(benchmark::State& state) {
    rapidJson(state, Shape::kChain);
}
BENCHMARK(BM_RapidJsonReadParseChain)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_RapidJsonReadParseWide(benchmark::State& state) {
    rapidJson(state, Shape::kWide);
}
BENCHMARK(BM_RapidJsonReadParseWide)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// Paired: the load and RapidJSON alone in alternation (PairedTiming.h).

/// The load into a fresh library, timed without making and releasing the
/// library; negative when it failed.
double timedLoad(std::string const& path) {
    std::ostringstream errors;
    auto library = newLibrary(errors);
    double const elapsed = KestoBench::timed(
        [&] { return library->loadGraph(path, "", DmLibrary::LoadOptions()) == DmStatus::kSuccess; });
    library.reset();
    return elapsed;
}

void BM_PairLoadVsRapidJsonChain(benchmark::State& state) {
    std::string const* const path = checkedPath(state, Shape::kChain);
    if (path == nullptr) {
        return;
    }
    KestoBench::paired(
        state, [path] { return timedLoad(*path); },
        [path] { return KestoBench::timed([path] { return rapidJsonReadParse(*path); }); });
    reportShape(state, Shape::kChain, false);
}
BENCHMARK(BM_PairLoadVsRapidJsonChain)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
