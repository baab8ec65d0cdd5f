// Connections inside a compound: what createConnection and disconnect do to
// nodes and ports, when makeConnection accepts or refuses (and in which order
// it tests), replacing the feeder of an input, the path form, breaking one
// connection, and breaking all connections of a node, a port or the compound.
// The words of the refusals are checked in DmConnectionMessagesTest.
#include "graph/CompoundTestSupport.h"

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using namespace Kesto;
using KestoTest::makeSceneOp;

using Failure = DmCompound::ConnectionFailureType;
using Connections = std::vector<std::shared_ptr<DmConnection>>;

class DmConnectionTest : public KestoTest::ConnectionTest {};

using Scene = KestoTest::ConnectionScene;

/// An associative "add": the associative inputs lhs and rhs, the output result.
std::shared_ptr<DmNativeNodeDef> makeAddDef() {
    return KestoTest::makeAssociativeDef("lhs", "rhs", "result");
}

/// The compound's connection list as it stands.
Connections listOf(DmCompound const& compound) {
    return Connections(compound.getConnections().begin(), compound.getConnections().end());
}

bool joins(DmPort const& port, DmPort const& other) {
    return port.getConnectedPorts().contains(&other);
}

// ---------------------------------------------------------------------------
// The failure types

TEST_F(DmConnectionTest, FailureTypesAreOneByteWithFixedNumbers) {
    static_assert(sizeof(Failure) == 1, "one byte");
    static_assert(std::is_same<std::underlying_type_t<Failure>, std::uint8_t>::value, "unsigned byte");
    EXPECT_EQ(DmCompound::kConnectionOk, 0);
    EXPECT_EQ(DmCompound::kConnectionRedundant, 1);
    EXPECT_EQ(DmCompound::kConnectionTargetTaken, 2);
    EXPECT_EQ(DmCompound::kConnectionNodesNotInCompound, 3);
    EXPECT_EQ(DmCompound::kConnectionSourcePortMissing, 4);
    EXPECT_EQ(DmCompound::kConnectionTargetPortMissing, 5);
    EXPECT_EQ(DmCompound::kConnectionSingleNode, 6);
    EXPECT_EQ(DmCompound::kConnectionSourceNotOutput, 7);
    EXPECT_EQ(DmCompound::kConnectionTargetNotInput, 8);
    EXPECT_EQ(DmCompound::kConnectionSameDirection, 9);
}

// ---------------------------------------------------------------------------
// createConnection and disconnect

TEST_F(DmConnectionTest, CreateConnectionJoinsBothNodesAndBothPorts) {
    Scene scene;
    auto const out = Scene::port(scene.n1, "out");
    auto const a = Scene::port(scene.n2, "a");
    auto const connection = DmConnection::createConnection(out.get(), a.get());
    ASSERT_NE(connection, nullptr);
    EXPECT_TRUE(connection->isComplete());
    EXPECT_TRUE(connection->isConnected());
    EXPECT_EQ(connection->getSourcePort(), out.get());
    EXPECT_EQ(connection->getTargetPort(), a.get());
    EXPECT_TRUE(scene.n1->getConnections().contains(connection.get()));
    EXPECT_TRUE(scene.n2->getConnections().contains(connection.get()));
    EXPECT_TRUE(joins(*out, *a));
    EXPECT_TRUE(joins(*a, *out));
    // Made outside makeConnection, it is in no compound's list.
    EXPECT_TRUE(scene.compound->getConnections().empty());
    connection->disconnect();
}

TEST_F(DmConnectionTest, CreateConnectionOnOneNodeEntersItsSetOnce) {
    Scene scene;
    auto const x = scene.selfPort("x");
    auto const y = scene.selfPort("y");
    auto const connection = DmConnection::createConnection(x.get(), y.get());
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(scene.self()->getConnections().size(), 1u);
    EXPECT_TRUE(joins(*x, *y));
    EXPECT_TRUE(joins(*y, *x));
    connection->disconnect();
    EXPECT_TRUE(scene.self()->getConnections().empty());
}

TEST_F(DmConnectionTest, CreateConnectionMakesNoTest) {
    Scene scene;
    // Two inputs of one node: nothing refuses it at this level.
    auto const a = Scene::port(scene.n1, "a");
    auto const b = Scene::port(scene.n1, "b");
    auto const connection = DmConnection::createConnection(a.get(), b.get());
    ASSERT_NE(connection, nullptr);
    EXPECT_TRUE(connection->isConnected());
    EXPECT_EQ(scene.n1->getConnections().size(), 1u);
    EXPECT_TRUE(joins(*a, *b));
    connection->disconnect();
}

TEST_F(DmConnectionTest, CreateConnectionRefusesNullPort) {
    Scene scene;
    auto const out = Scene::port(scene.n1, "out");
    EXPECT_EQ(DmConnection::createConnection(nullptr, out.get()), nullptr);
    EXPECT_EQ(DmConnection::createConnection(out.get(), nullptr), nullptr);
    EXPECT_TRUE(scene.n1->getConnections().empty());
    EXPECT_TRUE(out->getConnectedPorts().empty());
}

TEST_F(DmConnectionTest, DisconnectUndoesCreateConnection) {
    Scene scene;
    auto const out = Scene::port(scene.n1, "out");
    auto const a = Scene::port(scene.n2, "a");
    auto const connection = DmConnection::createConnection(out.get(), a.get());
    ASSERT_NE(connection, nullptr);
    connection->disconnect();
    EXPECT_FALSE(connection->isConnected());
    EXPECT_TRUE(scene.n1->getConnections().empty());
    EXPECT_TRUE(scene.n2->getConnections().empty());
    EXPECT_TRUE(out->getConnectedPorts().empty());
    EXPECT_TRUE(a->getConnectedPorts().empty());
    // The connection still names its ports.
    EXPECT_EQ(connection->getSourcePort(), out.get());
    EXPECT_EQ(connection->getTargetPort(), a.get());
}

TEST_F(DmConnectionTest, SecondDisconnectLeavesOtherConnectionsAlone) {
    Scene scene;
    auto const out = Scene::port(scene.n1, "out");
    auto const a = Scene::port(scene.n2, "a");
    auto const first = DmConnection::createConnection(out.get(), a.get());
    first->disconnect();
    auto const second = DmConnection::createConnection(out.get(), a.get());
    first->disconnect();
    EXPECT_TRUE(second->isConnected());
    EXPECT_TRUE(scene.n1->getConnections().contains(second.get()));
    EXPECT_TRUE(scene.n2->getConnections().contains(second.get()));
    EXPECT_TRUE(joins(*out, *a));
    EXPECT_TRUE(joins(*a, *out));
    second->disconnect();
}

