#include <KestoDM/foundation/DmOSUtils.h>

#include <boost/filesystem.hpp>

#include <gtest/gtest.h>

#include <fcntl.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <utility>
#include <variant>

using Kesto::DmOSUtils;

namespace fs = boost::filesystem;

namespace {

// A fresh directory holding dir/file.txt, dir/sub/ and link -> dir.
class DmOSUtilsFiles : public ::testing::Test {
protected:
    void SetUp() override {
        // Canonical, so that expectations compare with resolved paths.
        m_root = fs::canonical(fs::temp_directory_path()) / fs::unique_path("kestodm-osutils-%%%%-%%%%-%%%%");
        fs::create_directories(m_root / "dir" / "sub");
        std::ofstream(path("dir/file.txt")) << "data";
        fs::create_directory_symlink(m_root / "dir", m_root / "link");
    }
    void TearDown() override {
        boost::system::error_code ec;
        fs::remove_all(m_root, ec);
    }

    std::string path(std::string const& relative) const { return (m_root / relative).string(); }
    std::string root() const { return m_root.string(); }

    fs::path m_root;
};

} // namespace

TEST(DmOSUtils, AppendPathsJoinsWithSeparator) {
    EXPECT_EQ(DmOSUtils::appendPaths("a/b", "c.txt"), "a/b/c.txt");
    EXPECT_EQ(DmOSUtils::appendPaths("a/b/", "c"), "a/b/c");
    EXPECT_EQ(DmOSUtils::appendPaths("", "c"), "c");
    EXPECT_EQ(DmOSUtils::appendPaths("a", ""), "a");
}

TEST(DmOSUtils, IsAbsolutePathNeedsLeadingSlash) {
    EXPECT_TRUE(DmOSUtils::isAbsolutePath("/"));
    EXPECT_TRUE(DmOSUtils::isAbsolutePath("/usr/lib"));
    EXPECT_FALSE(DmOSUtils::isAbsolutePath("usr/lib"));
    EXPECT_FALSE(DmOSUtils::isAbsolutePath("./x"));
    EXPECT_FALSE(DmOSUtils::isAbsolutePath("C:/x"));
}

TEST(DmOSUtils, EmptyPathIsNotAbsolute) {
    EXPECT_FALSE(DmOSUtils::isAbsolutePath(""));
}

TEST(DmOSUtils, GetParentPathAndFilenameSplitsPath) {
    std::string parent, filename;
    DmOSUtils::getParentPathAndFilename("/a/b/c.txt", parent, filename);
    EXPECT_EQ(parent, "/a/b");
    EXPECT_EQ(filename, "c.txt");
    DmOSUtils::getParentPathAndFilename("c.txt", parent, filename);
    EXPECT_EQ(parent, "");
    EXPECT_EQ(filename, "c.txt");
}

TEST(DmOSUtils, PathElementPlainNameIsValid) {
    EXPECT_TRUE(DmOSUtils::isValidPathElement("node"));
    EXPECT_TRUE(DmOSUtils::isValidPathElement("a b"));
    EXPECT_TRUE(DmOSUtils::isValidPathElement("file.txt"));
    EXPECT_TRUE(DmOSUtils::isValidPathElement(".hidden"));
}

TEST(DmOSUtils, PathElementEmptyIsInvalid) {
    EXPECT_FALSE(DmOSUtils::isValidPathElement(""));
}

TEST(DmOSUtils, PathElementLeadingBlankIsInvalid) {
    EXPECT_FALSE(DmOSUtils::isValidPathElement(" a"));
}

TEST(DmOSUtils, PathElementTrailingBlankIsInvalid) {
    EXPECT_FALSE(DmOSUtils::isValidPathElement("a "));
}

TEST(DmOSUtils, PathElementTabInsideIsInvalid) {
    EXPECT_FALSE(DmOSUtils::isValidPathElement("a\tb"));
}

TEST(DmOSUtils, PathElementControlBytesAreInvalid) {
    for (int byte = 1; byte <= 31; ++byte) {
        std::string const element = std::string("a") + static_cast<char>(byte) + "b";
        EXPECT_FALSE(DmOSUtils::isValidPathElement(element)) << byte;
    }
}

TEST(DmOSUtils, PathElementForbiddenSymbolsAreInvalid) {
    for (char const c : std::string("*?:[]\"<>|(){}&'!\\;/")) {
        std::string const element = std::string("a") + c + "b";
        EXPECT_FALSE(DmOSUtils::isValidPathElement(element)) << c;
    }
}

