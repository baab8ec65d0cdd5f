#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmTerminalNodeDef.h>
#include <KestoDM/graph/DmUnknownNodeDef.h>
#include <KestoDM/graph/DmValueNodeDef.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>

#include "graph/ModelTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

using namespace Kesto;
using KestoTest::fullName;
using KestoTest::input;
using KestoTest::keysOf;
using KestoTest::makeNamespace;
using KestoTest::makeStruct;
using KestoTest::makeUserDef;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::RootNamespace;
using KestoTest::setOf;
using KestoTest::UserDef;

namespace {

std::shared_ptr<DmBaseType const> typeOf(DmNodeDef const& def, std::string const& port) {
    auto const description = def.getPortsInterface()[port];
    return description ? description->getType() : nullptr;
}

/// The namespace `scope` and in it the set "op" of one host definition for
/// each type of the input "x" given, in order: the first placed under
/// kFailOnClash, the others as overloads, each expected to succeed.
template <class... Types>
auto placeOverloadsIn(std::string const& scope, Types const&... types) {
    auto const ns = makeNamespace(scope);
    auto const defs = std::make_tuple(makeUserDef(types)...);
    DmNameResolutionType resolution = kFailOnClash;
    std::apply(
        [&](auto const&... def) {
            auto const place = [&](std::shared_ptr<UserDef> const& overload) {
                EXPECT_EQ(overload->setScope(ns.get(), resolution), DmStatus::kSuccess);
                resolution = kAsOverload;
            };
            (place(def), ...);
        },
        defs);
    return std::tuple_cat(std::make_tuple(ns, setOf(*ns, "op")), defs);
}

/// placeOverloadsIn the namespace "geo".
template <class... Types>
auto placeOverloads(Types const&... types) {
    return placeOverloadsIn("geo", types...);
}

class DmOverloadSetTest : public KestoTest::ModelTest {};

} // namespace

// ---------------------------------------------------------------------------
// Making a set

TEST_F(DmOverloadSetTest, NewOverloadSetOfNullIsNull) {
    EXPECT_EQ(DmOverloadSet::newOverloadSet(nullptr, false), nullptr);
}

TEST_F(DmOverloadSetTest, NewOverloadSetTakesNameScopeAndAssociativityOfItsOverload) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef(DmLibrary::getIntType());
    def->initializeScope(ns.get());
    ASSERT_TRUE(def->setAssociativity(DmNodeDef::kLeftToRight));
    auto const set = DmOverloadSet::newOverloadSet(def, false);
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->getName(), "op");
    EXPECT_EQ(set->getScope(), ns.get());
    EXPECT_EQ(set->associativity(), DmNodeDef::kLeftToRight);
    ASSERT_EQ(set->size(), 1u);
    EXPECT_EQ(set->getOverloads().front(), def);
    EXPECT_FALSE(set->isBuiltIn());
    EXPECT_EQ(set->getDefaultOverload(), nullptr);
}

TEST_F(DmOverloadSetTest, NewOverloadSetIsBuiltInAsGiven) {
    auto const def = makeUserDef(DmLibrary::getIntType());
    auto const set = DmOverloadSet::newOverloadSet(def, true);
    ASSERT_NE(set, nullptr);
    EXPECT_TRUE(set->isBuiltIn());
}

TEST_F(DmOverloadSetTest, NewOverloadSetClonesThePortsOfItsOverload) {
    auto const def = makeUserDef(DmLibrary::getIntType());
    auto const set = DmOverloadSet::newOverloadSet(def, false);
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(portNames(set->getPortsInterface().getPorts()), (std::vector<std::string>{"x", "out"}));
    for (auto const& name : {"x", "out"}) {
        auto const mine = set->getPortsInterface()[name];
        auto const theirs = def->getPortsInterface()[name];
        ASSERT_NE(mine, nullptr) << name;
        EXPECT_NE(mine, theirs) << name;
        EXPECT_EQ(mine->getType(), theirs->getType()) << name;
        EXPECT_EQ(mine->getDirection(), theirs->getDirection()) << name;
        EXPECT_EQ(theirs->getNodeDef(), def.get()) << name;
    }
}

TEST_F(DmOverloadSetTest, NewOverloadSetTakesADefaultOverloadAsItsDefault) {
    auto const def = makeUserDef(DmLibrary::getIntType());
    def->assignIsDefaultOverload(true);
    auto const set = DmOverloadSet::newOverloadSet(def, false);
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->getDefaultOverload(), def.get());
}

