#include <KestoDM/platform/BaSharedLibraryUtils.h>

namespace Kesto {

// Never destroyed: plug-in names may still be built during static destruction.
std::string const& BaSharedLibraryUtils::getLibraryPrefix() {
    static std::string const* const prefix = new std::string("lib");
    return *prefix;
}

std::string const& BaSharedLibraryUtils::getLibraryExtension() {
    static std::string const* const extension = new std::string(".so");
    return *extension;
}

} // namespace Kesto
