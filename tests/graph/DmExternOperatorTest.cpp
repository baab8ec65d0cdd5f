#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>

#include "graph/OperatorTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

using namespace Kesto;
using KestoTest::input;
using KestoTest::makeNamespace;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::setOf;

namespace {

std::shared_ptr<DmExternOperator>
makeOperator(std::string const& name = "add",
             DmExternOperator::CancellationPolicy policy = DmExternOperator::kSafe,
             std::string const& pack = "math") {
    return DmExternOperator::createExternOperator(name, policy, pack, kNameVerbatim);
}

/// An operator "add" with the int inputs "a" and "b" and the int output "sum".
std::shared_ptr<DmExternOperator> makeAdder() {
    auto op = makeOperator();
    op->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    op->addPortDescription(input("b", DmLibrary::getIntType()), kFailOnClash);
    op->addPortDescription(output("sum", DmLibrary::getIntType()), kFailOnClash);
    return op;
}

class DmExternOperatorTest : public KestoTest::OperatorTest {};

} // namespace

// ---------------------------------------------------------------------------
// Construction

TEST_F(DmExternOperatorTest, CancellationPoliciesHaveTheirNumbersInOneByte) {
    EXPECT_EQ(sizeof(DmExternOperator::CancellationPolicy), 1u);
    EXPECT_EQ(static_cast<int>(DmExternOperator::kNone), 0);
    EXPECT_EQ(static_cast<int>(DmExternOperator::kSafe), 1);
    EXPECT_EQ(static_cast<int>(DmExternOperator::kUnsafe), 2);
}

TEST_F(DmExternOperatorTest, IsAnOverloadThatNodesCanBeMadeFrom) {
    EXPECT_TRUE((std::is_base_of<DmOverload, DmExternOperator>::value));
    EXPECT_TRUE((std::is_base_of<DmNodeDef, DmExternOperator>::value));
    EXPECT_FALSE(std::is_abstract<DmExternOperator>::value);
}

TEST_F(DmExternOperatorTest, CreateKeepsNamePolicyAndPackName) {
    auto const op = makeOperator("add", DmExternOperator::kUnsafe, "math");
    ASSERT_NE(op, nullptr);
    EXPECT_EQ(op->getName(), "add");
    EXPECT_EQ(op->getCancellationPolicy(), DmExternOperator::kUnsafe);
    EXPECT_EQ(op->getPackName(), "math");
}

TEST_F(DmExternOperatorTest, CreateKeepsEachCancellationPolicy) {
    for (auto const policy : {DmExternOperator::kNone, DmExternOperator::kSafe, DmExternOperator::kUnsafe}) {
        auto const op = makeOperator("op", policy);
        ASSERT_NE(op, nullptr);
        EXPECT_EQ(op->getCancellationPolicy(), policy);
    }
}

TEST_F(DmExternOperatorTest, CreateWithoutAPackNameHasAnEmptyOne) {
    auto const op = DmExternOperator::createExternOperator("add", DmExternOperator::kNone);
    ASSERT_NE(op, nullptr);
    EXPECT_EQ(op->getPackName(), "");
    EXPECT_EQ(op->getName(), "add");
}

TEST_F(DmExternOperatorTest, CreateRefusesAnEmptyName) {
    EXPECT_EQ(DmExternOperator::createExternOperator("", DmExternOperator::kSafe, "math", kNameVerbatim),
              nullptr);
}

TEST_F(DmExternOperatorTest, CreateRefusesAnIllegalNameWhenItMustBeLegal) {
    EXPECT_EQ(DmExternOperator::createExternOperator("two words", DmExternOperator::kSafe, "math",
                                                     kNameMustBeLegal),
              nullptr);
}

TEST_F(DmExternOperatorTest, CreateLegalizesTheNameWhenAsked) {
    auto const op =
        DmExternOperator::createExternOperator("two words", DmExternOperator::kSafe, "math", kNameLegalize);
    ASSERT_NE(op, nullptr);
    EXPECT_EQ(op->getName(), "two_words");
}