TEST_F(DmOverloadSetTest, SetOfAValueNodeDefinitionIsAValueNodeDefinition) {
    auto const def = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(def, nullptr);
    auto const set = DmOverloadSet::newOverloadSet(def, true);
    ASSERT_NE(set, nullptr);
    EXPECT_TRUE(set->isValueNodeDef());
    EXPECT_FALSE(set->hasNoReference());
}

TEST_F(DmOverloadSetTest, SetOfAPlainDefinitionHasNoReferenceWithoutNodes) {
    auto const [ns, set, def] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    ASSERT_NE(set, nullptr);
    EXPECT_FALSE(set->isValueNodeDef());
    EXPECT_TRUE(set->hasNoReference());
    auto const node = DmNode::createNode("n", set);
    EXPECT_FALSE(set->hasNoReference());
}

// ---------------------------------------------------------------------------
// Adding overloads

TEST_F(DmOverloadSetTest, SecondOverloadOfADifferentTypeMakesThePortAuto) {
    auto const ns = makeNamespace("geo");
    auto const first = makeUserDef(DmLibrary::getIntType());
    auto const second = makeUserDef(DmLibrary::getFloatType());
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);

    auto const set = setOf(*ns, "op");
    ASSERT_NE(set, nullptr);
    ASSERT_EQ(set->size(), 2u);
    EXPECT_EQ(set->getOverloads()[1], second);
    EXPECT_EQ(typeOf(*set, "x"), DmLibrary::getAutoType());
    EXPECT_EQ(typeOf(*set, "out"), DmLibrary::getIntType());
    EXPECT_EQ(typeOf(*first, "x"), DmLibrary::getIntType());
    EXPECT_EQ(typeOf(*second, "x"), DmLibrary::getFloatType());
}

TEST_F(DmOverloadSetTest, SecondOverloadOfTheSameTypesKeepsThePortsConcrete) {
    auto const ns = makeNamespace("geo");
    auto const first = makeUserDef(DmLibrary::getIntType());
    auto const second = makeUserDef(DmLibrary::getIntType());
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);

    auto const set = setOf(*ns, "op");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->size(), 2u);
    EXPECT_EQ(typeOf(*set, "x"), DmLibrary::getIntType());
    EXPECT_EQ(typeOf(*set, "out"), DmLibrary::getIntType());
}

TEST_F(DmOverloadSetTest, PortsOfTwoDistinctTypeObjectsBecomeAutoEvenWhenEquivalent) {
    auto const ns = makeNamespace("geo");
    auto const first = makeUserDef(makeStruct("Point"));
    auto const second = makeUserDef(makeStruct("Point"));
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    EXPECT_EQ(typeOf(*setOf(*ns, "op"), "x"), DmLibrary::getAutoType());
}

TEST_F(DmOverloadSetTest, AddOverloadOfAnOverloadAlreadyThereFails) {
    auto const [ns, set, first] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->addOverload(first), DmStatus::kFailure);
    EXPECT_EQ(set->size(), 1u);
}

TEST_F(DmOverloadSetTest, OverloadWithoutAPortOfTheSetJoinsButFails) {
    auto const ns = makeNamespace("geo");
    auto const first = makeUserDef(DmLibrary::getIntType());
    auto const second = UserDef::make("op");
    second->addPortDescription(output("out", DmLibrary::getIntType()), kFailOnClash);
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kFailure);

    auto const set = setOf(*ns, "op");
    ASSERT_NE(set, nullptr);
    ASSERT_EQ(set->size(), 2u);
    EXPECT_EQ(set->getOverloads()[1], second);
    EXPECT_EQ(typeOf(*set, "x"), DmLibrary::getIntType());
}

TEST_F(DmOverloadSetTest, FirstOverloadOfAnEmptySetGivesItsPorts) {
    auto const empty = UserDef::make("op");
    auto const set = DmOverloadSet::newOverloadSet(empty, false);
    ASSERT_NE(set, nullptr);
    ASSERT_EQ(set->removeOverload(empty), DmStatus::kSuccess);
    ASSERT_TRUE(set->empty());

    auto const def = makeUserDef(DmLibrary::getFloatType());
    EXPECT_EQ(set->addOverload(def), DmStatus::kSuccess);
    EXPECT_EQ(set->size(), 1u);
    EXPECT_EQ(portNames(set->getPortsInterface().getPorts()), (std::vector<std::string>{"x", "out"}));
    EXPECT_EQ(typeOf(*set, "x"), DmLibrary::getFloatType());
    EXPECT_NE(set->getPortsInterface()["x"], def->getPortsInterface()["x"]);
}

