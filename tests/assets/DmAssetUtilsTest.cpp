// The steps of a file search: the path adjustment and the three tries.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolverContext.h>
#include <KestoDM/assets/DmAssetUtils.h>
#include <KestoDM/library/DmLibrary.h>

#include "assets/AssetTestSupport.h"
#include "assets/DmAssetFileSystemProbe.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace Kesto;
using KestoTest::AssetDir;
using KestoTest::contextFor;
using KestoTest::referrerAt;

namespace {

std::string adjusted(std::string path) {
    DmAssetUtils::adjustURIPath(path);
    return path;
}

class DmAssetUtilsTries : public testing::Test {
protected:
    void SetUp() override { Internal::resetAssetFileSystemCallCount(); }

    std::shared_ptr<DmLibrary> m_library = KestoTest::newTestLibrary();
    AssetDir m_dir;
    std::shared_ptr<DmAssetReference> m_reference = DmAssetReference::newAssetReference("halvern:a.json");
};

} // namespace

// ---------------------------------------------------------------------------
// adjustURIPath

TEST(DmAssetUtilsAdjustURIPath, DropsTheSlashBeforeADriveLetter) {
    EXPECT_EQ(adjusted("/C:/a.json"), "C:/a.json");
    EXPECT_EQ(adjusted("/d:/x/a.json"), "d:/x/a.json");
}

TEST(DmAssetUtilsAdjustURIPath, KeepsTheSlashOfARootedPath) {
    EXPECT_EQ(adjusted("/home/a.json"), "/home/a.json");
    EXPECT_EQ(adjusted("/a.json"), "/a.json");
    EXPECT_EQ(adjusted("/C/a.json"), "/C/a.json");
    EXPECT_EQ(adjusted("/1:/a.json"), "/1:/a.json");
}

TEST(DmAssetUtilsAdjustURIPath, LeavesRelativeAndEmptyPathsAlone) {
    EXPECT_EQ(adjusted("a/b.json"), "a/b.json");
    EXPECT_EQ(adjusted("C:/a.json"), "C:/a.json");
    EXPECT_EQ(adjusted(""), "");
    EXPECT_EQ(adjusted("/"), "/");
}

// ---------------------------------------------------------------------------
// updateAssetFromAbsolutePath

TEST_F(DmAssetUtilsTries, AbsoluteTryOfARelativePathChangesNothing) {
    m_dir.touch("a.json");
    EXPECT_FALSE(DmAssetUtils::updateAssetFromAbsolutePath(m_reference, contextFor(m_library), "a.json"));
    EXPECT_EQ(m_reference->getResolveStatus(), DmAssetReference::kUnresolved);
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 0u);
}

TEST_F(DmAssetUtilsTries, AbsoluteTryFindsAnExistingFile) {
    std::string const file = m_dir.touch("a.json");
    EXPECT_TRUE(DmAssetUtils::updateAssetFromAbsolutePath(m_reference, contextFor(m_library), file));
    EXPECT_EQ(m_reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(m_reference->getFilePath(), file);
    EXPECT_EQ(m_reference->getAssetIdentity(), "file:" + file);
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 1u);
}

TEST_F(DmAssetUtilsTries, AbsoluteTryWorksWithoutAContext) {
    std::string const file = m_dir.touch("a.json");
    EXPECT_TRUE(DmAssetUtils::updateAssetFromAbsolutePath(m_reference, nullptr, file));
    EXPECT_EQ(m_reference->getFilePath(), file);
}

TEST_F(DmAssetUtilsTries, FailedTryIsFileNotFound) {
    EXPECT_FALSE(
        DmAssetUtils::updateAssetFromAbsolutePath(m_reference, contextFor(m_library), m_dir.file("a.json")));
    EXPECT_EQ(m_reference->getResolveStatus(), DmAssetReference::kFileNotFound);
    EXPECT_FALSE(m_reference->hasFilePath());
}

TEST_F(DmAssetUtilsTries, TryGivesTheCanonicalPath) {
    std::string const file = m_dir.touch("a.json");
    m_dir.makeDirectory("sub");
    EXPECT_TRUE(
        DmAssetUtils::updateAssetFromAbsolutePath(m_reference, nullptr, m_dir.path() + "/sub/../a.json"));
    EXPECT_EQ(m_reference->getFilePath(), file);
}

TEST_F(DmAssetUtilsTries, DirectoryListedInTheTableAnswersWithoutTheFileSystem) {
    std::string const file = m_dir.touch("a.json");
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_TRUE(DmAssetUtils::updateAssetFromAbsolutePath(m_reference, contextFor(m_library), file));
    EXPECT_EQ(m_reference->getFilePath(), file);
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 0u);
    auto const missing = DmAssetReference::newAssetReference("halvern:b.json");
    EXPECT_FALSE(
        DmAssetUtils::updateAssetFromAbsolutePath(missing, contextFor(m_library), m_dir.file("b.json")));
    EXPECT_EQ(missing->getResolveStatus(), DmAssetReference::kFileNotFound);
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 0u);
}

