// The self node of a compound: how it shows the compound's ports from the
// inside with their directions inverted, how it follows every port change of
// the compound, its place among the compound's nodes and connections, and the
// names it may take.
#include "graph/CompoundTestSupport.h"

#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kesto;
using KestoTest::addNode;
using KestoTest::connect;
using KestoTest::described;
using KestoTest::input;
using KestoTest::intValue;
using KestoTest::makeOp;
using KestoTest::makeStruct;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::selfPort;

using Names = std::vector<std::string>;

class DmSelfNodeTest : public KestoTest::CompoundTest {};

} // namespace

// ---------------------------------------------------------------------------
// What the self node is

TEST_F(DmSelfNodeTest, SelfNodeIsSelfNodeAndPlainNodeIsNot) {
    auto compound = makeCompound();
    EXPECT_TRUE(compound->getSelfNode()->isSelfNode());
    auto node = DmNode::createNode("n", makeOp());
    EXPECT_FALSE(node->isSelfNode());
}

TEST_F(DmSelfNodeTest, SelfNodeIsAnInstanceOfItsCompound) {
    auto compound = makeCompound();
    auto const& instances = compound->getInstantiatedNodes();
    EXPECT_EQ(instances.size(), 1u);
    EXPECT_EQ(instances.count(compound->getSelfNode().get()), 1u);
    EXPECT_FALSE(compound->hasNoReference());
}

TEST_F(DmSelfNodeTest, SelfNodeIsValidAndComplete) {
    auto compound = makeCompound();
    EXPECT_TRUE(compound->getSelfNode()->isValid());
    EXPECT_TRUE(compound->getSelfNode()->isComplete());
}

TEST_F(DmSelfNodeTest, SelfNodeDoesNotKeepItsCompoundAlive) {
    unsigned int const compounds = count<DmCompound>();
    std::weak_ptr<DmCompound> weak;
    {
        auto compound = makeCompoundWithPorts();
        weak = compound;
    }
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(count<DmCompound>(), compounds);
}

// ---------------------------------------------------------------------------
// Inverted ports

TEST_F(DmSelfNodeTest, CompoundInputIsAnOutputOfTheSelfNode) {
    auto compound = makeCompoundWithPorts();
    auto a = selfPort(*compound, "a");
    ASSERT_NE(a, nullptr);
    EXPECT_TRUE(a->isOutput());
    EXPECT_FALSE(a->isInput());
    EXPECT_TRUE(described(*compound, "a")->isInput());
}

TEST_F(DmSelfNodeTest, CompoundOutputIsAnInputOfTheSelfNode) {
    auto compound = makeCompoundWithPorts();
    auto r = selfPort(*compound, "r");
    ASSERT_NE(r, nullptr);
    EXPECT_TRUE(r->isInput());
    EXPECT_TRUE(described(*compound, "r")->isOutput());
}

TEST_F(DmSelfNodeTest, SelfNodePortsAreClonesOnTheCompound) {
    auto compound = makeCompoundWithPorts();
    auto a = selfPort(*compound, "a");
    EXPECT_NE(a->getPortDescription(), described(*compound, "a"));
    EXPECT_EQ(a->getPortDescription()->getNodeDef(), compound.get());
    EXPECT_EQ(a->getPortDescription()->getName(), "a");
    EXPECT_EQ(a->getPortDescription()->getType(), DmLibrary::getIntType());
    EXPECT_EQ(a->getNode(), compound->getSelfNode().get());
}

TEST_F(DmSelfNodeTest, SelfNodePortsFollowTheCompoundsOrder) {
    auto compound = makeCompound();
    compound->addPortDescription(output("z", DmLibrary::getIntType()), kFailOnClash);
    compound->addPortDescription(input("b", DmLibrary::getIntType()), kFailOnClash);
    compound->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    EXPECT_EQ(portNames(compound->getSelfNode()->getPorts()), (Names{"z", "b", "a"}));
}

TEST_F(DmSelfNodeTest, StructPortOfCompoundShowsItsMembersOnTheSelfNode) {
    auto compound = makeCompound();
    auto point = makeStruct("Point");
    compound->addPortDescription(input("p", point), kFailOnClash);
    auto p = selfPort(*compound, "p");
    ASSERT_NE(p, nullptr);
    EXPECT_TRUE(p->isOutput());
    EXPECT_EQ(KestoTest::keysOf(p->getMembers()), (Names{"x"}));
}

