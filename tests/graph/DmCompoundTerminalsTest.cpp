// Terminals inside compounds: terminal definitions placed in a compound,
// terminal nodes among a compound's nodes and connections, the states each
// terminal node holds for its inputs, and the default states a compound keeps
// for the terminals inside it.
#include "graph/CompoundTestSupport.h"

#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/graph/DmTerminalNodeDef.h>
#include <KestoDM/graph/DmTerminalStates.h>
#include <KestoDM/graph/DmUnknownNodeDef.h>
#include <KestoDM/graph/DmUnknownPortDescription.h>
#include <KestoDM/library/DmLibrary.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kesto;
using KestoTest::addNode;
using KestoTest::described;
using KestoTest::input;
using KestoTest::makeOp;
using KestoTest::makeTerminalWithInputs;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::recordsOf;
using KestoTest::setOf;

using Names = std::vector<std::string>;

class DmCompoundTerminalsTest : public KestoTest::CompoundTest {};

/// The description of a node's port, as the node's states know it.
std::shared_ptr<DmPortDescription> portOf(DmNode const& node, std::string const& name) {
    return node[name]->getPortDescription();
}

} // namespace

// ---------------------------------------------------------------------------
// Terminal definitions inside a compound

TEST_F(DmCompoundTerminalsTest, TerminalPlacedInCompoundIsPrivateDefaultOverload) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    EXPECT_EQ(terminal->setScope(compound.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(terminal->getScope(), compound.get());
    EXPECT_TRUE(terminal->isPrivate());
    EXPECT_TRUE(terminal->isDefaultOverload());
    auto set = setOf(*compound, "result");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->getDefaultOverload(), terminal.get());
    EXPECT_TRUE(set->isTerminal());
    // A terminal is no scope: nothing nests in the compound.
    EXPECT_TRUE(compound->getNestedScopes().empty());
}

TEST_F(DmCompoundTerminalsTest, SecondTerminalOfOneNameIsNoOverloadInCompound) {
    auto compound = makeCompound();
    auto first = makeTerminalWithInputs();
    auto second = makeTerminalWithInputs();
    ASSERT_EQ(first->setScope(compound.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setScope(compound.get(), kAsOverload), DmStatus::kFailure);
    EXPECT_EQ(second->getScope(), nullptr);
    EXPECT_FALSE(second->isDefaultOverload());
    EXPECT_EQ(setOf(*compound, "result")->size(), 1u);
}

TEST_F(DmCompoundTerminalsTest, SecondTerminalOfOneNameIsRefusedUnderFailOnClash) {
    auto compound = makeCompound();
    auto first = makeTerminalWithInputs();
    auto second = makeTerminalWithInputs();
    ASSERT_EQ(first->setScope(compound.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setScope(compound.get(), kFailOnClash), DmStatus::kInvalidArgument);
    EXPECT_EQ(second->getScope(), nullptr);
}

TEST_F(DmCompoundTerminalsTest, SecondTerminalOfOneNameIsRenamedUnderMakeUnique) {
    auto compound = makeCompound();
    auto first = makeTerminalWithInputs();
    auto second = makeTerminalWithInputs();
    ASSERT_EQ(first->setScope(compound.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setScope(compound.get(), kMakeUnique), DmStatus::kSuccess);
    EXPECT_EQ(second->getName(), "result1");
    EXPECT_EQ(setOf(*compound, "result1")->getDefaultOverload(), second.get());
    EXPECT_EQ(setOf(*compound, "result")->getDefaultOverload(), first.get());
}

TEST_F(DmCompoundTerminalsTest, NestedCompoundCannotJoinATerminalsName) {
    auto outer = makeCompound("outer");
    auto terminal = makeTerminalWithInputs("inner");
    ASSERT_EQ(terminal->setScope(outer.get(), kFailOnClash), DmStatus::kSuccess);
    auto inner = makeCompound("inner");
    EXPECT_EQ(inner->setScope(outer.get(), kAsOverload), DmStatus::kFailure);
    EXPECT_EQ(inner->getScope(), nullptr);
    EXPECT_EQ(inner->getParentScope(), nullptr);
    EXPECT_TRUE(outer->getNestedScopes().empty());
    EXPECT_EQ(setOf(*outer, "inner")->size(), 1u);
}

TEST_F(DmCompoundTerminalsTest, CompoundIsNoTerminal) {
    auto compound = makeCompound();
    EXPECT_FALSE(compound->isTerminal());
}

// ---------------------------------------------------------------------------
// Terminal nodes among a compound's nodes

TEST_F(DmCompoundTerminalsTest, TerminalNodeInCompoundHasInputsOnly) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    ASSERT_EQ(terminal->setScope(compound.get(), kFailOnClash), DmStatus::kSuccess);
    auto node = addNode(*compound, "t", terminal);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "c"}));
    for (auto const& entry : node->getPorts()) {
        EXPECT_TRUE(entry.second->isInput()) << entry.first;
    }
    EXPECT_EQ(node->getOwner(), compound.get());
}

