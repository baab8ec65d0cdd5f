#include <KestoDM/platform/BaDebugEvs.h>

#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

using Kesto::BaDebugEvs;

TEST(BaDebugEvs, SwitchesAreOffByDefault) {
    ScopedEnvironment const print("KESTO_ALWAYS_PRINT_ERRORS", nullptr);
    ScopedEnvironment const abort("KESTO_ABORT_ON_INTERNAL_ERRORS", nullptr);
    EXPECT_FALSE(BaDebugEvs::get_KESTO_ALWAYS_PRINT_ERRORS());
    EXPECT_FALSE(BaDebugEvs::get_KESTO_ABORT_ON_INTERNAL_ERRORS());
}

TEST(BaDebugEvs, PrintErrorsFollowsEnvironment) {
    ScopedEnvironment const print("KESTO_ALWAYS_PRINT_ERRORS", "1");
    EXPECT_TRUE(BaDebugEvs::get_KESTO_ALWAYS_PRINT_ERRORS());
    ::setenv("KESTO_ALWAYS_PRINT_ERRORS", "off", 1);
    EXPECT_FALSE(BaDebugEvs::get_KESTO_ALWAYS_PRINT_ERRORS());
}

TEST(BaDebugEvs, AbortOnInternalErrorsFollowsEnvironment) {
    ScopedEnvironment const abort("KESTO_ABORT_ON_INTERNAL_ERRORS", "yes");
    EXPECT_TRUE(BaDebugEvs::get_KESTO_ABORT_ON_INTERNAL_ERRORS());
    ::setenv("KESTO_ABORT_ON_INTERNAL_ERRORS", "0", 1);
    EXPECT_FALSE(BaDebugEvs::get_KESTO_ABORT_ON_INTERNAL_ERRORS());
}
