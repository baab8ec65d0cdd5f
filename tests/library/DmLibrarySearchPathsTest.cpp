// The search paths of a library, and what of the asset setup survives reset.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolver.h>
#include <KestoDM/assets/DmAssetResolverFilePaths.h>
#include <KestoDM/assets/DmAssetResolverRegistry.h>
#include <KestoDM/library/DmLibrary.h>

#include "assets/AssetTestSupport.h"

#include <gtest/gtest.h>

#include <boost/filesystem.hpp>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::AssetDir;

namespace {

class DmLibrarySearchPaths : public testing::Test {
protected:
    std::vector<std::string> searchPaths() const {
        std::vector<std::string> out;
        auto const paths = m_library->getURISearchPaths();
        if (paths) {
            for (String const& path : *paths) {
                out.push_back(path.str());
            }
        }
        return out;
    }

    std::shared_ptr<DmAssetReference> resolve(std::string const& spec) {
        auto reference = DmAssetReference::newAssetReference(spec);
        m_library->resolveAssetReference(reference, KestoTest::contextFor(m_library));
        return reference;
    }

    std::shared_ptr<DmLibrary> m_library = KestoTest::newTestLibrary();
    AssetDir m_dir;
};

} // namespace

TEST_F(DmLibrarySearchPaths, NewLibraryHasNoSearchPaths) {
    ASSERT_NE(m_library->getURISearchPaths(), nullptr);
    EXPECT_TRUE(m_library->getURISearchPaths()->empty());
}

TEST_F(DmLibrarySearchPaths, SearchPathsAreTheFilePathsResolversOwn) {
    auto const resolver = std::dynamic_pointer_cast<DmAssetResolverFilePaths>(
        m_library->getAssetResolverRegistry()->find("halvern"));
    ASSERT_NE(resolver, nullptr);
    EXPECT_EQ(m_library->getURISearchPaths(), resolver->getSearchPaths());
}

TEST_F(DmLibrarySearchPaths, AddedPathIsStoredCanonical) {
    m_dir.makeDirectory("a/b");
    EXPECT_TRUE(m_library->addURISearchPath(m_dir.path() + "/a/./b/../b/"));
    EXPECT_EQ(searchPaths(), (std::vector<std::string>{m_dir.file("a/b")}));
}

TEST_F(DmLibrarySearchPaths, RelativePathCountsFromTheCurrentDirectory) {
    m_dir.makeDirectory("a");
    auto const previous = boost::filesystem::current_path();
    boost::filesystem::current_path(m_dir.path());
    bool const added = m_library->addURISearchPath("a");
    boost::filesystem::current_path(previous);
    EXPECT_TRUE(added);
    EXPECT_EQ(searchPaths(), (std::vector<std::string>{m_dir.file("a")}));
}

TEST_F(DmLibrarySearchPaths, MissingPathIsRefusedAndNotAdded) {
    EXPECT_FALSE(m_library->addURISearchPath(m_dir.file("missing")));
    EXPECT_FALSE(m_library->addURISearchPath(""));
    EXPECT_TRUE(searchPaths().empty());
}

TEST_F(DmLibrarySearchPaths, PathsKeepTheOrderOfAdditionAndDuplicates) {
    m_dir.makeDirectory("b");
    m_dir.makeDirectory("a");
    EXPECT_TRUE(m_library->addURISearchPath(m_dir.file("b")));
    EXPECT_TRUE(m_library->addURISearchPath(m_dir.file("a")));
    EXPECT_TRUE(m_library->addURISearchPath(m_dir.file("b")));
    EXPECT_EQ(searchPaths(), (std::vector<std::string>{m_dir.file("b"), m_dir.file("a"), m_dir.file("b")}));
}

TEST_F(DmLibrarySearchPaths, SearchPathAddedBeforeResetIsStillInForce) {
    std::string const file = m_dir.touch("search/a.json");
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("search")));
    ASSERT_TRUE(m_library->reset());
    EXPECT_EQ(searchPaths(), (std::vector<std::string>{m_dir.file("search")}));
    auto const reference = resolve("halvern:a.json");
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getFilePath(), file);
}

TEST_F(DmLibrarySearchPaths, ResourceFilePathsAreEmptyAfterResetWhileSearchPathsStay) {
    m_dir.makeDirectory("search");
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("search")));
    m_library->addResourceFilePath(m_dir.file("resources"));
    ASSERT_TRUE(m_library->reset());
    EXPECT_TRUE(m_library->getResourceFilePaths().empty());
    EXPECT_EQ(searchPaths().size(), 1u);
}

TEST_F(DmLibrarySearchPaths, ResolversSurviveResetAsTheSameObjects) {
    auto const registry = m_library->getAssetResolverRegistry();
    auto const before = registry->getResolvers();
    auto const host = std::make_shared<KestoTest::HostResolver>("archive", DmAssetResolver::kAccessFile);
    ASSERT_TRUE(m_library->registerAssetResolver(host));
    ASSERT_TRUE(m_library->reset());
    EXPECT_EQ(m_library->getAssetResolverRegistry(), registry);
    auto const& after = registry->getResolvers();
    ASSERT_EQ(after.size(), 4u);
    EXPECT_EQ(after[0], before[0]);
    EXPECT_EQ(after[1], before[1]);
    EXPECT_EQ(after[2], before[2]);
    EXPECT_EQ(after[3], host);
}

TEST_F(DmLibrarySearchPaths, ResetTwiceKeepsTheSearchPaths) {
    m_dir.makeDirectory("search");
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("search")));
    ASSERT_TRUE(m_library->reset());
    ASSERT_TRUE(m_library->reset());
    EXPECT_EQ(searchPaths(), (std::vector<std::string>{m_dir.file("search")}));
}

TEST_F(DmLibrarySearchPaths, ResourceFilePathsKeepOrderAndDuplicates) {
    EXPECT_EQ(m_library->addResourceFilePath("/r/b"), DmStatus::kSuccess);
    EXPECT_EQ(m_library->addResourceFilePath("/r/a"), DmStatus::kSuccess);
    EXPECT_EQ(m_library->addResourceFilePath("/r/b"), DmStatus::kSuccess);
    EXPECT_EQ(m_library->getResourceFilePaths(), (std::vector<std::string>{"/r/b", "/r/a", "/r/b"}));
    EXPECT_EQ(m_library->clearResourceFilePaths(), DmStatus::kSuccess);
    EXPECT_TRUE(m_library->getResourceFilePaths().empty());
}
