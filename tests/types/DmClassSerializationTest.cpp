#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/platform/BaMessageCategory.h>
#include <KestoDM/platform/BaMessageRecord.h>
#include <KestoDM/platform/BaMessageTypes.h>
#include <KestoDM/platform/BaSharedLibraryManager.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/SerializationData.h>
#include <KestoDM/types/DmClassSerialization.h>
#include <KestoDM/types/DmExternSymbol.h>
#include <KestoDM/types/DmMangledName.h>

#include "types/fixture/TypesFixture.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;

namespace {

char const* const kMissingName = "_ZN7Fixture13missingWidgetEv";

std::shared_ptr<DmExternSymbol> itaniumSymbol(std::string const& name) {
    auto symbol = std::make_shared<DmExternSymbol>();
    symbol->setMangleName(DmMangledName::kMangledNameItanium, name);
    return symbol;
}

/// The data the fixture's serializer writes for a Widget.
SerializationData widgetData(std::string const& label, std::string const& count) {
    CompositeSerializationData composite;
    composite.add("label", LiteralSerializationData(label));
    composite.add("count", LiteralSerializationData(count));
    return composite;
}

std::vector<std::shared_ptr<BaMessageRecord>> recordsOf(DmMessageLogger const& logger) {
    std::vector<std::shared_ptr<BaMessageRecord>> records;
    for (auto it = logger.begin(); it != logger.end(); ++it) {
        records.push_back(it.getRecord());
    }
    return records;
}

/// Every record of the logger is the error about that missing function.
void expectMissingFunctionErrors(DmMessageLogger const& logger, std::size_t count,
                                 std::string const& description) {
    EXPECT_EQ(logger.getMessageCount(), count);
    EXPECT_EQ(logger.getErrorCount(), count);
    std::vector<std::shared_ptr<BaMessageRecord>> const records = recordsOf(logger);
    ASSERT_EQ(records.size(), count);
    for (std::shared_ptr<BaMessageRecord> const& record : records) {
        EXPECT_EQ(record->getCategory(), BaMessageCategory::kError);
        EXPECT_EQ(record->getTitle(), "Invalid serializer function.");
        EXPECT_EQ(record->getDescription(), description);
        EXPECT_EQ(record->getDetailedDescription(), "");
        auto const report = std::dynamic_pointer_cast<DmMessageReport>(record);
        ASSERT_NE(report, nullptr);
        EXPECT_EQ(report->getInternalCategory(), BaMessageTypes::kMessageError);
    }
}

std::string missingDeserializeText(std::string const& name) {
    return "Deserialize function symbol '" + name + "' couldn't be located.";
}

std::string missingSerializeText(std::string const& name) {
    return "Serialize function symbol '" + name + "' couldn't be located.";
}

} // namespace

/// Each test has a context with the fixture library loaded and a logger
/// without a stream. Objects of the fixture must go before the context, which
/// unloads the library; locals of a test body do.
class DmClassSerializationTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(TypesFixture::load(*m_context)) << manager().getLastError();
        m_makeWidget = reinterpret_cast<TypesFixture::MakeWidgetFunction>(
            manager().getSymbolAddress(TypesFixture::kMakeWidget));
        m_widgetDestroyed = reinterpret_cast<TypesFixture::WidgetDestroyedFunction>(
            manager().getSymbolAddress(TypesFixture::kWidgetDestroyed));
        ASSERT_NE(m_makeWidget, nullptr);
        ASSERT_NE(m_widgetDestroyed, nullptr);
    }

    BaSharedLibraryManager& manager() const { return *m_context->getSharedLibraryManager(); }

    /// A serialization through the fixture's working functions.
    std::shared_ptr<DmClassSerialization> makeWorking() {
        return std::make_shared<DmClassSerialization>(itaniumSymbol(TypesFixture::kDeserializeWidget),
                                                      itaniumSymbol(TypesFixture::kSerializeWidget),
                                                      m_context, m_logger);
    }

    Ptr<void> makeWidget(char const* label, int count) const { return m_makeWidget(label, count); }
    int widgetsDestroyed() const { return m_widgetDestroyed(); }

    std::shared_ptr<BaContext> const m_context = std::make_shared<BaContext>();
    DmMessageLogger m_logger{nullptr};
    TypesFixture::MakeWidgetFunction m_makeWidget = nullptr;
    TypesFixture::WidgetDestroyedFunction m_widgetDestroyed = nullptr;
};

