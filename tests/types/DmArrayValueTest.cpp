// Array values: a Ptr<void> to a run-time array, elements reached as values
// that live in the array's slots (keeping it alive and writing straight into
// it), nested arrays, assignArray and the set flag.
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/platform/UntypedArray.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmArrayValue.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmClassValue.h>
#include <KestoDM/types/DmEnumValue.h>
#include <KestoDM/types/DmStructValue.h>

#include "types/ValueTestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

using namespace Kesto;
using namespace Kesto::ValueTest;
using Kesto::Internal::UntypedArray;

namespace {

UntypedArray* arrayOf(Ptr<void> const& storage) {
    return static_cast<UntypedArray*>(storage.get());
}

/// The T in slot `index` of the array an array value holds.
template <class T>
T const& slotOf(DmArrayValue const& value, std::size_t index) {
    return *static_cast<T const*>(arrayOf(value.getData())->get_element(index));
}

std::shared_ptr<DmArrayValue> makeIntArray(std::shared_ptr<DmArrayType> const& type,
                                           unsigned long long size) {
    return as<DmArrayValue>(type->createValue(size));
}

} // namespace

class DmArrayValueTest : public ValueTestBase {};

// ---------------------------------------------------------------------------
// Making

TEST_F(DmArrayValueTest, CreateValueHasNoStorageAndIsImplicit) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = as<DmArrayValue>(type->createValue());
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getType(), type);
    EXPECT_EQ(value->getElementType(), Singletons::intType());
    EXPECT_EQ(value->getData(), nullptr);
    EXPECT_EQ(value->size(), 0u);
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmArrayValueTest, CreateValueOfASizeHoldsThatManyDefaultElementsAndIsSet) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = makeIntArray(type, 3);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(slotOf<int>(*value, i), 0) << i;
    }
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmArrayValueTest, CreateDefaultValueIsAnEmptyArrayWithStorageAndIsSet) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = as<DmArrayValue>(type->createDefaultValue());
    ASSERT_NE(value, nullptr);
    EXPECT_NE(value->getData(), nullptr);
    EXPECT_EQ(value->size(), 0u);
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmArrayValueTest, ArrayValueHoldingGivenDataIsSet) {
    auto const type = makeArrayType(Singletons::intType());
    Ptr<void> const storage = type->allocateArray(2);
    auto const fromCopy = as<DmArrayValue>(type->createValue(storage));
    ASSERT_NE(fromCopy, nullptr);
    EXPECT_EQ(fromCopy->getData(), storage);
    EXPECT_EQ(fromCopy->size(), 2u);
    EXPECT_FALSE(fromCopy->isImplicit());

    Ptr<void> moved = type->allocateArray(4);
    void* const address = moved.get();
    auto const fromMove = as<DmArrayValue>(type->createValue(std::move(moved)));
    ASSERT_NE(fromMove, nullptr);
    EXPECT_EQ(fromMove->getData().get(), address);
    EXPECT_EQ(fromMove->size(), 4u);
    EXPECT_FALSE(fromMove->isImplicit());
}

TEST_F(DmArrayValueTest, CreateValueOfASizeIsNullWhenTheElementHasNoDefault) {
    auto const type = makeArrayType(Singletons::autoType());
    EXPECT_EQ(type->createValue(2ull), nullptr);
}

// ---------------------------------------------------------------------------
// assignArray

TEST_F(DmArrayValueTest, AssignArrayOfZeroGivesAnEmptyArrayWithStorage) {
    auto const type = makeArrayType(Singletons::intType());
    DmArrayValue value(type);
    EXPECT_TRUE(value.assignArray(0));
    EXPECT_NE(value.getData(), nullptr);
    EXPECT_EQ(value.size(), 0u);
    EXPECT_FALSE(value.isImplicit());
}

TEST_F(DmArrayValueTest, AssignArraySetsTheSize) {
    auto const type = makeArrayType(Singletons::intType());
    DmArrayValue value(type);
    EXPECT_TRUE(value.assignArray(5));
    EXPECT_EQ(value.size(), 5u);
    EXPECT_EQ(arrayOf(value.getData())->size(), 5u);
    EXPECT_FALSE(value.isImplicit());
}

