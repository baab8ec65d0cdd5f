#include <KestoDM/types/ExternTargetSet.h>

#include <gtest/gtest.h>

#include <cstdint>

using Kesto::ExternTargetSet;

namespace {

/// The model gives the bits no meaning, so the tests use arbitrary ones.
ExternTargetSet::TargetEnvironments bits(std::uint32_t mask) {
    return static_cast<ExternTargetSet::TargetEnvironments>(mask);
}

std::uint32_t maskOf(ExternTargetSet const& set) {
    return static_cast<std::uint32_t>(set.getTargets());
}

} // namespace

// ---------------------------------------------------------------------------
// Making

TEST(ExternTargetSet, NewSetIsEmpty) {
    ExternTargetSet const set;
    EXPECT_EQ(maskOf(set), 0u);
    EXPECT_EQ(set.getTargets(), ExternTargetSet::kTargetNone);
}

TEST(ExternTargetSet, MadeFromBitsHoldsExactlyThoseBits) {
    ExternTargetSet const set(bits(0x5));
    EXPECT_EQ(maskOf(set), 0x5u);
}

TEST(ExternTargetSet, MadeFromNoBitsIsEmpty) {
    ExternTargetSet const set(ExternTargetSet::kTargetNone);
    EXPECT_EQ(maskOf(set), 0u);
}

TEST(ExternTargetSet, BitsConvertToASetImplicitly) {
    ExternTargetSet const set = bits(0x80000001u);
    EXPECT_EQ(maskOf(set), 0x80000001u);
}

TEST(ExternTargetSet, CopyHoldsTheSameBits) {
    ExternTargetSet const original(bits(0x5));
    ExternTargetSet const copy(original);
    EXPECT_EQ(maskOf(copy), 0x5u);
    EXPECT_EQ(maskOf(original), 0x5u);
}

TEST(ExternTargetSet, AssignmentReplacesTheBits) {
    ExternTargetSet set(bits(0x3));
    set = ExternTargetSet(bits(0x5));
    EXPECT_EQ(maskOf(set), 0x5u);
}

// ---------------------------------------------------------------------------
// Adding

TEST(ExternTargetSet, AddingBitsOrsThemIn) {
    ExternTargetSet set(bits(0x5));
    set.addTargets(bits(0x6));
    EXPECT_EQ(maskOf(set), 0x7u);
}

TEST(ExternTargetSet, AddingASetOrsItsBitsIn) {
    ExternTargetSet set(bits(0x5));
    set.addTargets(ExternTargetSet(bits(0x18)));
    EXPECT_EQ(maskOf(set), 0x1Du);
}

TEST(ExternTargetSet, AddingBitsAlreadySetChangesNothing) {
    ExternTargetSet set(bits(0x5));
    set.addTargets(bits(0x4));
    EXPECT_EQ(maskOf(set), 0x5u);
    set.addTargets(ExternTargetSet(bits(0x1)));
    EXPECT_EQ(maskOf(set), 0x5u);
}

TEST(ExternTargetSet, AddingNothingChangesNothing) {
    ExternTargetSet set(bits(0x5));
    set.addTargets(ExternTargetSet::kTargetNone);
    set.addTargets(ExternTargetSet());
    EXPECT_EQ(maskOf(set), 0x5u);
}

TEST(ExternTargetSet, AddingToAnEmptySetGivesTheAddedBits) {
    ExternTargetSet set;
    set.addTargets(bits(0x5));
    EXPECT_EQ(maskOf(set), 0x5u);
}

TEST(ExternTargetSet, AddingTheHighestBitKeepsIt) {
    ExternTargetSet set;
    set.addTargets(bits(0x80000000u));
    EXPECT_EQ(maskOf(set), 0x80000000u);
}

// ---------------------------------------------------------------------------
// Removing

TEST(ExternTargetSet, RemovingBitsClearsOnlyThem) {
    ExternTargetSet set(bits(0x7));
    set.removeTargets(bits(0x2));
    EXPECT_EQ(maskOf(set), 0x5u);
}

