#pragma once

#include <KestoDM/platform/DmExport.h>

#include <string>

namespace Kesto {

/// What the library knows of its own build. When the environment variable
/// TOVARIN_DUMP_VERSION_INFO holds a non-zero number, the library prints its
/// version line on standard error as it is loaded.
class KESTODM_API DmVersion {
public:
    static std::string const& getVersionNumber();
    static std::string const& getBuildDate();
    static std::string const& getBuildNumber();
    static std::string const& getCommitHash();
    static std::string const& getBranch();

    /// "Kesto version 0.1.0 (2026-11-22, build 0, commit abc, branch main)".
    static std::string const& getVersionText();
    /// The line printed at load: the library name right-aligned in 16 columns,
    /// ": " and the version text, without the line end.
    static std::string getVersionLine();
};

} // namespace Kesto
