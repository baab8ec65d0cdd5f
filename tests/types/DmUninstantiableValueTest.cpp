// Values of the types of which no datum exists ("auto" and undefined types):
// always implicit, refusing every write and every buffer operation.
#include <KestoDM/platform/Any.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmUninstantiableType.h>
#include <KestoDM/types/DmUninstantiableValue.h>

#include "types/ValueTestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <utility>

using namespace Kesto;
using namespace Kesto::ValueTest;

namespace {

/// Calls every buffer operation on a buffer with room to spare; each must fail.
void expectEveryBufferOperationFails(DmBaseValue& value, void* buffer) {
    EXPECT_FALSE(value.copyConstructIntoBuffer(buffer));
    EXPECT_FALSE(value.moveConstructIntoBuffer(buffer));
    EXPECT_FALSE(value.copyAssignIntoBuffer(buffer));
    EXPECT_FALSE(value.moveAssignIntoBuffer(buffer));
    EXPECT_FALSE(value.copyConstructFromBuffer(buffer));
    EXPECT_FALSE(value.moveConstructFromBuffer(buffer));
    EXPECT_FALSE(value.copyAssignFromBuffer(buffer));
    EXPECT_FALSE(value.moveAssignFromBuffer(buffer));
}

} // namespace

class DmUninstantiableValueTest : public ValueTestBase {};

// ---------------------------------------------------------------------------
// Making

TEST_F(DmUninstantiableValueTest, AutoValueHasTheAutoType) {
    DmAutoValue const value;
    EXPECT_EQ(value.getType(), Singletons::autoType());
    EXPECT_EQ(value.getType()->getTypeKind(), kTypeAuto);
}

TEST_F(DmUninstantiableValueTest, UndefinedValueHasTheLibrarysUndefinedType) {
    DmUndefinedValue const value;
    EXPECT_EQ(value.getType(), Singletons::undefinedType());
    EXPECT_EQ(value.getType()->getName(), "__undefined__");
}

TEST_F(DmUninstantiableValueTest, UndefinedValueCanHaveAGivenType) {
    auto const type = std::make_shared<DmUndefinedType>("Missing");
    DmUndefinedValue const value(type);
    EXPECT_EQ(value.getType(), type);
}

TEST_F(DmUninstantiableValueTest, AutoTypeMakesAnAutoValue) {
    std::shared_ptr<DmBaseValue> const value = Singletons::autoType()->createValue();
    ASSERT_NE(as<DmAutoValue>(value), nullptr);
    EXPECT_EQ(value->getType(), Singletons::autoType());
    ASSERT_NE(as<DmAutoValue>(Singletons::autoType()->createDefaultValue()), nullptr);
}

TEST_F(DmUninstantiableValueTest, UndefinedTypeMakesAnUndefinedValueOfItself) {
    auto const type = std::make_shared<DmUndefinedType>("Missing");
    std::shared_ptr<DmBaseValue> const value = type->createValue();
    ASSERT_NE(as<DmUndefinedValue>(value), nullptr);
    EXPECT_EQ(value->getType(), type);
    std::shared_ptr<DmBaseValue> const byDefault = type->createDefaultValue();
    ASSERT_NE(as<DmUndefinedValue>(byDefault), nullptr);
    EXPECT_EQ(byDefault->getType(), type);
}

TEST_F(DmUninstantiableValueTest, UninstantiableTypesMakeNoMemberValue) {
    auto const type = std::make_shared<DmUndefinedType>("Missing");
    OwnedSlot<std::uint64_t> slot;
    EXPECT_EQ(type->createMemberValue(slot.bytes()), nullptr);
    EXPECT_EQ(Singletons::autoType()->createMemberValue(slot.bytes()), nullptr);
}

// ---------------------------------------------------------------------------
// Always implicit

TEST_F(DmUninstantiableValueTest, NewValueIsImplicit) {
    EXPECT_TRUE(DmAutoValue().isImplicit());
    EXPECT_TRUE(DmUndefinedValue().isImplicit());
}

TEST_F(DmUninstantiableValueTest, StaysImplicitAfterValueWasSet) {
    DmAutoValue autoValue;
    DmUndefinedValue undefinedValue;
    autoValue.valueWasSet();
    undefinedValue.valueWasSet();
    EXPECT_TRUE(autoValue.isImplicit());
    EXPECT_TRUE(undefinedValue.isImplicit());
}

