#pragma once

#include <KestoDM/platform/DmExport.h>

#include <memory>

namespace Kesto {

class DmNamedEntity;

/// The filter of a collect walk (DmNamespace::collect, DmLibrary::collect):
/// each candidate entity is offered to select, and only those it accepts join
/// the list. Hosts derive from it; a selector is used in place and never copied.
class KESTODM_API DmSelector {
public:
    DmSelector() = default;
    DmSelector(DmSelector const&) = delete;
    DmSelector& operator=(DmSelector const&) = delete;
    virtual ~DmSelector();

    /// @name Selection
    /// @{
    /// True to take `entity` into the list.
    virtual bool select(std::shared_ptr<DmNamedEntity> const& entity) const = 0;
    /// @}
};

} // namespace Kesto
