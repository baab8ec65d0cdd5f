// The table of JSON files through which loads skip the file system.
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>

#include "library/LibraryTestSupport.h"

#include <gtest/gtest.h>

#include <boost/filesystem.hpp>

#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace Kesto;
namespace fs = boost::filesystem;

namespace {

using Names = std::vector<std::string>;
using Cached = std::pair<bool, bool>;

/// A fresh directory under the system's temporary directory, removed with
/// everything in it at the end of the test.
class TempDir {
public:
    TempDir() : m_path(fs::temp_directory_path() / fs::unique_path("kestodm-json-%%%%-%%%%-%%%%")) {
        fs::create_directories(m_path);
    }
    TempDir(TempDir const&) = delete;
    TempDir& operator=(TempDir const&) = delete;
    ~TempDir() {
        boost::system::error_code ignored;
        fs::remove_all(m_path, ignored);
    }

    std::string path() const { return m_path.string(); }
    std::string file(std::string const& name) const { return (m_path / name).string(); }

    std::string touch(std::string const& name) const {
        std::ofstream(file(name)) << "{}";
        return file(name);
    }
    std::string makeDirectory(std::string const& name) const {
        fs::create_directories(m_path / name);
        return file(name);
    }

private:
    fs::path m_path;
};

class DmLibraryJsonFiles : public testing::Test {
protected:
    std::shared_ptr<DmLibrary> m_library = KestoTest::makeLibrary();
    TempDir m_dir;
};

Names keysOf(DmLibrary::JsonFileMap const& map) {
    Names keys;
    for (auto const& entry : map) {
        keys.push_back(entry.first);
    }
    return keys;
}

} // namespace

// ---------------------------------------------------------------------------
// cacheJsonFilenamesForLoad

TEST_F(DmLibraryJsonFiles, NewLibraryHasAnEmptyTable) {
    EXPECT_TRUE(m_library->getJsonFiles().empty());
}

TEST_F(DmLibraryJsonFiles, ListingFilesTheJsonFilesAndTheDirectory) {
    std::string const a = m_dir.touch("a.json");
    m_dir.touch("notes.txt");
    EXPECT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    auto const& table = m_library->getJsonFiles();
    EXPECT_EQ(keysOf(table), (Names{a, m_dir.path()}));
    EXPECT_FALSE(table.at(a));
    EXPECT_TRUE(table.at(m_dir.path()));
}

TEST_F(DmLibraryJsonFiles, ListingFilesEveryJsonFileOnce) {
    std::string const a = m_dir.touch("a.json");
    std::string const b = m_dir.touch("b.json");
    EXPECT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    auto const& table = m_library->getJsonFiles();
    EXPECT_EQ(table.size(), 3u);
    EXPECT_TRUE(table.contains(a));
    EXPECT_TRUE(table.contains(b));
}

TEST_F(DmLibraryJsonFiles, ListingTakesOnlyTheExactExtension) {
    m_dir.touch("upper.JSON");
    m_dir.touch("double.json.bak");
    m_dir.touch("json");
    std::string const kept = m_dir.touch("kept.json");
    EXPECT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_EQ(keysOf(m_library->getJsonFiles()), (Names{kept, m_dir.path()}));
}

TEST_F(DmLibraryJsonFiles, ListingDoesNotDescendIntoSubdirectories) {
    std::string const top = m_dir.touch("top.json");
    m_dir.makeDirectory("sub");
    std::string const nested = m_dir.touch("sub/nested.json");
    m_dir.makeDirectory("folder.json");
    EXPECT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_EQ(keysOf(m_library->getJsonFiles()), (Names{top, m_dir.path()}));
    EXPECT_FALSE(m_library->getJsonFiles().contains(nested));
}

TEST_F(DmLibraryJsonFiles, FileKeysAreInLexicallyNormalForm) {
    m_dir.touch("a.json");
    std::string const given = m_dir.path() + "/./";
    EXPECT_TRUE(m_library->cacheJsonFilenamesForLoad(given));
    std::string const normal = (fs::path(m_dir.path()) / "a.json").lexically_normal().string();
    EXPECT_EQ(keysOf(m_library->getJsonFiles()), (Names{normal, given}));
}