TEST(ExternTargetSet, RemovingASetClearsOnlyItsBits) {
    ExternTargetSet set(bits(0xF));
    set.removeTargets(ExternTargetSet(bits(0x5)));
    EXPECT_EQ(maskOf(set), 0xAu);
}

TEST(ExternTargetSet, RemovingABitThatIsNotSetChangesNothing) {
    ExternTargetSet set(bits(0x5));
    set.removeTargets(bits(0x2));
    EXPECT_EQ(maskOf(set), 0x5u);
    set.removeTargets(ExternTargetSet(bits(0x8)));
    EXPECT_EQ(maskOf(set), 0x5u);
}

TEST(ExternTargetSet, RemovingSetAndUnsetBitsClearsOnlyTheSetOnes) {
    ExternTargetSet set(bits(0x5));
    set.removeTargets(bits(0x6));
    EXPECT_EQ(maskOf(set), 0x1u);
}

TEST(ExternTargetSet, RemovingNothingChangesNothing) {
    ExternTargetSet set(bits(0x5));
    set.removeTargets(ExternTargetSet::kTargetNone);
    set.removeTargets(ExternTargetSet());
    EXPECT_EQ(maskOf(set), 0x5u);
}

TEST(ExternTargetSet, RemovingEveryBitEmptiesTheSet) {
    ExternTargetSet set(bits(0x5));
    set.removeTargets(bits(0xFFFFFFFFu));
    EXPECT_EQ(maskOf(set), 0u);
}

TEST(ExternTargetSet, RemovingFromAnEmptySetLeavesItEmpty) {
    ExternTargetSet set;
    set.removeTargets(bits(0x5));
    EXPECT_EQ(maskOf(set), 0u);
}

// ---------------------------------------------------------------------------
// Supporting

TEST(ExternTargetSet, SupportsBitsThatAreAllSet) {
    ExternTargetSet const set(bits(0x7));
    EXPECT_TRUE(set.supportsTargets(bits(0x5)));
    EXPECT_TRUE(set.supportsTargets(bits(0x7)));
    EXPECT_TRUE(set.supportsTargets(ExternTargetSet(bits(0x2))));
}

TEST(ExternTargetSet, DoesNotSupportBitsWhenOneIsMissing) {
    ExternTargetSet const set(bits(0x5));
    EXPECT_FALSE(set.supportsTargets(bits(0x7)));
    EXPECT_FALSE(set.supportsTargets(bits(0x2)));
    EXPECT_FALSE(set.supportsTargets(ExternTargetSet(bits(0x6))));
}

TEST(ExternTargetSet, SupportsItself) {
    ExternTargetSet const set(bits(0x5));
    EXPECT_TRUE(set.supportsTargets(set));
}

TEST(ExternTargetSet, EmptyRequestIsSupportedByAnySet) {
    ExternTargetSet const set(bits(0x5));
    EXPECT_TRUE(set.supportsTargets(ExternTargetSet()));
    EXPECT_TRUE(set.supportsTargets(ExternTargetSet::kTargetNone));
}

TEST(ExternTargetSet, EmptyRequestIsSupportedByAnEmptySet) {
    ExternTargetSet const set;
    EXPECT_TRUE(set.supportsTargets(ExternTargetSet()));
    EXPECT_TRUE(set.supportsTargets(ExternTargetSet::kTargetNone));
}

TEST(ExternTargetSet, EmptySetSupportsNoBits) {
    ExternTargetSet const set;
    EXPECT_FALSE(set.supportsTargets(bits(0x1)));
    EXPECT_FALSE(set.supportsTargets(ExternTargetSet(bits(0x5))));
}

TEST(ExternTargetSet, SupportFollowsAddingAndRemoving) {
    ExternTargetSet set;
    set.addTargets(bits(0x5));
    EXPECT_TRUE(set.supportsTargets(bits(0x4)));
    set.removeTargets(bits(0x4));
    EXPECT_FALSE(set.supportsTargets(bits(0x4)));
    EXPECT_TRUE(set.supportsTargets(bits(0x1)));
}
