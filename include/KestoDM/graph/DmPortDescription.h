#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/platform/DmExport.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Kesto {

class DmBaseType;
class DmBaseValue;
class DmNodeDef;

/// Which way data flows through a port.
enum PortDirection : std::uint8_t {
    kDirectionUnset = 0, ///< under construction; such a port is not complete
    kDirectionInput = 1,
    kDirectionOutput = 2,
};

/// What sort of port a description declares.
enum PortKind : std::uint8_t {
    kPortPlain = 0,
    kPortAssociative = 1,  ///< one of the two inputs of an associative definition
    kPortMultiIn = 2,      ///< an input with named entries, each a port of its own
    kPortDefaultFanIn = 3, ///< an input that gathers several connections into an array
};

/// The role of a port in a loop.
enum IterationAttribute : std::uint8_t {
    kIterationNone = 0,
    kIterationTarget = 1,      ///< the array iterated over
    kIterationState = 2,       ///< carried between iterations; kept by array ports only
    kIterationLimit = 3,       ///< the iteration count limit
    kIterationInOutTarget = 4, ///< a target both read and written
    kIterationFeedback = 5,    ///< the two ends of a feedback link
    kIterationCounter = 6,     ///< the current iteration number
};

/// How a native operator receives or returns the port's datum.
enum CppPassingConvention : std::uint8_t {
    kPassByValue = 0,
    kPassByReference = 1,
    kPassByPtrValue = 2,
    kPassByReferenceToPtr = 3,
    kPassByReturnValue = 4,
    kPassByMutablePtrValue = 5,
    kPassByReferenceToMutablePtr = 6,
    kPassInvalid = 7, ///< none set
};

/// The declaration of one input or output of a node definition: name, type,
/// direction, kind, loop role, native passing convention and default value.
///
/// A description is shared between its definition (through the definition's
/// DmPortsInterface) and the ports that nodes make from it. A struct-typed
/// description has member descriptions, one per struct member, built when
/// first asked for; members cannot be changed on their own. Two descriptions
/// of a definition may be linked as a pair for a loop.
class KESTODM_API DmPortDescription : public DmNamedEntity, public DmInstanceCounter<DmPortDescription> {
protected:
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    using MemberMap =
        LinkedHashMap<std::string, std::shared_ptr<DmPortDescription>, StringHasher, StringCompare>;

    /// Bit of the flags: a passing convention was set.
    static constexpr std::uint32_t kHasCppPassingConvention = 1u;

    /// @name Construction
    /// @{
    /// A new description, null when `flags` refuse the name. Complete when it
    /// has a type and a direction.
    static std::shared_ptr<DmPortDescription> newPortDescription(std::string const& name,
                                                                 std::shared_ptr<DmBaseType const> type,
                                                                 PortDirection direction,
                                                                 DmNameResolveFlags flags);
    /// A copy of `source`: type, direction, flags, passing convention, loop
    /// role, kind and default value override. Link, definition, parent and
    /// members are not copied.
    static std::shared_ptr<DmPortDescription> newPortDescription(DmPortDescription const& source);
    /// The same copy, given `type` through setType.
    static std::shared_ptr<DmPortDescription> newPortDescription(DmPortDescription const& source,
                                                                 std::shared_ptr<DmBaseType const> type);
    /// An input of kind kPortMultiIn and of the auto type.
    static std::shared_ptr<DmPortDescription> newMultiInPortDescription(std::string const& name,
                                                                        DmNameResolveFlags flags);
    /// The copy of newPortDescription(source), of this description's class.
    virtual std::shared_ptr<DmPortDescription> clone() const;

    DmPortDescription(InternalConstructor, std::string name, std::shared_ptr<DmBaseType const> type,
                      PortDirection direction);
    /// Copies what newPortDescription(source) copies.
    DmPortDescription(InternalConstructor, DmPortDescription const& source);
    ~DmPortDescription() override;
    /// @}

