#pragma once

#include <KestoDM/platform/BaMessageCategory.h>
#include <KestoDM/platform/DmExport.h>

#include <cstddef>
#include <iterator>
#include <memory>
#include <vector>

namespace Kesto {

class BaMessageRecord;

/// An ordered list of message records. Records are shared: copying the
/// container copies the pointers, not the records.
class KESTODM_API BaMessageRecordContainer {
    using Records = std::vector<std::shared_ptr<BaMessageRecord>>;

public:
    /// Walks the records in order of addition, skipping those whose category
    /// does not match the filter it was made with.
    class KESTODM_API const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = BaMessageRecord;
        using difference_type = std::ptrdiff_t;
        using pointer = BaMessageRecord const*;
        using reference = BaMessageRecord const&;

        const_iterator() = default;

        reference operator*() const { return **m_current; }
        pointer operator->() const { return m_current->get(); }
        std::shared_ptr<BaMessageRecord> const& getRecord() const { return *m_current; }

        const_iterator& operator++();
        const_iterator operator++(int);

        bool operator==(const_iterator const& other) const { return m_current == other.m_current; }
        bool operator!=(const_iterator const& other) const { return m_current != other.m_current; }

    private:
        friend class BaMessageRecordContainer;
        const_iterator(Records::const_iterator current, Records::const_iterator last,
                       BaMessageCategory filter);
        void skipUnmatched();

        Records::const_iterator m_current{};
        Records::const_iterator m_last{};
        BaMessageCategory m_filter = BaMessageCategory::kAll;
    };

    BaMessageRecordContainer();
    BaMessageRecordContainer(BaMessageRecordContainer const&);
    BaMessageRecordContainer(BaMessageRecordContainer&&) noexcept;
    BaMessageRecordContainer& operator=(BaMessageRecordContainer const&);
    BaMessageRecordContainer& operator=(BaMessageRecordContainer&&) noexcept;
    virtual ~BaMessageRecordContainer();

    /// Appends a record; a null pointer is ignored.
    void addRecord(std::shared_ptr<BaMessageRecord> const& record);
    void clear();
    /// Every record held directly, whatever its category.
    std::size_t size() const;

    const_iterator begin(BaMessageCategory filter = BaMessageCategory::kAll) const;
    const_iterator end() const;

    /// The records of `category` (kAll counts every record). With `recursive`
    /// the records nested inside records are counted too, at every depth.
    unsigned int getCategoryCount(BaMessageCategory category, bool recursive) const;

private:
    Records m_records;
};

} // namespace Kesto
