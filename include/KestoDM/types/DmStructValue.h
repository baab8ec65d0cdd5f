#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/UntypedTypeRep.h>
#include <KestoDM/types/DmBaseValue.h>

#include <memory>
#include <string>

namespace Kesto {

class DmStructType;

/// The value of a struct: one buffer laid out by the struct type, and member
/// values that read and write that buffer in place. A struct value nested in
/// another shares the outer buffer. The member values are made on first need.
///
/// A struct value is implicit until it or one of its members is set.
/// Made by DmStructType::createValue (zeroed members) or createDefaultValue
/// (each member given its type's default).
class KESTODM_API DmStructValue : public DmBaseValue, public DmInstanceCounter<DmStructValue> {
public:
    using MemberMap = LinkedHashMap<std::string, std::shared_ptr<DmBaseValue>, StringHasher, StringCompare>;

    /// A value with a buffer of its own.
    explicit DmStructValue(std::shared_ptr<DmStructType const> const& type);
    /// A member value living in `buffer`, storage owned by an enclosing value.
    DmStructValue(std::shared_ptr<DmStructType const> const& type,
                  std::shared_ptr<unsigned char const> buffer);
    DmStructValue(DmStructValue const& other);
    ~DmStructValue() override;

    /// @name Members
    /// @{
    /// The member value of that name; false (and `out` null) for an unknown name.
    bool getMember(std::string const& name, std::shared_ptr<DmBaseValue>& out) const;
    /// Assigns `value` to the member; false for a null value, an unknown name,
    /// or a value the member refuses.
    bool setMember(std::string const& name, std::shared_ptr<DmBaseValue> const& value);
    std::shared_ptr<DmBaseValue> findMember(std::string const& name) const;
    std::shared_ptr<MemberMap> const& getMembers() const;
    /// @}

    /// @name Storage
    /// @{
    unsigned char const* getData() const noexcept { return m_buffer; }
    std::shared_ptr<DmStructType const> getStructType() const;
    unsigned int getSizeOf() const;
    /// @}

    bool isImplicit() const override;
    bool assign(std::shared_ptr<DmBaseValue> const& other) override;
    bool moveAssign(std::shared_ptr<DmBaseValue>&& other) override;
    std::shared_ptr<DmBaseValue> clone() const override;
    /// The struct's bytes with its run-time record; empty without one, or when
    /// the struct does not fit an Any.
    Any toAny() const override;

    bool copyConstructIntoBuffer(void* buffer) const override;
    bool moveConstructIntoBuffer(void* buffer) override;
    bool copyAssignIntoBuffer(void* buffer) const override;
    bool moveAssignIntoBuffer(void* buffer) override;
    bool copyConstructFromBuffer(void const* buffer) override;
    bool moveConstructFromBuffer(void* buffer) override;
    bool copyAssignFromBuffer(void const* buffer) override;
    bool moveAssignFromBuffer(void* buffer) override;

protected:
    void clearValueWasSet() noexcept override;

private:
    unsigned char* getMutableData() const noexcept { return m_buffer; }
    void createDataStorage();
    void clearDataStorage() noexcept;
    void initMembersMap() const;
    void structValueWasSet();
    Internal::UntypedTypeRep getUntypedTypeRep() const;

    mutable std::shared_ptr<MemberMap> m_membersMap;
    unsigned char* m_buffer = nullptr;
    std::shared_ptr<unsigned char const> m_bufferOwner;
    bool m_ownsBuffer = false;
};

} // namespace Kesto
