#pragma once

// Fixtures and helpers of the tests of compounds: a fixture that holds the
// compounds, connections and scopes of each test to account, the definition
// most of their nodes are made from, adding nodes and connections, and the
// paths under which connections name their ports.

#include "graph/ModelTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/library/DmLibrary.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace KestoTest {

/// ModelTest that also expects the connections and compounds that a test
/// makes to be gone when it ends.
class ConnectionTest : public ModelTest {
protected:
    void SetUp() override {
        ModelTest::SetUp();
        expectBackAtEnd<Kesto::DmConnection>("connections");
        expectBackAtEnd<Kesto::DmCompound>("compounds");
    }
};

/// ConnectionTest that also expects the scopes that a test makes to be gone
/// when it ends. The compounds it makes belong to m_library, whose log,
/// empty when the test starts, is m_logger.
class CompoundTest : public ConnectionTest {
protected:
    CompoundTest() { m_logger->clear(); }

    void SetUp() override {
        ConnectionTest::SetUp();
        expectBackAtEnd<Kesto::DmScope>("scopes");
    }

    /// A compound from the factory; placed in `scope` when one is given.
    std::shared_ptr<Kesto::DmCompound> makeCompound(std::string const& name = "graph",
                                                    Kesto::DmScope* scope = nullptr) {
        auto compound = Kesto::DmCompound::createCompound(name);
        compound->setLibrary(m_library.get());
        if (scope != nullptr) {
            EXPECT_EQ(compound->setScope(scope, Kesto::kFailOnClash), Kesto::DmStatus::kSuccess) << name;
        }
        return compound;
    }

