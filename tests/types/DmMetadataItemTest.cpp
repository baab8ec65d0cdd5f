// The values of metadata items: the kind each constructor fixes, every
// conversion of the getters and setters between bool, long, double and
// string, the answers of items without a value or with a value of another
// kind, the 32-bit limit of texts written into long items, and deep clones.
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "types/ValueTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using namespace Kesto::ValueTest;

namespace {

using ItemPtr = std::shared_ptr<DmMetadataItem>;

constexpr std::int64_t kLongMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLongMin = std::numeric_limits<std::int64_t>::min();

ItemPtr boolItem(bool value) {
    return std::make_shared<DmMetadataItem>("flag", value);
}
ItemPtr longItem(std::int64_t value) {
    return std::make_shared<DmMetadataItem>("count", value);
}
ItemPtr doubleItem(double value) {
    return std::make_shared<DmMetadataItem>("ratio", value);
}
ItemPtr stringItem(std::string const& value) {
    return std::make_shared<DmMetadataItem>("label", value);
}
/// An item holding an int: a value of none of the four kinds.
ItemPtr intItem(int value) {
    auto number = std::make_shared<DmIntValue>();
    number->setData(value);
    return std::make_shared<DmMetadataItem>("other", std::shared_ptr<DmBaseValue>(number));
}

DmTypeKind kindOf(DmMetadataItem const& item) {
    return item.getValue()->getType()->getTypeKind();
}

bool boolOf(DmMetadataItem const& item) {
    bool out = false;
    EXPECT_EQ(item.getBoolValue(out), DmStatus::kSuccess);
    return out;
}
std::int64_t longOf(DmMetadataItem const& item) {
    std::int64_t out = 0;
    EXPECT_EQ(item.getLongValue(out), DmStatus::kSuccess);
    return out;
}
double doubleOf(DmMetadataItem const& item) {
    double out = 0.0;
    EXPECT_EQ(item.getDoubleValue(out), DmStatus::kSuccess);
    return out;
}
std::string stringOf(DmMetadataItem const& item) {
    std::string out;
    EXPECT_EQ(item.getStringValue(out), DmStatus::kSuccess);
    return out;
}

/// The datum held, read straight from the value.
bool heldBool(DmMetadataItem const& item) {
    return static_cast<DmBoolValue const&>(*item.getValue()).getData();
}
std::int64_t heldLong(DmMetadataItem const& item) {
    return static_cast<DmLongValue const&>(*item.getValue()).getData();
}
double heldDouble(DmMetadataItem const& item) {
    return static_cast<DmDoubleValue const&>(*item.getValue()).getData();
}
std::string heldString(DmMetadataItem const& item) {
    return static_cast<DmStringValue const&>(*item.getValue()).getData().str();
}

} // namespace

class DmMetadataItemValue : public ValueTestBase {};

// ---------------------------------------------------------------------------
// Constructors fix the kind

TEST_F(DmMetadataItemValue, NameOnlyItemHasNoValue) {
    DmMetadataItem const item("author");
    EXPECT_FALSE(item.hasValue());
    EXPECT_EQ(item.getValue(), nullptr);
}

TEST_F(DmMetadataItemValue, StringConstructorMakesAStringValue) {
    DmMetadataItem const item("label", std::string("some text"));
    ASSERT_TRUE(item.hasValue());
    EXPECT_NE(as<DmStringValue>(item.getValue()), nullptr);
    EXPECT_EQ(item.getValue()->getType(), Singletons::stringType());
    EXPECT_EQ(kindOf(item), kTypeString);
    EXPECT_EQ(heldString(item), "some text");
}

TEST_F(DmMetadataItemValue, TextLiteralMakesAStringItem) {
    DmMetadataItem const item("n", "text");
    ASSERT_TRUE(item.hasValue());
    EXPECT_EQ(kindOf(item), kTypeString);
    EXPECT_EQ(heldString(item), "text");
}