TEST_F(DmCompoundTerminalsTest, TerminalNodeInputsTakeConnections) {
    auto compound = makeCompound();
    compound->addPortDescription(input("x", DmLibrary::getIntType()), kFailOnClash);
    auto terminal = makeTerminalWithInputs();
    auto op = makeOp();
    addNode(*compound, "t", terminal);
    addNode(*compound, "n", op);
    std::shared_ptr<DmConnection> connection;
    EXPECT_EQ(compound->makeConnection("n.out", "t.a", connection), DmStatus::kSuccess);
    EXPECT_EQ(compound->makeConnection(".x", "t.b", connection), DmStatus::kSuccess);
    EXPECT_EQ(compound->getConnections().size(), 2u);
}

TEST_F(DmCompoundTerminalsTest, TerminalNodeInputIsNoSource) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    auto op = makeOp();
    addNode(*compound, "t", terminal);
    addNode(*compound, "n", op);
    std::shared_ptr<DmConnection> connection;
    DmCompound::ConnectionFailureType failure = DmCompound::kConnectionOk;
    EXPECT_EQ(compound->makeConnection("t.a", "n.in", false, connection, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionSourceNotOutput);
    EXPECT_TRUE(compound->getConnections().empty());
}

TEST_F(DmCompoundTerminalsTest, TerminalNodeOnTheTerminalsSetShowsItsInputs) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    ASSERT_EQ(terminal->setScope(compound.get(), kFailOnClash), DmStatus::kSuccess);
    auto set = setOf(*compound, "result");
    auto node = addNode(*compound, "t", set);
    EXPECT_EQ(node->getNodeDef(), set.get());
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "c"}));
}

// ---------------------------------------------------------------------------
// States of terminal nodes

TEST_F(DmCompoundTerminalsTest, TerminalNodeStartsWithNoStatesAndEveryInputEnabled) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    auto node = addNode(*compound, "t", terminal);
    EXPECT_TRUE(node->getTerminalStates().empty());
    for (auto const& name : {"a", "b", "c"}) {
        EXPECT_TRUE(node->getTerminalStates().isEnabled(portOf(*node, name).get())) << name;
    }
}

TEST_F(DmCompoundTerminalsTest, TerminalNodeRecordsADisabledInput) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    auto node = addNode(*compound, "t", terminal);
    EXPECT_EQ(node->getTerminalStates().setTerminalState(portOf(*node, "b"), false), DmStatus::kSuccess);
    EXPECT_FALSE(node->getTerminalStates().isEnabled(portOf(*node, "b").get()));
    EXPECT_TRUE(node->getTerminalStates().isEnabled(portOf(*node, "a").get()));
    EXPECT_EQ(recordsOf(node->getTerminalStates()), (Names{"-b"}));
}

TEST_F(DmCompoundTerminalsTest, SettingANodesStateTwiceLeavesOneRecordWithTheLastFlag) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    auto node = addNode(*compound, "t", terminal);
    auto& states = node->getTerminalStates();
    ASSERT_EQ(states.setTerminalState(portOf(*node, "a"), false), DmStatus::kSuccess);
    ASSERT_EQ(states.setTerminalState(portOf(*node, "c"), false), DmStatus::kSuccess);
    EXPECT_EQ(states.setTerminalState(portOf(*node, "a"), true), DmStatus::kSuccess);
    EXPECT_EQ(recordsOf(states), (Names{"a", "-c"}));
    EXPECT_TRUE(states.isEnabled(portOf(*node, "a").get()));
}

