// Files that name other files in their dependencies: each is read at once,
// once per library, next to the file that names it.
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/library/DmUnknownDefinitionsSupport.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "reader/JsonReader.h"
#include "reader/ReaderTestSupport.h"

#include <gtest/gtest.h>

#include <string>

using namespace Kesto;
using KestoTest::graphText;
using KestoTest::line;
using KestoTest::PrintingLibrary;
using KestoTest::TempDir;

namespace {

/// A graph file whose header also carries an "author" item, and that
/// depends on `uris` (given as they stand in the file).
std::string fileDependingOn(std::vector<std::string> const& uris, std::string const& author = "me") {
    std::string text = R"({"header": {"metadata": [)"
                       R"({"metaName": "mvrkFileFormatVersion", "metaValue": "100L"},)"
                       R"({"metaName": "author", "metaType": "string", "metaValue": ")" +
                       author + R"("}]}, "dependencies": [)";
    for (std::size_t i = 0; i < uris.size(); ++i) {
        text += (i != 0 ? ", " : "") + std::string(R"({"uri": ")") + uris[i] + "\"}";
    }
    return text + "]}";
}

/// How many "author" items the URI filed under `name` holds: one per read.
std::size_t authorsOf(DmLibrary const& library, std::string const& name) {
    std::shared_ptr<DmURI> const uri = library.findURI(name);
    return uri ? uri->getMetadata()->find("author").size() : 0;
}

class CountingSupport : public DmUnknownDefinitionsSupport {
public:
    void finishLoad(DmMessageLogger&) override { ++calls; }
    int calls = 0;
};

class DmDependenciesTest : public testing::Test {
protected:
    TempDir m_dir;
    PrintingLibrary m_library;
};

} // namespace

TEST_F(DmDependenciesTest, FileThatListsItselfIsReadOnce) {
    std::string const a = m_dir.write("a.json", fileDependingOn({"file:///a.json"}));
    EXPECT_EQ(m_library.load("file://" + a), DmStatus::kSuccess);
    EXPECT_TRUE(m_library.takePrinted().empty());
    EXPECT_EQ(authorsOf(*m_library, "a.json"), 1u);
}

TEST_F(DmDependenciesTest, DependencyIsFoundNextToTheFileThatNamesIt) {
    std::string const a = m_dir.write("a.json", fileDependingOn({"file:///sub/b.json"}));
    std::string const b = m_dir.write("sub/b.json", fileDependingOn({}));
    EXPECT_EQ(m_library.load("file://" + a), DmStatus::kSuccess);
    EXPECT_TRUE(m_library.takePrinted().empty());
    EXPECT_TRUE(m_library->isJsonFileLoaded(b));
    EXPECT_EQ(authorsOf(*m_library, "b.json"), 1u);
}

TEST_F(DmDependenciesTest, DependencyBecomesADependencyOfTheFilesURI) {
    std::string const a = m_dir.write("a.json", fileDependingOn({"file:///b.json"}));
    m_dir.write("b.json", fileDependingOn({}));
    ASSERT_EQ(m_library.load("file://" + a), DmStatus::kSuccess);
    std::shared_ptr<DmURI> const uri = m_library->findURI("a.json");
    ASSERT_TRUE(uri);
    ASSERT_EQ(uri->getDependencies()->size(), 1u);
    EXPECT_EQ(uri->getDependencies()->begin()->first, "file:///b.json");
    EXPECT_EQ(uri->getDependencies()->begin()->second, m_library->findURI("b.json"));
}

TEST_F(DmDependenciesTest, CycleOfTwoFilesReadsEachOnce) {
    std::string const a = m_dir.write("a.json", fileDependingOn({"file:///b.json"}));
    m_dir.write("b.json", fileDependingOn({"file:///a.json"}));
    EXPECT_EQ(m_library.load("file://" + a), DmStatus::kSuccess);
    EXPECT_TRUE(m_library.takePrinted().empty());
    EXPECT_EQ(authorsOf(*m_library, "a.json"), 1u);
    EXPECT_EQ(authorsOf(*m_library, "b.json"), 1u);
    EXPECT_TRUE(m_library->findURI("b.json")->hasDependency(m_library->findURI("a.json")));
}

TEST_F(DmDependenciesTest, DependencyReadAlreadyCostsNothing) {
    std::string const a = m_dir.write("a.json", fileDependingOn({"file:///b.json"}));
    std::string const b = m_dir.write("b.json", fileDependingOn({}));
    ASSERT_EQ(m_library.load("file://" + b), DmStatus::kSuccess);
    EXPECT_EQ(m_library.load("file://" + a), DmStatus::kSuccess);
    EXPECT_EQ(authorsOf(*m_library, "b.json"), 1u);
}

TEST_F(DmDependenciesTest, ReloadingAFileDoesNotReloadItsDependencies) {
    std::string const a = m_dir.write("a.json", fileDependingOn({"file:///b.json", "file:///a.json"}));
    m_dir.write("b.json", fileDependingOn({}));
    ASSERT_EQ(m_library.load("file://" + a), DmStatus::kSuccess);
    EXPECT_EQ(m_library.load("file://" + a, 1), DmStatus::kSuccess);
    EXPECT_EQ(authorsOf(*m_library, "a.json"), 2u);
    EXPECT_EQ(authorsOf(*m_library, "b.json"), 1u);
}

TEST_F(DmDependenciesTest, DependencyWithoutAUriWarns) {
    std::string const a =
        m_dir.write("a.json", graphText(R"(, "dependencies": [{}, {"uri": ""}, {"uri": 7}])"));
    EXPECT_EQ(m_library.load("file://" + a), DmStatus::kSuccess);
    std::string const missing =
        line("warning", "file:///a.json", "Missing uri.", "Dependency does not have a uri.");
    EXPECT_EQ(m_library.takePrinted(), (std::vector<std::string>{missing, missing, missing}));
}

