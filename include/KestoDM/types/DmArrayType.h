#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmExternBaseType.h>

#include <memory>

namespace Kesto {

/// An array of one element type, named "array<" + the element's full name + ">".
/// Arrays nest (`array<array<int>>`). A datum is a Ptr<void> to an
/// Internal::UntypedArray. Libraries make one array type per element type.
class KESTODM_API DmArrayType : public DmExternBaseType,
                                public DmBuiltInType,
                                public DmInstanceCounter<DmArrayType> {
public:
    explicit DmArrayType(std::shared_ptr<DmBaseType const> elementType);
    ~DmArrayType() override;

    /// @name Element
    /// @{
    std::shared_ptr<DmBaseType const> const& getElementType() const noexcept { return m_elementType; }
    /// Changes the element type; the name follows it.
    void setElementType(std::shared_ptr<DmBaseType const> elementType);
    /// How elements are laid out and handled.
    Internal::UntypedTypeRep getElementAllocator() const;
    /// A fresh array of `size` default elements.
    Ptr<void> allocateArray(unsigned long long size) const;
    /// @}

    /// An array is fully resolved when its element type is.
    bool isFullyResolved() const override;
    Internal::UntypedTypeRep getUntypedTypeRep() const override;
    Internal::RuntimeTypeInfo const* getRuntimeTypeInfo() const override;

    /// @name Values
    /// @{
    /// An empty array value with no storage.
    std::shared_ptr<DmBaseValue> createValue() const override;
    /// An array value of `size` default elements, or null when the element type has no default.
    std::shared_ptr<DmBaseValue> createValue(unsigned long long size) const;
    /// An array value holding (and set to) the given array.
    std::shared_ptr<DmBaseValue> createValue(Ptr<void> const& array) const;
    std::shared_ptr<DmBaseValue> createValue(Ptr<void>&& array) const;
    /// An array value of no elements, with storage.
    std::shared_ptr<DmBaseValue> createDefaultValue() const override;
    std::shared_ptr<DmBaseValue>
    createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const override;
    /// @}

    /// The name of an array of the element whose full name is given: "array<e>",
    /// or "array" for an element without name.
    static std::string makeArrayName(std::string const& elementFullName);

private:
    static std::string makeName(std::shared_ptr<DmBaseType const> const& elementType);

    std::shared_ptr<DmBaseType const> m_elementType;
};

} // namespace Kesto