TEST_F(DmCompoundTerminalsTest, TerminalNodesOfOneDefinitionKeepTheirOwnStates) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    auto first = addNode(*compound, "first", terminal);
    auto second = addNode(*compound, "second", terminal);
    ASSERT_EQ(first->getTerminalStates().setTerminalState(portOf(*first, "a"), false), DmStatus::kSuccess);
    EXPECT_FALSE(first->getTerminalStates().isEnabled(portOf(*first, "a").get()));
    EXPECT_TRUE(second->getTerminalStates().isEnabled(portOf(*second, "a").get()));
    EXPECT_TRUE(second->getTerminalStates().empty());
    EXPECT_TRUE(compound->getDefaultTerminalStates().empty());
}

TEST_F(DmCompoundTerminalsTest, NodeStateOfAnOrdinaryPortIsRefusedAndAppendsNothing) {
    auto compound = makeCompound();
    auto op = makeOp();
    auto node = addNode(*compound, "n", op);
    EXPECT_EQ(node->getTerminalStates().setTerminalState(portOf(*node, "in"), false),
              DmStatus::kInvalidArgument);
    EXPECT_TRUE(node->getTerminalStates().empty());
}

TEST_F(DmCompoundTerminalsTest, NodeOnTheTerminalsSetTakesStatesOfItsPorts) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    ASSERT_EQ(terminal->setScope(compound.get(), kFailOnClash), DmStatus::kSuccess);
    auto node = addNode(*compound, "t", setOf(*compound, "result"));
    EXPECT_EQ(node->getTerminalStates().setTerminalState(portOf(*node, "a"), false), DmStatus::kSuccess);
    EXPECT_EQ(recordsOf(node->getTerminalStates()), (Names{"-a"}));
}

TEST_F(DmCompoundTerminalsTest, NodeOnPlaceholderKeepsTerminalStates) {
    auto compound = makeCompound();
    auto placeholder = DmUnknownNodeDef::newUnknownNodeDef("lost");
    auto port = DmUnknownPortDescription::newPortDescription("a", DmLibrary::getAutoType(), kDirectionInput,
                                                             kNameVerbatim);
    ASSERT_TRUE(placeholder->addPortDescription(port, kFailOnClash));
    auto node = addNode(*compound, "t", placeholder);
    EXPECT_EQ(node->getTerminalStates().setTerminalState(portOf(*node, "a"), false), DmStatus::kSuccess);
    EXPECT_FALSE(node->getTerminalStates().isEnabled(port.get()));
}

TEST_F(DmCompoundTerminalsTest, RemovedTerminalNodeTakesItsStatesAlong) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    unsigned int const descriptions = count<DmPortDescription>();
    {
        auto node = addNode(*compound, "t", terminal);
        ASSERT_EQ(node->getTerminalStates().setTerminalState(portOf(*node, "a"), false), DmStatus::kSuccess);
        ASSERT_EQ(compound->removeNode(node), DmStatus::kSuccess);
    }
    EXPECT_TRUE(compound->getNodes().empty());
    EXPECT_TRUE(terminal->getInstantiatedNodes().empty());
    EXPECT_EQ(count<DmPortDescription>(), descriptions);
}

// ---------------------------------------------------------------------------
// A compound's default states

TEST_F(DmCompoundTerminalsTest, CompoundStartsWithNoDefaultStates) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    EXPECT_TRUE(compound->getDefaultTerminalStates().empty());
    EXPECT_EQ(compound->getDefaultTerminalStates().size(), 0u);
    EXPECT_TRUE(compound->getDefaultTerminalStates().isEnabled(described(*terminal, "a").get()));
}

TEST_F(DmCompoundTerminalsTest, CompoundRecordsDefaultStatesOfItsTerminals) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    ASSERT_EQ(terminal->setScope(compound.get(), kFailOnClash), DmStatus::kSuccess);
    auto& defaults = compound->getDefaultTerminalStates();
    EXPECT_EQ(defaults.setTerminalState(described(*terminal, "c"), false), DmStatus::kSuccess);
    EXPECT_EQ(defaults.setTerminalState(described(*terminal, "a"), true), DmStatus::kSuccess);
    EXPECT_EQ(recordsOf(defaults), (Names{"-c", "a"}));
    EXPECT_FALSE(defaults.isEnabled(described(*terminal, "c").get()));
    EXPECT_TRUE(defaults.isEnabled(described(*terminal, "b").get()));
    EXPECT_NE(defaults.find(described(*terminal, "c").get()), defaults.end());
    EXPECT_EQ(defaults.find(described(*terminal, "b").get()), defaults.end());
}

