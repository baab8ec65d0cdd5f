#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/graph/DmLoopingCompound.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

class DmPort;

/// A loop that runs while its condition holds: the bool output
/// "looping_condition", made by initialize and seen from the inside as an
/// input of the self node. The name is reserved: the port cannot be removed,
/// and another port so named is renamed. A while runs over no array, so its
/// self node never shows an output target.
///
/// Made by createWhileCompound, initialized and ready for ports.
class KESTODM_API DmWhileCompound : public DmLoopingCompound, public DmInstanceCounter<DmWhileCompound> {
public:
    static constexpr char const kIcon[] = "../icons/LoopDo_While.svg";
    static constexpr char const kLoopingConditionPortName[] = "looping_condition";

    /// @name Construction
    /// @{
    /// A new while loop, initialized, with its condition output as its only
    /// port; null when `flags` refuse the name.
    static std::shared_ptr<DmWhileCompound> createWhileCompound(std::string const& name,
                                                                DmNameResolveFlags flags = kNameVerbatim);

    DmWhileCompound(InternalConstructor, std::string name);
    ~DmWhileCompound() override;

    /// Makes the condition output, then the looping self node.
    void initialize() override;
    /// A new, initialized while loop of the same name, with its condition only.
    std::shared_ptr<DmCompound> clone() const override;
    /// @}

    /// @name Ports
    /// @{
    /// True exactly for "looping_condition".
    bool isReservedPortName(std::string const& name) const override;
    /// The self node's "looping_condition" port, or null.
    std::shared_ptr<DmPort> getLoopingConditionPort() const;
    /// Links the self node's ports `first` (an output there, a compound
    /// input) and `second` as the two ends of a state carried from one
    /// iteration to the next; false when one is missing or the link is refused.
    bool linkStatePorts(std::string const& first, std::string const& second);
    /// Dissolves the state link of the self node's port `name`; false when
    /// the port is missing or not linked.
    bool resetStatePort(std::string const& name);
    /// @}

private:
    bool isArrayLoop() const override;
};

} // namespace Kesto
