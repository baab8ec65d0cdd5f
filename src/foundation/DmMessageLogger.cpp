#include <KestoDM/foundation/DmMessageLogger.h>

#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/platform/BaDebugEvs.h>

#include <cstdlib>
#include <iostream>

namespace Kesto {

DmMessageLogger::DmMessageLogger(std::ostream* errorStream) : m_errorStream(errorStream) {}

DmMessageLogger::~DmMessageLogger() = default;

void DmMessageLogger::reportMessage(std::shared_ptr<DmMessageReport> const& report) {
    if (!report) {
        return;
    }
    addRecord(report);
    BaMessageTypes::MessageCategory const category = report->getInternalCategory();
    if (category < BaMessageTypes::kMessageInfo && BaDebugEvs::get_KESTO_ALWAYS_PRINT_ERRORS()) {
        printRecord(std::cerr, *report, true);
        std::cerr << '\n';
        std::cerr.flush();
    }
    if (category == BaMessageTypes::kMessageFatal) {
        std::abort();
    }
    if (category == BaMessageTypes::kMessageInternalError &&
        BaDebugEvs::get_KESTO_ABORT_ON_INTERNAL_ERRORS()) {
        std::abort();
    }
}

unsigned int DmMessageLogger::getErrorCount() const {
    return getCategoryCount(BaMessageCategory::kError, false);
}

unsigned int DmMessageLogger::getWarningCount() const {
    return getCategoryCount(BaMessageCategory::kWarning, false);
}

unsigned int DmMessageLogger::getInfoCount() const {
    return getCategoryCount(BaMessageCategory::kInfo, false);
}

unsigned int DmMessageLogger::getMessageCount() const {
    return getCategoryCount(BaMessageCategory::kAll, false);
}

void DmMessageLogger::printRecord(std::ostream& stream, BaMessageRecord const& record, bool recursive) {
    stream << record.getFormattedDescription() << '\n';
    if (!recursive) {
        return;
    }
    for (auto it = record.begin(BaMessageCategory::kAll); it != record.end(); ++it) {
        printRecord(stream, *it, true);
    }
}

void DmMessageLogger::printMessages(std::ostream& stream) const {
    for (auto it = begin(BaMessageCategory::kAll); it != end(); ++it) {
        printRecord(stream, *it, true);
        stream << '\n';
    }
    stream.flush();
}

void DmMessageLogger::printMessages() const {
    if (m_errorStream != nullptr) {
        printMessages(*m_errorStream);
    }
}

void DmMessageLogger::printAndClearMessages() {
    if (m_errorStream == nullptr) {
        return;
    }
    printMessages(*m_errorStream);
    clear();
}

} // namespace Kesto
