// The nodes of a compound: adding them under the three name resolutions,
// reserved node names, renaming a node inside its compound, the URIs a graph
// comes to depend on, removing nodes and ports, and breaking connections by
// node, by port and all at once.
#include "graph/CompoundTestSupport.h"

#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/library/DmLibrary.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kesto;
using KestoTest::connect;
using KestoTest::input;
using KestoTest::keysOf;
using KestoTest::makeNamespace;
using KestoTest::makeOp;
using KestoTest::makeStruct;
using KestoTest::makeURI;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::reservedNames;

using Names = std::vector<std::string>;

class DmCompoundNodesTest : public KestoTest::CompoundTest {
protected:
    std::shared_ptr<DmNode> node(std::string const& name) { return DmNode::createNode(name, m_op); }

    std::shared_ptr<DmNode> addNode(DmCompound& compound, std::string const& name) {
        return KestoTest::addNode(compound, name, m_op);
    }

    /// "op": the int input "in" and the int output "out".
    std::shared_ptr<DmNativeNodeDef> m_op = makeOp("op");
};

/// "source->target" for each connection of the compound, in order.
std::vector<std::string> connectionsOf(DmCompound const& compound) {
    return KestoTest::connectionsOf(compound, "->");
}

} // namespace

// ---------------------------------------------------------------------------
// Adding nodes