TEST_F(DmUninstantiableValueTest, StaysImplicitAfterAssignAndBufferOperations) {
    auto const value = std::make_shared<DmAutoValue>();
    auto const other = std::make_shared<DmAutoValue>();
    static_cast<void>(value->assign(other));
    static_cast<void>(value->assign(value));
    static_cast<void>(value->moveAssign(std::shared_ptr<DmBaseValue>(other)));
    alignas(16) unsigned char buffer[64] = {};
    expectEveryBufferOperationFails(*value, buffer);
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmUninstantiableValueTest, CloneIsImplicitEvenOfAValueMarkedSet) {
    DmAutoValue value;
    value.valueWasSet();
    std::shared_ptr<DmBaseValue> const clone = value.clone();
    ASSERT_NE(as<DmAutoValue>(clone), nullptr);
    EXPECT_TRUE(clone->isImplicit());
}

// ---------------------------------------------------------------------------
// Refusing everything

TEST_F(DmUninstantiableValueTest, AssignFromAValueOfTheSameTypeFails) {
    DmAutoValue value;
    EXPECT_FALSE(value.assign(std::make_shared<DmAutoValue>()));
    DmUndefinedValue undefinedValue;
    EXPECT_FALSE(undefinedValue.assign(std::make_shared<DmUndefinedValue>()));
}

TEST_F(DmUninstantiableValueTest, AssignFromItselfFails) {
    auto const value = std::make_shared<DmAutoValue>();
    EXPECT_FALSE(value->assign(value));
}

TEST_F(DmUninstantiableValueTest, AssignFromNullOrABuiltInValueFails) {
    DmAutoValue value;
    EXPECT_FALSE(value.assign(nullptr));
    EXPECT_FALSE(value.assign(std::make_shared<DmIntValue>()));
}

TEST_F(DmUninstantiableValueTest, MoveAssignFails) {
    DmUndefinedValue value;
    EXPECT_FALSE(value.moveAssign(std::make_shared<DmUndefinedValue>()));
    EXPECT_FALSE(value.moveAssign(nullptr));
}

TEST_F(DmUninstantiableValueTest, EveryBufferOperationFailsWithABuffer) {
    alignas(16) unsigned char buffer[64] = {};
    DmAutoValue autoValue;
    expectEveryBufferOperationFails(autoValue, buffer);
    DmUndefinedValue undefinedValue;
    expectEveryBufferOperationFails(undefinedValue, buffer);
}

TEST_F(DmUninstantiableValueTest, EveryBufferOperationFailsWithANullBuffer) {
    DmAutoValue autoValue;
    expectEveryBufferOperationFails(autoValue, nullptr);
    DmUndefinedValue undefinedValue;
    expectEveryBufferOperationFails(undefinedValue, nullptr);
}

TEST_F(DmUninstantiableValueTest, BufferOperationsLeaveTheBufferAlone) {
    alignas(16) unsigned char buffer[16];
    for (unsigned char& byte : buffer) {
        byte = 0xA5;
    }
    DmAutoValue value;
    expectEveryBufferOperationFails(value, buffer);
    for (unsigned char const byte : buffer) {
        EXPECT_EQ(byte, 0xA5);
    }
}

TEST_F(DmUninstantiableValueTest, ToAnyIsEmpty) {
    EXPECT_TRUE(DmAutoValue().toAny().isEmpty());
    EXPECT_TRUE(DmUndefinedValue().toAny().isEmpty());
}

// ---------------------------------------------------------------------------
// Clones

TEST_F(DmUninstantiableValueTest, CloneOfAnAutoValueIsAnAutoValueOfTheAutoType) {
    DmAutoValue const value;
    std::shared_ptr<DmBaseValue> const clone = value.clone();
    ASSERT_NE(as<DmAutoValue>(clone), nullptr);
    EXPECT_NE(clone.get(), &value);
    EXPECT_EQ(clone->getType(), Singletons::autoType());
}

TEST_F(DmUninstantiableValueTest, CloneOfAnUndefinedValueKeepsTheGivenType) {
    auto const type = std::make_shared<DmUndefinedType>("Missing");
    DmUndefinedValue const value(type);
    std::shared_ptr<DmBaseValue> const clone = value.clone();
    ASSERT_NE(as<DmUndefinedValue>(clone), nullptr);
    EXPECT_EQ(clone->getType(), type);
    EXPECT_TRUE(clone->isImplicit());
}

TEST_F(DmUninstantiableValueTest, ValueIsValid) {
    EXPECT_TRUE(DmAutoValue().isValid());
    EXPECT_TRUE(DmUndefinedValue().isValid());
}

TEST_F(DmUninstantiableValueTest, ValueOfAnInvalidTypeIsNotValid) {
    auto const type = std::make_shared<DmUndefinedType>("");
    ASSERT_FALSE(type->isValid());
    EXPECT_FALSE(DmUndefinedValue(type).isValid());
}
