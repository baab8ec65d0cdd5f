#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/foundation/LinkedHashSet.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

class DmBaseValue;
class DmCompound;
class DmNode;
class DmPortDescription;
class DmWatchPoint;

/// An instance of a port description on a node: what is particular to one
/// node's port. It holds the default value, the member ports of a struct, the
/// entries of a multi-in or fan-in input, the ports it is connected to and an
/// optional watch point. Its name is its description's.
class KESTODM_API DmPort : public DmNamedEntity, public DmInstanceCounter<DmPort> {
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    using MemberMap = LinkedHashMap<std::string, std::shared_ptr<DmPort>, StringHasher, StringCompare>;
    using ConnectedPorts = LinkedHashSet<DmPort const*>;

    /// The entry that a connection moves to when a port turns fan-in.
    static constexpr char const kFirstEntryName[] = "element_0";

    /// A new port on `description` for `node`, with its default value and,
    /// for a struct, its members. `parent` is the port an entry or member
    /// belongs to.
    static std::shared_ptr<DmPort> newPort(std::shared_ptr<DmPortDescription> const& description,
                                           DmNode* node, DmPort* parent = nullptr);

    DmPort(InternalConstructor, std::shared_ptr<DmPortDescription> description, DmNode* node, DmPort* parent);
    DmPort(DmPort const&) = delete;
    ~DmPort() override;

    /// @name Identity
    /// @{
    std::string const& getName() const override;
    /// The node's full name, ".", and the port's path below the node.
    void resolveFullName(std::string& out) const override;
    /// Renames the description: through the definition when it is the
    /// definition's own, on the description alone otherwise (a self node's
    /// clone, an entry). An entry is re-keyed among its siblings.
    bool setName(std::string const& name, DmNameResolutionType type, DmNameResolveFlags flags) override;
    std::string getMapEntryKey() const { return getName(); }
    DmNode* getNode() const noexcept { return m_node; }
    DmPort* getParent() const noexcept { return m_extras ? m_extras->parent : nullptr; }
    bool isMember() const noexcept { return getParent() != nullptr; }
    std::shared_ptr<DmPortDescription> const& getPortDescription() const noexcept { return m_description; }
    std::shared_ptr<DmPortDescription const> getConstPortDescription() const noexcept {
        return m_description;
    }
    /// Swaps the description for one of the same name; false otherwise.
    bool setPortDescription(std::shared_ptr<DmPortDescription> const& description);
    bool isInput() const;
    bool isOutput() const;
    bool isMultiIn() const;
    bool isFanIn() const noexcept { return m_fanIn; }
    /// @}

    /// @name Values
    /// @{
    /// The port's value. The implicit default of a type without members is
    /// made at the first call: most ports of a loaded graph are connected or
    /// take a value from the file, and never need it.
    std::shared_ptr<DmBaseValue> const& getDefaultValue() const {
        if (m_defaultPending)
            makeDefaultValue();
        return m_defaultValue;
    }
    /// True when the default value has been set, not only implied by the type.
    bool hasImmediateValue() const;
    /// Sets the value the port takes. A value of another type changes the
    /// type of the description, except on a member or on a value node's port,
    /// which refuse it.
    bool setDefaultValue(std::shared_ptr<DmBaseValue> const& value);
    /// The value the port takes when nothing is connected to it.
    std::shared_ptr<DmBaseValue> findUnconnectedPortValue() const;
    /// The override of the port of this name on the one overload of the
    /// node's set; null on a set of several overloads and on an overload.
    std::shared_ptr<DmBaseValue> getDefaultValueOverride() const;
    /// Builds the default value from the description's type and the members
    /// of a struct.
    void initialize();
    /// @}

    /// @name Members and entries
    /// @{
    /// The member ports of a struct, or the entries of a multi-in or fan-in port.
    MemberMap const& getMembers() const;
    bool hasMembers() const noexcept { return m_extras && !m_extras->members.empty(); }
    /// Adds `port` under its name; false for a taken name.
    bool addMember(std::shared_ptr<DmPort> const& port);
    /// The member at the "."-separated `path`; false when there is none.
    bool getMember(std::string const& path, std::shared_ptr<DmPort>& out) const;
    /// Adds an input entry named after `name`, made unique among the entries,
    /// of the auto type on a fan-in port and of the port's type on a multi-in
    /// port. kFailure on other ports, kInvalidArgument for a refused name.
    DmStatus addMultiInPortEntry(std::string const& name, std::shared_ptr<DmPort>& out,
                                 DmNameResolveFlags flags = kNameVerbatim);
    /// kFailure when `entry` is not an entry of this multi-in or fan-in port.
    DmStatus removeMultiInPortEntry(std::shared_ptr<DmPort> const& entry);
    /// Turns the port into a fan-in port with entries, or back. An input
    /// without members only (kFailure otherwise). A connection to the port
    /// moves to the entry "element_0"; switching off keeps only the first
    /// connection of the entries, moved back to the port.
    DmStatus setFanIn(bool fanIn);
    /// @}

    /// @name Connections
    /// @{
    ConnectedPorts const& getConnectedPorts() const noexcept { return m_connectedPorts; }
    /// @}

    /// @name Watch point
    /// @{
    /// The port's watch point, made at the first call.
    std::shared_ptr<DmWatchPoint> const& setWatchPoint();
    /// The port's watch point; null when it has none.
    std::shared_ptr<DmWatchPoint> const& getWatchPoint() const noexcept;
    /// kFailure when the port has none.
    DmStatus removeWatchPoint();
    /// @}

private:
    friend class DmConnection;
    friend class DmNode;

    /// Takes `value` as default and builds the member ports of a struct on
    /// the members of that value.
    void initializeFrom(std::shared_ptr<DmBaseValue> const& value);
    /// Makes the implicit default that initialize() left for later.
    void makeDefaultValue() const;
    /// Stores `value` and rewrites the members' values from it, recursively.
    void updatePortValue(std::shared_ptr<DmBaseValue> const& value);
    MemberMap& members();
    /// The members or entries, or null while the port never had any.
    MemberMap* memberMap() const noexcept { return m_extras ? &m_extras->members : nullptr; }
    /// Clears the node pointer of this port and its members, when the node dies.
    void forgetNode() noexcept;
    /// Points the struct members at the members of the port's description.
    void rebindMembers();
    /// Breaks the connections of the members, which are about to be dropped.
    void breakMemberConnections();
    /// The compound of the port's node, or null.
    DmCompound* ownerCompound() const noexcept;

    // The flags first: they fit in the padding at the end of the base class.
    bool m_fanIn;
    mutable bool m_defaultPending = false;
    std::shared_ptr<DmPortDescription> m_description;
    DmNode* m_node;
    mutable std::shared_ptr<DmBaseValue> m_defaultValue;
    ConnectedPorts m_connectedPorts;
    // What few ports have, kept apart so that the many plain ports of a graph
    // stay small: the port an entry or member belongs to, the port's own
    // members or entries, and a watch point. Made when first needed.
    struct Extras {
        DmPort* parent = nullptr;
        MemberMap members;
        std::shared_ptr<DmWatchPoint> watchPoint;
    };
    Extras& extras();
    std::unique_ptr<Extras> m_extras;
};

} // namespace Kesto
