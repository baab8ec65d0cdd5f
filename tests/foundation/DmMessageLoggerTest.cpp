#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/platform/BaMessageCategory.h>
#include <KestoDM/platform/BaMessageTypes.h>

#include "TestEntities.h"
#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

using namespace Kesto;

namespace {

constexpr char const* kPrintSwitch = "KESTO_ALWAYS_PRINT_ERRORS";
constexpr char const* kAbortSwitch = "KESTO_ABORT_ON_INTERNAL_ERRORS";

/// A string buffer that counts how often it is flushed.
class SyncCountingBuffer : public std::stringbuf {
public:
    int getSyncCount() const { return m_syncCount; }

protected:
    int sync() override {
        ++m_syncCount;
        return std::stringbuf::sync();
    }

private:
    int m_syncCount = 0;
};

/// Every test starts with both switches off and leaves them as they were.
class DmMessageLoggerTest : public testing::Test {
protected:
    void SetUp() override {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        ::unsetenv(kPrintSwitch);
        ::unsetenv(kAbortSwitch);
    }

    static std::shared_ptr<DmMessageReport> makeReport(BaMessageTypes::MessageCategory category,
                                                       std::string title = "title",
                                                       std::string description = "description") {
        return std::make_shared<DmMessageReport>(category, "<value>", std::move(title),
                                                 std::move(description));
    }

    ScopedEnvironment m_printSwitch{kPrintSwitch, nullptr};
    ScopedEnvironment m_abortSwitch{kAbortSwitch, nullptr};
};

/// Death tests run first; they share the fixture.
using DmMessageLoggerDeathTest = DmMessageLoggerTest;

std::string capturedStderrOf(DmMessageLogger& logger, std::shared_ptr<DmMessageReport> const& report) {
    testing::internal::CaptureStderr();
    logger.reportMessage(report);
    return testing::internal::GetCapturedStderr();
}

} // namespace

// ---------------------------------------------------------------------------
// Reporting and counts

TEST_F(DmMessageLoggerTest, NewLoggerHoldsNoMessages) {
    DmMessageLogger const logger(nullptr);
    EXPECT_EQ(logger.getMessageCount(), 0u);
    EXPECT_EQ(logger.getErrorCount(), 0u);
    EXPECT_EQ(logger.getWarningCount(), 0u);
    EXPECT_EQ(logger.getInfoCount(), 0u);
}

TEST_F(DmMessageLoggerTest, KeepsTheErrorStream) {
    std::ostringstream stream;
    DmMessageLogger const logger(&stream);
    EXPECT_EQ(logger.getErrorStream(), &stream);
    DmMessageLogger const streamless(nullptr);
    EXPECT_EQ(streamless.getErrorStream(), nullptr);
}

TEST_F(DmMessageLoggerTest, ReportMessageAddsTheReport) {
    DmMessageLogger logger(nullptr);
    auto const report = makeReport(BaMessageTypes::kMessageError);
    logger.reportMessage(report);
    ASSERT_EQ(logger.size(), 1u);
    EXPECT_EQ(logger.getMessageCount(), 1u);
    EXPECT_EQ(logger.begin().getRecord(), report);
}

TEST_F(DmMessageLoggerTest, ReportMessageKeepsTheOrderOfReporting) {
    DmMessageLogger logger(nullptr);
    auto const first = makeReport(BaMessageTypes::kMessageInfo, "first");
    auto const second = makeReport(BaMessageTypes::kMessageError, "second");
    auto const third = makeReport(BaMessageTypes::kMessageWarning, "third");
    logger.reportMessage(first);
    logger.reportMessage(second);
    logger.reportMessage(third);
    auto it = logger.begin();
    ASSERT_NE(it, logger.end());
    EXPECT_EQ(it.getRecord(), first);
    ++it;
    ASSERT_NE(it, logger.end());
    EXPECT_EQ(it.getRecord(), second);
    ++it;
    ASSERT_NE(it, logger.end());
    EXPECT_EQ(it.getRecord(), third);
    ++it;
    EXPECT_EQ(it, logger.end());
}

