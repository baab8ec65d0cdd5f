// The three resolvers of the library, each on its own, and the context of a resolution.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolver.h>
#include <KestoDM/assets/DmAssetResolverContext.h>
#include <KestoDM/assets/DmAssetResolverFile.h>
#include <KestoDM/assets/DmAssetResolverFilePaths.h>
#include <KestoDM/assets/DmAssetResolverStream.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/InputStream.h>
#include <KestoDM/platform/OutputStream.h>

#include "assets/AssetTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace Kesto;

namespace {

std::vector<std::string> strings(DmAssetResolverFilePaths::SearchPaths const& paths) {
    std::vector<std::string> out;
    for (String const& path : paths) {
        out.push_back(path.str());
    }
    return out;
}

} // namespace

TEST(DmAssetResolver, AccessModeValuesAreFixed) {
    EXPECT_EQ(DmAssetResolver::kAccessFile, 1);
    EXPECT_EQ(DmAssetResolver::kAccessInputStream, 2);
    EXPECT_EQ(DmAssetResolver::kAccessOutputStream, 3);
    EXPECT_EQ(sizeof(DmAssetResolver::AccessMode), 2u);
}

TEST(DmAssetResolver, KeysAndAccessModesOfTheBuiltInResolvers) {
    DmAssetResolverFilePaths const filePaths;
    DmAssetResolverFile const file;
    DmAssetResolverStream const stream;
    EXPECT_EQ(filePaths.schemeKey(), "halvern");
    EXPECT_EQ(filePaths.getAccessMode(), DmAssetResolver::kAccessFile);
    EXPECT_EQ(file.schemeKey(), "file");
    EXPECT_EQ(file.getAccessMode(), DmAssetResolver::kAccessFile);
    EXPECT_EQ(stream.schemeKey(), "stream");
    EXPECT_EQ(stream.getAccessMode(), DmAssetResolver::kAccessInputStream);
}

TEST(DmAssetResolver, NoBuiltInResolverCreatesAnInputStream) {
    std::istringstream text("{}");
    StdInputStream input(text);
    auto const reference = std::make_shared<DmAssetReference>("stream:/x", &input);
    EXPECT_EQ(DmAssetResolverFilePaths().createInputStream(reference), nullptr);
    EXPECT_EQ(DmAssetResolverFile().createInputStream(reference), nullptr);
    EXPECT_EQ(DmAssetResolverStream().createInputStream(reference), nullptr);
}

TEST(DmAssetResolver, EachResolverClassIsCounted) {
    unsigned int const resolvers = DmInstanceCounter<DmAssetResolver>::getInstanceCount();
    unsigned int const filePaths = DmInstanceCounter<DmAssetResolverFilePaths>::getInstanceCount();
    unsigned int const files = DmInstanceCounter<DmAssetResolverFile>::getInstanceCount();
    unsigned int const streams = DmInstanceCounter<DmAssetResolverStream>::getInstanceCount();
    {
        DmAssetResolverFilePaths const a;
        DmAssetResolverFile const b;
        DmAssetResolverStream const c;
        EXPECT_EQ(DmInstanceCounter<DmAssetResolver>::getInstanceCount(), resolvers + 3);
        EXPECT_EQ(DmInstanceCounter<DmAssetResolverFilePaths>::getInstanceCount(), filePaths + 1);
        EXPECT_EQ(DmInstanceCounter<DmAssetResolverFile>::getInstanceCount(), files + 1);
        EXPECT_EQ(DmInstanceCounter<DmAssetResolverStream>::getInstanceCount(), streams + 1);
    }
    EXPECT_EQ(DmInstanceCounter<DmAssetResolver>::getInstanceCount(), resolvers);
}

// ---------------------------------------------------------------------------
// The file-paths resolver

TEST(DmAssetResolverFilePaths, StartsWithNoSearchPaths) {
    DmAssetResolverFilePaths const resolver;
    ASSERT_NE(resolver.getSearchPaths(), nullptr);
    EXPECT_TRUE(resolver.getSearchPaths()->empty());
}

TEST(DmAssetResolverFilePaths, SearchPathsKeepOrderAndDuplicates) {
    DmAssetResolverFilePaths resolver;
    resolver.addSearchPath("/b");
    resolver.addSearchPath("/a");
    resolver.addSearchPath("/b");
    EXPECT_EQ(strings(*resolver.getSearchPaths()), (std::vector<std::string>{"/b", "/a", "/b"}));
}

TEST(DmAssetResolverFilePaths, SpecWithoutPathStaysResolvingFilePaths) {
    DmAssetResolverFilePaths const resolver;
    auto const reference = DmAssetReference::newAssetReference("halvern:");
    EXPECT_FALSE(resolver.resolve(reference, nullptr, nullptr));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolvingFilePaths);
}

