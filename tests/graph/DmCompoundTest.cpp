// Compounds as definitions and as scopes: creation and initialisation, the
// interface an overload takes over from its set, clones, renames, placement in
// namespaces and in other compounds, URIs, feedback links, port names and
// values, collection, and what dropping a compound releases.
#include "graph/CompoundTestSupport.h"

#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCollect.h>
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
#include <KestoDM/types/DmBuiltInValue.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kesto;
using KestoTest::AcceptAll;
using KestoTest::addNode;
using KestoTest::connect;
using KestoTest::fullName;
using KestoTest::input;
using KestoTest::intValue;
using KestoTest::makeNamespace;
using KestoTest::makeOp;
using KestoTest::makeURI;
using KestoTest::namesOf;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::RefuseName;
using KestoTest::ReservingCompound;
using KestoTest::RootNamespace;
using KestoTest::scopeName;
using KestoTest::setOf;

using Names = std::vector<std::string>;

/// Counts compounds, connections and scopes too: a compound must release all
/// of them with itself.
class DmCompoundTest : public KestoTest::CompoundTest {};

bool nests(DmScope const& scope, std::shared_ptr<DmCompound> const& compound) {
    return scope.getNestedScopes().contains(std::static_pointer_cast<DmScope>(compound));
}

} // namespace

// ---------------------------------------------------------------------------
// Creation and initialisation

TEST_F(DmCompoundTest, CreateCompoundMakesAnInitializedCompoundWithoutPortsOrNodes) {
    auto compound = DmCompound::createCompound("graph");
    ASSERT_NE(compound, nullptr);
    EXPECT_EQ(compound->getName(), "graph");
    ASSERT_NE(compound->getSelfNode(), nullptr);
    EXPECT_EQ(compound->getSelfNode(), compound->getInternalSelfNode());
    EXPECT_TRUE(compound->getSelfNode()->getPorts().empty());
    EXPECT_EQ(compound->getLibrary(), nullptr);
    EXPECT_EQ(compound->getLogger(), nullptr);
    EXPECT_TRUE(compound->getNodes().empty());
    EXPECT_TRUE(compound->getConnections().empty());
    EXPECT_TRUE(compound->getBindingConnections().empty());
    EXPECT_TRUE(compound->getPortsInterface().empty());
    EXPECT_EQ(compound->getReservedNodeNames(), nullptr);
    EXPECT_TRUE(compound->getDefaultTerminalStates().empty());
    EXPECT_FALSE(compound->isPromoter());
    EXPECT_EQ(compound->getScope(), nullptr);
    EXPECT_EQ(compound->getParentScope(), nullptr);
    EXPECT_TRUE(compound->getNodeDefs().empty());
}

TEST_F(DmCompoundTest, CreateCompoundRefusesEmptyName) {
    EXPECT_EQ(DmCompound::createCompound(""), nullptr);
}

TEST_F(DmCompoundTest, CreateCompoundRefusesIllegalNameWhenLegalNameIsRequired) {
    EXPECT_EQ(DmCompound::createCompound("my graph", kNameMustBeLegal), nullptr);
}

TEST_F(DmCompoundTest, CreateCompoundLegalizesName) {
    auto compound = DmCompound::createCompound("my graph", kNameLegalize);
    ASSERT_NE(compound, nullptr);
    EXPECT_EQ(compound->getName(), "my_graph");
}

TEST_F(DmCompoundTest, InitializeMakesSelfNodeNamedAsCompoundOnCompound) {
    auto compound = makeCompound();
    auto self = compound->getSelfNode();
    ASSERT_NE(self, nullptr);
    EXPECT_EQ(self, compound->getInternalSelfNode());
    EXPECT_TRUE(self->isSelfNode());
    EXPECT_EQ(self->getName(), "graph");
    EXPECT_EQ(self->getNodeDef(), compound.get());
    EXPECT_EQ(self->getOwner(), compound.get());
    EXPECT_TRUE(self->getPorts().empty());
}

TEST_F(DmCompoundTest, SelfNodeIsNoneOfTheCompoundsNodes) {
    auto compound = makeCompound();
    EXPECT_TRUE(compound->getNodes().empty());
    EXPECT_EQ(compound->findNode("graph"), nullptr);
}

