// One file to read: its checks before the reader runs, and their messages.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmMetadata.h>

#include "assets/AssetTestSupport.h"
#include "reader/JsonDocument.h"
#include "reader/JsonFileEntry.h"
#include "reader/ReaderTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using Kesto::Internal::JsonDocument;
using Kesto::Internal::JsonFileEntry;
using Kesto::Internal::JsonReadContext;
using KestoTest::graphText;
using KestoTest::line;
using KestoTest::recordLines;
using KestoTest::TempDir;

namespace {

using Lines = std::vector<std::string>;

class JsonFileEntryTest : public testing::Test {
protected:
    std::shared_ptr<DmAssetReference> resolved(std::string const& spec) {
        auto reference = DmAssetReference::newAssetReference(spec);
        m_library->resolveAssetReference(reference, KestoTest::contextFor(m_library));
        return reference;
    }

    /// A context for the file `name` of the test directory, with its URI made
    /// as a load makes it and its asset resolved.
    JsonReadContext contextFor(std::string const& name) {
        JsonReadContext context;
        context.library = m_library.get();
        context.logger = m_logger;
        context.uri = std::make_shared<DmFileURI>(name, m_dir.path());
        context.asset = resolved("halvern:" + m_dir.file(name));
        return context;
    }

    DmStatus read(JsonReadContext context) { return JsonFileEntry(std::move(context)).read(); }

    Lines messages() const { return recordLines(*m_logger); }

    static std::string notValid(std::string const& uri) {
        return line("error", uri, "Invalid Kesto JSON file.",
                    "'" + uri +
                        "' is not a valid Kesto JSON file: Missing the header's 'file format version' "
                        "metadata.");
    }

    std::shared_ptr<DmMessageLogger> m_logger = std::make_shared<DmMessageLogger>(nullptr);
    std::shared_ptr<DmLibrary> m_library = KestoTest::newTestLibrary();
    TempDir m_dir;
};

} // namespace

// ---------------------------------------------------------------------------
// What must be there

TEST_F(JsonFileEntryTest, ReadsAGraphFile) {
    std::string const path = m_dir.write("a.json", graphText());
    JsonReadContext context = contextFor("a.json");
    std::shared_ptr<DmURI> const uri = context.uri;
    EXPECT_EQ(read(context), DmStatus::kSuccess);
    EXPECT_EQ(messages(), Lines{});
    EXPECT_TRUE(m_library->isJsonFileLoaded(path));
    EXPECT_EQ(uri->getMetadata()->find("mvrkFileFormatVersion").size(), 1u);
}

TEST_F(JsonFileEntryTest, WithoutURIThereIsNoFile) {
    m_dir.write("a.json", graphText());
    JsonReadContext context = contextFor("a.json");
    context.uri = nullptr;
    EXPECT_EQ(read(context), DmStatus::kFileError);
    EXPECT_EQ(messages(),
              Lines{line("error", "<json>", "Non existing Json file.", "Non existing Json file.")});
}

TEST_F(JsonFileEntryTest, WithoutAssetThereIsNoFile) {
    m_dir.write("a.json", graphText());
    JsonReadContext context = contextFor("a.json");
    context.asset = nullptr;
    EXPECT_EQ(read(context), DmStatus::kFileError);
    EXPECT_EQ(messages(),
              Lines{line("error", "file:///a.json", "Non existing Json file.", "Non existing Json file.")});
    EXPECT_FALSE(m_library->isJsonFileLoaded(m_dir.file("a.json")));
}

TEST_F(JsonFileEntryTest, InvalidURIWithAResolvedAssetReportsTheURIOnly) {
    m_dir.write("a.json", graphText());
    JsonReadContext context = contextFor("a.json");
    context.uri = std::make_shared<DmFileURI>("graphs/", m_dir.path());
    ASSERT_FALSE(context.uri->isValid());
    EXPECT_EQ(read(context), DmStatus::kFileError);
    EXPECT_EQ(messages(), Lines{line("error", "file:///graphs/", "Invalid Json file URI.",
                                     "Invalid Json file URI 'file:///graphs/'.")});
    EXPECT_FALSE(m_library->isJsonFileLoaded(m_dir.file("a.json")));
}

