// Values read from the JSON nodes of a graph file, kind by kind, with the
// exact messages of every refusal.
#include "reader/ValueReaderTestSupport.h"

#include <KestoDM/platform/Any.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/SerializationData.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmArrayValue.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmEnumValue.h>
#include <KestoDM/types/DmStructValue.h>
#include <KestoDM/types/DmUninstantiableValue.h>
#include <KestoDM/types/DmUnknownStructValue.h>
#include <KestoDM/types/DmUnknownValue.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using namespace Kesto::ValueTest;
using KestoTest::badlyFormed;
using KestoTest::dataOf;
using KestoTest::Message;
using KestoTest::outOfRange;
using KestoTest::serializedDataError;
using KestoTest::valueError;
using KestoTest::valueWarning;

namespace {

using Messages = std::vector<Message>;

/// The datum of element `index` of an array value of T elements.
template <class T>
T elementOf(std::shared_ptr<DmBaseValue> const& array, unsigned long long index) {
    auto const typed = as<DmArrayValue>(array);
    EXPECT_NE(typed, nullptr);
    return typed ? dataOf<T>(typed->at(index)) : T();
}

std::string quoted(std::string const& text) {
    return "\"" + text + "\"";
}

std::string nested(std::string const& open, std::string const& inner, std::string const& close, int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i) {
        text += open;
    }
    text += inner;
    for (int i = 0; i < depth; ++i) {
        text += close;
    }
    return text;
}

std::shared_ptr<DmStructType> pointType() {
    return makeStructType("Point", {{"x", DmLibrary::getIntType()}, {"y", DmLibrary::getIntType()}});
}

std::shared_ptr<DmEnumType> colorType() {
    return makeEnumType("Color", {{"Red", 1}, {"Green", 2}, {"Blue", 4}});
}

} // namespace

/// Reads through JSON nodes; each integer check starts from a value set to
/// `kSentinel`, so that a refused read shows that the value kept it.
class DmValueReaderTest : public KestoTest::ValueReaderTest {
protected:
    static constexpr int kSentinel = 7;

    /// `text` read into a new value of `type` that holds kSentinel first: the
    /// result, and the datum afterwards in `out`.
    template <class T>
    bool readNumber(TypeConstPtr const& type, std::string const& text, T& out) {
        auto const value = type->createValue();
        dataSetter<T>(value)->setData(static_cast<T>(kSentinel));
        bool const read = readJson(quoted(text), value);
        out = dataOf<T>(value);
        return read;
    }

    /// `text` reads into `type` as `expected`, in silence.
    template <class T>
    void expectReads(TypeConstPtr const& type, std::string const& text, T expected) {
        m_logger.clear();
        T out{};
        EXPECT_TRUE(readNumber(type, text, out)) << text;
        EXPECT_EQ(out, expected) << text;
        EXPECT_EQ(messages(), Messages()) << text;
    }

    /// `text` is refused with `message`; the value keeps what it had.
    template <class T>
    void expectRefused(TypeConstPtr const& type, std::string const& text, Message const& message) {
        m_logger.clear();
        T out{};
        EXPECT_FALSE(readNumber(type, text, out)) << text;
        EXPECT_EQ(out, static_cast<T>(kSentinel)) << text;
        EXPECT_EQ(messages(), Messages{message}) << text;
    }

    /// A signed kind reads its limits and warns one past them on both sides.
    template <class T>
    void expectSignedRange(TypeConstPtr const& type) {
        long long const min = std::numeric_limits<T>::min();
        long long const max = std::numeric_limits<T>::max();
        expectReads<T>(type, std::to_string(min), static_cast<T>(min));
        expectReads<T>(type, std::to_string(max), static_cast<T>(max));
        expectRefused<T>(type, std::to_string(min - 1), outOfRange(std::to_string(min - 1)));
        expectRefused<T>(type, std::to_string(max + 1), outOfRange(std::to_string(max + 1)));
    }

    /// An unsigned kind reads 0 and its maximum, warns one past it, and
    /// refuses -1 as no number of its kind.
    template <class T>
    void expectUnsignedRange(TypeConstPtr const& type) {
        unsigned long long const max = std::numeric_limits<T>::max();
        expectReads<T>(type, "0", 0);
        expectReads<T>(type, std::to_string(max), static_cast<T>(max));
        expectRefused<T>(type, std::to_string(max + 1), outOfRange(std::to_string(max + 1)));
        expectRefused<T>(type, "-1", badlyFormed("-1"));
    }

    /// Every suffix form of 12 reads as 12; "1f" is no integer.
    template <class T>
    void expectSuffixes(TypeConstPtr const& type) {
        for (char const* text :
             {"12", "12L", "12l", "12ll", "12LL", "12u", "12U", "12uL", "12uLL", "12ULL"}) {
            expectReads<T>(type, text, static_cast<T>(12));
        }
        expectRefused<T>(type, "1f", badlyFormed("1f"));
    }

private:
    template <class T>
    static std::shared_ptr<DmBuiltInValue<T>> dataSetter(std::shared_ptr<DmBaseValue> const& value) {
        auto typed = std::dynamic_pointer_cast<DmBuiltInValue<T>>(value);
        EXPECT_NE(typed, nullptr);
        return typed;
    }
};

// ---------------------------------------------------------------------------
// The string form