    /// @name Queries
    /// @{
    std::shared_ptr<DmBaseType const> const& getType() const noexcept { return m_type; }
    PortDirection getDirection() const noexcept { return m_direction; }
    bool isInput() const noexcept { return m_direction == kDirectionInput; }
    bool isOutput() const noexcept { return m_direction == kDirectionOutput; }
    PortKind getPortKind() const noexcept { return m_portKind; }
    bool isAssociative() const noexcept { return m_portKind == kPortAssociative; }
    bool isMultiIn() const noexcept { return m_portKind == kPortMultiIn; }
    bool isDefaultFanIn() const noexcept { return m_portKind == kPortDefaultFanIn; }
    IterationAttribute getIterationAttribute() const noexcept { return m_iterationAttribute; }
    bool isIterationTarget() const noexcept { return m_iterationAttribute == kIterationTarget; }
    bool isIterationState() const noexcept { return m_iterationAttribute == kIterationState; }
    bool isIterationLimit() const noexcept { return m_iterationAttribute == kIterationLimit; }
    bool isIterationInOutTarget() const noexcept { return m_iterationAttribute == kIterationInOutTarget; }
    bool isFeedback() const noexcept { return m_iterationAttribute == kIterationFeedback; }
    bool isIterationCounter() const noexcept { return m_iterationAttribute == kIterationCounter; }
    CppPassingConvention getCppPassingConvention() const noexcept { return m_cppPassingConvention; }
    bool hasCppPassingConvention() const noexcept { return (m_flags & kHasCppPassingConvention) != 0; }
    std::uint32_t getFlags() const noexcept { return m_flags; }
    std::shared_ptr<DmBaseValue> const& getDefaultValueOverride() const noexcept {
        return m_defaultValueOverride;
    }
    /// The partner of a link, or null.
    DmPortDescription* getLinkedPort() const noexcept { return m_linkedPort; }
    bool isLinked() const noexcept { return m_linkedPort != nullptr; }
    /// The description of the struct port this one is a member of, or null.
    DmPortDescription* getParent() const noexcept { return m_parent; }
    bool isStructMember() const noexcept { return m_parent != nullptr; }
    /// The definition of the topmost description: members reach the definition
    /// of the port that holds them.
    DmNodeDef* getNodeDef() const noexcept;
    /// Placeholder descriptions of a definition that could not be read answer true.
    virtual bool isUnknown() const;
    /// The key of the description in an interface: its name.
    std::string getMapEntryKey() const { return getName(); }
    /// A member's full name is its parent's, ".", and its own name.
    void resolveFullName(std::string& out) const override;
    /// Equal names, directions and loop roles, and so on along the links of
    /// both sides, which must end together. Type, kind and default value play
    /// no part. A walk that comes back to the pair it started from ends as equal.
    bool operator==(DmPortDescription const& other) const;
    bool operator!=(DmPortDescription const& other) const { return !(*this == other); }
    /// @}

    /// @name Members
    /// @{
    /// The member descriptions, built first if needed; empty unless the type
    /// is a struct.
    MemberMap const& getMembers();
    /// The member at the "."-separated `path`; false when there is none.
    bool getMember(std::string const& path, std::shared_ptr<DmPortDescription>& out);
    /// Builds the members from the struct type, once.
    void initializeMembers();
    /// @}

    /// @name Edits
    /// Setters refuse with false or kFailure and then change nothing.
    /// @{
    /// Stores the definition without any test; the definition's port
    /// operations call it.
    void setNodeDef(DmNodeDef* def) noexcept { m_nodeDef = def; }
    /// Changes the type. An equivalent type is always taken. Otherwise a
    /// member refuses, as do a value node definition's ports, and a terminal
    /// definition's ports refuse the auto type. The members are rebuilt on
    /// demand, and a loop state role is dropped for a type that is no array.
    bool setType(std::shared_ptr<DmBaseType const> type);
    /// The setters below refuse on a member; on a struct port they also reach
    /// every member.
    bool setDirection(PortDirection direction);
    bool setIterationAttribute(IterationAttribute attribute);
    bool setCppPassingConvention(CppPassingConvention convention);
    /// Store without any test, for the reader.
    void assignDirection(PortDirection direction) noexcept { m_direction = direction; }
    void assignIterationAttribute(IterationAttribute attribute) noexcept { m_iterationAttribute = attribute; }
    void assignCppPassingConvention(CppPassingConvention convention) noexcept;
    /// Stores the kind without any test, for the reader and for entries.
    void assignPortKind(PortKind kind) noexcept { m_portKind = kind; }
    /// Changes the kind, and the kind of the port of this name on the other
    /// overloads of the definition's set. Multi-in and fan-in need an input;
    /// fan-in needs a port that is no member and is of array or auto type.
    DmStatus setPortKind(PortKind kind);
    /// Makes the port associative or plain; kFailure when the definition is
    /// not associative.
    DmStatus setAssociative(bool associative);
    /// Sets the value a node's unconnected port takes. A value of another
    /// type is refused on a member and on a value node definition's port,
    /// and taken elsewhere; null is refused.
    bool setDefaultValueOverride(std::shared_ptr<DmBaseValue> const& value);
    /// Renames through the definition, which makes the name unique among its
    /// ports and tells its nodes.
    bool setName(std::string const& name, DmNameResolutionType type, DmNameResolveFlags flags) override;
    /// True drops the members, so that they are rebuilt from the final type.
    void setCompleteness(bool complete) override;
    /// Pairs this port with `other` for a loop, both getting `attribute`.
    /// Refused for members, for two inputs or two outputs, and for ports
    /// already linked.
    bool link(DmPortDescription& other, IterationAttribute attribute);
    /// Dissolves the link, resetting the loop role of both; false without one.
    bool unlink();
    /// @}

private:
    /// The map of members, made empty when missing.
    MemberMap& members();
    /// Writes a value to the members, recursively.
    template <class Setter>
    void forEachMember(Setter const& setter);

    std::shared_ptr<DmBaseType const> m_type;
    PortDirection m_direction;
    DmPortDescription* m_linkedPort = nullptr;
    DmNodeDef* m_nodeDef = nullptr;
    DmPortDescription* m_parent = nullptr;
    std::shared_ptr<MemberMap> m_members;
    std::uint32_t m_flags = 0;
    CppPassingConvention m_cppPassingConvention = kPassInvalid;
    IterationAttribute m_iterationAttribute = kIterationNone;
    PortKind m_portKind = kPortPlain;
    std::shared_ptr<DmBaseValue> m_defaultValueOverride;
};

} // namespace Kesto
