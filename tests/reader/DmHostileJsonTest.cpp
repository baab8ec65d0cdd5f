// Every file of the JSON parsing suite given to loadGraph as a graph file:
// each load ends with a status and, for a failure, exactly one message.
#include <KestoDM/library/DmLibrary.h>

#include "reader/ReaderTestSupport.h"

#include <gtest/gtest.h>

#include <boost/filesystem.hpp>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::line;
using KestoTest::PrintingLibrary;

namespace {

using Lines = std::vector<std::string>;

std::string suiteDirectory() {
    return std::string(KESTODM_TEST_DATA_DIR) + "/JSONTestSuite/test_parsing";
}

std::vector<std::string> suiteFiles() {
    std::vector<std::string> names;
    boost::system::error_code error;
    for (boost::filesystem::directory_iterator it(suiteDirectory(), error), end; !error && it != end; ++it) {
        names.push_back(it->path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// The files of the suite left to the implementation that parse here: no
/// check of the encoding of strings, small numbers rounded, big integers
/// read as doubles, and nesting within the limit.
/// The others fail: numbers beyond the range of a double, UTF-16 texts, a
/// byte-order mark, and escaped surrogates that do not pair.
std::set<std::string> const kImplementationDefinedThatParse = {
    "i_number_double_huge_neg_exp.json",
    "i_number_real_underflow.json",
    "i_number_too_big_neg_int.json",
    "i_number_too_big_pos_int.json",
    "i_number_very_big_negative_int.json",
    "i_object_key_lone_2nd_surrogate.json",
    "i_string_UTF-8_invalid_sequence.json",
    "i_string_UTF8_surrogate_U+D800.json",
    "i_string_incomplete_surrogate_pair.json",
    "i_string_invalid_utf-8.json",
    "i_string_iso_latin_1.json",
    "i_string_lone_second_surrogate.json",
    "i_string_lone_utf8_continuation_byte.json",
    "i_string_not_in_unicode_range.json",
    "i_string_overlong_sequence_2_bytes.json",
    "i_string_overlong_sequence_6_bytes.json",
    "i_string_overlong_sequence_6_bytes_null.json",
    "i_string_truncated-utf-8.json",
    "i_structure_500_nested_arrays.json",
};

std::string notValid(std::string const& name) {
    std::string const uri = "file:///" + name;
    return line("error", uri, "Invalid Kesto JSON file.",
                "'" + uri +
                    "' is not a valid Kesto JSON file: Missing the header's 'file format version' metadata.");
}

bool isParseError(std::string const& printed, std::string const& path) {
    std::string const start =
        "error: " + path + ": Asset has parsing errors.: Failed to parse " + path + " at position ";
    return printed.compare(0, start.size(), start) == 0;
}

class DmHostileJsonTest : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        // A "#" or "?" would start the fragment or the query of a spec: such a
        // file is loaded from a copy under a plain name.
        m_name = GetParam();
        if (m_name.find_first_of("#?") == std::string::npos) {
            m_path = suiteDirectory() + "/" + m_name;
            return;
        }
        std::replace(m_name.begin(), m_name.end(), '#', '_');
        std::replace(m_name.begin(), m_name.end(), '?', '_');
        m_path = m_dir.file(m_name);
        boost::filesystem::copy_file(suiteDirectory() + "/" + GetParam(), m_path);
    }

    DmStatus load(Lines& printed) {
        DmStatus const status = m_library.load("file:" + m_path);
        printed = m_library.takePrinted();
        return status;
    }

    KestoTest::TempDir m_dir;
    std::string m_name;
    std::string m_path;
    PrintingLibrary m_library;
};

} // namespace

TEST(DmHostileJsonSuite, HoldsTheWholeSuite) {
    std::vector<std::string> const files = suiteFiles();
    EXPECT_EQ(files.size(), 318u);
    EXPECT_TRUE(boost::filesystem::exists(std::string(KESTODM_TEST_DATA_DIR) + "/JSONTestSuite/LICENSE"));
}

TEST_P(DmHostileJsonTest, EndsWithAStatusAndOneMessage) {
    std::string const& name = GetParam();
    Lines printed;
    DmStatus const status = load(printed);
    ASSERT_EQ(printed.size(), 1u) << name;
    bool const parsed = status == DmStatus::kInvalidArgument;
    if (parsed) {
        EXPECT_EQ(printed[0], notValid(m_name));
    } else {
        EXPECT_EQ(status, DmStatus::kReserved5) << name;
        EXPECT_TRUE(isParseError(printed[0], m_path)) << printed[0];
    }
    switch (name[0]) {
    case 'y':
        EXPECT_TRUE(parsed) << name << ": " << printed[0];
        break;
    case 'n':
        EXPECT_FALSE(parsed) << name << ": " << printed[0];
        break;
    default:
        EXPECT_EQ(parsed, kImplementationDefinedThatParse.count(name) != 0) << name << ": " << printed[0];
        break;
    }
    // The failed file leaves nothing behind but its URI and its place in the table.
    EXPECT_EQ(m_library->getErrorLogger()->getMessageCount(), 0u);
    EXPECT_EQ(m_library->isJsonFileLoaded(m_path), parsed);
}

INSTANTIATE_TEST_SUITE_P(Suite, DmHostileJsonTest, testing::ValuesIn(suiteFiles()),
                         [](testing::TestParamInfo<std::string> const& info) {
                             std::string name = info.param.substr(0, info.param.size() - 5);
                             for (char& c : name) {
                                 if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                                       (c >= '0' && c <= '9'))) {
                                     c = '_';
                                 }
                             }
                             return name + "_" + std::to_string(info.index);
                         });

TEST(DmHostileJsonSuite, HashInAFileNameStartsTheFragmentOfTheSpec) {
    PrintingLibrary library;
    EXPECT_EQ(library.load("file:" + suiteDirectory() + "/n_structure_trailing_#.json"),
              DmStatus::kFileError);
    EXPECT_EQ(library.takePrinted(), Lines{});
}

TEST(DmHostileJsonSuite, DeepestFilesFailAtTheNestingLimit) {
    for (char const* name :
         {"n_structure_100000_opening_arrays.json", "n_structure_open_array_object.json"}) {
        PrintingLibrary library;
        std::string const path = suiteDirectory() + "/" + name;
        EXPECT_EQ(library.load("file:" + path), DmStatus::kReserved5);
        Lines const printed = library.takePrinted();
        ASSERT_EQ(printed.size(), 1u);
        EXPECT_NE(printed[0].find("The document nests arrays and objects deeper than 1000 levels."),
                  std::string::npos)
            << printed[0];
    }
}