TEST_F(DmDependenciesTest, DependencyThatCannotBeFoundFailsTheLoadAndTheRestIsRead) {
    std::string const a = m_dir.write("a.json", fileDependingOn({"file:///nowhere.json"}));
    EXPECT_EQ(m_library.load("file://" + a), DmStatus::kFailure);
    EXPECT_EQ(m_library.takePrinted(),
              (std::vector<std::string>{line("error", "file:///a.json", "Resolver failed.",
                                             "'file:///nowhere.json' can not be resolved.")}));
    EXPECT_EQ(authorsOf(*m_library, "a.json"), 1u);
    EXPECT_TRUE(m_library->findURI("a.json")->getDependencies()->empty());
}

TEST_F(DmDependenciesTest, DependencyOfAnUnknownSchemeNamesTheScheme) {
    std::string const a = m_dir.write("a.json", fileDependingOn({"ftp:b.json"}));
    EXPECT_EQ(m_library.load("file://" + a), DmStatus::kFailure);
    EXPECT_EQ(m_library.takePrinted(),
              (std::vector<std::string>{line("error", "file:///a.json", "Undefined resolver scheme.",
                                             "'ftp:b.json' does not match a registered resolver.")}));
}

TEST_F(DmDependenciesTest, DependencyThatFailsToParseFailsTheLoadButNotTheFileThatNamesIt) {
    std::string const a = m_dir.write("a.json", fileDependingOn({"file:///b.json"}));
    std::string const b = m_dir.write("b.json", "{\n  \"header\" {}\n}");
    EXPECT_EQ(m_library.load("file://" + a), DmStatus::kFailure);
    EXPECT_EQ(
        m_library.takePrinted(),
        (std::vector<std::string>{line(
            "error", b, "Asset has parsing errors.",
            "Failed to parse " + b + " at position 2:12: Missing a colon after a name of object member.")}));
    EXPECT_EQ(authorsOf(*m_library, "a.json"), 1u);
    EXPECT_TRUE(m_library->isJsonFileLoaded(a));
}

TEST_F(DmDependenciesTest, DependenciesAreNotFollowedWithPlaceholderSupport) {
    auto const support = std::make_shared<CountingSupport>();
    m_library->setUnknownDefinitionsSupport(support);
    std::string const a = m_dir.write("a.json", fileDependingOn({"file:///b.json"}));
    std::string const b = m_dir.write("b.json", fileDependingOn({}));
    EXPECT_EQ(m_library.load("file://" + a), DmStatus::kSuccess);
    EXPECT_FALSE(m_library->isJsonFileLoaded(b));
    EXPECT_TRUE(m_library->findURI("a.json")->getDependencies()->empty());
    EXPECT_EQ(support->calls, 1);
}

TEST_F(DmDependenciesTest, ChainOfDependenciesIsCutAtItsLimit) {
    unsigned const limit = Internal::JsonReadContext::kMaxDependencyDepth;
    for (unsigned i = 0; i <= limit + 5; ++i) {
        m_dir.write("f" + std::to_string(i) + ".json",
                    fileDependingOn({"file:///f" + std::to_string(i + 1) + ".json"}));
    }
    m_dir.write("f" + std::to_string(limit + 6) + ".json", fileDependingOn({}));
    EXPECT_EQ(m_library.load("file://" + m_dir.file("f0.json")), DmStatus::kFailure);
    std::string const cut = "f" + std::to_string(limit + 1) + ".json";
    EXPECT_EQ(m_library.takePrinted(),
              (std::vector<std::string>{line(
                  "error", "file:///f" + std::to_string(limit) + ".json", "Dependencies nested too deeply.",
                  "'file:///" + cut + "' is not read: dependencies nest deeper than " +
                      std::to_string(limit) + " files.")}));
    EXPECT_TRUE(m_library->isJsonFileLoaded(m_dir.file("f" + std::to_string(limit) + ".json")));
    EXPECT_FALSE(m_library->isJsonFileLoaded(m_dir.file(cut)));
}

TEST_F(DmDependenciesTest, URIsOfFilesThatDependOnEachOtherDieWithTheLibrary) {
    std::string const a = m_dir.write("a.json", fileDependingOn({"file:///b.json"}));
    m_dir.write("b.json", fileDependingOn({"file:///a.json"}));
    std::weak_ptr<DmURI> uriOfA;
    std::weak_ptr<DmURI> uriOfB;
    {
        PrintingLibrary library;
        ASSERT_EQ(library.load("file://" + a), DmStatus::kSuccess);
        uriOfA = library->findURI("a.json");
        uriOfB = library->findURI("b.json");
        ASSERT_FALSE(uriOfA.expired());
        ASSERT_FALSE(uriOfB.expired());
    }
    EXPECT_TRUE(uriOfA.expired());
    EXPECT_TRUE(uriOfB.expired());
}

TEST_F(DmDependenciesTest, ResetLetsTheURIsOfACycleGo) {
    std::string const a = m_dir.write("a.json", fileDependingOn({"file:///b.json"}));
    m_dir.write("b.json", fileDependingOn({"file:///a.json"}));
    ASSERT_EQ(m_library.load("file://" + a), DmStatus::kSuccess);
    std::weak_ptr<DmURI> const uriOfA = m_library->findURI("a.json");
    ASSERT_TRUE(m_library->reset());
    EXPECT_TRUE(uriOfA.expired());
}
