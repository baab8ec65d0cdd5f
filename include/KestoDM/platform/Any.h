#pragma once

#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>

#include <cstddef>
#include <new>

namespace Kesto {

namespace Internal {
class RuntimeAny;
}

/// One value of any run-time type: the type's record and the value itself,
/// kept inline in 24 bytes (32 in all). Every built-in fits, String and
/// Ptr<void> included; so do enums (an int) and classes and arrays (a
/// Ptr<void>). The value is copied, moved and destroyed through the record's
/// rep, so an Any of a String or a Ptr<void> shares, never copies, the text
/// or the object.
///
/// Made empty by default; values are put in by `Internal::RuntimeAny`. An
/// Any never holds another Any: wrapping an Any gives that same Any.
/// Records come from the process-wide table, which outlives every Any.
class KESTODM_API Any {
public:
    static constexpr std::size_t kInlineSize = 24;
    static constexpr std::size_t kInlineAlignment = 8;

    /// @name Making
    /// @{
    Any() noexcept {} // the storage stays raw: nothing lives there yet
    Any(Any const& other);
    /// Leaves `other` empty.
    Any(Any&& other) noexcept;
    Any& operator=(Any const& other);
    Any& operator=(Any&& other) noexcept;
    ~Any() { reset(); }
    /// Destroys the value; the Any is empty after.
    void reset() noexcept;
    /// @}

    /// @name Reading
    /// @{
    bool isEmpty() const noexcept { return m_type == nullptr; }
    bool hasValue() const noexcept { return m_type != nullptr; }
    /// The value's record; null when empty.
    Internal::RuntimeTypeInfo const* getTypeInfo() const noexcept { return m_type; }
    /// The value when it is exactly built-in T (its record is the table's
    /// record of T); null otherwise. An enum's int is not an `int`, an
    /// object's Ptr<void> not a `Ptr<void>`: read those through data().
    template <class T>
    T const* get() const {
        if (m_type == nullptr || m_type != Internal::GlobalRttiTable::get().getBuiltin<T>()) {
            return nullptr;
        }
        return std::launder(reinterpret_cast<T const*>(m_storage));
    }
    /// The value as its record's rep lays it out; null when empty.
    void const* data() const noexcept { return m_type != nullptr ? m_storage : nullptr; }
    /// True when a value of `rep` can be held inline.
    static bool fits(Internal::UntypedTypeRep const& rep) noexcept {
        return rep.isValid() && rep.size() <= kInlineSize && kInlineAlignment % rep.alignment() == 0;
    }
    /// @}

private:
    friend class Internal::RuntimeAny;

    /// Copies the value at `value`, of type `type`, into this empty Any. False
    /// (and still empty) when the type has no rep or its value does not fit.
    bool assignCopy(Internal::RuntimeTypeInfo const* type, void const* value);
    /// Moves the value of `other` into this empty Any and empties `other`.
    void takeFrom(Any& other) noexcept;

    Internal::RuntimeTypeInfo const* m_type = nullptr;
    alignas(kInlineAlignment) unsigned char m_storage[kInlineSize];
};

static_assert(sizeof(Any) == 32, "an Any is a record pointer and 24 bytes of value");
static_assert(alignof(Any) == 8, "an Any is pointer-aligned");

} // namespace Kesto
