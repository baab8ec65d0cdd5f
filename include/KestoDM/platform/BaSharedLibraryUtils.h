#pragma once

#include <KestoDM/platform/DmExport.h>

#include <string>

namespace Kesto {

/// How shared library files are named on this platform.
struct KESTODM_API BaSharedLibraryUtils {
    /// "lib".
    static std::string const& getLibraryPrefix();
    /// ".so".
    static std::string const& getLibraryExtension();
};

} // namespace Kesto
