#include <KestoDM/foundation/LinkedHashMap.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using Kesto::LinkedHashMap;
using Kesto::StringCompare;
using Kesto::StringHasher;

namespace {

using Map = LinkedHashMap<std::string, int, StringHasher, StringCompare>;

template <class M>
std::vector<std::string> keysOf(M const& map) {
    std::vector<std::string> keys;
    for (auto const& entry : map)
        keys.push_back(entry.first);
    return keys;
}

using Keys = std::vector<std::string>;

} // namespace

TEST(StringHasher, EmptyStringGivesTheOffsetBasis) {
    EXPECT_EQ(StringHasher()(std::string()), std::size_t(0xcbf29ce484222325ull));
}

TEST(StringHasher, MatchesKnownFnv1aVectors) {
    StringHasher const hash;
    EXPECT_EQ(hash(std::string("a")), std::size_t(0xaf63dc4c8601ec8cull));
    EXPECT_EQ(hash(std::string("foobar")), std::size_t(0x85944171f73967e8ull));
}

TEST(StringHasher, StringViewAndCStringHashLikeString) {
    StringHasher const hash;
    std::string const text("node12");
    EXPECT_EQ(hash(std::string_view(text)), hash(text));
    EXPECT_EQ(hash("node12"), hash(text));
}

TEST(StringHasher, HashesEveryByteIncludingEmbeddedNul) {
    StringHasher const hash;
    EXPECT_NE(hash(std::string("a\0b", 3)), hash(std::string("a")));
}

TEST(StringCompare, IsByteWiseAndCaseSensitive) {
    StringCompare const equal;
    EXPECT_TRUE(equal(std::string("Node"), std::string("Node")));
    EXPECT_FALSE(equal(std::string("Node"), std::string("node")));
    EXPECT_FALSE(equal(std::string("a"), std::string("a\0", 2)));
    EXPECT_TRUE(equal(std::string("x"), std::string_view("x")));
}

TEST(LinkedHashMap, StartsEmpty) {
    Map const map;
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.size(), 0u);
    EXPECT_EQ(map.begin(), map.end());
}

TEST(LinkedHashMap, IteratesInInsertionOrder) {
    Map map;
    for (auto const* key : {"zeta", "alpha", "mu", "beta", "omega"})
        map.insert(key, 0);
    EXPECT_EQ(keysOf(map), (Keys{"zeta", "alpha", "mu", "beta", "omega"}));
}

TEST(LinkedHashMap, InsertReturnsIteratorToNewEntry) {
    Map map;
    auto const [it, inserted] = map.insert({"a", 1});
    EXPECT_TRUE(inserted);
    EXPECT_EQ(it->first, "a");
    EXPECT_EQ(it->second, 1);
    EXPECT_EQ(map.size(), 1u);
}

TEST(LinkedHashMap, InsertOfPresentKeyChangesNeitherValueNorOrder) {
    Map map{{"a", 1}, {"b", 2}, {"c", 3}};
    auto const [it, inserted] = map.insert("a", 99);
    EXPECT_FALSE(inserted);
    EXPECT_EQ(it, map.find("a"));
    EXPECT_EQ(map.at("a"), 1);
    EXPECT_EQ(keysOf(map), (Keys{"a", "b", "c"}));
    EXPECT_EQ(map.size(), 3u);
}

TEST(LinkedHashMap, FindReturnsEndWhenAbsent) {
    Map map{{"a", 1}};
    EXPECT_EQ(map.find("b"), map.end());
    Map const& constMap = map;
    EXPECT_EQ(constMap.find("b"), constMap.end());
}

TEST(LinkedHashMap, FindLocatesEntry) {
    Map map{{"a", 1}, {"b", 2}};
    auto const it = map.find(std::string("b"));
    ASSERT_NE(it, map.end());
    EXPECT_EQ(it->second, 2);
}

TEST(LinkedHashMap, FindAcceptsStringView) {
    Map map{{"abc", 1}};
    std::string const text("xabcx");
    auto const it = map.find(std::string_view(text).substr(1, 3));
    ASSERT_NE(it, map.end());
    EXPECT_EQ(it->second, 1);
    EXPECT_TRUE(map.contains(std::string_view("abc")));
}