TEST_F(DmMetadataItemValue, NullTextMakesAnEmptyStringItem) {
    DmMetadataItem const item("n", static_cast<char const*>(nullptr));
    ASSERT_TRUE(item.hasValue());
    EXPECT_EQ(kindOf(item), kTypeString);
    EXPECT_EQ(heldString(item), "");
}

TEST_F(DmMetadataItemValue, DoubleConstructorMakesADoubleValue) {
    DmMetadataItem const item("ratio", 2.5);
    ASSERT_TRUE(item.hasValue());
    EXPECT_NE(as<DmDoubleValue>(item.getValue()), nullptr);
    EXPECT_EQ(kindOf(item), kTypeDouble);
    EXPECT_EQ(heldDouble(item), 2.5);
}

TEST_F(DmMetadataItemValue, LongConstructorMakesALongValue) {
    DmMetadataItem const item("count", kLongMin);
    ASSERT_TRUE(item.hasValue());
    EXPECT_NE(as<DmLongValue>(item.getValue()), nullptr);
    EXPECT_EQ(kindOf(item), kTypeLong);
    EXPECT_EQ(heldLong(item), kLongMin);
}

TEST_F(DmMetadataItemValue, IntegerLiteralMakesALongItem) {
    DmMetadataItem const item("n", 5);
    ASSERT_TRUE(item.hasValue());
    EXPECT_NE(as<DmLongValue>(item.getValue()), nullptr);
    EXPECT_EQ(kindOf(item), kTypeLong);
    EXPECT_EQ(heldLong(item), 5);
}

TEST_F(DmMetadataItemValue, BoolConstructorMakesABoolValue) {
    DmMetadataItem const item("flag", true);
    ASSERT_TRUE(item.hasValue());
    EXPECT_NE(as<DmBoolValue>(item.getValue()), nullptr);
    EXPECT_EQ(kindOf(item), kTypeBool);
    EXPECT_TRUE(heldBool(item));
}

TEST_F(DmMetadataItemValue, ConstructedValuesAreSet) {
    EXPECT_FALSE(DmMetadataItem("flag", false).getValue()->isImplicit());
    EXPECT_FALSE(DmMetadataItem("count", std::int64_t(0)).getValue()->isImplicit());
    EXPECT_FALSE(DmMetadataItem("ratio", 0.0).getValue()->isImplicit());
    EXPECT_FALSE(DmMetadataItem("label", std::string()).getValue()->isImplicit());
}

TEST_F(DmMetadataItemValue, ValueConstructorHoldsTheGivenValue) {
    auto const number = std::make_shared<DmIntValue>();
    DmMetadataItem const item("other", std::shared_ptr<DmBaseValue>(number));
    EXPECT_EQ(item.getValue(), number);
    EXPECT_EQ(kindOf(item), kTypeInt);
}

TEST_F(DmMetadataItemValue, ValueConstructorWithNullMakesAnItemWithoutValue) {
    DmMetadataItem const item("other", std::shared_ptr<DmBaseValue>());
    EXPECT_FALSE(item.hasValue());
}

TEST_F(DmMetadataItemValue, ClearDropsTheValue) {
    auto const item = longItem(3);
    item->clear();
    EXPECT_FALSE(item->hasValue());
    std::int64_t out = 9;
    EXPECT_EQ(item->getLongValue(out), DmStatus::kFailure);
    EXPECT_EQ(out, 9);
}

// ---------------------------------------------------------------------------
// getBoolValue

TEST_F(DmMetadataItemValue, GetBoolFromBoolIsTheBool) {
    EXPECT_TRUE(boolOf(*boolItem(true)));
    EXPECT_FALSE(boolOf(*boolItem(false)));
}

TEST_F(DmMetadataItemValue, GetBoolFromLongIsNotZero) {
    EXPECT_FALSE(boolOf(*longItem(0)));
    EXPECT_TRUE(boolOf(*longItem(7)));
    EXPECT_TRUE(boolOf(*longItem(-1)));
    EXPECT_TRUE(boolOf(*longItem(kLongMin)));
}

