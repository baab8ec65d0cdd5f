#include <KestoDM/foundation/DmEntity.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "TestEntities.h"

#include <gtest/gtest.h>

using KestoTest::TestEntity;
using DmMetadataHolder = std::shared_ptr<Kesto::DmMetadata>;

TEST(DmEntity, StartsWithFreshEmptyMetadata) {
    TestEntity a("a");
    TestEntity b("b");
    ASSERT_NE(a.getMetadata(), nullptr);
    EXPECT_TRUE(a.getMetadata()->isEmpty());
    EXPECT_NE(a.getMetadata(), b.getMetadata());
}

TEST(DmEntity, MakesItsMetadataOnlyWhenAsked) {
    unsigned int const before = Kesto::DmInstanceCounter<Kesto::DmMetadata>::getInstanceCount();
    TestEntity entity("a");
    EXPECT_FALSE(entity.hasMetadata());
    EXPECT_EQ(Kesto::DmInstanceCounter<Kesto::DmMetadata>::getInstanceCount(), before);
    DmMetadataHolder const& asked = entity.getMetadata();
    EXPECT_EQ(Kesto::DmInstanceCounter<Kesto::DmMetadata>::getInstanceCount(), before + 1);
    EXPECT_EQ(&entity.getMetadata(), &asked);
    EXPECT_FALSE(entity.hasMetadata());
}

TEST(DmEntity, HasMetadataOnceAnItemIsAdded) {
    TestEntity entity("a");
    ASSERT_EQ(entity.getMetadata()->add(std::make_shared<Kesto::DmMetadataItem>("k", "v")),
              Kesto::DmStatus::kSuccess);
    EXPECT_TRUE(entity.hasMetadata());
}

TEST(DmEntity, MoveOfAnEntityThatNeverAskedLeavesBothWithoutItems) {
    TestEntity source("a");
    TestEntity const moved(std::move(source));
    EXPECT_FALSE(moved.hasMetadata());
    ASSERT_NE(moved.getMetadata(), nullptr);
    EXPECT_EQ(source.getMetadata(), nullptr); // NOLINT(bugprone-use-after-move): the move empties it
}

TEST(DmEntity, KeepsTheGivenCompleteness) {
    TestEntity complete("a", true);
    TestEntity incomplete("b", false);
    EXPECT_TRUE(complete.isComplete());
    EXPECT_FALSE(incomplete.isComplete());
    incomplete.setCompleteness(true);
    EXPECT_TRUE(incomplete.isComplete());
    complete.setCompleteness(false);
    EXPECT_FALSE(complete.isComplete());
}

TEST(DmEntity, MakeConstIsOneWay) {
    TestEntity entity("a");
    EXPECT_FALSE(entity.isConst());
    entity.makeConst();
    EXPECT_TRUE(entity.isConst());
    entity.makeConst();
    EXPECT_TRUE(entity.isConst());
}

TEST(DmEntity, CopySharesMetadataAndIsNotConst) {
    TestEntity source("a", false);
    source.makeConst();
    TestEntity const copy(source);
    EXPECT_EQ(copy.getMetadata(), source.getMetadata());
    EXPECT_FALSE(copy.isConst());
    EXPECT_FALSE(copy.isComplete());
}

TEST(DmEntity, MoveTakesMetadataAndIsNotConst) {
    TestEntity source("a");
    source.makeConst();
    auto const metadata = source.getMetadata();
    TestEntity const moved(std::move(source));
    EXPECT_EQ(moved.getMetadata(), metadata);
    EXPECT_EQ(source.getMetadata(), nullptr); // NOLINT(bugprone-use-after-move): the move empties it
    EXPECT_FALSE(moved.isConst());
    EXPECT_TRUE(moved.isComplete());
}

TEST(DmEntity, CountsLiveEntities) {
    unsigned int const before = Kesto::DmInstanceCounter<Kesto::DmEntity>::getInstanceCount();
    unsigned int const namedBefore = Kesto::DmInstanceCounter<Kesto::DmNamedEntity>::getInstanceCount();
    {
        TestEntity a("a");
        TestEntity const b(a);
        EXPECT_EQ(Kesto::DmInstanceCounter<Kesto::DmEntity>::getInstanceCount(), before + 2);
        EXPECT_EQ(Kesto::DmInstanceCounter<Kesto::DmNamedEntity>::getInstanceCount(), namedBefore + 2);
    }
    EXPECT_EQ(Kesto::DmInstanceCounter<Kesto::DmEntity>::getInstanceCount(), before);
    EXPECT_EQ(Kesto::DmInstanceCounter<Kesto::DmNamedEntity>::getInstanceCount(), namedBefore);
}
