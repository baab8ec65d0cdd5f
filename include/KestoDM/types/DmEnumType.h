#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmExternBaseType.h>

#include <functional>
#include <string>
#include <unordered_map>

namespace Kesto {

/// An enumeration: keys with integers, in order of addition. Keys and
/// integers are unique. A datum is the integer (4 bytes).
class KESTODM_API DmEnumType : public DmExternBaseType, public DmInstanceCounter<DmEnumType> {
public:
    using EnumerationMap = LinkedHashMap<String, int, std::hash<String>, std::equal_to<String>>;

    DmEnumType(InternalConstructor, std::string const& name);
    ~DmEnumType() override;

    /// @name Enumerations
    /// @{
    /// Adds `key` with the integer after the last one used (0 for the first);
    /// false when the last one used is the largest int.
    bool addEnumeration(String const& key);
    /// Adds `key` with `value`; false when the key or the integer is taken.
    bool addEnumeration(String const& key, int value);
    /// Gives an existing key another integer, keeping its place; false when the
    /// key is absent or the integer stands for another key.
    bool setEnumeration(String const& key, int value);
    bool removeEnumeration(String const& key);
    bool hasEnumeration(String const& key) const;
    bool hasEnumeration(int value) const;
    bool getKey(int value, String& key) const;
    bool getValue(String const& key, int& value) const;
    /// The first enumeration's integer, or 0 without any.
    int getDefaultValue() const;
    std::size_t size() const { return m_enumerations.size(); }
    EnumerationMap const& getEnumerations() const noexcept { return m_enumerations; }
    EnumerationMap& getEnumerations() noexcept { return m_enumerations; }
    /// @}

    bool isPOD() const override;
    unsigned int getSizeOf() const override;
    unsigned int getAlignmentOf() const override;
    Internal::UntypedTypeRep getUntypedTypeRep() const override;
    Internal::RuntimeTypeInfo const* getRuntimeTypeInfo() const override;
    std::shared_ptr<DmBaseValue> createValue() const override;
    std::shared_ptr<DmBaseValue>
    createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const override;

private:
    EnumerationMap m_enumerations;
    std::unordered_map<int, String> m_keysByValue;
    int m_lastValue = -1;
};

} // namespace Kesto
