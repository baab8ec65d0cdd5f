// A compound of fifty nodes built by hand over five definitions: compound
// inputs feeding nodes, a value passed straight through the compound, multi-in
// entries of an associative definition, fan-in entries, fan-out, replaced
// feeders. After every step one checker walks the whole graph: the compound's
// list, the nodes' connection sets and the ports' connected ports must tell
// the same story. Removing nodes and ports must break exactly the connections
// that touch them, and dropping the compound must release everything.
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
#include <KestoDM/types/DmArrayType.h>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace Kesto;
using KestoTest::fullName;
using KestoTest::input;
using KestoTest::output;

using Failure = DmCompound::ConnectionFailureType;
using ConnectionPointers = std::vector<DmConnection const*>;

std::string numbered(std::string const& base, int number) {
    return base + std::to_string(number);
}

// ---------------------------------------------------------------------------
// The consistency checker

/// Appends `port` and, depth first, its entries and members.
void collectPorts(DmPort const& port, std::vector<DmPort const*>& out) {
    out.push_back(&port);
    if (port.hasMembers()) {
        for (auto const& member : port.getMembers()) {
            collectPorts(*member.second, out);
        }
    }
}

/// Whether `port` is still one of `node`'s ports, or an entry or member
/// reached from one of them.
bool isPortOf(DmPort const& port, DmNode const& node) {
    if (port.getNode() != &node) {
        return false;
    }
    DmPort const* top = &port;
    while (DmPort const* const parent = top->getParent()) {
        if (!parent->hasMembers()) {
            return false;
        }
        auto const found = parent->getMembers().find(top->getName());
        if (found == parent->getMembers().end() || found->second.get() != top) {
            return false;
        }
        top = parent;
    }
    auto const found = node.getPorts().find(top->getName());
    return found != node.getPorts().end() && found->second.get() == top;
}

/// Checks that the compound's connection list, the connection sets of its
/// nodes and the connected ports of their ports agree:
/// - every connection of the list is connected, joins an output to an input
///   that are still ports of nodes of the compound, is in the connection sets
///   of both nodes, and each of its ports is among the other's connected ports;
/// - every connection in a node's set is in the list and touches that node,
///   and the set holds every listed connection that touches the node;
/// - no port names a connected port without a connection between the two;
/// - an input has at most one feeder, and no connection ends at a multi-in
///   or fan-in port itself.
void expectConsistent(DmCompound const& compound) {
    std::vector<DmNode const*> nodes;
    ASSERT_NE(compound.getSelfNode(), nullptr);
    nodes.push_back(compound.getSelfNode().get());
    EXPECT_EQ(compound.getSelfNode()->getOwner(), &compound);
    for (auto const& entry : compound.getNodes()) {
        ASSERT_NE(entry.second, nullptr);
        EXPECT_EQ(entry.first, entry.second->getName());
        EXPECT_EQ(entry.second->getOwner(), &compound) << entry.first;
        nodes.push_back(entry.second.get());
    }
    std::set<DmNode const*> const nodeSet(nodes.begin(), nodes.end());

    std::set<DmConnection const*> listed;
    std::set<std::pair<DmPort const*, DmPort const*>> joined;
    std::map<DmPort const*, int> feeders;
    for (auto const& connection : compound.getConnections()) {
        ASSERT_NE(connection, nullptr);
        EXPECT_TRUE(listed.insert(connection.get()).second) << "a connection is listed twice";
        EXPECT_TRUE(connection->isConnected());
        DmPort const* const source = connection->getSourcePort();
        DmPort const* const target = connection->getTargetPort();
        ASSERT_NE(source, nullptr);
        ASSERT_NE(target, nullptr);
        std::string const what = fullName(*source) + " -> " + fullName(*target);
        DmNode const* const sourceNode = source->getNode();
        DmNode const* const targetNode = target->getNode();
        ASSERT_TRUE(nodeSet.count(sourceNode) != 0) << what << ": source node not in the compound";
        ASSERT_TRUE(nodeSet.count(targetNode) != 0) << what << ": target node not in the compound";
        EXPECT_TRUE(isPortOf(*source, *sourceNode)) << what << ": source port gone from its node";
        EXPECT_TRUE(isPortOf(*target, *targetNode)) << what << ": target port gone from its node";
        EXPECT_TRUE(source->isOutput()) << what;
        EXPECT_TRUE(target->isInput()) << what;
        EXPECT_FALSE(target->isFanIn()) << what;
        EXPECT_FALSE(target->isMultiIn()) << what;
        EXPECT_TRUE(sourceNode->getConnections().contains(connection.get()))
            << what << ": missing from the source node's set";
        EXPECT_TRUE(targetNode->getConnections().contains(connection.get()))
            << what << ": missing from the target node's set";
        EXPECT_TRUE(source->getConnectedPorts().contains(target)) << what << ": source does not know target";
        EXPECT_TRUE(target->getConnectedPorts().contains(source)) << what << ": target does not know source";
        EXPECT_TRUE(joined.insert({source, target}).second) << what << ": made twice";
        ++feeders[target];
    }

    for (DmNode const* const node : nodes) {
        std::size_t touching = 0;
        for (auto const& connection : compound.getConnections()) {
            if (connection->getSourcePort()->getNode() == node ||
                connection->getTargetPort()->getNode() == node) {
                ++touching;
            }
        }
        EXPECT_EQ(node->getConnections().size(), touching) << node->getName();
        for (DmConnection const* const connection : node->getConnections()) {
            if (listed.count(connection) == 0) {
                ADD_FAILURE() << node->getName() << ": knows a connection not listed";
                continue;
            }
            EXPECT_TRUE(connection->getSourcePort()->getNode() == node ||
                        connection->getTargetPort()->getNode() == node)
                << node->getName() << ": knows a connection that does not touch it";
        }
        std::vector<DmPort const*> ports;
        for (auto const& entry : node->getPorts()) {
            collectPorts(*entry.second, ports);
        }
        for (DmPort const* const port : ports) {
            for (DmPort const* const far : port->getConnectedPorts()) {
                EXPECT_TRUE(joined.count({port, far}) != 0 || joined.count({far, port}) != 0)
                    << fullName(*port) << " names " << fullName(*far) << " without a connection";
            }
            if (port->isInput()) {
                EXPECT_LE(feeders[port], 1) << fullName(*port) << " has several feeders";
                EXPECT_LE(port->getConnectedPorts().size(), 1u)
                    << fullName(*port) << " knows several feeders";
            }
        }
    }
}

