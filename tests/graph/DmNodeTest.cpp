// Nodes made from definitions without a compound around them: creation and
// registration, the ports a node builds from its definition (plain, inverted,
// associative), the port operations a definition calls, moving a node to
// another definition, and how long the definition lives.
#include "graph/ModelTestSupport.h"

#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmUnknownNodeDef.h>
#include <KestoDM/graph/DmUnknownPortDescription.h>
#include <KestoDM/graph/DmValueNodeDef.h>
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
using KestoTest::input;
using KestoTest::intValue;
using KestoTest::makeAssociativeDef;
using KestoTest::makeNamespace;
using KestoTest::makeThreePortDef;
using KestoTest::output;
using KestoTest::portNames;

using Names = std::vector<std::string>;

class DmNodeTest : public KestoTest::ModelTest {};

std::shared_ptr<DmNativeNodeDef> makeDef(std::string const& name = "op") {
    return DmNativeNodeDef::newNativeNodeDef(name, DmNativeNodeDef::kPass);
}

std::shared_ptr<DmPortDescription> descriptionOf(DmNodeDef const& def, std::string const& name) {
    return def.getPortsInterface()[name];
}

// ---------------------------------------------------------------------------
// Creation and registration

TEST_F(DmNodeTest, CreatesNodeWithNameOnDefinition) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getName(), "n");
    EXPECT_EQ(node->getMapEntryKey(), "n");
    EXPECT_EQ(node->getNodeDef(), def.get());
    EXPECT_EQ(node->getOwner(), nullptr);
    EXPECT_FALSE(node->isSelfNode());
    EXPECT_EQ(node->getMultiInPort(), nullptr);
}

TEST_F(DmNodeTest, NodeOnDefinitionIsCompleteAndValid) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_TRUE(node->isComplete());
    EXPECT_TRUE(node->isValid());
}

TEST_F(DmNodeTest, NodeWithoutDefinitionIsIncompleteAndInvalid) {
    auto node = DmNode::createNode("n", nullptr);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getNodeDef(), nullptr);
    EXPECT_FALSE(node->isComplete());
    EXPECT_FALSE(node->isValid());
    EXPECT_TRUE(node->getPorts().empty());
}

TEST_F(DmNodeTest, CreateNodeRefusesEmptyName) {
    auto def = makeThreePortDef();
    EXPECT_EQ(DmNode::createNode("", def), nullptr);
    EXPECT_TRUE(def->getInstantiatedNodes().empty());
}

TEST_F(DmNodeTest, CreateNodeRefusesIllegalNameWhenLegalNameIsRequired) {
    auto def = makeThreePortDef();
    EXPECT_EQ(DmNode::createNode("my node", def, false, kNameMustBeLegal), nullptr);
    EXPECT_TRUE(def->getInstantiatedNodes().empty());
}

TEST_F(DmNodeTest, CreateNodeLegalizesName) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("my node", def, false, kNameLegalize);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getName(), "my_node");
}

TEST_F(DmNodeTest, CreateNodeRegistersNodeWithDefinition) {
    auto def = makeThreePortDef();
    auto first = DmNode::createNode("n1", def);
    auto second = DmNode::createNode("n2", def);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    auto const& nodes = def->getInstantiatedNodes();
    EXPECT_EQ(nodes.size(), 2u);
    EXPECT_EQ(nodes.count(first.get()), 1u);
    EXPECT_EQ(nodes.count(second.get()), 1u);
    EXPECT_FALSE(def->hasNoReference());
}

TEST_F(DmNodeTest, DestroyedNodeUnregistersFromDefinition) {
    auto def = makeThreePortDef();
    auto first = DmNode::createNode("n1", def);
    auto second = DmNode::createNode("n2", def);
    DmNode* const firstAddress = first.get();
    first.reset();
    auto const& nodes = def->getInstantiatedNodes();
    EXPECT_EQ(nodes.size(), 1u);
    EXPECT_EQ(nodes.count(firstAddress), 0u);
    EXPECT_EQ(nodes.count(second.get()), 1u);
    second.reset();
    EXPECT_TRUE(def->getInstantiatedNodes().empty());
    EXPECT_TRUE(def->hasNoReference());
}

