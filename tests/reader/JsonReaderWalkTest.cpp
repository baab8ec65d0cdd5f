// The walker of the reader, seen through a reader that records which objects
// reach a handler, in which pass and under which section.
#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/foundation/DmMessageLogger.h>

#include "reader/DmJsonFormat.h"
#include "reader/JsonDocument.h"
#include "reader/JsonReader.h"
#include "reader/ReaderTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

using namespace Kesto;
using Kesto::Internal::JsonDocument;
using Kesto::Internal::JsonReadContext;
using Kesto::Internal::JsonReader;
namespace JsonFormat = Kesto::Internal::JsonFormat;
using KestoTest::line;
using KestoTest::recordLines;

namespace {

using Lines = std::vector<std::string>;

/// One call of a handler: the pass, the section, and the "id" of the object.
struct Call {
    int pass;
    int section;
    std::string id;

    bool operator==(Call const& other) const {
        return pass == other.pass && section == other.section && id == other.id;
    }
};

std::ostream& operator<<(std::ostream& out, Call const& call) {
    return out << "{" << call.pass << ", " << call.section << ", " << call.id << "}";
}

using Calls = std::vector<Call>;

/// Records the handler calls and does nothing else.
class RecordingReader : public JsonReader {
public:
    using JsonReader::JsonReader;

    Calls calls;

protected:
    void handle(Section section, Value const& object) override {
        calls.push_back({getPass(), section, std::string(stringOf(object, "id"))});
    }
};

class JsonReaderWalkTest : public testing::Test {
protected:
    /// Reads `text` with a recording reader; the calls it recorded.
    Calls walk(std::string const& text) {
        JsonDocument document(m_logger);
        EXPECT_EQ(document.parse(text, "text"), DmStatus::kSuccess) << text;
        JsonReadContext context;
        context.logger = m_logger;
        context.uri = std::make_shared<DmFileURI>("walk.json", "/tmp");
        RecordingReader reader(context);
        EXPECT_EQ(reader.read(document.getRoot()), DmStatus::kSuccess);
        EXPECT_EQ(reader.getPass(), 0);
        return reader.calls;
    }

    /// The calls of one pass, repeated for all four.
    static Calls inEveryPass(std::vector<std::pair<int, std::string>> const& pass) {
        Calls out;
        for (int number = 1; number <= 4; ++number) {
            for (auto const& one : pass) {
                out.push_back({number, one.first, one.second});
            }
        }
        return out;
    }

    Lines messages() const { return recordLines(*m_logger); }

    std::shared_ptr<DmMessageLogger> m_logger = std::make_shared<DmMessageLogger>(nullptr);
};

std::string const kBadlyFormed =
    line("error", "file:///walk.json", "Badly formed json file.", "The json file is badly formed.");

} // namespace

TEST_F(JsonReaderWalkTest, RootSectionsAreWalkedInTheFixedOrderInEachOfFourPasses) {
    Calls const calls = walk(R"({
        "compounds": {"id": "c"}, "terminalNodes": {"id": "tn"}, "operators": {"id": "o"},
        "globalVariables": {"id": "g"}, "types": {"id": "t"}, "namespaces": {"id": "n"},
        "dependencies": {"id": "d"}, "header": {"id": "h"}})");
    EXPECT_EQ(calls, inEveryPass({{JsonFormat::kHeader, "h"},
                                  {JsonFormat::kDependencies, "d"},
                                  {JsonFormat::kNamespaces, "n"},
                                  {JsonFormat::kTypes, "t"},
                                  {JsonFormat::kGlobalVariables, "g"},
                                  {JsonFormat::kOperators, "o"},
                                  {JsonFormat::kTerminalNodes, "tn"},
                                  {JsonFormat::kCompounds, "c"}}));
    EXPECT_EQ(messages(), Lines{});
}

