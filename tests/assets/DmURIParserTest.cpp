#include <KestoDM/assets/DmURIParser.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

using Kesto::DmURIParser;

namespace {

struct Parts {
    std::string scheme;
    std::string netLoc;
    std::string path;
    std::string query;
    std::string fragment;
    std::string schemeKey;
};

// Parses `spec` with a fresh parser and checks every part, the spec it keeps,
// and the scheme key of the same spec.
void expectSplit(std::string const& spec, Parts const& expected) {
    DmURIParser const parser(spec);
    EXPECT_EQ(parser.getSpec(), spec);
    EXPECT_EQ(parser.getScheme(), expected.scheme);
    EXPECT_EQ(parser.getNetLoc(), expected.netLoc);
    EXPECT_EQ(parser.getPath(), expected.path);
    EXPECT_EQ(parser.getQuery(), expected.query);
    EXPECT_EQ(parser.getFragment(), expected.fragment);
    EXPECT_EQ(DmURIParser::getSchemeKey(spec), expected.schemeKey);
}

} // namespace

// Splitting: one test per kind of spec.

TEST(DmURIParser, SplitsALongFormFileSpecWithADriveLetter) {
    expectSplit("file:///C:/a/b.json", {"file", "", "/C:/a/b.json", "", "", "file"});
}

TEST(DmURIParser, SplitsAFilePathsSpec) {
    expectSplit("halvern:a/b.json", {"halvern", "", "a/b.json", "", "", "halvern"});
}

TEST(DmURIParser, TakesADriveLetterForAScheme) {
    expectSplit("C:/a/b.json", {"C", "", "/a/b.json", "", "", "C"});
}

TEST(DmURIParser, ColonAfterTheFirstSlashBelongsToThePath) {
    expectSplit("/a/b:c.json", {"", "", "/a/b:c.json", "", "", ""});
}

TEST(DmURIParser, SplitsAStreamSpec) {
    expectSplit("stream:/name", {"stream", "", "/name", "", "", "stream"});
}

TEST(DmURIParser, NetLocWithoutAPathTakesTheRestAndLeavesThePathEmpty) {
    expectSplit("s://host", {"s", "host", "", "", "", "s"});
}

TEST(DmURIParser, SplitsAllFiveParts) {
    expectSplit("s://host/p?q=1#f", {"s", "host", "/p", "q=1", "f", "s"});
}

TEST(DmURIParser, ColonInsideTheQueryIsNoScheme) {
    expectSplit("a?b:c", {"", "", "a", "b:c", "", ""});
}

TEST(DmURIParser, QuestionMarkInsideTheFragmentStaysInTheFragment) {
    expectSplit("a#b?c", {"", "", "a", "", "b?c", ""});
}

TEST(DmURIParser, FragmentStartsAtTheLastHashAndTheQueryAtTheLastQuestionMarkBeforeIt) {
    expectSplit("a?b#c?d", {"", "", "a", "b", "c?d", ""});
}

TEST(DmURIParser, EmptySpecHasNoParts) {
    expectSplit("", {"", "", "", "", "", ""});
}

TEST(DmURIParser, FirstColonEndsTheScheme) {
    expectSplit("a:b:c", {"a", "", "b:c", "", "", "a"});
}

TEST(DmURIParser, QueryIsCutAtTheLastQuestionMark) {
    expectSplit("s:p?a?b", {"s", "", "p?a", "b", "", "s"});
}

TEST(DmURIParser, FragmentIsCutAtTheLastHash) {
    expectSplit("s:p#a#b", {"s", "", "p#a", "", "b", "s"});
}

TEST(DmURIParser, NetLocEndsAtTheNextSlashWhichStartsThePath) {
    expectSplit("s://host/a/b", {"s", "host", "/a/b", "", "", "s"});
}

TEST(DmURIParser, SpecWithoutSchemeMayHaveANetLoc) {
    expectSplit("//host/p", {"", "host", "/p", "", "", ""});
}

TEST(DmURIParser, SingleSlashAfterTheSchemeIsPartOfThePath) {
    expectSplit("s:/p", {"s", "", "/p", "", "", "s"});
}

TEST(DmURIParser, EmptySchemeBeforeALeadingColonIsNoScheme) {
    DmURIParser const parser(":p");
    EXPECT_EQ(parser.getScheme(), "");
    EXPECT_EQ(parser.getPath(), "p");
    DmURIParser copy(parser);
    EXPECT_EQ(copy.build(false), "p");
}

// Construction and parts.

