#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/graph/DmLoopingCompound.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

/// A loop over the elements of arrays. Its outputs are arrays gathered over
/// the iterations, so every output is a target (kIterationTarget) and shows
/// inside with the element type. An in-out pair joins an input array that
/// the loop reads with the output array it writes.
///
/// Made by createForEachCompound, initialized and ready for ports.
class KESTODM_API DmForEachCompound : public DmLoopingCompound, public DmInstanceCounter<DmForEachCompound> {
public:
    static constexpr char const kIcon[] = "../icons/LoopForEach.svg";

    /// @name Construction
    /// @{
    /// A new for-each loop, initialized and without ports; null when `flags`
    /// refuse the name.
    static std::shared_ptr<DmForEachCompound> createForEachCompound(std::string const& name,
                                                                    DmNameResolveFlags flags = kNameVerbatim);

    DmForEachCompound(InternalConstructor, std::string name);
    ~DmForEachCompound() override;

    /// A new, initialized and empty for-each loop of the same name.
    std::shared_ptr<DmCompound> clone() const override;
    /// @}

    /// @name Ports
    /// @{
    /// An output that is no target goes in as a clone of `port` made a
    /// target (so `port` itself is not added); other ports go in as given.
    bool addPortDescription(std::shared_ptr<DmPortDescription> const& port,
                            DmNameResolutionType type) override;
    /// Links the self node's ports `first` and `second` as an in-out target
    /// pair; false when one is missing or the link is refused.
    bool setInOutPort(std::string const& first, std::string const& second);
    /// Dissolves the link of the self node's port `name`; false when the port
    /// is missing or not linked.
    bool resetInOutPort(std::string const& name);
    /// Whether the self node's port `name` carries the state role; false
    /// when it is missing. A pair made by setInOutPort carries the in-out
    /// target role, so its ports answer false.
    bool isInOutPort(std::string const& name) const;
    /// @}

private:
    bool isArrayLoop() const override;
};

} // namespace Kesto