TEST_F(JsonFileEntryTest, InvalidURIWithAnUnresolvedAssetReportsBoth) {
    JsonReadContext context = contextFor("none.json");
    context.uri = std::make_shared<DmFileURI>("graphs/", m_dir.path());
    std::string const spec = "halvern:" + m_dir.file("none.json");
    EXPECT_EQ(read(context), DmStatus::kFileError);
    EXPECT_EQ(messages(), (Lines{line("error", "file:///graphs/", "Invalid Json file URI.",
                                      "Invalid Json file URI 'file:///graphs/'."),
                                 line("error", "file:///graphs/", "Invalid Json file asset.",
                                      "Invalid Json file asset '" + spec + "'.")}));
}

TEST_F(JsonFileEntryTest, UnresolvedAssetIsAnInvalidAsset) {
    JsonReadContext context = contextFor("none.json");
    ASSERT_FALSE(context.asset->isResolved());
    std::string const spec = "halvern:" + m_dir.file("none.json");
    EXPECT_EQ(read(context), DmStatus::kFileError);
    EXPECT_EQ(messages(), Lines{line("error", "file:///none.json", "Invalid Json file asset.",
                                     "Invalid Json file asset '" + spec + "'.")});
}

// ---------------------------------------------------------------------------
// Once per library

TEST_F(JsonFileEntryTest, LoadedFileIsNotReadAgain) {
    std::string const path = m_dir.write("a.json", "not json");
    m_library->setJsonFileAsLoaded(path);
    JsonReadContext context = contextFor("a.json");
    EXPECT_EQ(read(context), DmStatus::kSuccess);
    EXPECT_EQ(messages(), Lines{});
}

TEST_F(JsonFileEntryTest, ReloadReadsALoadedFile) {
    std::string const path = m_dir.write("a.json", "not json");
    m_library->setJsonFileAsLoaded(path);
    JsonReadContext context = contextFor("a.json");
    context.reload = true;
    EXPECT_EQ(read(context), DmStatus::kReserved5);
    EXPECT_EQ(messages(), Lines{line("error", path, "Asset has parsing errors.",
                                     "Failed to parse " + path + " at position 1:2: Invalid value.")});
}

TEST_F(JsonFileEntryTest, FileIsMarkedAsLoadedBeforeItsHeaderIsChecked) {
    std::string const path = m_dir.write("a.json", "[]");
    EXPECT_EQ(read(contextFor("a.json")), DmStatus::kInvalidArgument);
    EXPECT_TRUE(m_library->isJsonFileLoaded(path));
}

// ---------------------------------------------------------------------------
// A file found elsewhere than its URI says

TEST_F(JsonFileEntryTest, FileFoundElsewhereThanItsURIIsAPotentialDuplicate) {
    std::string const named = m_dir.file("one/a.json");
    std::string const found = m_dir.write("two/a.json", graphText());
    JsonReadContext context = contextFor("two/a.json");
    context.uri = std::make_shared<DmFileURI>("a.json", m_dir.file("one"));
    EXPECT_EQ(read(context), DmStatus::kSuccess);
    EXPECT_EQ(messages(),
              Lines{line("warning", "file:///a.json", "Potential duplicate Json file of: '" + named + "'.",
                         "Potential duplicate Json file of: '" + named + "', found  at: '" + found + "'.")});
    EXPECT_TRUE(m_library->isJsonFileLoaded(found));
}

TEST_F(JsonFileEntryTest, SameFileReachedThroughAnotherSpellingIsNoDuplicate) {
    m_dir.write("one/a.json", graphText());
    JsonReadContext context = contextFor("one/a.json");
    context.uri = std::make_shared<DmFileURI>("one/../one/./a.json", m_dir.path());
    EXPECT_EQ(read(context), DmStatus::kSuccess);
    EXPECT_EQ(messages(), Lines{});
}

// ---------------------------------------------------------------------------
// Is it a graph file

