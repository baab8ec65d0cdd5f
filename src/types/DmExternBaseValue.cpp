#include <KestoDM/types/DmExternBaseValue.h>

namespace Kesto {

DmExternBaseValue::DmExternBaseValue(std::shared_ptr<DmBaseType const> const& type)
    : DmBuiltInValue<Ptr<void>>(type, Ptr<void>()) {}

DmExternBaseValue::DmExternBaseValue(std::shared_ptr<DmBaseType const> const& type,
                                     std::shared_ptr<unsigned char const> buffer)
    : DmBuiltInValue<Ptr<void>>(type, std::move(buffer)) {}

DmExternBaseValue::DmExternBaseValue(std::shared_ptr<DmBaseType const> const& type, Ptr<void> object)
    : DmBuiltInValue<Ptr<void>>(type, std::move(object)) {}

} // namespace Kesto
