#include "reader/JsonFileEntry.h"

#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmOSUtils.h>
#include <KestoDM/library/DmLibrary.h>

#include "reader/JsonDocument.h"

#include <utility>

namespace Kesto::Internal {

namespace {

using Value = rapidjson::Value;

/// Calls `test` on `value` when it is an object, or on each object of it when
/// it is an array; true when one passes.
template <class Test>
bool anyObject(Value const& value, Test const& test) {
    if (value.IsObject()) {
        return test(value);
    }
    if (value.IsArray()) {
        for (Value const& element : value.GetArray()) {
            if (element.IsObject() && test(element)) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

JsonFileEntry::JsonFileEntry(JsonReadContext context) : m_context(std::move(context)) {}

void JsonFileEntry::report(int category, std::string title, std::string description) const {
    reportAboutFile(m_context, category, std::move(title), std::move(description));
}

DmStatus JsonFileEntry::assetFailure() const {
    if (!m_context.asset->isResolved()) {
        report(BaMessageTypes::kMessageError, "Invalid Json file asset.",
               "Invalid Json file asset '" + JsonDocument::assetName(*m_context.asset) + "'.");
    }
    return DmStatus::kFileError;
}

bool JsonFileEntry::hasFormatVersion(Value const& root) {
    if (!root.IsObject()) {
        return false;
    }
    Value const* const header = JsonReader::member(root, JsonFormat::Key::kHeader);
    return header != nullptr && anyObject(*header, [](Value const& headerObject) {
               Value const* const metadata = JsonReader::member(headerObject, JsonFormat::Key::kMetadata);
               return metadata != nullptr && anyObject(*metadata, [](Value const& item) {
                          return JsonReader::stringOf(item, JsonFormat::Key::kMetaName) ==
                                 JsonFormat::kFormatVersionItem;
                      });
           });
}

DmStatus JsonFileEntry::read() {
    if (!m_context.uri || !m_context.asset || m_context.library == nullptr) {
        report(BaMessageTypes::kMessageError, "Non existing Json file.", "Non existing Json file.");
        return DmStatus::kFileError;
    }
    if (!m_context.uri->isValid() || !m_context.asset->isResolved()) {
        if (!m_context.uri->isValid()) {
            report(BaMessageTypes::kMessageError, "Invalid Json file URI.",
                   "Invalid Json file URI '" + m_context.uri->getName() + "'.");
        }
        return assetFailure();
    }
    std::string const filePath = m_context.asset->getFilePath();
    if (!m_context.reload && m_context.library->isJsonFileLoaded(filePath)) {
        return DmStatus::kSuccess;
    }
    if (auto const* const fileURI = dynamic_cast<DmFileURI const*>(m_context.uri.get());
        fileURI != nullptr && m_context.asset->hasFilePath() &&
        !DmOSUtils::equivalentPath(fileURI->getFilePath(), filePath)) {
        // Found somewhere other than where the URI points: likely a second copy.
        report(BaMessageTypes::kMessageWarning,
               "Potential duplicate Json file of: '" + fileURI->getFilePath() + "'.",
               "Potential duplicate Json file of: '" + fileURI->getFilePath() + "', found  at: '" + filePath +
                   "'.");
    }
    JsonDocument document(m_context.logger);
    DmStatus const loaded = document.load(m_context.asset);
    if (loaded != DmStatus::kSuccess) {
        return loaded;
    }
    m_context.library->setJsonFileAsLoaded(filePath);
    if (!hasFormatVersion(document.getRoot())) {
        report(BaMessageTypes::kMessageError, "Invalid Kesto JSON file.",
               "'" + m_context.uri->getName() +
                   "' is not a valid Kesto JSON file: Missing the header's 'file format version' metadata.");
        return DmStatus::kInvalidArgument;
    }
    JsonReader reader(m_context);
    return reader.read(document.getRoot());
}

} // namespace Kesto::Internal
