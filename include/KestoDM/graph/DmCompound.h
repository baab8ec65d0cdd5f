#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/graph/DmTerminalStates.h>
#include <KestoDM/platform/BaIndexedVector.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/String.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Kesto {

class DmConnection;
class DmMessageLogger;
class DmPort;

/// A graph that is at once a node definition and a scope: it has ports like
/// any definition, nodes and the connections between them inside, and may
/// hold definitions of its own (private to it).
///
/// Its ports are seen from the inside through the self node, whose ports
/// mirror them with the direction inverted: a compound input is an output of
/// the self node, a legal source inside, and a compound output an input of
/// the self node. The compound owns its nodes, its connections and its self
/// node; they know it by plain pointers.
///
/// Made by createCompound, which hands it out initialized (its self node made)
/// and ready for ports. It reports to the log of its library (setLibrary);
/// without a library its refusals are told by their results alone.
class KESTODM_API DmCompound : public DmOverload, public DmScope, public DmInstanceCounter<DmCompound> {
protected:
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    class DmSelfNode;

    /// Why makeConnection refused; the numbers are fixed.
    enum ConnectionFailureType : std::uint8_t {
        kConnectionOk = 0,
        kConnectionRedundant = 1,
        kConnectionTargetTaken = 2,
        kConnectionNodesNotInCompound = 3,
        kConnectionSourcePortMissing = 4,
        kConnectionTargetPortMissing = 5,
        kConnectionSingleNode = 6,
        kConnectionSourceNotOutput = 7,
        kConnectionTargetNotInput = 8,
        kConnectionSameDirection = 9,
    };

    using NodeMap = LinkedHashMap<std::string, std::shared_ptr<DmNode>, StringHasher, StringCompare>;
    using ConnectionList = std::vector<std::shared_ptr<DmConnection>>;
    using ReservedNames = BaIndexedVector<String>;

    /// @name Construction
    /// @{
    /// A new compound, initialized and without ports; null when `flags`
    /// refuse the name. Placed in a scope where an overload set of its name
    /// exists (kAsOverload), it starts from the set's interface.
    static std::shared_ptr<DmCompound> createCompound(std::string const& name,
                                                      DmNameResolveFlags flags = kNameVerbatim);

    DmCompound(InternalConstructor, std::string name);
    DmCompound(DmCompound const&) = delete;
    ~DmCompound() override;

    /// Makes the self node, named as the compound, and initializeFromSelf;
    /// nothing when there is one. The factories call it.
    virtual void initialize();
    /// Takes `selfNode` as the self node. An overload of a set starts from the
    /// set's interface: its ports are cloned in first. Then the self node
    /// gets its ports and its owner.
    void initializeFromSelf(std::shared_ptr<DmSelfNode> const& selfNode);
    /// A new, initialized and empty compound of the same name and class.
    virtual std::shared_ptr<DmCompound> clone() const;
    /// @}

    /// @name Identity
    /// @{
    bool isValid() const override;
    DmNamedEntity* getAsNamedEntity() override { return this; }
    std::string const& getLocalScopeName() const override { return getName(); }
    /// Renames the compound, then its self node to match.
    bool setName(std::string const& name, DmNameResolutionType type, DmNameResolveFlags flags) override;
    /// Places the compound as a definition; as a scope it nests where it is
    /// registered. Joining a set as an initialized overload without ports
    /// of its own, it takes the set's ports first (see initializeFromSelf).
    DmStatus setScope(DmScope* scope, DmNameResolutionType type) override;
    /// The library's logger; null without a library.
    std::shared_ptr<DmMessageLogger> getLogger() const override;
    /// Sets the URI here and on every compound nested in this one.
    void setURI(std::shared_ptr<DmURI> const& uri) override;
    bool isPromoter() const override;
    /// Stores the flag; true.
    bool setPromoter(bool promoter) override;
    /// Copies the compound, node by node, into `scope` under `name`.
    DmStatus import(std::shared_ptr<DmScope> const& scope, DmNameResolutionType type, std::string const& name,
                    std::shared_ptr<DmNodeDef>& out, ImportErrorFlags flags) override;
    /// @}

    /// @name Ports
    /// The port operations of a definition; the self node follows them as
    /// every instance does.
    /// @{
    /// Unique among the compound's ports; a reserved port name is renamed
    /// even when it is free.
    void getUniquePortName(std::string& name) const override;
    /// False here; loops reserve the names of the ports they make.
    virtual bool isReservedPortName(std::string const& name) const;
    /// Links two of the compound's ports as a feedback pair; false when one is missing.
    virtual bool linkFeedbackPorts(std::string const& first, std::string const& second);
    /// The definition's answer, or else the value of the self node's port.
    std::shared_ptr<DmBaseValue> findUnconnectedPortValue(std::string const& name) const override;
    /// @}

    /// @name Self node
    /// @{
    std::shared_ptr<DmNode> getSelfNode() const;
    std::shared_ptr<DmSelfNode> const& getInternalSelfNode() const noexcept { return m_selfNode; }
    /// @}

