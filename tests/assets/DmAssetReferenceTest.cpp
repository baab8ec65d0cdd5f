// DmAssetReference: the request for an asset and, once resolved, the answer.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolverFile.h>
#include <KestoDM/platform/InputStream.h>
#include <KestoDM/platform/OutputStream.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>

using namespace Kesto;

TEST(DmAssetReference, StatusValuesAreFixed) {
    EXPECT_EQ(DmAssetReference::kUnresolved, 0);
    EXPECT_EQ(DmAssetReference::kResolved, 1);
    EXPECT_EQ(DmAssetReference::kResolvingFilePaths, 2);
    EXPECT_EQ(DmAssetReference::kFileNotFound, 3);
    EXPECT_EQ(DmAssetReference::kNoStream, 4);
    EXPECT_EQ(DmAssetReference::kNoResolver, 5);
    EXPECT_EQ(sizeof(DmAssetReference::ResolveStatus), 2u);
}

TEST(DmAssetReference, DefaultReferenceIsEmptyAndUnresolved) {
    DmAssetReference const reference;
    EXPECT_EQ(reference.getAssetSpec(), "");
    EXPECT_EQ(reference.getAssetIdentity(), "");
    EXPECT_EQ(reference.getResolveStatus(), DmAssetReference::kUnresolved);
    EXPECT_FALSE(reference.isResolved());
    EXPECT_FALSE(reference.hasFilePath());
    EXPECT_EQ(reference.getExternalInputStream(), nullptr);
    EXPECT_EQ(reference.getExternalOutputStream(), nullptr);
    EXPECT_EQ(reference.getResolver(), nullptr);
}

TEST(DmAssetReference, SpecConstructorKeepsTheSpecUnresolved) {
    DmAssetReference const reference("halvern:a/b.json");
    EXPECT_EQ(reference.getAssetSpec(), "halvern:a/b.json");
    EXPECT_EQ(reference.getAssetIdentity(), "");
    EXPECT_EQ(reference.getResolveStatus(), DmAssetReference::kUnresolved);
}

TEST(DmAssetReference, StreamConstructorsKeepTheirStreamOnly) {
    std::istringstream text("{}");
    StdInputStream input(text);
    std::ostringstream sink;
    StdOutputStream output(sink);

    DmAssetReference const reading("stream:/in", &input);
    EXPECT_EQ(reading.getExternalInputStream(), &input);
    EXPECT_EQ(reading.getExternalOutputStream(), nullptr);
    EXPECT_EQ(reading.getResolveStatus(), DmAssetReference::kUnresolved);

    DmAssetReference const writing("stream:/out", &output);
    EXPECT_EQ(writing.getExternalInputStream(), nullptr);
    EXPECT_EQ(writing.getExternalOutputStream(), &output);
    EXPECT_EQ(writing.getResolveStatus(), DmAssetReference::kUnresolved);
}

TEST(DmAssetReference, NewAssetReferenceMakesSharedUnresolvedReferences) {
    auto const empty = DmAssetReference::newAssetReference();
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->getAssetSpec(), "");
    auto const named = DmAssetReference::newAssetReference("file:a.json");
    ASSERT_NE(named, nullptr);
    EXPECT_EQ(named->getAssetSpec(), "file:a.json");
    EXPECT_EQ(named->getResolveStatus(), DmAssetReference::kUnresolved);
}

TEST(DmAssetReference, IsResolvedOnlyForStatusOne) {
    DmAssetReference reference("file:a.json");
    for (auto const status :
         {DmAssetReference::kUnresolved, DmAssetReference::kResolvingFilePaths,
          DmAssetReference::kFileNotFound, DmAssetReference::kNoStream, DmAssetReference::kNoResolver}) {
        reference.setResolveStatus(status);
        EXPECT_FALSE(reference.isResolved()) << status;
    }
    reference.setResolveStatus(DmAssetReference::kResolved);
    EXPECT_TRUE(reference.isResolved());
}

TEST(DmAssetReference, FilePathGivesBasePathAndFilename) {
    DmAssetReference reference("file:/graphs/sub/a.json");
    reference.setFilePath("/graphs/sub/a.json");
    EXPECT_TRUE(reference.hasFilePath());
    EXPECT_EQ(reference.getFilePath(), "/graphs/sub/a.json");
    EXPECT_EQ(reference.getBasePath(), "/graphs/sub");
    EXPECT_EQ(reference.getFilename(), "a.json");
}

TEST(DmAssetReference, BasePathOfAnUnresolvedReferenceIsEmpty) {
    DmAssetReference const reference("halvern:/graphs/a.json");
    EXPECT_EQ(reference.getBasePath(), "");
    EXPECT_EQ(reference.getFilename(), "");
    EXPECT_EQ(reference.getFilePath(), "");
}

TEST(DmAssetReference, SchemeKeyAndStrippedSpecComeFromTheSpec) {
    DmAssetReference const halvern("halvern:a/b.json");
    EXPECT_EQ(halvern.getSchemeKey(), "halvern");
    EXPECT_EQ(halvern.stripSchemeKey(), "a/b.json");
    DmAssetReference const bare("a/b.json");
    EXPECT_EQ(bare.getSchemeKey(), "");
    EXPECT_EQ(bare.stripSchemeKey(), "a/b.json");
    DmAssetReference const drive("C:/a.json");
    EXPECT_EQ(drive.getSchemeKey(), "C");
    EXPECT_EQ(drive.stripSchemeKey(), "/a.json");
}

TEST(DmAssetReference, SettersReplaceSpecIdentityAndResolver) {
    DmAssetReference reference("file:a.json");
    DmAssetResolverFile const resolver;
    reference.setAssetSpec("file:b.json");
    reference.setAssetIdentity("file:/x/b.json");
    reference.setResolver(&resolver);
    EXPECT_EQ(reference.getAssetSpec(), "file:b.json");
    EXPECT_EQ(reference.getAssetIdentity(), "file:/x/b.json");
    EXPECT_EQ(reference.getResolver(), &resolver);
}

TEST(DmAssetReference, CopiesAndMovesCarryEveryMember) {
    std::istringstream text("{}");
    StdInputStream input(text);
    DmAssetResolverFile const resolver;
    DmAssetReference original("stream:/x", &input);
    original.setAssetIdentity("stream:/x");
    original.setResolveStatus(DmAssetReference::kResolved);
    original.setFilePath("/a/b.json");
    original.setResolver(&resolver);

    DmAssetReference const copy(original);
    EXPECT_EQ(copy.getAssetSpec(), "stream:/x");
    EXPECT_EQ(copy.getAssetIdentity(), "stream:/x");
    EXPECT_EQ(copy.getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(copy.getFilePath(), "/a/b.json");
    EXPECT_EQ(copy.getExternalInputStream(), &input);
    EXPECT_EQ(copy.getResolver(), &resolver);

    DmAssetReference assigned;
    assigned = copy;
    EXPECT_EQ(assigned.getAssetIdentity(), "stream:/x");

    DmAssetReference const moved(std::move(original));
    EXPECT_EQ(moved.getAssetSpec(), "stream:/x");
    EXPECT_EQ(moved.getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(moved.getExternalInputStream(), &input);
}
