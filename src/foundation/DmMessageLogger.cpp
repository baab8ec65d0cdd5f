#include <KestoDM/foundation/DmMessageLogger.h>

#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/platform/BaDebugEvs.h>

#include <cstdlib>
#include <iostream>
#include <vector>

namespace Kesto {

DmMessageLogger::DmMessageLogger(std::ostream* errorStream) : m_errorStream(errorStream) {}

DmMessageLogger::~DmMessageLogger() = default;

void DmMessageLogger::reportMessage(std::shared_ptr<DmMessageReport> const& report) {
    if (!report) {
        return;
    }
    addRecord(report);
    BaMessageTypes::MessageCategory const category = report->getInternalCategory();
    // Printing works out entity names, which may report again (a scope with no
    // parent): such a message is kept but not printed from inside the printing.
    static thread_local bool s_printing = false;
    if (category < BaMessageTypes::kMessageInfo && !s_printing &&
        BaDebugEvs::get_KESTO_ALWAYS_PRINT_ERRORS()) {
        struct PrintingScope {
            PrintingScope() { s_printing = true; }
            ~PrintingScope() { s_printing = false; }
        } const printing;
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

namespace {

// Printing works out entity names, and working out a name may report a
// message into this very log: walk a copy of the list, never the live one.
std::vector<std::shared_ptr<BaMessageRecord>> snapshot(BaMessageRecordContainer const& records) {
    std::vector<std::shared_ptr<BaMessageRecord>> copy;
    copy.reserve(records.size());
    for (auto it = records.begin(BaMessageCategory::kAll); it != records.end(); ++it) {
        copy.push_back(it.getRecord());
    }
    return copy;
}

} // namespace

void DmMessageLogger::printRecord(std::ostream& stream, BaMessageRecord const& record, bool recursive) {
    stream << record.getFormattedDescription() << '\n';
    if (!recursive) {
        return;
    }
    for (std::shared_ptr<BaMessageRecord> const& nested : snapshot(record)) {
        printRecord(stream, *nested, true);
    }
}

void DmMessageLogger::printMessages(std::ostream& stream) const {
    for (std::shared_ptr<BaMessageRecord> const& record : snapshot(*this)) {
        printRecord(stream, *record, true);
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
