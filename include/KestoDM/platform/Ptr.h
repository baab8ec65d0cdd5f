#pragma once

#include <KestoDM/platform/DmExport.h>

#include <atomic>
#include <cstddef>
#include <type_traits>
#include <utility>

namespace Kesto {

namespace Internal {

/// The shared half of every Ptr: the count of owners and how to destroy the
/// object. The destroying function is chosen where the object was handed
/// over, so a Ptr<void> destroys the right type, with the allocator of the
/// module that made it.
struct PtrControlBlock {
    using Destroy = void (*)(PtrControlBlock*) noexcept;

    explicit PtrControlBlock(Destroy destroy) noexcept : m_destroy(destroy) {}

    std::atomic<long> m_count{1};
    Destroy m_destroy;
};

/// The block of `Ptr<T>::make`: the object lives inside it (one allocation).
template <class T>
struct PtrInlineBlock final : PtrControlBlock {
    template <class... Args>
    explicit PtrInlineBlock(Args&&... args)
        : PtrControlBlock(&destroyBlock), m_object(std::forward<Args>(args)...) {}

    static void destroyBlock(PtrControlBlock* block) noexcept { delete static_cast<PtrInlineBlock*>(block); }

    T m_object;
};

/// The block of a Ptr made from a raw pointer: it owns the object and frees
/// it with `delete`, or with the given deleter.
template <class U>
struct PtrOwnerBlock final : PtrControlBlock {
    PtrOwnerBlock(U* object, void (*deleter)(U*)) noexcept
        : PtrControlBlock(&destroyBlock), m_object(object), m_deleter(deleter) {}

    static void destroyBlock(PtrControlBlock* block) noexcept {
        auto* const self = static_cast<PtrOwnerBlock*>(block);
        self->freeObject();
        delete self;
    }

    void freeObject() noexcept {
        if (m_deleter != nullptr) {
            m_deleter(m_object);
        } else if constexpr (!std::is_void_v<U>) {
            delete m_object;
        }
    }

    U* m_object;
    void (*m_deleter)(U*);
};

} // namespace Internal

/// A reference-counted owning pointer: the object pointer and a pointer to a
/// shared control block (16 bytes). Counts are atomic, so owners may live on
/// different threads; the object itself is not made thread-safe by this.
///
/// Made by `Ptr<T>::make(args...)` (object and count in one allocation), from
/// a raw pointer `Ptr<T>(new U(...))` (takes ownership, frees with `delete`),
/// or with a deleter `Ptr<T>(object, deleter)` for objects of native libraries
/// that must be freed by their own code. A default Ptr is null.
///
/// `Ptr<void>` is the type-erased form that values of classes and arrays are
/// held as: any Ptr<T> converts to it, the control block still destroys the
/// object as its original type, and `staticPtrCast<T>` gives the typed Ptr back.
///
/// Marked for export although it is all inline: a library template made on
/// Ptr<void> (the datum of class and array values) is only as visible as Ptr.
template <class T>
class KESTODM_API Ptr {
public:
    using element_type = T;

    /// @name Making
    /// @{
    constexpr Ptr() noexcept = default;
    constexpr Ptr(std::nullptr_t) noexcept {}

    /// Takes ownership of `object`, later freed with `delete` as a U. A null
    /// object gives a null Ptr.
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    explicit Ptr(U* object) {
        static_assert(!std::is_void_v<U>, "a void object needs a deleter");
        static_assert(sizeof(U) > 0, "the object's type must be complete");
        if (object == nullptr) {
            return;
        }
        try {
            m_control = new Internal::PtrOwnerBlock<U>(object, nullptr);
        } catch (...) {
            delete object;
            throw;
        }
        m_object = object;
    }

    /// Takes ownership of `object`, later freed by `deleter(object)`. A null
    /// object gives a null Ptr and the deleter is never called. A null deleter
    /// means `delete` (and nothing at all for a void object).
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    Ptr(U* object, void (*deleter)(U*)) {
        if (object == nullptr) {
            return;
        }
        try {
            m_control = new Internal::PtrOwnerBlock<U>(object, deleter);
        } catch (...) {
            Internal::PtrOwnerBlock<U>(object, deleter).freeObject();
            throw;
        }
        m_object = object;
    }

    /// A new T made from `args`, in one allocation with its count.
    template <class... Args>
    static Ptr make(Args&&... args) {
        static_assert(!std::is_void_v<T>, "Ptr<void>::make has no type to make");
        auto* const block = new Internal::PtrInlineBlock<T>(std::forward<Args>(args)...);
        return Ptr(&block->m_object, block);
    }

