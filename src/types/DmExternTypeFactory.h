#pragma once

#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/types/DmExternBaseType.h>

#include <memory>
#include <string>

namespace Kesto {
namespace Internal {

/// The one maker of extern types: DmLibrary's type factories, the reserved
/// class types, the unknown element types of loops and the reader of graph
/// files all come here, so that a type is always made the same way.
struct ExternTypeFactory {
    /// A new `T` named `name`, in no namespace; null for the empty name.
    template <class T>
    static std::shared_ptr<T> make(std::string const& name) {
        return DmExternBaseType::makeNamed<T>(name, kNameVerbatim, tag());
    }
    /// The constructor tag, for what make cannot build.
    static DmExternBaseType::InternalConstructor tag() { return DmExternBaseType::InternalConstructor(); }
};

} // namespace Internal
} // namespace Kesto
