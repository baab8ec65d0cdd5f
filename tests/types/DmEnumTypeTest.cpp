// Enum types: unique keys with unique integers, in order of addition.
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/platform/UntypedTypeRep.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmExternBaseType.h>
#include <KestoDM/types/DmMangledName.h>
#include <KestoDM/types/DmTypeKind.h>

#include <gtest/gtest.h>

#include <limits>

#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace Kesto;

namespace {

std::shared_ptr<DmEnumType> makeEnum(std::string const& name) {
    return DmLibrary::createEnumType(name);
}

/// The enumerations in order, as (key, integer) pairs.
std::vector<std::pair<std::string, int>> entriesOf(DmEnumType const& type) {
    std::vector<std::pair<std::string, int>> entries;
    for (auto const& entry : type.getEnumerations()) {
        entries.emplace_back(entry.first.str(), entry.second);
    }
    return entries;
}

/// The integer of `key`, or -999 when the key is absent.
int valueOf(DmEnumType const& type, String const& key) {
    int value = -999;
    return type.getValue(key, value) ? value : -999;
}

/// The key of `value`, or "<none>" when the integer is unused.
std::string keyOf(DmEnumType const& type, int value) {
    String key("<none>");
    return type.getKey(value, key) ? key.str() : "<none>";
}

using Entries = std::vector<std::pair<std::string, int>>;

} // namespace

// ---------------------------------------------------------------------------
// Nature

TEST(DmEnumType, KindIsEnum) {
    EXPECT_EQ(makeEnum("Color")->getTypeKind(), kTypeEnum);
}

TEST(DmEnumType, DatumIsFourBytesAlignedToFour) {
    auto const type = makeEnum("Color");
    EXPECT_EQ(type->getSizeOf(), 4u);
    EXPECT_EQ(type->getAlignmentOf(), 4u);
}

TEST(DmEnumType, IsPOD) {
    EXPECT_TRUE(makeEnum("Color")->isPOD());
}

TEST(DmEnumType, UntypedTypeRepIsFourBytes) {
    Internal::UntypedTypeRep const rep = makeEnum("Color")->getUntypedTypeRep();
    EXPECT_EQ(rep.size(), 4u);
    EXPECT_EQ(rep.alignment(), 4u);
}

TEST(DmEnumType, NewEnumHasNoEnumerations) {
    EXPECT_EQ(makeEnum("Color")->size(), 0u);
}

// ---------------------------------------------------------------------------
// Adding

TEST(DmEnumType, AddEnumerationWithoutIntegerNumbersFromZero) {
    auto const type = makeEnum("Color");
    EXPECT_TRUE(type->addEnumeration("red"));
    EXPECT_TRUE(type->addEnumeration("green"));
    EXPECT_TRUE(type->addEnumeration("blue"));
    EXPECT_EQ(entriesOf(*type), (Entries{{"red", 0}, {"green", 1}, {"blue", 2}}));
}

TEST(DmEnumType, AddEnumerationWithoutIntegerContinuesAfterTheLastIntegerAdded) {
    auto const type = makeEnum("Color");
    ASSERT_TRUE(type->addEnumeration("red", 10));
    EXPECT_TRUE(type->addEnumeration("green"));
    EXPECT_EQ(valueOf(*type, "green"), 11);
}

TEST(DmEnumType, AddEnumerationWithAnIntegerUsesThatInteger) {
    auto const type = makeEnum("Color");
    EXPECT_TRUE(type->addEnumeration("red", -4));
    EXPECT_EQ(valueOf(*type, "red"), -4);
}

TEST(DmEnumType, EnumerationsIterateInOrderOfAddition) {
    auto const type = makeEnum("Color");
    type->addEnumeration("zeta", 5);
    type->addEnumeration("alpha", 1);
    type->addEnumeration("mid", 3);
    EXPECT_EQ(entriesOf(*type), (Entries{{"zeta", 5}, {"alpha", 1}, {"mid", 3}}));
}

TEST(DmEnumType, AddEnumerationWithAKeyInUseReturnsFalse) {
    auto const type = makeEnum("Color");
    ASSERT_TRUE(type->addEnumeration("red", 1));
    EXPECT_FALSE(type->addEnumeration("red", 2));
}

