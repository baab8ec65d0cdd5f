#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCppOperator.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmJobPort.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmExternSymbol.h>
#include <KestoDM/types/DmMangledName.h>
#include <KestoDM/types/ExternTargetSet.h>

#include "graph/OperatorTestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

using namespace Kesto;
using KestoTest::input;
using KestoTest::makeNamespace;
using KestoTest::namesOf;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::setOf;

namespace {

/// The model gives the target bits no meaning, so the tests use arbitrary ones.
ExternTargetSet::TargetEnvironments bits(std::uint32_t mask) {
    return static_cast<ExternTargetSet::TargetEnvironments>(mask);
}

std::uint32_t maskOf(ExternTargetSet const& set) {
    return static_cast<std::uint32_t>(set.getTargets());
}

std::shared_ptr<DmCppOperator> makeOperator(std::string const& name = "scale") {
    return DmCppOperator::createCppOperator(name, DmExternOperator::kSafe, "math", kNameVerbatim);
}

/// An operator "scale" whose input "value" (of type `value`) pairs with the
/// output "result" (int), with a second input "factor" (int).
struct Scale {
    std::shared_ptr<DmCppOperator> op = makeOperator();
    std::shared_ptr<DmPortDescription> value;
    std::shared_ptr<DmPortDescription> factor = input("factor", DmLibrary::getIntType());
    std::shared_ptr<DmPortDescription> result = output("result", DmLibrary::getIntType());

    explicit Scale(std::shared_ptr<DmBaseType const> const& type = DmLibrary::getIntType())
        : value(input("value", type)) {
        op->addPortDescription(value, kFailOnClash);
        op->addPortDescription(factor, kFailOnClash);
        op->addPortDescription(result, kFailOnClash);
        op->associatePorts(value, result);
    }
};

class DmCppOperatorTest : public KestoTest::OperatorTest {};

} // namespace

// ---------------------------------------------------------------------------
// Construction

TEST_F(DmCppOperatorTest, IsAnExternalOperatorAndAnExternSymbol) {
    EXPECT_TRUE((std::is_base_of<DmExternOperator, DmCppOperator>::value));
    EXPECT_TRUE((std::is_base_of<DmExternSymbol, DmCppOperator>::value));
}

TEST_F(DmCppOperatorTest, CreateKeepsNamePolicyAndPackName) {
    auto const op = DmCppOperator::createCppOperator("scale", DmExternOperator::kUnsafe, "geometry");
    ASSERT_NE(op, nullptr);
    EXPECT_EQ(op->getName(), "scale");
    EXPECT_EQ(op->getCancellationPolicy(), DmExternOperator::kUnsafe);
    EXPECT_EQ(op->getPackName(), "geometry");
}

TEST_F(DmCppOperatorTest, CreateWithoutAPackNameHasAnEmptyOne) {
    auto const op = DmCppOperator::createCppOperator("scale", DmExternOperator::kNone);
    ASSERT_NE(op, nullptr);
    EXPECT_EQ(op->getPackName(), "");
    EXPECT_EQ(op->getCancellationPolicy(), DmExternOperator::kNone);
}

TEST_F(DmCppOperatorTest, CreateRefusesANameTheFlagsRefuse) {
    EXPECT_EQ(DmCppOperator::createCppOperator("", DmExternOperator::kSafe, "", kNameVerbatim), nullptr);
    EXPECT_EQ(DmCppOperator::createCppOperator("1st", DmExternOperator::kSafe, "", kNameMustBeLegal),
              nullptr);
}

TEST_F(DmCppOperatorTest, CreateLegalizesTheNameWhenAsked) {
    auto const op = DmCppOperator::createCppOperator("1st", DmExternOperator::kSafe, "", kNameLegalize);
    ASSERT_NE(op, nullptr);
    EXPECT_EQ(op->getName(), "_1st");
}

