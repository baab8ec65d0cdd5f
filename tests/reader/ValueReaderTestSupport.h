// Shared ground of the value reader tests: a fixture that accounts for the
// values and types each test makes and keeps a logger without a stream, the
// messages of that logger as plain records, and a class type backed by the
// types fixture library (its Widget, default object and deserializer).
#pragma once

#include "graph/ModelTestSupport.h"
#include "library/LibraryTestSupport.h"
#include "types/ValueTestSupport.h"
#include "types/fixture/TypesFixture.h"

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/platform/BaMessageTypes.h>
#include <KestoDM/platform/BaSharedLibraryManager.h>
#include <KestoDM/types/DmArrayValue.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmClassSerialization.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmClassValue.h>
#include <KestoDM/types/DmExternSymbol.h>
#include <KestoDM/types/DmMangledName.h>
#include <KestoDM/types/DmStructValue.h>

#include "reader/DmValueReader.h"
#include "reader/JsonDocument.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace KestoTest {

/// One message of a logger, as the reader tests compare it.
struct Message {
    Kesto::BaMessageTypes::MessageCategory category;
    std::string location;
    std::string title;
    std::string description;

    friend bool operator==(Message const& a, Message const& b) {
        return a.category == b.category && a.location == b.location && a.title == b.title &&
               a.description == b.description;
    }
    friend std::ostream& operator<<(std::ostream& stream, Message const& message) {
        return stream << "{" << message.category << ", " << message.location << ", \"" << message.title
                      << "\", \"" << message.description << "\"}";
    }
};

inline Message valueError(std::string title, std::string description) {
    return Message{Kesto::BaMessageTypes::kMessageError, "<value>", std::move(title), std::move(description)};
}

inline Message valueWarning(std::string title, std::string description) {
    return Message{Kesto::BaMessageTypes::kMessageWarning, "<value>", std::move(title),
                   std::move(description)};
}

inline Message badlyFormed(std::string const& text) {
    return valueError("Badly formed value.", "The value '" + text + "' is not a valid value.");
}

inline Message outOfRange(std::string const& text) {
    return valueWarning("Out-of-range value.", "The value '" + text + "' is out-of-range.");
}

/// The parse error of a value text, at `position` ("1:4").
inline Message parseError(std::string const& position, std::string const& what) {
    return Message{Kesto::BaMessageTypes::kMessageError, "<value>", "Asset has parsing errors.",
                   "Failed to parse <value> at position " + position + ": " + what};
}

/// The datum of a built-in value of T.
template <class T>
T dataOf(std::shared_ptr<Kesto::DmBaseValue> const& value) {
    auto const typed = std::dynamic_pointer_cast<Kesto::DmBuiltInValue<T>>(value);
    EXPECT_NE(typed, nullptr);
    return typed ? typed->getData() : T();
}

inline Message serializedDataError(std::string text) {
    return Message{Kesto::BaMessageTypes::kMessageError, "<serialized data>", text, text};
}

/// The records of `logger`, in order of report.
inline std::vector<Message> messagesOf(Kesto::DmMessageLogger const& logger) {
    std::vector<Message> messages;
    for (auto it = logger.begin(); it != logger.end(); ++it) {
        auto const report = std::dynamic_pointer_cast<Kesto::DmMessageReport>(it.getRecord());
        if (report) {
            messages.push_back(Message{report->getInternalCategory(), report->getSubject(),
                                       report->getTitle(), report->getDescription()});
        }
    }
    return messages;
}

/// Accounts, beyond the model's classes, for the types, array values and
/// struct values a test makes. Every type singleton is made before the first
/// count. Reports go to `m_logger`, which has no stream and so keeps them.
class ValueReaderTest : public ModelTest {
protected:
    static void SetUpTestSuite() {
        ModelTest::SetUpTestSuite();
        using Kesto::DmLibrary;
        DmLibrary::getCharType();
        DmLibrary::getUCharType();
        DmLibrary::getShortType();
        DmLibrary::getUShortType();
        DmLibrary::getUIntType();
        DmLibrary::getULongType();
        DmLibrary::getDoubleType();
        DmLibrary::getRuntimeServicesType();
        DmLibrary::getTypeRegistryType();
    }

    void SetUp() override {
        ModelTest::SetUp();
        expectBackAtEnd<Kesto::DmBaseType>("types");
        expectBackAtEnd<Kesto::DmArrayValue>("array values");
        expectBackAtEnd<Kesto::DmStructValue>("struct values");
        expectBackAtEnd<Kesto::DmClassValue>("class values");
    }

    /// Parses `json` (which must be valid) and reads its root into `value`.
    bool readJson(std::string const& json, std::shared_ptr<Kesto::DmBaseValue> const& value) {
        Kesto::Internal::JsonDocument document(nullptr);
        EXPECT_EQ(document.parse(json, "test"), Kesto::DmStatus::kSuccess) << json;
        return Kesto::Internal::readValue(m_logger, document.getRoot(), value);
    }

    /// Reads the compact text `text` into `value` through the library's entry.
    bool readText(std::string const& text, std::shared_ptr<Kesto::DmBaseValue> value) {
        return Kesto::DmLibrary::readValue(m_logger, text, value);
    }

    std::vector<Message> messages() const { return messagesOf(m_logger); }

    Kesto::DmMessageLogger m_logger{nullptr};
};

/// A context with the fixture library loaded, and the Widget class type of
/// that library with its serializer: what a class value read needs. The type
/// and the serializer are made before the counts are taken; values of a test
/// must go before the context unloads the library, and locals of a test body do.
class ClassValueReaderTest : public ValueReaderTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(TypesFixture::load(*m_context)) << m_context->getSharedLibraryManager()->getLastError();
        m_serializer = std::make_shared<Kesto::DmClassSerialization>(
            itaniumSymbol(TypesFixture::kDeserializeWidget), itaniumSymbol(TypesFixture::kSerializeWidget),
            m_context, m_logger);
        m_widgetType = makeWidgetType(m_serializer);
        ASSERT_NE(m_widgetType->getDefaultFn(), nullptr);
        ValueReaderTest::SetUp();
    }

    static std::shared_ptr<Kesto::DmExternSymbol> itaniumSymbol(std::string const& name) {
        auto symbol = std::make_shared<Kesto::DmExternSymbol>();
        symbol->setMangleName(Kesto::DmMangledName::kMangledNameItanium, name);
        return symbol;
    }

    /// The Widget type on the loaded context, with `serializer` (may be null).
    std::shared_ptr<Kesto::DmClassType>
    makeWidgetType(std::shared_ptr<Kesto::DmClassSerialization> const& serializer) const {
        auto type = Kesto::ValueTest::makeClassType("Widget", TypesFixture::kWidgetTypeName);
        type->setCppClassInfo(Kesto::DmClassType::CppClassInfo(serializer, m_context));
        return type;
    }

    std::shared_ptr<Kesto::DmClassValue> newWidgetValue() const {
        return std::dynamic_pointer_cast<Kesto::DmClassValue>(m_widgetType->createValue());
    }

    std::shared_ptr<Kesto::BaContext> const m_context = std::make_shared<Kesto::BaContext>();
    std::shared_ptr<Kesto::DmClassSerialization> m_serializer;
    std::shared_ptr<Kesto::DmClassType> m_widgetType;
};

} // namespace KestoTest
