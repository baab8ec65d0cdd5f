#pragma once

#include <KestoDM/platform/DmExport.h>

namespace Kesto {

class DmMessageLogger;

/// What lets a load go on when a file names a type or a node definition that
/// is not loaded yet: placeholders stand in for the missing names and are
/// replaced when the proper definitions arrive. Nested loads (a file read
/// while another is being read) share one support object; the work left at
/// the end is done once, when the outermost load ends.
class KESTODM_API DmUnknownDefinitionsSupport {
public:
    virtual ~DmUnknownDefinitionsSupport();

    /// Called once at the end of the outermost load into the library, with
    /// the library's logger: reports what is still unknown.
    virtual void finishLoad(DmMessageLogger& logger) = 0;

protected:
    DmUnknownDefinitionsSupport() = default;
    DmUnknownDefinitionsSupport(DmUnknownDefinitionsSupport const&) = default;
    DmUnknownDefinitionsSupport& operator=(DmUnknownDefinitionsSupport const&) = default;
};

} // namespace Kesto