TEST_F(DmMetadataItemValue, GetBoolFromDoubleIsNotZero) {
    EXPECT_FALSE(boolOf(*doubleItem(0.0)));
    EXPECT_FALSE(boolOf(*doubleItem(-0.0)));
    EXPECT_TRUE(boolOf(*doubleItem(0.5)));
    EXPECT_TRUE(boolOf(*doubleItem(-1e-300)));
    EXPECT_TRUE(boolOf(*doubleItem(std::nan(""))));
}

TEST_F(DmMetadataItemValue, GetBoolFromStringIsTrueForTheThreeSpellingsOfTrue) {
    EXPECT_TRUE(boolOf(*stringItem("true")));
    EXPECT_TRUE(boolOf(*stringItem("TRUE")));
    EXPECT_TRUE(boolOf(*stringItem("True")));
}

TEST_F(DmMetadataItemValue, GetBoolFromStringIsFalseForAnyOtherText) {
    for (char const* text : {"tRUE", "TRue", "trUE", "truE", "yes", "1", "false", "", " true", "true "}) {
        EXPECT_FALSE(boolOf(*stringItem(text))) << '"' << text << '"';
    }
}

// ---------------------------------------------------------------------------
// getLongValue

TEST_F(DmMetadataItemValue, GetLongFromBoolIsZeroOrOne) {
    EXPECT_EQ(longOf(*boolItem(true)), 1);
    EXPECT_EQ(longOf(*boolItem(false)), 0);
}

TEST_F(DmMetadataItemValue, GetLongFromLongIsTheLong) {
    EXPECT_EQ(longOf(*longItem(kLongMax)), kLongMax);
    EXPECT_EQ(longOf(*longItem(-12)), -12);
}

TEST_F(DmMetadataItemValue, GetLongFromDoubleTruncatesTowardsZero) {
    EXPECT_EQ(longOf(*doubleItem(2.9)), 2);
    EXPECT_EQ(longOf(*doubleItem(-2.9)), -2);
    EXPECT_EQ(longOf(*doubleItem(-0.5)), 0);
}

TEST_F(DmMetadataItemValue, GetLongFromDoubleSaturatesAndReadsNaNAsZero) {
    EXPECT_EQ(longOf(*doubleItem(1e300)), kLongMax);
    EXPECT_EQ(longOf(*doubleItem(-1e300)), kLongMin);
    EXPECT_EQ(longOf(*doubleItem(9223372036854775808.0)), kLongMax);
    EXPECT_EQ(longOf(*doubleItem(-9223372036854775808.0)), kLongMin);
    EXPECT_EQ(longOf(*doubleItem(std::numeric_limits<double>::infinity())), kLongMax);
    EXPECT_EQ(longOf(*doubleItem(std::nan(""))), 0);
}

TEST_F(DmMetadataItemValue, GetLongFromStringParsesWithBaseZero) {
    EXPECT_EQ(longOf(*stringItem("42")), 42);
    EXPECT_EQ(longOf(*stringItem("-7")), -7);
    EXPECT_EQ(longOf(*stringItem("0x10")), 16);
    EXPECT_EQ(longOf(*stringItem("010")), 8);
    EXPECT_EQ(longOf(*stringItem("  12abc")), 12);
    EXPECT_EQ(longOf(*stringItem("abc")), 0);
    EXPECT_EQ(longOf(*stringItem("5000000000")), 5000000000);
}

TEST_F(DmMetadataItemValue, GetLongFromAnOutOfRangeStringIsTheLimit) {
    EXPECT_EQ(longOf(*stringItem("99999999999999999999")), kLongMax);
    EXPECT_EQ(longOf(*stringItem("-99999999999999999999")), kLongMin);
}

// ---------------------------------------------------------------------------
// getDoubleValue

TEST_F(DmMetadataItemValue, GetDoubleFromBoolIsZeroOrOne) {
    EXPECT_EQ(doubleOf(*boolItem(true)), 1.0);
    EXPECT_EQ(doubleOf(*boolItem(false)), 0.0);
}

