// Struct values: one buffer laid out by the struct type, member values that
// read and write it in place, nested structs sharing the outer buffer, the
// set flag of the struct and its members, copies, clones, assignment and the
// buffer operations, with members that own memory (texts, arrays of texts).
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/platform/UntypedArray.h>
#include <KestoDM/platform/UntypedTypeRep.h>
#include <KestoDM/types/DmArrayValue.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmClassValue.h>
#include <KestoDM/types/DmEnumValue.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmStructValue.h>
#include <KestoDM/types/DmUnknownStructValue.h>

#include "types/ValueTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace Kesto;
using namespace Kesto::ValueTest;
using Kesto::Internal::UntypedArray;
using Kesto::Internal::UntypedTypeRep;

namespace {

/// A person: texts, an array of texts, a nested struct, an int and an enum.
struct PersonTypes {
    std::shared_ptr<DmArrayType> tags = makeArrayType(Singletons::stringType());
    std::shared_ptr<DmStructType> address =
        makeStructType("Address", {{"street", Singletons::stringType()}, {"number", Singletons::intType()}});
    std::shared_ptr<DmEnumType> mood = makeEnumType("Mood", {{"calm", 5}, {"busy", 9}});
    std::shared_ptr<DmStructType> person = makeStructType("Person", {{"name", Singletons::stringType()},
                                                                     {"tags", tags},
                                                                     {"address", address},
                                                                     {"age", Singletons::intType()},
                                                                     {"mood", mood}});

    std::shared_ptr<DmStructValue> newPerson() const { return as<DmStructValue>(person->createValue()); }
    std::shared_ptr<DmStructValue> newDefaultPerson() const {
        return as<DmStructValue>(person->createDefaultValue());
    }
};

std::shared_ptr<DmStructValue> addressOf(DmStructValue const& person) {
    return member<DmStructValue>(person, "address");
}

/// Fills every member of a person, the tags with `tagCount` texts.
void fillPerson(DmStructValue& person, String const& text, unsigned long long tagCount) {
    ASSERT_TRUE(member<DmStringValue>(person, "name")->setData(text));
    auto const tags = member<DmArrayValue>(person, "tags");
    ASSERT_TRUE(tags->assignArray(tagCount));
    for (unsigned long long i = 0; i < tagCount; ++i) {
        ASSERT_TRUE(as<DmStringValue>(tags->at(i))->setData(text));
    }
    auto const address = addressOf(person);
    ASSERT_TRUE(member<DmStringValue>(*address, "street")->setData(text));
    ASSERT_TRUE(member<DmIntValue>(*address, "number")->setData(221));
    ASSERT_TRUE(member<DmIntValue>(person, "age")->setData(36));
    ASSERT_TRUE(member<DmEnumValue>(person, "mood")->setData(9));
}

std::vector<bool> implicitFlags(DmStructValue const& value) {
    std::vector<bool> flags;
    for (auto const& entry : *value.getMembers()) {
        flags.push_back(entry.second->isImplicit());
    }
    return flags;
}

} // namespace

class DmStructValueTest : public ValueTestBase {};

// ---------------------------------------------------------------------------
// Making

TEST_F(DmStructValueTest, CreateValueHasZeroedMembersAndIsImplicit) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getType(), types.person);
    EXPECT_TRUE(value->isImplicit());
    EXPECT_TRUE(member<DmStringValue>(*value, "name")->getData().empty());
    EXPECT_EQ(member<DmArrayValue>(*value, "tags")->getData(), nullptr);
    EXPECT_TRUE(member<DmStringValue>(*addressOf(*value), "street")->getData().empty());
    EXPECT_EQ(member<DmIntValue>(*addressOf(*value), "number")->getData(), 0);
    EXPECT_EQ(member<DmIntValue>(*value, "age")->getData(), 0);
    EXPECT_EQ(member<DmEnumValue>(*value, "mood")->getData(), 0);
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmStructValueTest, StructWhoseMapWasNeverBuiltIsImplicit) {
    PersonTypes const types;
    DmStructValue const value(types.person);
    EXPECT_TRUE(value.isImplicit());
}