    /// @name Nodes
    /// @{
    NodeMap const& getNodes() const noexcept { return *m_nodes; }
    /// The node of that name, or null.
    std::shared_ptr<DmNode> findNode(std::string const& name) const;
    /// Adds `node`, which must have no owner. Under kFailOnClash a taken or
    /// reserved name is refused, under kMakeUnique the node is renamed, under
    /// kAsOverload the name must be free. kInvalidArgument on refusal.
    DmStatus addNode(std::shared_ptr<DmNode> const& node, DmNameResolutionType type);
    /// Breaks the node's connections and takes it out; kInvalidArgument when
    /// it is not a node of this compound.
    DmStatus removeNode(std::shared_ptr<DmNode> const& node);
    std::shared_ptr<ReservedNames> const& getReservedNodeNames() const noexcept {
        return m_reservedNodeNames;
    }
    /// Names that nodes may not take. Refused (kInvalidArgument) when a node
    /// has one of them already; null clears them.
    DmStatus setReservedNodeNames(std::shared_ptr<ReservedNames> names);
    bool isReservedNodeName(std::string const& name) const;
    /// Makes `name` unique among the nodes and the reserved names; the
    /// `exception` (a node's present name) never counts as taken.
    void getUniqueNodeName(std::string& name, std::string const& exception) const;
    /// @}

    /// @name Connections
    /// @{
    ConnectionList const& getConnections() const noexcept { return m_connections; }
    /// The connections that touch the compound's interface: the self node's.
    DmNode::ConnectionSet const& getBindingConnections() const;
    /// Connects `source`, an output, to `target`, an input of another node
    /// (or of the self node, to pass a value through). kInvalidArgument with
    /// `failure` telling why, and a message in the library's log; with
    /// `replace`, a connection already feeding `target` is broken first and
    /// the result is kSuccessReplaced.
    DmStatus makeConnection(std::shared_ptr<DmPort> const& source, std::shared_ptr<DmPort> const& target,
                            bool replace, std::shared_ptr<DmConnection>& out, ConnectionFailureType& failure);
    DmStatus makeConnection(std::shared_ptr<DmPort> const& source, std::shared_ptr<DmPort> const& target,
                            std::shared_ptr<DmConnection>& out);
    /// The same by paths "node.port"; ".port" is a port of the self node.
    DmStatus makeConnection(std::string const& sourcePath, std::string const& targetPath, bool replace,
                            std::shared_ptr<DmConnection>& out, ConnectionFailureType& failure);
    DmStatus makeConnection(std::string const& sourcePath, std::string const& targetPath,
                            std::shared_ptr<DmConnection>& out);
    /// Breaks every connection from `source` to `target`: kFailure when there
    /// is none, kConnectionError for two ports of one direction.
    DmStatus breakConnection(std::shared_ptr<DmPort> const& source, std::shared_ptr<DmPort> const& target);
    /// Breaks every connection of the node, either way.
    DmStatus breakAllConnections(std::shared_ptr<DmNode> const& node);
    /// Breaks every connection that `port` (or one of its entries or
    /// members) feeds as an output, or is fed by as an input.
    DmStatus breakAllConnections(std::shared_ptr<DmPort> const& port);
    /// Breaks every connection of the compound.
    DmStatus breakAllConnections();
    /// @}

    /// @name Terminals
    /// @{
    DmTerminalStates& getDefaultTerminalStates() noexcept { return m_defaultTerminalStates; }
    DmTerminalStates const& getDefaultTerminalStates() const noexcept { return m_defaultTerminalStates; }
    /// @}

protected:
    /// For the factories of derived classes: the compound made and initialized.
    template <class Compound>
    static std::shared_ptr<Compound> initialized(std::shared_ptr<Compound> compound) {
        if (compound) {
            compound->initialize();
        }
        return compound;
    }

private:
    friend class DmNode;
    friend class DmOverloadSet;

    /// Adds clones of the ports of `set`'s interface that the compound lacks.
    void takeSetInterface(DmOverloadSet const& set);
    /// Called by `set` as the compound joins it, before the interfaces are
    /// compared: an initialized compound with no ports but those it makes
    /// itself (a loop's reserved ones) takes the set's interface.
    void joinSet(DmOverloadSet const& set);

    /// Re-keys the node `oldName` after its rename, in place.
    bool renameNode(std::string const& oldName, std::string const& newName);
    /// Disconnects and drops the connections `doomed` selects; true when any went.
    template <class Predicate>
    bool eraseConnections(Predicate const& doomed);
    /// Logs a refused connection or disconnection.
    void reportConnectionFailure(ConnectionFailureType failure, DmNamedEntity const* entity,
                                 std::string const& sourceName, std::string const& targetName,
                                 bool connection) const;
    /// Whether `node` is this compound's self node or one of its nodes.
    bool holdsNode(DmNode const* node) const;
    /// makeConnection once both nodes are known to be held here.
    DmStatus connectHeldPorts(std::shared_ptr<DmPort> const& source, std::shared_ptr<DmPort> const& target,
                              bool replace, std::shared_ptr<DmConnection>& out,
                              ConnectionFailureType& failure);
    /// Whether `port` is still held by its node (and its parent, for an entry or member).
    static bool isPortOfItsNode(DmPort const& port);
    /// Whether a node on `def` inside this compound would make it contain itself.
    bool wouldContainItself(DmNodeDef const* def) const;

    std::shared_ptr<DmSelfNode> m_selfNode;
    std::shared_ptr<NodeMap> m_nodes;
    ConnectionList m_connections;
    std::shared_ptr<ReservedNames> m_reservedNodeNames;
    bool m_isPromoter = false;
    DmTerminalStates m_defaultTerminalStates;
};

/// The node through which a compound sees its own ports from the inside:
/// every port shows with its direction inverted.
class KESTODM_API DmCompound::DmSelfNode : public DmNode {
public:
    DmSelfNode(DmCompound::InternalConstructor, std::string name, DmCompound* compound);
    ~DmSelfNode() override;

    bool isSelfNode() const override;
    void initialize(bool invertDirections) override;
    bool addPort(std::shared_ptr<DmPortDescription> const& port, bool invertDirections) override;
    bool replacePort(std::shared_ptr<DmPortDescription> const& port, bool invertDirections) override;
};

} // namespace Kesto
