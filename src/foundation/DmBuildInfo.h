#pragma once

namespace Kesto {
namespace Internal {

/// Facts stamped in when the build is configured (see DmBuildInfo.cpp.in).
struct DmBuildInfo {
    static char const* const kVersion;
    static char const* const kBuildDate;
    static char const* const kBuildNumber;
    static char const* const kCommitHash;
    static char const* const kBranch;
};

} // namespace Internal
} // namespace Kesto