TEST_F(DmNodeTest, PortsDieWithTheirNode) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    std::weak_ptr<DmPort> port = (*node)["a"];
    ASSERT_FALSE(port.expired());
    unsigned int const ports = count<DmPort>();
    node.reset();
    EXPECT_TRUE(port.expired());
    EXPECT_EQ(count<DmPort>(), ports - 3);
}

TEST_F(DmNodeTest, NewNodeHasNoConnections) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_TRUE(node->getConnections().empty());
    std::vector<std::shared_ptr<DmPort>> far;
    EXPECT_FALSE(node->connectedTo(*(*node)["a"], far));
    EXPECT_TRUE(far.empty());
    EXPECT_EQ(node->numConnections(*(*node)["out"]), 0u);
}

// ---------------------------------------------------------------------------
// The ports a node builds

TEST_F(DmNodeTest, PortsFollowDefinitionInOrderOnSharedDescriptions) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "out"}));
    for (auto const& entry : *node) {
        EXPECT_EQ(entry.second->getName(), entry.first);
        EXPECT_EQ(entry.second->getNode(), node.get());
        EXPECT_EQ(entry.second->getPortDescription(), descriptionOf(*def, entry.first));
    }
    EXPECT_TRUE((*node)["a"]->isInput());
    EXPECT_TRUE((*node)["out"]->isOutput());
}

TEST_F(DmNodeTest, BracketAndFindMissUnknownPort) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ((*node)["missing"], nullptr);
    EXPECT_EQ(node->find("missing"), node->end());
    ASSERT_NE(node->find("b"), node->end());
    EXPECT_EQ(node->find("b")->second, (*node)["b"]);
}

TEST_F(DmNodeTest, InvertedNodeShowsClonesWithDirectionsInverted) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("self", def, true);
    ASSERT_NE(node, nullptr);
    EXPECT_FALSE(node->isSelfNode());
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "out"}));

    auto const a = (*node)["a"]->getPortDescription();
    EXPECT_NE(a, descriptionOf(*def, "a"));
    EXPECT_EQ(a->getName(), "a");
    EXPECT_EQ(a->getDirection(), kDirectionOutput);
    EXPECT_EQ(a->getType().get(), DmLibrary::getIntType().get());
    EXPECT_EQ(a->getNodeDef(), def.get());
    EXPECT_TRUE((*node)["a"]->isOutput());

    auto const out = (*node)["out"]->getPortDescription();
    EXPECT_NE(out, descriptionOf(*def, "out"));
    EXPECT_EQ(out->getDirection(), kDirectionInput);
    EXPECT_EQ(out->getNodeDef(), def.get());

    // The definition's own descriptions keep their directions.
    EXPECT_EQ(descriptionOf(*def, "a")->getDirection(), kDirectionInput);
    EXPECT_EQ(descriptionOf(*def, "out")->getDirection(), kDirectionOutput);
}

TEST_F(DmNodeTest, NodeOnLoneOverloadWithoutPortsShowsItsSetInterface) {
    auto ns = makeNamespace("geometry");
    auto first = makeDef("op");
    first->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto second = makeDef("op");
    second->setScope(ns.get(), kAsOverload);
    ASSERT_NE(second->get_owner(), nullptr);
    ASSERT_EQ(second->get_owner(), first->get_owner());
    ASSERT_TRUE(second->getPortsInterface().empty());

    auto node = DmNode::createNode("n", second);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getNodeDef(), second.get());
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a"}));
    EXPECT_EQ((*node)["a"]->getPortDescription(), second->get_owner()->getPortsInterface()["a"]);
}

TEST_F(DmNodeTest, NodeOnOverloadSetShowsMergedInterface) {
    auto ns = makeNamespace("geometry");
    auto first = makeDef("op");
    first->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    first->addPortDescription(output("out", DmLibrary::getIntType()), kFailOnClash);
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto second = makeDef("op");
    second->addPortDescription(input("a", DmLibrary::getFloatType()), kFailOnClash);
    second->addPortDescription(output("out", DmLibrary::getIntType()), kFailOnClash);
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    std::shared_ptr<DmOverloadSet> set;
    ASSERT_TRUE(ns->findNodeDef("op", set));
    ASSERT_NE(set, nullptr);

    auto node = DmNode::createNode("n", set);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getNodeDef(), set.get());
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "out"}));
    EXPECT_EQ((*node)["a"]->getPortDescription(), set->getPortsInterface()["a"]);
    EXPECT_EQ((*node)["a"]->getPortDescription()->getType().get(), DmLibrary::getAutoType().get());
    EXPECT_EQ((*node)["out"]->getPortDescription()->getType().get(), DmLibrary::getIntType().get());
}

