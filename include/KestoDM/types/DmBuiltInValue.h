#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/Any.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>

#include <cstdint>
#include <memory>
#include <new>
#include <typeinfo>
#include <utility>
#include <variant>

namespace Kesto {

/// A value whose datum is one T. The datum is either held inline or, for a
/// member of a struct or an element of an array, lives in storage owned
/// elsewhere: the value then holds a shared pointer into that storage (which
/// keeps it alive) and reads and writes it in place.
template <class T>
class KESTODM_API DmBuiltInValue : public DmBaseValue {
public:
    using DataType = T;

    /// @name Datum
    /// @{
    T const& getData() const { return underlying_data(); }
    T& getData() { return underlying_data(); }
    /// Writes the datum and marks the value as set.
    virtual bool setData(T&& data);
    virtual bool setData(T const& data);
    /// True when the datum lives in storage owned elsewhere.
    bool isMemberValue() const noexcept { return m_data.index() == 1; }
    /// @}

    bool assign(std::shared_ptr<DmBaseValue> const& other) override;
    bool moveAssign(std::shared_ptr<DmBaseValue>&& other) override;

    bool copyConstructIntoBuffer(void* buffer) const override;
    bool moveConstructIntoBuffer(void* buffer) override;
    bool copyAssignIntoBuffer(void* buffer) const override;
    bool moveAssignIntoBuffer(void* buffer) override;
    bool copyConstructFromBuffer(void const* buffer) override;
    bool moveConstructFromBuffer(void* buffer) override;
    bool copyAssignFromBuffer(void const* buffer) override;
    bool moveAssignFromBuffer(void* buffer) override;

protected:
    DmBuiltInValue(std::shared_ptr<DmBaseType const> const& type, T data)
        : DmBaseValue(type), m_data(std::in_place_index<0>, std::move(data)) {}
    DmBuiltInValue(std::shared_ptr<DmBaseType const> const& type, std::shared_ptr<unsigned char const> buffer)
        : DmBaseValue(type), m_data(std::in_place_index<1>, std::move(buffer)) {}
    DmBuiltInValue(DmBuiltInValue const&) = default;

    /// The other value, if it is of this very value class and of an equivalent type.
    DmBuiltInValue* assignableFrom(std::shared_ptr<DmBaseValue> const& other) const;

private:
    T* underlying_data_addr() const {
        if (m_data.index() == 0) {
            return const_cast<T*>(&std::get<0>(m_data));
        }
        unsigned char const* const place = std::get<1>(m_data).get();
        return std::launder(reinterpret_cast<T*>(const_cast<unsigned char*>(place)));
    }
    T& underlying_data() const { return *underlying_data_addr(); }

