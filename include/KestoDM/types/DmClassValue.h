#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/types/DmExternBaseValue.h>

#include <memory>

namespace Kesto {

class DmClassType;

/// The value of a native class: a Ptr<void> to an object, null until set.
/// Made by DmClassType::createValue (no object) or createDefaultValue (the
/// class's default object).
class KESTODM_API DmClassValue : public DmExternBaseValue, public DmInstanceCounter<DmClassValue> {
public:
    explicit DmClassValue(std::shared_ptr<DmClassType const> const& type);
    DmClassValue(std::shared_ptr<DmClassType const> const& type, std::shared_ptr<unsigned char const> buffer);
    /// Holds `object` while staying implicit, as a default value does.
    DmClassValue(std::shared_ptr<DmClassType const> const& type, Ptr<void> object);
    DmClassValue(DmClassValue const& other);
    ~DmClassValue() override;

    /// True while implicit, or when the object is the class's default object.
    bool isDefaultClass() const;

    std::shared_ptr<DmBaseValue> clone() const override;
    /// Empty without run-time record; the default object while default;
    /// otherwise the object.
    Any toAny() const override;

private:
    DmClassType const& getClassType() const;
};

} // namespace Kesto