TEST_F(DmMessageLoggerTest, ReportMessageIgnoresANullReport) {
    DmMessageLogger logger(nullptr);
    logger.reportMessage(nullptr);
    EXPECT_EQ(logger.getMessageCount(), 0u);
}

TEST_F(DmMessageLoggerTest, ErrorCountCountsInternalSevereAndPlainErrors) {
    DmMessageLogger logger(nullptr);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInternalError));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageSevereError));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageError));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageWarning));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInfo));
    EXPECT_EQ(logger.getErrorCount(), 3u);
}

TEST_F(DmMessageLoggerTest, WarningCountCountsOnlyWarnings) {
    DmMessageLogger logger(nullptr);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageError));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageWarning));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageWarning));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInfo));
    EXPECT_EQ(logger.getWarningCount(), 2u);
}

TEST_F(DmMessageLoggerTest, InfoCountCountsOnlyInfos) {
    DmMessageLogger logger(nullptr);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageError));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageWarning));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInfo));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInfo));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInfo));
    EXPECT_EQ(logger.getInfoCount(), 3u);
}

TEST_F(DmMessageLoggerTest, MessageCountCountsEveryCategory) {
    DmMessageLogger logger(nullptr);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInternalError));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageSevereError));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageError));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageWarning));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInfo));
    EXPECT_EQ(logger.getMessageCount(), 5u);
}

// ---------------------------------------------------------------------------
// Printing

TEST_F(DmMessageLoggerTest, PrintMessagesWritesEachRecordFollowedByABlankLine) {
    std::ostringstream stream;
    DmMessageLogger logger(&stream);
    auto const entity = std::make_shared<KestoTest::TestEntity>("node");
    logger.reportMessage(std::make_shared<DmMessageReport>(entity, BaMessageTypes::kMessageError, "bad input",
                                                           "the value is out of range", "expected 0..9",
                                                           "graph.kdm", 3, 14));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageWarning, "unused", "the input is never read"));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInfo, "note", "the value was rounded"));
    logger.printMessages();
    EXPECT_EQ(stream.str(),
              "error: graph.kdm:3:14: node: bad input: the value is out of range (expected 0..9)\n"
              "\n"
              "warning: <value>: unused: the input is never read\n"
              "\n"
              "info: <value>: note: the value was rounded\n"
              "\n");
}

TEST_F(DmMessageLoggerTest, PrintMessagesWritesNestedRecordsDepthFirstEachOnItsOwnLine) {
    std::ostringstream stream;
    DmMessageLogger logger(&stream);
    auto const outer = makeReport(BaMessageTypes::kMessageError, "outer", "the load failed");
    auto const cause = makeReport(BaMessageTypes::kMessageError, "cause", "the file is broken");
    auto const causeOfCause = makeReport(BaMessageTypes::kMessageInfo, "deeper", "line 3 is cut short");
    auto const secondCause = makeReport(BaMessageTypes::kMessageWarning, "second", "the name is odd");
    cause->addRecord(causeOfCause);
    outer->addRecord(cause);
    outer->addRecord(secondCause);
    logger.reportMessage(outer);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInfo, "next", "a top-level note"));
    logger.printMessages();
    EXPECT_EQ(stream.str(), "error: <value>: outer: the load failed\n"
                            "error: <value>: cause: the file is broken\n"
                            "info: <value>: deeper: line 3 is cut short\n"
                            "warning: <value>: second: the name is odd\n"
                            "\n"
                            "info: <value>: next: a top-level note\n"
                            "\n");
}

TEST_F(DmMessageLoggerTest, PrintMessagesKeepsTheMessages) {
    std::ostringstream stream;
    DmMessageLogger logger(&stream);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageError));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageWarning));
    logger.printMessages();
    EXPECT_EQ(logger.getMessageCount(), 2u);
}

