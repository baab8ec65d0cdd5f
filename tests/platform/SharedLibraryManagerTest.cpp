#include <KestoDM/platform/BaContext.h>
#include <KestoDM/platform/BaSharedLibraryManager.h>
#include <KestoDM/platform/BaSharedLibraryUtils.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

using Kesto::BaContext;
using Kesto::BaSharedLibraryManager;
using Kesto::BaSharedLibraryUtils;

namespace {

using PluginFunction = int (*)();

std::string const kPluginDir = KESTODM_TEST_PLUGIN_DIR;

int call(void* address) {
    return reinterpret_cast<PluginFunction>(address)();
}

} // namespace

TEST(BaSharedLibraryUtils, GivesPlatformPrefixAndExtension) {
    EXPECT_EQ(BaSharedLibraryUtils::getLibraryPrefix(), "lib");
    EXPECT_EQ(BaSharedLibraryUtils::getLibraryExtension(), ".so");
}

TEST(BaSharedLibraryManager, StartsWithNothingLoaded) {
    BaSharedLibraryManager const manager;
    EXPECT_TRUE(manager.getLoadedLibraries().empty());
    EXPECT_EQ(manager.getSymbolAddress("kestoTestPluginAnswer"), nullptr);
    EXPECT_EQ(manager.getLastError(), "");
}

TEST(BaSharedLibraryManager, LoadsByBareName) {
    BaSharedLibraryManager manager;
    ASSERT_TRUE(manager.loadSharedLibrary("KestoTestPlugin", kPluginDir)) << manager.getLastError();
    ASSERT_EQ(manager.getLoadedLibraries().size(), 1u);
    EXPECT_EQ(manager.getLoadedLibraries()[0], kPluginDir + "/libKestoTestPlugin.so");
    void* const answer = manager.getSymbolAddress("kestoTestPluginAnswer");
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(call(answer), 42);
}

TEST(BaSharedLibraryManager, LoadsByFullFileName) {
    BaSharedLibraryManager manager;
    ASSERT_TRUE(manager.loadSharedLibrary("libKestoTestPlugin.so", kPluginDir + "/"))
        << manager.getLastError();
    ASSERT_EQ(manager.getLoadedLibraries().size(), 1u);
    EXPECT_EQ(manager.getLoadedLibraries()[0], kPluginDir + "/libKestoTestPlugin.so");
    void* const other = manager.getSymbolAddress("kestoTestPluginOnlyInFirst");
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(call(other), 1);
}

TEST(BaSharedLibraryManager, MissingLibraryFailsWithMessage) {
    BaSharedLibraryManager manager;
    EXPECT_FALSE(manager.loadSharedLibrary("KestoNoSuchPlugin", kPluginDir));
    EXPECT_FALSE(manager.getLastError().empty());
    EXPECT_TRUE(manager.getLoadedLibraries().empty());
}

TEST(BaSharedLibraryManager, MissingLibraryOnSearchPathFails) {
    BaSharedLibraryManager manager;
    EXPECT_FALSE(manager.loadSharedLibrary("KestoNoSuchPlugin", ""));
    EXPECT_NE(manager.getLastError().find("libKestoNoSuchPlugin.so"), std::string::npos)
        << manager.getLastError();
}

TEST(BaSharedLibraryManager, SuccessClearsLastError) {
    BaSharedLibraryManager manager;
    EXPECT_FALSE(manager.loadSharedLibrary("KestoNoSuchPlugin", kPluginDir));
    EXPECT_TRUE(manager.loadSharedLibrary("KestoTestPlugin", kPluginDir));
    EXPECT_EQ(manager.getLastError(), "");
}

TEST(BaSharedLibraryManager, MissingSymbolGivesNull) {
    BaSharedLibraryManager manager;
    ASSERT_TRUE(manager.loadSharedLibrary("KestoTestPlugin", kPluginDir));
    EXPECT_EQ(manager.getSymbolAddress("kestoTestPluginNoSuchSymbol"), nullptr);
}

TEST(BaSharedLibraryManager, LoadingTwiceKeepsOneEntry) {
    BaSharedLibraryManager manager;
    ASSERT_TRUE(manager.loadSharedLibrary("KestoTestPlugin", kPluginDir));
    EXPECT_TRUE(manager.loadSharedLibrary("KestoTestPlugin", kPluginDir));
    EXPECT_TRUE(manager.loadSharedLibrary("libKestoTestPlugin.so", kPluginDir));
    EXPECT_EQ(manager.getLoadedLibraries().size(), 1u);
    EXPECT_EQ(call(manager.getSymbolAddress("kestoTestPluginAnswer")), 42);
}

TEST(BaSharedLibraryManager, SymbolLookupFollowsLoadOrder) {
    {
        BaSharedLibraryManager manager;
        ASSERT_TRUE(manager.loadSharedLibrary("KestoTestPlugin", kPluginDir));
        ASSERT_TRUE(manager.loadSharedLibrary("KestoTestPluginSecond", kPluginDir));
        EXPECT_EQ(call(manager.getSymbolAddress("kestoTestPluginAnswer")), 42);
        EXPECT_EQ(call(manager.getSymbolAddress("kestoTestPluginOnlyInSecond")), 2);
        ASSERT_EQ(manager.getLoadedLibraries().size(), 2u);
        EXPECT_EQ(manager.getLoadedLibraries()[1], kPluginDir + "/libKestoTestPluginSecond.so");
    }
    {
        BaSharedLibraryManager manager;
        ASSERT_TRUE(manager.loadSharedLibrary("KestoTestPluginSecond", kPluginDir));
        ASSERT_TRUE(manager.loadSharedLibrary("KestoTestPlugin", kPluginDir));
        EXPECT_EQ(call(manager.getSymbolAddress("kestoTestPluginAnswer")), 43);
        EXPECT_EQ(call(manager.getSymbolAddress("kestoTestPluginOnlyInFirst")), 1);
    }
}

TEST(BaSharedLibraryManager, ManagersShareLoadedLibrarySafely) {
    auto first = std::make_unique<BaSharedLibraryManager>();
    BaSharedLibraryManager second;
    ASSERT_TRUE(first->loadSharedLibrary("KestoTestPlugin", kPluginDir));
    ASSERT_TRUE(second.loadSharedLibrary("KestoTestPlugin", kPluginDir));
    first.reset();
    // The loader counts opens, so the second manager's copy is still mapped.
    EXPECT_EQ(call(second.getSymbolAddress("kestoTestPluginAnswer")), 42);
}

TEST(BaContext, MakesItsOwnManager) {
    BaContext const context;
    EXPECT_NE(context.getSharedLibraryManager(), nullptr);
}

TEST(BaContext, UsesGivenManager) {
    auto const manager = std::make_shared<BaSharedLibraryManager>();
    BaContext const context(manager);
    EXPECT_EQ(context.getSharedLibraryManager(), manager);
}

TEST(BaContext, ReplacesNullManager) {
    BaContext const context(nullptr);
    EXPECT_NE(context.getSharedLibraryManager(), nullptr);
}