    Ptr(Ptr const& other) noexcept : m_object(other.m_object), m_control(other.m_control) { retain(); }
    Ptr(Ptr&& other) noexcept : m_object(other.m_object), m_control(other.m_control) {
        other.m_object = nullptr;
        other.m_control = nullptr;
    }
    /// Ptr<Derived> → Ptr<Base>, and any Ptr<U> → Ptr<void>.
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    Ptr(Ptr<U> const& other) noexcept : m_object(other.m_object), m_control(other.m_control) {
        retain();
    }
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    Ptr(Ptr<U>&& other) noexcept : m_object(other.m_object), m_control(other.m_control) {
        other.m_object = nullptr;
        other.m_control = nullptr;
    }
    Ptr& operator=(Ptr const& other) noexcept {
        Ptr(other).swap(*this);
        return *this;
    }
    Ptr& operator=(Ptr&& other) noexcept {
        Ptr(std::move(other)).swap(*this);
        return *this;
    }
    Ptr& operator=(std::nullptr_t) noexcept {
        reset();
        return *this;
    }
    ~Ptr() { release(); }

    void swap(Ptr& other) noexcept {
        std::swap(m_object, other.m_object);
        std::swap(m_control, other.m_control);
    }
    /// Gives up this owner's share; the last owner destroys the object.
    void reset() noexcept { Ptr().swap(*this); }
    /// @}

    /// @name Reading
    /// @{
    T* get() const noexcept { return m_object; }
    template <class U = T, class = std::enable_if_t<!std::is_void_v<U>>>
    U& operator*() const noexcept {
        return *m_object;
    }
    template <class U = T, class = std::enable_if_t<!std::is_void_v<U>>>
    U* operator->() const noexcept {
        return m_object;
    }
    explicit operator bool() const noexcept { return m_object != nullptr; }
    /// The number of owners; 0 for a null Ptr. Another thread may change it at any time.
    long use_count() const noexcept {
        return m_control != nullptr ? m_control->m_count.load(std::memory_order_relaxed) : 0;
    }
    /// @}

private:
    template <class U>
    friend class Ptr;
    template <class U, class V>
    friend Ptr<U> staticPtrCast(Ptr<V> const& other) noexcept;

    /// Adopts one count that the caller already holds.
    Ptr(T* object, Internal::PtrControlBlock* control) noexcept : m_object(object), m_control(control) {}

    void retain() const noexcept {
        if (m_control != nullptr) {
            m_control->m_count.fetch_add(1, std::memory_order_relaxed);
        }
    }
    void release() noexcept {
        // acq_rel: the last owner must see every other owner's use of the object finished.
        if (m_control != nullptr && m_control->m_count.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            m_control->m_destroy(m_control);
        }
    }

    T* m_object = nullptr;
    Internal::PtrControlBlock* m_control = nullptr;
};

static_assert(sizeof(Ptr<void>) == 16, "a Ptr is an object pointer and a control block pointer");

/// The same object, as a T: Ptr<void> → Ptr<T> (or base → derived). The
/// caller knows the object's type; nothing is checked. Shares ownership.
template <class T, class U>
Ptr<T> staticPtrCast(Ptr<U> const& other) noexcept {
    other.retain();
    return Ptr<T>(static_cast<T*>(other.m_object), other.m_control);
}

/// @name Comparing
/// Two Ptrs are equal when they point at the same address.
/// @{
template <class T, class U>
bool operator==(Ptr<T> const& a, Ptr<U> const& b) noexcept {
    return a.get() == b.get();
}
template <class T, class U>
bool operator!=(Ptr<T> const& a, Ptr<U> const& b) noexcept {
    return a.get() != b.get();
}
template <class T>
bool operator==(Ptr<T> const& a, std::nullptr_t) noexcept {
    return !a;
}
template <class T>
bool operator==(std::nullptr_t, Ptr<T> const& a) noexcept {
    return !a;
}
template <class T>
bool operator!=(Ptr<T> const& a, std::nullptr_t) noexcept {
    return static_cast<bool>(a);
}
template <class T>
bool operator!=(std::nullptr_t, Ptr<T> const& a) noexcept {
    return static_cast<bool>(a);
}
/// @}

namespace Internal {
// Internal code spells it Internal::staticPtrCast as well.
using Kesto::staticPtrCast;
} // namespace Internal

} // namespace Kesto