// ---------------------------------------------------------------------------
// makeConnection by port: success

TEST_F(DmConnectionTest, MakeConnectionJoinsOutputToInputOfAnotherNode) {
    Scene scene;
    auto const out = Scene::port(scene.n1, "out");
    auto const a = Scene::port(scene.n2, "a");
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt(out, a, failure), DmStatus::kSuccess);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    ASSERT_NE(scene.made, nullptr);
    EXPECT_EQ(scene.made->getSourcePort(), out.get());
    EXPECT_EQ(scene.made->getTargetPort(), a.get());
    EXPECT_TRUE(scene.made->isConnected());
    EXPECT_EQ(listOf(*scene.compound), (Connections{scene.made}));
    EXPECT_TRUE(scene.n1->getConnections().contains(scene.made.get()));
    EXPECT_TRUE(scene.n2->getConnections().contains(scene.made.get()));
    EXPECT_TRUE(joins(*out, *a));
    EXPECT_TRUE(joins(*a, *out));
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, NewConnectionGoesToTheTailOfTheList) {
    Scene scene;
    auto const first = scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
    auto const second = scene.connect(Scene::port(scene.n2, "out"), Scene::port(scene.n3, "a"));
    auto const third = scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n3, "b"));
    EXPECT_EQ(listOf(*scene.compound), (Connections{first, second, third}));
}

TEST_F(DmConnectionTest, OutputMayFeedSeveralInputs) {
    Scene scene;
    auto const out = Scene::port(scene.n1, "out");
    scene.connect(out, Scene::port(scene.n2, "a"));
    scene.connect(out, Scene::port(scene.n2, "b"));
    scene.connect(out, Scene::port(scene.n3, "a"));
    EXPECT_EQ(out->getConnectedPorts().size(), 3u);
    EXPECT_EQ(scene.n1->getConnections().size(), 3u);
    EXPECT_EQ(scene.n2->getConnections().size(), 2u);
    EXPECT_EQ(scene.compound->getConnections().size(), 3u);
}

TEST_F(DmConnectionTest, TypesOfTheTwoPortsAreNotCompared) {
    Scene scene;
    // A string output feeds an int input.
    std::shared_ptr<DmConnection> made;
    EXPECT_EQ(scene.compound->makeConnection(Scene::port(scene.n1, "text"), Scene::port(scene.n2, "a"), made),
              DmStatus::kSuccess);
    EXPECT_NE(made, nullptr);
}

TEST_F(DmConnectionTest, CycleOfConnectionsIsAllowed) {
    Scene scene;
    scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
    scene.connect(Scene::port(scene.n2, "out"), Scene::port(scene.n1, "a"));
    EXPECT_EQ(scene.compound->getConnections().size(), 2u);
}

TEST_F(DmConnectionTest, CompoundInputFeedsANodeAndANodeFeedsCompoundOutput) {
    Scene scene;
    auto const inward = scene.connect(scene.selfPort("x"), Scene::port(scene.n1, "a"));
    auto const outward = scene.connect(Scene::port(scene.n1, "out"), scene.selfPort("y"));
    ASSERT_NE(inward, nullptr);
    ASSERT_NE(outward, nullptr);
    auto const& binding = scene.compound->getBindingConnections();
    EXPECT_EQ(binding.size(), 2u);
    EXPECT_TRUE(binding.contains(inward.get()));
    EXPECT_TRUE(binding.contains(outward.get()));
}

TEST_F(DmConnectionTest, SelfNodeMayPassItsInputStraightToItsOutput) {
    Scene scene;
    Failure failure = DmCompound::kConnectionSingleNode;
    EXPECT_EQ(scene.attempt(scene.selfPort("x"), scene.selfPort("y"), failure), DmStatus::kSuccess);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    ASSERT_NE(scene.made, nullptr);
    EXPECT_EQ(scene.self()->getConnections().size(), 1u);
    EXPECT_TRUE(scene.compound->getBindingConnections().contains(scene.made.get()));
    EXPECT_TRUE(joins(*scene.selfPort("x"), *scene.selfPort("y")));
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, EntryOfMultiInPortIsConnectable) {
    Scene scene;
    auto const add = scene.addNode("add", makeAddDef());
    std::shared_ptr<DmPort> first;
    std::shared_ptr<DmPort> second;
    ASSERT_EQ(add->addMultiInPortEntry("term", first), DmStatus::kSuccess);
    ASSERT_EQ(add->addMultiInPortEntry("term", second), DmStatus::kSuccess);
    auto const one = scene.connect(Scene::port(scene.n1, "out"), first);
    auto const two = scene.connect(Scene::port(scene.n2, "out"), second);
    ASSERT_NE(one, nullptr);
    ASSERT_NE(two, nullptr);
    EXPECT_EQ(add->getConnections().size(), 2u);
    EXPECT_TRUE(joins(*first, *Scene::port(scene.n1, "out")));
    EXPECT_TRUE(add->getMultiInPort()->getConnectedPorts().empty());
}

TEST_F(DmConnectionTest, EntryOfFanInPortIsConnectable) {
    Scene scene;
    auto const a = Scene::port(scene.n3, "a");
    ASSERT_EQ(a->setFanIn(true), DmStatus::kSuccess);
    std::shared_ptr<DmPort> first;
    std::shared_ptr<DmPort> second;
    ASSERT_EQ(a->addMultiInPortEntry("item", first), DmStatus::kSuccess);
    ASSERT_EQ(a->addMultiInPortEntry("item", second), DmStatus::kSuccess);
    scene.connect(Scene::port(scene.n1, "out"), first);
    scene.connect(Scene::port(scene.n1, "out"), second);
    EXPECT_EQ(scene.n3->getConnections().size(), 2u);
    EXPECT_TRUE(a->getConnectedPorts().empty());
}

// ---------------------------------------------------------------------------
// makeConnection by port: ports connected through their entries, null ports

