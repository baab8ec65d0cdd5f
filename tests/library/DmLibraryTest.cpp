#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/platform/BaMessageCategory.h>
#include <KestoDM/platform/BaMessageTypes.h>

#include "library/DmLibraryFaults.h"

#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

using namespace Kesto;

namespace {

constexpr char const* kPrintSwitch = "KESTO_ALWAYS_PRINT_ERRORS";
constexpr char const* kAbortSwitch = "KESTO_ABORT_ON_INTERNAL_ERRORS";

/// Every test starts with the message switches off and no injected fault, and
/// leaves them as they were.
class DmLibraryTest : public testing::Test {
protected:
    void SetUp() override {
        ::unsetenv(kPrintSwitch);
        ::unsetenv(kAbortSwitch);
        Internal::setFailLibraryInitialization(false);
    }

    void TearDown() override { Internal::setFailLibraryInitialization(false); }

    ScopedEnvironment m_printSwitch{kPrintSwitch, nullptr};
    ScopedEnvironment m_abortSwitch{kAbortSwitch, nullptr};
};

} // namespace

// ---------------------------------------------------------------------------
// Construction

TEST_F(DmLibraryTest, NewLibraryIsNotNull) {
    std::ostringstream stream;
    auto const library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    EXPECT_NE(library, nullptr);
}

TEST_F(DmLibraryTest, NewLibraryKeepsTheGivenContext) {
    std::ostringstream stream;
    auto const context = std::make_shared<BaContext>();
    auto const library = DmLibrary::newLibrary(context, &stream, DmExternOperator::kSafe);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library->getContext(), context);
}

TEST_F(DmLibraryTest, NewLibraryKeepsTheCancellationPolicyNone) {
    std::ostringstream stream;
    auto const library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kNone);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library->getDefaultCancellationPolicy(), DmExternOperator::kNone);
}

TEST_F(DmLibraryTest, NewLibraryKeepsTheCancellationPolicySafe) {
    std::ostringstream stream;
    auto const library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library->getDefaultCancellationPolicy(), DmExternOperator::kSafe);
}

TEST_F(DmLibraryTest, NewLibraryKeepsTheCancellationPolicyUnsafe) {
    std::ostringstream stream;
    auto const library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kUnsafe);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library->getDefaultCancellationPolicy(), DmExternOperator::kUnsafe);
}

TEST_F(DmLibraryTest, NewLibraryHasAnErrorLoggerOnTheGivenStream) {
    std::ostringstream stream;
    auto const library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    ASSERT_NE(library, nullptr);
    ASSERT_NE(library->getErrorLogger(), nullptr);
    EXPECT_EQ(library->getErrorLogger()->getErrorStream(), &stream);
}

TEST_F(DmLibraryTest, NewLibraryWithoutAStreamHasAnErrorLoggerWithoutAStream) {
    auto const library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), nullptr, DmExternOperator::kSafe);
    ASSERT_NE(library, nullptr);
    ASSERT_NE(library->getErrorLogger(), nullptr);
    EXPECT_EQ(library->getErrorLogger()->getErrorStream(), nullptr);
}

TEST_F(DmLibraryTest, NewLibraryStartsWithAnEmptyLog) {
    std::ostringstream stream;
    auto const library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    ASSERT_NE(library, nullptr);
    ASSERT_NE(library->getErrorLogger(), nullptr);
    EXPECT_EQ(library->getErrorLogger()->getMessageCount(), 0u);
}

TEST_F(DmLibraryTest, LibrariesOfOneContextShareIt) {
    std::ostringstream stream;
    auto const context = std::make_shared<BaContext>();
    auto const first = DmLibrary::newLibrary(context, &stream, DmExternOperator::kSafe);
    auto const second = DmLibrary::newLibrary(context, &stream, DmExternOperator::kNone);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(first->getContext(), context);
    EXPECT_EQ(second->getContext(), context);
    EXPECT_NE(first->getErrorLogger(), second->getErrorLogger());
}

// ---------------------------------------------------------------------------
// Failed initialization

TEST_F(DmLibraryTest, FailedInitializationStillGivesALibrary) {
    std::ostringstream stream;
    Internal::setFailLibraryInitialization(true);
    auto const library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    Internal::setFailLibraryInitialization(false);
    ASSERT_NE(library, nullptr);
    EXPECT_NE(library->getErrorLogger(), nullptr);
}

TEST_F(DmLibraryTest, FailedInitializationLeavesExactlyOneErrorInTheLog) {
    std::ostringstream stream;
    Internal::setFailLibraryInitialization(true);
    auto const library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    Internal::setFailLibraryInitialization(false);
    ASSERT_NE(library, nullptr);
    std::shared_ptr<DmMessageLogger> const& logger = library->getErrorLogger();
    ASSERT_NE(logger, nullptr);
    EXPECT_EQ(logger->getMessageCount(), 1u);
    EXPECT_EQ(logger->getErrorCount(), 1u);
    ASSERT_NE(logger->begin(), logger->end());
    BaMessageRecord const& record = *logger->begin();
    EXPECT_EQ(record.getCategory(), BaMessageCategory::kError);
    EXPECT_EQ(record.getTitle(), "the library could not be initialized");
    EXPECT_EQ(record.getDescription(), "library initialization failed");
}

