#include <KestoDM/foundation/DmNamedEntity.h>

#include "TestEntities.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using Kesto::DmNamedEntity;
using KestoTest::ScopedTestEntity;
using KestoTest::TestEntity;

TEST(DmNamedEntity, KeepsItsName) {
    TestEntity const entity("node");
    EXPECT_EQ(entity.getName(), "node");
}

TEST(DmNamedEntity, IsValidOnlyWithAName) {
    EXPECT_TRUE(TestEntity("a").isValid());
    EXPECT_FALSE(TestEntity("").isValid());
}

TEST(DmNamedEntity, EachEntityHasItsOwnRuntimeUID) {
    TestEntity const a("a");
    TestEntity const b("b");
    EXPECT_NE(a.getRuntimeUID(), b.getRuntimeUID());
    EXPECT_NE(a.getRuntimeUID(), DmNamedEntity::kInvalidRuntimeUID);
}

TEST(DmNamedEntity, FindsALiveEntityByRuntimeUID) {
    auto const entity = TestEntity::make("a");
    auto const found = DmNamedEntity::findByRuntimeUID(entity->getRuntimeUID());
    EXPECT_EQ(found.get(), entity.get());
    EXPECT_EQ(found.use_count(), 2);
}

TEST(DmNamedEntity, FindByRuntimeUIDOfADestroyedEntityIsEmpty) {
    auto entity = TestEntity::make("a");
    DmNamedEntity::RuntimeUID const uid = entity->getRuntimeUID();
    entity.reset();
    EXPECT_EQ(DmNamedEntity::findByRuntimeUID(uid), nullptr);
}

TEST(DmNamedEntity, FindByInvalidRuntimeUIDIsEmpty) {
    EXPECT_EQ(DmNamedEntity::findByRuntimeUID(DmNamedEntity::kInvalidRuntimeUID), nullptr);
}

TEST(DmNamedEntity, FindByRuntimeUIDOfAnEntityNotOwnedBySharedPointerThrows) {
    TestEntity const onStack("a");
    EXPECT_THROW(DmNamedEntity::findByRuntimeUID(onStack.getRuntimeUID()), std::bad_weak_ptr);
}

TEST(DmNamedEntity, CopyHasANewRuntimeUIDAndTheSameName) {
    TestEntity const source("a");
    TestEntity const copy(source);
    EXPECT_NE(copy.getRuntimeUID(), source.getRuntimeUID());
    EXPECT_NE(copy.getRuntimeUID(), DmNamedEntity::kInvalidRuntimeUID);
    EXPECT_EQ(copy.getName(), "a");
}

TEST(DmNamedEntity, CopySharesMetadataAndIsNotConst) {
    TestEntity source("a");
    source.makeConst();
    TestEntity const copy(source);
    EXPECT_EQ(copy.getMetadata(), source.getMetadata());
    EXPECT_FALSE(copy.isConst());
}

TEST(DmNamedEntity, MovedFromEntityHasTheInvalidRuntimeUID) {
    TestEntity source("a");
    DmNamedEntity::RuntimeUID const uid = source.getRuntimeUID();
    TestEntity const moved(std::move(source));
    EXPECT_EQ(moved.getRuntimeUID(), uid);
    EXPECT_EQ(source.getRuntimeUID(), DmNamedEntity::kInvalidRuntimeUID); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(moved.getName(), "a");
}

TEST(DmNamedEntity, FindByMovedRuntimeUIDFindsTheNewObject) {
    auto source = std::make_unique<TestEntity>("a");
    DmNamedEntity::RuntimeUID const uid = source->getRuntimeUID();
    auto const moved = std::make_shared<TestEntity>(std::move(*source));
    source.reset(); // destroying the moved-from object leaves the table alone
    auto const found = DmNamedEntity::findByRuntimeUID(uid);
    EXPECT_EQ(found.get(), moved.get());
}

TEST(DmNamedEntity, NewObjectsAreNotInUpdate) {
    TestEntity source("a");
    source.setInUpdate(true);
    TestEntity const copy(source);
    EXPECT_FALSE(copy.isInUpdate());
    TestEntity const moved(std::move(source));
    EXPECT_FALSE(moved.isInUpdate());
}

