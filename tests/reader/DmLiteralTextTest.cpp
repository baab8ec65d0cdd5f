// Number texts of graph files: their suffixes and ranges.
#include "reader/DmLiteralText.h"

#include <gtest/gtest.h>

#include <climits>

using namespace Kesto::Internal;

TEST(DmLiteralText, IntegerSuffixIsUpToTwoLsThenOneU) {
    EXPECT_EQ(trimIntegerSuffix("12"), "12");
    EXPECT_EQ(trimIntegerSuffix("12L"), "12");
    EXPECT_EQ(trimIntegerSuffix("12l"), "12");
    EXPECT_EQ(trimIntegerSuffix("12ll"), "12");
    EXPECT_EQ(trimIntegerSuffix("12lL"), "12");
    EXPECT_EQ(trimIntegerSuffix("12u"), "12");
    EXPECT_EQ(trimIntegerSuffix("12U"), "12");
    EXPECT_EQ(trimIntegerSuffix("12uL"), "12");
    EXPECT_EQ(trimIntegerSuffix("12uLL"), "12");
    EXPECT_EQ(trimIntegerSuffix("12LLL"), "12L");
    EXPECT_EQ(trimIntegerSuffix("12Lu"), "12L");
    EXPECT_EQ(trimIntegerSuffix("12uu"), "12u");
    EXPECT_EQ(trimIntegerSuffix(""), "");
    EXPECT_EQ(trimIntegerSuffix("uL"), "");
}

TEST(DmLiteralText, FloatSuffixIsOneF) {
    EXPECT_EQ(trimFloatSuffix("1.5"), "1.5");
    EXPECT_EQ(trimFloatSuffix("1.5f"), "1.5");
    EXPECT_EQ(trimFloatSuffix("1.5F"), "1.5");
    EXPECT_EQ(trimFloatSuffix("1.5ff"), "1.5f");
    EXPECT_EQ(trimFloatSuffix(""), "");
}

TEST(DmLiteralText, SignedTextsWithEverySuffix) {
    for (char const* text : {"12", "12L", "12ll", "12u", "12uLL"}) {
        long long value = 0;
        EXPECT_EQ(parseSignedLiteral(text, LLONG_MIN, LLONG_MAX, value), LiteralResult::kOk) << text;
        EXPECT_EQ(value, 12) << text;
    }
    long long value = 0;
    EXPECT_EQ(parseSignedLiteral("-7L", LLONG_MIN, LLONG_MAX, value), LiteralResult::kOk);
    EXPECT_EQ(value, -7);
}

TEST(DmLiteralText, SignedRangeIsTheCallers) {
    long long value = 5;
    EXPECT_EQ(parseSignedLiteral("32767", -32768, 32767, value), LiteralResult::kOk);
    EXPECT_EQ(value, 32767);
    EXPECT_EQ(parseSignedLiteral("-32768", -32768, 32767, value), LiteralResult::kOk);
    EXPECT_EQ(value, -32768);
    value = 5;
    EXPECT_EQ(parseSignedLiteral("32768", -32768, 32767, value), LiteralResult::kOutOfRange);
    EXPECT_EQ(parseSignedLiteral("-32769L", -32768, 32767, value), LiteralResult::kOutOfRange);
    EXPECT_EQ(value, 5);
}

TEST(DmLiteralText, SignedTextsThatAreNoNumbers) {
    long long value = 5;
    for (char const* text : {"", "L", "abc", "1.5", "12Lu", "12 ", " 12", "1e3", "99999999999999999999"}) {
        EXPECT_EQ(parseSignedLiteral(text, LLONG_MIN, LLONG_MAX, value), LiteralResult::kBadlyFormed) << text;
    }
    EXPECT_EQ(value, 5);
}

TEST(DmLiteralText, UnsignedTexts) {
    unsigned long long value = 0;
    EXPECT_EQ(parseUnsignedLiteral("255uL", 255, value), LiteralResult::kOk);
    EXPECT_EQ(value, 255u);
    EXPECT_EQ(parseUnsignedLiteral("18446744073709551615", ULLONG_MAX, value), LiteralResult::kOk);
    EXPECT_EQ(value, ULLONG_MAX);
    EXPECT_EQ(parseUnsignedLiteral("256", 255, value), LiteralResult::kOutOfRange);
    EXPECT_EQ(parseUnsignedLiteral("-1", ULLONG_MAX, value), LiteralResult::kBadlyFormed);
    EXPECT_EQ(parseUnsignedLiteral("x", ULLONG_MAX, value), LiteralResult::kBadlyFormed);
    EXPECT_EQ(value, ULLONG_MAX);
}

TEST(DmLiteralText, FloatingTexts) {
    float single = 0;
    EXPECT_EQ(parseFloatLiteral("1.5f", single), LiteralResult::kOk);
    EXPECT_EQ(single, 1.5f);
    EXPECT_EQ(parseFloatLiteral("-2", single), LiteralResult::kOk);
    EXPECT_EQ(single, -2.0f);
    EXPECT_EQ(parseFloatLiteral("x", single), LiteralResult::kBadlyFormed);
    EXPECT_EQ(parseFloatLiteral("f", single), LiteralResult::kBadlyFormed);
    EXPECT_EQ(parseFloatLiteral("1.5ff", single), LiteralResult::kBadlyFormed);
    double number = 0;
    EXPECT_EQ(parseDoubleLiteral("1e3", number), LiteralResult::kOk);
    EXPECT_EQ(number, 1000.0);
    EXPECT_EQ(parseDoubleLiteral("0.25F", number), LiteralResult::kOk);
    EXPECT_EQ(number, 0.25);
    EXPECT_EQ(parseDoubleLiteral("1.5.2", number), LiteralResult::kBadlyFormed);
    EXPECT_EQ(parseDoubleLiteral("", number), LiteralResult::kBadlyFormed);
}
