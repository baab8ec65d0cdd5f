#include <KestoDM/platform/BaEnvVar.h>

#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Kesto::BaEnvVar;

namespace {

// A declared bool switch and a declared int switch that tests may change.
constexpr char const* kBoolName = "KESTO_SAVE_URI_DEPENDENCIES";
constexpr char const* kIntName = "KESTO_CONFIG_RANDOM_SEED";

struct Expected {
    char const* name;
    BaEnvVar::Kind kind;
    char const* description;
};

} // namespace

TEST(BaEnvVar, TableListsEverySwitchInOrder) {
    std::vector<Expected> const expected = {
        {"KESTO_ALWAYS_PRINT_ERRORS", BaEnvVar::Kind::kBool,
         "Print errors and warnings on the standard error as soon as they are reported."},
        {"KESTO_ABORT_ON_INTERNAL_ERRORS", BaEnvVar::Kind::kBool,
         "Abort the process when an internal error is reported."},
        {"KESTO_REPORT_LEAKS", BaEnvVar::Kind::kBool,
         "Report objects of the library still alive at process end on the standard error."},
        {"TOVARIN_DUMP_VERSION_INFO", BaEnvVar::Kind::kInt,
         "Print the version line of the library on the standard error when it is loaded."},
        {"KESTO_CONFIG_RANDOM_SEED", BaEnvVar::Kind::kInt,
         "Allows randomizing the order under which files are loaded when loading config.json files when "
         "files are "
         "discovered providing only a path to a directory. (seed < 0 => time-based seed, seed == 0 => not "
         "randomized (default), seed > 0 => uses provided seed)."},
        {"KESTO_PROFILE_CONFIG_LOAD", BaEnvVar::Kind::kBool,
         "Output timings during the load of the Kesto::Library (config files, shared libs, jsons, resources, "
         "etc.)."},
        {"KESTO_DISABLE_UNKNOWN_DEFINITIONS", BaEnvVar::Kind::kBool,
         "Disable unknown definitions when loading JSON files."},
        {"KESTO_SAVE_URI_DEPENDENCIES", BaEnvVar::Kind::kBool,
         "Whether to write URI dependencies in JSON files or not."},
        {"KESTO_FORCE_NON_SSE_JSON_PARSER", BaEnvVar::Kind::kBool,
         "Force the use of the non-SSE Json parser implementation."},
        {"TOVARIN_USING_VALGRIND", BaEnvVar::Kind::kBool,
         "Check if we are running the application using Valgrind."},
    };
    auto const& all = BaEnvVar::getAll();
    ASSERT_EQ(all.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(all[i]->getName(), expected[i].name);
        EXPECT_EQ(all[i]->getKind(), expected[i].kind);
        EXPECT_EQ(all[i]->getDefault(), "0");
        EXPECT_EQ(all[i]->getDescription(), expected[i].description);
    }
}

TEST(BaEnvVar, FindsDeclaredSwitchByName) {
    BaEnvVar const* const var = BaEnvVar::find("KESTO_REPORT_LEAKS");
    ASSERT_NE(var, nullptr);
    EXPECT_EQ(var->getName(), "KESTO_REPORT_LEAKS");
    EXPECT_EQ(var, BaEnvVar::getAll()[2]);
}

TEST(BaEnvVar, FindGivesNullForUndeclaredName) {
    EXPECT_EQ(BaEnvVar::find("KESTO_NO_SUCH_SWITCH"), nullptr);
    EXPECT_EQ(BaEnvVar::find(""), nullptr);
}

TEST(BaEnvVar, UnsetSwitchGivesItsDefault) {
    ScopedEnvironment const env(kIntName, nullptr);
    BaEnvVar const* const var = BaEnvVar::find(kIntName);
    ASSERT_NE(var, nullptr);
    EXPECT_FALSE(var->isSet());
    EXPECT_EQ(var->getInt(), 0);
    EXPECT_EQ(var->getString(), "0");
    EXPECT_FALSE(var->getBool());
}

TEST(BaEnvVar, ReadsEnvironmentAtEveryCall) {
    ScopedEnvironment const env(kIntName, "5");
    EXPECT_EQ(BaEnvVar::getInt(kIntName), 5);
    ::setenv(kIntName, "6", 1);
    EXPECT_EQ(BaEnvVar::getInt(kIntName), 6);
    ::unsetenv(kIntName);
    EXPECT_EQ(BaEnvVar::getInt(kIntName), 0);
}

TEST(BaEnvVar, EmptyValueCountsAsSet) {
    ScopedEnvironment const env(kBoolName, "");
    EXPECT_TRUE(BaEnvVar::find(kBoolName)->isSet());
    EXPECT_EQ(BaEnvVar::getString(kBoolName), "");
}

TEST(BaEnvVar, BoolIsTrueForNonZeroIntegers) {
    for (char const* text : {"1", "2", "-1", "0010", "99999999999999999999999"}) {
        ScopedEnvironment const env(kBoolName, text);
        EXPECT_TRUE(BaEnvVar::getBool(kBoolName)) << text;
    }
}