TEST(DmEnumType, AddEnumerationWithAKeyInUseChangesNothing) {
    auto const type = makeEnum("Color");
    ASSERT_TRUE(type->addEnumeration("red", 1));
    type->addEnumeration("red", 2);
    EXPECT_EQ(type->size(), 1u);
    EXPECT_EQ(valueOf(*type, "red"), 1);
    EXPECT_EQ(keyOf(*type, 1), "red");
    EXPECT_FALSE(type->hasEnumeration(2));
}

TEST(DmEnumType, AddEnumerationWithoutIntegerOfAKeyInUseReturnsFalse) {
    auto const type = makeEnum("Color");
    ASSERT_TRUE(type->addEnumeration("red"));
    EXPECT_FALSE(type->addEnumeration("red"));
    EXPECT_EQ(type->size(), 1u);
}

TEST(DmEnumType, AddEnumerationWithAnIntegerInUseReturnsFalse) {
    auto const type = makeEnum("Color");
    ASSERT_TRUE(type->addEnumeration("red", 1));
    EXPECT_FALSE(type->addEnumeration("green", 1));
}

TEST(DmEnumType, AddEnumerationWithAnIntegerInUseChangesNothing) {
    auto const type = makeEnum("Color");
    ASSERT_TRUE(type->addEnumeration("red", 1));
    type->addEnumeration("green", 1);
    EXPECT_EQ(type->size(), 1u);
    EXPECT_FALSE(type->hasEnumeration("green"));
    EXPECT_EQ(keyOf(*type, 1), "red");
    EXPECT_EQ(valueOf(*type, "red"), 1);
}

TEST(DmEnumType, FailedAddEnumerationDoesNotMoveTheNextInteger) {
    auto const type = makeEnum("Color");
    ASSERT_TRUE(type->addEnumeration("red"));
    ASSERT_FALSE(type->addEnumeration("red", 7));
    ASSERT_TRUE(type->addEnumeration("green"));
    EXPECT_EQ(valueOf(*type, "green"), 1);
}

// ---------------------------------------------------------------------------
// Changing and removing

TEST(DmEnumType, SetEnumerationChangesTheInteger) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red");
    type->addEnumeration("green");
    EXPECT_TRUE(type->setEnumeration("red", 7));
    EXPECT_EQ(valueOf(*type, "red"), 7);
    EXPECT_EQ(keyOf(*type, 7), "red");
    EXPECT_FALSE(type->hasEnumeration(0));
}

TEST(DmEnumType, SetEnumerationKeepsTheOrder) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red");
    type->addEnumeration("green");
    type->addEnumeration("blue");
    ASSERT_TRUE(type->setEnumeration("green", 9));
    EXPECT_EQ(entriesOf(*type), (Entries{{"red", 0}, {"green", 9}, {"blue", 2}}));
}

TEST(DmEnumType, SetEnumerationOfAnAbsentKeyReturnsFalse) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red");
    EXPECT_FALSE(type->setEnumeration("green", 4));
    EXPECT_EQ(entriesOf(*type), (Entries{{"red", 0}}));
    EXPECT_FALSE(type->hasEnumeration(4));
}

TEST(DmEnumType, SetEnumerationToTheIntegerOfAnotherKeyReturnsFalse) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red");
    type->addEnumeration("green");
    EXPECT_FALSE(type->setEnumeration("red", 1));
    EXPECT_EQ(entriesOf(*type), (Entries{{"red", 0}, {"green", 1}}));
    EXPECT_EQ(keyOf(*type, 1), "green");
    EXPECT_EQ(keyOf(*type, 0), "red");
}

TEST(DmEnumType, SetEnumerationToItsOwnIntegerSucceeds) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red", 3);
    EXPECT_TRUE(type->setEnumeration("red", 3));
    EXPECT_EQ(entriesOf(*type), (Entries{{"red", 3}}));
    EXPECT_EQ(keyOf(*type, 3), "red");
}

TEST(DmEnumType, RemoveEnumerationRemovesTheKeyAndItsInteger) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red");
    type->addEnumeration("green");
    EXPECT_TRUE(type->removeEnumeration("red"));
    EXPECT_EQ(entriesOf(*type), (Entries{{"green", 1}}));
    EXPECT_FALSE(type->hasEnumeration("red"));
    EXPECT_FALSE(type->hasEnumeration(0));
}

TEST(DmEnumType, RemoveEnumerationOfAnAbsentKeyReturnsFalse) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red");
    EXPECT_FALSE(type->removeEnumeration("green"));
    EXPECT_EQ(type->size(), 1u);
}