TEST_F(DmLibraryJsonFiles, FileKeysOfADottedDirectoryAreInLexicallyNormalForm) {
    m_dir.makeDirectory("sub");
    m_dir.touch("a.json");
    std::string const given = m_dir.path() + "/sub/..";
    EXPECT_TRUE(m_library->cacheJsonFilenamesForLoad(given));
    EXPECT_TRUE(m_library->getJsonFiles().contains(m_dir.file("a.json")));
    EXPECT_TRUE(m_library->getJsonFiles().contains(given));
}

TEST_F(DmLibraryJsonFiles, ListingAKnownDirectoryAgainIsFalse) {
    m_dir.touch("a.json");
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    m_dir.touch("b.json");
    EXPECT_FALSE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_FALSE(m_library->getJsonFiles().contains(m_dir.file("b.json")));
}

TEST_F(DmLibraryJsonFiles, DirectoryWithoutJsonFilesIsFalseEachTimeAndNotRemembered) {
    m_dir.touch("notes.txt");
    m_dir.makeDirectory("sub");
    EXPECT_FALSE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_FALSE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_TRUE(m_library->getJsonFiles().empty());
}

TEST_F(DmLibraryJsonFiles, EmptyDirectoryIsListedAgainAndFindsFilesMadeInBetween) {
    EXPECT_FALSE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    std::string const a = m_dir.touch("a.json");
    EXPECT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_EQ(keysOf(m_library->getJsonFiles()), (Names{a, m_dir.path()}));
}

TEST_F(DmLibraryJsonFiles, DirectoryWhoseFilesAreAllKnownIsNotRemembered) {
    std::string const a = m_dir.touch("a.json");
    m_library->setJsonFileAsLoaded(a);
    EXPECT_FALSE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_EQ(keysOf(m_library->getJsonFiles()), (Names{a}));
    // Listing leaves a known file's value alone.
    EXPECT_TRUE(m_library->isJsonFileLoaded(a));
}

TEST_F(DmLibraryJsonFiles, MissingDirectoryIsFalse) {
    EXPECT_FALSE(m_library->cacheJsonFilenamesForLoad(m_dir.file("missing")));
    EXPECT_TRUE(m_library->getJsonFiles().empty());
}

TEST_F(DmLibraryJsonFiles, FileInsteadOfADirectoryIsFalse) {
    std::string const a = m_dir.touch("a.json");
    EXPECT_FALSE(m_library->cacheJsonFilenamesForLoad(a));
    EXPECT_TRUE(m_library->getJsonFiles().empty());
}

TEST_F(DmLibraryJsonFiles, EmptyDirectoryNameIsFalse) {
    EXPECT_FALSE(m_library->cacheJsonFilenamesForLoad(""));
    EXPECT_TRUE(m_library->getJsonFiles().empty());
}

TEST_F(DmLibraryJsonFiles, FileLoadedBeforeItsDirectoryIsListedKeepsItsPlaceAndValue) {
    std::string const a = m_dir.touch("a.json");
    std::string const b = m_dir.touch("b.json");
    m_library->setJsonFileAsLoaded(a);
    EXPECT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    auto const& table = m_library->getJsonFiles();
    EXPECT_EQ(keysOf(table), (Names{a, b, m_dir.path()}));
    EXPECT_TRUE(table.at(a));
    EXPECT_FALSE(table.at(b));
}

// ---------------------------------------------------------------------------
// isJsonFileLoaded and setJsonFileAsLoaded

TEST_F(DmLibraryJsonFiles, UnknownFileIsNotLoaded) {
    EXPECT_FALSE(m_library->isJsonFileLoaded(m_dir.file("a.json")));
}

