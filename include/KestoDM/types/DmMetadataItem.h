#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

class DmBaseValue;

/// A named node of a metadata tree. Its children are the items of its own
/// entity metadata; it may also hold a value. Made complete, with `std::make_shared`.
class KESTODM_API DmMetadataItem : public DmNamedEntity, public DmInstanceCounter<DmMetadataItem> {
public:
    /// An item without a value.
    explicit DmMetadataItem(std::string name);
    ~DmMetadataItem() override;

    /// @name Queries
    /// @{
    std::shared_ptr<DmBaseValue> const& getValue() const noexcept { return m_value; }
    bool hasValue() const noexcept { return m_value != nullptr; }
    /// True when the item has no children.
    bool isLeaf() const;
    /// @}

    /// @name Edits
    /// @{
    /// Drops the value; the children stay.
    void clear() noexcept;
    /// @}

    /// A deep copy of the item, its value and its children.
    std::shared_ptr<DmMetadataItem> clone() const;

protected:
    std::shared_ptr<DmBaseValue> m_value;
};

} // namespace Kesto
