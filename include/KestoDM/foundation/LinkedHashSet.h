#pragma once

#include <KestoDM/foundation/detail/LinkedHashContainer.h>

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
    // The keys are stored const: a key found through an iterator is never
    // changed behind the table's back.
    struct KeyOf {
        Key const& operator()(Key const& key) const noexcept { return key; }
    };
    using container_type = detail::LinkedHashTable<Key const, KeyOf, Hash, Equal, Allocator>;
    using table_iterator = typename container_type::iterator;

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
    using iterator = table_iterator;
    using const_iterator = iterator;

    LinkedHashSet() = default;
    LinkedHashSet(std::initializer_list<Key> keys) {
        for (auto const& key : keys)
            insert(key);
    }

    iterator begin() const noexcept { return made() ? made()->begin() : iterator(); }
    iterator end() const noexcept { return made() ? made()->end() : iterator(); }
    iterator cbegin() const noexcept { return begin(); }
    iterator cend() const noexcept { return end(); }

    size_type size() const noexcept { return made() ? made()->size() : 0; }
    bool empty() const noexcept { return size() == 0; }
    /// Erases every key and gives the memory of the table back.
    void clear() noexcept { m_container.reset(); }

    /// @name Lookup; also with any key type that Hash and Equal accept
    /// @{
    iterator find(Key const& key) const { return findImpl(key); }
    template <class CompatibleKey>
    iterator find(CompatibleKey const& key) const {
        return findImpl(key);
    }
    size_type count(Key const& key) const { return find(key) != end() ? 1 : 0; }
    template <class CompatibleKey>
    size_type count(CompatibleKey const& key) const {
        return find(key) != end() ? 1 : 0;
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
    std::pair<iterator, bool> insert(Key key) { return m_container.get().emplace_back(std::move(key)); }

    size_type erase(Key const& key) { return made() ? made()->eraseKey(key) : 0; }
    /// Erases the key and returns the one after it.
    iterator erase(iterator position) { return m_container.get().erase(position); }

    /// Moves `key` in front of `position` (to the back for end()).
    void relocate(iterator position, iterator key) { m_container.get().relocate(position, key); }
    /// @}

    void reserve(size_type n) { m_container.get().reserve(n); }
    float max_load_factor() const noexcept { return made() ? made()->max_load_factor() : 1.0f; }
    void max_load_factor(float factor) { m_container.get().max_load_factor(factor); }

    void swap(LinkedHashSet& other) noexcept { m_container.swap(other.m_container); }

private:
    container_type* made() const noexcept { return m_container.peek(); }

    template <class K>
    iterator findImpl(K const& key) const {
        container_type* const container = made();
        return container ? container->find(key) : iterator();
    }

    detail::LazyContainer<container_type> m_container;
};

template <class Key, class Hash, class Equal, class Allocator>
void swap(LinkedHashSet<Key, Hash, Equal, Allocator>& a, LinkedHashSet<Key, Hash, Equal, Allocator>& b) {
    a.swap(b);
}

} // namespace Kesto
