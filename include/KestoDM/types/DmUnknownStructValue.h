#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/types/DmStructValue.h>

#include <memory>

namespace Kesto {

class DmUnknownStructType;

/// The value of an unknown struct type: a struct value over the members the
/// file showed.
class KESTODM_API DmUnknownStructValue : public DmStructValue,
                                         public DmInstanceCounter<DmUnknownStructValue> {
public:
    explicit DmUnknownStructValue(std::shared_ptr<DmUnknownStructType const> const& type);
    DmUnknownStructValue(std::shared_ptr<DmUnknownStructType const> const& type,
                         std::shared_ptr<unsigned char const> buffer);
    DmUnknownStructValue(DmUnknownStructValue const& other);
    ~DmUnknownStructValue() override;

    std::shared_ptr<DmBaseValue> clone() const override;
};

} // namespace Kesto