TEST_F(DmArrayValueTest, AssignArrayGivesEachStringElementTheEmptyDefault) {
    auto const type = makeArrayType(Singletons::stringType());
    DmArrayValue value(type);
    ASSERT_TRUE(value.assignArray(3));
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_TRUE(slotOf<String>(value, i).empty()) << i;
    }
}

TEST_F(DmArrayValueTest, AssignArrayGivesEachEnumElementTheEnumDefault) {
    auto const color = makeEnumType("Color", {{"blue", 5}, {"red", 9}});
    auto const type = makeArrayType(color);
    DmArrayValue value(type);
    ASSERT_TRUE(value.assignArray(3));
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(slotOf<int>(value, i), 5) << i;
    }
}

TEST_F(DmArrayValueTest, AssignArrayGivesEachStructElementTheStructDefault) {
    auto const color = makeEnumType("Color", {{"blue", 5}, {"red", 9}});
    auto const point = makeStructType("Point", {{"x", Singletons::intType()}, {"color", color}});
    auto const type = makeArrayType(point);
    DmArrayValue value(type);
    ASSERT_TRUE(value.assignArray(2));
    for (unsigned long long i = 0; i < 2; ++i) {
        auto const element = as<DmStructValue>(value.at(i));
        ASSERT_NE(element, nullptr);
        EXPECT_EQ(member<DmIntValue>(*element, "x")->getData(), 0);
        EXPECT_EQ(member<DmEnumValue>(*element, "color")->getData(), 5);
    }
}

TEST_F(DmArrayValueTest, AssignArrayReplacesTheStorage) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = makeIntArray(type, 2);
    ASSERT_NE(value, nullptr);
    Ptr<void> const before = value->getData();
    ASSERT_TRUE(as<DmIntValue>(value->at(0))->setData(8));
    EXPECT_TRUE(value->assignArray(4));
    EXPECT_NE(value->getData(), before);
    EXPECT_EQ(value->size(), 4u);
    EXPECT_EQ(slotOf<int>(*value, 0), 0);
    EXPECT_EQ(before.use_count(), 1);
}

TEST_F(DmArrayValueTest, AssignArrayOnAnArrayOfAnUninstantiableTypeFailsAndLeavesTheValue) {
    auto const type = makeArrayType(Singletons::autoType());
    DmArrayValue value(type);
    EXPECT_FALSE(value.assignArray(2));
    EXPECT_EQ(value.getData(), nullptr);
    EXPECT_EQ(value.size(), 0u);
    EXPECT_TRUE(value.isImplicit());
}

TEST_F(DmArrayValueTest, AssignArrayOfZeroNeedsNoElementDefault) {
    auto const type = makeArrayType(Singletons::autoType());
    DmArrayValue value(type);
    EXPECT_TRUE(value.assignArray(0));
    EXPECT_EQ(value.size(), 0u);
    EXPECT_FALSE(value.isImplicit());
}

TEST_F(DmArrayValueTest, AssignArrayWithoutElementTypeFails) {
    auto const type = makeArrayType(nullptr);
    DmArrayValue value(type);
    EXPECT_FALSE(value.assignArray(1));
    EXPECT_FALSE(value.assignArray(0));
    EXPECT_TRUE(value.isImplicit());
}

// ---------------------------------------------------------------------------
// at

TEST_F(DmArrayValueTest, AtGivesAnImplicitMemberValueOfTheElementType) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = makeIntArray(type, 2);
    ASSERT_NE(value, nullptr);
    auto const element = as<DmIntValue>(value->at(1));
    ASSERT_NE(element, nullptr);
    EXPECT_EQ(element->getType(), Singletons::intType());
    EXPECT_TRUE(element->isMemberValue());
    EXPECT_EQ(&element->getData(), arrayOf(value->getData())->get_element(1));
    EXPECT_TRUE(element->isImplicit());
}

