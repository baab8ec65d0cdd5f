#include <KestoDM/platform/BaContext.h>

#include <utility>

namespace Kesto {

BaContext::BaContext() : m_manager(std::make_shared<BaSharedLibraryManager>()) {}

BaContext::BaContext(std::shared_ptr<BaSharedLibraryManager> manager) : m_manager(std::move(manager)) {
    if (!m_manager) {
        m_manager = std::make_shared<BaSharedLibraryManager>();
    }
}

} // namespace Kesto