TEST(BaEnvVar, BoolIsTrueForTrueYesOnInAnyCase) {
    for (char const* text : {"true", "TRUE", "True", "yes", "YeS", "on", "ON"}) {
        ScopedEnvironment const env(kBoolName, text);
        EXPECT_TRUE(BaEnvVar::getBool(kBoolName)) << text;
    }
}

TEST(BaEnvVar, BoolIsFalseForZeroEmptyAndGarbage) {
    for (char const* text :
         {"0", "00", "-0", "", "false", "off", "no", "garbage", "1x", " 1", "truex", "y"}) {
        ScopedEnvironment const env(kBoolName, text);
        EXPECT_FALSE(BaEnvVar::getBool(kBoolName)) << '"' << text << '"';
    }
}

TEST(BaEnvVar, IntAcceptsSignedDecimal) {
    {
        ScopedEnvironment const env(kIntName, "-42");
        EXPECT_EQ(BaEnvVar::getInt(kIntName), -42);
    }
    {
        ScopedEnvironment const env(kIntName, "+17");
        EXPECT_EQ(BaEnvVar::getInt(kIntName), 17);
    }
    {
        ScopedEnvironment const env(kIntName, "9223372036854775807");
        EXPECT_EQ(BaEnvVar::getInt(kIntName), 9223372036854775807LL);
    }
}

TEST(BaEnvVar, IntFallsBackToDefaultOnBadText) {
    for (char const* text : {"", "abc", "12x", " 3", "+-3", "+", "0x10", "99999999999999999999"}) {
        ScopedEnvironment const env(kIntName, text);
        EXPECT_EQ(BaEnvVar::getInt(kIntName), 0) << '"' << text << '"';
    }
}

TEST(BaEnvVar, StringGivesRawText) {
    ScopedEnvironment const env(kIntName, "not a number");
    EXPECT_EQ(BaEnvVar::getString(kIntName), "not a number");
}

TEST(BaEnvVar, UndeclaredNameGivesFalseZeroAndEmpty) {
    ScopedEnvironment const env("KESTO_UNDECLARED_TEST_SWITCH", "1");
    EXPECT_FALSE(BaEnvVar::getBool("KESTO_UNDECLARED_TEST_SWITCH"));
    EXPECT_EQ(BaEnvVar::getInt("KESTO_UNDECLARED_TEST_SWITCH"), 0);
    EXPECT_EQ(BaEnvVar::getString("KESTO_UNDECLARED_TEST_SWITCH"), "");
}

TEST(BaEnvVarExpand, ReplacesBareName) {
    ScopedEnvironment const env("KESTO_TEST_A", "/opt/a");
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath("$KESTO_TEST_A/lib"), "/opt/a/lib");
}

TEST(BaEnvVarExpand, ReplacesBracedName) {
    ScopedEnvironment const env("KESTO_TEST_A", "/opt/a");
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath("${KESTO_TEST_A}x/lib"), "/opt/ax/lib");
}

TEST(BaEnvVarExpand, BareNameTakesLongestRun) {
    ScopedEnvironment const a("KESTO_TEST_A", "short");
    ScopedEnvironment const ab("KESTO_TEST_AB", "long");
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath("$KESTO_TEST_AB.x"), "long.x");
}

TEST(BaEnvVarExpand, UnsetVariableGivesEmptyText) {
    ScopedEnvironment const env("KESTO_TEST_UNSET", nullptr);
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath("a/$KESTO_TEST_UNSET/b"), "a//b");
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath("a/${KESTO_TEST_UNSET}/b"), "a//b");
}

TEST(BaEnvVarExpand, LoneDollarStays) {
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath("$"), "$");
}

TEST(BaEnvVarExpand, DollarBeforeDigitStays) {
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath("$1x"), "$1x");
}

TEST(BaEnvVarExpand, UnterminatedBraceStaysLiteral) {
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath("${unterminated"), "${unterminated");
}

TEST(BaEnvVarExpand, InvalidBracedNameStaysLiteral) {
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath("${1x}/y"), "${1x}/y");
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath("${}"), "${}");
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath("${a b}"), "${a b}");
}

TEST(BaEnvVarExpand, DoubleDollarKeepsFirstAndExpandsSecond) {
    {
        ScopedEnvironment const env("b", nullptr);
        EXPECT_EQ(BaEnvVar::expandEnvironmentPath("a$$b"), "a$");
    }
    {
        ScopedEnvironment const env("b", "B");
        EXPECT_EQ(BaEnvVar::expandEnvironmentPath("a$$b"), "a$B");
    }
}

TEST(BaEnvVarExpand, TextWithoutDollarIsUnchanged) {
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath("/usr/lib/x"), "/usr/lib/x");
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath(""), "");
}

TEST(BaEnvVarExpand, ExpandsSeveralReferences) {
    ScopedEnvironment const a("KESTO_TEST_A", "x");
    ScopedEnvironment const b("KESTO_TEST_B", "y");
    EXPECT_EQ(BaEnvVar::expandEnvironmentPath("$KESTO_TEST_A/${KESTO_TEST_B}/$KESTO_TEST_A"), "x/y/x");
}