TEST_F(DmCompoundTerminalsTest, SettingADefaultStateTwiceLeavesOneRecordWithTheLastFlag) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    auto& defaults = compound->getDefaultTerminalStates();
    ASSERT_EQ(defaults.setTerminalState(described(*terminal, "b"), false), DmStatus::kSuccess);
    EXPECT_EQ(defaults.setTerminalState(described(*terminal, "b"), true), DmStatus::kSuccess);
    EXPECT_EQ(defaults.size(), 1u);
    EXPECT_EQ(recordsOf(defaults), (Names{"b"}));
}

TEST_F(DmCompoundTerminalsTest, DefaultStateOfAnOrdinaryPortIsRefusedAndAppendsNothing) {
    auto compound = makeCompound();
    auto op = makeOp();
    EXPECT_EQ(compound->getDefaultTerminalStates().setTerminalState(described(*op, "in"), false),
              DmStatus::kInvalidArgument);
    EXPECT_TRUE(compound->getDefaultTerminalStates().empty());
}

TEST_F(DmCompoundTerminalsTest, DefaultStateOfTheCompoundsOwnPortIsRefused) {
    auto compound = makeCompound();
    ASSERT_TRUE(compound->addPortDescription(input("x", DmLibrary::getIntType()), kFailOnClash));
    auto& defaults = compound->getDefaultTerminalStates();
    EXPECT_EQ(defaults.setTerminalState(described(*compound, "x"), false), DmStatus::kInvalidArgument);
    EXPECT_EQ(defaults.setTerminalState((*compound->getSelfNode())["x"]->getPortDescription(), false),
              DmStatus::kInvalidArgument);
    EXPECT_TRUE(defaults.empty());
}

TEST_F(DmCompoundTerminalsTest, DefaultStateOfAPortWithoutDefinitionIsRefused) {
    auto compound = makeCompound();
    auto loose = input("a", DmLibrary::getIntType());
    EXPECT_EQ(compound->getDefaultTerminalStates().setTerminalState(loose, false),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(compound->getDefaultTerminalStates().setTerminalState(nullptr, false),
              DmStatus::kInvalidArgument);
    EXPECT_TRUE(compound->getDefaultTerminalStates().empty());
}

TEST_F(DmCompoundTerminalsTest, DefaultStateOfAPlaceholdersPortIsKept) {
    auto compound = makeCompound();
    auto placeholder = DmUnknownNodeDef::newUnknownNodeDef("lost");
    auto port = DmUnknownPortDescription::newPortDescription("a", DmLibrary::getAutoType(), kDirectionInput,
                                                             kNameVerbatim);
    ASSERT_TRUE(placeholder->addPortDescription(port, kFailOnClash));
    EXPECT_EQ(compound->getDefaultTerminalStates().setTerminalState(port, false), DmStatus::kSuccess);
    EXPECT_FALSE(compound->getDefaultTerminalStates().isEnabled(port.get()));
}

TEST_F(DmCompoundTerminalsTest, RemovingADefaultStateKeepsTheOrderOfTheOthers) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    auto& defaults = compound->getDefaultTerminalStates();
    for (auto const& name : {"a", "b", "c"}) {
        ASSERT_EQ(defaults.setTerminalState(described(*terminal, name), false), DmStatus::kSuccess);
    }
    defaults.removeState(described(*terminal, "b").get());
    EXPECT_EQ(recordsOf(defaults), (Names{"-a", "-c"}));
    EXPECT_TRUE(defaults.isEnabled(described(*terminal, "b").get()));
    defaults.removeState(described(*terminal, "b").get());
    EXPECT_EQ(defaults.size(), 2u);
    defaults.clear();
    EXPECT_TRUE(defaults.empty());
}