// ---------------------------------------------------------------------------
// The graph

/// Builds and edits the graph; every helper runs the checker when it is done.
class DmHandBuiltGraphTest : public KestoTest::ConnectionTest {
protected:
    static constexpr int kSources = 10;
    static constexpr int kScales = 15;
    static constexpr int kSums = 10;
    static constexpr int kGathers = 5;
    static constexpr int kSinks = 10;

    void SetUp() override {
        ConnectionTest::SetUp();
        m_library = KestoTest::makeLibrary();
        m_logger = m_library->getErrorLogger();
        m_logger->clear();
        m_connectionsBefore = count<DmConnection>();
    }

    void TearDown() override {
        m_compound.reset();
        m_sourceDef.reset();
        m_scaleDef.reset();
        m_sumDef.reset();
        m_gatherDef.reset();
        m_sinkDef.reset();
        m_logger.reset();
        m_library.reset();
        ConnectionTest::TearDown();
    }

    /// The five definitions, the compound with its ports, and the fifty nodes.
    void makeDefinitionsAndNodes() {
        m_sourceDef = DmNativeNodeDef::newNativeNodeDef("source", DmNativeNodeDef::kPass);
        m_sourceDef->addPortDescription(output("value", DmLibrary::getIntType()), kFailOnClash);
        m_sourceDef->addPortDescription(output("flag", DmLibrary::getBoolType()), kFailOnClash);

        m_scaleDef = KestoTest::makeSceneOp("scale");

        m_sumDef = DmNativeNodeDef::newNativeNodeDef("sum", DmNativeNodeDef::kPass);
        ASSERT_TRUE(m_sumDef->setAssociativity(DmNodeDef::kLeftToRight));
        auto lhs = input("lhs", DmLibrary::getIntType());
        auto rhs = input("rhs", DmLibrary::getIntType());
        ASSERT_EQ(lhs->setAssociative(true), DmStatus::kSuccess);
        ASSERT_EQ(rhs->setAssociative(true), DmStatus::kSuccess);
        m_sumDef->addPortDescription(lhs, kFailOnClash);
        m_sumDef->addPortDescription(rhs, kFailOnClash);
        m_sumDef->addPortDescription(output("result", DmLibrary::getIntType()), kFailOnClash);

        m_gatherDef = DmNativeNodeDef::newNativeNodeDef("gather", DmNativeNodeDef::kPass);
        m_gatherDef->addPortDescription(input("items", DmLibrary::getArrayOfAnyType()), kFailOnClash);
        m_gatherDef->addPortDescription(output("count", DmLibrary::getIntType()), kFailOnClash);

        m_sinkDef = DmNativeNodeDef::newNativeNodeDef("sink", DmNativeNodeDef::kPass);
        m_sinkDef->addPortDescription(input("value", DmLibrary::getIntType()), kFailOnClash);
        m_sinkDef->addPortDescription(input("flag", DmLibrary::getBoolType()), kFailOnClash);

        m_compound = DmCompound::createCompound("graph");
        ASSERT_NE(m_compound, nullptr);
        m_compound->setLibrary(m_library.get());
        for (char const* name : {"in0", "in1", "pass"}) {
            ASSERT_TRUE(m_compound->addPortDescription(input(name, DmLibrary::getIntType()), kFailOnClash));
        }
        for (char const* name : {"out0", "out1", "passOut"}) {
            ASSERT_TRUE(m_compound->addPortDescription(output(name, DmLibrary::getIntType()), kFailOnClash));
        }

        addNodes("src", m_sourceDef, kSources);
        addNodes("sc", m_scaleDef, kScales);
        addNodes("sum", m_sumDef, kSums);
        addNodes("g", m_gatherDef, kGathers);
        addNodes("sk", m_sinkDef, kSinks);
        ASSERT_EQ(m_compound->getNodes().size(), 50u);
        expectConsistent(*m_compound);
    }

