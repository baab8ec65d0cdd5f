#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBaseValue.h>

#include "graph/ModelTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::fullName;
using KestoTest::input;
using KestoTest::keysOf;
using KestoTest::makeNamespace;
using KestoTest::makeStruct;
using KestoTest::makeURI;
using KestoTest::makeUserDef;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::RootNamespace;
using KestoTest::UserDef;

namespace {

class DmNodeDefTest : public KestoTest::ModelTest {};

} // namespace

// ---------------------------------------------------------------------------
// A new definition

TEST_F(DmNodeDefTest, NewDefinitionIsDetachedAndEmpty) {
    auto const def = UserDef::make("op");
    EXPECT_EQ(def->getName(), "op");
    EXPECT_EQ(def->getScope(), nullptr);
    EXPECT_EQ(def->get_owner(), nullptr);
    EXPECT_TRUE(def->getPortsInterface().empty());
    EXPECT_EQ(def->getURI(), nullptr);
    EXPECT_EQ(def->getImportedURI(), nullptr);
    EXPECT_EQ(def->getLibrary(), nullptr);
    EXPECT_TRUE(def->getInstantiatedNodes().empty());
    EXPECT_TRUE(def->getText().empty());
    EXPECT_FALSE(def->isDefaultOverload());
}

TEST_F(DmNodeDefTest, NewDefinitionHasTheDefaultFlags) {
    auto const def = UserDef::make("op");
    EXPECT_FALSE(def->isConverter());
    EXPECT_TRUE(def->isOverloadsLocked());
    EXPECT_EQ(def->associativity(), DmNodeDef::kNotAssociative);
    EXPECT_FALSE(def->isBuiltIn());
    EXPECT_FALSE(def->isPromoter());
    EXPECT_FALSE(def->isValueNodeDef());
    EXPECT_FALSE(def->isTerminal());
    EXPECT_FALSE(def->isUnknown());
    EXPECT_FALSE(def->isImported());
    EXPECT_FALSE(def->isPrivate());
    EXPECT_FALSE(def->isConst());
}

TEST_F(DmNodeDefTest, AssociativityValuesHaveTheirNumbers) {
    EXPECT_EQ(sizeof(DmNodeDef::Associativity), 1u);
    EXPECT_EQ(static_cast<int>(DmNodeDef::kNotAssociative), 0);
    EXPECT_EQ(static_cast<int>(DmNodeDef::kLeftToRight), 1);
    EXPECT_EQ(static_cast<int>(DmNodeDef::kRightToLeft), 2);
}

TEST_F(DmNodeDefTest, DefinitionCanBeFoundByItsRuntimeUID) {
    auto def = UserDef::make("op");
    auto const uid = def->getRuntimeUID();
    EXPECT_EQ(DmNamedEntity::findByRuntimeUID(uid).get(), def.get());
    def.reset();
    EXPECT_EQ(DmNamedEntity::findByRuntimeUID(uid), nullptr);
}

TEST_F(DmNodeDefTest, DefinitionsOfOneNameCompareEqual) {
    auto const first = UserDef::make("op");
    auto const second = UserDef::make("op");
    auto const other = UserDef::make("other");
    EXPECT_TRUE(*first == *second);
    EXPECT_TRUE(*first != *other);
}

TEST_F(DmNodeDefTest, TextIsKeptAsGiven) {
    auto const def = UserDef::make("op");
    def->setText("companion");
    EXPECT_EQ(def->getText(), "companion");
}

// ---------------------------------------------------------------------------
// Nature

TEST_F(DmNodeDefTest, ConverterFlagIsStored) {
    auto const def = UserDef::make("op");
    def->setConverter(true);
    EXPECT_TRUE(def->isConverter());
    def->setConverter(false);
    EXPECT_FALSE(def->isConverter());
}

TEST_F(DmNodeDefTest, SetAssociativityStoresTheValue) {
    auto const def = UserDef::make("op");
    EXPECT_TRUE(def->setAssociativity(DmNodeDef::kRightToLeft));
    EXPECT_EQ(def->associativity(), DmNodeDef::kRightToLeft);
}