// ---------------------------------------------------------------------------
// Removing overloads

TEST_F(DmOverloadSetTest, RemovingTheDisagreeingOverloadMakesThePortConcreteAgain) {
    auto const [ns, set, first, second] = placeOverloads(DmLibrary::getIntType(), DmLibrary::getFloatType());
    ASSERT_FALSE(HasFailure());
    ASSERT_EQ(typeOf(*set, "x"), DmLibrary::getAutoType());

    EXPECT_EQ(ns->unregisterNodeDef(second), DmStatus::kSuccess);
    ASSERT_EQ(set->size(), 1u);
    EXPECT_EQ(set->getOverloads().front(), first);
    EXPECT_EQ(typeOf(*set, "x"), DmLibrary::getIntType());
    EXPECT_EQ(typeOf(*set, "out"), DmLibrary::getIntType());
    EXPECT_EQ(second->get_owner(), nullptr);
}

TEST_F(DmOverloadSetTest, RemovingTheFirstOverloadNarrowsToTheOthersType) {
    auto const [ns, set, first, second] = placeOverloads(DmLibrary::getIntType(), DmLibrary::getFloatType());
    ASSERT_FALSE(HasFailure());

    EXPECT_EQ(first->setScope(nullptr, kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(set->size(), 1u);
    EXPECT_EQ(typeOf(*set, "x"), DmLibrary::getFloatType());
    EXPECT_EQ(ns->getNodeDefs().size(), 1u);
}

TEST_F(DmOverloadSetTest, PortStaysAutoWhileTheRemainingOverloadsDisagree) {
    auto const [ns, set, a, b, c] =
        placeOverloads(DmLibrary::getIntType(), DmLibrary::getFloatType(), DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());

    EXPECT_EQ(ns->unregisterNodeDef(c), DmStatus::kSuccess);
    EXPECT_EQ(typeOf(*set, "x"), DmLibrary::getAutoType());
    EXPECT_EQ(ns->unregisterNodeDef(b), DmStatus::kSuccess);
    EXPECT_EQ(typeOf(*set, "x"), DmLibrary::getIntType());
}

TEST_F(DmOverloadSetTest, NarrowingFailsWhenARemainingOverloadLacksThePort) {
    auto const ns = makeNamespace("geo");
    auto const a = makeUserDef(DmLibrary::getIntType());
    auto const lacking = UserDef::make("op");
    lacking->addPortDescription(output("out", DmLibrary::getIntType()), kFailOnClash);
    auto const c = makeUserDef(DmLibrary::getFloatType());
    ASSERT_EQ(a->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(lacking->setScope(ns.get(), kAsOverload), DmStatus::kFailure);
    ASSERT_EQ(c->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    auto const set = setOf(*ns, "op");
    ASSERT_EQ(typeOf(*set, "x"), DmLibrary::getAutoType());

    EXPECT_EQ(ns->unregisterNodeDef(c), DmStatus::kFailure);
    EXPECT_EQ(set->size(), 2u);
}

TEST_F(DmOverloadSetTest, RemoveOverloadOfAStrangerFails) {
    auto const [ns, set, first] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    auto const stranger = makeUserDef(DmLibrary::getIntType());
    EXPECT_EQ(set->removeOverload(stranger), DmStatus::kFailure);
    EXPECT_EQ(set->size(), 1u);
}

TEST_F(DmOverloadSetTest, RemovingTheLastOverloadEmptiesTheSet) {
    auto const def = makeUserDef(DmLibrary::getIntType());
    auto const set = DmOverloadSet::newOverloadSet(def, false);
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->removeOverload(def), DmStatus::kSuccess);
    EXPECT_TRUE(set->empty());
}

// ---------------------------------------------------------------------------
// The default overload

TEST_F(DmOverloadSetTest, SetIsDefaultOverloadWithoutAnOwnerFails) {
    auto const def = makeUserDef(DmLibrary::getIntType());
    EXPECT_EQ(def->setIsDefaultOverload(true), DmStatus::kFailure);
    EXPECT_FALSE(def->isDefaultOverload());
    EXPECT_EQ(def->setIsDefaultOverload(false), DmStatus::kFailure);
}

TEST_F(DmOverloadSetTest, SetIsDefaultOverloadMakesItTheSetsDefault) {
    auto const [ns, set, first] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    EXPECT_EQ(set->getDefaultOverload(), nullptr);
    EXPECT_EQ(first->setIsDefaultOverload(true), DmStatus::kSuccess);
    EXPECT_TRUE(first->isDefaultOverload());
    EXPECT_EQ(set->getDefaultOverload(), first.get());
}

TEST_F(DmOverloadSetTest, SecondDefaultOverloadClearsTheFirst) {
    auto const [ns, set, first, second] = placeOverloads(DmLibrary::getIntType(), DmLibrary::getFloatType());
    ASSERT_FALSE(HasFailure());

    ASSERT_EQ(first->setIsDefaultOverload(true), DmStatus::kSuccess);
    EXPECT_EQ(second->setIsDefaultOverload(true), DmStatus::kSuccess);
    EXPECT_FALSE(first->isDefaultOverload());
    EXPECT_TRUE(second->isDefaultOverload());
    EXPECT_EQ(set->getDefaultOverload(), second.get());
}

TEST_F(DmOverloadSetTest, ClearingTheDefaultOverloadLeavesNone) {
    auto const [ns, set, first] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    ASSERT_EQ(first->setIsDefaultOverload(true), DmStatus::kSuccess);
    EXPECT_EQ(first->setIsDefaultOverload(false), DmStatus::kSuccess);
    EXPECT_FALSE(first->isDefaultOverload());
    EXPECT_EQ(set->getDefaultOverload(), nullptr);
}

TEST_F(DmOverloadSetTest, ClearingAnOverloadThatIsNotTheDefaultFails) {
    auto const [ns, set, first, second] = placeOverloads(DmLibrary::getIntType(), DmLibrary::getFloatType());
    ASSERT_FALSE(HasFailure());
    ASSERT_EQ(first->setIsDefaultOverload(true), DmStatus::kSuccess);

    EXPECT_EQ(second->setIsDefaultOverload(false), DmStatus::kFailure);
    EXPECT_TRUE(first->isDefaultOverload());
    EXPECT_EQ(set->getDefaultOverload(), first.get());
}

TEST_F(DmOverloadSetTest, RegisteredDefaultOverloadBecomesTheDefaultOfItsNewSet) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef(DmLibrary::getIntType());
    def->assignIsDefaultOverload(true);
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(setOf(*ns, "op")->getDefaultOverload(), def.get());
}

TEST_F(DmOverloadSetTest, RemovingTheDefaultOverloadClearsTheDefault) {
    auto const [ns, set, first, second] = placeOverloads(DmLibrary::getIntType(), DmLibrary::getFloatType());
    ASSERT_FALSE(HasFailure());
    ASSERT_EQ(second->setIsDefaultOverload(true), DmStatus::kSuccess);

    EXPECT_EQ(ns->unregisterNodeDef(second), DmStatus::kSuccess);
    EXPECT_EQ(set->getDefaultOverload(), nullptr);
    EXPECT_FALSE(second->isDefaultOverload());
    EXPECT_EQ(set->size(), 1u);
}

TEST_F(DmOverloadSetTest, RemovingAnOverloadThatClaimsToBeDefaultWithoutBeingItFails) {
    auto const [ns, set, first, second] = placeOverloads(DmLibrary::getIntType(), DmLibrary::getFloatType());
    ASSERT_FALSE(HasFailure());
    ASSERT_EQ(first->setIsDefaultOverload(true), DmStatus::kSuccess);
    second->assignIsDefaultOverload(true);

    EXPECT_EQ(set->removeOverload(second), DmStatus::kFailure);
    EXPECT_EQ(set->getDefaultOverload(), first.get());
}

// ---------------------------------------------------------------------------
// What the set answers

TEST_F(DmOverloadSetTest, SetOfOneTerminalIsTerminal) {
    auto const ns = makeNamespace("geo");
    auto const terminal = DmTerminalNodeDef::createTerminalNodeDef("result", kNameVerbatim);
    ASSERT_NE(terminal, nullptr);
    ASSERT_EQ(terminal->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_TRUE(setOf(*ns, "result")->isTerminal());
}

TEST_F(DmOverloadSetTest, SetOfAPlainOverloadIsNoTerminal) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef(DmLibrary::getIntType());
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_FALSE(setOf(*ns, "op")->isTerminal());
}

TEST_F(DmOverloadSetTest, SetIsUnknownWhenItsFirstOverloadIs) {
    auto const ns = makeNamespace("geo");
    auto const placeholder = DmUnknownNodeDef::newUnknownNodeDef("op");
    auto const def = UserDef::make("op");
    ASSERT_EQ(placeholder->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(def->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    auto const set = setOf(*ns, "op");
    ASSERT_EQ(set->size(), 2u);
    EXPECT_TRUE(set->isUnknown());
}

TEST_F(DmOverloadSetTest, SetIsKnownWhenOnlyALaterOverloadIsUnknown) {
    auto const ns = makeNamespace("geo");
    auto const def = UserDef::make("op");
    auto const placeholder = DmUnknownNodeDef::newUnknownNodeDef("op");
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(placeholder->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    auto const set = setOf(*ns, "op");
    ASSERT_EQ(set->size(), 2u);
    EXPECT_FALSE(set->isUnknown());
}

TEST_F(DmOverloadSetTest, SetIsSingleWhileLockedWithOneOverload) {
    auto const [ns, set, first] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    EXPECT_TRUE(set->isSingle());
    EXPECT_TRUE(first->isSingle());

    auto const second = makeUserDef(DmLibrary::getIntType());
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    EXPECT_FALSE(set->isSingle());
    EXPECT_FALSE(first->isSingle());
    EXPECT_FALSE(second->isSingle());
}

TEST_F(DmOverloadSetTest, UnlockedSetIsNotSingle) {
    auto const [ns, set, first] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    ASSERT_EQ(set->setOverloadsLocked(false), DmStatus::kSuccess);
    EXPECT_FALSE(set->isOverloadsLocked());
    EXPECT_FALSE(set->isSingle());
    EXPECT_FALSE(first->isSingle());
}

TEST_F(DmOverloadSetTest, UnlockingASetWithAnAutoInputFailsAndLeavesItLocked) {
    auto const [ns, set, first, second] = placeOverloads(DmLibrary::getIntType(), DmLibrary::getFloatType());
    ASSERT_FALSE(HasFailure());
    ASSERT_TRUE(set->hasAutoInputPort());

    EXPECT_EQ(set->setOverloadsLocked(false), DmStatus::kFailure);
    EXPECT_TRUE(set->isOverloadsLocked());
}

TEST_F(DmOverloadSetTest, UnlockingAnOverloadWhoseSetHasAnAutoInputFails) {
    auto const [ns, set, first, second] = placeOverloads(DmLibrary::getIntType(), DmLibrary::getFloatType());
    ASSERT_FALSE(HasFailure());

    EXPECT_FALSE(first->hasAutoInputPort());
    EXPECT_EQ(first->setOverloadsLocked(false), DmStatus::kFailure);
    EXPECT_TRUE(first->isOverloadsLocked());
    EXPECT_TRUE(set->isOverloadsLocked());
}

TEST_F(DmOverloadSetTest, UnlockingAnOverloadUnlocksItsSet) {
    auto const [ns, set, first] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());

    EXPECT_EQ(first->setOverloadsLocked(false), DmStatus::kSuccess);
    EXPECT_FALSE(first->isOverloadsLocked());
    EXPECT_FALSE(set->isOverloadsLocked());
}

TEST_F(DmOverloadSetTest, OverloadIsLockedWhileItsSetIs) {
    auto const [ns, set, first] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    ASSERT_EQ(first->setOverloadsLocked(false), DmStatus::kSuccess);

    ASSERT_EQ(set->setOverloadsLocked(true), DmStatus::kSuccess);
    EXPECT_TRUE(set->isOverloadsLocked());
    EXPECT_TRUE(first->isOverloadsLocked());
}

TEST_F(DmOverloadSetTest, OverloadInASetAnswersFromTheSet) {
    auto const [ns, set, first] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());

    ASSERT_EQ(set->setOverloadsLocked(false), DmStatus::kSuccess);
    EXPECT_FALSE(first->isOverloadsLocked());
}

TEST_F(DmOverloadSetTest, OverloadWithAnAutoInputIsLockedInAnUnlockedSet) {
    auto const [ns, set, first] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    ASSERT_EQ(set->setOverloadsLocked(false), DmStatus::kSuccess);

    ASSERT_TRUE(first->addPortDescription(input("any", DmLibrary::getAutoType()), kFailOnClash));
    EXPECT_TRUE(first->isOverloadsLocked());
}

TEST_F(DmOverloadSetTest, AllowedTypesOfASetAreTheUnionInOverloadOrder) {
    auto const [ns, set, a, b, c] =
        placeOverloads(DmLibrary::getIntType(), DmLibrary::getFloatType(), DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());

    auto const allowed = set->getAllowedTypesForPort("x");
    EXPECT_EQ(keysOf(allowed), (std::vector<std::string>{"int", "float"}));
    EXPECT_EQ(allowed.at("int"), DmLibrary::getIntType());
    EXPECT_EQ(allowed.at("float"), DmLibrary::getFloatType());
    EXPECT_EQ(keysOf(set->getAllowedTypesForPort("out")), (std::vector<std::string>{"int"}));
}

TEST_F(DmOverloadSetTest, AllowedTypesOfAnUnknownPortOfASetAreEmpty) {
    auto const ns = makeNamespace("geo");
    auto const a = makeUserDef(DmLibrary::getIntType());
    ASSERT_EQ(a->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_TRUE(setOf(*ns, "op")->getAllowedTypesForPort("missing").empty());
}

TEST_F(DmOverloadSetTest, UnconnectedPortValueOfASetIsTheOverrideOfItsPort) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef(DmLibrary::getIntType());
    auto const value = DmLibrary::getIntType()->createValue();
    ASSERT_TRUE(def->getPortsInterface()["x"]->setDefaultValueOverride(value));
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const set = setOf(*ns, "op");
    EXPECT_EQ(set->findUnconnectedPortValue("x"), value);
    EXPECT_EQ(set->findUnconnectedPortValue("missing"), nullptr);
}

TEST_F(DmOverloadSetTest, FullNameOfAnOverloadIsThatOfItsSet) {
    auto const root = RootNamespace::make("_KestoGlobalNamespace", RootNamespace::kGlobal);
    auto const geo = root->fetchNamespace("geo");
    auto const def = makeUserDef(DmLibrary::getIntType());
    ASSERT_EQ(def->setScope(geo.get(), kFailOnClash), DmStatus::kSuccess);
    auto const set = setOf(*geo, "op");
    EXPECT_EQ(fullName(*set), "geo::op");
    EXPECT_EQ(fullName(*def), fullName(*set));
}

// ---------------------------------------------------------------------------
// Placing and importing a set

TEST_F(DmOverloadSetTest, SetNameMakesTheNameUniqueInTheScope) {
    auto const ns = makeNamespace("geo");
    auto const first = makeUserDef(DmLibrary::getIntType(), "first");
    auto const def = makeUserDef(DmLibrary::getIntType());
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const set = setOf(*ns, "op");

    EXPECT_TRUE(set->setName("first", kMakeUnique, kNameVerbatim));
    EXPECT_EQ(set->getName(), "first1");
    EXPECT_FALSE(set->isInUpdate());
}

TEST_F(DmOverloadSetTest, SetScopeFilesTheSetItself) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef(DmLibrary::getIntType());
    auto const set = DmOverloadSet::newOverloadSet(def, false);
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(set->getScope(), ns.get());
    std::shared_ptr<DmNodeDef> found;
    ASSERT_TRUE(ns->findNodeDef("op", found));
    EXPECT_EQ(found, set);
}

TEST_F(DmOverloadSetTest, SetScopeOfASetToATakenNameFailsOnClash) {
    auto const ns = makeNamespace("geo");
    auto const placed = makeUserDef(DmLibrary::getIntType());
    ASSERT_EQ(placed->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const def = makeUserDef(DmLibrary::getFloatType());
    auto const set = DmOverloadSet::newOverloadSet(def, false);
    ASSERT_NE(set, nullptr);

    EXPECT_EQ(set->setScope(ns.get(), kFailOnClash), DmStatus::kInvalidArgument);
    EXPECT_EQ(set->getScope(), nullptr);
    EXPECT_EQ(setOf(*ns, "op")->getOverloads().front(), placed);
}

TEST_F(DmOverloadSetTest, SetScopeOfASetToATakenNameMakesItUnique) {
    auto const ns = makeNamespace("geo");
    auto const placed = makeUserDef(DmLibrary::getIntType());
    ASSERT_EQ(placed->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const def = makeUserDef(DmLibrary::getFloatType());
    auto const set = DmOverloadSet::newOverloadSet(def, false);
    ASSERT_NE(set, nullptr);

    EXPECT_EQ(set->setScope(ns.get(), kMakeUnique), DmStatus::kSuccess);
    EXPECT_EQ(set->getName(), "op1");
    EXPECT_EQ(keysOf(ns->getNodeDefs()), (std::vector<std::string>{"op", "op1"}));
    std::shared_ptr<DmNodeDef> found;
    ASSERT_TRUE(ns->findNodeDef("op1", found));
    EXPECT_EQ(found, set);
}

TEST_F(DmOverloadSetTest, ImportIntoNoScopeFails) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef(DmLibrary::getIntType());
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*ns, "op")->import(nullptr, kFailOnClash, "op", out, 0), DmStatus::kFailure);
    EXPECT_TRUE(def->imports().empty());
}

TEST_F(DmOverloadSetTest, ImportToATakenNameFailsOnClash) {
    auto const [source, set, def] = placeOverloadsIn("source", DmLibrary::getIntType());
    auto const [target, targetSet, there] = placeOverloadsIn("target", DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*source, "op")->import(target, kFailOnClash, "op", out, 0), DmStatus::kInvalidArgument);
    EXPECT_TRUE(def->imports().empty());
}