TEST(LinkedHashMap, CountAndContainsTellPresence) {
    Map map{{"a", 1}};
    EXPECT_EQ(map.count("a"), 1u);
    EXPECT_EQ(map.count("b"), 0u);
    EXPECT_TRUE(map.contains("a"));
    EXPECT_FALSE(map.contains("b"));
}

TEST(LinkedHashMap, AtOnMissingKeyThrows) {
    Map map{{"a", 1}};
    try {
        map.at("missing");
        FAIL() << "at did not throw";
    } catch (char const* message) {
        EXPECT_STREQ(message, "invalid LinkedHashMap key");
    }
}

TEST(LinkedHashMap, ConstAtOnMissingKeyThrows) {
    Map const map{{"a", 1}};
    try {
        map.at("missing");
        FAIL() << "at did not throw";
    } catch (char const* message) {
        EXPECT_STREQ(message, "invalid LinkedHashMap key");
    }
}

TEST(LinkedHashMap, AtGivesModifiableValue) {
    Map map{{"a", 1}};
    map.at("a") = 5;
    EXPECT_EQ(map.at("a"), 5);
    Map const& constMap = map;
    EXPECT_EQ(constMap.at("a"), 5);
}

TEST(LinkedHashMap, ValueIsModifiableThroughIterator) {
    Map map{{"a", 1}, {"b", 2}};
    for (auto& entry : map)
        entry.second *= 10;
    EXPECT_EQ(map.at("a"), 10);
    EXPECT_EQ(map.at("b"), 20);
    map.find("a")->second = 7;
    EXPECT_EQ(map.at("a"), 7);
}

TEST(LinkedHashMap, IteratorDereferencesToPairWithConstKey) {
    static_assert(
        std::is_same_v<decltype(*std::declval<Map::iterator>()), std::pair<std::string const, int>&>);
    static_assert(std::is_same_v<decltype(*std::declval<Map::const_iterator>()),
                                 std::pair<std::string const, int> const&>);
    Map map{{"a", 1}};
    Map::const_iterator const converted = map.begin();
    EXPECT_EQ(converted, map.cbegin());
}

TEST(LinkedHashMap, SubscriptAppendsDefaultValueForNewKey) {
    Map map{{"a", 1}};
    int& value = map["b"];
    EXPECT_EQ(value, 0);
    value = 4;
    EXPECT_EQ(keysOf(map), (Keys{"a", "b"}));
    EXPECT_EQ(map.at("b"), 4);
}

TEST(LinkedHashMap, SubscriptOfPresentKeyKeepsOrder) {
    Map map{{"a", 1}, {"b", 2}};
    map["a"] = 3;
    EXPECT_EQ(keysOf(map), (Keys{"a", "b"}));
    EXPECT_EQ(map.at("a"), 3);
    EXPECT_EQ(map.size(), 2u);
}

TEST(LinkedHashMap, EraseByKeyReturnsCount) {
    Map map{{"a", 1}, {"b", 2}};
    EXPECT_EQ(map.erase("a"), 1u);
    EXPECT_EQ(map.erase("a"), 0u);
    EXPECT_EQ(map.size(), 1u);
}

TEST(LinkedHashMap, EraseKeepsOrderOfTheRest) {
    Map map{{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}};
    map.erase("b");
    EXPECT_EQ(keysOf(map), (Keys{"a", "c", "d"}));
    map.insert("b", 5);
    EXPECT_EQ(keysOf(map), (Keys{"a", "c", "d", "b"}));
}

TEST(LinkedHashMap, EraseByIteratorReturnsNext) {
    Map map{{"a", 1}, {"b", 2}, {"c", 3}};
    auto const next = map.erase(map.find("b"));
    ASSERT_NE(next, map.end());
    EXPECT_EQ(next->first, "c");
    EXPECT_EQ(map.erase(map.find("c")), map.end());
    EXPECT_EQ(keysOf(map), (Keys{"a"}));
}

