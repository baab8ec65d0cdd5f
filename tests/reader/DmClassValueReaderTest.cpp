// Class values read from JSON objects: the object becomes serialization data,
// and the class's native deserializer (from the types fixture library) makes
// the object.
#include "reader/ValueReaderTestSupport.h"

#include <KestoDM/platform/Ptr.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmArrayValue.h>
#include <KestoDM/types/DmClassValue.h>
#include <KestoDM/types/DmStructValue.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using namespace Kesto::ValueTest;
using KestoTest::Message;
using KestoTest::serializedDataError;
using KestoTest::valueError;

namespace {

using Messages = std::vector<Message>;

Fixture::Widget const& widgetOf(std::shared_ptr<DmBaseValue> const& value) {
    return TypesFixture::widgetOf(as<DmClassValue>(value)->getData());
}

} // namespace

class DmClassValueReaderTest : public KestoTest::ClassValueReaderTest {};

TEST_F(DmClassValueReaderTest, ObjectIsDeserializedIntoTheValue) {
    auto const value = newWidgetValue();
    EXPECT_TRUE(readJson(R"({"label": "spring", "count": "12"})", value));
    ASSERT_NE(value->getData(), nullptr);
    EXPECT_EQ(TypesFixture::widgetOf(value->getData()).label, "spring");
    EXPECT_EQ(TypesFixture::widgetOf(value->getData()).count, 12);
    EXPECT_FALSE(value->isImplicit());
    EXPECT_FALSE(value->isDefaultClass());
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmClassValueReaderTest, ObjectReplacesTheDefaultObject) {
    auto const value = std::dynamic_pointer_cast<DmClassValue>(m_widgetType->createDefaultValue());
    ASSERT_EQ(value->getData(), m_widgetType->getDefaultObject());
    EXPECT_TRUE(readJson(R"({"count": "3", "label": "gear"})", value));
    EXPECT_NE(value->getData(), m_widgetType->getDefaultObject());
    EXPECT_EQ(TypesFixture::widgetOf(value->getData()).label, "gear");
}

TEST_F(DmClassValueReaderTest, ClassGivenAsAStringIsRefusedAsNotAnObject) {
    auto const value = newWidgetValue();
    EXPECT_FALSE(readJson(R"("spring")", value));
    EXPECT_TRUE(value->isImplicit());
    EXPECT_EQ(messages(), Messages{valueError("Value should be specified as an object.",
                                              "Value of type 'Widget' should be specified as an object.")});
}

TEST_F(DmClassValueReaderTest, ClassWithoutADefaultFunctionIsRefused) {
    auto const type = makeClassType("Widget", TypesFixture::kWidgetTypeName);
    auto const value = type->createValue();
    EXPECT_FALSE(readJson(R"({"label": "spring", "count": "12"})", value));
    EXPECT_TRUE(value->isImplicit());
    EXPECT_EQ(messages(),
              Messages{valueError("Default value function not found.",
                                  "Default value function not found for value of type 'Widget'.")});
}

TEST_F(DmClassValueReaderTest, SerializationDataThatDoesNotReadIsReportedTwice) {
    auto const value = newWidgetValue();
    EXPECT_FALSE(readJson(R"({"label": "spring", "count": 12})", value));
    EXPECT_EQ(value->getData(), nullptr);
    EXPECT_EQ(messages(),
              (Messages{serializedDataError("Value should be a string, object or array."),
                        valueError("Invalid serialization data.",
                                   "Unable to read the serialization data for a value of type 'Widget'.")}));
}

TEST_F(DmClassValueReaderTest, AMemberWithoutANameIsInvalidSerializationData) {
    auto const value = newWidgetValue();
    EXPECT_FALSE(readJson(R"({"label": "spring", "": "12"})", value));
    Message const noName{BaMessageTypes::kMessageError, "<serialized data>", "Member requires a name.",
                         "Class members requires a name."};
    EXPECT_EQ(messages(),
              (Messages{noName,
                        valueError("Invalid serialization data.",
                                   "Unable to read the serialization data for a value of type 'Widget'.")}));
}