TEST_F(DmConnectionTest, NullSourceIsInvalidArgumentWithoutMessage) {
    Scene scene;
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt(nullptr, Scene::port(scene.n2, "a"), failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_TRUE(scene.compound->getConnections().empty());
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, NullTargetIsInvalidArgumentWithoutMessage) {
    Scene scene;
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt(Scene::port(scene.n1, "out"), nullptr, failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, FanInTargetIsInvalidArgumentWithoutMessage) {
    Scene scene;
    auto const a = Scene::port(scene.n2, "a");
    ASSERT_EQ(a->setFanIn(true), DmStatus::kSuccess);
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt(Scene::port(scene.n1, "out"), a, failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_TRUE(scene.compound->getConnections().empty());
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, MultiInTargetIsInvalidArgumentWithoutMessage) {
    Scene scene;
    auto const add = scene.addNode("add", makeAddDef());
    auto const multiIn = add->getMultiInPort();
    ASSERT_NE(multiIn, nullptr);
    ASSERT_EQ(multiIn->getPortDescription()->getPortKind(), kPortMultiIn);
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt(Scene::port(scene.n1, "out"), multiIn, failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_TRUE(scene.compound->getConnections().empty());
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, NullTargetIsFoundBeforeSameNodeTest) {
    Scene scene;
    // A null target with a source whose node would otherwise be checked.
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt(Scene::port(scene.n1, "a"), nullptr, failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, FanInTargetOnSourceNodeIsFoundBeforeSameNodeTest) {
    Scene scene;
    auto const a = Scene::port(scene.n1, "a");
    ASSERT_EQ(a->setFanIn(true), DmStatus::kSuccess);
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt(Scene::port(scene.n1, "out"), a, failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, MultiInTargetOnSourceNodeIsFoundBeforeSameNodeTest) {
    Scene scene;
    auto const add = scene.addNode("add", makeAddDef());
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt(Scene::port(add, "result"), add->getMultiInPort(), failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, NullTargetIsFoundBeforeNodeOutsideCompound) {
    Scene scene;
    auto const stray = DmNode::createNode("stray", makeSceneOp());
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt(Scene::port(stray, "out"), nullptr, failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

// ---------------------------------------------------------------------------
// makeConnection by port: nodes that are not the compound's

TEST_F(DmConnectionTest, NodeOutsideCompoundIsRefused) {
    Scene scene;
    auto const stray = DmNode::createNode("stray", makeSceneOp());
    EXPECT_TRUE(scene.refusedAs(Scene::port(stray, "out"), Scene::port(scene.n2, "a"),
                                DmCompound::kConnectionNodesNotInCompound));
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_TRUE(scene.compound->getConnections().empty());
    EXPECT_TRUE(stray->getConnections().empty());
    EXPECT_TRUE(scene.n2->getConnections().empty());

    EXPECT_TRUE(scene.refusedAs(Scene::port(scene.n1, "out"), Scene::port(stray, "a"),
                                DmCompound::kConnectionNodesNotInCompound));
    EXPECT_EQ(scene.logger->getMessageCount(), 2u);
}

TEST_F(DmConnectionTest, NodeOfAnotherCompoundIsRefused) {
    Scene scene;
    Scene other;
    EXPECT_TRUE(scene.refusedAs(Scene::port(other.n1, "out"), Scene::port(scene.n2, "a"),
                                DmCompound::kConnectionNodesNotInCompound));
    // Even both ends in the other compound.
    EXPECT_TRUE(scene.refusedAs(Scene::port(other.n1, "out"), Scene::port(other.n2, "a"),
                                DmCompound::kConnectionNodesNotInCompound));
    EXPECT_TRUE(other.compound->getConnections().empty());
    EXPECT_TRUE(scene.compound->getConnections().empty());
}

TEST_F(DmConnectionTest, SelfNodeOfAnotherCompoundIsRefused) {
    Scene scene;
    Scene other;
    EXPECT_TRUE(scene.refusedAs(other.selfPort("x"), Scene::port(scene.n2, "a"),
                                DmCompound::kConnectionNodesNotInCompound));
}

TEST_F(DmConnectionTest, RemovedNodeIsRefused) {
    Scene scene;
    auto const n1 = scene.n1;
    ASSERT_EQ(scene.compound->removeNode(n1), DmStatus::kSuccess);
    EXPECT_TRUE(scene.refusedAs(Scene::port(n1, "out"), Scene::port(scene.n2, "a"),
                                DmCompound::kConnectionNodesNotInCompound));
}

TEST_F(DmConnectionTest, NodeOutsideCompoundIsFoundBeforeSameNodeTest) {
    Scene scene;
    auto const stray = DmNode::createNode("stray", makeSceneOp());
    EXPECT_TRUE(scene.refusedAs(Scene::port(stray, "out"), Scene::port(stray, "a"),
                                DmCompound::kConnectionNodesNotInCompound));
}

TEST_F(DmConnectionTest, NodeOutsideCompoundIsFoundBeforeDirections) {
    Scene scene;
    auto const stray = DmNode::createNode("stray", makeSceneOp());
    // An input as source.
    EXPECT_TRUE(scene.refusedAs(Scene::port(stray, "a"), Scene::port(scene.n2, "a"),
                                DmCompound::kConnectionNodesNotInCompound));
}

// ---------------------------------------------------------------------------
// makeConnection by port: one node

TEST_F(DmConnectionTest, PlainNodeCannotFeedItself) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs(Scene::port(scene.n1, "out"), Scene::port(scene.n1, "a"),
                                DmCompound::kConnectionSingleNode));
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_TRUE(scene.compound->getConnections().empty());
    EXPECT_TRUE(scene.n1->getConnections().empty());
    EXPECT_EQ(scene.logger->getMessageCount(), 1u);
}

TEST_F(DmConnectionTest, EntryOnTheSourceNodeIsTheSameNode) {
    Scene scene;
    auto const add = scene.addNode("add", makeAddDef());
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(add->addMultiInPortEntry("term", entry), DmStatus::kSuccess);
    EXPECT_TRUE(scene.refusedAs(Scene::port(add, "result"), entry, DmCompound::kConnectionSingleNode));
    EXPECT_TRUE(add->getConnections().empty());
}

TEST_F(DmConnectionTest, SameNodeIsFoundBeforeDirections) {
    Scene scene;
    // Input to output on one node: the node test comes first.
    EXPECT_TRUE(scene.refusedAs(Scene::port(scene.n1, "a"), Scene::port(scene.n1, "out"),
                                DmCompound::kConnectionSingleNode));
    // Two inputs on one node.
    EXPECT_TRUE(scene.refusedAs(Scene::port(scene.n1, "a"), Scene::port(scene.n1, "b"),
                                DmCompound::kConnectionSingleNode));
}

// ---------------------------------------------------------------------------
// makeConnection by port: directions

TEST_F(DmConnectionTest, InputAsSourceIsNotAnOutput) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs(Scene::port(scene.n1, "a"), Scene::port(scene.n2, "a"),
                                DmCompound::kConnectionSourceNotOutput));
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_TRUE(scene.compound->getConnections().empty());
}

TEST_F(DmConnectionTest, ReversedEndsAreSourceNotOutput) {
    Scene scene;
    // An input as source and an output as target: the source is tested first.
    EXPECT_TRUE(scene.refusedAs(Scene::port(scene.n2, "a"), Scene::port(scene.n1, "out"),
                                DmCompound::kConnectionSourceNotOutput));
}

TEST_F(DmConnectionTest, OutputAsTargetIsNotAnInput) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "out"),
                                DmCompound::kConnectionTargetNotInput));
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_TRUE(scene.compound->getConnections().empty());
}

TEST_F(DmConnectionTest, CompoundOutputIsNoSourceInside) {
    Scene scene;
    // On the self node the compound output y is an input.
    EXPECT_TRUE(scene.refusedAs(scene.selfPort("y"), Scene::port(scene.n1, "a"),
                                DmCompound::kConnectionSourceNotOutput));
}

TEST_F(DmConnectionTest, CompoundInputIsNoTargetInside) {
    Scene scene;
    // On the self node the compound input x is an output.
    EXPECT_TRUE(scene.refusedAs(Scene::port(scene.n1, "out"), scene.selfPort("x"),
                                DmCompound::kConnectionTargetNotInput));
}

TEST_F(DmConnectionTest, SelfNodePassThroughStillNeedsOutputToInput) {
    Scene scene;
    EXPECT_TRUE(
        scene.refusedAs(scene.selfPort("y"), scene.selfPort("x"), DmCompound::kConnectionSourceNotOutput));
    EXPECT_TRUE(
        scene.refusedAs(scene.selfPort("x"), scene.selfPort("x"), DmCompound::kConnectionTargetNotInput));
}

TEST_F(DmConnectionTest, DirectionsAreTestedBeforeTheFeederOfTheTarget) {
    Scene scene;
    auto const first = scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
    Failure failure = DmCompound::kConnectionOk;
    // The target is taken, but the source is an input.
    EXPECT_EQ(scene.attempt(Scene::port(scene.n3, "a"), Scene::port(scene.n2, "a"), failure, true),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionSourceNotOutput);
    EXPECT_EQ(listOf(*scene.compound), (Connections{first}));
    EXPECT_TRUE(first->isConnected());
}

// ---------------------------------------------------------------------------
// makeConnection by port: a target that is fed already

TEST_F(DmConnectionTest, SameConnectionTwiceIsRedundantAndTheFirstStays) {
    Scene scene;
    auto const out = Scene::port(scene.n1, "out");
    auto const a = Scene::port(scene.n2, "a");
    auto const first = scene.connect(out, a);
    EXPECT_TRUE(scene.refusedAs(out, a, DmCompound::kConnectionRedundant));
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_EQ(listOf(*scene.compound), (Connections{first}));
    EXPECT_TRUE(first->isConnected());
    EXPECT_TRUE(joins(*out, *a));
    EXPECT_EQ(scene.n2->getConnections().size(), 1u);
}

TEST_F(DmConnectionTest, SameConnectionIsRedundantEvenWithReplace) {
    Scene scene;
    auto const out = Scene::port(scene.n1, "out");
    auto const a = Scene::port(scene.n2, "a");
    auto const first = scene.connect(out, a);
    Failure failure = DmCompound::kConnectionOk;
    EXPECT_EQ(scene.attempt(out, a, failure, true), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionRedundant);
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_EQ(listOf(*scene.compound), (Connections{first}));
    EXPECT_TRUE(first->isConnected());
}

TEST_F(DmConnectionTest, SamePassThroughTwiceIsRedundant) {
    Scene scene;
    auto const first = scene.connect(scene.selfPort("x"), scene.selfPort("y"));
    EXPECT_TRUE(scene.refusedAs(scene.selfPort("x"), scene.selfPort("y"), DmCompound::kConnectionRedundant));
    EXPECT_EQ(listOf(*scene.compound), (Connections{first}));
}

TEST_F(DmConnectionTest, TakenTargetIsRefusedWithoutReplace) {
    Scene scene;
    auto const a = Scene::port(scene.n3, "a");
    auto const first = scene.connect(Scene::port(scene.n1, "out"), a);
    EXPECT_TRUE(scene.refusedAs(Scene::port(scene.n2, "out"), a, DmCompound::kConnectionTargetTaken));
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_EQ(listOf(*scene.compound), (Connections{first}));
    EXPECT_TRUE(first->isConnected());
    EXPECT_TRUE(Scene::port(scene.n2, "out")->getConnectedPorts().empty());
    EXPECT_TRUE(scene.n2->getConnections().empty());
}

TEST_F(DmConnectionTest, ShortFormNeverReplaces) {
    Scene scene;
    auto const a = Scene::port(scene.n3, "a");
    auto const first = scene.connect(Scene::port(scene.n1, "out"), a);
    std::shared_ptr<DmConnection> made;
    EXPECT_EQ(scene.compound->makeConnection(Scene::port(scene.n2, "out"), a, made),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(listOf(*scene.compound), (Connections{first}));
}

TEST_F(DmConnectionTest, ReplaceBreaksTheOldFeederAndSaysReplaced) {
    Scene scene;
    auto const oldSource = Scene::port(scene.n1, "out");
    auto const newSource = Scene::port(scene.n2, "out");
    auto const a = Scene::port(scene.n3, "a");
    auto const first = scene.connect(oldSource, a);
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt(newSource, a, failure, true), DmStatus::kSuccessReplaced);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    ASSERT_NE(scene.made, nullptr);
    EXPECT_EQ(scene.made->getSourcePort(), newSource.get());
    EXPECT_EQ(scene.made->getTargetPort(), a.get());
    EXPECT_EQ(listOf(*scene.compound), (Connections{scene.made}));
    // The old source has lost the target.
    EXPECT_FALSE(joins(*oldSource, *a));
    EXPECT_TRUE(oldSource->getConnectedPorts().empty());
    EXPECT_TRUE(scene.n1->getConnections().empty());
    EXPECT_FALSE(first->isConnected());
    EXPECT_EQ(a->getConnectedPorts().size(), 1u);
    EXPECT_TRUE(joins(*a, *newSource));
    EXPECT_TRUE(scene.n3->getConnections().contains(scene.made.get()));
    EXPECT_FALSE(scene.n3->getConnections().contains(first.get()));
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, ReplaceOnFreeTargetIsPlainSuccess) {
    Scene scene;
    Failure failure = DmCompound::kConnectionOk;
    EXPECT_EQ(scene.attempt(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"), failure, true),
              DmStatus::kSuccess);
    EXPECT_NE(scene.made, nullptr);
}

TEST_F(DmConnectionTest, ReplacedConnectionGoesToTheTailAndOthersKeepTheirOrder) {
    Scene scene;
    auto const oldSource = Scene::port(scene.n1, "out");
    auto const first = scene.connect(oldSource, Scene::port(scene.n3, "a"));
    auto const second = scene.connect(oldSource, Scene::port(scene.n2, "a"));
    auto const third = scene.connect(Scene::port(scene.n2, "out"), Scene::port(scene.n3, "b"));
    Failure failure = DmCompound::kConnectionOk;
    EXPECT_EQ(scene.attempt(Scene::port(scene.n2, "text"), Scene::port(scene.n3, "a"), failure, true),
              DmStatus::kSuccessReplaced);
    EXPECT_EQ(listOf(*scene.compound), (Connections{second, third, scene.made}));
    // The old source keeps what it feeds elsewhere.
    EXPECT_TRUE(second->isConnected());
    EXPECT_TRUE(joins(*oldSource, *Scene::port(scene.n2, "a")));
    EXPECT_EQ(oldSource->getConnectedPorts().size(), 1u);
    EXPECT_EQ(scene.n1->getConnections().size(), 1u);
}

TEST_F(DmConnectionTest, ReplaceWorksOnEntriesAndOnTheSelfNode) {
    Scene scene;
    auto const add = scene.addNode("add", makeAddDef());
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(add->addMultiInPortEntry("term", entry), DmStatus::kSuccess);
    scene.connect(Scene::port(scene.n1, "out"), entry);
    Failure failure = DmCompound::kConnectionOk;
    EXPECT_EQ(scene.attempt(scene.selfPort("x"), entry, failure, true), DmStatus::kSuccessReplaced);
    EXPECT_TRUE(Scene::port(scene.n1, "out")->getConnectedPorts().empty());

    scene.connect(Scene::port(scene.n1, "out"), scene.selfPort("y"));
    EXPECT_EQ(scene.attempt(scene.selfPort("x"), scene.selfPort("y"), failure, true),
              DmStatus::kSuccessReplaced);
    EXPECT_EQ(scene.compound->getConnections().size(), 2u);
    EXPECT_TRUE(scene.n1->getConnections().empty());
}

// ---------------------------------------------------------------------------
// makeConnection by path

TEST_F(DmConnectionTest, PathsNameNodeAndPort) {
    Scene scene;
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt("n1.out", "n2.a", failure), DmStatus::kSuccess);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    ASSERT_NE(scene.made, nullptr);
    EXPECT_EQ(scene.made->getSourcePort(), Scene::port(scene.n1, "out").get());
    EXPECT_EQ(scene.made->getTargetPort(), Scene::port(scene.n2, "a").get());
    EXPECT_EQ(listOf(*scene.compound), (Connections{scene.made}));
}

TEST_F(DmConnectionTest, LeadingDotNamesAPortOfTheSelfNode) {
    Scene scene;
    std::shared_ptr<DmConnection> inward;
    std::shared_ptr<DmConnection> outward;
    std::shared_ptr<DmConnection> through;
    EXPECT_EQ(scene.compound->makeConnection(".x", "n1.a", inward), DmStatus::kSuccess);
    EXPECT_EQ(scene.compound->makeConnection("n1.out", ".y", outward), DmStatus::kSuccess);
    ASSERT_NE(inward, nullptr);
    ASSERT_NE(outward, nullptr);
    EXPECT_EQ(inward->getSourcePort(), scene.selfPort("x").get());
    EXPECT_EQ(outward->getTargetPort(), scene.selfPort("y").get());
    EXPECT_EQ(scene.compound->breakConnection(Scene::port(scene.n1, "out"), scene.selfPort("y")),
              DmStatus::kSuccess);
    EXPECT_EQ(scene.compound->makeConnection(".x", ".y", through), DmStatus::kSuccess);
    ASSERT_NE(through, nullptr);
    EXPECT_EQ(through->getSourcePort(), scene.selfPort("x").get());
    EXPECT_EQ(through->getTargetPort(), scene.selfPort("y").get());
}

TEST_F(DmConnectionTest, EmptySourcePathIsInvalidArgumentWithoutMessage) {
    Scene scene;
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt("", "n2.a", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, EmptyTargetPathIsInvalidArgumentWithoutMessage) {
    Scene scene;
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt("n1.out", "", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, EmptyPathIsFoundBeforeMissingNode) {
    Scene scene;
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt("ghost.out", "", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, MissingSourceNodeIsNodesNotInCompound) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs("ghost.out", "n2.a", DmCompound::kConnectionNodesNotInCompound));
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_TRUE(scene.compound->getConnections().empty());
}

TEST_F(DmConnectionTest, MissingTargetNodeIsNodesNotInCompound) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs("n1.out", "ghost.a", DmCompound::kConnectionNodesNotInCompound));
}