TEST_F(DmExternOperatorTest, IsCompleteDetachedAndWithoutPortsAtCreation) {
    auto const op = makeOperator();
    EXPECT_TRUE(op->isComplete());
    EXPECT_EQ(op->getScope(), nullptr);
    EXPECT_EQ(op->get_owner(), nullptr);
    EXPECT_TRUE(op->getPortsInterface().getPorts().empty());
    EXPECT_EQ(op->getURI(), nullptr);
    EXPECT_FALSE(op->isDefaultOverload());
}

TEST_F(DmExternOperatorTest, IsNoBuiltInTerminalPlaceholderOrValueDefinition) {
    auto const op = makeOperator();
    EXPECT_FALSE(op->isBuiltIn());
    EXPECT_FALSE(op->isTerminal());
    EXPECT_FALSE(op->isUnknown());
    EXPECT_FALSE(op->isValueNodeDef());
    EXPECT_FALSE(op->isImported());
}

TEST_F(DmExternOperatorTest, InitializeChangesNothing) {
    auto const op = makeAdder();
    op->initialize();
    EXPECT_EQ(op->getName(), "add");
    EXPECT_EQ(portNames(op->getPortsInterface().getPorts()), (std::vector<std::string>{"a", "b", "sum"}));
    EXPECT_EQ(op->getCancellationPolicy(), DmExternOperator::kSafe);
    EXPECT_EQ(op->getPackName(), "math");
    EXPECT_FALSE(op->isPromoter());
    EXPECT_EQ(op->getScope(), nullptr);
}

// ---------------------------------------------------------------------------
// Promoter

TEST_F(DmExternOperatorTest, IsNoPromoterAtCreation) {
    EXPECT_FALSE(makeOperator()->isPromoter());
}

TEST_F(DmExternOperatorTest, SetPromoterStoresTheFlagAndReturnsTrue) {
    auto const op = makeOperator();
    EXPECT_TRUE(op->setPromoter(true));
    EXPECT_TRUE(op->isPromoter());
    EXPECT_TRUE(op->setPromoter(false));
    EXPECT_FALSE(op->isPromoter());
}

TEST_F(DmExternOperatorTest, SetPromoterAnswersThroughTheDefinition) {
    auto const op = makeOperator();
    DmNodeDef& def = *op;
    EXPECT_TRUE(def.setPromoter(true));
    EXPECT_TRUE(def.isPromoter());
}

// ---------------------------------------------------------------------------
// Import

