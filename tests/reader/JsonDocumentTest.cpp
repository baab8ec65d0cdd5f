// Parsed JSON texts: from files, streams and strings, with both parsers, the
// nesting limit, and the position and words of every parse error.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/InputStream.h>

#include "assets/AssetTestSupport.h"
#include "reader/JsonDocument.h"
#include "reader/ReaderTestSupport.h"
#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <boost/filesystem.hpp>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace Kesto;
using Kesto::Internal::JsonDocument;
using KestoTest::line;
using KestoTest::recordLines;
using KestoTest::TempDir;

namespace {

using Lines = std::vector<std::string>;
using Parser = JsonDocument::Parser;

/// An input stream that fails to read.
class FailingStream : public InputStream {
public:
    bool readAll(std::string& out) override {
        out = "{";
        return false;
    }
};

class JsonDocumentTest : public testing::Test {
protected:
    /// The one message of a parse error of `name`.
    static Lines parseError(std::string const& name, std::string const& position,
                            std::string const& message) {
        return {line("error", name, "Asset has parsing errors.",
                     "Failed to parse " + name + " at position " + position + ": " + message)};
    }

    std::shared_ptr<DmAssetReference> resolved(std::string const& spec) {
        auto reference = DmAssetReference::newAssetReference(spec);
        m_library->resolveAssetReference(reference, KestoTest::contextFor(m_library));
        return reference;
    }

    Lines messages() const { return recordLines(*m_logger); }

    std::shared_ptr<DmMessageLogger> m_logger = std::make_shared<DmMessageLogger>(nullptr);
    std::shared_ptr<DmLibrary> m_library = KestoTest::newTestLibrary();
    TempDir m_dir;
};

std::string nested(unsigned depth, char open, char close) {
    return std::string(depth, open) + std::string(depth, close);
}

std::string nestedObjects(unsigned depth) {
    std::string text;
    for (unsigned i = 0; i < depth; ++i) {
        text += "{\"a\":";
    }
    text += "\"x\"";
    text += std::string(depth, '}');
    return text;
}

/// A text with white space runs of every length around its values, so that
/// the SSE scan meets blocks of all alignments.
std::string spacedText() {
    std::string text = "{";
    for (int i = 0; i < 40; ++i) {
        text += std::string(static_cast<std::size_t>(i), i % 3 == 0 ? ' ' : (i % 3 == 1 ? '\t' : '\n'));
        text += "\"k" + std::to_string(i) + "\"" + std::string(static_cast<std::size_t>(i % 17), ' ') + ":" +
                std::string(static_cast<std::size_t>(i % 19), '\n') + "[\"v\", {\"n\": \"" +
                std::to_string(i) + "\"}, " + std::to_string(i) + ", true, null, \"a\\nb\\u00e9\"]" +
                std::string(static_cast<std::size_t>(i % 23), '\r');
        text += i + 1 < 40 ? "," : "";
    }
    return text + "   \n}";
}

} // namespace

// ---------------------------------------------------------------------------
// Sizes of the document

TEST(JsonDocumentLimits, NestingAllocationAndStackSizes) {
    EXPECT_EQ(JsonDocument::kMaxNestingDepth, 1000u);
    EXPECT_EQ(JsonDocument::kValueChunkSize, 65536u);
    EXPECT_EQ(JsonDocument::kStackCapacity, 1024u);
}

// ---------------------------------------------------------------------------
// Texts

TEST_F(JsonDocumentTest, ParsesAText) {
    JsonDocument document(m_logger);
    EXPECT_FALSE(document.isParsed());
    EXPECT_TRUE(document.getRoot().IsNull());
    ASSERT_EQ(document.parse(R"({"a": ["1", {"b": "c"}]})", "text"), DmStatus::kSuccess);
    EXPECT_TRUE(document.isParsed());
    ASSERT_TRUE(document.getRoot().IsObject());
    EXPECT_STREQ(document.getRoot()["a"][1]["b"].GetString(), "c");
    EXPECT_EQ(messages(), Lines{});
}

