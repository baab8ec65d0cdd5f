#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/graph/DmLoopingCompound.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

/// A counted loop, which may also run over arrays: its limit and counter
/// ports carry kIterationLimit and kIterationCounter, its arrays
/// kIterationTarget. A state pair joins two targets or two ports that are
/// no targets, never one of each.
///
/// Made by createIterateCompound, initialized and ready for ports.
class KESTODM_API DmIterateCompound : public DmLoopingCompound, public DmInstanceCounter<DmIterateCompound> {
public:
    static constexpr char const kIcon[] = "../icons/LoopIterate.svg";

    /// @name Construction
    /// @{
    /// A new iterate loop, initialized and without ports; null when `flags`
    /// refuse the name.
    static std::shared_ptr<DmIterateCompound> createIterateCompound(std::string const& name,
                                                                    DmNameResolveFlags flags = kNameVerbatim);

    DmIterateCompound(InternalConstructor, std::string name);
    ~DmIterateCompound() override;

    /// A new, initialized and empty iterate loop of the same name.
    std::shared_ptr<DmCompound> clone() const override;
    /// @}

    /// @name Ports
    /// @{
    /// Links the self node's ports `first` and `second` as a state pair;
    /// false when one is missing, when one is a target and the other is not,
    /// or when the link is refused.
    bool linkStatePorts(std::string const& first, std::string const& second);
    /// Dissolves the state link of the self node's port `name`; false when
    /// the port is missing or not linked.
    bool resetStatePort(std::string const& name);
    /// @}

private:
    bool isArrayLoop() const override;
};

} // namespace Kesto