TEST_F(DmValueReaderTest, IntegerGivenAsAJsonNumberIsRefusedAsNotAString) {
    auto const value = DmLibrary::getIntType()->createValue();
    EXPECT_FALSE(readJson("5", value));
    EXPECT_TRUE(value->isImplicit());
    EXPECT_EQ(messages(), Messages{valueError("Value should be specified as a string.",
                                              "Value of type 'int' should be specified as a string.")});
}

TEST_F(DmValueReaderTest, BoolGivenAsAJsonBooleanIsRefusedAsNotAString) {
    auto const value = DmLibrary::getBoolType()->createValue();
    EXPECT_FALSE(readJson("true", value));
    EXPECT_EQ(messages(), Messages{valueError("Value should be specified as a string.",
                                              "Value of type 'bool' should be specified as a string.")});
}

TEST_F(DmValueReaderTest, EveryStringKindRefusesAnObject) {
    for (TypeConstPtr const& type : std::vector<TypeConstPtr>{
             DmLibrary::getCharType(), DmLibrary::getUCharType(), DmLibrary::getShortType(),
             DmLibrary::getUShortType(), DmLibrary::getUIntType(), DmLibrary::getLongType(),
             DmLibrary::getULongType(), DmLibrary::getFloatType(), DmLibrary::getDoubleType(),
             DmLibrary::getStringType()}) {
        m_logger.clear();
        std::string const name = type->getName();
        EXPECT_FALSE(readJson("{}", type->createValue())) << name;
        EXPECT_EQ(messages(),
                  Messages{valueError("Value should be specified as a string.",
                                      "Value of type '" + name + "' should be specified as a string.")});
    }
}

TEST_F(DmValueReaderTest, EnumGivenAsAnArrayIsRefusedAsNotAString) {
    auto const type = colorType();
    EXPECT_FALSE(readJson("[\"Red\"]", type->createValue()));
    EXPECT_EQ(messages(), Messages{valueError("Value should be specified as a string.",
                                              "Value of type 'Color' should be specified as a string.")});
}

TEST_F(DmValueReaderTest, MessagesNameATypeByItsFullName) {
    auto library = KestoTest::makeLibrary();
    auto const type = pointType();
    ASSERT_EQ(type->setNamespace(KestoTest::namespaceAt(*library, "geo"), kFailOnClash), DmStatus::kSuccess);
    auto const arrayType = library->getArrayType(type);
    ASSERT_NE(arrayType, nullptr);
    EXPECT_FALSE(readJson("{}", arrayType->createValue()));
    EXPECT_TRUE(readJson("{\"z\": \"1\"}", type->createValue()));
    EXPECT_EQ(
        messages(),
        (Messages{valueError("Value should be specified as an array.",
                             "Value of type 'array<geo::Point>' should be specified as an array."),
                  valueWarning("Non-existent struct member.",
                               "Struct member 'z' is not defined in struct 'geo::Point'. Ignoring it.")}));
}

// ---------------------------------------------------------------------------
// Bool

TEST_F(DmValueReaderTest, BoolReadsTrueAndFalse) {
    auto const value = DmLibrary::getBoolType()->createValue();
    EXPECT_TRUE(readJson("\"true\"", value));
    EXPECT_TRUE(dataOf<bool>(value));
    EXPECT_FALSE(value->isImplicit());
    EXPECT_TRUE(readJson("\"false\"", value));
    EXPECT_FALSE(dataOf<bool>(value));
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, BoolRefusesOtherSpellingsAsBadlyFormed) {
    for (char const* text : {"True", "TRUE", "1", "", " true", "yes"}) {
        m_logger.clear();
        auto const value = DmLibrary::getBoolType()->createValue();
        EXPECT_FALSE(readJson(quoted(text), value)) << text;
        EXPECT_TRUE(value->isImplicit()) << text;
        EXPECT_EQ(messages(), Messages{badlyFormed(text)}) << text;
    }
}

// ---------------------------------------------------------------------------
// Integers: ranges

TEST_F(DmValueReaderTest, CharReadsItsRangeAndWarnsOnePastItsLimits) {
    expectSignedRange<signed char>(DmLibrary::getCharType());
}

TEST_F(DmValueReaderTest, ShortReadsItsRangeAndWarnsOnePastItsLimits) {
    expectSignedRange<short>(DmLibrary::getShortType());
}

TEST_F(DmValueReaderTest, IntReadsItsRangeAndWarnsOnePastItsLimits) {
    expectSignedRange<int>(DmLibrary::getIntType());
}

TEST_F(DmValueReaderTest, UCharReadsItsRangeAndWarnsOnePastItsMaximum) {
    expectUnsignedRange<unsigned char>(DmLibrary::getUCharType());
}

TEST_F(DmValueReaderTest, UShortReadsItsRangeAndWarnsOnePastItsMaximum) {
    expectUnsignedRange<unsigned short>(DmLibrary::getUShortType());
}

TEST_F(DmValueReaderTest, UIntReadsItsRangeAndWarnsOnePastItsMaximum) {
    expectUnsignedRange<unsigned int>(DmLibrary::getUIntType());
}

TEST_F(DmValueReaderTest, LongReadsTheWhole64BitRangeAndCallsWhatLiesBeyondBadlyFormed) {
    TypeConstPtr const type = DmLibrary::getLongType();
    expectReads<std::int64_t>(type, "-9223372036854775808", std::numeric_limits<std::int64_t>::min());
    expectReads<std::int64_t>(type, "9223372036854775807", std::numeric_limits<std::int64_t>::max());
    expectRefused<std::int64_t>(type, "-9223372036854775809", badlyFormed("-9223372036854775809"));
    expectRefused<std::int64_t>(type, "9223372036854775808", badlyFormed("9223372036854775808"));
}

