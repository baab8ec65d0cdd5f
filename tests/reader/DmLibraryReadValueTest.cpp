// Values read from hand-written text through DmLibrary::readValue: a bare
// text is a JSON string, a struct may leave its keys and values unquoted and
// use '=' for ':'.
#include "reader/ValueReaderTestSupport.h"

#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmStructValue.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using namespace Kesto::ValueTest;
using KestoTest::badlyFormed;
using KestoTest::dataOf;
using KestoTest::Message;
using KestoTest::outOfRange;
using KestoTest::parseError;
using KestoTest::valueError;
using KestoTest::valueWarning;

namespace {

using Messages = std::vector<Message>;

std::shared_ptr<DmStructType> pointType() {
    return makeStructType("Point", {{"x", DmLibrary::getIntType()}, {"y", DmLibrary::getIntType()}});
}

int memberOf(std::shared_ptr<DmBaseValue> const& value, std::string const& name) {
    return member<DmIntValue>(*as<DmStructValue>(value), name)->getData();
}

} // namespace

class DmLibraryReadValueTest : public KestoTest::ValueReaderTest {};

// ---------------------------------------------------------------------------
// Bare texts

TEST_F(DmLibraryReadValueTest, BareNumberReadsIntoAnInteger) {
    auto const value = DmLibrary::getIntType()->createValue();
    EXPECT_TRUE(readText("12", value));
    EXPECT_EQ(dataOf<int>(value), 12);
    EXPECT_FALSE(value->isImplicit());
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmLibraryReadValueTest, BareTextsTakeEverySuffixForm) {
    auto const value = DmLibrary::getLongType()->createValue();
    for (char const* text : {"12", "12L", "12ll", "12u", "12uLL"}) {
        EXPECT_TRUE(readText(text, value)) << text;
        EXPECT_EQ(dataOf<std::int64_t>(value), 12) << text;
    }
    EXPECT_FALSE(readText("1f", value));
    EXPECT_EQ(messages(), Messages{badlyFormed("1f")});
}

TEST_F(DmLibraryReadValueTest, BareTextsAreCheckedAsFileValuesAre) {
    EXPECT_FALSE(readText("300", DmLibrary::getUCharType()->createValue()));
    EXPECT_FALSE(readText("abc", DmLibrary::getUCharType()->createValue()));
    EXPECT_FALSE(readText("-1", DmLibrary::getUIntType()->createValue()));
    EXPECT_EQ(messages(), (Messages{outOfRange("300"), badlyFormed("abc"), badlyFormed("-1")}));
}

TEST_F(DmLibraryReadValueTest, BareDoubleWithAnFReads) {
    auto const value = DmLibrary::getDoubleType()->createValue();
    EXPECT_TRUE(readText("1e10f", value));
    EXPECT_EQ(dataOf<double>(value), 1e10);
}

TEST_F(DmLibraryReadValueTest, BareBoolReadsOnlyItsExactSpelling) {
    auto const value = DmLibrary::getBoolType()->createValue();
    EXPECT_TRUE(readText("true", value));
    EXPECT_TRUE(dataOf<bool>(value));
    EXPECT_FALSE(readText("True", value));
    EXPECT_TRUE(dataOf<bool>(value));
    EXPECT_EQ(messages(), Messages{badlyFormed("True")});
}

TEST_F(DmLibraryReadValueTest, BareTextIsAStringAsItStands) {
    auto const value = DmLibrary::getStringType()->createValue();
    EXPECT_TRUE(readText("two words, {and} [more]", value));
    EXPECT_EQ(dataOf<String>(value), String("two words, {and} [more]"));
}

TEST_F(DmLibraryReadValueTest, QuotedTextIsTakenAsAJsonString) {
    auto const value = DmLibrary::getStringType()->createValue();
    EXPECT_TRUE(readText("\"a \\\"b\\\"\"", value));
    EXPECT_EQ(dataOf<String>(value), String("a \"b\""));
}

TEST_F(DmLibraryReadValueTest, BareEnumKeyReads) {
    auto const type = makeEnumType("Color", {{"Red", 1}, {"Green", 2}});
    auto const value = type->createValue();
    EXPECT_TRUE(readText("Green", value));
    EXPECT_EQ(dataOf<int>(value), 2);
}

TEST_F(DmLibraryReadValueTest, BracketedTextIsAStringNotAnArray) {
    auto const text = DmLibrary::getStringType()->createValue();
    EXPECT_TRUE(readText("[1, 2]", text));
    EXPECT_EQ(dataOf<String>(text), String("[1, 2]"));
    auto const type = makeArrayType(DmLibrary::getIntType());
    EXPECT_FALSE(readText("[1, 2]", type->createValue()));
    EXPECT_EQ(messages(),
              Messages{valueError("Value should be specified as an array.",
                                  "Value of type 'array<int>' should be specified as an array.")});
}