TEST_F(JsonDocumentTest, EmptyTextIsAnEmptyDocument) {
    JsonDocument document(m_logger);
    EXPECT_EQ(document.parse("", "text"), DmStatus::kReserved5);
    EXPECT_EQ(document.parse(std::string_view(), "none"), DmStatus::kReserved5);
    EXPECT_EQ(document.parse(" \n\t ", "blank"), DmStatus::kReserved5);
    Lines expected = parseError("text", "1:1", "The document is empty.");
    expected.push_back(parseError("none", "1:1", "The document is empty.")[0]);
    expected.push_back(parseError("blank", "2:3", "The document is empty.")[0]);
    EXPECT_EQ(messages(), expected);
}

TEST_F(JsonDocumentTest, FailedParseLeavesNoRoot) {
    JsonDocument document(m_logger);
    ASSERT_EQ(document.parse("{}", "text"), DmStatus::kSuccess);
    EXPECT_EQ(document.parse("{", "text"), DmStatus::kReserved5);
    EXPECT_FALSE(document.isParsed());
    EXPECT_TRUE(document.getRoot().IsNull());
}

TEST_F(JsonDocumentTest, DocumentParsesAgainAfterAFailure) {
    JsonDocument document(m_logger);
    ASSERT_EQ(document.parse("[", "text"), DmStatus::kReserved5);
    ASSERT_EQ(document.parse(R"(["x"])", "text"), DmStatus::kSuccess);
    EXPECT_STREQ(document.getRoot()[0].GetString(), "x");
}

TEST_F(JsonDocumentTest, StringsAreUnescaped) {
    JsonDocument document(m_logger);
    ASSERT_EQ(document.parse(R"(["a\nb\t\"c\u00e9\ud83d\ude00"])", "text"), DmStatus::kSuccess);
    EXPECT_EQ(std::string(document.getRoot()[0].GetString(), document.getRoot()[0].GetStringLength()),
              "a\nb\t\"c\xc3\xa9\xf0\x9f\x98\x80");
}

TEST_F(JsonDocumentTest, NullLoggerParsesSilently) {
    JsonDocument document(nullptr);
    EXPECT_EQ(document.parse("{", "text"), DmStatus::kReserved5);
    EXPECT_EQ(document.parse("{}", "text"), DmStatus::kSuccess);
}

TEST_F(JsonDocumentTest, CommentsAndTrailingCommasAreRefused) {
    JsonDocument document(m_logger);
    EXPECT_EQ(document.parse("{} // note", "comment"), DmStatus::kReserved5);
    EXPECT_EQ(document.parse(R"(["a",])", "comma"), DmStatus::kReserved5);
    EXPECT_EQ(document.parse(R"({"a": "b",})", "member"), DmStatus::kReserved5);
    Lines expected = parseError("comment", "1:4", "The document root must not be followed by other values.");
    expected.push_back(parseError("comma", "1:6", "Invalid value.")[0]);
    expected.push_back(parseError("member", "1:11", "Missing a name for object member.")[0]);
    EXPECT_EQ(messages(), expected);
}

// ---------------------------------------------------------------------------
// Positions of errors

TEST_F(JsonDocumentTest, SyntaxErrorOnLineThreeColumnSeven) {
    JsonDocument document(m_logger);
    EXPECT_EQ(document.parse("{\n  \"a\": \"1\",\n  \"b\" 1\n}", "text"), DmStatus::kReserved5);
    EXPECT_EQ(messages(), parseError("text", "3:7", "Missing a colon after a name of object member."));
}

TEST_F(JsonDocumentTest, ColumnCountsFromOneBehindTheLastLineBreak) {
    JsonDocument document(m_logger);
    EXPECT_EQ(document.parse("{\r\n\"a\" 1}", "text"), DmStatus::kReserved5);
    EXPECT_EQ(messages(), parseError("text", "2:5", "Missing a colon after a name of object member."));
}

TEST_F(JsonDocumentTest, EscapedLineBreaksDoNotCountAsLines) {
    JsonDocument document(m_logger);
    // In place, the strings are rewritten with real line breaks; the position
    // is that of the text as given.
    EXPECT_EQ(document.parse(R"({"a": "x\ny\nz", "b" 1})", "text"), DmStatus::kReserved5);
    EXPECT_EQ(messages(), parseError("text", "1:22", "Missing a colon after a name of object member."));
}