TEST(LinkedHashMap, ClearEmptiesTheMap) {
    Map map{{"a", 1}, {"b", 2}};
    map.clear();
    EXPECT_TRUE(map.empty());
    EXPECT_FALSE(map.contains("a"));
}

TEST(LinkedHashMap, RelocateMovesEntryBeforePosition) {
    Map map{{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}};
    map.relocate(map.find("b"), map.find("d"));
    EXPECT_EQ(keysOf(map), (Keys{"a", "d", "b", "c"}));
    map.relocate(map.begin(), map.find("c"));
    EXPECT_EQ(keysOf(map), (Keys{"c", "a", "d", "b"}));
}

TEST(LinkedHashMap, RelocateToEndMovesEntryLast) {
    Map map{{"a", 1}, {"b", 2}, {"c", 3}};
    map.relocate(map.end(), map.find("a"));
    EXPECT_EQ(keysOf(map), (Keys{"b", "c", "a"}));
    EXPECT_EQ(map.at("a"), 1);
}

TEST(LinkedHashMap, RekeyRenamesInPlace) {
    Map map{{"a", 1}, {"b", 2}, {"c", 3}};
    auto const it = map.find("b");
    EXPECT_TRUE(map.rekey(it, "x"));
    EXPECT_EQ(keysOf(map), (Keys{"a", "x", "c"}));
    EXPECT_FALSE(map.contains("b"));
    EXPECT_EQ(map.at("x"), 2);
    // The iterator still designates the renamed entry.
    EXPECT_EQ(it, map.find("x"));
    EXPECT_EQ(it->first, "x");
}

TEST(LinkedHashMap, RekeyToKeyOfAnotherEntryFails) {
    Map map{{"a", 1}, {"b", 2}};
    EXPECT_FALSE(map.rekey(map.find("b"), "a"));
    EXPECT_EQ(keysOf(map), (Keys{"a", "b"}));
    EXPECT_EQ(map.at("a"), 1);
    EXPECT_EQ(map.at("b"), 2);
}

TEST(LinkedHashMap, RekeyToOwnKeySucceeds) {
    Map map{{"a", 1}};
    EXPECT_TRUE(map.rekey(map.begin(), "a"));
    EXPECT_EQ(map.at("a"), 1);
}

TEST(LinkedHashMap, RekeyKeepsMoveOnlyValue) {
    LinkedHashMap<std::string, std::unique_ptr<int>, StringHasher, StringCompare> map;
    map.insert("a", std::make_unique<int>(7));
    EXPECT_TRUE(map.rekey(map.begin(), "b"));
    ASSERT_TRUE(map.at("b"));
    EXPECT_EQ(*map.at("b"), 7);
}

TEST(LinkedHashMap, ReserveAndLoadFactorKeepContents) {
    Map map{{"a", 1}, {"b", 2}};
    map.max_load_factor(0.5f);
    EXPECT_FLOAT_EQ(map.max_load_factor(), 0.5f);
    map.reserve(1000);
    EXPECT_EQ(keysOf(map), (Keys{"a", "b"}));
    EXPECT_EQ(map.at("b"), 2);
}

TEST(LinkedHashMap, LoadFactorsAboveAndBelowOneHalfFindEveryEntry) {
    for (float const factor : {0.1f, 0.9f, 4.0f}) {
        Map map;
        map.max_load_factor(factor);
        for (int i = 0; i < 300; ++i)
            map.insert("k" + std::to_string(i), i);
        EXPECT_FLOAT_EQ(map.max_load_factor(), factor);
        for (int i = 0; i < 300; ++i)
            ASSERT_EQ(map.at("k" + std::to_string(i)), i) << factor;
        EXPECT_FALSE(map.contains("k300")) << factor;
        for (int i = 0; i < 300; i += 2)
            ASSERT_EQ(map.erase("k" + std::to_string(i)), 1u) << factor;
        for (int i = 1; i < 300; i += 2)
            ASSERT_EQ(map.at("k" + std::to_string(i)), i) << factor;
    }
}

