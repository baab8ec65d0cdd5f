#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmTerminalNodeDef.h>
#include <KestoDM/graph/DmTerminalStates.h>
#include <KestoDM/graph/DmUnknownNodeDef.h>
#include <KestoDM/graph/DmUnknownPortDescription.h>
#include <KestoDM/library/DmLibrary.h>

#include "graph/ModelTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace Kesto;
using KestoTest::input;
using KestoTest::makeNamespace;
using KestoTest::makeStruct;
using KestoTest::makeTerminalWithInputs;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::recordsOf;
using KestoTest::setOf;
using KestoTest::UserDef;

namespace {

std::shared_ptr<DmTerminalNodeDef> makeTerminal(std::string const& name = "result") {
    return DmTerminalNodeDef::createTerminalNodeDef(name, kNameVerbatim);
}

class DmTerminalNodeDefTest : public KestoTest::ModelTest {};
class DmTerminalStatesTest : public KestoTest::ModelTest {};

} // namespace

// ---------------------------------------------------------------------------
// Terminal definitions

TEST_F(DmTerminalNodeDefTest, TerminalIsALockedOverload) {
    static_assert(std::is_base_of<DmOverload, DmTerminalNodeDef>::value, "terminals stand in overload sets");
    auto const terminal = makeTerminal();
    ASSERT_NE(terminal, nullptr);
    EXPECT_EQ(terminal->getName(), "result");
    EXPECT_TRUE(terminal->isTerminal());
    EXPECT_TRUE(terminal->isOverloadsLocked());
    EXPECT_FALSE(terminal->isBuiltIn());
    EXPECT_FALSE(terminal->isConverter());
    EXPECT_FALSE(terminal->isUnknown());
    EXPECT_FALSE(terminal->isValueNodeDef());
    EXPECT_FALSE(terminal->isDefaultOverload());
    EXPECT_EQ(terminal->getScope(), nullptr);
}

TEST_F(DmTerminalNodeDefTest, CreateTerminalNodeDefRefusesTheEmptyName) {
    EXPECT_EQ(DmTerminalNodeDef::createTerminalNodeDef("", kNameVerbatim), nullptr);
    EXPECT_EQ(DmTerminalNodeDef::createTerminalNodeDef("", kNameLegalize), nullptr);
}

TEST_F(DmTerminalNodeDefTest, CreateTerminalNodeDefResolvesTheNameWithTheFlags) {
    auto const verbatim = DmTerminalNodeDef::createTerminalNodeDef("my result", kNameVerbatim);
    ASSERT_NE(verbatim, nullptr);
    EXPECT_EQ(verbatim->getName(), "my result");
    auto const legal = DmTerminalNodeDef::createTerminalNodeDef("my result", kNameLegalize);
    ASSERT_NE(legal, nullptr);
    EXPECT_EQ(legal->getName(), "my_result");
    EXPECT_EQ(DmTerminalNodeDef::createTerminalNodeDef("my result", kNameMustBeLegal), nullptr);
}

TEST_F(DmTerminalNodeDefTest, LockingATerminalSucceedsAndChangesNothing) {
    auto const terminal = makeTerminal();
    EXPECT_EQ(terminal->setOverloadsLocked(true), DmStatus::kSuccess);
    EXPECT_TRUE(terminal->isOverloadsLocked());
}

TEST_F(DmTerminalNodeDefTest, UnlockingATerminalFailsAndItStaysLocked) {
    auto const terminal = makeTerminal();
    EXPECT_EQ(terminal->setOverloadsLocked(false), DmStatus::kFailure);
    EXPECT_TRUE(terminal->isOverloadsLocked());
}

