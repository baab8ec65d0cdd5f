#pragma once

#include <KestoDM/foundation/detail/LinkedHashContainer.h>
#include <KestoDM/platform/DmExport.h>

#include <boost/iterator/iterator_adaptor.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace Kesto {

/// FNV-1a, 64 bits, over the bytes of a string. The value is fixed across
/// platforms and runs, unlike std::hash.
struct KESTODM_API StringHasher {
    static constexpr std::uint64_t kOffsetBasis = 0xcbf29ce484222325ull;
    static constexpr std::uint64_t kPrime = 0x100000001b3ull;

    static constexpr std::uint64_t hash64(std::string_view s) noexcept {
        std::uint64_t h = kOffsetBasis;
        for (char c : s) {
            h ^= static_cast<unsigned char>(c);
            h *= kPrime;
        }
        return h;
    }

    std::size_t operator()(std::string const& s) const noexcept { return hash64(s); }
    std::size_t operator()(std::string_view s) const noexcept { return hash64(s); }
    // Without it a string literal would match both overloads above.
    std::size_t operator()(char const* s) const noexcept { return hash64(s); }
};

/// Byte-wise, case-sensitive string equality; mixes std::string, std::string_view
/// and C strings.
struct KESTODM_API StringCompare {
    bool operator()(std::string_view a, std::string_view b) const noexcept { return a == b; }
};

/// A hash map that iterates in insertion order (unless entries are moved with
/// relocate). Iterators and references stay valid until their entry is erased.
///
/// Lookups (find, count, contains, at) also take any key type that Hash and
/// Equal accept, e.g. std::string_view with StringHasher and StringCompare.
template <class Key, class Value, class Hash = std::hash<Key>, class Equal = std::equal_to<Key>,
          class Allocator = std::allocator<std::pair<Key const, Value>>>
class LinkedHashMap {
public:
    using key_type = Key;
    using mapped_type = Value;
    using value_type = std::pair<Key const, Value>;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using hasher = Hash;
    using key_equal = Equal;
    using allocator_type = Allocator;
    using reference = value_type&;
    using const_reference = value_type const&;

    /// The stored element. The container hands out its elements as const, so
    /// the pair is mutable to let the value be changed through an iterator;
    /// the key stays const and is changed only by rekey, which re-indexes it.
    class map_entry {
    public:
        template <class... Args>
        explicit map_entry(std::in_place_t, Args&&... args)
            : m_entry(std::in_place, std::forward<Args>(args)...) {}
        map_entry(map_entry const& other) : m_entry(std::in_place, *other.m_entry) {}
        map_entry(map_entry&& other) : m_entry(std::in_place, std::move(*other.m_entry)) {}
        map_entry& operator=(map_entry const&) = delete;
        map_entry& operator=(map_entry&&) = delete;

        value_type& get() const noexcept { return *m_entry; }
        Key const& key() const noexcept { return m_entry->first; }

    private:
        friend class LinkedHashMap;

        // The pair cannot be assigned (its key is const), so a new key means
        // rebuilding it in place. Called inside modify(), which erases the
        // entry should a move throw half way.
        void rekey(Key&& newKey) {
            Value value(std::move(m_entry->second));
            m_entry.reset();
            m_entry.emplace(std::move(newKey), std::move(value));
        }

        mutable std::optional<value_type> m_entry;
    };

private:
    struct KeyOf {
        using result_type = Key;
        Key const& operator()(map_entry const& entry) const noexcept { return entry.key(); }
    };

    using container_type = detail::LinkedHashTable<map_entry, KeyOf, Hash, Equal, Allocator>;
    using order_iterator = typename container_type::iterator;

    template <bool IsConst>
    class basic_iterator
        : public boost::iterator_adaptor<basic_iterator<IsConst>, order_iterator,
                                         std::conditional_t<IsConst, value_type const, value_type>,
                                         boost::bidirectional_traversal_tag> {
        using base_type = typename basic_iterator::iterator_adaptor_;

    public:
        basic_iterator() = default;
        template <bool OtherConst, std::enable_if_t<IsConst && !OtherConst, int> = 0>
        basic_iterator(basic_iterator<OtherConst> const& other) : base_type(other.base()) {}

    private:
        friend class LinkedHashMap;
        friend class boost::iterator_core_access;

        explicit basic_iterator(order_iterator it) : base_type(it) {}

        typename base_type::reference dereference() const { return this->base()->get(); }
    };

public:
    using iterator = basic_iterator<false>;
    using const_iterator = basic_iterator<true>;

    LinkedHashMap() = default;
    LinkedHashMap(std::initializer_list<std::pair<Key, Value>> entries) {
        for (auto const& entry : entries)
            insert(entry.first, entry.second);
    }