TEST_F(DmArrayValueTest, AtBeyondTheEndYieldsNullWithoutException) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = makeIntArray(type, 3);
    ASSERT_NE(value, nullptr);
    std::shared_ptr<DmBaseValue> atEnd;
    std::shared_ptr<DmBaseValue> farBeyond;
    EXPECT_NO_THROW(atEnd = value->at(3));
    EXPECT_NO_THROW(farBeyond = value->at(std::numeric_limits<unsigned long long>::max()));
    EXPECT_EQ(atEnd, nullptr);
    EXPECT_EQ(farBeyond, nullptr);
    EXPECT_NE(value->at(2), nullptr);
}

TEST_F(DmArrayValueTest, AtOnAnEmptyArrayYieldsNull) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = as<DmArrayValue>(type->createDefaultValue());
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->at(0), nullptr);
}

TEST_F(DmArrayValueTest, AtOnAnArrayWithoutStorageYieldsNull) {
    auto const type = makeArrayType(Singletons::intType());
    DmArrayValue const value(type);
    EXPECT_EQ(value.at(0), nullptr);
}

TEST_F(DmArrayValueTest, OperatorBracketIsAt) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = makeIntArray(type, 2);
    ASSERT_NE(value, nullptr);
    ASSERT_TRUE(as<DmIntValue>((*value)[1])->setData(6));
    EXPECT_EQ(as<DmIntValue>(value->at(1))->getData(), 6);
    EXPECT_EQ((*value)[2], nullptr);
}

TEST_F(DmArrayValueTest, WritesThroughAtReachTheArray) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = makeIntArray(type, 3);
    ASSERT_NE(value, nullptr);
    for (unsigned long long i = 0; i < 3; ++i) {
        ASSERT_TRUE(as<DmIntValue>(value->at(i))->setData(static_cast<int>(10 * (i + 1))));
    }
    EXPECT_EQ(slotOf<int>(*value, 0), 10);
    EXPECT_EQ(slotOf<int>(*value, 1), 20);
    EXPECT_EQ(slotOf<int>(*value, 2), 30);
    EXPECT_EQ(as<DmIntValue>(value->at(1))->getData(), 20);
}

TEST_F(DmArrayValueTest, AssignThroughAtReachesTheArray) {
    auto const type = makeArrayType(Singletons::stringType());
    auto const value = as<DmArrayValue>(type->createValue(2ull));
    ASSERT_NE(value, nullptr);
    auto const source = std::make_shared<DmStringValue>();
    ASSERT_TRUE(source->setData(String("element text")));
    EXPECT_TRUE(value->at(1)->assign(source));
    EXPECT_EQ(slotOf<String>(*value, 1), String("element text"));
    EXPECT_TRUE(slotOf<String>(*value, 0).empty());
}

TEST_F(DmArrayValueTest, WritingAnArrayValueDoesNotMarkItsElementValuesSet) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = makeIntArray(type, 1);
    ASSERT_NE(value, nullptr);
    auto const element = value->at(0);
    ASSERT_TRUE(as<DmIntValue>(value->at(0))->setData(3));
    EXPECT_EQ(as<DmIntValue>(element)->getData(), 3);
    EXPECT_TRUE(element->isImplicit());
}

TEST_F(DmArrayValueTest, AtWithAnotherElementTypeSeesTheSlotAsThatType) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = makeIntArray(type, 2);
    ASSERT_NE(value, nullptr);
    ASSERT_TRUE(as<DmIntValue>(value->at(1))->setData(-1));
    auto const seen = as<DmUIntValue>(value->at(Singletons::uintType(), 1));
    ASSERT_NE(seen, nullptr);
    EXPECT_EQ(seen->getData(), 4294967295u);
    EXPECT_EQ(value->at(Singletons::uintType(), 2), nullptr);
}

TEST_F(DmArrayValueTest, AtWithANullElementTypeYieldsNull) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = makeIntArray(type, 2);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->at(nullptr, 0), nullptr);
}