TEST(DmEnumType, IntegerOfARemovedKeyCanBeGivenToANewKey) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red", 4);
    type->removeEnumeration("red");
    EXPECT_TRUE(type->addEnumeration("green", 4));
    EXPECT_EQ(keyOf(*type, 4), "green");
}

// ---------------------------------------------------------------------------
// Looking up

TEST(DmEnumType, HasEnumerationByKey) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red");
    EXPECT_TRUE(type->hasEnumeration(String("red")));
    EXPECT_FALSE(type->hasEnumeration(String("green")));
}

TEST(DmEnumType, HasEnumerationByInteger) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red", 5);
    EXPECT_TRUE(type->hasEnumeration(5));
    EXPECT_FALSE(type->hasEnumeration(0));
}

TEST(DmEnumType, GetKeyGivesTheKeyOfAnInteger) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red", 5);
    String key;
    EXPECT_TRUE(type->getKey(5, key));
    EXPECT_EQ(key, String("red"));
}

TEST(DmEnumType, GetKeyOfAnUnusedIntegerReturnsFalseAndLeavesTheKey) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red", 5);
    String key("before");
    EXPECT_FALSE(type->getKey(6, key));
    EXPECT_EQ(key, String("before"));
}

TEST(DmEnumType, GetValueGivesTheIntegerOfAKey) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red", 5);
    int value = 0;
    EXPECT_TRUE(type->getValue("red", value));
    EXPECT_EQ(value, 5);
}

TEST(DmEnumType, GetValueOfAnAbsentKeyReturnsFalseAndLeavesTheValue) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red", 5);
    int value = 42;
    EXPECT_FALSE(type->getValue("green", value));
    EXPECT_EQ(value, 42);
}

// ---------------------------------------------------------------------------
// Default value

TEST(DmEnumType, DefaultValueOfAnEnumWithoutKeysIsZero) {
    EXPECT_EQ(makeEnum("Color")->getDefaultValue(), 0);
}

TEST(DmEnumType, DefaultValueIsTheFirstKeysInteger) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red", 5);
    type->addEnumeration("green", 2);
    EXPECT_EQ(type->getDefaultValue(), 5);
}

TEST(DmEnumType, DefaultValueFollowsSetEnumerationOfTheFirstKey) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red", 5);
    type->addEnumeration("green", 2);
    ASSERT_TRUE(type->setEnumeration("red", 8));
    EXPECT_EQ(type->getDefaultValue(), 8);
}

TEST(DmEnumType, DefaultValueAfterRemovingTheFirstKeyIsTheNextKeysInteger) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red", 5);
    type->addEnumeration("green", 2);
    ASSERT_TRUE(type->removeEnumeration("red"));
    EXPECT_EQ(type->getDefaultValue(), 2);
}

// ---------------------------------------------------------------------------
// Run-time records (each test uses a mangled name of its own: the table is
// process-wide)

TEST(DmEnumType, RuntimeTypeInfoIsNullWithoutMangledName) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red");
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
}

TEST(DmEnumType, RuntimeTypeInfoWithAMangledNameIsAnEnumRecordOfThatName) {
    auto const type = makeEnum("Color");
    type->addEnumeration("red");
    type->setTypeNameMangleName(DmMangledName("", "N4Test5ColorE"));
    Internal::RuntimeTypeInfo const* const info = type->getRuntimeTypeInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->getKind(), Internal::RuntimeTypeInfo::Kind::kEnum);
    EXPECT_EQ(info->getMangledName(), "N4Test5ColorE");
}

TEST(DmEnumType, RuntimeTypeInfoIsTheSameRecordOnEveryCall) {
    auto const type = makeEnum("Shade");
    type->setTypeNameMangleName(DmMangledName("", "N4Test5ShadeE"));
    Internal::RuntimeTypeInfo const* const first = type->getRuntimeTypeInfo();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(type->getRuntimeTypeInfo(), first);
}

TEST(DmEnumType, AddEnumerationAfterTheLargestIntIsRefused) {
    auto const type = DmLibrary::createEnumType("Edge");
    ASSERT_TRUE(type->addEnumeration(String("last"), std::numeric_limits<int>::max()));
    EXPECT_FALSE(type->addEnumeration(String("next")));
    EXPECT_EQ(type->size(), 1u);
    EXPECT_FALSE(type->hasEnumeration(String("next")));
}
