#include <KestoDM/platform/BaMessageRecordContainer.h>

#include <KestoDM/platform/BaMessageRecord.h>

namespace Kesto {

namespace {

bool matches(BaMessageRecord const& record, BaMessageCategory filter) {
    return filter == BaMessageCategory::kAll || record.getCategory() == filter;
}

} // namespace

BaMessageRecordContainer::const_iterator::const_iterator(Records::const_iterator current,
                                                         Records::const_iterator last,
                                                         BaMessageCategory filter)
    : m_current(current), m_last(last), m_filter(filter) {
    skipUnmatched();
}

void BaMessageRecordContainer::const_iterator::skipUnmatched() {
    while (m_current != m_last && !matches(**m_current, m_filter)) {
        ++m_current;
    }
}

BaMessageRecordContainer::const_iterator& BaMessageRecordContainer::const_iterator::operator++() {
    ++m_current;
    skipUnmatched();
    return *this;
}

BaMessageRecordContainer::const_iterator BaMessageRecordContainer::const_iterator::operator++(int) {
    const_iterator before = *this;
    ++*this;
    return before;
}

BaMessageRecordContainer::BaMessageRecordContainer() = default;
BaMessageRecordContainer::BaMessageRecordContainer(BaMessageRecordContainer const&) = default;
BaMessageRecordContainer::BaMessageRecordContainer(BaMessageRecordContainer&&) noexcept = default;
BaMessageRecordContainer& BaMessageRecordContainer::operator=(BaMessageRecordContainer const&) = default;
BaMessageRecordContainer& BaMessageRecordContainer::operator=(BaMessageRecordContainer&&) noexcept = default;
BaMessageRecordContainer::~BaMessageRecordContainer() = default;

void BaMessageRecordContainer::addRecord(std::shared_ptr<BaMessageRecord> const& record) {
    if (record) {
        m_records.push_back(record);
    }
}

void BaMessageRecordContainer::clear() {
    m_records.clear();
}

std::size_t BaMessageRecordContainer::size() const {
    return m_records.size();
}

BaMessageRecordContainer::const_iterator BaMessageRecordContainer::begin(BaMessageCategory filter) const {
    return const_iterator(m_records.begin(), m_records.end(), filter);
}

BaMessageRecordContainer::const_iterator BaMessageRecordContainer::end() const {
    return const_iterator(m_records.end(), m_records.end(), BaMessageCategory::kAll);
}

unsigned int BaMessageRecordContainer::getCategoryCount(BaMessageCategory category, bool recursive) const {
    unsigned int count = 0;
    for (auto const& record : m_records) {
        if (matches(*record, category)) {
            ++count;
        }
        if (recursive) {
            count += record->getCategoryCount(category, true);
        }
    }
    return count;
}

} // namespace Kesto