TEST_F(DmMessageLoggerTest, PrintMessagesFlushesTheStream) {
    SyncCountingBuffer buffer;
    std::ostream stream(&buffer);
    DmMessageLogger logger(&stream);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageError, "t", "d"));
    logger.printMessages();
    EXPECT_EQ(buffer.str(), "error: <value>: t: d\n\n");
    EXPECT_EQ(buffer.getSyncCount(), 1);
}

TEST_F(DmMessageLoggerTest, PrintMessagesOnAnEmptyLoggerWritesNothingAndFlushes) {
    SyncCountingBuffer buffer;
    std::ostream stream(&buffer);
    DmMessageLogger const logger(&stream);
    logger.printMessages();
    EXPECT_EQ(buffer.str(), "");
    EXPECT_EQ(buffer.getSyncCount(), 1);
}

TEST_F(DmMessageLoggerTest, PrintMessagesWithoutAStreamDoesNothing) {
    DmMessageLogger logger(nullptr);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageError));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInfo));
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    logger.printMessages();
    std::string const err = testing::internal::GetCapturedStderr();
    std::string const out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(err, "");
    EXPECT_EQ(out, "");
    EXPECT_EQ(logger.getMessageCount(), 2u);
}

TEST_F(DmMessageLoggerTest, PrintAndClearMessagesWithoutAStreamKeepsTheMessages) {
    DmMessageLogger logger(nullptr);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageError));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageWarning));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInfo));
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    logger.printAndClearMessages();
    std::string const err = testing::internal::GetCapturedStderr();
    std::string const out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(err, "");
    EXPECT_EQ(out, "");
    EXPECT_EQ(logger.size(), 3u);
    EXPECT_EQ(logger.getMessageCount(), 3u);
    EXPECT_EQ(logger.getErrorCount(), 1u);
    EXPECT_EQ(logger.getWarningCount(), 1u);
    EXPECT_EQ(logger.getInfoCount(), 1u);
}

TEST_F(DmMessageLoggerTest, PrintAndClearMessagesPrintsThenClears) {
    std::ostringstream stream;
    DmMessageLogger logger(&stream);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageError, "first", "one"));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageWarning, "second", "two"));
    logger.printAndClearMessages();
    EXPECT_EQ(stream.str(), "error: <value>: first: one\n"
                            "\n"
                            "warning: <value>: second: two\n"
                            "\n");
    EXPECT_EQ(logger.size(), 0u);
    EXPECT_EQ(logger.getMessageCount(), 0u);
}

TEST_F(DmMessageLoggerTest, PrintAndClearMessagesTwicePrintsEachMessageOnce) {
    std::ostringstream stream;
    DmMessageLogger logger(&stream);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageError, "first", "one"));
    logger.printAndClearMessages();
    logger.printAndClearMessages();
    EXPECT_EQ(stream.str(), "error: <value>: first: one\n\n");
}

// ---------------------------------------------------------------------------
// The print switch

TEST_F(DmMessageLoggerTest, WithThePrintSwitchUnsetNothingGoesToStderr) {
    DmMessageLogger logger(nullptr);
    for (BaMessageTypes::MessageCategory const category :
         {BaMessageTypes::kMessageInternalError, BaMessageTypes::kMessageSevereError,
          BaMessageTypes::kMessageError, BaMessageTypes::kMessageWarning, BaMessageTypes::kMessageInfo}) {
        SCOPED_TRACE(static_cast<int>(category));
        EXPECT_EQ(capturedStderrOf(logger, makeReport(category)), "");
    }
    EXPECT_EQ(logger.getMessageCount(), 5u);
}

