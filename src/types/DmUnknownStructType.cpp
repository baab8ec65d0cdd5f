#include <KestoDM/types/DmUnknownStructType.h>

#include <KestoDM/types/DmUnknownStructValue.h>

namespace Kesto {

DmUnknownStructType::DmUnknownStructType(InternalConstructor, std::string const& name)
    : DmStructType(name, kTypeUnknownStruct) {}

DmUnknownStructType::~DmUnknownStructType() = default;

bool DmUnknownStructType::isFullyResolved() const {
    return false;
}

DmStatus DmUnknownStructType::setNamespace(DmNamespace* ns, DmNameResolutionType resolution) {
    DmStatus const status = DmStructType::setNamespace(ns, resolution);
    if (status.isFailure()) {
        return status;
    }
    // The member types were made for this struct by the same file: they follow it.
    for (auto const& entry : *this) {
        std::shared_ptr<DmBaseType> memberType = std::const_pointer_cast<DmBaseType>(entry.second->getType());
        if (memberType) {
            static_cast<void>(memberType->setNamespace(ns, resolution));
        }
    }
    return status;
}

std::shared_ptr<DmBaseValue> DmUnknownStructType::createValue() const {
    return std::make_shared<DmUnknownStructValue>(
        std::static_pointer_cast<DmUnknownStructType const>(shared_from_this()));
}

std::shared_ptr<DmBaseValue>
DmUnknownStructType::createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const {
    return std::make_shared<DmUnknownStructValue>(
        std::static_pointer_cast<DmUnknownStructType const>(shared_from_this()), buffer);
}

} // namespace Kesto