TEST_F(DmOverloadSetTest, ImportImportsEachOverloadAsAnOverload) {
    auto const [source, set, first, second] =
        placeOverloadsIn("source", DmLibrary::getIntType(), DmLibrary::getFloatType());
    ASSERT_FALSE(HasFailure());
    auto const target = makeNamespace("target");
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*source, "op")->import(target, kFailOnClash, "op", out, 0), DmStatus::kSuccess);
    for (auto const& def : {first, second}) {
        ASSERT_EQ(def->imports().size(), 1u);
        EXPECT_EQ(def->imports()[0].scope, target.get());
        EXPECT_EQ(def->imports()[0].type, kAsOverload);
        EXPECT_EQ(def->imports()[0].name, "op");
    }
}

TEST_F(DmOverloadSetTest, ImportToATakenNameImportsUnderANewName) {
    auto const [source, set, def] = placeOverloadsIn("source", DmLibrary::getIntType());
    auto const [target, targetSet, there] = placeOverloadsIn("target", DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*source, "op")->import(target, kMakeUnique, "op", out, 0), DmStatus::kSuccess);
    ASSERT_EQ(def->imports().size(), 1u);
    EXPECT_EQ(def->imports()[0].scope, target.get());
    EXPECT_EQ(def->imports()[0].type, kAsOverload);
    EXPECT_EQ(def->imports()[0].name, "op1");
}

