// The thirteen built-in types as DmLibrary hands them out: names, kinds,
// layouts, nature, and their link to the run-time type table.
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/Any.h>
#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/platform/UntypedTypeRep.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmExternBaseType.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmTypeKind.h>
#include <KestoDM/types/DmUninstantiableType.h>
#include <KestoDM/types/DmUnknownStructType.h>
#include <KestoDM/types/DmUnknownType.h>

#include "types/DmExternTypeFactory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>

using namespace Kesto;

namespace {

/// One built-in, with what it must report.
struct BuiltInCase {
    char const* name;
    DmTypeKind kind;
    unsigned int size;
    unsigned int alignment;
    bool pod;
    /// The singleton, through DmLibrary.
    DmBaseType const* (*get)();
    /// The object behind the singleton's shared pointer (to see that the same one comes back).
    void const* (*holder)();
    /// The table's record of the native form.
    Internal::RuntimeTypeInfo const* (*record)();
};

std::ostream& operator<<(std::ostream& out, BuiltInCase const& entry) {
    return out << entry.name;
}

template <class T>
Internal::RuntimeTypeInfo const* builtinRecord() {
    return Internal::GlobalRttiTable::get().getBuiltin<T>();
}

#define KESTODM_BUILT_IN_CASE(getter, name, kind, size, alignment, pod, Native)                              \
    BuiltInCase {                                                                                            \
        name, kind, size, alignment, pod, [] { return static_cast<DmBaseType const*>(getter().get()); },     \
            [] { return static_cast<void const*>(&getter()); }, &builtinRecord<Native>                       \
    }

BuiltInCase const kBuiltIns[] = {
    KESTODM_BUILT_IN_CASE(DmLibrary::getBoolType, "bool", kTypeBool, 1, 1, true, bool),
    KESTODM_BUILT_IN_CASE(DmLibrary::getCharType, "char", kTypeChar, 1, 1, true, signed char),
    KESTODM_BUILT_IN_CASE(DmLibrary::getUCharType, "uchar", kTypeUChar, 1, 1, true, unsigned char),
    KESTODM_BUILT_IN_CASE(DmLibrary::getShortType, "short", kTypeShort, 2, 2, true, short),
    KESTODM_BUILT_IN_CASE(DmLibrary::getUShortType, "ushort", kTypeUShort, 2, 2, true, unsigned short),
    KESTODM_BUILT_IN_CASE(DmLibrary::getIntType, "int", kTypeInt, 4, 4, true, int),
    KESTODM_BUILT_IN_CASE(DmLibrary::getUIntType, "uint", kTypeUInt, 4, 4, true, unsigned int),
    KESTODM_BUILT_IN_CASE(DmLibrary::getLongType, "long", kTypeLong, 8, 8, true, std::int64_t),
    KESTODM_BUILT_IN_CASE(DmLibrary::getULongType, "ulong", kTypeULong, 8, 8, true, std::uint64_t),
    KESTODM_BUILT_IN_CASE(DmLibrary::getFloatType, "float", kTypeFloat, 4, 4, true, float),
    KESTODM_BUILT_IN_CASE(DmLibrary::getDoubleType, "double", kTypeDouble, 8, 8, true, double),
    KESTODM_BUILT_IN_CASE(DmLibrary::getAnyType, "any", kTypeAny, 32, 8, false, Any),
    KESTODM_BUILT_IN_CASE(DmLibrary::getStringType, "string", kTypeString, 16, 8, false, String),
};

#undef KESTODM_BUILT_IN_CASE

class DmBuiltInTypeCase : public testing::TestWithParam<BuiltInCase> {
protected:
    DmBaseType const& type() const { return *GetParam().get(); }
};

std::string caseName(testing::TestParamInfo<BuiltInCase> const& info) {
    return info.param.name;
}

std::shared_ptr<DmStructType> makeStruct(std::string const& name) {
    return DmLibrary::createStructType(name);
}

bool isMarkedBuiltIn(DmBaseType const& type) {
    return dynamic_cast<DmBuiltInType const*>(&type) != nullptr;
}

} // namespace

TEST_P(DmBuiltInTypeCase, HasItsName) {
    EXPECT_EQ(type().getName(), GetParam().name);
}

TEST_P(DmBuiltInTypeCase, HasItsKind) {
    EXPECT_EQ(type().getTypeKind(), GetParam().kind);
}

TEST_P(DmBuiltInTypeCase, HasItsSize) {
    EXPECT_EQ(type().getSizeOf(), GetParam().size);
}

