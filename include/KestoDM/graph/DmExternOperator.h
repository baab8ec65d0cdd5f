#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/platform/DmExport.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Kesto {

/// A node definition whose body is compiled code outside the graph. The
/// library records what a host needs to find and call that code; it loads
/// and runs nothing itself. An external operator cannot be imported into
/// another scope: its body is not a graph that could be copied.
///
/// Made by createExternOperator; DmCppOperator adds the native symbol.
class KESTODM_API DmExternOperator : public DmOverload, public DmInstanceCounter<DmExternOperator> {
protected:
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    /// How an operator may be cancelled while it runs. A library gives its
    /// operators a default policy; an operator's own annotation overrides it.
    enum CancellationPolicy : std::uint8_t {
        kNone = 0,
        kSafe = 1,
        kUnsafe = 2,
    };

    /// @name Construction
    /// @{
    /// A new operator, null when `flags` refuse the name. `packName` names
    /// the pack the operator is saved with; empty when none.
    static std::shared_ptr<DmExternOperator> createExternOperator(std::string const& name,
                                                                  CancellationPolicy cancellationPolicy,
                                                                  std::string const& packName = std::string(),
                                                                  DmNameResolveFlags flags = kNameVerbatim);

    DmExternOperator(InternalConstructor, std::string name, CancellationPolicy cancellationPolicy,
                     std::string packName);
    ~DmExternOperator() override;

    /// Nothing to prepare: the body lies outside the graph.
    virtual void initialize();
    /// @}

    /// @name Attributes
    /// @{
    CancellationPolicy getCancellationPolicy() const noexcept { return m_cancellationPolicy; }
    std::string const& getPackName() const noexcept { return m_packName; }
    bool isPromoter() const override;
    /// Stores the flag; true.
    bool setPromoter(bool promoter) override;
    /// @}

    /// @name Placement
    /// @{
    /// An external operator cannot be copied into another scope: kFailure.
    DmStatus import(std::shared_ptr<DmScope> const& scope, DmNameResolutionType type, std::string const& name,
                    std::shared_ptr<DmNodeDef>& out, ImportErrorFlags flags) override;
    /// @}

private:
    bool m_isPromoter = false;
    CancellationPolicy m_cancellationPolicy;
    std::string m_packName;
};

} // namespace Kesto
