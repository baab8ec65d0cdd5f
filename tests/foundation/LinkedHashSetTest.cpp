#include <KestoDM/foundation/LinkedHashSet.h>

#include <KestoDM/foundation/LinkedHashMap.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include <string>
#include <string_view>
#include <vector>

using Kesto::LinkedHashSet;
using Kesto::StringCompare;
using Kesto::StringHasher;

namespace {

using Set = LinkedHashSet<std::string, StringHasher, StringCompare>;
using Keys = std::vector<std::string>;

Keys keysOf(Set const& set) {
    return Keys(set.begin(), set.end());
}

} // namespace

TEST(LinkedHashSet, StartsEmpty) {
    Set const set;
    EXPECT_TRUE(set.empty());
    EXPECT_EQ(set.size(), 0u);
    EXPECT_EQ(set.begin(), set.end());
}

TEST(LinkedHashSet, IteratesInInsertionOrder) {
    Set set;
    for (auto const* key : {"zeta", "alpha", "mu", "beta"})
        set.insert(key);
    EXPECT_EQ(keysOf(set), (Keys{"zeta", "alpha", "mu", "beta"}));
}

TEST(LinkedHashSet, InsertOfPresentKeyKeepsOrderAndReturnsFalse) {
    Set set{"a", "b", "c"};
    auto const [it, inserted] = set.insert("a");
    EXPECT_FALSE(inserted);
    EXPECT_EQ(it, set.begin());
    EXPECT_EQ(keysOf(set), (Keys{"a", "b", "c"}));
}

TEST(LinkedHashSet, InsertReturnsIteratorToNewKey) {
    Set set{"a"};
    auto const [it, inserted] = set.insert("b");
    EXPECT_TRUE(inserted);
    EXPECT_EQ(*it, "b");
}

TEST(LinkedHashSet, FindReturnsEndWhenAbsent) {
    Set set{"a"};
    EXPECT_EQ(set.find("b"), set.end());
    ASSERT_NE(set.find("a"), set.end());
    EXPECT_EQ(*set.find("a"), "a");
}

TEST(LinkedHashSet, FindAcceptsStringView) {
    Set set{"abc"};
    EXPECT_NE(set.find(std::string_view("abc")), set.end());
    EXPECT_TRUE(set.contains(std::string_view("abc")));
}

TEST(LinkedHashSet, CountAndContainsTellPresence) {
    Set set{"a"};
    EXPECT_EQ(set.count("a"), 1u);
    EXPECT_EQ(set.count("b"), 0u);
    EXPECT_TRUE(set.contains("a"));
    EXPECT_FALSE(set.contains("b"));
}

TEST(LinkedHashSet, EraseByKeyReturnsCount) {
    Set set{"a", "b"};
    EXPECT_EQ(set.erase("a"), 1u);
    EXPECT_EQ(set.erase("a"), 0u);
    EXPECT_EQ(keysOf(set), (Keys{"b"}));
}

TEST(LinkedHashSet, EraseKeepsOrderOfTheRest) {
    Set set{"a", "b", "c", "d"};
    set.erase("c");
    EXPECT_EQ(keysOf(set), (Keys{"a", "b", "d"}));
}

TEST(LinkedHashSet, EraseByIteratorReturnsNext) {
    Set set{"a", "b", "c"};
    auto const next = set.erase(set.find("a"));
    ASSERT_NE(next, set.end());
    EXPECT_EQ(*next, "b");
    EXPECT_EQ(keysOf(set), (Keys{"b", "c"}));
}

TEST(LinkedHashSet, ClearEmptiesTheSet) {
    Set set{"a", "b"};
    set.clear();
    EXPECT_TRUE(set.empty());
    EXPECT_FALSE(set.contains("a"));
}

TEST(LinkedHashSet, RelocateMovesKeyBeforePosition) {
    Set set{"a", "b", "c", "d"};
    set.relocate(set.find("a"), set.find("c"));
    EXPECT_EQ(keysOf(set), (Keys{"c", "a", "b", "d"}));
    set.relocate(set.end(), set.find("c"));
    EXPECT_EQ(keysOf(set), (Keys{"a", "b", "d", "c"}));
}

TEST(LinkedHashSet, ReserveKeepsContents) {
    Set set{"b", "a"};
    set.reserve(1000);
    EXPECT_EQ(keysOf(set), (Keys{"b", "a"}));
    EXPECT_TRUE(set.contains("a"));
}