TEST_F(DmMetadataItemValue, GetDoubleFromLongIsConverted) {
    EXPECT_EQ(doubleOf(*longItem(-7)), -7.0);
    EXPECT_EQ(doubleOf(*longItem((std::int64_t(1) << 53) + 1)), 9007199254740992.0);
}

TEST_F(DmMetadataItemValue, GetDoubleFromDoubleIsTheDouble) {
    EXPECT_EQ(doubleOf(*doubleItem(0.1)), 0.1);
    EXPECT_TRUE(std::isnan(doubleOf(*doubleItem(std::nan("")))));
}

TEST_F(DmMetadataItemValue, GetDoubleFromStringParsesWithStrtod) {
    EXPECT_EQ(doubleOf(*stringItem("2.5")), 2.5);
    EXPECT_EQ(doubleOf(*stringItem("-1e3")), -1000.0);
    EXPECT_EQ(doubleOf(*stringItem("0x10")), 16.0);
    EXPECT_EQ(doubleOf(*stringItem("3.5kg")), 3.5);
    EXPECT_EQ(doubleOf(*stringItem("abc")), 0.0);
}

// ---------------------------------------------------------------------------
// getStringValue

TEST_F(DmMetadataItemValue, GetStringFromBoolIsTrueOrFalse) {
    EXPECT_EQ(stringOf(*boolItem(true)), "true");
    EXPECT_EQ(stringOf(*boolItem(false)), "false");
}

TEST_F(DmMetadataItemValue, GetStringFromLongIsDecimal) {
    EXPECT_EQ(stringOf(*longItem(-42)), "-42");
    EXPECT_EQ(stringOf(*longItem(0)), "0");
    EXPECT_EQ(stringOf(*longItem(kLongMin)), "-9223372036854775808");
}

TEST_F(DmMetadataItemValue, GetStringFromDoubleGoesThroughAStringStream) {
    EXPECT_EQ(stringOf(*doubleItem(0.1)), "0.1");
    EXPECT_EQ(stringOf(*doubleItem(1e20)), "1e+20");
    EXPECT_EQ(stringOf(*doubleItem(2.5)), "2.5");
    EXPECT_EQ(stringOf(*doubleItem(1234567.0)), "1.23457e+06");
    EXPECT_EQ(stringOf(*doubleItem(3.0)), "3");
    EXPECT_EQ(stringOf(*doubleItem(-0.0)), "-0");
}

TEST_F(DmMetadataItemValue, GetStringFromStringIsTheText) {
    EXPECT_EQ(stringOf(*stringItem("as it stands ")), "as it stands ");
    EXPECT_EQ(stringOf(*stringItem("")), "");
}

// ---------------------------------------------------------------------------
// Setters write into the kind the item holds

TEST_F(DmMetadataItemValue, SetBoolIntoEachKind) {
    auto const b = boolItem(false);
    auto const l = longItem(5);
    auto const d = doubleItem(5.5);
    auto const s = stringItem("x");
    EXPECT_EQ(b->setBoolValue(true), DmStatus::kSuccess);
    EXPECT_EQ(l->setBoolValue(true), DmStatus::kSuccess);
    EXPECT_EQ(d->setBoolValue(false), DmStatus::kSuccess);
    EXPECT_EQ(s->setBoolValue(true), DmStatus::kSuccess);
    EXPECT_TRUE(heldBool(*b));
    EXPECT_EQ(heldLong(*l), 1);
    EXPECT_EQ(heldDouble(*d), 0.0);
    EXPECT_EQ(heldString(*s), "true");
    EXPECT_EQ(l->setBoolValue(false), DmStatus::kSuccess);
    EXPECT_EQ(heldLong(*l), 0);
    EXPECT_EQ(d->setBoolValue(true), DmStatus::kSuccess);
    EXPECT_EQ(heldDouble(*d), 1.0);
    EXPECT_EQ(s->setBoolValue(false), DmStatus::kSuccess);
    EXPECT_EQ(heldString(*s), "false");
}

