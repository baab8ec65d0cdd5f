#pragma once

#include <KestoDM/platform/DmExport.h>

namespace Kesto {
namespace Internal {

/// Fault injection for the library's own tests: while set, the next
/// initialization of a library fails as a broken step would, so that the
/// recovery path of newLibrary can be exercised. Process-wide; not for hosts.
KESTODM_API void setFailLibraryInitialization(bool fail) noexcept;
KESTODM_API bool shouldFailLibraryInitialization() noexcept;

} // namespace Internal
} // namespace Kesto