TEST_F(DmArrayValueTest, StructElementsAreWrittenInPlace) {
    auto const point = makeStructType("Point", {{"x", Singletons::intType()}, {"y", Singletons::intType()}});
    auto const type = makeArrayType(point);
    auto const value = as<DmArrayValue>(type->createValue(2ull));
    ASSERT_NE(value, nullptr);
    auto const element = as<DmStructValue>(value->at(1));
    ASSERT_NE(element, nullptr);
    EXPECT_EQ(element->getData(), arrayOf(value->getData())->get_element(1));
    ASSERT_TRUE(member<DmIntValue>(*element, "y")->setData(12));
    auto const again = as<DmStructValue>(value->at(1));
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(member<DmIntValue>(*again, "y")->getData(), 12);
    EXPECT_EQ(member<DmIntValue>(*as<DmStructValue>(value->at(0)), "y")->getData(), 0);
}

// ---------------------------------------------------------------------------
// Element values keep the array alive

TEST_F(DmArrayValueTest, ElementFromAtOutlivesTheArrayValueAndKeepsTheArrayAlive) {
    auto const type = makeArrayType(Singletons::intType());
    auto value = makeIntArray(type, 3);
    ASSERT_NE(value, nullptr);
    Ptr<void> const probe = value->getData();
    ASSERT_EQ(probe.use_count(), 2);
    std::shared_ptr<DmBaseValue> element = value->at(1);
    ASSERT_NE(element, nullptr);
    EXPECT_EQ(probe.use_count(), 3);
    EXPECT_EQ(arrayValuesMadeSinceStart(), 1u);

    value.reset();
    EXPECT_EQ(arrayValuesMadeSinceStart(), 0u);
    EXPECT_EQ(probe.use_count(), 2);
    auto* const typed = dynamic_cast<DmIntValue*>(element.get());
    ASSERT_NE(typed, nullptr);
    EXPECT_EQ(typed->getData(), 0);
    EXPECT_TRUE(typed->setData(99));
    EXPECT_EQ(typed->getData(), 99);
    EXPECT_EQ(*static_cast<int const*>(arrayOf(probe)->get_element(1)), 99);

    element.reset();
    EXPECT_EQ(probe.use_count(), 1);
}

TEST_F(DmArrayValueTest, ElementFromAtStaysUsableAfterTheArrayValueAndItsTypeAreDropped) {
    std::shared_ptr<DmBaseValue> element;
    {
        auto const type = makeArrayType(Singletons::stringType());
        auto const value = as<DmArrayValue>(type->createValue(4ull));
        ASSERT_NE(value, nullptr);
        ASSERT_TRUE(as<DmStringValue>(value->at(3))->setData(String("kept by its element")));
        element = value->at(3);
    }
    auto const typed = as<DmStringValue>(element);
    ASSERT_NE(typed, nullptr);
    EXPECT_EQ(typed->getData(), String("kept by its element"));
    EXPECT_TRUE(typed->setData(String("written after the array value went")));
    EXPECT_EQ(typed->getData(), String("written after the array value went"));
}

TEST_F(DmArrayValueTest, ElementOfAReplacedArrayKeepsTheOldArray) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = makeIntArray(type, 2);
    ASSERT_NE(value, nullptr);
    auto const old = as<DmIntValue>(value->at(0));
    ASSERT_TRUE(old->setData(4));
    ASSERT_TRUE(value->assignArray(2));
    EXPECT_EQ(old->getData(), 4);
    ASSERT_TRUE(old->setData(5));
    EXPECT_EQ(slotOf<int>(*value, 0), 0);
}

// ---------------------------------------------------------------------------
// Nested arrays

TEST_F(DmArrayValueTest, ElementOfAnArrayOfArraysIsAnArrayValueOnTheInnerSlot) {
    auto const inner = makeArrayType(Singletons::intType());
    auto const outer = makeArrayType(inner);
    EXPECT_EQ(outer->getName(), "array<array<int>>");
    auto const value = as<DmArrayValue>(outer->createValue(2ull));
    ASSERT_NE(value, nullptr);
    auto const element = as<DmArrayValue>(value->at(0));
    ASSERT_NE(element, nullptr);
    EXPECT_EQ(element->getType(), inner);
    EXPECT_TRUE(element->isMemberValue());
    EXPECT_EQ(&element->getData(), arrayOf(value->getData())->get_element(0));
    EXPECT_NE(element->getData(), nullptr);
    EXPECT_EQ(element->size(), 0u);
}

