#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/graph/DmLoopingCompound.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmWhileCompound.h>
#include <KestoDM/library/DmLibrary.h>

#include "graph/LoopTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::arrayOf;
using KestoTest::input;
using KestoTest::insideOf;
using KestoTest::loopingSelfNodeOf;
using KestoTest::makeWhile;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::withRole;

namespace {

class DmWhileCompoundTest : public KestoTest::LoopTest {};

/// A while loop as its constructor leaves it: not yet initialized, so
/// without its condition.
class BareWhile : public DmWhileCompound {
public:
    BareWhile() : DmWhileCompound(InternalConstructor(), "loop") {}
};

} // namespace

// ---------------------------------------------------------------------------
// The looping condition

TEST_F(DmWhileCompoundTest, WhileLoopRunsOverNoArray) {
    auto const loop = makeWhile();
    auto const* const selfNode = loopingSelfNodeOf(*loop);
    ASSERT_NE(selfNode, nullptr);
    EXPECT_FALSE(selfNode->isArrayLoop());
    EXPECT_STREQ(DmWhileCompound::kIcon, "../icons/LoopDo_While.svg");
    EXPECT_STREQ(DmWhileCompound::kLoopingConditionPortName, "looping_condition");
}

TEST_F(DmWhileCompoundTest, InitializeMakesTheBoolConditionOutput) {
    auto const loop = makeWhile();
    auto const condition = loop->getPortsInterface()["looping_condition"];
    ASSERT_NE(condition, nullptr);
    EXPECT_EQ(condition->getName(), "looping_condition");
    EXPECT_EQ(condition->getType(), DmLibrary::getBoolType());
    EXPECT_EQ(condition->getDirection(), kDirectionOutput);
    EXPECT_EQ(condition->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(condition->getNodeDef(), loop.get());
    EXPECT_TRUE(condition->isComplete());
}

TEST_F(DmWhileCompoundTest, ConditionIsAnInputInside) {
    auto const loop = makeWhile();
    auto const condition = loop->getLoopingConditionPort();
    ASSERT_NE(condition, nullptr);
    EXPECT_EQ(condition, (*loop->getSelfNode())["looping_condition"]);
    EXPECT_EQ(condition->getNode(), loop->getSelfNode().get());
    EXPECT_TRUE(condition->isInput());
    EXPECT_EQ(condition->getPortDescription()->getType(), DmLibrary::getBoolType());
}

TEST_F(DmWhileCompoundTest, ConditionPortIsNullBeforeInitialize) {
    auto const loop = std::make_shared<BareWhile>();
    EXPECT_EQ(loop->getLoopingConditionPort(), nullptr);
    EXPECT_EQ(loop->getPortsInterface()["looping_condition"], nullptr);
}

TEST_F(DmWhileCompoundTest, FactoryHandsOutTheLoopWithItsCondition) {
    auto const loop = DmWhileCompound::createWhileCompound("loop");
    ASSERT_NE(loop, nullptr);
    auto const condition = loop->getLoopingConditionPort();
    ASSERT_NE(condition, nullptr);
    EXPECT_TRUE(condition->isInput());
    EXPECT_EQ(condition->getPortDescription()->getType(), DmLibrary::getBoolType());
    auto const outside = loop->getPortsInterface()["looping_condition"];
    ASSERT_NE(outside, nullptr);
    EXPECT_TRUE(outside->isOutput());
}

TEST_F(DmWhileCompoundTest, ConditionComesBeforeThePortsAddedLater) {
    auto const loop = makeWhile();
    loop->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    EXPECT_EQ(portNames(loop->getPortsInterface()), (std::vector<std::string>{"looping_condition", "a"}));
    EXPECT_EQ(portNames(loop->getSelfNode()->getPorts()),
              (std::vector<std::string>{"looping_condition", "a"}));
}

TEST_F(DmWhileCompoundTest, ConditionIsTheOnlyReservedPortName) {
    auto const loop = makeWhile();
    EXPECT_TRUE(loop->isReservedPortName("looping_condition"));
    EXPECT_FALSE(loop->isReservedPortName("Looping_condition"));
    EXPECT_FALSE(loop->isReservedPortName("looping_condition1"));
    EXPECT_FALSE(loop->isReservedPortName("condition"));
    EXPECT_FALSE(loop->isReservedPortName(""));
}

TEST_F(DmWhileCompoundTest, WhileRefusesToLoseItsCondition) {
    auto const loop = makeWhile();
    auto const condition = loop->getPortsInterface()["looping_condition"];
    auto const inside = loop->getLoopingConditionPort();
    EXPECT_FALSE(loop->removePortDescription(condition));
    EXPECT_EQ(loop->getPortsInterface()["looping_condition"], condition);
    EXPECT_EQ(loop->getLoopingConditionPort(), inside);
    EXPECT_EQ(condition->getNodeDef(), loop.get());
}

TEST_F(DmWhileCompoundTest, NewPortNamedAsTheConditionIsRenamed) {
    auto const loop = makeWhile();
    auto const port = input("looping_condition", DmLibrary::getBoolType());
    ASSERT_TRUE(loop->addPortDescription(port, kMakeUnique));
    EXPECT_EQ(port->getName(), "looping_condition1");
    EXPECT_EQ(loop->getPortsInterface()["looping_condition1"], port);
    EXPECT_EQ(portNames(loop->getPortsInterface()),
              (std::vector<std::string>{"looping_condition", "looping_condition1"}));
}

TEST_F(DmWhileCompoundTest, NewPortNamedAsTheConditionIsRefusedUnderFailOnClash) {
    auto const loop = makeWhile();
    auto const port = input("looping_condition", DmLibrary::getBoolType());
    EXPECT_FALSE(loop->addPortDescription(port, kFailOnClash));
    EXPECT_EQ(port->getName(), "looping_condition");
    EXPECT_EQ(port->getNodeDef(), nullptr);
    EXPECT_EQ(loop->getPortsInterface().size(), 1u);
}

TEST_F(DmWhileCompoundTest, ReservedNameIsRenamedEvenWhenFree) {
    auto const loop = std::make_shared<BareWhile>();
    ASSERT_EQ(loop->getPortsInterface()["looping_condition"], nullptr);
    std::string name = "looping_condition";
    loop->getUniquePortName(name);
    EXPECT_EQ(name, "looping_condition1");
    std::string other = "free";
    loop->getUniquePortName(other);
    EXPECT_EQ(other, "free");
}

TEST_F(DmWhileCompoundTest, PortRenamedToTheConditionNameIsMadeUnique) {
    auto const loop = makeWhile();
    auto const port = input("a", DmLibrary::getIntType());
    loop->addPortDescription(port, kFailOnClash);
    EXPECT_TRUE(port->setName("looping_condition", kMakeUnique, kNameVerbatim));
    EXPECT_EQ(port->getName(), "looping_condition1");
    EXPECT_EQ(loop->getPortsInterface()["looping_condition1"], port);
    EXPECT_NE((*loop->getSelfNode())["looping_condition1"], nullptr);
    EXPECT_EQ(loop->getLoopingConditionPort()->getPortDescription()->getType(), DmLibrary::getBoolType());
}

TEST_F(DmWhileCompoundTest, CloneHasItsOwnCondition) {
    auto const loop = makeWhile();
    auto const clone = std::dynamic_pointer_cast<DmWhileCompound>(loop->clone());
    ASSERT_NE(clone, nullptr);
    ASSERT_NE(clone->getLoopingConditionPort(), nullptr);
    EXPECT_NE(clone->getPortsInterface()["looping_condition"],
              loop->getPortsInterface()["looping_condition"]);
    EXPECT_EQ(clone->getPortsInterface()["looping_condition"]->getNodeDef(), clone.get());
}

// ---------------------------------------------------------------------------
// Targets

TEST_F(DmWhileCompoundTest, WhileSelfNodeNeverShowsAnOutputTarget) {
    auto const loop = makeWhile();
    auto const port = withRole(output("gathered", m_intArray), kIterationTarget);
    EXPECT_TRUE(loop->addPortDescription(port, kFailOnClash));
    EXPECT_EQ(loop->getPortsInterface()["gathered"], port);
    EXPECT_EQ((*loop->getSelfNode())["gathered"], nullptr);
    EXPECT_FALSE(loop->getInternalSelfNode()->addPort(port, true));
    EXPECT_EQ((*loop->getSelfNode())["gathered"], nullptr);
}

TEST_F(DmWhileCompoundTest, WhileSelfNodeKeepsAnOutputThatBecomesATarget) {
    auto const loop = makeWhile();
    loop->addPortDescription(output("result", m_intArray), kFailOnClash);
    auto const before = insideOf(*loop, "result");
    auto const replacement = withRole(output("result", m_intArray), kIterationTarget);
    EXPECT_TRUE(loop->replaceExistingPort(replacement));
    EXPECT_EQ(loop->getPortsInterface()["result"], replacement);
    EXPECT_EQ(insideOf(*loop, "result"), before);
    EXPECT_FALSE(before->isIterationTarget());
}

TEST_F(DmWhileCompoundTest, WhileSelfNodeShowsAnInputTargetOneElementAtATime) {
    auto const loop = makeWhile();
    loop->addPortDescription(withRole(input("items", m_intArray), kIterationTarget), kFailOnClash);
    auto const inside = insideOf(*loop, "items");
    ASSERT_NE(inside, nullptr);
    EXPECT_EQ(inside->getType(), DmLibrary::getIntType());
    EXPECT_EQ(inside->getDirection(), kDirectionOutput);
}

TEST_F(DmWhileCompoundTest, RemovingAHiddenOutputTargetRemovesIt) {
    auto const loop = makeWhile();
    auto const port = withRole(output("gathered", m_intArray), kIterationTarget);
    loop->addPortDescription(port, kFailOnClash);
    EXPECT_TRUE(loop->removePortDescription(port));
    EXPECT_EQ(loop->getPortsInterface()["gathered"], nullptr);
}

// ---------------------------------------------------------------------------
// State pairs

TEST_F(DmWhileCompoundTest, LinkStatePortsPairsTheSelfNodeDescriptions) {
    auto const loop = makeWhile();
    loop->addPortDescription(input("start", m_intArray), kFailOnClash);
    loop->addPortDescription(output("next", m_intArray), kFailOnClash);
    ASSERT_TRUE(loop->linkStatePorts("start", "next"));
    auto const start = insideOf(*loop, "start");
    auto const next = insideOf(*loop, "next");
    EXPECT_EQ(start->getLinkedPort(), next.get());
    EXPECT_EQ(next->getLinkedPort(), start.get());
    EXPECT_TRUE(start->isIterationState());
    EXPECT_TRUE(next->isIterationState());
    EXPECT_FALSE(loop->getPortsInterface()["start"]->isLinked());
}

TEST_F(DmWhileCompoundTest, LinkStatePortsWithAMissingPortIsFalse) {
    auto const loop = makeWhile();
    loop->addPortDescription(input("start", m_intArray), kFailOnClash);
    EXPECT_FALSE(loop->linkStatePorts("start", "missing"));
    EXPECT_FALSE(loop->linkStatePorts("missing", "start"));
    EXPECT_FALSE(insideOf(*loop, "start")->isLinked());
    EXPECT_EQ(insideOf(*loop, "start")->getIterationAttribute(), kIterationNone);
}

TEST_F(DmWhileCompoundTest, LinkStatePortsMissesAHiddenOutputTarget) {
    auto const loop = makeWhile();
    loop->addPortDescription(input("start", m_intArray), kFailOnClash);
    loop->addPortDescription(withRole(output("gathered", m_intArray), kIterationTarget), kFailOnClash);
    EXPECT_FALSE(loop->linkStatePorts("start", "gathered"));
    EXPECT_FALSE(insideOf(*loop, "start")->isLinked());
}

TEST_F(DmWhileCompoundTest, LinkStatePortsJoinsATargetAndANonTarget) {
    auto const loop = makeWhile();
    loop->addPortDescription(withRole(input("items", m_intArray), kIterationTarget), kFailOnClash);
    loop->addPortDescription(output("next", m_intArray), kFailOnClash);
    EXPECT_TRUE(loop->linkStatePorts("items", "next"));
    EXPECT_EQ(insideOf(*loop, "items")->getLinkedPort(), insideOf(*loop, "next").get());
    EXPECT_TRUE(insideOf(*loop, "items")->isIterationState());
}

TEST_F(DmWhileCompoundTest, ConditionCanCarryAState) {
    auto const loop = makeWhile();
    loop->addPortDescription(input("again", DmLibrary::getBoolType()), kFailOnClash);
    EXPECT_TRUE(loop->linkStatePorts("again", "looping_condition"));
    EXPECT_EQ(loop->getLoopingConditionPort()->getPortDescription()->getLinkedPort(),
              insideOf(*loop, "again").get());
}

TEST_F(DmWhileCompoundTest, ResetStatePortDissolvesThePair) {
    auto const loop = makeWhile();
    loop->addPortDescription(input("start", m_intArray), kFailOnClash);
    loop->addPortDescription(output("next", m_intArray), kFailOnClash);
    ASSERT_TRUE(loop->linkStatePorts("start", "next"));
    EXPECT_TRUE(loop->resetStatePort("next"));
    for (auto const& name : {"start", "next"}) {
        auto const inside = insideOf(*loop, name);
        EXPECT_FALSE(inside->isLinked()) << name;
        EXPECT_EQ(inside->getIterationAttribute(), kIterationNone) << name;
    }
}

TEST_F(DmWhileCompoundTest, ResetStatePortOfAMissingPortIsFalse) {
    auto const loop = makeWhile();
    EXPECT_FALSE(loop->resetStatePort("missing"));
}

TEST_F(DmWhileCompoundTest, ResetStatePortOfAnUnlinkedPortIsFalseAndKeepsItsRole) {
    auto const loop = makeWhile();
    loop->addPortDescription(withRole(input("items", m_intArray), kIterationTarget), kFailOnClash);
    EXPECT_FALSE(loop->resetStatePort("items"));
    EXPECT_TRUE(insideOf(*loop, "items")->isIterationTarget());
}

TEST_F(DmWhileCompoundTest, RemovingAStatePortFreesItsPartner) {
    auto const loop = makeWhile();
    loop->addPortDescription(input("start", m_intArray), kFailOnClash);
    loop->addPortDescription(output("next", m_intArray), kFailOnClash);
    ASSERT_TRUE(loop->linkStatePorts("start", "next"));
    EXPECT_TRUE(loop->removePortDescription(loop->getPortsInterface()["next"]));
    EXPECT_FALSE(insideOf(*loop, "start")->isLinked());
    EXPECT_EQ(insideOf(*loop, "start")->getIterationAttribute(), kIterationNone);
}

// ---------------------------------------------------------------------------
// Lifetime

TEST_F(DmWhileCompoundTest, WhileWithLinkedPortsLeavesNothingBehind) {
    unsigned int const whiles = count<DmWhileCompound>();
    {
        auto const loop = makeWhile();
        loop->addPortDescription(input("again", DmLibrary::getBoolType()), kFailOnClash);
        loop->addPortDescription(withRole(output("gathered", m_intArray), kIterationTarget), kFailOnClash);
        ASSERT_TRUE(loop->linkStatePorts("again", "looping_condition"));
        EXPECT_EQ(count<DmWhileCompound>(), whiles + 1);
    }
    EXPECT_EQ(count<DmWhileCompound>(), whiles);
}