TEST_F(DmCompoundTest, InitializeTwiceKeepsTheSelfNode) {
    auto compound = makeCompoundWithPorts();
    auto self = compound->getSelfNode();
    compound->initialize();
    EXPECT_EQ(compound->getSelfNode(), self);
    EXPECT_EQ(portNames(self->getPorts()), (Names{"a", "r"}));
}

TEST_F(DmCompoundTest, CompoundWithoutSetStartsWithoutPorts) {
    auto compound = makeCompound();
    EXPECT_TRUE(compound->getPortsInterface().empty());
    EXPECT_TRUE(compound->getSelfNode()->getPorts().empty());
}

TEST_F(DmCompoundTest, NewOverloadOfSetStartsFromTheSetsInterface) {
    auto ns = makeNamespace("ns");
    auto first = makeCompoundWithPorts();
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);

    // Not yet initialized as it joins: it lacks the set's ports, and joins all the same.
    auto second = std::make_shared<ReservingCompound>("graph");
    EXPECT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kFailure);
    ASSERT_EQ(second->get_owner(), setOf(*ns, "graph").get());
    EXPECT_TRUE(second->getPortsInterface().empty());
    second->initialize();

    EXPECT_EQ(portNames(second->getPortsInterface()), (Names{"a", "r"}));
    auto set = setOf(*ns, "graph");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->size(), 2u);
    // Clones of the set's ports, now the overload's own.
    auto const a = second->getPortsInterface()["a"];
    EXPECT_NE(a, set->getPortsInterface()["a"]);
    EXPECT_NE(a, first->getPortsInterface()["a"]);
    EXPECT_EQ(a->getNodeDef(), second.get());
    EXPECT_TRUE(a->isInput());
    EXPECT_EQ(a->getType(), DmLibrary::getIntType());
    EXPECT_TRUE(second->getPortsInterface()["r"]->isOutput());
    // The self node shows them inverted.
    auto self = second->getSelfNode();
    EXPECT_EQ(portNames(self->getPorts()), (Names{"a", "r"}));
    EXPECT_TRUE((*self)["a"]->isOutput());
    EXPECT_TRUE((*self)["r"]->isInput());
    // With the ports in place, the set's interface stays concrete.
    EXPECT_EQ(set->getPortsInterface()["a"]->getType(), DmLibrary::getIntType());
}

TEST_F(DmCompoundTest, IsValidWithNameAlone) {
    auto compound = std::make_shared<ReservingCompound>("graph");
    EXPECT_TRUE(compound->isValid());
    compound->initialize();
    EXPECT_TRUE(compound->isValid());
}

// ---------------------------------------------------------------------------
// Clone

TEST_F(DmCompoundTest, CloneHasNoNodesAndNoPortsOfTheSource) {
    auto ns = makeNamespace("ns");
    auto source = makeCompoundWithPorts();
    ASSERT_EQ(source->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto op = makeOp();
    addNode(*source, "n", op);
    ASSERT_EQ(connect(*source, ".a", "n.in"), DmStatus::kSuccess);
    ASSERT_EQ(connect(*source, "n.out", ".r"), DmStatus::kSuccess);
    source->setPromoter(true);

    auto clone = source->clone();
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone, source);
    EXPECT_EQ(clone->getName(), "graph");
    EXPECT_TRUE(clone->getPortsInterface().empty());
    EXPECT_TRUE(clone->getNodes().empty());
    EXPECT_TRUE(clone->getConnections().empty());
    EXPECT_EQ(clone->getScope(), nullptr);
    EXPECT_EQ(clone->get_owner(), nullptr);
    // Initialised: it has its own self node, without ports.
    ASSERT_NE(clone->getSelfNode(), nullptr);
    EXPECT_NE(clone->getSelfNode(), source->getSelfNode());
    EXPECT_EQ(clone->getSelfNode()->getNodeDef(), clone.get());
    EXPECT_TRUE(clone->getSelfNode()->getPorts().empty());
    // The source is untouched.
    EXPECT_EQ(portNames(source->getPortsInterface()), (Names{"a", "r"}));
    EXPECT_EQ(source->getNodes().size(), 1u);
    EXPECT_EQ(source->getConnections().size(), 2u);
}

// ---------------------------------------------------------------------------
// Names

