// Loading graph files: the library's document load against RapidJSON alone on
// the same file, and the walker's four passes. The generated files hold every
// kind of key, not a consistent model (their nodes name definitions that do
// not exist): whole loads are measured on valid graphs in GraphLoadBench.
//
// The files (1, 10 and 40 MiB; the argument is the size in MiB) are written
// once per process by GraphFileGenerator.h and read from the page cache.
// RapidJSON is included through the library's own header, so both sides parse
// with the same configuration: in situ, default flags, SSE2 white-space scan
// for rapidjson::InsituStringStream, 64 KiB value chunks, 1 KiB parser stack.
// The reference parsers live in JsonLoadBench/, one unit per shape of
// instantiation, for the reason given in ReferenceParsers.h.
//
//   BM_Load{Sse,Plain}            JsonDocument::load of a resolved "file" asset
//   BM_RapidJsonReadParse         the same read (new aligned buffer, fread) + Document::ParseInsitu
//   BM_RapidJsonRead              that read alone
//   BM_RapidJsonParse{,Plain*}    parse only, on a fresh copy of the text each time
//   BM_Handler{Sse,Plain}         Document::Populate through a depth-limited forwarding
//                                 handler, the way the library parses, on the same buffer
//   BM_Passes*                    JsonReader::read over a parsed document: as it is, with
//                                 handlers that do nothing, and walking every list
//   BM_Pair*                      two of the above alternated in one loop, for their ratio
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/types/DmMetadata.h>

#include "reader/DmRapidJson.h"
#include "reader/JsonDocument.h"
#include "reader/JsonReader.h"

#include "GraphFileGenerator.h"
#include "JsonLoadBench/ReferenceParsers.h"
#include "PairedTiming.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <sstream>
#include <string>

namespace {

using namespace Kesto;
using Internal::JsonDocument;
using Internal::JsonReader;
namespace JsonFormat = Internal::JsonFormat;
using KestoBench::paired;
using KestoBench::timed;

// Files

std::size_t fileIndex(std::int64_t megabytes) {
    switch (megabytes) {
    case 1:
        return 0;
    case 10:
        return 1;
    default:
        return 2;
    }
}

KestoBench::GraphFileSet const& files() {
    static KestoBench::GraphFileSet const s_files(
        {std::size_t{1} << 20, std::size_t{10} << 20, std::size_t{40} << 20});
    return s_files;
}

std::string const& pathOf(benchmark::State const& state) {
    return files().path(fileIndex(state.range(0)));
}

/// The size of the file and what it holds; bytes per second unless the
/// iteration read the file more than once.
void reportShape(benchmark::State& state, bool rate = true) {
    KestoBench::GraphFileShape const& shape = files().shape(fileIndex(state.range(0)));
    if (rate) {
        state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * shape.bytes));
    }
    state.counters["compounds"] = static_cast<double>(shape.compounds);
    state.counters["nodes"] = static_cast<double>(shape.nodes);
}

std::shared_ptr<DmLibrary> const& library() {
    static std::shared_ptr<DmLibrary> const s_library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), nullptr, DmExternOperator::kSafe);
    return s_library;
}

/// A resolved reference to `path` through the library's "file" resolver.
std::shared_ptr<DmAssetReference> fileAsset(std::string const& path) {
    return library()->createAssetReferenceFromURI(std::make_shared<DmFileURI>(path, ""));
}

// The text in memory, as the library holds it

struct FreeDeleter {
    void operator()(char* memory) const noexcept { std::free(memory); }
};
using Buffer = std::unique_ptr<char, FreeDeleter>;

/// `size` bytes and the closing zero, aligned to 16 and padded to a multiple
/// of 16, the tail zeroed: the buffer the library parses in.
Buffer alignedBuffer(std::size_t size) {
    std::size_t const padded = (size + 1 + 15) / 16 * 16;
    auto* const memory = static_cast<char*>(std::aligned_alloc(16, padded));
    if (memory != nullptr) {
        std::memset(memory + size, 0, padded - size);
    }
    return Buffer(memory);
}

/// The whole file into a new aligned buffer: open, seek to the end for the
/// size, read, close. Null on a failure.
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
            buffer = alignedBuffer(size);
            if (buffer && size != 0 && std::fread(buffer.get(), 1, size, file) != size) {
                buffer.reset();
            }
        }
    }
    std::fclose(file);
    return buffer;
}

