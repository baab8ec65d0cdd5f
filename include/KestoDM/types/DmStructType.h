#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/types/DmExternBaseType.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace Kesto {

/// A struct: named members in order of addition, laid out in one buffer.
///
/// The layout (member offsets and the struct's representation) and the
/// run-time record are worked out on first need and cached in the type, so
/// making a value does not walk the members again; any change to the members
/// throws both away. The record is exchanged atomically; nothing else is guarded.
class KESTODM_API DmStructType : public DmExternBaseType, public DmInstanceCounter<DmStructType> {
public:
    class Member;
    using MemberMap = LinkedHashMap<std::string, std::shared_ptr<Member>, StringHasher, StringCompare>;
    using iterator = MemberMap::iterator;
    using const_iterator = MemberMap::const_iterator;

    DmStructType(InternalConstructor, std::string const& name);
    ~DmStructType() override;

    /// @name Members
    /// @{
    /// Appends a member and drops the cached layout. Returns null when the name
    /// is taken, or when the member's type holds this struct (a struct cannot
    /// hold itself by value, directly or through other structs).
    virtual std::shared_ptr<Member> addMember(std::string const& name,
                                              std::shared_ptr<DmBaseType const> const& type);
    std::size_t size() const { return m_members->size(); }
    iterator begin() { return m_members->begin(); }
    iterator end() { return m_members->end(); }
    const_iterator begin() const { return m_members->cbegin(); }
    const_iterator end() const { return m_members->cend(); }
    std::shared_ptr<Member> findMember(std::string const& name) const;
    /// The struct's representation: how one buffer of it is built and released.
    Internal::UntypedTypeRep getStructAllocator() const { return getUntypedTypeRep(); }
    /// @}

    /// @name Layout
    /// @{
    /// True when every member's type is fully resolved.
    bool isFullyResolved() const override;
    /// True when the layout needs no destruction.
    bool isPOD() const override;
    unsigned int getSizeOf() const override;
    unsigned int getAlignmentOf() const override;
    Internal::UntypedTypeRep getUntypedTypeRep() const override;
    Internal::RuntimeTypeInfo const* getRuntimeTypeInfo() const override;
    /// Lays the struct out again now.
    void refreshInternals() const;
    /// @}

    /// @name Values
    /// @{
    /// A struct value with a zeroed buffer.
    std::shared_ptr<DmBaseValue> createValue() const override;
    /// createValue, then each member given its type's default value.
    std::shared_ptr<DmBaseValue> createDefaultValue() const override;
    std::shared_ptr<DmBaseValue>
    createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const override;
    /// @}

protected:
    DmStructType(std::string const& name, DmTypeKind kind);

private:
    friend class Member;

    void markDirty() const;

    std::shared_ptr<MemberMap> m_members;
    mutable std::unique_ptr<Internal::UntypedTypeRep> m_typeRep;
    mutable std::atomic<Internal::RuntimeTypeInfo const*> m_runtimeTypeInfo{nullptr};
};

/// One member of a struct type. A member of struct type carries sub-members
/// that mirror the members of its type, so paths like "a.b.c" can be walked.
/// Offsets are byte offsets from the start of the outermost struct, set by the
/// layout pass. Made only by its struct (DmStructType::addMember).
class KESTODM_API DmStructType::Member : public DmNamedEntity,
                                         public DmInstanceCounter<DmStructType::Member> {
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    Member(InternalConstructor, std::string name, std::shared_ptr<DmBaseType const> type,
           Member const* parentMember, DmStructType const* parentType);
    ~Member() override;

    std::shared_ptr<DmBaseType const> const& getType() const noexcept { return m_type; }
    /// Changes the type, rebuilds the sub-members and drops the struct's layout;
    /// false (and no change) when the type holds the member's own struct.
    bool setType(std::shared_ptr<DmBaseType const> type);
    /// The dotted path from the top of the struct: "outer.inner".
    std::string getMemberPath() const;
    std::uint64_t getOffset() const noexcept { return m_offset; }
    /// Number of sub-members.
    std::size_t size() const { return m_subMembers->size(); }
    MemberMap const& getSubMembers() const noexcept { return *m_subMembers; }
    DmStructType const* getParentType() const noexcept { return m_parentType; }
    /// The parent type's full name, "::" and the member's name.
    void resolveFullName(std::string& out) const override;

private:
    friend class DmStructType;

    static std::shared_ptr<Member> newMember(std::string const& name,
                                             std::shared_ptr<DmBaseType const> const& type,
                                             Member const* parentMember, DmStructType const* parentType);
    std::shared_ptr<Member> addMember(std::string const& name, std::shared_ptr<DmBaseType const> const& type);
    Member const* getParentMember() const noexcept { return m_parentMember; }
    void rebuildSubMembers();
    void setOffsets(std::uint64_t offset);

    std::shared_ptr<DmBaseType const> m_type;
    Member const* m_parentMember;
    DmStructType const* m_parentType;
    std::shared_ptr<MemberMap> m_subMembers;
    std::uint64_t m_offset = 0;
};

} // namespace Kesto