TEST_F(DmConnectionTest, MissingNodeIsFoundBeforeMissingPort) {
    Scene scene;
    // The source port is missing too, but both nodes are looked up first.
    EXPECT_TRUE(scene.refusedAs("n1.nope", "ghost.a", DmCompound::kConnectionNodesNotInCompound));
}

TEST_F(DmConnectionTest, MissingSourcePortIsSourcePortMissing) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs("n1.nope", "n2.a", DmCompound::kConnectionSourcePortMissing));
    EXPECT_EQ(scene.made, nullptr);
    EXPECT_TRUE(scene.refusedAs(".nope", "n2.a", DmCompound::kConnectionSourcePortMissing));
}

TEST_F(DmConnectionTest, MissingTargetPortIsTargetPortMissing) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs("n1.out", "n2.nope", DmCompound::kConnectionTargetPortMissing));
    EXPECT_TRUE(scene.refusedAs("n1.out", ".nope", DmCompound::kConnectionTargetPortMissing));
}

TEST_F(DmConnectionTest, MissingSourcePortIsFoundBeforeMissingTargetPort) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs("n1.nope", "n2.none", DmCompound::kConnectionSourcePortMissing));
}

TEST_F(DmConnectionTest, PathWithoutDotNamesNoPort) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs("n1", "n2.a", DmCompound::kConnectionSourcePortMissing));
}

