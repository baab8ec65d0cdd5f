// Ports of nodes: identity and names, default values and the value an
// unconnected port takes, struct members, the entries of multi-in and fan-in
// inputs, and the overrides seen through overload sets.
#include "graph/ModelTestSupport.h"

#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmValueNodeDef.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmStructValue.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kesto;
using KestoTest::fullName;
using KestoTest::input;
using KestoTest::intValue;
using KestoTest::makeAssociativeDef;
using KestoTest::makeNamespace;
using KestoTest::makeStruct;
using KestoTest::output;
using KestoTest::portNames;

using Names = std::vector<std::string>;

class DmPortTest : public KestoTest::ModelTest {};

std::shared_ptr<DmNativeNodeDef> makeDef(std::string const& name = "op") {
    return DmNativeNodeDef::newNativeNodeDef(name, DmNativeNodeDef::kPass);
}

/// A definition with the one port `port`.
std::shared_ptr<DmNativeNodeDef> defWith(std::shared_ptr<DmPortDescription> const& port,
                                         std::string const& name = "op") {
    auto def = makeDef(name);
    EXPECT_TRUE(def->addPortDescription(port, kFailOnClash));
    return def;
}

/// A node "n" and the definition it is made on.
struct NodeAndDef {
    std::shared_ptr<DmNativeNodeDef> def;
    std::shared_ptr<DmNode> node;
};

/// A node "n" on a definition with the one port `port`.
NodeAndDef nodeWith(std::shared_ptr<DmPortDescription> const& port) {
    auto def = defWith(port);
    auto node = DmNode::createNode("n", def);
    return {std::move(def), std::move(node)};
}

/// The auto multi-in port "m".
std::shared_ptr<DmPortDescription> autoMultiIn() {
    return DmPortDescription::newMultiInPortDescription("m", kNameVerbatim);
}

std::shared_ptr<DmFloatValue> floatValue(float data) {
    auto value = std::make_shared<DmFloatValue>();
    value->setData(data);
    return value;
}

int intData(std::shared_ptr<DmBaseValue> const& value) {
    auto const typed = std::dynamic_pointer_cast<DmIntValue>(value);
    EXPECT_NE(typed, nullptr);
    return typed ? typed->getData() : -1;
}

/// A struct "Point" with the members x (int) and y (float).
std::shared_ptr<DmStructType> makePoint() {
    auto point = makeStruct("Point", "x");
    point->addMember("y", DmLibrary::getFloatType());
    return point;
}

std::shared_ptr<DmBaseType const> arrayOfInt() {
    return std::make_shared<DmArrayType>(DmLibrary::getIntType());
}

// ---------------------------------------------------------------------------
// Identity

TEST_F(DmPortTest, TakesNameAndKeyOfItsDescription) {
    auto a = input("a", DmLibrary::getIntType());
    auto [def, node] = nodeWith(a);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    ASSERT_NE(port, nullptr);
    EXPECT_EQ(port->getName(), "a");
    EXPECT_EQ(port->getMapEntryKey(), "a");
    EXPECT_EQ(port->getNode(), node.get());
    EXPECT_EQ(port->getParent(), nullptr);
    EXPECT_FALSE(port->isMember());
    EXPECT_EQ(port->getPortDescription(), a);
    EXPECT_EQ(port->getConstPortDescription(), a);
}

