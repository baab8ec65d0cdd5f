#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/platform/DmExport.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Kesto {

class DmBaseValue;

/// A named node of a metadata tree. Its children are the items of its own
/// entity metadata; it may also hold a value, of one of four kinds: bool,
/// long, double or string. The constructor fixes the kind; getters and setters
/// convert from and to it, and never change it. Made complete, with
/// `std::make_shared`.
class KESTODM_API DmMetadataItem : public DmNamedEntity, public DmInstanceCounter<DmMetadataItem> {
public:
    /// @name Construction
    /// @{
    /// An item without a value.
    explicit DmMetadataItem(std::string name);
    DmMetadataItem(std::string name, std::string const& value);
    /// A text literal is a string item, not a bool one.
    DmMetadataItem(std::string name, char const* value);
    DmMetadataItem(std::string name, double value);
    DmMetadataItem(std::string name, std::int64_t value);
    /// A plain integer literal makes a long item too.
    DmMetadataItem(std::string name, int value);
    DmMetadataItem(std::string name, bool value);
    /// An item holding a value of any other type (an int or a float read from a file).
    DmMetadataItem(std::string name, std::shared_ptr<DmBaseValue> value);
    ~DmMetadataItem() override;
    /// @}

    /// @name Queries
    /// @{
    std::shared_ptr<DmBaseValue> const& getValue() const noexcept { return m_value; }
    bool hasValue() const noexcept { return m_value != nullptr; }
    /// True when the item has no children.
    bool isLeaf() const;
    /// @}

    /// @name Typed access
    /// Each converts between the asked form and the kind the item holds:
    /// numbers to bool are "not 0"; a string reads as true only for "true",
    /// "TRUE" or "True"; strings read as numbers with strtoll (base 0) and
    /// strtod; numbers write as strings through a string stream. Without a
    /// value every getter and setter gives kFailure. getLongValue on a value of
    /// another kind (an int item) reports kSuccess and leaves `out` alone; the
    /// other getters and the setters give kFailure there.
    /// @{
    DmStatus getBoolValue(bool& out) const;
    DmStatus getLongValue(std::int64_t& out) const;
    DmStatus getDoubleValue(double& out) const;
    DmStatus getStringValue(std::string& out) const;
    DmStatus setBoolValue(bool value);
    DmStatus setLongValue(std::int64_t value);
    DmStatus setDoubleValue(double value);
    /// On a long item the text must hold a number that fits 32 bits (the item
    /// itself holds 64): otherwise kInvalidArgument and the value stays.
    DmStatus setStringValue(std::string const& value);
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