TEST_F(DmConnectionTest, PathGoesOnToTheEntriesOfAPortAfterFurtherPoints) {
    Scene scene;
    auto const add = scene.addNode("add", makeAddDef());
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(add->addMultiInPortEntry("term", entry), DmStatus::kSuccess);
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt("n1.out", "add.lhs.term", failure), DmStatus::kSuccess);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    ASSERT_NE(scene.made, nullptr);
    EXPECT_EQ(scene.made->getTargetPort(), entry.get());
}

TEST_F(DmConnectionTest, PathGoesOnToTheMembersOfAStructPort) {
    Scene scene;
    auto const def = DmNativeNodeDef::newNativeNodeDef("takesPair", DmNativeNodeDef::kPass);
    def->addPortDescription(KestoTest::input("pair", KestoTest::makeStruct("Pair", "x")), kFailOnClash);
    auto const taker = scene.addNode("taker", def);
    std::shared_ptr<DmPort> member;
    ASSERT_TRUE((*taker)["pair"]->getMember("x", member));
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt("n1.out", "taker.pair.x", failure), DmStatus::kSuccess);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    ASSERT_NE(scene.made, nullptr);
    EXPECT_EQ(scene.made->getTargetPort(), member.get());
    EXPECT_TRUE(scene.refusedAs("n1.out", "taker.pair.y", DmCompound::kConnectionTargetPortMissing));
}