TEST_F(DmPortTest, NameFollowsItsDescription) {
    auto node = DmNode::createNode("n", nullptr);
    ASSERT_NE(node, nullptr);
    auto a = input("a", DmLibrary::getIntType());
    ASSERT_TRUE(node->addPort(a, false));
    auto const port = (*node)["a"];
    ASSERT_TRUE(a->setName("z", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(port->getName(), "z");
    EXPECT_EQ(port->getMapEntryKey(), "z");
}

TEST_F(DmPortTest, FullNameIsNodeNameDotPortName) {
    auto [def, node] = nodeWith(input("a", DmLibrary::getIntType()));
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(fullName(*(*node)["a"]), "n.a");
}

TEST_F(DmPortTest, MemberFullNameFollowsPathBelowNode) {
    auto point = makePoint();
    auto outer = DmLibrary::createStructType("Outer");
    outer->addMember("inner", point);
    auto def = makeDef();
    def->addPortDescription(input("p", point), kFailOnClash);
    def->addPortDescription(input("o", outer), kFailOnClash);
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);

    std::shared_ptr<DmPort> member;
    ASSERT_TRUE((*node)["p"]->getMember("x", member));
    EXPECT_EQ(fullName(*member), "n.p.x");
    ASSERT_TRUE((*node)["o"]->getMember("inner.x", member));
    EXPECT_EQ(fullName(*member), "n.o.inner.x");
}

TEST_F(DmPortTest, DirectionQueriesAskItsDescription) {
    auto a = input("a", DmLibrary::getIntType());
    auto out = output("out", DmLibrary::getIntType());
    auto def = makeDef();
    def->addPortDescription(a, kFailOnClash);
    def->addPortDescription(out, kFailOnClash);
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_TRUE((*node)["a"]->isInput());
    EXPECT_FALSE((*node)["a"]->isOutput());
    EXPECT_TRUE((*node)["out"]->isOutput());
    EXPECT_FALSE((*node)["out"]->isInput());

    ASSERT_TRUE(a->setDirection(kDirectionOutput));
    EXPECT_TRUE((*node)["a"]->isOutput());
    EXPECT_FALSE((*node)["a"]->isInput());
}

TEST_F(DmPortTest, IsMultiInFollowsKindOfItsDescription) {
    auto def = makeDef();
    def->addPortDescription(autoMultiIn(), kFailOnClash);
    def->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_TRUE((*node)["m"]->isMultiIn());
    EXPECT_FALSE((*node)["a"]->isMultiIn());
}

TEST_F(DmPortTest, NewPortBuildsPortForNodeWithoutEnteringIt) {
    auto [def, node] = nodeWith(input("a", DmLibrary::getIntType()));
    ASSERT_NE(node, nullptr);
    auto extra = input("extra", DmLibrary::getIntType());
    auto const port = DmPort::newPort(extra, node.get());
    ASSERT_NE(port, nullptr);
    EXPECT_EQ(port->getNode(), node.get());
    EXPECT_EQ(port->getPortDescription(), extra);
    EXPECT_FALSE(port->isMember());
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a"}));
}

TEST_F(DmPortTest, NewPortWithParentIsMember) {
    auto [def, node] = nodeWith(autoMultiIn());
    ASSERT_NE(node, nullptr);
    auto const parent = (*node)["m"];
    auto const port = DmPort::newPort(input("e", DmLibrary::getIntType()), node.get(), parent.get());
    ASSERT_NE(port, nullptr);
    EXPECT_TRUE(port->isMember());
    EXPECT_EQ(port->getParent(), parent.get());
}

TEST_F(DmPortTest, SetPortDescriptionSwapsDescriptionOfSameName) {
    auto [def, node] = nodeWith(input("a", DmLibrary::getIntType()));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    auto replacement = input("a", DmLibrary::getFloatType());
    EXPECT_TRUE(port->setPortDescription(replacement));
    EXPECT_EQ(port->getPortDescription(), replacement);
}

TEST_F(DmPortTest, SetPortDescriptionRefusesDescriptionOfOtherName) {
    auto a = input("a", DmLibrary::getIntType());
    auto [def, node] = nodeWith(a);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    EXPECT_FALSE(port->setPortDescription(input("b", DmLibrary::getIntType())));
    EXPECT_EQ(port->getPortDescription(), a);
    EXPECT_EQ(port->getName(), "a");
}

// ---------------------------------------------------------------------------
// Default values

TEST_F(DmPortTest, NewPortHasImplicitDefaultValueOfItsType) {
    auto [def, node] = nodeWith(input("a", DmLibrary::getIntType()));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    ASSERT_NE(port->getDefaultValue(), nullptr);
    EXPECT_EQ(port->getDefaultValue()->getType().get(), DmLibrary::getIntType().get());
    EXPECT_TRUE(port->getDefaultValue()->isImplicit());
    EXPECT_FALSE(port->hasImmediateValue());
    EXPECT_EQ(intData(port->getDefaultValue()), 0);
}

TEST_F(DmPortTest, ImplicitDefaultValueIsMadeWhenFirstRead) {
    auto [def, node] = nodeWith(input("a", DmLibrary::getIntType()));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    unsigned int const before = Kesto::DmInstanceCounter<Kesto::DmBaseValue>::getInstanceCount();
    EXPECT_FALSE(port->hasImmediateValue());
    EXPECT_EQ(Kesto::DmInstanceCounter<Kesto::DmBaseValue>::getInstanceCount(), before);
    std::shared_ptr<DmBaseValue> const first = port->getDefaultValue();
    EXPECT_EQ(Kesto::DmInstanceCounter<Kesto::DmBaseValue>::getInstanceCount(), before + 1);
    EXPECT_EQ(port->getDefaultValue(), first);
}

TEST_F(DmPortTest, ValueSetBeforeTheDefaultWasReadIsKept) {
    auto [def, node] = nodeWith(input("a", DmLibrary::getIntType()));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    auto const value = DmLibrary::getIntType()->createValue();
    ASSERT_TRUE(port->setDefaultValue(value));
    EXPECT_EQ(port->getDefaultValue(), value);
}

TEST_F(DmPortTest, PortWithoutTypeHasNoDefaultValue) {
    auto node = DmNode::createNode("n", nullptr);
    ASSERT_NE(node, nullptr);
    ASSERT_TRUE(node->addPort(input("a", nullptr), false));
    auto const port = (*node)["a"];
    ASSERT_NE(port, nullptr);
    EXPECT_EQ(port->getDefaultValue(), nullptr);
    EXPECT_FALSE(port->hasMembers());
}

TEST_F(DmPortTest, InitializeRebuildsDefaultValueFromDescriptionType) {
    auto a = input("a", DmLibrary::getIntType());
    auto [def, node] = nodeWith(a);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    ASSERT_TRUE(a->setType(DmLibrary::getFloatType()));
    port->initialize();
    ASSERT_NE(port->getDefaultValue(), nullptr);
    EXPECT_EQ(port->getDefaultValue()->getType().get(), DmLibrary::getFloatType().get());
}

TEST_F(DmPortTest, SetDefaultValueOfSameTypeStoresIt) {
    auto a = input("a", DmLibrary::getIntType());
    auto [def, node] = nodeWith(a);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    auto const value = intValue(7);
    EXPECT_TRUE(port->setDefaultValue(value));
    EXPECT_EQ(port->getDefaultValue(), value);
    EXPECT_TRUE(port->hasImmediateValue());
    EXPECT_EQ(a->getType().get(), DmLibrary::getIntType().get());
}

TEST_F(DmPortTest, SetDefaultValueOfOtherTypeOnFreePortChangesTypeNodeSees) {
    auto a = input("a", DmLibrary::getIntType());
    auto [def, node] = nodeWith(a);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    auto const value = floatValue(2.5f);
    EXPECT_TRUE(port->setDefaultValue(value));
    EXPECT_EQ(port->getPortDescription()->getType().get(), DmLibrary::getFloatType().get());
    EXPECT_EQ(a->getType().get(), DmLibrary::getFloatType().get());
    EXPECT_EQ(port->getDefaultValue(), value);
    EXPECT_TRUE(port->hasImmediateValue());
}

TEST_F(DmPortTest, SetDefaultValueOnMemberRefusesOtherType) {
    auto [def, node] = nodeWith(input("p", makePoint()));
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> x;
    ASSERT_TRUE((*node)["p"]->getMember("x", x));
    auto const before = x->getDefaultValue();
    EXPECT_FALSE(x->setDefaultValue(floatValue(1.0f)));
    EXPECT_EQ(x->getDefaultValue(), before);
    EXPECT_EQ(x->getPortDescription()->getType().get(), DmLibrary::getIntType().get());
}

TEST_F(DmPortTest, SetDefaultValueOnMemberWritesParentStructValue) {
    auto [def, node] = nodeWith(input("p", makePoint()));
    ASSERT_NE(node, nullptr);
    auto const parent = (*node)["p"];
    std::shared_ptr<DmPort> x;
    ASSERT_TRUE(parent->getMember("x", x));
    EXPECT_TRUE(x->setDefaultValue(intValue(7)));
    EXPECT_EQ(intData(x->getDefaultValue()), 7);

    auto const structValue = std::dynamic_pointer_cast<DmStructValue>(parent->getDefaultValue());
    ASSERT_NE(structValue, nullptr);
    std::shared_ptr<DmBaseValue> member;
    ASSERT_TRUE(structValue->getMember("x", member));
    EXPECT_EQ(intData(member), 7);
}

TEST_F(DmPortTest, SetDefaultValueOnStructPortRewritesMembers) {
    auto point = makePoint();
    auto [def, node] = nodeWith(input("p", point));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["p"];
    auto const value = std::dynamic_pointer_cast<DmStructValue>(point->createDefaultValue());
    ASSERT_NE(value, nullptr);
    ASSERT_TRUE(value->setMember("x", intValue(9)));

    EXPECT_TRUE(port->setDefaultValue(value));
    EXPECT_EQ(port->getDefaultValue(), value);
    std::shared_ptr<DmPort> x;
    ASSERT_TRUE(port->getMember("x", x));
    EXPECT_EQ(intData(x->getDefaultValue()), 9);
}

TEST_F(DmPortTest, SetDefaultValueOnValueNodePortRefusesOtherType) {
    auto valueDef = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(valueDef, nullptr);
    auto node = DmNode::createNode("constant", valueDef);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)[DmValueNodeDef::kValuePortName];
    ASSERT_NE(port, nullptr);
    EXPECT_FALSE(port->setDefaultValue(floatValue(1.0f)));
    EXPECT_EQ(port->getPortDescription()->getType().get(), DmLibrary::getIntType().get());

    auto const value = intValue(3);
    EXPECT_TRUE(port->setDefaultValue(value));
    EXPECT_EQ(port->getDefaultValue(), value);
}

