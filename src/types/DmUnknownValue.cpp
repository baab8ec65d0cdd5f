#include <KestoDM/types/DmUnknownValue.h>

#include <KestoDM/types/DmUnknownType.h>

namespace Kesto {

DmUnknownValue::DmUnknownValue(std::shared_ptr<DmUnknownType const> const& type)
    : DmBuiltInValue<String>(type, String()) {}

DmUnknownValue::DmUnknownValue(std::shared_ptr<DmUnknownType const> const& type,
                               std::shared_ptr<unsigned char const> buffer)
    : DmBuiltInValue<String>(type, std::move(buffer)) {}

DmUnknownValue::DmUnknownValue(DmUnknownValue const& other)
    : DmBuiltInValue<String>(other), DmInstanceCounter<DmUnknownValue>(other) {}

DmUnknownValue::~DmUnknownValue() = default;

std::shared_ptr<DmBaseValue> DmUnknownValue::clone() const {
    return std::make_shared<DmUnknownValue>(*this);
}

Any DmUnknownValue::toAny() const {
    return Any();
}

} // namespace Kesto
