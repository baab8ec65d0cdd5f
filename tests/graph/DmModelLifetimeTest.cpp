// Objects a caller holds past the life of what owns them, and edits that
// would leave a pointer to something gone: none may reach freed memory.
#include "graph/CompoundTestSupport.h"

#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmStructType.h>

#include <gtest/gtest.h>

#include <memory>

using namespace Kesto;
using namespace KestoTest;

namespace {

class DmModelLifetimeTest : public CompoundTest {};

/// A definition with the struct output "s" of `type`.
std::shared_ptr<DmNativeNodeDef> structSource(std::shared_ptr<DmBaseType const> const& type) {
    auto def = DmNativeNodeDef::newNativeNodeDef("src", DmNativeNodeDef::kPass);
    EXPECT_TRUE(def->addPortDescription(output("s", type), kFailOnClash));
    return def;
}

} // namespace

TEST_F(DmModelLifetimeTest, DescriptionHeldPastItsDefinitionBelongsToNone) {
    auto def = makeOp();
    auto const in = def->getPortsInterface()["in"];
    def.reset();
    EXPECT_EQ(in->getNodeDef(), nullptr);
    EXPECT_TRUE(in->setName("z", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(in->getName(), "z");
}

TEST_F(DmModelLifetimeTest, SelfNodeHeldPastItsCompoundHasNoOwnerAndNoDefinition) {
    auto compound = makeCompoundWithPorts("c");
    auto const self = compound->getSelfNode();
    auto const clone = (*self)["a"]->getPortDescription();
    compound.reset();
    EXPECT_EQ(self->getOwner(), nullptr);
    EXPECT_EQ(self->getNodeDef(), nullptr);
    EXPECT_EQ(clone->getNodeDef(), nullptr);
    EXPECT_TRUE(self->setName("q", kFailOnClash, kNameVerbatim));
}

TEST_F(DmModelLifetimeTest, PortHeldPastItsNodeHasNoNode) {
    auto const def = makeOp();
    auto node = DmNode::createNode("n", def);
    auto const port = (*node)["in"];
    node.reset();
    EXPECT_EQ(port->getNode(), nullptr);
    EXPECT_EQ(port->findUnconnectedPortValue(), nullptr);
    std::string fullName;
    port->resolveFullName(fullName);
    EXPECT_EQ(fullName, "in");
}

TEST_F(DmModelLifetimeTest, StructPortOfAnotherTypeBreaksTheConnectionsOfItsOldMembers) {
    auto const src = structSource(makeStruct("Point", "x"));
    auto const compound = makeCompound("c");
    auto const n1 = addNode(*compound, "n1", src);
    auto const n2 = addNode(*compound, "n2", makeOp("dst"));
    std::shared_ptr<DmPort> x;
    ASSERT_TRUE((*n1)["s"]->getMember("x", x));
    ASSERT_EQ(connect(*compound, x, (*n2)["in"]), DmStatus::kSuccess);
    ASSERT_TRUE(src->replaceExistingPort(output("s", makeStruct("Other", "y"))));
    EXPECT_TRUE(compound->getConnections().empty());
    EXPECT_TRUE((*n2)["in"]->getConnectedPorts().empty());
    std::shared_ptr<DmPort> y;
    EXPECT_TRUE((*n1)["s"]->getMember("y", y));
    EXPECT_FALSE((*n1)["s"]->getMember("x", x));
}

TEST_F(DmModelLifetimeTest, StructPortTurnedIntoAnotherKindLosesItsMembersAndTheirConnections) {
    auto const src = structSource(makeStruct("Point", "x"));
    auto const compound = makeCompound("c");
    auto const n1 = addNode(*compound, "n1", src);
    auto const n2 = addNode(*compound, "n2", makeOp("dst"));
    std::shared_ptr<DmPort> x;
    ASSERT_TRUE((*n1)["s"]->getMember("x", x));
    ASSERT_EQ(connect(*compound, x, (*n2)["in"]), DmStatus::kSuccess);
    ASSERT_TRUE(src->replaceExistingPort(output("s", DmLibrary::getIntType())));
    EXPECT_TRUE(compound->getConnections().empty());
    EXPECT_FALSE((*n1)["s"]->hasMembers());
}

TEST_F(DmModelLifetimeTest, StructPortReplacedByAnEquivalentTypeKeepsItsMembersOnTheNewDescription) {
    auto const point = makeStruct("Point", "x");
    auto const src = structSource(point);
    auto const node = DmNode::createNode("n", src);
    std::shared_ptr<DmPort> before;
    ASSERT_TRUE((*node)["s"]->getMember("x", before));
    ASSERT_TRUE(src->replaceExistingPort(output("s", point)));
    std::shared_ptr<DmPort> x;
    ASSERT_TRUE((*node)["s"]->getMember("x", x));
    EXPECT_EQ(x, before);
    EXPECT_EQ(x->getPortDescription()->getParent(), src->getPortsInterface()["s"].get());
    EXPECT_EQ(x->getPortDescription()->getNodeDef(), src.get());
}

TEST_F(DmModelLifetimeTest, PortRemovedFromItsNodeCannotBeConnected) {
    auto const def = makeOp();
    auto const compound = makeCompound("c");
    auto const n1 = addNode(*compound, "n1", def);
    auto const n2 = addNode(*compound, "n2", def);
    auto const out = (*n1)["out"];
    ASSERT_TRUE(def->removePortDescription(def->getPortsInterface()["out"]));
    std::shared_ptr<DmConnection> connection;
    DmCompound::ConnectionFailureType failure = DmCompound::kConnectionOk;
    EXPECT_EQ(compound->makeConnection(out, (*n2)["in"], false, connection, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionSourcePortMissing);
    EXPECT_TRUE(compound->getConnections().empty());
}

TEST_F(DmModelLifetimeTest, EntryRemovedFromItsPortCannotBeConnected) {
    auto const compound = makeCompound("c");
    auto const n1 = addNode(*compound, "n1", makeOp());
    auto const n2 = addNode(*compound, "n2", makeAssociativeDef("add"));
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(n2->addMultiInPortEntry("e", entry), DmStatus::kSuccess);
    ASSERT_EQ(n2->removeMultiInPortEntry(entry), DmStatus::kSuccess);
    std::shared_ptr<DmConnection> connection;
    DmCompound::ConnectionFailureType failure = DmCompound::kConnectionOk;
    EXPECT_EQ(compound->makeConnection((*n1)["out"], entry, false, connection, failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionTargetPortMissing);
}

TEST_F(DmModelLifetimeTest, CompoundRefusesANodeOfItself) {
    auto const compound = makeCompound("c");
    EXPECT_EQ(compound->addNode(DmNode::createNode("n", compound), kFailOnClash), DmStatus::kInvalidArgument);
    EXPECT_TRUE(compound->getNodes().empty());
}

TEST_F(DmModelLifetimeTest, CompoundRefusesANodeOfItsSet) {
    auto const ns = makeNamespace("ns");
    auto const compound = makeCompound("c", ns.get());
    EXPECT_EQ(compound->addNode(DmNode::createNode("n", setOf(*ns, "c")), kFailOnClash),
              DmStatus::kInvalidArgument);
}

TEST_F(DmModelLifetimeTest, NestedCompoundRefusesANodeOfTheCompoundAroundIt) {
    auto const outer = makeCompound("outer");
    auto const inner = makeCompound("inner", outer.get());
    EXPECT_EQ(inner->addNode(DmNode::createNode("n", outer), kFailOnClash), DmStatus::kInvalidArgument);
    EXPECT_EQ(outer->addNode(DmNode::createNode("n", inner), kFailOnClash), DmStatus::kSuccess);
}

TEST_F(DmModelLifetimeTest, OverloadRemovedFromItsSetHasNoOwner) {
    auto const ns = makeNamespace("ns");
    auto const first = makeUserDef("op");
    auto const second = makeUserDef("op");
    ASSERT_EQ(ns->registerNodeDef(first), DmStatus::kSuccess);
    ASSERT_EQ(ns->registerNodeDef(second), DmStatus::kSuccess);
    ASSERT_EQ(setOf(*ns, "op")->removeOverload(second), DmStatus::kSuccess);
    EXPECT_EQ(second->get_owner(), nullptr);
    EXPECT_EQ(first->get_owner(), setOf(*ns, "op").get());
}

TEST_F(DmModelLifetimeTest, OverloadRenamedToATakenNameCarriesTheNameOfItsSet) {
    auto const ns = makeNamespace("ns");
    auto const a = makeUserDef("a");
    ASSERT_EQ(ns->registerNodeDef(a), DmStatus::kSuccess);
    ASSERT_EQ(ns->registerNodeDef(makeUserDef("b")), DmStatus::kSuccess);
    EXPECT_TRUE(a->setName("b", kAsOverload, kNameVerbatim));
    ASSERT_NE(a->get_owner(), nullptr);
    EXPECT_EQ(a->getName(), "b1");
    EXPECT_EQ(a->get_owner()->getName(), "b1");
    EXPECT_EQ(keysOf(ns->getNodeDefs()), (std::vector<std::string>{"b1", "b"}));
}

TEST_F(DmModelLifetimeTest, SetRenamedToATakenNameFailsOnClash) {
    auto const ns = makeNamespace("ns");
    ASSERT_EQ(ns->registerNodeDef(makeUserDef("a")), DmStatus::kSuccess);
    ASSERT_EQ(ns->registerNodeDef(makeUserDef("b")), DmStatus::kSuccess);
    auto const set = setOf(*ns, "a");
    EXPECT_FALSE(set->setName("b", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(set->getName(), "a");
}

TEST_F(DmModelLifetimeTest, SetMovedOntoATakenNameStaysWhereItWas) {
    auto const one = makeNamespace("one");
    auto const two = makeNamespace("two");
    ASSERT_EQ(one->registerNodeDef(makeUserDef("op")), DmStatus::kSuccess);
    ASSERT_EQ(two->registerNodeDef(makeUserDef("op")), DmStatus::kSuccess);
    auto const set = setOf(*one, "op");
    auto const theirs = setOf(*two, "op");
    EXPECT_EQ(set->setScope(two.get(), kAsOverload), DmStatus::kInvalidArgument);
    EXPECT_EQ(set->getScope(), one.get());
    EXPECT_EQ(setOf(*one, "op"), set);
    EXPECT_EQ(setOf(*two, "op"), theirs);
}

TEST_F(DmModelLifetimeTest, PortRenamedOnANodeOfASetIsRenamedOnItsOverloads) {
    auto const ns = makeNamespace("ns");
    auto const def = makeUserDef("op");
    ASSERT_EQ(ns->registerNodeDef(def), DmStatus::kSuccess);
    auto const set = setOf(*ns, "op");
    auto const node = DmNode::createNode("n", set);
    ASSERT_TRUE((*node)["x"]->setName("y", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(portNames(set->getPortsInterface().getPorts()), (std::vector<std::string>{"y", "out"}));
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"y", "out"}));
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"y", "out"}));
}

TEST_F(DmModelLifetimeTest, StructMemberPortKeepsTheNameOfItsMember) {
    auto const node = DmNode::createNode("n", structSource(makeStruct("Point", "x")));
    std::shared_ptr<DmPort> x;
    ASSERT_TRUE((*node)["s"]->getMember("x", x));
    EXPECT_FALSE(x->setName("z", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(x->getName(), "x");
}