// ---------------------------------------------------------------------------
// Struct members

TEST_F(DmPortTest, StructPortBuildsMemberPortsInOrder) {
    auto [def, node] = nodeWith(input("p", makePoint()));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["p"];
    EXPECT_TRUE(port->hasMembers());
    EXPECT_EQ(portNames(port->getMembers()), (Names{"x", "y"}));

    auto const structValue = std::dynamic_pointer_cast<DmStructValue>(port->getDefaultValue());
    ASSERT_NE(structValue, nullptr);
    for (auto const& entry : port->getMembers()) {
        auto const& member = entry.second;
        EXPECT_EQ(member->getName(), entry.first);
        EXPECT_TRUE(member->isMember());
        EXPECT_EQ(member->getParent(), port.get());
        EXPECT_EQ(member->getNode(), node.get());
        EXPECT_TRUE(member->isInput());
        EXPECT_TRUE(member->getPortDescription()->isStructMember());
        std::shared_ptr<DmBaseValue> memberValue;
        ASSERT_TRUE(structValue->getMember(entry.first, memberValue));
        EXPECT_EQ(member->getDefaultValue(), memberValue);
    }
    EXPECT_EQ(port->getMembers().at("x")->getPortDescription()->getType().get(),
              DmLibrary::getIntType().get());
    EXPECT_EQ(port->getMembers().at("y")->getPortDescription()->getType().get(),
              DmLibrary::getFloatType().get());
}

