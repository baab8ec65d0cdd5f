#include <KestoDM/platform/String.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

using Kesto::String;

TEST(String, IsSixteenBytesAlignedToEight) {
    EXPECT_EQ(sizeof(String), 16u);
    EXPECT_EQ(alignof(String), 8u);
}

TEST(String, DefaultIsEmptyAndOwnsNothing) {
    String const text;
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.size(), 0u);
    EXPECT_EQ(text.useCount(), 0u);
    ASSERT_NE(text.c_str(), nullptr);
    EXPECT_STREQ(text.c_str(), "");
    EXPECT_EQ(text.view(), "");
    EXPECT_EQ(text.str(), "");
}

TEST(String, EmptyTextOwnsNothing) {
    EXPECT_EQ(String("").useCount(), 0u);
    EXPECT_EQ(String(std::string()).useCount(), 0u);
    EXPECT_EQ(String(std::string_view()).useCount(), 0u);
    EXPECT_EQ(String(static_cast<char const*>(nullptr)).useCount(), 0u);
    EXPECT_TRUE(String(static_cast<char const*>(nullptr)).empty());
}

TEST(String, KeepsTheTextOfEachSource) {
    std::string const standard = "from std::string";
    EXPECT_EQ(String("from a C string").str(), "from a C string");
    EXPECT_EQ(String(std::string_view("from a view")).view(), "from a view");
    EXPECT_EQ(String(standard).str(), standard);
    EXPECT_EQ(String("abc").size(), 3u);
    EXPECT_STREQ(String("abc").c_str(), "abc");
    EXPECT_EQ(String("abc").data()[3], '\0');
}

TEST(String, CStrStopsAtAnEmbeddedZeroByte) {
    std::string const bytes("ab\0cd", 5);
    String const text(bytes);
    EXPECT_EQ(text.size(), 5u);
    EXPECT_EQ(text.view(), std::string_view(bytes));
    EXPECT_EQ(text.str(), bytes);
    EXPECT_EQ(std::strlen(text.c_str()), 2u);
    EXPECT_STREQ(text.c_str(), "ab");
    EXPECT_EQ(text.data()[5], '\0');
}

TEST(String, CopiesShareOneBuffer) {
    String const original("shared text");
    EXPECT_EQ(original.useCount(), 1u);
    {
        String const copy = original;
        String assigned;
        assigned = copy;
        EXPECT_EQ(copy.data(), original.data());
        EXPECT_EQ(assigned.data(), original.data());
        EXPECT_EQ(original.useCount(), 3u);
    }
    EXPECT_EQ(original.useCount(), 1u);
}

TEST(String, MoveLeavesTheSourceEmptyAndKeepsTheBuffer) {
    String source("moving");
    char const* const bytes = source.data();
    String const target = std::move(source);
    EXPECT_EQ(target.data(), bytes);
    EXPECT_EQ(target.useCount(), 1u);
    EXPECT_TRUE(source.empty()); // a moved-from String is empty
    EXPECT_EQ(source.useCount(), 0u);

    String other("other");
    other = String("replaced");
    EXPECT_EQ(other.str(), "replaced");
    EXPECT_EQ(other.useCount(), 1u);
}

TEST(String, SelfAssignmentKeepsTheText) {
    String text("self");
    String const& alias = text;
    text = alias;
    EXPECT_EQ(text.str(), "self");
    EXPECT_EQ(text.useCount(), 1u);
}

TEST(String, ComparesByBytes) {
    EXPECT_EQ(String("abc"), String("abc"));
    EXPECT_NE(String("abc"), String("abd"));
    EXPECT_NE(String("abc"), String("ab"));
    EXPECT_EQ(String(), String(""));
    EXPECT_EQ(String(std::string("a\0b", 3)), String(std::string("a\0b", 3)));
    EXPECT_NE(String(std::string("a\0b", 3)), String(std::string("a\0c", 3)));
}

TEST(String, OrdersByteWiseWithTheShorterFirstOnAnEqualPrefix) {
    EXPECT_TRUE(String("ab") < String("abc"));
    EXPECT_FALSE(String("abc") < String("ab"));
    EXPECT_TRUE(String("abc") < String("abd"));
    EXPECT_TRUE(String("B") < String("a"));
    EXPECT_TRUE(String() < String("a"));
    EXPECT_FALSE(String("a") < String("a"));
    // Bytes compare unsigned: 0xff sorts after 'z'.
    EXPECT_TRUE(String("z") < String("\xff"));
}

TEST(String, EqualTextsHashAlike) {
    std::hash<String> const hash;
    EXPECT_EQ(hash(String("key")), hash(String(std::string("key"))));
    EXPECT_EQ(hash(String("key")), std::hash<std::string_view>()("key"));
    std::unordered_set<String> set{String("one"), String("two"), String("one")};
    EXPECT_EQ(set.size(), 2u);
    EXPECT_EQ(set.count(String("two")), 1u);
}
