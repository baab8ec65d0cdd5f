// kestodm: the command-line front door of the Kesto DM library.

#include <KestoDM/KestoDM.h>

#include <iostream>
#include <string>
#include <string_view>

namespace {

constexpr int kExitUsage = 2;
constexpr int kExitFailure = 1;

void printUsage(std::ostream& out) {
    out << "Usage: kestodm <command> [options]\n"
           "\n"
           "Commands:\n"
           "  check <file>...  Load graph files into one library and report what is wrong.\n"
           "                   A file is a path (relative to the current directory) or a\n"
           "                   spec such as file:///abs/graph.json.\n"
           "\n"
           "Options:\n"
           "  -h, --help       Show this help and exit.\n"
           "  -V, --version    Print the library's version and exit.\n";
}

/// Loads every file into one library, in order, so that later files may use
/// what earlier ones define. The library prints its messages on standard
/// error; one line per file says how its load ended.
int check(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "kestodm: 'check' needs at least one file\n";
        printUsage(std::cerr);
        return kExitUsage;
    }
    auto const library = Kesto::DmLibrary::newLibrary(nullptr, &std::cerr, Kesto::DmExternOperator::kNone);
    Kesto::DmLibrary::LoadOptions const options;
    int exitCode = 0;
    for (int i = 2; i < argc; ++i) {
        std::string const file(argv[i]);
        bool const isSpec = file.find(":") != std::string::npos;
        Kesto::DmStatus const status = isSpec ? library->loadGraph(file, options)
                                              : library->loadGraph(std::string_view(file), "", options);
        if (status.isSuccess()) {
            std::cout << file << ": ok\n";
        } else {
            std::cout << file << ": failed (status " << static_cast<int>(status.getStatus()) << ")\n";
            exitCode = kExitFailure;
        }
    }
    return exitCode;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        printUsage(std::cerr);
        return kExitUsage;
    }
    std::string_view const command(argv[1]);
    if (command == "-h" || command == "--help" || command == "help") {
        printUsage(std::cout);
        return 0;
    }
    if (command == "-V" || command == "--version" || command == "version") {
        if (argc > 2) {
            std::cerr << "kestodm: '" << command << "' takes no arguments\n";
            printUsage(std::cerr);
            return kExitUsage;
        }
        std::cout << Kesto::DmVersion::getVersionText() << '\n';
        return 0;
    }
    if (command == "check") {
        return check(argc, argv);
    }
    std::cerr << "kestodm: unknown command '" << command << "'\n\n";
    printUsage(std::cerr);
    return kExitUsage;
}
