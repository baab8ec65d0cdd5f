// Compound objects of a graph file: class, scope, nesting, flags, imported
// URI, reserved node names, terminal states, and what is refused.
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/graph/DmForEachCompound.h>
#include <KestoDM/graph/DmIterateCompound.h>
#include <KestoDM/graph/DmTerminalStates.h>
#include <KestoDM/graph/DmWhileCompound.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "reader/CompoundReadingSupport.h"
#include "reader/ModelComparison.h"

#include <gtest/gtest.h>

using namespace Kesto;
using KestoTest::joined;

namespace {

class DmReadCompoundsTest : public KestoTest::CompoundFileTest {
protected:
    /// "<terminal port name>=<on|off>" for each state, in order.
    static std::vector<std::string> statesOf(DmTerminalStates const& states) {
        std::vector<std::string> out;
        for (auto const& state : states) {
            out.push_back(state.getPort()->getName() + (state.isEnabled() ? "=on" : "=off"));
        }
        return out;
    }
};

} // namespace

TEST_F(DmReadCompoundsTest, CompoundIsMadeInTheNamespaceOfItsNameWithTheFilesURI) {
    ASSERT_EQ(loadCompounds(R"([{"name": " Math :: blur ", "ports": [],
                                  "metadata": [{"metaName": "author", "metaType": "string", "metaValue": "me"}]}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const blur = compound("Math::blur");
    ASSERT_TRUE(blur);
    EXPECT_EQ(typeid(*blur), typeid(DmCompound));
    EXPECT_EQ(blur->getName(), "blur");
    ASSERT_TRUE(blur->getScope());
    EXPECT_EQ(blur->getScope()->getLocalScopeName(), "Math");
    ASSERT_TRUE(blur->getURI());
    EXPECT_EQ(blur->getURI()->getName(), "file:///a.json");
    EXPECT_EQ(blur->getLibrary(), m_library.get().get());
    EXPECT_FALSE(blur->isComplete());
    EXPECT_FALSE(blur->getImportedURI());
    ASSERT_EQ(blur->getMetadata()->find("author").size(), 1u);
    std::string author;
    EXPECT_EQ(blur->getMetadata()->find("author").front()->getStringValue(author), DmStatus::kSuccess);
    EXPECT_EQ(author, "me");
}

TEST_F(DmReadCompoundsTest, CompoundsReadGoIntoTheResultMapParentsBeforeNested) {
    ASSERT_EQ(loadCompounds(R"([{"name": "a", "ports": [], "compounds": {"name": "in", "ports": []}},
                                 {"name": "N::b", "ports": []}])"),
              DmStatus::kSuccess);
    std::vector<std::string> keys;
    for (auto const& entry : *m_result) {
        keys.push_back(entry.first);
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"a", "a::in", "N::b"}));
    EXPECT_EQ((*m_result)["N::b"], compound("N::b"));
}

TEST_F(DmReadCompoundsTest, CompoundWithoutNameIsReportedAndLeftOutOfEveryPass) {
    ASSERT_EQ(
        loadCompounds(R"([{"ports": [], "compoundNodes": {"nodeName": "x", "nodeType": "Core::Graph::pass"}},
                                 {"name": "  ", "ports": []},
                                 {"name": "b", "ports": [],
                                  "compoundNodes": {"nodeName": "p", "nodeType": "Core::Graph::pass"}}])"),
        DmStatus::kSuccess);
    EXPECT_EQ(m_printed, (std::vector<std::string>{
                             warning("Missing compound name.", "Compound needs to have at least a name."),
                             warning("Missing compound name.", "Compound needs to have at least a name.")}));
    auto const b = compound("b");
    ASSERT_TRUE(b);
    ASSERT_EQ(b->getNodes().size(), 1u);
    EXPECT_TRUE(b->findNode("p"));
}

