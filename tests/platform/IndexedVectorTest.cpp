#include <KestoDM/platform/BaIndexedVector.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

using Kesto::BaIndexedVector;

namespace {

// Equal by key only, so that duplicates can be told apart by tag.
struct Keyed {
    int key;
    int tag;
    bool operator<(Keyed const& other) const { return key < other.key; }
    bool operator==(Keyed const& other) const { return key == other.key; }
};

} // namespace

TEST(BaIndexedVector, StartsEmpty) {
    BaIndexedVector<int> const values;
    EXPECT_TRUE(values.empty());
    EXPECT_EQ(values.size(), 0u);
    EXPECT_FALSE(values.find(1).has_value());
    EXPECT_EQ(values.count(1), 0u);
}

TEST(BaIndexedVector, KeepsOrderOfAddition) {
    BaIndexedVector<std::string> values;
    for (char const* text : {"pear", "apple", "fig", "banana"}) {
        values.push_back(text);
    }
    EXPECT_EQ(std::vector<std::string>(values.begin(), values.end()),
              (std::vector<std::string>{"pear", "apple", "fig", "banana"}));
    EXPECT_EQ(values[1], "apple");
    EXPECT_EQ(values.at(3), "banana");
}

TEST(BaIndexedVector, FindsPositionInOrderOfAddition) {
    BaIndexedVector<int> values;
    for (int v : {50, 10, 40, 20, 30}) {
        values.push_back(v);
    }
    EXPECT_EQ(values.find(50), 0u);
    EXPECT_EQ(values.find(10), 1u);
    EXPECT_EQ(values.find(30), 4u);
    EXPECT_FALSE(values.find(35).has_value());
    EXPECT_TRUE(values.contains(40));
    EXPECT_FALSE(values.contains(0));
}

TEST(BaIndexedVector, KeepsDuplicates) {
    BaIndexedVector<int> values;
    for (int v : {3, 1, 3, 2, 3}) {
        values.push_back(v);
    }
    EXPECT_EQ(values.size(), 5u);
    EXPECT_EQ(values.count(3), 3u);
    EXPECT_EQ(values.count(1), 1u);
    EXPECT_EQ(values.count(9), 0u);
}

TEST(BaIndexedVector, FindReturnsFirstAddedOfEqualValues) {
    BaIndexedVector<Keyed> values;
    values.push_back({5, 0});
    values.push_back({2, 1});
    values.push_back({5, 2});
    values.push_back({1, 3});
    values.push_back({5, 4});
    auto const found = values.find({5, -1});
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(*found, 0u);
    EXPECT_EQ(values[*found].tag, 0);
    EXPECT_EQ(values.count({5, -1}), 3u);
}

TEST(BaIndexedVector, AtThrowsOutsideRange) {
    BaIndexedVector<int> values;
    values.push_back(1);
    EXPECT_THROW(static_cast<void>(values.at(1)), std::out_of_range);
}

TEST(BaIndexedVector, ClearForgetsValuesAndIndex) {
    BaIndexedVector<int> values;
    values.push_back(4);
    values.push_back(2);
    values.clear();
    EXPECT_TRUE(values.empty());
    EXPECT_FALSE(values.contains(4));
    values.push_back(7);
    EXPECT_EQ(values.find(7), 0u);
}
