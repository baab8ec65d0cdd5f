#include <KestoDM/platform/String.h>

#include <cstring>
#include <new>

namespace Kesto {

String::String(char const* text) {
    if (text != nullptr) {
        assign(text, std::strlen(text));
    }
}

String::String(std::string_view text) {
    assign(text.data(), text.size());
}

String::String(std::string const& text) {
    assign(text.data(), text.size());
}

void String::assign(char const* bytes, std::size_t size) {
    if (size == 0) {
        return; // empty text owns nothing
    }
    // One block: the count, the bytes, a closing zero for c_str().
    void* const raw = ::operator new(sizeof(Internal::StringHeader) + size + 1);
    auto* const header = new (raw) Internal::StringHeader{{1}};
    char* const chars = reinterpret_cast<char*>(header + 1);
    std::memcpy(chars, bytes, size);
    chars[size] = '\0';
    m_header = header;
    m_size = size;
}

void String::freeBuffer(Internal::StringHeader* header) noexcept {
    header->~StringHeader();
    ::operator delete(static_cast<void*>(header));
}

} // namespace Kesto
