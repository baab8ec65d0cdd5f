// How a change to a definition's ports reaches the nodes made from it: every
// node, at once, for adding, removing, renaming, replacing and reordering a
// port; refused changes reach none; a rename started from the port level is
// carried out once and ends as a rename started from the definition.
#include "graph/ModelTestSupport.h"

#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kesto;
using KestoTest::input;
using KestoTest::makeNamespace;
using KestoTest::output;
using KestoTest::portNames;

using Names = std::vector<std::string>;

constexpr int kNodeCount = 1000;

class DmChangePropagationTest : public KestoTest::ModelTest {};

/// A definition "op" with the inputs a and b and the output out, all int,
/// and the nodes made from it.
struct Population {
    std::shared_ptr<DmNativeNodeDef> def;
    std::vector<std::shared_ptr<DmNode>> nodes;

    explicit Population(int nodeCount = kNodeCount, std::string const& name = "op")
        : def(KestoTest::makeThreePortDef(name)) {
        nodes.reserve(static_cast<std::size_t>(nodeCount));
        for (int i = 0; i < nodeCount; ++i) {
            nodes.push_back(DmNode::createNode("n" + std::to_string(i), def));
        }
    }

    std::shared_ptr<DmPortDescription> description(std::string const& name) const {
        return def->getPortsInterface()[name];
    }

    /// The port `name` of every node, in the order of the nodes.
    std::vector<DmPort*> portsNamed(std::string const& name) const {
        std::vector<DmPort*> ports;
        for (auto const& node : nodes) {
            ports.push_back((*node)[name].get());
        }
        return ports;
    }
};

/// Checks every node: its ports are `names`, in that order, each built on the
/// definition's description of that name. Reports the first node that differs
/// and how many do.
::testing::AssertionResult everyNodeShows(Population const& population, Names const& names) {
    std::size_t differing = 0;
    std::string first;
    for (auto const& node : population.nodes) {
        bool same = portNames(node->getPorts()) == names;
        for (auto const& entry : *node) {
            same = same && entry.second->getName() == entry.first &&
                   entry.second->getPortDescription() == population.description(entry.first);
        }
        if (!same) {
            if (differing == 0) {
                first = node->getName();
            }
            ++differing;
        }
    }
    if (differing == 0) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << differing << " of " << population.nodes.size() << " nodes differ, the first being " << first;
}

/// True when every node still has the very port objects of `before`, under `name`.
::testing::AssertionResult everyNodeKeeps(Population const& population, std::string const& name,
                                          std::vector<DmPort*> const& before) {
    auto const now = population.portsNamed(name);
    for (std::size_t i = 0; i < now.size(); ++i) {
        if (now[i] != before[i]) {
            return ::testing::AssertionFailure()
                   << "node " << population.nodes[i]->getName() << " has another port object under " << name;
        }
    }
    return ::testing::AssertionSuccess();
}

// ---------------------------------------------------------------------------
// Registration

TEST_F(DmChangePropagationTest, DefinitionKnowsEveryNodeMadeFromIt) {
    Population population;
    auto const& registered = population.def->getInstantiatedNodes();
    EXPECT_EQ(registered.size(), static_cast<std::size_t>(kNodeCount));
    std::size_t missing = 0;
    for (auto const& node : population.nodes) {
        missing += registered.count(node.get()) == 1 ? 0 : 1;
    }
    EXPECT_EQ(missing, 0u);
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out"}));
}

