#include <KestoDM/platform/NamingSupport.h>

#include <gtest/gtest.h>

#include <string>

using Kesto::Internal::NamingSupport;

namespace {

std::string legal(std::string_view in) {
    std::string out = "stale";
    NamingSupport::getLegalName(in, out);
    return out;
}

} // namespace

TEST(NamingSupport, AcceptsLettersDigitsAndUnderscores) {
    for (char const* name : {"a", "Z", "_", "_x9", "abc_DEF_123", "__init__"}) {
        EXPECT_TRUE(NamingSupport::isLegalName(name)) << name;
    }
}

TEST(NamingSupport, RefusesEmptyLeadingDigitAndOtherBytes) {
    for (char const* name : {"", "1abc", "9", "a b", "a-b", "a.b", "a/b", "!!!", "caf\xc3\xa9", "a\tb"}) {
        EXPECT_FALSE(NamingSupport::isLegalName(name)) << name;
    }
}

TEST(NamingSupport, LegalFormReplacesIllegalBytes) {
    EXPECT_EQ(legal("a b"), "a_b");
    EXPECT_EQ(legal("a-b.c"), "a_b_c");
    EXPECT_EQ(legal("!a"), "_a");
    EXPECT_EQ(legal("caf\xc3\xa9"), "caf__");
}

TEST(NamingSupport, LegalFormPutsUnderscoreBeforeLeadingDigit) {
    EXPECT_EQ(legal("1abc"), "_1abc");
    EXPECT_EQ(legal("42"), "_42");
}

TEST(NamingSupport, LegalFormOfLegalNameIsItself) {
    EXPECT_EQ(legal("_x9"), "_x9");
    EXPECT_EQ(legal("node"), "node");
}

TEST(NamingSupport, NameWithoutNameBytesHasNoLegalForm) {
    EXPECT_EQ(legal(""), "");
    EXPECT_EQ(legal("!!!"), "");
    EXPECT_EQ(legal(" "), "");
}

TEST(NamingSupport, LegalFormIsAlwaysLegalOrEmpty) {
    for (char const* name : {"a b", "1abc", "!x!", "-", "0", "a\xff"}) {
        std::string const out = legal(name);
        EXPECT_TRUE(out.empty() || NamingSupport::isLegalName(out)) << name;
    }
}
