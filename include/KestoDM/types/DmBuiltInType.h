#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/Any.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmBaseType.h>

#include <cstdint>
#include <string>
#include <type_traits>

namespace Kesto {

/// Empty tag base of the mix-in markers of types.
class KESTODM_API DmMixinType {
public:
    virtual ~DmMixinType();
};

/// Marks a type as built in: the built-ins, auto and arrays carry it.
class KESTODM_API DmBuiltInType : public DmMixinType {};

/// A built-in type whose native form is T.
template <class T>
class KESTODM_API DmBuiltInTypeT : public DmBaseType, public DmBuiltInType {
public:
    using NativeType = T;

    bool isNative() const override { return true; }
    bool isPOD() const override { return std::is_trivially_copyable<T>::value; }
    unsigned int getSizeOf() const override { return sizeof(T); }
    unsigned int getAlignmentOf() const override { return alignof(T); }
    Internal::UntypedTypeRep getUntypedTypeRep() const override;
    Internal::RuntimeTypeInfo const* getRuntimeTypeInfo() const override;
    std::shared_ptr<DmBaseValue> createValue() const override;
    std::shared_ptr<DmBaseValue>
    createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const override;

protected:
    DmBuiltInTypeT(std::string const& name, DmTypeKind kind) : DmBaseType(name, kind) {}
};

// The members above are defined once, in the library, for each native form.
extern template class DmBuiltInTypeT<bool>;
extern template class DmBuiltInTypeT<signed char>;
extern template class DmBuiltInTypeT<unsigned char>;
extern template class DmBuiltInTypeT<short>;
extern template class DmBuiltInTypeT<unsigned short>;
extern template class DmBuiltInTypeT<int>;
extern template class DmBuiltInTypeT<unsigned int>;
extern template class DmBuiltInTypeT<std::int64_t>;
extern template class DmBuiltInTypeT<std::uint64_t>;
extern template class DmBuiltInTypeT<float>;
extern template class DmBuiltInTypeT<double>;
extern template class DmBuiltInTypeT<Any>;
extern template class DmBuiltInTypeT<String>;

// The built-in types of the model. Each is a process-wide singleton reached
// through DmLibrary (getBoolType, ...), const from birth.
#define KESTODM_BUILT_IN_TYPE(Class, Native)                                                                 \
    class KESTODM_API Class : public DmBuiltInTypeT<Native>, public DmInstanceCounter<Class> {               \
    public:                                                                                                  \
        Class();                                                                                             \
        ~Class() override;                                                                                   \
    }

KESTODM_BUILT_IN_TYPE(DmBoolType, bool);
KESTODM_BUILT_IN_TYPE(DmCharType, signed char);
KESTODM_BUILT_IN_TYPE(DmUCharType, unsigned char);
KESTODM_BUILT_IN_TYPE(DmShortType, short);
KESTODM_BUILT_IN_TYPE(DmUShortType, unsigned short);
KESTODM_BUILT_IN_TYPE(DmIntType, int);
KESTODM_BUILT_IN_TYPE(DmUIntType, unsigned int);
KESTODM_BUILT_IN_TYPE(DmLongType, std::int64_t);
KESTODM_BUILT_IN_TYPE(DmULongType, std::uint64_t);
KESTODM_BUILT_IN_TYPE(DmFloatType, float);
KESTODM_BUILT_IN_TYPE(DmDoubleType, double);
KESTODM_BUILT_IN_TYPE(DmAnyType, Any);
KESTODM_BUILT_IN_TYPE(DmStringType, String);

#undef KESTODM_BUILT_IN_TYPE

} // namespace Kesto
