#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace Kesto {
namespace detail {

/// The table behind LinkedHashMap and LinkedHashSet: nodes on a circular list
/// in insertion order, found through a hash index.
///
/// Most tables of a graph are small (the ports of a node, the far ends of a
/// port), so a table of up to kLinearLimit entries has no index: a lookup
/// walks the list. Above that an array of node pointers, a power of two in
/// size and at most half full, indexes the nodes by open addressing with
/// linear probing, so that a node needs no chain link. Nodes do not keep the
/// hash of their key either: a node of a set of pointers is three words, and
/// the keys of graphs (names, pointers) hash in a few instructions when the
/// index grows or closes a hole.
/// Nodes never move: iterators and references stay valid until their entry is
/// erased. The table is held through a pointer by its owners, so the list's
/// head never moves either.
template <class Value, class KeyOf, class Hash, class Equal, class Allocator>
class LinkedHashTable {
    struct Link {
        Link* prev;
        Link* next;
    };
    struct Node : Link {
        template <class... Args>
        explicit Node(Args&&... args) : value(std::forward<Args>(args)...) {}
        Value value;
    };
    using NodeAllocator = typename std::allocator_traits<Allocator>::template rebind_alloc<Node>;
    using NodeTraits = std::allocator_traits<NodeAllocator>;

public:
    static constexpr std::size_t kLinearLimit = 8;

    /// A bidirectional iterator over the list; end() is the head.
    class iterator {
    public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = Value;
        using difference_type = std::ptrdiff_t;
        using pointer = Value*;
        using reference = Value&;

        iterator() noexcept = default;
        explicit iterator(Link* link) noexcept : m_link(link) {}

        Value& operator*() const noexcept { return static_cast<Node*>(m_link)->value; }
        Value* operator->() const noexcept { return &static_cast<Node*>(m_link)->value; }
        iterator& operator++() noexcept {
            m_link = m_link->next;
            return *this;
        }
        iterator operator++(int) noexcept {
            iterator const old = *this;
            ++*this;
            return old;
        }
        iterator& operator--() noexcept {
            m_link = m_link->prev;
            return *this;
        }
        iterator operator--(int) noexcept {
            iterator const old = *this;
            --*this;
            return old;
        }
        friend bool operator==(iterator a, iterator b) noexcept { return a.m_link == b.m_link; }
        friend bool operator!=(iterator a, iterator b) noexcept { return a.m_link != b.m_link; }

        Link* link() const noexcept { return m_link; }

    private:
        Link* m_link = nullptr;
    };

    LinkedHashTable() noexcept { m_head.prev = m_head.next = &m_head; }
    LinkedHashTable(LinkedHashTable const& other) : LinkedHashTable() {
        m_maxLoadFactor = other.m_maxLoadFactor;
        try {
            for (Link* link = other.m_head.next; link != &other.m_head; link = link->next) {
                emplace_back(static_cast<Node*>(link)->value);
            }
        } catch (...) {
            clear();
            throw;
        }
    }
    LinkedHashTable& operator=(LinkedHashTable const&) = delete;
    ~LinkedHashTable() { clear(); }

    iterator begin() noexcept { return iterator(m_head.next); }
    iterator end() noexcept { return iterator(&m_head); }
    std::size_t size() const noexcept { return m_size; }

    template <class K>
    iterator find(K const& key) {
        return findHashed(key, m_slots ? Hash()(key) : 0);
    }

    /// Builds the value at the back of the list unless its key is present;
    /// then the new value is dropped and the result points to the old one.
    template <class... Args>
    std::pair<iterator, bool> emplace_back(Args&&... args) {
        Node* const node = makeNode(std::forward<Args>(args)...);
        // Hashed once, for the search and the index both.
        std::size_t const hash = m_slots ? hashOf(node) : 0;
        iterator const found = findHashed(KeyOf()(node->value), hash);
        if (found != end()) {
            dropNode(node);
            return {found, false};
        }
        linkBefore(&m_head, node);
        ++m_size;
        index(node, hash);
        return {iterator(node), true};
    }