TEST(DmURIParser, DefaultParserHasEveryPartEmpty) {
    DmURIParser const parser;
    EXPECT_EQ(parser.getSpec(), "");
    EXPECT_EQ(parser.getScheme(), "");
    EXPECT_EQ(parser.getNetLoc(), "");
    EXPECT_EQ(parser.getPath(), "");
    EXPECT_EQ(parser.getQuery(), "");
    EXPECT_EQ(parser.getFragment(), "");
}

TEST(DmURIParser, NewURIParserWithoutASpecIsEmpty) {
    std::shared_ptr<DmURIParser> const parser = DmURIParser::newURIParser();
    ASSERT_NE(parser, nullptr);
    EXPECT_EQ(parser->getSpec(), "");
    EXPECT_EQ(parser->getPath(), "");
}

TEST(DmURIParser, NewURIParserParsesTheSpec) {
    std::shared_ptr<DmURIParser> const parser = DmURIParser::newURIParser("s://host/p?q=1#f");
    ASSERT_NE(parser, nullptr);
    EXPECT_EQ(parser->getSpec(), "s://host/p?q=1#f");
    EXPECT_EQ(parser->getScheme(), "s");
    EXPECT_EQ(parser->getNetLoc(), "host");
    EXPECT_EQ(parser->getPath(), "/p");
    EXPECT_EQ(parser->getQuery(), "q=1");
    EXPECT_EQ(parser->getFragment(), "f");
}

TEST(DmURIParser, CopyTakesEveryMemberAndStaysIndependent) {
    DmURIParser const original("s://host/p?q=1#f");
    DmURIParser copy(original);
    EXPECT_EQ(copy.getSpec(), original.getSpec());
    EXPECT_EQ(copy.getScheme(), "s");
    EXPECT_EQ(copy.getNetLoc(), "host");
    EXPECT_EQ(copy.getPath(), "/p");
    EXPECT_EQ(copy.getQuery(), "q=1");
    EXPECT_EQ(copy.getFragment(), "f");
    copy.setPath("/other");
    EXPECT_EQ(original.getPath(), "/p");
}

TEST(DmURIParser, CopyAssignmentReplacesEveryMember) {
    DmURIParser const source("s://host/p?q=1#f");
    DmURIParser target("t://other/x?y#z");
    target = source;
    EXPECT_EQ(target.getSpec(), "s://host/p?q=1#f");
    EXPECT_EQ(target.getScheme(), "s");
    EXPECT_EQ(target.getNetLoc(), "host");
    EXPECT_EQ(target.getPath(), "/p");
    EXPECT_EQ(target.getQuery(), "q=1");
    EXPECT_EQ(target.getFragment(), "f");
}

TEST(DmURIParser, HasAVirtualDestructor) {
    EXPECT_TRUE(std::has_virtual_destructor_v<DmURIParser>);
    EXPECT_TRUE(std::is_copy_constructible_v<DmURIParser>);
    EXPECT_TRUE(std::is_copy_assignable_v<DmURIParser>);
}

TEST(DmURIParser, SettersChangeTheirPartOnlyAndLeaveTheSpecStale) {
    DmURIParser parser("s://host/p?q=1#f");
    parser.setScheme("t");
    parser.setNetLoc("other");
    parser.setPath("/x");
    parser.setQuery("y");
    parser.setFragment("z");
    EXPECT_EQ(parser.getSpec(), "s://host/p?q=1#f");
    EXPECT_EQ(parser.getScheme(), "t");
    EXPECT_EQ(parser.getNetLoc(), "other");
    EXPECT_EQ(parser.getPath(), "/x");
    EXPECT_EQ(parser.getQuery(), "y");
    EXPECT_EQ(parser.getFragment(), "z");
    EXPECT_EQ(parser.build(false), "t://other/x?y#z");
}

TEST(DmURIParser, SetSpecLeavesThePartsUntilParse) {
    DmURIParser parser("s:p");
    parser.setSpec("t:x");
    EXPECT_EQ(parser.getSpec(), "t:x");
    EXPECT_EQ(parser.getScheme(), "s");
    EXPECT_EQ(parser.getPath(), "p");
    parser.parse();
    EXPECT_EQ(parser.getScheme(), "t");
    EXPECT_EQ(parser.getPath(), "x");
}

TEST(DmURIParser, ParsingAgainKeepsThePartsTheNewSpecLacks) {
    DmURIParser parser("s://host/p?q=1#f");
    parser.setSpec("other");
    parser.parse();
    EXPECT_EQ(parser.getScheme(), "s");
    EXPECT_EQ(parser.getNetLoc(), "host");
    EXPECT_EQ(parser.getQuery(), "q=1");
    EXPECT_EQ(parser.getFragment(), "f");
    EXPECT_EQ(parser.getPath(), "other");
}