TEST_F(DmMessageLoggerTest, WithThePrintSwitchSetToZeroNothingGoesToStderr) {
    ASSERT_EQ(::setenv(kPrintSwitch, "0", 1), 0);
    DmMessageLogger logger(nullptr);
    for (BaMessageTypes::MessageCategory const category :
         {BaMessageTypes::kMessageInternalError, BaMessageTypes::kMessageSevereError,
          BaMessageTypes::kMessageError, BaMessageTypes::kMessageWarning, BaMessageTypes::kMessageInfo}) {
        SCOPED_TRACE(static_cast<int>(category));
        EXPECT_EQ(capturedStderrOf(logger, makeReport(category)), "");
    }
}

TEST_F(DmMessageLoggerTest, WithThePrintSwitchOnErrorsAndWarningsGoToStderrAtOnce) {
    ASSERT_EQ(::setenv(kPrintSwitch, "1", 1), 0);
    DmMessageLogger logger(nullptr);
    EXPECT_EQ(capturedStderrOf(logger, makeReport(BaMessageTypes::kMessageInternalError, "internal", "one")),
              "error: <value>: internal: one\n\n");
    EXPECT_EQ(capturedStderrOf(logger, makeReport(BaMessageTypes::kMessageSevereError, "severe", "two")),
              "error: <value>: severe: two\n\n");
    EXPECT_EQ(capturedStderrOf(logger, makeReport(BaMessageTypes::kMessageError, "plain", "three")),
              "error: <value>: plain: three\n\n");
    EXPECT_EQ(capturedStderrOf(logger, makeReport(BaMessageTypes::kMessageWarning, "warned", "four")),
              "warning: <value>: warned: four\n\n");
}

TEST_F(DmMessageLoggerTest, WithThePrintSwitchOnThePrintedMessagesAreStillKept) {
    ASSERT_EQ(::setenv(kPrintSwitch, "1", 1), 0);
    DmMessageLogger logger(nullptr);
    static_cast<void>(capturedStderrOf(logger, makeReport(BaMessageTypes::kMessageError)));
    static_cast<void>(capturedStderrOf(logger, makeReport(BaMessageTypes::kMessageWarning)));
    EXPECT_EQ(logger.getMessageCount(), 2u);
    EXPECT_EQ(logger.getErrorCount(), 1u);
    EXPECT_EQ(logger.getWarningCount(), 1u);
}

TEST_F(DmMessageLoggerTest, WithThePrintSwitchOnAnEntityReportNamesTheEntity) {
    ASSERT_EQ(::setenv(kPrintSwitch, "1", 1), 0);
    DmMessageLogger logger(nullptr);
    auto const entity = std::make_shared<KestoTest::TestEntity>("node");
    auto const report =
        std::make_shared<DmMessageReport>(entity, BaMessageTypes::kMessageError, "bad input", "out of range",
                                          "expected 0..9", "graph.kdm", 3, 14);
    EXPECT_EQ(capturedStderrOf(logger, report),
              "error: graph.kdm:3:14: node: bad input: out of range (expected 0..9)\n\n");
}

TEST_F(DmMessageLoggerTest, WithThePrintSwitchOnNestedRecordsOfTheReportArePrintedToo) {
    ASSERT_EQ(::setenv(kPrintSwitch, "1", 1), 0);
    DmMessageLogger logger(nullptr);
    auto const outer = makeReport(BaMessageTypes::kMessageError, "outer", "the load failed");
    outer->addRecord(makeReport(BaMessageTypes::kMessageInfo, "cause", "the file is broken"));
    EXPECT_EQ(capturedStderrOf(logger, outer), "error: <value>: outer: the load failed\n"
                                               "info: <value>: cause: the file is broken\n"
                                               "\n");
}

TEST_F(DmMessageLoggerTest, WithThePrintSwitchOnAnInfoIsNeverPrintedAtOnce) {
    ASSERT_EQ(::setenv(kPrintSwitch, "1", 1), 0);
    DmMessageLogger logger(nullptr);
    EXPECT_EQ(capturedStderrOf(logger, makeReport(BaMessageTypes::kMessageInfo)), "");
    EXPECT_EQ(logger.getInfoCount(), 1u);
}

