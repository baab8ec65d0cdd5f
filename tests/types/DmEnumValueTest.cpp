// Enum values: the integer of one of the enumeration's keys. Integers that
// stand for no key are refused; keys are read and written by name.
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmEnumValue.h>
#include <KestoDM/types/DmStructValue.h>

#include "types/ValueTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

using namespace Kesto;
using namespace Kesto::ValueTest;

namespace {

std::shared_ptr<DmEnumType> makeColor() {
    return makeEnumType("Color", {{"red", 10}, {"green", 20}, {"blue", 30}});
}

std::shared_ptr<DmEnumValue> valueOf(std::shared_ptr<DmEnumType> const& type) {
    return as<DmEnumValue>(type->createValue());
}

} // namespace

class DmEnumValueTest : public ValueTestBase {};

// ---------------------------------------------------------------------------
// Making

TEST_F(DmEnumValueTest, CreateValueHoldsTheFirstKeysIntegerAndIsImplicit) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getType(), type);
    EXPECT_EQ(value->getData(), 10);
    EXPECT_FALSE(value->isMemberValue());
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmEnumValueTest, CreateDefaultValueIsCreateValue) {
    auto const type = makeColor();
    auto const value = as<DmEnumValue>(type->createDefaultValue());
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getData(), 10);
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmEnumValueTest, ValueOfAnEnumWithoutKeysHoldsZero) {
    auto const type = makeEnumType("Empty", {});
    auto const value = valueOf(type);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getData(), 0);
    EXPECT_FALSE(value->isValid());
}

TEST_F(DmEnumValueTest, MemberValueReadsItsStorage) {
    auto const type = makeColor();
    OwnedSlot<int> slot;
    *slot.object = 20;
    auto const value = as<DmEnumValue>(type->createMemberValue(slot.bytes()));
    ASSERT_NE(value, nullptr);
    EXPECT_TRUE(value->isMemberValue());
    EXPECT_EQ(value->getData(), 20);
    EXPECT_TRUE(value->isImplicit());
}

// ---------------------------------------------------------------------------
// setData

TEST_F(DmEnumValueTest, SetDataWithAnEnumerationStoresItAndClearsImplicitness) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    int const green = 20;
    EXPECT_TRUE(value->setData(green));
    EXPECT_EQ(value->getData(), 20);
    EXPECT_FALSE(value->isImplicit());
    EXPECT_TRUE(value->setData(30));
    EXPECT_EQ(value->getData(), 30);
}

TEST_F(DmEnumValueTest, SetDataWithANonEnumerationIntegerFailsAndChangesNothing) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    int const stray = 15;
    EXPECT_FALSE(value->setData(stray));
    EXPECT_FALSE(value->setData(0));
    EXPECT_EQ(value->getData(), 10);
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmEnumValueTest, SetDataWithANonEnumerationIntegerKeepsAValueSetBefore) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    ASSERT_TRUE(value->setData(30));
    EXPECT_FALSE(value->setData(31));
    EXPECT_EQ(value->getData(), 30);
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmEnumValueTest, SetDataThroughTheBuiltInBaseIsCheckedToo) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    DmBuiltInValue<int>& base = *value;
    EXPECT_FALSE(base.setData(11));
    EXPECT_EQ(value->getData(), 10);
    EXPECT_TRUE(base.setData(20));
    EXPECT_EQ(value->getData(), 20);
}

TEST_F(DmEnumValueTest, MemberValueSetDataWritesTheStructBuffer) {
    auto const color = makeColor();
    auto const type = makeStructType("Pixel", {{"x", Singletons::intType()}, {"color", color}});
    auto const value = as<DmStructValue>(type->createValue());
    ASSERT_NE(value, nullptr);
    auto const member = ValueTest::member<DmEnumValue>(*value, "color");
    ASSERT_NE(member, nullptr);
    EXPECT_EQ(member->getData(), 0);
    EXPECT_FALSE(member->setData(5));
    EXPECT_EQ(atOffset<int>(*value, *type, "color"), 0);
    EXPECT_TRUE(member->setData(30));
    EXPECT_EQ(atOffset<int>(*value, *type, "color"), 30);
    EXPECT_FALSE(value->isImplicit());
}

// ---------------------------------------------------------------------------
// Names

TEST_F(DmEnumValueTest, SetEnumerationFromNameStoresTheKeysInteger) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    EXPECT_TRUE(value->setEnumerationFromName(String("blue")));
    EXPECT_EQ(value->getData(), 30);
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmEnumValueTest, SetEnumerationFromAnUnknownNameFailsAndChangesNothing) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    EXPECT_FALSE(value->setEnumerationFromName(String("purple")));
    EXPECT_FALSE(value->setEnumerationFromName(String("Red")));
    EXPECT_FALSE(value->setEnumerationFromName(String()));
    EXPECT_EQ(value->getData(), 10);
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmEnumValueTest, GetEnumerationNameGivesTheKeyOfTheDatum) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    String key;
    EXPECT_TRUE(value->getEnumerationName(key));
    EXPECT_EQ(key, String("red"));
    ASSERT_TRUE(value->setData(20));
    EXPECT_TRUE(value->getEnumerationName(key));
    EXPECT_EQ(key, String("green"));
}