TEST_F(DmStructValueTest, StructWithABuiltMapOfImplicitMembersIsImplicit) {
    PersonTypes const types;
    DmStructValue const value(types.person);
    ASSERT_EQ(value.getMembers()->size(), 5u);
    EXPECT_TRUE(value.isImplicit());
}

TEST_F(DmStructValueTest, CreateDefaultValueGivesEachMemberItsTypesDefault) {
    PersonTypes const types;
    auto const value = types.newDefaultPerson();
    ASSERT_NE(value, nullptr);
    EXPECT_TRUE(member<DmStringValue>(*value, "name")->getData().empty());
    auto const tags = member<DmArrayValue>(*value, "tags");
    EXPECT_NE(tags->getData(), nullptr);
    EXPECT_EQ(tags->size(), 0u);
    EXPECT_EQ(member<DmIntValue>(*value, "age")->getData(), 0);
    EXPECT_EQ(member<DmEnumValue>(*value, "mood")->getData(), 5);
    EXPECT_EQ(member<DmIntValue>(*addressOf(*value), "number")->getData(), 0);
}

TEST_F(DmStructValueTest, CreateDefaultValueSetsEveryMemberSoTheStructIsNotImplicit) {
    PersonTypes const types;
    auto const value = types.newDefaultPerson();
    ASSERT_NE(value, nullptr);
    EXPECT_FALSE(value->isImplicit());
    EXPECT_EQ(implicitFlags(*value), (std::vector<bool>{false, false, false, false, false}));
}

TEST_F(DmStructValueTest, GetStructTypeAndGetSizeOf) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getStructType(), types.person);
    EXPECT_EQ(value->getSizeOf(), 64u);
    EXPECT_EQ(value->getSizeOf(), types.person->getSizeOf());
    EXPECT_EQ(addressOf(*value)->getSizeOf(), 24u);
}

TEST_F(DmStructValueTest, GetSizeOfPadsToTheWidestMember) {
    auto const small =
        makeStructType("Small", {{"flag", Singletons::boolType()}, {"count", Singletons::intType()}});
    auto const mixed = makeStructType("Mixed", {{"count", Singletons::intType()},
                                                {"ratio", Singletons::doubleType()},
                                                {"label", Singletons::stringType()}});
    EXPECT_EQ(DmStructValue(small).getSizeOf(), 8u);
    EXPECT_EQ(DmStructValue(mixed).getSizeOf(), 32u);
}

TEST_F(DmStructValueTest, StructWithoutMembersHasNoMembersAndIsImplicit) {
    auto const empty = makeStructType("Empty", {});
    auto const value = as<DmStructValue>(empty->createValue());
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getSizeOf(), 0u);
    EXPECT_TRUE(value->getMembers()->empty());
    EXPECT_TRUE(value->isImplicit());
    EXPECT_TRUE(value->assign(empty->createValue()));
    EXPECT_TRUE(value->isImplicit());
}

// ---------------------------------------------------------------------------
// Members

TEST_F(DmStructValueTest, GetMembersListsTheMembersInTheTypesOrder) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    std::vector<std::string> names;
    for (auto const& entry : *value->getMembers()) {
        names.push_back(entry.first);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"name", "tags", "address", "age", "mood"}));
    EXPECT_EQ(value->getMembers(), value->getMembers());
}

TEST_F(DmStructValueTest, MemberValuesHaveTheMembersTypes) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->findMember("name")->getType(), Singletons::stringType());
    EXPECT_EQ(value->findMember("tags")->getType(), types.tags);
    EXPECT_EQ(value->findMember("address")->getType(), types.address);
    EXPECT_EQ(value->findMember("mood")->getType(), types.mood);
}

TEST_F(DmStructValueTest, GetMemberGivesTheSameMemberValueEachTime) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    std::shared_ptr<DmBaseValue> first;
    std::shared_ptr<DmBaseValue> second;
    EXPECT_TRUE(value->getMember("age", first));
    EXPECT_TRUE(value->getMember("age", second));
    EXPECT_EQ(first, second);
    EXPECT_EQ(value->findMember("age"), first);
}

TEST_F(DmStructValueTest, GetMemberOfAnUnknownNameFailsAndEmptiesTheResult) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    std::shared_ptr<DmBaseValue> out = std::make_shared<DmIntValue>();
    EXPECT_FALSE(value->getMember("height", out));
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(value->findMember("height"), nullptr);
    EXPECT_FALSE(value->getMember("address.street", out));
}

