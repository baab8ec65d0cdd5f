#pragma once

#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

/// The definition of a terminal: a node at the end of a graph that takes
/// inputs only, where the graph delivers its results. A terminal is always
/// locked and has no overload siblings; placed in a scope, it becomes the
/// default overload of its set.
class KESTODM_API DmTerminalNodeDef : public DmOverload {
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    /// A new terminal definition, null when `flags` refuse the name.
    static std::shared_ptr<DmTerminalNodeDef> createTerminalNodeDef(std::string const& name,
                                                                    DmNameResolveFlags flags);

    DmTerminalNodeDef(InternalConstructor, std::string name);
    ~DmTerminalNodeDef() override;

    bool isTerminal() const override;
    bool isOverloadsLocked() const override;
    /// kSuccess for true, kFailure for false; nothing changes either way.
    DmStatus setOverloadsLocked(bool locked) override;
    /// DmNodeDef::setScope, then, on success, the default overload of its set.
    DmStatus setScope(DmScope* scope, DmNameResolutionType type) override;
    /// A terminal definition cannot be imported: kFailure.
    DmStatus import(std::shared_ptr<DmScope> const& scope, DmNameResolutionType type, std::string const& name,
                    std::shared_ptr<DmNodeDef>& out, ImportErrorFlags flags) override;
};

} // namespace Kesto
