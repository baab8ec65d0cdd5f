#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/foundation/LinkedHashSet.h>
#include <KestoDM/graph/DmTerminalStates.h>
#include <KestoDM/platform/DmExport.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Kesto {

class DmBaseValue;
class DmCompound;
class DmConnection;
class DmNodeDef;
class DmPort;
class DmPortDescription;

/// An instance of a node definition inside a compound. Its ports mirror the
/// definition's port descriptions, in order, and follow every change of them.
/// The associative inputs of an associative definition collapse into one
/// multi-in port, whose entries are the connectable inputs.
///
/// A node holds its definition by a shared reference and is known to it by a
/// plain pointer; it is owned by its compound's map and knows the compound
/// by a plain pointer.
class KESTODM_API DmNode : public DmNamedEntity, public DmInstanceCounter<DmNode> {
protected:
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    using PortMap = LinkedHashMap<std::string, std::shared_ptr<DmPort>, StringHasher, StringCompare>;
    using iterator = PortMap::iterator;
    using const_iterator = PortMap::const_iterator;
    using ConnectionSet = LinkedHashSet<DmConnection*>;

    /// A new node on `def` (which may be null), null when `flags` refuse the
    /// name. `invertDirections` is handed to initialize: a compound's self
    /// node shows the compound's ports with their directions inverted.
    static std::shared_ptr<DmNode> createNode(std::string const& name, std::shared_ptr<DmNodeDef> const& def,
                                              bool invertDirections = false,
                                              DmNameResolveFlags flags = kNameVerbatim);

    DmNode(InternalConstructor, std::string name, std::shared_ptr<DmNodeDef> const& def);
    DmNode(DmNode const&) = delete;
    ~DmNode() override;

    /// @name Identity
    /// @{
    /// Valid with a definition.
    bool isValid() const override;
    virtual bool isSelfNode() const;
    DmNodeDef* getNodeDef() const noexcept { return m_nodeDef; }
    DmCompound* getOwner() const noexcept { return m_owner; }
    /// The compound that holds the node; set by DmCompound::addNode.
    void setOwner(DmCompound* owner) noexcept { m_owner = owner; }
    /// Renames the node, made unique in its compound: under kFailOnClash a
    /// taken or reserved name is refused. The self node refuses a reserved name.
    bool setName(std::string const& name, DmNameResolutionType type, DmNameResolveFlags flags) override;
    std::string getMapEntryKey() const { return getName(); }
    /// @}

    /// @name Ports
    /// @{
    PortMap const& getPorts() const noexcept { return m_ports; }
    /// The port of that name, or null.
    std::shared_ptr<DmPort> operator[](std::string const& name) const;
    const_iterator find(std::string const& name) const { return m_ports.find(name); }
    const_iterator begin() const noexcept { return m_ports.cbegin(); }
    const_iterator end() const noexcept { return m_ports.cend(); }
    /// The port that gathers the associative inputs, or null.
    std::shared_ptr<DmPort> getMultiInPort() const;
    /// Adds an entry to the multi-in port. kFailure on a node that is no
    /// associative instance; otherwise as DmPort::addMultiInPortEntry.
    DmStatus addMultiInPortEntry(std::string const& name, std::shared_ptr<DmPort>& out,
                                 DmNameResolveFlags flags = kNameVerbatim);
    DmStatus removeMultiInPortEntry(std::shared_ptr<DmPort> const& entry);
    /// The value an unconnected port `name` takes: the definition's answer,
    /// or the default of the port description's type on a self node or a
    /// node without definition.
    std::shared_ptr<DmBaseValue> findUnconnectedPortValue(std::string const& name) const;
    /// @}

    /// @name Port operations the definition calls
    /// @{
    /// Makes a port for each port of the definition (of the set's merged
    /// interface for a node on a lone overload without ports of its own).
    virtual void initialize(bool invertDirections);
    /// False for a taken name, and for a second associative input.
    virtual bool addPort(std::shared_ptr<DmPortDescription> const& port, bool invertDirections);
    virtual bool removePort(std::string const& name);
    /// Swaps the description of the port of that name; connections stay.
    virtual bool replacePort(std::shared_ptr<DmPortDescription> const& port, bool invertDirections);
    virtual DmStatus reorderPort(std::size_t position, std::string const& name);
    virtual bool renamePort(std::string const& oldName, std::string const& newName);
    /// @}

    /// @name Definition
    /// @{
    /// Moves the node onto `def`, whose ports must equal the current ones
    /// by name, direction and loop role (kInvalidArgument otherwise). kFailure
    /// for a node without definition and on a value node definition.
    DmStatus replaceNodeDef(std::shared_ptr<DmNodeDef> const& def);
    /// @}

    /// @name Connections
    /// @{
    ConnectionSet const& getConnections() const noexcept { return m_connections; }
    /// The ports at the far end of the connections of `port`; false when none.
    bool connectedTo(DmPort const& port, std::vector<std::shared_ptr<DmPort>>& out) const;
    std::size_t numConnections(DmPort const& port) const;
    /// @}

    DmTerminalStates& getTerminalStates() noexcept { return m_terminalStates; }
    DmTerminalStates const& getTerminalStates() const noexcept { return m_terminalStates; }

protected:
    /// For the self node of a compound, which must not own its definition.
    DmNode(InternalConstructor, std::string name, DmNodeDef* def);

private:
    friend class DmConnection;
    friend class DmNodeDef;
    friend class DmPort;

    void addConnection(DmConnection* connection) { m_connections.insert(connection); }
    void removeConnection(DmConnection* connection) { m_connections.erase(connection); }
    /// Re-keys the port `oldName` after its rename; nothing when it is absent.
    void rekeyPort(std::string const& oldName, std::string const& newName);
    /// Forgets a definition that goes away while the node lives on; the ports stay.
    void resetNodeDef();
    /// The description a self node's port is built on: a clone of `port`
    /// with the direction inverted, on the same definition.
    std::shared_ptr<DmPortDescription> invertedClone(DmPortDescription const& port) const;

    PortMap m_ports;
    DmPort* m_multiInPort = nullptr;
    ConnectionSet m_connections;
    DmNodeDef* m_nodeDef = nullptr;
    /// Keeps the definition alive while the node uses it; empty for a self node.
    std::shared_ptr<DmNodeDef> m_nodeDefHold;
    DmCompound* m_owner = nullptr;
    DmTerminalStates m_terminalStates;
};

} // namespace Kesto