TEST_F(DmStructValueTest, SettingAMemberThroughGetMemberClearsImplicitness) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    std::shared_ptr<DmBaseValue> age;
    ASSERT_TRUE(value->getMember("age", age));
    ASSERT_TRUE(value->isImplicit());
    EXPECT_TRUE(as<DmIntValue>(age)->setData(36));
    EXPECT_FALSE(value->isImplicit());
    EXPECT_EQ(implicitFlags(*value), (std::vector<bool>{true, true, true, false, true}));
}

TEST_F(DmStructValueTest, SettingANestedMemberClearsImplicitnessOfBothStructs) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    auto const address = addressOf(*value);
    ASSERT_NE(address, nullptr);
    EXPECT_TRUE(member<DmIntValue>(*address, "number")->setData(7));
    EXPECT_FALSE(address->isImplicit());
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmStructValueTest, MemberWritesReachTheBuffer) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    fillPerson(*value, String("a text long enough for the heap"), 2);
    EXPECT_EQ(atOffset<String>(*value, *types.person, "name"), String("a text long enough for the heap"));
    EXPECT_EQ(atOffset<int>(*value, *types.person, "age"), 36);
    EXPECT_EQ(atOffset<int>(*value, *types.person, "mood"), 9);
    Ptr<void> const& tags = atOffset<Ptr<void>>(*value, *types.person, "tags");
    ASSERT_NE(tags, nullptr);
    EXPECT_EQ(static_cast<UntypedArray*>(tags.get())->size(), 2u);
    auto const address = addressOf(*value);
    EXPECT_EQ(address->getData(), value->getData() + types.person->findMember("address")->getOffset());
    EXPECT_EQ(atOffset<int>(*address, *types.address, "number"), 221);
}

TEST_F(DmStructValueTest, NestedStructValueSharesTheOuterBuffer) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    auto const address = addressOf(*value);
    ASSERT_NE(address, nullptr);
    ASSERT_TRUE(member<DmStringValue>(*address, "street")->setData(String("Baker Street")));
    std::uint64_t const offset =
        types.person->findMember("address")->getOffset() + types.address->findMember("street")->getOffset();
    EXPECT_EQ(*reinterpret_cast<String const*>(value->getData() + offset), String("Baker Street"));
}

TEST_F(DmStructValueTest, SetMemberAssignsTheMember) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    auto const age = std::make_shared<DmIntValue>();
    ASSERT_TRUE(age->setData(52));
    EXPECT_TRUE(value->setMember("age", age));
    EXPECT_EQ(member<DmIntValue>(*value, "age")->getData(), 52);
    EXPECT_EQ(atOffset<int>(*value, *types.person, "age"), 52);
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmStructValueTest, SetMemberOfANestedStructCopiesItsContent) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    auto const address = as<DmStructValue>(types.address->createValue());
    ASSERT_TRUE(member<DmStringValue>(*address, "street")->setData(String("Elm Street")));
    EXPECT_TRUE(value->setMember("address", address));
    EXPECT_EQ(member<DmStringValue>(*addressOf(*value), "street")->getData(), String("Elm Street"));
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmStructValueTest, SetMemberWithAnUnknownNameFails) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    auto const height = std::make_shared<DmIntValue>();
    ASSERT_TRUE(height->setData(180));
    EXPECT_FALSE(value->setMember("height", height));
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmStructValueTest, SetMemberWithNullFails) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    EXPECT_FALSE(value->setMember("age", nullptr));
    EXPECT_EQ(member<DmIntValue>(*value, "age")->getData(), 0);
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmStructValueTest, SetMemberWithAValueTheMemberRefusesFails) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    auto const ratio = std::make_shared<DmDoubleValue>();
    ASSERT_TRUE(ratio->setData(1.5));
    EXPECT_FALSE(value->setMember("age", ratio));
    EXPECT_EQ(member<DmIntValue>(*value, "age")->getData(), 0);
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmStructValueTest, MemberOfAnUninstantiableTypeHasNoMemberValue) {
    auto const type =
        makeStructType("Loose", {{"count", Singletons::intType()}, {"whatever", Singletons::autoType()}});
    DmStructValue const value(type);
    EXPECT_EQ(value.getMembers()->size(), 1u);
    EXPECT_EQ(value.findMember("whatever"), nullptr);
    EXPECT_NE(value.findMember("count"), nullptr);
}