    iterator erase(iterator position) noexcept {
        Node* const node = static_cast<Node*>(position.link());
        Link* const next = node->next;
        unindex(node);
        unlink(node);
        --m_size;
        dropNode(node);
        return iterator(next);
    }

    /// Erases the entry of `key`: the number erased, 0 or 1.
    template <class K>
    std::size_t eraseKey(K const& key) {
        iterator const found = find(key);
        if (found == end()) {
            return 0;
        }
        erase(found);
        return 1;
    }

    void clear() noexcept {
        Link* link = m_head.next;
        while (link != &m_head) {
            Link* const next = link->next;
            dropNode(static_cast<Node*>(link));
            link = next;
        }
        m_head.prev = m_head.next = &m_head;
        m_size = 0;
        m_slots.reset();
        m_shift = 64;
    }

    /// Moves `entry` in front of `position`.
    void relocate(iterator position, iterator entry) noexcept {
        Link* const link = entry.link();
        if (link == position.link()) {
            return;
        }
        unlink(link);
        linkBefore(position.link(), link);
    }

    /// Changes the key of `entry` through `change`, which the caller knows
    /// gives a key not yet present. Should `change` throw, the entry is
    /// erased and the exception goes on.
    template <class Change>
    void rekey(iterator entry, Change&& change) {
        Node* const node = static_cast<Node*>(entry.link());
        unindex(node);
        try {
            change(node->value);
        } catch (...) {
            unlink(node);
            --m_size;
            dropNode(node);
            throw;
        }
        index(node, m_slots ? hashOf(node) : 0);
    }

    void reserve(std::size_t n) {
        if (n > kLinearLimit) {
            growFor(n);
        }
    }
    float max_load_factor() const noexcept { return m_maxLoadFactor; }
    void max_load_factor(float factor) {
        m_maxLoadFactor = factor > 0.0f ? factor : 1.0f;
        if (m_slots) {
            growFor(m_size);
        }
    }

private:
    template <class... Args>
    Node* makeNode(Args&&... args) {
        NodeAllocator allocator;
        Node* const node = NodeTraits::allocate(allocator, 1);
        try {
            NodeTraits::construct(allocator, node, std::forward<Args>(args)...);
        } catch (...) {
            NodeTraits::deallocate(allocator, node, 1);
            throw;
        }
        return node;
    }
    static void dropNode(Node* node) noexcept {
        NodeAllocator allocator;
        NodeTraits::destroy(allocator, node);
        NodeTraits::deallocate(allocator, node, 1);
    }

    static void linkBefore(Link* position, Link* link) noexcept {
        link->prev = position->prev;
        link->next = position;
        position->prev->next = link;
        position->prev = link;
    }
    static void unlink(Link* link) noexcept {
        link->prev->next = link->next;
        link->next->prev = link->prev;
    }

    template <class K>
    static bool matches(Node const* node, K const& key) {
        return Equal()(KeyOf()(node->value), key);
    }
    static std::size_t hashOf(Node const* node) { return Hash()(KeyOf()(node->value)); }

    // Fibonacci hashing: the top bits of the product, so that pointer keys,
    // whose low bits are zero, spread over the slots too.
    std::size_t slotOf(std::size_t hash) const noexcept {
        return static_cast<std::size_t>((static_cast<std::uint64_t>(hash) * 0x9E3779B97F4A7C15ull) >>
                                        m_shift);
    }

    // The index of an entry at most every second slot, whatever the maximum
    // load factor says: linear probing needs free slots to stay short.
    float loadLimit() const noexcept { return m_maxLoadFactor < 0.5f ? m_maxLoadFactor : 0.5f; }

    // The search of find, with the key's hash already made when the table
    // has an index (unused without one).
    template <class K>
    iterator findHashed(K const& key, std::size_t hash) {
        if (m_slots) {
            std::size_t const mask = slotCount() - 1;
            for (std::size_t slot = slotOf(hash);; slot = (slot + 1) & mask) {
                Node* const node = m_slots[slot];
                if (node == nullptr) {
                    return end();
                }
                if (matches(node, key)) {
                    return iterator(node);
                }
            }
        }
        for (Link* link = m_head.next; link != &m_head; link = link->next) {
            Node* const node = static_cast<Node*>(link);
            if (matches(node, key)) {
                return iterator(node);
            }
        }
        return end();
    }