TEST_F(JsonDocumentTest, TextBehindAZeroByteIsRefused) {
    JsonDocument document(m_logger);
    EXPECT_EQ(document.parse(std::string("{\"a\": \"1\"}\n\0{\"b\": 2}", 20), "text"), DmStatus::kReserved5);
    EXPECT_EQ(messages(),
              parseError("text", "2:1", "The document root must not be followed by other values."));
    EXPECT_FALSE(document.isParsed());
}

TEST_F(JsonDocumentTest, FileWithAZeroByteAfterItsRootIsRefused) {
    std::string const path = m_dir.write("a.json", std::string("{}\0junk", 7));
    JsonDocument document(m_logger);
    EXPECT_EQ(document.load(resolved("halvern:" + path)), DmStatus::kReserved5);
    EXPECT_EQ(messages(), parseError(path, "1:3", "The document root must not be followed by other values."));
}

TEST_F(JsonDocumentTest, EscapedLineBreaksInAFileDoNotCountAsLines) {
    std::string const path = m_dir.write("a.json", "{\"a\": \"x\\ny\\nz\",\n \"b\" 1}");
    JsonDocument document(m_logger);
    EXPECT_EQ(document.load(resolved("halvern:" + path)), DmStatus::kReserved5);
    EXPECT_EQ(messages(), parseError(path, "2:6", "Missing a colon after a name of object member."));
}

TEST_F(JsonDocumentTest, EscapedLineBreaksInAStreamDoNotCountAsLines) {
    std::istringstream text("{\"a\": \"x\\ny\\nz\",\n \"b\" 1}");
    StdInputStream input(text);
    auto const reference = std::make_shared<DmAssetReference>("stream:/doc", &input);
    ASSERT_TRUE(m_library->resolveAssetReference(reference, KestoTest::contextFor(m_library)));
    JsonDocument document(m_logger);
    EXPECT_EQ(document.load(reference), DmStatus::kReserved5);
    EXPECT_EQ(messages(), parseError("stream:/doc", "2:6", "Missing a colon after a name of object member."));
}

// ---------------------------------------------------------------------------
// Every message of the parser

namespace {

struct ParseErrorCase {
    char const* text;
    char const* position;
    char const* message;
};

class JsonDocumentErrorTest : public testing::TestWithParam<Parser> {};

ParseErrorCase const kErrorCases[] = {
    {"", "1:1", "The document is empty."},
    {"{} []", "1:4", "The document root must not be followed by other values."},
    {"nul", "1:4", "Invalid value."},
    {"[x]", "1:2", "Invalid value."},
    {"{1: \"a\"}", "1:2", "Missing a name for object member."},
    {"{\"a\" \"b\"}", "1:6", "Missing a colon after a name of object member."},
    {"{\"a\": \"b\" \"c\": \"d\"}", "1:11", "Missing a comma or '}' after an object member."},
    {"[\"a\" \"b\"]", "1:6", "Missing a comma or ']' after an array element."},
    {"[\"\\u12G4\"]", "1:3", "Incorrect hex digit after \\u escape in string."},
    {"[\"\\uD800\\u0041\"]", "1:3", "The surrogate pair in string is invalid."},
    {"[\"\\uD800\"]", "1:3", "The surrogate pair in string is invalid."},
    {"[\"\\x\"]", "1:3", "Invalid escape character in string."},
    {"[\"abc", "1:6", "Missing a closing quotation mark in string."},
    {"[1e999]", "1:2", "Number too big to be stored in double."},
    {"[1.]", "1:4", "Miss fraction part in number."},
    {"[1e]", "1:4", "Miss exponent in number."},
};

} // namespace

TEST_P(JsonDocumentErrorTest, EveryReachableParserMessageWithItsPosition) {
    for (ParseErrorCase const& one : kErrorCases) {
        auto const logger = std::make_shared<DmMessageLogger>(nullptr);
        JsonDocument document(logger, GetParam());
        EXPECT_EQ(document.parse(one.text, "text"), DmStatus::kReserved5) << one.text;
        EXPECT_EQ(recordLines(*logger), Lines{line("error", "text", "Asset has parsing errors.",
                                                   std::string("Failed to parse text at position ") +
                                                       one.position + ": " + one.message)})
            << one.text;
    }
}

