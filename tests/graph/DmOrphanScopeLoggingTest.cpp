#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaMessageTypes.h>
#include <KestoDM/types/DmStructType.h>

#include "GraphTestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <sstream>

using namespace Kesto;
using KestoTest::makeNamespace;

namespace {

// A namespace with no parent that is no root reports "missing parent scope"
// whenever the full name of a type in it is worked out, also while the log
// prints a report about that type.
std::shared_ptr<DmStructType> typeIn(std::shared_ptr<DmNamespace> const& ns) {
    auto type = DmLibrary::createStructType("T");
    EXPECT_EQ(type->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    return type;
}

std::shared_ptr<DmMessageReport> reportAbout(std::shared_ptr<DmStructType> const& type) {
    return std::make_shared<DmMessageReport>(type, BaMessageTypes::kMessageError, "Title", "Text");
}

} // namespace

TEST(DmOrphanScopeLogging, PrintingAReportAboutAnOrphanScopeKeepsTheLogWhole) {
    std::ostringstream stream;
    auto const logger = std::make_shared<DmMessageLogger>(&stream);
    auto const orphan = makeNamespace("orphan", logger);
    auto const type = typeIn(orphan);
    logger->reportMessage(reportAbout(type));
    logger->printMessages();
    EXPECT_EQ(stream.str(), "error: orphan::T: Title: Text\n\n");
    // The name worked out during printing reported the missing parent.
    EXPECT_EQ(logger->getMessageCount(), 2u);
}

TEST(DmOrphanScopeLogging, PrintAtOnceOfAReportAboutAnOrphanScopeEnds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("KESTO_ALWAYS_PRINT_ERRORS", "1", 1);
            auto const logger = std::make_shared<DmMessageLogger>(nullptr);
            auto const orphan = makeNamespace("orphan", logger);
            auto const type = typeIn(orphan);
            logger->reportMessage(reportAbout(type));
            std::exit(logger->getMessageCount() == 2u ? 0 : 1);
        },
        testing::ExitedWithCode(0), "error: orphan::T: Title: Text");
}