/// The pristine text and a working buffer that each parse overwrites.
class InsituText {
public:
    explicit InsituText(std::string const& path)
        : m_pristine(readFile(path, m_size)), m_work(alignedBuffer(m_size)) {}
    bool valid() const noexcept { return m_pristine && m_work; }
    std::size_t size() const noexcept { return m_size; }
    /// The text again, for the next in-situ parse.
    char* refresh() {
        std::memcpy(m_work.get(), m_pristine.get(), m_size);
        return m_work.get();
    }

private:
    std::size_t m_size = 0;
    Buffer m_pristine;
    Buffer m_work;
};

// The library's load

void loadDocument(benchmark::State& state, JsonDocument::Parser parser) {
    auto const asset = fileAsset(pathOf(state));
    if (!asset) {
        state.SkipWithError("the file did not resolve");
        return;
    }
    auto const logger = std::make_shared<DmMessageLogger>(nullptr);
    for (auto _ : state) {
        JsonDocument document(logger, parser);
        if (document.load(asset) != DmStatus::kSuccess) {
            state.SkipWithError("load failed");
            return;
        }
        benchmark::DoNotOptimize(document.getRoot().MemberCount());
    }
    reportShape(state);
}

void BM_LoadSse(benchmark::State& state) {
    loadDocument(state, JsonDocument::Parser::kSse);
}
BENCHMARK(BM_LoadSse)->Arg(1)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

void BM_LoadPlain(benchmark::State& state) {
    loadDocument(state, JsonDocument::Parser::kPlain);
}
BENCHMARK(BM_LoadPlain)->Arg(1)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

// RapidJSON alone

/// Like for like with BM_LoadSse: a new buffer, the file read into it, a new DOM
/// parsed in it, both released at the end of the iteration.
void BM_RapidJsonReadParse(benchmark::State& state) {
    std::string const& path = pathOf(state);
    for (auto _ : state) {
        std::size_t size = 0;
        Buffer const text = readFile(path, size);
        std::size_t const members = text ? KestoBench::parseInsitu(text.get(), size) : 0;
        if (members == 0) {
            state.SkipWithError("parse failed");
            return;
        }
        benchmark::DoNotOptimize(members);
    }
    reportShape(state);
}
BENCHMARK(BM_RapidJsonReadParse)->Arg(1)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

/// The read alone: allocate, read, release.
void BM_RapidJsonRead(benchmark::State& state) {
    std::string const& path = pathOf(state);
    for (auto _ : state) {
        std::size_t size = 0;
        Buffer const text = readFile(path, size);
        if (!text) {
            state.SkipWithError("read failed");
            return;
        }
        benchmark::DoNotOptimize(text.get()[size / 2]);
    }
    reportShape(state);
}
BENCHMARK(BM_RapidJsonRead)->Arg(1)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

/// Runs `parse(text)` on a fresh copy of the text each iteration; the copy
/// is outside the clock.
void parseOnly(benchmark::State& state, std::size_t (*parse)(char*, std::size_t)) {
    InsituText text(pathOf(state));
    if (!text.valid()) {
        state.SkipWithError("read failed");
        return;
    }
    for (auto _ : state) {
        state.PauseTiming();
        char* const buffer = text.refresh();
        state.ResumeTiming();
        std::size_t const members = parse(buffer, text.size());
        if (members == 0) {
            state.SkipWithError("parse failed");
            return;
        }
        benchmark::DoNotOptimize(members);
    }
    reportShape(state);
}

void BM_RapidJsonParse(benchmark::State& state) {
    parseOnly(state, KestoBench::parseInsitu);
}
BENCHMARK(BM_RapidJsonParse)->Arg(1)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

void BM_RapidJsonParsePlain(benchmark::State& state) {
    parseOnly(state, KestoBench::parseInsituPlain);
}
BENCHMARK(BM_RapidJsonParsePlain)->Arg(1)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

void BM_RapidJsonParsePlainCopied(benchmark::State& state) {
    parseOnly(state, KestoBench::parseInsituPlainCopied);
}
BENCHMARK(BM_RapidJsonParsePlainCopied)->Arg(1)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