TEST(DmOSUtils, PathElementOtherPunctuationIsValid) {
    EXPECT_TRUE(DmOSUtils::isValidPathElement("a-b_c+d=e,f@g#h$i%j^k~l`m"));
    EXPECT_TRUE(DmOSUtils::isValidPathElement("caf\xc3\xa9"));
}

TEST(DmOSUtils, PathElementSingleDotIsValid) {
    EXPECT_TRUE(DmOSUtils::isValidPathElement("."));
}

TEST(DmOSUtils, PathElementDoubleDotIsValid) {
    EXPECT_TRUE(DmOSUtils::isValidPathElement(".."));
}

TEST(DmOSUtils, PathElementEndingInDotIsInvalid) {
    EXPECT_FALSE(DmOSUtils::isValidPathElement("a."));
}

TEST(DmOSUtils, PathElementEndingInTwoDotsIsInvalid) {
    EXPECT_FALSE(DmOSUtils::isValidPathElement("a.."));
    EXPECT_FALSE(DmOSUtils::isValidPathElement("..."));
}

TEST(DmOSUtils, FopenOfMissingFileGivesNoSuchFile) {
    auto result = DmOSUtils::fopen("/nonexistent-kestodm-dir/missing.txt", "rb");
    ASSERT_TRUE(std::holds_alternative<std::errc>(result));
    EXPECT_EQ(std::get<std::errc>(result), std::errc::no_such_file_or_directory);
}

TEST(DmOSUtils, FopenWithNullArgumentGivesInvalidArgument) {
    auto noName = DmOSUtils::fopen(nullptr, "r");
    ASSERT_TRUE(std::holds_alternative<std::errc>(noName));
    EXPECT_EQ(std::get<std::errc>(noName), std::errc::invalid_argument);
    auto noMode = DmOSUtils::fopen("x", nullptr);
    ASSERT_TRUE(std::holds_alternative<std::errc>(noMode));
    EXPECT_EQ(std::get<std::errc>(noMode), std::errc::invalid_argument);
}

TEST_F(DmOSUtilsFiles, FopenOpensFileForReading) {
    auto result = DmOSUtils::fopen(path("dir/file.txt").c_str(), "rb");
    ASSERT_TRUE(std::holds_alternative<DmOSUtils::FileHandle>(result));
    auto& file = std::get<DmOSUtils::FileHandle>(result);
    ASSERT_TRUE(file);
    char buffer[8] = {};
    EXPECT_EQ(std::fread(buffer, 1, sizeof(buffer), file.get()), 4u);
    EXPECT_EQ(std::string(buffer), "data");
}

TEST_F(DmOSUtilsFiles, FopenSetsCloseOnExec) {
    auto result = DmOSUtils::fopen(path("dir/file.txt").c_str(), "r");
    ASSERT_TRUE(std::holds_alternative<DmOSUtils::FileHandle>(result));
    int const flags = ::fcntl(::fileno(std::get<DmOSUtils::FileHandle>(result).get()), F_GETFD);
    ASSERT_NE(flags, -1);
    EXPECT_TRUE(flags & FD_CLOEXEC);
}

TEST_F(DmOSUtilsFiles, FileHandleMovesAndReleasesOwnership) {
    auto result = DmOSUtils::fopen(path("dir/new.txt").c_str(), "w");
    ASSERT_TRUE(std::holds_alternative<DmOSUtils::FileHandle>(result));
    DmOSUtils::FileHandle first = std::move(std::get<DmOSUtils::FileHandle>(result));
    DmOSUtils::FileHandle second;
    EXPECT_FALSE(second);
    second = std::move(first);
    EXPECT_FALSE(first);
    ASSERT_TRUE(second);
    std::FILE* raw = second.release();
    EXPECT_FALSE(second);
    EXPECT_EQ(std::fclose(raw), 0);
}

TEST_F(DmOSUtilsFiles, EquivalentPathSeesSameFileThroughLink) {
    EXPECT_TRUE(DmOSUtils::equivalentPath(path("dir/file.txt"), path("link/file.txt")));
    EXPECT_TRUE(DmOSUtils::equivalentPath(path("dir/sub/../file.txt"), path("dir/file.txt")));
    EXPECT_FALSE(DmOSUtils::equivalentPath(path("dir/file.txt"), path("dir/sub")));
}

TEST_F(DmOSUtilsFiles, EquivalentPathIsFalseForEmptyOrMissing) {
    EXPECT_FALSE(DmOSUtils::equivalentPath("", path("dir/file.txt")));
    EXPECT_FALSE(DmOSUtils::equivalentPath(path("dir/file.txt"), ""));
    EXPECT_FALSE(DmOSUtils::equivalentPath(path("missing"), path("missing")));
}

