#include <KestoDM/assets/DmStreamURI.h>

#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/InputStream.h>
#include <KestoDM/platform/OutputStream.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <type_traits>

using Kesto::DmStreamURI;
using Kesto::DmURI;
using Kesto::InputStream;
using Kesto::OutputStream;

namespace {

// One stream of each direction over memory.
class DmStreamURIStreams : public ::testing::Test {
protected:
    std::istringstream m_inText{"{}"};
    std::ostringstream m_outText;
    Kesto::StdInputStream m_input{m_inText};
    Kesto::StdOutputStream m_output{m_outText};
};

} // namespace

// Streams and validity.

TEST_F(DmStreamURIStreams, InputStreamURIIsValid) {
    DmStreamURI const uri("stream:/in", &m_input);
    EXPECT_TRUE(uri.isValid());
    EXPECT_EQ(uri.getInputStream(), &m_input);
    EXPECT_EQ(uri.getOutputStream(), nullptr);
}

TEST_F(DmStreamURIStreams, OutputStreamURIIsValid) {
    DmStreamURI const uri("stream:/out", &m_output);
    EXPECT_TRUE(uri.isValid());
    EXPECT_EQ(uri.getOutputStream(), &m_output);
    EXPECT_EQ(uri.getInputStream(), nullptr);
}

TEST(DmStreamURI, NullInputStreamIsInvalid) {
    DmStreamURI const uri("stream:/in", static_cast<InputStream*>(nullptr));
    EXPECT_FALSE(uri.isValid());
    EXPECT_EQ(uri.getInputStream(), nullptr);
    EXPECT_EQ(uri.getOutputStream(), nullptr);
}

TEST(DmStreamURI, NullOutputStreamIsInvalid) {
    DmStreamURI const uri("stream:/out", static_cast<OutputStream*>(nullptr));
    EXPECT_FALSE(uri.isValid());
}

TEST(DmStreamURI, InvalidURIStillGetsItsName) {
    DmStreamURI const uri("x", static_cast<InputStream*>(nullptr));
    EXPECT_EQ(uri.getName(), "stream:/x");
}

TEST_F(DmStreamURIStreams, IsValidAnswersThroughTheBaseClass) {
    std::shared_ptr<DmURI> const valid = std::make_shared<DmStreamURI>("x", &m_input);
    std::shared_ptr<DmURI> const invalid =
        std::make_shared<DmStreamURI>("x", static_cast<InputStream*>(nullptr));
    EXPECT_TRUE(valid->isValid());
    EXPECT_FALSE(invalid->isValid());
}

// Names.

TEST_F(DmStreamURIStreams, NameWithThePrefixIsKept) {
    DmStreamURI const uri("stream:/x", &m_input);
    EXPECT_EQ(uri.getName(), "stream:/x");
}

TEST_F(DmStreamURIStreams, NameWithoutThePrefixGetsIt) {
    DmStreamURI const uri("x", &m_input);
    EXPECT_EQ(uri.getName(), "stream:/x");
    EXPECT_EQ(uri.getMapEntryKey(), "stream:/x");
}

TEST_F(DmStreamURIStreams, OutputStreamURINameGetsThePrefixToo) {
    DmStreamURI const uri("x", &m_output);
    EXPECT_EQ(uri.getName(), "stream:/x");
}

TEST_F(DmStreamURIStreams, EmptyNameBecomesThePrefix) {
    DmStreamURI const uri("", &m_input);
    EXPECT_EQ(uri.getName(), "stream:/");
}

TEST_F(DmStreamURIStreams, SchemeWithoutTheSlashIsNoPrefix) {
    DmStreamURI const uri("stream:x", &m_input);
    EXPECT_EQ(uri.getName(), "stream:/stream:x");
}

TEST_F(DmStreamURIStreams, PrefixIsCaseSensitive) {
    DmStreamURI const uri("Stream:/x", &m_input);
    EXPECT_EQ(uri.getName(), "stream:/Stream:/x");
}

TEST_F(DmStreamURIStreams, PrefixInsideTheNameDoesNotCount) {
    DmStreamURI const uri("a/stream:/x", &m_input);
    EXPECT_EQ(uri.getName(), "stream:/a/stream:/x");
}

TEST_F(DmStreamURIStreams, URIsMadeWithAndWithoutThePrefixAreEqual) {
    DmStreamURI const bare("x", &m_input);
    DmStreamURI const prefixed("stream:/x", &m_output);
    EXPECT_TRUE(bare == prefixed);
    EXPECT_TRUE(bare == std::string("stream:/x"));
}

// Kind.

TEST(DmStreamURI, IsNotCopyable) {
    EXPECT_FALSE(std::is_copy_constructible_v<DmStreamURI>);
    EXPECT_FALSE(std::is_copy_assignable_v<DmStreamURI>);
}

TEST_F(DmStreamURIStreams, DependsOnOtherURIs) {
    auto const uri = std::make_shared<DmStreamURI>("a", &m_input);
    auto const other = std::make_shared<DmStreamURI>("b", &m_output);
    EXPECT_TRUE(uri->addDependency(other));
    EXPECT_TRUE(uri->hasDependency(other));
    EXPECT_EQ(uri->getDependencies()->at("stream:/b"), other);
}

TEST_F(DmStreamURIStreams, CountsItsInstances) {
    unsigned int const streams = Kesto::DmInstanceCounter<DmStreamURI>::getInstanceCount();
    unsigned int const uris = Kesto::DmInstanceCounter<DmURI>::getInstanceCount();
    {
        DmStreamURI const uri("x", &m_input);
        EXPECT_EQ(Kesto::DmInstanceCounter<DmStreamURI>::getInstanceCount(), streams + 1);
        EXPECT_EQ(Kesto::DmInstanceCounter<DmURI>::getInstanceCount(), uris + 1);
    }
    EXPECT_EQ(Kesto::DmInstanceCounter<DmStreamURI>::getInstanceCount(), streams);
    EXPECT_EQ(Kesto::DmInstanceCounter<DmURI>::getInstanceCount(), uris);
}