TEST_F(JsonReaderWalkTest, SectionNumbersAreThoseOfTheFormat) {
    EXPECT_EQ(JsonFormat::kHeader, 1);
    EXPECT_EQ(JsonFormat::kDependencies, 2);
    EXPECT_EQ(JsonFormat::kNamespaces, 3);
    EXPECT_EQ(JsonFormat::kTypes, 4);
    EXPECT_EQ(JsonFormat::kGlobalVariables, 5);
    EXPECT_EQ(JsonFormat::kOperators, 6);
    EXPECT_EQ(JsonFormat::kTerminalNodes, 7);
    EXPECT_EQ(JsonFormat::kCompounds, 10);
    EXPECT_EQ(JsonFormat::kMetadata, 18);
}

TEST_F(JsonReaderWalkTest, EveryOccurrenceOfAKeyIsWalkedInDocumentOrderBeforeTheNextSection) {
    Calls const calls = walk(R"({
        "globalVariables": {"id": "g"}, "types": [{"id": "t1"}, {"id": "t2"}],
        "compounds": {"id": "c"}, "types": {"id": "t3"}})");
    EXPECT_EQ(calls, inEveryPass({{JsonFormat::kTypes, "t1"},
                                  {JsonFormat::kTypes, "t2"},
                                  {JsonFormat::kTypes, "t3"},
                                  {JsonFormat::kGlobalVariables, "g"},
                                  {JsonFormat::kCompounds, "c"}}));
}

TEST_F(JsonReaderWalkTest, NestedArraysAreFlattened) {
    Calls const calls = walk(R"({"types": [[{"id": "a"}, [[{"id": "b"}]], []], {"id": "c"}]})");
    EXPECT_EQ(calls,
              inEveryPass({{JsonFormat::kTypes, "a"}, {JsonFormat::kTypes, "b"}, {JsonFormat::kTypes, "c"}}));
}

TEST_F(JsonReaderWalkTest, SingleObjectStandsForAListOfOne) {
    Calls const calls = walk(R"({"namespaces": {"id": "n"}})");
    EXPECT_EQ(calls, inEveryPass({{JsonFormat::kNamespaces, "n"}}));
}

TEST_F(JsonReaderWalkTest, UnknownRootKeysAreWalkedAsRootsAfterTheKnownSections) {
    Calls const calls = walk(R"({
        "zeta": {"types": {"id": "t2"}, "unknown": {"header": {"id": "h3"}}},
        "types": {"id": "t1"},
        "alpha": [{"compounds": {"id": "c2"}}, {"header": {"id": "h2"}}],
        "compounds": {"id": "c1"},
        "zeta": {"operators": {"id": "o2"}}})");
    EXPECT_EQ(calls, inEveryPass({{JsonFormat::kTypes, "t1"},
                                  {JsonFormat::kCompounds, "c1"},
                                  {JsonFormat::kTypes, "t2"},
                                  {JsonFormat::kHeader, "h3"},
                                  {JsonFormat::kOperators, "o2"},
                                  {JsonFormat::kCompounds, "c2"},
                                  {JsonFormat::kHeader, "h2"}}));
}

TEST_F(JsonReaderWalkTest, KeysOfNestedSectionsAtTheRootAreUnknownKeys) {
    // Each object is walked as a further root, whose "id" is a scalar there.
    Calls const calls =
        walk(R"({"ports": {"id": "p"}, "metadata": {"id": "m"}, "compoundNodes": {"id": "n"}})");
    EXPECT_EQ(calls, Calls{});
    EXPECT_EQ(messages(), Lines(3 * 4, kBadlyFormed));
}

TEST_F(JsonReaderWalkTest, EmptyRootWalksNothing) {
    EXPECT_EQ(walk("{}"), Calls{});
    EXPECT_EQ(walk(R"({"types": [], "compounds": [[]], "other": []})"), Calls{});
    EXPECT_EQ(messages(), Lines{});
}

TEST_F(JsonReaderWalkTest, ScalarUnderAnUnknownRootKeyIsBadlyFormedInEachPass) {
    EXPECT_EQ(walk(R"({"extra": "scalar", "types": {"id": "t"}})"), inEveryPass({{JsonFormat::kTypes, "t"}}));
    EXPECT_EQ(messages(), Lines(4, kBadlyFormed));
}

