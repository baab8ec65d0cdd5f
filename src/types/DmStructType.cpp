#include <KestoDM/types/DmStructType.h>

#include <KestoDM/types/DmStructValue.h>

#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>

#include <algorithm>
#include <vector>

namespace Kesto {

namespace {

std::uint64_t roundUp(std::uint64_t offset, std::uint64_t alignment) {
    if (alignment <= 1) {
        return offset;
    }
    return (offset + alignment - 1) / alignment * alignment;
}

bool isStructKind(DmBaseType const& type) {
    return type.getTypeKind() == kTypeStruct || type.getTypeKind() == kTypeUnknownStruct;
}

// Whether `type` holds `target` by value, directly or through nested structs.
// Arrays hold their elements by reference and break no layout, so they are
// not followed.
bool holdsStruct(DmBaseType const* type, DmStructType const* target, std::vector<DmBaseType const*>& seen) {
    if (type == nullptr || !isStructKind(*type)) {
        return false;
    }
    if (type == target) {
        return true;
    }
    if (std::find(seen.begin(), seen.end(), type) != seen.end()) {
        return false;
    }
    seen.push_back(type);
    auto const& structType = static_cast<DmStructType const&>(*type);
    return std::any_of(structType.begin(), structType.end(), [&](auto const& entry) {
        return holdsStruct(entry.second->getType().get(), target, seen);
    });
}

bool wouldHoldItself(DmStructType const* owner, std::shared_ptr<DmBaseType const> const& type) {
    std::vector<DmBaseType const*> seen;
    return owner != nullptr && holdsStruct(type.get(), owner, seen);
}

std::shared_ptr<DmStructType::MemberMap> newMemberMap() {
    auto map = std::make_shared<DmStructType::MemberMap>();
    map->max_load_factor(1.0f);
    return map;
}

} // namespace

DmStructType::DmStructType(InternalConstructor, std::string const& name) : DmStructType(name, kTypeStruct) {}

DmStructType::DmStructType(std::string const& name, DmTypeKind kind)
    : DmExternBaseType(name, kind), m_members(newMemberMap()) {}

DmStructType::~DmStructType() = default;

std::shared_ptr<DmStructType::Member> DmStructType::addMember(std::string const& name,
                                                              std::shared_ptr<DmBaseType const> const& type) {
    if (m_members->contains(name) || wouldHoldItself(this, type)) {
        return nullptr;
    }
    std::shared_ptr<Member> member = Member::newMember(name, type, nullptr, this);
    m_members->insert(name, member);
    markDirty();
    return member;
}

std::shared_ptr<DmStructType::Member> DmStructType::findMember(std::string const& name) const {
    auto const found = m_members->find(name);
    return found == m_members->end() ? nullptr : found->second;
}

bool DmStructType::isFullyResolved() const {
    return std::all_of(m_members->begin(), m_members->end(), [](auto const& entry) {
        auto const& type = entry.second->getType();
        return type && type->isFullyResolved();
    });
}

bool DmStructType::isPOD() const {
    return !getUntypedTypeRep().needsDestruction();
}

unsigned int DmStructType::getSizeOf() const {
    return static_cast<unsigned int>(getUntypedTypeRep().size());
}

unsigned int DmStructType::getAlignmentOf() const {
    return static_cast<unsigned int>(getUntypedTypeRep().alignment());
}

Internal::UntypedTypeRep DmStructType::getUntypedTypeRep() const {
    if (!m_typeRep) {
        refreshInternals();
    }
    return *m_typeRep;
}

void DmStructType::refreshInternals() const {
    std::vector<std::pair<std::size_t, Internal::UntypedTypeRep>> members;
    members.reserve(m_members->size());
    std::uint64_t offset = 0;
    std::uint64_t alignment = 1;
    for (auto const& entry : *m_members) {
        Member& member = *entry.second;
        Internal::UntypedTypeRep rep =
            member.getType() ? member.getType()->getUntypedTypeRep() : Internal::UntypedTypeRep::opaque16();
        std::uint64_t const memberAlignment = std::max<std::uint64_t>(rep.alignment(), 1);
        offset = roundUp(offset, memberAlignment);
        member.setOffsets(offset);
        alignment = std::max(alignment, memberAlignment);
        std::uint64_t const memberSize = rep.size();
        members.emplace_back(static_cast<std::size_t>(offset), std::move(rep));
        offset += memberSize;
    }
    std::uint64_t const size = roundUp(offset, alignment);
    m_typeRep = std::make_unique<Internal::UntypedTypeRep>(Internal::UntypedTypeRep::makeStruct(
        std::move(members), static_cast<std::size_t>(size), static_cast<std::size_t>(alignment)));
}

void DmStructType::markDirty() const {
    m_typeRep.reset();
    m_runtimeTypeInfo.exchange(nullptr);
}

Internal::RuntimeTypeInfo const* DmStructType::getRuntimeTypeInfo() const {
    if (Internal::RuntimeTypeInfo const* cached = m_runtimeTypeInfo.load()) {
        return cached;
    }
    std::string const& mangled = getTypeNameMangleName().getPlatformName();
    if (mangled.empty()) {
        return nullptr;
    }
    std::vector<Internal::RuntimeTypeInfo const*> members;
    members.reserve(m_members->size());
    for (auto const& entry : *m_members) {
        auto const& type = entry.second->getType();
        Internal::RuntimeTypeInfo const* info = type ? type->getRuntimeTypeInfo() : nullptr;
        if (info == nullptr) {
            return nullptr;
        }
        members.push_back(info);
    }
    Internal::RttiTable& table = Internal::GlobalRttiTable::get();
    Internal::UntypedTypeRep const rep = getUntypedTypeRep();
    Internal::RuntimeTypeInfo const* info =
        table.getOrInsertStruct(table.getOrInsertMangle(mangled), members, rep);
    // The table keeps the first layout registered under a mangled name; a
    // struct whose members changed since has no native form any more.
    if (info == nullptr || info->getMembers() != members || info->getUntypedTypeRep().size() != rep.size()) {
        return nullptr;
    }
    m_runtimeTypeInfo.exchange(info);
    return info;
}

DmStructType::Member::Member(InternalConstructor, std::string name, std::shared_ptr<DmBaseType const> type,
                             Member const* parentMember, DmStructType const* parentType)
    : DmNamedEntity(std::move(name), true), m_type(std::move(type)), m_parentMember(parentMember),
      m_parentType(parentType), m_subMembers(newMemberMap()) {}

DmStructType::Member::~Member() = default;

std::shared_ptr<DmStructType::Member>
DmStructType::Member::newMember(std::string const& name, std::shared_ptr<DmBaseType const> const& type,
                                Member const* parentMember, DmStructType const* parentType) {
    auto member = std::make_shared<Member>(InternalConstructor(), name, type, parentMember, parentType);
    member->rebuildSubMembers();
    return member;
}

std::shared_ptr<DmStructType::Member>
DmStructType::Member::addMember(std::string const& name, std::shared_ptr<DmBaseType const> const& type) {
    std::shared_ptr<Member> member = newMember(name, type, this, m_parentType);
    m_subMembers->insert(name, member);
    return member;
}

void DmStructType::Member::rebuildSubMembers() {
    m_subMembers->clear();
    if (!m_type || (m_type->getTypeKind() != kTypeStruct && m_type->getTypeKind() != kTypeUnknownStruct)) {
        return;
    }
    // A struct that (wrongly) holds itself would recurse forever: stop at any
    // type already on the path from the top.
    for (Member const* ancestor = m_parentMember; ancestor != nullptr; ancestor = ancestor->m_parentMember) {
        if (ancestor->m_type == m_type) {
            return;
        }
    }
    if (m_type.get() == m_parentType) {
        return;
    }
    auto const& structType = static_cast<DmStructType const&>(*m_type);
    for (auto const& entry : structType) {
        addMember(entry.first, entry.second->getType());
    }
}

bool DmStructType::Member::setType(std::shared_ptr<DmBaseType const> type) {
    if (wouldHoldItself(m_parentType, type)) {
        return false;
    }
    m_type = std::move(type);
    rebuildSubMembers();
    if (m_parentType != nullptr) {
        m_parentType->markDirty();
    }
    return true;
}

std::string DmStructType::Member::getMemberPath() const {
    if (m_parentMember == nullptr) {
        return getName();
    }
    return m_parentMember->getMemberPath() + "." + getName();
}

void DmStructType::Member::setOffsets(std::uint64_t offset) {
    m_offset = offset;
    if (m_subMembers->empty()) {
        return;
    }
    // Sub-members sit where the member's own struct type lays them out.
    auto const& structType = static_cast<DmStructType const&>(*m_type);
    structType.getUntypedTypeRep();
    for (auto& entry : *m_subMembers) {
        std::shared_ptr<Member> const inner = structType.findMember(entry.first);
        entry.second->setOffsets(offset + (inner ? inner->getOffset() : 0));
    }
}

void DmStructType::Member::resolveFullName(std::string& out) const {
    if (m_parentType != nullptr) {
        m_parentType->resolveFullName(out);
        out += "::";
    }
    out += getName();
}

std::shared_ptr<DmBaseValue> DmStructType::createValue() const {
    return std::make_shared<DmStructValue>(std::static_pointer_cast<DmStructType const>(shared_from_this()));
}

std::shared_ptr<DmBaseValue> DmStructType::createDefaultValue() const {
    std::shared_ptr<DmBaseValue> value = createValue();
    auto& structValue = static_cast<DmStructValue&>(*value);
    for (auto const& entry : *structValue.getMembers()) {
        std::shared_ptr<DmBaseType const> const& memberType = entry.second->getType();
        if (std::shared_ptr<DmBaseValue> const memberDefault = memberType->createDefaultValue()) {
            entry.second->assign(memberDefault);
        }
    }
    return value;
}

std::shared_ptr<DmBaseValue>
DmStructType::createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const {
    return std::make_shared<DmStructValue>(std::static_pointer_cast<DmStructType const>(shared_from_this()),
                                           buffer);
}

} // namespace Kesto