TEST_P(JsonDocumentErrorTest, ThousandLevelsParse) {
    JsonDocument document(nullptr, GetParam());
    EXPECT_EQ(document.parse(nested(1000, '[', ']'), "text"), DmStatus::kSuccess);
    EXPECT_EQ(document.parse(nestedObjects(1000), "text"), DmStatus::kSuccess);
}

TEST_P(JsonDocumentErrorTest, ThousandAndOneLevelsFail) {
    auto const logger = std::make_shared<DmMessageLogger>(nullptr);
    JsonDocument document(logger, GetParam());
    EXPECT_EQ(document.parse(nested(1001, '[', ']'), "arrays"), DmStatus::kReserved5);
    EXPECT_EQ(document.parse(nestedObjects(1001), "objects"), DmStatus::kReserved5);
    EXPECT_EQ(recordLines(*logger),
              (Lines{line("error", "arrays", "Asset has parsing errors.",
                          "Failed to parse arrays at position 1:1002: The document nests arrays and objects "
                          "deeper than 1000 levels."),
                     line("error", "objects", "Asset has parsing errors.",
                          "Failed to parse objects at position 1:5002: The document nests arrays and objects "
                          "deeper than 1000 levels.")}));
}

TEST_P(JsonDocumentErrorTest, HundredThousandOpeningBracketsFailCleanly) {
    auto const logger = std::make_shared<DmMessageLogger>(nullptr);
    JsonDocument document(logger, GetParam());
    EXPECT_EQ(document.parse(std::string(100000, '['), "deep"), DmStatus::kReserved5);
    EXPECT_EQ(recordLines(*logger),
              Lines{line("error", "deep", "Asset has parsing errors.",
                         "Failed to parse deep at position 1:1002: The document nests arrays and objects "
                         "deeper than 1000 levels.")});
}

INSTANTIATE_TEST_SUITE_P(BothParsers, JsonDocumentErrorTest, testing::Values(Parser::kSse, Parser::kPlain),
                         [](testing::TestParamInfo<Parser> const& info) {
                             return info.param == Parser::kSse ? std::string("Sse") : std::string("Plain");
                         });

// ---------------------------------------------------------------------------
// The two parsers

TEST_F(JsonDocumentTest, BothParsersBuildTheSameDocument) {
    std::string const text = spacedText();
    JsonDocument sse(m_logger, Parser::kSse);
    JsonDocument plain(m_logger, Parser::kPlain);
    ASSERT_EQ(sse.parse(text, "text"), DmStatus::kSuccess);
    ASSERT_EQ(plain.parse(text, "text"), DmStatus::kSuccess);
    EXPECT_TRUE(sse.getRoot() == plain.getRoot());
    EXPECT_EQ(sse.getRoot().MemberCount(), 40u);
    EXPECT_STREQ(sse.getRoot()["k39"][1]["n"].GetString(), "39");
}

TEST_F(JsonDocumentTest, BothParsersPlaceErrorsAlike) {
    std::string const base = spacedText();
    std::vector<std::string> texts;
    for (std::size_t cut :
         {std::size_t{1}, std::size_t{17}, std::size_t{100}, base.size() / 2, base.size() - 2}) {
        texts.push_back(base.substr(0, cut) + std::string(cut % 37, ' ') + "#");
    }
    texts.push_back(std::string(33, ' ') + "\n" + std::string(70, '\t') + "x");
    for (std::string const& text : texts) {
        auto const sseLog = std::make_shared<DmMessageLogger>(nullptr);
        auto const plainLog = std::make_shared<DmMessageLogger>(nullptr);
        JsonDocument sse(sseLog, Parser::kSse);
        JsonDocument plain(plainLog, Parser::kPlain);
        EXPECT_EQ(sse.parse(text, "text"), DmStatus::kReserved5);
        EXPECT_EQ(plain.parse(text, "text"), DmStatus::kReserved5);
        EXPECT_EQ(recordLines(*sseLog), recordLines(*plainLog));
        EXPECT_EQ(recordLines(*sseLog).size(), 1u);
    }
}