TEST_F(DmStructValueTest, MemberValueOutlivesTheStructValueAndKeepsTheBufferAlive) {
    String const text("text in a struct that is gone");
    std::shared_ptr<DmStringValue> name;
    {
        PersonTypes const types;
        auto const value = types.newPerson();
        ASSERT_NE(value, nullptr);
        name = member<DmStringValue>(*value, "name");
        ASSERT_TRUE(name->setData(text));
    }
    EXPECT_EQ(structValuesMadeSinceStart(), 0u);
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(name->getData(), text);
    EXPECT_TRUE(name->setData(String("written later")));
    EXPECT_EQ(name->getData(), String("written later"));
    EXPECT_EQ(text.useCount(), 1u);
    name.reset();
}

// ---------------------------------------------------------------------------
// Copies and clones

TEST_F(DmStructValueTest, CloneOfAnOwningStructCopiesTheBuffer) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    fillPerson(*value, String("original text"), 2);
    auto const clone = as<DmStructValue>(value->clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone->getData(), value->getData());
    EXPECT_EQ(clone->getType(), types.person);
    EXPECT_EQ(member<DmStringValue>(*clone, "name")->getData(), String("original text"));
    EXPECT_EQ(member<DmIntValue>(*clone, "age")->getData(), 36);
    EXPECT_EQ(member<DmEnumValue>(*clone, "mood")->getData(), 9);
    EXPECT_EQ(member<DmStringValue>(*addressOf(*clone), "street")->getData(), String("original text"));
    EXPECT_EQ(member<DmArrayValue>(*clone, "tags")->size(), 2u);
}

TEST_F(DmStructValueTest, ChangesToACloneDoNotReachTheOriginal) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    fillPerson(*value, String("original text"), 2);
    auto const clone = as<DmStructValue>(value->clone());
    ASSERT_NE(clone, nullptr);
    ASSERT_TRUE(member<DmStringValue>(*clone, "name")->setData(String("changed")));
    ASSERT_TRUE(member<DmIntValue>(*clone, "age")->setData(1));
    ASSERT_TRUE(member<DmIntValue>(*addressOf(*clone), "number")->setData(2));
    ASSERT_TRUE(member<DmArrayValue>(*clone, "tags")->assignArray(5));
    EXPECT_EQ(member<DmStringValue>(*value, "name")->getData(), String("original text"));
    EXPECT_EQ(member<DmIntValue>(*value, "age")->getData(), 36);
    EXPECT_EQ(member<DmIntValue>(*addressOf(*value), "number")->getData(), 221);
    EXPECT_EQ(member<DmArrayValue>(*value, "tags")->size(), 2u);
}

TEST_F(DmStructValueTest, CloneSharesTheArrayOfAnArrayMember) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    fillPerson(*value, String("original text"), 2);
    auto const clone = as<DmStructValue>(value->clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(member<DmArrayValue>(*clone, "tags")->getData(),
              member<DmArrayValue>(*value, "tags")->getData());
}

TEST_F(DmStructValueTest, CloneKeepsWhichMembersWereSet) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    ASSERT_TRUE(member<DmIntValue>(*value, "age")->setData(36));
    ASSERT_TRUE(member<DmStringValue>(*value, "name")->setData(String("Ada")));
    auto const clone = as<DmStructValue>(value->clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_FALSE(clone->isImplicit());
    EXPECT_EQ(implicitFlags(*clone), (std::vector<bool>{false, true, true, false, true}));
}

TEST_F(DmStructValueTest, CloneOfAnImplicitStructIsImplicit) {
    PersonTypes const types;
    auto const unbuilt = types.newPerson();
    auto const built = types.newPerson();
    ASSERT_NE(unbuilt, nullptr);
    ASSERT_NE(built, nullptr);
    built->getMembers();
    EXPECT_TRUE(unbuilt->clone()->isImplicit());
    EXPECT_TRUE(built->clone()->isImplicit());
}

TEST_F(DmStructValueTest, CloneOfAStructMarkedSetIsNotImplicit) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    value->valueWasSet();
    EXPECT_FALSE(value->clone()->isImplicit());
}

