#pragma once

#include <KestoDM/platform/DmExport.h>

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace Kesto {
namespace Internal {

/// How to handle an opaque object whose type is known only at run time: its
/// size and alignment, and how to construct, copy, move and destroy it in
/// raw storage. The run-time type layer keeps values (members of structs,
/// elements of arrays, the payload of an Any) as bytes and handles them only
/// through their rep.
///
/// A rep is a copyable handle to one shared, immutable description. It is
/// made from a C++ type (`of<T>()`), as the opaque 16-byte payload of types
/// that cannot be instantiated (`opaque16()`), or as a struct laid out by the
/// caller (`makeStruct`). A default rep is empty (`isValid()` false): its
/// size is 0, its operations do nothing, and it allocates nothing.
///
/// The operations take raw addresses: `dst` of a construction is storage with
/// no live object; every other address holds a live object of this rep. A
/// move leaves the source a live (moved-from) object that must still be
/// destroyed.
class KESTODM_API UntypedTypeRep {
public:
    /// The shared description behind a rep. Implementations are immutable.
    class KESTODM_API Impl {
    public:
        Impl(std::size_t size, std::size_t alignment, bool needsDestruction) noexcept
            : m_size(size), m_alignment(alignment), m_needsDestruction(needsDestruction) {}
        virtual ~Impl();
        Impl(Impl const&) = delete;
        Impl& operator=(Impl const&) = delete;

        std::size_t size() const noexcept { return m_size; }
        std::size_t alignment() const noexcept { return m_alignment; }
        bool needsDestruction() const noexcept { return m_needsDestruction; }

        virtual void defaultConstruct(void* dst) const = 0;
        virtual void copyConstruct(void* dst, void const* src) const = 0;
        virtual void moveConstruct(void* dst, void* src) const = 0;
        virtual void copyAssign(void* dst, void const* src) const = 0;
        virtual void moveAssign(void* dst, void* src) const = 0;
        virtual void destroy(void* object) const noexcept = 0;

    private:
        std::size_t m_size;
        std::size_t m_alignment;
        bool m_needsDestruction;
    };

    /// @name Making
    /// @{
    UntypedTypeRep() noexcept = default;
    explicit UntypedTypeRep(std::shared_ptr<Impl const> impl) noexcept : m_impl(std::move(impl)) {}

    /// The rep of C++ type T (default-constructible, copyable). Default
    /// construction value-initialises (numbers become 0).
    template <class T>
    static UntypedTypeRep of();

    /// 16 bytes aligned to 8, handled as plain bytes (default: zeros). Stands
    /// for values of types that cannot be instantiated here.
    static UntypedTypeRep opaque16();

    /// A struct of `size` bytes aligned to `alignment`, with members at the
    /// given offsets (computed by the caller). Operations apply member by
    /// member, in order (destruction in reverse order); default construction
    /// first zeroes all bytes, padding included, then constructs the members.
    /// Gives the empty rep when the layout is not sound: alignment not a power
    /// of two, size not a multiple of it, an empty member rep, or a member
    /// that is misaligned (against the offset or the struct's alignment) or
    /// reaches past the end.
    static UntypedTypeRep makeStruct(std::vector<std::pair<std::size_t, UntypedTypeRep>> members,
                                     std::size_t size, std::size_t alignment);
    /// @}

    /// @name Describing
    /// @{
    bool isValid() const noexcept { return m_impl != nullptr; }
    std::size_t size() const noexcept { return m_impl != nullptr ? m_impl->size() : 0; }
    std::size_t alignment() const noexcept { return m_impl != nullptr ? m_impl->alignment() : 1; }
    bool needsDestruction() const noexcept { return m_impl != nullptr && m_impl->needsDestruction(); }
    /// True when both handles share one description (copies of one rep).
    bool isSameAs(UntypedTypeRep const& other) const noexcept { return m_impl == other.m_impl; }
    /// @}

    /// @name Handling objects
    /// @{
    void defaultConstruct(void* dst) const {
        if (m_impl != nullptr) {
            m_impl->defaultConstruct(dst);
        }
    }
    void copyConstruct(void* dst, void const* src) const {
        if (m_impl != nullptr) {
            m_impl->copyConstruct(dst, src);
        }
    }
    void moveConstruct(void* dst, void* src) const {
        if (m_impl != nullptr) {
            m_impl->moveConstruct(dst, src);
        }
    }
    void copyAssign(void* dst, void const* src) const {
        if (m_impl != nullptr) {
            m_impl->copyAssign(dst, src);
        }
    }
    void moveAssign(void* dst, void* src) const {
        if (m_impl != nullptr) {
            m_impl->moveAssign(dst, src);
        }
    }
    void destroy(void* object) const noexcept {
        if (m_impl != nullptr) {
            m_impl->destroy(object);
        }
    }
    /// @}

    /// @name Storage
    /// @{
    /// Raw storage for `count` objects, aligned to `alignment()` and filled
    /// with zero bytes; no object is constructed. Never null when count > 0
    /// (throws std::bad_alloc when memory runs out); null for count 0 and for
    /// the empty rep. Free it with `deallocate` of a rep of the same alignment.
    void* allocate(std::size_t count) const;
    /// Frees storage from `allocate`; null is ignored. Destroys nothing.
    void deallocate(void* storage) const noexcept;
    /// @}

private:
    std::shared_ptr<Impl const> m_impl;
};

/// The rep of one C++ type.
template <class T>
class TypedRepImpl final : public UntypedTypeRep::Impl {
public:
    TypedRepImpl() noexcept : Impl(sizeof(T), alignof(T), !std::is_trivially_destructible_v<T>) {}

    void defaultConstruct(void* dst) const override { ::new (dst) T(); }
    void copyConstruct(void* dst, void const* src) const override { ::new (dst) T(*object(src)); }
    void moveConstruct(void* dst, void* src) const override { ::new (dst) T(std::move(*object(src))); }
    void copyAssign(void* dst, void const* src) const override { *object(dst) = *object(src); }
    void moveAssign(void* dst, void* src) const override { *object(dst) = std::move(*object(src)); }
    void destroy(void* target) const noexcept override { object(target)->~T(); }

private:
    static T* object(void* address) noexcept { return std::launder(static_cast<T*>(address)); }
    static T const* object(void const* address) noexcept {
        return std::launder(static_cast<T const*>(address));
    }
};

template <class T>
UntypedTypeRep UntypedTypeRep::of() {
    static_assert(std::is_default_constructible_v<T> && std::is_copy_constructible_v<T> &&
                      std::is_copy_assignable_v<T>,
                  "a rep handles default-constructible, copyable types");
    // One description per type per module, made on first use and never
    // destroyed, so reps stay usable from static destructors.
    static std::shared_ptr<Impl const> const* const impl =
        new std::shared_ptr<Impl const>(std::make_shared<TypedRepImpl<T>>());
    return UntypedTypeRep(*impl);
}

} // namespace Internal
} // namespace Kesto