// ---------------------------------------------------------------------------
// The fixture library

TEST_F(DmClassSerializationTest, FixtureExportsItsFunctionsUnderTheExpectedSymbols) {
    for (char const* const name : {TypesFixture::kDeserializeWidget, TypesFixture::kSerializeWidget,
                                   TypesFixture::kSerializeWidgetFails, TypesFixture::kWidgetDefaultFunction,
                                   TypesFixture::kMakeWidget, TypesFixture::kWidgetDestroyed}) {
        EXPECT_NE(manager().getSymbolAddress(name), nullptr) << name;
    }
    EXPECT_EQ(manager().getSymbolAddress(kMissingName), nullptr);
}

// ---------------------------------------------------------------------------
// Symbols

TEST_F(DmClassSerializationTest, KeepsTheSymbolsItWasMadeWith) {
    auto const deserialize = itaniumSymbol(TypesFixture::kDeserializeWidget);
    auto const serialize = itaniumSymbol(TypesFixture::kSerializeWidget);
    DmClassSerialization const serialization(deserialize, serialize, m_context, m_logger);
    EXPECT_EQ(serialization.getDeserializeSymbol(), deserialize);
    EXPECT_EQ(serialization.getSerializeSymbol(), serialize);
}

TEST_F(DmClassSerializationTest, MadeWithOnlyAContextHasNoSymbols) {
    DmClassSerialization const serialization(m_context, m_logger);
    EXPECT_EQ(serialization.getDeserializeSymbol(), nullptr);
    EXPECT_EQ(serialization.getSerializeSymbol(), nullptr);
}

TEST_F(DmClassSerializationTest, SettingSymbolsReplacesThem) {
    DmClassSerialization serialization(m_context, m_logger);
    auto const deserialize = itaniumSymbol(TypesFixture::kDeserializeWidget);
    auto const serialize = itaniumSymbol(TypesFixture::kSerializeWidget);
    serialization.setDeserializeSymbol(deserialize);
    serialization.setSerializeSymbol(serialize);
    EXPECT_EQ(serialization.getDeserializeSymbol(), deserialize);
    EXPECT_EQ(serialization.getSerializeSymbol(), serialize);
    serialization.setSerializeSymbol(nullptr);
    EXPECT_EQ(serialization.getSerializeSymbol(), nullptr);
    EXPECT_EQ(serialization.getDeserializeSymbol(), deserialize);
}

// ---------------------------------------------------------------------------
// Serializing

TEST_F(DmClassSerializationTest, SerializeWritesTheObjectThroughTheNativeFunction) {
    auto const serialization = makeWorking();
    Ptr<void> const widget = makeWidget("gear", 7);
    SerializationData data;
    DmStatus const status = serialization->invokeSerialize(widget, data);
    EXPECT_EQ(status.getStatus(), DmStatus::kSuccess);
    ASSERT_TRUE(data.isComposite());
    CompositeSerializationData const& composite = data.asComposite();
    ASSERT_EQ(composite.size(), 2u);
    ASSERT_NE(composite.find("label"), nullptr);
    ASSERT_TRUE(composite.find("label")->isLiteral());
    EXPECT_EQ(composite.find("label")->asLiteral().getText(), "gear");
    ASSERT_NE(composite.find("count"), nullptr);
    ASSERT_TRUE(composite.find("count")->isLiteral());
    EXPECT_EQ(composite.find("count")->asLiteral().getText(), "7");
    EXPECT_EQ(data, widgetData("gear", "7"));
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, SerializeReplacesALiteralPassedIn) {
    auto const serialization = makeWorking();
    Ptr<void> const widget = makeWidget("gear", -3);
    SerializationData data = LiteralSerializationData("stale");
    EXPECT_EQ(serialization->invokeSerialize(widget, data).getStatus(), DmStatus::kSuccess);
    EXPECT_EQ(data, widgetData("gear", "-3"));
}

