// Fan-in and multi-in inputs of nodes inside a compound: connections go to
// their entries, toggling fan-in moves the connection between the port and its
// first entry, and removing an entry, a port or a node takes the entries'
// connections along.
#include "graph/CompoundTestSupport.h"

#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmArrayType.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kesto;
using KestoTest::input;
using KestoTest::keysOf;
using KestoTest::makeOp;
using KestoTest::makeStruct;
using KestoTest::output;

using Names = std::vector<std::string>;

class DmFanInTest : public KestoTest::CompoundTest {
protected:
    void SetUp() override {
        CompoundTest::SetUp();
        m_op = makeOp();
        m_compound = makeCompoundWithPorts();
        m_source = addNode("src", m_op);
        m_other = addNode("other", m_op);
        m_sink = addNode("sink", m_op);
    }

    void TearDown() override {
        m_sink.reset();
        m_other.reset();
        m_source.reset();
        m_compound.reset();
        m_op.reset();
        CompoundTest::TearDown();
    }

    std::shared_ptr<DmNode> addNode(std::string const& name, std::shared_ptr<DmNodeDef> const& def) {
        return KestoTest::addNode(*m_compound, name, def);
    }

    DmStatus connect(std::shared_ptr<DmPort> const& source, std::shared_ptr<DmPort> const& target) {
        return KestoTest::connect(*m_compound, source, target);
    }

    DmStatus connect(std::string const& source, std::string const& target) {
        return KestoTest::connect(*m_compound, source, target);
    }

    std::shared_ptr<DmPort> entry(std::shared_ptr<DmPort> const& port, std::string const& name) {
        std::shared_ptr<DmPort> added;
        EXPECT_EQ(port->addMultiInPortEntry(name, added), DmStatus::kSuccess);
        return added;
    }

    /// "source->target" for each connection: "node.port", ".port" on the self
    /// node, entries behind their port.
    std::vector<std::string> connections() const { return KestoTest::connectionsOf(*m_compound, "->"); }

    std::shared_ptr<DmPort> out(DmNode const& node) const { return node["out"]; }
    std::shared_ptr<DmPort> in(DmNode const& node) const { return node["in"]; }

    std::shared_ptr<DmNativeNodeDef> m_op;
    std::shared_ptr<DmCompound> m_compound;
    std::shared_ptr<DmNode> m_source;
    std::shared_ptr<DmNode> m_other;
    std::shared_ptr<DmNode> m_sink;
};

/// An associative "add": the associative int inputs x and y, the int output sum.
std::shared_ptr<DmNativeNodeDef> makeAdd() {
    return KestoTest::makeAssociativeDef("x", "y", "sum");
}

} // namespace

// ---------------------------------------------------------------------------
// Switching fan-in on

TEST_F(DmFanInTest, TurningFanInOnMovesTheConnectionToElement0) {
    ASSERT_EQ(connect("src.out", "sink.in"), DmStatus::kSuccess);
    auto port = in(*m_sink);

    EXPECT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    EXPECT_TRUE(port->isFanIn());
    EXPECT_EQ(keysOf(port->getMembers()), (Names{"element_0"}));
    EXPECT_EQ(connections(), (Names{"src.out->sink.in.element_0"}));
    std::shared_ptr<DmPort> first;
    ASSERT_TRUE(port->getMember("element_0", first));
    EXPECT_TRUE(port->getConnectedPorts().empty());
    EXPECT_EQ(first->getConnectedPorts().size(), 1u);
    EXPECT_TRUE(first->getConnectedPorts().contains(out(*m_source).get()));
    EXPECT_EQ(out(*m_source)->getConnectedPorts().size(), 1u);
    EXPECT_TRUE(out(*m_source)->getConnectedPorts().contains(first.get()));
    EXPECT_EQ(first->getPortDescription()->getType(), DmLibrary::getAutoType());
    EXPECT_EQ(m_sink->getConnections().size(), 1u);
    EXPECT_EQ(m_logger->getMessageCount(), 0u);
}

TEST_F(DmFanInTest, TurningFanInOnDisconnectsTheOldConnection) {
    std::shared_ptr<DmConnection> old;
    ASSERT_EQ(m_compound->makeConnection("src.out", "sink.in", old), DmStatus::kSuccess);
    ASSERT_EQ(in(*m_sink)->setFanIn(true), DmStatus::kSuccess);
    EXPECT_FALSE(old->isConnected());
    ASSERT_EQ(m_compound->getConnections().size(), 1u);
    EXPECT_NE(m_compound->getConnections()[0], old);
}

