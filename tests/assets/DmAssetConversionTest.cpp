// From a URI to a resolved reference and back: createAssetReferenceFromURI and
// createURIFromAssetReference.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolver.h>
#include <KestoDM/assets/DmAssetResolverRegistry.h>
#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmStreamURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/InputStream.h>
#include <KestoDM/platform/OutputStream.h>

#include "assets/AssetTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

using namespace Kesto;
using KestoTest::AssetDir;
using KestoTest::HostResolver;

namespace {

/// A URI of a kind that the library does not know.
class OtherURI : public DmURI {
public:
    explicit OtherURI(std::string name) : DmURI(std::move(name)) {}
};

class DmAssetConversion : public testing::Test {
protected:
    std::shared_ptr<DmAssetReference> resolved(std::string const& spec) {
        auto reference = DmAssetReference::newAssetReference(spec);
        m_library->resolveAssetReference(reference, KestoTest::contextFor(m_library));
        return reference;
    }

    std::shared_ptr<DmLibrary> m_library = KestoTest::newTestLibrary();
    AssetDir m_dir;
    std::istringstream m_text{"{}"};
    StdInputStream m_input{m_text};
    std::ostringstream m_sink;
    StdOutputStream m_output{m_sink};
};

} // namespace

// ---------------------------------------------------------------------------
// createAssetReferenceFromURI

TEST_F(DmAssetConversion, NullURIGivesNoReference) {
    EXPECT_EQ(m_library->createAssetReferenceFromURI(nullptr), nullptr);
}

TEST_F(DmAssetConversion, InvalidURIGivesNoReference) {
    auto const invalid = std::make_shared<DmStreamURI>("x", static_cast<InputStream*>(nullptr));
    ASSERT_FALSE(invalid->isValid());
    EXPECT_EQ(m_library->createAssetReferenceFromURI(invalid), nullptr);
}

TEST_F(DmAssetConversion, FileURIOfAMissingFileGivesNoReference) {
    auto const uri = std::make_shared<DmFileURI>("missing.json", m_dir.path());
    ASSERT_TRUE(uri->isValid());
    EXPECT_EQ(m_library->createAssetReferenceFromURI(uri), nullptr);
}

TEST_F(DmAssetConversion, FileURIGivesAResolvedReferenceToTheCanonicalFile) {
    std::string const file = m_dir.touch("sub/a.json");
    auto const uri = std::make_shared<DmFileURI>("sub/../sub/a.json", m_dir.path());
    auto const reference = m_library->createAssetReferenceFromURI(uri);
    ASSERT_NE(reference, nullptr);
    EXPECT_EQ(reference->getAssetSpec(), "file:" + file);
    EXPECT_EQ(reference->getAssetIdentity(), "file:" + file);
    EXPECT_EQ(reference->getFilePath(), file);
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getResolver(), m_library->getAssetResolverRegistry()->find("file").get());
}

TEST_F(DmAssetConversion, FileURIThroughALinkGivesTheTarget) {
    std::string const target = m_dir.touch("real/a.json");
    m_dir.link(m_dir.file("real"), "linked");
    auto const reference =
        m_library->createAssetReferenceFromURI(std::make_shared<DmFileURI>("linked/a.json", m_dir.path()));
    ASSERT_NE(reference, nullptr);
    EXPECT_EQ(reference->getFilePath(), target);
}

TEST_F(DmAssetConversion, InputStreamURIGivesAResolvedStreamReference) {
    auto const uri = std::make_shared<DmStreamURI>("graph", &m_input);
    auto const reference = m_library->createAssetReferenceFromURI(uri);
    ASSERT_NE(reference, nullptr);
    EXPECT_EQ(reference->getAssetSpec(), "stream:/graph");
    EXPECT_EQ(reference->getAssetIdentity(), "stream:/graph");
    EXPECT_EQ(reference->getExternalInputStream(), &m_input);
    EXPECT_EQ(reference->getExternalOutputStream(), nullptr);
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
    EXPECT_EQ(reference->getResolver(), m_library->getAssetResolverRegistry()->find("stream").get());
}

TEST_F(DmAssetConversion, OutputStreamURIGivesItsOutputStream) {
    auto const uri = std::make_shared<DmStreamURI>("stream:/out", &m_output);
    auto const reference = m_library->createAssetReferenceFromURI(uri);
    ASSERT_NE(reference, nullptr);
    EXPECT_EQ(reference->getAssetSpec(), "stream:/out");
    EXPECT_EQ(reference->getExternalInputStream(), nullptr);
    EXPECT_EQ(reference->getExternalOutputStream(), &m_output);
    EXPECT_EQ(reference->getResolveStatus(), DmAssetReference::kResolved);
}

TEST_F(DmAssetConversion, OtherKindOfURIGivesNoReference) {
    EXPECT_EQ(m_library->createAssetReferenceFromURI(std::make_shared<OtherURI>("file:///a.json")), nullptr);
}

// ---------------------------------------------------------------------------
// createURIFromAssetReference

TEST_F(DmAssetConversion, NullOrUnresolvedReferenceGivesNoURI) {
    EXPECT_EQ(m_library->createURIFromAssetReference(nullptr), nullptr);
    auto const unresolved = resolved("halvern:" + m_dir.file("missing.json"));
    EXPECT_EQ(m_library->createURIFromAssetReference(unresolved), nullptr);
    EXPECT_TRUE(m_library->getURIs().empty());
}

TEST_F(DmAssetConversion, ResolvedReferenceWithoutAResolverGivesNoURI) {
    auto const reference = DmAssetReference::newAssetReference("file:" + m_dir.touch("a.json"));
    reference->setFilePath(m_dir.file("a.json"));
    reference->setResolveStatus(DmAssetReference::kResolved);
    EXPECT_EQ(m_library->createURIFromAssetReference(reference), nullptr);
}

