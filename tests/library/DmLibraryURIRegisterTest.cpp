// The register of URIs: finding, the "file:///" prefix, removal, reset.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmStreamURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/InputStream.h>

#include "assets/AssetTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::AssetDir;

namespace {

class DmLibraryURIRegister : public testing::Test {
protected:
    /// Registers the URI of `file` the way a load does: resolve, then make the URI.
    std::shared_ptr<DmURI> registerFile(std::string const& file) {
        auto reference = DmAssetReference::newAssetReference("halvern:" + file);
        m_library->resolveAssetReference(reference, KestoTest::contextFor(m_library));
        return m_library->createURIFromAssetReference(reference);
    }

    std::vector<std::string> names() const {
        std::vector<std::string> out;
        for (auto const& entry : m_library->getURIs()) {
            out.push_back(entry.first);
        }
        return out;
    }

    std::shared_ptr<DmLibrary> m_library = KestoTest::newTestLibrary();
    AssetDir m_dir;
};

} // namespace

TEST_F(DmLibraryURIRegister, NewLibraryHasNoURIs) {
    EXPECT_TRUE(m_library->getURIs().empty());
    EXPECT_EQ(m_library->findURI("a.json"), nullptr);
}

TEST_F(DmLibraryURIRegister, KeyWithAndWithoutThePrefixFindTheSameURI) {
    auto const uri = registerFile(m_dir.touch("a.json"));
    ASSERT_NE(uri, nullptr);
    EXPECT_EQ(m_library->findURI("file:///a.json"), uri);
    EXPECT_EQ(m_library->findURI("a.json"), uri);
}

TEST_F(DmLibraryURIRegister, FindComparesTheWholeName) {
    registerFile(m_dir.touch("a.json"));
    EXPECT_EQ(m_library->findURI("A.json"), nullptr);
    EXPECT_EQ(m_library->findURI("/a.json"), nullptr);
    EXPECT_EQ(m_library->findURI("file:a.json"), nullptr);
    EXPECT_EQ(m_library->findURI(""), nullptr);
}

TEST_F(DmLibraryURIRegister, StreamURIIsRegisteredButNeverFound) {
    std::istringstream text("{}");
    StdInputStream input(text);
    auto const reference = std::make_shared<DmAssetReference>("stream:/x", &input);
    ASSERT_TRUE(m_library->resolveAssetReference(reference, nullptr));
    auto const uri = m_library->createURIFromAssetReference(reference);
    ASSERT_NE(uri, nullptr);
    EXPECT_EQ(names(), (std::vector<std::string>{"stream:/x"}));
    EXPECT_EQ(m_library->findURI("stream:/x"), nullptr);
    EXPECT_EQ(m_library->findURI("x"), nullptr);
}

TEST_F(DmLibraryURIRegister, URIsKeepTheOrderOfFirstRegistration) {
    registerFile(m_dir.touch("b.json"));
    registerFile(m_dir.touch("a.json"));
    registerFile(m_dir.touch("other/b.json"));
    EXPECT_EQ(names(), (std::vector<std::string>{"file:///b.json", "file:///a.json"}));
}

TEST_F(DmLibraryURIRegister, UnregisterRemovesTheURI) {
    auto const a = registerFile(m_dir.touch("a.json"));
    auto const b = registerFile(m_dir.touch("b.json"));
    m_library->unregisterURI(a);
    EXPECT_EQ(m_library->findURI("a.json"), nullptr);
    EXPECT_EQ(m_library->findURI("b.json"), b);
    EXPECT_EQ(names(), (std::vector<std::string>{"file:///b.json"}));
}

TEST_F(DmLibraryURIRegister, UnregisterRemovesWhateverHasTheName) {
    auto const registered = registerFile(m_dir.touch("a.json"));
    auto const namesake = std::make_shared<DmFileURI>("a.json", "/elsewhere");
    m_library->unregisterURI(namesake);
    EXPECT_EQ(m_library->findURI("a.json"), nullptr);
}

TEST_F(DmLibraryURIRegister, UnregisterOfNullOrAStrangerDoesNothing) {
    auto const a = registerFile(m_dir.touch("a.json"));
    m_library->unregisterURI(nullptr);
    m_library->unregisterURI(std::make_shared<DmFileURI>("z.json", m_dir.path()));
    EXPECT_EQ(names(), (std::vector<std::string>{"file:///a.json"}));
}

TEST_F(DmLibraryURIRegister, UnregisteredNameCanBeRegisteredAfresh) {
    auto const first = registerFile(m_dir.touch("one/a.json"));
    m_library->unregisterURI(first);
    auto const second = registerFile(m_dir.touch("two/a.json"));
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, first);
    EXPECT_EQ(std::dynamic_pointer_cast<DmFileURI>(second)->getFilePath(), m_dir.file("two/a.json"));
    EXPECT_EQ(m_library->findURI("a.json"), second);
}

TEST_F(DmLibraryURIRegister, ResetEmptiesTheRegister) {
    auto const uri = registerFile(m_dir.touch("a.json"));
    ASSERT_TRUE(m_library->reset());
    EXPECT_TRUE(m_library->getURIs().empty());
    EXPECT_EQ(m_library->findURI("a.json"), nullptr);
    // The URI itself lives on with whoever shares it.
    EXPECT_EQ(uri->getName(), "file:///a.json");
}