TEST_F(DmArrayValueTest, AssignArrayOnAnInnerArrayWritesItIntoTheOuterSlot) {
    auto const inner = makeArrayType(Singletons::intType());
    auto const outer = makeArrayType(inner);
    auto const value = as<DmArrayValue>(outer->createValue(2ull));
    ASSERT_NE(value, nullptr);
    auto const element = as<DmArrayValue>(value->at(0));
    ASSERT_NE(element, nullptr);
    EXPECT_TRUE(element->assignArray(3));
    EXPECT_FALSE(element->isImplicit());
    EXPECT_EQ(slotOf<Ptr<void>>(*value, 0), element->getData());
    EXPECT_EQ(arrayOf(slotOf<Ptr<void>>(*value, 0))->size(), 3u);

    auto const again = as<DmArrayValue>(value->at(0));
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->size(), 3u);
    auto const other = as<DmArrayValue>(value->at(1));
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(other->size(), 0u);
}

TEST_F(DmArrayValueTest, WritesThroughAnInnerArrayReachTheOuterArray) {
    auto const inner = makeArrayType(Singletons::intType());
    auto const outer = makeArrayType(inner);
    auto const value = as<DmArrayValue>(outer->createValue(2ull));
    ASSERT_NE(value, nullptr);
    ASSERT_TRUE(as<DmArrayValue>(value->at(1))->assignArray(3));
    ASSERT_TRUE(as<DmIntValue>(as<DmArrayValue>(value->at(1))->at(2))->setData(7));
    auto const innerValue = as<DmArrayValue>(value->at(1));
    ASSERT_NE(innerValue, nullptr);
    EXPECT_EQ(as<DmIntValue>(innerValue->at(2))->getData(), 7);
    EXPECT_EQ(as<DmIntValue>(innerValue->at(0))->getData(), 0);
}

TEST_F(DmArrayValueTest, InnerArrayValueKeepsTheOuterArrayAlive) {
    std::shared_ptr<DmArrayValue> element;
    auto const inner = makeArrayType(Singletons::intType());
    {
        auto const outer = makeArrayType(inner);
        auto const value = as<DmArrayValue>(outer->createValue(1ull));
        ASSERT_NE(value, nullptr);
        element = as<DmArrayValue>(value->at(0));
    }
    ASSERT_NE(element, nullptr);
    EXPECT_TRUE(element->assignArray(2));
    EXPECT_EQ(element->size(), 2u);
    ASSERT_TRUE(as<DmIntValue>(element->at(1))->setData(3));
    EXPECT_EQ(as<DmIntValue>(element->at(1))->getData(), 3);
}

// ---------------------------------------------------------------------------
// assign and clone

TEST_F(DmArrayValueTest, AssignFromAnArrayOfAnEquivalentTypeSharesItsArray) {
    auto const type = makeArrayType(Singletons::intType());
    auto const twin = makeArrayType(Singletons::intType());
    auto const source = as<DmArrayValue>(twin->createValue(2ull));
    ASSERT_NE(source, nullptr);
    DmArrayValue target(type);
    EXPECT_TRUE(target.assign(source));
    EXPECT_EQ(target.getData(), source->getData());
    EXPECT_EQ(target.size(), 2u);
    EXPECT_FALSE(target.isImplicit());
}

TEST_F(DmArrayValueTest, AssignFromAnArrayOfAnotherElementTypeFails) {
    auto const type = makeArrayType(Singletons::intType());
    auto const doubles = makeArrayType(Singletons::doubleType());
    auto const source = as<DmArrayValue>(doubles->createValue(2ull));
    ASSERT_NE(source, nullptr);
    DmArrayValue target(type);
    EXPECT_FALSE(target.assign(source));
    EXPECT_EQ(target.getData(), nullptr);
    EXPECT_TRUE(target.isImplicit());
}

TEST_F(DmArrayValueTest, AssignFromAClassValueFails) {
    auto const type = makeArrayType(Singletons::intType());
    auto const classType = makeClassType("Mesh");
    DmArrayValue target(type);
    EXPECT_FALSE(target.assign(classType->createValue()));
    EXPECT_TRUE(target.isImplicit());
}