TEST_F(DmExternOperatorTest, ImportIsAFailure) {
    auto const op = makeAdder();
    auto const target = makeNamespace("target");
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(op->import(target, kFailOnClash, "add", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(target->getNodeDefs().empty());
}

TEST_F(DmExternOperatorTest, ImportIsAFailureUnderEveryResolution) {
    auto const op = makeAdder();
    auto const target = makeNamespace("target");
    for (auto const type : {kFailOnClash, kMakeUnique, kAsOverload}) {
        std::shared_ptr<DmNodeDef> out;
        EXPECT_EQ(op->import(target, type, "add", out, DmNodeDef::kImportAllowMissingNodeDef),
                  DmStatus::kFailure)
            << static_cast<int>(type);
    }
    EXPECT_TRUE(target->getNodeDefs().empty());
}

TEST_F(DmExternOperatorTest, ImportIntoNoScopeIsAFailure) {
    auto const op = makeAdder();
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(op->import(nullptr, kFailOnClash, "add", out, 0), DmStatus::kFailure);
}

TEST_F(DmExternOperatorTest, ImportLeavesAnEarlierOutAlone) {
    auto const op = makeAdder();
    auto const other = makeOperator("other");
    auto const target = makeNamespace("target");
    std::shared_ptr<DmNodeDef> out = other;
    EXPECT_EQ(op->import(target, kFailOnClash, "add", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, other);
}

// ---------------------------------------------------------------------------
// Placement and overloads

TEST_F(DmExternOperatorTest, PlacedInANamespaceItBecomesAnOverloadOfASet) {
    auto const ns = makeNamespace("math");
    auto const op = makeAdder();
    ASSERT_EQ(op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const set = setOf(*ns, "add");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(op->get_owner(), set.get());
    ASSERT_EQ(set->size(), 1u);
    EXPECT_EQ(set->getOverloads().front(), op);
    EXPECT_FALSE(set->isBuiltIn());
    EXPECT_EQ(portNames(set->getPortsInterface().getPorts()), (std::vector<std::string>{"a", "b", "sum"}));
}

TEST_F(DmExternOperatorTest, TwoOperatorsOfOneNameShareTheirSet) {
    auto const ns = makeNamespace("math");
    auto const first = makeAdder();
    auto const second = makeOperator();
    second->addPortDescription(input("a", DmLibrary::getFloatType()), kFailOnClash);
    second->addPortDescription(input("b", DmLibrary::getIntType()), kFailOnClash);
    second->addPortDescription(output("sum", DmLibrary::getIntType()), kFailOnClash);
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    auto const set = setOf(*ns, "add");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->size(), 2u);
    EXPECT_EQ(set->getPortsInterface()["a"]->getType(), DmLibrary::getAutoType());
    EXPECT_EQ(set->getPortsInterface()["b"]->getType(), DmLibrary::getIntType());
}

TEST_F(DmExternOperatorTest, ASecondOperatorOfOneNameIsRefusedOnClash) {
    auto const ns = makeNamespace("math");
    auto const first = makeAdder();
    auto const second = makeAdder();
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setScope(ns.get(), kFailOnClash), DmStatus::kInvalidArgument);
    EXPECT_EQ(second->getScope(), nullptr);
    EXPECT_EQ(setOf(*ns, "add")->size(), 1u);
}

TEST_F(DmExternOperatorTest, IsSingleWhenDetachedAndLocked) {
    auto const op = makeAdder();
    EXPECT_TRUE(op->isOverloadsLocked());
    EXPECT_TRUE(op->isSingle());
}

TEST_F(DmExternOperatorTest, IsNotSingleWhenDetachedAndUnlocked) {
    auto const op = makeAdder();
    ASSERT_EQ(op->setOverloadsLocked(false), DmStatus::kSuccess);
    EXPECT_FALSE(op->isSingle());
}

TEST_F(DmExternOperatorTest, IsSingleAloneInALockedSet) {
    auto const ns = makeNamespace("math");
    auto const op = makeAdder();
    ASSERT_EQ(op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_TRUE(op->isSingle());
}

TEST_F(DmExternOperatorTest, IsNotSingleInASetOfTwo) {
    auto const ns = makeNamespace("math");
    auto const first = makeAdder();
    auto const second = makeAdder();
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    EXPECT_FALSE(first->isSingle());
    EXPECT_FALSE(second->isSingle());
}

TEST_F(DmExternOperatorTest, IsNotSingleInAnUnlockedSet) {
    auto const ns = makeNamespace("math");
    auto const op = makeAdder();
    ASSERT_EQ(op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(setOf(*ns, "add")->setOverloadsLocked(false), DmStatus::kSuccess);
    EXPECT_FALSE(op->isSingle());
}

TEST_F(DmExternOperatorTest, CanBeTheDefaultOverloadOfItsSet) {
    auto const ns = makeNamespace("math");
    auto const op = makeAdder();
    EXPECT_EQ(op->setIsDefaultOverload(true), DmStatus::kFailure);
    ASSERT_EQ(op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(op->setIsDefaultOverload(true), DmStatus::kSuccess);
    EXPECT_EQ(setOf(*ns, "add")->getDefaultOverload(), op.get());
}

// ---------------------------------------------------------------------------
// Lifetime

TEST_F(DmExternOperatorTest, IsCountedWhileItLives) {
    unsigned int const before = count<DmExternOperator>();
    {
        auto const op = makeAdder();
        EXPECT_EQ(count<DmExternOperator>(), before + 1);
    }
    EXPECT_EQ(count<DmExternOperator>(), before);
}

TEST_F(DmExternOperatorTest, DiesWithTheNamespaceThatHoldsIt) {
    unsigned int const before = count<DmExternOperator>();
    {
        auto const ns = makeNamespace("math");
        makeAdder()->setScope(ns.get(), kFailOnClash);
        EXPECT_EQ(count<DmExternOperator>(), before + 1);
    }
    EXPECT_EQ(count<DmExternOperator>(), before);
}

TEST_F(DmExternOperatorTest, ARefusedNameMakesNoObject) {
    unsigned int const before = count<DmExternOperator>();
    EXPECT_EQ(makeOperator(""), nullptr);
    EXPECT_EQ(count<DmExternOperator>(), before);
}
