#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

/// A compound whose inside runs repeatedly: the common base of the while,
/// iterate and for-each loops (DmWhileCompound, DmIterateCompound,
/// DmForEachCompound). The model holds the port rules of a loop only;
/// running it is left to the components that execute graphs.
///
/// The loop roles of the ports (IterationAttribute) carry its meaning. Pairs
/// of ports that a loop carries over iterations are linked on the self node's
/// descriptions, where the inside of the loop sees them. A port that a loop
/// iterates over (kIterationTarget) is seen from the inside one element at a
/// time: its self node port has the array's element type.
///
/// Loops are made by the factories of the derived classes, which hand them
/// out initialized and ready for ports. Each kind carries its icon in its metadata
/// under "icon".
class KESTODM_API DmLoopingCompound : public DmCompound, public DmInstanceCounter<DmLoopingCompound> {
public:
    class DmLoopingSelfNode;

    /// The metadata key of a loop's icon.
    static constexpr char const kIconKey[] = "icon";

    ~DmLoopingCompound() override;

    /// @name Construction
    /// @{
    /// Makes the looping self node, with the loop's array flag, and
    /// initializeFromSelf.
    void initialize() override;
    /// @}

    /// @name Ports
    /// @{
    /// Refuses a reserved port; otherwise dissolves the link of the port's
    /// self node description, so that its partner is left with no dangling
    /// link, and removes the port.
    bool removePortDescription(std::shared_ptr<DmPortDescription> const& port) override;
    /// @}

protected:
    /// `iconFile` is the file name of the kind's icon in "../icons/".
    DmLoopingCompound(InternalConstructor, std::string name, std::string const& iconFile);

    /// The description of the self node's port `name`, or null.
    DmPortDescription* findSelfPortDescription(std::string const& name) const;
    /// Links the self node's ports `first` and `second` with `attribute`;
    /// false when one is missing or the link is refused.
    bool linkSelfPorts(std::string const& first, std::string const& second, IterationAttribute attribute);
    /// Dissolves the link of the self node's port `name`; false when the port
    /// is missing or not linked.
    bool unlinkSelfPort(std::string const& name);

private:
    /// True when the loop runs over arrays, so that its self node may show
    /// output targets.
    virtual bool isArrayLoop() const = 0;
};

/// The self node of a loop. A port that the loop iterates over shows with the
/// element type of its array, since the inside sees one element at a time. A
/// loop that runs over no array (a while) never shows an output target.
class KESTODM_API DmLoopingCompound::DmLoopingSelfNode : public DmCompound::DmSelfNode {
public:
    DmLoopingSelfNode(DmCompound::InternalConstructor, std::string name, DmCompound* compound,
                      bool arrayLoop);
    ~DmLoopingSelfNode() override;

    /// True for the iterate and for-each loops, false for the while.
    bool isArrayLoop() const noexcept { return m_arrayLoop; }

    /// A target port shows inverted, with its array's element type (an
    /// unknown type for an unknown one). False for an output target of a loop
    /// over no array, and for a target whose type is neither an array nor
    /// unknown; nothing is added then.
    bool addPort(std::shared_ptr<DmPortDescription> const& port, bool invertDirections) override;
    /// The same view of a target for the port of its name; refused as addPort
    /// refuses, and the old port stays.
    bool replacePort(std::shared_ptr<DmPortDescription> const& port, bool invertDirections) override;

private:
    /// The description a target shows through, before the inversion: a clone
    /// with the element type. Null when the target must not or cannot show.
    std::shared_ptr<DmPortDescription> targetView(DmPortDescription const& port) const;

    bool m_arrayLoop;
};

} // namespace Kesto
