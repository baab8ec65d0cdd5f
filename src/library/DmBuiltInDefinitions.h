#pragma once

#include <KestoDM/graph/DmNativeNodeDef.h>

#include <array>
#include <memory>

namespace Kesto {

class DmLibrary;
class DmNamespace;

namespace Internal {

/// The native definitions of a library, indexed by their kind.
using NativeNodeDefTable = std::array<std::shared_ptr<DmNativeNodeDef>, DmNativeNodeDef::kNumKinds>;

/// Builds the namespaces and native definitions every library is born with,
/// under `global`, and leaves them all const.
NativeNodeDefTable buildBuiltInDefinitions(DmLibrary& library, DmNamespace& global);

} // namespace Internal
} // namespace Kesto
