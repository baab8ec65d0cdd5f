#pragma once

#include <KestoDM/platform/DmExport.h>

#include <cstddef>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace Kesto {

class SerializationData;

/// A leaf of a SerializationData tree: one value written as text. Made from the text.
class KESTODM_API LiteralSerializationData {
public:
    LiteralSerializationData() = default;
    explicit LiteralSerializationData(std::string text) : m_text(std::move(text)) {}

    std::string const& getText() const noexcept { return m_text; }
    void setText(std::string text) { m_text = std::move(text); }

    friend bool operator==(LiteralSerializationData const& a, LiteralSerializationData const& b) {
        return a.m_text == b.m_text;
    }
    friend bool operator!=(LiteralSerializationData const& a, LiteralSerializationData const& b) {
        return !(a == b);
    }

private:
    std::string m_text;
};

/// A node of a SerializationData tree with named members in order of addition
/// (a struct's or object's fields). Names need not be unique; look-up finds the
/// first. Made empty, then filled with `add`.
class KESTODM_API CompositeSerializationData {
public:
    using Member = std::pair<std::string, SerializationData>;
    using iterator = std::vector<Member>::iterator;
    using const_iterator = std::vector<Member>::const_iterator;

    /// @name Making
    /// @{
    CompositeSerializationData();
    CompositeSerializationData(CompositeSerializationData const& other);
    CompositeSerializationData(CompositeSerializationData&& other) noexcept;
    CompositeSerializationData& operator=(CompositeSerializationData const& other);
    CompositeSerializationData& operator=(CompositeSerializationData&& other) noexcept;
    ~CompositeSerializationData();

    /// Appends a member; returns it, to fill it in place.
    SerializationData& add(std::string name, SerializationData data);
    /// @}

    /// @name Reading
    /// @{
    /// The first member of that name; null when there is none.
    SerializationData const* find(std::string const& name) const;
    SerializationData* find(std::string const& name);
    std::size_t size() const noexcept;
    bool empty() const noexcept;
    const_iterator begin() const noexcept;
    const_iterator end() const noexcept;
    iterator begin() noexcept;
    iterator end() noexcept;
    /// @}

    /// Equal when the contents are equal, in order, recursively.
    bool operator==(CompositeSerializationData const& other) const;
    bool operator!=(CompositeSerializationData const& other) const { return !(*this == other); }

private:
    std::vector<Member> m_members;
};

/// A node of a SerializationData tree with items in order (an array's
/// elements). Made empty, then filled with `add`.
class KESTODM_API SequenceSerializationData {
public:
    using iterator = std::vector<SerializationData>::iterator;
    using const_iterator = std::vector<SerializationData>::const_iterator;

    /// @name Making
    /// @{
    SequenceSerializationData();
    SequenceSerializationData(SequenceSerializationData const& other);
    SequenceSerializationData(SequenceSerializationData&& other) noexcept;
    SequenceSerializationData& operator=(SequenceSerializationData const& other);
    SequenceSerializationData& operator=(SequenceSerializationData&& other) noexcept;
    ~SequenceSerializationData();

    /// Appends an item; returns it, to fill it in place.
    SerializationData& add(SerializationData data);
    /// @}

    /// @name Reading
    /// @{
    std::size_t size() const noexcept;
    bool empty() const noexcept;
    SerializationData const& operator[](std::size_t index) const;
    SerializationData& operator[](std::size_t index);
    const_iterator begin() const noexcept;
    const_iterator end() const noexcept;
    iterator begin() noexcept;
    iterator end() noexcept;
    /// @}

    /// Equal when the contents are equal, in order, recursively.
    bool operator==(SequenceSerializationData const& other) const;
    bool operator!=(SequenceSerializationData const& other) const { return !(*this == other); }

private:
    std::vector<SerializationData> m_items;
};

/// A tree that native serializers fill with the contents of a value, and
/// that readers and writers walk: each node is a literal (text), a composite
/// (named members) or a sequence (items). A node is a value: copying copies
/// the whole subtree.
///
/// Made as an empty composite, or from any of the three node kinds;
/// assigning a node kind replaces the node (`data = CompositeSerializationData()`
/// makes it an empty composite again). Asking for the wrong kind with `as...`
/// is misuse and throws std::bad_variant_access.
class KESTODM_API SerializationData {
public:
    /// @name Making
    /// @{
    SerializationData() = default;
    SerializationData(LiteralSerializationData literal) : m_node(std::move(literal)) {}
    SerializationData(CompositeSerializationData composite) : m_node(std::move(composite)) {}
    SerializationData(SequenceSerializationData sequence) : m_node(std::move(sequence)) {}
    SerializationData& operator=(LiteralSerializationData literal) {
        m_node = std::move(literal);
        return *this;
    }
    SerializationData& operator=(CompositeSerializationData composite) {
        m_node = std::move(composite);
        return *this;
    }
    SerializationData& operator=(SequenceSerializationData sequence) {
        m_node = std::move(sequence);
        return *this;
    }
    /// @}

    /// @name Reading
    /// @{
    bool isLiteral() const noexcept { return std::holds_alternative<LiteralSerializationData>(m_node); }
    bool isComposite() const noexcept { return std::holds_alternative<CompositeSerializationData>(m_node); }
    bool isSequence() const noexcept { return std::holds_alternative<SequenceSerializationData>(m_node); }
    LiteralSerializationData const& asLiteral() const { return std::get<LiteralSerializationData>(m_node); }
    LiteralSerializationData& asLiteral() { return std::get<LiteralSerializationData>(m_node); }
    CompositeSerializationData const& asComposite() const {
        return std::get<CompositeSerializationData>(m_node);
    }
    CompositeSerializationData& asComposite() { return std::get<CompositeSerializationData>(m_node); }
    SequenceSerializationData const& asSequence() const {
        return std::get<SequenceSerializationData>(m_node);
    }
    SequenceSerializationData& asSequence() { return std::get<SequenceSerializationData>(m_node); }
    /// @}

    /// Equal when of the same kind with equal contents, recursively.
    friend bool operator==(SerializationData const& a, SerializationData const& b) {
        return a.m_node == b.m_node;
    }
    friend bool operator!=(SerializationData const& a, SerializationData const& b) { return !(a == b); }

private:
    std::variant<CompositeSerializationData, LiteralSerializationData, SequenceSerializationData> m_node;
};

} // namespace Kesto