TEST_F(DmNodeDefTest, SetAssociativityOnAConstDefinitionIsRefused) {
    auto const def = UserDef::make("op");
    def->makeConst();
    EXPECT_FALSE(def->setAssociativity(DmNodeDef::kLeftToRight));
    EXPECT_EQ(def->associativity(), DmNodeDef::kNotAssociative);
}

TEST_F(DmNodeDefTest, SetPromoterOnAPlainDefinitionIsRefused) {
    auto const def = UserDef::make("op");
    EXPECT_FALSE(def->setPromoter(true));
    EXPECT_FALSE(def->isPromoter());
}

TEST_F(DmNodeDefTest, ImportedURIMakesTheDefinitionImported) {
    auto const def = UserDef::make("op");
    auto const uri = makeURI("/tmp/kesto-nodedef/source.json");
    def->setImportedURI(uri);
    EXPECT_EQ(def->getImportedURI(), uri);
    EXPECT_TRUE(def->isImported());
}

TEST_F(DmNodeDefTest, URIIsStored) {
    auto const def = UserDef::make("op");
    auto const uri = makeURI("/tmp/kesto-nodedef/own.json");
    def->setURI(uri);
    EXPECT_EQ(def->getURI(), uri);
    EXPECT_FALSE(def->isImported());
}

TEST_F(DmNodeDefTest, DefinitionInANamespaceIsNotPrivate) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_FALSE(def->isPrivate());
}

TEST_F(DmNodeDefTest, AutoOutputIsNoAutoInput) {
    auto const def = UserDef::make("op");
    def->addPortDescription(output("out", DmLibrary::getAutoType()), kFailOnClash);
    EXPECT_FALSE(def->hasAutoInputPort());
    def->addPortDescription(input("in", DmLibrary::getAutoType()), kFailOnClash);
    EXPECT_TRUE(def->hasAutoInputPort());
}

// ---------------------------------------------------------------------------
// Locking

TEST_F(DmNodeDefTest, LoneDefinitionCanBeUnlockedAndLockedAgain) {
    auto const def = makeUserDef();
    EXPECT_EQ(def->setOverloadsLocked(false), DmStatus::kSuccess);
    EXPECT_FALSE(def->isOverloadsLocked());
    EXPECT_EQ(def->setOverloadsLocked(true), DmStatus::kSuccess);
    EXPECT_TRUE(def->isOverloadsLocked());
}

TEST_F(DmNodeDefTest, UnlockingADefinitionWithAnAutoInputFailsAndLeavesItLocked) {
    auto const def = UserDef::make("op");
    def->addPortDescription(input("x", DmLibrary::getAutoType()), kFailOnClash);
    EXPECT_EQ(def->setOverloadsLocked(false), DmStatus::kFailure);
    EXPECT_TRUE(def->isOverloadsLocked());
}

TEST_F(DmNodeDefTest, AnAutoInputLocksAnUnlockedDefinition) {
    auto const def = makeUserDef();
    ASSERT_EQ(def->setOverloadsLocked(false), DmStatus::kSuccess);
    ASSERT_TRUE(def->addPortDescription(input("any", DmLibrary::getAutoType()), kFailOnClash));
    EXPECT_TRUE(def->isOverloadsLocked());
}

TEST_F(DmNodeDefTest, LoneDefinitionIsSingleWhileLocked) {
    auto const def = makeUserDef();
    EXPECT_TRUE(def->isSingle());
    ASSERT_EQ(def->setOverloadsLocked(false), DmStatus::kSuccess);
    EXPECT_FALSE(def->isSingle());
}

// ---------------------------------------------------------------------------
// Names