TEST_F(DmSelfNodeTest, AddPortOnTheSelfNodeInvertsEvenWhenNotAsked) {
    auto compound = makeCompound();
    auto description = input("extra", DmLibrary::getIntType());
    description->setNodeDef(compound.get());
    EXPECT_TRUE(compound->getSelfNode()->addPort(description, false));
    auto port = selfPort(*compound, "extra");
    ASSERT_NE(port, nullptr);
    EXPECT_NE(port->getPortDescription(), description);
    EXPECT_TRUE(port->isOutput());
    EXPECT_TRUE(description->isInput());
    description->setNodeDef(nullptr);
}

TEST_F(DmSelfNodeTest, ReplacePortOnTheSelfNodeInvertsEvenWhenNotAsked) {
    auto compound = makeCompoundWithPorts();
    auto replacement = input("a", DmLibrary::getFloatType());
    replacement->setNodeDef(compound.get());
    EXPECT_TRUE(compound->getSelfNode()->replacePort(replacement, false));
    auto a = selfPort(*compound, "a");
    EXPECT_NE(a->getPortDescription(), replacement);
    EXPECT_TRUE(a->isOutput());
    EXPECT_EQ(a->getPortDescription()->getType(), DmLibrary::getFloatType());
    replacement->setNodeDef(nullptr);
}

TEST_F(DmSelfNodeTest, SelfNodeHasNoMultiInPortForAssociativeCompound) {
    auto compound = makeCompound();
    ASSERT_TRUE(compound->setAssociativity(DmNodeDef::kLeftToRight));
    auto a = input("a", DmLibrary::getIntType());
    auto b = input("b", DmLibrary::getIntType());
    ASSERT_EQ(a->setAssociative(true), DmStatus::kSuccess);
    ASSERT_EQ(b->setAssociative(true), DmStatus::kSuccess);
    ASSERT_TRUE(compound->addPortDescription(a, kFailOnClash));
    ASSERT_TRUE(compound->addPortDescription(b, kFailOnClash));

    EXPECT_EQ(compound->getSelfNode()->getMultiInPort(), nullptr);
    EXPECT_EQ(portNames(compound->getSelfNode()->getPorts()), (Names{"a", "b"}));
    EXPECT_TRUE(selfPort(*compound, "a")->isOutput());
    std::shared_ptr<DmPort> entry;
    EXPECT_EQ(compound->getSelfNode()->addMultiInPortEntry("e", entry), DmStatus::kFailure);
}

// ---------------------------------------------------------------------------
// Following the compound's port changes