TEST_F(DmLibraryReadValueTest, AHundredThousandBracketsAreOneString) {
    std::string const brackets(100000, '[');
    auto const value = DmLibrary::getStringType()->createValue();
    EXPECT_TRUE(readText(brackets, value));
    EXPECT_EQ(dataOf<String>(value).size(), 100000u);
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmLibraryReadValueTest, EmptyTextDoesNotParse) {
    auto const value = DmLibrary::getStringType()->createValue();
    EXPECT_FALSE(readText("", value));
    EXPECT_TRUE(value->isImplicit());
    EXPECT_EQ(messages(), Messages{parseError("1:1", "The document is empty.")});
}

TEST_F(DmLibraryReadValueTest, TextWithAStrayQuoteDoesNotParse) {
    EXPECT_FALSE(readText("a\"b", DmLibrary::getStringType()->createValue()));
    EXPECT_EQ(messages(),
              Messages{parseError("1:4", "The document root must not be followed by other values.")});
}

TEST_F(DmLibraryReadValueTest, NullValueIsRefusedWithoutAMessage) {
    EXPECT_FALSE(readText("1", nullptr));
    EXPECT_EQ(messages(), Messages());
}

// ---------------------------------------------------------------------------
// Structs in the compact form

TEST_F(DmLibraryReadValueTest, CompactStructTakesEqualsAndColonAndBareValues) {
    auto const type = pointType();
    auto const value = type->createValue();
    EXPECT_TRUE(readText("{x=1, y:2}", value));
    EXPECT_EQ(memberOf(value, "x"), 1);
    EXPECT_EQ(memberOf(value, "y"), 2);
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmLibraryReadValueTest, CompactStructTakesStrictJsonToo) {
    auto const type = pointType();
    auto const value = type->createValue();
    EXPECT_TRUE(readText(R"({"x": "-3", "y": "4L"})", value));
    EXPECT_EQ(memberOf(value, "x"), -3);
    EXPECT_EQ(memberOf(value, "y"), 4);
}

TEST_F(DmLibraryReadValueTest, CompactStructTakesQuotedKeysWithEquals) {
    auto const type = pointType();
    auto const value = type->createValue();
    EXPECT_TRUE(readText(R"({"x"=5,y="6"})", value));
    EXPECT_EQ(memberOf(value, "x"), 5);
    EXPECT_EQ(memberOf(value, "y"), 6);
}

TEST_F(DmLibraryReadValueTest, CompactStructOfStringsReads) {
    auto const type =
        makeStructType("Name", {{"first", DmLibrary::getStringType()}, {"last", DmLibrary::getStringType()}});
    auto const value = type->createValue();
    EXPECT_TRUE(readText("{first=Ada,\tlast:Lovelace}", value));
    EXPECT_EQ(member<DmStringValue>(*as<DmStructValue>(value), "first")->getData(), String("Ada"));
    EXPECT_EQ(member<DmStringValue>(*as<DmStructValue>(value), "last")->getData(), String("Lovelace"));
}

TEST_F(DmLibraryReadValueTest, CompactNestedStructReads) {
    auto const point = pointType();
    auto const type = makeStructType("Segment", {{"from", point}, {"to", point}});
    auto const value = type->createValue();
    EXPECT_TRUE(readText("{from={x=1, y=2}, to={x=3}}", value));
    auto const to = member<DmStructValue>(*as<DmStructValue>(value), "to");
    EXPECT_EQ(member<DmIntValue>(*to, "x")->getData(), 3);
    EXPECT_EQ(member<DmIntValue>(*member<DmStructValue>(*as<DmStructValue>(value), "from"), "y")->getData(),
              2);
}

TEST_F(DmLibraryReadValueTest, CompactStructWithAnExtraMemberWarnsAndReads) {
    auto const type = pointType();
    auto const value = type->createValue();
    EXPECT_TRUE(readText("{x=1, z=2}", value));
    EXPECT_EQ(memberOf(value, "x"), 1);
    EXPECT_EQ(messages(),
              Messages{valueWarning("Non-existent struct member.",
                                    "Struct member 'z' is not defined in struct 'Point'. Ignoring it.")});
}

TEST_F(DmLibraryReadValueTest, CompactStructWithABadMemberStops) {
    auto const type = pointType();
    auto const value = type->createValue();
    EXPECT_FALSE(readText("{x=1, y=abc}", value));
    EXPECT_EQ(memberOf(value, "x"), 1);
    EXPECT_EQ(messages(), (Messages{badlyFormed("abc"), valueError("Invalid struct member.",
                                                                   "Unable to load struct member 'y'.")}));
}

TEST_F(DmLibraryReadValueTest, CompactTextBeyondTheNestingLimitDoesNotParse) {
    std::string text;
    for (int i = 0; i < 1001; ++i) {
        text += "{a=";
    }
    text += "1" + std::string(1001, '}');
    auto const type = pointType();
    auto const value = type->createValue();
    EXPECT_FALSE(readText(text, value));
    EXPECT_TRUE(value->isImplicit());
    EXPECT_EQ(messages(), Messages{parseError(
                              "1:5002", "The document nests arrays and objects deeper than 1000 levels.")});
}
