#pragma once

#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/UntypedTypeRep.h>

#include <cstddef>

namespace Kesto {
namespace Internal {

/// A run-time array: contiguous elements of one rep, known only at run time.
/// Array values of the run-time type layer are held as Ptr<void> to one of
/// these (`create`), so copying an array value shares it; `clone` copies it.
///
/// Made with an element rep, a size and a capacity. Every slot below the
/// size always holds a live element: the constructor and `resize`
/// default-construct new elements at once. That costs little, because the
/// default state of the layer's values owns nothing, and it makes
/// destruction always safe. Slots from the size up to the capacity are zero
/// bytes with no object in them.
///
/// With an empty element rep the array holds nothing and cannot grow.
class KESTODM_API UntypedArray {
public:
    /// @name Making
    /// @{
    /// Storage for max(size, capacity) elements, of which the first `size`
    /// are default-constructed.
    UntypedArray(UntypedTypeRep element, std::size_t size, std::size_t capacity);
    ~UntypedArray();
    UntypedArray(UntypedArray const&) = delete;
    UntypedArray& operator=(UntypedArray const&) = delete;

    /// A new array of `size` default elements, held as an array value is.
    static Ptr<void> create(UntypedTypeRep element, std::size_t size);
    /// A deep copy: the same element rep and size, each element copy-constructed.
    Ptr<UntypedArray> clone() const;
    /// @}

    /// @name Reading
    /// @{
    UntypedTypeRep const& getUntypedTypeRep() const noexcept { return m_element; }
    std::size_t size() const noexcept { return m_size; }
    std::size_t capacity() const noexcept { return m_capacity; }
    void* storage() noexcept { return m_storage; }
    void const* storage() const noexcept { return m_storage; }
    /// The element at `index`; null when index >= size().
    void* get_element(std::size_t index) noexcept;
    void const* get_element(std::size_t index) const noexcept;
    /// @}

    /// @name Changing
    /// @{
    /// Makes the size `size`: new elements are default-constructed, removed
    /// ones destroyed (their slots zeroed again). Growing past the capacity
    /// moves the elements to new storage of at least double the capacity.
    void resize(std::size_t size);
    /// @}

private:
    char* slot(std::size_t index) const noexcept {
        return static_cast<char*>(m_storage) + index * m_element.size();
    }
    void destroyRange(std::size_t from, std::size_t to) noexcept;
    void growTo(std::size_t capacity);

    UntypedTypeRep m_element;
    void* m_storage = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

} // namespace Internal
} // namespace Kesto