TEST_F(DmTerminalNodeDefTest, UnlockingAPlacedTerminalLeavesItsSetLocked) {
    auto const ns = makeNamespace("geo");
    auto const terminal = makeTerminal();
    ASSERT_EQ(terminal->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(terminal->setOverloadsLocked(false), DmStatus::kFailure);
    EXPECT_TRUE(terminal->isOverloadsLocked());
    EXPECT_TRUE(setOf(*ns, "result")->isOverloadsLocked());
}

TEST_F(DmTerminalNodeDefTest, TerminalCannotBeImported) {
    auto const ns = makeNamespace("target");
    auto const terminal = makeTerminal();
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(terminal->import(ns, kFailOnClash, "result", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(ns->getNodeDefs().empty());
}

TEST_F(DmTerminalNodeDefTest, PlacedTerminalIsTheDefaultOverloadOfItsSet) {
    auto const ns = makeNamespace("geo");
    auto const terminal = makeTerminal();
    EXPECT_EQ(terminal->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const set = setOf(*ns, "result");
    ASSERT_NE(set, nullptr);
    EXPECT_TRUE(terminal->isDefaultOverload());
    EXPECT_EQ(set->getDefaultOverload(), terminal.get());
    EXPECT_TRUE(set->isTerminal());
    EXPECT_TRUE(terminal->isSingle());
}

TEST_F(DmTerminalNodeDefTest, TerminalPlacedUnderANewNameIsTheDefaultOfItsOwnSet) {
    auto const ns = makeNamespace("geo");
    auto const first = makeTerminal();
    auto const second = makeTerminal();
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setScope(ns.get(), kMakeUnique), DmStatus::kSuccess);
    EXPECT_EQ(second->getName(), "result1");
    EXPECT_EQ(setOf(*ns, "result1")->getDefaultOverload(), second.get());
    EXPECT_EQ(setOf(*ns, "result")->getDefaultOverload(), first.get());
    EXPECT_TRUE(first->isDefaultOverload());
}

TEST_F(DmTerminalNodeDefTest, TerminalRefusedByItsScopeIsNoDefault) {
    auto const ns = makeNamespace("geo");
    auto const first = makeTerminal();
    auto const second = makeTerminal();
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setScope(ns.get(), kFailOnClash), DmStatus::kInvalidArgument);
    EXPECT_FALSE(second->isDefaultOverload());
    EXPECT_EQ(setOf(*ns, "result")->getDefaultOverload(), first.get());
}

TEST_F(DmTerminalNodeDefTest, TerminalHasNoOverloadSiblings) {
    auto const ns = makeNamespace("geo");
    auto const first = makeTerminal();
    auto const second = makeTerminal();
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kFailure);
    EXPECT_EQ(second->getScope(), nullptr);
    EXPECT_EQ(setOf(*ns, "result")->size(), 1u);
}

TEST_F(DmTerminalNodeDefTest, TerminalTakesInputs) {
    auto const terminal = makeTerminal();
    auto const a = input("a", DmLibrary::getIntType());
    auto const p = input("p", makeStruct("Point"));
    EXPECT_TRUE(terminal->addPortDescription(a, kFailOnClash));
    EXPECT_TRUE(terminal->addPortDescription(p, kFailOnClash));
    EXPECT_EQ(portNames(terminal->getPortsInterface().getPorts()), (std::vector<std::string>{"a", "p"}));
    EXPECT_EQ(a->getNodeDef(), terminal.get());
}

TEST_F(DmTerminalNodeDefTest, TerminalRefusesAnOutput) {
    auto const terminal = makeTerminal();
    auto const out = output("out", DmLibrary::getIntType());
    EXPECT_FALSE(terminal->addPortDescription(out, kFailOnClash));
    EXPECT_TRUE(terminal->getPortsInterface().empty());
    EXPECT_EQ(out->getNodeDef(), nullptr);
}

TEST_F(DmTerminalNodeDefTest, TerminalRefusesAnAutoInput) {
    auto const terminal = makeTerminal();
    auto const any = input("any", DmLibrary::getAutoType());
    EXPECT_FALSE(terminal->addPortDescription(any, kFailOnClash));
    EXPECT_TRUE(terminal->getPortsInterface().empty());
    EXPECT_EQ(any->getNodeDef(), nullptr);
}

TEST_F(DmTerminalNodeDefTest, TerminalTakesAnAutoInputOfAPlaceholderDescription) {
    auto const terminal = makeTerminal();
    auto const any = DmUnknownPortDescription::newPortDescription("any", DmLibrary::getAutoType(),
                                                                  kDirectionInput, kNameVerbatim);
    EXPECT_TRUE(terminal->addPortDescription(any, kFailOnClash));
    EXPECT_EQ(portNames(terminal->getPortsInterface().getPorts()), (std::vector<std::string>{"any"}));
}

TEST_F(DmTerminalNodeDefTest, TerminalInputRefusesTheAutoType) {
    auto const terminal = makeTerminalWithInputs();
    auto const a = terminal->getPortsInterface()["a"];
    EXPECT_FALSE(a->setType(DmLibrary::getAutoType()));
    EXPECT_EQ(a->getType(), DmLibrary::getIntType());
    EXPECT_TRUE(a->setType(DmLibrary::getFloatType()));
    EXPECT_EQ(a->getType(), DmLibrary::getFloatType());
}

TEST_F(DmTerminalNodeDefTest, NodeOnATerminalStartsWithNoStates) {
    auto const terminal = makeTerminalWithInputs();
    auto const node = DmNode::createNode("n", terminal);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_TRUE(node->getTerminalStates().empty());
    EXPECT_TRUE(node->getTerminalStates().isEnabled(terminal->getPortsInterface()["a"].get()));
}

TEST_F(DmTerminalNodeDefTest, NodesKeepTheirOwnStates) {
    auto const terminal = makeTerminalWithInputs();
    auto const first = DmNode::createNode("first", terminal);
    auto const second = DmNode::createNode("second", terminal);
    auto const a = terminal->getPortsInterface()["a"];
    ASSERT_EQ(first->getTerminalStates().setTerminalState(a, false), DmStatus::kSuccess);
    EXPECT_FALSE(first->getTerminalStates().isEnabled(a.get()));
    EXPECT_TRUE(second->getTerminalStates().isEnabled(a.get()));
    EXPECT_TRUE(second->getTerminalStates().empty());
}

// ---------------------------------------------------------------------------
// Terminal states

TEST_F(DmTerminalStatesTest, StateKeepsItsPortAndFlag) {
    auto const terminal = makeTerminalWithInputs();
    auto const a = terminal->getPortsInterface()["a"];
    DmTerminalState state(a, false);
    EXPECT_EQ(state.getPort(), a);
    EXPECT_FALSE(state.isEnabled());
    state.setEnabled(true);
    EXPECT_TRUE(state.isEnabled());
}

TEST_F(DmTerminalStatesTest, StateCopiesAndMovesByValue) {
    auto const terminal = makeTerminalWithInputs();
    auto const a = terminal->getPortsInterface()["a"];
    DmTerminalState original(a, true);
    DmTerminalState copy = original;
    copy.setEnabled(false);
    EXPECT_TRUE(original.isEnabled());
    EXPECT_EQ(copy.getPort(), a);
    DmTerminalState moved = std::move(copy);
    EXPECT_EQ(moved.getPort(), a);
    EXPECT_FALSE(moved.isEnabled());
}

TEST_F(DmTerminalStatesTest, NewStatesAreEmpty) {
    DmTerminalStates const states;
    EXPECT_TRUE(states.empty());
    EXPECT_EQ(states.size(), 0u);
    EXPECT_TRUE(states.getStates().empty());
    EXPECT_EQ(states.begin(), states.end());
}

TEST_F(DmTerminalStatesTest, PortNeverSetIsEnabled) {
    auto const terminal = makeTerminalWithInputs();
    DmTerminalStates states;
    EXPECT_TRUE(states.isEnabled(terminal->getPortsInterface()["a"].get()));
    ASSERT_EQ(states.setTerminalState(terminal->getPortsInterface()["b"], false), DmStatus::kSuccess);
    EXPECT_TRUE(states.isEnabled(terminal->getPortsInterface()["a"].get()));
}

TEST_F(DmTerminalStatesTest, SetTerminalStateRecordsTheFlag) {
    auto const terminal = makeTerminalWithInputs();
    auto const a = terminal->getPortsInterface()["a"];
    DmTerminalStates states;
    EXPECT_EQ(states.setTerminalState(a, false), DmStatus::kSuccess);
    EXPECT_EQ(states.size(), 1u);
    EXPECT_FALSE(states.isEnabled(a.get()));
    ASSERT_NE(states.find(a.get()), states.end());
    EXPECT_EQ(states.find(a.get())->getPort(), a);
}

TEST_F(DmTerminalStatesTest, EnabledStateIsRecordedToo) {
    auto const terminal = makeTerminalWithInputs();
    auto const a = terminal->getPortsInterface()["a"];
    DmTerminalStates states;
    EXPECT_EQ(states.setTerminalState(a, true), DmStatus::kSuccess);
    EXPECT_EQ(states.size(), 1u);
    EXPECT_TRUE(states.isEnabled(a.get()));
}

TEST_F(DmTerminalStatesTest, SettingAStateTwiceLeavesOneRecordWithTheLastFlag) {
    auto const terminal = makeTerminalWithInputs();
    auto const a = terminal->getPortsInterface()["a"];
    DmTerminalStates states;
    ASSERT_EQ(states.setTerminalState(a, false), DmStatus::kSuccess);
    EXPECT_EQ(states.setTerminalState(a, true), DmStatus::kSuccess);
    EXPECT_EQ(states.size(), 1u);
    EXPECT_TRUE(states.isEnabled(a.get()));
    EXPECT_EQ(states.setTerminalState(a, false), DmStatus::kSuccess);
    EXPECT_EQ(states.size(), 1u);
    EXPECT_FALSE(states.isEnabled(a.get()));
}

TEST_F(DmTerminalStatesTest, RecordsKeepTheOrderOfFirstSetting) {
    auto const terminal = makeTerminalWithInputs();
    auto const& ports = terminal->getPortsInterface();
    DmTerminalStates states;
    ASSERT_EQ(states.setTerminalState(ports["c"], true), DmStatus::kSuccess);
    ASSERT_EQ(states.setTerminalState(ports["a"], false), DmStatus::kSuccess);
    ASSERT_EQ(states.setTerminalState(ports["c"], false), DmStatus::kSuccess);
    ASSERT_EQ(states.setTerminalState(ports["b"], true), DmStatus::kSuccess);
    EXPECT_EQ(recordsOf(states), (std::vector<std::string>{"-c", "-a", "b"}));
}

TEST_F(DmTerminalStatesTest, PortWithoutDefinitionIsAnInvalidArgument) {
    auto const loose = input("loose", DmLibrary::getIntType());
    DmTerminalStates states;
    EXPECT_EQ(states.setTerminalState(loose, false), DmStatus::kInvalidArgument);
    EXPECT_TRUE(states.empty());
}

TEST_F(DmTerminalStatesTest, PortOfAnOrdinaryDefinitionIsAnInvalidArgumentAndAppendsNothing) {
    auto const def = UserDef::make("op");
    auto const x = input("x", DmLibrary::getIntType());
    ASSERT_TRUE(def->addPortDescription(x, kFailOnClash));
    DmTerminalStates states;
    EXPECT_EQ(states.setTerminalState(x, false), DmStatus::kInvalidArgument);
    EXPECT_TRUE(states.empty());
    EXPECT_TRUE(states.isEnabled(x.get()));
}

TEST_F(DmTerminalStatesTest, PortOfAPlaceholderDefinitionIsAccepted) {
    auto const placeholder = DmUnknownNodeDef::newUnknownNodeDef("missing");
    auto const x = input("x", DmLibrary::getIntType());
    ASSERT_TRUE(placeholder->addPortDescription(x, kFailOnClash));
    DmTerminalStates states;
    EXPECT_EQ(states.setTerminalState(x, false), DmStatus::kSuccess);
    EXPECT_FALSE(states.isEnabled(x.get()));
}

TEST_F(DmTerminalStatesTest, MemberOfATerminalInputIsAccepted) {
    auto const terminal = makeTerminal();
    auto const p = input("p", makeStruct("Point"));
    ASSERT_TRUE(terminal->addPortDescription(p, kFailOnClash));
    std::shared_ptr<DmPortDescription> member;
    ASSERT_TRUE(p->getMember("x", member));
    ASSERT_EQ(member->getNodeDef(), terminal.get());
    DmTerminalStates states;
    EXPECT_EQ(states.setTerminalState(member, false), DmStatus::kSuccess);
    EXPECT_FALSE(states.isEnabled(member.get()));
    EXPECT_TRUE(states.isEnabled(p.get()));
}

TEST_F(DmTerminalStatesTest, FindMatchesTheSameObjectOnly) {
    auto const terminal = makeTerminalWithInputs();
    auto const other = makeTerminalWithInputs();
    auto const a = terminal->getPortsInterface()["a"];
    DmTerminalStates states;
    ASSERT_EQ(states.setTerminalState(a, false), DmStatus::kSuccess);
    auto const namesake = other->getPortsInterface()["a"];
    EXPECT_EQ(states.find(namesake.get()), states.end());
    EXPECT_TRUE(states.isEnabled(namesake.get()));
    EXPECT_EQ(states.find(a.get()), states.begin());
}

TEST_F(DmTerminalStatesTest, RemoveStateKeepsTheOrderOfTheOthers) {
    auto const terminal = makeTerminalWithInputs();
    auto const& ports = terminal->getPortsInterface();
    DmTerminalStates states;
    ASSERT_EQ(states.setTerminalState(ports["a"], false), DmStatus::kSuccess);
    ASSERT_EQ(states.setTerminalState(ports["b"], false), DmStatus::kSuccess);
    ASSERT_EQ(states.setTerminalState(ports["c"], true), DmStatus::kSuccess);
    states.removeState(ports["b"].get());
    EXPECT_EQ(recordsOf(states), (std::vector<std::string>{"-a", "c"}));
    EXPECT_TRUE(states.isEnabled(ports["b"].get()));
}

TEST_F(DmTerminalStatesTest, RemoveStateOfAPortWithoutRecordDoesNothing) {
    auto const terminal = makeTerminalWithInputs();
    auto const& ports = terminal->getPortsInterface();
    DmTerminalStates states;
    ASSERT_EQ(states.setTerminalState(ports["a"], false), DmStatus::kSuccess);
    states.removeState(ports["b"].get());
    EXPECT_EQ(recordsOf(states), (std::vector<std::string>{"-a"}));
}

TEST_F(DmTerminalStatesTest, ClearDropsEveryRecord) {
    auto const terminal = makeTerminalWithInputs();
    auto const& ports = terminal->getPortsInterface();
    DmTerminalStates states;
    ASSERT_EQ(states.setTerminalState(ports["a"], false), DmStatus::kSuccess);
    ASSERT_EQ(states.setTerminalState(ports["b"], false), DmStatus::kSuccess);
    states.clear();
    EXPECT_TRUE(states.empty());
    EXPECT_TRUE(states.isEnabled(ports["a"].get()));
}

TEST_F(DmTerminalStatesTest, InvalidTerminalStatesAreEmptyAndOneObject) {
    auto const* const first = DmTerminalStates::getInvalidTerminalStates();
    auto const* const second = DmTerminalStates::getInvalidTerminalStates();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, second);
    EXPECT_TRUE(first->empty());
    EXPECT_EQ(first->size(), 0u);
}

TEST_F(DmTerminalStatesTest, StatesHoldTheirPortsAlive) {
    DmTerminalStates states;
    std::weak_ptr<DmPortDescription> watch;
    {
        auto const terminal = makeTerminal();
        auto const a = input("a", DmLibrary::getIntType());
        ASSERT_TRUE(terminal->addPortDescription(a, kFailOnClash));
        ASSERT_EQ(states.setTerminalState(a, false), DmStatus::kSuccess);
        ASSERT_TRUE(terminal->removePortDescription(a));
        watch = a;
    }
    EXPECT_FALSE(watch.expired());
    EXPECT_EQ(states.begin()->getPort(), watch.lock());
    states.clear();
    EXPECT_TRUE(watch.expired());
}