TEST_F(DmClassSerializationTest, SerializeResetsTheDataToAnEmptyCompositeBeforeTheCall) {
    auto const serialization = std::make_shared<DmClassSerialization>(
        nullptr, itaniumSymbol(TypesFixture::kSerializeWidgetFails), m_context, m_logger);
    Ptr<void> const widget = makeWidget("gear", 7);
    SerializationData data = LiteralSerializationData("stale");
    DmStatus const status = serialization->invokeSerialize(widget, data);
    EXPECT_EQ(status.getStatus(), DmStatus::kFailure);
    ASSERT_TRUE(data.isComposite());
    EXPECT_TRUE(data.asComposite().empty());
}

TEST_F(DmClassSerializationTest, SerializeThatRefusesIsFailureWithoutAMessage) {
    auto const serialization = std::make_shared<DmClassSerialization>(
        nullptr, itaniumSymbol(TypesFixture::kSerializeWidgetFails), m_context, m_logger);
    Ptr<void> const widget = makeWidget("gear", 7);
    SerializationData data = widgetData("old", "1");
    EXPECT_EQ(serialization->invokeSerialize(widget, data).getStatus(), DmStatus::kFailure);
    ASSERT_TRUE(data.isComposite());
    EXPECT_TRUE(data.asComposite().empty());
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, SerializeOfANullObjectIsFailureWithoutAMessage) {
    auto const serialization = makeWorking();
    SerializationData data;
    EXPECT_EQ(serialization->invokeSerialize(Ptr<void>(), data).getStatus(), DmStatus::kFailure);
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, SerializeTwiceSucceedsBothTimesWithoutAMessage) {
    auto const serialization = makeWorking();
    Ptr<void> const first = makeWidget("first", 1);
    Ptr<void> const second = makeWidget("second", 2);
    SerializationData firstData;
    SerializationData secondData;
    EXPECT_EQ(serialization->invokeSerialize(first, firstData).getStatus(), DmStatus::kSuccess);
    EXPECT_EQ(serialization->invokeSerialize(second, secondData).getStatus(), DmStatus::kSuccess);
    EXPECT_EQ(firstData, widgetData("first", "1"));
    EXPECT_EQ(secondData, widgetData("second", "2"));
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, SerializeDoesNotKeepTheObject) {
    auto const serialization = makeWorking();
    Ptr<void> widget = makeWidget("gear", 7);
    SerializationData data;
    ASSERT_EQ(serialization->invokeSerialize(widget, data).getStatus(), DmStatus::kSuccess);
    EXPECT_EQ(widget.use_count(), 1);
    int const before = widgetsDestroyed();
    widget.reset();
    EXPECT_EQ(widgetsDestroyed(), before + 1);
}

// ---------------------------------------------------------------------------
// Deserializing

