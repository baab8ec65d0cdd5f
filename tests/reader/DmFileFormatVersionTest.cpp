// The format version in the header of a graph file: which spellings of a
// newer version are reported, and the warning for a header without metadata.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/InputStream.h>

#include "reader/ReaderTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::line;
using KestoTest::longForm;
using KestoTest::PrintingLibrary;
using KestoTest::TempDir;

namespace {

using Lines = std::vector<std::string>;

/// A header whose version item is `item` (the members of the item object after its name).
std::string versionFile(std::string const& item, std::string const& more = std::string()) {
    return R"({"header": {"metadata": [{"metaName": "mvrkFileFormatVersion")" + item + "}]}" + more + "}";
}

std::string newer(std::string const& version, std::string const& uri) {
    return line("error", uri, "File format version is more recent than library.",
                "File format version '" + version + "' is more recent than library '100' : " + uri);
}

std::string const kBadlyFormed =
    line("error", "file:///a.json", "Badly formed json file.", "The json file is badly formed.");

class DmFileFormatVersionTest : public testing::Test {
protected:
    DmStatus loadText(std::string const& text) {
        m_path = m_dir.write("a.json", text);
        return m_library.load(longForm(m_path), 1);
    }

    TempDir m_dir;
    PrintingLibrary m_library;
    std::string m_path;
};

} // namespace

TEST_F(DmFileFormatVersionTest, CurrentVersionAsTheWriterSpellsItIsSilent) {
    EXPECT_EQ(loadText(versionFile(R"(, "metaValue": "100L")")), DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmFileFormatVersionTest, NewerLongVersionIsReportedAndTheReadGoesOn) {
    // The scalar under "extra" shows each pass: the version is checked in the second.
    EXPECT_EQ(loadText(versionFile(R"(, "metaType": "long", "metaValue": "101")", R"(, "extra": "x")")),
              DmStatus::kFailure);
    EXPECT_EQ(m_library.takePrinted(), (Lines{kBadlyFormed, newer("101", "file:///a.json"), kBadlyFormed,
                                              kBadlyFormed, kBadlyFormed}));
}

TEST_F(DmFileFormatVersionTest, NewerVersionIsReportedOnce) {
    EXPECT_EQ(loadText(versionFile(R"(, "metaType": "long", "metaValue": "101")")), DmStatus::kFailure);
    EXPECT_EQ(m_library.takePrinted(), Lines{newer("101", "file:///a.json")});
}

TEST_F(DmFileFormatVersionTest, NewerVersionWithTheLongSuffixAndNoTypePassesInSilence) {
    EXPECT_EQ(loadText(versionFile(R"(, "metaValue": "101L")")), DmStatus::kSuccess);
    EXPECT_EQ(loadText(versionFile(R"(, "metaValue": "999999L")")), DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmFileFormatVersionTest, SameOrOlderLongVersionIsSilent) {
    EXPECT_EQ(loadText(versionFile(R"(, "metaType": "long", "metaValue": "100")")), DmStatus::kSuccess);
    EXPECT_EQ(loadText(versionFile(R"(, "metaType": "long", "metaValue": "99")")), DmStatus::kSuccess);
    EXPECT_EQ(loadText(versionFile(R"(, "metaType": "long", "metaValue": "-1")")), DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmFileFormatVersionTest, LargestLongVersionIsReportedWithItsDigits) {
    EXPECT_EQ(loadText(versionFile(R"(, "metaType": "long", "metaValue": "9223372036854775807")")),
              DmStatus::kFailure);
    EXPECT_EQ(m_library.takePrinted(), Lines{newer("9223372036854775807", "file:///a.json")});
}

TEST_F(DmFileFormatVersionTest, NewerVersionAsAStringOrADoubleReadsAsALong) {
    EXPECT_EQ(loadText(versionFile(R"(, "metaType": "string", "metaValue": "101")")), DmStatus::kFailure);
    EXPECT_EQ(loadText(versionFile(R"(, "metaType": "double", "metaValue": "102")")), DmStatus::kFailure);
    EXPECT_EQ(m_library.takePrinted(),
              (Lines{newer("101", "file:///a.json"), newer("102", "file:///a.json")}));
}

TEST_F(DmFileFormatVersionTest, VersionThatIsNoNumberIsSilent) {
    EXPECT_EQ(loadText(versionFile(R"(, "metaType": "bool", "metaValue": "true")")), DmStatus::kSuccess);
    EXPECT_EQ(loadText(versionFile(R"(, "metaType": "string", "metaValue": "new")")), DmStatus::kSuccess);
    EXPECT_EQ(loadText(versionFile("")), DmStatus::kSuccess);
    EXPECT_EQ(loadText(versionFile(R"(, "metaType": "long")")), DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmFileFormatVersionTest, VersionWithoutSuffixOrTypeIsAnUnknownValueOnly) {
    EXPECT_EQ(loadText(versionFile(R"(, "metaValue": "101")")), DmStatus::kFailure);
    EXPECT_EQ(m_library.takePrinted(), Lines{line("error", "file:///a.json", "Unknown value.",
                                                  "The type of the value '101' is unknown.")});
}

TEST_F(DmFileFormatVersionTest, VersionReadAgainIsCheckedAgain) {
    ASSERT_EQ(loadText(versionFile(R"(, "metaValue": "100L")")), DmStatus::kSuccess);
    EXPECT_EQ(loadText(versionFile(R"(, "metaType": "long", "metaValue": "103")")), DmStatus::kFailure);
    EXPECT_EQ(m_library.takePrinted(), Lines{newer("103", "file:///a.json")});
}

TEST_F(DmFileFormatVersionTest, NewerVersionOfAStreamNamesTheStream) {
    std::istringstream text(versionFile(R"(, "metaType": "long", "metaValue": "101")"));
    StdInputStream input(text);
    auto const reference = std::make_shared<DmAssetReference>("stream:/graph", &input);
    EXPECT_EQ(m_library->loadGraph(reference, DmLibrary::LoadOptions()), DmStatus::kFailure);
    EXPECT_EQ(m_library.takePrinted(), Lines{newer("101", "stream:/graph")});
}

// ---------------------------------------------------------------------------
// Headers without metadata

TEST_F(DmFileFormatVersionTest, SecondHeaderObjectWithoutMetadataIsWarnedOf) {
    EXPECT_EQ(
        loadText(R"({"header": [{"metadata": {"metaName": "mvrkFileFormatVersion", "metaValue": "100L"}},
                                      {"comment": "none"}]})"),
        DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(),
              Lines{line("warning", "file:///a.json", "File format version is not specified.",
                         "File format version is not specified in the header section of the json file "
                         "'file:///a.json'.")});
}

TEST_F(DmFileFormatVersionTest, SecondHeaderKeyWithoutMetadataIsWarnedOf) {
    EXPECT_EQ(loadText(versionFile(R"(, "metaValue": "100L")", R"(, "header": {})")), DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(),
              Lines{line("warning", "file:///a.json", "File format version is not specified.",
                         "File format version is not specified in the header section of the json file "
                         "'file:///a.json'.")});
}

TEST_F(DmFileFormatVersionTest, HeaderThatIsAScalarIsBadlyFormed) {
    EXPECT_EQ(loadText(versionFile(R"(, "metaValue": "100L")", R"(, "header": "x")")), DmStatus::kFailure);
    EXPECT_EQ(m_library.takePrinted(), Lines(4, kBadlyFormed));
}