TEST(DmAssetResolverFilePaths, RelativePathWithNoPossibleTryStaysResolvingFilePaths) {
    DmAssetResolverFilePaths const resolver;
    auto const reference = DmAssetReference::newAssetReference("halvern:a/b.json");
    auto const context = DmAssetResolverContext::newAssetResolverContext();
    EXPECT_FALSE(resolver.resolve(reference, context, nullptr));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolvingFilePaths);
    EXPECT_FALSE(reference->hasFilePath());
    EXPECT_EQ(reference->getAssetIdentity(), "");
}

TEST(DmAssetResolverFilePaths, MissingAbsolutePathIsFileNotFound) {
    KestoTest::AssetDir dir;
    DmAssetResolverFilePaths const resolver;
    auto const reference = DmAssetReference::newAssetReference("halvern:" + dir.file("missing.json"));
    EXPECT_FALSE(resolver.resolve(reference, nullptr, nullptr));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kFileNotFound);
}

TEST(DmAssetResolverFilePaths, NullReferenceIsFalse) {
    EXPECT_FALSE(DmAssetResolverFilePaths().resolve(nullptr, nullptr, nullptr));
}

// ---------------------------------------------------------------------------
// The file resolver

TEST(DmAssetResolverFile, RelativePathWithNoPossibleTryIsFileNotFound) {
    DmAssetResolverFile const resolver;
    auto const reference = DmAssetReference::newAssetReference("file:a/b.json");
    EXPECT_FALSE(resolver.resolve(reference, DmAssetResolverContext::newAssetResolverContext(), nullptr));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kFileNotFound);
}

TEST(DmAssetResolverFile, SpecWithoutPathIsFileNotFound) {
    auto const reference = DmAssetReference::newAssetReference("file:");
    EXPECT_FALSE(DmAssetResolverFile().resolve(reference, nullptr, nullptr));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kFileNotFound);
}

TEST(DmAssetResolverFile, FindsAnExistingAbsolutePath) {
    KestoTest::AssetDir dir;
    std::string const file = dir.touch("a.json");
    auto const reference = DmAssetReference::newAssetReference("file:" + file);
    EXPECT_TRUE(DmAssetResolverFile().resolve(reference, nullptr, nullptr));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getFilePath(), file);
    EXPECT_EQ(reference->getAssetIdentity(), "file:" + file);
}

// ---------------------------------------------------------------------------
// The stream resolver

TEST(DmAssetResolverStream, ReferenceWithAnInputStreamResolvesToItsSpec) {
    std::istringstream text("{}");
    StdInputStream input(text);
    auto const reference = std::make_shared<DmAssetReference>("stream:/graph", &input);
    EXPECT_TRUE(DmAssetResolverStream().resolve(reference, nullptr, nullptr));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getAssetIdentity(), "stream:/graph");
    EXPECT_FALSE(reference->hasFilePath());
}

TEST(DmAssetResolverStream, ReferenceWithoutAStreamIsNoStream) {
    auto const reference = DmAssetReference::newAssetReference("stream:/graph");
    EXPECT_FALSE(DmAssetResolverStream().resolve(reference, nullptr, nullptr));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kNoStream);
    EXPECT_EQ(reference->getAssetIdentity(), "");
}

TEST(DmAssetResolverStream, OutputStreamAloneDoesNotResolve) {
    std::ostringstream sink;
    StdOutputStream output(sink);
    auto const reference = std::make_shared<DmAssetReference>("stream:/graph", &output);
    EXPECT_FALSE(DmAssetResolverStream().resolve(reference, nullptr, nullptr));
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kNoStream);
}

// ---------------------------------------------------------------------------
// The context

TEST(DmAssetResolverContext, NewContextHasNeitherPart) {
    auto const context = DmAssetResolverContext::newAssetResolverContext();
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(context->library(), nullptr);
    EXPECT_EQ(context->relativeAssetReference(), nullptr);
}

TEST(DmAssetResolverContext, CopiesShareTheLibraryAndTheReference) {
    auto const library = KestoTest::newTestLibrary();
    auto const referrer = DmAssetReference::newAssetReference("file:/g/main.json");
    DmAssetResolverContext context;
    context.setLibrary(library);
    context.setRelativeAssetReference(referrer);
    DmAssetResolverContext const copy(context);
    EXPECT_EQ(copy.library(), library);
    EXPECT_EQ(copy.relativeAssetReference(), referrer);
    DmAssetResolverContext moved(std::move(context));
    EXPECT_EQ(moved.library(), library);
    EXPECT_EQ(moved.relativeAssetReference(), referrer);
    moved = DmAssetResolverContext();
    EXPECT_EQ(moved.library(), nullptr);
    EXPECT_EQ(moved.relativeAssetReference(), nullptr);
}