TEST_F(DmValueReaderTest, ULongReadsTheWhole64BitRangeAndCallsWhatLiesBeyondBadlyFormed) {
    TypeConstPtr const type = DmLibrary::getULongType();
    expectReads<std::uint64_t>(type, "0", 0);
    expectReads<std::uint64_t>(type, "18446744073709551615", std::numeric_limits<std::uint64_t>::max());
    expectRefused<std::uint64_t>(type, "18446744073709551616", badlyFormed("18446744073709551616"));
    expectRefused<std::uint64_t>(type, "-1", badlyFormed("-1"));
}

TEST_F(DmValueReaderTest, UCharWarnsThat300IsOutOfRangeAndFails) {
    expectRefused<unsigned char>(DmLibrary::getUCharType(), "300", outOfRange("300"));
    EXPECT_EQ(m_logger.getWarningCount(), 1u);
    EXPECT_EQ(m_logger.getErrorCount(), 0u);
}

TEST_F(DmValueReaderTest, UCharRefusesAbcAsNotAValidValue) {
    expectRefused<unsigned char>(DmLibrary::getUCharType(), "abc", badlyFormed("abc"));
    EXPECT_EQ(m_logger.getErrorCount(), 1u);
}

TEST_F(DmValueReaderTest, UIntRefusesMinusOne) {
    expectRefused<unsigned int>(DmLibrary::getUIntType(), "-1", badlyFormed("-1"));
}

TEST_F(DmValueReaderTest, AnOutOfRangeValueLeavesAnUnsetValueImplicit) {
    auto const value = DmLibrary::getCharType()->createValue();
    EXPECT_FALSE(readJson("\"128\"", value));
    EXPECT_TRUE(value->isImplicit());
    EXPECT_EQ(dataOf<signed char>(value), 0);
}

TEST_F(DmValueReaderTest, IntegersRefuseTextAroundTheNumber) {
    for (char const* text : {"", " 1", "1 ", "1.5", "1e3", "12lu", "12LLL", "12uu", "L"}) {
        expectRefused<int>(DmLibrary::getIntType(), text, badlyFormed(text));
    }
}

TEST_F(DmValueReaderTest, IntegersTakeASignAndHexadecimalDigits) {
    expectReads<int>(DmLibrary::getIntType(), "+5", 5);
    expectReads<int>(DmLibrary::getIntType(), "0x1F", 31);
    expectReads<int>(DmLibrary::getIntType(), "-0x10L", -16);
}

// ---------------------------------------------------------------------------
// Integers: suffixes

TEST_F(DmValueReaderTest, CharTakesEverySuffixAndRefusesF) {
    expectSuffixes<signed char>(DmLibrary::getCharType());
}

TEST_F(DmValueReaderTest, UCharTakesEverySuffixAndRefusesF) {
    expectSuffixes<unsigned char>(DmLibrary::getUCharType());
}

TEST_F(DmValueReaderTest, ShortTakesEverySuffixAndRefusesF) {
    expectSuffixes<short>(DmLibrary::getShortType());
}

TEST_F(DmValueReaderTest, UShortTakesEverySuffixAndRefusesF) {
    expectSuffixes<unsigned short>(DmLibrary::getUShortType());
}

TEST_F(DmValueReaderTest, IntTakesEverySuffixAndRefusesF) {
    expectSuffixes<int>(DmLibrary::getIntType());
}

TEST_F(DmValueReaderTest, UIntTakesEverySuffixAndRefusesF) {
    expectSuffixes<unsigned int>(DmLibrary::getUIntType());
}

TEST_F(DmValueReaderTest, LongTakesEverySuffixAndRefusesF) {
    expectSuffixes<std::int64_t>(DmLibrary::getLongType());
}

TEST_F(DmValueReaderTest, ULongTakesEverySuffixAndRefusesF) {
    expectSuffixes<std::uint64_t>(DmLibrary::getULongType());
}

TEST_F(DmValueReaderTest, OneLIsGoodForEveryIntegerKind) {
    expectReads<signed char>(DmLibrary::getCharType(), "1L", 1);
    expectReads<unsigned char>(DmLibrary::getUCharType(), "1L", 1);
    expectReads<short>(DmLibrary::getShortType(), "1L", 1);
    expectReads<unsigned short>(DmLibrary::getUShortType(), "1L", 1);
    expectReads<int>(DmLibrary::getIntType(), "1L", 1);
    expectReads<unsigned int>(DmLibrary::getUIntType(), "1L", 1);
    expectReads<std::int64_t>(DmLibrary::getLongType(), "1L", 1);
    expectReads<std::uint64_t>(DmLibrary::getULongType(), "1L", 1);
}

TEST_F(DmValueReaderTest, OneFIsBadForEveryIntegerKind) {
    Message const bad = badlyFormed("1f");
    expectRefused<signed char>(DmLibrary::getCharType(), "1f", bad);
    expectRefused<unsigned char>(DmLibrary::getUCharType(), "1f", bad);
    expectRefused<short>(DmLibrary::getShortType(), "1f", bad);
    expectRefused<unsigned short>(DmLibrary::getUShortType(), "1f", bad);
    expectRefused<int>(DmLibrary::getIntType(), "1f", bad);
    expectRefused<unsigned int>(DmLibrary::getUIntType(), "1f", bad);
    expectRefused<std::int64_t>(DmLibrary::getLongType(), "1f", bad);
    expectRefused<std::uint64_t>(DmLibrary::getULongType(), "1f", bad);
}