TEST_F(DmEnumValueTest, GetEnumerationNameFailsForADatumThatStandsForNoKey) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    ASSERT_TRUE(type->removeEnumeration(String("red")));
    String key("unchanged");
    EXPECT_FALSE(value->getEnumerationName(key));
    EXPECT_EQ(key, String("unchanged"));
}

// ---------------------------------------------------------------------------
// isValid

TEST_F(DmEnumValueTest, IsValidForTheIntegerOfAKey) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    EXPECT_TRUE(value->isValid());
    ASSERT_TRUE(value->setData(30));
    EXPECT_TRUE(value->isValid());
}

TEST_F(DmEnumValueTest, IsNotValidOnceTheKeyIsRemovedFromTheType) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    ASSERT_TRUE(value->setData(20));
    ASSERT_TRUE(type->removeEnumeration(String("green")));
    EXPECT_FALSE(value->isValid());
    EXPECT_EQ(value->getData(), 20);
}

TEST_F(DmEnumValueTest, IsNotValidOnceTheKeyMovesToAnotherInteger) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    ASSERT_TRUE(value->setData(20));
    ASSERT_TRUE(type->setEnumeration(String("green"), 25));
    EXPECT_FALSE(value->isValid());
}

TEST_F(DmEnumValueTest, ZeroedMemberIsNotValidWhenZeroIsNoKey) {
    auto const type = makeStructType("Pixel", {{"color", makeColor()}});
    auto const value = as<DmStructValue>(type->createValue());
    ASSERT_NE(value, nullptr);
    EXPECT_FALSE(member<DmEnumValue>(*value, "color")->isValid());
}

// ---------------------------------------------------------------------------
// assign and clone

TEST_F(DmEnumValueTest, AssignFromAnEnumValueOfTheSameTypeCopiesTheInteger) {
    auto const type = makeColor();
    auto const source = valueOf(type);
    ASSERT_TRUE(source->setData(30));
    auto const target = valueOf(type);
    EXPECT_TRUE(target->assign(source));
    EXPECT_EQ(target->getData(), 30);
    EXPECT_FALSE(target->isImplicit());
}

TEST_F(DmEnumValueTest, AssignFromAnEnumValueOfAnEquivalentTypeSucceeds) {
    auto const type = makeColor();
    auto const twin = makeColor();
    auto const source = valueOf(twin);
    ASSERT_TRUE(source->setData(20));
    auto const target = valueOf(type);
    EXPECT_TRUE(target->assign(source));
    EXPECT_EQ(target->getData(), 20);
}

TEST_F(DmEnumValueTest, AssignFromAnEnumValueOfAnotherEnumFails) {
    auto const type = makeColor();
    auto const other = makeEnumType("Color", {{"red", 10}, {"green", 20}});
    auto const source = valueOf(other);
    ASSERT_TRUE(source->setData(20));
    auto const target = valueOf(type);
    EXPECT_FALSE(target->assign(source));
    EXPECT_EQ(target->getData(), 10);
    EXPECT_TRUE(target->isImplicit());
}

TEST_F(DmEnumValueTest, AssignFromAnIntValueFails) {
    auto const type = makeColor();
    auto const target = valueOf(type);
    auto const number = std::make_shared<DmIntValue>();
    ASSERT_TRUE(number->setData(20));
    EXPECT_FALSE(target->assign(number));
    EXPECT_FALSE(target->moveAssign(number));
    EXPECT_EQ(target->getData(), 10);
    EXPECT_TRUE(target->isImplicit());
}

TEST_F(DmEnumValueTest, IntValueRefusesAnEnumValue) {
    auto const type = makeColor();
    auto const source = valueOf(type);
    ASSERT_TRUE(source->setData(20));
    DmIntValue target;
    EXPECT_FALSE(target.assign(source));
    EXPECT_EQ(target.getData(), 0);
    EXPECT_TRUE(target.isImplicit());
}

TEST_F(DmEnumValueTest, CloneKeepsTheIntegerTheTypeAndTheSetFlag) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    auto const implicitClone = as<DmEnumValue>(value->clone());
    ASSERT_NE(implicitClone, nullptr);
    EXPECT_TRUE(implicitClone->isImplicit());
    ASSERT_TRUE(value->setData(30));
    auto const clone = as<DmEnumValue>(value->clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->getType(), type);
    EXPECT_EQ(clone->getData(), 30);
    EXPECT_FALSE(clone->isImplicit());
    ASSERT_TRUE(clone->setData(20));
    EXPECT_EQ(value->getData(), 30);
}

TEST_F(DmEnumValueTest, BufferOperationsMoveTheInteger) {
    auto const type = makeColor();
    auto const value = valueOf(type);
    int out = 0;
    EXPECT_TRUE(value->copyAssignIntoBuffer(&out));
    EXPECT_EQ(out, 10);
    EXPECT_TRUE(value->isImplicit());
    int const in = 30;
    EXPECT_TRUE(value->copyAssignFromBuffer(&in));
    EXPECT_EQ(value->getData(), 30);
    EXPECT_FALSE(value->isImplicit());
    EXPECT_FALSE(value->copyAssignFromBuffer(nullptr));
}
