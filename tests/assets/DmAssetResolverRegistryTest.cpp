// The registry of a library's resolvers: registration, choice of a resolver, resolution.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolver.h>
#include <KestoDM/assets/DmAssetResolverFile.h>
#include <KestoDM/assets/DmAssetResolverFilePaths.h>
#include <KestoDM/assets/DmAssetResolverRegistry.h>
#include <KestoDM/assets/DmAssetResolverStream.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/InputStream.h>

#include "assets/AssetTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::HostResolver;

namespace {

std::vector<std::string> keysOf(DmAssetResolverRegistry const& registry) {
    std::vector<std::string> keys;
    for (auto const& resolver : registry.getResolvers()) {
        keys.push_back(resolver->schemeKey());
    }
    return keys;
}

class DmAssetResolverRegistryLibrary : public testing::Test {
protected:
    std::shared_ptr<DmLibrary> m_library = KestoTest::newTestLibrary();

    std::shared_ptr<DmAssetReference> resolve(std::string const& spec) {
        auto reference = DmAssetReference::newAssetReference(spec);
        m_library->resolveAssetReference(reference, KestoTest::contextFor(m_library));
        return reference;
    }
};

} // namespace

// ---------------------------------------------------------------------------
// Registration

TEST(DmAssetResolverRegistry, NewRegistryIsEmpty) {
    DmAssetResolverRegistry const registry;
    EXPECT_TRUE(registry.getResolvers().empty());
    EXPECT_EQ(registry.find("file"), nullptr);
}

TEST(DmAssetResolverRegistry, AddAppendsInOrderOfRegistration) {
    DmAssetResolverRegistry registry;
    EXPECT_TRUE(registry.add(std::make_shared<DmAssetResolverStream>()));
    EXPECT_TRUE(registry.add(std::make_shared<DmAssetResolverFile>()));
    EXPECT_EQ(keysOf(registry), (std::vector<std::string>{"stream", "file"}));
}

TEST(DmAssetResolverRegistry, FirstResolverOfAKeyWins) {
    DmAssetResolverRegistry registry;
    auto const first = std::make_shared<DmAssetResolverFile>();
    auto const second = std::make_shared<HostResolver>("file", DmAssetResolver::kAccessFile);
    ASSERT_TRUE(registry.add(first));
    EXPECT_FALSE(registry.add(second));
    EXPECT_EQ(registry.getResolvers().size(), 1u);
    EXPECT_EQ(registry.find("file"), first);
}

TEST(DmAssetResolverRegistry, AddOfNullChangesNothing) {
    DmAssetResolverRegistry registry;
    EXPECT_FALSE(registry.add(nullptr));
    EXPECT_TRUE(registry.getResolvers().empty());
}

TEST(DmAssetResolverRegistry, FindComparesKeysExactly) {
    DmAssetResolverRegistry registry;
    auto const file = std::make_shared<DmAssetResolverFile>();
    registry.add(file);
    EXPECT_EQ(registry.find("file"), file);
    EXPECT_EQ(registry.find("File"), nullptr);
    EXPECT_EQ(registry.find("file:"), nullptr);
    EXPECT_EQ(registry.find(""), nullptr);
}

// ---------------------------------------------------------------------------
// The library's resolvers

TEST_F(DmAssetResolverRegistryLibrary, LibraryRegistersItsThreeResolversInOrder) {
    auto const& registry = m_library->getAssetResolverRegistry();
    ASSERT_NE(registry, nullptr);
    EXPECT_EQ(keysOf(*registry), (std::vector<std::string>{"halvern", "file", "stream"}));
    auto const& resolvers = registry->getResolvers();
    EXPECT_NE(std::dynamic_pointer_cast<DmAssetResolverFilePaths>(resolvers[0]), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<DmAssetResolverFile>(resolvers[1]), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<DmAssetResolverStream>(resolvers[2]), nullptr);
}

TEST_F(DmAssetResolverRegistryLibrary, ConstLibraryReadsTheSameRegistry) {
    std::shared_ptr<DmLibrary const> const constLibrary = m_library;
    EXPECT_EQ(constLibrary->getAssetResolverRegistry(), m_library->getAssetResolverRegistry());
}

TEST_F(DmAssetResolverRegistryLibrary, SecondFileResolverLeavesTheFirstInPlace) {
    auto const builtIn = m_library->getAssetResolverRegistry()->find("file");
    auto const host = std::make_shared<HostResolver>("file", DmAssetResolver::kAccessFile, "/x/a.json");
    EXPECT_FALSE(m_library->registerAssetResolver(host));
    EXPECT_EQ(m_library->getAssetResolverRegistry()->find("file"), builtIn);
    EXPECT_EQ(m_library->getAssetResolverRegistry()->getResolvers().size(), 3u);
    auto const reference = resolve("file:a.json");
    EXPECT_EQ(reference->getResolver(), builtIn.get());
    EXPECT_EQ(host->calls(), 0);
}