    // Puts the node, whose key has `hash` when the table has an index, into
    // the index, growing it when the table is too big for a walk of the list
    // or too full for its slots.
    void index(Node* node, std::size_t hash) {
        if (!m_slots) {
            if (m_size <= kLinearLimit) {
                return;
            }
            growFor(m_size);
            return; // growFor indexed every node, this one included.
        }
        if (static_cast<float>(m_size) > static_cast<float>(slotCount()) * loadLimit()) {
            growFor(m_size);
            return;
        }
        place(node, hash);
    }
    void place(Node* node, std::size_t hash) noexcept {
        std::size_t const mask = slotCount() - 1;
        std::size_t slot = slotOf(hash);
        while (m_slots[slot] != nullptr) {
            slot = (slot + 1) & mask;
        }
        m_slots[slot] = node;
    }
    // Takes the node out of the index and moves later nodes of its run back
    // into the hole, so that no search stops early at it.
    void unindex(Node* node) noexcept {
        if (!m_slots) {
            return;
        }
        std::size_t const mask = slotCount() - 1;
        std::size_t hole = slotOf(hashOf(node));
        while (m_slots[hole] != node) {
            hole = (hole + 1) & mask;
        }
        for (std::size_t slot = (hole + 1) & mask; m_slots[slot] != nullptr; slot = (slot + 1) & mask) {
            std::size_t const home = slotOf(hashOf(m_slots[slot]));
            // The node may move back when the hole lies between its home slot and where it is.
            if (((slot - home) & mask) >= ((slot - hole) & mask)) {
                m_slots[hole] = m_slots[slot];
                hole = slot;
            }
        }
        m_slots[hole] = nullptr;
    }

    // Rebuilds the index for `n` entries and puts every node of the list
    // into it again.
    void growFor(std::size_t n) {
        std::size_t count = 16;
        unsigned bits = 4;
        while (static_cast<float>(count) * loadLimit() < static_cast<float>(n)) {
            count *= 2;
            ++bits;
        }
        if (m_slots && count <= slotCount()) {
            return;
        }
        m_slots = std::make_unique<Node*[]>(count);
        m_shift = 64 - bits;
        for (Link* link = m_head.next; link != &m_head; link = link->next) {
            Node* const node = static_cast<Node*>(link);
            place(node, hashOf(node));
        }
    }

    // The number of slots of the index is a power of two that the shift
    // tells: 40 bytes a table, one size class of the allocator below 48.
    std::size_t slotCount() const noexcept { return m_slots ? std::size_t(1) << (64 - m_shift) : 0; }

    Link m_head;
    std::size_t m_size = 0;
    std::unique_ptr<Node*[]> m_slots;
    unsigned m_shift = 64;
    float m_maxLoadFactor = 1.0f;
};

/// Holds a table that is made at the first insertion: an empty map or set
/// allocates nothing. Iterators of an empty one are null: begin() == end().
template <class Container>
class LazyContainer {
public:
    LazyContainer() noexcept = default;
    LazyContainer(LazyContainer const& other)
        : m_container(other.m_container ? std::make_unique<Container>(*other.m_container) : nullptr) {}
    LazyContainer(LazyContainer&&) noexcept = default;
    LazyContainer& operator=(LazyContainer const& other) {
        LazyContainer copy(other);
        swap(copy);
        return *this;
    }
    LazyContainer& operator=(LazyContainer&&) noexcept = default;
    ~LazyContainer() = default;

    /// The table, or null while nothing was inserted.
    Container* peek() const noexcept { return m_container.get(); }
    /// The table, made when needed.
    Container& get() {
        if (!m_container)
            m_container = std::make_unique<Container>();
        return *m_container;
    }
    void reset() noexcept { m_container.reset(); }
    void swap(LazyContainer& other) noexcept { m_container.swap(other.m_container); }

private:
    std::unique_ptr<Container> m_container;
};

} // namespace detail
} // namespace Kesto