TEST_F(DmAssetConversion, FileReferenceGivesARegisteredFileURINamedAfterTheFileName) {
    std::string const file = m_dir.touch("graphs/a.json");
    auto const uri = m_library->createURIFromAssetReference(resolved("halvern:" + file));
    ASSERT_NE(uri, nullptr);
    auto const fileURI = std::dynamic_pointer_cast<DmFileURI>(uri);
    ASSERT_NE(fileURI, nullptr);
    EXPECT_EQ(uri->getName(), "file:///a.json");
    EXPECT_EQ(fileURI->getFilePath(), file);
    EXPECT_EQ(m_library->findURI("a.json"), uri);
    EXPECT_EQ(m_library->getURIs().size(), 1u);
}

TEST_F(DmAssetConversion, TwoFilesOfOneNameShareTheFirstURI) {
    std::string const first = m_dir.touch("one/a.json");
    std::string const second = m_dir.touch("two/a.json");
    auto const uriOfFirst = m_library->createURIFromAssetReference(resolved("halvern:" + first));
    auto const uriOfSecond = m_library->createURIFromAssetReference(resolved("halvern:" + second));
    ASSERT_NE(uriOfFirst, nullptr);
    EXPECT_EQ(uriOfSecond, uriOfFirst);
    EXPECT_EQ(std::dynamic_pointer_cast<DmFileURI>(uriOfSecond)->getFilePath(), first);
    EXPECT_EQ(m_library->getURIs().size(), 1u);
}

TEST_F(DmAssetConversion, SameFileTwiceGivesTheSameURI) {
    std::string const file = m_dir.touch("a.json");
    auto const first = m_library->createURIFromAssetReference(resolved("halvern:" + file));
    auto const again = m_library->createURIFromAssetReference(resolved("file:" + file));
    EXPECT_EQ(again, first);
}

TEST_F(DmAssetConversion, StreamReferenceGivesAStreamURINamedAfterTheIdentity) {
    auto const reference = std::make_shared<DmAssetReference>("stream:/graph", &m_input);
    ASSERT_TRUE(m_library->resolveAssetReference(reference, nullptr));
    auto const uri = m_library->createURIFromAssetReference(reference);
    auto const streamURI = std::dynamic_pointer_cast<DmStreamURI>(uri);
    ASSERT_NE(streamURI, nullptr);
    EXPECT_EQ(uri->getName(), "stream:/graph");
    EXPECT_EQ(streamURI->getInputStream(), &m_input);
    EXPECT_TRUE(m_library->getURIs().contains("stream:/graph"));
}

TEST_F(DmAssetConversion, StreamURIIsNeverFoundSoEachCallMakesANewOne) {
    auto const reference = std::make_shared<DmAssetReference>("stream:/graph", &m_input);
    ASSERT_TRUE(m_library->resolveAssetReference(reference, nullptr));
    auto const first = m_library->createURIFromAssetReference(reference);
    auto const second = m_library->createURIFromAssetReference(reference);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, first);
    EXPECT_EQ(m_library->findURI("stream:/graph"), nullptr);
    EXPECT_EQ(m_library->getURIs().size(), 1u);
    EXPECT_EQ(m_library->getURIs().at("stream:/graph"), first);
}

TEST_F(DmAssetConversion, OutputStreamResolverGivesAStreamURIOfTheOutputStream) {
    m_library->registerAssetResolver(
        std::make_shared<HostResolver>("sink", DmAssetResolver::kAccessOutputStream, "/unused.json"));
    auto const reference = std::make_shared<DmAssetReference>("sink:out", &m_output);
    ASSERT_TRUE(m_library->resolveAssetReference(reference, nullptr));
    auto const streamURI =
        std::dynamic_pointer_cast<DmStreamURI>(m_library->createURIFromAssetReference(reference));
    ASSERT_NE(streamURI, nullptr);
    EXPECT_EQ(streamURI->getOutputStream(), &m_output);
    EXPECT_EQ(streamURI->getInputStream(), nullptr);
}

TEST_F(DmAssetConversion, InvalidStreamURIIsReturnedButNotRegistered) {
    // A host resolver that says "input stream" for a reference that has none.
    m_library->registerAssetResolver(
        std::make_shared<HostResolver>("pipe", DmAssetResolver::kAccessInputStream, "/unused.json"));
    auto const reference = DmAssetReference::newAssetReference("pipe:x");
    ASSERT_TRUE(m_library->resolveAssetReference(reference, nullptr));
    auto const uri = m_library->createURIFromAssetReference(reference);
    ASSERT_NE(uri, nullptr);
    EXPECT_FALSE(uri->isValid());
    EXPECT_TRUE(m_library->getURIs().empty());
}

TEST_F(DmAssetConversion, UnknownAccessModeGivesNoURI) {
    m_library->registerAssetResolver(
        std::make_shared<HostResolver>("odd", static_cast<DmAssetResolver::AccessMode>(7), "/x/a.json"));
    auto const reference = DmAssetReference::newAssetReference("odd:a");
    ASSERT_TRUE(m_library->resolveAssetReference(reference, nullptr));
    EXPECT_EQ(m_library->createURIFromAssetReference(reference), nullptr);
}

TEST_F(DmAssetConversion, RoundTripFromAFileURIGivesTheRegisteredURI) {
    std::string const file = m_dir.touch("a.json");
    auto const first = m_library->createURIFromAssetReference(resolved("halvern:" + file));
    auto const reference = m_library->createAssetReferenceFromURI(first);
    ASSERT_NE(reference, nullptr);
    EXPECT_EQ(m_library->createURIFromAssetReference(reference), first);
}
