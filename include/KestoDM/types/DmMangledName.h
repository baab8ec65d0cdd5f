#pragma once

#include <KestoDM/platform/DmExport.h>

#include <array>
#include <cstdint>
#include <string>

namespace Kesto {

/// The symbol of a native entity in each of the two mangling schemes. Either
/// entry may be empty. On this platform symbols are looked up by the Itanium entry.
class KESTODM_API DmMangledName {
public:
    enum Type : std::uint8_t {
        kMangledNameMicrosoft = 0,
        kMangledNameItanium = 1,
    };

    DmMangledName() = default;
    DmMangledName(std::string microsoft, std::string itanium);

    std::string const& get(Type type) const { return m_names[type]; }
    void set(Type type, std::string name) { m_names[type] = std::move(name); }
    /// The entry that this platform's linker uses.
    std::string const& getPlatformName() const { return m_names[kMangledNameItanium]; }
    bool isEmpty() const { return m_names[0].empty() && m_names[1].empty(); }

    bool operator==(DmMangledName const& other) const { return m_names == other.m_names; }
    bool operator!=(DmMangledName const& other) const { return m_names != other.m_names; }

private:
    std::array<std::string, 2> m_names;
};

} // namespace Kesto
