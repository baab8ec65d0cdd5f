#pragma once

#include <KestoDM/platform/DmExport.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Kesto {

/// Values in order of addition, plus a sorted index for fast look-up.
/// Duplicates are kept; equal values sit in the index in order of addition,
/// so a look-up finds the first one added. Needs only operator< and ==.
template <class T>
class KESTODM_API BaIndexedVector {
public:
    using value_type = T;
    using const_iterator = typename std::vector<T>::const_iterator;

    void push_back(T value) {
        std::size_t const position = m_values.size();
        m_values.push_back(std::move(value));
        T const& added = m_values.back();
        // After every equal value: keeps equal values in order of addition.
        auto const where = std::upper_bound(m_index.begin(), m_index.end(), added,
                                            [this](T const& v, std::size_t i) { return v < m_values[i]; });
        m_index.insert(where, position);
    }

    std::size_t size() const { return m_values.size(); }
    bool empty() const { return m_values.empty(); }
    T const& operator[](std::size_t position) const { return m_values[position]; }
    T const& at(std::size_t position) const {
        if (position >= m_values.size()) {
            throw std::out_of_range("BaIndexedVector::at");
        }
        return m_values[position];
    }
    const_iterator begin() const { return m_values.begin(); }
    const_iterator end() const { return m_values.end(); }

    void clear() {
        m_values.clear();
        m_index.clear();
    }

    /// The position of the first added value equal to `value`.
    std::optional<std::size_t> find(T const& value) const {
        auto const it = lowerBound(value);
        if (it != m_index.end() && m_values[*it] == value) {
            return *it;
        }
        return std::nullopt;
    }
    bool contains(T const& value) const { return find(value).has_value(); }
    std::size_t count(T const& value) const {
        std::size_t n = 0;
        for (auto it = lowerBound(value); it != m_index.end() && m_values[*it] == value; ++it) {
            ++n;
        }
        return n;
    }

private:
    typename std::vector<std::size_t>::const_iterator lowerBound(T const& value) const {
        return std::lower_bound(m_index.begin(), m_index.end(), value,
                                [this](std::size_t i, T const& v) { return m_values[i] < v; });
    }

    std::vector<T> m_values;
    std::vector<std::size_t> m_index; // positions in m_values, sorted by value
};

} // namespace Kesto