TEST_F(DmConnectionTest, PathToAMissingEntryIsTargetPortMissing) {
    Scene scene;
    auto const add = scene.addNode("add", makeAddDef());
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(add->addMultiInPortEntry("term", entry), DmStatus::kSuccess);
    EXPECT_TRUE(scene.refusedAs("n1.out", "add.lhs.other", DmCompound::kConnectionTargetPortMissing));
    EXPECT_TRUE(scene.refusedAs("n1.out", "add.lhs.", DmCompound::kConnectionTargetPortMissing));
    EXPECT_TRUE(scene.refusedAs("n1.out", "add.term", DmCompound::kConnectionTargetPortMissing));
}

TEST_F(DmConnectionTest, PathFormGoesOnToThePortTests) {
    Scene scene;
    Failure failure = DmCompound::kConnectionOk;
    EXPECT_EQ(scene.attempt("n1.out", "n1.a", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionSingleNode);
    EXPECT_EQ(scene.attempt("n1.a", "n2.a", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionSourceNotOutput);
    EXPECT_EQ(scene.attempt("n1.out", "n2.out", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionTargetNotInput);
    EXPECT_EQ(scene.attempt("n1.out", "n2.a", failure), DmStatus::kSuccess);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.attempt("n1.out", "n2.a", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionRedundant);
    EXPECT_EQ(scene.attempt("n3.out", "n2.a", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionTargetTaken);
    // A fan-in target is refused without a failure type.
    ASSERT_EQ(Scene::port(scene.n3, "b")->setFanIn(true), DmStatus::kSuccess);
    failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt("n1.out", "n3.b", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
}

TEST_F(DmConnectionTest, PathFormPassesReplaceOn) {
    Scene scene;
    auto const first = scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n3, "a"));
    Failure failure = DmCompound::kConnectionTargetTaken;
    EXPECT_EQ(scene.attempt("n2.out", "n3.a", failure, true), DmStatus::kSuccessReplaced);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_FALSE(first->isConnected());
    EXPECT_EQ(listOf(*scene.compound), (Connections{scene.made}));
}

TEST_F(DmConnectionTest, ShortPathFormNeverReplaces) {
    Scene scene;
    auto const first = scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n3, "a"));
    std::shared_ptr<DmConnection> made;
    EXPECT_EQ(scene.compound->makeConnection("n2.out", "n3.a", made), DmStatus::kInvalidArgument);
    EXPECT_EQ(made, nullptr);
    EXPECT_TRUE(first->isConnected());
}

// ---------------------------------------------------------------------------
// breakConnection

TEST_F(DmConnectionTest, BreakConnectionRemovesTheConnection) {
    Scene scene;
    auto const out = Scene::port(scene.n1, "out");
    auto const a = Scene::port(scene.n2, "a");
    auto const connection = scene.connect(out, a);
    EXPECT_EQ(scene.compound->breakConnection(out, a), DmStatus::kSuccess);
    EXPECT_TRUE(scene.compound->getConnections().empty());
    EXPECT_FALSE(connection->isConnected());
    EXPECT_TRUE(scene.n1->getConnections().empty());
    EXPECT_TRUE(scene.n2->getConnections().empty());
    EXPECT_TRUE(out->getConnectedPorts().empty());
    EXPECT_TRUE(a->getConnectedPorts().empty());
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, BreakConnectionLeavesOtherConnections) {
    Scene scene;
    auto const out = Scene::port(scene.n1, "out");
    auto const first = scene.connect(out, Scene::port(scene.n2, "a"));
    auto const second = scene.connect(out, Scene::port(scene.n2, "b"));
    auto const third = scene.connect(Scene::port(scene.n2, "out"), Scene::port(scene.n3, "a"));
    EXPECT_EQ(scene.compound->breakConnection(out, Scene::port(scene.n2, "b")), DmStatus::kSuccess);
    EXPECT_EQ(listOf(*scene.compound), (Connections{first, third}));
    EXPECT_TRUE(first->isConnected());
    EXPECT_FALSE(second->isConnected());
    EXPECT_TRUE(joins(*out, *Scene::port(scene.n2, "a")));
}

TEST_F(DmConnectionTest, BreakConnectionOfThePassThrough) {
    Scene scene;
    scene.connect(scene.selfPort("x"), scene.selfPort("y"));
    EXPECT_EQ(scene.compound->breakConnection(scene.selfPort("x"), scene.selfPort("y")), DmStatus::kSuccess);
    EXPECT_TRUE(scene.compound->getConnections().empty());
    EXPECT_TRUE(scene.self()->getConnections().empty());
}

TEST_F(DmConnectionTest, BreakConnectionOfAnEntry) {
    Scene scene;
    auto const add = scene.addNode("add", makeAddDef());
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(add->addMultiInPortEntry("term", entry), DmStatus::kSuccess);
    scene.connect(Scene::port(scene.n1, "out"), entry);
    // The entry's port is no end of the connection.
    EXPECT_EQ(scene.compound->breakConnection(Scene::port(scene.n1, "out"), add->getMultiInPort()),
              DmStatus::kFailure);
    EXPECT_EQ(scene.compound->breakConnection(Scene::port(scene.n1, "out"), entry), DmStatus::kSuccess);
    EXPECT_TRUE(add->getConnections().empty());
}

TEST_F(DmConnectionTest, BreakConnectionWithoutSuchConnectionIsFailureWithoutMessage) {
    Scene scene;
    EXPECT_EQ(scene.compound->breakConnection(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a")),
              DmStatus::kFailure);
    scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
    EXPECT_EQ(scene.compound->breakConnection(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "b")),
              DmStatus::kFailure);
    EXPECT_EQ(scene.compound->getConnections().size(), 1u);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, BreakConnectionWithEndsSwappedBreaksNothing) {
    Scene scene;
    auto const out = Scene::port(scene.n1, "out");
    auto const a = Scene::port(scene.n2, "a");
    auto const connection = scene.connect(out, a);
    EXPECT_EQ(scene.compound->breakConnection(a, out), DmStatus::kFailure);
    EXPECT_TRUE(connection->isConnected());
    EXPECT_EQ(scene.compound->getConnections().size(), 1u);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, BreakConnectionOfTwoInputsIsConnectionError) {
    Scene scene;
    EXPECT_EQ(scene.compound->breakConnection(Scene::port(scene.n1, "a"), Scene::port(scene.n2, "a")),
              DmStatus::kConnectionError);
    EXPECT_EQ(scene.logger->getMessageCount(), 1u);
}

TEST_F(DmConnectionTest, BreakConnectionOfTwoOutputsIsConnectionError) {
    Scene scene;
    auto const connection = scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
    EXPECT_EQ(scene.compound->breakConnection(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "out")),
              DmStatus::kConnectionError);
    EXPECT_TRUE(connection->isConnected());
    EXPECT_EQ(scene.logger->getMessageCount(), 1u);
}

