#include <KestoDM/types/DmMetadata.h>

#include <KestoDM/types/DmMetadataItem.h>

#include <algorithm>

namespace Kesto {

DmMetadata::DmMetadata() : m_items(std::make_shared<ItemList>()) {}

bool DmMetadata::isEmpty() const {
    return m_items->empty();
}

std::vector<std::shared_ptr<DmMetadataItem>> DmMetadata::find(std::string_view name) const {
    std::vector<std::shared_ptr<DmMetadataItem>> found;
    for (std::shared_ptr<DmMetadataItem> const& item : *m_items) {
        if (item->getName() == name) {
            found.push_back(item);
        }
    }
    return found;
}

DmStatus DmMetadata::add(std::shared_ptr<DmMetadataItem> const& item) {
    if (!item || std::find(m_items->begin(), m_items->end(), item) != m_items->end()) {
        return DmStatus::kInvalidArgument;
    }
    m_items->push_back(item);
    return DmStatus::kSuccess;
}

DmStatus DmMetadata::remove(std::string_view name) {
    std::size_t const before = m_items->size();
    m_items->remove_if(
        [name](std::shared_ptr<DmMetadataItem> const& item) { return item->getName() == name; });
    return m_items->size() != before ? DmStatus::kSuccess : DmStatus::kInvalidArgument;
}

DmStatus DmMetadata::set(std::string_view name, std::shared_ptr<DmMetadataItem> const& item) {
    static_cast<void>(remove(name));
    return add(item);
}

void DmMetadata::clear() {
    m_items->clear();
}

void DmMetadata::clone(std::shared_ptr<DmMetadata>& out) const {
    auto copy = std::make_shared<DmMetadata>();
    for (std::shared_ptr<DmMetadataItem> const& item : *m_items) {
        copy->m_items->push_back(item->clone());
    }
    out = std::move(copy);
}

} // namespace Kesto
