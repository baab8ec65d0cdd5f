#pragma once

#include <KestoDM/foundation/DmEntity.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/Any.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>

namespace Kesto {

class DmBaseType;
class DmLibrary;

/// A typed datum of the model: the default of a port, the content of a global
/// variable, the member of a struct. A value knows its type and whether anybody
/// set it: it is implicit until then. Values are made by their types
/// (DmBaseType::createValue, createDefaultValue) and always complete.
///
/// The buffer operations move a datum between the value and raw storage laid
/// out by the type's representation (an array slot, a struct member, an Any).
/// Into-buffer operations leave the value's set flag alone; from-buffer
/// operations mark the value as set.
class KESTODM_API DmBaseValue : public DmEntity, public DmInstanceCounter<DmBaseValue> {
public:
    DmBaseValue& operator=(DmBaseValue const&) = delete;
    ~DmBaseValue() override;

    /// @name Queries
    /// @{
    std::shared_ptr<DmBaseType const> const& getType() const noexcept { return m_type; }
    /// True until the value was set.
    virtual bool isImplicit() const;
    /// The type is there and valid, and so is the entity.
    bool isValid() const override;
    /// @}

    /// @name Edits
    /// @{
    /// Marks the value as set.
    void valueWasSet() noexcept { m_valueWasSet = true; }
    /// Copies `other`'s datum in; false when `other` is null, of another value
    /// class, or of a type that is not equivalent. Marks the value as set.
    virtual bool assign(std::shared_ptr<DmBaseValue> const& other) = 0;
    virtual bool moveAssign(std::shared_ptr<DmBaseValue>&& other) = 0;
    /// @}

    /// @name Copies and conversions
    /// @{
    virtual std::shared_ptr<DmBaseValue> clone() const = 0;
    /// The datum in the run-time representation, or an empty Any.
    virtual Any toAny() const = 0;
    /// The inverse of toAny: a new value of the library's type for the Any's
    /// run-time type, holding its datum; null for an empty Any or a type the
    /// library does not know.
    static std::shared_ptr<DmBaseValue> fromAny(Any const& any, DmLibrary& library);
    /// @}

    /// @name Buffer operations
    /// Each returns false for a null buffer (and for values that hold no datum).
    /// @{
    virtual bool copyConstructIntoBuffer(void* buffer) const = 0;
    virtual bool moveConstructIntoBuffer(void* buffer) = 0;
    virtual bool copyAssignIntoBuffer(void* buffer) const = 0;
    virtual bool moveAssignIntoBuffer(void* buffer) = 0;
    virtual bool copyConstructFromBuffer(void const* buffer) = 0;
    virtual bool moveConstructFromBuffer(void* buffer) = 0;
    virtual bool copyAssignFromBuffer(void const* buffer) = 0;
    virtual bool moveAssignFromBuffer(void* buffer) = 0;
    /// @}

protected:
    explicit DmBaseValue(std::shared_ptr<DmBaseType const> type);
    DmBaseValue(DmBaseValue const& other);

    /// Back to implicit, as a struct value whose content was cleared needs.
    virtual void clearValueWasSet() noexcept { m_valueWasSet = false; }
    bool getValueWasSet() const noexcept { return m_valueWasSet; }

private:
    friend class DmStructValue;

    std::shared_ptr<DmBaseType const> m_type;
    bool m_valueWasSet = false;
};

using DmBaseValuePtr = std::shared_ptr<DmBaseValue>;

} // namespace Kesto
