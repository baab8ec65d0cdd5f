#pragma once

namespace Kesto {

class DmNamespace;

namespace Internal {

// The process-wide roots as the graph layer sees them. They are
// DmLibrary::getBuiltInNamespace and getReservedNamespace; the library code,
// which owns them, defines these, so that the graph layer needs nothing of the
// layer above it. Each is made on first call, thread-safely.

/// The namespace of the built-in types, which shadow every other name.
DmNamespace const& builtInNamespace();
/// The namespace of the library's reserved types.
DmNamespace const& reservedNamespace();

} // namespace Internal
} // namespace Kesto
