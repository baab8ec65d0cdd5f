#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/types/DmExternBaseValue.h>

#include <memory>

namespace Kesto {

class DmArrayType;

namespace Internal {
class UntypedArray;
}

/// The value of an array type: a Ptr<void> to an Internal::UntypedArray, null
/// for an array with no storage. Elements are reached as values that live in
/// the array's storage (`at`): they keep the array alive and write straight
/// into it; an element of an array of arrays is itself an array value.
/// Made by DmArrayType::createValue / createDefaultValue.
class KESTODM_API DmArrayValue : public DmExternBaseValue, public DmInstanceCounter<DmArrayValue> {
public:
    explicit DmArrayValue(std::shared_ptr<DmArrayType const> const& type);
    DmArrayValue(std::shared_ptr<DmArrayType const> const& type, std::shared_ptr<unsigned char const> buffer);
    DmArrayValue(DmArrayValue const& other);
    ~DmArrayValue() override;

    /// @name Elements
    /// @{
    /// Number of elements; 0 without storage.
    unsigned long long size() const;
    std::shared_ptr<DmBaseType const> const& getElementType() const;
    /// The element at `index` as a value of the element type, or null beyond the end.
    std::shared_ptr<DmBaseValue> at(unsigned long long index) const;
    /// The element at `index` seen as a value of `elementType`.
    std::shared_ptr<DmBaseValue> at(std::shared_ptr<DmBaseType const> const& elementType,
                                    unsigned long long index) const;
    std::shared_ptr<DmBaseValue> operator[](unsigned long long index) const { return at(index); }
    /// Replaces the storage by `size` default elements; false when the element
    /// type has no default value.
    bool assignArray(unsigned long long size);
    /// @}

    std::shared_ptr<DmBaseValue> clone() const override;
    /// Empty without run-time record; a fresh empty array while implicit;
    /// otherwise the same array.
    Any toAny() const override;

private:
    DmArrayType const& getArrayType() const;
    Internal::UntypedArray* getArray() const;
};

} // namespace Kesto
