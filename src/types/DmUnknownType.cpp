#include <KestoDM/types/DmUnknownType.h>

#include <KestoDM/platform/String.h>

namespace Kesto {

DmUnknownType::DmUnknownType(InternalConstructor, std::string const& name)
    : DmExternBaseType(name, kTypeUnknown) {}

DmUnknownType::~DmUnknownType() = default;

bool DmUnknownType::isFullyResolved() const {
    return false;
}

// A datum is the raw text the file held for it.
Internal::UntypedTypeRep DmUnknownType::getUntypedTypeRep() const {
    return Internal::UntypedTypeRep::of<String>();
}

Internal::RuntimeTypeInfo const* DmUnknownType::getRuntimeTypeInfo() const {
    return nullptr;
}

} // namespace Kesto