TEST_F(DmAssetResolverRegistryLibrary, HostResolverUnderANewKeyResolvesItsSpecs) {
    auto const host = std::make_shared<HostResolver>("archive", DmAssetResolver::kAccessFile, "/x/a.json");
    EXPECT_TRUE(m_library->registerAssetResolver(host));
    EXPECT_EQ(m_library->getAssetResolverRegistry()->getResolvers().back(), host);
    auto const reference = resolve("archive:a.json");
    EXPECT_TRUE(reference->isResolved());
    EXPECT_EQ(reference->getResolver(), host.get());
    EXPECT_EQ(reference->getFilePath(), "/x/a.json");
    EXPECT_EQ(host->calls(), 1);
}

TEST_F(DmAssetResolverRegistryLibrary, HostResolverStatusIsTheAnswer) {
    auto const host = std::make_shared<HostResolver>("archive", DmAssetResolver::kAccessFile);
    m_library->registerAssetResolver(host);
    auto reference = DmAssetReference::newAssetReference("archive:a.json");
    EXPECT_FALSE(m_library->resolveAssetReference(reference, nullptr));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kFileNotFound);
    EXPECT_EQ(reference->getResolver(), host.get());
}

// ---------------------------------------------------------------------------
// Choosing a resolver

TEST_F(DmAssetResolverRegistryLibrary, LongFileFormGoesToTheFilePathsResolver) {
    auto const& registry = m_library->getAssetResolverRegistry();
    auto const reference = DmAssetReference::newAssetReference("file:///a.json");
    EXPECT_EQ(registry->findForReference(reference), registry->find("halvern"));
}

TEST_F(DmAssetResolverRegistryLibrary, ShortFileFormGoesToTheFileResolver) {
    auto const& registry = m_library->getAssetResolverRegistry();
    EXPECT_EQ(registry->findForReference(DmAssetReference::newAssetReference("file:a.json")),
              registry->find("file"));
    EXPECT_EQ(registry->findForReference(DmAssetReference::newAssetReference("file://a.json")),
              registry->find("file"));
}

TEST_F(DmAssetResolverRegistryLibrary, OtherSpecsGoByTheirSchemeKey) {
    auto const& registry = m_library->getAssetResolverRegistry();
    EXPECT_EQ(registry->findForReference(DmAssetReference::newAssetReference("halvern:a.json")),
              registry->find("halvern"));
    EXPECT_EQ(registry->findForReference(DmAssetReference::newAssetReference("stream:/x")),
              registry->find("stream"));
    EXPECT_EQ(registry->findForReference(nullptr), nullptr);
}

TEST_F(DmAssetResolverRegistryLibrary, LongFileFormIsResolvedByTheFilePathsResolver) {
    auto const reference = resolve("file:///a.json");
    ASSERT_NE(reference->getResolver(), nullptr);
    EXPECT_EQ(reference->getResolver()->schemeKey(), "halvern");
}

TEST_F(DmAssetResolverRegistryLibrary, UnknownSchemeIsNoResolver) {
    auto const reference = resolve("other:x");
    EXPECT_FALSE(reference->isResolved());
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kNoResolver);
    EXPECT_EQ(reference->getResolver(), nullptr);
}

TEST_F(DmAssetResolverRegistryLibrary, BarePathHasTheEmptyKeyAndNoResolver) {
    auto reference = DmAssetReference::newAssetReference("a/b.json");
    EXPECT_EQ(reference->getSchemeKey(), "");
    EXPECT_FALSE(m_library->resolveAssetReference(reference, KestoTest::contextFor(m_library)));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kNoResolver);
}

TEST_F(DmAssetResolverRegistryLibrary, DriveLetterPathHasItsLetterForKeyAndNoResolver) {
    auto reference = DmAssetReference::newAssetReference("C:/a.json");
    EXPECT_EQ(reference->getSchemeKey(), "C");
    EXPECT_FALSE(m_library->resolveAssetReference(reference, KestoTest::contextFor(m_library)));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kNoResolver);
}

TEST_F(DmAssetResolverRegistryLibrary, NullReferenceIsFalse) {
    EXPECT_FALSE(m_library->resolveAssetReference(nullptr, KestoTest::contextFor(m_library)));
    EXPECT_FALSE(m_library->getAssetResolverRegistry()->resolve(nullptr, nullptr, nullptr));
}

TEST_F(DmAssetResolverRegistryLibrary, ResolutionRecordsTheResolverAlsoOnFailure) {
    auto const reference = resolve("stream:/x");
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kNoStream);
    EXPECT_EQ(reference->getResolver(), m_library->getAssetResolverRegistry()->find("stream").get());
}

TEST_F(DmAssetResolverRegistryLibrary, RegistryResolveReturnsWhetherTheStatusIsResolved) {
    std::istringstream text("{}");
    StdInputStream input(text);
    auto const reference = std::make_shared<DmAssetReference>("stream:/x", &input);
    EXPECT_TRUE(
        m_library->getAssetResolverRegistry()->resolve(reference, nullptr, m_library->getErrorLogger()));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
}
