// Resolution through a library on real directories: the whole search order.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolver.h>
#include <KestoDM/assets/DmAssetResolverContext.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/InputStream.h>

#include "assets/AssetTestSupport.h"
#include "assets/DmAssetFileSystemProbe.h"

#include <gtest/gtest.h>

#include <boost/filesystem.hpp>

#include <memory>
#include <sstream>
#include <string>

using namespace Kesto;
using KestoTest::AssetDir;
using KestoTest::contextFor;
using KestoTest::referrerAt;

namespace {

class DmAssetResolution : public testing::Test {
protected:
    void SetUp() override { Internal::resetAssetFileSystemCallCount(); }

    std::shared_ptr<DmAssetReference> resolve(std::string const& spec,
                                              std::shared_ptr<DmAssetReference> const& referrer = nullptr) {
        auto reference = DmAssetReference::newAssetReference(spec);
        m_library->resolveAssetReference(reference, contextFor(m_library, referrer));
        return reference;
    }

    std::shared_ptr<DmLibrary> m_library = KestoTest::newTestLibrary();
    AssetDir m_dir;
};

} // namespace

// ---------------------------------------------------------------------------
// Absolute paths

TEST_F(DmAssetResolution, HalvernSpecOfAnAbsolutePathIsFound) {
    std::string const file = m_dir.touch("a.json");
    auto const reference = resolve("halvern:" + file);
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getFilePath(), file);
    EXPECT_EQ(reference->getAssetIdentity(), "file:" + file);
    EXPECT_EQ(reference->getBasePath(), m_dir.path());
    EXPECT_EQ(reference->getFilename(), "a.json");
}

TEST_F(DmAssetResolution, LongFormOfARootedPathIsTriedAsAnAbsolutePath) {
    std::string const file = m_dir.touch("a.json");
    ASSERT_EQ(file.front(), '/');
    auto const reference = resolve("file://" + file); // "file:///tmp/.../a.json"
    ASSERT_EQ(reference->getAssetSpec().compare(0, 8, "file:///"), 0);
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getFilePath(), file);
    EXPECT_EQ(reference->getResolver()->schemeKey(), "halvern");
}

TEST_F(DmAssetResolution, ShortFileFormOfAnAbsolutePathIsFound) {
    std::string const file = m_dir.touch("a.json");
    auto const reference = resolve("file:" + file);
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getResolver()->schemeKey(), "file");
    EXPECT_EQ(reference->getFilePath(), file);
}

TEST_F(DmAssetResolution, MissingAbsolutePathIsFileNotFoundForBothFileResolvers) {
    EXPECT_EQ(resolve("halvern:" + m_dir.file("no.json"))->getResolveStatus(),
              DmAssetReference::kFileNotFound);
    EXPECT_EQ(resolve("file:" + m_dir.file("no.json"))->getResolveStatus(), DmAssetReference::kFileNotFound);
}

// ---------------------------------------------------------------------------
// Relative to the referring file

TEST_F(DmAssetResolution, RelativePathIsFoundNextToTheReferringFile) {
    std::string const file = m_dir.touch("graphs/lib/b.json");
    auto const referrer = referrerAt(m_dir.file("graphs/main.json"));
    auto const halvern = resolve("halvern:lib/b.json", referrer);
    EXPECT_EQ(halvern->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(halvern->getFilePath(), file);
    auto const shortForm = resolve("file:lib/b.json", referrer);
    EXPECT_EQ(shortForm->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(shortForm->getFilePath(), file);
}

TEST_F(DmAssetResolution, ReferringFileComesBeforeTheSearchPaths) {
    m_dir.touch("graphs/b.json");
    m_dir.touch("search/b.json");
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("search")));
    auto const reference = resolve("halvern:b.json", referrerAt(m_dir.file("graphs/main.json")));
    EXPECT_EQ(reference->getFilePath(), m_dir.file("graphs/b.json"));
}