TEST_F(DmNodeDefTest, DetachedDefinitionTakesAnyName) {
    auto const def = UserDef::make("op");
    EXPECT_TRUE(def->setName("renamed", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(def->getName(), "renamed");
}

TEST_F(DmNodeDefTest, SetNameOnAConstDefinitionIsRefused) {
    auto const def = UserDef::make("op");
    def->makeConst();
    EXPECT_FALSE(def->setName("renamed", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(def->getName(), "op");
}

TEST_F(DmNodeDefTest, SetNameRefusesTheEmptyName) {
    auto const def = UserDef::make("op");
    EXPECT_FALSE(def->setName("", kMakeUnique, kNameVerbatim));
    EXPECT_EQ(def->getName(), "op");
}

TEST_F(DmNodeDefTest, SetNameLegalizesWhenAsked) {
    auto const def = UserDef::make("op");
    EXPECT_TRUE(def->setName("my op", kFailOnClash, kNameLegalize));
    EXPECT_EQ(def->getName(), "my_op");
}

TEST_F(DmNodeDefTest, SetNameRefusesAnIllegalNameWhenItMustBeLegal) {
    auto const def = UserDef::make("op");
    EXPECT_FALSE(def->setName("my op", kFailOnClash, kNameMustBeLegal));
    EXPECT_EQ(def->getName(), "op");
}

TEST_F(DmNodeDefTest, SetNameRekeysTheScopeEntryInPlace) {
    auto const ns = makeNamespace("geo");
    auto const first = makeUserDef("first");
    auto const def = makeUserDef("op");
    auto const last = makeUserDef("last");
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(last->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);

    EXPECT_TRUE(def->setName("renamed", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(def->getName(), "renamed");
    EXPECT_EQ(keysOf(ns->getNodeDefs()), (std::vector<std::string>{"first", "renamed", "last"}));
    std::shared_ptr<DmOverloadSet> set;
    ASSERT_TRUE(ns->findNodeDef("renamed", set));
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->getName(), "renamed");
    EXPECT_EQ(def->get_owner(), set.get());
    EXPECT_FALSE(ns->hasNodeDef("op"));
}

TEST_F(DmNodeDefTest, SetNameToATakenNameFailsOnClash) {
    auto const ns = makeNamespace("geo");
    auto const first = makeUserDef("first");
    auto const def = makeUserDef("op");
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);

    EXPECT_FALSE(def->setName("first", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(def->getName(), "op");
    EXPECT_EQ(def->get_owner()->getName(), "op");
    EXPECT_EQ(keysOf(ns->getNodeDefs()), (std::vector<std::string>{"first", "op"}));
}

TEST_F(DmNodeDefTest, SetNameToATakenNameMakesItUnique) {
    auto const ns = makeNamespace("geo");
    auto const first = makeUserDef("first");
    auto const def = makeUserDef("op");
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);

    EXPECT_TRUE(def->setName("first", kMakeUnique, kNameVerbatim));
    EXPECT_EQ(def->getName(), "first1");
    EXPECT_EQ(def->get_owner()->getName(), "first1");
    EXPECT_EQ(keysOf(ns->getNodeDefs()), (std::vector<std::string>{"first", "first1"}));
    EXPECT_EQ(first->getName(), "first");
}

TEST_F(DmNodeDefTest, SetNameInsideAnUpdateOnlyStoresTheName) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef("op");
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    {
        NodeDefUpdateHelper guard(*def);
        EXPECT_TRUE(def->setName("renamed", kFailOnClash, kNameVerbatim));
    }
    EXPECT_EQ(def->getName(), "renamed");
    EXPECT_EQ(keysOf(ns->getNodeDefs()), (std::vector<std::string>{"op"}));
}

TEST_F(DmNodeDefTest, UpdateHelperMarksTheDefinitionWhileItLives) {
    auto const def = UserDef::make("op");
    EXPECT_FALSE(def->isInUpdate());
    {
        NodeDefUpdateHelper guard(*def);
        EXPECT_TRUE(def->isInUpdate());
    }
    EXPECT_FALSE(def->isInUpdate());
}

TEST_F(DmNodeDefTest, FullNameOfADetachedDefinitionIsItsName) {
    auto const def = UserDef::make("op");
    EXPECT_EQ(fullName(*def), "op");
}

TEST_F(DmNodeDefTest, FullNameHoldsTheScopePath) {
    auto const root = RootNamespace::make("_KestoGlobalNamespace", RootNamespace::kGlobal);
    auto const inner = root->fetchNamespace("geo::solid");
    ASSERT_NE(inner, nullptr);
    auto const def = makeUserDef();
    ASSERT_EQ(def->setScope(inner.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(fullName(*def), "geo::solid::op");
    EXPECT_EQ(fullName(*def->get_owner()), "geo::solid::op");
}

TEST_F(DmNodeDefTest, FullNameInARootHasNoSeparator) {
    auto const root = RootNamespace::make("_KestoGlobalNamespace", RootNamespace::kGlobal);
    auto const def = makeUserDef();
    ASSERT_EQ(def->setScope(root.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(fullName(*def), "op");
}

TEST_F(DmNodeDefTest, ResolveFullNameAppendsToWhatIsThere) {
    auto const root = RootNamespace::make("_KestoGlobalNamespace", RootNamespace::kGlobal);
    auto const geo = root->fetchNamespace("geo");
    auto const def = makeUserDef();
    ASSERT_EQ(def->setScope(geo.get(), kFailOnClash), DmStatus::kSuccess);
    std::string out = "prefix:";
    def->resolveFullName(out);
    EXPECT_EQ(out, "prefix:geo::op");
}

// ---------------------------------------------------------------------------
// Adding ports

TEST_F(DmNodeDefTest, AddPortDescriptionAppendsAndOwnsThePort) {
    auto const def = UserDef::make("op");
    auto const x = input("x", DmLibrary::getIntType());
    auto const out = output("out", DmLibrary::getFloatType());
    EXPECT_TRUE(def->addPortDescription(x, kFailOnClash));
    EXPECT_TRUE(def->addPortDescription(out, kFailOnClash));
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"x", "out"}));
    EXPECT_EQ(def->getPortsInterface()["x"], x);
    EXPECT_EQ(x->getNodeDef(), def.get());
    EXPECT_EQ(out->getNodeDef(), def.get());
}

TEST_F(DmNodeDefTest, AddPortDescriptionOnAConstDefinitionIsRefused) {
    auto const def = UserDef::make("op");
    def->makeConst();
    auto const x = input("x", DmLibrary::getIntType());
    EXPECT_FALSE(def->addPortDescription(x, kFailOnClash));
    EXPECT_TRUE(def->getPortsInterface().empty());
    EXPECT_EQ(x->getNodeDef(), nullptr);
}

TEST_F(DmNodeDefTest, AddPortDescriptionWithATakenNameFailsOnClash) {
    auto const def = makeUserDef();
    auto const second = input("x", DmLibrary::getFloatType());
    EXPECT_FALSE(def->addPortDescription(second, kFailOnClash));
    EXPECT_EQ(second->getName(), "x");
    EXPECT_EQ(second->getNodeDef(), nullptr);
    EXPECT_EQ(def->getPortsInterface().size(), 2u);
    EXPECT_EQ(def->getPortsInterface()["x"]->getType(), DmLibrary::getIntType());
}

TEST_F(DmNodeDefTest, AddPortDescriptionWithATakenNameRenamesThePort) {
    auto const def = makeUserDef();
    auto const second = input("x", DmLibrary::getFloatType());
    EXPECT_TRUE(def->addPortDescription(second, kMakeUnique));
    EXPECT_EQ(second->getName(), "x1");
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"x", "out", "x1"}));
    EXPECT_EQ(def->getPortsInterface()["x1"], second);
    EXPECT_EQ(second->getNodeDef(), def.get());
}

TEST_F(DmNodeDefTest, AddPortDescriptionAsOverloadKeepsTheNameAndIsRefusedByTheInterface) {
    auto const def = makeUserDef();
    auto const second = input("x", DmLibrary::getFloatType());
    EXPECT_FALSE(def->addPortDescription(second, kAsOverload));
    EXPECT_EQ(second->getName(), "x");
    EXPECT_EQ(second->getNodeDef(), nullptr);
    EXPECT_EQ(def->getPortsInterface().size(), 2u);
}

TEST_F(DmNodeDefTest, AddPortDescriptionOfAPortOfAnotherDefinitionIsRefused) {
    auto const owner = makeUserDef("owner");
    auto const def = UserDef::make("op");
    auto const x = owner->getPortsInterface()["x"];
    EXPECT_FALSE(def->addPortDescription(x, kFailOnClash));
    EXPECT_TRUE(def->getPortsInterface().empty());
    EXPECT_EQ(x->getNodeDef(), owner.get());
}

TEST_F(DmNodeDefTest, AddPortDescriptionAddsTheTypesURIAsADependency) {
    auto const def = UserDef::make("op");
    auto const defURI = makeURI("/tmp/kesto-nodedef/def.json");
    auto const typeURI = makeURI("/tmp/kesto-nodedef/types.json");
    def->setURI(defURI);
    auto const point = makeStruct("Point");
    point->setURI(typeURI);
    ASSERT_TRUE(def->addPortDescription(input("p", point), kFailOnClash));
    EXPECT_TRUE(defURI->hasDependency(typeURI));
    EXPECT_EQ(defURI->getDependencies()->size(), 1u);
}

TEST_F(DmNodeDefTest, AddPortDescriptionWithoutTheDefinitionsURIAddsNoDependency) {
    auto const def = UserDef::make("op");
    auto const typeURI = makeURI("/tmp/kesto-nodedef/types.json");
    auto const point = makeStruct("Point");
    point->setURI(typeURI);
    ASSERT_TRUE(def->addPortDescription(input("p", point), kFailOnClash));
    EXPECT_EQ(def->getURI(), nullptr);
    EXPECT_TRUE(typeURI->getDependencies()->empty());
}

TEST_F(DmNodeDefTest, AddPortDescriptionOfATypeWithoutURIAddsNoDependency) {
    auto const def = UserDef::make("op");
    auto const defURI = makeURI("/tmp/kesto-nodedef/def.json");
    def->setURI(defURI);
    ASSERT_TRUE(def->addPortDescription(input("x", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_TRUE(defURI->getDependencies()->empty());
}

// ---------------------------------------------------------------------------
// Removing, renaming, replacing and reordering ports

TEST_F(DmNodeDefTest, RemovePortDescriptionDropsThePortAndItsDefinition) {
    auto const def = makeUserDef();
    auto const x = def->getPortsInterface()["x"];
    EXPECT_TRUE(def->removePortDescription(x));
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"out"}));
    EXPECT_EQ(x->getNodeDef(), nullptr);
}

TEST_F(DmNodeDefTest, RemovePortDescriptionOnAConstDefinitionIsRefused) {
    auto const def = makeUserDef();
    def->makeConst();
    auto const x = def->getPortsInterface()["x"];
    EXPECT_FALSE(def->removePortDescription(x));
    EXPECT_EQ(def->getPortsInterface().size(), 2u);
    EXPECT_EQ(x->getNodeDef(), def.get());
}

TEST_F(DmNodeDefTest, RemovePortDescriptionOfAStrangerIsRefused) {
    auto const def = makeUserDef();
    auto const stranger = input("x", DmLibrary::getIntType());
    EXPECT_FALSE(def->removePortDescription(stranger));
    EXPECT_EQ(def->getPortsInterface().size(), 2u);
}

TEST_F(DmNodeDefTest, RenamePortDescriptionKeepsThePosition) {
    auto const def = makeUserDef();
    auto const x = def->getPortsInterface()["x"];
    EXPECT_TRUE(def->renamePortDescription("x", "y"));
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"y", "out"}));
    EXPECT_EQ(x->getName(), "y");
    EXPECT_EQ(def->getPortsInterface()["y"], x);
}