TEST_F(DmStructValueTest, CloneOfANestedStructValueSharesTheOuterBuffer) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    auto const address = addressOf(*value);
    auto const clone = as<DmStructValue>(address->clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->getData(), address->getData());
    ASSERT_TRUE(member<DmStringValue>(*clone, "street")->setData(String("Shared Street")));
    EXPECT_EQ(member<DmStringValue>(*address, "street")->getData(), String("Shared Street"));
}

TEST_F(DmStructValueTest, CopyConstructedStructHasItsOwnBuffer) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    fillPerson(*value, String("copied text"), 1);
    DmStructValue copy(*value);
    EXPECT_NE(copy.getData(), value->getData());
    EXPECT_EQ(member<DmStringValue>(copy, "name")->getData(), String("copied text"));
    ASSERT_TRUE(member<DmStringValue>(copy, "name")->setData(String("changed")));
    EXPECT_EQ(member<DmStringValue>(*value, "name")->getData(), String("copied text"));
}

// ---------------------------------------------------------------------------
// assign

TEST_F(DmStructValueTest, AssignFromASetStructCopiesTheContentAndSetsEveryMember) {
    PersonTypes const types;
    auto const source = types.newPerson();
    auto const target = types.newPerson();
    ASSERT_NE(source, nullptr);
    ASSERT_NE(target, nullptr);
    fillPerson(*source, String("assigned text"), 3);
    target->getMembers();
    EXPECT_TRUE(target->assign(source));
    EXPECT_FALSE(target->isImplicit());
    EXPECT_EQ(implicitFlags(*target), (std::vector<bool>{false, false, false, false, false}));
    EXPECT_EQ(member<DmStringValue>(*target, "name")->getData(), String("assigned text"));
    EXPECT_EQ(member<DmArrayValue>(*target, "tags")->size(), 3u);
    EXPECT_EQ(member<DmStringValue>(*addressOf(*target), "street")->getData(), String("assigned text"));
    EXPECT_EQ(member<DmIntValue>(*addressOf(*target), "number")->getData(), 221);
    EXPECT_FALSE(addressOf(*target)->isImplicit());
    EXPECT_NE(target->getData(), source->getData());
}

TEST_F(DmStructValueTest, AssignFromAnImplicitStructClearsTheContentAndMakesTheTargetImplicit) {
    PersonTypes const types;
    String const text("text to be cleared");
    auto const target = types.newPerson();
    ASSERT_NE(target, nullptr);
    fillPerson(*target, text, 2);
    ASSERT_FALSE(target->isImplicit());
    EXPECT_EQ(text.useCount(), 5u);
    EXPECT_TRUE(target->assign(types.newPerson()));
    EXPECT_TRUE(target->isImplicit());
    EXPECT_EQ(implicitFlags(*target), (std::vector<bool>{true, true, true, true, true}));
    EXPECT_TRUE(member<DmStringValue>(*target, "name")->getData().empty());
    EXPECT_EQ(member<DmArrayValue>(*target, "tags")->getData(), nullptr);
    EXPECT_TRUE(member<DmStringValue>(*addressOf(*target), "street")->getData().empty());
    EXPECT_EQ(member<DmIntValue>(*addressOf(*target), "number")->getData(), 0);
    EXPECT_EQ(member<DmIntValue>(*target, "age")->getData(), 0);
    EXPECT_TRUE(addressOf(*target)->isImplicit());
    EXPECT_EQ(text.useCount(), 1u);
}

TEST_F(DmStructValueTest, AssignFromAnImplicitStructUndoesValueWasSet) {
    PersonTypes const types;
    auto const target = types.newPerson();
    ASSERT_NE(target, nullptr);
    target->valueWasSet();
    ASSERT_FALSE(target->isImplicit());
    EXPECT_TRUE(target->assign(types.newPerson()));
    EXPECT_TRUE(target->isImplicit());
}