TEST(LinkedHashMap, ManyEntriesKeepOrderAcrossRehash) {
    Map map;
    Keys expected;
    for (int i = 0; i < 2000; ++i) {
        expected.push_back("k" + std::to_string((i * 7919) % 2000));
        map.insert(expected.back(), i);
    }
    EXPECT_EQ(keysOf(map), expected);
}

TEST(LinkedHashMap, CopyKeepsOrderAndIsIndependent) {
    Map original{{"b", 1}, {"a", 2}};
    Map copy(original);
    copy["c"] = 3;
    copy.at("b") = 9;
    EXPECT_EQ(keysOf(copy), (Keys{"b", "a", "c"}));
    EXPECT_EQ(keysOf(original), (Keys{"b", "a"}));
    EXPECT_EQ(original.at("b"), 1);
}

TEST(LinkedHashMap, WorksWithDefaultHashAndNonStringKeys) {
    LinkedHashMap<int, std::string> map;
    map.insert(3, "three");
    map.insert(1, "one");
    map[2] = "two";
    std::vector<int> keys;
    for (auto const& [key, value] : map)
        keys.push_back(key);
    EXPECT_EQ(keys, (std::vector<int>{3, 1, 2}));
    EXPECT_EQ(map.at(1), "one");
}

TEST(LinkedHashMap, EmptyMapHasEqualBeginAndEndAndFindsNothing) {
    Map map;
    Map const& constMap = map;
    EXPECT_TRUE(map.begin() == map.end());
    EXPECT_TRUE(constMap.begin() == constMap.end());
    EXPECT_TRUE(map.find("a") == map.end());
    EXPECT_TRUE(constMap.find("a") == constMap.end());
    EXPECT_EQ(map.erase("a"), 0u);
    EXPECT_EQ(map.count("a"), 0u);
    EXPECT_FLOAT_EQ(map.max_load_factor(), 1.0f);
}

TEST(LinkedHashMap, ClearedMapTakesNewEntries) {
    Map map{{"a", 1}, {"b", 2}};
    map.clear();
    EXPECT_TRUE(map.begin() == map.end());
    map.insert("b", 3);
    EXPECT_EQ(keysOf(map), (Keys{"b"}));
    EXPECT_EQ(map.at("b"), 3);
}

TEST(LinkedHashMap, CopyOfEmptyMapIsEmptyAndIndependent) {
    Map original;
    Map copy(original);
    copy.insert("a", 1);
    EXPECT_TRUE(original.empty());
    EXPECT_EQ(copy.size(), 1u);
}

TEST(LinkedHashMap, MovedFromMapIsEmpty) {
    Map source{{"a", 1}};
    Map target(std::move(source));
    EXPECT_EQ(keysOf(target), (Keys{"a"}));
    EXPECT_TRUE(source.empty()); // NOLINT(bugprone-use-after-move): a moved map is empty
    EXPECT_TRUE(source.begin() == source.end());
}

// Small maps are searched along their list; from nine entries on, buckets
// index them. Every operation must give the same answers on both sides.
TEST(LinkedHashMap, LookupsEraseAndRekeyWorkAcrossTheGrowthToBuckets) {
    for (int size = 1; size <= 40; ++size) {
        Map map;
        for (int i = 0; i < size; ++i)
            map.insert("k" + std::to_string(i), i);
        for (int i = 0; i < size; ++i)
            ASSERT_EQ(map.at("k" + std::to_string(i)), i) << size;
        EXPECT_FALSE(map.contains("k" + std::to_string(size)));
        ASSERT_TRUE(map.rekey(map.find("k0"), "renamed"));
        EXPECT_FALSE(map.contains("k0"));
        EXPECT_EQ(map.at("renamed"), 0);
        EXPECT_EQ(map.begin()->first, "renamed");
        EXPECT_EQ(map.erase("renamed"), 1u);
        EXPECT_EQ(map.size(), static_cast<std::size_t>(size - 1));
        for (int i = 1; i < size; ++i)
            ASSERT_EQ(map.at("k" + std::to_string(i)), i) << size;
    }
}

