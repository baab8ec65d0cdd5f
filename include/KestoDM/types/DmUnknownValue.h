#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmBuiltInValue.h>

#include <memory>

namespace Kesto {

class DmUnknownType;

/// The value of an unknown type: the raw text a file held for it, kept as it
/// stands so that writing gives it back unchanged. Its Any is empty.
class KESTODM_API DmUnknownValue : public DmBuiltInValue<String>, public DmInstanceCounter<DmUnknownValue> {
public:
    explicit DmUnknownValue(std::shared_ptr<DmUnknownType const> const& type);
    DmUnknownValue(std::shared_ptr<DmUnknownType const> const& type,
                   std::shared_ptr<unsigned char const> buffer);
    DmUnknownValue(DmUnknownValue const& other);
    ~DmUnknownValue() override;

    std::shared_ptr<DmBaseValue> clone() const override;
    Any toAny() const override;
};

} // namespace Kesto
