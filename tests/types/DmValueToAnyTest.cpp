// From values to Kesto::Any: every built-in datum by its own record, enums as
// their integer with the enum's record, arrays as their Ptr<void> with the
// array's record, structs as a copy of their bytes, and empty where a value
// has no run-time form.
#include <KestoDM/platform/Any.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/platform/RuntimeAny.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/platform/UntypedArray.h>
#include <KestoDM/types/DmArrayValue.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmClassValue.h>
#include <KestoDM/types/DmEnumValue.h>
#include <KestoDM/types/DmStructValue.h>
#include <KestoDM/types/DmUninstantiableValue.h>
#include <KestoDM/types/DmUnknownValue.h>

#include "types/ValueTestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>

using namespace Kesto;
using namespace Kesto::ValueTest;
using Kesto::Internal::GlobalRttiTable;
using Kesto::Internal::RuntimeTypeInfo;
using Kesto::Internal::UntypedArray;

namespace {

/// The Any of a value set to `datum`, checked to hold exactly built-in T.
template <class ValueClass, class T>
void expectBuiltInAny(T const& datum) {
    ValueClass value;
    ASSERT_TRUE(value.setData(datum));
    Any const any = value.toAny();
    ASSERT_FALSE(any.isEmpty());
    EXPECT_EQ(any.getTypeInfo(), GlobalRttiTable::get().getBuiltin<T>());
    ASSERT_NE(any.get<T>(), nullptr);
    EXPECT_EQ(*any.get<T>(), datum);
}

Ptr<void> const& ptrIn(Any const& any) {
    return *static_cast<Ptr<void> const*>(any.data());
}

} // namespace

class DmValueToAnyTest : public ValueTestBase {};

// ---------------------------------------------------------------------------
// Built-ins

TEST_F(DmValueToAnyTest, BoolValue) {
    expectBuiltInAny<DmBoolValue>(true);
}

TEST_F(DmValueToAnyTest, CharValue) {
    expectBuiltInAny<DmCharValue>(static_cast<signed char>(-100));
}

TEST_F(DmValueToAnyTest, UCharValue) {
    expectBuiltInAny<DmUCharValue>(static_cast<unsigned char>(250));
}

TEST_F(DmValueToAnyTest, ShortValue) {
    expectBuiltInAny<DmShortValue>(static_cast<short>(-32000));
}

TEST_F(DmValueToAnyTest, UShortValue) {
    expectBuiltInAny<DmUShortValue>(static_cast<unsigned short>(65000));
}

TEST_F(DmValueToAnyTest, IntValue) {
    expectBuiltInAny<DmIntValue>(-2000000000);
}

TEST_F(DmValueToAnyTest, UIntValue) {
    expectBuiltInAny<DmUIntValue>(4000000000u);
}

TEST_F(DmValueToAnyTest, LongValue) {
    expectBuiltInAny<DmLongValue>(std::numeric_limits<std::int64_t>::min());
}

TEST_F(DmValueToAnyTest, ULongValue) {
    expectBuiltInAny<DmULongValue>(std::numeric_limits<std::uint64_t>::max());
}

TEST_F(DmValueToAnyTest, FloatValue) {
    expectBuiltInAny<DmFloatValue>(3.25f);
}

TEST_F(DmValueToAnyTest, DoubleValue) {
    expectBuiltInAny<DmDoubleValue>(-0.1);
}

TEST_F(DmValueToAnyTest, StringValue) {
    expectBuiltInAny<DmStringValue>(String("text in an any"));
}

TEST_F(DmValueToAnyTest, StringValueSharesItsTextWithTheAny) {
    DmStringValue value;
    ASSERT_TRUE(value.setData(String("shared with the any")));
    Any const any = value.toAny();
    ASSERT_NE(any.get<String>(), nullptr);
    EXPECT_EQ(any.get<String>()->data(), value.getData().data());
    EXPECT_EQ(value.getData().useCount(), 2u);
}

TEST_F(DmValueToAnyTest, AnyValueGivesTheAnyItHolds) {
    DmAnyValue value;
    ASSERT_TRUE(value.setData(Internal::RuntimeAny::create<int>(41)));
    Any const any = value.toAny();
    EXPECT_EQ(any.getTypeInfo(), GlobalRttiTable::get().getBuiltin<int>());
    ASSERT_NE(any.get<int>(), nullptr);
    EXPECT_EQ(*any.get<int>(), 41);
}