// The nesting limit: the same parse through the forwarding handler

void BM_HandlerSse(benchmark::State& state) {
    parseOnly(state, KestoBench::parseThroughHandler);
}
BENCHMARK(BM_HandlerSse)->Arg(1)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

void BM_HandlerPlain(benchmark::State& state) {
    parseOnly(state, KestoBench::parseThroughHandlerPlain);
}
BENCHMARK(BM_HandlerPlain)->Arg(1)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

// Paired comparisons: see PairedTiming.h.

/// A load through the library; time of the whole load.
auto libraryLoad(std::shared_ptr<DmAssetReference> const& asset, JsonDocument::Parser parser) {
    return [asset, parser] {
        return timed([&] {
            JsonDocument document(nullptr, parser);
            return document.load(asset) == DmStatus::kSuccess && document.getRoot().MemberCount() != 0;
        });
    };
}

/// A parse-only side over its own copy of the text; the copy is not timed.
auto parseSide(std::shared_ptr<InsituText> const& text, std::size_t (*parse)(char*, std::size_t)) {
    return [text, parse] {
        char* const buffer = text->refresh();
        return timed([&] { return parse(buffer, text->size()) != 0; });
    };
}

/// JsonDocument::load (SSE) against the same read and Document::ParseInsitu.
void BM_PairLoadVsRapidJson(benchmark::State& state) {
    std::string const& path = pathOf(state);
    paired(state, libraryLoad(fileAsset(path), JsonDocument::Parser::kSse), [&path] {
        return timed([&] {
            std::size_t size = 0;
            Buffer const text = readFile(path, size);
            return text && KestoBench::parseInsitu(text.get(), size) != 0;
        });
    });
    reportShape(state, false);
}
BENCHMARK(BM_PairLoadVsRapidJson)->Arg(1)->Arg(10)->Arg(40)->UseManualTime()->Unit(benchmark::kMillisecond);

/// The library's load with the SSE parser against the plain one.
void BM_PairLoadSseVsPlain(benchmark::State& state) {
    auto const asset = fileAsset(pathOf(state));
    paired(state, libraryLoad(asset, JsonDocument::Parser::kSse),
           libraryLoad(asset, JsonDocument::Parser::kPlain));
    reportShape(state, false);
}
BENCHMARK(BM_PairLoadSseVsPlain)->Arg(1)->Arg(10)->Arg(40)->UseManualTime()->Unit(benchmark::kMillisecond);

/// The nesting-limit handler (Populate) against Document::ParseInsitu, SSE.
void BM_PairHandlerVsParse(benchmark::State& state) {
    paired(state, parseSide(std::make_shared<InsituText>(pathOf(state)), KestoBench::parseThroughHandler),
           parseSide(std::make_shared<InsituText>(pathOf(state)), KestoBench::parseInsitu));
    reportShape(state, false);
}
BENCHMARK(BM_PairHandlerVsParse)->Arg(1)->Arg(10)->Arg(40)->UseManualTime()->Unit(benchmark::kMillisecond);

/// RapidJSON alone, SSE against plain.
void BM_PairParseSseVsPlain(benchmark::State& state) {
    paired(state, parseSide(std::make_shared<InsituText>(pathOf(state)), KestoBench::parseInsitu),
           parseSide(std::make_shared<InsituText>(pathOf(state)), KestoBench::parseInsituPlain));
    reportShape(state, false);
}
BENCHMARK(BM_PairParseSseVsPlain)->Arg(1)->Arg(10)->Arg(40)->UseManualTime()->Unit(benchmark::kMillisecond);

/// The plain stream without and with RapidJSON's stream-copy optimisation.
void BM_PairPlainVsPlainCopied(benchmark::State& state) {
    paired(state, parseSide(std::make_shared<InsituText>(pathOf(state)), KestoBench::parseInsituPlain),
           parseSide(std::make_shared<InsituText>(pathOf(state)), KestoBench::parseInsituPlainCopied));
    reportShape(state, false);
}
BENCHMARK(BM_PairPlainVsPlainCopied)
    ->Arg(1)
    ->Arg(10)
    ->Arg(40)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// The walker's four passes