TEST_F(DmCompoundTest, RenameRenamesTheSelfNodeToMatch) {
    auto compound = makeCompoundWithPorts();
    EXPECT_TRUE(compound->setName("other", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(compound->getName(), "other");
    EXPECT_EQ(compound->getSelfNode()->getName(), "other");
    EXPECT_EQ(compound->getLocalScopeName(), "other");
}

TEST_F(DmCompoundTest, RenameLegalizesNameForCompoundAndSelfNode) {
    auto compound = makeCompound();
    EXPECT_TRUE(compound->setName("my graph", kFailOnClash, kNameLegalize));
    EXPECT_EQ(compound->getName(), "my_graph");
    EXPECT_EQ(compound->getSelfNode()->getName(), "my_graph");
}

TEST_F(DmCompoundTest, RenameInScopeReKeysItsSetAndRenamesSelfNode) {
    auto ns = makeNamespace("ns");
    auto before = makeOp("before");
    ns->registerNodeDef(before);
    auto compound = makeCompound();
    ASSERT_EQ(compound->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ns->registerNodeDef(makeOp("after"));

    EXPECT_TRUE(compound->setName("other", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(KestoTest::keysOf(ns->getNodeDefs()), (Names{"before", "other", "after"}));
    EXPECT_EQ(setOf(*ns, "other")->getName(), "other");
    EXPECT_EQ(compound->getSelfNode()->getName(), "other");
}

TEST_F(DmCompoundTest, RenameRefusedByClashLeavesCompoundAndSelfNodeAlone) {
    auto ns = makeNamespace("ns");
    ns->registerNodeDef(makeOp("taken"));
    auto compound = makeCompound();
    ASSERT_EQ(compound->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);

    EXPECT_FALSE(compound->setName("taken", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(compound->getName(), "graph");
    EXPECT_EQ(compound->getSelfNode()->getName(), "graph");
}

TEST_F(DmCompoundTest, RenameMadeUniqueInScopeRenamesSelfNodeToTheUniqueName) {
    auto ns = makeNamespace("ns");
    ns->registerNodeDef(makeOp("taken"));
    auto compound = makeCompound();
    ASSERT_EQ(compound->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);

    EXPECT_TRUE(compound->setName("taken", kMakeUnique, kNameVerbatim));
    EXPECT_EQ(compound->getName(), "taken1");
    EXPECT_EQ(compound->getSelfNode()->getName(), "taken1");
}

TEST_F(DmCompoundTest, EveryCompoundOfARenamedSetKeepsItsSelfNodeNamedAsItself) {
    auto ns = makeNamespace("ns");
    auto first = makeCompound();
    auto second = makeCompound();
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);

    EXPECT_TRUE(first->setName("other", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(first->getSelfNode()->getName(), first->getName());
    EXPECT_EQ(second->getSelfNode()->getName(), second->getName());
}

TEST_F(DmCompoundTest, RenameToReservedNodeNameFailsAtTheSelfNode) {
    auto compound = makeCompound();
    auto reserved = std::make_shared<DmCompound::ReservedNames>();
    reserved->push_back(String("x"));
    ASSERT_EQ(compound->setReservedNodeNames(reserved), DmStatus::kSuccess);

    // The definition takes the name; the self node refuses it, and its answer is the result.
    EXPECT_FALSE(compound->setName("x", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(compound->getName(), "x");
    EXPECT_EQ(compound->getSelfNode()->getName(), "graph");
}

TEST_F(DmCompoundTest, RenameRefusesUnresolvableName) {
    auto compound = makeCompound();
    EXPECT_FALSE(compound->setName("", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(compound->getName(), "graph");
    EXPECT_EQ(compound->getSelfNode()->getName(), "graph");
}

// ---------------------------------------------------------------------------
// Placement: as a definition and as a scope

TEST_F(DmCompoundTest, SetScopePlacesCompoundAsDefinitionAndNestsItAsScope) {
    auto ns = makeNamespace("ns");
    auto compound = makeCompound();
    EXPECT_EQ(compound->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);

    EXPECT_EQ(compound->getScope(), ns.get());
    auto set = setOf(*ns, "graph");
    ASSERT_NE(set, nullptr);
    ASSERT_EQ(set->size(), 1u);
    EXPECT_EQ(set->getOverloads()[0], compound);
    EXPECT_EQ(compound->get_owner(), set.get());
    EXPECT_EQ(compound->getParentScope(), ns.get());
    EXPECT_TRUE(nests(*ns, compound));
    EXPECT_FALSE(compound->isPrivate());
}

TEST_F(DmCompoundTest, SetScopeToNullTakesCompoundOutOfTheScope) {
    auto ns = makeNamespace("ns");
    auto compound = makeCompound();
    ASSERT_EQ(compound->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);

    EXPECT_EQ(compound->setScope(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(compound->getScope(), nullptr);
    EXPECT_EQ(compound->getParentScope(), nullptr);
    EXPECT_EQ(compound->get_owner(), nullptr);
    EXPECT_FALSE(nests(*ns, compound));
    EXPECT_FALSE(ns->hasNodeDef("graph"));
}

TEST_F(DmCompoundTest, SetScopeRefusesTakenNameUnderFailOnClash) {
    auto ns = makeNamespace("ns");
    ns->registerNodeDef(makeOp("graph"));
    auto compound = makeCompound();
    EXPECT_EQ(compound->setScope(ns.get(), kFailOnClash), DmStatus::kInvalidArgument);
    EXPECT_EQ(compound->getScope(), nullptr);
    EXPECT_EQ(compound->getParentScope(), nullptr);
    EXPECT_FALSE(nests(*ns, compound));
}

TEST_F(DmCompoundTest, SetScopeUnderMakeUniqueRenamesCompoundAndSelfNode) {
    auto ns = makeNamespace("ns");
    ns->registerNodeDef(makeOp("graph"));
    auto compound = makeCompound();
    EXPECT_EQ(compound->setScope(ns.get(), kMakeUnique), DmStatus::kSuccess);
    EXPECT_EQ(compound->getName(), "graph1");
    EXPECT_EQ(compound->getSelfNode()->getName(), "graph1");
    EXPECT_TRUE(ns->hasNodeDef("graph1"));
    EXPECT_TRUE(nests(*ns, compound));
}

TEST_F(DmCompoundTest, SetScopeToTheCurrentScopeDoesNothing) {
    auto ns = makeNamespace("ns");
    auto compound = makeCompound();
    ASSERT_EQ(compound->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(compound->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(setOf(*ns, "graph")->size(), 1u);
    EXPECT_EQ(ns->getNestedScopes().size(), 1u);
}

TEST_F(DmCompoundTest, MovingCompoundToAnotherScopeMovesTheNesting) {
    auto first = makeNamespace("first");
    auto second = makeNamespace("second");
    auto compound = makeCompound();
    ASSERT_EQ(compound->setScope(first.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(compound->setScope(second.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_FALSE(nests(*first, compound));
    EXPECT_FALSE(first->hasNodeDef("graph"));
    EXPECT_TRUE(nests(*second, compound));
    EXPECT_EQ(compound->getParentScope(), second.get());
    EXPECT_EQ(compound->getScope(), second.get());
}

TEST_F(DmCompoundTest, FullNameOfCompoundFollowsItsNamespaces) {
    auto global = RootNamespace::make("global", RootNamespace::kGlobal);
    std::shared_ptr<DmNamespace> geo;
    ASSERT_EQ(global->addNestedNamespace("geo", geo), DmStatus::kSuccess);
    auto compound = makeCompound();
    ASSERT_EQ(compound->setScope(geo.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(fullName(*compound), "geo::graph");
    EXPECT_EQ(scopeName(*compound), "geo::graph");
    EXPECT_EQ(compound->getLocalScopeName(), "graph");
    EXPECT_EQ(compound->getAsNamedEntity(), static_cast<DmNamedEntity*>(compound.get()));
}

TEST_F(DmCompoundTest, RegisteredCompoundBecomesNestedScopeOfCompound) {
    auto outer = makeCompound("outer");
    auto inner = makeCompound("inner");
    EXPECT_EQ(outer->registerNodeDef(inner), DmStatus::kSuccess);

    EXPECT_EQ(inner->getScope(), outer.get());
    EXPECT_EQ(inner->getParentScope(), outer.get());
    EXPECT_TRUE(nests(*outer, inner));
    auto set = setOf(*outer, "inner");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->getOverloads()[0], inner);
    EXPECT_EQ(inner->get_owner(), set.get());
    EXPECT_TRUE(inner->isPrivate());
    EXPECT_TRUE(set->isPrivate());
}

TEST_F(DmCompoundTest, CompoundPlacedInCompoundIsPrivateAndNamedThroughIt) {
    auto global = RootNamespace::make("global", RootNamespace::kGlobal);
    std::shared_ptr<DmNamespace> geo;
    ASSERT_EQ(global->addNestedNamespace("geo", geo), DmStatus::kSuccess);
    auto outer = makeCompound("outer");
    ASSERT_EQ(outer->setScope(geo.get(), kFailOnClash), DmStatus::kSuccess);
    auto inner = makeCompound("inner");
    EXPECT_EQ(inner->setScope(outer.get(), kFailOnClash), DmStatus::kSuccess);

    EXPECT_TRUE(nests(*outer, inner));
    EXPECT_TRUE(inner->isPrivate());
    EXPECT_EQ(fullName(*inner), "geo::outer::inner");
    EXPECT_EQ(scopeName(*inner), "geo::outer::inner");
}

TEST_F(DmCompoundTest, UnregisteredCompoundLeavesTheNestedScopes) {
    auto outer = makeCompound("outer");
    auto inner = makeCompound("inner");
    ASSERT_EQ(outer->registerNodeDef(inner), DmStatus::kSuccess);

    EXPECT_EQ(outer->unregisterNodeDef(inner), DmStatus::kSuccess);
    EXPECT_EQ(inner->getParentScope(), nullptr);
    EXPECT_FALSE(nests(*outer, inner));
    EXPECT_FALSE(outer->hasNodeDef("inner"));
    EXPECT_EQ(inner->get_owner(), nullptr);
}

TEST_F(DmCompoundTest, TwoCompoundsOfOneNameFormOneSetAndBothNest) {
    auto outer = makeCompound("outer");
    auto first = makeCompound("inner");
    auto second = makeCompound("inner");
    EXPECT_EQ(outer->registerNodeDef(first), DmStatus::kSuccess);
    EXPECT_EQ(outer->registerNodeDef(second), DmStatus::kSuccess);
    EXPECT_EQ(outer->getNodeDefs().size(), 1u);
    EXPECT_EQ(setOf(*outer, "inner")->size(), 2u);
    EXPECT_TRUE(nests(*outer, first));
    EXPECT_TRUE(nests(*outer, second));
}

// ---------------------------------------------------------------------------
// URI

TEST_F(DmCompoundTest, SetURIReachesEveryNestedCompound) {
    auto outer = makeCompound("outer");
    auto middle = makeCompound("middle");
    auto deep = makeCompound("deep");
    auto op = makeOp();
    ASSERT_EQ(outer->registerNodeDef(middle), DmStatus::kSuccess);
    ASSERT_EQ(middle->registerNodeDef(deep), DmStatus::kSuccess);
    ASSERT_EQ(outer->registerNodeDef(op), DmStatus::kSuccess);

    auto uri = makeURI("/graphs/a.json");
    outer->setURI(uri);
    EXPECT_EQ(outer->getURI(), uri);
    EXPECT_EQ(middle->getURI(), uri);
    EXPECT_EQ(deep->getURI(), uri);
    // A nested definition that is no compound keeps its own.
    EXPECT_EQ(op->getURI(), nullptr);
}

TEST_F(DmCompoundTest, SetURIOnNestedCompoundLeavesItsOwnerAlone) {
    auto outer = makeCompound("outer");
    auto inner = makeCompound("inner");
    ASSERT_EQ(outer->registerNodeDef(inner), DmStatus::kSuccess);
    auto uri = makeURI("/graphs/inner.json");
    inner->setURI(uri);
    EXPECT_EQ(inner->getURI(), uri);
    EXPECT_EQ(outer->getURI(), nullptr);
}

// ---------------------------------------------------------------------------
// Ports

TEST_F(DmCompoundTest, LinkFeedbackPortsLinksTwoOfItsPorts) {
    auto compound = makeCompoundWithPorts();
    EXPECT_TRUE(compound->linkFeedbackPorts("a", "r"));
    auto a = compound->getPortsInterface()["a"];
    auto r = compound->getPortsInterface()["r"];
    EXPECT_EQ(a->getLinkedPort(), r.get());
    EXPECT_EQ(r->getLinkedPort(), a.get());
    EXPECT_TRUE(a->isFeedback());
    EXPECT_TRUE(r->isFeedback());
}

TEST_F(DmCompoundTest, LinkFeedbackPortsFailsWhenEitherPortIsMissing) {
    auto compound = makeCompoundWithPorts();
    EXPECT_FALSE(compound->linkFeedbackPorts("a", "missing"));
    EXPECT_FALSE(compound->linkFeedbackPorts("missing", "r"));
    EXPECT_FALSE(compound->getPortsInterface()["a"]->isLinked());
    EXPECT_FALSE(compound->getPortsInterface()["r"]->isLinked());
}

TEST_F(DmCompoundTest, PlainCompoundReservesNoPortName) {
    auto compound = makeCompound();
    EXPECT_FALSE(compound->isReservedPortName("a"));
    EXPECT_FALSE(compound->isReservedPortName("looping_condition"));
}

TEST_F(DmCompoundTest, UniquePortNameAvoidsTakenPortNames) {
    auto compound = makeCompoundWithPorts();
    std::string name = "a";
    compound->getUniquePortName(name);
    EXPECT_EQ(name, "a1");
    name = "free";
    compound->getUniquePortName(name);
    EXPECT_EQ(name, "free");
}

TEST_F(DmCompoundTest, UniquePortNameIgnoresNodeNames) {
    auto compound = makeCompound();
    auto op = makeOp();
    addNode(*compound, "n", op);
    std::string name = "n";
    compound->getUniquePortName(name);
    EXPECT_EQ(name, "n");
}

TEST_F(DmCompoundTest, ReservedPortNameIsRenamedEvenWhenFree) {
    auto compound = ReservingCompound::make("graph");
    std::string name = "cond";
    compound->getUniquePortName(name);
    EXPECT_EQ(name, "cond1");

    EXPECT_FALSE(compound->addPortDescription(input("cond", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_TRUE(compound->getPortsInterface().empty());
    EXPECT_TRUE(compound->addPortDescription(input("cond", DmLibrary::getIntType()), kMakeUnique));
    EXPECT_EQ(portNames(compound->getPortsInterface()), (Names{"cond1"}));
    EXPECT_EQ(portNames(compound->getSelfNode()->getPorts()), (Names{"cond1"}));
}

TEST_F(DmCompoundTest, AddPortDescriptionRefusesTakenNameUnderFailOnClash) {
    auto compound = makeCompoundWithPorts();
    EXPECT_FALSE(compound->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_TRUE(compound->addPortDescription(input("a", DmLibrary::getIntType()), kMakeUnique));
    EXPECT_EQ(portNames(compound->getPortsInterface()), (Names{"a", "r", "a1"}));
    EXPECT_EQ(portNames(compound->getSelfNode()->getPorts()), (Names{"a", "r", "a1"}));
}

TEST_F(DmCompoundTest, UnconnectedPortValueIsTheSelfNodePortsValue) {
    auto compound = makeCompoundWithPorts();
    auto value = compound->findUnconnectedPortValue("a");
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value, (*compound->getSelfNode())["a"]->getDefaultValue());
}

TEST_F(DmCompoundTest, UnconnectedPortValueFollowsTheSelfNodePortsValue) {
    auto compound = makeCompoundWithPorts();
    auto seven = intValue(7);
    ASSERT_TRUE((*compound->getSelfNode())["a"]->setDefaultValue(seven));
    EXPECT_EQ(compound->findUnconnectedPortValue("a"), seven);
}

TEST_F(DmCompoundTest, UnconnectedPortValueIsTheDefinitionsAnswerFirst) {
    auto compound = makeCompoundWithPorts();
    auto five = intValue(5);
    ASSERT_TRUE(compound->getPortsInterface()["a"]->setDefaultValueOverride(five));
    ASSERT_TRUE((*compound->getSelfNode())["a"]->setDefaultValue(intValue(7)));

    auto value = compound->findUnconnectedPortValue("a");
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(std::static_pointer_cast<DmIntValue>(value)->getData(), 5);
}

TEST_F(DmCompoundTest, UnconnectedPortValueOfUnknownPortIsNull) {
    auto compound = makeCompoundWithPorts();
    EXPECT_EQ(compound->findUnconnectedPortValue("missing"), nullptr);
}

// ---------------------------------------------------------------------------
// Promoter

TEST_F(DmCompoundTest, SetPromoterStoresTheFlagAndSucceeds) {
    auto compound = makeCompound();
    EXPECT_TRUE(compound->setPromoter(true));
    EXPECT_TRUE(compound->isPromoter());
    EXPECT_TRUE(compound->setPromoter(false));
    EXPECT_FALSE(compound->isPromoter());
}

// ---------------------------------------------------------------------------
// Collect

TEST_F(DmCompoundTest, CollectCompoundsGathersTheCompoundsOfTheNamespace) {
    auto ns = makeNamespace("ns");
    auto first = makeCompound("first");
    auto second = makeCompound("second");
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ns->registerNodeDef(makeOp());
    ASSERT_EQ(second->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);

    DmCollectList list;
    ns->collect(list, AcceptAll(), kCollectCompounds, static_cast<DmCollectFlags>(0));
    EXPECT_EQ(namesOf(list), (Names{"first", "second"}));
    EXPECT_EQ(list[0], first);
}

TEST_F(DmCompoundTest, CollectGathersEveryCompoundOfASet) {
    auto ns = makeNamespace("ns");
    auto first = makeCompound();
    auto second = makeCompound();
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);

    DmCollectList list;
    ns->collect(list, AcceptAll(), kCollectCompounds, static_cast<DmCollectFlags>(0));
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0], first);
    EXPECT_EQ(list[1], second);
}

TEST_F(DmCompoundTest, CollectPassesCompoundsOverWithoutTheCompoundsBit) {
    auto ns = makeNamespace("ns");
    auto compound = makeCompound();
    ASSERT_EQ(compound->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);

    DmCollectList list;
    ns->collect(list, AcceptAll(), kCollectTypes | kCollectExternOperators, kCollectNested);
    EXPECT_TRUE(list.empty());
}

TEST_F(DmCompoundTest, CollectDescendsIntoNestedNamespacesOnlyWhenAsked) {
    auto ns = makeNamespace("ns");
    std::shared_ptr<DmNamespace> sub;
    ASSERT_EQ(ns->addNestedNamespace("sub", sub), DmStatus::kSuccess);
    auto top = makeCompound("top");
    auto below = makeCompound("below");
    ASSERT_EQ(top->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(below->setScope(sub.get(), kFailOnClash), DmStatus::kSuccess);

    DmCollectList flat;
    ns->collect(flat, AcceptAll(), kCollectCompounds, static_cast<DmCollectFlags>(0));
    EXPECT_EQ(namesOf(flat), (Names{"top"}));

    DmCollectList nested;
    ns->collect(nested, AcceptAll(), kCollectCompounds, kCollectNested);
    EXPECT_EQ(namesOf(nested), (Names{"top", "below"}));
}

TEST_F(DmCompoundTest, CollectDoesNotDescendIntoCompounds) {
    auto ns = makeNamespace("ns");
    auto outer = makeCompound("outer");
    ASSERT_EQ(outer->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto inner = makeCompound("inner");
    ASSERT_EQ(inner->setScope(outer.get(), kFailOnClash), DmStatus::kSuccess);

    DmCollectList list;
    ns->collect(list, AcceptAll(), kCollectCompounds, kCollectNested);
    EXPECT_EQ(namesOf(list), (Names{"outer"}));
}

TEST_F(DmCompoundTest, CollectAsksTheSelectorForEachCompound) {
    auto ns = makeNamespace("ns");
    auto first = makeCompound("first");
    auto second = makeCompound("second");
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(second->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);

    DmCollectList list;
    ns->collect(list, RefuseName("first"), kCollectCompounds, kCollectNested);
    EXPECT_EQ(namesOf(list), (Names{"second"}));
}

TEST_F(DmCompoundTest, CollectAppendsToTheCallersList) {
    auto ns = makeNamespace("ns");
    auto compound = makeCompound();
    ASSERT_EQ(compound->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);

    DmCollectList list{compound};
    ns->collect(list, AcceptAll(), kCollectCompounds, static_cast<DmCollectFlags>(0));
    EXPECT_EQ(namesOf(list), (Names{"graph", "graph"}));
}

// ---------------------------------------------------------------------------
// Lifetime

TEST_F(DmCompoundTest, DroppingCompoundReleasesNodesPortsConnectionsAndNestedCompounds) {
    unsigned int const compounds = count<DmCompound>();
    unsigned int const connections = count<DmConnection>();
    unsigned int const nodes = count<DmNode>();
    unsigned int const ports = count<DmPort>();
    unsigned int const scopes = count<DmScope>();
    unsigned int const defs = count<DmNodeDef>();
    {
        auto outer = makeCompoundWithPorts("outer");
        auto inner = makeCompoundWithPorts("inner");
        ASSERT_EQ(outer->registerNodeDef(inner), DmStatus::kSuccess);
        auto deepest = makeCompoundWithPorts("deepest");
        ASSERT_EQ(inner->registerNodeDef(deepest), DmStatus::kSuccess);
        addNode(*inner, "d", deepest);
        ASSERT_EQ(connect(*inner, ".a", "d.a"), DmStatus::kSuccess);
        ASSERT_EQ(connect(*inner, "d.r", ".r"), DmStatus::kSuccess);

        addNode(*outer, "i", inner);
        addNode(*outer, "n", makeOp());
        ASSERT_EQ(connect(*outer, ".a", "i.a"), DmStatus::kSuccess);
        ASSERT_EQ(connect(*outer, "i.r", "n.in"), DmStatus::kSuccess);
        ASSERT_EQ(connect(*outer, "n.out", ".r"), DmStatus::kSuccess);

        EXPECT_EQ(count<DmCompound>(), compounds + 3);
        EXPECT_EQ(count<DmConnection>(), connections + 5);
        // Two nodes and the self node in outer, one node and the self node in
        // inner, the self node of deepest.
        EXPECT_EQ(count<DmNode>(), nodes + 6);
        EXPECT_GT(count<DmPort>(), ports);
        EXPECT_GT(count<DmScope>(), scopes);
        EXPECT_GT(count<DmNodeDef>(), defs);
    }
    EXPECT_EQ(count<DmCompound>(), compounds);
    EXPECT_EQ(count<DmConnection>(), connections);
    EXPECT_EQ(count<DmNode>(), nodes);
    EXPECT_EQ(count<DmPort>(), ports);
    EXPECT_EQ(count<DmScope>(), scopes);
    EXPECT_EQ(count<DmNodeDef>(), defs);
}

TEST_F(DmCompoundTest, DroppingNamespaceReleasesItsCompounds) {
    unsigned int const compounds = count<DmCompound>();
    unsigned int const connections = count<DmConnection>();
    {
        auto ns = makeNamespace("ns");
        auto compound = makeCompoundWithPorts();
        ASSERT_EQ(compound->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
        auto inner = makeCompoundWithPorts("inner");
        ASSERT_EQ(inner->setScope(compound.get(), kFailOnClash), DmStatus::kSuccess);
        addNode(*compound, "i", inner);
        ASSERT_EQ(connect(*compound, ".a", "i.a"), DmStatus::kSuccess);
        ASSERT_EQ(connect(*compound, ".a", ".r"), DmStatus::kSuccess);
        compound.reset();
        inner.reset();
        EXPECT_EQ(count<DmCompound>(), compounds + 2);
    }
    EXPECT_EQ(count<DmCompound>(), compounds);
    EXPECT_EQ(count<DmConnection>(), connections);
}

TEST_F(DmCompoundTest, CompoundDefinitionLivesOnWhileANodeUsesIt) {
    auto outer = makeCompound("outer");
    auto inner = makeCompoundWithPorts("inner");
    auto node = addNode(*outer, "i", inner);
    DmCompound* const raw = inner.get();
    inner.reset();
    EXPECT_EQ(node->getNodeDef(), raw);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "r"}));
    EXPECT_TRUE(raw->getInstantiatedNodes().count(node.get()) == 1);
}

TEST_F(DmCompoundTest, NodeHeldOutsideOutlivesItsCompoundWithoutOwner) {
    auto op = makeOp();
    std::shared_ptr<DmNode> node;
    {
        auto compound = makeCompound();
        node = addNode(*compound, "n", op);
        addNode(*compound, "m", op);
        ASSERT_EQ(connect(*compound, "n.out", "m.in"), DmStatus::kSuccess);
    }
    EXPECT_EQ(node->getOwner(), nullptr);
    EXPECT_TRUE(node->getConnections().empty());
    EXPECT_TRUE((*node)["out"]->getConnectedPorts().empty());
}

TEST_F(DmCompoundTest, ConnectionHeldOutsideIsDisconnectedWhenItsCompoundGoes) {
    auto op = makeOp();
    std::shared_ptr<DmConnection> connection;
    std::shared_ptr<DmNode> source;
    {
        auto compound = makeCompound();
        source = addNode(*compound, "n", op);
        addNode(*compound, "m", op);
        ASSERT_EQ(compound->makeConnection("n.out", "m.in", connection), DmStatus::kSuccess);
        EXPECT_TRUE(connection->isConnected());
    }
    EXPECT_FALSE(connection->isConnected());
    EXPECT_TRUE(source->getConnections().empty());
}
