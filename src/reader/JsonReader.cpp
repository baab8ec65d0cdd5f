#include "reader/JsonReader.h"

#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolverContext.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmTerminalNodeDef.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "reader/DmLiteralText.h"
#include "reader/DmValueReader.h"
#include "reader/JsonFileEntry.h"

#include <climits>
#include <utility>

namespace Kesto::Internal {

namespace {

using Value = rapidjson::Value;
using KeyTable = LinkedHashMap<std::string_view, std::vector<Value const*>, StringHasher, StringCompare>;

std::string_view view(Value const& value) noexcept {
    return std::string_view(value.GetString(), value.GetStringLength());
}

bool endsWithEither(std::string_view text, char lower, char upper) noexcept {
    return !text.empty() && (text.back() == lower || text.back() == upper);
}

/// A metadata value from its text, or null with the reason reported about `location`.
std::shared_ptr<DmMetadataItem> makeItem(DmMessageLogger& logger, std::string const& location,
                                         std::string name, std::string_view type, std::string_view text) {
    if (type.empty()) {
        // No type: the text's own form decides.
        if (endsWithEither(text, 'f', 'F')) {
            float number = 0;
            if (!checkLiteral(logger, parseFloatLiteral(text, number), text, location)) {
                return nullptr;
            }
            auto value = std::make_shared<DmFloatValue>();
            value->setData(number);
            return std::make_shared<DmMetadataItem>(std::move(name), std::move(value));
        }
        if (endsWithEither(text, 'l', 'L')) {
            long long number = 0;
            if (!checkLiteral(logger, parseSignedLiteral(text, INT_MIN, INT_MAX, number), text, location)) {
                return nullptr;
            }
            auto value = std::make_shared<DmIntValue>();
            value->setData(static_cast<int>(number));
            return std::make_shared<DmMetadataItem>(std::move(name), std::move(value));
        }
        if (text == JsonFormat::kTrue || text == JsonFormat::kFalse) {
            return std::make_shared<DmMetadataItem>(std::move(name), text == JsonFormat::kTrue);
        }
        logger.reportMessage(std::make_shared<DmMessageReport>(
            BaMessageTypes::kMessageError, location, "Unknown value.",
            "The type of the value '" + std::string(text) + "' is unknown."));
        return nullptr;
    }
    if (type == JsonFormat::MetaType::kString) {
        return std::make_shared<DmMetadataItem>(std::move(name), std::string(text));
    }
    if (type == JsonFormat::MetaType::kLong) {
        long long number = 0;
        if (!checkLiteral(logger, parseSignedLiteral(text, LLONG_MIN, LLONG_MAX, number), text, location)) {
            return nullptr;
        }
        return std::make_shared<DmMetadataItem>(std::move(name), static_cast<std::int64_t>(number));
    }
    if (type == JsonFormat::MetaType::kDouble) {
        double number = 0;
        if (!checkLiteral(logger, parseDoubleLiteral(text, number), text, location)) {
            return nullptr;
        }
        return std::make_shared<DmMetadataItem>(std::move(name), number);
    }
    if (type == JsonFormat::MetaType::kBool) {
        return std::make_shared<DmMetadataItem>(std::move(name), JsonFormat::isTrueText(text));
    }
    logger.reportMessage(std::make_shared<DmMessageReport>(
        BaMessageTypes::kMessageError, location, "Unsupported metadata type.",
        "The metadata type '" + std::string(type) + "' for literal '" + std::string(text) +
            "' is unsupported."));
    return nullptr;
}

} // namespace

JsonReader::JsonReader(JsonReadContext context) : m_context(std::move(context)) {}

JsonReader::~JsonReader() = default;

Value const* JsonReader::member(Value const& object, std::string_view key) noexcept {
    if (!object.IsObject()) {
        return nullptr;
    }
    auto const found = object.FindMember(
        Value(rapidjson::StringRef(key.data(), static_cast<rapidjson::SizeType>(key.size()))));
    return found != object.MemberEnd() ? &found->value : nullptr;
}

std::string_view JsonReader::stringOf(Value const& object, std::string_view key) noexcept {
    Value const* const found = member(object, key);
    return found != nullptr && found->IsString() ? view(*found) : std::string_view();
}

bool JsonReader::isList(Value const* value) noexcept {
    return value != nullptr && (value->IsArray() || value->IsObject());
}

bool JsonReader::booleanOf(Value const& object, std::string_view key, bool* present) noexcept {
    std::string_view const text = stringOf(object, key);
    if (present != nullptr) {
        *present = !text.empty();
    }
    return JsonFormat::isTrueText(text);
}

std::string fileLocation(JsonReadContext const& context) {
    return context.uri ? context.uri->getName() : "<json>";
}

void reportAboutFile(JsonReadContext const& context, int category, std::string title,
                     std::string description) {
    if (context.logger) {
        context.logger->reportMessage(std::make_shared<DmMessageReport>(
            static_cast<BaMessageTypes::MessageCategory>(category), fileLocation(context), std::move(title),
            std::move(description)));
    }
}

std::string JsonReader::location() const {
    return fileLocation(m_context);
}

void JsonReader::report(int category, std::string title, std::string description) const {
    reportAboutFile(m_context, category, std::move(title), std::move(description));
}

void JsonReader::reportBadlyFormed() const {
    report(BaMessageTypes::kMessageError, "Badly formed json file.", "The json file is badly formed.");
}

DmStatus JsonReader::read(Value const& root) {
    for (m_pass = 1; m_pass <= 4; ++m_pass) {
        if (m_pass > 1) {
            m_compounds.rewind();
            m_operators.rewind();
            m_terminalNodeDefs.rewind();
            m_types.rewind();
        }
        walk(root);
    }
    m_pass = 0;
    return m_status;
}

void JsonReader::walk(Value const& value) {
    if (value.IsArray()) {
        for (Value const& element : value.GetArray()) {
            walk(element);
        }
    } else if (!value.IsObject()) {
        reportBadlyFormed();
    } else if (m_sections.empty()) {
        walkRoot(value);
    } else {
        handle(m_sections.back(), value);
    }
}

void JsonReader::walkRoot(Value const& object) {
    // Gather the keys, each with all its values in document order, then take
    // the known sections in the format's order; unknown keys come last, as roots.
    KeyTable keys;
    for (auto const& entry : object.GetObject()) {
        keys[view(entry.name)].push_back(&entry.value);
    }
    for (Section const section : JsonFormat::kRootSections) {
        auto const found = keys.find(JsonFormat::sectionKey(section));
        if (found == keys.end()) {
            continue;
        }
        m_sections.push_back(section);
        for (Value const* value : found->second) {
            walk(*value);
        }
        m_sections.pop_back();
        keys.erase(found);
    }
    for (auto const& entry : keys) {
        for (Value const* value : entry.second) {
            walk(*value);
        }
    }
}

void JsonReader::walkList(Value const& object, std::string_view key, Section section) {
    Value const* const list = member(object, key);
    if (list == nullptr) {
        return;
    }
    m_sections.push_back(section);
    walk(*list);
    m_sections.pop_back();
}

// Which handler runs for an object of a section, in which pass; each
// handler walks the lists it holds itself.
void JsonReader::handle(Section section, Value const& object) {
    switch (section) {
    case JsonFormat::kHeader:
        if (m_pass == 1) {
            readHeader(object);
        } else if (m_pass == 2) {
            checkVersion(object);
        }
        break;
    case JsonFormat::kDependencies:
        if (m_pass == 1) {
            followDependency(object);
        }
        break;
    case JsonFormat::kNamespaces:
        if (m_pass == 1) {
            readNamespace(object);
        }
        break;
    case JsonFormat::kTypes:
        readType(object);
        break;
    case JsonFormat::kGlobalVariables:
        readGlobalVariable(object);
        break;
    case JsonFormat::kOperators:
        readOperator(object);
        break;
    case JsonFormat::kTerminalNodes:
        readTerminalNodeDef(object);
        break;
    case JsonFormat::kPorts:
        readPort(object);
        break;
    case JsonFormat::kJobPorts:
        readJobPort(object);
        break;
    case JsonFormat::kCompounds:
        readCompound(object);
        break;
    case JsonFormat::kCompoundNodes:
        readCompoundNode(object);
        break;
    case JsonFormat::kConnections:
        readConnection(object);
        break;
    case JsonFormat::kValues:
        readValueEntry(object);
        break;
    case JsonFormat::kWatchPoints:
        readWatchPoint(object);
        break;
    case JsonFormat::kReservedNodeNames:
        readReservedNodeNames(object);
        break;
    case JsonFormat::kStructMembers:
        readStructMember(object);
        break;
    case JsonFormat::kEnumMembers:
        readEnumMember(object);
        break;
    case JsonFormat::kMetadata:
        readMetadataItem(object);
        break;
    case JsonFormat::kMethods:
        readMethod(object);
        break;
    case JsonFormat::kWhileCompound:
    case JsonFormat::kIterateCompound:
    case JsonFormat::kForEachCompound:
        readLoopSpecialisation(section, object);
        break;
    case JsonFormat::kWhileCompoundPorts:
    case JsonFormat::kIterateCompoundPorts:
    case JsonFormat::kForEachCompoundPorts:
        readLoopPort(section, object);
        break;
    case JsonFormat::kNoSection:
        break;
    }
}

void JsonReader::followDependency(Value const& object) {
    // With placeholders for what is missing, the order of files stops
    // mattering: each file comes in its own time.
    if (m_context.unknownDefinitions || m_context.library == nullptr) {
        return;
    }
    std::string const text(stringOf(object, JsonFormat::Key::kUri));
    if (text.empty()) {
        report(BaMessageTypes::kMessageWarning, "Missing uri.", "Dependency does not have a uri.");
        return;
    }
    DmLibrary& library = *m_context.library;
    std::shared_ptr<DmURI> uri = library.findURI(text);
    std::shared_ptr<DmAssetReference> asset;
    if (uri) {
        asset = library.createAssetReferenceFromURI(uri);
    } else {
        asset = std::make_shared<DmAssetReference>(text);
        auto const context = std::make_shared<DmAssetResolverContext>();
        context->setRelativeAssetReference(m_context.asset);
        context->setLibrary(library.shared_from_this());
        library.resolveAssetReference(asset, context);
    }
    if (!asset || !asset->isResolved()) {
        if (asset && asset->getResolveStatus() == DmAssetReference::kNoResolver) {
            report(BaMessageTypes::kMessageError, "Undefined resolver scheme.",
                   "'" + text + "' does not match a registered resolver.");
        } else {
            report(BaMessageTypes::kMessageError, "Resolver failed.", "'" + text + "' can not be resolved.");
        }
        return;
    }
    if (!uri) {
        uri = library.createURIFromAssetReference(asset);
    }
    if (!uri) {
        report(BaMessageTypes::kMessageError, "Resolver failed.", "'" + text + "' can not be resolved.");
        return;
    }
    if (m_context.uri) {
        m_context.uri->addDependency(uri);
    }
    if (m_context.depth >= JsonReadContext::kMaxDependencyDepth) {
        report(BaMessageTypes::kMessageError, "Dependencies nested too deeply.",
               "'" + text + "' is not read: dependencies nest deeper than " +
                   std::to_string(JsonReadContext::kMaxDependencyDepth) + " files.");
        return;
    }
    // Read at once, before the next section of this file. Never reloaded:
    // the loaded-file test is what ends cycles.
    JsonReadContext context = m_context;
    context.reload = false;
    context.uri = uri;
    context.asset = asset;
    ++context.depth;
    static_cast<void>(JsonFileEntry(std::move(context)).read());
}

void JsonReader::readHeader(Value const& object) {
    if (!m_context.uri) {
        return;
    }
    m_entities.push_back(m_context.uri);
    walkList(object, JsonFormat::Key::kMetadata, JsonFormat::kMetadata);
    m_entities.pop_back();
}

void JsonReader::checkVersion(Value const& object) {
    std::string const uriName = m_context.uri ? m_context.uri->getName() : std::string();
    if (member(object, JsonFormat::Key::kMetadata) == nullptr) {
        report(BaMessageTypes::kMessageWarning, "File format version is not specified.",
               "File format version is not specified in the header section of the json file '" + uriName +
                   "'.");
        return;
    }
    if (!m_context.uri || !m_context.uri->getMetadata()) {
        return;
    }
    // A file read again adds its header items again: the last one is this read's.
    auto const items = m_context.uri->getMetadata()->find(JsonFormat::kFormatVersionItem);
    if (items.empty()) {
        return;
    }
    std::int64_t version = 0;
    if (items.back()->getLongValue(version) == DmStatus::kSuccess && version > JsonFormat::kFormatVersion) {
        report(BaMessageTypes::kMessageError, "File format version is more recent than library.",
               "File format version '" + std::to_string(version) + "' is more recent than library '" +
                   std::to_string(JsonFormat::kFormatVersion) + "' : " + uriName);
    }
}

void JsonReader::readMetadataItem(Value const& object) {
    if (m_entities.empty() || !m_entities.back()->getMetadata()) {
        return;
    }
    std::string_view const name = stringOf(object, JsonFormat::Key::kMetaName);
    if (name.empty()) {
        report(BaMessageTypes::kMessageWarning, "Missing metadata name.", "Metadata requires a name.");
        return;
    }
    std::string_view const type = stringOf(object, JsonFormat::Key::kMetaType);
    std::string_view const text = stringOf(object, JsonFormat::Key::kMetaValue);
    std::shared_ptr<DmMetadataItem> item;
    if (text.empty()) {
        item = std::make_shared<DmMetadataItem>(std::string(name));
    } else {
        if (!m_context.logger) {
            return;
        }
        item = makeItem(*m_context.logger, location(), std::string(name), type, text);
        if (!item) {
            return;
        }
    }
    DmMetadata& metadata = *m_entities.back()->getMetadata();
    // An entity has one icon: a later one replaces it.
    if (name == "icon") {
        static_cast<void>(metadata.set(name, item));
    } else {
        static_cast<void>(metadata.add(item));
    }
    m_entities.push_back(item);
    walkList(object, JsonFormat::Key::kMetadata, JsonFormat::kMetadata);
    m_entities.pop_back();
}

} // namespace Kesto::Internal
