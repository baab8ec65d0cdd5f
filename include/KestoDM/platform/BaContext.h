#pragma once

#include <KestoDM/platform/BaSharedLibraryManager.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>

namespace Kesto {

/// The process-level services a library is created with. Several libraries
/// may share one context, and so share their loaded plug-ins.
class KESTODM_API BaContext {
public:
    /// Makes its own shared library manager.
    BaContext();
    /// Uses `manager`; a null one is replaced by a new manager of its own.
    explicit BaContext(std::shared_ptr<BaSharedLibraryManager> manager);

    /// Never null.
    std::shared_ptr<BaSharedLibraryManager> const& getSharedLibraryManager() const { return m_manager; }

private:
    std::shared_ptr<BaSharedLibraryManager> m_manager;
};

} // namespace Kesto
