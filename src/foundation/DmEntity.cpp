#include <KestoDM/foundation/DmEntity.h>

// Every entity owns a metadata tree from birth, so the root of the model needs
// the complete metadata class here.
#include <KestoDM/types/DmMetadata.h>

namespace Kesto {

DmEntity::DmEntity(bool complete) : m_metadata(std::make_shared<DmMetadata>()), m_complete(complete) {}

DmEntity::DmEntity(DmEntity const& other)
    : DmInstanceCounter<DmEntity>(other), m_metadata(other.m_metadata), m_complete(other.m_complete) {}

DmEntity::DmEntity(DmEntity&& other) noexcept
    : DmInstanceCounter<DmEntity>(other), m_metadata(std::move(other.m_metadata)),
      m_complete(other.m_complete) {}

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
