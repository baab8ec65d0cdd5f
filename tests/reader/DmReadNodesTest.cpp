// Nodes of a compound in a graph file: value nodes by type, definitions
// found from the compound outward, multi-in and fan-in entries, terminal
// states, and what is refused.
#include <KestoDM/graph/DmTerminalStates.h>
#include <KestoDM/graph/DmValueNodeDef.h>
#include <KestoDM/types/DmMetadata.h>

#include "reader/CompoundReadingSupport.h"

#include <gtest/gtest.h>

using namespace Kesto;
using KestoTest::joined;

namespace {

class DmReadNodesTest : public KestoTest::CompoundFileTest {
protected:
    /// Loads one compound "c" whose nodes are `nodes`, the text of the list.
    DmStatus loadNodes(std::string const& nodes, std::string const& more = std::string()) {
        return loadCompounds(R"([{"name": "c", "ports": [], "compoundNodes": )" + nodes + more + "}]");
    }

    std::shared_ptr<DmNode> node(std::string const& name) const {
        auto const c = compound("c");
        return c ? c->findNode(name) : nullptr;
    }

    static std::string definitionOf(DmNode const& node) {
        std::string out;
        if (node.getNodeDef() != nullptr) {
            node.getNodeDef()->resolveFullName(out);
        }
        return out;
    }
};

} // namespace

TEST_F(DmReadNodesTest, NodeIsMadeOnTheNamedDefinitionWithItsMetadata) {
    ASSERT_EQ(loadNodes(R"([{"nodeName": "p", "nodeType": " Core :: Graph :: pass ",
                             "metadata": {"metaName": "posX", "metaValue": "3L"}}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const p = node("p");
    ASSERT_TRUE(p);
    EXPECT_EQ(definitionOf(*p), "Core::Graph::pass");
    EXPECT_TRUE((*p)["input"] && (*p)["output"]);
    EXPECT_EQ(p->getMetadata()->find("posX").size(), 1u);
    EXPECT_EQ(p->getOwner(), compound("c").get());
}

TEST_F(DmReadNodesTest, ValueNodeIsMadeOnTheValueDefinitionOfItsType) {
    ASSERT_EQ(loadNodes(R"([{"nodeName": "v", "valueType": "long"},
                            {"nodeName": "w", "valueType": "int", "nodeType": "Core::Graph::pass"}])"),
              DmStatus::kSuccess);
    EXPECT_EQ(m_printed, (std::vector<std::string>{warning(
                             "Malformed value node definition.",
                             "The value node 'w' has an extra nodeType field that will be ignored.")}));
    ASSERT_TRUE(node("v") && node("w"));
    EXPECT_EQ(node("v")->getNodeDef(), DmValueNodeDef::getValueNodeDef(DmLibrary::getLongType()).get());
    EXPECT_TRUE(node("w")->getNodeDef()->isValueNodeDef());
    EXPECT_EQ(node("w")->getNodeDef(), DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType()).get());
}

TEST_F(DmReadNodesTest, ValueNodeOfAnArrayOfAutoIsReported) {
    ASSERT_EQ(loadNodes(R"([{"nodeName": "v", "valueType": "array<auto>"}])"), DmStatus::kSuccess);
    ASSERT_FALSE(m_printed.empty());
    EXPECT_EQ(m_printed.front(), warning("Illegal array of auto type.",
                                         "The value node definition 'array<auto>' has illegal type."));
}

TEST_F(DmReadNodesTest, ValueNodeOfAnUndefinedTypeIsReported) {
    ASSERT_EQ(loadNodes(R"([{"nodeName": "v", "valueType": "Nowhere::Thing"}])"), DmStatus::kSuccess);
    ASSERT_FALSE(m_printed.empty());
    EXPECT_EQ(m_printed.front(), warning("Undefined value type.",
                                         "The value node definition 'Nowhere::Thing' has undefined type."));
}