TEST_F(DmAssetUtilsTries, WithoutALibraryTheFileSystemIsAsked) {
    std::string const file = m_dir.touch("a.json");
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    EXPECT_TRUE(DmAssetUtils::updateAssetFromAbsolutePath(
        m_reference, DmAssetResolverContext::newAssetResolverContext(), file));
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 1u);
}

// ---------------------------------------------------------------------------
// updateAssetFromRelativePath

TEST_F(DmAssetUtilsTries, RelativeTryWithoutAContextChangesNothing) {
    EXPECT_FALSE(DmAssetUtils::updateAssetFromRelativePath(m_reference, nullptr, "a.json"));
    EXPECT_EQ(m_reference->getResolveStatus(), DmAssetReference::kUnresolved);
}

TEST_F(DmAssetUtilsTries, RelativeTryWithoutARelativeReferenceChangesNothing) {
    m_dir.touch("a.json");
    EXPECT_FALSE(DmAssetUtils::updateAssetFromRelativePath(m_reference, contextFor(m_library), "a.json"));
    EXPECT_EQ(m_reference->getResolveStatus(), DmAssetReference::kUnresolved);
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 0u);
}

TEST_F(DmAssetUtilsTries, RelativeTryNeedsAReferrerWithAFile) {
    m_dir.touch("a.json");
    auto const unresolved = DmAssetReference::newAssetReference("halvern:main.json");
    EXPECT_FALSE(
        DmAssetUtils::updateAssetFromRelativePath(m_reference, contextFor(m_library, unresolved), "a.json"));
    EXPECT_EQ(m_reference->getResolveStatus(), DmAssetReference::kUnresolved);
}

TEST_F(DmAssetUtilsTries, RelativeTryLooksNextToTheReferringFile) {
    std::string const file = m_dir.touch("graphs/sub/a.json");
    auto const context = contextFor(m_library, referrerAt(m_dir.file("graphs/main.json")));
    EXPECT_TRUE(DmAssetUtils::updateAssetFromRelativePath(m_reference, context, "sub/a.json"));
    EXPECT_EQ(m_reference->getFilePath(), file);
}

// ---------------------------------------------------------------------------
// updateAssetFromSearchPaths

TEST_F(DmAssetUtilsTries, NoSearchPathsMeanNoTry) {
    BaIndexedVector<String> const none;
    EXPECT_FALSE(
        DmAssetUtils::updateAssetFromSearchPaths(m_reference, contextFor(m_library), none, "a.json"));
    EXPECT_EQ(m_reference->getResolveStatus(), DmAssetReference::kUnresolved);
}

TEST_F(DmAssetUtilsTries, SearchPathsAreTriedInOrderOfAddition) {
    std::string const second = m_dir.touch("b/a.json");
    m_dir.touch("c/a.json");
    m_dir.makeDirectory("a");
    BaIndexedVector<String> paths;
    paths.push_back(String(m_dir.file("c")));
    paths.push_back(String(m_dir.file("a")));
    paths.push_back(String(m_dir.file("b")));
    EXPECT_TRUE(
        DmAssetUtils::updateAssetFromSearchPaths(m_reference, contextFor(m_library), paths, "a.json"));
    EXPECT_EQ(m_reference->getFilePath(), m_dir.file("c/a.json"));

    BaIndexedVector<String> later;
    later.push_back(String(m_dir.file("a")));
    later.push_back(String(m_dir.file("b")));
    later.push_back(String(m_dir.file("c")));
    EXPECT_TRUE(
        DmAssetUtils::updateAssetFromSearchPaths(m_reference, contextFor(m_library), later, "a.json"));
    EXPECT_EQ(m_reference->getFilePath(), second);
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 3u);
}

TEST_F(DmAssetUtilsTries, SearchEndsWithTheLastTrysAnswer) {
    m_dir.makeDirectory("a");
    BaIndexedVector<String> paths;
    paths.push_back(String(m_dir.file("a")));
    paths.push_back(String(m_dir.file("a")));
    EXPECT_FALSE(
        DmAssetUtils::updateAssetFromSearchPaths(m_reference, contextFor(m_library), paths, "a.json"));
    EXPECT_EQ(m_reference->getResolveStatus(), DmAssetReference::kFileNotFound);
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 2u);
}

TEST_F(DmAssetUtilsTries, RootedPathCountsFromEachSearchPath) {
    std::string const file = m_dir.touch("s/a.json");
    BaIndexedVector<String> paths;
    paths.push_back(String(m_dir.file("s")));
    EXPECT_TRUE(
        DmAssetUtils::updateAssetFromSearchPaths(m_reference, contextFor(m_library), paths, "/a.json"));
    EXPECT_EQ(m_reference->getFilePath(), file);
}

TEST_F(DmAssetUtilsTries, RootedPathCountsFromAListedSearchPathAlike) {
    std::string const file = m_dir.touch("s/a.json");
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.file("s")));
    BaIndexedVector<String> paths;
    paths.push_back(String(m_dir.file("s")));
    EXPECT_TRUE(
        DmAssetUtils::updateAssetFromSearchPaths(m_reference, contextFor(m_library), paths, "/a.json"));
    EXPECT_EQ(m_reference->getFilePath(), file);
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 0u);
}