TEST_F(DmValueToAnyTest, EmptyAnyValueGivesAnEmptyAny) {
    EXPECT_TRUE(DmAnyValue().toAny().isEmpty());
}

TEST_F(DmValueToAnyTest, ImplicitBuiltInValueGivesItsDefaultDatum) {
    Any const number = DmIntValue().toAny();
    ASSERT_NE(number.get<int>(), nullptr);
    EXPECT_EQ(*number.get<int>(), 0);
    Any const text = DmStringValue().toAny();
    ASSERT_NE(text.get<String>(), nullptr);
    EXPECT_TRUE(text.get<String>()->empty());
}

TEST_F(DmValueToAnyTest, MemberValueGivesTheDatumInItsStorage) {
    OwnedSlot<double> slot;
    *slot.object = 6.5;
    DmDoubleValue const value(slot.bytes());
    Any const any = value.toAny();
    ASSERT_NE(any.get<double>(), nullptr);
    EXPECT_EQ(*any.get<double>(), 6.5);
}

// ---------------------------------------------------------------------------
// Enums

TEST_F(DmValueToAnyTest, EnumWithoutMangledNameGivesAnEmptyAny) {
    auto const type = makeEnumType("Color", {{"red", 1}, {"green", 2}});
    auto const value = as<DmEnumValue>(type->createValue());
    ASSERT_TRUE(value->setData(2));
    EXPECT_TRUE(value->toAny().isEmpty());
}

TEST_F(DmValueToAnyTest, EnumWithMangledNameGivesTheIntegerWithTheEnumRecord) {
    auto const type = makeEnumType("Color", {{"red", 1}, {"green", 2}}, "N14ValueToAnyTest5ColorE");
    RuntimeTypeInfo const* const record = type->getRuntimeTypeInfo();
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->getKind(), RuntimeTypeInfo::Kind::kEnum);
    auto const value = as<DmEnumValue>(type->createValue());
    ASSERT_TRUE(value->setData(2));
    Any const any = value->toAny();
    ASSERT_FALSE(any.isEmpty());
    EXPECT_EQ(any.getTypeInfo(), record);
    EXPECT_EQ(*static_cast<int const*>(any.data()), 2);
    EXPECT_EQ(any.get<int>(), nullptr);
}

TEST_F(DmValueToAnyTest, ImplicitEnumGivesTheDefaultInteger) {
    auto const type = makeEnumType("Color", {{"red", 7}, {"green", 8}}, "N14ValueToAnyTest6ShadeE");
    auto const value = as<DmEnumValue>(type->createValue());
    Any const any = value->toAny();
    ASSERT_FALSE(any.isEmpty());
    EXPECT_EQ(*static_cast<int const*>(any.data()), 7);
}

// ---------------------------------------------------------------------------
// Arrays

TEST_F(DmValueToAnyTest, ImplicitArrayGivesAFreshEmptyArrayWithTheArrayRecord) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = as<DmArrayValue>(type->createValue());
    ASSERT_TRUE(value->isImplicit());
    Any const first = value->toAny();
    ASSERT_FALSE(first.isEmpty());
    EXPECT_EQ(first.getTypeInfo(), type->getRuntimeTypeInfo());
    EXPECT_EQ(first.getTypeInfo()->getKind(), RuntimeTypeInfo::Kind::kArray);
    EXPECT_EQ(first.getTypeInfo()->getElementType(), GlobalRttiTable::get().getBuiltin<int>());
    Ptr<void> const& array = ptrIn(first);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(static_cast<UntypedArray const*>(array.get())->size(), 0u);
    EXPECT_EQ(static_cast<UntypedArray const*>(array.get())->getUntypedTypeRep().size(), sizeof(int));
    EXPECT_EQ(value->getData(), nullptr);
    Any const second = value->toAny();
    EXPECT_NE(ptrIn(second), array);
}

TEST_F(DmValueToAnyTest, SetArrayGivesTheSameArray) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = as<DmArrayValue>(type->createValue(3ull));
    ASSERT_NE(value, nullptr);
    Any const any = value->toAny();
    ASSERT_FALSE(any.isEmpty());
    EXPECT_EQ(any.getTypeInfo(), type->getRuntimeTypeInfo());
    EXPECT_EQ(ptrIn(any), value->getData());
    EXPECT_EQ(value->getData().use_count(), 2);
}