    void addNodes(std::string const& base, std::shared_ptr<DmNodeDef> const& def, int number) {
        for (int i = 0; i < number; ++i) {
            auto node = DmNode::createNode(numbered(base, i), def);
            ASSERT_NE(node, nullptr);
            ASSERT_EQ(m_compound->addNode(node, kFailOnClash), DmStatus::kSuccess);
        }
    }

    /// Every connection of the graph, checked one by one.
    void connectEverything() {
        // Compound inputs feed nodes; one of them fans out.
        connect(".in0", "sc0.a");
        connect(".in1", "sc1.a");
        connect(".in0", "sc14.b");
        // A value passed straight through the compound.
        connect(".pass", ".passOut");
        // Sources feed the scales, by path and by port.
        for (int i = 0; i < kSources; ++i) {
            connect(numbered("src", i) + ".value", numbered("sc", i + 2) + ".a");
            connect(port(numbered("src", i), "value"), port(numbered("sc", i), "b"));
        }
        connect("src0.value", "sc12.a");
        connect("src1.value", "sc13.a");
        connect("src2.value", "sc14.a");
        // Each sum gathers three scales through entries of its multi-in port.
        for (int j = 0; j < kSums; ++j) {
            auto const sum = node(numbered("sum", j));
            ASSERT_NE(sum->getMultiInPort(), nullptr);
            for (int k = 0; k < 3; ++k) {
                std::shared_ptr<DmPort> entry;
                ASSERT_EQ(sum->addMultiInPortEntry("term", entry), DmStatus::kSuccess);
                connect(port(numbered("sc", (j + k) % kScales), "out"), entry);
            }
            EXPECT_EQ(sum->getMultiInPort()->getMembers().size(), 3u);
        }
        // Each gather turns its input into a fan-in port with four entries.
        for (int k = 0; k < kGathers; ++k) {
            auto const items = port(numbered("g", k), "items");
            ASSERT_EQ(items->setFanIn(true), DmStatus::kSuccess);
            std::shared_ptr<DmPort> const sources[] = {
                port(numbered("sum", 2 * k), "result"), port(numbered("sum", 2 * k + 1), "result"),
                port(numbered("sc", k), "text"), port(numbered("src", k), "flag")};
            for (auto const& source : sources) {
                std::shared_ptr<DmPort> entry;
                ASSERT_EQ(items->addMultiInPortEntry("item", entry), DmStatus::kSuccess);
                connect(source, entry);
            }
        }
        // Sinks.
        for (int i = 0; i < kSinks; ++i) {
            if (i < kGathers) {
                connect(numbered("g", i) + ".count", numbered("sk", i) + ".value");
            } else {
                connect(numbered("sum", i) + ".result", numbered("sk", i) + ".value");
            }
            connect(numbered("src", i) + ".flag", numbered("sk", i) + ".flag");
        }
        // Compound outputs.
        connect("sum0.result", ".out0");
        connect("g0.count", ".out1");
    }