TEST_F(DmMetadataItemValue, SetLongIntoEachKind) {
    auto const b = boolItem(false);
    auto const l = longItem(5);
    auto const d = doubleItem(5.5);
    auto const s = stringItem("x");
    EXPECT_EQ(b->setLongValue(-3), DmStatus::kSuccess);
    EXPECT_EQ(l->setLongValue(kLongMax), DmStatus::kSuccess);
    EXPECT_EQ(d->setLongValue(-9), DmStatus::kSuccess);
    EXPECT_EQ(s->setLongValue(-42), DmStatus::kSuccess);
    EXPECT_TRUE(heldBool(*b));
    EXPECT_EQ(heldLong(*l), kLongMax);
    EXPECT_EQ(heldDouble(*d), -9.0);
    EXPECT_EQ(heldString(*s), "-42");
    EXPECT_EQ(b->setLongValue(0), DmStatus::kSuccess);
    EXPECT_FALSE(heldBool(*b));
}

TEST_F(DmMetadataItemValue, SetDoubleIntoEachKind) {
    auto const b = boolItem(false);
    auto const l = longItem(5);
    auto const d = doubleItem(5.5);
    auto const s = stringItem("x");
    EXPECT_EQ(b->setDoubleValue(0.1), DmStatus::kSuccess);
    EXPECT_EQ(l->setDoubleValue(-2.9), DmStatus::kSuccess);
    EXPECT_EQ(d->setDoubleValue(0.25), DmStatus::kSuccess);
    EXPECT_EQ(s->setDoubleValue(1e20), DmStatus::kSuccess);
    EXPECT_TRUE(heldBool(*b));
    EXPECT_EQ(heldLong(*l), -2);
    EXPECT_EQ(heldDouble(*d), 0.25);
    EXPECT_EQ(heldString(*s), "1e+20");
    EXPECT_EQ(b->setDoubleValue(0.0), DmStatus::kSuccess);
    EXPECT_FALSE(heldBool(*b));
    EXPECT_EQ(s->setDoubleValue(0.1), DmStatus::kSuccess);
    EXPECT_EQ(heldString(*s), "0.1");
}

TEST_F(DmMetadataItemValue, SetDoubleIntoALongTruncatesSaturatesAndReadsNaNAsZero) {
    auto const l = longItem(5);
    EXPECT_EQ(l->setDoubleValue(2.9), DmStatus::kSuccess);
    EXPECT_EQ(heldLong(*l), 2);
    EXPECT_EQ(l->setDoubleValue(1e300), DmStatus::kSuccess);
    EXPECT_EQ(heldLong(*l), kLongMax);
    EXPECT_EQ(l->setDoubleValue(-1e300), DmStatus::kSuccess);
    EXPECT_EQ(heldLong(*l), kLongMin);
    EXPECT_EQ(l->setDoubleValue(-std::numeric_limits<double>::infinity()), DmStatus::kSuccess);
    EXPECT_EQ(heldLong(*l), kLongMin);
    EXPECT_EQ(l->setDoubleValue(std::nan("")), DmStatus::kSuccess);
    EXPECT_EQ(heldLong(*l), 0);
}

TEST_F(DmMetadataItemValue, SetStringIntoABoolReadsTheThreeSpellingsOfTrue) {
    auto const b = boolItem(false);
    for (char const* text : {"true", "TRUE", "True"}) {
        ASSERT_EQ(b->setBoolValue(false), DmStatus::kSuccess);
        EXPECT_EQ(b->setStringValue(text), DmStatus::kSuccess) << text;
        EXPECT_TRUE(heldBool(*b)) << text;
    }
    for (char const* text : {"tRUE", "yes", "1", "TrUe", ""}) {
        ASSERT_EQ(b->setBoolValue(true), DmStatus::kSuccess);
        EXPECT_EQ(b->setStringValue(text), DmStatus::kSuccess) << text;
        EXPECT_FALSE(heldBool(*b)) << text;
    }
}