TEST_F(DmValueToAnyTest, ArrayOfArraysHasANestedArrayRecord) {
    auto const inner = makeArrayType(Singletons::stringType());
    auto const outer = makeArrayType(inner);
    auto const value = as<DmArrayValue>(outer->createValue(1ull));
    Any const any = value->toAny();
    ASSERT_FALSE(any.isEmpty());
    ASSERT_NE(any.getTypeInfo()->getElementType(), nullptr);
    EXPECT_EQ(any.getTypeInfo()->getElementType(), inner->getRuntimeTypeInfo());
}

TEST_F(DmValueToAnyTest, ArrayOfAnElementWithoutRecordGivesAnEmptyAny) {
    auto const unknown = makeUnknownType("Widget");
    auto const type = makeArrayType(unknown);
    auto const value = as<DmArrayValue>(type->createValue(2ull));
    ASSERT_NE(value, nullptr);
    EXPECT_TRUE(value->toAny().isEmpty());
    EXPECT_TRUE(DmArrayValue(type).toAny().isEmpty());
}

// ---------------------------------------------------------------------------
// Structs

TEST_F(DmValueToAnyTest, StructWithMangledNameGivesACopyOfItsBytes) {
    auto const type = makeStructType("Point", {{"x", Singletons::intType()}, {"y", Singletons::floatType()}},
                                     "N14ValueToAnyTest5PointE");
    auto const value = as<DmStructValue>(type->createValue());
    ASSERT_TRUE(member<DmIntValue>(*value, "x")->setData(3));
    ASSERT_TRUE(member<DmFloatValue>(*value, "y")->setData(0.5f));
    Any const any = value->toAny();
    ASSERT_FALSE(any.isEmpty());
    EXPECT_EQ(any.getTypeInfo(), type->getRuntimeTypeInfo());
    EXPECT_EQ(any.getTypeInfo()->getKind(), RuntimeTypeInfo::Kind::kStruct);
    auto const* bytes = static_cast<unsigned char const*>(any.data());
    EXPECT_NE(bytes, value->getData());
    EXPECT_EQ(*reinterpret_cast<int const*>(bytes + type->findMember("x")->getOffset()), 3);
    EXPECT_EQ(*reinterpret_cast<float const*>(bytes + type->findMember("y")->getOffset()), 0.5f);
}

TEST_F(DmValueToAnyTest, StructWithoutMangledNameGivesAnEmptyAny) {
    auto const type = makeStructType("Point", {{"x", Singletons::intType()}});
    auto const value = as<DmStructValue>(type->createValue());
    EXPECT_TRUE(value->toAny().isEmpty());
}

TEST_F(DmValueToAnyTest, StructTooBigForAnAnyGivesAnEmptyAny) {
    auto const type = makeStructType("Box",
                                     {{"a", Singletons::doubleType()},
                                      {"b", Singletons::doubleType()},
                                      {"c", Singletons::doubleType()},
                                      {"d", Singletons::doubleType()}},
                                     "N14ValueToAnyTest3BoxE");
    auto const value = as<DmStructValue>(type->createValue());
    ASSERT_EQ(value->getSizeOf(), 32u);
    EXPECT_TRUE(value->toAny().isEmpty());
}

TEST_F(DmValueToAnyTest, StructWithAMemberWithoutRecordGivesAnEmptyAny) {
    auto const widget = makeUnknownType("Widget");
    auto const type = makeStructType("Holder", {{"w", widget}}, "N14ValueToAnyTest6HolderE");
    auto const value = as<DmStructValue>(type->createValue());
    EXPECT_TRUE(value->toAny().isEmpty());
}

// ---------------------------------------------------------------------------
// Values without a run-time form

TEST_F(DmValueToAnyTest, ClassWithoutDefaultFunctionGivesAnEmptyAny) {
    auto const type = makeClassType("Mesh", "N14ValueToAnyTest4MeshE");
    auto const value = as<DmClassValue>(type->createValue());
    EXPECT_TRUE(value->toAny().isEmpty());
}

TEST_F(DmValueToAnyTest, UnknownValueGivesAnEmptyAny) {
    auto const type = makeUnknownType("Widget");
    auto const value = as<DmUnknownValue>(type->createValue());
    ASSERT_TRUE(value->setData(String("raw")));
    EXPECT_TRUE(value->toAny().isEmpty());
}

TEST_F(DmValueToAnyTest, UninstantiableValuesGiveAnEmptyAny) {
    EXPECT_TRUE(DmAutoValue().toAny().isEmpty());
    EXPECT_TRUE(DmUndefinedValue().toAny().isEmpty());
}
