// The library's entries to the value reader: hand-written value texts and the
// serialization data of class values.
#include <KestoDM/library/DmLibrary.h>

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/platform/SerializationData.h>
#include <KestoDM/types/DmBaseValue.h>

#include "reader/DmValueReader.h"
#include "reader/JsonDocument.h"

#include <boost/regex.hpp>

namespace Kesto {

namespace {

/// What a value text is called in the messages of its parse.
char const* const kValueTextName = "<value>";

/// Hand-written text as strict JSON. A struct may leave its keys and values
/// bare and use '=' for ':' ("{x=1, y:2}"); any other text that is not a
/// JSON string already is the string's content.
std::string toStrictJson(std::string const& text) {
    if (text.empty()) {
        return text;
    }
    if (text.front() == '{') {
        static boost::regex const keys(R"re("?(\w*)"?[:=])re");
        static boost::regex const bareValues(":\"?([^\"{}, \t]+)\"?");
        return boost::regex_replace(boost::regex_replace(text, keys, "\"$1\":"), bareValues, ":\"$1\"");
    }
    if (text.front() != '"') {
        return '"' + text + '"';
    }
    return text;
}

/// A shared pointer that does not own the logger, for a document that lives
/// no longer than the call that lends it.
std::shared_ptr<DmMessageLogger> borrowed(DmMessageLogger& logger) {
    return std::shared_ptr<DmMessageLogger>(std::shared_ptr<DmMessageLogger>(), &logger);
}

} // namespace

bool DmLibrary::readValue(DmMessageLogger& logger, std::string const& text,
                          std::shared_ptr<DmBaseValue>& value) {
    if (!value) {
        return false;
    }
    Internal::JsonDocument document(borrowed(logger));
    if (document.parse(toStrictJson(text), kValueTextName) != DmStatus::kSuccess) {
        return false;
    }
    return Internal::readValue(logger, document.getRoot(), value);
}

DmStatus DmLibrary::loadClassValue(std::string const& jsonText, DmNameResolutionType /*nameResolution*/,
                                   SerializationData* out) {
    if (out == nullptr) {
        return DmStatus::kInvalidArgument;
    }
    DmMessageLogger& logger = *m_errorLogger;
    unsigned int const errorsBefore = logger.getErrorCount();
    DmStatus status = DmStatus::kSuccess;
    {
        Internal::JsonDocument document(m_errorLogger);
        status = document.parse(jsonText, kValueTextName);
        if (status == DmStatus::kSuccess &&
            !Internal::readSerializationData(logger, document.getRoot(), *out)) {
            status = DmStatus::kFailure;
        }
    }
    bool const newErrors = logger.getErrorCount() != errorsBefore;
    logger.printAndClearMessages();
    if (status == DmStatus::kSuccess && newErrors) {
        return DmStatus::kFailure;
    }
    return status;
}

} // namespace Kesto
