#include "reader/DmValueReader.h"

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/platform/Any.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/SerializationData.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/platform/UntypedArray.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmArrayValue.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmClassSerialization.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmClassValue.h>
#include <KestoDM/types/DmEnumValue.h>
#include <KestoDM/types/DmStructValue.h>
#include <KestoDM/types/DmTypeKind.h>
#include <KestoDM/types/DmUnknownValue.h>

#include "reader/DmLiteralText.h"

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace Kesto::Internal {

// A number out of its type's range is only a warning, but the value keeps
// what it had: it is not clamped.
bool checkLiteral(DmMessageLogger& logger, LiteralResult result, std::string_view text,
                  std::string const& location) {
    switch (result) {
    case LiteralResult::kOk:
        return true;
    case LiteralResult::kOutOfRange:
        logger.reportMessage(std::make_shared<DmMessageReport>(
            BaMessageTypes::kMessageWarning, location, "Out-of-range value.",
            "The value '" + std::string(text) + "' is out-of-range."));
        return false;
    case LiteralResult::kBadlyFormed:
        break;
    }
    logger.reportMessage(
        std::make_shared<DmMessageReport>(BaMessageTypes::kMessageError, location, "Badly formed value.",
                                          "The value '" + std::string(text) + "' is not a valid value."));
    return false;
}

namespace {

char const* const kValueLocation = "<value>";
char const* const kSerializedDataLocation = "<serialized data>";

void report(DmMessageLogger& logger, BaMessageTypes::MessageCategory category, char const* location,
            std::string title, std::string description) {
    logger.reportMessage(
        std::make_shared<DmMessageReport>(category, location, std::move(title), std::move(description)));
}

void reportValueError(DmMessageLogger& logger, std::string title, std::string description) {
    report(logger, BaMessageTypes::kMessageError, kValueLocation, std::move(title), std::move(description));
}

std::string typeName(DmBaseValue const& value) {
    return value.getType()->getMapEntryKey();
}

std::string_view textOf(rapidjson::Value const& node) {
    return std::string_view(node.GetString(), node.GetStringLength());
}

/// The node is of the JSON form `wanted` ("string", "array", "object"); else reported.
bool expectForm(DmMessageLogger& logger, bool isForm, char const* wanted, DmBaseValue const& value) {
    if (isForm) {
        return true;
    }
    reportValueError(logger, std::string("Value should be specified as ") + wanted + ".",
                     "Value of type '" + typeName(value) + "' should be specified as " + wanted + ".");
    return false;
}

bool reportBadlyFormed(DmMessageLogger& logger, std::string_view text) {
    return checkLiteral(logger, LiteralResult::kBadlyFormed, text, kValueLocation);
}

bool literalRead(DmMessageLogger& logger, LiteralResult result, std::string_view text) {
    return checkLiteral(logger, result, text, kValueLocation);
}

/// The value as the built-in value of T that its kind promises.
template <class T>
DmBuiltInValue<T>* builtIn(DmBaseValue& value) {
    return dynamic_cast<DmBuiltInValue<T>*>(&value);
}

template <class T>
bool setBuiltIn(DmBaseValue& value, T data) {
    DmBuiltInValue<T>* const target = builtIn<T>(value);
    return target != nullptr && target->setData(std::move(data));
}

bool readBool(DmMessageLogger& logger, std::string_view text, DmBaseValue& value) {
    if (text == "true" || text == "false") {
        return setBuiltIn<bool>(value, text == "true");
    }
    return reportBadlyFormed(logger, text);
}

template <class T>
bool readSigned(DmMessageLogger& logger, std::string_view text, DmBaseValue& value) {
    long long number = 0;
    if (!literalRead(
            logger,
            parseSignedLiteral(text, std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), number),
            text)) {
        return false;
    }
    return setBuiltIn<T>(value, static_cast<T>(number));
}

template <class T>
bool readUnsigned(DmMessageLogger& logger, std::string_view text, DmBaseValue& value) {
    unsigned long long number = 0;
    if (!literalRead(logger, parseUnsignedLiteral(text, std::numeric_limits<T>::max(), number), text)) {
        return false;
    }
    return setBuiltIn<T>(value, static_cast<T>(number));
}

bool readFloat(DmMessageLogger& logger, std::string_view text, DmBaseValue& value) {
    float number = 0.0f;
    return literalRead(logger, parseFloatLiteral(text, number), text) && setBuiltIn<float>(value, number);
}

bool readDouble(DmMessageLogger& logger, std::string_view text, DmBaseValue& value) {
    double number = 0.0;
    return literalRead(logger, parseDoubleLiteral(text, number), text) && setBuiltIn<double>(value, number);
}

/// The kinds whose form is one JSON string.
bool readScalar(DmMessageLogger& logger, std::string_view text, DmBaseValue& value) {
    switch (value.getType()->getTypeKind()) {
    case kTypeBool:
        return readBool(logger, text, value);
    case kTypeChar:
        return readSigned<signed char>(logger, text, value);
    case kTypeUChar:
        return readUnsigned<unsigned char>(logger, text, value);
    case kTypeShort:
        return readSigned<short>(logger, text, value);
    case kTypeUShort:
        return readUnsigned<unsigned short>(logger, text, value);
    case kTypeInt:
        return readSigned<int>(logger, text, value);
    case kTypeUInt:
        return readUnsigned<unsigned int>(logger, text, value);
    case kTypeLong:
        return readSigned<std::int64_t>(logger, text, value);
    case kTypeULong:
        return readUnsigned<std::uint64_t>(logger, text, value);
    case kTypeFloat:
        return readFloat(logger, text, value);
    case kTypeDouble:
        return readDouble(logger, text, value);
    case kTypeString:
        return setBuiltIn<String>(value, String(text));
    case kTypeEnum: {
        // An unknown key leaves the value as it was, in silence: files may
        // name keys that a newer enum dropped.
        auto* const target = dynamic_cast<DmEnumValue*>(&value);
        if (target != nullptr) {
            target->setEnumerationFromName(String(text));
        }
        return target != nullptr;
    }
    default:
        return false;
    }
}

/// Each item into a fresh element; an item that does not read leaves the
/// element at its type's default, so the array keeps the file's length.
bool readArray(DmMessageLogger& logger, rapidjson::Value const& node, DmBaseValue& value) {
    auto const& type = static_cast<DmArrayType const&>(*value.getType());
    std::shared_ptr<DmBaseType const> const& elementType = type.getElementType();
    Ptr<void> storage = type.allocateArray(node.Size());
    auto* const array = static_cast<UntypedArray*>(storage.get());
    if (!elementType || array == nullptr) {
        reportValueError(logger, "Invalid array value.",
                         "Unable to make an array of type '" + typeName(value) + "'.");
        return false;
    }
    for (rapidjson::SizeType i = 0; i < node.Size(); ++i) {
        // A fresh array's slots already hold live elements: assign, never construct over them.
        std::shared_ptr<DmBaseValue> element = elementType->createDefaultValue();
        if (element && readValue(logger, node[i], element) &&
            element->moveAssignIntoBuffer(array->get_element(i))) {
            continue;
        }
        report(logger, BaMessageTypes::kMessageWarning, kValueLocation, "Invalid array element.",
               "Unable to load element " + std::to_string(i) + " of a value of type '" + typeName(value) +
                   "'. It keeps the default value.");
        element = elementType->createDefaultValue();
        if (element) {
            element->copyAssignIntoBuffer(array->get_element(i));
        }
    }
    return setBuiltIn<Ptr<void>>(value, std::move(storage));
}

bool readStruct(DmMessageLogger& logger, rapidjson::Value const& node, DmBaseValue& value) {
    if (!node.IsObject()) {
        reportValueError(logger, "Invalid struct format.", "Struct value must be an object.");
        return false;
    }
    auto* const target = dynamic_cast<DmStructValue*>(&value);
    if (target == nullptr) {
        return false;
    }
    for (auto const& entry : node.GetObject()) {
        std::string const name(textOf(entry.name));
        std::shared_ptr<DmBaseValue> member;
        if (!target->getMember(name, member)) {
            report(logger, BaMessageTypes::kMessageWarning, kValueLocation, "Non-existent struct member.",
                   "Struct member '" + name + "' is not defined in struct '" + typeName(value) +
                       "'. Ignoring it.");
            continue;
        }
        if (!readValue(logger, entry.value, member)) {
            reportValueError(logger, "Invalid struct member.",
                             "Unable to load struct member '" + name + "'.");
            return false;
        }
    }
    // Read from a file, the struct is set even when the file names no member.
    target->valueWasSet();
    return true;
}

bool readClass(DmMessageLogger& logger, rapidjson::Value const& node, DmBaseValue& value) {
    if (!expectForm(logger, node.IsObject(), "an object", value)) {
        return false;
    }
    auto const& type = static_cast<DmClassType const&>(*value.getType());
    if (type.getDefaultFn() == nullptr) {
        reportValueError(logger, "Default value function not found.",
                         "Default value function not found for value of type '" + typeName(value) + "'.");
        return false;
    }
    SerializationData data;
    if (!readSerializationData(logger, node, data)) {
        reportValueError(logger, "Invalid serialization data.",
                         "Unable to read the serialization data for a value of type '" + typeName(value) +
                             "'.");
        return false;
    }
    std::shared_ptr<DmClassSerialization> const& serializer = type.getCppClassInfo().getSerializer();
    Ptr<void> object = serializer ? serializer->invokeDeserialize(data) : Ptr<void>();
    if (!object) {
        reportValueError(logger, "Failed to create immediate value data.",
                         "The immediate value data for '" + typeName(value) + "' was not created.");
        return false;
    }
    return setBuiltIn<Ptr<void>>(value, std::move(object));
}

/// A string keeps its characters, any other node its JSON text, so that a
/// value of a type nobody knows survives a read and a write.
bool readUnknown(rapidjson::Value const& node, DmBaseValue& value) {
    if (node.IsString()) {
        return setBuiltIn<String>(value, String(textOf(node)));
    }
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    node.Accept(writer);
    return setBuiltIn<String>(value, String(std::string_view(buffer.GetString(), buffer.GetSize())));
}

} // namespace