TEST_F(DmClassValueReaderTest, ADeserializerThatRefusesTheDataCreatesNoObject) {
    auto const value = newWidgetValue();
    EXPECT_FALSE(readJson(R"({"label": "spring", "count": "many"})", value));
    EXPECT_EQ(value->getData(), nullptr);
    EXPECT_TRUE(value->isImplicit());
    EXPECT_EQ(messages(), Messages{valueError("Failed to create immediate value data.",
                                              "The immediate value data for 'Widget' was not created.")});
}

TEST_F(DmClassValueReaderTest, AClassWithoutASerializerCreatesNoObject) {
    auto const type = makeWidgetType(nullptr);
    ASSERT_NE(type->getDefaultFn(), nullptr);
    auto const value = type->createValue();
    EXPECT_FALSE(readJson(R"({"label": "spring", "count": "12"})", value));
    EXPECT_EQ(messages(), Messages{valueError("Failed to create immediate value data.",
                                              "The immediate value data for 'Widget' was not created.")});
}

TEST_F(DmClassValueReaderTest, AMissingDeserializerIsReportedByTheSerializationAndByTheRead) {
    auto const serializer = std::make_shared<DmClassSerialization>(
        itaniumSymbol("_ZN7Fixture13missingWidgetEv"), itaniumSymbol(TypesFixture::kSerializeWidget),
        m_context, m_logger);
    auto const type = makeWidgetType(serializer);
    EXPECT_FALSE(readJson(R"({"label": "spring", "count": "12"})", type->createValue()));
    EXPECT_EQ(
        messages(),
        (Messages{Message{BaMessageTypes::kMessageError, "", "Invalid serializer function.",
                          "Deserialize function symbol '_ZN7Fixture13missingWidgetEv' couldn't be located."},
                  valueError("Failed to create immediate value data.",
                             "The immediate value data for 'Widget' was not created.")}));
}

TEST_F(DmClassValueReaderTest, ArrayOfClassValuesDeserializesEachElement) {
    auto const type = makeArrayType(m_widgetType);
    auto const value = type->createValue();
    EXPECT_TRUE(
        readJson(R"([{"label": "a", "count": "1"}, {"label": "b"}, {"label": "c", "count": "3"}])", value));
    auto const array = as<DmArrayValue>(value);
    ASSERT_EQ(array->size(), 3u);
    EXPECT_EQ(widgetOf(array->at(0)).label, "a");
    EXPECT_EQ(as<DmClassValue>(array->at(1))->getData(), m_widgetType->getDefaultObject());
    EXPECT_EQ(widgetOf(array->at(2)).count, 3);
    EXPECT_EQ(m_logger.getErrorCount(), 1u);
    EXPECT_EQ(m_logger.getWarningCount(), 1u);
}

TEST_F(DmClassValueReaderTest, ClassMemberOfAStructIsDeserialized) {
    auto const type = makeStructType("Part", {{"widget", m_widgetType}, {"id", DmLibrary::getIntType()}});
    auto const value = type->createValue();
    EXPECT_TRUE(readJson(R"({"id": "4", "widget": {"label": "bolt", "count": "8"}})", value));
    auto const widget = member<DmClassValue>(*as<DmStructValue>(value), "widget");
    EXPECT_EQ(TypesFixture::widgetOf(widget->getData()).label, "bolt");
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmClassValueReaderTest, NineHundredNestedObjectsDoNotCrashTheRead) {
    std::string json;
    for (int i = 0; i < 900; ++i) {
        json += R"({"label": "deep", "count": "1", "inner": )";
    }
    json += "{}";
    json += std::string(900, '}');
    auto const value = newWidgetValue();
    EXPECT_TRUE(readJson(json, value));
    EXPECT_EQ(TypesFixture::widgetOf(value->getData()).label, "deep");
    EXPECT_EQ(messages(), Messages());
}

TEST_F(DmClassValueReaderTest, NineHundredNestedArraysInAClassNodeDoNotCrashTheRead) {
    auto const value = newWidgetValue();
    EXPECT_FALSE(readJson(R"({"label": )" + std::string(900, '[') + std::string(900, ']') + "}", value));
    EXPECT_EQ(messages(), Messages{valueError("Failed to create immediate value data.",
                                              "The immediate value data for 'Widget' was not created.")});
}