TEST_F(DmAssetResolution, AbsolutePathComesBeforeTheReferringFile) {
    std::string const absolute = m_dir.touch("a.json");
    m_dir.touch(std::string("graphs") + absolute);
    auto const reference = resolve("halvern:" + absolute, referrerAt(m_dir.file("graphs/main.json")));
    EXPECT_EQ(reference->getFilePath(), absolute);
}

// ---------------------------------------------------------------------------
// Search paths

TEST_F(DmAssetResolution, SearchPathsAreTriedInTheOrderOfAddition) {
    m_dir.makeDirectory("one");
    std::string const inTwo = m_dir.touch("two/a.json");
    m_dir.touch("three/a.json");
    std::string const onlyInThree = m_dir.touch("three/b.json");
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("one")));
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("two")));
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("three")));
    EXPECT_EQ(resolve("halvern:a.json")->getFilePath(), inTwo);
    EXPECT_EQ(resolve("halvern:b.json")->getFilePath(), onlyInThree);
    auto const missing = resolve("halvern:c.json");
    EXPECT_EQ(missing->getResolveStatus(), DmAssetReference::kFileNotFound);
    EXPECT_FALSE(missing->hasFilePath());
}

TEST_F(DmAssetResolution, SearchPathsTakeSubdirectoriesOfTheSpec) {
    std::string const file = m_dir.touch("search/sub/a.json");
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("search")));
    EXPECT_EQ(resolve("halvern:sub/a.json")->getFilePath(), file);
}

TEST_F(DmAssetResolution, LongFileFormUsesTheSearchPaths) {
    std::string const file = m_dir.touch("search/a.json");
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("search")));
    auto const reference = resolve("file:///a.json");
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getFilePath(), file);
    EXPECT_EQ(reference->getResolver()->schemeKey(), "halvern");
}

TEST_F(DmAssetResolution, LongFileFormWithADriveLetterLosesTheSlashBeforeIt) {
    // "/C:/a.json" becomes "C:/a.json", a relative path here, found in a search path.
    std::string const file = m_dir.touch("search/C:/a.json");
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("search")));
    auto const reference = resolve("file:///C:/a.json");
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getFilePath(), file);
}

TEST_F(DmAssetResolution, ShortFileFormNeverUsesTheSearchPaths) {
    m_dir.touch("search/a.json");
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("search")));
    auto const reference = resolve("file:a.json");
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kFileNotFound);
    EXPECT_EQ(reference->getResolver()->schemeKey(), "file");
}

TEST_F(DmAssetResolution, RelativeHalvernPathWithNothingToTryStaysResolvingFilePaths) {
    auto const reference = resolve("halvern:a.json");
    EXPECT_FALSE(reference->isResolved());
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolvingFilePaths);
}

TEST_F(DmAssetResolution, RelativeFilePathWithNothingToTryIsFileNotFound) {
    auto const reference = resolve("file:a.json");
    EXPECT_FALSE(reference->isResolved());
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kFileNotFound);
}

// ---------------------------------------------------------------------------
// The table of JSON files

TEST_F(DmAssetResolution, ListedSearchPathAnswersWithoutTheFileSystem) {
    std::string const file = m_dir.touch("search/a.json");
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("search")));
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.file("search")));
    Internal::resetAssetFileSystemCallCount();
    auto const reference = resolve("halvern:a.json");
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getFilePath(), file);
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 0u);
}

TEST_F(DmAssetResolution, FileMadeAfterTheListingStaysNotFoundUntilReset) {
    m_dir.touch("search/a.json");
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("search")));
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.file("search")));
    std::string const late = m_dir.touch("search/late.json");
    Internal::resetAssetFileSystemCallCount();
    auto const before = resolve("halvern:late.json");
    EXPECT_EQ(before->getResolveStatus(), DmAssetReference::kFileNotFound);
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 0u);

    ASSERT_TRUE(m_library->reset());
    auto const after = resolve("halvern:late.json");
    EXPECT_EQ(after->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(after->getFilePath(), late);
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 1u);
}