// ---------------------------------------------------------------------------
// Changes of an overload reach its set and the nodes made from the set

TEST_F(DmOverloadSetTest, NodeOnASetShowsTheMergedInterface) {
    auto const [ns, set, first, second] = placeOverloads(DmLibrary::getIntType(), DmLibrary::getFloatType());
    ASSERT_FALSE(HasFailure());

    auto const node = DmNode::createNode("n", set);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getNodeDef(), set.get());
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"x", "out"}));
    EXPECT_EQ(node->find("x")->second->getPortDescription(), set->getPortsInterface()["x"]);
    EXPECT_EQ(node->find("x")->second->getPortDescription()->getType(), DmLibrary::getAutoType());
    EXPECT_EQ(node->find("out")->second->getPortDescription()->getType(), DmLibrary::getIntType());
    EXPECT_EQ(set->getInstantiatedNodes().count(node.get()), 1u);
}

TEST_F(DmOverloadSetTest, NodeOnASetFollowsTheWideningAndTheNarrowing) {
    auto const [ns, set, first] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    auto const node = DmNode::createNode("n", set);
    ASSERT_NE(node, nullptr);
    ASSERT_EQ(node->find("x")->second->getPortDescription()->getType(), DmLibrary::getIntType());

    auto const second = makeUserDef(DmLibrary::getFloatType());
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    EXPECT_EQ(node->find("x")->second->getPortDescription(), set->getPortsInterface()["x"]);
    EXPECT_EQ(node->find("x")->second->getPortDescription()->getType(), DmLibrary::getAutoType());

    ASSERT_EQ(ns->unregisterNodeDef(second), DmStatus::kSuccess);
    EXPECT_EQ(node->find("x")->second->getPortDescription(), set->getPortsInterface()["x"]);
    EXPECT_EQ(node->find("x")->second->getPortDescription()->getType(), DmLibrary::getIntType());
}