TEST_F(DmClassSerializationTest, DeserializeMakesTheObjectTheDataDescribes) {
    auto const serialization = makeWorking();
    Ptr<void> const object = serialization->invokeDeserialize(widgetData("spring", "12"));
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(TypesFixture::widgetOf(object).label, "spring");
    EXPECT_EQ(TypesFixture::widgetOf(object).count, 12);
    EXPECT_EQ(object.use_count(), 1);
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, SerializedObjectDeserializesToAnEqualObject) {
    auto const serialization = makeWorking();
    Ptr<void> const original = makeWidget("wheel", 42);
    SerializationData data = LiteralSerializationData("stale");
    ASSERT_EQ(serialization->invokeSerialize(original, data).getStatus(), DmStatus::kSuccess);
    Ptr<void> const copy = serialization->invokeDeserialize(data);
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy.get(), original.get());
    EXPECT_EQ(TypesFixture::widgetOf(copy).label, "wheel");
    EXPECT_EQ(TypesFixture::widgetOf(copy).count, 42);
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, DeserializeThatRefusesGivesNullWithoutAMessage) {
    auto const serialization = makeWorking();
    CompositeSerializationData withoutCount;
    withoutCount.add("label", LiteralSerializationData("gear"));
    EXPECT_EQ(serialization->invokeDeserialize(withoutCount), nullptr);
    CompositeSerializationData withoutLabel;
    withoutLabel.add("count", LiteralSerializationData("7"));
    EXPECT_EQ(serialization->invokeDeserialize(withoutLabel), nullptr);
    EXPECT_EQ(serialization->invokeDeserialize(LiteralSerializationData("gear")), nullptr);
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, DeserializeTwiceGivesTwoObjectsWithoutAMessage) {
    auto const serialization = makeWorking();
    Ptr<void> const first = serialization->invokeDeserialize(widgetData("a", "1"));
    Ptr<void> const second = serialization->invokeDeserialize(widgetData("b", "2"));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(TypesFixture::widgetOf(first).label, "a");
    EXPECT_EQ(TypesFixture::widgetOf(second).label, "b");
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, DeserializedObjectIsDestroyedWithItsLastPtr) {
    auto const serialization = makeWorking();
    int const before = widgetsDestroyed();
    Ptr<void> object = serialization->invokeDeserialize(widgetData("gear", "7"));
    ASSERT_NE(object, nullptr);
    Ptr<void> copy = object;
    object.reset();
    EXPECT_EQ(widgetsDestroyed(), before);
    EXPECT_EQ(TypesFixture::widgetOf(copy).label, "gear");
    copy.reset();
    EXPECT_EQ(widgetsDestroyed(), before + 1);
}

TEST_F(DmClassSerializationTest, RefusedDeserializeLeavesNoObjectBehind) {
    auto const serialization = makeWorking();
    int const before = widgetsDestroyed();
    CompositeSerializationData withoutCount;
    withoutCount.add("label", LiteralSerializationData("gear"));
    EXPECT_EQ(serialization->invokeDeserialize(withoutCount), nullptr);
    EXPECT_EQ(widgetsDestroyed(), before);
}

// ---------------------------------------------------------------------------
// Calls that find nothing to call

TEST_F(DmClassSerializationTest, WithoutAContextNothingIsCalledOrReported) {
    DmClassSerialization serialization(itaniumSymbol(TypesFixture::kDeserializeWidget),
                                       itaniumSymbol(TypesFixture::kSerializeWidget), nullptr, m_logger);
    EXPECT_EQ(serialization.invokeDeserialize(widgetData("gear", "7")), nullptr);
    Ptr<void> const widget = makeWidget("gear", 7);
    SerializationData data;
    EXPECT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kFailure);
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, WithoutSymbolsNothingIsCalledOrReported) {
    DmClassSerialization serialization(m_context, m_logger);
    EXPECT_EQ(serialization.invokeDeserialize(widgetData("gear", "7")), nullptr);
    Ptr<void> const widget = makeWidget("gear", 7);
    SerializationData data;
    EXPECT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kFailure);
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, SymbolWithoutAnItaniumNameIsNotLookedUpOrReported) {
    DmClassSerialization serialization(std::make_shared<DmExternSymbol>(), std::make_shared<DmExternSymbol>(),
                                       m_context, m_logger);
    EXPECT_EQ(serialization.invokeDeserialize(widgetData("gear", "7")), nullptr);
    Ptr<void> const widget = makeWidget("gear", 7);
    SerializationData data;
    EXPECT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kFailure);
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