TEST_F(DmCompoundTerminalsTest, DefaultStatesAndNodeStatesAreApart) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    auto node = addNode(*compound, "t", terminal);
    ASSERT_EQ(compound->getDefaultTerminalStates().setTerminalState(described(*terminal, "a"), false),
              DmStatus::kSuccess);
    EXPECT_TRUE(node->getTerminalStates().empty());
    EXPECT_TRUE(node->getTerminalStates().isEnabled(portOf(*node, "a").get()));
    EXPECT_NE(&node->getTerminalStates(), &compound->getDefaultTerminalStates());
}

TEST_F(DmCompoundTerminalsTest, CloneStartsWithoutDefaultStates) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    ASSERT_EQ(compound->getDefaultTerminalStates().setTerminalState(described(*terminal, "a"), false),
              DmStatus::kSuccess);
    auto clone = compound->clone();
    EXPECT_TRUE(clone->getDefaultTerminalStates().empty());
    EXPECT_EQ(compound->getDefaultTerminalStates().size(), 1u);
}

TEST_F(DmCompoundTerminalsTest, InvalidTerminalStatesAreEmptyOneObjectAndNoNodesOrCompounds) {
    auto compound = makeCompound();
    auto terminal = makeTerminalWithInputs();
    auto node = addNode(*compound, "t", terminal);
    DmTerminalStates const* const invalid = DmTerminalStates::getInvalidTerminalStates();
    ASSERT_NE(invalid, nullptr);
    EXPECT_TRUE(invalid->empty());
    EXPECT_EQ(DmTerminalStates::getInvalidTerminalStates(), invalid);
    EXPECT_NE(invalid, &node->getTerminalStates());
    EXPECT_NE(invalid, &compound->getDefaultTerminalStates());
    ASSERT_EQ(node->getTerminalStates().setTerminalState(portOf(*node, "a"), false), DmStatus::kSuccess);
    EXPECT_TRUE(DmTerminalStates::getInvalidTerminalStates()->empty());
}

// ---------------------------------------------------------------------------
// Lifetime

TEST_F(DmCompoundTerminalsTest, DefaultStatesKeepARemovedPortAliveUntilTheCompoundGoes) {
    unsigned int const descriptions = count<DmPortDescription>();
    std::weak_ptr<DmPortDescription> weak;
    {
        auto compound = makeCompound();
        auto terminal = makeTerminalWithInputs();
        auto a = described(*terminal, "a");
        weak = a;
        ASSERT_EQ(compound->getDefaultTerminalStates().setTerminalState(a, false), DmStatus::kSuccess);
        ASSERT_TRUE(terminal->removePortDescription(a));
        a.reset();
        EXPECT_FALSE(weak.expired());
        EXPECT_EQ(compound->getDefaultTerminalStates().size(), 1u);
    }
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(count<DmPortDescription>(), descriptions);
}

TEST_F(DmCompoundTerminalsTest, DroppingCompoundReleasesItsTerminalsNodesAndStates) {
    unsigned int const compounds = count<DmCompound>();
    unsigned int const nodes = count<DmNode>();
    unsigned int const defs = count<DmNodeDef>();
    unsigned int const descriptions = count<DmPortDescription>();
    {
        auto compound = makeCompound();
        auto terminal = makeTerminalWithInputs();
        ASSERT_EQ(terminal->setScope(compound.get(), kFailOnClash), DmStatus::kSuccess);
        auto op = makeOp();
        auto node = addNode(*compound, "t", terminal);
        addNode(*compound, "n", op);
        std::shared_ptr<DmConnection> connection;
        ASSERT_EQ(compound->makeConnection("n.out", "t.a", connection), DmStatus::kSuccess);
        ASSERT_EQ(node->getTerminalStates().setTerminalState(portOf(*node, "b"), false), DmStatus::kSuccess);
        ASSERT_EQ(compound->getDefaultTerminalStates().setTerminalState(described(*terminal, "c"), false),
                  DmStatus::kSuccess);
    }
    EXPECT_EQ(count<DmCompound>(), compounds);
    EXPECT_EQ(count<DmNode>(), nodes);
    EXPECT_EQ(count<DmNodeDef>(), defs);
    EXPECT_EQ(count<DmPortDescription>(), descriptions);
}