TEST(LinkedHashSet, WorksWithDefaultHash) {
    LinkedHashSet<int> set{5, 3, 9, 3};
    EXPECT_EQ(std::vector<int>(set.begin(), set.end()), (std::vector<int>{5, 3, 9}));
}

TEST(LinkedHashSet, EmptySetHasEqualBeginAndEndAndErasesNothing) {
    LinkedHashSet<int> set;
    EXPECT_TRUE(set.begin() == set.end());
    EXPECT_TRUE(set.find(1) == set.end());
    EXPECT_EQ(set.erase(1), 0u);
    EXPECT_FALSE(set.contains(1));
}

TEST(LinkedHashSet, LookupsAndEraseWorkAcrossTheGrowthToBuckets) {
    for (int size = 1; size <= 40; ++size) {
        LinkedHashSet<int> set;
        for (int i = 0; i < size; ++i)
            set.insert(i * 16);
        for (int i = 0; i < size; ++i)
            ASSERT_TRUE(set.contains(i * 16)) << size;
        EXPECT_FALSE(set.contains(size * 16));
        EXPECT_EQ(set.erase(0), 1u);
        EXPECT_EQ(set.size(), static_cast<std::size_t>(size - 1));
        for (int i = 1; i < size; ++i)
            ASSERT_TRUE(set.contains(i * 16)) << size;
    }
}

TEST(LinkedHashSet, CopyIsIndependent) {
    LinkedHashSet<int> original{1, 2};
    LinkedHashSet<int> copy(original);
    copy.insert(3);
    copy.erase(1);
    EXPECT_EQ(std::vector<int>(original.begin(), original.end()), (std::vector<int>{1, 2}));
    EXPECT_EQ(std::vector<int>(copy.begin(), copy.end()), (std::vector<int>{2, 3}));
}

namespace {

/// A hash that sends every key to one of three values: long runs of
/// colliding keys, which wrap around the end of the index.
struct CollidingHash {
    std::size_t operator()(int key) const noexcept { return static_cast<std::size_t>(key % 3); }
    std::size_t operator()(std::string const& key) const noexcept { return key.size() % 3; }
};

/// Applies random inserts and erases to `set` and to a vector in insertion
/// order; after each step both hold the same keys in the same order and
/// every key is found.
template <class SetType, class MakeKey>
void checkAgainstAVector(SetType& set, MakeKey makeKey) {
    std::mt19937 random(7);
    std::vector<decltype(makeKey(0))> expected;
    for (int step = 0; step < 4000; ++step) {
        auto const key = makeKey(static_cast<int>(random() % 300));
        auto const found = std::find(expected.begin(), expected.end(), key);
        if (random() % 3 == 0) {
            ASSERT_EQ(set.erase(key), found != expected.end() ? 1u : 0u) << step;
            if (found != expected.end()) {
                expected.erase(found);
            }
        } else {
            ASSERT_EQ(set.insert(key).second, found == expected.end()) << step;
            if (found == expected.end()) {
                expected.push_back(key);
            }
        }
        ASSERT_EQ(set.size(), expected.size()) << step;
        if (step % 97 == 0) {
            ASSERT_TRUE(std::equal(set.begin(), set.end(), expected.begin(), expected.end())) << step;
            for (auto const& present : expected) {
                ASSERT_TRUE(set.contains(present)) << step;
            }
        }
    }
}

} // namespace

TEST(LinkedHashSet, ScalarKeysWithCollidingHashesSurviveRandomInsertsAndErases) {
    LinkedHashSet<int, CollidingHash> set;
    checkAgainstAVector(set, [](int i) { return i; });
}

TEST(LinkedHashSet, StoredHashesWithCollisionsSurviveRandomInsertsAndErases) {
    LinkedHashSet<std::string, CollidingHash> set;
    checkAgainstAVector(
        set, [](int i) { return std::string(static_cast<std::size_t>(i % 17), 'x') + std::to_string(i); });
}

TEST(LinkedHashSet, PointerKeysSurviveRandomInsertsAndErases) {
    static int cells[300];
    LinkedHashSet<int const*> set;
    checkAgainstAVector(set, [](int i) { return static_cast<int const*>(&cells[i]); });
}
