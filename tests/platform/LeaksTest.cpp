#include <KestoDM/platform/BaLeaks.h>

#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

using Kesto::BaLeaks;

namespace {

class BaLeaksTest : public testing::Test {
protected:
    void SetUp() override { BaLeaks::clearReports(); }
    void TearDown() override { BaLeaks::clearReports(); }
};

void reportAtExit() {
    BaLeaks::report_leaks("AtExitThing", 2);
}

} // namespace

TEST_F(BaLeaksTest, RecordsReportsInOrder) {
    ScopedEnvironment const env("KESTO_REPORT_LEAKS", nullptr);
    BaLeaks::report_leaks("Foo", 3);
    BaLeaks::report_leaks("Bar", 1);
    auto const reports = BaLeaks::getReports();
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].className, "Foo");
    EXPECT_EQ(reports[0].count, 3u);
    EXPECT_EQ(reports[1].className, "Bar");
    EXPECT_EQ(reports[1].count, 1u);
}

TEST_F(BaLeaksTest, ClearRemovesReports) {
    ScopedEnvironment const env("KESTO_REPORT_LEAKS", nullptr);
    BaLeaks::report_leaks("Foo", 3);
    BaLeaks::clearReports();
    EXPECT_TRUE(BaLeaks::getReports().empty());
}

TEST_F(BaLeaksTest, PrintsLineWhenSwitchIsOn) {
    ScopedEnvironment const env("KESTO_REPORT_LEAKS", "1");
    testing::internal::CaptureStderr();
    BaLeaks::report_leaks("Kesto::DmNode", 7);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "KestoDM leak: 7 instance(s) of Kesto::DmNode\n");
    EXPECT_EQ(BaLeaks::getReports().size(), 1u);
}

TEST_F(BaLeaksTest, StaysSilentWhenSwitchIsOff) {
    ScopedEnvironment const env("KESTO_REPORT_LEAKS", "0");
    testing::internal::CaptureStderr();
    BaLeaks::report_leaks("Kesto::DmNode", 7);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(BaLeaks::getReports().size(), 1u);
}

TEST_F(BaLeaksTest, NullClassNameIsRecordedAsUnknown) {
    ScopedEnvironment const env("KESTO_REPORT_LEAKS", nullptr);
    BaLeaks::report_leaks(nullptr, 1);
    auto const reports = BaLeaks::getReports();
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports[0].className, "<unknown>");
}

TEST_F(BaLeaksTest, ConcurrentReportsAreAllKept) {
    ScopedEnvironment const env("KESTO_REPORT_LEAKS", nullptr);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 100; ++i) {
                BaLeaks::report_leaks("Threaded", 1);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(BaLeaks::getReports().size(), 400u);
}

TEST_F(BaLeaksTest, PrintsDuringProcessExit) {
    // The child reports from an exit handler, where leak reports really come from.
    EXPECT_EXIT(
        {
            ::setenv("KESTO_REPORT_LEAKS", "on", 1);
            std::atexit(reportAtExit);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "KestoDM leak: 2 instance\\(s\\) of AtExitThing");
}
