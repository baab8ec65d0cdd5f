#include <KestoDM/types/DmEnumValue.h>

#include <KestoDM/platform/RuntimeAny.h>
#include <KestoDM/types/DmEnumType.h>

namespace Kesto {

DmEnumValue::DmEnumValue(std::shared_ptr<DmEnumType const> const& type)
    : DmBuiltInValue<int>(type, type->getDefaultValue()) {}

DmEnumValue::DmEnumValue(std::shared_ptr<DmEnumType const> const& type,
                         std::shared_ptr<unsigned char const> buffer)
    : DmBuiltInValue<int>(type, std::move(buffer)) {}

DmEnumValue::DmEnumValue(DmEnumValue const& other)
    : DmBuiltInValue<int>(other), DmInstanceCounter<DmEnumValue>(other) {}

DmEnumValue::~DmEnumValue() = default;

DmEnumType const& DmEnumValue::getEnumType() const {
    return static_cast<DmEnumType const&>(*getType());
}

bool DmEnumValue::setData(int&& data) {
    return setData(static_cast<int const&>(data));
}

bool DmEnumValue::setData(int const& data) {
    if (!getEnumType().hasEnumeration(data)) {
        return false;
    }
    return DmBuiltInValue<int>::setData(data);
}

bool DmEnumValue::setEnumerationFromName(String const& key) {
    int value = 0;
    if (!getEnumType().getValue(key, value)) {
        return false;
    }
    return setData(value);
}

bool DmEnumValue::getEnumerationName(String& key) const {
    return getEnumType().getKey(getData(), key);
}

bool DmEnumValue::isValid() const {
    return DmBuiltInValue<int>::isValid() && getEnumType().hasEnumeration(getData());
}

std::shared_ptr<DmBaseValue> DmEnumValue::clone() const {
    return std::make_shared<DmEnumValue>(*this);
}

Any DmEnumValue::toAny() const {
    Internal::RuntimeTypeInfo const* const info = getType()->getRuntimeTypeInfo();
    if (info == nullptr) {
        return Any();
    }
    return Internal::RuntimeAny::create(getData(), info);
}

} // namespace Kesto
