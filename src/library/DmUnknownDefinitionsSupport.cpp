#include <KestoDM/library/DmUnknownDefinitionsSupport.h>

#include "library/DmUnknownDefinitionsGuard.h"

#include <mutex>
#include <set>
#include <utility>

namespace Kesto {

DmUnknownDefinitionsSupport::~DmUnknownDefinitionsSupport() = default;

namespace Internal {

namespace {

struct ActiveSupports {
    std::mutex mutex;
    std::set<DmUnknownDefinitionsSupport const*> supports;
};

ActiveSupports& activeSupports() {
    static ActiveSupports* const active = new ActiveSupports(); // used until process end
    return *active;
}

} // namespace

UnknownDefinitionsGuard::UnknownDefinitionsGuard(std::shared_ptr<DmUnknownDefinitionsSupport> support,
                                                 std::shared_ptr<DmMessageLogger> logger)
    : m_logger(std::move(logger)) {
    if (!support) {
        return;
    }
    ActiveSupports& active = activeSupports();
    std::lock_guard<std::mutex> const lock(active.mutex);
    if (active.supports.insert(support.get()).second) {
        m_support = std::move(support);
    }
}

UnknownDefinitionsGuard::~UnknownDefinitionsGuard() {
    if (!m_support) {
        return;
    }
    {
        ActiveSupports& active = activeSupports();
        std::lock_guard<std::mutex> const lock(active.mutex);
        active.supports.erase(m_support.get());
    }
    if (m_logger) {
        m_support->finishLoad(*m_logger);
    }
}

bool UnknownDefinitionsGuard::isActive(DmUnknownDefinitionsSupport const* support) {
    ActiveSupports& active = activeSupports();
    std::lock_guard<std::mutex> const lock(active.mutex);
    return active.supports.count(support) != 0;
}

} // namespace Internal
} // namespace Kesto