TEST_F(DmSelfNodeTest, NewPortOfCompoundAppearsOnTheSelfNode) {
    auto compound = makeCompoundWithPorts();
    EXPECT_TRUE(compound->addPortDescription(input("b", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_EQ(portNames(compound->getSelfNode()->getPorts()), (Names{"a", "r", "b"}));
    EXPECT_TRUE(selfPort(*compound, "b")->isOutput());
}

TEST_F(DmSelfNodeTest, RemovedPortOfCompoundLeavesTheSelfNode) {
    auto compound = makeCompoundWithPorts();
    auto a = selfPort(*compound, "a");
    EXPECT_TRUE(compound->removePortDescription(described(*compound, "a")));
    EXPECT_EQ(portNames(compound->getSelfNode()->getPorts()), (Names{"r"}));
    // The clone was the self node's own: it belongs to the compound no more.
    EXPECT_EQ(a->getPortDescription()->getNodeDef(), nullptr);
}

TEST_F(DmSelfNodeTest, RemovedPortOfCompoundTakesItsBindingConnectionsAlong) {
    auto compound = makeCompoundWithPorts();
    auto op = makeOp();
    addNode(*compound, "n", op);
    ASSERT_EQ(connect(*compound, ".a", "n.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "n.out", ".r"), DmStatus::kSuccess);

    EXPECT_TRUE(compound->removePortDescription(described(*compound, "a")));
    ASSERT_EQ(compound->getConnections().size(), 1u);
    EXPECT_EQ(compound->getConnections()[0]->getTargetPort(), selfPort(*compound, "r").get());
    EXPECT_EQ(compound->getBindingConnections().size(), 1u);
    EXPECT_TRUE((*compound->findNode("n"))["in"]->getConnectedPorts().empty());
}

TEST_F(DmSelfNodeTest, RenamedPortOfCompoundIsRenamedOnTheSelfNode) {
    auto compound = makeCompoundWithPorts();
    auto op = makeOp();
    addNode(*compound, "n", op);
    ASSERT_EQ(connect(*compound, ".a", "n.in"), DmStatus::kSuccess);
    auto a = selfPort(*compound, "a");

    EXPECT_TRUE(compound->renamePortDescription("a", "x"));
    EXPECT_EQ(portNames(compound->getSelfNode()->getPorts()), (Names{"x", "r"}));
    EXPECT_EQ(selfPort(*compound, "x"), a);
    EXPECT_EQ(a->getName(), "x");
    EXPECT_EQ(described(*compound, "x")->getName(), "x");
    // The connection stays.
    EXPECT_EQ(compound->getConnections().size(), 1u);
    EXPECT_EQ(compound->getConnections()[0]->getSourcePort(), a.get());
}

TEST_F(DmSelfNodeTest, ReorderedPortsOfCompoundAreReorderedOnTheSelfNode) {
    auto compound = makeCompoundWithPorts();
    compound->addPortDescription(input("b", DmLibrary::getIntType()), kFailOnClash);
    EXPECT_EQ(compound->reorderPortDescription(0, "b"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(compound->getPortsInterface()), (Names{"b", "a", "r"}));
    EXPECT_EQ(portNames(compound->getSelfNode()->getPorts()), (Names{"b", "a", "r"}));
}

TEST_F(DmSelfNodeTest, ReplacedPortOfCompoundShowsInvertedOnTheSelfNodeAndKeepsConnections) {
    auto compound = makeCompoundWithPorts();
    auto op = makeOp();
    addNode(*compound, "n", op);
    ASSERT_EQ(connect(*compound, ".a", "n.in"), DmStatus::kSuccess);
    auto a = selfPort(*compound, "a");

    auto replacement = input("a", DmLibrary::getFloatType());
    ASSERT_EQ(replacement->getMetadata()->add(std::make_shared<DmMetadataItem>("note", "kept")),
              DmStatus::kSuccess);
    EXPECT_TRUE(compound->replaceExistingPort(replacement));
    EXPECT_EQ(described(*compound, "a"), replacement);
    EXPECT_EQ(selfPort(*compound, "a"), a);
    EXPECT_NE(a->getPortDescription(), replacement);
    EXPECT_TRUE(a->isOutput());
    EXPECT_EQ(a->getPortDescription()->getType(), DmLibrary::getFloatType());
    EXPECT_EQ(a->getPortDescription()->getNodeDef(), compound.get());
    EXPECT_EQ(a->getPortDescription()->getMetadata()->find("note").size(), 1u);
    EXPECT_EQ(compound->getConnections().size(), 1u);
    EXPECT_EQ(compound->getConnections()[0]->getSourcePort(), a.get());
}

TEST_F(DmSelfNodeTest, DefaultValueOfSelfNodePortIsTheDefaultOfItsType) {
    auto compound = makeCompoundWithPorts();
    ASSERT_TRUE(described(*compound, "a")->setDefaultValueOverride(intValue(5)));
    auto value = compound->getSelfNode()->findUnconnectedPortValue("a");
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(std::static_pointer_cast<DmIntValue>(value)->getData(), 0);
    EXPECT_EQ(compound->getSelfNode()->findUnconnectedPortValue("missing"), nullptr);
}

// ---------------------------------------------------------------------------
// Among the compound's nodes and connections

TEST_F(DmSelfNodeTest, SelfNodeCannotBeAddedAsNode) {
    auto compound = makeCompound();
    auto other = makeCompound("other");
    EXPECT_EQ(compound->addNode(compound->getSelfNode(), kMakeUnique), DmStatus::kInvalidArgument);
    EXPECT_EQ(compound->addNode(other->getSelfNode(), kMakeUnique), DmStatus::kInvalidArgument);
    EXPECT_TRUE(compound->getNodes().empty());
    EXPECT_EQ(other->getSelfNode()->getOwner(), other.get());
}

TEST_F(DmSelfNodeTest, SelfNodeCannotBeRemoved) {
    auto compound = makeCompound();
    EXPECT_EQ(compound->removeNode(compound->getSelfNode()), DmStatus::kInvalidArgument);
    EXPECT_EQ(compound->getSelfNode()->getOwner(), compound.get());
}

TEST_F(DmSelfNodeTest, NodeNamedAsTheCompoundKeepsItsName) {
    auto compound = makeCompound();
    auto op = makeOp();
    auto node = DmNode::createNode("graph", op);
    EXPECT_EQ(compound->addNode(node, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(node->getName(), "graph");
    EXPECT_EQ(compound->findNode("graph"), node);
}

TEST_F(DmSelfNodeTest, BindingConnectionsAreTheSelfNodesConnections) {
    auto compound = makeCompoundWithPorts();
    auto op = makeOp();
    addNode(*compound, "n", op);
    addNode(*compound, "m", op);
    ASSERT_EQ(connect(*compound, ".a", "n.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "n.out", "m.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "m.out", ".r"), DmStatus::kSuccess);

    auto const& binding = compound->getBindingConnections();
    EXPECT_EQ(&binding, &compound->getSelfNode()->getConnections());
    ASSERT_EQ(binding.size(), 2u);
    EXPECT_TRUE(binding.contains(compound->getConnections()[0].get()));
    EXPECT_FALSE(binding.contains(compound->getConnections()[1].get()));
    EXPECT_TRUE(binding.contains(compound->getConnections()[2].get()));
}

TEST_F(DmSelfNodeTest, SelfNodeMayJoinItsOwnPortsToPassAValueThrough) {
    auto compound = makeCompoundWithPorts();
    std::shared_ptr<DmConnection> connection;
    DmCompound::ConnectionFailureType failure = DmCompound::kConnectionRedundant;
    EXPECT_EQ(compound->makeConnection(".a", ".r", false, connection, failure), DmStatus::kSuccess);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(connection->getSourcePort(), selfPort(*compound, "a").get());
    EXPECT_EQ(connection->getTargetPort(), selfPort(*compound, "r").get());
    // One connection, entered once in the self node's set.
    EXPECT_EQ(compound->getBindingConnections().size(), 1u);
    EXPECT_EQ(m_logger->getMessageCount(), 0u);
}

TEST_F(DmSelfNodeTest, PlainNodeMayNotJoinItsOwnPorts) {
    auto compound = makeCompound();
    auto op = makeOp();
    addNode(*compound, "n", op);
    std::shared_ptr<DmConnection> connection;
    DmCompound::ConnectionFailureType failure = DmCompound::kConnectionOk;
    EXPECT_EQ(compound->makeConnection("n.out", "n.in", false, connection, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionSingleNode);
    EXPECT_EQ(connection, nullptr);
    EXPECT_TRUE(compound->getConnections().empty());
    EXPECT_EQ(m_logger->getMessageCount(), 1u);
}

TEST_F(DmSelfNodeTest, SelfNodeOutputCannotBeATarget) {
    auto compound = makeCompoundWithPorts();
    auto op = makeOp();
    addNode(*compound, "n", op);
    std::shared_ptr<DmConnection> connection;
    DmCompound::ConnectionFailureType failure = DmCompound::kConnectionOk;
    // ".a" shows the compound's input: an output inside.
    EXPECT_EQ(compound->makeConnection("n.out", ".a", false, connection, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionTargetNotInput);
    failure = DmCompound::kConnectionOk;
    EXPECT_EQ(compound->makeConnection(".r", "n.in", false, connection, failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionSourceNotOutput);
    EXPECT_TRUE(compound->getConnections().empty());
}

// ---------------------------------------------------------------------------
// Names

TEST_F(DmSelfNodeTest, SelfNodeRefusesAReservedNodeName) {
    auto compound = makeCompound();
    auto reserved = std::make_shared<DmCompound::ReservedNames>();
    reserved->push_back(String("x"));
    ASSERT_EQ(compound->setReservedNodeNames(reserved), DmStatus::kSuccess);
    EXPECT_FALSE(compound->getSelfNode()->setName("x", kMakeUnique, kNameVerbatim));
    EXPECT_EQ(compound->getSelfNode()->getName(), "graph");
}

TEST_F(DmSelfNodeTest, SelfNodeTakesANameThatANodeHas) {
    auto compound = makeCompound();
    auto op = makeOp();
    addNode(*compound, "n", op);
    EXPECT_TRUE(compound->getSelfNode()->setName("n", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(compound->getSelfNode()->getName(), "n");
    EXPECT_EQ(compound->findNode("n")->getName(), "n");
    EXPECT_EQ(compound->getNodes().size(), 1u);
}