// ---------------------------------------------------------------------------
// addPort

TEST_F(DmNodeTest, AddPortRefusesTakenName) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const before = (*node)["a"];
    EXPECT_FALSE(node->addPort(input("a", DmLibrary::getFloatType()), false));
    EXPECT_EQ((*node)["a"], before);
    EXPECT_EQ(node->getPorts().size(), 3u);
}

TEST_F(DmNodeTest, AddPortAppendsPortOnGivenDescription) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto extra = input("extra", DmLibrary::getFloatType());
    EXPECT_TRUE(node->addPort(extra, false));
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "out", "extra"}));
    EXPECT_EQ((*node)["extra"]->getPortDescription(), extra);
    EXPECT_FALSE(def->getPortsInterface().hasPort("extra"));
}

TEST_F(DmNodeTest, AddPortWithInversionBuildsOnInvertedClone) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto extra = input("extra", DmLibrary::getFloatType());
    EXPECT_TRUE(node->addPort(extra, true));
    auto const clone = (*node)["extra"]->getPortDescription();
    EXPECT_NE(clone, extra);
    EXPECT_EQ(clone->getName(), "extra");
    EXPECT_EQ(clone->getDirection(), kDirectionOutput);
    EXPECT_EQ(clone->getType().get(), DmLibrary::getFloatType().get());
    EXPECT_EQ(extra->getDirection(), kDirectionInput);
}

TEST_F(DmNodeTest, AssociativeInputsCollapseIntoOneMultiInPort) {
    auto def = makeAssociativeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "out"}));

    auto const multiIn = node->getMultiInPort();
    ASSERT_NE(multiIn, nullptr);
    EXPECT_EQ(multiIn, (*node)["a"]);
    EXPECT_TRUE(multiIn->isMultiIn());
    EXPECT_TRUE(multiIn->isInput());

    auto const description = multiIn->getPortDescription();
    EXPECT_NE(description, descriptionOf(*def, "a"));
    EXPECT_EQ(description->getName(), "a");
    EXPECT_EQ(description->getPortKind(), kPortMultiIn);
    EXPECT_EQ(description->getDirection(), kDirectionInput);
    EXPECT_EQ(description->getType().get(), DmLibrary::getAutoType().get());
    EXPECT_FALSE(description->isUnknown());

    EXPECT_EQ((*node)["out"]->getPortDescription(), descriptionOf(*def, "out"));
}

TEST_F(DmNodeTest, SecondAssociativeInputYieldsNoPort) {
    auto def = makeAssociativeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const multiIn = node->getMultiInPort();
    ASSERT_NE(multiIn, nullptr);

    EXPECT_FALSE(node->addPort(descriptionOf(*def, "b"), false));
    EXPECT_EQ(node->getMultiInPort(), multiIn);
    EXPECT_EQ((*node)["b"], nullptr);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "out"}));
}

TEST_F(DmNodeTest, AssociativeUnknownInputMakesUnknownMultiInDescription) {
    auto def = makeDef("add");
    def->setAssociativity(DmNodeDef::kLeftToRight);
    auto a = DmUnknownPortDescription::newPortDescription("a", DmLibrary::getIntType(), kDirectionInput,
                                                          kNameVerbatim);
    ASSERT_TRUE(def->addPortDescription(a, kFailOnClash));
    ASSERT_EQ(a->setAssociative(true), DmStatus::kSuccess);

    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const multiIn = node->getMultiInPort();
    ASSERT_NE(multiIn, nullptr);
    EXPECT_TRUE(multiIn->getPortDescription()->isUnknown());
    EXPECT_EQ(multiIn->getPortDescription()->getPortKind(), kPortMultiIn);
    EXPECT_EQ(multiIn->getPortDescription()->getType().get(), DmLibrary::getAutoType().get());
}