TEST(DmNamedEntity, UpdateHelperSetsAndClearsTheFlag) {
    TestEntity entity("a");
    {
        DmNamedEntity::UpdateHelper const helper(entity);
        EXPECT_TRUE(entity.isInUpdate());
    }
    EXPECT_FALSE(entity.isInUpdate());
}

TEST(DmNamedEntity, UpdateHelpersDoNotNest) {
    TestEntity entity("a");
    auto outer = std::make_unique<DmNamedEntity::UpdateHelper>(entity);
    { DmNamedEntity::UpdateHelper const inner(entity); }
    EXPECT_FALSE(entity.isInUpdate());
    outer.reset();
    EXPECT_FALSE(entity.isInUpdate());
}

TEST(DmNamedEntity, SetNameVerbatimTakesAnyNonEmptyName) {
    TestEntity entity("a");
    EXPECT_TRUE(entity.setName("1 not legal!", Kesto::kFailOnClash, Kesto::kNameVerbatim));
    EXPECT_EQ(entity.getName(), "1 not legal!");
}

TEST(DmNamedEntity, SetNameOnAConstEntityIsRefused) {
    TestEntity entity("a");
    entity.makeConst();
    EXPECT_FALSE(entity.setName("b", Kesto::kFailOnClash, Kesto::kNameVerbatim));
    EXPECT_EQ(entity.getName(), "a");
}

TEST(DmNamedEntity, SetNameRefusesTheEmptyNameWithEveryFlag) {
    TestEntity entity("a");
    for (auto flags : {Kesto::kNameVerbatim, Kesto::kNameLegalize, Kesto::kNameMustBeLegal}) {
        EXPECT_FALSE(entity.setName("", Kesto::kFailOnClash, flags));
        EXPECT_EQ(entity.getName(), "a");
    }
}

TEST(DmNamedEntity, SetNameMustBeLegalRefusesANameThatLegalizingWouldChange) {
    TestEntity entity("a");
    EXPECT_FALSE(entity.setName("my node", Kesto::kFailOnClash, Kesto::kNameMustBeLegal));
    EXPECT_EQ(entity.getName(), "a");
    EXPECT_TRUE(entity.setName("my_node", Kesto::kFailOnClash, Kesto::kNameMustBeLegal));
    EXPECT_EQ(entity.getName(), "my_node");
}

TEST(DmNamedEntity, SetNameLegalizeStoresTheLegalForm) {
    TestEntity entity("a");
    EXPECT_TRUE(entity.setName("my node", Kesto::kFailOnClash, Kesto::kNameLegalize));
    EXPECT_EQ(entity.getName(), "my_node");
}

TEST(DmNamedEntity, SetNameLegalizeRefusesANameWithoutLegalForm) {
    TestEntity entity("a");
    EXPECT_FALSE(entity.setName("!!!", Kesto::kFailOnClash, Kesto::kNameLegalize));
    EXPECT_EQ(entity.getName(), "a");
}

TEST(DmNamedEntity, ResolveNameLeavesOutputUntouchedOnRefusal) {
    std::string out = "kept";
    EXPECT_FALSE(TestEntity::resolveName("", out, Kesto::kNameVerbatim));
    EXPECT_EQ(out, "kept");
    EXPECT_FALSE(TestEntity::resolveName("a b", out, Kesto::kNameMustBeLegal));
    EXPECT_EQ(out, "kept");
    EXPECT_TRUE(TestEntity::resolveName("a b", out, Kesto::kNameLegalize));
    EXPECT_EQ(out, "a_b");
}

TEST(DmNamedEntity, ResolveFullNameAppendsToANonEmptyString) {
    TestEntity const entity("node");
    std::string out = "prefix/";
    entity.resolveFullName(out);
    EXPECT_EQ(out, "prefix/node");
}

TEST(DmNamedEntity, SubclassesPutTheirScopeInFrontOfTheFullName) {
    ScopedTestEntity const entity("ns", "node");
    std::string out;
    entity.resolveFullName(out);
    EXPECT_EQ(out, "ns::node");
}

TEST(DmNamedEntity, EqualityComparesNamesOnly) {
    TestEntity const a("same");
    ScopedTestEntity const b("elsewhere", "same");
    TestEntity const c("other");
    TestEntity const d("samE");
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a != b);
    EXPECT_TRUE(a != c);
    EXPECT_TRUE(a != d);
}