TEST_F(DmReadCompoundsTest, IllegalNameIsReportedAndTheCompoundStillMade) {
    ASSERT_EQ(loadCompounds(R"([{"name": "N::bad name", "ports": []}])"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed, (std::vector<std::string>{warning(
                             "Illegal compound name", "The compound \"N::bad name\" has an illegal name.")}));
    EXPECT_TRUE(compound("N::bad name"));
}

TEST_F(DmReadCompoundsTest, LoopKeysWhoseValueIsAnObjectDecideTheClass) {
    ASSERT_EQ(loadCompounds(R"([{"name": "w", "ports": [], "whileCompound": {"ports": []}},
                                 {"name": "i", "ports": [], "iterateCompound": {"ports": []}},
                                 {"name": "f", "ports": [], "forEachCompound": {"ports": []}},
                                 {"name": "notLoop", "ports": [], "whileCompound": "yes"},
                                 {"name": "first", "ports": [], "forEachCompound": {}, "iterateCompound": {"ports": []}}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    EXPECT_TRUE(std::dynamic_pointer_cast<DmWhileCompound>(compound("w")));
    EXPECT_TRUE(std::dynamic_pointer_cast<DmIterateCompound>(compound("i")));
    EXPECT_TRUE(std::dynamic_pointer_cast<DmForEachCompound>(compound("f")));
    ASSERT_TRUE(compound("notLoop"));
    EXPECT_EQ(typeid(*compound("notLoop")), typeid(DmCompound));
    EXPECT_TRUE(std::dynamic_pointer_cast<DmIterateCompound>(compound("first")));
    // Made by their factories: the while loop has its condition port.
    EXPECT_TRUE(compound("w")->getPortsInterface()[DmWhileCompound::kLoopingConditionPortName]);
}

TEST_F(DmReadCompoundsTest, NestedCompoundIsScopedInItsParent) {
    ASSERT_EQ(loadCompounds(R"([{"name": "N::outer", "ports": [],
                                  "compounds": [{"name": "inner", "ports": [],
                                                 "compounds": {"name": "N::outer::inner::deep", "ports": []}},
                                                {"name": "N::outer::second", "ports": []}]}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const outer = compound("N::outer");
    auto const inner = compound("N::outer::inner");
    ASSERT_TRUE(outer && inner);
    EXPECT_EQ(inner->getScope(), static_cast<DmScope*>(outer.get()));
    ASSERT_TRUE(compound("N::outer::inner::deep"));
    EXPECT_EQ(compound("N::outer::inner::deep")->getScope(), static_cast<DmScope*>(inner.get()));
    EXPECT_TRUE(compound("N::outer::second"));
    EXPECT_EQ(inner->getURI(), outer->getURI());
}

TEST_F(DmReadCompoundsTest, NestedCompoundWithTheScopeOfAnotherIsReportedAndStaysNested) {
    ASSERT_EQ(loadCompounds(R"([{"name": "other", "ports": []},
                                 {"name": "outer", "ports": [], "compounds": {"name": "other::inner", "ports": []}}])"),
              DmStatus::kFailure);
    EXPECT_EQ(m_printed,
              (std::vector<std::string>{
                  error("Bad nested compound scope.",
                        "The nested compound 'other::inner' does not have a valid scope. Its scope should be "
                        "'outer'.")}));
    auto const inner = compound("outer::inner");
    ASSERT_TRUE(inner);
    EXPECT_EQ(inner->getScope(), static_cast<DmScope*>(compound("outer").get()));
    EXPECT_FALSE(compound("other::inner"));
}

TEST_F(DmReadCompoundsTest, FlagsAreRead) {
    ASSERT_EQ(loadCompounds(R"([{"name": "on", "ports": [], "isConverter": "true", "isPromoter": "True",
                                  "isDefaultOverload": "TRUE", "overloadsUnlocked": "true"},
                                 {"name": "off", "ports": [], "isConverter": "yes", "isPromoter": true,
                                  "overloadsUnlocked": "false"}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const on = compound("on");
    auto const off = compound("off");
    ASSERT_TRUE(on && off);
    EXPECT_TRUE(on->isConverter());
    EXPECT_TRUE(on->isPromoter());
    EXPECT_TRUE(on->isDefaultOverload());
    EXPECT_FALSE(on->isOverloadsLocked());
    EXPECT_FALSE(off->isConverter());
    EXPECT_FALSE(off->isPromoter());
    EXPECT_FALSE(off->isDefaultOverload());
    EXPECT_TRUE(off->isOverloadsLocked());
}

TEST_F(DmReadCompoundsTest, NameClashIsAnErrorWithAHintAndTheFirstCompoundStays) {
    EXPECT_EQ(loadCompounds(R"([{"name": "N::twice", "ports": [], "metadata": {"metaName": "first"}},
                                 {"name": "N::twice", "ports": []}])"),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(
        m_printed,
        (std::vector<std::string>{
            error("Compound cannot be scoped.", "The compound N::twice could not be scoped into N."),
            info("Compound cannot be scoped.",
                 "Try changing the name resolution type or use a different name for compound N::twice.")}));
    ASSERT_TRUE(compound("N::twice"));
    EXPECT_EQ(compound("N::twice")->getMetadata()->find("first").size(), 1u);
}

TEST_F(DmReadCompoundsTest, NameClashInTheGlobalNamespaceNamesIt) {
    EXPECT_EQ(loadCompounds(R"([{"name": "twice", "ports": []}, {"name": "twice", "ports": []}])"),
              DmStatus::kInvalidArgument);
    ASSERT_FALSE(m_printed.empty());
    EXPECT_EQ(m_printed.front(), error("Compound cannot be scoped.",
                                       "The compound twice could not be scoped into _KestoGlobalNamespace."));
}

TEST_F(DmReadCompoundsTest, NameClashUnderMakeUniqueRenamesWithoutMessage) {
    EXPECT_EQ(load(R"(, "compounds": [{"name": "twice", "ports": []}, {"name": "twice", "ports": []}])",
                   "a.json", kMakeUnique),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    EXPECT_EQ(m_result->size(), 2u);
}

TEST_F(DmReadCompoundsTest, ShortImportedURIIsReportedWithTheKeysName) {
    ASSERT_EQ(loadCompounds(R"([{"name": "c", "ports": [], "uriImported": "a"}])"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed,
              (std::vector<std::string>{warning("Imported uri is too short.",
                                                "Imported uri uriImported may be missing its prefix.")}));
    EXPECT_FALSE(compound("c")->getImportedURI());
}

TEST_F(DmReadCompoundsTest, ImportedURIIsResolvedNextToTheFile) {
    m_dir.write("lib/source.json", KestoTest::graphText());
    ASSERT_EQ(loadCompounds(R"([{"name": "c", "ports": [], "uriImported": "file:///lib/source.json"}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    ASSERT_TRUE(compound("c")->getImportedURI());
    EXPECT_EQ(compound("c")->getImportedURI()->getName(), "file:///source.json");
    EXPECT_TRUE(compound("c")->isImported());
}

TEST_F(DmReadCompoundsTest, ImportedURIWithoutResolverIsReported) {
    ASSERT_EQ(loadCompounds(R"([{"name": "c", "ports": [], "uriImported": "nowhere:///x.json"}])"),
              DmStatus::kSuccess);
    EXPECT_EQ(m_printed, (std::vector<std::string>{
                             warning("Undefined resolver scheme.",
                                     "'nowhere:///x.json' does not match a registered resolver.")}));
    EXPECT_FALSE(compound("c")->getImportedURI());
}

TEST_F(DmReadCompoundsTest, CompoundWithoutPortListIsReported) {
    ASSERT_EQ(loadCompounds(R"([{"name": "N::none"}, {"name": "text", "ports": "x"}])"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed,
              (std::vector<std::string>{warning("Missing compound port interface.",
                                                "The compound 'N::none' does not have a port interface."),
                                        warning("Missing compound port interface.",
                                                "The compound 'text' does not have a port interface.")}));
    EXPECT_TRUE(compound("N::none"));
}

TEST_F(DmReadCompoundsTest, MetadataOfTheWrongFormIsReported) {
    ASSERT_EQ(loadCompounds(R"([{"name": "c", "ports": [], "metadata": "x"}])"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed,
              (std::vector<std::string>{warning("Incorrect metadata format.",
                                                "The compound 'c' has an incorrect metadata format.")}));
}

TEST_F(DmReadCompoundsTest, ReservedNodeNamesTakeEveryStringMember) {
    ASSERT_EQ(loadCompounds(R"([{"name": "c", "ports": [],
                                  "reservedNodeNames": [{"name": "keep"}, {"a": "x", "b": "y", "n": true}]}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const c = compound("c");
    ASSERT_TRUE(c && c->getReservedNodeNames());
    std::vector<std::string> names;
    for (auto const& name : *c->getReservedNodeNames()) {
        names.push_back(name.str());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"keep", "x", "y"}));
    EXPECT_TRUE(c->isReservedNodeName("x"));
}

TEST_F(DmReadCompoundsTest, ReservedNodeNamesOfTheWrongFormAreAnError) {
    EXPECT_EQ(loadCompounds(R"([{"name": "c", "ports": [], "reservedNodeNames": "keep"}])"),
              DmStatus::kFailure);
    EXPECT_EQ(m_printed, (std::vector<std::string>{
                             error("Incorrect reservedNodeNames format.",
                                   "The compound 'c' has an incorrect reservedNodeNames format.")}));
}

TEST_F(DmReadCompoundsTest, TerminalStatesOfACompoundAreRead) {
    makeTerminal("Out::Term", "on");
    makeTerminal("Out::Other", "lit");
    ASSERT_EQ(loadCompounds(R"([{"name": "c", "ports": [],
                                  "terminalStates": [{"name": "Out::Term::on", "enabled": "false"},
                                                     {"name": "Out::Other::lit", "enabled": "true"}]}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    EXPECT_EQ(statesOf(compound("c")->getDefaultTerminalStates()),
              (std::vector<std::string>{"on=off", "lit=on"}));
}

TEST_F(DmReadCompoundsTest, OlderDisabledTerminalsMetadataIsAppliedAndRemoved) {
    makeTerminal("Term", "on");
    ASSERT_EQ(loadCompounds(R"([{"name": "c", "ports": [],
                                  "metadata": [{"metaName": "terminal_node_disabled_flags",
                                                "metadata": [{"metaName": "t", "metaType": "string",
                                                              "metaValue": "Term::on"}]},
                                               {"metaName": "kept"}]}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const c = compound("c");
    EXPECT_EQ(statesOf(c->getDefaultTerminalStates()), (std::vector<std::string>{"on=off"}));
    EXPECT_TRUE(c->getMetadata()->find("terminal_node_disabled_flags").empty());
    EXPECT_EQ(c->getMetadata()->find("kept").size(), 1u);
}

TEST_F(DmReadCompoundsTest, TerminalStatesOfTheWrongFormAreReported) {
    makeTerminal("Term", "on");
    ASSERT_EQ(loadCompounds(R"([{"name": "c", "ports": [], "terminalStates": "Term::on"},
                                 {"name": "d", "ports": [],
                                  "terminalStates": ["Term::on", {"enabled": "true"}, {"name": "Term::on"}]}])"),
              DmStatus::kSuccess);
    EXPECT_EQ(
        m_printed,
        (std::vector<std::string>{
            warning("Invalid array format.", "The 'terminalStates' for compound 'c' should be an array."),
            warning("Deactivated terminal port should be specified as a object.",
                    "The array values for 'terminalStates' on compound 'd' should be specified as object."),
            warning(
                "Missing member 'name'.",
                "The objects inside the array 'terminalStates' must have the member 'name' on compound 'd'."),
            warning("Missing member 'enabled'.",
                    "The objects inside the array 'terminalStates' must have the "
                    "member 'enabled' on compound 'd'.")}));
    EXPECT_TRUE(compound("d")->getDefaultTerminalStates().empty());
}

TEST_F(DmReadCompoundsTest, TerminalStatesThatNameNoTerminalPortAreReported) {
    makeTerminal("Term", "on");
    ASSERT_EQ(loadCompounds(R"([{"name": "c", "ports": [],
                                  "terminalStates": [{"name": "Missing::on", "enabled": "false"},
                                                     {"name": "Core::Graph::pass::input", "enabled": "false"},
                                                     {"name": "Term::off", "enabled": "false"},
                                                     {"name": "Term::bad port", "enabled": "false"}]}])"),
              DmStatus::kSuccess);
    EXPECT_EQ(
        m_printed,
        (std::vector<std::string>{
            warning(
                "Missing terminal node definition.",
                "The terminal node definition 'Missing' could not be resolved for deactivated terminal 'on' "
                "on compound c"),
            warning("Missing terminal node definition.",
                    "The node definition 'Core::Graph::pass' is not a terminal node definition."),
            warning("Terminal port not found.",
                    "The port 'off' could not be found on the terminal node definition 'Term'."),
            warning("Illegal terminal port name",
                    "The deactivated terminal port 'bad port' on compound 'c' has an illegal name."),
            warning("Terminal port not found.",
                    "The port 'bad port' could not be found on the terminal node definition 'Term'.")}));
    EXPECT_TRUE(compound("c")->getDefaultTerminalStates().empty());
}

namespace {

// One model in two layouts: the second file has its sections, its objects
// and the keys of its objects in other orders.
std::string const kWriterOrder = R"(, "types": {"structName": "Geo::Point", "structMembers": [
        {"memberName": "x", "memberType": "int"}, {"memberName": "y", "memberType": "int"}]},
    "compounds": [
      {"name": "Geo::shift", "metadata": {"metaName": "author", "metaType": "string", "metaValue": "me"},
       "ports": [{"portName": "p", "portDirection": "input", "portType": "Geo::Point"},
                 {"portName": "q", "portDirection": "output", "portType": "Geo::Point"}],
       "compounds": {"name": "inner", "ports": []},
       "compoundNodes": [{"nodeName": "a", "nodeType": "Core::Graph::pass"},
                         {"nodeName": "g", "nodeType": "Core::Array::get_from_array"},
                         {"nodeName": "i", "nodeType": "inner"}],
       "connections": [{"source": ".p", "target": "a.input"}, {"source": "a.output", "target": ".q"}],
       "values": {"valueName": "g.index", "value": "2"},
       "watchPoints": {"portName": "a.output", "enabled": "true", "parameters": {"k": "v"}},
       "reservedNodeNames": {"name": "keep"}},
      {"name": "Geo::loop", "ports": [
          {"portName": "s", "portDirection": "input", "portType": "array<int>"},
          {"portName": "t", "portDirection": "output", "portType": "array<int>"}],
       "whileCompound": {"ports": {"portKind": "state", "inputPortName": "s", "outputPortName": "t"}}}]})";

std::string const kOtherOrder = R"(, "compounds": [
      {"whileCompound": {"ports": {"outputPortName": "t", "inputPortName": "s", "portKind": "state"}},
       "ports": [{"portType": "array<int>", "portDirection": "input", "portName": "s"},
                 {"portName": "t", "portType": "array<int>", "portDirection": "output"}],
       "name": "Geo::loop"},
      {"reservedNodeNames": [{"name": "keep"}],
       "watchPoints": [{"parameters": [{"k": "v"}], "enabled": "true", "portName": "a.output"}],
       "values": [{"value": "2", "valueName": "g.index"}],
       "connections": [{"source": ".p", "target": "a.input"}, {"target": ".q", "source": "a.output"}],
       "compoundNodes": [{"nodeType": "Core::Graph::pass", "nodeName": "a"},
                         {"nodeName": "g", "nodeType": "Core::Array::get_from_array"},
                         {"nodeType": "inner", "nodeName": "i"}],
       "compounds": [{"ports": [], "name": "inner"}],
       "ports": [{"portType": "Geo::Point", "portName": "p", "portDirection": "input"},
                 {"portDirection": "output", "portName": "q", "portType": "Geo::Point"}],
       "metadata": [{"metaValue": "me", "metaType": "string", "metaName": "author"}],
       "name": "Geo::shift"}],
    "types": [{"structMembers": [{"memberType": "int", "memberName": "x"}, {"memberName": "y", "memberType": "int"}],
               "structName": "Geo::Point"}]})";

} // namespace

TEST(DmReadCompoundsOrderTest, SectionsObjectsAndKeysInAnyOrderBuildEqualModels) {
    KestoTest::TempDir dir;
    KestoTest::PrintingLibrary first;
    KestoTest::PrintingLibrary second;
    std::string const a = dir.write("a.json", "{" + KestoTest::kHeader + kWriterOrder);
    std::string const b = dir.write("b.json", "{" + KestoTest::kHeader + kOtherOrder);
    ASSERT_EQ(first.load("file://" + a), DmStatus::kSuccess);
    ASSERT_EQ(second.load("file://" + b), DmStatus::kSuccess);
    EXPECT_TRUE(first.takePrinted().empty());
    EXPECT_TRUE(second.takePrinted().empty());
    ASSERT_EQ(first->getCompounds().size(), 2u);
    EXPECT_TRUE(KestoTest::equalModels(*first, *second));
}

TEST(DmReadCompoundsOrderTest, ModelComparisonTellsADifference) {
    KestoTest::TempDir dir;
    KestoTest::PrintingLibrary first;
    KestoTest::PrintingLibrary second;
    std::string other = kOtherOrder;
    other.replace(other.find(R"("value": "2")"), 12, R"("value": "3")");
    ASSERT_EQ(first.load("file://" + dir.write("a.json", "{" + KestoTest::kHeader + kWriterOrder)),
              DmStatus::kSuccess);
    ASSERT_EQ(second.load("file://" + dir.write("b.json", "{" + KestoTest::kHeader + other)),
              DmStatus::kSuccess);
    EXPECT_FALSE(KestoTest::equalModels(*first, *second));
}
