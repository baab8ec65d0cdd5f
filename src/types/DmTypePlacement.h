#pragma once

#include <KestoDM/foundation/DmStatus.h>

#include <string>

namespace Kesto {

class DmBaseType;
class DmNamespace;

namespace Internal {

// The namespace side of a type's placement. Types only know namespaces by
// pointer; the namespace code defines these, so the type layer needs nothing
// of the layer above it.

/// Appends the scope name of the type's namespace and "::", or nothing when the
/// type has no namespace or the namespace's scope name is empty.
void appendTypeScope(DmBaseType const& type, std::string& out);

/// Moves `type` from `current` into `target` (either may be null) and keeps
/// `current` in step: unregister from the old namespace, register in the new.
DmStatus placeType(DmBaseType& type, DmNamespace*& current, DmNamespace* target);

} // namespace Internal
} // namespace Kesto