TEST_F(DmConnectionTest, BreakConnectionOfNullPortIsInvalidArgument) {
    Scene scene;
    EXPECT_EQ(scene.compound->breakConnection(nullptr, Scene::port(scene.n2, "a")),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.compound->breakConnection(Scene::port(scene.n1, "out"), nullptr),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionTest, BrokenConnectionMayBeMadeAgain) {
    Scene scene;
    auto const out = Scene::port(scene.n1, "out");
    auto const a = Scene::port(scene.n2, "a");
    scene.connect(out, a);
    ASSERT_EQ(scene.compound->breakConnection(out, a), DmStatus::kSuccess);
    auto const again = scene.connect(out, a);
    EXPECT_NE(again, nullptr);
    EXPECT_EQ(listOf(*scene.compound), (Connections{again}));
}

// ---------------------------------------------------------------------------
// breakAllConnections

TEST_F(DmConnectionTest, BreakAllConnectionsOfNullIsInvalidArgument) {
    Scene scene;
    scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
    EXPECT_EQ(scene.compound->breakAllConnections(std::shared_ptr<DmNode>()), DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.compound->breakAllConnections(std::shared_ptr<DmPort>()), DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.compound->getConnections().size(), 1u);
}

TEST_F(DmConnectionTest, BreakAllConnectionsInCompoundWithoutConnectionsIsFailure) {
    Scene scene;
    EXPECT_EQ(scene.compound->breakAllConnections(scene.n1), DmStatus::kFailure);
    EXPECT_EQ(scene.compound->breakAllConnections(Scene::port(scene.n1, "out")), DmStatus::kFailure);
    EXPECT_EQ(scene.compound->breakAllConnections(), DmStatus::kFailure);
}

TEST_F(DmConnectionTest, BreakAllConnectionsOfNodeBreaksBothWays) {
    Scene scene;
    auto const in = scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
    auto const out = scene.connect(Scene::port(scene.n2, "out"), Scene::port(scene.n3, "a"));
    auto const other = scene.connect(Scene::port(scene.n1, "text"), Scene::port(scene.n3, "b"));
    EXPECT_EQ(scene.compound->breakAllConnections(scene.n2), DmStatus::kSuccess);
    EXPECT_EQ(listOf(*scene.compound), (Connections{other}));
    EXPECT_FALSE(in->isConnected());
    EXPECT_FALSE(out->isConnected());
    EXPECT_TRUE(scene.n2->getConnections().empty());
    EXPECT_EQ(scene.n1->getConnections().size(), 1u);
    EXPECT_EQ(scene.n3->getConnections().size(), 1u);
}

TEST_F(DmConnectionTest, BreakAllConnectionsOfNodeWithoutConnectionsIsFailure) {
    Scene scene;
    scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
    EXPECT_EQ(scene.compound->breakAllConnections(scene.n3), DmStatus::kFailure);
    EXPECT_EQ(scene.compound->getConnections().size(), 1u);
}

TEST_F(DmConnectionTest, BreakAllConnectionsOfSelfNodeBreaksTheBindings) {
    Scene scene;
    scene.connect(scene.selfPort("x"), Scene::port(scene.n1, "a"));
    scene.connect(scene.selfPort("x"), scene.selfPort("y"));
    auto const inside = scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
    EXPECT_EQ(scene.compound->breakAllConnections(scene.self()), DmStatus::kSuccess);
    EXPECT_EQ(listOf(*scene.compound), (Connections{inside}));
    EXPECT_TRUE(scene.compound->getBindingConnections().empty());
}

TEST_F(DmConnectionTest, BreakAllConnectionsOfOutputBreaksWhatItFeeds) {
    Scene scene;
    auto const out = Scene::port(scene.n1, "out");
    scene.connect(out, Scene::port(scene.n2, "a"));
    scene.connect(out, Scene::port(scene.n3, "a"));
    auto const other = scene.connect(Scene::port(scene.n1, "text"), Scene::port(scene.n2, "b"));
    EXPECT_EQ(scene.compound->breakAllConnections(out), DmStatus::kSuccess);
    EXPECT_EQ(listOf(*scene.compound), (Connections{other}));
    EXPECT_TRUE(out->getConnectedPorts().empty());
}

TEST_F(DmConnectionTest, BreakAllConnectionsOfInputBreaksItsFeeder) {
    Scene scene;
    auto const a = Scene::port(scene.n2, "a");
    scene.connect(Scene::port(scene.n1, "out"), a);
    auto const other = scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "b"));
    EXPECT_EQ(scene.compound->breakAllConnections(a), DmStatus::kSuccess);
    EXPECT_EQ(listOf(*scene.compound), (Connections{other}));
    EXPECT_TRUE(a->getConnectedPorts().empty());
}