    std::shared_ptr<DmNode> node(std::string const& name) const {
        auto found = m_compound->findNode(name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    std::shared_ptr<DmPort> port(std::string const& nodeName, std::string const& portName) const {
        auto const owner = node(nodeName);
        auto found = owner ? (*owner)[portName] : nullptr;
        EXPECT_NE(found, nullptr) << nodeName << "." << portName;
        return found;
    }

    std::shared_ptr<DmPort> selfPort(std::string const& name) const {
        auto found = (*m_compound->getSelfNode())[name];
        EXPECT_NE(found, nullptr) << "." << name;
        return found;
    }

    std::shared_ptr<DmPort> entryOf(std::shared_ptr<DmPort> const& parent, std::size_t index) const {
        if (!parent || !parent->hasMembers() || parent->getMembers().size() <= index) {
            ADD_FAILURE() << "no entry " << index;
            return nullptr;
        }
        auto it = parent->getMembers().begin();
        std::advance(it, static_cast<std::ptrdiff_t>(index));
        return it->second;
    }

    void connect(std::shared_ptr<DmPort> const& source, std::shared_ptr<DmPort> const& target) {
        ASSERT_NE(source, nullptr);
        ASSERT_NE(target, nullptr);
        std::shared_ptr<DmConnection> made;
        Failure failure = DmCompound::kConnectionTargetTaken;
        EXPECT_EQ(m_compound->makeConnection(source, target, false, made, failure), DmStatus::kSuccess)
            << fullName(*source) << " -> " << fullName(*target);
        EXPECT_EQ(failure, DmCompound::kConnectionOk);
        ASSERT_NE(made, nullptr);
        EXPECT_EQ(m_compound->getConnections().back(), made);
        expectConsistent(*m_compound);
    }

    void connect(std::string const& source, std::string const& target) {
        std::shared_ptr<DmConnection> made;
        Failure failure = DmCompound::kConnectionTargetTaken;
        EXPECT_EQ(m_compound->makeConnection(source, target, false, made, failure), DmStatus::kSuccess)
            << source << " -> " << target;
        EXPECT_EQ(failure, DmCompound::kConnectionOk);
        ASSERT_NE(made, nullptr);
        EXPECT_EQ(m_compound->getConnections().back(), made);
        expectConsistent(*m_compound);
    }

    /// Replaces the feeder of `target` with `source`: the old connection goes,
    /// the new one joins the tail, the others keep their order.
    void replaceFeeder(std::shared_ptr<DmPort> const& source, std::shared_ptr<DmPort> const& target) {
        ASSERT_NE(source, nullptr);
        ASSERT_NE(target, nullptr);
        ASSERT_EQ(target->getConnectedPorts().size(), 1u);
        DmPort const* const oldSource = *target->getConnectedPorts().begin();
        ConnectionPointers expected;
        std::weak_ptr<DmConnection> old;
        for (auto const& connection : m_compound->getConnections()) {
            if (connection->getTargetPort() == target.get()) {
                old = connection;
            } else {
                expected.push_back(connection.get());
            }
        }
        std::shared_ptr<DmConnection> made;
        Failure failure = DmCompound::kConnectionTargetTaken;
        EXPECT_EQ(m_compound->makeConnection(source, target, true, made, failure),
                  DmStatus::kSuccessReplaced);
        EXPECT_EQ(failure, DmCompound::kConnectionOk);
        ASSERT_NE(made, nullptr);
        expected.push_back(made.get());
        EXPECT_EQ(pointersOf(*m_compound), expected);
        EXPECT_TRUE(old.expired());
        EXPECT_FALSE(oldSource->getConnectedPorts().contains(target.get()));
        expectConsistent(*m_compound);
    }

    /// Runs `action` and expects it to break exactly the connections that
    /// `doomed` selects, releasing them, and to leave the others in order.
    void expectBreaksExactly(std::function<bool(DmConnection const&)> const& doomed,
                             std::function<void()> const& action, std::size_t expectedBroken) {
        ConnectionPointers kept;
        std::vector<std::weak_ptr<DmConnection>> broken;
        for (auto const& connection : m_compound->getConnections()) {
            if (doomed(*connection)) {
                broken.push_back(connection);
            } else {
                kept.push_back(connection.get());
            }
        }
        ASSERT_EQ(broken.size(), expectedBroken);
        action();
        EXPECT_EQ(pointersOf(*m_compound), kept);
        for (auto const& connection : broken) {
            EXPECT_TRUE(connection.expired()) << "a broken connection is still alive";
        }
        expectConsistent(*m_compound);
    }

    static ConnectionPointers pointersOf(DmCompound const& compound) {
        ConnectionPointers pointers;
        for (auto const& connection : compound.getConnections()) {
            pointers.push_back(connection.get());
        }
        return pointers;
    }

    static bool touchesNode(DmConnection const& connection, DmNode const* node) {
        return connection.getSourcePort()->getNode() == node || connection.getTargetPort()->getNode() == node;
    }

    /// The number of live instances above what there was when the test began.
    unsigned int connectionsMade() const { return count<DmConnection>() - m_connectionsBefore; }

    std::shared_ptr<DmNativeNodeDef> m_sourceDef;
    std::shared_ptr<DmNativeNodeDef> m_scaleDef;
    std::shared_ptr<DmNativeNodeDef> m_sumDef;
    std::shared_ptr<DmNativeNodeDef> m_gatherDef;
    std::shared_ptr<DmNativeNodeDef> m_sinkDef;
    /// The compound's library, whose log is m_logger.
    std::shared_ptr<DmLibrary> m_library;
    std::shared_ptr<DmMessageLogger> m_logger;
    std::shared_ptr<DmCompound> m_compound;

private:
    unsigned int m_connectionsBefore = 0;
};

constexpr std::size_t kAllConnections = 99;

TEST_F(DmHandBuiltGraphTest, BuildingTheGraphKeepsItConsistent) {
    unsigned int const nodesBefore = count<DmNode>();
    makeDefinitionsAndNodes();
    EXPECT_EQ(count<DmNode>(), nodesBefore + 51);
    connectEverything();
    EXPECT_EQ(m_compound->getConnections().size(), kAllConnections);
    EXPECT_EQ(connectionsMade(), kAllConnections);
    // in0 twice, in1, the pass-through, out0, out1.
    EXPECT_EQ(m_compound->getBindingConnections().size(), 6u);
    EXPECT_EQ(selfPort("in0")->getConnectedPorts().size(), 2u);
    EXPECT_TRUE(selfPort("pass")->getConnectedPorts().contains(selfPort("passOut").get()));
    EXPECT_EQ(node("src0")->getConnections().size(), 5u);
    EXPECT_EQ(node("sum3")->getConnections().size(), 4u);
    EXPECT_EQ(node("g2")->getConnections().size(), 5u);
    EXPECT_EQ(m_logger->getMessageCount(), 0u);
}

TEST_F(DmHandBuiltGraphTest, RefusedConnectionsLeaveTheGraphAsItWas) {
    makeDefinitionsAndNodes();
    connectEverything();
    ConnectionPointers const before = pointersOf(*m_compound);
    std::shared_ptr<DmConnection> made;
    Failure failure = DmCompound::kConnectionOk;
    EXPECT_EQ(m_compound->makeConnection("src0.value", "sc2.a", false, made, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionRedundant);
    EXPECT_EQ(m_compound->makeConnection("src5.value", "sc2.a", false, made, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionTargetTaken);
    EXPECT_EQ(m_compound->makeConnection("sc4.out", "sc4.a", false, made, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionSingleNode);
    EXPECT_EQ(m_compound->makeConnection("sk0.value", "sk1.value", false, made, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionSourceNotOutput);
    EXPECT_EQ(m_compound->makeConnection("sc4.out", "sc5.text", false, made, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionTargetNotInput);
    EXPECT_EQ(m_compound->makeConnection("sc4.out", "g0.items", false, made, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(m_compound->makeConnection("sc4.out", "sum0.lhs", false, made, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(m_compound->breakConnection(port("sk0", "value"), port("sk1", "flag")),
              DmStatus::kConnectionError);
    EXPECT_EQ(m_compound->breakConnection(port("sc4", "out"), port("sk1", "flag")), DmStatus::kFailure);
    EXPECT_EQ(pointersOf(*m_compound), before);
    EXPECT_EQ(m_logger->getMessageCount(), 6u);
    expectConsistent(*m_compound);
}

TEST_F(DmHandBuiltGraphTest, ReplacingFeedersKeepsTheGraphConsistent) {
    makeDefinitionsAndNodes();
    connectEverything();
    // A node's input, an output of the compound fed from its own input, a
    // multi-in entry and a fan-in entry.
    replaceFeeder(port("sum9", "result"), port("sk0", "value"));
    replaceFeeder(selfPort("in1"), selfPort("out1"));
    replaceFeeder(port("sc14", "out"), entryOf(node("sum0")->getMultiInPort(), 0));
    replaceFeeder(port("src9", "value"), entryOf(port("g4", "items"), 0));
    // The pass-through itself is replaced by a node's output.
    replaceFeeder(port("sc7", "out"), selfPort("passOut"));
    EXPECT_EQ(m_compound->getConnections().size(), kAllConnections);
    EXPECT_EQ(connectionsMade(), kAllConnections);
    // g0.count fed sk0 and out1; both were replaced.
    EXPECT_TRUE(port("g0", "count")->getConnectedPorts().empty());
    EXPECT_EQ(m_compound->breakAllConnections(port("g0", "count")), DmStatus::kFailure);
    EXPECT_TRUE(selfPort("pass")->getConnectedPorts().empty());
    EXPECT_EQ(m_logger->getMessageCount(), 0u);
    expectConsistent(*m_compound);
}

TEST_F(DmHandBuiltGraphTest, RemovingNodesAndPortsBreaksExactlyTheirConnections) {
    makeDefinitionsAndNodes();
    connectEverything();

    {
        SCOPED_TRACE("removeNode of a scale");
        DmNode const* const sc3 = node("sc3").get();
        // src1 -> sc3.a, src3 -> sc3.b, sc3.out to three sums, sc3.text to g3.
        expectBreaksExactly([sc3](DmConnection const& c) { return touchesNode(c, sc3); },
                            [this] { EXPECT_EQ(m_compound->removeNode(node("sc3")), DmStatus::kSuccess); },
                            6);
        EXPECT_EQ(m_compound->findNode("sc3"), nullptr);
        EXPECT_EQ(m_compound->getNodes().size(), 49u);
    }
    {
        SCOPED_TRACE("removePortDescription of an output of every scale");
        DmNodeDef const* const def = m_scaleDef.get();
        auto const text = m_scaleDef->getPortsInterface()["text"];
        ASSERT_NE(text, nullptr);
        // sc0, sc1, sc2 and sc4 feed gathers; sc3 is gone.
        expectBreaksExactly(
            [def](DmConnection const& c) {
                DmPort const* const source = c.getSourcePort();
                return source->getNode()->getNodeDef() == def && source->getName() == "text";
            },
            [this, &text] { EXPECT_TRUE(m_scaleDef->removePortDescription(text)); }, 4);
        for (int i = 0; i < kScales; ++i) {
            if (auto const scale = m_compound->findNode(numbered("sc", i))) {
                EXPECT_EQ((*scale)["text"], nullptr) << i;
            }
        }
    }
    {
        SCOPED_TRACE("removePortDescription of the associative input");
        DmNodeDef const* const def = m_sumDef.get();
        auto const lhs = m_sumDef->getPortsInterface()["lhs"];
        ASSERT_NE(lhs, nullptr);
        // Thirty entries less the three fed by sc3.
        expectBreaksExactly(
            [def](DmConnection const& c) {
                DmPort const* const target = c.getTargetPort();
                return target->getParent() != nullptr && target->getNode()->getNodeDef() == def;
            },
            [this, &lhs] { EXPECT_TRUE(m_sumDef->removePortDescription(lhs)); }, 27);
        for (int j = 0; j < kSums; ++j) {
            auto const sum = node(numbered("sum", j));
            EXPECT_EQ(sum->getMultiInPort(), nullptr);
            EXPECT_EQ((*sum)["lhs"], nullptr);
        }
    }
    {
        SCOPED_TRACE("fan-in switched off keeps the first entry's connection");
        auto const items = port("g1", "items");
        ASSERT_EQ(items->getMembers().size(), 4u);
        DmPort const* const firstSource = port("sum2", "result").get();
        ConnectionPointers kept;
        std::vector<std::weak_ptr<DmConnection>> broken;
        for (auto const& connection : m_compound->getConnections()) {
            if (connection->getTargetPort()->getParent() == items.get()) {
                broken.push_back(connection);
            } else {
                kept.push_back(connection.get());
            }
        }
        // sum2, sum3 and src1 still feed entries; sc1.text went with its port.
        ASSERT_EQ(broken.size(), 3u);
        EXPECT_EQ(items->setFanIn(false), DmStatus::kSuccess);
        EXPECT_FALSE(items->isFanIn());
        ASSERT_FALSE(m_compound->getConnections().empty());
        auto const& moved = m_compound->getConnections().back();
        EXPECT_EQ(moved->getSourcePort(), firstSource);
        EXPECT_EQ(moved->getTargetPort(), items.get());
        kept.push_back(moved.get());
        EXPECT_EQ(pointersOf(*m_compound), kept);
        for (auto const& connection : broken) {
            EXPECT_TRUE(connection.expired());
        }
        expectConsistent(*m_compound);
    }
    {
        SCOPED_TRACE("removeMultiInPortEntry of a fan-in entry");
        auto const items = port("g2", "items");
        auto const entry = entryOf(items, 1);
        ASSERT_NE(entry, nullptr);
        DmPort const* const doomedEntry = entry.get();
        expectBreaksExactly(
            [doomedEntry](DmConnection const& c) { return c.getTargetPort() == doomedEntry; },
            [&items, &entry] { EXPECT_EQ(items->removeMultiInPortEntry(entry), DmStatus::kSuccess); }, 1);
        EXPECT_EQ(items->getMembers().size(), 3u);
    }
    {
        SCOPED_TRACE("removePortDescription of the fan-in input of every gather");
        DmNodeDef const* const def = m_gatherDef.get();
        auto const items = m_gatherDef->getPortsInterface()["items"];
        ASSERT_NE(items, nullptr);
        // g0: 3 entries fed, g1: the moved connection, g2: 2, g3: 3, g4: 3.
        expectBreaksExactly(
            [def](DmConnection const& c) {
                DmPort const* const target = c.getTargetPort();
                DmPort const* const top = target->getParent() != nullptr ? target->getParent() : target;
                return target->getNode()->getNodeDef() == def && top->getName() == "items";
            },
            [this, &items] { EXPECT_TRUE(m_gatherDef->removePortDescription(items)); }, 12);
    }
    {
        SCOPED_TRACE("removePortDescription of the compound input passed through");
        DmPort const* const pass = selfPort("pass").get();
        auto const description = m_compound->getPortsInterface()["pass"];
        ASSERT_NE(description, nullptr);
        expectBreaksExactly(
            [pass](DmConnection const& c) { return c.getSourcePort() == pass; },
            [this, &description] { EXPECT_TRUE(m_compound->removePortDescription(description)); }, 1);
        EXPECT_EQ((*m_compound->getSelfNode())["pass"], nullptr);
        EXPECT_TRUE(selfPort("passOut")->getConnectedPorts().empty());
    }
    {
        SCOPED_TRACE("removePortDescription of a compound input that fans out");
        DmPort const* const in0 = selfPort("in0").get();
        auto const description = m_compound->getPortsInterface()["in0"];
        expectBreaksExactly(
            [in0](DmConnection const& c) { return c.getSourcePort() == in0; },
            [this, &description] { EXPECT_TRUE(m_compound->removePortDescription(description)); }, 2);
    }
    {
        SCOPED_TRACE("removePortDescription of a compound output");
        DmPort const* const out0 = selfPort("out0").get();
        auto const description = m_compound->getPortsInterface()["out0"];
        expectBreaksExactly(
            [out0](DmConnection const& c) { return c.getTargetPort() == out0; },
            [this, &description] { EXPECT_TRUE(m_compound->removePortDescription(description)); }, 1);
    }
    {
        SCOPED_TRACE("removeNode of a source that fans out");
        DmNode const* const src0 = node("src0").get();
        // src0.value -> sc2.a, sc0.b, sc12.a; src0.flag -> sk0.flag.
        expectBreaksExactly([src0](DmConnection const& c) { return touchesNode(c, src0); },
                            [this] { EXPECT_EQ(m_compound->removeNode(node("src0")), DmStatus::kSuccess); },
                            4);
    }
    {
        SCOPED_TRACE("removeNode of a node without connections left");
        DmNode const* const sum0 = node("sum0").get();
        // sum0.result fed g0's entry and out0, both gone.
        expectBreaksExactly([sum0](DmConnection const& c) { return touchesNode(c, sum0); },
                            [this] { EXPECT_EQ(m_compound->removeNode(node("sum0")), DmStatus::kSuccess); },
                            0);
    }
    {
        SCOPED_TRACE("breakAllConnections of a node");
        DmNode const* const sk9 = node("sk9").get();
        expectBreaksExactly(
            [sk9](DmConnection const& c) { return touchesNode(c, sk9); },
            [this] { EXPECT_EQ(m_compound->breakAllConnections(node("sk9")), DmStatus::kSuccess); }, 2);
    }
    {
        SCOPED_TRACE("breakAllConnections of an output");
        DmPort const* const value = port("src4", "value").get();
        expectBreaksExactly(
            [value](DmConnection const& c) { return c.getSourcePort() == value; },
            [this] { EXPECT_EQ(m_compound->breakAllConnections(port("src4", "value")), DmStatus::kSuccess); },
            2);
    }
    {
        SCOPED_TRACE("breakConnection");
        DmPort const* const source = port("src5", "flag").get();
        DmPort const* const target = port("sk5", "flag").get();
        expectBreaksExactly(
            [source, target](DmConnection const& c) {
                return c.getSourcePort() == source && c.getTargetPort() == target;
            },
            [this] {
                EXPECT_EQ(m_compound->breakConnection(port("src5", "flag"), port("sk5", "flag")),
                          DmStatus::kSuccess);
            },
            1);
    }
    EXPECT_EQ(m_logger->getMessageCount(), 0u);
    EXPECT_EQ(connectionsMade(), m_compound->getConnections().size());
    {
        SCOPED_TRACE("breakAllConnections of the compound");
        expectBreaksExactly([](DmConnection const&) { return true; },
                            [this] { EXPECT_EQ(m_compound->breakAllConnections(), DmStatus::kSuccess); },
                            m_compound->getConnections().size());
    }
    EXPECT_EQ(connectionsMade(), 0u);
}

TEST_F(DmHandBuiltGraphTest, CheckerCatchesAConnectionTheListDoesNotHold) {
    makeDefinitionsAndNodes();
    connectEverything();
    // A second feeder for sc2.a, made behind the compound's back.
    auto const stray = DmConnection::createConnection(port("src9", "value").get(), port("sc2", "a").get());
    ASSERT_NE(stray, nullptr);
    testing::TestPartResultArray failures;
    {
        testing::ScopedFakeTestPartResultReporter const reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
        expectConsistent(*m_compound);
    }
    std::string messages;
    for (int i = 0; i < failures.size(); ++i) {
        messages += failures.GetTestPartResult(i).message();
        messages += "\n";
    }
    EXPECT_NE(messages.find("src9: knows a connection not listed"), std::string::npos) << messages;
    EXPECT_NE(messages.find("sc2.a knows several feeders"), std::string::npos) << messages;
    EXPECT_NE(messages.find("without a connection"), std::string::npos) << messages;
    stray->disconnect();
    expectConsistent(*m_compound);
}

TEST_F(DmHandBuiltGraphTest, DroppingTheCompoundReleasesEveryNodePortAndConnection) {
    unsigned int const nodes = count<DmNode>();
    unsigned int const ports = count<DmPort>();
    unsigned int const descriptions = count<DmPortDescription>();
    unsigned int const defs = count<DmNodeDef>();
    unsigned int const compounds = count<DmCompound>();
    makeDefinitionsAndNodes();
    connectEverything();
    EXPECT_EQ(connectionsMade(), kAllConnections);
    EXPECT_GT(count<DmPort>(), ports + 50);
    // The nodes hold their definitions; the compound is the only root left.
    m_sourceDef.reset();
    m_scaleDef.reset();
    m_sumDef.reset();
    m_gatherDef.reset();
    m_sinkDef.reset();
    m_compound.reset();
    EXPECT_EQ(connectionsMade(), 0u);
    EXPECT_EQ(count<DmNode>() - nodes, 0u);
    EXPECT_EQ(count<DmPort>() - ports, 0u);
    EXPECT_EQ(count<DmCompound>() - compounds, 0u);
    EXPECT_EQ(count<DmNodeDef>() - defs, 0u);
    EXPECT_EQ(count<DmPortDescription>() - descriptions, 0u);
}

TEST_F(DmHandBuiltGraphTest, DroppingTheCompoundAfterEditsReleasesEverything) {
    unsigned int const nodes = count<DmNode>();
    unsigned int const ports = count<DmPort>();
    makeDefinitionsAndNodes();
    connectEverything();
    replaceFeeder(port("sum9", "result"), port("sk0", "value"));
    replaceFeeder(selfPort("in1"), selfPort("passOut"));
    EXPECT_EQ(m_compound->removeNode(node("sc5")), DmStatus::kSuccess);
    EXPECT_EQ(port("g3", "items")->setFanIn(false), DmStatus::kSuccess);
    expectConsistent(*m_compound);
    // A removed node held elsewhere outlives the compound on its own.
    auto const held = node("sc6");
    EXPECT_EQ(m_compound->removeNode(held), DmStatus::kSuccess);
    expectConsistent(*m_compound);
    m_compound.reset();
    EXPECT_EQ(connectionsMade(), 0u);
    EXPECT_EQ(count<DmNode>() - nodes, 1u);
    EXPECT_TRUE(held->getConnections().empty());
    EXPECT_EQ(held->getOwner(), nullptr);
    for (auto const& entry : held->getPorts()) {
        EXPECT_TRUE(entry.second->getConnectedPorts().empty()) << entry.first;
    }
    unsigned int const heldPorts = static_cast<unsigned int>(held->getPorts().size());
    EXPECT_EQ(count<DmPort>() - ports, heldPorts);
}

} // namespace