TEST_F(DmNodeTest, PlainInputOfAssociativeDefinitionStaysPlainPort) {
    auto def = makeAssociativeDef();
    auto c = input("c", DmLibrary::getIntType());
    ASSERT_TRUE(def->addPortDescription(c, kFailOnClash));
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "out", "c"}));
    EXPECT_EQ((*node)["c"]->getPortDescription(), c);
    EXPECT_EQ(node->getMultiInPort(), (*node)["a"]);
}

TEST_F(DmNodeTest, AssociativeOutputStaysPlainPort) {
    auto def = makeDef("add");
    def->setAssociativity(DmNodeDef::kLeftToRight);
    auto out = output("out", DmLibrary::getIntType());
    ASSERT_TRUE(def->addPortDescription(out, kFailOnClash));
    ASSERT_EQ(out->setAssociative(true), DmStatus::kSuccess);
    ASSERT_EQ(out->getPortKind(), kPortAssociative);

    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getMultiInPort(), nullptr);
    EXPECT_EQ((*node)["out"]->getPortDescription(), out);
}

TEST_F(DmNodeTest, AssociativeInputOfPlainDefinitionStaysPlainPort) {
    auto a = input("a", DmLibrary::getIntType());
    ASSERT_EQ(a->setAssociative(true), DmStatus::kSuccess);
    ASSERT_EQ(a->getPortKind(), kPortAssociative);
    auto def = makeDef();
    ASSERT_TRUE(def->addPortDescription(a, kFailOnClash));
    ASSERT_EQ(def->associativity(), DmNodeDef::kNotAssociative);

    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getMultiInPort(), nullptr);
    EXPECT_EQ((*node)["a"]->getPortDescription(), a);
    EXPECT_FALSE((*node)["a"]->isMultiIn());
}

// ---------------------------------------------------------------------------
// removePort, renamePort, reorderPort, replacePort called on the node

TEST_F(DmNodeTest, RemovePortRefusesUnknownName) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_FALSE(node->removePort("missing"));
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "out"}));
}

TEST_F(DmNodeTest, RemovePortDropsPortFromNodeOnly) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_TRUE(node->removePort("b"));
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "out"}));
    EXPECT_EQ(portNames(def->getPortsInterface()), (Names{"a", "b", "out"}));
    EXPECT_EQ(descriptionOf(*def, "b")->getNodeDef(), def.get());
}

TEST_F(DmNodeTest, RenamePortRefusesUnknownName) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_FALSE(node->renamePort("missing", "z"));
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "out"}));
}

TEST_F(DmNodeTest, RenamePortRenamesPortInPlace) {
    auto node = DmNode::createNode("n", nullptr);
    ASSERT_NE(node, nullptr);
    auto b = input("b", DmLibrary::getIntType());
    ASSERT_TRUE(node->addPort(input("a", DmLibrary::getIntType()), false));
    ASSERT_TRUE(node->addPort(b, false));
    ASSERT_TRUE(node->addPort(output("out", DmLibrary::getIntType()), false));
    auto const port = (*node)["b"];

    EXPECT_TRUE(node->renamePort("b", "z"));
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "z", "out"}));
    EXPECT_EQ((*node)["z"], port);
    EXPECT_EQ(port->getName(), "z");
    EXPECT_EQ(b->getName(), "z");
    EXPECT_EQ((*node)["b"], nullptr);
}

TEST_F(DmNodeTest, RenamePortOfInvertedCloneLeavesDefinitionAlone) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("self", def, true);
    ASSERT_NE(node, nullptr);
    EXPECT_TRUE(node->renamePort("b", "z"));
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "z", "out"}));
    EXPECT_EQ((*node)["z"]->getPortDescription()->getName(), "z");
    EXPECT_EQ(portNames(def->getPortsInterface()), (Names{"a", "b", "out"}));
    EXPECT_EQ(descriptionOf(*def, "b")->getName(), "b");
}

TEST_F(DmNodeTest, ReorderPortMovesEntryOnNodeOnly) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->reorderPort(0, "out"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"out", "a", "b"}));
    EXPECT_EQ(node->reorderPort(node->getPorts().size(), "out"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "out"}));
    EXPECT_EQ(portNames(def->getPortsInterface()), (Names{"a", "b", "out"}));
}

