#pragma once

#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/types/DmBuiltInValue.h>

#include <memory>

namespace Kesto {

/// Base of the values whose datum is a reference-counted pointer to a native
/// object or array; null by default.
class KESTODM_API DmExternBaseValue : public DmBuiltInValue<Ptr<void>> {
protected:
    explicit DmExternBaseValue(std::shared_ptr<DmBaseType const> const& type);
    DmExternBaseValue(std::shared_ptr<DmBaseType const> const& type,
                      std::shared_ptr<unsigned char const> buffer);
    /// Holds `object` without marking the value as set.
    DmExternBaseValue(std::shared_ptr<DmBaseType const> const& type, Ptr<void> object);
    DmExternBaseValue(DmExternBaseValue const&) = default;
};

} // namespace Kesto
