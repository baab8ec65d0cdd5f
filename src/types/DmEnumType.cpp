#include <KestoDM/types/DmEnumType.h>

#include <KestoDM/types/DmEnumValue.h>

#include <KestoDM/platform/RttiTable.h>

#include <limits>

namespace Kesto {

DmEnumType::DmEnumType(InternalConstructor, std::string const& name) : DmExternBaseType(name, kTypeEnum) {}

DmEnumType::~DmEnumType() = default;

bool DmEnumType::addEnumeration(String const& key) {
    if (m_lastValue == std::numeric_limits<int>::max()) {
        return false; // no integer follows the last one
    }
    return addEnumeration(key, m_lastValue + 1);
}

bool DmEnumType::addEnumeration(String const& key, int value) {
    if (m_enumerations.contains(key) || m_keysByValue.count(value) != 0) {
        return false;
    }
    m_lastValue = value;
    m_enumerations.insert(key, value);
    m_keysByValue.emplace(value, key);
    return true;
}

bool DmEnumType::setEnumeration(String const& key, int value) {
    auto entry = m_enumerations.find(key);
    if (entry == m_enumerations.end()) {
        return false;
    }
    auto const holder = m_keysByValue.find(value);
    if (holder != m_keysByValue.end() && !(holder->second == key)) {
        return false;
    }
    m_keysByValue.erase(entry->second);
    m_keysByValue.emplace(value, key);
    entry->second = value;
    return true;
}

bool DmEnumType::removeEnumeration(String const& key) {
    auto entry = m_enumerations.find(key);
    if (entry == m_enumerations.end()) {
        return false;
    }
    m_keysByValue.erase(entry->second);
    m_enumerations.erase(entry);
    return true;
}

bool DmEnumType::hasEnumeration(String const& key) const {
    return m_enumerations.contains(key);
}

bool DmEnumType::hasEnumeration(int value) const {
    return m_keysByValue.count(value) != 0;
}

bool DmEnumType::getKey(int value, String& key) const {
    auto const found = m_keysByValue.find(value);
    if (found == m_keysByValue.end()) {
        return false;
    }
    key = found->second;
    return true;
}

bool DmEnumType::getValue(String const& key, int& value) const {
    auto const found = m_enumerations.find(key);
    if (found == m_enumerations.end()) {
        return false;
    }
    value = found->second;
    return true;
}

int DmEnumType::getDefaultValue() const {
    return m_enumerations.empty() ? 0 : m_enumerations.begin()->second;
}

bool DmEnumType::isPOD() const {
    return true;
}

unsigned int DmEnumType::getSizeOf() const {
    return sizeof(int);
}

unsigned int DmEnumType::getAlignmentOf() const {
    return alignof(int);
}

Internal::UntypedTypeRep DmEnumType::getUntypedTypeRep() const {
    return Internal::UntypedTypeRep::of<int>();
}

Internal::RuntimeTypeInfo const* DmEnumType::getRuntimeTypeInfo() const {
    std::string const& mangled = getTypeNameMangleName().getPlatformName();
    if (mangled.empty()) {
        return nullptr;
    }
    Internal::RttiTable& table = Internal::GlobalRttiTable::get();
    return table.getOrInsertEnum(table.getOrInsertMangle(mangled));
}

std::shared_ptr<DmBaseValue> DmEnumType::createValue() const {
    return std::make_shared<DmEnumValue>(std::static_pointer_cast<DmEnumType const>(shared_from_this()));
}

std::shared_ptr<DmBaseValue>
DmEnumType::createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const {
    return std::make_shared<DmEnumValue>(std::static_pointer_cast<DmEnumType const>(shared_from_this()),
                                         buffer);
}

} // namespace Kesto
