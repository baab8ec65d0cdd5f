#include <KestoDM/foundation/DmNameUtils.h>

#include <KestoDM/foundation/LinkedHashMap.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Kesto {

// Opens the private helpers to the tests.
struct DmNameUtilsTestAccess {
    static std::string baseString(std::string const& s) { return DmNameUtils::baseString(s); }
    static int leading_len(char const* s) { return DmNameUtils::leading_len(s); }
    static std::int64_t trailing_num(char const* s) { return DmNameUtils::trailing_num(s); }
    static int digit(char c) { return DmNameUtils::digit(c); }
    static bool isDigit(char c) { return DmNameUtils::isDigit(c); }
    static bool isNonZeroDigit(char c) { return DmNameUtils::isNonZeroDigit(c); }
    static int istrlen(char const* s) { return DmNameUtils::istrlen(s); }
};

} // namespace Kesto

using Kesto::DmNameUtils;
using Access = Kesto::DmNameUtilsTestAccess;

namespace {

std::string newName(std::vector<std::string_view> const& names, std::string name,
                    DmNameUtils::NewNameContext const* context = nullptr) {
    DmNameUtils::getNewName(names, name, context);
    return name;
}

} // namespace

TEST(DmNameUtils, DigitGivesNumericValue) {
    EXPECT_EQ(Access::digit('0'), 0);
    EXPECT_EQ(Access::digit('7'), 7);
    EXPECT_EQ(Access::digit('9'), 9);
}

TEST(DmNameUtils, IsDigitAcceptsOnlyDecimalDigits) {
    for (char c = '0'; c <= '9'; ++c)
        EXPECT_TRUE(Access::isDigit(c)) << c;
    EXPECT_FALSE(Access::isDigit('/'));
    EXPECT_FALSE(Access::isDigit(':'));
    EXPECT_FALSE(Access::isDigit('a'));
}

TEST(DmNameUtils, IsNonZeroDigitRejectsZero) {
    EXPECT_FALSE(Access::isNonZeroDigit('0'));
    for (char c = '1'; c <= '9'; ++c)
        EXPECT_TRUE(Access::isNonZeroDigit(c)) << c;
    EXPECT_FALSE(Access::isNonZeroDigit('a'));
}

TEST(DmNameUtils, IstrlenCountsBytes) {
    EXPECT_EQ(Access::istrlen(""), 0);
    EXPECT_EQ(Access::istrlen("abc12"), 5);
}

TEST(DmNameUtils, LeadingLenOfNameWithoutNumberIsWholeLength) {
    EXPECT_EQ(Access::leading_len("abc"), 3);
    EXPECT_EQ(Access::leading_len(""), 0);
}

TEST(DmNameUtils, LeadingLenStopsBeforeTrailingNumber) {
    EXPECT_EQ(Access::leading_len("abc12"), 3);
}

TEST(DmNameUtils, LeadingLenKeepsLeadingZerosInTheBase) {
    EXPECT_EQ(Access::leading_len("abc007"), 5);
}

TEST(DmNameUtils, LeadingLenLeavesLastZeroOfAllZeroNumber) {
    EXPECT_EQ(Access::leading_len("abc0"), 3);
    EXPECT_EQ(Access::leading_len("abc000"), 5);
    EXPECT_EQ(Access::leading_len("0"), 0);
}

TEST(DmNameUtils, LeadingLenOfAllDigitsNameIsZero) {
    EXPECT_EQ(Access::leading_len("12"), 0);
}

TEST(DmNameUtils, LeadingLenOfZeroPaddedNumberCountsTheZeros) {
    EXPECT_EQ(Access::leading_len("007"), 2);
    EXPECT_EQ(Access::trailing_num("007"), 7);
}

TEST(DmNameUtils, LeadingLenOnlyLooksAtTrailingDigits) {
    EXPECT_EQ(Access::leading_len("a1b2"), 3);
}

TEST(DmNameUtils, TrailingNumIsZeroWithoutDigits) {
    EXPECT_EQ(Access::trailing_num("abc"), 0);
    EXPECT_EQ(Access::trailing_num(""), 0);
}