TEST_F(DmFanInTest, TurningFanInOnWithoutConnectionMakesNoEntry) {
    ASSERT_EQ(connect("src.out", "other.in"), DmStatus::kSuccess);
    auto port = in(*m_sink);
    EXPECT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    EXPECT_TRUE(port->isFanIn());
    EXPECT_TRUE(port->getMembers().empty());
    EXPECT_EQ(connections(), (Names{"src.out->other.in"}));
}

TEST_F(DmFanInTest, TurningFanInOnLeavesTheNodesOtherConnectionsAlone) {
    ASSERT_EQ(connect("src.out", "sink.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect("sink.out", "other.in"), DmStatus::kSuccess);
    ASSERT_EQ(in(*m_sink)->setFanIn(true), DmStatus::kSuccess);
    EXPECT_EQ(connections(), (Names{"sink.out->other.in", "src.out->sink.in.element_0"}));
}

TEST_F(DmFanInTest, TurningFanInOnAnOutputFails) {
    ASSERT_EQ(connect("src.out", "sink.in"), DmStatus::kSuccess);
    EXPECT_EQ(out(*m_source)->setFanIn(true), DmStatus::kFailure);
    EXPECT_FALSE(out(*m_source)->isFanIn());
    EXPECT_EQ(connections(), (Names{"src.out->sink.in"}));
}

TEST_F(DmFanInTest, TurningFanInOnAStructInputFails) {
    auto def = DmNativeNodeDef::newNativeNodeDef("take", DmNativeNodeDef::kPass);
    def->addPortDescription(input("p", makeStruct("Point")), kFailOnClash);
    auto node = addNode("take", def);
    EXPECT_EQ((*node)["p"]->setFanIn(true), DmStatus::kFailure);
    EXPECT_FALSE((*node)["p"]->isFanIn());
    EXPECT_EQ(keysOf((*node)["p"]->getMembers()), (Names{"x"}));
}

TEST_F(DmFanInTest, TurningFanInOnTwiceChangesNothing) {
    ASSERT_EQ(connect("src.out", "sink.in"), DmStatus::kSuccess);
    ASSERT_EQ(in(*m_sink)->setFanIn(true), DmStatus::kSuccess);
    EXPECT_EQ(in(*m_sink)->setFanIn(true), DmStatus::kSuccess);
    EXPECT_EQ(keysOf(in(*m_sink)->getMembers()), (Names{"element_0"}));
    EXPECT_EQ(connections(), (Names{"src.out->sink.in.element_0"}));
}

TEST_F(DmFanInTest, TurningFanInOnASelfNodeInputMovesTheBinding) {
    ASSERT_EQ(connect("src.out", ".r"), DmStatus::kSuccess);
    auto r = (*m_compound->getSelfNode())["r"];
    EXPECT_EQ(r->setFanIn(true), DmStatus::kSuccess);
    EXPECT_EQ(connections(), (Names{"src.out->.r.element_0"}));
    EXPECT_EQ(m_compound->getBindingConnections().size(), 1u);
}

// ---------------------------------------------------------------------------
// Switching fan-in off

TEST_F(DmFanInTest, TurningFanInOffKeepsJustTheFirstConnectionOfTheEntries) {
    auto port = in(*m_sink);
    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    auto first = entry(port, "e");
    auto second = entry(port, "e");
    auto third = entry(port, "e");
    ASSERT_EQ(connect(out(*m_source), first), DmStatus::kSuccess);
    ASSERT_EQ(connect(out(*m_other), second), DmStatus::kSuccess);
    ASSERT_EQ(connect((*m_compound->getSelfNode())["a"], third), DmStatus::kSuccess);

    EXPECT_EQ(port->setFanIn(false), DmStatus::kSuccess);
    EXPECT_FALSE(port->isFanIn());
    EXPECT_TRUE(port->getMembers().empty());
    EXPECT_EQ(connections(), (Names{"src.out->sink.in"}));
    EXPECT_TRUE(out(*m_other)->getConnectedPorts().empty());
    EXPECT_TRUE((*m_compound->getSelfNode())["a"]->getConnectedPorts().empty());
    EXPECT_TRUE(m_other->getConnections().empty());
    EXPECT_EQ(port->getConnectedPorts().size(), 1u);
    EXPECT_TRUE(port->getConnectedPorts().contains(out(*m_source).get()));
}

TEST_F(DmFanInTest, TheFirstConnectionIsThatOfTheFirstEntry) {
    auto port = in(*m_sink);
    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    auto first = entry(port, "first");
    auto second = entry(port, "second");
    // Connected in the other order: the entries' order decides.
    ASSERT_EQ(connect(out(*m_other), second), DmStatus::kSuccess);
    ASSERT_EQ(connect(out(*m_source), first), DmStatus::kSuccess);

    EXPECT_EQ(port->setFanIn(false), DmStatus::kSuccess);
    EXPECT_EQ(connections(), (Names{"src.out->sink.in"}));
}

TEST_F(DmFanInTest, TurningFanInOffSkipsUnconnectedEntries) {
    auto port = in(*m_sink);
    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    entry(port, "first");
    auto second = entry(port, "second");
    ASSERT_EQ(connect(out(*m_other), second), DmStatus::kSuccess);
    EXPECT_EQ(port->setFanIn(false), DmStatus::kSuccess);
    EXPECT_EQ(connections(), (Names{"other.out->sink.in"}));
}

TEST_F(DmFanInTest, TurningFanInOffWithoutConnectedEntriesLeavesThePortFree) {
    auto port = in(*m_sink);
    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    entry(port, "e");
    ASSERT_EQ(connect("sink.out", "other.in"), DmStatus::kSuccess);
    EXPECT_EQ(port->setFanIn(false), DmStatus::kSuccess);
    EXPECT_TRUE(port->getConnectedPorts().empty());
    EXPECT_EQ(connections(), (Names{"sink.out->other.in"}));
}

TEST_F(DmFanInTest, TurningFanInOnAndOffBringsTheConnectionBack) {
    ASSERT_EQ(connect("src.out", "sink.in"), DmStatus::kSuccess);
    auto port = in(*m_sink);
    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    ASSERT_EQ(port->setFanIn(false), DmStatus::kSuccess);
    EXPECT_EQ(connections(), (Names{"src.out->sink.in"}));
    EXPECT_EQ(m_source->getConnections().size(), 1u);
    EXPECT_EQ(m_sink->getConnections().size(), 1u);
}

TEST_F(DmFanInTest, TurningFanInOffTwiceChangesNothing) {
    ASSERT_EQ(connect("src.out", "sink.in"), DmStatus::kSuccess);
    EXPECT_EQ(in(*m_sink)->setFanIn(false), DmStatus::kSuccess);
    EXPECT_FALSE(in(*m_sink)->isFanIn());
    EXPECT_EQ(connections(), (Names{"src.out->sink.in"}));
}

// ---------------------------------------------------------------------------
// Connections to fan-in ports and their entries

TEST_F(DmFanInTest, ConnectionToAFanInPortIsRefusedWithoutMessage) {
    auto port = in(*m_sink);
    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    std::shared_ptr<DmConnection> connection;
    DmCompound::ConnectionFailureType failure = DmCompound::kConnectionRedundant;
    EXPECT_EQ(m_compound->makeConnection(out(*m_source), port, false, connection, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(connection, nullptr);
    EXPECT_TRUE(m_compound->getConnections().empty());
    EXPECT_EQ(m_logger->getMessageCount(), 0u);
}

TEST_F(DmFanInTest, EntriesOfAFanInPortTakeOneConnectionEach) {
    auto port = in(*m_sink);
    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    auto first = entry(port, "e");
    auto second = entry(port, "e");
    EXPECT_EQ(second->getName(), "e1");
    EXPECT_EQ(connect(out(*m_source), first), DmStatus::kSuccess);
    EXPECT_EQ(connect(out(*m_source), second), DmStatus::kSuccess);
    EXPECT_EQ(connections(), (Names{"src.out->sink.in.e", "src.out->sink.in.e1"}));

    std::shared_ptr<DmConnection> connection;
    DmCompound::ConnectionFailureType failure = DmCompound::kConnectionOk;
    EXPECT_EQ(m_compound->makeConnection(out(*m_other), first, false, connection, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionTargetTaken);
}

TEST_F(DmFanInTest, PortOnDefaultFanInDescriptionTakesConnectionsThroughEntries) {
    auto list = input("list", std::make_shared<DmArrayType>(DmLibrary::getIntType()));
    ASSERT_EQ(list->setPortKind(kPortDefaultFanIn), DmStatus::kSuccess);
    auto def = DmNativeNodeDef::newNativeNodeDef("gather", DmNativeNodeDef::kBuildArray);
    def->addPortDescription(list, kFailOnClash);
    auto node = addNode("gather", def);
    auto port = (*node)["list"];
    ASSERT_TRUE(port->isFanIn());
    EXPECT_EQ(connect(out(*m_source), port), DmStatus::kInvalidArgument);
    EXPECT_EQ(connect(out(*m_source), entry(port, "element")), DmStatus::kSuccess);
    EXPECT_EQ(connections(), (Names{"src.out->gather.list.element"}));
}

TEST_F(DmFanInTest, RemovingAConnectedEntryBreaksItsConnection) {
    auto port = in(*m_sink);
    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    auto first = entry(port, "first");
    auto second = entry(port, "second");
    ASSERT_EQ(connect(out(*m_source), first), DmStatus::kSuccess);
    ASSERT_EQ(connect(out(*m_other), second), DmStatus::kSuccess);

    EXPECT_EQ(port->removeMultiInPortEntry(first), DmStatus::kSuccess);
    EXPECT_EQ(keysOf(port->getMembers()), (Names{"second"}));
    EXPECT_EQ(connections(), (Names{"other.out->sink.in.second"}));
    EXPECT_TRUE(out(*m_source)->getConnectedPorts().empty());
    EXPECT_TRUE(m_source->getConnections().empty());
}

TEST_F(DmFanInTest, BreakingAllConnectionsOfAFanInPortBreaksThoseOfItsEntries) {
    auto port = in(*m_sink);
    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    ASSERT_EQ(connect(out(*m_source), entry(port, "e")), DmStatus::kSuccess);
    ASSERT_EQ(connect(out(*m_other), entry(port, "e")), DmStatus::kSuccess);
    ASSERT_EQ(connect("sink.out", ".r"), DmStatus::kSuccess);

    EXPECT_EQ(m_compound->breakAllConnections(port), DmStatus::kSuccess);
    EXPECT_EQ(connections(), (Names{"sink.out->.r"}));
    EXPECT_EQ(keysOf(port->getMembers()), (Names{"e", "e1"}));
    EXPECT_EQ(m_compound->breakAllConnections(port), DmStatus::kFailure);
}

TEST_F(DmFanInTest, RemovingAFanInPortFromItsDefinitionBreaksTheEntriesConnections) {
    auto def = DmNativeNodeDef::newNativeNodeDef("gather", DmNativeNodeDef::kPass);
    def->addPortDescription(input("items", DmLibrary::getIntType()), kFailOnClash);
    def->addPortDescription(output("all", DmLibrary::getIntType()), kFailOnClash);
    auto node = addNode("gather", def);
    auto port = (*node)["items"];
    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    ASSERT_EQ(connect(out(*m_source), entry(port, "e")), DmStatus::kSuccess);
    ASSERT_EQ(connect(out(*m_other), entry(port, "e")), DmStatus::kSuccess);
    ASSERT_EQ(connect("gather.all", "sink.in"), DmStatus::kSuccess);

    EXPECT_TRUE(def->removePortDescription(def->getPortsInterface()["items"]));
    EXPECT_EQ(connections(), (Names{"gather.all->sink.in"}));
    EXPECT_TRUE(m_source->getConnections().empty());
    EXPECT_TRUE(m_other->getConnections().empty());
}

TEST_F(DmFanInTest, RemovingANodeBreaksTheConnectionsOfItsEntries) {
    auto port = in(*m_sink);
    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    ASSERT_EQ(connect(out(*m_source), entry(port, "e")), DmStatus::kSuccess);
    ASSERT_EQ(connect("src.out", "other.in"), DmStatus::kSuccess);

    EXPECT_EQ(m_compound->removeNode(m_sink), DmStatus::kSuccess);
    EXPECT_EQ(connections(), (Names{"src.out->other.in"}));
    EXPECT_EQ(out(*m_source)->getConnectedPorts().size(), 1u);
}

// ---------------------------------------------------------------------------
// Multi-in ports

TEST_F(DmFanInTest, ConnectionToAMultiInPortIsRefusedWithoutMessage) {
    auto node = addNode("add", makeAdd());
    auto multiIn = node->getMultiInPort();
    ASSERT_NE(multiIn, nullptr);
    std::shared_ptr<DmConnection> connection;
    DmCompound::ConnectionFailureType failure = DmCompound::kConnectionRedundant;
    EXPECT_EQ(m_compound->makeConnection(out(*m_source), multiIn, false, connection, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_TRUE(m_compound->getConnections().empty());
    EXPECT_EQ(m_logger->getMessageCount(), 0u);
}

TEST_F(DmFanInTest, EntriesOfAMultiInPortTakeConnections) {
    auto node = addNode("add", makeAdd());
    std::shared_ptr<DmPort> first;
    std::shared_ptr<DmPort> second;
    ASSERT_EQ(node->addMultiInPortEntry("x", first), DmStatus::kSuccess);
    ASSERT_EQ(node->addMultiInPortEntry("x", second), DmStatus::kSuccess);
    EXPECT_EQ(connect(out(*m_source), first), DmStatus::kSuccess);
    EXPECT_EQ(connect(out(*m_other), second), DmStatus::kSuccess);
    EXPECT_EQ(connections(), (Names{"src.out->add.x.x", "other.out->add.x.x1"}));
}

TEST_F(DmFanInTest, RemovingAConnectedMultiInEntryBreaksItsConnection) {
    auto node = addNode("add", makeAdd());
    std::shared_ptr<DmPort> first;
    ASSERT_EQ(node->addMultiInPortEntry("x", first), DmStatus::kSuccess);
    ASSERT_EQ(connect(out(*m_source), first), DmStatus::kSuccess);
    EXPECT_EQ(node->removeMultiInPortEntry(first), DmStatus::kSuccess);
    EXPECT_TRUE(m_compound->getConnections().empty());
    EXPECT_TRUE(out(*m_source)->getConnectedPorts().empty());
}

TEST_F(DmFanInTest, BreakingAllConnectionsOfAMultiInPortBreaksThoseOfItsEntries) {
    auto node = addNode("add", makeAdd());
    std::shared_ptr<DmPort> first;
    std::shared_ptr<DmPort> second;
    ASSERT_EQ(node->addMultiInPortEntry("x", first), DmStatus::kSuccess);
    ASSERT_EQ(node->addMultiInPortEntry("x", second), DmStatus::kSuccess);
    ASSERT_EQ(connect(out(*m_source), first), DmStatus::kSuccess);
    ASSERT_EQ(connect(out(*m_other), second), DmStatus::kSuccess);
    EXPECT_EQ(m_compound->breakAllConnections(node->getMultiInPort()), DmStatus::kSuccess);
    EXPECT_TRUE(m_compound->getConnections().empty());
}

// ---------------------------------------------------------------------------
// Lifetime

TEST_F(DmFanInTest, DroppingTheCompoundReleasesEntriesAndTheirConnections) {
    unsigned int const connections = count<DmConnection>();
    unsigned int const ports = count<DmPort>();
    {
        auto compound = DmCompound::createCompound("other");
        auto a = DmNode::createNode("a", m_op);
        auto b = DmNode::createNode("b", m_op);
        ASSERT_EQ(compound->addNode(a, kFailOnClash), DmStatus::kSuccess);
        ASSERT_EQ(compound->addNode(b, kFailOnClash), DmStatus::kSuccess);
        std::shared_ptr<DmConnection> connection;
        ASSERT_EQ(compound->makeConnection("a.out", "b.in", connection), DmStatus::kSuccess);
        ASSERT_EQ((*b)["in"]->setFanIn(true), DmStatus::kSuccess);
        std::shared_ptr<DmPort> added;
        ASSERT_EQ((*b)["in"]->addMultiInPortEntry("e", added), DmStatus::kSuccess);
        ASSERT_EQ(compound->makeConnection((*a)["out"], added, connection), DmStatus::kSuccess);
        EXPECT_EQ(compound->getConnections().size(), 2u);
    }
    EXPECT_EQ(count<DmConnection>(), connections);
    EXPECT_EQ(count<DmPort>(), ports);
}
