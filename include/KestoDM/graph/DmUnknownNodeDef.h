#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

/// A placeholder for a definition that a file names but that could not be
/// found: nodes can be made on it and keep their ports and connections until
/// the proper definition replaces it.
class KESTODM_API DmUnknownNodeDef : public DmOverload, public DmInstanceCounter<DmUnknownNodeDef> {
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    /// A new placeholder, null when `flags` refuse the name.
    static std::shared_ptr<DmUnknownNodeDef> newUnknownNodeDef(std::string const& name,
                                                               DmNameResolveFlags flags = kNameVerbatim);

    DmUnknownNodeDef(InternalConstructor, std::string name);
    ~DmUnknownNodeDef() override;

    bool isUnknown() const override;
    /// A placeholder has nothing to copy: kFailure.
    DmStatus import(std::shared_ptr<DmScope> const& scope, DmNameResolutionType type, std::string const& name,
                    std::shared_ptr<DmNodeDef>& out, ImportErrorFlags flags) override;
};

} // namespace Kesto
