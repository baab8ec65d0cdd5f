#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/platform/DmExport.h>

#include <list>
#include <memory>
#include <string_view>
#include <vector>

namespace Kesto {

class DmMetadataItem;

/// The metadata of an entity: a list of named items in order of addition.
/// Items may share a name. Each item carries metadata of its own, so the
/// list is the top of a tree. Copies of a DmMetadata share one list until
/// clone makes an independent one.
class KESTODM_API DmMetadata : public DmInstanceCounter<DmMetadata> {
public:
    using ItemList = std::list<std::shared_ptr<DmMetadataItem>>;

    DmMetadata();

    /// @name Queries
    /// @{
    bool isEmpty() const;
    std::shared_ptr<ItemList> const& getMetadataItems() noexcept { return m_items; }
    std::shared_ptr<ItemList const> getMetadataItems() const { return m_items; }
    /// Every item of that name, in order.
    std::vector<std::shared_ptr<DmMetadataItem>> find(std::string_view name) const;
    /// @}

    /// @name Edits
    /// @{
    /// Appends the item; kInvalidArgument when this very item (or a null one) is given.
    DmStatus add(std::shared_ptr<DmMetadataItem> const& item);
    /// Removes every item of that name; kInvalidArgument when there was none.
    DmStatus remove(std::string_view name);
    /// Removes the items of that name, then adds `item`.
    DmStatus set(std::string_view name, std::shared_ptr<DmMetadataItem> const& item);
    void clear();
    /// @}

    /// A deep copy: new list, new items, their children copied recursively.
    void clone(std::shared_ptr<DmMetadata>& out) const;

private:
    std::shared_ptr<ItemList> m_items;
};

} // namespace Kesto