TEST_F(DmNodeTest, ReorderPortToItsOwnPlaceDoesNothing) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->reorderPort(0, "a"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "out"}));
}

TEST_F(DmNodeTest, ReorderPortRefusesUnknownName) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->reorderPort(0, "missing"), DmStatus::kFailure);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "out"}));
}

TEST_F(DmNodeTest, ReorderPortPastNodesEndMovesEntryToEnd) {
    // A node may have fewer ports than its definition (associative inputs
    // collapse), so a position of the definition may lie past the node's end.
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->reorderPort(4, "a"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"b", "out", "a"}));
}

TEST_F(DmNodeTest, ReplacePortRefusesUnknownName) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_FALSE(node->replacePort(input("missing", DmLibrary::getIntType()), false));
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "out"}));
}

TEST_F(DmNodeTest, ReplacePortSwapsDescriptionAndKeepsPort) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["b"];
    auto replacement = input("b", DmLibrary::getFloatType());
    EXPECT_TRUE(node->replacePort(replacement, false));
    EXPECT_EQ((*node)["b"], port);
    EXPECT_EQ(port->getPortDescription(), replacement);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "out"}));
    EXPECT_EQ(descriptionOf(*def, "b")->getType().get(), DmLibrary::getIntType().get());
}

TEST_F(DmNodeTest, ReplacePortWithInversionSwapsInInvertedCloneWithMetadata) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("self", def, true);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    auto replacement = input("a", DmLibrary::getFloatType());
    ASSERT_EQ(replacement->getMetadata()->add(std::make_shared<DmMetadataItem>("note", "kept")),
              DmStatus::kSuccess);

    EXPECT_TRUE(node->replacePort(replacement, true));
    EXPECT_EQ((*node)["a"], port);
    auto const clone = port->getPortDescription();
    EXPECT_NE(clone, replacement);
    EXPECT_EQ(clone->getName(), "a");
    EXPECT_EQ(clone->getDirection(), kDirectionOutput);
    EXPECT_EQ(clone->getType().get(), DmLibrary::getFloatType().get());
    EXPECT_EQ(clone->getNodeDef(), def.get());
    ASSERT_NE(clone->getMetadata(), nullptr);
    auto const items = clone->getMetadata()->find("note");
    ASSERT_EQ(items.size(), 1u);
    std::string text;
    EXPECT_EQ(items.front()->getStringValue(text), DmStatus::kSuccess);
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(replacement->getDirection(), kDirectionInput);
}

TEST_F(DmNodeTest, ReplacePortWithInversionCarriesLinkOverToNewClone) {
    auto def = makeDef("loop");
    def->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    def->addPortDescription(output("b", DmLibrary::getIntType()), kFailOnClash);
    auto node = DmNode::createNode("self", def, true);
    ASSERT_NE(node, nullptr);
    auto const oldClone = (*node)["a"]->getPortDescription();
    auto const partner = (*node)["b"]->getPortDescription();
    ASSERT_TRUE(oldClone->link(*partner, kIterationFeedback));

    EXPECT_TRUE(node->replacePort(input("a", DmLibrary::getFloatType()), true));
    auto const newClone = (*node)["a"]->getPortDescription();
    ASSERT_NE(newClone, oldClone);
    EXPECT_EQ(newClone->getLinkedPort(), partner.get());
    EXPECT_EQ(partner->getLinkedPort(), newClone.get());
    EXPECT_EQ(newClone->getIterationAttribute(), kIterationFeedback);
    EXPECT_EQ(partner->getIterationAttribute(), kIterationFeedback);
    EXPECT_FALSE(oldClone->isLinked());
    EXPECT_EQ(oldClone->getIterationAttribute(), kIterationNone);
}

// ---------------------------------------------------------------------------
// replaceNodeDef

TEST_F(DmNodeTest, ReplaceNodeDefRefusesNullDefinition) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->replaceNodeDef(nullptr), DmStatus::kInvalidArgument);
    EXPECT_EQ(node->getNodeDef(), def.get());
}

TEST_F(DmNodeTest, ReplaceNodeDefRefusesNodeWithoutDefinition) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", nullptr);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->replaceNodeDef(def), DmStatus::kFailure);
    EXPECT_EQ(node->getNodeDef(), nullptr);
    EXPECT_TRUE(def->getInstantiatedNodes().empty());
}