// Symbols resolve through the Itanium entry on this platform: a Microsoft entry
// alone, even one naming a function that exists, is not looked up.
TEST_F(DmClassSerializationTest, MicrosoftEntryAloneIsNotLookedUpOrReported) {
    auto const deserialize = std::make_shared<DmExternSymbol>();
    deserialize->setMangleName(DmMangledName::kMangledNameMicrosoft, TypesFixture::kDeserializeWidget);
    auto const serialize = std::make_shared<DmExternSymbol>();
    serialize->setMangleName(DmMangledName::kMangledNameMicrosoft, TypesFixture::kSerializeWidget);
    DmClassSerialization serialization(deserialize, serialize, m_context, m_logger);
    EXPECT_EQ(serialization.invokeDeserialize(widgetData("gear", "7")), nullptr);
    Ptr<void> const widget = makeWidget("gear", 7);
    SerializationData data;
    EXPECT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kFailure);
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, ItaniumEntryIsUsedWhateverTheMicrosoftEntrySays) {
    auto const serialize = itaniumSymbol(TypesFixture::kSerializeWidget);
    serialize->setMangleName(DmMangledName::kMangledNameMicrosoft, kMissingName);
    DmClassSerialization serialization(nullptr, serialize, m_context, m_logger);
    Ptr<void> const widget = makeWidget("gear", 7);
    SerializationData data;
    EXPECT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kSuccess);
    EXPECT_EQ(data, widgetData("gear", "7"));
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

// ---------------------------------------------------------------------------
// Functions that cannot be located

TEST_F(DmClassSerializationTest, MissingDeserializeFunctionIsReportedEachTimeItIsLookedUp) {
    DmClassSerialization serialization(itaniumSymbol(kMissingName), nullptr, m_context, m_logger);
    EXPECT_EQ(serialization.invokeDeserialize(widgetData("gear", "7")), nullptr);
    EXPECT_EQ(serialization.invokeDeserialize(widgetData("gear", "7")), nullptr);
    expectMissingFunctionErrors(m_logger, 2, missingDeserializeText(kMissingName));
}

TEST_F(DmClassSerializationTest, MissingSerializeFunctionIsReportedEachTimeItIsLookedUp) {
    DmClassSerialization serialization(nullptr, itaniumSymbol(kMissingName), m_context, m_logger);
    Ptr<void> const widget = makeWidget("gear", 7);
    SerializationData data;
    EXPECT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kFailure);
    EXPECT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kFailure);
    expectMissingFunctionErrors(m_logger, 2, missingSerializeText(kMissingName));
}

TEST_F(DmClassSerializationTest, FunctionOfALibraryThatIsNotLoadedIsReportedMissing) {
    auto const otherContext = std::make_shared<BaContext>();
    DmClassSerialization serialization(itaniumSymbol(TypesFixture::kDeserializeWidget),
                                       itaniumSymbol(TypesFixture::kSerializeWidget), otherContext, m_logger);
    EXPECT_EQ(serialization.invokeDeserialize(widgetData("gear", "7")), nullptr);
    expectMissingFunctionErrors(m_logger, 1, missingDeserializeText(TypesFixture::kDeserializeWidget));
    m_logger.clear();
    Ptr<void> const widget = makeWidget("gear", 7);
    SerializationData data;
    EXPECT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kFailure);
    expectMissingFunctionErrors(m_logger, 1, missingSerializeText(TypesFixture::kSerializeWidget));
}

// ---------------------------------------------------------------------------
// Keeping the functions found