    /// A compound with the int input "a" and the int output "r".
    std::shared_ptr<Kesto::DmCompound> makeCompoundWithPorts(std::string const& name = "graph",
                                                             Kesto::DmScope* scope = nullptr) {
        auto compound = makeCompound(name, scope);
        compound->addPortDescription(input("a", Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
        compound->addPortDescription(output("r", Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
        return compound;
    }

    std::shared_ptr<Kesto::DmLibrary> m_library = makeLibrary();
    std::shared_ptr<Kesto::DmMessageLogger> m_logger = m_library->getErrorLogger();
};

/// A compound that reserves the port name "cond", as loops reserve the ports
/// they make: its clones, of its class, rename such a port, so that a copy
/// cannot take it under kFailOnClash.
class ReservingCompound : public Kesto::DmCompound {
public:
    explicit ReservingCompound(std::string name) : DmCompound(InternalConstructor(), std::move(name)) {}

    static std::shared_ptr<ReservingCompound> make(std::string name) {
        return initialized(std::make_shared<ReservingCompound>(std::move(name)));
    }

    bool isReservedPortName(std::string const& name) const override { return name == "cond"; }
    std::shared_ptr<Kesto::DmCompound> clone() const override { return make(getName()); }
};

/// "op": the int input "in" and the int output "out".
inline std::shared_ptr<Kesto::DmNativeNodeDef> makeOp(std::string const& name = "op") {
    auto def = Kesto::DmNativeNodeDef::newNativeNodeDef(name, Kesto::DmNativeNodeDef::kPass);
    def->addPortDescription(input("in", Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
    def->addPortDescription(output("out", Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
    return def;
}

/// A node `name` on `def`, added to `compound`; expects the addition to succeed.
inline std::shared_ptr<Kesto::DmNode> addNode(Kesto::DmCompound& compound, std::string const& name,
                                              std::shared_ptr<Kesto::DmNodeDef> const& def) {
    auto node = Kesto::DmNode::createNode(name, def);
    EXPECT_EQ(compound.addNode(node, Kesto::kFailOnClash), Kesto::DmStatus::kSuccess) << name;
    return node;
}

/// The port `name` of the compound's self node, or null.
inline std::shared_ptr<Kesto::DmPort> selfPort(Kesto::DmCompound const& compound, std::string const& name) {
    return (*compound.getSelfNode())[name];
}

/// The path of a port inside its compound as connections name it: "node.port",
/// ".port" on the self node, with entries and members behind their parent.
inline std::string portPath(Kesto::DmPort const& port) {
    if (port.getParent() != nullptr) {
        return portPath(*port.getParent()) + "." + port.getName();
    }
    Kesto::DmNode const* const node = port.getNode();
    std::string const nodeName = node != nullptr && !node->isSelfNode() ? node->getName() : std::string();
    return nodeName + "." + port.getName();
}

/// "source<arrow>target" for each connection of the compound, in order.
inline std::vector<std::string> connectionsOf(Kesto::DmCompound const& compound,
                                              std::string const& arrow = " -> ") {
    std::vector<std::string> list;
    for (auto const& connection : compound.getConnections()) {
        list.push_back(portPath(*connection->getSourcePort()) + arrow +
                       portPath(*connection->getTargetPort()));
    }
    return list;
}

/// Connects the paths `source` and `target` ("node.port", ".port" on the self node).
inline Kesto::DmStatus connect(Kesto::DmCompound& compound, std::string const& source,
                               std::string const& target) {
    std::shared_ptr<Kesto::DmConnection> connection;
    return compound.makeConnection(source, target, connection);
}

inline Kesto::DmStatus connect(Kesto::DmCompound& compound, std::shared_ptr<Kesto::DmPort> const& source,
                               std::shared_ptr<Kesto::DmPort> const& target) {
    std::shared_ptr<Kesto::DmConnection> connection;
    return compound.makeConnection(source, target, connection);
}

/// Connects and expects success.
inline void expectConnected(Kesto::DmCompound& compound, std::string const& source,
                            std::string const& target) {
    EXPECT_EQ(connect(compound, source, target), Kesto::DmStatus::kSuccess) << source << " -> " << target;
}

inline void expectConnected(Kesto::DmCompound& compound, std::shared_ptr<Kesto::DmPort> const& source,
                            std::shared_ptr<Kesto::DmPort> const& target) {
    ASSERT_NE(source, nullptr);
    ASSERT_NE(target, nullptr);
    EXPECT_EQ(connect(compound, source, target), Kesto::DmStatus::kSuccess)
        << portPath(*source) << " -> " << portPath(*target);
}

inline std::shared_ptr<Kesto::DmCompound::ReservedNames>
reservedNames(std::vector<std::string> const& names) {
    auto reserved = std::make_shared<Kesto::DmCompound::ReservedNames>();
    for (auto const& name : names) {
        reserved->push_back(Kesto::String(name));
    }
    return reserved;
}

/// The definition of a ConnectionScene's nodes: the int inputs a and b, the
/// int output out and the string output text.
inline std::shared_ptr<Kesto::DmNativeNodeDef> makeSceneOp(std::string const& name = "op") {
    auto def = Kesto::DmNativeNodeDef::newNativeNodeDef(name, Kesto::DmNativeNodeDef::kPass);
    def->addPortDescription(input("a", Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
    def->addPortDescription(input("b", Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
    def->addPortDescription(output("out", Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
    def->addPortDescription(output("text", Kesto::DmLibrary::getStringType()), Kesto::kFailOnClash);
    return def;
}

/// A compound "comp" with the int input x and the int output y (on its self
/// node, x is an output and y an input), and the nodes n1, n2 and n3 on
/// makeSceneOp's "op". The compound belongs to a library of its own, whose
/// log, empty at first, is `logger`.
struct ConnectionScene {
    using Failure = Kesto::DmCompound::ConnectionFailureType;

    ConnectionScene() : library(makeLibrary()), logger(library->getErrorLogger()) {
        logger->clear();
        compound = Kesto::DmCompound::createCompound("comp");
        compound->setLibrary(library.get());
        compound->addPortDescription(input("x", Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
        compound->addPortDescription(output("y", Kesto::DmLibrary::getIntType()), Kesto::kFailOnClash);
        auto const def = makeSceneOp();
        n1 = addNode("n1", def);
        n2 = addNode("n2", def);
        n3 = addNode("n3", def);
    }

    std::shared_ptr<Kesto::DmNode> addNode(std::string const& name,
                                           std::shared_ptr<Kesto::DmNodeDef> const& def) {
        return KestoTest::addNode(*compound, name, def);
    }

    std::shared_ptr<Kesto::DmNode> self() const { return compound->getSelfNode(); }

    static std::shared_ptr<Kesto::DmPort> port(std::shared_ptr<Kesto::DmNode> const& node,
                                               std::string const& name) {
        auto found = (*node)[name];
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    std::shared_ptr<Kesto::DmPort> selfPort(std::string const& name) const { return port(self(), name); }

    /// Connects and expects success.
    std::shared_ptr<Kesto::DmConnection> connect(std::shared_ptr<Kesto::DmPort> const& source,
                                                 std::shared_ptr<Kesto::DmPort> const& target) {
        std::shared_ptr<Kesto::DmConnection> connection;
        EXPECT_EQ(compound->makeConnection(source, target, connection), Kesto::DmStatus::kSuccess);
        return connection;
    }

    /// makeConnection in its full form: `failure` goes in as the caller set it
    /// and comes back as the compound left it; `made` takes what is made.
    Kesto::DmStatus attempt(std::shared_ptr<Kesto::DmPort> const& source,
                            std::shared_ptr<Kesto::DmPort> const& target, Failure& failure,
                            bool replace = false) {
        return compound->makeConnection(source, target, replace, made, failure);
    }

    Kesto::DmStatus attempt(std::string const& source, std::string const& target, Failure& failure,
                            bool replace = false) {
        return compound->makeConnection(source, target, replace, made, failure);
    }

    /// Whether an attempt, its failure type going in as kConnectionOk, is
    /// refused as an invalid argument with the failure type `expected`.
    ::testing::AssertionResult refusedAs(std::shared_ptr<Kesto::DmPort> const& source,
                                         std::shared_ptr<Kesto::DmPort> const& target, Failure expected) {
        Failure failure = Kesto::DmCompound::kConnectionOk;
        Kesto::DmStatus const status = attempt(source, target, failure);
        return refusal(status, failure, expected);
    }

    ::testing::AssertionResult refusedAs(std::string const& source, std::string const& target,
                                         Failure expected) {
        Failure failure = Kesto::DmCompound::kConnectionOk;
        Kesto::DmStatus const status = attempt(source, target, failure);
        return refusal(status, failure, expected);
    }

    /// Declared first, so that it outlives the compound.
    std::shared_ptr<Kesto::DmLibrary> library;
    std::shared_ptr<Kesto::DmMessageLogger> logger;
    std::shared_ptr<Kesto::DmCompound> compound;
    std::shared_ptr<Kesto::DmNode> n1;
    std::shared_ptr<Kesto::DmNode> n2;
    std::shared_ptr<Kesto::DmNode> n3;
    /// What the attempts have made: each attempt passes it to makeConnection.
    std::shared_ptr<Kesto::DmConnection> made;

private:
    static ::testing::AssertionResult refusal(Kesto::DmStatus status, Failure failure, Failure expected) {
        if (status == Kesto::DmStatus::kInvalidArgument && failure == expected) {
            return ::testing::AssertionSuccess();
        }
        return ::testing::AssertionFailure()
               << "status " << static_cast<int>(status.getStatus()) << " and failure type "
               << static_cast<int>(failure) << ", expected "
               << static_cast<int>(Kesto::DmStatus::kInvalidArgument) << " and "
               << static_cast<int>(expected);
    }
};

} // namespace KestoTest