TEST_F(DmValueReaderTest, TheRangeIsCheckedAfterTheSuffixIsDropped) {
    expectRefused<unsigned char>(DmLibrary::getUCharType(), "256uL", outOfRange("256uL"));
    expectReads<unsigned char>(DmLibrary::getUCharType(), "255uL", 255);
}

// ---------------------------------------------------------------------------
// Floats

TEST_F(DmValueReaderTest, FloatReadsWithAndWithoutItsSuffix) {
    expectReads<float>(DmLibrary::getFloatType(), "1.5", 1.5f);
    expectReads<float>(DmLibrary::getFloatType(), "1.5f", 1.5f);
    expectReads<float>(DmLibrary::getFloatType(), "-2.25F", -2.25f);
    expectReads<float>(DmLibrary::getFloatType(), "3", 3.0f);
}

TEST_F(DmValueReaderTest, DoubleReadsWithAndWithoutASuffix) {
    expectReads<double>(DmLibrary::getDoubleType(), "0.1", 0.1);
    expectReads<double>(DmLibrary::getDoubleType(), "2.5e-3", 2.5e-3);
    expectReads<double>(DmLibrary::getDoubleType(), "0.1f", 0.1);
}

TEST_F(DmValueReaderTest, DoubleReads1e10fTheFBeingDroppedFirst) {
    expectReads<double>(DmLibrary::getDoubleType(), "1e10f", 1e10);
}

TEST_F(DmValueReaderTest, FloatsRefuseWhatIsNoNumber) {
    for (char const* text : {"abc", "1.5ff", "", "1.5L", "f"}) {
        expectRefused<float>(DmLibrary::getFloatType(), text, badlyFormed(text));
        expectRefused<double>(DmLibrary::getDoubleType(), text, badlyFormed(text));
    }
}

TEST_F(DmValueReaderTest, AFloatTooLargeForItsKindIsBadlyFormedAsTheConversionSays) {
    expectRefused<float>(DmLibrary::getFloatType(), "1e39", badlyFormed("1e39"));
    expectReads<double>(DmLibrary::getDoubleType(), "1e39", 1e39);
}

// ---------------------------------------------------------------------------
// Any and string

TEST_F(DmValueReaderTest, AnyReadsWhateverTheNodeIsToAnEmptyAny) {
    for (char const* json : {"\"1\"", "5", "{\"a\": [1, 2]}", "null", "[]"}) {
        auto const value = DmLibrary::getAnyType()->createValue();
        EXPECT_TRUE(readJson(json, value)) << json;
        EXPECT_FALSE(value->isImplicit()) << json;
        EXPECT_TRUE(dataOf<Any>(value).isEmpty()) << json;
    }
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, StringIsTakenAsItStands) {
    auto const value = DmLibrary::getStringType()->createValue();
    EXPECT_TRUE(readJson("\" two words, 1.5f \\u00e9\\n\"", value));
    EXPECT_EQ(dataOf<String>(value), String(" two words, 1.5f \xc3\xa9\n"));
    EXPECT_FALSE(value->isImplicit());
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, EmptyStringReadsAndSetsTheValue) {
    auto const value = DmLibrary::getStringType()->createValue();
    EXPECT_TRUE(readJson("\"\"", value));
    EXPECT_EQ(dataOf<String>(value).size(), 0u);
    EXPECT_FALSE(value->isImplicit());
}

TEST_F(DmValueReaderTest, StringKeepsAnEscapedZeroByte) {
    auto const value = DmLibrary::getStringType()->createValue();
    EXPECT_TRUE(readJson("\"a\\u0000b\"", value));
    EXPECT_EQ(dataOf<String>(value).size(), 3u);
}

// ---------------------------------------------------------------------------
// Enum

TEST_F(DmValueReaderTest, EnumReadsItsKey) {
    auto const type = colorType();
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("\"Blue\"", value));
    EXPECT_EQ(dataOf<int>(value), 4);
    EXPECT_FALSE(value->isImplicit());
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, EnumWithAnUnknownKeyReadsAsTrueAndStaysAtItsDefault) {
    auto const type = colorType();
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("\"Purple\"", value));
    EXPECT_EQ(dataOf<int>(value), 1);
    EXPECT_TRUE(value->isImplicit());
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, EnumKeysAreCaseSensitive) {
    auto const type = colorType();
    auto const value = type->createValue();
    ASSERT_TRUE(readJson("\"Green\"", value));
    EXPECT_TRUE(readJson("\"blue\"", value));
    EXPECT_EQ(dataOf<int>(value), 2);
}

// ---------------------------------------------------------------------------
// Arrays