TEST_F(DmNodeDefTest, RenamePortDescriptionOfAnUnknownPortIsRefused) {
    auto const def = makeUserDef();
    EXPECT_FALSE(def->renamePortDescription("missing", "y"));
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"x", "out"}));
}

TEST_F(DmNodeDefTest, RenamePortDescriptionToATakenNameIsRefused) {
    auto const def = makeUserDef();
    EXPECT_FALSE(def->renamePortDescription("x", "out"));
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"x", "out"}));
    EXPECT_EQ(def->getPortsInterface()["x"]->getName(), "x");
}

TEST_F(DmNodeDefTest, RenamePortDescriptionOnAConstDefinitionIsRefused) {
    auto const def = makeUserDef();
    def->makeConst();
    EXPECT_FALSE(def->renamePortDescription("x", "y"));
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"x", "out"}));
}

TEST_F(DmNodeDefTest, RenamePortDescriptionInsideAnUpdateSucceedsAtOnce) {
    auto const def = makeUserDef();
    {
        NodeDefUpdateHelper guard(*def);
        EXPECT_TRUE(def->renamePortDescription("x", "y"));
    }
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"x", "out"}));
}

TEST_F(DmNodeDefTest, ReplaceExistingPortPutsTheNewDescriptionInPlace) {
    auto const def = makeUserDef();
    auto const replacement = input("x", DmLibrary::getFloatType());
    EXPECT_TRUE(def->replaceExistingPort(replacement));
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"x", "out"}));
    EXPECT_EQ(def->getPortsInterface()["x"], replacement);
}