TEST_F(DmMetadataItemValue, SetStringIntoADoubleParsesWithStrtod) {
    auto const d = doubleItem(5.5);
    EXPECT_EQ(d->setStringValue("2.5"), DmStatus::kSuccess);
    EXPECT_EQ(heldDouble(*d), 2.5);
    EXPECT_EQ(d->setStringValue("-1e-3"), DmStatus::kSuccess);
    EXPECT_EQ(heldDouble(*d), -0.001);
    EXPECT_EQ(d->setStringValue("abc"), DmStatus::kSuccess);
    EXPECT_EQ(heldDouble(*d), 0.0);
}

TEST_F(DmMetadataItemValue, SetStringIntoAStringTakesTheTextAsItStands) {
    auto const s = stringItem("x");
    EXPECT_EQ(s->setStringValue(" 0x10 TRUE "), DmStatus::kSuccess);
    EXPECT_EQ(heldString(*s), " 0x10 TRUE ");
}

TEST_F(DmMetadataItemValue, SettersNeverChangeTheKindOrTheValueObject) {
    std::vector<ItemPtr> const items = {boolItem(true), longItem(1), doubleItem(1.0), stringItem("1")};
    for (ItemPtr const& item : items) {
        std::shared_ptr<DmBaseValue> const value = item->getValue();
        DmTypeKind const kind = kindOf(*item);
        EXPECT_EQ(item->setBoolValue(false), DmStatus::kSuccess);
        EXPECT_EQ(item->setLongValue(7), DmStatus::kSuccess);
        EXPECT_EQ(item->setDoubleValue(7.5), DmStatus::kSuccess);
        EXPECT_EQ(item->setStringValue("8"), DmStatus::kSuccess);
        EXPECT_EQ(item->getValue(), value);
        EXPECT_EQ(kindOf(*item), kind);
    }
}

// ---------------------------------------------------------------------------
// Texts written into long items must fit 32 bits

TEST_F(DmMetadataItemValue, SetStringIntoALongAcceptsTheLargest32BitInteger) {
    auto const l = longItem(5);
    EXPECT_EQ(l->setStringValue("2147483647"), DmStatus::kSuccess);
    EXPECT_EQ(heldLong(*l), 2147483647);
}

TEST_F(DmMetadataItemValue, SetStringIntoALongAcceptsTheSmallest32BitInteger) {
    auto const l = longItem(5);
    EXPECT_EQ(l->setStringValue("-2147483648"), DmStatus::kSuccess);
    EXPECT_EQ(heldLong(*l), -2147483648LL);
}

TEST_F(DmMetadataItemValue, SetStringIntoALongRefusesOneAboveThe32BitRange) {
    auto const l = longItem(5);
    EXPECT_EQ(l->setStringValue("2147483648"), DmStatus::kInvalidArgument);
    EXPECT_EQ(heldLong(*l), 5);
}

TEST_F(DmMetadataItemValue, SetStringIntoALongRefusesOneBelowThe32BitRange) {
    auto const l = longItem(5);
    EXPECT_EQ(l->setStringValue("-2147483649"), DmStatus::kInvalidArgument);
    EXPECT_EQ(heldLong(*l), 5);
}

TEST_F(DmMetadataItemValue, SetStringIntoALongRefusesATextOutOfRangeForStrtoll) {
    auto const l = longItem(5);
    EXPECT_EQ(l->setStringValue("99999999999999999999"), DmStatus::kInvalidArgument);
    EXPECT_EQ(l->setStringValue("-99999999999999999999"), DmStatus::kInvalidArgument);
    EXPECT_EQ(heldLong(*l), 5);
}

TEST_F(DmMetadataItemValue, SetStringIntoALongParsesWithBaseZero) {
    auto const l = longItem(5);
    EXPECT_EQ(l->setStringValue("0x10"), DmStatus::kSuccess);
    EXPECT_EQ(heldLong(*l), 16);
    EXPECT_EQ(l->setStringValue("010"), DmStatus::kSuccess);
    EXPECT_EQ(heldLong(*l), 8);
    EXPECT_EQ(l->setStringValue("-0x7fffffff"), DmStatus::kSuccess);
    EXPECT_EQ(heldLong(*l), -2147483647);
}