TEST_F(DmValueReaderTest, ArrayReadsOneElementPerItem) {
    auto const type = makeArrayType(DmLibrary::getIntType());
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("[\"1\", \"-2\", \"3L\"]", value));
    ASSERT_EQ(as<DmArrayValue>(value)->size(), 3u);
    EXPECT_EQ(elementOf<int>(value, 0), 1);
    EXPECT_EQ(elementOf<int>(value, 1), -2);
    EXPECT_EQ(elementOf<int>(value, 2), 3);
    EXPECT_FALSE(value->isImplicit());
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, EmptyArrayReadsToAZeroSizedArray) {
    auto const type = makeArrayType(DmLibrary::getIntType());
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("[]", value));
    EXPECT_EQ(as<DmArrayValue>(value)->size(), 0u);
    EXPECT_NE(dataOf<Ptr<void>>(value), nullptr);
    EXPECT_FALSE(value->isImplicit());
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, ArrayReplacesWhatTheValueHeld) {
    auto const type = makeArrayType(DmLibrary::getStringType());
    auto const value = type->createValue();
    ASSERT_TRUE(readJson("[\"a\", \"b\", \"c\"]", value));
    EXPECT_TRUE(readJson("[\"d\"]", value));
    ASSERT_EQ(as<DmArrayValue>(value)->size(), 1u);
    EXPECT_EQ(elementOf<String>(value, 0), String("d"));
}

TEST_F(DmValueReaderTest, ArrayGivenAsAnObjectIsRefusedAsNotAnArray) {
    auto const type = makeArrayType(DmLibrary::getIntType());
    auto const value = type->createValue();
    EXPECT_FALSE(readJson("{\"0\": \"1\"}", value));
    EXPECT_TRUE(value->isImplicit());
    EXPECT_EQ(messages(),
              Messages{valueError("Value should be specified as an array.",
                                  "Value of type 'array<int>' should be specified as an array.")});
}

TEST_F(DmValueReaderTest, AFailedElementTakesTheDefaultAndTheArrayStillReads) {
    auto const type = makeArrayType(DmLibrary::getIntType());
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("[\"1\", \"abc\", \"3\"]", value));
    ASSERT_EQ(as<DmArrayValue>(value)->size(), 3u);
    EXPECT_EQ(elementOf<int>(value, 0), 1);
    EXPECT_EQ(elementOf<int>(value, 1), 0);
    EXPECT_EQ(elementOf<int>(value, 2), 3);
    EXPECT_EQ(messages(),
              (Messages{badlyFormed("abc"), valueWarning("Invalid array element.",
                                                         "Unable to load element 1 of a value of type "
                                                         "'array<int>'. It keeps the default value.")}));
}

TEST_F(DmValueReaderTest, AFailedElementTakesTheDefaultOfItsTypeNotZero) {
    auto const color = colorType();
    auto const type = makeArrayType(color);
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("[\"Blue\", 5]", value));
    ASSERT_EQ(as<DmArrayValue>(value)->size(), 2u);
    EXPECT_EQ(elementOf<int>(value, 0), 4);
    EXPECT_EQ(elementOf<int>(value, 1), 1);
    EXPECT_EQ(messages(), (Messages{valueError("Value should be specified as a string.",
                                               "Value of type 'Color' should be specified as a string."),
                                    valueWarning("Invalid array element.",
                                                 "Unable to load element 1 of a value of type "
                                                 "'array<Color>'. It keeps the default value.")}));
}

TEST_F(DmValueReaderTest, NestedArraysRead) {
    auto const inner = makeArrayType(DmLibrary::getIntType());
    auto const type = makeArrayType(inner);
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("[[\"1\", \"2\"], [], [\"3\"]]", value));
    auto const outer = as<DmArrayValue>(value);
    ASSERT_EQ(outer->size(), 3u);
    auto const first = outer->at(0);
    ASSERT_EQ(as<DmArrayValue>(first)->size(), 2u);
    EXPECT_EQ(elementOf<int>(first, 0), 1);
    EXPECT_EQ(elementOf<int>(first, 1), 2);
    EXPECT_EQ(as<DmArrayValue>(outer->at(1))->size(), 0u);
    auto const third = outer->at(2);
    ASSERT_EQ(as<DmArrayValue>(third)->size(), 1u);
    EXPECT_EQ(elementOf<int>(third, 0), 3);
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, AFailedInnerArrayIsAnEmptyArrayOfItsOwn) {
    auto const inner = makeArrayType(DmLibrary::getIntType());
    auto const type = makeArrayType(inner);
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("[\"x\", [\"1\"], \"y\"]", value));
    auto const outer = as<DmArrayValue>(value);
    ASSERT_EQ(outer->size(), 3u);
    auto const first = dataOf<Ptr<void>>(outer->at(0));
    auto const last = dataOf<Ptr<void>>(outer->at(2));
    EXPECT_NE(first, nullptr);
    EXPECT_NE(first, last);
    EXPECT_EQ(as<DmArrayValue>(outer->at(0))->size(), 0u);
    EXPECT_EQ(elementOf<int>(outer->at(1), 0), 1);
    EXPECT_EQ(m_logger.getErrorCount(), 2u);
    EXPECT_EQ(m_logger.getWarningCount(), 2u);
}

TEST_F(DmValueReaderTest, ArrayOfStructsReadsEachStruct) {
    auto const point = pointType();
    auto const type = makeArrayType(point);
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("[{\"x\": \"1\", \"y\": \"2\"}, {\"y\": \"4\"}]", value));
    auto const array = as<DmArrayValue>(value);
    ASSERT_EQ(array->size(), 2u);
    auto const first = as<DmStructValue>(array->at(0));
    auto const second = as<DmStructValue>(array->at(1));
    EXPECT_EQ(member<DmIntValue>(*first, "x")->getData(), 1);
    EXPECT_EQ(member<DmIntValue>(*first, "y")->getData(), 2);
    EXPECT_EQ(member<DmIntValue>(*second, "x")->getData(), 0);
    EXPECT_EQ(member<DmIntValue>(*second, "y")->getData(), 4);
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, AStructElementThatFailsHalfwayIsWhollyTheDefault) {
    auto const point = pointType();
    auto const type = makeArrayType(point);
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("[{\"x\": \"5\", \"y\": \"bad\"}]", value));
    auto const element = as<DmStructValue>(as<DmArrayValue>(value)->at(0));
    EXPECT_EQ(member<DmIntValue>(*element, "x")->getData(), 0);
    EXPECT_EQ(member<DmIntValue>(*element, "y")->getData(), 0);
    EXPECT_EQ(messages(), (Messages{badlyFormed("bad"),
                                    valueError("Invalid struct member.", "Unable to load struct member 'y'."),
                                    valueWarning("Invalid array element.",
                                                 "Unable to load element 0 of a value of type "
                                                 "'array<Point>'. It keeps the default value.")}));
}

