#include <KestoDM/types/DmClassValue.h>

#include <KestoDM/platform/RuntimeAny.h>
#include <KestoDM/types/DmClassType.h>

namespace Kesto {

DmClassValue::DmClassValue(std::shared_ptr<DmClassType const> const& type) : DmExternBaseValue(type) {}

DmClassValue::DmClassValue(std::shared_ptr<DmClassType const> const& type,
                           std::shared_ptr<unsigned char const> buffer)
    : DmExternBaseValue(type, std::move(buffer)) {}

DmClassValue::DmClassValue(std::shared_ptr<DmClassType const> const& type, Ptr<void> object)
    : DmExternBaseValue(type, std::move(object)) {}

DmClassValue::DmClassValue(DmClassValue const& other)
    : DmExternBaseValue(other), DmInstanceCounter<DmClassValue>(other) {}

DmClassValue::~DmClassValue() = default;

DmClassType const& DmClassValue::getClassType() const {
    return static_cast<DmClassType const&>(*getType());
}

bool DmClassValue::isDefaultClass() const {
    return isImplicit() || getData() == getClassType().getDefaultObject();
}

std::shared_ptr<DmBaseValue> DmClassValue::clone() const {
    return std::make_shared<DmClassValue>(*this);
}

Any DmClassValue::toAny() const {
    Internal::RuntimeTypeInfo const* const info = getType()->getRuntimeTypeInfo();
    if (info == nullptr) {
        return Any();
    }
    if (isDefaultClass()) {
        return Internal::RuntimeAny::create(getClassType().getDefaultObject(), info);
    }
    return Internal::RuntimeAny::create(getData(), info);
}

} // namespace Kesto
