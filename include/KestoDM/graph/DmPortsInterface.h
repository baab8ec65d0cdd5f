#pragma once

#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/platform/DmExport.h>

#include <cstddef>
#include <memory>
#include <string>

namespace Kesto {

class DmPortDescription;

/// The ordered, name-keyed port descriptions of a node definition. Copies of
/// an interface share one storage: a copy is a second handle, not a snapshot.
class KESTODM_API DmPortsInterface {
public:
    using PortMap =
        LinkedHashMap<std::string, std::shared_ptr<DmPortDescription>, StringHasher, StringCompare>;
    using iterator = PortMap::iterator;
    using const_iterator = PortMap::const_iterator;

    DmPortsInterface();

    /// @name Queries
    /// @{
    std::size_t size() const noexcept { return m_ports->size(); }
    bool empty() const noexcept { return m_ports->empty(); }
    bool hasPort(std::string const& name) const { return m_ports->contains(name); }
    /// The description of that name, or null.
    std::shared_ptr<DmPortDescription> operator[](std::string const& name) const;
    iterator find(std::string const& name) { return m_ports->find(name); }
    const_iterator find(std::string const& name) const { return m_ports->find(name); }
    iterator begin() noexcept { return m_ports->begin(); }
    iterator end() noexcept { return m_ports->end(); }
    const_iterator begin() const noexcept { return m_ports->cbegin(); }
    const_iterator end() const noexcept { return m_ports->cend(); }
    PortMap& getPorts() noexcept { return *m_ports; }
    PortMap const& getPorts() const noexcept { return *m_ports; }
    /// The position of the port of that name in the order, or size() when absent.
    std::size_t indexOf(std::string const& name) const;
    /// Same size, and pairwise equal descriptions in order (DmPortDescription::operator==).
    bool operator==(DmPortsInterface const& other) const;
    bool operator!=(DmPortsInterface const& other) const { return !(*this == other); }
    /// @}

    /// @name Edits
    /// These change the interface only; DmNodeDef tells the nodes.
    /// @{
    /// Appends the port under its name; false for null or a taken name.
    bool addPortDescription(std::shared_ptr<DmPortDescription> const& port);
    /// Unlinks the port, then drops it; false when it is not the entry of its name.
    bool removePortDescription(std::shared_ptr<DmPortDescription> const& port);
    /// Renames the entry `oldName` to `newName`, keeping its position; false
    /// for an unknown old name or a taken new name.
    bool renamePortDescription(std::string const& oldName, std::string const& newName);
    /// Puts `port` in the place of the entry of its name; false when there is none.
    bool replaceExistingPort(std::shared_ptr<DmPortDescription> const& port);
    /// Moves the entry `name` before the entry at `position` in the order
    /// (size() moves it to the end). kFailure for an unknown name,
    /// kInvalidArgument for a position past the end; moving an entry to where
    /// it is already is kSuccess and does nothing.
    DmStatus reorderPortDescription(std::size_t position, std::string const& name);
    /// @}

private:
    std::shared_ptr<PortMap> m_ports;
};

} // namespace Kesto