TEST_F(DmPortTest, NestedStructMembersAreBuiltRecursively) {
    auto outer = DmLibrary::createStructType("Outer");
    outer->addMember("inner", makePoint());
    outer->addMember("count", DmLibrary::getIntType());
    auto [def, node] = nodeWith(input("o", outer));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["o"];
    EXPECT_EQ(portNames(port->getMembers()), (Names{"inner", "count"}));

    std::shared_ptr<DmPort> inner;
    ASSERT_TRUE(port->getMember("inner", inner));
    EXPECT_EQ(portNames(inner->getMembers()), (Names{"x", "y"}));
    std::shared_ptr<DmPort> x;
    ASSERT_TRUE(port->getMember("inner.x", x));
    EXPECT_EQ(x->getParent(), inner.get());
    EXPECT_EQ(x, inner->getMembers().at("x"));
}

TEST_F(DmPortTest, GetMemberOnPlainPortIsFalse) {
    auto [def, node] = nodeWith(input("a", DmLibrary::getIntType()));
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> member;
    EXPECT_FALSE((*node)["a"]->getMember("x", member));
    EXPECT_EQ(member, nullptr);
}

TEST_F(DmPortTest, GetMemberMissesUnknownAndTooDeepPaths) {
    auto [def, node] = nodeWith(input("p", makePoint()));
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> member;
    EXPECT_FALSE((*node)["p"]->getMember("z", member));
    EXPECT_FALSE((*node)["p"]->getMember("x.deeper", member));
    EXPECT_FALSE((*node)["p"]->getMember("z.x", member));
}

