#include <KestoDM/types/DmBuiltInType.h>

#include <KestoDM/types/DmBuiltInValue.h>

#include <KestoDM/platform/RttiTable.h>

namespace Kesto {

DmMixinType::~DmMixinType() = default;

template <class T>
Internal::UntypedTypeRep DmBuiltInTypeT<T>::getUntypedTypeRep() const {
    return Internal::UntypedTypeRep::of<T>();
}

template <class T>
Internal::RuntimeTypeInfo const* DmBuiltInTypeT<T>::getRuntimeTypeInfo() const {
    return Internal::GlobalRttiTable::get().getBuiltin<T>();
}

#define KESTODM_DEFINE_BUILT_IN_TYPE(Class, Name, Kind)                                                      \
    Class::Class() : DmBuiltInTypeT(Name, Kind) {}                                                           \
    Class::~Class() = default;

KESTODM_DEFINE_BUILT_IN_TYPE(DmBoolType, "bool", kTypeBool)
KESTODM_DEFINE_BUILT_IN_TYPE(DmCharType, "char", kTypeChar)
KESTODM_DEFINE_BUILT_IN_TYPE(DmUCharType, "uchar", kTypeUChar)
KESTODM_DEFINE_BUILT_IN_TYPE(DmShortType, "short", kTypeShort)
KESTODM_DEFINE_BUILT_IN_TYPE(DmUShortType, "ushort", kTypeUShort)
KESTODM_DEFINE_BUILT_IN_TYPE(DmIntType, "int", kTypeInt)
KESTODM_DEFINE_BUILT_IN_TYPE(DmUIntType, "uint", kTypeUInt)
KESTODM_DEFINE_BUILT_IN_TYPE(DmLongType, "long", kTypeLong)
KESTODM_DEFINE_BUILT_IN_TYPE(DmULongType, "ulong", kTypeULong)
KESTODM_DEFINE_BUILT_IN_TYPE(DmFloatType, "float", kTypeFloat)
KESTODM_DEFINE_BUILT_IN_TYPE(DmDoubleType, "double", kTypeDouble)
KESTODM_DEFINE_BUILT_IN_TYPE(DmAnyType, "any", kTypeAny)
KESTODM_DEFINE_BUILT_IN_TYPE(DmStringType, "string", kTypeString)

#undef KESTODM_DEFINE_BUILT_IN_TYPE

namespace {

// The value class of each native form.
template <class T>
struct ValueClassOf;
template <>
struct ValueClassOf<bool> {
    using type = DmBoolValue;
};
template <>
struct ValueClassOf<signed char> {
    using type = DmCharValue;
};
template <>
struct ValueClassOf<unsigned char> {
    using type = DmUCharValue;
};
template <>
struct ValueClassOf<short> {
    using type = DmShortValue;
};
template <>
struct ValueClassOf<unsigned short> {
    using type = DmUShortValue;
};
template <>
struct ValueClassOf<int> {
    using type = DmIntValue;
};
template <>
struct ValueClassOf<unsigned int> {
    using type = DmUIntValue;
};
template <>
struct ValueClassOf<std::int64_t> {
    using type = DmLongValue;
};
template <>
struct ValueClassOf<std::uint64_t> {
    using type = DmULongValue;
};
template <>
struct ValueClassOf<float> {
    using type = DmFloatValue;
};
template <>
struct ValueClassOf<double> {
    using type = DmDoubleValue;
};
template <>
struct ValueClassOf<Any> {
    using type = DmAnyValue;
};
template <>
struct ValueClassOf<String> {
    using type = DmStringValue;
};

} // namespace

template <class T>
std::shared_ptr<DmBaseValue> DmBuiltInTypeT<T>::createValue() const {
    return std::make_shared<typename ValueClassOf<T>::type>();
}

template <class T>
std::shared_ptr<DmBaseValue>
DmBuiltInTypeT<T>::createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const {
    return std::make_shared<typename ValueClassOf<T>::type>(buffer);
}

template class DmBuiltInTypeT<bool>;
template class DmBuiltInTypeT<signed char>;
template class DmBuiltInTypeT<unsigned char>;
template class DmBuiltInTypeT<short>;
template class DmBuiltInTypeT<unsigned short>;
template class DmBuiltInTypeT<int>;
template class DmBuiltInTypeT<unsigned int>;
template class DmBuiltInTypeT<std::int64_t>;
template class DmBuiltInTypeT<std::uint64_t>;
template class DmBuiltInTypeT<float>;
template class DmBuiltInTypeT<double>;
template class DmBuiltInTypeT<Any>;
template class DmBuiltInTypeT<String>;

} // namespace Kesto
