// The peak resident memory of a process that loads one graph file.
//
//   GraphLoadPeak [nodes=100000] [chain|wide] [loads=1]
//
// A child process writes the file (GraphChainGenerator.h) to a temporary
// directory and exits, so that the text built in memory does not count. This
// process then prints VmHWM and VmRSS from /proc/self/status before it makes
// the library, after the library is made, after loadGraph and after the
// library is released, with the bytes that malloc still has handed out;
// `loads` times, each time into a fresh library.
// The error stream of the library is a std::ostringstream; the exit status
// is 1 when anything was printed or the load failed.
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>

#include "GraphChainGenerator.h"

#include <boost/filesystem.hpp>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

namespace {

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
        auto const start = std::chrono::steady_clock::now();
        Kesto::DmStatus const status = library->loadGraph(path, "", Kesto::DmLibrary::LoadOptions());
        auto const elapsed =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start);
        report("after loadGraph");
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
