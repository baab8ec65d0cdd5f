#include <KestoDM/types/DmStructValue.h>

#include <KestoDM/platform/RuntimeAny.h>
#include <KestoDM/platform/TypeManager.h>
#include <KestoDM/types/DmStructType.h>

#include <algorithm>
#include <cstring>

namespace Kesto {

namespace {

bool isStructValueKind(DmBaseValue const& value) {
    DmTypeKind const kind = value.getType()->getTypeKind();
    return kind == kTypeStruct || kind == kTypeUnknownStruct;
}

} // namespace

DmStructValue::DmStructValue(std::shared_ptr<DmStructType const> const& type) : DmBaseValue(type) {
    createDataStorage();
}

DmStructValue::DmStructValue(std::shared_ptr<DmStructType const> const& type,
                             std::shared_ptr<unsigned char const> buffer)
    : DmBaseValue(type), m_buffer(const_cast<unsigned char*>(buffer.get())),
      m_bufferOwner(std::move(buffer)) {}

DmStructValue::DmStructValue(DmStructValue const& other)
    : DmBaseValue(other), DmInstanceCounter<DmStructValue>(other) {
    if (!other.m_ownsBuffer) {
        // A clone of a member value shares the enclosing buffer, as member
        // values of built-in types do.
        m_buffer = other.m_buffer;
        m_bufferOwner = other.m_bufferOwner;
    } else {
        createDataStorage();
        getUntypedTypeRep().copyAssign(m_buffer, other.m_buffer);
    }
    if (other.m_membersMap) {
        // Keep which members were set.
        initMembersMap();
        auto source = other.m_membersMap->begin();
        for (auto& entry : *m_membersMap) {
            if (!source->second->isImplicit()) {
                entry.second->valueWasSet();
            }
            ++source;
        }
    }
}

DmStructValue::~DmStructValue() = default;

std::shared_ptr<DmStructType const> DmStructValue::getStructType() const {
    return std::static_pointer_cast<DmStructType const>(getType());
}

Internal::UntypedTypeRep DmStructValue::getUntypedTypeRep() const {
    return getType()->getUntypedTypeRep();
}

unsigned int DmStructValue::getSizeOf() const {
    return getType()->getSizeOf();
}

void DmStructValue::createDataStorage() {
    Internal::UntypedTypeRep const rep = getUntypedTypeRep();
    void* const storage = rep.allocate(1);
    // The storage holds live members from here on, and releases them with it.
    m_bufferOwner = std::shared_ptr<unsigned char const>(
        static_cast<unsigned char const*>(storage), [rep](unsigned char const* bytes) {
            void* const raw = const_cast<unsigned char*>(bytes);
            rep.destroy(raw);
            rep.deallocate(raw);
        });
    m_buffer = static_cast<unsigned char*>(storage);
    m_ownsBuffer = true;
    rep.defaultConstruct(m_buffer);
}

void DmStructValue::clearDataStorage() noexcept {
    Internal::UntypedTypeRep const rep = getUntypedTypeRep();
    Internal::TypeManager::destroy(rep, m_buffer);
    std::memset(m_buffer, 0, rep.size());
    rep.defaultConstruct(m_buffer);
}

void DmStructValue::initMembersMap() const {
    if (m_membersMap) {
        return;
    }
    auto map = std::make_shared<MemberMap>();
    map->max_load_factor(1.0f);
    DmStructType const& type = static_cast<DmStructType const&>(*getType());
    type.getUntypedTypeRep(); // lays the struct out, so the offsets are known
    for (auto const& entry : type) {
        std::shared_ptr<DmBaseType const> const& memberType = entry.second->getType();
        std::shared_ptr<DmBaseValue> value;
        if (memberType) {
            value = memberType->createMemberValue(
                std::shared_ptr<unsigned char const>(m_bufferOwner, m_buffer + entry.second->getOffset()));
        }
        if (value) {
            map->insert(entry.first, std::move(value));
        }
    }
    m_membersMap = std::move(map);
    // Members made after the struct was set are set with it.
    if (getValueWasSet()) {
        const_cast<DmStructValue*>(this)->structValueWasSet();
    }
}

std::shared_ptr<DmStructValue::MemberMap> const& DmStructValue::getMembers() const {
    initMembersMap();
    return m_membersMap;
}

std::shared_ptr<DmBaseValue> DmStructValue::findMember(std::string const& name) const {
    initMembersMap();
    auto const found = m_membersMap->find(name);
    return found == m_membersMap->end() ? nullptr : found->second;
}

bool DmStructValue::getMember(std::string const& name, std::shared_ptr<DmBaseValue>& out) const {
    out = findMember(name);
    return out != nullptr;
}

bool DmStructValue::setMember(std::string const& name, std::shared_ptr<DmBaseValue> const& value) {
    if (!value) {
        return false;
    }
    std::shared_ptr<DmBaseValue> const member = findMember(name);
    return member && member->assign(value);
}

bool DmStructValue::isImplicit() const {
    if (getValueWasSet()) {
        return false;
    }
    if (!m_membersMap) {
        return true;
    }
    return std::all_of(m_membersMap->begin(), m_membersMap->end(),
                       [](auto const& entry) { return entry.second->isImplicit(); });
}

void DmStructValue::structValueWasSet() {
    valueWasSet();
    if (!m_membersMap) {
        return;
    }
    for (auto& entry : *m_membersMap) {
        if (isStructValueKind(*entry.second)) {
            static_cast<DmStructValue&>(*entry.second).structValueWasSet();
        } else {
            entry.second->valueWasSet();
        }
    }
}

void DmStructValue::clearValueWasSet() noexcept {
    DmBaseValue::clearValueWasSet();
    if (!m_membersMap) {
        return;
    }
    for (auto& entry : *m_membersMap) {
        entry.second->clearValueWasSet();
    }
}

bool DmStructValue::assign(std::shared_ptr<DmBaseValue> const& other) {
    auto const* const source = dynamic_cast<DmStructValue const*>(other.get());
    if (source == nullptr || !DmBaseType::equivalent(getType(), other->getType())) {
        return false;
    }
    if (source == this) {
        return true;
    }
    if (!source->isImplicit()) {
        return copyAssignFromBuffer(source->m_buffer);
    }
    clearDataStorage();
    clearValueWasSet();
    return true;
}

bool DmStructValue::moveAssign(std::shared_ptr<DmBaseValue>&& other) {
    return assign(other);
}

std::shared_ptr<DmBaseValue> DmStructValue::clone() const {
    return std::make_shared<DmStructValue>(*this);
}

Any DmStructValue::toAny() const {
    Internal::RuntimeTypeInfo const* const info = getType()->getRuntimeTypeInfo();
    if (info == nullptr) {
        return Any();
    }
    return Internal::RuntimeAny::createCopy(info, m_buffer);
}

bool DmStructValue::copyConstructIntoBuffer(void* buffer) const {
    if (buffer == nullptr) {
        return false;
    }
    Internal::TypeManager::copyConstruct(getUntypedTypeRep(), buffer, m_buffer);
    return true;
}

bool DmStructValue::moveConstructIntoBuffer(void* buffer) {
    if (buffer == nullptr) {
        return false;
    }
    Internal::TypeManager::moveConstruct(getUntypedTypeRep(), buffer, m_buffer);
    return true;
}

bool DmStructValue::copyAssignIntoBuffer(void* buffer) const {
    if (buffer == nullptr) {
        return false;
    }
    Internal::TypeManager::copy(getUntypedTypeRep(), buffer, m_buffer);
    return true;
}

bool DmStructValue::moveAssignIntoBuffer(void* buffer) {
    if (buffer == nullptr) {
        return false;
    }
    Internal::TypeManager::move(getUntypedTypeRep(), buffer, m_buffer);
    return true;
}

bool DmStructValue::copyConstructFromBuffer(void const* buffer) {
    return copyAssignFromBuffer(buffer);
}

bool DmStructValue::moveConstructFromBuffer(void* buffer) {
    return moveAssignFromBuffer(buffer);
}

bool DmStructValue::copyAssignFromBuffer(void const* buffer) {
    if (buffer == nullptr) {
        return false;
    }
    if (buffer != m_buffer) {
        Internal::TypeManager::copy(getUntypedTypeRep(), m_buffer, buffer);
    }
    structValueWasSet();
    return true;
}

bool DmStructValue::moveAssignFromBuffer(void* buffer) {
    if (buffer == nullptr) {
        return false;
    }
    if (buffer != m_buffer) {
        Internal::TypeManager::move(getUntypedTypeRep(), m_buffer, buffer);
    }
    structValueWasSet();
    return true;
}

} // namespace Kesto
