#include <KestoDM/types/DmBuiltInValue.h>

#include <KestoDM/platform/RuntimeAny.h>

#include "types/DmTypeSingletons.h"

namespace Kesto {

template class DmBuiltInValue<bool>;
template class DmBuiltInValue<signed char>;
template class DmBuiltInValue<unsigned char>;
template class DmBuiltInValue<short>;
template class DmBuiltInValue<unsigned short>;
template class DmBuiltInValue<int>;
template class DmBuiltInValue<unsigned int>;
template class DmBuiltInValue<std::int64_t>;
template class DmBuiltInValue<std::uint64_t>;
template class DmBuiltInValue<float>;
template class DmBuiltInValue<double>;
template class DmBuiltInValue<Any>;
template class DmBuiltInValue<String>;
template class DmBuiltInValue<Ptr<void>>;

#define KESTODM_DEFINE_BUILT_IN_VALUE(Class, Native, Singleton)                                              \
    Class::Class()                                                                                           \
        : DmBuiltInValue<Native>(Internal::placed(Internal::TypeSingletons::Singleton()), DataType()) {}     \
    Class::Class(std::shared_ptr<unsigned char const> buffer)                                                \
        : DmBuiltInValue<Native>(Internal::placed(Internal::TypeSingletons::Singleton()),                    \
                                 std::move(buffer)) {}                                                       \
    Class::Class(Class const& other) : DmBuiltInValue<Native>(other), DmInstanceCounter<Class>(other) {}     \
    Class::~Class() = default;                                                                               \
    std::shared_ptr<DmBaseValue> Class::clone() const {                                                      \
        return std::make_shared<Class>(*this);                                                               \
    }                                                                                                        \
    Any Class::toAny() const {                                                                               \
        return Internal::RuntimeAny::create<Native>(getData());                                              \
    }

KESTODM_DEFINE_BUILT_IN_VALUE(DmBoolValue, bool, boolType)
KESTODM_DEFINE_BUILT_IN_VALUE(DmCharValue, signed char, charType)
KESTODM_DEFINE_BUILT_IN_VALUE(DmUCharValue, unsigned char, ucharType)
KESTODM_DEFINE_BUILT_IN_VALUE(DmShortValue, short, shortType)
KESTODM_DEFINE_BUILT_IN_VALUE(DmUShortValue, unsigned short, ushortType)
KESTODM_DEFINE_BUILT_IN_VALUE(DmIntValue, int, intType)
KESTODM_DEFINE_BUILT_IN_VALUE(DmUIntValue, unsigned int, uintType)
KESTODM_DEFINE_BUILT_IN_VALUE(DmLongValue, std::int64_t, longType)
KESTODM_DEFINE_BUILT_IN_VALUE(DmULongValue, std::uint64_t, ulongType)
KESTODM_DEFINE_BUILT_IN_VALUE(DmFloatValue, float, floatType)
KESTODM_DEFINE_BUILT_IN_VALUE(DmDoubleValue, double, doubleType)
KESTODM_DEFINE_BUILT_IN_VALUE(DmAnyValue, Any, anyType)
KESTODM_DEFINE_BUILT_IN_VALUE(DmStringValue, String, stringType)

#undef KESTODM_DEFINE_BUILT_IN_VALUE

} // namespace Kesto