TEST_F(DmNodeDefTest, ReplaceExistingPortOfAnUnknownNameIsRefused) {
    auto const def = makeUserDef();
    EXPECT_FALSE(def->replaceExistingPort(input("y", DmLibrary::getFloatType())));
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"x", "out"}));
}

TEST_F(DmNodeDefTest, ReorderPortDescriptionMovesThePort) {
    auto const def = makeUserDef();
    ASSERT_TRUE(def->addPortDescription(input("z", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_EQ(def->reorderPortDescription(0, "z"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"z", "x", "out"}));
}

TEST_F(DmNodeDefTest, ReorderPortDescriptionOnAConstDefinitionIsAConstEntity) {
    auto const def = makeUserDef();
    def->makeConst();
    EXPECT_EQ(def->reorderPortDescription(0, "out"), DmStatus::kConstEntity);
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"x", "out"}));
}

// ---------------------------------------------------------------------------
// Port queries

TEST_F(DmNodeDefTest, GetUniquePortNameKeepsAFreeName) {
    auto const def = makeUserDef();
    std::string name = "y";
    def->getUniquePortName(name);
    EXPECT_EQ(name, "y");
}

TEST_F(DmNodeDefTest, GetUniquePortNameNumbersATakenName) {
    auto const def = makeUserDef();
    std::string name = "x";
    def->getUniquePortName(name);
    EXPECT_EQ(name, "x1");
    ASSERT_TRUE(def->addPortDescription(input("x1", DmLibrary::getIntType()), kFailOnClash));
    name = "x";
    def->getUniquePortName(name);
    EXPECT_EQ(name, "x2");
}