TEST_F(DmCppOperatorTest, StartsWithoutPairingsJobPortsOrSymbol) {
    auto const op = makeOperator();
    EXPECT_TRUE(op->getAssociatedPorts().empty());
    EXPECT_TRUE(op->getJobPorts().empty());
    EXPECT_EQ(maskOf(op->getTargetSet()), 0u);
    EXPECT_EQ(op->getMangleName(DmMangledName::kMangledNameMicrosoft), "");
    EXPECT_EQ(op->getMangleName(DmMangledName::kMangledNameItanium), "");
    EXPECT_EQ(op->getResourceFileName(), "");
    EXPECT_FALSE(op->isPromoter());
    EXPECT_TRUE(op->isComplete());
}

TEST_F(DmCppOperatorTest, InitializeChangesNothing) {
    Scale scale;
    scale.op->initialize();
    EXPECT_EQ(portNames(scale.op->getPortsInterface().getPorts()),
              (std::vector<std::string>{"value", "factor", "result"}));
    EXPECT_EQ(scale.op->getAssociatedPort(scale.value.get()), scale.result);
    EXPECT_TRUE(scale.op->getJobPorts().empty());
}

TEST_F(DmCppOperatorTest, ImportIsAFailure) {
    Scale scale;
    auto const target = makeNamespace("target");
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(scale.op->import(target, kMakeUnique, "scale", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(target->getNodeDefs().empty());
}

TEST_F(DmCppOperatorTest, SetPromoterStoresTheFlagAndReturnsTrue) {
    auto const op = makeOperator();
    EXPECT_TRUE(op->setPromoter(true));
    EXPECT_TRUE(op->isPromoter());
}

// ---------------------------------------------------------------------------
// Symbol

TEST_F(DmCppOperatorTest, KeepsItsMangledNamesAndResourceFile) {
    auto const op = makeOperator();
    op->setMangleName(DmMangledName::kMangledNameMicrosoft, "?scale@@YAHHH@Z");
    op->setMangleName(DmMangledName::kMangledNameItanium, "_Z5scaleii");
    op->setResourceFileName("libmath.so");
    EXPECT_EQ(op->getMangleName(DmMangledName::kMangledNameMicrosoft), "?scale@@YAHHH@Z");
    EXPECT_EQ(op->getMangleName(DmMangledName::kMangledNameItanium), "_Z5scaleii");
    EXPECT_EQ(op->getMangledName().getPlatformName(), "_Z5scaleii");
    EXPECT_EQ(op->getResourceFileName(), "libmath.so");
}

TEST_F(DmCppOperatorTest, TakesItsSymbolFromARecordByValue) {
    DmExternSymbol symbol;
    symbol.setMangleName(DmMangledName::kMangledNameItanium, "_Z5scaleii");
    symbol.setResourceFileName("libmath.so");
    symbol.addTargets(ExternTargetSet(bits(0x2)));
    auto const op = makeOperator();
    static_cast<DmExternSymbol&>(*op) = symbol;
    symbol.setResourceFileName("changed.so");
    EXPECT_EQ(op->getMangleName(DmMangledName::kMangledNameItanium), "_Z5scaleii");
    EXPECT_EQ(op->getResourceFileName(), "libmath.so");
    EXPECT_EQ(maskOf(op->getTargetSet()), 0x2u);
}

TEST_F(DmCppOperatorTest, AddTargetsSetsTheBits) {
    auto const op = makeOperator();
    op->addTargets(ExternTargetSet(bits(0x5)));
    op->addTargets(ExternTargetSet(bits(0x2)));
    EXPECT_EQ(maskOf(op->getTargetSet()), 0x7u);
}

TEST_F(DmCppOperatorTest, RemoveTargetsClearsTheBits) {
    auto const op = makeOperator();
    op->addTargets(ExternTargetSet(bits(0x7)));
    op->removeTargets(ExternTargetSet(bits(0x5)));
    EXPECT_EQ(maskOf(op->getTargetSet()), 0x2u);
}

TEST_F(DmCppOperatorTest, RemoveTargetsOfBitsNotSetChangesNothing) {
    auto const op = makeOperator();
    op->addTargets(ExternTargetSet(bits(0x5)));
    op->removeTargets(ExternTargetSet(bits(0xA)));
    EXPECT_EQ(maskOf(op->getTargetSet()), 0x5u);
}

TEST_F(DmCppOperatorTest, SupportsTargetsWhenEveryAskedBitIsSet) {
    auto const op = makeOperator();
    op->addTargets(ExternTargetSet(bits(0x5)));
    EXPECT_TRUE(op->supportsTargets(ExternTargetSet(bits(0x5))));
    EXPECT_TRUE(op->supportsTargets(ExternTargetSet(bits(0x4))));
    EXPECT_FALSE(op->supportsTargets(ExternTargetSet(bits(0x6))));
}

TEST_F(DmCppOperatorTest, SupportsTargetsOfAnEmptySetIsTrue) {
    auto const op = makeOperator();
    EXPECT_TRUE(op->supportsTargets(ExternTargetSet()));
    op->addTargets(ExternTargetSet(bits(0x1)));
    EXPECT_TRUE(op->supportsTargets(ExternTargetSet()));
}

TEST_F(DmCppOperatorTest, BothSymbolsCountAsDeclaredAtCreation) {
    auto const op = makeOperator();
    EXPECT_TRUE(op->isMangleNameDeclared(DmMangledName::kMangledNameMicrosoft));
    EXPECT_TRUE(op->isMangleNameDeclared(DmMangledName::kMangledNameItanium));
}

TEST_F(DmCppOperatorTest, ASymbolDeclarationChangesOnlyItsOwnScheme) {
    auto const op = makeOperator();
    op->setMangleNameDeclared(DmMangledName::kMangledNameMicrosoft, false);
    EXPECT_FALSE(op->isMangleNameDeclared(DmMangledName::kMangledNameMicrosoft));
    EXPECT_TRUE(op->isMangleNameDeclared(DmMangledName::kMangledNameItanium));
    op->setMangleNameDeclared(DmMangledName::kMangledNameItanium, false);
    op->setMangleNameDeclared(DmMangledName::kMangledNameMicrosoft, true);
    EXPECT_TRUE(op->isMangleNameDeclared(DmMangledName::kMangledNameMicrosoft));
    EXPECT_FALSE(op->isMangleNameDeclared(DmMangledName::kMangledNameItanium));
}

TEST_F(DmCppOperatorTest, ASymbolDeclarationIsApartFromTheNameItself) {
    auto const op = makeOperator();
    op->setMangleNameDeclared(DmMangledName::kMangledNameItanium, false);
    op->setMangleName(DmMangledName::kMangledNameItanium, "_Z5scaleii");
    EXPECT_FALSE(op->isMangleNameDeclared(DmMangledName::kMangledNameItanium));
    EXPECT_EQ(op->getMangleName(DmMangledName::kMangledNameItanium), "_Z5scaleii");
}

// ---------------------------------------------------------------------------
// Overload lock

TEST_F(DmCppOperatorTest, ReadsAsUnlockedWithoutAnOwner) {
    Scale scale;
    EXPECT_FALSE(scale.op->isOverloadsLocked());
}

TEST_F(DmCppOperatorTest, ReadsAsUnlockedWithoutAnOwnerEvenWithAnAutoInput) {
    Scale scale(DmLibrary::getAutoType());
    ASSERT_TRUE(scale.op->hasAutoInputPort());
    EXPECT_FALSE(scale.op->isOverloadsLocked());
}

TEST_F(DmCppOperatorTest, SetOverloadsLockedWithoutAnOwnerIsAFailure) {
    Scale scale;
    EXPECT_EQ(scale.op->setOverloadsLocked(true), DmStatus::kFailure);
    EXPECT_EQ(scale.op->setOverloadsLocked(false), DmStatus::kFailure);
    EXPECT_FALSE(scale.op->isOverloadsLocked());
}

TEST_F(DmCppOperatorTest, AnswersTheLockOfItsOwner) {
    auto const ns = makeNamespace("math");
    Scale scale;
    ASSERT_EQ(scale.op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const set = setOf(*ns, "scale");
    ASSERT_NE(set, nullptr);
    EXPECT_TRUE(set->isOverloadsLocked());
    EXPECT_TRUE(scale.op->isOverloadsLocked());
    ASSERT_EQ(set->setOverloadsLocked(false), DmStatus::kSuccess);
    EXPECT_FALSE(scale.op->isOverloadsLocked());
}

TEST_F(DmCppOperatorTest, UnlockingSetsTheOwner) {
    auto const ns = makeNamespace("math");
    Scale scale;
    ASSERT_EQ(scale.op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(scale.op->setOverloadsLocked(false), DmStatus::kSuccess);
    EXPECT_FALSE(setOf(*ns, "scale")->isOverloadsLocked());
    EXPECT_FALSE(scale.op->isOverloadsLocked());
}

TEST_F(DmCppOperatorTest, LockingAgainSetsTheOwner) {
    auto const ns = makeNamespace("math");
    Scale scale;
    ASSERT_EQ(scale.op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(scale.op->setOverloadsLocked(false), DmStatus::kSuccess);
    EXPECT_EQ(scale.op->setOverloadsLocked(true), DmStatus::kSuccess);
    EXPECT_TRUE(setOf(*ns, "scale")->isOverloadsLocked());
    EXPECT_TRUE(scale.op->isOverloadsLocked());
}

TEST_F(DmCppOperatorTest, UnlockingIsRefusedWhenTheOwnerHasAnAutoInput) {
    auto const ns = makeNamespace("math");
    Scale scale(DmLibrary::getAutoType());
    ASSERT_EQ(scale.op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_TRUE(setOf(*ns, "scale")->hasAutoInputPort());
    EXPECT_EQ(scale.op->setOverloadsLocked(false), DmStatus::kFailure);
    EXPECT_TRUE(setOf(*ns, "scale")->isOverloadsLocked());
    EXPECT_TRUE(scale.op->isOverloadsLocked());
}

TEST_F(DmCppOperatorTest, UnlockingIsRefusedWhenItsOverloadsDisagreeOnAnInput) {
    auto const ns = makeNamespace("math");
    Scale first;
    Scale second(DmLibrary::getFloatType());
    ASSERT_EQ(first.op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(second.op->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    ASSERT_FALSE(first.op->hasAutoInputPort());
    EXPECT_EQ(first.op->setOverloadsLocked(false), DmStatus::kFailure);
    EXPECT_TRUE(first.op->isOverloadsLocked());
}

TEST_F(DmCppOperatorTest, LockingIsAllowedWithAnAutoInput) {
    auto const ns = makeNamespace("math");
    Scale scale(DmLibrary::getAutoType());
    ASSERT_EQ(scale.op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(scale.op->setOverloadsLocked(true), DmStatus::kSuccess);
    EXPECT_TRUE(scale.op->isOverloadsLocked());
}

TEST_F(DmCppOperatorTest, IsNotSingleWithoutAnOwner) {
    Scale scale;
    EXPECT_FALSE(scale.op->isSingle());
}

TEST_F(DmCppOperatorTest, IsSingleAloneInALockedSet) {
    auto const ns = makeNamespace("math");
    Scale scale;
    ASSERT_EQ(scale.op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_TRUE(scale.op->isSingle());
    ASSERT_EQ(scale.op->setOverloadsLocked(false), DmStatus::kSuccess);
    EXPECT_FALSE(scale.op->isSingle());
}

TEST_F(DmCppOperatorTest, ReadsUnlockedAgainWhenTakenOutOfItsScope) {
    auto const ns = makeNamespace("math");
    Scale scale;
    ASSERT_EQ(scale.op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_TRUE(scale.op->isOverloadsLocked());
    ASSERT_EQ(scale.op->setScope(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(scale.op->get_owner(), nullptr);
    EXPECT_FALSE(scale.op->isOverloadsLocked());
}

// ---------------------------------------------------------------------------
// Associated ports

TEST_F(DmCppOperatorTest, AssociatePortsPairsTheFirstWithTheSecond) {
    Scale scale;
    EXPECT_EQ(scale.op->getAssociatedPort(scale.value.get()), scale.result);
    ASSERT_EQ(scale.op->getAssociatedPorts().size(), 1u);
}

TEST_F(DmCppOperatorTest, AssociatePortsGoesOneWay) {
    Scale scale;
    EXPECT_EQ(scale.op->getAssociatedPort(scale.result.get()), nullptr);
}

TEST_F(DmCppOperatorTest, AssociatePortsAgainReplacesThePartner) {
    Scale scale;
    scale.op->associatePorts(scale.value, scale.factor);
    EXPECT_EQ(scale.op->getAssociatedPort(scale.value.get()), scale.factor);
    EXPECT_EQ(scale.op->getAssociatedPorts().size(), 1u);
}

TEST_F(DmCppOperatorTest, AnUnpairedPortHasNoPartner) {
    Scale scale;
    EXPECT_EQ(scale.op->getAssociatedPort(scale.factor.get()), nullptr);
    EXPECT_EQ(scale.op->getAssociatedPort(nullptr), nullptr);
}

TEST_F(DmCppOperatorTest, AssociatePortsWithoutAFirstPortDoesNothing) {
    Scale scale;
    scale.op->associatePorts(nullptr, scale.factor);
    EXPECT_EQ(scale.op->getAssociatedPorts().size(), 1u);
    EXPECT_EQ(scale.op->getAssociatedPort(nullptr), nullptr);
}

TEST_F(DmCppOperatorTest, AssociatePortsTakesPortsOfNoDefinitionToo) {
    auto const op = makeOperator();
    auto const in = input("in", DmLibrary::getIntType());
    auto const out = output("out", DmLibrary::getIntType());
    op->associatePorts(in, out);
    EXPECT_EQ(op->getAssociatedPort(in.get()), out);
}

TEST_F(DmCppOperatorTest, APairingKeepsItsPartnerAlive) {
    auto const op = makeOperator();
    auto const in = input("in", DmLibrary::getIntType());
    auto out = output("out", DmLibrary::getIntType());
    std::weak_ptr<DmPortDescription> const watched = out;
    op->associatePorts(in, std::move(out));
    EXPECT_FALSE(watched.expired());
    EXPECT_EQ(op->getAssociatedPort(in.get()), watched.lock());
}

// ---------------------------------------------------------------------------
// Replacing and removing ports

TEST_F(DmCppOperatorTest, ReplaceExistingPortMovesThePairingOfTheReplacedKey) {
    Scale scale;
    auto const newValue = input("value", DmLibrary::getFloatType());
    ASSERT_TRUE(scale.op->replaceExistingPort(newValue));
    EXPECT_EQ(scale.op->getAssociatedPort(newValue.get()), scale.result);
    EXPECT_EQ(scale.op->getAssociatedPorts().count(scale.value.get()), 0u);
    EXPECT_EQ(scale.op->getAssociatedPorts().size(), 1u);
}

TEST_F(DmCppOperatorTest, ReplaceExistingPortMovesThePairingsThatNameTheReplacedPartner) {
    Scale scale;
    scale.op->associatePorts(scale.factor, scale.result);
    auto const newResult = output("result", DmLibrary::getFloatType());
    ASSERT_TRUE(scale.op->replaceExistingPort(newResult));
    EXPECT_EQ(scale.op->getAssociatedPort(scale.value.get()), newResult);
    EXPECT_EQ(scale.op->getAssociatedPort(scale.factor.get()), newResult);
    EXPECT_EQ(scale.op->getAssociatedPorts().size(), 2u);
}

TEST_F(DmCppOperatorTest, ReplaceExistingPortMovesBothSidesOfAPortPairedWithItself) {
    auto const op = makeOperator();
    auto const state = input("state", DmLibrary::getIntType());
    ASSERT_TRUE(op->addPortDescription(state, kFailOnClash));
    op->associatePorts(state, state);
    auto const newState = input("state", DmLibrary::getFloatType());
    ASSERT_TRUE(op->replaceExistingPort(newState));
    EXPECT_EQ(op->getAssociatedPort(newState.get()), newState);
    EXPECT_EQ(op->getAssociatedPorts().size(), 1u);
}

TEST_F(DmCppOperatorTest, ReplaceExistingPortOfAnUnpairedPortLeavesThePairings) {
    Scale scale;
    auto const newFactor = input("factor", DmLibrary::getFloatType());
    ASSERT_TRUE(scale.op->replaceExistingPort(newFactor));
    EXPECT_EQ(scale.op->getAssociatedPort(scale.value.get()), scale.result);
    EXPECT_EQ(scale.op->getAssociatedPort(newFactor.get()), nullptr);
    EXPECT_EQ(scale.op->getAssociatedPorts().size(), 1u);
}

TEST_F(DmCppOperatorTest, ReplaceExistingPortPutsTheNewDescriptionInTheInterface) {
    Scale scale;
    auto const newValue = input("value", DmLibrary::getFloatType());
    ASSERT_TRUE(scale.op->replaceExistingPort(newValue));
    EXPECT_EQ(scale.op->getPortsInterface()["value"], newValue);
    EXPECT_EQ(newValue->getNodeDef(), scale.op.get());
    EXPECT_EQ(scale.value->getNodeDef(), nullptr);
    EXPECT_EQ(portNames(scale.op->getPortsInterface().getPorts()),
              (std::vector<std::string>{"value", "factor", "result"}));
}

TEST_F(DmCppOperatorTest, ReplaceExistingPortOfAnUnknownNameIsRefusedAndKeepsThePairings) {
    Scale scale;
    auto const stranger = input("stranger", DmLibrary::getFloatType());
    EXPECT_FALSE(scale.op->replaceExistingPort(stranger));
    EXPECT_EQ(scale.op->getAssociatedPort(scale.value.get()), scale.result);
    EXPECT_EQ(scale.op->getAssociatedPort(stranger.get()), nullptr);
}

TEST_F(DmCppOperatorTest, ReplaceExistingPortWithAPortOfAnotherDefinitionIsRefusedAndKeepsThePairings) {
    Scale scale;
    Scale other;
    EXPECT_FALSE(scale.op->replaceExistingPort(other.value));
    EXPECT_EQ(scale.op->getAssociatedPort(scale.value.get()), scale.result);
    EXPECT_EQ(scale.op->getAssociatedPort(other.value.get()), nullptr);
}

TEST_F(DmCppOperatorTest, ReplaceExistingPortOfNothingIsRefused) {
    Scale scale;
    EXPECT_FALSE(scale.op->replaceExistingPort(nullptr));
    EXPECT_EQ(scale.op->getAssociatedPorts().size(), 1u);
}

TEST_F(DmCppOperatorTest, ReplaceExistingPortReachesTheOverloadSet) {
    auto const ns = makeNamespace("math");
    Scale scale;
    ASSERT_EQ(scale.op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_TRUE(scale.op->replaceExistingPort(input("value", DmLibrary::getFloatType())));
    EXPECT_EQ(setOf(*ns, "scale")->getPortsInterface()["value"]->getType(), DmLibrary::getFloatType());
}

TEST_F(DmCppOperatorTest, ReplaceExistingPortReachesTheNodes) {
    Scale scale;
    auto const node = DmNode::createNode("n", scale.op);
    ASSERT_NE(node, nullptr);
    auto const newValue = input("value", DmLibrary::getFloatType());
    ASSERT_TRUE(scale.op->replaceExistingPort(newValue));
    EXPECT_EQ((*node)["value"]->getPortDescription(), newValue);
}

TEST_F(DmCppOperatorTest, RemovePortDescriptionDropsThePairingsThatNameIt) {
    Scale scale;
    scale.op->associatePorts(scale.factor, scale.result);
    scale.op->associatePorts(scale.result, scale.factor);
    ASSERT_TRUE(scale.op->removePortDescription(scale.result));
    EXPECT_TRUE(scale.op->getAssociatedPorts().empty());
}

TEST_F(DmCppOperatorTest, RemovePortDescriptionKeepsOtherPairings) {
    Scale scale;
    ASSERT_TRUE(scale.op->removePortDescription(scale.factor));
    EXPECT_EQ(scale.op->getAssociatedPort(scale.value.get()), scale.result);
    EXPECT_EQ(scale.op->getAssociatedPorts().size(), 1u);
}

TEST_F(DmCppOperatorTest, RemovePortDescriptionThatIsRefusedKeepsThePairings) {
    Scale scale;
    Scale other;
    EXPECT_FALSE(scale.op->removePortDescription(other.value));
    EXPECT_EQ(scale.op->getAssociatedPort(scale.value.get()), scale.result);
}

// ---------------------------------------------------------------------------
// Job ports

TEST_F(DmCppOperatorTest, AddJobPortReturnsTheNewPort) {
    auto const op = makeOperator();
    auto const jobPort = op->addJobPort("services", DmLibrary::getIntType(), true);
    ASSERT_NE(jobPort, nullptr);
    EXPECT_EQ(jobPort->getName(), "services");
    EXPECT_EQ(jobPort->getType(), DmLibrary::getIntType());
    EXPECT_TRUE(jobPort->isComplete());
    ASSERT_EQ(op->getJobPorts().size(), 1u);
    EXPECT_EQ(op->getJobPorts().front(), jobPort);
}

TEST_F(DmCppOperatorTest, AddJobPortIsCompleteByDefault) {
    auto const op = makeOperator();
    EXPECT_TRUE(op->addJobPort("services", DmLibrary::getIntType())->isComplete());
}

TEST_F(DmCppOperatorTest, AddJobPortPassesTheCompleteFlag) {
    auto const op = makeOperator();
    EXPECT_FALSE(op->addJobPort("services", DmLibrary::getIntType(), false)->isComplete());
}

TEST_F(DmCppOperatorTest, JobPortsKeepTheOrderOfAdding) {
    auto const op = makeOperator();
    op->addJobPort("zeta", DmLibrary::getIntType());
    op->addJobPort("alpha", DmLibrary::getIntType());
    op->addJobPort("mid", DmLibrary::getIntType());
    EXPECT_EQ(namesOf(op->getJobPorts()), (std::vector<std::string>{"zeta", "alpha", "mid"}));
}

TEST_F(DmCppOperatorTest, AddJobPortDoesNotCheckForAClash) {
    auto const op = makeOperator();
    auto const first = op->addJobPort("services", DmLibrary::getIntType());
    auto const second = op->addJobPort("services", DmLibrary::getIntType());
    EXPECT_NE(first, second);
    EXPECT_EQ(namesOf(op->getJobPorts()), (std::vector<std::string>{"services", "services"}));
}

TEST_F(DmCppOperatorTest, JobPortsAreNoPortsOfTheInterface) {
    auto const op = makeOperator();
    op->addJobPort("services", DmLibrary::getIntType());
    EXPECT_TRUE(op->getPortsInterface().getPorts().empty());
}

// ---------------------------------------------------------------------------
// An operator as the reader builds it

TEST_F(DmCppOperatorTest, TakesTheAttributesOfAFileInTheReadersOrder) {
    auto const ns = makeNamespace("math");
    auto const op = makeOperator();
    ASSERT_TRUE(op->setAssociativity(DmNodeDef::kLeftToRight));
    op->initialize();
    ASSERT_EQ(op->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    op->setConverter(true);
    EXPECT_TRUE(op->setPromoter(true));
    EXPECT_EQ(op->setIsDefaultOverload(true), DmStatus::kSuccess);
    EXPECT_EQ(op->setOverloadsLocked(false), DmStatus::kSuccess);
    op->setMangleName(DmMangledName::kMangledNameItanium, "_Z5scaleii");
    op->setMangleNameDeclared(DmMangledName::kMangledNameMicrosoft, false);
    auto const value = input("value", DmLibrary::getIntType());
    auto const result = output("result", DmLibrary::getIntType());
    ASSERT_TRUE(op->addPortDescription(value, kFailOnClash));
    ASSERT_TRUE(op->addPortDescription(result, kFailOnClash));
    op->associatePorts(value, result);
    op->addJobPort("services", DmLibrary::getIntType());

    auto const set = setOf(*ns, "scale");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->getDefaultOverload(), op.get());
    EXPECT_FALSE(set->isOverloadsLocked());
    EXPECT_EQ(set->associativity(), DmNodeDef::kLeftToRight);
    EXPECT_TRUE(op->isConverter());
    EXPECT_TRUE(op->isPromoter());
    EXPECT_FALSE(op->isMangleNameDeclared(DmMangledName::kMangledNameMicrosoft));
    EXPECT_TRUE(op->isMangleNameDeclared(DmMangledName::kMangledNameItanium));
    EXPECT_EQ(portNames(set->getPortsInterface().getPorts()), (std::vector<std::string>{"value", "result"}));
    EXPECT_EQ(op->getAssociatedPort(value.get()), result);
    EXPECT_EQ(namesOf(op->getJobPorts()), (std::vector<std::string>{"services"}));
}

// ---------------------------------------------------------------------------
// Lifetime

TEST_F(DmCppOperatorTest, IsCountedAtEachLevel) {
    unsigned int const cpp = count<DmCppOperator>();
    unsigned int const extern_ = count<DmExternOperator>();
    unsigned int const symbols = count<DmExternSymbol>();
    {
        auto const op = makeOperator();
        EXPECT_EQ(count<DmCppOperator>(), cpp + 1);
        EXPECT_EQ(count<DmExternOperator>(), extern_ + 1);
        EXPECT_EQ(count<DmExternSymbol>(), symbols + 1);
    }
    EXPECT_EQ(count<DmCppOperator>(), cpp);
    EXPECT_EQ(count<DmExternOperator>(), extern_);
    EXPECT_EQ(count<DmExternSymbol>(), symbols);
}

TEST_F(DmCppOperatorTest, JobPortsDieWithTheirOperator) {
    unsigned int const before = count<DmJobPort>();
    {
        auto const op = makeOperator();
        op->addJobPort("a", DmLibrary::getIntType());
        op->addJobPort("b", DmLibrary::getIntType());
        EXPECT_EQ(count<DmJobPort>(), before + 2);
    }
    EXPECT_EQ(count<DmJobPort>(), before);
}

TEST_F(DmCppOperatorTest, PairedPortsDieWithTheirOperator) {
    unsigned int const before = count<DmPortDescription>();
    {
        Scale scale;
        auto const stray = output("stray", DmLibrary::getIntType());
        scale.op->associatePorts(scale.factor, stray);
    }
    EXPECT_EQ(count<DmPortDescription>(), before);
}

TEST_F(DmCppOperatorTest, DiesWithTheNamespaceThatHoldsIt) {
    unsigned int const before = count<DmCppOperator>();
    {
        auto const ns = makeNamespace("math");
        Scale scale;
        scale.op->addJobPort("services", DmLibrary::getIntType());
        ASSERT_EQ(scale.op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    }
    EXPECT_EQ(count<DmCppOperator>(), before);
}