TEST_F(JsonFileEntryTest, RootArrayIsNotAGraphFile) {
    m_dir.write("a.json", "[" + graphText() + "]");
    EXPECT_EQ(read(contextFor("a.json")), DmStatus::kInvalidArgument);
    EXPECT_EQ(messages(), Lines{notValid("file:///a.json")});
}

TEST_F(JsonFileEntryTest, ParseFailureEndsTheReadWithItsStatus) {
    std::string const path = m_dir.write("a.json", "{\n  \"header\": {\n  \"x\" 1\n}");
    EXPECT_EQ(read(contextFor("a.json")), DmStatus::kReserved5);
    EXPECT_EQ(messages(),
              Lines{line("error", path, "Asset has parsing errors.",
                         "Failed to parse " + path +
                             " at position 3:7: Missing a colon after a name of object member.")});
    EXPECT_FALSE(m_library->isJsonFileLoaded(path));
}

namespace {

struct HeaderCase {
    char const* text;
    bool valid;
};

HeaderCase const kHeaderCases[] = {
    {R"({"header": {"metadata": [{"metaName": "mvrkFileFormatVersion", "metaValue": "100L"}]}})", true},
    {R"({"header": {"metadata": {"metaName": "mvrkFileFormatVersion"}}})", true},
    {R"({"header": [{"metadata": {"metaName": "mvrkFileFormatVersion"}}]})", true},
    {R"({"header": ["x", {"other": "1"}, {"metadata": ["y", {"metaName": "mvrkFileFormatVersion"}]}]})",
     true},
    {R"({"header": {"metadata": [{"metaName": "a"}, {"metaName": "mvrkFileFormatVersion"}]}})", true},
    {R"({"types": [], "header": {"metadata": {"metaName": "mvrkFileFormatVersion"}}})", true},
    {R"({})", false},
    {R"([])", false},
    {R"("header")", false},
    {R"([{"header": {"metadata": {"metaName": "mvrkFileFormatVersion"}}}])", false},
    {R"({"header": "mvrkFileFormatVersion"})", false},
    {R"({"header": {}})", false},
    {R"({"header": [{"metadata": []}]})", false},
    {R"({"header": {"metadata": "mvrkFileFormatVersion"}})", false},
    {R"({"header": {"metadata": [{"metaName": "version"}]}})", false},
    {R"({"header": {"metadata": [{"metaName": "MvrkFileFormatVersion"}]}})", false},
    {R"({"header": {"metadata": [{"metaName": "mvrkFileFormatVersion "}]}})", false},
    {R"({"header": {"metadata": [{"metaName": ["mvrkFileFormatVersion"]}]}})", false},
    {R"({"header": {"metadata": [{"metaValue": "mvrkFileFormatVersion"}]}})", false},
    {R"({"header": {"metadata": [{"metaName": "a", "metadata": [{"metaName": "mvrkFileFormatVersion"}]}]}})",
     false},
    {R"({"header": {"metaName": "mvrkFileFormatVersion"}})", false},
    {R"({"other": {"header": {"metadata": {"metaName": "mvrkFileFormatVersion"}}}})", false},
    {R"({"header": [[{"metadata": {"metaName": "mvrkFileFormatVersion"}}]]})", false},
};

} // namespace

TEST(JsonFileEntryHeader, FormatVersionItemMustStandInTheHeadersMetadata) {
    for (HeaderCase const& one : kHeaderCases) {
        JsonDocument document(nullptr);
        ASSERT_EQ(document.parse(one.text, "text"), DmStatus::kSuccess) << one.text;
        EXPECT_EQ(JsonFileEntry::hasFormatVersion(document.getRoot()), one.valid) << one.text;
    }
}

TEST_F(JsonFileEntryTest, FileWithoutTheVersionItemIsNotAGraphFile) {
    for (HeaderCase const& one : kHeaderCases) {
        if (one.valid) {
            continue;
        }
        m_logger->clear();
        m_dir.write("a.json", one.text);
        JsonReadContext context = contextFor("a.json");
        context.reload = true;
        EXPECT_EQ(read(context), DmStatus::kInvalidArgument) << one.text;
        EXPECT_EQ(messages(), Lines{notValid("file:///a.json")}) << one.text;
    }
}