TEST_F(DmArrayValueTest, CloneSharesTheArrayAndKeepsTheSetFlag) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = makeIntArray(type, 2);
    ASSERT_NE(value, nullptr);
    auto const clone = as<DmArrayValue>(value->clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone, value);
    EXPECT_EQ(clone->getType(), type);
    EXPECT_EQ(clone->getData(), value->getData());
    EXPECT_FALSE(clone->isImplicit());
    EXPECT_TRUE(DmArrayValue(type).clone()->isImplicit());
}

TEST_F(DmArrayValueTest, AssignArrayOnACloneLeavesTheOriginal) {
    auto const type = makeArrayType(Singletons::intType());
    auto const value = makeIntArray(type, 2);
    ASSERT_NE(value, nullptr);
    Ptr<void> const before = value->getData();
    auto const clone = as<DmArrayValue>(value->clone());
    ASSERT_NE(clone, nullptr);
    ASSERT_TRUE(clone->assignArray(5));
    EXPECT_EQ(value->getData(), before);
    EXPECT_EQ(value->size(), 2u);
    EXPECT_EQ(clone->size(), 5u);
}

TEST_F(DmArrayValueTest, ArrayValueInAStructLivesInTheStructBuffer) {
    auto const ints = makeArrayType(Singletons::intType());
    auto const holder = makeStructType("Holder", {{"count", Singletons::intType()}, {"items", ints}});
    auto const value = as<DmStructValue>(holder->createValue());
    ASSERT_NE(value, nullptr);
    auto const items = member<DmArrayValue>(*value, "items");
    ASSERT_NE(items, nullptr);
    EXPECT_EQ(items->getData(), nullptr);
    ASSERT_TRUE(items->assignArray(2));
    EXPECT_EQ(atOffset<Ptr<void>>(*value, *holder, "items"), items->getData());
    EXPECT_FALSE(value->isImplicit());
}

// ---------------------------------------------------------------------------
// Lifetime of the elements

TEST_F(DmArrayValueTest, DroppingAnArrayOfStringsReleasesTheTexts) {
    String const text("text shared by every element");
    {
        auto const type = makeArrayType(Singletons::stringType());
        auto const value = as<DmArrayValue>(type->createValue(3ull));
        ASSERT_NE(value, nullptr);
        for (unsigned long long i = 0; i < 3; ++i) {
            ASSERT_TRUE(as<DmStringValue>(value->at(i))->setData(text));
        }
        EXPECT_EQ(text.useCount(), 4u);
    }
    EXPECT_EQ(text.useCount(), 1u);
}

TEST_F(DmArrayValueTest, DroppingAnArrayOfClassesReleasesTheObjects) {
    auto const classType = makeClassType("Mesh");
    auto const type = makeArrayType(classType);
    auto object = Ptr<int>::make(3);
    {
        auto const value = as<DmArrayValue>(type->createValue(2ull));
        ASSERT_NE(value, nullptr);
        ASSERT_TRUE(as<DmClassValue>(value->at(0))->setData(Ptr<void>(object)));
        ASSERT_TRUE(as<DmClassValue>(value->at(1))->setData(Ptr<void>(object)));
        EXPECT_EQ(object.use_count(), 3);
    }
    EXPECT_EQ(object.use_count(), 1);
}

TEST_F(DmArrayValueTest, EachSlotOfAnArrayOfArraysHoldsAnInnerArrayOfItsOwn) {
    auto const innerType = makeArrayType(Singletons::intType());
    auto const outerType = makeArrayType(innerType);
    auto const outer = std::dynamic_pointer_cast<DmArrayValue>(outerType->createValue(3ull));
    ASSERT_NE(outer, nullptr);
    auto const first = std::dynamic_pointer_cast<DmArrayValue>(outer->at(0));
    auto const second = std::dynamic_pointer_cast<DmArrayValue>(outer->at(1));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first->getData().get(), nullptr);
    EXPECT_NE(first->getData().get(), second->getData().get());
}