TEST_F(DmCompoundNodesTest, AddNodeInsertsNodeUnderItsNameAndBecomesItsOwner) {
    auto compound = makeCompound();
    auto first = node("first");
    auto second = node("second");
    EXPECT_EQ(compound->addNode(first, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(compound->addNode(second, kMakeUnique), DmStatus::kSuccess);
    EXPECT_EQ(keysOf(compound->getNodes()), (Names{"first", "second"}));
    EXPECT_EQ(compound->findNode("first"), first);
    EXPECT_EQ(compound->findNode("second"), second);
    EXPECT_EQ(first->getOwner(), compound.get());
    EXPECT_EQ(second->getOwner(), compound.get());
}

TEST_F(DmCompoundNodesTest, FindNodeMissesUnknownName) {
    auto compound = makeCompound();
    addNode(*compound, "n");
    EXPECT_EQ(compound->findNode("m"), nullptr);
    EXPECT_EQ(compound->findNode(""), nullptr);
}

TEST_F(DmCompoundNodesTest, AddNodeRefusesNull) {
    auto compound = makeCompound();
    EXPECT_EQ(compound->addNode(nullptr, kMakeUnique), DmStatus::kInvalidArgument);
}

TEST_F(DmCompoundNodesTest, AddNodeRefusesNodeOfAnotherCompound) {
    auto first = makeCompound("first");
    auto second = makeCompound("second");
    auto n = addNode(*first, "n");
    EXPECT_EQ(second->addNode(n, kMakeUnique), DmStatus::kInvalidArgument);
    EXPECT_TRUE(second->getNodes().empty());
    EXPECT_EQ(n->getOwner(), first.get());
}

TEST_F(DmCompoundNodesTest, AddNodeRefusesNodeAlreadyInTheCompound) {
    auto compound = makeCompound();
    auto n = addNode(*compound, "n");
    EXPECT_EQ(compound->addNode(n, kMakeUnique), DmStatus::kInvalidArgument);
    // Even without its owner the node is refused, being in the map already.
    n->setOwner(nullptr);
    EXPECT_EQ(compound->addNode(n, kMakeUnique), DmStatus::kInvalidArgument);
    EXPECT_EQ(compound->addNode(n, kAsOverload), DmStatus::kInvalidArgument);
    EXPECT_EQ(keysOf(compound->getNodes()), (Names{"n"}));
    EXPECT_EQ(n->getName(), "n");
    n->setOwner(compound.get());
}

TEST_F(DmCompoundNodesTest, AddNodeRefusesTakenNameUnderFailOnClash) {
    auto compound = makeCompound();
    auto first = addNode(*compound, "n");
    auto second = node("n");
    EXPECT_EQ(compound->addNode(second, kFailOnClash), DmStatus::kInvalidArgument);
    EXPECT_EQ(second->getName(), "n");
    EXPECT_EQ(second->getOwner(), nullptr);
    EXPECT_EQ(compound->findNode("n"), first);
    EXPECT_EQ(compound->getNodes().size(), 1u);
}

TEST_F(DmCompoundNodesTest, AddNodeRenamesNodeWithTakenNameUnderMakeUnique) {
    auto compound = makeCompound();
    addNode(*compound, "node");
    auto second = node("node");
    EXPECT_EQ(compound->addNode(second, kMakeUnique), DmStatus::kSuccess);
    EXPECT_EQ(second->getName(), "node1");
    EXPECT_EQ(compound->findNode("node1"), second);
    EXPECT_EQ(second->getOwner(), compound.get());
}

TEST_F(DmCompoundNodesTest, AddNodeUnderMakeUniqueNumbersPastTheHighestOfItsBase) {
    auto compound = makeCompound();
    addNode(*compound, "node");
    addNode(*compound, "node3");
    auto third = node("node");
    EXPECT_EQ(compound->addNode(third, kMakeUnique), DmStatus::kSuccess);
    EXPECT_EQ(third->getName(), "node4");
    EXPECT_EQ(keysOf(compound->getNodes()), (Names{"node", "node3", "node4"}));
}

TEST_F(DmCompoundNodesTest, AddNodeKeepsFreeNameUnderMakeUnique) {
    auto compound = makeCompound();
    addNode(*compound, "node");
    auto other = node("node7");
    EXPECT_EQ(compound->addNode(other, kMakeUnique), DmStatus::kSuccess);
    EXPECT_EQ(other->getName(), "node7");
}

TEST_F(DmCompoundNodesTest, AddNodeAsOverloadTakesAFreeName) {
    auto compound = makeCompound();
    auto n = node("n");
    EXPECT_EQ(compound->addNode(n, kAsOverload), DmStatus::kSuccess);
    EXPECT_EQ(compound->findNode("n"), n);
    EXPECT_EQ(n->getOwner(), compound.get());
}

TEST_F(DmCompoundNodesTest, AddNodeAsOverloadWithTakenNameIsRefusedAndGetsNoOwner) {
    auto compound = makeCompound();
    auto first = addNode(*compound, "n");
    auto second = node("n");
    EXPECT_EQ(compound->addNode(second, kAsOverload), DmStatus::kInvalidArgument);
    EXPECT_EQ(second->getOwner(), nullptr);
    EXPECT_EQ(second->getName(), "n");
    EXPECT_EQ(compound->findNode("n"), first);
    EXPECT_EQ(compound->getNodes().size(), 1u);
}

TEST_F(DmCompoundNodesTest, AddNodeAsOverloadDoesNotLookAtReservedNames) {
    auto compound = makeCompound();
    ASSERT_EQ(compound->setReservedNodeNames(reservedNames({"x"})), DmStatus::kSuccess);
    auto n = node("x");
    EXPECT_EQ(compound->addNode(n, kAsOverload), DmStatus::kSuccess);
    EXPECT_EQ(n->getName(), "x");
    EXPECT_EQ(compound->findNode("x"), n);
}

TEST_F(DmCompoundNodesTest, AddNodeKeepsOrderOfAdding) {
    auto compound = makeCompound();
    for (auto const& name : {"c", "a", "b"}) {
        addNode(*compound, name);
    }
    EXPECT_EQ(keysOf(compound->getNodes()), (Names{"c", "a", "b"}));
}

TEST_F(DmCompoundNodesTest, NodeOnCompoundShowsTheCompoundsPorts) {
    auto outer = makeCompound("outer");
    auto inner = makeCompoundWithPorts("inner");
    auto n = DmNode::createNode("i", inner);
    EXPECT_EQ(outer->addNode(n, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(portNames(n->getPorts()), (Names{"a", "r"}));
    // Not inverted: seen from outside, the input is an input.
    EXPECT_TRUE((*n)["a"]->isInput());
    EXPECT_TRUE((*n)["r"]->isOutput());
    EXPECT_EQ((*n)["a"]->getPortDescription(), inner->getPortsInterface()["a"]);
    EXPECT_EQ(inner->getInstantiatedNodes().count(n.get()), 1u);
}

TEST_F(DmCompoundNodesTest, NodeOnCompoundFollowsItsNewPorts) {
    auto outer = makeCompound("outer");
    auto inner = makeCompoundWithPorts("inner");
    auto n = DmNode::createNode("i", inner);
    ASSERT_EQ(outer->addNode(n, kFailOnClash), DmStatus::kSuccess);
    ASSERT_TRUE(inner->addPortDescription(input("b", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_EQ(portNames(n->getPorts()), (Names{"a", "r", "b"}));
    EXPECT_EQ(portNames(inner->getSelfNode()->getPorts()), (Names{"a", "r", "b"}));
}

// ---------------------------------------------------------------------------
// Reserved node names

TEST_F(DmCompoundNodesTest, ReservedNodeNameIsRenamedUnderMakeUnique) {
    auto compound = makeCompound();
    ASSERT_EQ(compound->setReservedNodeNames(reservedNames({"x"})), DmStatus::kSuccess);
    auto n = node("x");
    EXPECT_EQ(compound->addNode(n, kMakeUnique), DmStatus::kSuccess);
    EXPECT_EQ(n->getName(), "x1");
    EXPECT_EQ(compound->findNode("x1"), n);
    EXPECT_EQ(compound->findNode("x"), nullptr);
}

TEST_F(DmCompoundNodesTest, ReservedNodeNameIsRefusedUnderFailOnClash) {
    auto compound = makeCompound();
    ASSERT_EQ(compound->setReservedNodeNames(reservedNames({"x"})), DmStatus::kSuccess);
    auto n = node("x");
    EXPECT_EQ(compound->addNode(n, kFailOnClash), DmStatus::kInvalidArgument);
    EXPECT_EQ(n->getName(), "x");
    EXPECT_EQ(n->getOwner(), nullptr);
    EXPECT_TRUE(compound->getNodes().empty());
}

TEST_F(DmCompoundNodesTest, ReservedNamesCountForTheNumberOfARenamedNode) {
    auto compound = makeCompound();
    ASSERT_EQ(compound->setReservedNodeNames(reservedNames({"x5"})), DmStatus::kSuccess);
    addNode(*compound, "x");
    auto n = node("x");
    EXPECT_EQ(compound->addNode(n, kMakeUnique), DmStatus::kSuccess);
    EXPECT_EQ(n->getName(), "x6");
}

TEST_F(DmCompoundNodesTest, SetReservedNodeNamesStoresTheNames) {
    auto compound = makeCompound();
    addNode(*compound, "n");
    auto reserved = reservedNames({"x", "y"});
    EXPECT_EQ(compound->setReservedNodeNames(reserved), DmStatus::kSuccess);
    EXPECT_EQ(compound->getReservedNodeNames(), reserved);
    EXPECT_TRUE(compound->isReservedNodeName("x"));
    EXPECT_TRUE(compound->isReservedNodeName("y"));
    EXPECT_FALSE(compound->isReservedNodeName("n"));
}

TEST_F(DmCompoundNodesTest, SetReservedNodeNamesRefusesNameOfANodeAndChangesNothing) {
    auto compound = makeCompound();
    auto first = reservedNames({"x"});
    ASSERT_EQ(compound->setReservedNodeNames(first), DmStatus::kSuccess);
    addNode(*compound, "n");
    EXPECT_EQ(compound->setReservedNodeNames(reservedNames({"y", "n"})), DmStatus::kInvalidArgument);
    EXPECT_EQ(compound->getReservedNodeNames(), first);
    EXPECT_FALSE(compound->isReservedNodeName("y"));
    EXPECT_EQ(compound->findNode("n")->getName(), "n");
}

TEST_F(DmCompoundNodesTest, SetReservedNodeNamesWithNullClearsThem) {
    auto compound = makeCompound();
    ASSERT_EQ(compound->setReservedNodeNames(reservedNames({"x"})), DmStatus::kSuccess);
    EXPECT_EQ(compound->setReservedNodeNames(nullptr), DmStatus::kSuccess);
    EXPECT_EQ(compound->getReservedNodeNames(), nullptr);
    EXPECT_FALSE(compound->isReservedNodeName("x"));
    auto n = node("x");
    EXPECT_EQ(compound->addNode(n, kFailOnClash), DmStatus::kSuccess);
}

TEST_F(DmCompoundNodesTest, UniqueNodeNameSkipsTheException) {
    auto compound = makeCompound();
    addNode(*compound, "n");
    std::string name = "n";
    compound->getUniqueNodeName(name, "n");
    EXPECT_EQ(name, "n");
    compound->getUniqueNodeName(name, "");
    EXPECT_EQ(name, "n1");
}

TEST_F(DmCompoundNodesTest, UniqueNodeNameAvoidsReservedNames) {
    auto compound = makeCompound();
    ASSERT_EQ(compound->setReservedNodeNames(reservedNames({"x"})), DmStatus::kSuccess);
    std::string name = "x";
    compound->getUniqueNodeName(name, "");
    EXPECT_EQ(name, "x1");
}

// ---------------------------------------------------------------------------
// Renaming a node inside its compound

TEST_F(DmCompoundNodesTest, RenamedNodeIsReKeyedInPlace) {
    auto compound = makeCompound();
    addNode(*compound, "a");
    auto b = addNode(*compound, "b");
    addNode(*compound, "c");
    EXPECT_TRUE(b->setName("z", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(b->getName(), "z");
    EXPECT_EQ(keysOf(compound->getNodes()), (Names{"a", "z", "c"}));
    EXPECT_EQ(compound->findNode("z"), b);
    EXPECT_EQ(compound->findNode("b"), nullptr);
}

TEST_F(DmCompoundNodesTest, RenameToTakenNameIsRefusedUnderFailOnClash) {
    auto compound = makeCompound();
    auto a = addNode(*compound, "a");
    auto b = addNode(*compound, "b");
    EXPECT_FALSE(b->setName("a", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(b->getName(), "b");
    EXPECT_EQ(keysOf(compound->getNodes()), (Names{"a", "b"}));
    EXPECT_EQ(compound->findNode("a"), a);
}

TEST_F(DmCompoundNodesTest, RenameToTakenNameIsMadeUniqueUnderMakeUnique) {
    auto compound = makeCompound();
    addNode(*compound, "a");
    auto b = addNode(*compound, "b");
    EXPECT_TRUE(b->setName("a", kMakeUnique, kNameVerbatim));
    EXPECT_EQ(b->getName(), "a1");
    EXPECT_EQ(keysOf(compound->getNodes()), (Names{"a", "a1"}));
    EXPECT_EQ(compound->findNode("a1"), b);
}

TEST_F(DmCompoundNodesTest, RenameToTakenNameIsMadeUniqueUnderAsOverload) {
    auto compound = makeCompound();
    addNode(*compound, "a");
    auto b = addNode(*compound, "b");
    EXPECT_TRUE(b->setName("a", kAsOverload, kNameVerbatim));
    EXPECT_EQ(b->getName(), "a1");
    EXPECT_EQ(keysOf(compound->getNodes()), (Names{"a", "a1"}));
}

TEST_F(DmCompoundNodesTest, RenameToItsOwnNameIsNoClash) {
    auto compound = makeCompound();
    auto a = addNode(*compound, "a");
    EXPECT_TRUE(a->setName("a", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(a->getName(), "a");
    EXPECT_EQ(compound->findNode("a"), a);
}

TEST_F(DmCompoundNodesTest, RenameToReservedNameIsRefusedUnderFailOnClash) {
    auto compound = makeCompound();
    ASSERT_EQ(compound->setReservedNodeNames(reservedNames({"x"})), DmStatus::kSuccess);
    auto a = addNode(*compound, "a");
    EXPECT_FALSE(a->setName("x", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(a->getName(), "a");
    EXPECT_TRUE(a->setName("x", kMakeUnique, kNameVerbatim));
    EXPECT_EQ(a->getName(), "x1");
    EXPECT_EQ(keysOf(compound->getNodes()), (Names{"x1"}));
}

TEST_F(DmCompoundNodesTest, RenameLegalizesTheNameInTheCompound) {
    auto compound = makeCompound();
    addNode(*compound, "my_node");
    auto b = addNode(*compound, "b");
    EXPECT_TRUE(b->setName("my node", kMakeUnique, kNameLegalize));
    EXPECT_EQ(b->getName(), "my_node1");
    EXPECT_EQ(compound->findNode("my_node1"), b);
}

TEST_F(DmCompoundNodesTest, RenamedNodeKeepsItsConnectionsAndPaths) {
    auto compound = makeCompoundWithPorts();
    auto n = addNode(*compound, "n");
    ASSERT_EQ(connect(*compound, ".a", "n.in"), DmStatus::kSuccess);
    ASSERT_TRUE(n->setName("m", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(compound->getConnections().size(), 1u);
    EXPECT_EQ(connectionsOf(*compound), (Names{".a->m.in"}));
    EXPECT_EQ(connect(*compound, "m.out", ".r"), DmStatus::kSuccess);
}

TEST_F(DmCompoundNodesTest, NodeOutsideACompoundRenamesFreely) {
    auto compound = makeCompound();
    addNode(*compound, "a");
    auto loose = node("b");
    EXPECT_TRUE(loose->setName("a", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(loose->getName(), "a");
}

// ---------------------------------------------------------------------------
// URIs of the definitions

TEST_F(DmCompoundNodesTest, AddNodeMakesCompoundsURIDependOnTheDefinitionsURI) {
    auto compound = makeCompound();
    auto graphURI = makeURI("/graphs/main.json");
    compound->setURI(graphURI);
    auto opURI = makeURI("/graphs/ops.json");
    m_op->setURI(opURI);

    addNode(*compound, "n");
    EXPECT_TRUE(graphURI->hasDependency(opURI));
    EXPECT_EQ(keysOf(*graphURI->getDependencies()), (Names{opURI->getName()}));
    // A second node on the same definition adds nothing.
    addNode(*compound, "m");
    EXPECT_EQ(graphURI->getDependencies()->size(), 1u);
}

TEST_F(DmCompoundNodesTest, AddNodeOnSetMakesCompoundDependOnEachOverloadsURI) {
    auto ns = makeNamespace("ns");
    auto first = makeCompoundWithPorts("shape");
    auto second = makeCompoundWithPorts("shape");
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    auto firstURI = makeURI("/graphs/first.json");
    auto secondURI = makeURI("/graphs/second.json");
    first->setURI(firstURI);
    second->setURI(secondURI);
    std::shared_ptr<DmOverloadSet> set;
    ASSERT_TRUE(ns->findNodeDef("shape", set));

    auto compound = makeCompound();
    auto graphURI = makeURI("/graphs/main.json");
    compound->setURI(graphURI);
    auto n = DmNode::createNode("s", set);
    EXPECT_EQ(compound->addNode(n, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(keysOf(*graphURI->getDependencies()), (Names{firstURI->getName(), secondURI->getName()}));
}

TEST_F(DmCompoundNodesTest, AddNodeAddsNoDependencyWithoutCompoundURI) {
    auto compound = makeCompound();
    auto opURI = makeURI("/graphs/ops.json");
    m_op->setURI(opURI);
    addNode(*compound, "n");
    EXPECT_EQ(compound->getURI(), nullptr);
    EXPECT_TRUE(opURI->getDependencies()->empty());
}

TEST_F(DmCompoundNodesTest, AddNodeAddsNoDependencyForDefinitionWithoutURI) {
    auto compound = makeCompound();
    auto graphURI = makeURI("/graphs/main.json");
    compound->setURI(graphURI);
    addNode(*compound, "n");
    EXPECT_TRUE(graphURI->getDependencies()->empty());
}

TEST_F(DmCompoundNodesTest, AddNodeAddsNoDependencyPresentThroughAnother) {
    auto compound = makeCompound();
    auto graphURI = makeURI("/graphs/main.json");
    auto libraryURI = makeURI("/graphs/library.json");
    auto opURI = makeURI("/graphs/ops.json");
    libraryURI->addDependency(opURI);
    graphURI->addDependency(libraryURI);
    compound->setURI(graphURI);
    m_op->setURI(opURI);
    addNode(*compound, "n");
    EXPECT_EQ(keysOf(*graphURI->getDependencies()), (Names{libraryURI->getName()}));
}

TEST_F(DmCompoundNodesTest, RefusedNodeAddsNoDependency) {
    auto compound = makeCompound();
    auto graphURI = makeURI("/graphs/main.json");
    compound->setURI(graphURI);
    addNode(*compound, "n");
    auto other = makeOp("other");
    other->setURI(makeURI("/graphs/other.json"));
    auto refused = DmNode::createNode("n", other);
    EXPECT_EQ(compound->addNode(refused, kFailOnClash), DmStatus::kInvalidArgument);
    EXPECT_TRUE(graphURI->getDependencies()->empty());
}

// ---------------------------------------------------------------------------
// Removing nodes

TEST_F(DmCompoundNodesTest, RemoveNodeTakesNodeOutAndClearsItsOwner) {
    auto compound = makeCompound();
    addNode(*compound, "a");
    auto b = addNode(*compound, "b");
    addNode(*compound, "c");
    EXPECT_EQ(compound->removeNode(b), DmStatus::kSuccess);
    EXPECT_EQ(keysOf(compound->getNodes()), (Names{"a", "c"}));
    EXPECT_EQ(b->getOwner(), nullptr);
    EXPECT_EQ(compound->findNode("b"), nullptr);
}

TEST_F(DmCompoundNodesTest, RemoveNodeBreaksItsConnectionsBothWays) {
    auto compound = makeCompoundWithPorts();
    auto a = addNode(*compound, "a");
    auto b = addNode(*compound, "b");
    auto c = addNode(*compound, "c");
    ASSERT_EQ(connect(*compound, ".a", "a.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "a.out", "b.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "b.out", "c.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "c.out", ".r"), DmStatus::kSuccess);

    EXPECT_EQ(compound->removeNode(b), DmStatus::kSuccess);
    EXPECT_EQ(connectionsOf(*compound), (Names{".a->a.in", "c.out->.r"}));
    EXPECT_TRUE(b->getConnections().empty());
    EXPECT_TRUE((*a)["out"]->getConnectedPorts().empty());
    EXPECT_TRUE((*c)["in"]->getConnectedPorts().empty());
    EXPECT_EQ(a->getConnections().size(), 1u);
    EXPECT_EQ(c->getConnections().size(), 1u);
}

TEST_F(DmCompoundNodesTest, RemoveNodeWithoutConnectionsSucceeds) {
    auto compound = makeCompound();
    auto n = addNode(*compound, "n");
    EXPECT_EQ(compound->removeNode(n), DmStatus::kSuccess);
    EXPECT_TRUE(compound->getNodes().empty());
}

TEST_F(DmCompoundNodesTest, RemoveNodeRefusesNodeNotInTheCompound) {
    auto compound = makeCompound();
    addNode(*compound, "n");
    auto stranger = node("m");
    EXPECT_EQ(compound->removeNode(stranger), DmStatus::kInvalidArgument);
    EXPECT_EQ(compound->removeNode(nullptr), DmStatus::kInvalidArgument);
    EXPECT_EQ(compound->getNodes().size(), 1u);
}

TEST_F(DmCompoundNodesTest, RemoveNodeRefusesNodeOfAnotherCompoundWithATakenName) {
    auto first = makeCompound("first");
    auto second = makeCompound("second");
    auto mine = addNode(*first, "n");
    auto theirs = addNode(*second, "n");
    EXPECT_EQ(first->removeNode(theirs), DmStatus::kInvalidArgument);
    EXPECT_EQ(first->findNode("n"), mine);
    EXPECT_EQ(theirs->getOwner(), second.get());
}

TEST_F(DmCompoundNodesTest, RemovedNodeCanBeAddedAgain) {
    auto first = makeCompound("first");
    auto second = makeCompound("second");
    auto n = addNode(*first, "n");
    ASSERT_EQ(first->removeNode(n), DmStatus::kSuccess);
    EXPECT_EQ(second->addNode(n, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(n->getOwner(), second.get());
}

TEST_F(DmCompoundNodesTest, RemovedNodeDiesWithItsLastReference) {
    unsigned int const nodes = count<DmNode>();
    auto compound = makeCompound();
    addNode(*compound, "n");
    EXPECT_EQ(count<DmNode>(), nodes + 2);
    EXPECT_EQ(compound->removeNode(compound->findNode("n")), DmStatus::kSuccess);
    EXPECT_EQ(count<DmNode>(), nodes + 1);
    EXPECT_EQ(m_op->getInstantiatedNodes().size(), 0u);
}

// ---------------------------------------------------------------------------
// Removing ports

TEST_F(DmCompoundNodesTest, RemovedPortOfADefinitionTakesItsConnectionsAlong) {
    auto compound = makeCompoundWithPorts();
    auto def = makeOp("user");
    def->addPortDescription(input("extra", DmLibrary::getIntType()), kFailOnClash);
    auto n = DmNode::createNode("n", def);
    ASSERT_EQ(compound->addNode(n, kFailOnClash), DmStatus::kSuccess);
    auto m = addNode(*compound, "m");
    ASSERT_EQ(connect(*compound, ".a", "n.extra"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "m.out", "n.in"), DmStatus::kSuccess);

    EXPECT_TRUE(def->removePortDescription(def->getPortsInterface()["extra"]));
    EXPECT_EQ(portNames(n->getPorts()), (Names{"in", "out"}));
    EXPECT_EQ(connectionsOf(*compound), (Names{"m.out->n.in"}));
    EXPECT_TRUE(compound->getBindingConnections().empty());
    EXPECT_TRUE((*compound->getSelfNode())["a"]->getConnectedPorts().empty());
}

TEST_F(DmCompoundNodesTest, RemovePortOnNodeInCompoundBreaksConnectionsOfThatPortOnly) {
    auto compound = makeCompound();
    auto n = addNode(*compound, "n");
    auto m = addNode(*compound, "m");
    auto k = addNode(*compound, "k");
    ASSERT_EQ(connect(*compound, "n.out", "m.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "k.out", "n.in"), DmStatus::kSuccess);

    EXPECT_TRUE(n->removePort("out"));
    EXPECT_EQ(connectionsOf(*compound), (Names{"k.out->n.in"}));
    EXPECT_TRUE((*m)["in"]->getConnectedPorts().empty());
    EXPECT_EQ(n->getConnections().size(), 1u);
}

TEST_F(DmCompoundNodesTest, RemovePortOnNodeWithoutCompoundJustDropsIt) {
    auto loose = node("n");
    EXPECT_TRUE(loose->removePort("in"));
    EXPECT_EQ(portNames(loose->getPorts()), (Names{"out"}));
}

// ---------------------------------------------------------------------------
// Breaking connections

TEST_F(DmCompoundNodesTest, BreakAllConnectionsOfNullNodeOrPortIsInvalid) {
    auto compound = makeCompound();
    EXPECT_EQ(compound->breakAllConnections(std::shared_ptr<DmNode>()), DmStatus::kInvalidArgument);
    EXPECT_EQ(compound->breakAllConnections(std::shared_ptr<DmPort>()), DmStatus::kInvalidArgument);
}

TEST_F(DmCompoundNodesTest, BreakAllConnectionsWithNoConnectionsFails) {
    auto compound = makeCompound();
    auto n = addNode(*compound, "n");
    EXPECT_EQ(compound->breakAllConnections(n), DmStatus::kFailure);
    EXPECT_EQ(compound->breakAllConnections((*n)["out"]), DmStatus::kFailure);
    EXPECT_EQ(compound->breakAllConnections(), DmStatus::kFailure);
}

TEST_F(DmCompoundNodesTest, BreakAllConnectionsOfNodeBreaksBothWays) {
    auto compound = makeCompoundWithPorts();
    auto n = addNode(*compound, "n");
    auto m = addNode(*compound, "m");
    ASSERT_EQ(connect(*compound, ".a", "n.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "n.out", "m.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "m.out", ".r"), DmStatus::kSuccess);

    EXPECT_EQ(compound->breakAllConnections(n), DmStatus::kSuccess);
    EXPECT_EQ(connectionsOf(*compound), (Names{"m.out->.r"}));
    EXPECT_TRUE(n->getConnections().empty());
    EXPECT_EQ(m->getConnections().size(), 1u);
    EXPECT_EQ(n->getOwner(), compound.get());
    EXPECT_EQ(compound->findNode("n"), n);
}

TEST_F(DmCompoundNodesTest, BreakAllConnectionsOfUnconnectedNodeFails) {
    auto compound = makeCompound();
    addNode(*compound, "n");
    addNode(*compound, "m");
    auto k = addNode(*compound, "k");
    ASSERT_EQ(connect(*compound, "n.out", "m.in"), DmStatus::kSuccess);
    EXPECT_EQ(compound->breakAllConnections(k), DmStatus::kFailure);
    EXPECT_EQ(compound->getConnections().size(), 1u);
}

TEST_F(DmCompoundNodesTest, BreakAllConnectionsOfSelfNodeBreaksTheBindings) {
    auto compound = makeCompoundWithPorts();
    addNode(*compound, "n");
    addNode(*compound, "m");
    ASSERT_EQ(connect(*compound, ".a", "n.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "n.out", "m.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "m.out", ".r"), DmStatus::kSuccess);
    EXPECT_EQ(compound->breakAllConnections(compound->getSelfNode()), DmStatus::kSuccess);
    EXPECT_EQ(connectionsOf(*compound), (Names{"n.out->m.in"}));
    EXPECT_TRUE(compound->getBindingConnections().empty());
}

TEST_F(DmCompoundNodesTest, BreakAllConnectionsOfOutputBreaksWhatItFeeds) {
    auto compound = makeCompound();
    auto n = addNode(*compound, "n");
    addNode(*compound, "m");
    addNode(*compound, "k");
    ASSERT_EQ(connect(*compound, "n.out", "m.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "n.out", "k.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "m.out", "n.in"), DmStatus::kSuccess);

    EXPECT_EQ(compound->breakAllConnections((*n)["out"]), DmStatus::kSuccess);
    EXPECT_EQ(connectionsOf(*compound), (Names{"m.out->n.in"}));
    EXPECT_TRUE((*n)["out"]->getConnectedPorts().empty());
}

TEST_F(DmCompoundNodesTest, BreakAllConnectionsOfInputBreaksWhatFeedsIt) {
    auto compound = makeCompound();
    auto n = addNode(*compound, "n");
    auto m = addNode(*compound, "m");
    ASSERT_EQ(connect(*compound, "m.out", "n.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "n.out", "m.in"), DmStatus::kSuccess);

    EXPECT_EQ(compound->breakAllConnections((*n)["in"]), DmStatus::kSuccess);
    EXPECT_EQ(connectionsOf(*compound), (Names{"n.out->m.in"}));
    EXPECT_TRUE((*m)["out"]->getConnectedPorts().empty());
}

TEST_F(DmCompoundNodesTest, BreakAllConnectionsOfUnconnectedPortInConnectedCompoundFails) {
    auto compound = makeCompound();
    auto n = addNode(*compound, "n");
    addNode(*compound, "m");
    ASSERT_EQ(connect(*compound, "n.out", "m.in"), DmStatus::kSuccess);
    EXPECT_EQ(compound->breakAllConnections((*n)["in"]), DmStatus::kFailure);
    EXPECT_EQ(compound->getConnections().size(), 1u);
}

TEST_F(DmCompoundNodesTest, BreakAllConnectionsOfPortBreaksThoseOfItsMembers) {
    auto compound = makeCompound();
    auto point = makeStruct("Point");
    auto def = DmNativeNodeDef::newNativeNodeDef("make", DmNativeNodeDef::kPass);
    def->addPortDescription(input("p", point), kFailOnClash);
    def->addPortDescription(output("q", point), kFailOnClash);
    auto n = DmNode::createNode("n", def);
    ASSERT_EQ(compound->addNode(n, kFailOnClash), DmStatus::kSuccess);
    auto m = addNode(*compound, "m");
    std::shared_ptr<DmPort> px;
    ASSERT_TRUE((*n)["p"]->getMember("x", px));
    std::shared_ptr<DmPort> qx;
    ASSERT_TRUE((*n)["q"]->getMember("x", qx));
    std::shared_ptr<DmConnection> connection;
    ASSERT_EQ(compound->makeConnection((*m)["out"], px, connection), DmStatus::kSuccess);
    ASSERT_EQ(compound->makeConnection(qx, (*m)["in"], connection), DmStatus::kSuccess);

    EXPECT_EQ(compound->breakAllConnections((*n)["p"]), DmStatus::kSuccess);
    EXPECT_EQ(connectionsOf(*compound), (Names{"n.q.x->m.in"}));
    EXPECT_EQ(compound->breakAllConnections((*n)["q"]), DmStatus::kSuccess);
    EXPECT_TRUE(compound->getConnections().empty());
    EXPECT_TRUE(m->getConnections().empty());
}

TEST_F(DmCompoundNodesTest, BreakAllConnectionsWithoutArgumentBreaksEveryConnection) {
    auto compound = makeCompoundWithPorts();
    auto n = addNode(*compound, "n");
    auto m = addNode(*compound, "m");
    std::shared_ptr<DmConnection> held;
    ASSERT_EQ(compound->makeConnection(".a", "n.in", held), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "n.out", "m.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*compound, "m.out", ".r"), DmStatus::kSuccess);

    EXPECT_EQ(compound->breakAllConnections(), DmStatus::kSuccess);
    EXPECT_TRUE(compound->getConnections().empty());
    EXPECT_TRUE(compound->getBindingConnections().empty());
    EXPECT_TRUE(n->getConnections().empty());
    EXPECT_TRUE(m->getConnections().empty());
    EXPECT_FALSE(held->isConnected());
    EXPECT_EQ(compound->breakAllConnections(), DmStatus::kFailure);
}

TEST_F(DmCompoundNodesTest, BrokenConnectionHeldOutsideIsDisconnected) {
    auto compound = makeCompound();
    addNode(*compound, "n");
    auto m = addNode(*compound, "m");
    std::shared_ptr<DmConnection> held;
    ASSERT_EQ(compound->makeConnection("n.out", "m.in", held), DmStatus::kSuccess);
    ASSERT_EQ(compound->breakAllConnections(m), DmStatus::kSuccess);
    EXPECT_FALSE(held->isConnected());
    EXPECT_TRUE(compound->getConnections().empty());
}

// ---------------------------------------------------------------------------
// Connections and the nodes of the compound

TEST_F(DmCompoundNodesTest, ConnectionToNodeOutsideTheCompoundIsRefused) {
    auto compound = makeCompound();
    auto inside = addNode(*compound, "n");
    auto outside = node("m");
    std::shared_ptr<DmConnection> connection;
    DmCompound::ConnectionFailureType failure = DmCompound::kConnectionOk;
    EXPECT_EQ(compound->makeConnection((*inside)["out"], (*outside)["in"], false, connection, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionNodesNotInCompound);
    failure = DmCompound::kConnectionOk;
    EXPECT_EQ(compound->makeConnection((*outside)["out"], (*inside)["in"], false, connection, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionNodesNotInCompound);
    EXPECT_EQ(connection, nullptr);
    EXPECT_TRUE(compound->getConnections().empty());
    EXPECT_TRUE(inside->getConnections().empty());
    EXPECT_TRUE(outside->getConnections().empty());
}

TEST_F(DmCompoundNodesTest, ConnectionToNodeOfAnotherCompoundIsRefused) {
    auto first = makeCompoundWithPorts("first");
    auto second = makeCompound("second");
    auto theirs = addNode(*second, "n");
    auto mine = addNode(*first, "n");
    std::shared_ptr<DmConnection> connection;
    DmCompound::ConnectionFailureType failure = DmCompound::kConnectionOk;
    EXPECT_EQ(
        first->makeConnection((*first->getSelfNode())["a"], (*theirs)["in"], false, connection, failure),
        DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionNodesNotInCompound);
    // Nor may another compound's self node be joined.
    failure = DmCompound::kConnectionOk;
    auto inner = makeCompoundWithPorts("inner");
    EXPECT_EQ(first->makeConnection((*inner->getSelfNode())["a"], (*mine)["in"], false, connection, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionNodesNotInCompound);
    EXPECT_TRUE(first->getConnections().empty());
    EXPECT_TRUE(second->getConnections().empty());
}

TEST_F(DmCompoundNodesTest, ConnectionToRemovedNodeIsRefused) {
    auto compound = makeCompound();
    auto n = addNode(*compound, "n");
    auto m = addNode(*compound, "m");
    ASSERT_EQ(compound->removeNode(m), DmStatus::kSuccess);
    std::shared_ptr<DmConnection> connection;
    DmCompound::ConnectionFailureType failure = DmCompound::kConnectionOk;
    EXPECT_EQ(compound->makeConnection((*n)["out"], (*m)["in"], false, connection, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionNodesNotInCompound);
}

TEST_F(DmCompoundNodesTest, ConnectionByPathToUnknownNodeIsRefused) {
    auto compound = makeCompound();
    addNode(*compound, "n");
    std::shared_ptr<DmConnection> connection;
    DmCompound::ConnectionFailureType failure = DmCompound::kConnectionOk;
    EXPECT_EQ(compound->makeConnection("n.out", "missing.in", false, connection, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionNodesNotInCompound);
    EXPECT_TRUE(compound->getConnections().empty());
}

TEST_F(DmCompoundNodesTest, ConnectionListOwnsTheConnections) {
    unsigned int const connections = count<DmConnection>();
    auto compound = makeCompound();
    auto n = addNode(*compound, "n");
    addNode(*compound, "m");
    ASSERT_EQ(connect(*compound, "n.out", "m.in"), DmStatus::kSuccess);
    EXPECT_EQ(count<DmConnection>(), connections + 1);
    EXPECT_EQ(compound->getConnections()[0].use_count(), 1);
    ASSERT_EQ(compound->breakAllConnections(n), DmStatus::kSuccess);
    EXPECT_EQ(count<DmConnection>(), connections);
}