TEST_F(DmValueReaderTest, ArrayOfStringsKeepsEveryString) {
    auto const type = makeArrayType(DmLibrary::getStringType());
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("[\"alpha\", \"\", \"gamma\"]", value));
    EXPECT_EQ(elementOf<String>(value, 0), String("alpha"));
    EXPECT_EQ(elementOf<String>(value, 1), String(""));
    EXPECT_EQ(elementOf<String>(value, 2), String("gamma"));
}

TEST_F(DmValueReaderTest, ArrayAsAStructMemberWritesIntoTheStruct) {
    auto const type = makeStructType("Path", {{"points", makeArrayType(DmLibrary::getIntType())}});
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("{\"points\": [\"1\", \"2\"]}", value));
    auto const points = member<DmArrayValue>(*as<DmStructValue>(value), "points");
    ASSERT_EQ(points->size(), 2u);
    EXPECT_EQ(dataOf<int>(points->at(1)), 2);
}

// ---------------------------------------------------------------------------
// Structs

TEST_F(DmValueReaderTest, StructOfStringsReadsMemberByMember) {
    auto const type =
        makeStructType("Name", {{"first", DmLibrary::getStringType()}, {"last", DmLibrary::getStringType()}});
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("{\"last\": \"Lovelace\", \"first\": \"Ada\"}", value));
    auto const name = as<DmStructValue>(value);
    EXPECT_EQ(member<DmStringValue>(*name, "first")->getData(), String("Ada"));
    EXPECT_EQ(member<DmStringValue>(*name, "last")->getData(), String("Lovelace"));
    EXPECT_FALSE(value->isImplicit());
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, MembersTheJsonDoesNotNameKeepTheirDefaults) {
    auto const type = makeStructType("Pen", {{"width", DmLibrary::getIntType()}, {"color", colorType()}});
    auto const value = type->createDefaultValue();
    EXPECT_TRUE(readJson("{\"width\": \"3\"}", value));
    auto const pen = as<DmStructValue>(value);
    EXPECT_EQ(member<DmIntValue>(*pen, "width")->getData(), 3);
    EXPECT_EQ(member<DmEnumValue>(*pen, "color")->getData(), 1);
}

TEST_F(DmValueReaderTest, EmptyObjectReadsAndSetsTheStruct) {
    auto const type = pointType();
    auto const value = type->createValue();
    ASSERT_TRUE(value->isImplicit());
    EXPECT_TRUE(readJson("{}", value));
    EXPECT_FALSE(value->isImplicit());
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, StructWithAnExtraMemberWarnsOncePerExtraMemberAndReads) {
    auto const type = pointType();
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("{\"x\": \"1\", \"z\": \"2\", \"y\": \"3\", \"w\": {}}", value));
    auto const point = as<DmStructValue>(value);
    EXPECT_EQ(member<DmIntValue>(*point, "x")->getData(), 1);
    EXPECT_EQ(member<DmIntValue>(*point, "y")->getData(), 3);
    EXPECT_EQ(messages(),
              (Messages{valueWarning("Non-existent struct member.",
                                     "Struct member 'z' is not defined in struct 'Point'. Ignoring it."),
                        valueWarning("Non-existent struct member.",
                                     "Struct member 'w' is not defined in struct 'Point'. Ignoring it.")}));
}

TEST_F(DmValueReaderTest, AFailingMemberStopsTheStructReadAndKeepsWhatWasRead) {
    auto const type = makeStructType(
        "Triple",
        {{"a", DmLibrary::getIntType()}, {"b", DmLibrary::getIntType()}, {"c", DmLibrary::getIntType()}});
    auto const value = type->createValue();
    EXPECT_FALSE(readJson("{\"a\": \"1\", \"b\": \"abc\", \"c\": \"3\", \"d\": \"4\"}", value));
    auto const triple = as<DmStructValue>(value);
    EXPECT_EQ(member<DmIntValue>(*triple, "a")->getData(), 1);
    EXPECT_EQ(member<DmIntValue>(*triple, "c")->getData(), 0);
    EXPECT_EQ(messages(), (Messages{badlyFormed("abc"), valueError("Invalid struct member.",
                                                                   "Unable to load struct member 'b'.")}));
}

TEST_F(DmValueReaderTest, StructGivenAsAStringIsRefusedAsInvalidFormat) {
    auto const type = pointType();
    auto const value = type->createValue();
    EXPECT_FALSE(readJson("\"1, 2\"", value));
    EXPECT_TRUE(value->isImplicit());
    EXPECT_EQ(messages(), Messages{valueError("Invalid struct format.", "Struct value must be an object.")});
}