TEST_F(DmStructValueTest, AssignFromAnImplicitStructIntoANestedMemberClearsOnlyThatMember) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    fillPerson(*value, String("kept text"), 1);
    auto const address = addressOf(*value);
    EXPECT_TRUE(address->assign(types.address->createValue()));
    EXPECT_TRUE(address->isImplicit());
    EXPECT_TRUE(member<DmStringValue>(*address, "street")->getData().empty());
    EXPECT_EQ(member<DmStringValue>(*value, "name")->getData(), String("kept text"));
    EXPECT_EQ(member<DmIntValue>(*value, "age")->getData(), 36);
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmStructValueTest, AssignFromItselfSucceedsAndKeepsTheContent) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    fillPerson(*value, String("same text"), 1);
    EXPECT_TRUE(value->assign(value));
    EXPECT_EQ(member<DmStringValue>(*value, "name")->getData(), String("same text"));
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmStructValueTest, AssignFromAnEquivalentStructTypeSucceeds) {
    auto const first = makeStructType("Point", {{"x", Singletons::intType()}, {"y", Singletons::intType()}});
    auto const second = makeStructType("Point", {{"x", Singletons::intType()}, {"y", Singletons::intType()}});
    auto const source = as<DmStructValue>(second->createValue());
    ASSERT_TRUE(member<DmIntValue>(*source, "y")->setData(4));
    DmStructValue target(first);
    EXPECT_TRUE(target.assign(source));
    EXPECT_EQ(member<DmIntValue>(target, "y")->getData(), 4);
}

TEST_F(DmStructValueTest, AssignFromAnotherStructTypeFails) {
    auto const point = makeStructType("Point", {{"x", Singletons::intType()}, {"y", Singletons::intType()}});
    auto const other = makeStructType("Point", {{"x", Singletons::intType()}, {"z", Singletons::intType()}});
    auto const source = as<DmStructValue>(other->createValue());
    ASSERT_TRUE(member<DmIntValue>(*source, "x")->setData(4));
    DmStructValue target(point);
    EXPECT_FALSE(target.assign(source));
    EXPECT_EQ(member<DmIntValue>(target, "x")->getData(), 0);
    EXPECT_TRUE(target.isImplicit());
}

TEST_F(DmStructValueTest, AssignFromNullOrABuiltInValueFails) {
    auto const point = makeStructType("Point", {{"x", Singletons::intType()}});
    DmStructValue target(point);
    EXPECT_FALSE(target.assign(nullptr));
    auto const number = std::make_shared<DmIntValue>();
    number->valueWasSet();
    EXPECT_FALSE(target.assign(number));
    EXPECT_TRUE(target.isImplicit());
}

TEST_F(DmStructValueTest, AssignFromAnUnknownStructWithTheSameMembersFails) {
    auto const point = makeStructType("Point", {{"x", Singletons::intType()}});
    auto const unknown = makeUnknownStructType("Point", {{"x", Singletons::intType()}});
    auto const source = as<DmUnknownStructValue>(unknown->createValue());
    ASSERT_NE(source, nullptr);
    ASSERT_TRUE(member<DmIntValue>(*source, "x")->setData(4));
    DmStructValue target(point);
    EXPECT_FALSE(target.assign(source));
    EXPECT_TRUE(target.isImplicit());
}

TEST_F(DmStructValueTest, MoveAssignBehavesAsAssign) {
    PersonTypes const types;
    auto const source = types.newPerson();
    ASSERT_NE(source, nullptr);
    fillPerson(*source, String("moved text"), 1);
    auto const target = types.newPerson();
    EXPECT_TRUE(target->moveAssign(std::shared_ptr<DmBaseValue>(source)));
    EXPECT_EQ(member<DmStringValue>(*target, "name")->getData(), String("moved text"));
    EXPECT_FALSE(target->isImplicit());
    EXPECT_FALSE(target->moveAssign(nullptr));
}

// ---------------------------------------------------------------------------
// Buffer operations

