// The serialization data of a class value read from a JSON text through
// DmLibrary::loadClassValue, which prints and clears the library's messages
// and fails when the read reported an error.
#include "reader/ValueReaderTestSupport.h"

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/SerializationData.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::Message;
using KestoTest::parseError;
using KestoTest::serializedDataError;

namespace {

using Messages = std::vector<Message>;

} // namespace

/// Each test makes its library: without a stream, so that the messages stay
/// in its log, unless the test prints them.
class DmLoadClassValueTest : public KestoTest::ClassValueReaderTest {
protected:
    static std::vector<Message> messagesOf(DmLibrary const& library) {
        return KestoTest::messagesOf(*library.getErrorLogger());
    }
};

TEST_F(DmLoadClassValueTest, ObjectBecomesCompositeDataInTheOrderOfTheText) {
    auto const library = KestoTest::makeLibrary();
    SerializationData data = LiteralSerializationData("old");
    EXPECT_EQ(library->loadClassValue(R"({"label": "spring", "count": "12"})", kFailOnClash, &data),
              DmStatus::kSuccess);
    CompositeSerializationData expected;
    expected.add("label", LiteralSerializationData("spring"));
    expected.add("count", LiteralSerializationData("12"));
    EXPECT_EQ(data, SerializationData(expected));
    EXPECT_EQ(messagesOf(*library), Messages());
}

TEST_F(DmLoadClassValueTest, NestedObjectsAndArraysBecomeCompositesAndSequences) {
    auto const library = KestoTest::makeLibrary();
    SerializationData data;
    EXPECT_EQ(library->loadClassValue(R"({"points": [{"x": "1"}, "2", []]})", kFailOnClash, &data),
              DmStatus::kSuccess);
    CompositeSerializationData point;
    point.add("x", LiteralSerializationData("1"));
    SequenceSerializationData points;
    points.add(point);
    points.add(LiteralSerializationData("2"));
    points.add(SequenceSerializationData());
    CompositeSerializationData expected;
    expected.add("points", points);
    EXPECT_EQ(data, SerializationData(expected));
}

TEST_F(DmLoadClassValueTest, StringTextBecomesALiteral) {
    auto const library = KestoTest::makeLibrary();
    SerializationData data;
    EXPECT_EQ(library->loadClassValue(R"("plain")", kFailOnClash, &data), DmStatus::kSuccess);
    ASSERT_TRUE(data.isLiteral());
    EXPECT_EQ(data.asLiteral().getText(), "plain");
}

TEST_F(DmLoadClassValueTest, NullOutputIsAnInvalidArgument) {
    auto const library = KestoTest::makeLibrary();
    EXPECT_EQ(library->loadClassValue(R"({"label": "spring"})", kFailOnClash, nullptr),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(messagesOf(*library), Messages());
}

TEST_F(DmLoadClassValueTest, ANumberInTheDataFailsTheLoad) {
    auto const library = KestoTest::makeLibrary();
    SerializationData data;
    EXPECT_EQ(library->loadClassValue(R"({"label": "spring", "count": 12})", kFailOnClash, &data),
              DmStatus::kFailure);
    EXPECT_EQ(messagesOf(*library),
              Messages{serializedDataError("Value should be a string, object or array.")});
}

TEST_F(DmLoadClassValueTest, MessagesArePrintedAndClearedAtTheEnd) {
    std::ostringstream printed;
    auto const library = KestoTest::makeLibrary(&printed);
    SerializationData data;
    EXPECT_EQ(library->loadClassValue(R"({"label": true})", kFailOnClash, &data), DmStatus::kFailure);
    EXPECT_EQ(library->getErrorLogger()->getMessageCount(), 0u);
    EXPECT_NE(printed.str().find("Value should be a string, object or array."), std::string::npos)
        << printed.str();
}

TEST_F(DmLoadClassValueTest, ErrorsAlreadyInTheLogDoNotFailALoad) {
    auto const library = KestoTest::makeLibrary();
    library->getErrorLogger()->reportMessage(std::make_shared<DmMessageReport>(
        BaMessageTypes::kMessageError, "<host>", "Earlier.", "Earlier error."));
    SerializationData data;
    EXPECT_EQ(library->loadClassValue(R"({"label": "spring"})", kFailOnClash, &data), DmStatus::kSuccess);
    EXPECT_EQ(library->getErrorLogger()->getErrorCount(), 1u);
}

TEST_F(DmLoadClassValueTest, TextThatDoesNotParseGivesTheParseStatus) {
    auto const library = KestoTest::makeLibrary();
    SerializationData data;
    EXPECT_EQ(library->loadClassValue("{label: spring}", kFailOnClash, &data), DmStatus::kReserved5);
    EXPECT_EQ(messagesOf(*library), Messages{parseError("1:2", "Missing a name for object member.")});
}

TEST_F(DmLoadClassValueTest, AHundredThousandBracketsGiveTheNestingLimitError) {
    auto const library = KestoTest::makeLibrary();
    SerializationData data;
    EXPECT_EQ(library->loadClassValue(std::string(100000, '['), kFailOnClash, &data), DmStatus::kReserved5);
    EXPECT_EQ(
        messagesOf(*library),
        Messages{parseError("1:1002", "The document nests arrays and objects deeper than 1000 levels.")});
}

TEST_F(DmLoadClassValueTest, NineHundredNestedArraysLoad) {
    auto const library = KestoTest::makeLibrary();
    SerializationData data;
    EXPECT_EQ(library->loadClassValue(std::string(900, '[') + std::string(900, ']'), kFailOnClash, &data),
              DmStatus::kSuccess);
    SerializationData const* walk = &data;
    for (int i = 1; i < 900; ++i) {
        ASSERT_TRUE(walk->isSequence());
        ASSERT_EQ(walk->asSequence().size(), 1u);
        walk = &walk->asSequence()[0];
    }
    EXPECT_TRUE(walk->isSequence());
    EXPECT_TRUE(walk->asSequence().empty());
}

TEST_F(DmLoadClassValueTest, LoadedDataFeedsTheClassDeserializer) {
    auto const library = KestoTest::makeLibrary();
    SerializationData data;
    ASSERT_EQ(library->loadClassValue(R"({"count": "42", "label": "wheel"})", kFailOnClash, &data),
              DmStatus::kSuccess);
    Ptr<void> const object = m_serializer->invokeDeserialize(data);
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(TypesFixture::widgetOf(object).label, "wheel");
    EXPECT_EQ(TypesFixture::widgetOf(object).count, 42);
}