TEST_F(DmConnectionTest, BreakAllConnectionsOfPortWithoutConnectionInBusyCompoundIsFailure) {
    Scene scene;
    scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
    EXPECT_EQ(scene.compound->breakAllConnections(Scene::port(scene.n2, "b")), DmStatus::kFailure);
    EXPECT_EQ(scene.compound->breakAllConnections(Scene::port(scene.n3, "out")), DmStatus::kFailure);
    EXPECT_EQ(scene.compound->getConnections().size(), 1u);
}

TEST_F(DmConnectionTest, BreakAllConnectionsOfMultiInPortBreaksThoseOfItsEntries) {
    Scene scene;
    auto const add = scene.addNode("add", makeAddDef());
    std::shared_ptr<DmPort> first;
    std::shared_ptr<DmPort> second;
    ASSERT_EQ(add->addMultiInPortEntry("term", first), DmStatus::kSuccess);
    ASSERT_EQ(add->addMultiInPortEntry("term", second), DmStatus::kSuccess);
    scene.connect(Scene::port(scene.n1, "out"), first);
    scene.connect(Scene::port(scene.n2, "out"), second);
    auto const onward = scene.connect(Scene::port(add, "result"), Scene::port(scene.n3, "a"));
    EXPECT_EQ(scene.compound->breakAllConnections(add->getMultiInPort()), DmStatus::kSuccess);
    EXPECT_EQ(listOf(*scene.compound), (Connections{onward}));
    EXPECT_TRUE(first->getConnectedPorts().empty());
    EXPECT_TRUE(second->getConnectedPorts().empty());
}

TEST_F(DmConnectionTest, BreakAllConnectionsOfFanInPortBreaksThoseOfItsEntries) {
    Scene scene;
    auto const a = Scene::port(scene.n3, "a");
    ASSERT_EQ(a->setFanIn(true), DmStatus::kSuccess);
    std::shared_ptr<DmPort> first;
    std::shared_ptr<DmPort> second;
    ASSERT_EQ(a->addMultiInPortEntry("item", first), DmStatus::kSuccess);
    ASSERT_EQ(a->addMultiInPortEntry("item", second), DmStatus::kSuccess);
    scene.connect(Scene::port(scene.n1, "out"), first);
    scene.connect(Scene::port(scene.n2, "out"), second);
    auto const other = scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n3, "b"));
    EXPECT_EQ(scene.compound->breakAllConnections(a), DmStatus::kSuccess);
    EXPECT_EQ(listOf(*scene.compound), (Connections{other}));
    EXPECT_EQ(scene.n3->getConnections().size(), 1u);
}

TEST_F(DmConnectionTest, BreakAllConnectionsOfEntryLeavesItsSiblings) {
    Scene scene;
    auto const add = scene.addNode("add", makeAddDef());
    std::shared_ptr<DmPort> first;
    std::shared_ptr<DmPort> second;
    ASSERT_EQ(add->addMultiInPortEntry("term", first), DmStatus::kSuccess);
    ASSERT_EQ(add->addMultiInPortEntry("term", second), DmStatus::kSuccess);
    scene.connect(Scene::port(scene.n1, "out"), first);
    auto const kept = scene.connect(Scene::port(scene.n2, "out"), second);
    EXPECT_EQ(scene.compound->breakAllConnections(first), DmStatus::kSuccess);
    EXPECT_EQ(listOf(*scene.compound), (Connections{kept}));
}

TEST_F(DmConnectionTest, BreakAllConnectionsOfCompoundBreaksEveryOne) {
    Scene scene;
    auto const one = scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
    auto const two = scene.connect(scene.selfPort("x"), scene.selfPort("y"));
    EXPECT_EQ(scene.compound->breakAllConnections(), DmStatus::kSuccess);
    EXPECT_TRUE(scene.compound->getConnections().empty());
    EXPECT_FALSE(one->isConnected());
    EXPECT_FALSE(two->isConnected());
    EXPECT_TRUE(scene.n1->getConnections().empty());
    EXPECT_TRUE(scene.self()->getConnections().empty());
    EXPECT_EQ(scene.compound->breakAllConnections(), DmStatus::kFailure);
}

// ---------------------------------------------------------------------------
// Removing nodes, lifetime

TEST_F(DmConnectionTest, RemoveNodeBreaksItsConnections) {
    Scene scene;
    scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
    scene.connect(Scene::port(scene.n2, "out"), Scene::port(scene.n3, "a"));
    auto const other = scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n3, "b"));
    auto const n2 = scene.n2;
    EXPECT_EQ(scene.compound->removeNode(n2), DmStatus::kSuccess);
    EXPECT_EQ(listOf(*scene.compound), (Connections{other}));
    EXPECT_TRUE(n2->getConnections().empty());
    EXPECT_EQ(n2->getOwner(), nullptr);
    EXPECT_EQ(scene.compound->findNode("n2"), nullptr);
    EXPECT_EQ(scene.n1->getConnections().size(), 1u);
}

TEST_F(DmConnectionTest, RemoveNodeWithoutConnectionsSucceeds) {
    Scene scene;
    EXPECT_EQ(scene.compound->removeNode(scene.n3), DmStatus::kSuccess);
    EXPECT_EQ(scene.compound->removeNode(scene.n3), DmStatus::kInvalidArgument);
}

TEST_F(DmConnectionTest, DroppingTheCompoundReleasesItsConnections) {
    unsigned int const before = count<DmConnection>();
    {
        Scene scene;
        scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
        scene.connect(scene.selfPort("x"), scene.selfPort("y"));
        EXPECT_EQ(count<DmConnection>(), before + 2);
    }
    EXPECT_EQ(count<DmConnection>(), before);
}

TEST_F(DmConnectionTest, HeldConnectionOutlivesItsCompoundDisconnected) {
    std::shared_ptr<DmConnection> held;
    {
        Scene scene;
        held = scene.connect(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a"));
    }
    ASSERT_NE(held, nullptr);
    EXPECT_FALSE(held->isConnected());
    held.reset();
}

} // namespace