TEST_F(DmStructValueTest, EveryBufferOperationWithANullBufferFails) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    EXPECT_FALSE(value->copyConstructIntoBuffer(nullptr));
    EXPECT_FALSE(value->moveConstructIntoBuffer(nullptr));
    EXPECT_FALSE(value->copyAssignIntoBuffer(nullptr));
    EXPECT_FALSE(value->moveAssignIntoBuffer(nullptr));
    EXPECT_FALSE(value->copyConstructFromBuffer(nullptr));
    EXPECT_FALSE(value->moveConstructFromBuffer(nullptr));
    EXPECT_FALSE(value->copyAssignFromBuffer(nullptr));
    EXPECT_FALSE(value->moveAssignFromBuffer(nullptr));
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmStructValueTest, CopyConstructIntoBufferWritesTheContentAndLeavesAnImplicitValueImplicit) {
    auto const type =
        makeStructType("Labelled", {{"label", Singletons::stringType()}, {"count", Singletons::intType()}});
    auto const value = as<DmStructValue>(type->createValue());
    ASSERT_NE(value, nullptr);
    member<DmStringValue>(*value, "label")->getData() = String("label text");
    member<DmIntValue>(*value, "count")->getData() = 3;
    ASSERT_TRUE(value->isImplicit());
    UntypedTypeRep const rep = type->getUntypedTypeRep();
    void* const storage = rep.allocate(1);
    EXPECT_TRUE(value->copyConstructIntoBuffer(storage));
    auto const* bytes = static_cast<unsigned char const*>(storage);
    EXPECT_EQ(*reinterpret_cast<String const*>(bytes + type->findMember("label")->getOffset()),
              String("label text"));
    EXPECT_EQ(*reinterpret_cast<int const*>(bytes + type->findMember("count")->getOffset()), 3);
    EXPECT_TRUE(value->isImplicit());
    rep.destroy(storage);
    rep.deallocate(storage);
}

TEST_F(DmStructValueTest, CopyAssignIntoBufferWritesTheContentAndLeavesTheFlag) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    fillPerson(*value, String("into a buffer"), 2);
    DmStructValue target(types.person);
    EXPECT_TRUE(value->copyAssignIntoBuffer(const_cast<unsigned char*>(target.getData())));
    EXPECT_EQ(member<DmStringValue>(target, "name")->getData(), String("into a buffer"));
    EXPECT_EQ(member<DmArrayValue>(target, "tags")->size(), 2u);
    EXPECT_TRUE(target.isImplicit());
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmStructValueTest, MoveIntoBufferLeavesTheSourceTextsEmpty) {
    auto const type =
        makeStructType("Labelled", {{"label", Singletons::stringType()}, {"count", Singletons::intType()}});
    auto const value = as<DmStructValue>(type->createValue());
    ASSERT_NE(value, nullptr);
    ASSERT_TRUE(member<DmStringValue>(*value, "label")->setData(String("moved label")));
    DmStructValue assigned(type);
    EXPECT_TRUE(value->moveAssignIntoBuffer(const_cast<unsigned char*>(assigned.getData())));
    EXPECT_EQ(member<DmStringValue>(assigned, "label")->getData(), String("moved label"));
    EXPECT_TRUE(member<DmStringValue>(*value, "label")->getData().empty());

    ASSERT_TRUE(member<DmStringValue>(*value, "label")->setData(String("moved again")));
    UntypedTypeRep const rep = type->getUntypedTypeRep();
    void* const storage = rep.allocate(1);
    EXPECT_TRUE(value->moveConstructIntoBuffer(storage));
    EXPECT_EQ(*reinterpret_cast<String const*>(static_cast<unsigned char const*>(storage) +
                                               type->findMember("label")->getOffset()),
              String("moved again"));
    EXPECT_TRUE(member<DmStringValue>(*value, "label")->getData().empty());
    rep.destroy(storage);
    rep.deallocate(storage);
}

TEST_F(DmStructValueTest, EachFromBufferOperationReadsTheContentAndSetsEveryMember) {
    PersonTypes const types;
    auto const source = types.newPerson();
    ASSERT_NE(source, nullptr);
    fillPerson(*source, String("from a buffer"), 1);
    using Operation = bool (*)(DmStructValue&, DmStructValue&);
    std::vector<Operation> const operations = {
        [](DmStructValue& target, DmStructValue& from) {
            return target.copyConstructFromBuffer(from.getData());
        },
        [](DmStructValue& target, DmStructValue& from) {
            return target.moveConstructFromBuffer(const_cast<unsigned char*>(from.getData()));
        },
        [](DmStructValue& target, DmStructValue& from) {
            return target.copyAssignFromBuffer(from.getData());
        },
        [](DmStructValue& target, DmStructValue& from) {
            return target.moveAssignFromBuffer(const_cast<unsigned char*>(from.getData()));
        },
    };
    for (std::size_t i = 0; i < operations.size(); ++i) {
        SCOPED_TRACE(i);
        auto const from = as<DmStructValue>(source->clone());
        DmStructValue target(types.person);
        target.getMembers();
        EXPECT_TRUE(operations[i](target, *from));
        EXPECT_FALSE(target.isImplicit());
        EXPECT_EQ(implicitFlags(target), (std::vector<bool>{false, false, false, false, false}));
        EXPECT_FALSE(addressOf(target)->isImplicit());
        EXPECT_EQ(member<DmStringValue>(target, "name")->getData(), String("from a buffer"));
        EXPECT_EQ(member<DmIntValue>(*addressOf(target), "number")->getData(), 221);
    }
}

