// Values of unknown types (the raw text a file held, kept as it stands) and of
// unknown struct types (struct values over the members the file showed).
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmStructValue.h>
#include <KestoDM/types/DmUnknownStructType.h>
#include <KestoDM/types/DmUnknownStructValue.h>
#include <KestoDM/types/DmUnknownType.h>
#include <KestoDM/types/DmUnknownValue.h>

#include "types/ValueTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

using namespace Kesto;
using namespace Kesto::ValueTest;

namespace {

std::shared_ptr<DmUnknownValue> valueOf(std::shared_ptr<DmUnknownType> const& type) {
    return as<DmUnknownValue>(type->createValue());
}

} // namespace

class DmUnknownValueTest : public ValueTestBase {};

// ---------------------------------------------------------------------------
// Unknown values

TEST_F(DmUnknownValueTest, CreateValueHoldsNoTextAndIsImplicit) {
    auto const type = makeUnknownType("Widget");
    auto const value = valueOf(type);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getType(), type);
    EXPECT_TRUE(value->getData().empty());
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmUnknownValueTest, SetDataKeepsTheTextAsItStands) {
    auto const type = makeUnknownType("Widget");
    auto const value = valueOf(type);
    String const raw("{ \"size\": [1, 2, 3],\n  \"name\": \"w\" }");
    EXPECT_TRUE(value->setData(raw));
    EXPECT_EQ(value->getData(), raw);
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmUnknownValueTest, ToAnyIsEmptyAndKeepsTheText) {
    auto const type = makeUnknownType("Widget");
    auto const value = valueOf(type);
    EXPECT_TRUE(value->toAny().isEmpty());
    ASSERT_TRUE(value->setData(String("1 2 3")));
    EXPECT_TRUE(value->toAny().isEmpty());
    EXPECT_EQ(value->getData(), String("1 2 3"));
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmUnknownValueTest, CloneKeepsTheTextTheTypeAndTheSetFlag) {
    auto const type = makeUnknownType("Widget");
    auto const value = valueOf(type);
    ASSERT_TRUE(value->setData(String("raw text")));
    auto const clone = as<DmUnknownValue>(value->clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->getType(), type);
    EXPECT_EQ(clone->getData(), String("raw text"));
    EXPECT_FALSE(clone->isImplicit());
    ASSERT_TRUE(clone->setData(String("changed")));
    EXPECT_EQ(value->getData(), String("raw text"));
}

TEST_F(DmUnknownValueTest, AssignFromAValueOfTheSameUnknownTypeCopiesTheText) {
    auto const type = makeUnknownType("Widget");
    auto const source = valueOf(type);
    ASSERT_TRUE(source->setData(String("raw text")));
    auto const target = valueOf(type);
    EXPECT_TRUE(target->assign(source));
    EXPECT_EQ(target->getData(), String("raw text"));
    EXPECT_FALSE(target->isImplicit());
}

TEST_F(DmUnknownValueTest, AssignFromAnotherUnknownTypeOfTheSameNameFails) {
    auto const type = makeUnknownType("Widget");
    auto const other = makeUnknownType("Widget");
    auto const source = valueOf(other);
    ASSERT_TRUE(source->setData(String("raw text")));
    auto const target = valueOf(type);
    EXPECT_FALSE(target->assign(source));
    EXPECT_TRUE(target->getData().empty());
    EXPECT_TRUE(target->isImplicit());
}

TEST_F(DmUnknownValueTest, AssignFromAStringValueFails) {
    auto const type = makeUnknownType("Widget");
    auto const source = std::make_shared<DmStringValue>();
    ASSERT_TRUE(source->setData(String("text")));
    auto const target = valueOf(type);
    EXPECT_FALSE(target->assign(source));
    EXPECT_TRUE(target->isImplicit());
}