TEST_F(DmNodeTest, ReplaceNodeDefWithSameDefinitionDoesNothing) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    EXPECT_EQ(node->replaceNodeDef(def), DmStatus::kSuccess);
    EXPECT_EQ(node->getNodeDef(), def.get());
    EXPECT_EQ(def->getInstantiatedNodes().size(), 1u);
    EXPECT_EQ((*node)["a"], port);
    EXPECT_EQ(port->getPortDescription(), descriptionOf(*def, "a"));
}

TEST_F(DmNodeTest, ReplaceNodeDefRefusesNodeOnValueNodeDefinition) {
    auto valueDef = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(valueDef, nullptr);
    auto node = DmNode::createNode("constant", valueDef);
    ASSERT_NE(node, nullptr);
    // Same port names and directions, so only the kind of the current
    // definition stands in the way.
    auto other = makeDef("constant");
    other->addPortDescription(input(DmValueNodeDef::kValuePortName, DmLibrary::getIntType()), kFailOnClash);
    other->addPortDescription(output(DmValueNodeDef::kOutputPortName, DmLibrary::getIntType()), kFailOnClash);

    EXPECT_EQ(node->replaceNodeDef(other), DmStatus::kFailure);
    EXPECT_EQ(node->getNodeDef(), valueDef.get());
    EXPECT_TRUE(other->getInstantiatedNodes().empty());
}

TEST_F(DmNodeTest, ReplaceNodeDefWithDifferentPortsIsInvalidAndLeavesNodeAsItWas) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto other = makeDef("other");
    other->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    other->addPortDescription(input("c", DmLibrary::getIntType()), kFailOnClash);
    other->addPortDescription(output("out", DmLibrary::getIntType()), kFailOnClash);

    EXPECT_EQ(node->replaceNodeDef(other), DmStatus::kInvalidArgument);
    EXPECT_EQ(node->getNodeDef(), def.get());
    EXPECT_EQ(def->getInstantiatedNodes().count(node.get()), 1u);
    EXPECT_TRUE(other->getInstantiatedNodes().empty());
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "b", "out"}));
    for (auto const& entry : *node) {
        EXPECT_EQ(entry.second->getPortDescription(), descriptionOf(*def, entry.first));
    }
}

TEST_F(DmNodeTest, ReplaceNodeDefRefusesPortOfOtherDirection) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto other = makeDef("other");
    other->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    other->addPortDescription(output("b", DmLibrary::getIntType()), kFailOnClash);
    other->addPortDescription(output("out", DmLibrary::getIntType()), kFailOnClash);

    EXPECT_EQ(node->replaceNodeDef(other), DmStatus::kInvalidArgument);
    EXPECT_EQ(node->getNodeDef(), def.get());
}

TEST_F(DmNodeTest, ReplaceNodeDefRefusesOtherPortCount) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto other = makeThreePortDef("other");
    other->addPortDescription(input("d", DmLibrary::getIntType()), kFailOnClash);

    EXPECT_EQ(node->replaceNodeDef(other), DmStatus::kInvalidArgument);
    EXPECT_EQ(node->getNodeDef(), def.get());
}

TEST_F(DmNodeTest, ReplaceNodeDefMovesNodeToDefinitionOfEqualPorts) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    // Types play no part in the comparison of the interfaces.
    auto other = makeDef("other");
    other->addPortDescription(input("a", DmLibrary::getFloatType()), kFailOnClash);
    other->addPortDescription(input("b", DmLibrary::getFloatType()), kFailOnClash);
    other->addPortDescription(output("out", DmLibrary::getFloatType()), kFailOnClash);

    EXPECT_EQ(node->replaceNodeDef(other), DmStatus::kSuccess);
    EXPECT_EQ(node->getNodeDef(), other.get());
    EXPECT_TRUE(def->getInstantiatedNodes().empty());
    EXPECT_EQ(other->getInstantiatedNodes().count(node.get()), 1u);
    EXPECT_EQ((*node)["a"], port);
    for (auto const& entry : *node) {
        EXPECT_EQ(entry.second->getPortDescription(), descriptionOf(*other, entry.first));
        EXPECT_EQ(entry.second->getPortDescription()->getType().get(), DmLibrary::getFloatType().get());
    }
}