/// The real reader with nothing below the sections' objects.
class SilentReader : public JsonReader {
public:
    using JsonReader::JsonReader;

protected:
    void handle(Section, Value const&) override {}
};

/// Walks, in each pass, the lists that a reader of every section walks in
/// that pass, and does nothing with their objects: the walk's own share of a
/// full read.
///   pass 2: operators and compounds with their ports, job ports, nested
///           compounds, reserved node names, and the metadata of all of them;
///   pass 3: the ports of operators and compounds, nested compounds;
///   pass 4: nested compounds, nodes with their metadata, connections,
///           values, watch points, loop ports.
class WalkingReader : public JsonReader {
public:
    using JsonReader::JsonReader;

protected:
    void handle(Section section, Value const& object) override {
        namespace Key = JsonFormat::Key;
        int const pass = getPass();
        switch (section) {
        case JsonFormat::kOperators:
            if (pass == 2 || pass == 3) {
                walkList(object, Key::kPorts, JsonFormat::kPorts);
            }
            if (pass == 2) {
                walkList(object, Key::kJobPorts, JsonFormat::kJobPorts);
                walkList(object, Key::kMetadata, JsonFormat::kMetadata);
            }
            break;
        case JsonFormat::kCompounds:
            if (pass == 2) {
                walkList(object, Key::kMetadata, JsonFormat::kMetadata);
                walkList(object, Key::kReservedNodeNames, JsonFormat::kReservedNodeNames);
            }
            if (pass == 2 || pass == 3) {
                walkList(object, Key::kPorts, JsonFormat::kPorts);
            }
            if (pass >= 2) {
                walkList(object, Key::kCompounds, JsonFormat::kCompounds);
            }
            if (pass == 4) {
                walkList(object, Key::kCompoundNodes, JsonFormat::kCompoundNodes);
                walkList(object, Key::kConnections, JsonFormat::kConnections);
                walkList(object, Key::kValues, JsonFormat::kValues);
                walkList(object, Key::kWatchPoints, JsonFormat::kWatchPoints);
                walkList(object, Key::kForEachCompound, JsonFormat::kForEachCompound);
            }
            break;
        case JsonFormat::kForEachCompound:
            walkList(object, Key::kPorts, JsonFormat::kForEachCompoundPorts);
            break;
        case JsonFormat::kPorts:
            if (pass == 2) {
                walkList(object, Key::kMetadata, JsonFormat::kMetadata);
            }
            break;
        case JsonFormat::kCompoundNodes:
        case JsonFormat::kWatchPoints:
            walkList(object, Key::kMetadata, JsonFormat::kMetadata);
            break;
        case JsonFormat::kMetadata:
            walkList(object, Key::kMetadata, JsonFormat::kMetadata);
            break;
        default:
            break;
        }
    }
};

template <class Reader>
void passes(benchmark::State& state) {
    JsonDocument document(nullptr, JsonDocument::Parser::kSse);
    if (document.load(fileAsset(pathOf(state))) != DmStatus::kSuccess) {
        state.SkipWithError("load failed");
        return;
    }
    auto const logger = std::make_shared<DmMessageLogger>(nullptr);
    auto const uri = std::make_shared<DmFileURI>(pathOf(state), "");
    for (auto _ : state) {
        // The header's items land on the URI: one read's worth at a time.
        uri->getMetadata()->clear();
        Internal::JsonReadContext context;
        context.library = library().get();
        context.logger = logger;
        context.uri = uri;
        Reader reader(std::move(context));
        if (reader.read(document.getRoot()) != DmStatus::kSuccess || logger->getErrorCount() != 0) {
            state.SkipWithError("read failed");
            return;
        }
    }
    reportShape(state);
}

void BM_PassesReader(benchmark::State& state) {
    passes<JsonReader>(state);
}
BENCHMARK(BM_PassesReader)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

void BM_PassesSilent(benchmark::State& state) {
    passes<SilentReader>(state);
}
BENCHMARK(BM_PassesSilent)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

void BM_PassesWalking(benchmark::State& state) {
    passes<WalkingReader>(state);
}
BENCHMARK(BM_PassesWalking)->Arg(10)->Arg(40)->Unit(benchmark::kMillisecond);

} // namespace
