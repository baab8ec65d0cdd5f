#include <KestoDM/foundation/DmEntity.h>

// Every entity has a metadata tree, made on first use, so the root of the
// model needs the complete metadata class here.
#include <KestoDM/types/DmMetadata.h>

#include <mutex>

namespace Kesto {

DmEntity::DmEntity(bool complete) : m_complete(complete) {}

// A copy shares the source's tree, so the tree must exist before it is shared.
DmEntity::DmEntity(DmEntity const& other)
    : DmInstanceCounter<DmEntity>(other), m_metadata(other.getMetadata()), m_metadataMade(true),
      m_complete(other.m_complete) {}

// The source keeps no tree and does not make one again.
DmEntity::DmEntity(DmEntity&& other) noexcept
    : DmInstanceCounter<DmEntity>(other), m_metadata(std::move(other.m_metadata)),
      m_metadataMade(other.m_metadataMade.load(std::memory_order_acquire)), m_complete(other.m_complete) {
    other.m_metadataMade.store(true, std::memory_order_release);
}

std::shared_ptr<DmMetadata> const& DmEntity::makeMetadata() const {
    // Shared per-process entities (built-in namespaces and types) are read
    // from several threads: one lock for the rare first call.
    static std::mutex making;
    std::lock_guard<std::mutex> const lock(making);
    if (!m_metadataMade.load(std::memory_order_relaxed)) {
        m_metadata = std::make_shared<DmMetadata>();
        m_metadataMade.store(true, std::memory_order_release);
    }
    return m_metadata;
}

bool DmEntity::hasMetadata() const {
    return m_metadataMade.load(std::memory_order_acquire) && m_metadata && !m_metadata->isEmpty();
}

DmEntity::~DmEntity() = default;

bool DmEntity::isValid() const {
    return true;
}

bool DmEntity::isComplete() const {
    return m_complete;
}

void DmEntity::setCompleteness(bool complete) {
    m_complete = complete;
}

} // namespace Kesto