TEST_F(DmPortTest, AddMemberRefusesTakenNameAndAppendsOthers) {
    auto [def, node] = nodeWith(input("p", makePoint()));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["p"];
    auto const taken = DmPort::newPort(input("x", DmLibrary::getIntType()), node.get(), port.get());
    EXPECT_FALSE(port->addMember(taken));
    auto const fresh = DmPort::newPort(input("w", DmLibrary::getIntType()), node.get(), port.get());
    EXPECT_TRUE(port->addMember(fresh));
    EXPECT_EQ(portNames(port->getMembers()), (Names{"x", "y", "w"}));
    EXPECT_EQ(port->getMembers().at("w"), fresh);
}

// ---------------------------------------------------------------------------
// The value an unconnected port takes

TEST_F(DmPortTest, TypedPortTakesItsOverrideFirst) {
    auto node = DmNode::createNode("n", nullptr);
    ASSERT_NE(node, nullptr);
    auto a = input("a", DmLibrary::getIntType());
    auto const override = intValue(4);
    ASSERT_TRUE(a->setDefaultValueOverride(override));
    ASSERT_TRUE(node->addPort(a, false));
    EXPECT_EQ((*node)["a"]->findUnconnectedPortValue(), override);
}

TEST_F(DmPortTest, AutoPortPassesOverOverrideToItsNode) {
    auto node = DmNode::createNode("n", nullptr);
    ASSERT_NE(node, nullptr);
    auto a = input("a", DmLibrary::getAutoType());
    auto const override = intValue(4);
    ASSERT_TRUE(a->setDefaultValueOverride(override));
    ASSERT_TRUE(node->addPort(a, false));
    EXPECT_NE((*node)["a"]->findUnconnectedPortValue(), override);
}

TEST_F(DmPortTest, PortWithoutOverrideAsksItsNode) {
    auto [def, node] = nodeWith(input("a", DmLibrary::getIntType()));
    ASSERT_NE(node, nullptr);
    EXPECT_EQ((*node)["a"]->findUnconnectedPortValue(), nullptr);

    auto loose = DmNode::createNode("loose", nullptr);
    ASSERT_NE(loose, nullptr);
    ASSERT_TRUE(loose->addPort(input("a", DmLibrary::getIntType()), false));
    auto const value = (*loose)["a"]->findUnconnectedPortValue();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getType().get(), DmLibrary::getIntType().get());
}

TEST_F(DmPortTest, MultiInEntryTakesValueOfItsParentsName) {
    auto def = makeAssociativeDef();
    auto const override = intValue(11);
    ASSERT_TRUE(def->getPortsInterface()["a"]->setDefaultValueOverride(override));
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(node->addMultiInPortEntry("in", entry), DmStatus::kSuccess);
    EXPECT_EQ(entry->findUnconnectedPortValue(), override);
}

TEST_F(DmPortTest, FanInEntryTakesValueOfItsParentsName) {
    auto list = input("list", arrayOfInt());
    ASSERT_EQ(list->setPortKind(kPortDefaultFanIn), DmStatus::kSuccess);
    auto const override = arrayOfInt()->createDefaultValue();
    ASSERT_NE(override, nullptr);
    ASSERT_TRUE(list->setDefaultValueOverride(override));
    auto [def, node] = nodeWith(list);
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ((*node)["list"]->addMultiInPortEntry("e", entry), DmStatus::kSuccess);
    EXPECT_EQ(entry->findUnconnectedPortValue(), override);
}

// ---------------------------------------------------------------------------
// Overrides seen through overload sets

TEST_F(DmPortTest, DefaultValueOverrideIsNullOnNodeOfOverload) {
    auto a = input("a", DmLibrary::getIntType());
    ASSERT_TRUE(a->setDefaultValueOverride(intValue(5)));
    auto [def, node] = nodeWith(a);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ((*node)["a"]->getDefaultValueOverride(), nullptr);
}