TEST_F(DmNodeTest, ReplaceNodeDefKeepsMultiInPortOfAssociativeNode) {
    auto def = makeAssociativeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const multiIn = node->getMultiInPort();
    ASSERT_NE(multiIn, nullptr);
    auto const multiInDescription = multiIn->getPortDescription();
    auto other = makeAssociativeDef();

    EXPECT_EQ(node->replaceNodeDef(other), DmStatus::kSuccess);
    EXPECT_EQ(node->getNodeDef(), other.get());
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "out"}));
    EXPECT_EQ(node->getMultiInPort(), multiIn);
    EXPECT_EQ(multiIn->getPortDescription(), multiInDescription);
    EXPECT_EQ((*node)["out"]->getPortDescription(), descriptionOf(*other, "out"));
}

TEST_F(DmNodeTest, ReplaceNodeDefKeepsNewDefinitionAliveAndReleasesOld) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto other = makeThreePortDef("other");
    ASSERT_EQ(node->replaceNodeDef(other), DmStatus::kSuccess);

    unsigned int const defs = count<DmNodeDef>();
    def.reset();
    EXPECT_EQ(count<DmNodeDef>(), defs - 1);
    other.reset();
    EXPECT_EQ(count<DmNodeDef>(), defs - 1);
    EXPECT_EQ(node->getNodeDef()->getName(), "other");
}

// ---------------------------------------------------------------------------
// Names

TEST_F(DmNodeTest, SetNameRenamesNodeWithoutOwner) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_TRUE(node->setName("m", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(node->getName(), "m");
    EXPECT_EQ(node->getMapEntryKey(), "m");
}

TEST_F(DmNodeTest, SetNameRefusesUnresolvableName) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_FALSE(node->setName("", kFailOnClash, kNameVerbatim));
    EXPECT_FALSE(node->setName("my node", kFailOnClash, kNameMustBeLegal));
    EXPECT_EQ(node->getName(), "n");
}

TEST_F(DmNodeTest, SetNameLegalizesName) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_TRUE(node->setName("my node", kFailOnClash, kNameLegalize));
    EXPECT_EQ(node->getName(), "my_node");
}

// ---------------------------------------------------------------------------
// Values of unconnected ports

TEST_F(DmNodeTest, FindUnconnectedPortValueGivesDefinitionsOverride) {
    auto def = makeThreePortDef();
    auto const override = intValue(5);
    ASSERT_TRUE(descriptionOf(*def, "a")->setDefaultValueOverride(override));
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->findUnconnectedPortValue("a"), override);
}

TEST_F(DmNodeTest, FindUnconnectedPortValueIsNullWithoutOverride) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->findUnconnectedPortValue("b"), nullptr);
    EXPECT_EQ(node->findUnconnectedPortValue("missing"), nullptr);
}

TEST_F(DmNodeTest, FindUnconnectedPortValueWithoutDefinitionGivesDefaultOfType) {
    auto node = DmNode::createNode("n", nullptr);
    ASSERT_NE(node, nullptr);
    ASSERT_TRUE(node->addPort(input("a", DmLibrary::getIntType()), false));
    auto const value = node->findUnconnectedPortValue("a");
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getType().get(), DmLibrary::getIntType().get());
    auto const typed = std::dynamic_pointer_cast<DmIntValue>(value);
    ASSERT_NE(typed, nullptr);
    EXPECT_EQ(typed->getData(), 0);
}

// ---------------------------------------------------------------------------
// Entries of the multi-in port

TEST_F(DmNodeTest, AddMultiInPortEntryAddsEntryToMultiInPort) {
    auto def = makeAssociativeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> entry;
    EXPECT_EQ(node->addMultiInPortEntry("in", entry), DmStatus::kSuccess);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->getName(), "in");
    EXPECT_EQ(entry->getParent(), node->getMultiInPort().get());
    EXPECT_TRUE(entry->isInput());
    EXPECT_EQ(portNames(node->getMultiInPort()->getMembers()), (Names{"in"}));
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "out"}));
}