TEST_P(DmBuiltInTypeCase, HasItsAlignment) {
    EXPECT_EQ(type().getAlignmentOf(), GetParam().alignment);
}

TEST_P(DmBuiltInTypeCase, IsPODUnlessItIsAnyOrString) {
    EXPECT_EQ(type().isPOD(), GetParam().pod);
}

TEST_P(DmBuiltInTypeCase, IsNative) {
    EXPECT_TRUE(type().isNative());
}

TEST_P(DmBuiltInTypeCase, IsFullyResolved) {
    EXPECT_TRUE(type().isFullyResolved());
}

TEST_P(DmBuiltInTypeCase, IsConstFromBirth) {
    EXPECT_TRUE(type().isConst());
}

TEST_P(DmBuiltInTypeCase, IsTheSameObjectOnEveryCall) {
    DmBaseType const* const first = GetParam().get();
    DmBaseType const* const second = GetParam().get();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, second);
    EXPECT_EQ(GetParam().holder(), GetParam().holder());
}

TEST_P(DmBuiltInTypeCase, FullNameIsTheNameWithoutPrefix) {
    std::string fullName;
    type().resolveFullName(fullName);
    EXPECT_EQ(fullName, GetParam().name);
}

TEST_P(DmBuiltInTypeCase, RuntimeTypeInfoIsTheTablesBuiltinRecord) {
    Internal::RuntimeTypeInfo const* const record = GetParam().record();
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(type().getRuntimeTypeInfo(), record);
}

TEST_P(DmBuiltInTypeCase, UntypedTypeRepHasTheSizeOfTheNativeType) {
    Internal::UntypedTypeRep const rep = type().getUntypedTypeRep();
    ASSERT_TRUE(rep.isValid());
    EXPECT_EQ(rep.size(), GetParam().size);
    EXPECT_EQ(rep.alignment(), GetParam().alignment);
}

TEST_P(DmBuiltInTypeCase, IsADmBuiltInType) {
    EXPECT_TRUE(isMarkedBuiltIn(type()));
}

INSTANTIATE_TEST_SUITE_P(AllBuiltIns, DmBuiltInTypeCase, testing::ValuesIn(kBuiltIns), caseName);

// ---------------------------------------------------------------------------
// Which other types carry the built-in marker.

TEST(DmBuiltInType, AutoIsADmBuiltInType) {
    EXPECT_TRUE(isMarkedBuiltIn(*DmLibrary::getAutoType()));
}

TEST(DmBuiltInType, ArrayIsADmBuiltInType) {
    DmArrayType const array(DmLibrary::getIntType());
    EXPECT_TRUE(isMarkedBuiltIn(array));
}

TEST(DmBuiltInType, ArrayOfAnyIsADmBuiltInType) {
    EXPECT_TRUE(isMarkedBuiltIn(*DmLibrary::getArrayOfAnyType()));
}

TEST(DmBuiltInType, UndefinedIsNotADmBuiltInType) {
    EXPECT_FALSE(isMarkedBuiltIn(*DmLibrary::getUndefinedType()));
}

TEST(DmBuiltInType, StructIsNotADmBuiltInType) {
    EXPECT_FALSE(isMarkedBuiltIn(*makeStruct("Point")));
}

TEST(DmBuiltInType, UnknownStructIsNotADmBuiltInType) {
    auto const type = Internal::ExternTypeFactory::make<DmUnknownStructType>("Shape");
    EXPECT_FALSE(isMarkedBuiltIn(*type));
}

TEST(DmBuiltInType, EnumIsNotADmBuiltInType) {
    auto const type = DmLibrary::createEnumType("Color");
    EXPECT_FALSE(isMarkedBuiltIn(*type));
}

TEST(DmBuiltInType, ClassIsNotADmBuiltInType) {
    auto const type = DmLibrary::createClassType("Widget");
    EXPECT_FALSE(isMarkedBuiltIn(*type));
}

TEST(DmBuiltInType, UnknownIsNotADmBuiltInType) {
    auto const type = Internal::ExternTypeFactory::make<DmUnknownType>("Mystery");
    EXPECT_FALSE(isMarkedBuiltIn(*type));
}

// ---------------------------------------------------------------------------
// A built-in made outside DmLibrary is a plain object of the same kind.

TEST(DmBuiltInType, ASecondIntTypeIsADistinctObjectOfKindInt) {
    auto const second = std::make_shared<DmIntType>();
    EXPECT_NE(second.get(), DmLibrary::getIntType().get());
    EXPECT_EQ(second->getTypeKind(), kTypeInt);
    EXPECT_EQ(second->getName(), "int");
}