TEST_F(DmMetadataItemValue, SetStringIntoALongReadsATextWithoutDigitsAsZero) {
    auto const l = longItem(5);
    EXPECT_EQ(l->setStringValue("abc"), DmStatus::kSuccess);
    EXPECT_EQ(heldLong(*l), 0);
}

// ---------------------------------------------------------------------------
// Items of another kind

TEST_F(DmMetadataItemValue, GetLongOnAnIntItemSucceedsAndLeavesTheArgument) {
    auto const item = intItem(17);
    std::int64_t out = -5;
    EXPECT_EQ(item->getLongValue(out), DmStatus::kSuccess);
    EXPECT_EQ(out, -5);
}

TEST_F(DmMetadataItemValue, OtherGettersOnAnIntItemFailAndLeaveTheArgument) {
    auto const item = intItem(17);
    bool flag = true;
    double ratio = 1.5;
    std::string text = "before";
    EXPECT_EQ(item->getBoolValue(flag), DmStatus::kFailure);
    EXPECT_EQ(item->getDoubleValue(ratio), DmStatus::kFailure);
    EXPECT_EQ(item->getStringValue(text), DmStatus::kFailure);
    EXPECT_TRUE(flag);
    EXPECT_EQ(ratio, 1.5);
    EXPECT_EQ(text, "before");
}

TEST_F(DmMetadataItemValue, SettersOnAnIntItemFailAndLeaveTheValue) {
    auto const item = intItem(17);
    EXPECT_EQ(item->setBoolValue(true), DmStatus::kFailure);
    EXPECT_EQ(item->setLongValue(3), DmStatus::kFailure);
    EXPECT_EQ(item->setDoubleValue(3.5), DmStatus::kFailure);
    EXPECT_EQ(item->setStringValue("3"), DmStatus::kFailure);
    EXPECT_EQ(as<DmIntValue>(item->getValue())->getData(), 17);
    EXPECT_EQ(kindOf(*item), kTypeInt);
}

TEST_F(DmMetadataItemValue, AFloatItemAnswersAsAnIntItem) {
    auto const number = std::make_shared<DmFloatValue>();
    ASSERT_TRUE(number->setData(2.5f));
    DmMetadataItem item("other", std::shared_ptr<DmBaseValue>(number));
    std::int64_t out = 4;
    bool flag = false;
    EXPECT_EQ(item.getLongValue(out), DmStatus::kSuccess);
    EXPECT_EQ(out, 4);
    EXPECT_EQ(item.getBoolValue(flag), DmStatus::kFailure);
    EXPECT_EQ(item.setDoubleValue(1.0), DmStatus::kFailure);
    EXPECT_EQ(number->getData(), 2.5f);
}

// ---------------------------------------------------------------------------
// Items without a value

TEST_F(DmMetadataItemValue, EveryGetterOfAnItemWithoutValueFailsAndLeavesTheArgument) {
    DmMetadataItem const item("empty");
    bool flag = true;
    std::int64_t number = 11;
    double ratio = 1.5;
    std::string text = "before";
    EXPECT_EQ(item.getBoolValue(flag), DmStatus::kFailure);
    EXPECT_EQ(item.getLongValue(number), DmStatus::kFailure);
    EXPECT_EQ(item.getDoubleValue(ratio), DmStatus::kFailure);
    EXPECT_EQ(item.getStringValue(text), DmStatus::kFailure);
    EXPECT_TRUE(flag);
    EXPECT_EQ(number, 11);
    EXPECT_EQ(ratio, 1.5);
    EXPECT_EQ(text, "before");
}

TEST_F(DmMetadataItemValue, EverySetterOfAnItemWithoutValueFailsAndAddsNoValue) {
    DmMetadataItem item("empty");
    EXPECT_EQ(item.setBoolValue(true), DmStatus::kFailure);
    EXPECT_EQ(item.setLongValue(1), DmStatus::kFailure);
    EXPECT_EQ(item.setDoubleValue(1.0), DmStatus::kFailure);
    EXPECT_EQ(item.setStringValue("1"), DmStatus::kFailure);
    EXPECT_FALSE(item.hasValue());
}

