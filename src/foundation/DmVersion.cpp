#include <KestoDM/foundation/DmVersion.h>

#include "foundation/DmBuildInfo.h"

#include <cstdlib>
#include <fcntl.h>
#include <iomanip>
#include <iostream>
#include <sstream>

namespace Kesto {

std::string const& DmVersion::getVersionNumber() {
    static std::string const s_text(Internal::DmBuildInfo::kVersion);
    return s_text;
}

std::string const& DmVersion::getBuildDate() {
    static std::string const s_text(Internal::DmBuildInfo::kBuildDate);
    return s_text;
}

std::string const& DmVersion::getBuildNumber() {
    static std::string const s_text(Internal::DmBuildInfo::kBuildNumber);
    return s_text;
}

std::string const& DmVersion::getCommitHash() {
    static std::string const s_text(Internal::DmBuildInfo::kCommitHash);
    return s_text;
}

std::string const& DmVersion::getBranch() {
    static std::string const s_text(Internal::DmBuildInfo::kBranch);
    return s_text;
}

std::string const& DmVersion::getVersionText() {
    static std::string const s_text = "Kesto version " + getVersionNumber() + " (" + getBuildDate() +
                                      ", build " + getBuildNumber() + ", commit " + getCommitHash() +
                                      ", branch " + getBranch() + ")";
    return s_text;
}

std::string DmVersion::getVersionLine() {
    std::ostringstream line;
    line << std::setw(16) << "KestoPrivateDM"
         << ": " << getVersionText();
    return line.str();
}

namespace {

// Prints the version line once, as the library is loaded.
struct VersionLinePrinter {
    VersionLinePrinter() {
        char const* const value = std::getenv("TOVARIN_DUMP_VERSION_INFO");
        if (value == nullptr || std::atoi(value) == 0) {
            return;
        }
        if (::fcntl(2, F_GETFD) == -1) {
            return;
        }
        std::cerr << DmVersion::getVersionLine() << '\n';
        std::cerr.flush();
    }
};

VersionLinePrinter const s_versionLinePrinter;

} // namespace

} // namespace Kesto
