#include <KestoDM/types/DmMetadataItem.h>

#include <KestoDM/types/DmMetadata.h>

namespace Kesto {

DmMetadataItem::DmMetadataItem(std::string name) : DmNamedEntity(std::move(name), true) {}

DmMetadataItem::~DmMetadataItem() = default;

bool DmMetadataItem::isLeaf() const {
    std::shared_ptr<DmMetadata> const& children = getMetadata();
    return !children || children->isEmpty();
}

void DmMetadataItem::clear() noexcept {
    m_value.reset();
}

std::shared_ptr<DmMetadataItem> DmMetadataItem::clone() const {
    auto copy = std::make_shared<DmMetadataItem>(getName());
    // Shared until the value classes can copy themselves.
    copy->m_value = m_value;
    if (std::shared_ptr<DmMetadata> const& children = getMetadata()) {
        children->clone(copy->getMetadata());
    }
    return copy;
}

} // namespace Kesto