TEST_F(DmUnknownValueTest, MemberValueWritesTheTextIntoTheStructBuffer) {
    auto const widget = makeUnknownType("Widget");
    auto const holder = makeStructType("Holder", {{"count", Singletons::intType()}, {"widget", widget}});
    auto const value = as<DmStructValue>(holder->createValue());
    ASSERT_NE(value, nullptr);
    auto const member = ValueTest::member<DmUnknownValue>(*value, "widget");
    ASSERT_NE(member, nullptr);
    EXPECT_TRUE(member->isMemberValue());
    ASSERT_TRUE(member->setData(String("raw member text")));
    EXPECT_EQ(atOffset<String>(*value, *holder, "widget"), String("raw member text"));
}

// ---------------------------------------------------------------------------
// Unknown struct values

TEST_F(DmUnknownValueTest, UnknownStructTypeMakesAnImplicitUnknownStructValue) {
    auto const type = makeUnknownStructType("Mystery", {{"a", Singletons::intType()}});
    std::shared_ptr<DmBaseValue> const value = type->createValue();
    ASSERT_NE(as<DmUnknownStructValue>(value), nullptr);
    EXPECT_EQ(value->getType(), type);
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmUnknownValueTest, UnknownStructMembersBehaveAsStructMembers) {
    auto const type =
        makeUnknownStructType("Mystery", {{"a", Singletons::intType()}, {"b", Singletons::stringType()}});
    auto const value = as<DmUnknownStructValue>(type->createValue());
    ASSERT_NE(value, nullptr);
    auto const b = std::make_shared<DmStringValue>();
    ASSERT_TRUE(b->setData(String("member text")));
    EXPECT_TRUE(value->setMember("b", b));
    EXPECT_FALSE(value->setMember("c", b));
    EXPECT_EQ(member<DmStringValue>(*value, "b")->getData(), String("member text"));
    EXPECT_EQ(atOffset<String>(*value, *type, "b"), String("member text"));
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmUnknownValueTest, CloneOfAnUnknownStructIsAnUnknownStructWithItsOwnBuffer) {
    auto const type = makeUnknownStructType("Mystery", {{"a", Singletons::intType()}});
    auto const value = as<DmUnknownStructValue>(type->createValue());
    ASSERT_NE(value, nullptr);
    ASSERT_TRUE(member<DmIntValue>(*value, "a")->setData(5));
    auto const clone = as<DmUnknownStructValue>(value->clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone->getData(), value->getData());
    EXPECT_EQ(member<DmIntValue>(*clone, "a")->getData(), 5);
    EXPECT_FALSE(clone->isImplicit());
}

TEST_F(DmUnknownValueTest, NestedUnknownStructIsAnUnknownStructValueOnTheOuterBuffer) {
    auto const inner = makeUnknownStructType("Inner", {{"x", Singletons::intType()}});
    auto const outer = makeUnknownStructType("Outer", {{"n", Singletons::intType()}, {"inner", inner}});
    auto const value = as<DmUnknownStructValue>(outer->createValue());
    ASSERT_NE(value, nullptr);
    auto const nested = member<DmUnknownStructValue>(*value, "inner");
    ASSERT_NE(nested, nullptr);
    EXPECT_EQ(nested->getData(), value->getData() + outer->findMember("inner")->getOffset());
    ASSERT_TRUE(member<DmIntValue>(*nested, "x")->setData(9));
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmUnknownValueTest, AssignBetweenUnknownStructValuesOfOneTypeCopiesAndClears) {
    auto const type = makeUnknownStructType("Mystery", {{"s", Singletons::stringType()}});
    auto const source = as<DmUnknownStructValue>(type->createValue());
    ASSERT_TRUE(member<DmStringValue>(*source, "s")->setData(String("assigned")));
    auto const target = as<DmUnknownStructValue>(type->createValue());
    EXPECT_TRUE(target->assign(source));
    EXPECT_EQ(member<DmStringValue>(*target, "s")->getData(), String("assigned"));
    EXPECT_TRUE(target->assign(type->createValue()));
    EXPECT_TRUE(member<DmStringValue>(*target, "s")->getData().empty());
    EXPECT_TRUE(target->isImplicit());
}
