// kestodm: the command-line front door of the Kesto DM library.

#include <KestoDM/KestoDM.h>

#include <iostream>
#include <string>
#include <string_view>

namespace {

constexpr int kExitUsage = 2;

void printUsage(std::ostream& out) {
    out << "Usage: kestodm <command> [options]\n"
           "\n"
           "Options:\n"
           "  -h, --help       Show this help and exit.\n"
           "  -V, --version    Print the library's version and exit.\n";
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
    std::cerr << "kestodm: unknown command '" << command << "'\n\n";
    printUsage(std::cerr);
    return kExitUsage;
}
