#pragma once

#include <KestoDM/platform/DmExport.h>

#include <memory>

namespace Kesto {

class DmMessageLogger;
class DmUnknownDefinitionsSupport;

namespace Internal {

/// Brackets one load, so that loads nested in it (the files it depends on)
/// share its pass over unknown definitions: only the guard of the outermost
/// load into a support object finishes that object's work, when it ends.
/// The set of support objects being loaded into is the process's; it is
/// locked, so loads into different libraries on different threads stay apart.
class KESTODM_API UnknownDefinitionsGuard {
public:
    UnknownDefinitionsGuard(std::shared_ptr<DmUnknownDefinitionsSupport> support,
                            std::shared_ptr<DmMessageLogger> logger);
    UnknownDefinitionsGuard(UnknownDefinitionsGuard const&) = delete;
    UnknownDefinitionsGuard& operator=(UnknownDefinitionsGuard const&) = delete;
    ~UnknownDefinitionsGuard();

    /// Whether `support` is being loaded into now.
    static bool isActive(DmUnknownDefinitionsSupport const* support);

private:
    std::shared_ptr<DmUnknownDefinitionsSupport> m_support; ///< set only when this guard is the outermost
    std::shared_ptr<DmMessageLogger> m_logger;
};

} // namespace Internal
} // namespace Kesto