TEST_F(DmValueReaderTest, StructInAStructReadsIntoTheOuterBuffer) {
    auto const point = pointType();
    auto const type = makeStructType("Segment", {{"from", point}, {"to", point}});
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("{\"from\": {\"x\": \"1\"}, \"to\": {\"x\": \"5\", \"y\": \"6\"}}", value));
    auto const segment = as<DmStructValue>(value);
    auto const to = member<DmStructValue>(*segment, "to");
    EXPECT_EQ(member<DmIntValue>(*to, "y")->getData(), 6);
    EXPECT_EQ(member<DmIntValue>(*member<DmStructValue>(*segment, "from"), "x")->getData(), 1);
}

TEST_F(DmValueReaderTest, UnknownStructReadsMemberByMember) {
    auto const type = makeUnknownStructType("Legacy", {{"n", DmLibrary::getIntType()}});
    auto const value = type->createValue();
    ASSERT_NE(as<DmUnknownStructValue>(value), nullptr);
    EXPECT_TRUE(readJson("{\"n\": \"9\", \"m\": \"1\"}", value));
    EXPECT_EQ(member<DmIntValue>(*as<DmStructValue>(value), "n")->getData(), 9);
    EXPECT_EQ(messages(),
              Messages{valueWarning("Non-existent struct member.",
                                    "Struct member 'm' is not defined in struct 'Legacy'. Ignoring it.")});
}

TEST_F(DmValueReaderTest, UnknownStructGivenAsAnArrayIsRefusedAsInvalidFormat) {
    auto const type = makeUnknownStructType("Legacy", {{"n", DmLibrary::getIntType()}});
    EXPECT_FALSE(readJson("[]", type->createValue()));
    EXPECT_EQ(messages(), Messages{valueError("Invalid struct format.", "Struct value must be an object.")});
}

// ---------------------------------------------------------------------------
// Unknown, undefined, auto

TEST_F(DmValueReaderTest, UnknownValueKeepsTheCharactersOfAString) {
    auto const type = makeUnknownType("Mystery");
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("\"some text\"", value));
    EXPECT_EQ(dataOf<String>(value), String("some text"));
    EXPECT_FALSE(value->isImplicit());
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, UnknownValueKeepsTheJsonTextOfAnyOtherNode) {
    auto const type = makeUnknownType("Mystery");
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("{ \"a\" : \"1\", \"b\" : [\"2\", {\"c\": null}], \"d\": 5 }", value));
    EXPECT_EQ(dataOf<String>(value), String("{\"a\":\"1\",\"b\":[\"2\",{\"c\":null}],\"d\":5}"));
    EXPECT_TRUE(readJson("[true, 1.5]", value));
    EXPECT_EQ(dataOf<String>(value), String("[true,1.5]"));
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, UndefinedTypeIsRefused) {
    auto const value = DmLibrary::getUndefinedType()->createValue();
    ASSERT_NE(value, nullptr);
    EXPECT_FALSE(readJson("\"1\"", value));
    EXPECT_EQ(messages(), Messages{valueError("Undefined type found when reading value.",
                                              "Unable to read a value of undefined type '__undefined__'.")});
}

TEST_F(DmValueReaderTest, AutoTypeIsRefused) {
    auto const value = DmLibrary::getAutoType()->createValue();
    ASSERT_NE(value, nullptr);
    EXPECT_FALSE(readJson("\"1\"", value));
    EXPECT_EQ(messages(), Messages{valueError("Auto type found when reading value.",
                                              "Unable to read a value of auto type 'auto'.")});
}

TEST_F(DmValueReaderTest, NullValueIsRefusedWithoutAMessage) {
    Internal::JsonDocument document(nullptr);
    ASSERT_EQ(document.parse("\"1\"", "test"), DmStatus::kSuccess);
    EXPECT_FALSE(Internal::readValue(m_logger, document.getRoot(), nullptr));
    EXPECT_EQ(messages(), Messages());
}

// ---------------------------------------------------------------------------
// Serialization data

TEST_F(DmValueReaderTest, SerializationDataOfAStringIsALiteral) {
    Internal::JsonDocument document(nullptr);
    ASSERT_EQ(document.parse("\"text\"", "test"), DmStatus::kSuccess);
    SerializationData data;
    EXPECT_TRUE(Internal::readSerializationData(m_logger, document.getRoot(), data));
    ASSERT_TRUE(data.isLiteral());
    EXPECT_EQ(data.asLiteral().getText(), "text");
}

TEST_F(DmValueReaderTest, SerializationDataOfObjectsAndArraysKeepsTheirOrder) {
    Internal::JsonDocument document(nullptr);
    ASSERT_EQ(document.parse("{\"b\": \"1\", \"a\": {\"x\": [\"p\", {}, []]}, \"b\": \"2\"}", "test"),
              DmStatus::kSuccess);
    SerializationData data;
    EXPECT_TRUE(Internal::readSerializationData(m_logger, document.getRoot(), data));
    SequenceSerializationData items;
    items.add(LiteralSerializationData("p"));
    items.add(CompositeSerializationData());
    items.add(SequenceSerializationData());
    CompositeSerializationData inner;
    inner.add("x", items);
    CompositeSerializationData expected;
    expected.add("b", LiteralSerializationData("1"));
    expected.add("a", inner);
    expected.add("b", LiteralSerializationData("2"));
    EXPECT_EQ(data, SerializationData(expected));
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, SerializationDataRefusesNumbersBooleansAndNull) {
    for (char const* json :
         {"{\"a\": 1}", "{\"a\": true}", "[\"a\", null]", "{\"a\": {\"b\": [false]}}", "5"}) {
        m_logger.clear();
        Internal::JsonDocument document(nullptr);
        ASSERT_EQ(document.parse(json, "test"), DmStatus::kSuccess);
        SerializationData data;
        EXPECT_FALSE(Internal::readSerializationData(m_logger, document.getRoot(), data)) << json;
        EXPECT_EQ(messages(), Messages{serializedDataError("Value should be a string, object or array.")})
            << json;
    }
}