TEST_F(DmOverloadSetTest, PortAddedToAnOverloadReachesItsSetAndItsNodes) {
    auto const [ns, set, def] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    auto const node = DmNode::createNode("n", set);
    ASSERT_NE(node, nullptr);

    auto const z = input("z", DmLibrary::getFloatType());
    ASSERT_TRUE(def->addPortDescription(z, kFailOnClash));
    EXPECT_EQ(z->getNodeDef(), def.get());
    EXPECT_EQ(portNames(set->getPortsInterface().getPorts()), (std::vector<std::string>{"x", "out", "z"}));
    EXPECT_EQ(typeOf(*set, "z"), DmLibrary::getFloatType());
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"x", "out", "z"}));
}

TEST_F(DmOverloadSetTest, PortRemovedFromAnOverloadLeavesItsSetAndItsNodes) {
    auto const [ns, set, def] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    auto const node = DmNode::createNode("n", set);
    ASSERT_NE(node, nullptr);

    ASSERT_TRUE(def->removePortDescription(def->getPortsInterface()["x"]));
    EXPECT_EQ(portNames(set->getPortsInterface().getPorts()), (std::vector<std::string>{"out"}));
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"out"}));
}

TEST_F(DmOverloadSetTest, PortRenamedOnAnOverloadIsRenamedOnItsSetAndItsNodes) {
    auto const [ns, set, def] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    auto const node = DmNode::createNode("n", set);
    ASSERT_NE(node, nullptr);

    ASSERT_TRUE(def->renamePortDescription("x", "y"));
    EXPECT_EQ(portNames(set->getPortsInterface().getPorts()), (std::vector<std::string>{"y", "out"}));
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"y", "out"}));
}