TEST_F(JsonDocumentTest, SseParserIsTheDefault) {
    ScopedEnvironment const force("KESTO_FORCE_NON_SSE_JSON_PARSER", nullptr);
    ScopedEnvironment const valgrind("TOVARIN_USING_VALGRIND", nullptr);
    EXPECT_TRUE(JsonDocument(m_logger).usesSseParser());
    EXPECT_TRUE(JsonDocument(m_logger, Parser::kSse).usesSseParser());
    EXPECT_FALSE(JsonDocument(m_logger, Parser::kPlain).usesSseParser());
}

TEST_F(JsonDocumentTest, ForceSwitchTakesThePlainParser) {
    ScopedEnvironment const valgrind("TOVARIN_USING_VALGRIND", nullptr);
    {
        ScopedEnvironment const force("KESTO_FORCE_NON_SSE_JSON_PARSER", "1");
        EXPECT_FALSE(JsonDocument(m_logger).usesSseParser());
        EXPECT_TRUE(JsonDocument(m_logger, Parser::kSse).usesSseParser());
        JsonDocument document(m_logger);
        EXPECT_EQ(document.parse(spacedText(), "text"), DmStatus::kSuccess);
    }
    {
        ScopedEnvironment const force("KESTO_FORCE_NON_SSE_JSON_PARSER", "off");
        EXPECT_TRUE(JsonDocument(m_logger).usesSseParser());
    }
}

TEST_F(JsonDocumentTest, ValgrindSwitchTakesThePlainParser) {
    ScopedEnvironment const force("KESTO_FORCE_NON_SSE_JSON_PARSER", nullptr);
    ScopedEnvironment const valgrind("TOVARIN_USING_VALGRIND", "yes");
    EXPECT_FALSE(JsonDocument(m_logger).usesSseParser());
    JsonDocument document(m_logger);
    EXPECT_EQ(document.parse("{\n  \"a\": \"1\",\n  \"b\" 1\n}", "text"), DmStatus::kReserved5);
    EXPECT_EQ(messages(), parseError("text", "3:7", "Missing a colon after a name of object member."));
}

// ---------------------------------------------------------------------------
// Assets

TEST_F(JsonDocumentTest, LoadsAFile) {
    std::string const path = m_dir.write("a.json", R"({"a": ["b"]})");
    JsonDocument document(m_logger);
    ASSERT_EQ(document.load(resolved("halvern:" + path)), DmStatus::kSuccess);
    EXPECT_STREQ(document.getRoot()["a"][0].GetString(), "b");
    EXPECT_EQ(messages(), Lines{});
}

TEST_F(JsonDocumentTest, LoadsAnEmptyFileAsAnEmptyDocument) {
    std::string const path = m_dir.write("a.json", "");
    JsonDocument document(m_logger);
    EXPECT_EQ(document.load(resolved("file:" + path)), DmStatus::kReserved5);
    EXPECT_EQ(messages(), parseError(path, "1:1", "The document is empty."));
}

TEST_F(JsonDocumentTest, LoadsAStream) {
    std::istringstream text(R"({"a": "b"})");
    StdInputStream input(text);
    auto const reference = std::make_shared<DmAssetReference>("stream:/doc", &input);
    ASSERT_TRUE(m_library->resolveAssetReference(reference, KestoTest::contextFor(m_library)));
    JsonDocument document(m_logger);
    ASSERT_EQ(document.load(reference), DmStatus::kSuccess);
    EXPECT_STREQ(document.getRoot()["a"].GetString(), "b");
}

TEST_F(JsonDocumentTest, StreamThatFailsToReadIsNotLoaded) {
    FailingStream input;
    auto const reference = std::make_shared<DmAssetReference>("stream:/doc", &input);
    ASSERT_TRUE(m_library->resolveAssetReference(reference, KestoTest::contextFor(m_library)));
    JsonDocument document(m_logger);
    EXPECT_EQ(document.load(reference), DmStatus::kFileError);
    EXPECT_EQ(messages(),
              Lines{line("error", "stream:/doc", "Failed to load asset.", "Failed to load stream:/doc.")});
}

