#include <KestoDM/assets/DmFileURI.h>

#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmInstanceCounter.h>

#include <boost/filesystem.hpp>

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>

using Kesto::DmFileURI;
using Kesto::DmURI;

namespace fs = boost::filesystem;

namespace {

// A fresh directory holding deep/dir/file.json and the link "link" to
// deep/dir, removed again after each test.
class DmFileURIFiles : public ::testing::Test {
protected:
    void SetUp() override {
        // Canonical, so that expectations compare with the paths URIs make.
        m_root = fs::canonical(fs::temp_directory_path()) / fs::unique_path("kestodm-fileuri-%%%%-%%%%-%%%%");
        fs::create_directories(m_root / "deep" / "dir");
        std::ofstream(path("deep/dir/file.json")) << "{}";
        fs::create_directory_symlink(m_root / "deep" / "dir", m_root / "link");
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

// Names and paths.

TEST_F(DmFileURIFiles, BarePathGetsTheLongFormNameAndAnAbsolutePath) {
    DmFileURI const uri("a/b.json", root());
    EXPECT_EQ(uri.getName(), "file:///a/b.json");
    EXPECT_EQ(uri.getFilePath(), path("a/b.json"));
    EXPECT_TRUE(uri.isValid());
}

TEST_F(DmFileURIFiles, LongFormKeepsItsNameAndResolvesTheRestAgainstTheBase) {
    DmFileURI const uri("file:///a/b.json", root());
    EXPECT_EQ(uri.getName(), "file:///a/b.json");
    EXPECT_EQ(uri.getFilePath(), path("a/b.json"));
    EXPECT_TRUE(uri.isValid());
}

TEST_F(DmFileURIFiles, LongFormAndBarePathWithTheSameBaseGiveTheSameNameAndPath) {
    DmFileURI const longForm("file:///a/b.json", root());
    DmFileURI const bare("a/b.json", root());
    EXPECT_EQ(longForm.getName(), bare.getName());
    EXPECT_EQ(longForm.getFilePath(), bare.getFilePath());
    EXPECT_TRUE(longForm == bare);
}

TEST_F(DmFileURIFiles, AbsolutePathGetsTheLongFormPrefixInFrontOfItsSlash) {
    std::string const absolute = path("deep/dir/file.json");
    DmFileURI const uri(absolute, "");
    EXPECT_EQ(uri.getName(), "file:///" + absolute);
    EXPECT_EQ(uri.getName().compare(0, 9, "file:////"), 0);
    EXPECT_EQ(uri.getFilePath(), absolute);
    EXPECT_TRUE(uri.isValid());
}

TEST_F(DmFileURIFiles, AbsolutePathIgnoresTheBase) {
    std::string const absolute = path("a.json");
    DmFileURI const uri(absolute, "/somewhere/else");
    EXPECT_EQ(uri.getFilePath(), absolute);
    EXPECT_EQ(uri.getName(), "file:///" + absolute);
}

TEST(DmFileURI, AbsoluteLinuxPathNamesItsSlash) {
    DmFileURI const uri("/a/b.json", "/base");
    EXPECT_EQ(uri.getName(), "file:////a/b.json");
    EXPECT_EQ(uri.getFilePath(), "/a/b.json");
    EXPECT_EQ(uri.getBasePath(), "/a");
    EXPECT_TRUE(uri.isValid());
}

TEST(DmFileURI, LongFormOfAnAbsolutePathHasFourSlashes) {
    DmFileURI const uri("file:////a/b.json", "/base");
    EXPECT_EQ(uri.getName(), "file:////a/b.json");
    EXPECT_EQ(uri.getFilePath(), "/a/b.json");
}

TEST_F(DmFileURIFiles, NameIsNotDerivedFromTheCanonicalPath) {
    DmFileURI const uri("x/./y/../../a.json", root());
    EXPECT_EQ(uri.getName(), "file:///x/./y/../../a.json");
    EXPECT_EQ(uri.getFilePath(), path("a.json"));
    EXPECT_TRUE(uri.isValid());
}

TEST_F(DmFileURIFiles, BarePathsThatMeetInOneFileStillHaveDifferentNames) {
    DmFileURI const direct("a.json", root());
    DmFileURI const roundabout("x/../a.json", root());
    EXPECT_EQ(direct.getFilePath(), roundabout.getFilePath());
    EXPECT_NE(direct.getName(), roundabout.getName());
    EXPECT_FALSE(direct == roundabout);
}

TEST_F(DmFileURIFiles, PathKeepsASymbolicLink) {
    DmFileURI const uri("file.json", path("link"));
    EXPECT_EQ(uri.getFilePath(), path("link/file.json"));
    EXPECT_NE(uri.getFilePath(), path("deep/dir/file.json"));
    EXPECT_TRUE(uri.isValid());
}

TEST_F(DmFileURIFiles, DotDotAfterASymbolicLinkIsFoldedByTheText) {
    // Through the file system link/.. is deep; the path folds the text instead.
    DmFileURI const uri("link/../a.json", root());
    EXPECT_EQ(uri.getFilePath(), path("a.json"));
    EXPECT_EQ(uri.getName(), "file:///link/../a.json");
}

TEST_F(DmFileURIFiles, RelativeBaseDirectoryIsFolded) {
    DmFileURI const uri("b.json", path("deep/./dir/../other"));
    EXPECT_EQ(uri.getFilePath(), path("deep/other/b.json"));
    EXPECT_EQ(uri.getBasePath(), path("deep/other"));
}

TEST(DmFileURI, EmptyBaseCountsFromTheCurrentDirectory) {
    DmFileURI const uri("a/b.json", "");
    EXPECT_EQ(uri.getFilePath(), (fs::current_path() / "a" / "b.json").string());
    EXPECT_EQ(uri.getName(), "file:///a/b.json");
    EXPECT_TRUE(uri.isValid());
}

TEST_F(DmFileURIFiles, BasePathIsTheDirectoryOfTheFile) {
    DmFileURI const uri("deep/dir/file.json", root());
    EXPECT_EQ(uri.getBasePath(), path("deep/dir"));
}

// Validity.

TEST_F(DmFileURIFiles, ExistingFileIsValid) {
    DmFileURI const uri("deep/dir/file.json", root());
    EXPECT_TRUE(uri.isValid());
}

TEST_F(DmFileURIFiles, FileThatDoesNotExistIsValid) {
    ASSERT_FALSE(fs::exists(path("missing/new.json")));
    DmFileURI const uri("missing/new.json", root());
    EXPECT_TRUE(uri.isValid());
    EXPECT_EQ(uri.getFilePath(), path("missing/new.json"));
}

TEST_F(DmFileURIFiles, LongFormInsideThePathMakesTheURIInvalidWithAnEmptyName) {
    DmFileURI const uri("x/file:///y", root());
    EXPECT_FALSE(uri.isValid());
    EXPECT_EQ(uri.getName(), "");
    EXPECT_EQ(uri.getFilePath(), "");
}

TEST_F(DmFileURIFiles, PathEndingInASeparatorIsInvalid) {
    DmFileURI const uri("deep/dir/", root());
    EXPECT_FALSE(uri.isValid());
    EXPECT_EQ(uri.getName(), "file:///deep/dir/");
    EXPECT_EQ(uri.getFilePath(), path("deep/dir") + "/");
}

TEST(DmFileURI, RootDirectoryIsInvalid) {
    DmFileURI const uri("/", "");
    EXPECT_FALSE(uri.isValid());
    EXPECT_EQ(uri.getName(), "file:////");
    EXPECT_EQ(uri.getFilePath(), "/");
}

TEST_F(DmFileURIFiles, EmptyPathIsInvalidAndHasNoPath) {
    DmFileURI const uri("", root());
    EXPECT_FALSE(uri.isValid());
    EXPECT_EQ(uri.getName(), "file:///");
    EXPECT_EQ(uri.getFilePath(), "");
    EXPECT_EQ(uri.getBasePath(), "");
}

TEST_F(DmFileURIFiles, LongFormAloneIsInvalid) {
    DmFileURI const uri("file:///", root());
    EXPECT_FALSE(uri.isValid());
    EXPECT_EQ(uri.getName(), "file:///");
    EXPECT_EQ(uri.getFilePath(), "");
}

TEST_F(DmFileURIFiles, FileNameWithAForbiddenCharacterIsInvalid) {
    EXPECT_FALSE(DmFileURI("a?.json", root()).isValid());
    EXPECT_FALSE(DmFileURI("a:b.json", root()).isValid());
    EXPECT_FALSE(DmFileURI("a*.json", root()).isValid());
}

TEST_F(DmFileURIFiles, FileNameWithABlankAtEitherEndIsInvalid) {
    EXPECT_FALSE(DmFileURI(" a.json", root()).isValid());
    EXPECT_FALSE(DmFileURI("a.json ", root()).isValid());
    EXPECT_TRUE(DmFileURI("a b.json", root()).isValid());
}

TEST_F(DmFileURIFiles, FileNameEndingInADotIsInvalid) {
    DmFileURI const uri("a.json.", root());
    EXPECT_FALSE(uri.isValid());
    EXPECT_EQ(uri.getFilePath(), path("a.json."));
}

TEST_F(DmFileURIFiles, DirectoryThatIsNoValidPathElementIsInvalid) {
    DmFileURI const uri("x:y/a.json", root());
    EXPECT_FALSE(uri.isValid());
    EXPECT_EQ(uri.getFilePath(), path("x:y/a.json"));
    EXPECT_FALSE(DmFileURI("(x)/a.json", root()).isValid());
}

TEST(DmFileURI, InvalidBaseDirectoryMakesTheURIInvalid) {
    DmFileURI const uri("a.json", "/x;y");
    EXPECT_FALSE(uri.isValid());
    EXPECT_EQ(uri.getFilePath(), "/x;y/a.json");
}

TEST(DmFileURI, DotDotAboveTheRootIsAValidElement) {
    DmFileURI const uri("/../a.json", "");
    EXPECT_EQ(uri.getFilePath(), "/../a.json");
    EXPECT_TRUE(uri.isValid());
}

// Changing the path.

TEST_F(DmFileURIFiles, SetPathRenamesAndResolvesAgain) {
    DmFileURI uri("a.json", root());
    EXPECT_TRUE(uri.setPath("file.json", path("deep/dir")));
    EXPECT_EQ(uri.getName(), "file:///file.json");
    EXPECT_EQ(uri.getFilePath(), path("deep/dir/file.json"));
    EXPECT_TRUE(uri.isValid());
}

TEST_F(DmFileURIFiles, SetPathReturnsFalseForAnInvalidPath) {
    DmFileURI uri("a.json", root());
    EXPECT_FALSE(uri.setPath("a?.json", root()));
    EXPECT_FALSE(uri.isValid());
    EXPECT_EQ(uri.getName(), "file:///a?.json");
}

TEST_F(DmFileURIFiles, SetPathCanMakeAnInvalidURIValid) {
    DmFileURI uri("", root());
    ASSERT_FALSE(uri.isValid());
    EXPECT_TRUE(uri.setPath("a.json", root()));
    EXPECT_TRUE(uri.isValid());
}

TEST_F(DmFileURIFiles, SetPathWithTheLongFormInsideKeepsTheNameAndPathButInvalidates) {
    DmFileURI uri("a.json", root());
    EXPECT_FALSE(uri.setPath("x/file:///y", root()));
    EXPECT_FALSE(uri.isValid());
    EXPECT_EQ(uri.getName(), "file:///a.json");
    EXPECT_EQ(uri.getFilePath(), path("a.json"));
}

// Copies and kinds.

TEST_F(DmFileURIFiles, CopyKeepsNamePathAndValidity) {
    DmFileURI const original("deep/dir/file.json", root());
    DmFileURI const copy(original);
    EXPECT_EQ(copy.getName(), original.getName());
    EXPECT_EQ(copy.getFilePath(), original.getFilePath());
    EXPECT_TRUE(copy.isValid());
    DmFileURI const invalid("a?.json", root());
    EXPECT_FALSE(DmFileURI(invalid).isValid());
}

TEST_F(DmFileURIFiles, CopyHasADependencyMapOfItsOwn) {
    DmFileURI original("a.json", root());
    original.addDependency(std::make_shared<DmFileURI>("b.json", root()));
    DmFileURI copy(original);
    copy.addDependency(std::make_shared<DmFileURI>("c.json", root()));
    EXPECT_EQ(original.getDependencies()->size(), 1u);
    EXPECT_EQ(copy.getDependencies()->size(), 2u);
}

TEST_F(DmFileURIFiles, IsValidAnswersThroughTheBaseClass) {
    std::shared_ptr<DmURI> const valid = std::make_shared<DmFileURI>("a.json", root());
    std::shared_ptr<DmURI> const invalid = std::make_shared<DmFileURI>("x/file:///y", root());
    EXPECT_TRUE(valid->isValid());
    EXPECT_FALSE(invalid->isValid());
}

TEST_F(DmFileURIFiles, CountsItsInstances) {
    unsigned int const files = Kesto::DmInstanceCounter<DmFileURI>::getInstanceCount();
    unsigned int const uris = Kesto::DmInstanceCounter<DmURI>::getInstanceCount();
    {
        DmFileURI const uri("a.json", root());
        EXPECT_EQ(Kesto::DmInstanceCounter<DmFileURI>::getInstanceCount(), files + 1);
        EXPECT_EQ(Kesto::DmInstanceCounter<DmURI>::getInstanceCount(), uris + 1);
    }
    EXPECT_EQ(Kesto::DmInstanceCounter<DmFileURI>::getInstanceCount(), files);
    EXPECT_EQ(Kesto::DmInstanceCounter<DmURI>::getInstanceCount(), uris);
}