TEST_F(DmReadNodesTest, NodeWithoutNameOrDefinitionIsReportedAndSkipped) {
    ASSERT_EQ(loadNodes(R"([{"nodeType": "Core::Graph::pass"}, {"nodeName": "", "valueType": "int"},
                            {"nodeName": "bare"}, {"nodeName": "lost", "nodeType": "No::Such::op"},
                            {"nodeName": "ok", "nodeType": "Core::Graph::pass"}])"),
              DmStatus::kSuccess);
    EXPECT_EQ(m_printed,
              (std::vector<std::string>{
                  warning("Missing node name.", "Node needs to have at least a name."),
                  warning("Missing node name.", "Node needs to have at least a name."),
                  warning("Missing node type.", "The node 'bare' is missing its node definition."),
                  warning("Missing node type.",
                          "The node definition 'No::Such::op' could not be resolved for node 'lost'.")}));
    ASSERT_EQ(compound("c")->getNodes().size(), 1u);
    EXPECT_TRUE(node("ok"));
}

TEST_F(DmReadNodesTest, IllegalNodeNameIsReportedAndTheNodeStillMade) {
    ASSERT_EQ(loadNodes(R"([{"nodeName": "a b", "nodeType": "Core::Graph::pass"}])"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed,
              (std::vector<std::string>{
                  warning("Illegal node name", "The node \"a b\" in compound \"c\" has an illegal name.")}));
    EXPECT_TRUE(node("a b"));
}

TEST_F(DmReadNodesTest, NodeNamesACompoundThatStandsLaterInTheFile) {
    ASSERT_EQ(loadCompounds(R"([{"name": "user", "ports": [],
                                  "compoundNodes": {"nodeName": "n", "nodeType": "Lib::later"}},
                                 {"name": "Lib::later", "ports": []}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const n = compound("user")->findNode("n");
    ASSERT_TRUE(n);
    EXPECT_EQ(definitionOf(*n), "Lib::later");
}

TEST_F(DmReadNodesTest, DefinitionIsFoundFromTheCompoundOutwardOrFromTheGlobalNamespaceAfterColons) {
    ASSERT_EQ(loadCompounds(R"([{"name": "helper", "ports": []},
                                 {"name": "N::helper", "ports": []},
                                 {"name": "N::user", "ports": [],
                                  "compounds": {"name": "helper", "ports": []},
                                  "compoundNodes": [{"nodeName": "nested", "nodeType": "helper"},
                                                    {"nodeName": "global", "nodeType": "::helper"},
                                                    {"nodeName": "path", "nodeType": "N::helper"}]},
                                 {"name": "N::other", "ports": [],
                                  "compoundNodes": {"nodeName": "sibling", "nodeType": "helper"}}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const user = compound("N::user");
    EXPECT_EQ(definitionOf(*user->findNode("nested")), "N::user::helper");
    EXPECT_EQ(definitionOf(*user->findNode("global")), "helper");
    EXPECT_EQ(definitionOf(*user->findNode("path")), "N::helper");
    EXPECT_EQ(definitionOf(*compound("N::other")->findNode("sibling")), "N::helper");
}

TEST_F(DmReadNodesTest, SecondNodeOfOneNameIsDroppedAndConnectionsGoToTheFirst) {
    ASSERT_EQ(loadNodes(R"([{"nodeName": "a", "nodeType": "Core::Graph::pass"},
                            {"nodeName": "b", "nodeType": "Core::Graph::pass"},
                            {"nodeName": "b", "valueType": "int"}])",
                        R"(, "connections": {"source": "a.output", "target": "b.input"})"),
              DmStatus::kSuccess);
    EXPECT_EQ(m_printed, (std::vector<std::string>{warning(
                             "Duplicate node name.", "Node name 'b' is not unique for this compound.")}));
    auto const b = node("b");
    ASSERT_TRUE(b);
    EXPECT_EQ(definitionOf(*b), "Core::Graph::pass");
    ASSERT_EQ(compound("c")->getConnections().size(), 1u);
    EXPECT_EQ(b->getConnections().size(), 1u);
}

TEST_F(DmReadNodesTest, MultiInEntriesAreAddedOnAnAssociativeDefinition) {
    ASSERT_EQ(loadNodes(R"([{"nodeName": "b", "nodeType": "Core::Array::build_array",
                             "multiInPortNames": ["e0", "e1", "e2"]}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const multiIn = node("b")->getMultiInPort();
    ASSERT_TRUE(multiIn);
    std::vector<std::string> entries;
    for (auto const& entry : multiIn->getMembers()) {
        entries.push_back(entry.first);
    }
    EXPECT_EQ(entries, (std::vector<std::string>{"e0", "e1", "e2"}));
}

TEST_F(DmReadNodesTest, MultiInEntriesOfTheWrongKindAreReported) {
    ASSERT_EQ(loadNodes(R"([{"nodeName": "p", "nodeType": "Core::Graph::pass", "multiInPortNames": ["e0"]},
                            {"nodeName": "b", "nodeType": "Core::Array::build_array", "multiInPortNames": "e0"},
                            {"nodeName": "d", "nodeType": "Core::Array::build_array",
                             "multiInPortNames": ["x y", ""]}])"),
              DmStatus::kFailure);
    EXPECT_EQ(
        m_printed,
        (std::vector<std::string>{
            warning("Illegal use of multi-in port names.",
                    "The multi-in port names on node 'p' cannot be used because it does not refer to an "
                    "associative node definition."),
            error("Invalid array format.", "The multi-in port names for node 'b' should be an array."),
            warning("Illegal port name", "The port \"x y\" on node \"d\" has an illegal name."),
            warning("Illegal port name", "The port \"\" on node \"d\" has an illegal name."),
            error("Cannot add multi-in port.",
                  "The port member '' could not be added as multi-in port to node 'd'.")}));
}

TEST_F(DmReadNodesTest, FanInPortsAreTheNamedOnesWithTheirMembers) {
    ASSERT_EQ(loadNodes(R"([{"nodeName": "e", "nodeType": "Core::Error::error",
                             "fanInPortNames": {"input": ["m0", "m1"]}}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const e = node("e");
    ASSERT_TRUE(e);
    EXPECT_TRUE((*e)["input"]->isFanIn());
    EXPECT_FALSE((*e)["message"]->isFanIn());
    std::vector<std::string> members;
    for (auto const& entry : (*e)["input"]->getMembers()) {
        members.push_back(entry.first);
    }
    EXPECT_EQ(members, (std::vector<std::string>{"m0", "m1"}));
}

TEST_F(DmReadNodesTest, FanInPortsOfTheWrongKindAreReported) {
    ASSERT_EQ(loadNodes(R"([{"nodeName": "b", "nodeType": "Core::Array::build_array", "fanInPortNames": {}},
                            {"nodeName": "p", "nodeType": "Core::Graph::pass", "fanInPortNames": ["input"]},
                            {"nodeName": "q", "nodeType": "Core::Graph::pass",
                             "fanInPortNames": {"nothing": [], "output": [], "input": ["a b", ""]}}])"),
              DmStatus::kFailure);
    EXPECT_EQ(
        m_printed,
        (std::vector<std::string>{
            warning("Illegal use of fan-in port names.",
                    "The fan-in ports on node 'b' cannot be used because it refers to an associative node "
                    "definition."),
            error("Invalid object format.", "The fan-in port names for node 'p' must be an object."),
            error("Cannot find fan-in parent port. ", "The port 'nothing' could not be found on node 'q'."),
            error("Unable to set fan-in. ", "Unable to set port 'output' on node 'q' as fan-in."),
            warning("Illegal port name", "The port \"a b\" on node \"q\" has an illegal name."),
            warning("Illegal port name", "The port \"\" on node \"q\" has an illegal name."),
            error("Cannot add fan-in port member. ",
                  "The port member '' could not be added as fan-in port member to port 'input' on node "
                  "'q'.")}));
}

TEST_F(DmReadNodesTest, TerminalStatesOfANodeAreRead) {
    makeTerminal("Term", "on");
    makeTerminal("Other", "lit");
    ASSERT_EQ(loadNodes(R"([{"nodeName": "p", "nodeType": "Core::Graph::pass",
                             "terminalStates": [{"name": "Term::on", "enabled": "false"},
                                                {"name": "Other::lit", "enabled": "true"}]}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const& states = node("p")->getTerminalStates();
    ASSERT_EQ(states.size(), 2u);
    EXPECT_EQ(states.getStates()[0].getPort()->getName(), "on");
    EXPECT_FALSE(states.getStates()[0].isEnabled());
    EXPECT_TRUE(states.getStates()[1].isEnabled());
}

TEST_F(DmReadNodesTest, TerminalStatesOfANodeOfTheWrongFormAreReported) {
    makeTerminal("Term", "on");
    ASSERT_EQ(loadNodes(R"([{"nodeName": "p", "nodeType": "Core::Graph::pass", "terminalStates": "x"},
                            {"nodeName": "q", "nodeType": "Core::Graph::pass",
                             "terminalStates": [1, {"enabled": "true"}, {"name": "Term::on"},
                                                {"name": "Nope::on", "enabled": "false"}]}])"),
              DmStatus::kSuccess);
    EXPECT_EQ(
        m_printed,
        (std::vector<std::string>{
            warning("Invalid array format.", "The 'terminalStates' for node 'p' should be an array."),
            warning("Terminal port should be specified as a object.",
                    "The array values for 'terminalStates' on node 'q' should be specified as object."),
            warning("Missing member 'name'.",
                    "The objects inside the array 'terminalStates' must have the member 'name' on node 'q'."),
            warning(
                "Missing member 'enabled'.",
                "The objects inside the array 'terminalStates' must have the member 'enabled' on node 'q'."),
            warning(
                "Missing terminal node definition.",
                "The terminal node definition 'Nope' could not be resolved for deactivated terminal 'on' on "
                "node q")}));
}

TEST_F(DmReadNodesTest, DeactivatedTerminalsTurnTerminalsOffUnlessTerminalStatesAreGiven) {
    makeTerminal("Term", "on");
    ASSERT_EQ(
        loadNodes(
            R"([{"nodeName": "p", "nodeType": "Core::Graph::pass", "deactivatedTerminals": ["Term::on"]},
                            {"nodeName": "q", "nodeType": "Core::Graph::pass", "deactivatedTerminals": ["Term::on"],
                             "terminalStates": {"name": "Term::on", "enabled": "true"}}])"),
        DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    ASSERT_EQ(node("p")->getTerminalStates().size(), 1u);
    EXPECT_FALSE(node("p")->getTerminalStates().getStates()[0].isEnabled());
    ASSERT_EQ(node("q")->getTerminalStates().size(), 1u);
    EXPECT_TRUE(node("q")->getTerminalStates().getStates()[0].isEnabled());
}

TEST_F(DmReadNodesTest, DeactivatedTerminalsOfTheWrongFormAreReported) {
    makeTerminal("Term", "on");
    ASSERT_EQ(
        loadNodes(R"([{"nodeName": "p", "nodeType": "Core::Graph::pass", "deactivatedTerminals": "Term::on"},
                            {"nodeName": "q", "nodeType": "Core::Graph::pass",
                             "deactivatedTerminals": [{"name": "Term::on"}, "Term::bad port"]}])"),
        DmStatus::kSuccess);
    EXPECT_EQ(
        m_printed,
        (std::vector<std::string>{
            warning("Invalid array format.",
                    "The deactivated terminal names for node 'p' should be an array."),
            warning(
                "Deactivated terminal port should be specified as a string.",
                "The array values for 'deactivatedTerminals' on node 'q' should be specified as strings."),
            warning("Illegal terminal port name",
                    "The deactivated terminal port 'bad port' on node 'q' has an illegal name."),
            warning("Terminal port not found.",
                    "The port 'bad port' could not be found on the terminal node definition 'Term'.")}));
}
