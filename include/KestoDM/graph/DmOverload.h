#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

class DmOverloadSet;

/// A definition that can stand in an overload set: native definitions,
/// compounds, external operators and terminals. Its owner is the set of its
/// name in its scope, set when the definition is registered there.
class KESTODM_API DmOverload : public DmNodeDef, public DmInstanceCounter<DmOverload> {
public:
    ~DmOverload() override;

    /// @name Overload set
    /// @{
    DmOverloadSet* get_owner() const noexcept { return m_owner; }
    bool isDefaultOverload() const noexcept { return m_isDefaultOverload; }
    /// Makes this overload the default of its set (switching the previous one
    /// off), or stops it being the default. kFailure without an owner, and
    /// for false on an overload that is not the default.
    DmStatus setIsDefaultOverload(bool isDefault);
    /// Sets the flag alone, without an owner, for definitions being read.
    void assignIsDefaultOverload(bool isDefault) noexcept { m_isDefaultOverload = isDefault; }
    /// @}

    /// Locked when the owner or the overload is, and whenever an input has the
    /// auto type: such an overload cannot take part in overload resolution.
    bool isOverloadsLocked() const override;
    /// Writes the flag here and on the owner; unlocking is refused (kFailure)
    /// when this overload or the owner has an auto input.
    DmStatus setOverloadsLocked(bool locked) override;
    /// With an owner: the owner is locked and holds this overload alone.
    /// Without one: isOverloadsLocked.
    bool isSingle() const override;
    /// The owner's full name when there is an owner.
    void resolveFullName(std::string& out) const override;

    bool addPortDescription(std::shared_ptr<DmPortDescription> const& port,
                            DmNameResolutionType type) override;
    bool removePortDescription(std::shared_ptr<DmPortDescription> const& port) override;
    bool replaceExistingPort(std::shared_ptr<DmPortDescription> const& port) override;
    bool renamePortDescription(std::string const& oldName, std::string const& newName) override;

protected:
    DmOverload(std::string name, bool complete);

private:
    friend class DmScope;
    friend class DmOverloadSet;

    void setOwner(DmOverloadSet* owner) noexcept { m_owner = owner; }

    DmOverloadSet* m_owner = nullptr;
    bool m_isDefaultOverload = false;
};

} // namespace Kesto
