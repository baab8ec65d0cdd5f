#include <KestoDM/platform/UntypedArray.h>

#include <cstring>

namespace Kesto {
namespace Internal {

UntypedArray::UntypedArray(UntypedTypeRep element, std::size_t size, std::size_t capacity)
    : m_element(std::move(element)) {
    if (!m_element.isValid()) {
        return;
    }
    m_capacity = capacity > size ? capacity : size;
    m_storage = m_element.allocate(m_capacity);
    try {
        resize(size);
    } catch (...) {
        // The destructor will not run for a constructor that throws.
        destroyRange(0, m_size);
        m_element.deallocate(m_storage);
        throw;
    }
}

UntypedArray::~UntypedArray() {
    destroyRange(0, m_size);
    m_element.deallocate(m_storage);
}

Ptr<void> UntypedArray::create(UntypedTypeRep element, std::size_t size) {
    return Ptr<UntypedArray>::make(std::move(element), size, size);
}

Ptr<UntypedArray> UntypedArray::clone() const {
    Ptr<UntypedArray> copy = Ptr<UntypedArray>::make(m_element, 0, m_size);
    for (; copy->m_size < m_size; ++copy->m_size) {
        m_element.copyConstruct(copy->slot(copy->m_size), slot(copy->m_size));
    }
    return copy;
}

void* UntypedArray::get_element(std::size_t index) noexcept {
    return index < m_size ? slot(index) : nullptr;
}

void const* UntypedArray::get_element(std::size_t index) const noexcept {
    return index < m_size ? slot(index) : nullptr;
}

void UntypedArray::resize(std::size_t size) {
    if (!m_element.isValid()) {
        return;
    }
    if (size < m_size) {
        destroyRange(size, m_size);
        m_size = size;
        return;
    }
    if (size > m_capacity) {
        growTo(size > 2 * m_capacity ? size : 2 * m_capacity);
    }
    // m_size counts live elements at every step, so a throwing constructor
    // leaves an array whose destructor is still right.
    for (; m_size < size; ++m_size) {
        m_element.defaultConstruct(slot(m_size));
    }
}

void UntypedArray::destroyRange(std::size_t from, std::size_t to) noexcept {
    for (std::size_t index = to; index > from; --index) {
        m_element.destroy(slot(index - 1));
    }
    if (to > from) {
        // Free slots are zero bytes again, as fresh storage is.
        std::memset(slot(from), 0, (to - from) * m_element.size());
    }
}

void UntypedArray::growTo(std::size_t capacity) {
    void* const storage = m_element.allocate(capacity);
    std::size_t const elementSize = m_element.size();
    std::size_t moved = 0;
    try {
        for (; moved < m_size; ++moved) {
            m_element.moveConstruct(static_cast<char*>(storage) + moved * elementSize, slot(moved));
        }
    } catch (...) {
        for (std::size_t index = moved; index > 0; --index) {
            m_element.destroy(static_cast<char*>(storage) + (index - 1) * elementSize);
        }
        m_element.deallocate(storage);
        throw;
    }
    for (std::size_t index = m_size; index > 0; --index) {
        m_element.destroy(slot(index - 1));
    }
    m_element.deallocate(m_storage);
    m_storage = storage;
    m_capacity = capacity;
}

} // namespace Internal
} // namespace Kesto
