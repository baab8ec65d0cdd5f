#pragma once

#include <KestoDM/foundation/detail/LinkedHashContainer.h>

#include <boost/multi_index/identity.hpp>

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <memory>
#include <utility>

namespace Kesto {

/// A hash set that iterates in insertion order (unless keys are moved with
/// relocate). Keys are const; iterators stay valid until their key is erased.
/// StringHasher and StringCompare (LinkedHashMap.h) suit string keys.
template <class Key, class Hash = std::hash<Key>, class Equal = std::equal_to<Key>,
          class Allocator = std::allocator<Key>>
class LinkedHashSet {
    using container_type =
        detail::LinkedHashContainer<Key, boost::multi_index::identity<Key>, Hash, Equal, Allocator>;
    using order_index = typename container_type::template index<detail::LinkedHashByOrder>::type;
    using key_index = typename container_type::template index<detail::LinkedHashByKey>::type;

public:
    using key_type = Key;
    using value_type = Key;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using hasher = Hash;
    using key_equal = Equal;
    using allocator_type = Allocator;
    using reference = Key const&;
    using const_reference = Key const&;
    using iterator = typename order_index::const_iterator;
    using const_iterator = iterator;

    LinkedHashSet() = default;
    LinkedHashSet(std::initializer_list<Key> keys) {
        for (auto const& key : keys)
            insert(key);
    }

    iterator begin() const noexcept { return order().begin(); }
    iterator end() const noexcept { return order().end(); }
    iterator cbegin() const noexcept { return begin(); }
    iterator cend() const noexcept { return end(); }

    size_type size() const noexcept { return m_container.size(); }
    bool empty() const noexcept { return m_container.empty(); }
    void clear() noexcept { m_container.clear(); }

    /// @name Lookup; also with any key type that Hash and Equal accept
    /// @{
    iterator find(Key const& key) const { return toIterator(byKey().find(key)); }
    template <class CompatibleKey>
    iterator find(CompatibleKey const& key) const {
        return toIterator(byKey().find(key));
    }
    size_type count(Key const& key) const { return byKey().count(key); }
    template <class CompatibleKey>
    size_type count(CompatibleKey const& key) const {
        return byKey().count(key);
    }
    bool contains(Key const& key) const { return count(key) != 0; }
    template <class CompatibleKey>
    bool contains(CompatibleKey const& key) const {
        return count(key) != 0;
    }
    /// @}

    /// @name Edits
    /// @{
    /// Appends the key; a present key keeps its place and the result says false.
    std::pair<iterator, bool> insert(Key key) { return order().push_back(std::move(key)); }

    size_type erase(Key const& key) { return byKey().erase(key); }
    /// Erases the key and returns the one after it.
    iterator erase(iterator position) { return order().erase(position); }

    /// Moves `key` in front of `position` (to the back for end()).
    void relocate(iterator position, iterator key) { order().relocate(position, key); }
    /// @}

    void reserve(size_type n) { byKey().reserve(n); }
    float max_load_factor() const noexcept { return byKey().max_load_factor(); }
    void max_load_factor(float factor) { byKey().max_load_factor(factor); }

    void swap(LinkedHashSet& other) { m_container.swap(other.m_container); }

private:
    order_index& order() noexcept { return m_container.template get<detail::LinkedHashByOrder>(); }
    order_index const& order() const noexcept {
        return m_container.template get<detail::LinkedHashByOrder>();
    }
    key_index& byKey() noexcept { return m_container.template get<detail::LinkedHashByKey>(); }
    key_index const& byKey() const noexcept { return m_container.template get<detail::LinkedHashByKey>(); }

    iterator toIterator(typename key_index::const_iterator it) const {
        return m_container.template project<detail::LinkedHashByOrder>(it);
    }

    container_type m_container;
};

template <class Key, class Hash, class Equal, class Allocator>
void swap(LinkedHashSet<Key, Hash, Equal, Allocator>& a, LinkedHashSet<Key, Hash, Equal, Allocator>& b) {
    a.swap(b);
}

} // namespace Kesto
