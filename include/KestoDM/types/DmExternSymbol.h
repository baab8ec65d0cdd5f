#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/types/DmMangledName.h>
#include <KestoDM/types/ExternTargetSet.h>

#include <string>

namespace Kesto {

/// What is known of one native function: its symbol in each mangling scheme,
/// the environments it exists for and the file that holds it.
class KESTODM_API DmExternSymbol : public DmInstanceCounter<DmExternSymbol> {
public:
    DmExternSymbol() = default;
    DmExternSymbol(DmExternSymbol const&) = default;
    DmExternSymbol(DmExternSymbol&&) = default;
    DmExternSymbol& operator=(DmExternSymbol const&) = default;
    DmExternSymbol& operator=(DmExternSymbol&&) = default;
    ~DmExternSymbol() = default;

    void addTargets(ExternTargetSet const& targets) { m_targets.addTargets(targets); }
    void removeTargets(ExternTargetSet const& targets) { m_targets.removeTargets(targets); }
    bool supportsTargets(ExternTargetSet const& targets) const { return m_targets.supportsTargets(targets); }
    ExternTargetSet getTargetSet() const { return m_targets; }

    std::string const& getMangleName(DmMangledName::Type type) const { return m_mangleName.get(type); }
    void setMangleName(DmMangledName::Type type, std::string const& name) { m_mangleName.set(type, name); }
    DmMangledName const& getMangledName() const noexcept { return m_mangleName; }

    std::string const& getResourceFileName() const noexcept { return m_resourceFileName; }
    void setResourceFileName(std::string const& name) { m_resourceFileName = name; }

private:
    ExternTargetSet m_targets;
    DmMangledName m_mangleName;
    std::string m_resourceFileName;
};

} // namespace Kesto