TEST(DmNameUtils, TrailingNumReadsTrailingDigits) {
    EXPECT_EQ(Access::trailing_num("abc12"), 12);
    EXPECT_EQ(Access::trailing_num("abc007"), 7);
    EXPECT_EQ(Access::trailing_num("a1b2"), 2);
    EXPECT_EQ(Access::trailing_num("x9223372036854775807"), INT64_MAX);
}

TEST(DmNameUtils, TrailingNumWrapsOnOverflow) {
    // 2^64 + 5 wraps to 5.
    EXPECT_EQ(Access::trailing_num("n18446744073709551621"), 5);
}

TEST(DmNameUtils, BaseStringDropsTrailingNumber) {
    EXPECT_EQ(Access::baseString(""), "");
    EXPECT_EQ(Access::baseString("abc"), "abc");
    EXPECT_EQ(Access::baseString("abc12"), "abc");
    EXPECT_EQ(Access::baseString("abc007"), "abc00");
    EXPECT_EQ(Access::baseString("12"), "");
}

TEST(DmNameUtils, GetNewNameWithoutClashLeavesNameUnchanged) {
    EXPECT_EQ(newName({"a", "b", "node3"}, "node"), "node");
    EXPECT_EQ(newName({}, "node"), "node");
}

TEST(DmNameUtils, GetNewNameOnClashTakesNumberAfterHighest) {
    EXPECT_EQ(newName({"node", "node3"}, "node"), "node4");
}

TEST(DmNameUtils, GetNewNameOnClashWithoutNumbersAppendsOne) {
    EXPECT_EQ(newName({"node"}, "node"), "node1");
}

TEST(DmNameUtils, GetNewNameRenumbersNumberedName) {
    EXPECT_EQ(newName({"node2", "node7"}, "node2"), "node8");
}

TEST(DmNameUtils, GetNewNameIgnoresNamesOfOtherBases) {
    EXPECT_EQ(newName({"node", "nodes9", "nod7", "99"}, "node"), "node1");
}

TEST(DmNameUtils, GetNewNameKeepsZeroPadding) {
    EXPECT_EQ(newName({"abc007"}, "abc007"), "abc008");
}

TEST(DmNameUtils, GetNewNameCountsReservedNames) {
    std::vector<std::string> const reserved{"node", "node5"};
    DmNameUtils::NewNameContext context;
    context.reservedNames = &reserved;
    EXPECT_EQ(newName({"node2"}, "node", &context), "node6");
}

TEST(DmNameUtils, GetNewNameSkipsException) {
    DmNameUtils::NewNameContext context;
    context.exception = "node";
    EXPECT_EQ(newName({"node"}, "node", &context), "node");
    std::vector<std::string> const reserved{"node"};
    context.reservedNames = &reserved;
    EXPECT_EQ(newName({"node"}, "node", &context), "node");
}

TEST(DmNameUtils, GetNewNameExceptionDoesNotHideOtherNumbers) {
    DmNameUtils::NewNameContext context;
    context.exception = "node9";
    EXPECT_EQ(newName({"node", "node2", "node9"}, "node", &context), "node3");
}

TEST(DmNameUtils, GetNewNameForceRenameNumbersFreeName) {
    DmNameUtils::NewNameContext context;
    context.forceRename = true;
    EXPECT_EQ(newName({}, "x", &context), "x1");
    EXPECT_EQ(newName({"x4"}, "x", &context), "x5");
}

TEST(DmNameUtils, GetNewNameOverMapEntriesUsesKeys) {
    Kesto::LinkedHashMap<std::string, int, Kesto::StringHasher, Kesto::StringCompare> map{
        {"node", 1}, {"node2", 2}, {"other", 3}};
    std::string name = "node";
    DmNameUtils::getNewName(map.begin(), map.end(), name, nullptr);
    EXPECT_EQ(name, "node3");

    std::map<std::string, int> const ordered{{"x", 0}};
    std::string free = "y";
    DmNameUtils::getNewName(ordered.begin(), ordered.end(), free, nullptr);
    EXPECT_EQ(free, "y");
}