TEST_F(DmAssetResolution, AbsolutePathInAListedDirectoryIsFoundWithoutTheFileSystem) {
    std::string const file = m_dir.touch("a.json");
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.path()));
    // Gone from the disk, still in the table: the answer can only come from the table.
    boost::filesystem::remove(file);
    Internal::resetAssetFileSystemCallCount();
    auto const reference = resolve("halvern:" + file);
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getFilePath(), file);
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 0u);
}

TEST_F(DmAssetResolution, UnlistedDirectoryStillAsksTheFileSystem) {
    m_dir.touch("listed/a.json");
    std::string const file = m_dir.touch("other/b.json");
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(m_dir.file("listed")));
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("listed")));
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("other")));
    Internal::resetAssetFileSystemCallCount();
    auto const reference = resolve("halvern:b.json");
    EXPECT_EQ(reference->getFilePath(), file);
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 1u);
}

// ---------------------------------------------------------------------------
// Symbolic links

TEST_F(DmAssetResolution, LinkedFileResolvesToItsTarget) {
    std::string const target = m_dir.touch("real/a.json");
    std::string const link = m_dir.link(target, "a-link.json");
    auto const reference = resolve("halvern:" + link);
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getFilePath(), target);
}

TEST_F(DmAssetResolution, LinkedSearchPathIsStoredAsItsTarget) {
    std::string const file = m_dir.touch("real/a.json");
    std::string const link = m_dir.link(m_dir.file("real"), "linked");
    ASSERT_TRUE(m_library->addURISearchPath(link));
    EXPECT_EQ(m_library->getURISearchPaths()->at(0).str(), m_dir.file("real"));
    EXPECT_EQ(resolve("halvern:a.json")->getFilePath(), file);
}

TEST_F(DmAssetResolution, LinkedDirectoryListedInTheTableKeepsTheLinkedPath) {
    m_dir.touch("real/a.json");
    std::string const link = m_dir.link(m_dir.file("real"), "linked");
    ASSERT_TRUE(m_library->cacheJsonFilenamesForLoad(link));
    Internal::resetAssetFileSystemCallCount();
    auto const reference = resolve("halvern:" + link + "/a.json");
    EXPECT_EQ(reference->getFilePath(), link + "/a.json");
    EXPECT_EQ(Internal::assetFileSystemCallCount(), 0u);
}

TEST_F(DmAssetResolution, DanglingLinkIsFileNotFound) {
    std::string const link = m_dir.link(m_dir.file("nowhere.json"), "dangling.json");
    auto const reference = resolve("halvern:" + link);
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kFileNotFound);
}

// ---------------------------------------------------------------------------
// Streams

TEST_F(DmAssetResolution, StreamReferenceWithAnInputStreamIsResolved) {
    std::istringstream text("{}");
    StdInputStream input(text);
    auto const reference = std::make_shared<DmAssetReference>("stream:/graph", &input);
    EXPECT_TRUE(m_library->resolveAssetReference(reference, contextFor(m_library)));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getAssetIdentity(), "stream:/graph");
    EXPECT_EQ(reference->getResolver()->getAccessMode(), DmAssetResolver::kAccessInputStream);
}

TEST_F(DmAssetResolution, StreamReferenceWithoutAnInputStreamIsNoStream) {
    auto const reference = resolve("stream:/graph");
    EXPECT_FALSE(reference->isResolved());
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kNoStream);
}

// ---------------------------------------------------------------------------
// Resolvers of the host

TEST_F(DmAssetResolution, HostResolverUnderANewKeyTakesItsSpecs) {
    std::string const file = m_dir.touch("packed.json");
    auto const host =
        std::make_shared<KestoTest::HostResolver>("archive", DmAssetResolver::kAccessFile, file);
    ASSERT_TRUE(m_library->registerAssetResolver(host));
    auto const reference = resolve("archive:packed");
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getFilePath(), file);
    EXPECT_EQ(reference->getResolver(), host.get());
    EXPECT_EQ(resolve("halvern:" + file)->getResolver()->schemeKey(), "halvern");
}
