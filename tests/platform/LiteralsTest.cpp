#include <KestoDM/platform/BaLiterals.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

using Kesto::BaLiterals;

namespace {

constexpr long long kSignedSentinel = 12345;
constexpr unsigned long long kUnsignedSentinel = 54321;

} // namespace

TEST(BaLiteralsSigned, AcceptsDecimalWithOptionalSign) {
    long long value = 0;
    EXPECT_EQ(BaLiterals::toValue("12", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, 12);
    EXPECT_EQ(BaLiterals::toValue("-12", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, -12);
    EXPECT_EQ(BaLiterals::toValue("+12", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, 12);
    EXPECT_EQ(BaLiterals::toValue("0", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, 0);
}

TEST(BaLiteralsSigned, AcceptsHexWithOptionalSign) {
    long long value = 0;
    EXPECT_EQ(BaLiterals::toValue("0x1F", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, 31);
    EXPECT_EQ(BaLiterals::toValue("0Xff", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, 255);
    EXPECT_EQ(BaLiterals::toValue("-0x10", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, -16);
    EXPECT_EQ(BaLiterals::toValue("+0x10", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, 16);
}

TEST(BaLiteralsSigned, LeadingZerosStayDecimal) {
    long long value = 0;
    EXPECT_EQ(BaLiterals::toValue("010", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, 10);
}

TEST(BaLiteralsSigned, AcceptsBothEndsOfRange) {
    long long value = 0;
    EXPECT_EQ(BaLiterals::toValue("9223372036854775807", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, std::numeric_limits<long long>::max());
    EXPECT_EQ(BaLiterals::toValue("-9223372036854775808", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, std::numeric_limits<long long>::min());
    EXPECT_EQ(BaLiterals::toValue("-0x8000000000000000", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, std::numeric_limits<long long>::min());
}

TEST(BaLiteralsSigned, ReportsOutOfRangeAndKeepsValue) {
    for (char const* text :
         {"9223372036854775808", "-9223372036854775809", "0x8000000000000000", "99999999999999999999999"}) {
        long long value = kSignedSentinel;
        EXPECT_EQ(BaLiterals::toValue(text, value), BaLiterals::kConversionOutOfRange) << text;
        EXPECT_EQ(value, kSignedSentinel) << text;
    }
}

TEST(BaLiteralsSigned, RefusesMalformedTextAndKeepsValue) {
    for (char const* text : {"", " 1", "1 ", "12abc", "0x", "1e5", "+", "-", "+-1", "--1", "0x-1", "0x+1",
                             "1'000", "1_000", "1.0", "abc", "0b101"}) {
        long long value = kSignedSentinel;
        EXPECT_EQ(BaLiterals::toValue(text, value), BaLiterals::kConversionInvalid) << '"' << text << '"';
        EXPECT_EQ(value, kSignedSentinel) << text;
    }
}

TEST(BaLiteralsUnsigned, AcceptsFullRange) {
    unsigned long long value = 0;
    EXPECT_EQ(BaLiterals::toValue("18446744073709551615", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, std::numeric_limits<unsigned long long>::max());
    EXPECT_EQ(BaLiterals::toValue("+7", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, 7u);
    EXPECT_EQ(BaLiterals::toValue("0xFFFFFFFFFFFFFFFF", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, std::numeric_limits<unsigned long long>::max());
}

TEST(BaLiteralsUnsigned, RefusesAnyMinusSign) {
    for (char const* text : {"-1", "-0", "-0x1"}) {
        unsigned long long value = kUnsignedSentinel;
        EXPECT_EQ(BaLiterals::toValue(text, value), BaLiterals::kConversionInvalid) << text;
        EXPECT_EQ(value, kUnsignedSentinel) << text;
    }
}

TEST(BaLiteralsUnsigned, ReportsOutOfRange) {
    unsigned long long value = kUnsignedSentinel;
    EXPECT_EQ(BaLiterals::toValue("18446744073709551616", value), BaLiterals::kConversionOutOfRange);
    EXPECT_EQ(value, kUnsignedSentinel);
}

TEST(BaLiteralsUnsigned, RefusesMalformedText) {
    for (char const* text : {"", " 1", "1 ", "12abc", "0x", "1e5", "+"}) {
        unsigned long long value = kUnsignedSentinel;
        EXPECT_EQ(BaLiterals::toValue(text, value), BaLiterals::kConversionInvalid) << '"' << text << '"';
        EXPECT_EQ(value, kUnsignedSentinel);
    }
}

TEST(BaLiteralsFloat, AcceptsDecimalForms) {
    double value = 0;
    EXPECT_EQ(BaLiterals::toValue("1.5", value), BaLiterals::kConversionOk);
    EXPECT_DOUBLE_EQ(value, 1.5);
    EXPECT_EQ(BaLiterals::toValue("-2.5e-3", value), BaLiterals::kConversionOk);
    EXPECT_DOUBLE_EQ(value, -2.5e-3);
    EXPECT_EQ(BaLiterals::toValue(".5", value), BaLiterals::kConversionOk);
    EXPECT_DOUBLE_EQ(value, 0.5);
    EXPECT_EQ(BaLiterals::toValue("5.", value), BaLiterals::kConversionOk);
    EXPECT_DOUBLE_EQ(value, 5.0);
    EXPECT_EQ(BaLiterals::toValue("1e5", value), BaLiterals::kConversionOk);
    EXPECT_DOUBLE_EQ(value, 1e5);
    EXPECT_EQ(BaLiterals::toValue("+3", value), BaLiterals::kConversionOk);
    EXPECT_DOUBLE_EQ(value, 3.0);
}

TEST(BaLiteralsFloat, AcceptsInfinityAndNan) {
    double value = 0;
    EXPECT_EQ(BaLiterals::toValue("inf", value), BaLiterals::kConversionOk);
    EXPECT_TRUE(std::isinf(value) && value > 0);
    EXPECT_EQ(BaLiterals::toValue("-Infinity", value), BaLiterals::kConversionOk);
    EXPECT_TRUE(std::isinf(value) && value < 0);
    EXPECT_EQ(BaLiterals::toValue("NaN", value), BaLiterals::kConversionOk);
    EXPECT_TRUE(std::isnan(value));
}

TEST(BaLiteralsFloat, ReportsOutOfRange) {
    double value = 7.0;
    EXPECT_EQ(BaLiterals::toValue("1e999", value), BaLiterals::kConversionOutOfRange);
    EXPECT_EQ(BaLiterals::toValue("-1e999", value), BaLiterals::kConversionOutOfRange);
    EXPECT_EQ(value, 7.0);
    float single = 7.0f;
    EXPECT_EQ(BaLiterals::toValue("1e39", single), BaLiterals::kConversionOutOfRange);
    EXPECT_EQ(single, 7.0f);
}

TEST(BaLiteralsFloat, RefusesMalformedTextAndKeepsValue) {
    for (char const* text :
         {"", " 1.5", "1.5 ", "0x1p3", "1.5f", "1e", "+", "+-1", "++1", ".", "e5", "1,5", "abc"}) {
        double value = 7.0;
        EXPECT_EQ(BaLiterals::toValue(text, value), BaLiterals::kConversionInvalid) << '"' << text << '"';
        EXPECT_EQ(value, 7.0) << text;
    }
}

TEST(BaLiteralsFloat, SinglePrecisionRoundsToNearest) {
    float value = 0;
    EXPECT_EQ(BaLiterals::toValue("0.1", value), BaLiterals::kConversionOk);
    EXPECT_EQ(value, 0.1f);
    EXPECT_EQ(BaLiterals::toValue("0x1p3", value), BaLiterals::kConversionInvalid);
}