TEST_F(DmMessageLoggerTest, ThePrintSwitchAcceptsTrueYesAndOn) {
    DmMessageLogger logger(nullptr);
    for (char const* const value : {"true", "yes", "on", "2"}) {
        SCOPED_TRACE(value);
        ASSERT_EQ(::setenv(kPrintSwitch, value, 1), 0);
        EXPECT_EQ(capturedStderrOf(logger, makeReport(BaMessageTypes::kMessageError, "t", "d")),
                  "error: <value>: t: d\n\n");
    }
}

TEST_F(DmMessageLoggerTest, ThePrintSwitchIsReadAtEachReport) {
    DmMessageLogger logger(nullptr);
    ASSERT_EQ(::setenv(kPrintSwitch, "1", 1), 0);
    EXPECT_EQ(capturedStderrOf(logger, makeReport(BaMessageTypes::kMessageError, "t", "d")),
              "error: <value>: t: d\n\n");
    ASSERT_EQ(::unsetenv(kPrintSwitch), 0);
    EXPECT_EQ(capturedStderrOf(logger, makeReport(BaMessageTypes::kMessageError, "t", "d")), "");
}

TEST_F(DmMessageLoggerTest, WithThePrintSwitchOnTheErrorStreamGetsNothingAtOnce) {
    ASSERT_EQ(::setenv(kPrintSwitch, "1", 1), 0);
    std::ostringstream stream;
    DmMessageLogger logger(&stream);
    static_cast<void>(capturedStderrOf(logger, makeReport(BaMessageTypes::kMessageError)));
    EXPECT_EQ(stream.str(), "");
}

// ---------------------------------------------------------------------------
// Aborting

TEST_F(DmMessageLoggerDeathTest, AFatalMessageAbortsWithBothSwitchesOff) {
    DmMessageLogger logger(nullptr);
    auto const report = makeReport(BaMessageTypes::kMessageFatal, "fatal", "cannot go on");
    EXPECT_EXIT(logger.reportMessage(report), testing::KilledBySignal(SIGABRT), "");
}

TEST_F(DmMessageLoggerDeathTest, AnInternalErrorAbortsWithTheAbortSwitchOn) {
    DmMessageLogger logger(nullptr);
    auto const report = makeReport(BaMessageTypes::kMessageInternalError, "internal", "broken invariant");
    ASSERT_EQ(::setenv(kAbortSwitch, "1", 1), 0);
    EXPECT_EXIT(logger.reportMessage(report), testing::KilledBySignal(SIGABRT), "");
}

TEST_F(DmMessageLoggerTest, AnInternalErrorDoesNotAbortWithTheAbortSwitchOff) {
    DmMessageLogger logger(nullptr);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInternalError, "internal", "broken invariant"));
    EXPECT_EQ(logger.getErrorCount(), 1u);
}

TEST_F(DmMessageLoggerTest, AnInternalErrorDoesNotAbortWithTheAbortSwitchSetToZero) {
    ASSERT_EQ(::setenv(kAbortSwitch, "0", 1), 0);
    DmMessageLogger logger(nullptr);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInternalError, "internal", "broken invariant"));
    EXPECT_EQ(logger.getErrorCount(), 1u);
}

TEST_F(DmMessageLoggerTest, TheAbortSwitchDoesNotAbortOnOtherErrors) {
    ASSERT_EQ(::setenv(kAbortSwitch, "1", 1), 0);
    DmMessageLogger logger(nullptr);
    logger.reportMessage(makeReport(BaMessageTypes::kMessageSevereError));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageError));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageWarning));
    logger.reportMessage(makeReport(BaMessageTypes::kMessageInfo));
    EXPECT_EQ(logger.getMessageCount(), 4u);
}