TEST_F(DmStructValueTest, FromBufferWithoutABuiltMapMarksTheStructSet) {
    PersonTypes const types;
    auto const source = types.newPerson();
    ASSERT_NE(source, nullptr);
    fillPerson(*source, String("from a buffer"), 1);
    DmStructValue target(types.person);
    EXPECT_TRUE(target.copyAssignFromBuffer(source->getData()));
    EXPECT_FALSE(target.isImplicit());
}

TEST_F(DmStructValueTest, CopyAssignFromItsOwnBufferMarksTheStructSet) {
    PersonTypes const types;
    auto const value = types.newPerson();
    ASSERT_NE(value, nullptr);
    member<DmIntValue>(*value, "age")->getData() = 8;
    EXPECT_TRUE(value->copyAssignFromBuffer(value->getData()));
    EXPECT_EQ(member<DmIntValue>(*value, "age")->getData(), 8);
    EXPECT_FALSE(value->isImplicit());
}

// ---------------------------------------------------------------------------
// Destruction

TEST_F(DmStructValueTest, DroppingAStructReleasesItsTextsAndArrays) {
    String const text("text held in many places");
    {
        PersonTypes const types;
        auto const value = types.newPerson();
        ASSERT_NE(value, nullptr);
        fillPerson(*value, text, 3);
        EXPECT_EQ(text.useCount(), 6u);
        auto const clone = value->clone();
        EXPECT_EQ(text.useCount(), 8u);
    }
    EXPECT_EQ(text.useCount(), 1u);
}

TEST_F(DmStructValueTest, DroppingAStructReleasesTheObjectOfAClassMember) {
    auto const mesh = makeClassType("Mesh");
    auto const type = makeStructType("Holder", {{"mesh", mesh}});
    auto const object = Ptr<int>::make(5);
    {
        auto const value = as<DmStructValue>(type->createValue());
        ASSERT_TRUE(member<DmClassValue>(*value, "mesh")->setData(Ptr<void>(object)));
        EXPECT_EQ(object.use_count(), 2);
    }
    EXPECT_EQ(object.use_count(), 1);
}

TEST_F(DmStructValueTest, StructValuesAndTheirMembersAreAllReleased) {
    {
        PersonTypes const types;
        auto const value = types.newDefaultPerson();
        ASSERT_NE(value, nullptr);
        fillPerson(*value, String("counted"), 2);
        auto const clone = value->clone();
        auto const copy = std::make_shared<DmStructValue>(*value);
        EXPECT_EQ(structValuesMadeSinceStart(), 6u);
    }
    EXPECT_EQ(structValuesMadeSinceStart(), 0u);
    EXPECT_EQ(valuesMadeSinceStart(), 0u);
}

TEST_F(DmStructValueTest, NestedMembersMadeAfterTheStructWasSetAreSet) {
    auto const inner = makeStructType("Inner", {{"x", Singletons::intType()}});
    auto const outer = makeStructType("Outer", {{"inner", inner}});
    auto const source = std::static_pointer_cast<DmStructValue>(outer->createValue());
    auto const target = std::static_pointer_cast<DmStructValue>(outer->createValue());
    ASSERT_TRUE(target->copyAssignFromBuffer(source->getData()));
    auto const innerValue = std::dynamic_pointer_cast<DmStructValue>(target->findMember("inner"));
    ASSERT_NE(innerValue, nullptr);
    EXPECT_FALSE(innerValue->isImplicit());
    EXPECT_FALSE(innerValue->findMember("x")->isImplicit());
}