TEST_F(DmPortTest, DefaultValueOverrideComesFromLoneOverloadOfSet) {
    auto ns = makeNamespace("geometry");
    auto a = input("a", DmLibrary::getIntType());
    auto const override = intValue(5);
    ASSERT_TRUE(a->setDefaultValueOverride(override));
    auto def = defWith(a);
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmOverloadSet> set;
    ASSERT_TRUE(ns->findNodeDef("op", set));
    ASSERT_NE(set, nullptr);
    ASSERT_EQ(set->size(), 1u);

    auto node = DmNode::createNode("n", set);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ((*node)["a"]->getDefaultValueOverride(), override);
}

TEST_F(DmPortTest, DefaultValueOverrideIsNullOnNodeOfSetOfTwoOverloads) {
    auto ns = makeNamespace("geometry");
    auto first = input("a", DmLibrary::getIntType());
    ASSERT_TRUE(first->setDefaultValueOverride(intValue(5)));
    auto firstDef = defWith(first);
    ASSERT_EQ(firstDef->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto second = input("a", DmLibrary::getIntType());
    ASSERT_TRUE(second->setDefaultValueOverride(intValue(6)));
    auto secondDef = defWith(second);
    ASSERT_EQ(secondDef->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    std::shared_ptr<DmOverloadSet> set;
    ASSERT_TRUE(ns->findNodeDef("op", set));
    ASSERT_NE(set, nullptr);
    ASSERT_EQ(set->size(), 2u);

    auto node = DmNode::createNode("n", set);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ((*node)["a"]->getDefaultValueOverride(), nullptr);
}

// ---------------------------------------------------------------------------
// Entries of multi-in and fan-in ports

TEST_F(DmPortTest, AddMultiInPortEntryFailsOnPlainPort) {
    auto [def, node] = nodeWith(input("a", DmLibrary::getIntType()));
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> entry;
    EXPECT_EQ((*node)["a"]->addMultiInPortEntry("in", entry), DmStatus::kFailure);
    EXPECT_EQ(entry, nullptr);
    EXPECT_FALSE((*node)["a"]->hasMembers());
}

TEST_F(DmPortTest, AddMultiInPortEntryRefusesUnresolvableName) {
    auto [def, node] = nodeWith(autoMultiIn());
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["m"];
    std::shared_ptr<DmPort> entry;
    EXPECT_EQ(port->addMultiInPortEntry("", entry), DmStatus::kInvalidArgument);
    EXPECT_EQ(port->addMultiInPortEntry("my entry", entry, kNameMustBeLegal), DmStatus::kInvalidArgument);
    EXPECT_EQ(entry, nullptr);
    EXPECT_FALSE(port->hasMembers());
}

TEST_F(DmPortTest, AddMultiInPortEntryLegalizesName) {
    auto [def, node] = nodeWith(autoMultiIn());
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> entry;
    EXPECT_EQ((*node)["m"]->addMultiInPortEntry("my entry", entry, kNameLegalize), DmStatus::kSuccess);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->getName(), "my_entry");
}

TEST_F(DmPortTest, MultiInEntryIsInputOfItsPortsType) {
    auto m = input("m", DmLibrary::getIntType());
    ASSERT_EQ(m->setPortKind(kPortMultiIn), DmStatus::kSuccess);
    auto [def, node] = nodeWith(m);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["m"];
    std::shared_ptr<DmPort> entry;
    EXPECT_EQ(port->addMultiInPortEntry("in", entry), DmStatus::kSuccess);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->getName(), "in");
    EXPECT_TRUE(entry->isMember());
    EXPECT_EQ(entry->getParent(), port.get());
    EXPECT_EQ(entry->getNode(), node.get());
    EXPECT_TRUE(entry->isInput());
    EXPECT_NE(entry->getPortDescription(), m);
    EXPECT_EQ(entry->getPortDescription()->getDirection(), kDirectionInput);
    EXPECT_EQ(entry->getPortDescription()->getType().get(), DmLibrary::getIntType().get());
    EXPECT_EQ(portNames(port->getMembers()), (Names{"in"}));
    EXPECT_EQ(port->getMembers().at("in"), entry);
    EXPECT_EQ(fullName(*entry), "n.m.in");
}

