// The peak resident memory of a process that loads one graph file.
//
//   GraphLoadPeak [nodes=100000] [chain|wide] [loads=1]
//
// A child process writes the file (GraphChainGenerator.h) to a temporary
// directory and exits, so that the text built in memory does not count. This
// process then prints VmHWM and VmRSS from /proc/self/status before it makes
// the library, after the library is made, after loadGraph and after the
// library is released, with the bytes that malloc still has handed out;
// `loads` times, each time into a fresh library. It also counts the calls
// of operator new during each load and the bytes they asked for.
// The error stream of the library is a std::ostringstream; the exit status
// is 1 when anything was printed or the load failed.
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>

#include "GraphChainGenerator.h"

#include <boost/filesystem.hpp>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <new>
#include <sstream>
#include <string>

namespace {

/// Calls of the global operator new, and the bytes asked for, in this
/// process and the library alike.
std::atomic<std::size_t> s_news{0};
std::atomic<std::size_t> s_newBytes{0};
/// The calls by size asked for, up to kSizes - 1 bytes; larger ones in the last.
constexpr std::size_t kSizes = 1025;
std::atomic<std::size_t> s_newSizes[kSizes];

/// The sizes that took the most bytes since `before`, a copy of s_newSizes.
void reportSizes(std::size_t const (&before)[kSizes]) {
    std::size_t calls[kSizes];
    for (std::size_t size = 0; size < kSizes; ++size) {
        calls[size] = s_newSizes[size].load() - before[size];
    }
    std::printf("  largest shares by size (bytes x calls):");
    for (int shown = 0; shown < 8; ++shown) {
        std::size_t best = 0;
        for (std::size_t size = 1; size + 1 < kSizes; ++size) {
            if (calls[size] * size > calls[best] * best) {
                best = size;
            }
        }
        if (calls[best] == 0) {
            break;
        }
        std::printf(" %zu x %zu,", best, calls[best]);
        calls[best] = 0;
    }
    std::printf(" above %zu: %zu calls\n", kSizes - 2, calls[kSizes - 1]);
}

/// The value in kB of `key` ("VmHWM", "VmRSS") in /proc/self/status, or -1.
long statusKilobytes(std::string const& key) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.compare(0, key.size() + 1, key + ":") == 0) {
            return std::strtol(line.c_str() + key.size() + 1, nullptr, 10);
        }
    }
    return -1;
}

/// The peak and current resident memory, and the bytes that malloc has
/// handed out and not yet got back (glibc's mallinfo2).
void report(char const* when) {
    struct mallinfo2 const heap = mallinfo2();
    std::printf("%-26s VmHWM %8.1f MiB   VmRSS %8.1f MiB   malloc in use %8.1f MiB\n", when,
                statusKilobytes("VmHWM") / 1024.0, statusKilobytes("VmRSS") / 1024.0,
                static_cast<double>(heap.uordblks + heap.hblkhd) / (1 << 20));
}

} // namespace

// These replace the global allocation functions, so their malloc and free
// pair up by construction; GCC cannot see that at some optimisation levels.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

void* operator new(std::size_t size) {
    s_news.fetch_add(1, std::memory_order_relaxed);
    s_newBytes.fetch_add(size, std::memory_order_relaxed);
    s_newSizes[size < kSizes - 1 ? size : kSizes - 1].fetch_add(1, std::memory_order_relaxed);
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

// The nothrow and aligned forms too, so that every delete meets the new that
// made it.
void* operator new(std::size_t size, std::nothrow_t const& /*tag*/) noexcept {
    try {
        return operator new(size);
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    s_news.fetch_add(1, std::memory_order_relaxed);
    s_newBytes.fetch_add(size, std::memory_order_relaxed);
    s_newSizes[size < kSizes - 1 ? size : kSizes - 1].fetch_add(1, std::memory_order_relaxed);
    auto const align = static_cast<std::size_t>(alignment);
    if (void* const memory =
            std::aligned_alloc(align, (size + align - 1) / align * align + (size == 0 ? align : 0))) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    std::free(memory);
}

int main(int argc, char** argv) {
    std::size_t const nodes = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 100000;
    bool const wide = argc > 2 && std::string(argv[2]) == "wide";
    int const loads = argc > 3 ? std::atoi(argv[3]) : 1;

    boost::filesystem::path const directory = boost::filesystem::temp_directory_path() /
                                              boost::filesystem::unique_path("kesto-graphpeak-%%%%-%%%%");
    boost::filesystem::create_directories(directory);
    std::string const path = (directory / "graph.json").string();

    pid_t const child = fork();
    if (child == 0) {
        KestoBench::GraphCounts counts;
        std::string const text =
            wide ? KestoBench::wideGraph(nodes, &counts) : KestoBench::chainGraph(nodes, &counts);
        bool const written = KestoBench::writeText(path, text);
        std::printf("%s graph: %zu nodes, %zu compounds, %zu connections, %zu values, %.1f MiB\n",
                    wide ? "wide" : "chain", counts.nodes, counts.compounds, counts.connections,
                    counts.values, static_cast<double>(text.size()) / (1 << 20));
        std::fflush(stdout);
        _exit(written ? 0 : 1);
    }
    int childStatus = 0;
    if (child < 0 || waitpid(child, &childStatus, 0) != child || !WIFEXITED(childStatus) ||
        WEXITSTATUS(childStatus) != 0) {
        std::fprintf(stderr, "the graph file could not be written\n");
        return 1;
    }

    report("before the library");
    bool clean = true;
    for (int load = 0; load < loads && clean; ++load) {
        std::ostringstream errors;
        auto library = Kesto::DmLibrary::newLibrary(std::make_shared<Kesto::BaContext>(), &errors,
                                                    Kesto::DmExternOperator::kSafe);
        report("library made");
        std::size_t const news = s_news.load();
        std::size_t const newBytes = s_newBytes.load();
        std::size_t sizes[kSizes];
        for (std::size_t size = 0; size < kSizes; ++size) {
            sizes[size] = s_newSizes[size].load();
        }
        auto const start = std::chrono::steady_clock::now();
        Kesto::DmStatus const status = library->loadGraph(path, "", Kesto::DmLibrary::LoadOptions());
        auto const elapsed =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start);
        report("after loadGraph");
        std::printf("operator new during loadGraph: %zu calls, %.1f MiB asked for\n", s_news.load() - news,
                    static_cast<double>(s_newBytes.load() - newBytes) / (1 << 20));
        reportSizes(sizes);
        library.reset();
        report("library released");
        std::printf("loadGraph: %.1f ms (wall clock)\n", elapsed.count());
        if (status != Kesto::DmStatus::kSuccess || !errors.str().empty()) {
            std::fprintf(stderr, "the load failed or printed:\n%s\n", errors.str().c_str());
            clean = false;
        }
    }

    boost::system::error_code ignored;
    boost::filesystem::remove_all(directory, ignored);
    return clean ? 0 : 1;
}