TEST_F(DmValueReaderTest, SerializationDataRefusesAMemberWithAnEmptyName) {
    Internal::JsonDocument document(nullptr);
    ASSERT_EQ(document.parse("{\"a\": \"1\", \"\": \"2\"}", "test"), DmStatus::kSuccess);
    SerializationData data;
    EXPECT_FALSE(Internal::readSerializationData(m_logger, document.getRoot(), data));
    Message const expected{BaMessageTypes::kMessageError, "<serialized data>", "Member requires a name.",
                           "Class members requires a name."};
    EXPECT_EQ(messages(), Messages{expected});
}

// ---------------------------------------------------------------------------
// Deep nesting

TEST_F(DmValueReaderTest, NineHundredNestedArraysReadIntoAsDeepAnArrayType) {
    std::vector<std::shared_ptr<DmArrayType>> types;
    TypeConstPtr element = DmLibrary::getIntType();
    for (int i = 0; i < 900; ++i) {
        types.push_back(makeArrayType(element));
        element = types.back();
    }
    auto const value = types.back()->createValue();
    EXPECT_TRUE(readJson(nested("[", "\"42\"", "]", 900), value));
    std::shared_ptr<DmBaseValue> walk = value;
    for (int i = 0; i < 899; ++i) {
        auto const array = as<DmArrayValue>(walk);
        ASSERT_NE(array, nullptr);
        ASSERT_EQ(array->size(), 1u);
        walk = array->at(0);
    }
    EXPECT_EQ(elementOf<int>(walk, 0), 42);
    EXPECT_EQ(messages(), Messages());
    walk.reset();
}

TEST_F(DmValueReaderTest, NineHundredNestedArraysReadIntoAnAny) {
    auto const value = DmLibrary::getAnyType()->createValue();
    EXPECT_TRUE(readJson(nested("[", "", "]", 900), value));
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmValueReaderTest, NineHundredNestedArraysIntoAnArrayOfIntFailTheOneElement) {
    auto const type = makeArrayType(DmLibrary::getIntType());
    auto const value = type->createValue();
    EXPECT_TRUE(readJson(nested("[", "", "]", 900), value));
    EXPECT_EQ(as<DmArrayValue>(value)->size(), 1u);
    EXPECT_EQ(m_logger.getErrorCount(), 1u);
    EXPECT_EQ(m_logger.getWarningCount(), 1u);
}

TEST_F(DmValueReaderTest, NineHundredNestedArraysAreKeptAsTextByAnUnknownValue) {
    auto const type = makeUnknownType("Mystery");
    auto const value = type->createValue();
    std::string const json = nested("[", "", "]", 900);
    EXPECT_TRUE(readJson(json, value));
    EXPECT_EQ(dataOf<String>(value), String(json));
}

TEST_F(DmValueReaderTest, NineHundredNestedObjectsBecomeNineHundredLevelsOfSerializationData) {
    Internal::JsonDocument document(nullptr);
    ASSERT_EQ(document.parse(nested("{\"a\": ", "\"leaf\"", "}", 900), "test"), DmStatus::kSuccess);
    SerializationData data;
    EXPECT_TRUE(Internal::readSerializationData(m_logger, document.getRoot(), data));
    SerializationData const* walk = &data;
    for (int i = 0; i < 900; ++i) {
        ASSERT_TRUE(walk->isComposite());
        walk = walk->asComposite().find("a");
        ASSERT_NE(walk, nullptr);
    }
    EXPECT_EQ(walk->asLiteral().getText(), "leaf");
}

TEST_F(DmValueReaderTest, AValueTextBeyondTheNestingLimitDoesNotParse) {
    Internal::JsonDocument document(nullptr);
    EXPECT_EQ(document.parse(std::string(100000, '['), "test"), DmStatus::kReserved5);
    EXPECT_FALSE(document.isParsed());
}

TEST_F(DmValueReaderTest, ArrayOfUndefinedElementsReadsWithEveryElementRefused) {
    auto const type = makeArrayType(DmLibrary::getUndefinedType());
    auto const value = type->createValue();
    EXPECT_TRUE(readJson("[\"1\"]", value));
    EXPECT_EQ(as<DmArrayValue>(value)->size(), 1u);
    EXPECT_EQ(messages(), (Messages{valueError("Undefined type found when reading value.",
                                               "Unable to read a value of undefined type '__undefined__'."),
                                    valueWarning("Invalid array element.",
                                                 "Unable to load element 0 of a value of type "
                                                 "'array<__undefined__>'. It keeps the default value.")}));
}

TEST_F(DmValueReaderTest, ArrayWithoutAnElementTypeIsRefused) {
    auto const type = makeArrayType(nullptr);
    auto const value = type->createValue();
    EXPECT_FALSE(readJson("[\"1\"]", value));
    EXPECT_TRUE(value->isImplicit());
    EXPECT_EQ(messages(),
              Messages{valueError("Invalid array value.", "Unable to make an array of type 'array'.")});
}