TEST_F(DmNodeDefTest, FindUnconnectedPortValueGivesTheDefaultValueOverride) {
    auto const def = makeUserDef();
    auto const value = DmLibrary::getIntType()->createValue();
    ASSERT_TRUE(def->getPortsInterface()["x"]->setDefaultValueOverride(value));
    EXPECT_EQ(def->findUnconnectedPortValue("x"), value);
}

TEST_F(DmNodeDefTest, FindUnconnectedPortValueOfAPortWithoutOverrideIsNull) {
    auto const def = makeUserDef();
    EXPECT_EQ(def->findUnconnectedPortValue("x"), nullptr);
}

TEST_F(DmNodeDefTest, FindUnconnectedPortValueOfAnUnknownPortIsNull) {
    auto const def = makeUserDef();
    EXPECT_EQ(def->findUnconnectedPortValue("missing"), nullptr);
}

TEST_F(DmNodeDefTest, AllowedTypesOfAPortAreItsOwnType) {
    auto const def = makeUserDef();
    auto const allowed = def->getAllowedTypesForPort("x");
    EXPECT_EQ(keysOf(allowed), (std::vector<std::string>{"int"}));
    EXPECT_EQ(allowed.at("int"), DmLibrary::getIntType());
}

TEST_F(DmNodeDefTest, AllowedTypesOfAnUnknownPortAreEmpty) {
    auto const def = makeUserDef();
    EXPECT_TRUE(def->getAllowedTypesForPort("missing").empty());
}

// ---------------------------------------------------------------------------
// Nodes

TEST_F(DmNodeDefTest, NodeMadeOnTheDefinitionIsRegistered) {
    auto const def = makeUserDef();
    EXPECT_TRUE(def->hasNoReference());
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(def->getInstantiatedNodes().size(), 1u);
    EXPECT_EQ(def->getInstantiatedNodes().count(node.get()), 1u);
    EXPECT_FALSE(def->hasNoReference());
    node.reset();
    EXPECT_TRUE(def->getInstantiatedNodes().empty());
    EXPECT_TRUE(def->hasNoReference());
}

TEST_F(DmNodeDefTest, RegisterNodeOfNullDoesNothing) {
    auto const def = makeUserDef();
    def->registerNode(nullptr);
    EXPECT_TRUE(def->getInstantiatedNodes().empty());
    EXPECT_TRUE(def->hasNoReference());
}