    std::variant<T, std::shared_ptr<unsigned char const>> m_data;
};

template <class T>
bool DmBuiltInValue<T>::setData(T&& data) {
    underlying_data() = std::move(data);
    valueWasSet();
    return true;
}

template <class T>
bool DmBuiltInValue<T>::setData(T const& data) {
    underlying_data() = data;
    valueWasSet();
    return true;
}

template <class T>
DmBuiltInValue<T>* DmBuiltInValue<T>::assignableFrom(std::shared_ptr<DmBaseValue> const& other) const {
    if (!other || typeid(*other) != typeid(*this) || !DmBaseType::equivalent(getType(), other->getType())) {
        return nullptr;
    }
    return static_cast<DmBuiltInValue*>(other.get());
}

template <class T>
bool DmBuiltInValue<T>::assign(std::shared_ptr<DmBaseValue> const& other) {
    DmBuiltInValue* const source = assignableFrom(other);
    if (source == nullptr) {
        return false;
    }
    if (source != this) {
        underlying_data() = source->underlying_data();
    }
    valueWasSet();
    return true;
}

template <class T>
bool DmBuiltInValue<T>::moveAssign(std::shared_ptr<DmBaseValue>&& other) {
    DmBuiltInValue* const source = assignableFrom(other);
    if (source == nullptr) {
        return false;
    }
    if (source != this) {
        underlying_data() = std::move(source->underlying_data());
    }
    valueWasSet();
    return true;
}

template <class T>
bool DmBuiltInValue<T>::copyConstructIntoBuffer(void* buffer) const {
    if (buffer == nullptr) {
        return false;
    }
    ::new (buffer) T(underlying_data());
    return true;
}

template <class T>
bool DmBuiltInValue<T>::moveConstructIntoBuffer(void* buffer) {
    if (buffer == nullptr) {
        return false;
    }
    ::new (buffer) T(std::move(underlying_data()));
    return true;
}

template <class T>
bool DmBuiltInValue<T>::copyAssignIntoBuffer(void* buffer) const {
    if (buffer == nullptr) {
        return false;
    }
    *std::launder(static_cast<T*>(buffer)) = underlying_data();
    return true;
}

template <class T>
bool DmBuiltInValue<T>::moveAssignIntoBuffer(void* buffer) {
    if (buffer == nullptr) {
        return false;
    }
    *std::launder(static_cast<T*>(buffer)) = std::move(underlying_data());
    return true;
}

template <class T>
bool DmBuiltInValue<T>::copyConstructFromBuffer(void const* buffer) {
    return copyAssignFromBuffer(buffer);
}

template <class T>
bool DmBuiltInValue<T>::moveConstructFromBuffer(void* buffer) {
    return moveAssignFromBuffer(buffer);
}

template <class T>
bool DmBuiltInValue<T>::copyAssignFromBuffer(void const* buffer) {
    if (buffer == nullptr) {
        return false;
    }
    underlying_data() = *std::launder(static_cast<T const*>(buffer));
    valueWasSet();
    return true;
}

template <class T>
bool DmBuiltInValue<T>::moveAssignFromBuffer(void* buffer) {
    if (buffer == nullptr) {
        return false;
    }
    underlying_data() = std::move(*std::launder(static_cast<T*>(buffer)));
    valueWasSet();
    return true;
}

// Instantiated once, in the library.
extern template class DmBuiltInValue<bool>;
extern template class DmBuiltInValue<signed char>;
extern template class DmBuiltInValue<unsigned char>;
extern template class DmBuiltInValue<short>;
extern template class DmBuiltInValue<unsigned short>;
extern template class DmBuiltInValue<int>;
extern template class DmBuiltInValue<unsigned int>;
extern template class DmBuiltInValue<std::int64_t>;
extern template class DmBuiltInValue<std::uint64_t>;
extern template class DmBuiltInValue<float>;
extern template class DmBuiltInValue<double>;
extern template class DmBuiltInValue<Any>;
extern template class DmBuiltInValue<String>;
extern template class DmBuiltInValue<Ptr<void>>;

// The values of the built-in types. The default constructor takes the
// process-wide type and the type's default datum (false, 0, empty Any, empty
// string); the buffer constructor makes a member value that reads and writes
// the given storage in place.
#define KESTODM_BUILT_IN_VALUE(Class, Native)                                                                \
    class KESTODM_API Class : public DmBuiltInValue<Native>, public DmInstanceCounter<Class> {               \
    public:                                                                                                  \
        Class();                                                                                             \
        explicit Class(std::shared_ptr<unsigned char const> buffer);                                         \
        Class(Class const& other);                                                                           \
        ~Class() override;                                                                                   \
        std::shared_ptr<DmBaseValue> clone() const override;                                                 \
        Any toAny() const override;                                                                          \
    }

KESTODM_BUILT_IN_VALUE(DmBoolValue, bool);
KESTODM_BUILT_IN_VALUE(DmCharValue, signed char);
KESTODM_BUILT_IN_VALUE(DmUCharValue, unsigned char);
KESTODM_BUILT_IN_VALUE(DmShortValue, short);
KESTODM_BUILT_IN_VALUE(DmUShortValue, unsigned short);
KESTODM_BUILT_IN_VALUE(DmIntValue, int);
KESTODM_BUILT_IN_VALUE(DmUIntValue, unsigned int);
KESTODM_BUILT_IN_VALUE(DmLongValue, std::int64_t);
KESTODM_BUILT_IN_VALUE(DmULongValue, std::uint64_t);
KESTODM_BUILT_IN_VALUE(DmFloatValue, float);
KESTODM_BUILT_IN_VALUE(DmDoubleValue, double);
KESTODM_BUILT_IN_VALUE(DmAnyValue, Any);
KESTODM_BUILT_IN_VALUE(DmStringValue, String);

#undef KESTODM_BUILT_IN_VALUE

} // namespace Kesto