TEST_F(DmOSUtilsFiles, CanonicalPathFoldsDotsAndKeepsLinks) {
    std::string out;
    ASSERT_TRUE(DmOSUtils::getCanonicalPath("link/sub/../file.txt", root(), out));
    EXPECT_EQ(out, path("link/file.txt"));
    ASSERT_TRUE(DmOSUtils::getCanonicalPath("./dir/./sub/", root(), out));
    EXPECT_EQ(out, path("dir/sub"));
}

TEST_F(DmOSUtilsFiles, CanonicalPathNeedNotExist) {
    std::string out;
    ASSERT_TRUE(DmOSUtils::getCanonicalPath("missing/x.txt", root(), out));
    EXPECT_EQ(out, path("missing/x.txt"));
}

TEST_F(DmOSUtilsFiles, CanonicalPathOfAbsolutePathIgnoresBase) {
    std::string out;
    ASSERT_TRUE(DmOSUtils::getCanonicalPath(path("dir/sub/.."), "/somewhere/else", out));
    EXPECT_EQ(out, path("dir"));
}

TEST_F(DmOSUtilsFiles, CanonicalPathOfEmptyPathFailsAndLeavesOut) {
    std::string out = "unchanged";
    EXPECT_FALSE(DmOSUtils::getCanonicalPath("", root(), out));
    EXPECT_FALSE(DmOSUtils::getStrictCanonicalPath("", root(), out));
    EXPECT_EQ(out, "unchanged");
}

TEST_F(DmOSUtilsFiles, ExistingCanonicalPathFailsForMissingFile) {
    std::string out = "unchanged";
    EXPECT_FALSE(DmOSUtils::getExistingCanonicalPath("dir/missing.txt", root(), out));
    EXPECT_FALSE(DmOSUtils::getExistingStrictCanonicalPath("dir/missing.txt", root(), out));
    EXPECT_FALSE(DmOSUtils::getExistingStrictRelativePath("dir/missing.txt", root(), out));
    EXPECT_EQ(out, "unchanged");
}

TEST_F(DmOSUtilsFiles, ExistingCanonicalPathKeepsLinkOfExistingFile) {
    std::string out;
    ASSERT_TRUE(DmOSUtils::getExistingCanonicalPath("link/file.txt", root(), out));
    EXPECT_EQ(out, path("link/file.txt"));
}

TEST_F(DmOSUtilsFiles, StrictCanonicalPathResolvesLinks) {
    std::string out;
    ASSERT_TRUE(DmOSUtils::getStrictCanonicalPath("link/sub/../file.txt", root(), out));
    EXPECT_EQ(out, path("dir/file.txt"));
    ASSERT_TRUE(DmOSUtils::getExistingStrictCanonicalPath("link/", root(), out));
    EXPECT_EQ(out, path("dir"));
}

TEST_F(DmOSUtilsFiles, StrictCanonicalPathResolvesLinksUpToAMissingTail) {
    std::string out;
    ASSERT_TRUE(DmOSUtils::getStrictCanonicalPath("link/missing.txt", root(), out));
    EXPECT_EQ(out, path("dir/missing.txt"));
}

TEST_F(DmOSUtilsFiles, ExistingStrictCanonicalPathFailsForAMissingFile) {
    std::string out = "unchanged";
    EXPECT_FALSE(DmOSUtils::getExistingStrictCanonicalPath("link/missing.txt", root(), out));
    EXPECT_EQ(out, "unchanged");
}

TEST_F(DmOSUtilsFiles, StrictCanonicalPathResolvesLinkedBase) {
    std::string out;
    ASSERT_TRUE(DmOSUtils::getStrictCanonicalPath("sub", path("link"), out));
    EXPECT_EQ(out, path("dir/sub"));
}

TEST_F(DmOSUtilsFiles, ExistingStrictRelativePathIsRelativeToBase) {
    std::string out;
    ASSERT_TRUE(DmOSUtils::getExistingStrictRelativePath("link/file.txt", root(), out));
    EXPECT_EQ(out, "dir/file.txt");
    ASSERT_TRUE(DmOSUtils::getExistingStrictRelativePath(path("dir/file.txt"), path("dir/sub"), out));
    EXPECT_EQ(out, "../file.txt");
    // The base is resolved too.
    ASSERT_TRUE(DmOSUtils::getExistingStrictRelativePath(path("dir/sub"), path("link"), out));
    EXPECT_EQ(out, "sub");
}