bool readValue(DmMessageLogger& logger, rapidjson::Value const& node,
               std::shared_ptr<DmBaseValue> const& value) {
    if (!value || !value->getType()) {
        return false;
    }
    DmBaseValue& target = *value;
    switch (target.getType()->getTypeKind()) {
    case kTypeAny:
        return setBuiltIn<Any>(target, Any());
    case kTypeClass:
        return readClass(logger, node, target);
    case kTypeArray:
        return expectForm(logger, node.IsArray(), "an array", target) && readArray(logger, node, target);
    case kTypeStruct:
    case kTypeUnknownStruct:
        return readStruct(logger, node, target);
    case kTypeUnknown:
        return readUnknown(node, target);
    case kTypeUndefined:
        reportValueError(logger, "Undefined type found when reading value.",
                         "Unable to read a value of undefined type '" + typeName(target) + "'.");
        return false;
    case kTypeAuto:
        reportValueError(logger, "Auto type found when reading value.",
                         "Unable to read a value of auto type '" + typeName(target) + "'.");
        return false;
    default:
        return expectForm(logger, node.IsString(), "a string", target) &&
               readScalar(logger, textOf(node), target);
    }
}

bool readSerializationData(DmMessageLogger& logger, rapidjson::Value const& node, SerializationData& out) {
    if (node.IsString()) {
        out = LiteralSerializationData(std::string(textOf(node)));
        return true;
    }
    if (node.IsArray()) {
        out = SequenceSerializationData();
        SequenceSerializationData& sequence = out.asSequence();
        for (auto const& item : node.GetArray()) {
            if (!readSerializationData(logger, item, sequence.add(SerializationData()))) {
                return false;
            }
        }
        return true;
    }
    if (node.IsObject()) {
        out = CompositeSerializationData();
        CompositeSerializationData& composite = out.asComposite();
        for (auto const& member : node.GetObject()) {
            // JSON gives every member a name; an empty one names nothing a
            // deserializer could ask for.
            if (!member.name.IsString() || member.name.GetStringLength() == 0) {
                report(logger, BaMessageTypes::kMessageError, kSerializedDataLocation,
                       "Member requires a name.", "Class members requires a name.");
                return false;
            }
            if (!readSerializationData(
                    logger, member.value,
                    composite.add(std::string(textOf(member.name)), SerializationData()))) {
                return false;
            }
        }
        return true;
    }
    report(logger, BaMessageTypes::kMessageError, kSerializedDataLocation,
           "Value should be a string, object or array.", "Value should be a string, object or array.");
    return false;
}

} // namespace Kesto::Internal