TEST_F(DmNodeTest, AddMultiInPortEntryFailsOnPlainDefinition) {
    auto def = makeDef();
    ASSERT_TRUE(def->addPortDescription(DmPortDescription::newMultiInPortDescription("m", kNameVerbatim),
                                        kFailOnClash));
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    ASSERT_TRUE((*node)["m"]->isMultiIn());
    std::shared_ptr<DmPort> entry;
    EXPECT_EQ(node->addMultiInPortEntry("in", entry), DmStatus::kFailure);
    EXPECT_EQ(entry, nullptr);
    EXPECT_FALSE((*node)["m"]->hasMembers());
}

TEST_F(DmNodeTest, AddMultiInPortEntryFailsWithoutDefinition) {
    auto node = DmNode::createNode("n", nullptr);
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> entry;
    EXPECT_EQ(node->addMultiInPortEntry("in", entry), DmStatus::kFailure);
    EXPECT_EQ(entry, nullptr);
}

TEST_F(DmNodeTest, RemoveMultiInPortEntryRemovesEntry) {
    auto def = makeAssociativeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> first;
    std::shared_ptr<DmPort> second;
    ASSERT_EQ(node->addMultiInPortEntry("in", first), DmStatus::kSuccess);
    ASSERT_EQ(node->addMultiInPortEntry("other", second), DmStatus::kSuccess);
    EXPECT_EQ(node->removeMultiInPortEntry(first), DmStatus::kSuccess);
    EXPECT_EQ(portNames(node->getMultiInPort()->getMembers()), (Names{"other"}));
    EXPECT_EQ(node->removeMultiInPortEntry(first), DmStatus::kFailure);
}

TEST_F(DmNodeTest, RemoveMultiInPortEntryFailsOnPlainDefinition) {
    auto def = makeDef();
    ASSERT_TRUE(def->addPortDescription(DmPortDescription::newMultiInPortDescription("m", kNameVerbatim),
                                        kFailOnClash));
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ((*node)["m"]->addMultiInPortEntry("in", entry), DmStatus::kSuccess);
    EXPECT_EQ(node->removeMultiInPortEntry(entry), DmStatus::kFailure);
    EXPECT_EQ(portNames((*node)["m"]->getMembers()), (Names{"in"}));
}

// ---------------------------------------------------------------------------
// Lifetime of the definition

TEST_F(DmNodeTest, NodeKeepsDefinitionAliveAfterLastOuterReference) {
    auto def = makeThreePortDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    unsigned int const defs = count<DmNodeDef>();
    def.reset();
    EXPECT_EQ(count<DmNodeDef>(), defs);
    ASSERT_NE(node->getNodeDef(), nullptr);
    EXPECT_EQ(node->getNodeDef()->getName(), "op");
    EXPECT_EQ(node->getNodeDef()->getInstantiatedNodes().count(node.get()), 1u);
    EXPECT_EQ((*node)["a"]->getPortDescription(), node->getNodeDef()->getPortsInterface()["a"]);
    node.reset();
    EXPECT_EQ(count<DmNodeDef>(), defs - 1);
}

TEST_F(DmNodeTest, DefinitionOutlivesItsScopeEntryWhileNodesUseIt) {
    auto ns = makeNamespace("geometry");
    auto def = DmUnknownNodeDef::newUnknownNodeDef("op");
    ASSERT_NE(def, nullptr);
    ASSERT_TRUE(def->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash));
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_TRUE(ns->hasNodeDef("op"));
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);

    unsigned int const placeholders = count<DmUnknownNodeDef>();
    EXPECT_EQ(def->setScope(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->getScope(), nullptr);
    DmNodeDef* const address = def.get();
    def.reset();

    EXPECT_EQ(count<DmUnknownNodeDef>(), placeholders);
    EXPECT_EQ(node->getNodeDef(), address);
    EXPECT_EQ(node->getNodeDef()->getName(), "op");
    EXPECT_TRUE(node->getNodeDef()->isUnknown());
    EXPECT_EQ(node->getNodeDef()->getInstantiatedNodes().count(node.get()), 1u);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a"}));
    EXPECT_EQ((*node)["a"]->getPortDescription()->getNodeDef(), address);
    node.reset();
    EXPECT_EQ(count<DmUnknownNodeDef>(), placeholders - 1);
}

} // namespace