// The symbol object is shared with the serialization. Once a function has been
// found, renaming the symbol in place has no effect: the function is not
// looked up again, so the new (missing) name is never reported.
TEST_F(DmClassSerializationTest, FoundSerializeFunctionIsNotLookedUpAgain) {
    auto const serialize = itaniumSymbol(TypesFixture::kSerializeWidget);
    DmClassSerialization serialization(nullptr, serialize, m_context, m_logger);
    Ptr<void> const widget = makeWidget("gear", 7);
    SerializationData data;
    ASSERT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kSuccess);
    serialize->setMangleName(DmMangledName::kMangledNameItanium, kMissingName);
    SerializationData again;
    EXPECT_EQ(serialization.invokeSerialize(widget, again).getStatus(), DmStatus::kSuccess);
    EXPECT_EQ(again, widgetData("gear", "7"));
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, FoundDeserializeFunctionIsNotLookedUpAgain) {
    auto const deserialize = itaniumSymbol(TypesFixture::kDeserializeWidget);
    DmClassSerialization serialization(deserialize, nullptr, m_context, m_logger);
    ASSERT_NE(serialization.invokeDeserialize(widgetData("a", "1")), nullptr);
    deserialize->setMangleName(DmMangledName::kMangledNameItanium, kMissingName);
    Ptr<void> const again = serialization.invokeDeserialize(widgetData("b", "2"));
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(TypesFixture::widgetOf(again).label, "b");
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, SettingTheSerializeSymbolForgetsTheFunctionFound) {
    DmClassSerialization serialization(nullptr, itaniumSymbol(TypesFixture::kSerializeWidget), m_context,
                                       m_logger);
    Ptr<void> const widget = makeWidget("gear", 7);
    SerializationData data;
    ASSERT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kSuccess);
    serialization.setSerializeSymbol(itaniumSymbol(kMissingName));
    EXPECT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kFailure);
    expectMissingFunctionErrors(m_logger, 1, missingSerializeText(kMissingName));
}

TEST_F(DmClassSerializationTest, SettingTheDeserializeSymbolForgetsTheFunctionFound) {
    DmClassSerialization serialization(itaniumSymbol(TypesFixture::kDeserializeWidget), nullptr, m_context,
                                       m_logger);
    ASSERT_NE(serialization.invokeDeserialize(widgetData("gear", "7")), nullptr);
    serialization.setDeserializeSymbol(itaniumSymbol(kMissingName));
    EXPECT_EQ(serialization.invokeDeserialize(widgetData("gear", "7")), nullptr);
    expectMissingFunctionErrors(m_logger, 1, missingDeserializeText(kMissingName));
}

TEST_F(DmClassSerializationTest, SettingAnotherSerializeSymbolSwitchesToItsFunction) {
    DmClassSerialization serialization(nullptr, itaniumSymbol(TypesFixture::kSerializeWidget), m_context,
                                       m_logger);
    Ptr<void> const widget = makeWidget("gear", 7);
    SerializationData data;
    ASSERT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kSuccess);
    serialization.setSerializeSymbol(itaniumSymbol(TypesFixture::kSerializeWidgetFails));
    EXPECT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kFailure);
    ASSERT_TRUE(data.isComposite());
    EXPECT_TRUE(data.asComposite().empty());
    serialization.setSerializeSymbol(itaniumSymbol(TypesFixture::kSerializeWidget));
    EXPECT_EQ(serialization.invokeSerialize(widget, data).getStatus(), DmStatus::kSuccess);
    EXPECT_EQ(data, widgetData("gear", "7"));
    EXPECT_EQ(m_logger.getMessageCount(), 0u);
}

TEST_F(DmClassSerializationTest, SymbolFoundAfterAMissingOneIsUsedWithoutAnotherMessage) {
    DmClassSerialization serialization(itaniumSymbol(kMissingName), nullptr, m_context, m_logger);
    EXPECT_EQ(serialization.invokeDeserialize(widgetData("gear", "7")), nullptr);
    serialization.setDeserializeSymbol(itaniumSymbol(TypesFixture::kDeserializeWidget));
    Ptr<void> const object = serialization.invokeDeserialize(widgetData("gear", "7"));
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(TypesFixture::widgetOf(object).count, 7);
    expectMissingFunctionErrors(m_logger, 1, missingDeserializeText(kMissingName));
}