TEST_F(DmPortTest, EntryOfAutoMultiInPortIsAuto) {
    auto [def, node] = nodeWith(autoMultiIn());
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ((*node)["m"]->addMultiInPortEntry("in", entry), DmStatus::kSuccess);
    EXPECT_EQ(entry->getPortDescription()->getType().get(), DmLibrary::getAutoType().get());
}

TEST_F(DmPortTest, AddMultiInPortEntryTwiceWithOneNameMakesSecondUnique) {
    auto [def, node] = nodeWith(autoMultiIn());
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["m"];
    std::shared_ptr<DmPort> first;
    std::shared_ptr<DmPort> second;
    EXPECT_EQ(port->addMultiInPortEntry("in", first), DmStatus::kSuccess);
    EXPECT_EQ(port->addMultiInPortEntry("in", second), DmStatus::kSuccess);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(first->getName(), "in");
    EXPECT_EQ(second->getName(), "in1");
    EXPECT_EQ(portNames(port->getMembers()), (Names{"in", "in1"}));
}

TEST_F(DmPortTest, FanInEntryIsAutoWhateverTheArrayType) {
    auto list = input("list", arrayOfInt());
    ASSERT_EQ(list->setPortKind(kPortDefaultFanIn), DmStatus::kSuccess);
    auto [def, node] = nodeWith(list);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["list"];
    std::shared_ptr<DmPort> entry;
    EXPECT_EQ(port->addMultiInPortEntry("e", entry), DmStatus::kSuccess);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->getParent(), port.get());
    EXPECT_TRUE(entry->isInput());
    EXPECT_EQ(entry->getPortDescription()->getType().get(), DmLibrary::getAutoType().get());
}

