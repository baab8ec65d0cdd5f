#include <KestoDM/types/DmUnknownStructValue.h>

#include <KestoDM/types/DmUnknownStructType.h>

namespace Kesto {

DmUnknownStructValue::DmUnknownStructValue(std::shared_ptr<DmUnknownStructType const> const& type)
    : DmStructValue(type) {}

DmUnknownStructValue::DmUnknownStructValue(std::shared_ptr<DmUnknownStructType const> const& type,
                                           std::shared_ptr<unsigned char const> buffer)
    : DmStructValue(type, std::move(buffer)) {}

DmUnknownStructValue::DmUnknownStructValue(DmUnknownStructValue const& other)
    : DmStructValue(other), DmInstanceCounter<DmUnknownStructValue>(other) {}

DmUnknownStructValue::~DmUnknownStructValue() = default;

std::shared_ptr<DmBaseValue> DmUnknownStructValue::clone() const {
    return std::make_shared<DmUnknownStructValue>(*this);
}

} // namespace Kesto
