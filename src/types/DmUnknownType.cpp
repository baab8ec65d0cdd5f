#include <KestoDM/types/DmUnknownType.h>

#include <KestoDM/types/DmUnknownValue.h>

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

std::shared_ptr<DmBaseValue> DmUnknownType::createValue() const {
    return std::make_shared<DmUnknownValue>(
        std::static_pointer_cast<DmUnknownType const>(shared_from_this()));
}

std::shared_ptr<DmBaseValue>
DmUnknownType::createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const {
    return std::make_shared<DmUnknownValue>(std::static_pointer_cast<DmUnknownType const>(shared_from_this()),
                                            buffer);
}

} // namespace Kesto
