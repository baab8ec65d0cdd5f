#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/BaMessageLog.h>
#include <KestoDM/platform/DmExport.h>

#include <iosfwd>
#include <memory>

namespace Kesto {

class BaMessageRecord;
class DmMessageReport;

/// The message log of one library. It keeps every report until the host
/// prints or clears it. Under the print switch (KESTO_ALWAYS_PRINT_ERRORS)
/// errors and warnings also go to standard error at once; a fatal message
/// aborts the process, and so does an internal error under
/// KESTO_ABORT_ON_INTERNAL_ERRORS. The logger has no lock of its own.
class KESTODM_API DmMessageLogger : public BaMessageLog, public DmInstanceCounter<DmMessageLogger> {
public:
    /// `errorStream` is where printMessages writes; not owned, may be null.
    explicit DmMessageLogger(std::ostream* errorStream);
    ~DmMessageLogger() override;

    /// @name Reporting
    /// @{
    void reportMessage(std::shared_ptr<DmMessageReport> const& report);
    /// @}

    /// @name Counts
    /// @{
    unsigned int getErrorCount() const;
    unsigned int getWarningCount() const;
    unsigned int getInfoCount() const;
    unsigned int getMessageCount() const;
    /// @}

    /// @name Printing
    /// @{
    std::ostream* getErrorStream() const noexcept { return m_errorStream; }
    /// Prints every record, a blank line after each, on the error stream, if any.
    void printMessages() const;
    /// Prints and clears; with no error stream the messages stay, unprinted.
    void printAndClearMessages();
    /// @}

private:
    void printMessages(std::ostream& stream) const;
    static void printRecord(std::ostream& stream, BaMessageRecord const& record, bool recursive);

    std::ostream* m_errorStream;
};

} // namespace Kesto