    /// @name Iteration, in order
    /// @{
    iterator begin() noexcept { return iterator(made() ? made()->begin() : order_iterator()); }
    iterator end() noexcept { return iterator(made() ? made()->end() : order_iterator()); }
    const_iterator begin() const noexcept {
        return const_iterator(made() ? made()->begin() : order_iterator());
    }
    const_iterator end() const noexcept { return const_iterator(made() ? made()->end() : order_iterator()); }
    const_iterator cbegin() const noexcept { return begin(); }
    const_iterator cend() const noexcept { return end(); }
    /// @}

    size_type size() const noexcept { return made() ? made()->size() : 0; }
    bool empty() const noexcept { return size() == 0; }
    /// Erases every entry and gives the memory of the table back.
    void clear() noexcept { m_container.reset(); }

    /// @name Lookup
    /// @{
    iterator find(Key const& key) { return findImpl(*this, key); }
    const_iterator find(Key const& key) const { return findImpl(*this, key); }
    template <class CompatibleKey>
    iterator find(CompatibleKey const& key) {
        return findImpl(*this, key);
    }
    template <class CompatibleKey>
    const_iterator find(CompatibleKey const& key) const {
        return findImpl(*this, key);
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

    /// The value of an existing key. A missing key throws the C string
    /// "invalid LinkedHashMap key", the one failure of this class.
    Value& at(Key const& key) { return atImpl(*this, key); }
    Value const& at(Key const& key) const { return atImpl(*this, key); }
    template <class CompatibleKey>
    Value& at(CompatibleKey const& key) {
        return atImpl(*this, key);
    }
    template <class CompatibleKey>
    Value const& at(CompatibleKey const& key) const {
        return atImpl(*this, key);
    }

    /// The value of `key`; a missing key is appended with a default value.
    Value& operator[](Key const& key) { return subscript(key); }
    Value& operator[](Key&& key) { return subscript(std::move(key)); }
    /// @}

    /// @name Edits
    /// @{
    /// Appends the entry. A present key keeps its value and place; the result
    /// then points to it and says false.
    std::pair<iterator, bool> insert(std::pair<Key, Value> entry) {
        return insert(std::move(entry.first), std::move(entry.second));
    }
    std::pair<iterator, bool> insert(Key key, Value value) {
        auto result = m_container.get().emplace_back(std::in_place, std::move(key), std::move(value));
        return {iterator(result.first), result.second};
    }

    /// The number of entries erased, 0 or 1.
    size_type erase(Key const& key) { return made() ? made()->eraseKey(key) : 0; }
    /// Erases the entry and returns the one after it.
    iterator erase(const_iterator position) { return iterator(m_container.get().erase(position.base())); }
    iterator erase(iterator position) { return erase(const_iterator(position)); }

    /// Moves `entry` in front of `position` (to the back for end()).
    void relocate(const_iterator position, const_iterator entry) {
        m_container.get().relocate(position.base(), entry.base());
    }

    /// Gives the entry a new key and keeps its place, value and iterators.
    /// False, and nothing changes, when another entry has the key. Should
    /// moving the key or value throw, the entry is erased.
    bool rekey(const_iterator entry, Key newKey) {
        container_type& container = m_container.get();
        auto const holder = container.find(newKey);
        if (holder != container.end())
            return holder == entry.base();
        container.rekey(entry.base(), [&newKey](map_entry& e) { e.rekey(std::move(newKey)); });
        return true;
    }
    /// @}

    /// @name Hashing
    /// @{
    void reserve(size_type n) { m_container.get().reserve(n); }
    /// The fill above which the index grows; the index is never filled beyond
    /// one half whatever the setting, since its probes need free slots.
    float max_load_factor() const noexcept { return made() ? made()->max_load_factor() : 1.0f; }
    void max_load_factor(float factor) { m_container.get().max_load_factor(factor); }
    /// @}

    void swap(LinkedHashMap& other) noexcept { m_container.swap(other.m_container); }

private:
    container_type* made() const noexcept { return m_container.peek(); }

    template <class Self, class K>
    static auto findImpl(Self& self, K const& key) -> decltype(self.end()) {
        container_type* const container = self.made();
        if (!container)
            return self.end();
        return decltype(self.end())(container->find(key));
    }

    template <class Self, class K>
    static auto& atImpl(Self& self, K const& key) {
        auto const it = findImpl(self, key);
        if (it == self.end())
            throw "invalid LinkedHashMap key";
        return it->second;
    }

    template <class K>
    Value& subscript(K&& key) {
        auto const it = findImpl(*this, key);
        if (it != end())
            return it->second;
        auto result =
            m_container.get().emplace_back(std::in_place, std::piecewise_construct,
                                           std::forward_as_tuple(std::forward<K>(key)), std::tuple<>());
        return result.first->get().second;
    }

    detail::LazyContainer<container_type> m_container;
};

template <class Key, class Value, class Hash, class Equal, class Allocator>
void swap(LinkedHashMap<Key, Value, Hash, Equal, Allocator>& a,
          LinkedHashMap<Key, Value, Hash, Equal, Allocator>& b) {
    a.swap(b);
}

} // namespace Kesto