TEST_F(JsonReaderWalkTest, ScalarsInASectionAreBadlyFormedAndTheRestIsWalked) {
    Calls const calls = walk(R"({"types": ["x", {"id": "t"}, 1, true, null, ["y"]]})");
    EXPECT_EQ(calls, inEveryPass({{JsonFormat::kTypes, "t"}}));
    EXPECT_EQ(messages(), Lines(4 * 5, kBadlyFormed));
}

TEST_F(JsonReaderWalkTest, EveryKindOfScalarIsBadlyFormed) {
    walk(R"({"a": "s", "b": 1, "c": -1.5, "d": true, "e": false, "f": null})");
    EXPECT_EQ(messages(), Lines(4 * 6, kBadlyFormed));
}

TEST_F(JsonReaderWalkTest, RootThatIsNoObjectIsWalkedAsAList) {
    EXPECT_EQ(walk(R"([{"types": {"id": "a"}}, [{"types": {"id": "b"}}]])"),
              inEveryPass({{JsonFormat::kTypes, "a"}, {JsonFormat::kTypes, "b"}}));
    EXPECT_EQ(messages(), Lines{});
    walk(R"("text")");
    EXPECT_EQ(messages(), Lines(4, kBadlyFormed));
}

TEST_F(JsonReaderWalkTest, ObjectsInsideASectionObjectAreLeftToItsHandler) {
    Calls const calls = walk(R"({"types": {"id": "t", "types": {"id": "inner"}, "compounds": {"id": "x"}}})");
    EXPECT_EQ(calls, inEveryPass({{JsonFormat::kTypes, "t"}}));
}

// ---------------------------------------------------------------------------
// Reading keys

TEST(JsonReaderKeys, StringOfGivesOnlyStrings) {
    JsonDocument document(nullptr);
    ASSERT_EQ(
        document.parse(R"({"s": "text", "e": "", "n": 1, "b": true, "o": {}, "a": ["x"], "z": null})", "t"),
        DmStatus::kSuccess);
    auto const& root = document.getRoot();
    EXPECT_EQ(JsonReader::stringOf(root, "s"), "text");
    for (char const* key : {"e", "n", "b", "o", "a", "z", "missing"}) {
        EXPECT_EQ(JsonReader::stringOf(root, key), "") << key;
    }
    EXPECT_EQ(JsonReader::stringOf(root["a"], "s"), "");
    EXPECT_EQ(JsonReader::member(root, "missing"), nullptr);
    EXPECT_EQ(JsonReader::member(root["s"], "s"), nullptr);
    ASSERT_NE(JsonReader::member(root, "o"), nullptr);
    EXPECT_TRUE(JsonReader::member(root, "o")->IsObject());
}

TEST(JsonReaderKeys, BooleanKeysAreStrings) {
    JsonDocument document(nullptr);
    ASSERT_EQ(document.parse(R"({"t1": "true", "t2": "TRUE", "t3": "True", "f1": "false", "f2": "yes",
                                 "f3": "tRue", "f4": "1", "e": "", "b": true, "n": 1})",
                             "t"),
              DmStatus::kSuccess);
    auto const& root = document.getRoot();
    for (char const* key : {"t1", "t2", "t3"}) {
        bool present = false;
        EXPECT_TRUE(JsonReader::booleanOf(root, key, &present)) << key;
        EXPECT_TRUE(present) << key;
    }
    for (char const* key : {"f1", "f2", "f3", "f4"}) {
        bool present = false;
        EXPECT_FALSE(JsonReader::booleanOf(root, key, &present)) << key;
        EXPECT_TRUE(present) << key;
    }
    for (char const* key : {"e", "b", "n", "missing"}) {
        bool present = true;
        EXPECT_FALSE(JsonReader::booleanOf(root, key, &present)) << key;
        EXPECT_FALSE(present) << key;
    }
    EXPECT_TRUE(JsonReader::booleanOf(root, "t1"));
}