TEST_F(DmPortTest, EntryRenameRekeysItAmongSiblings) {
    auto [def, node] = nodeWith(autoMultiIn());
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["m"];
    std::shared_ptr<DmPort> first;
    std::shared_ptr<DmPort> second;
    ASSERT_EQ(port->addMultiInPortEntry("in", first), DmStatus::kSuccess);
    ASSERT_EQ(port->addMultiInPortEntry("other", second), DmStatus::kSuccess);
    EXPECT_TRUE(first->setName("renamed", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(first->getName(), "renamed");
    EXPECT_EQ(portNames(port->getMembers()), (Names{"renamed", "other"}));
    EXPECT_EQ(portNames(def->getPortsInterface()), (Names{"m"}));
}

TEST_F(DmPortTest, RemoveMultiInPortEntryRemovesIt) {
    auto [def, node] = nodeWith(autoMultiIn());
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["m"];
    std::shared_ptr<DmPort> first;
    std::shared_ptr<DmPort> second;
    ASSERT_EQ(port->addMultiInPortEntry("in", first), DmStatus::kSuccess);
    ASSERT_EQ(port->addMultiInPortEntry("other", second), DmStatus::kSuccess);
    EXPECT_EQ(port->removeMultiInPortEntry(first), DmStatus::kSuccess);
    EXPECT_EQ(portNames(port->getMembers()), (Names{"other"}));
}

TEST_F(DmPortTest, RemoveMultiInPortEntryFailsWithoutEntries) {
    auto def = makeDef();
    def->addPortDescription(autoMultiIn(), kFailOnClash);
    def->addPortDescription(DmPortDescription::newMultiInPortDescription("k", kNameVerbatim), kFailOnClash);
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ((*node)["k"]->addMultiInPortEntry("in", entry), DmStatus::kSuccess);
    EXPECT_EQ((*node)["m"]->removeMultiInPortEntry(entry), DmStatus::kFailure);
    EXPECT_EQ(portNames((*node)["k"]->getMembers()), (Names{"in"}));
}

TEST_F(DmPortTest, RemoveMultiInPortEntryFailsForEntryOfAnotherPort) {
    auto def = makeDef();
    def->addPortDescription(autoMultiIn(), kFailOnClash);
    def->addPortDescription(DmPortDescription::newMultiInPortDescription("k", kNameVerbatim), kFailOnClash);
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    std::shared_ptr<DmPort> own;
    std::shared_ptr<DmPort> foreign;
    ASSERT_EQ((*node)["m"]->addMultiInPortEntry("own", own), DmStatus::kSuccess);
    ASSERT_EQ((*node)["k"]->addMultiInPortEntry("foreign", foreign), DmStatus::kSuccess);
    EXPECT_EQ((*node)["m"]->removeMultiInPortEntry(foreign), DmStatus::kFailure);
    EXPECT_EQ(portNames((*node)["m"]->getMembers()), (Names{"own"}));
    EXPECT_EQ(portNames((*node)["k"]->getMembers()), (Names{"foreign"}));
}

TEST_F(DmPortTest, RemoveMultiInPortEntryFailsOnStructPort) {
    auto [def, node] = nodeWith(input("p", makePoint()));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["p"];
    std::shared_ptr<DmPort> x;
    ASSERT_TRUE(port->getMember("x", x));
    EXPECT_EQ(port->removeMultiInPortEntry(x), DmStatus::kFailure);
    EXPECT_EQ(portNames(port->getMembers()), (Names{"x", "y"}));
}

// ---------------------------------------------------------------------------
// Fan-in

TEST_F(DmPortTest, PortOnDefaultFanInDescriptionStartsFanIn) {
    auto list = input("list", arrayOfInt());
    ASSERT_EQ(list->setPortKind(kPortDefaultFanIn), DmStatus::kSuccess);
    auto def = makeDef();
    def->addPortDescription(list, kFailOnClash);
    def->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_TRUE((*node)["list"]->isFanIn());
    EXPECT_FALSE((*node)["list"]->hasMembers());
    EXPECT_FALSE((*node)["a"]->isFanIn());
}

TEST_F(DmPortTest, SetFanInOnPlainInputOpensEmptyEntries) {
    auto [def, node] = nodeWith(input("a", DmLibrary::getIntType()));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    EXPECT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    EXPECT_TRUE(port->isFanIn());
    EXPECT_FALSE(port->hasMembers());
    EXPECT_TRUE(port->getMembers().empty());

    std::shared_ptr<DmPort> entry;
    EXPECT_EQ(port->addMultiInPortEntry("e", entry), DmStatus::kSuccess);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->getPortDescription()->getType().get(), DmLibrary::getAutoType().get());
}

TEST_F(DmPortTest, SetFanInToCurrentStateDoesNothing) {
    auto [def, node] = nodeWith(input("a", DmLibrary::getIntType()));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    EXPECT_EQ(port->setFanIn(false), DmStatus::kSuccess);
    EXPECT_FALSE(port->isFanIn());

    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(port->addMultiInPortEntry("e", entry), DmStatus::kSuccess);
    EXPECT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    EXPECT_TRUE(port->isFanIn());
    EXPECT_EQ(portNames(port->getMembers()), (Names{"e"}));
}

TEST_F(DmPortTest, SetFanInRefusesOutput) {
    auto [def, node] = nodeWith(output("out", DmLibrary::getIntType()));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["out"];
    EXPECT_EQ(port->setFanIn(true), DmStatus::kFailure);
    EXPECT_FALSE(port->isFanIn());
}

TEST_F(DmPortTest, SetFanInRefusesInputWithMembers) {
    auto [def, node] = nodeWith(input("p", makePoint()));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["p"];
    EXPECT_EQ(port->setFanIn(true), DmStatus::kFailure);
    EXPECT_FALSE(port->isFanIn());
    EXPECT_EQ(portNames(port->getMembers()), (Names{"x", "y"}));
}

TEST_F(DmPortTest, SetFanInOffDropsEntries) {
    auto [def, node] = nodeWith(input("a", DmLibrary::getIntType()));
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    std::shared_ptr<DmPort> first;
    std::shared_ptr<DmPort> second;
    ASSERT_EQ(port->addMultiInPortEntry("e", first), DmStatus::kSuccess);
    ASSERT_EQ(port->addMultiInPortEntry("e", second), DmStatus::kSuccess);

    EXPECT_EQ(port->setFanIn(false), DmStatus::kSuccess);
    EXPECT_FALSE(port->isFanIn());
    EXPECT_FALSE(port->hasMembers());
    EXPECT_TRUE(port->getMembers().empty());
    std::shared_ptr<DmPort> entry;
    EXPECT_EQ(port->addMultiInPortEntry("e", entry), DmStatus::kFailure);
}

} // namespace
