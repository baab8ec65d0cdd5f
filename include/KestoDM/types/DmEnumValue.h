#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmBuiltInValue.h>

#include <memory>

namespace Kesto {

class DmEnumType;

/// The value of an enumeration: the integer of one of its keys. Integers that
/// stand for no key are refused. Made by DmEnumType::createValue, holding the
/// type's default (its first key's integer).
class KESTODM_API DmEnumValue : public DmBuiltInValue<int>, public DmInstanceCounter<DmEnumValue> {
public:
    explicit DmEnumValue(std::shared_ptr<DmEnumType const> const& type);
    DmEnumValue(std::shared_ptr<DmEnumType const> const& type, std::shared_ptr<unsigned char const> buffer);
    DmEnumValue(DmEnumValue const& other);
    ~DmEnumValue() override;

    /// @name Datum
    /// @{
    /// Takes the integer only if it is an enumeration of the type.
    bool setData(int&& data) override;
    bool setData(int const& data) override;
    bool setEnumerationFromName(String const& key);
    /// The key of the datum; false when the datum stands for no key.
    bool getEnumerationName(String& key) const;
    /// @}

    /// The datum must also be an enumeration of the type.
    bool isValid() const override;
    std::shared_ptr<DmBaseValue> clone() const override;
    /// The integer with the enum's run-time record; empty without one.
    Any toAny() const override;

private:
    DmEnumType const& getEnumType() const;
};

} // namespace Kesto