TEST(DmURIParser, ParsingAgainAlwaysWritesThePath) {
    DmURIParser parser("s:/p");
    parser.setSpec("t:");
    parser.parse();
    EXPECT_EQ(parser.getScheme(), "t");
    EXPECT_EQ(parser.getPath(), "");
}

// Building.

TEST(DmURIParser, BuildWithAForcedNetLocAndABarePathGivesThreeSlashes) {
    DmURIParser parser;
    parser.setPath("p");
    EXPECT_EQ(parser.build(true), "///p");
    EXPECT_EQ(parser.getSpec(), "///p");
}

TEST(DmURIParser, BuildWithAForcedNetLocKeepsTheLeadingSlashOfThePath) {
    DmURIParser parser;
    parser.setScheme("file");
    parser.setPath("/a/b.json");
    EXPECT_EQ(parser.build(true), "file:///a/b.json");
}

TEST(DmURIParser, BuildWithAForcedNetLocAndNoPathEndsAfterTheSlashes) {
    DmURIParser parser;
    parser.setScheme("s");
    EXPECT_EQ(parser.build(true), "s://");
}

TEST(DmURIParser, BuildWithoutANetLocWritesNoSlashes) {
    DmURIParser parser;
    parser.setScheme("file");
    parser.setPath("/a/b");
    EXPECT_EQ(parser.build(false), "file:/a/b");
}

TEST(DmURIParser, BuildPutsASlashBetweenTheNetLocAndARelativePath) {
    DmURIParser parser;
    parser.setScheme("s");
    parser.setNetLoc("host");
    parser.setPath("p");
    EXPECT_EQ(parser.build(false), "s://host/p");
}

TEST(DmURIParser, BuildWritesTheNetLocWithoutBeingForced) {
    DmURIParser parser;
    parser.setNetLoc("host");
    EXPECT_EQ(parser.build(false), "//host");
}

TEST(DmURIParser, BuildOfEmptyPartsIsEmpty) {
    DmURIParser parser("s://host/p?q=1#f");
    parser.setScheme("");
    parser.setNetLoc("");
    parser.setPath("");
    parser.setQuery("");
    parser.setFragment("");
    EXPECT_EQ(parser.build(false), "");
}

TEST(DmURIParser, BuildWritesTheQueryAndTheFragmentOnlyWhenNotEmpty) {
    DmURIParser parser;
    parser.setPath("p");
    parser.setFragment("f");
    EXPECT_EQ(parser.build(false), "p#f");
    parser.setQuery("q");
    EXPECT_EQ(parser.build(false), "p?q#f");
    parser.setFragment("");
    EXPECT_EQ(parser.build(false), "p?q");
}

TEST(DmURIParser, BuildGivesBackAParsedSpec) {
    for (std::string const spec : {"s://host/p?q=1#f", "halvern:a/b.json", "stream:/name"}) {
        DmURIParser parser(spec);
        EXPECT_EQ(parser.build(false), spec);
    }
}

TEST(DmURIParser, ParsedLongFormNeedsAForcedNetLocToComeBack) {
    // The empty network location between "//" and "/" is not kept as a part.
    DmURIParser parser("file:///C:/a/b.json");
    EXPECT_EQ(parser.build(false), "file:/C:/a/b.json");
    EXPECT_EQ(parser.build(true), "file:///C:/a/b.json");
}

TEST(DmURIParser, BuildSpecJoinsTheFiveParts) {
    EXPECT_EQ(DmURIParser::buildSpec("s", "host", "p", "q=1", "f"), "s://host/p?q=1#f");
    EXPECT_EQ(DmURIParser::buildSpec("s", "", "/p", "", ""), "s:/p");
    EXPECT_EQ(DmURIParser::buildSpec("", "", "", "", ""), "");
}

TEST(DmURIParser, BuildFileSpecIsFileColonAndThePath) {
    EXPECT_EQ(DmURIParser::buildFileSpec("/a/b"), "file:/a/b");
    EXPECT_EQ(DmURIParser::buildFileSpec("a/b.json"), "file:a/b.json");
    EXPECT_EQ(DmURIParser::buildFileSpec(""), "file:");
}

TEST(DmURIParser, BuildFilePathsSpecIsHalvernColonAndThePath) {
    EXPECT_EQ(DmURIParser::buildFilePathsSpec("/a/b"), "halvern:/a/b");
    EXPECT_EQ(DmURIParser::buildFilePathsSpec("a/b.json"), "halvern:a/b.json");
    EXPECT_EQ(DmURIParser::buildFilePathsSpec(""), "halvern:");
}

