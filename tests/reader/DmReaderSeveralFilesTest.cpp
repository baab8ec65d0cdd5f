// Graph files that use each other's definitions through "dependencies": the
// sets of tests/data/reader/4xx_*, one directory each.
#include "reader/NodeDefReadingTestSupport.h"

#include <KestoDM/assets/DmURI.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBuiltInValue.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

using Kesto::DmStatus;

class DmReaderSeveralFilesTest : public KestoTest::NodeDefReadingTest {
protected:
    void SetUp() override {
        NodeDefReadingTest::SetUp();
        expectGraphsBackAtEnd();
    }

    static std::string setFile(std::string const& set, std::string const& file) {
        return std::string(KESTODM_TEST_DATA_DIR) + "/reader/" + set + "/" + file;
    }
    DmStatus loadSetFile(std::string const& set, std::string const& file) {
        return library().loadGraph(KestoTest::longForm(setFile(set, file)), Kesto::DmLibrary::LoadOptions());
    }

    std::shared_ptr<Kesto::DmCompound> compound(std::string const& name) {
        auto const all = library().getCompounds();
        auto const found = all.find(name);
        return found != all.end() ? found->second : nullptr;
    }

    std::shared_ptr<Kesto::DmURI> uri(std::string const& name) {
        return library().findURI("file:///" + name);
    }

    /// The definition the node `node` of `owner` stands on: the one overload
    /// of the set it names.
    static Kesto::DmNodeDef const* definitionOf(Kesto::DmCompound const& owner, std::string const& node) {
        auto const found = owner.findNode(node);
        Kesto::DmNodeDef const* const def = found ? found->getNodeDef() : nullptr;
        auto const* const set = dynamic_cast<Kesto::DmOverloadSet const*>(def);
        return set != nullptr && set->getOverloads().size() == 1 ? set->getOverloads().front().get() : def;
    }

    /// "source -> target" for each connection of `owner`, in order.
    static std::vector<std::string> connectionsOf(Kesto::DmCompound const& owner) {
        std::vector<std::string> out;
        for (auto const& connection : owner.getConnections()) {
            auto const end = [](Kesto::DmPort const* port) {
                Kesto::DmNode const* const node = port->getNode();
                return (node != nullptr && !node->isSelfNode() ? node->getName() : std::string()) + "." +
                       port->getName();
            };
            out.push_back(end(connection->getSourcePort()) + " -> " + end(connection->getTargetPort()));
        }
        return out;
    }
};

TEST_F(DmReaderSeveralFilesTest, CompoundUsesTheOperatorsAndCompoundsOfItsDependency) {
    ASSERT_EQ(loadSetFile("400_shared_definitions", "main.json"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const main = compound("app::main");
    auto const twice = compound("lib::twice");
    auto const add = cppOperator("lib::add");
    ASSERT_TRUE(main && twice && add);
    EXPECT_EQ(definitionOf(*main, "first"), add.get());
    EXPECT_EQ(definitionOf(*main, "second"), twice.get());
    EXPECT_EQ(definitionOf(*twice, "add"), add.get());
    EXPECT_EQ(connectionsOf(*main),
              (std::vector<std::string>{".in -> first.a", "first.sum -> second.x", "second.y -> .out"}));
    auto const value =
        std::dynamic_pointer_cast<Kesto::DmFloatValue>((*main->findNode("first"))["b"]->getDefaultValue());
    ASSERT_TRUE(value);
    EXPECT_FLOAT_EQ(value->getData(), 1.5f);

    // Each definition keeps the URI of the file that holds it, and the main
    // file's URI lists the library file as its dependency.
    ASSERT_TRUE(uri("main.json") && uri("library.json"));
    EXPECT_EQ(main->getURI(), uri("main.json"));
    EXPECT_EQ(twice->getURI(), uri("library.json"));
    EXPECT_EQ(add->getURI(), uri("library.json"));
    EXPECT_TRUE(uri("main.json")->hasDependency(uri("library.json")));
    EXPECT_FALSE(uri("library.json")->hasDependency(uri("main.json")));
}

// The first file marks itself loaded and reads the second at once, before its
// own definitions exist: the second file's node on the first file's operator
// finds nothing, while the first file's node on the second's compound does.
TEST_F(DmReaderSeveralFilesTest, CycleOfDependenciesReadsEachFileOnceAndResolvesWhatExistsByThen) {
    EXPECT_EQ(loadSetFile("401_cycle", "first.json"), DmStatus::kSuccess);
    EXPECT_EQ(
        printed(),
        (std::vector<std::string>{
            KestoTest::line("warning", "file:///second.json", "Missing node type.",
                            "The node definition 'one::negate' could not be resolved for node 'negate'."),
            KestoTest::line("warning", "two::inner", "Connection failed.",
                            "One or more parameters are invalid in the connection involving '.v' and "
                            "'negate.v' (source or target nodes are not in compound).")}));
    auto const outer = compound("one::outer");
    auto const inner = compound("two::inner");
    ASSERT_TRUE(outer && inner);
    EXPECT_EQ(definitionOf(*outer, "inner"), inner.get());
    EXPECT_FALSE(inner->findNode("negate"));
    EXPECT_TRUE(uri("first.json")->hasDependency(uri("second.json")));
    EXPECT_TRUE(uri("second.json")->hasDependency(uri("first.json")));

    // Loading either file again reads nothing more.
    EXPECT_EQ(loadSetFile("401_cycle", "second.json"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_EQ(compound("two::inner"), inner);
}

TEST_F(DmReaderSeveralFilesTest, FileReachedTwiceThroughADiamondIsReadOnce) {
    ASSERT_EQ(loadSetFile("402_diamond", "main.json"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    ASSERT_TRUE(set("base::step"));
    EXPECT_EQ(set("base::step")->getOverloads().size(), 1u);
    auto const main = compound("top::main");
    ASSERT_TRUE(main);
    EXPECT_EQ(definitionOf(*main, "left"), cppOperator("left::step").get());
    EXPECT_EQ(definitionOf(*main, "right"), cppOperator("right::step").get());
    EXPECT_EQ(definitionOf(*main, "base"), cppOperator("base::step").get());
    EXPECT_EQ(connectionsOf(*main),
              (std::vector<std::string>{".v -> left.v", "left.r -> right.v", "right.r -> base.v"}));
    EXPECT_TRUE(uri("left.json")->hasDependency(uri("base.json")));
    EXPECT_TRUE(uri("right.json")->hasDependency(uri("base.json")));
    EXPECT_TRUE(uri("main.json")->hasDependency(uri("base.json")));
}

// Every graph file of the corpus and of its sets, one after the other into
// one library: the fixture checks that nothing outlives it.
TEST_F(DmReaderSeveralFilesTest, LoadingTheWholeCorpusIntoOneLibraryLeavesNothingBehind) {
    namespace fs = boost::filesystem;
    std::vector<std::string> files;
    for (fs::recursive_directory_iterator it(std::string(KESTODM_TEST_DATA_DIR) + "/reader"), end; it != end;
         ++it) {
        if (it->path().extension() == ".json") {
            files.push_back(it->path().string());
        }
    }
    std::sort(files.begin(), files.end());
    ASSERT_GE(files.size(), 20u);
    for (std::string const& file : files) {
        static_cast<void>(library().loadGraph(KestoTest::longForm(file), Kesto::DmLibrary::LoadOptions()));
    }
    static_cast<void>(printed());
}

} // namespace