TEST_F(JsonDocumentTest, FileGoneSinceItWasResolvedIsNotLoaded) {
    std::string const path = m_dir.write("a.json", "{}");
    auto const reference = resolved("halvern:" + path);
    ASSERT_TRUE(reference->isResolved());
    boost::filesystem::remove(path);
    JsonDocument document(m_logger);
    EXPECT_EQ(document.load(reference), DmStatus::kFileError);
    EXPECT_EQ(messages(),
              Lines{line("error", path, "Failed to load asset.", "Failed to load " + path + ".")});
}

TEST_F(JsonDocumentTest, MissingFileFailsToLocate) {
    std::string const spec = "halvern:" + m_dir.file("none.json");
    auto const reference = resolved(spec);
    ASSERT_EQ(reference->getResolveStatus(), DmAssetReference::kFileNotFound);
    JsonDocument document(m_logger);
    EXPECT_EQ(document.load(reference), DmStatus::kFileError);
    EXPECT_EQ(messages(),
              Lines{line("error", spec, "Failed to locate asset.", "Failed to locate " + spec + ".")});
}

TEST_F(JsonDocumentTest, StreamReferenceWithoutStreamFailsToLocate) {
    auto const reference = resolved("stream:/doc");
    ASSERT_EQ(reference->getResolveStatus(), DmAssetReference::kNoStream);
    JsonDocument document(m_logger);
    EXPECT_EQ(document.load(reference), DmStatus::kFileError);
    EXPECT_EQ(messages(), Lines{line("error", "stream:/doc", "Failed to locate asset.",
                                     "Failed to locate stream:/doc.")});
}

TEST_F(JsonDocumentTest, OtherwiseUnresolvedReferenceFailsToResolve) {
    auto const searching = resolved("halvern:a.json");
    ASSERT_EQ(searching->getResolveStatus(), DmAssetReference::kResolvingFilePaths);
    auto const untried = DmAssetReference::newAssetReference("halvern:b.json");
    auto const noResolver = resolved("nowhere:c.json");
    ASSERT_EQ(noResolver->getResolveStatus(), DmAssetReference::kNoResolver);
    JsonDocument document(m_logger);
    EXPECT_EQ(document.load(searching), DmStatus::kFailure);
    EXPECT_EQ(document.load(untried), DmStatus::kFailure);
    EXPECT_EQ(document.load(noResolver), DmStatus::kFailure);
    EXPECT_EQ(messages(),
              (Lines{line("error", "halvern:a.json",
                          DmAssetReference::resolveStatusText(DmAssetReference::kResolvingFilePaths),
                          "Failed to resolve halvern:a.json."),
                     line("error", "halvern:b.json",
                          DmAssetReference::resolveStatusText(DmAssetReference::kUnresolved),
                          "Failed to resolve halvern:b.json."),
                     line("error", "nowhere:c.json",
                          DmAssetReference::resolveStatusText(DmAssetReference::kNoResolver),
                          "Failed to resolve nowhere:c.json.")}));
}

TEST_F(JsonDocumentTest, NullAssetFailsToLocate) {
    JsonDocument document(m_logger);
    EXPECT_EQ(document.load(nullptr), DmStatus::kFileError);
    EXPECT_EQ(messages(),
              Lines{line("error", "<null>", "Failed to locate asset.", "Failed to locate <null>.")});
}

TEST_F(JsonDocumentTest, AssetIsNamedByItsPathThenItsIdentityThenItsSpec) {
    DmAssetReference reference("halvern:a.json");
    EXPECT_EQ(JsonDocument::assetName(reference), "halvern:a.json");
    reference.setAssetIdentity("file:/x/a.json");
    EXPECT_EQ(JsonDocument::assetName(reference), "file:/x/a.json");
    reference.setFilePath("/x/a.json");
    EXPECT_EQ(JsonDocument::assetName(reference), "/x/a.json");
}