TEST(LinkedHashMap, ReferencesStayValidWhileTheMapGrows) {
    Map map;
    int& first = map["first"];
    first = 5;
    for (int i = 0; i < 1000; ++i)
        map.insert("k" + std::to_string(i), i);
    EXPECT_EQ(&map.at("first"), &first);
    EXPECT_EQ(first, 5);
}

TEST(LinkedHashMap, IteratesBackwardsFromEnd) {
    Map map{{"a", 1}, {"b", 2}, {"c", 3}};
    Keys backwards;
    for (auto it = map.end(); it != map.begin();) {
        --it;
        backwards.push_back(it->first);
    }
    EXPECT_EQ(backwards, (Keys{"c", "b", "a"}));
}

TEST(LinkedHashMap, RelocateWithinABucketedMapKeepsLookups) {
    Map map;
    for (int i = 0; i < 20; ++i)
        map.insert("k" + std::to_string(i), i);
    map.relocate(map.begin(), map.find("k19"));
    EXPECT_EQ(map.begin()->first, "k19");
    EXPECT_EQ(map.at("k19"), 19);
    EXPECT_EQ(map.size(), 20u);
}

TEST(LinkedHashMap, PointerKeysSpreadOverBuckets) {
    std::vector<std::unique_ptr<int>> owners;
    LinkedHashMap<int const*, int> map;
    for (int i = 0; i < 5000; ++i) {
        owners.push_back(std::make_unique<int>(i));
        map.insert(owners.back().get(), i);
    }
    for (int i = 0; i < 5000; ++i)
        ASSERT_EQ(map.at(owners[static_cast<std::size_t>(i)].get()), i);
}

namespace {

/// Sends every key to one of three hashes: long runs of colliding keys that
/// wrap around the end of the index, so that erasing and re-keying must move
/// later keys of a run back into the hole.
struct ThreeHashes {
    std::size_t operator()(std::string_view key) const noexcept { return key.size() % 3; }
};
using CollidingMap = LinkedHashMap<std::string, int, ThreeHashes, StringCompare>;

} // namespace

TEST(LinkedHashMap, CollidingKeysSurviveRandomInsertsErasesAndRekeys) {
    std::mt19937 random(11);
    CollidingMap map;
    std::vector<std::pair<std::string, int>> expected;
    auto const keyOf = [](unsigned n) { return std::string(n % 13, 'k') + std::to_string(n); };
    auto const position = [&expected](std::string const& key) {
        return std::find_if(expected.begin(), expected.end(),
                            [&key](auto const& entry) { return entry.first == key; });
    };
    for (int step = 0; step < 4000; ++step) {
        std::string const key = keyOf(static_cast<unsigned>(random() % 250));
        auto const found = position(key);
        switch (random() % 4) {
        case 0:
            ASSERT_EQ(map.erase(key), found != expected.end() ? 1u : 0u) << step;
            if (found != expected.end()) {
                expected.erase(found);
            }
            break;
        case 1: {
            // A present key takes a name not yet in the map, in place.
            std::string const renamed = keyOf(static_cast<unsigned>(250 + random() % 250));
            if (found == expected.end() || position(renamed) != expected.end()) {
                break;
            }
            ASSERT_TRUE(map.rekey(map.find(key), renamed)) << step;
            found->first = renamed;
            break;
        }
        default:
            ASSERT_EQ(map.insert(key, step).second, found == expected.end()) << step;
            if (found == expected.end()) {
                expected.emplace_back(key, step);
            }
            break;
        }
        ASSERT_EQ(map.size(), expected.size()) << step;
        if (step % 89 == 0) {
            std::vector<std::pair<std::string, int>> held;
            for (auto const& entry : map) {
                held.emplace_back(entry.first, entry.second);
            }
            ASSERT_EQ(held, expected) << step;
            for (auto const& entry : expected) {
                ASSERT_TRUE(map.contains(entry.first)) << step;
                ASSERT_EQ(map.at(entry.first), entry.second) << step;
            }
        }
    }
}