TEST_F(DmLibraryTest, FailedInitializationErrorIsPrintedAtTheLibrarysEnd) {
    std::ostringstream stream;
    Internal::setFailLibraryInitialization(true);
    auto library = DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    Internal::setFailLibraryInitialization(false);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(stream.str(), "");
    library.reset();
    EXPECT_EQ(stream.str(), "error: the library could not be initialized: library initialization failed\n\n");
}

TEST_F(DmLibraryTest, InitializationSucceedsAgainOnceTheFaultIsReset) {
    std::ostringstream stream;
    Internal::setFailLibraryInitialization(true);
    auto const failed =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    Internal::setFailLibraryInitialization(false);
    ASSERT_NE(failed, nullptr);
    auto const library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    ASSERT_NE(library, nullptr);
    ASSERT_NE(library->getErrorLogger(), nullptr);
    EXPECT_EQ(library->getErrorLogger()->getMessageCount(), 0u);
}

// ---------------------------------------------------------------------------
// The library's end

TEST_F(DmLibraryTest, UnprintedMessageIsPrintedAtTheLibrarysEnd) {
    std::ostringstream stream;
    auto library = DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    ASSERT_NE(library, nullptr);
    library->getErrorLogger()->reportMessage(std::make_shared<DmMessageReport>(
        BaMessageTypes::kMessageWarning, "<value>", "unused", "the input is never read"));
    EXPECT_EQ(stream.str(), "");
    library.reset();
    EXPECT_EQ(stream.str(), "warning: <value>: unused: the input is never read\n\n");
}

TEST_F(DmLibraryTest, EveryUnprintedMessageIsPrintedAtTheLibrarysEndInOrder) {
    std::ostringstream stream;
    auto library = DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    ASSERT_NE(library, nullptr);
    library->getErrorLogger()->reportMessage(
        std::make_shared<DmMessageReport>(BaMessageTypes::kMessageError, "<value>", "first", "one"));
    library->getErrorLogger()->reportMessage(
        std::make_shared<DmMessageReport>(BaMessageTypes::kMessageInfo, "<value>", "second", "two"));
    library.reset();
    EXPECT_EQ(stream.str(), "error: <value>: first: one\n"
                            "\n"
                            "info: <value>: second: two\n"
                            "\n");
}

TEST_F(DmLibraryTest, AlreadyPrintedMessagesAreNotPrintedAgainAtTheLibrarysEnd) {
    std::ostringstream stream;
    auto library = DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    ASSERT_NE(library, nullptr);
    library->getErrorLogger()->reportMessage(
        std::make_shared<DmMessageReport>(BaMessageTypes::kMessageError, "<value>", "first", "one"));
    library->getErrorLogger()->printAndClearMessages();
    library.reset();
    EXPECT_EQ(stream.str(), "error: <value>: first: one\n\n");
}

TEST_F(DmLibraryTest, LibrarysEndWithoutMessagesPrintsNothing) {
    std::ostringstream stream;
    auto library = DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    ASSERT_NE(library, nullptr);
    library.reset();
    EXPECT_EQ(stream.str(), "");
}

TEST_F(DmLibraryTest, LibrarysEndWithoutAStreamPrintsNothing) {
    auto library = DmLibrary::newLibrary(std::make_shared<BaContext>(), nullptr, DmExternOperator::kSafe);
    ASSERT_NE(library, nullptr);
    library->getErrorLogger()->reportMessage(std::make_shared<DmMessageReport>(
        BaMessageTypes::kMessageError, "<value>", "lost", "nobody reads this"));
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    library.reset();
    std::string const err = testing::internal::GetCapturedStderr();
    std::string const out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(library, nullptr);
    EXPECT_EQ(err, "");
    EXPECT_EQ(out, "");
}

// ---------------------------------------------------------------------------
// Instance count

TEST_F(DmLibraryTest, InstanceCountGoesBackOnceTheLibraryIsDropped) {
    unsigned int const before = DmInstanceCounter<DmLibrary>::getInstanceCount();
    std::ostringstream stream;
    auto library = DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(DmInstanceCounter<DmLibrary>::getInstanceCount(), before + 1);
    library.reset();
    EXPECT_EQ(DmInstanceCounter<DmLibrary>::getInstanceCount(), before);
}

TEST_F(DmLibraryTest, InstanceCountGoesBackOnceAFailedLibraryIsDropped) {
    unsigned int const before = DmInstanceCounter<DmLibrary>::getInstanceCount();
    std::ostringstream stream;
    Internal::setFailLibraryInitialization(true);
    auto library = DmLibrary::newLibrary(std::make_shared<BaContext>(), &stream, DmExternOperator::kSafe);
    Internal::setFailLibraryInitialization(false);
    ASSERT_NE(library, nullptr);
    library.reset();
    EXPECT_EQ(DmInstanceCounter<DmLibrary>::getInstanceCount(), before);
}