TEST_F(DmNodeDefTest, UnregisterNodeForgetsTheNode) {
    auto const def = makeUserDef();
    auto const node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    def->unregisterNode(node.get());
    EXPECT_TRUE(def->getInstantiatedNodes().empty());
    EXPECT_TRUE(def->hasNoReference());
    def->registerNode(node.get());
    EXPECT_EQ(def->getInstantiatedNodes().count(node.get()), 1u);
}

TEST_F(DmNodeDefTest, NodeShowsThePortsOfTheDefinition) {
    auto const def = makeUserDef();
    auto const node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"x", "out"}));
    EXPECT_EQ(node->find("x")->second->getPortDescription(), def->getPortsInterface()["x"]);
}

TEST_F(DmNodeDefTest, AddedPortReachesEveryNode) {
    auto const def = makeUserDef();
    auto const first = DmNode::createNode("first", def);
    auto const second = DmNode::createNode("second", def);
    auto const z = input("z", DmLibrary::getFloatType());
    ASSERT_TRUE(def->addPortDescription(z, kFailOnClash));
    for (auto const& node : {first, second}) {
        EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"x", "out", "z"}))
            << node->getName();
        EXPECT_EQ(node->find("z")->second->getPortDescription(), z) << node->getName();
    }
}

TEST_F(DmNodeDefTest, RemovedPortLeavesEveryNode) {
    auto const def = makeUserDef();
    auto const first = DmNode::createNode("first", def);
    auto const second = DmNode::createNode("second", def);
    ASSERT_TRUE(def->removePortDescription(def->getPortsInterface()["x"]));
    EXPECT_EQ(portNames(first->getPorts()), (std::vector<std::string>{"out"}));
    EXPECT_EQ(portNames(second->getPorts()), (std::vector<std::string>{"out"}));
}

TEST_F(DmNodeDefTest, RenamedPortIsRenamedOnEveryNode) {
    auto const def = makeUserDef();
    auto const node = DmNode::createNode("n", def);
    ASSERT_TRUE(def->renamePortDescription("x", "y"));
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"y", "out"}));
    EXPECT_EQ(node->find("y")->second->getName(), "y");
}

TEST_F(DmNodeDefTest, ReplacedPortReachesEveryNode) {
    auto const def = makeUserDef();
    auto const node = DmNode::createNode("n", def);
    auto const replacement = input("x", DmLibrary::getFloatType());
    ASSERT_TRUE(def->replaceExistingPort(replacement));
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"x", "out"}));
    EXPECT_EQ(node->find("x")->second->getPortDescription(), replacement);
}

TEST_F(DmNodeDefTest, ReorderedPortsAreReorderedOnEveryNode) {
    auto const def = makeUserDef();
    ASSERT_TRUE(def->addPortDescription(input("z", DmLibrary::getIntType()), kFailOnClash));
    auto const node = DmNode::createNode("n", def);
    ASSERT_EQ(def->reorderPortDescription(0, "z"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"z", "x", "out"}));
}

TEST_F(DmNodeDefTest, RefusedPortChangeDoesNotReachTheNodes) {
    auto const def = makeUserDef();
    auto const node = DmNode::createNode("n", def);
    EXPECT_FALSE(def->addPortDescription(input("x", DmLibrary::getFloatType()), kFailOnClash));
    EXPECT_FALSE(def->renamePortDescription("x", "out"));
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"x", "out"}));
    EXPECT_EQ(node->find("x")->second->getPortDescription()->getType(), DmLibrary::getIntType());
}

TEST_F(DmNodeDefTest, DefinitionOutlivesItsScopeEntryWhileANodeUsesIt) {
    auto const ns = makeNamespace("geo");
    auto def = makeUserDef();
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto node = DmNode::createNode("n", def);
    ASSERT_EQ(ns->unregisterNodeDef(def), DmStatus::kSuccess);
    EXPECT_FALSE(ns->hasNodeDef("op"));

    std::weak_ptr<DmNodeDef> const watch = def;
    def.reset();
    ASSERT_FALSE(watch.expired());
    EXPECT_EQ(node->getNodeDef(), watch.lock().get());
    EXPECT_EQ(node->getNodeDef()->getName(), "op");
    EXPECT_EQ(portNames(node->getNodeDef()->getPortsInterface().getPorts()),
              (std::vector<std::string>{"x", "out"}));
    node.reset();
    EXPECT_TRUE(watch.expired());
}