// Scheme keys: first occurrences only.

TEST(DmURIParser, SchemeKeyConstants) {
    EXPECT_STREQ(DmURIParser::kFileSchemeKey, "file");
    EXPECT_STREQ(DmURIParser::kFileScheme, "file:");
    EXPECT_STREQ(DmURIParser::kFileSchemeLongForm, "file:///");
    EXPECT_STREQ(DmURIParser::kFilePathsSchemeKey, "halvern");
    EXPECT_STREQ(DmURIParser::kFilePathsScheme, "halvern:");
    EXPECT_STREQ(DmURIParser::kStreamSchemeKey, "stream");
    EXPECT_STREQ(DmURIParser::kStreamScheme, "stream:");
    EXPECT_STREQ(DmURIParser::kStreamSchemeLongForm, "stream:/");
}

TEST(DmURIParser, StripSchemeKeyGivesWhatFollowsTheColon) {
    EXPECT_EQ(DmURIParser::stripSchemeKey("halvern:a/b.json"), "a/b.json");
    EXPECT_EQ(DmURIParser::stripSchemeKey("file:///C:/a/b.json"), "///C:/a/b.json");
    EXPECT_EQ(DmURIParser::stripSchemeKey("stream:/name"), "/name");
    EXPECT_EQ(DmURIParser::stripSchemeKey("C:/a/b.json"), "/a/b.json");
    EXPECT_EQ(DmURIParser::stripSchemeKey("s:"), "");
}

TEST(DmURIParser, SchemeKeyEndsAtTheFirstColon) {
    EXPECT_EQ(DmURIParser::getSchemeKey("a:b:c"), "a");
    EXPECT_EQ(DmURIParser::stripSchemeKey("a:b:c"), "b:c");
}

TEST(DmURIParser, SpecWithoutAColonHasNoKeyAndStripsToItself) {
    EXPECT_EQ(DmURIParser::getSchemeKey("a/b.json"), "");
    EXPECT_EQ(DmURIParser::stripSchemeKey("a/b.json"), "a/b.json");
    EXPECT_EQ(DmURIParser::getSchemeKey(""), "");
    EXPECT_EQ(DmURIParser::stripSchemeKey(""), "");
}

TEST(DmURIParser, SchemeKeyNeedsTheColonBeforeTheFirstSlash) {
    EXPECT_EQ(DmURIParser::getSchemeKey("/a/b:c.json"), "");
    EXPECT_EQ(DmURIParser::stripSchemeKey("/a/b:c.json"), "/a/b:c.json");
}

TEST(DmURIParser, SchemeKeyNeedsTheColonBeforeTheFirstQuestionMark) {
    EXPECT_EQ(DmURIParser::getSchemeKey("a?b:c"), "");
    EXPECT_EQ(DmURIParser::stripSchemeKey("a?b:c"), "a?b:c");
}

TEST(DmURIParser, SchemeKeyNeedsTheColonBeforeTheFirstHash) {
    EXPECT_EQ(DmURIParser::getSchemeKey("a#b:c"), "");
    EXPECT_EQ(DmURIParser::stripSchemeKey("a#b:c"), "a#b:c");
}

TEST(DmURIParser, LeadingColonGivesAnEmptyKeyAndIsStripped) {
    EXPECT_EQ(DmURIParser::getSchemeKey(":x"), "");
    EXPECT_EQ(DmURIParser::stripSchemeKey(":x"), "x");
}

TEST(DmURIParser, SchemeKeySplitLooksAtTheFirstQuestionMarkWhileParseTakesTheLast) {
    std::string const spec = "a?b:c?d";
    DmURIParser const parser(spec);
    EXPECT_EQ(parser.getScheme(), "a?b");
    EXPECT_EQ(parser.getPath(), "c");
    EXPECT_EQ(parser.getQuery(), "d");
    EXPECT_EQ(DmURIParser::getSchemeKey(spec), "");
    EXPECT_EQ(DmURIParser::stripSchemeKey(spec), spec);
}

TEST(DmURIParser, SchemeKeySplitLooksAtTheFirstHashWhileParseTakesTheLast) {
    std::string const spec = "a#b:c#d";
    DmURIParser const parser(spec);
    EXPECT_EQ(parser.getScheme(), "a#b");
    EXPECT_EQ(parser.getPath(), "c");
    EXPECT_EQ(parser.getFragment(), "d");
    EXPECT_EQ(DmURIParser::getSchemeKey(spec), "");
    EXPECT_EQ(DmURIParser::stripSchemeKey(spec), spec);
}
