#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

/// A placeholder description: the port of a definition that could not be
/// read, or one made for a connection to such a definition. It behaves as
/// any description, and its copies are placeholders too.
class KESTODM_API DmUnknownPortDescription : public DmPortDescription,
                                             public DmInstanceCounter<DmUnknownPortDescription> {
public:
    static std::shared_ptr<DmUnknownPortDescription>
    newPortDescription(std::string const& name, std::shared_ptr<DmBaseType const> type,
                       PortDirection direction, DmNameResolveFlags flags);
    static std::shared_ptr<DmUnknownPortDescription> newPortDescription(DmPortDescription const& source);
    static std::shared_ptr<DmUnknownPortDescription>
    newPortDescription(DmPortDescription const& source, std::shared_ptr<DmBaseType const> type);
    static std::shared_ptr<DmUnknownPortDescription> newMultiInPortDescription(std::string const& name,
                                                                               DmNameResolveFlags flags);
    std::shared_ptr<DmPortDescription> clone() const override;

    DmUnknownPortDescription(InternalConstructor, std::string name, std::shared_ptr<DmBaseType const> type,
                             PortDirection direction);
    DmUnknownPortDescription(InternalConstructor, DmPortDescription const& source);
    ~DmUnknownPortDescription() override;

    bool isUnknown() const override;
};

} // namespace Kesto
