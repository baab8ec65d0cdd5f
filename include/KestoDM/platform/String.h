#pragma once

#include <KestoDM/platform/DmExport.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace Kesto {

namespace Internal {

/// The head of a String's heap buffer; the bytes and a closing zero follow it.
struct StringHeader {
    std::atomic<std::size_t> m_count;
};

} // namespace Internal

/// Immutable text as values of the run-time type layer hold it.
///
/// A String is made from a C string, a string view or a std::string; the bytes
/// are copied once into a shared, reference-counted heap buffer, and copies of
/// the String share that buffer (copying is O(1), counting is atomic, so copies
/// may live on different threads). Empty text never allocates: a default or
/// empty String owns nothing.
///
/// The bytes may include zeros. `view()`, `str()` and `size()` see them all;
/// `c_str()` is the bytes followed by a zero, so C code sees the text only up
/// to its first zero byte.
class KESTODM_API String {
public:
    /// @name Making
    /// @{
    String() noexcept = default;
    /// A null pointer gives the empty String.
    String(char const* text);
    String(std::string_view text);
    String(std::string const& text);
    String(String const& other) noexcept : m_header(other.m_header), m_size(other.m_size) { retain(); }
    String(String&& other) noexcept : m_header(other.m_header), m_size(other.m_size) {
        other.m_header = nullptr;
        other.m_size = 0;
    }
    String& operator=(String const& other) noexcept {
        String(other).swap(*this);
        return *this;
    }
    String& operator=(String&& other) noexcept {
        String(std::move(other)).swap(*this);
        return *this;
    }
    ~String() { release(); }
    void swap(String& other) noexcept {
        std::swap(m_header, other.m_header);
        std::swap(m_size, other.m_size);
    }
    /// @}

    /// @name Reading
    /// @{
    /// Never null; the text up to its first zero byte for C code.
    char const* c_str() const noexcept { return m_header != nullptr ? chars() : ""; }
    /// Never null; `size()` bytes, followed by a zero.
    char const* data() const noexcept { return c_str(); }
    std::size_t size() const noexcept { return m_size; }
    bool empty() const noexcept { return m_size == 0; }
    std::string_view view() const noexcept { return std::string_view(data(), m_size); }
    std::string str() const { return std::string(data(), m_size); }
    /// How many Strings share this buffer; 0 for a String that owns nothing.
    /// For diagnostics and tests: another thread may change it at any time.
    std::size_t useCount() const noexcept {
        return m_header != nullptr ? m_header->m_count.load(std::memory_order_relaxed) : 0;
    }
    /// @}

    /// @name Comparing
    /// Byte-wise, as unsigned bytes; on an equal prefix the shorter text comes first.
    /// @{
    friend bool operator==(String const& a, String const& b) noexcept {
        return a.m_header == b.m_header ? a.m_size == b.m_size : a.view() == b.view();
    }
    friend bool operator!=(String const& a, String const& b) noexcept { return !(a == b); }
    friend bool operator<(String const& a, String const& b) noexcept { return a.view() < b.view(); }
    /// @}

private:
    void assign(char const* bytes, std::size_t size);
    char const* chars() const noexcept { return reinterpret_cast<char const*>(m_header + 1); }
    void retain() const noexcept {
        if (m_header != nullptr) {
            // Taking a further count needs no ordering: the buffer is immutable.
            m_header->m_count.fetch_add(1, std::memory_order_relaxed);
        }
    }
    void release() noexcept {
        // acq_rel: the last owner must see every other owner's reads finished.
        if (m_header != nullptr && m_header->m_count.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            freeBuffer(m_header);
        }
    }
    static void freeBuffer(Internal::StringHeader* header) noexcept;

    Internal::StringHeader* m_header = nullptr;
    std::size_t m_size = 0;
};

static_assert(sizeof(String) == 16, "a String is a buffer pointer and a size");
static_assert(alignof(String) == 8, "a String is pointer-aligned");

} // namespace Kesto

namespace std {

/// Hashes the bytes, so equal Strings hash alike whether or not they share a buffer.
template <>
struct hash<Kesto::String> {
    std::size_t operator()(Kesto::String const& text) const noexcept {
        return std::hash<std::string_view>()(text.view());
    }
};

} // namespace std