TEST_F(DmChangePropagationTest, ReleasedNodesAreNoLongerTold) {
    Population population;
    population.nodes.resize(kNodeCount / 2);
    EXPECT_EQ(population.def->getInstantiatedNodes().size(), static_cast<std::size_t>(kNodeCount / 2));
    ASSERT_TRUE(population.def->addPortDescription(input("d", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out", "d"}));
}

// ---------------------------------------------------------------------------
// Adding

TEST_F(DmChangePropagationTest, AddedPortReachesEveryNode) {
    Population population;
    auto d = input("d", DmLibrary::getFloatType());
    ASSERT_TRUE(population.def->addPortDescription(d, kFailOnClash));
    EXPECT_EQ(d->getNodeDef(), population.def.get());
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out", "d"}));
    std::size_t wrongValue = 0;
    for (auto* port : population.portsNamed("d")) {
        auto const& value = port->getDefaultValue();
        wrongValue += value && value->getType().get() == DmLibrary::getFloatType().get() ? 0 : 1;
    }
    EXPECT_EQ(wrongValue, 0u);
}

TEST_F(DmChangePropagationTest, PortAddedUnderNewNameReachesEveryNodeUnderIt) {
    Population population;
    auto clash = input("a", DmLibrary::getFloatType());
    ASSERT_TRUE(population.def->addPortDescription(clash, kMakeUnique));
    EXPECT_EQ(clash->getName(), "a1");
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out", "a1"}));
}

TEST_F(DmChangePropagationTest, RefusedAddReachesNoNode) {
    Population population;
    auto const before = population.portsNamed("a");
    auto clash = input("a", DmLibrary::getFloatType());
    EXPECT_FALSE(population.def->addPortDescription(clash, kFailOnClash));
    EXPECT_EQ(clash->getNodeDef(), nullptr);
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out"}));
    EXPECT_TRUE(everyNodeKeeps(population, "a", before));
}

// ---------------------------------------------------------------------------
// Removing

TEST_F(DmChangePropagationTest, RemovedPortLeavesEveryNode) {
    Population population;
    auto b = population.description("b");
    ASSERT_TRUE(population.def->removePortDescription(b));
    EXPECT_EQ(b->getNodeDef(), nullptr);
    EXPECT_TRUE(everyNodeShows(population, {"a", "out"}));
}

TEST_F(DmChangePropagationTest, RemovingUnknownPortReachesNoNode) {
    Population population;
    auto stranger = input("b", DmLibrary::getIntType());
    EXPECT_FALSE(population.def->removePortDescription(stranger));
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out"}));
}

TEST_F(DmChangePropagationTest, RemovedThenAddedAgainReachesEveryNode) {
    Population population;
    auto b = population.description("b");
    ASSERT_TRUE(population.def->removePortDescription(b));
    ASSERT_TRUE(population.def->addPortDescription(b, kFailOnClash));
    EXPECT_TRUE(everyNodeShows(population, {"a", "out", "b"}));
}

// ---------------------------------------------------------------------------
// Renaming

TEST_F(DmChangePropagationTest, RenameFromDefinitionReachesEveryNode) {
    Population population;
    auto const before = population.portsNamed("b");
    ASSERT_TRUE(population.def->renamePortDescription("b", "z"));
    EXPECT_EQ(portNames(population.def->getPortsInterface()), (Names{"a", "z", "out"}));
    EXPECT_TRUE(everyNodeShows(population, {"a", "z", "out"}));
    EXPECT_TRUE(everyNodeKeeps(population, "z", before));
}

TEST_F(DmChangePropagationTest, RenameOfUnknownPortReachesNoNode) {
    Population population;
    EXPECT_FALSE(population.def->renamePortDescription("missing", "z"));
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out"}));
}

TEST_F(DmChangePropagationTest, RenameFromPortDescriptionReachesEveryNodeOnce) {
    Population population;
    auto b = population.description("b");
    auto const before = population.portsNamed("b");
    ASSERT_TRUE(b->setName("z", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(b->getName(), "z");
    EXPECT_FALSE(population.def->isInUpdate());
    EXPECT_EQ(portNames(population.def->getPortsInterface()), (Names{"a", "z", "out"}));
    EXPECT_EQ(population.description("z"), b);
    EXPECT_EQ(population.description("b"), nullptr);
    // Exactly the new name, once, where the old one stood; the old one is gone.
    EXPECT_TRUE(everyNodeShows(population, {"a", "z", "out"}));
    EXPECT_TRUE(everyNodeKeeps(population, "z", before));
}

TEST_F(DmChangePropagationTest, RenameFromPortDescriptionEqualsRenameFromDefinition) {
    Population fromDefinition(kNodeCount, "op");
    Population fromDescription(kNodeCount, "op");
    ASSERT_TRUE(fromDefinition.def->renamePortDescription("b", "z"));
    ASSERT_TRUE(fromDescription.description("b")->setName("z", kFailOnClash, kNameVerbatim));

    EXPECT_EQ(portNames(fromDefinition.def->getPortsInterface()),
              portNames(fromDescription.def->getPortsInterface()));
    EXPECT_TRUE(fromDefinition.def->getPortsInterface() == fromDescription.def->getPortsInterface());
    for (std::size_t i = 0; i < fromDefinition.nodes.size(); ++i) {
        ASSERT_EQ(portNames(fromDefinition.nodes[i]->getPorts()),
                  portNames(fromDescription.nodes[i]->getPorts()))
            << "node " << i;
    }
    EXPECT_TRUE(everyNodeShows(fromDefinition, {"a", "z", "out"}));
    EXPECT_TRUE(everyNodeShows(fromDescription, {"a", "z", "out"}));
}

TEST_F(DmChangePropagationTest, RenameFromPortDescriptionToTakenNameIsMadeUnique) {
    Population population;
    auto b = population.description("b");
    ASSERT_TRUE(b->setName("a", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(b->getName(), "a1");
    EXPECT_EQ(portNames(population.def->getPortsInterface()), (Names{"a", "a1", "out"}));
    EXPECT_TRUE(everyNodeShows(population, {"a", "a1", "out"}));
}

TEST_F(DmChangePropagationTest, RenameFromNodesPortReachesEveryNode) {
    Population population;
    auto const before = population.portsNamed("b");
    auto const port = (*population.nodes.front())["b"];
    ASSERT_NE(port, nullptr);
    ASSERT_TRUE(port->setName("z", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(port->getName(), "z");
    EXPECT_EQ(portNames(population.def->getPortsInterface()), (Names{"a", "z", "out"}));
    EXPECT_TRUE(everyNodeShows(population, {"a", "z", "out"}));
    EXPECT_TRUE(everyNodeKeeps(population, "z", before));
}

// ---------------------------------------------------------------------------
// Replacing

TEST_F(DmChangePropagationTest, ReplacedPortReachesEveryNode) {
    Population population;
    auto const before = population.portsNamed("b");
    auto replacement = input("b", DmLibrary::getFloatType());
    ASSERT_TRUE(population.def->replaceExistingPort(replacement));
    EXPECT_EQ(population.description("b"), replacement);
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out"}));
    EXPECT_TRUE(everyNodeKeeps(population, "b", before));
}

TEST_F(DmChangePropagationTest, ReplacingUnknownPortReachesNoNode) {
    Population population;
    EXPECT_FALSE(population.def->replaceExistingPort(input("missing", DmLibrary::getFloatType())));
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out"}));
}

// ---------------------------------------------------------------------------
// Reordering

TEST_F(DmChangePropagationTest, ReorderedPortReachesEveryNode) {
    Population population;
    ASSERT_EQ(population.def->reorderPortDescription(0, "out"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(population.def->getPortsInterface()), (Names{"out", "a", "b"}));
    EXPECT_TRUE(everyNodeShows(population, {"out", "a", "b"}));

    ASSERT_EQ(population.def->reorderPortDescription(population.def->getPortsInterface().size(), "out"),
              DmStatus::kSuccess);
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out"}));
}

TEST_F(DmChangePropagationTest, ReorderToOwnPlaceLeavesEveryNodeAsItWas) {
    Population population;
    EXPECT_EQ(population.def->reorderPortDescription(0, "a"), DmStatus::kSuccess);
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out"}));
}

TEST_F(DmChangePropagationTest, RefusedReorderReachesNoNode) {
    Population population;
    EXPECT_EQ(population.def->reorderPortDescription(0, "missing"), DmStatus::kFailure);
    EXPECT_EQ(population.def->reorderPortDescription(4, "out"), DmStatus::kInvalidArgument);
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out"}));
}

// ---------------------------------------------------------------------------
// Nodes of an associative definition, whose associative inputs collapse into
// one multi-in port

/// "add" with the associative inputs a and b and the output out, and `nodeCount` nodes.
struct AssociativePopulation {
    std::shared_ptr<DmNativeNodeDef> def = KestoTest::makeAssociativeDef();
    std::vector<std::shared_ptr<DmNode>> nodes;

    explicit AssociativePopulation(int nodeCount) {
        for (int i = 0; i < nodeCount; ++i) {
            nodes.push_back(DmNode::createNode("n" + std::to_string(i), def));
        }
    }
};

TEST_F(DmChangePropagationTest, RenamedAssociativeInputRenamesMultiInPortOfEveryNode) {
    AssociativePopulation population(100);
    std::vector<DmPort*> before;
    for (auto const& node : population.nodes) {
        before.push_back(node->getMultiInPort().get());
    }
    ASSERT_TRUE(population.def->renamePortDescription("a", "first"));
    for (std::size_t i = 0; i < population.nodes.size(); ++i) {
        auto const& node = population.nodes[i];
        ASSERT_EQ(portNames(node->getPorts()), (Names{"first", "out"})) << node->getName();
        ASSERT_EQ(node->getMultiInPort().get(), before[i]) << node->getName();
        ASSERT_EQ(node->getMultiInPort()->getName(), "first") << node->getName();
        ASSERT_TRUE(node->getMultiInPort()->isMultiIn()) << node->getName();
    }
}

TEST_F(DmChangePropagationTest, RenamedSecondAssociativeInputLeavesNodesAsTheyWere) {
    AssociativePopulation population(100);
    ASSERT_TRUE(population.def->renamePortDescription("b", "second"));
    EXPECT_EQ(portNames(population.def->getPortsInterface()), (Names{"a", "second", "out"}));
    for (auto const& node : population.nodes) {
        ASSERT_EQ(portNames(node->getPorts()), (Names{"a", "out"})) << node->getName();
    }
}

TEST_F(DmChangePropagationTest, ReorderedPortReachesNodesWithFewerPorts) {
    AssociativePopulation population(100);
    ASSERT_EQ(population.def->reorderPortDescription(0, "out"), DmStatus::kSuccess);
    for (auto const& node : population.nodes) {
        ASSERT_EQ(portNames(node->getPorts()), (Names{"out", "a"})) << node->getName();
    }
    ASSERT_EQ(population.def->reorderPortDescription(3, "out"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(population.def->getPortsInterface()), (Names{"a", "b", "out"}));
    for (auto const& node : population.nodes) {
        ASSERT_EQ(portNames(node->getPorts()), (Names{"a", "out"})) << node->getName();
    }
}

// ---------------------------------------------------------------------------
// Const definitions and overload sets

TEST_F(DmChangePropagationTest, ConstDefinitionRefusesChangesAndNodesStay) {
    Population population;
    population.def->makeConst();
    EXPECT_FALSE(population.def->addPortDescription(input("d", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_FALSE(population.def->removePortDescription(population.description("b")));
    EXPECT_FALSE(population.def->renamePortDescription("b", "z"));
    EXPECT_EQ(population.def->reorderPortDescription(0, "out"), DmStatus::kConstEntity);
    EXPECT_EQ(portNames(population.def->getPortsInterface()), (Names{"a", "b", "out"}));
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out"}));
}

TEST_F(DmChangePropagationTest, PortAddedToLoneOverloadReachesNodesOfItsSet) {
    auto ns = makeNamespace("geometry");
    Population population(10);
    ASSERT_EQ(population.def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmOverloadSet> set;
    ASSERT_TRUE(ns->findNodeDef("op", set));
    ASSERT_NE(set, nullptr);
    std::vector<std::shared_ptr<DmNode>> onSet;
    for (int i = 0; i < 10; ++i) {
        onSet.push_back(DmNode::createNode("s" + std::to_string(i), set));
    }

    ASSERT_TRUE(population.def->addPortDescription(input("d", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_TRUE(everyNodeShows(population, {"a", "b", "out", "d"}));
    ASSERT_TRUE(set->getPortsInterface().hasPort("d"));
    for (auto const& node : onSet) {
        EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "out", "d"})) << node->getName();
        ASSERT_NE((*node)["d"], nullptr);
        EXPECT_EQ((*node)["d"]->getPortDescription(), set->getPortsInterface()["d"]);
    }
}

} // namespace