TEST_F(DmLibraryJsonFiles, ListedFileIsNotLoadedUntilMarked) {
    std::string const a = m_dir.touch("a.json");
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_FALSE(m_library->isJsonFileLoaded(a));
    m_library->setJsonFileAsLoaded(a);
    EXPECT_TRUE(m_library->isJsonFileLoaded(a));
    EXPECT_EQ(m_library->getJsonFiles().size(), 2u);
}

TEST_F(DmLibraryJsonFiles, SetJsonFileAsLoadedAddsAnUnknownName) {
    m_library->setJsonFileAsLoaded("/graphs/a.json");
    EXPECT_TRUE(m_library->isJsonFileLoaded("/graphs/a.json"));
    EXPECT_EQ(keysOf(m_library->getJsonFiles()), (Names{"/graphs/a.json"}));
}

TEST_F(DmLibraryJsonFiles, SetJsonFileAsLoadedTakesTheNameAsItIs) {
    m_library->setJsonFileAsLoaded("/graphs/./a.json");
    EXPECT_TRUE(m_library->isJsonFileLoaded("/graphs/./a.json"));
    EXPECT_FALSE(m_library->isJsonFileLoaded("/graphs/a.json"));
}

TEST_F(DmLibraryJsonFiles, SetJsonFileAsLoadedWithTheEmptyNameAddsNoKey) {
    m_library->setJsonFileAsLoaded("");
    EXPECT_TRUE(m_library->getJsonFiles().empty());
    EXPECT_FALSE(m_library->isJsonFileLoaded(""));
}

TEST_F(DmLibraryJsonFiles, ListedDirectoryCountsAsLoaded) {
    m_dir.touch("a.json");
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_TRUE(m_library->isJsonFileLoaded(m_dir.path()));
}

// ---------------------------------------------------------------------------
// isJsonFilenameCachedForLoad

TEST_F(DmLibraryJsonFiles, ListedFileIsCachedAndKnown) {
    std::string const a = m_dir.touch("a.json");
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_EQ(m_library->isJsonFilenameCachedForLoad(a), Cached(true, true));
}

TEST_F(DmLibraryJsonFiles, FileMadeAfterTheListingCountsAsMissing) {
    m_dir.touch("a.json");
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    std::string const late = m_dir.touch("late.json");
    EXPECT_EQ(m_library->isJsonFilenameCachedForLoad(late), Cached(true, false));
}

TEST_F(DmLibraryJsonFiles, AbsentFileOfAListedDirectoryCountsAsMissing) {
    m_dir.touch("a.json");
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_EQ(m_library->isJsonFilenameCachedForLoad(m_dir.file("other.json")), Cached(true, false));
    EXPECT_EQ(m_library->isJsonFilenameCachedForLoad(m_dir.file("notes.txt")), Cached(true, false));
}

TEST_F(DmLibraryJsonFiles, FileOfAnUnlistedDirectoryIsNotCached) {
    std::string const a = m_dir.touch("a.json");
    EXPECT_EQ(m_library->isJsonFilenameCachedForLoad(a), Cached(false, false));
}

TEST_F(DmLibraryJsonFiles, FileOfADirectoryWithoutJsonFilesIsNotCached) {
    m_dir.touch("notes.txt");
    ASSERT_FALSE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_EQ(m_library->isJsonFilenameCachedForLoad(m_dir.file("notes.txt")), Cached(false, false));
}

TEST_F(DmLibraryJsonFiles, LoadedFileIsCachedWithoutAListing) {
    m_library->setJsonFileAsLoaded("/graphs/a.json");
    EXPECT_EQ(m_library->isJsonFilenameCachedForLoad("/graphs/a.json"), Cached(true, true));
    EXPECT_EQ(m_library->isJsonFilenameCachedForLoad("/graphs/b.json"), Cached(false, false));
}

TEST_F(DmLibraryJsonFiles, FileOfASubdirectoryOfAListedDirectoryIsNotCached) {
    m_dir.touch("a.json");
    m_dir.makeDirectory("sub");
    std::string const nested = m_dir.touch("sub/nested.json");
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_EQ(m_library->isJsonFilenameCachedForLoad(nested), Cached(false, false));
}