// ---------------------------------------------------------------------------
// Clones are deep

TEST_F(DmMetadataItemValue, CloneHasACopyOfTheValue) {
    auto const item = longItem(12);
    ItemPtr const clone = item->clone();
    ASSERT_NE(clone, nullptr);
    ASSERT_TRUE(clone->hasValue());
    EXPECT_NE(clone->getValue(), item->getValue());
    EXPECT_NE(as<DmLongValue>(clone->getValue()), nullptr);
    EXPECT_EQ(heldLong(*clone), 12);
    EXPECT_EQ(clone->getName(), "count");
}

TEST_F(DmMetadataItemValue, ChangesToTheClonesValueDoNotReachTheOriginal) {
    auto const item = stringItem("original");
    ItemPtr const clone = item->clone();
    ASSERT_EQ(clone->setStringValue("changed"), DmStatus::kSuccess);
    EXPECT_EQ(heldString(*item), "original");
    ASSERT_EQ(item->setStringValue("changed too"), DmStatus::kSuccess);
    EXPECT_EQ(heldString(*clone), "changed");
}

TEST_F(DmMetadataItemValue, CloneCopiesTheValuesOfTheChildren) {
    auto const item = boolItem(true);
    auto const child = doubleItem(0.5);
    auto const grandchild = stringItem("deep");
    ASSERT_EQ(child->getMetadata()->add(grandchild), DmStatus::kSuccess);
    ASSERT_EQ(item->getMetadata()->add(child), DmStatus::kSuccess);

    ItemPtr const clone = item->clone();
    ASSERT_NE(clone, nullptr);
    ASSERT_EQ(clone->getMetadata()->getMetadataItems()->size(), 1u);
    ItemPtr const clonedChild = clone->getMetadata()->getMetadataItems()->front();
    ASSERT_NE(clonedChild, child);
    ASSERT_TRUE(clonedChild->hasValue());
    EXPECT_NE(clonedChild->getValue(), child->getValue());
    EXPECT_EQ(heldDouble(*clonedChild), 0.5);
    ASSERT_EQ(clonedChild->getMetadata()->getMetadataItems()->size(), 1u);
    ItemPtr const clonedGrandchild = clonedChild->getMetadata()->getMetadataItems()->front();
    ASSERT_NE(clonedGrandchild, grandchild);
    EXPECT_NE(clonedGrandchild->getValue(), grandchild->getValue());
    EXPECT_EQ(heldString(*clonedGrandchild), "deep");

    ASSERT_EQ(clonedChild->setDoubleValue(9.0), DmStatus::kSuccess);
    ASSERT_EQ(clonedGrandchild->setStringValue("changed"), DmStatus::kSuccess);
    EXPECT_EQ(heldDouble(*child), 0.5);
    EXPECT_EQ(heldString(*grandchild), "deep");
}

TEST_F(DmMetadataItemValue, CloneOfAnItemOfAnotherKindClonesItsValue) {
    auto const item = intItem(17);
    ItemPtr const clone = item->clone();
    auto const value = as<DmIntValue>(clone->getValue());
    ASSERT_NE(value, nullptr);
    EXPECT_NE(clone->getValue(), item->getValue());
    EXPECT_EQ(value->getData(), 17);
}

TEST_F(DmMetadataItemValue, CloneOfAnItemWithoutValueHasNoValue) {
    DmMetadataItem const item("empty");
    EXPECT_FALSE(item.clone()->hasValue());
}

TEST_F(DmMetadataItemValue, ClonedItemsAndValuesAreAllReleased) {
    {
        auto const item = boolItem(true);
        ASSERT_EQ(item->getMetadata()->add(longItem(1)), DmStatus::kSuccess);
        ASSERT_EQ(item->getMetadata()->add(stringItem("two")), DmStatus::kSuccess);
        ItemPtr const clone = item->clone();
        EXPECT_EQ(valuesMadeSinceStart(), 6u);
    }
    EXPECT_EQ(valuesMadeSinceStart(), 0u);
}