TEST_F(DmOverloadSetTest, NodeOnAnOverloadDoesNotSeeTheOtherOverloads) {
    auto const ns = makeNamespace("geo");
    auto const first = makeUserDef(DmLibrary::getIntType());
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const node = DmNode::createNode("n", first);
    ASSERT_NE(node, nullptr);
    auto const second = makeUserDef(DmLibrary::getFloatType());
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    EXPECT_EQ(node->getNodeDef(), first.get());
    EXPECT_EQ(node->find("x")->second->getPortDescription()->getType(), DmLibrary::getIntType());
}

TEST_F(DmOverloadSetTest, PortReplacedOnAnOverloadReachesItsSetAndItsNodes) {
    auto const [ns, set, def] = placeOverloads(DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    auto const node = DmNode::createNode("n", set);
    ASSERT_NE(node, nullptr);

    ASSERT_TRUE(def->replaceExistingPort(input("x", DmLibrary::getFloatType())));
    EXPECT_EQ(portNames(set->getPortsInterface().getPorts()), (std::vector<std::string>{"x", "out"}));
    EXPECT_EQ(typeOf(*set, "x"), DmLibrary::getFloatType());
    EXPECT_EQ(node->find("x")->second->getPortDescription(), set->getPortsInterface()["x"]);
}

TEST_F(DmOverloadSetTest, PortReplacedOnOneOfTwoOverloadsWidensTheSet) {
    auto const [ns, set, first, second] = placeOverloads(DmLibrary::getIntType(), DmLibrary::getIntType());
    ASSERT_FALSE(HasFailure());
    ASSERT_EQ(typeOf(*set, "x"), DmLibrary::getIntType());

    ASSERT_TRUE(second->replaceExistingPort(input("x", DmLibrary::getFloatType())));
    EXPECT_EQ(typeOf(*set, "x"), DmLibrary::getAutoType());
    ASSERT_TRUE(second->replaceExistingPort(input("x", DmLibrary::getIntType())));
    EXPECT_EQ(typeOf(*set, "x"), DmLibrary::getIntType());
}
