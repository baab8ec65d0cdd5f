// What a host gets from the factories of the classes it edits graphs with:
// compounds and loops initialized and ready for ports, C++ operators, names
// resolved as asked, logs that follow the library, and a compound that joins
// an overload set taking the set's interface.
#include "graph/CompoundTestSupport.h"
#include "graph/LoopTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmCppOperator.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmForEachCompound.h>
#include <KestoDM/graph/DmIterateCompound.h>
#include <KestoDM/graph/DmLoopingCompound.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmWhileCompound.h>
#include <KestoDM/library/DmLibrary.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::addNode;
using KestoTest::arrayOf;
using KestoTest::expectConnected;
using KestoTest::input;
using KestoTest::insideOf;
using KestoTest::makeLibrary;
using KestoTest::makeNamespace;
using KestoTest::makeOp;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::setOf;

namespace {

using Names = std::vector<std::string>;

/// Counts compounds, loops, operators, connections and scopes too: whatever a
/// factory makes must be gone when the test ends.
class DmHostFactoriesTest : public KestoTest::ModelTest {
protected:
    void SetUp() override {
        ModelTest::SetUp();
        expectBackAtEnd<DmCompound>("compounds");
        expectBackAtEnd<DmLoopingCompound>("loops");
        expectBackAtEnd<DmExternOperator>("external operators");
        expectBackAtEnd<DmCppOperator>("C++ operators");
        expectBackAtEnd<DmConnection>("connections");
        expectBackAtEnd<DmScope>("scopes");
    }
};

/// A node on a definition with the bool output "flag".
std::shared_ptr<DmNativeNodeDef> makeFlagOp() {
    auto def = DmNativeNodeDef::newNativeNodeDef("flagOp", DmNativeNodeDef::kPass);
    def->addPortDescription(output("flag", DmLibrary::getBoolType()), kFailOnClash);
    return def;
}

/// "graph" with the int input "a" and the int output "r", placed in `ns`.
std::shared_ptr<DmCompound> placedWithPorts(DmNamespace& ns) {
    auto compound = DmCompound::createCompound("graph");
    compound->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    compound->addPortDescription(output("r", DmLibrary::getIntType()), kFailOnClash);
    EXPECT_EQ(compound->setScope(&ns, kFailOnClash), DmStatus::kSuccess);
    return compound;
}

} // namespace

// ---------------------------------------------------------------------------
// Compounds

TEST_F(DmHostFactoriesTest, CompoundFromTheFactoryIsReadyForPorts) {
    auto const compound = DmCompound::createCompound("graph");
    ASSERT_NE(compound, nullptr);
    ASSERT_NE(compound->getSelfNode(), nullptr);
    EXPECT_TRUE(compound->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_TRUE(compound->addPortDescription(output("r", DmLibrary::getFloatType()), kFailOnClash));
    auto const self = compound->getSelfNode();
    EXPECT_EQ(portNames(self->getPorts()), (Names{"a", "r"}));
    EXPECT_TRUE((*self)["a"]->isOutput());
    EXPECT_TRUE((*self)["r"]->isInput());
    EXPECT_EQ((*self)["r"]->getPortDescription()->getType(), DmLibrary::getFloatType());
}

TEST_F(DmHostFactoriesTest, CompoundFromTheFactoryTakesNodesAndConnections) {
    auto const compound = DmCompound::createCompound("graph");
    compound->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    compound->addPortDescription(output("r", DmLibrary::getIntType()), kFailOnClash);
    addNode(*compound, "n", makeOp());
    expectConnected(*compound, ".a", "n.in");
    expectConnected(*compound, "n.out", ".r");
    EXPECT_EQ(KestoTest::connectionsOf(*compound), (Names{".a -> n.in", "n.out -> .r"}));
    EXPECT_EQ(compound->getBindingConnections().size(), 2u);
}

TEST_F(DmHostFactoriesTest, CompoundFactoryResolvesTheNameAsTheFlagsSay) {
    EXPECT_EQ(DmCompound::createCompound(""), nullptr);
    EXPECT_EQ(DmCompound::createCompound("my graph", kNameMustBeLegal), nullptr);
    EXPECT_EQ(DmCompound::createCompound("my graph")->getName(), "my graph");
    auto const legal = DmCompound::createCompound("my graph", kNameLegalize);
    ASSERT_NE(legal, nullptr);
    EXPECT_EQ(legal->getName(), "my_graph");
    EXPECT_EQ(legal->getSelfNode()->getName(), "my_graph");
}

TEST_F(DmHostFactoriesTest, CompoundReportsToTheLogOfItsLibraryOnly) {
    auto const library = makeLibrary();
    auto const& log = library->getErrorLogger();
    log->clear();
    auto const compound = DmCompound::createCompound("graph");
    EXPECT_EQ(compound->getLogger(), nullptr);
    compound->setLibrary(library.get());
    EXPECT_EQ(compound->getLogger(), log);
    compound->setLibrary(nullptr);
    EXPECT_EQ(compound->getLogger(), nullptr);
    EXPECT_EQ(log->getMessageCount(), 0u);
}

TEST_F(DmHostFactoriesTest, OrphanCompoundReportsItsMissingParentToItsLibrary) {
    auto const library = makeLibrary();
    auto const& log = library->getErrorLogger();
    log->clear();
    auto const compound = DmCompound::createCompound("graph");
    compound->setLibrary(library.get());
    auto const op = makeOp("op");
    ASSERT_EQ(op->setScope(compound.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(KestoTest::fullName(*op), "graph::op");
    ASSERT_EQ(log->getMessageCount(), 1u);
    auto const report = std::dynamic_pointer_cast<DmMessageReport>(log->begin().getRecord());
    ASSERT_NE(report, nullptr);
    EXPECT_EQ(report->getTitle(), "missing parent scope");
    EXPECT_EQ(report->getDescription(), "the scope graph does not have a parent");
    log->clear();
}

TEST_F(DmHostFactoriesTest, OrphanCompoundWithoutALibraryReportsNothing) {
    auto const compound = DmCompound::createCompound("graph");
    auto const op = makeOp("op");
    ASSERT_EQ(op->setScope(compound.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(KestoTest::fullName(*op), "graph::op");
}

TEST_F(DmHostFactoriesTest, CloneOfAFactoryCompoundIsInitializedToo) {
    auto const compound = DmCompound::createCompound("graph");
    compound->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    auto const clone = compound->clone();
    ASSERT_NE(clone, nullptr);
    ASSERT_NE(clone->getSelfNode(), nullptr);
    EXPECT_TRUE(clone->getPortsInterface().empty());
    EXPECT_TRUE(clone->addPortDescription(input("b", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_EQ(portNames(clone->getSelfNode()->getPorts()), Names{"b"});
}

// ---------------------------------------------------------------------------
// Loops

TEST_F(DmHostFactoriesTest, WhileFromTheFactoryHasItsConditionAndIsReadyForPorts) {
    auto const loop = DmWhileCompound::createWhileCompound("loop");
    ASSERT_NE(loop, nullptr);
    ASSERT_NE(loop->getLoopingConditionPort(), nullptr);
    EXPECT_TRUE(loop->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_EQ(portNames(loop->getSelfNode()->getPorts()), (Names{"looping_condition", "a"}));
    addNode(*loop, "test", makeFlagOp());
    expectConnected(*loop, "test.flag", ".looping_condition");
    EXPECT_EQ(loop->getBindingConnections().size(), 1u);
}

TEST_F(DmHostFactoriesTest, IterateFromTheFactoryShowsATargetElementByElement) {
    auto const loop = DmIterateCompound::createIterateCompound("loop");
    ASSERT_NE(loop, nullptr);
    ASSERT_NE(KestoTest::loopingSelfNodeOf(*loop), nullptr);
    EXPECT_TRUE(loop->getPortsInterface().empty());
    auto const items =
        KestoTest::withRole(input("items", arrayOf(DmLibrary::getIntType())), kIterationTarget);
    ASSERT_TRUE(loop->addPortDescription(items, kFailOnClash));
    auto const inside = insideOf(*loop, "items");
    ASSERT_NE(inside, nullptr);
    EXPECT_TRUE(inside->isOutput());
    EXPECT_EQ(inside->getType(), DmLibrary::getIntType());
    addNode(*loop, "n", makeOp());
    expectConnected(*loop, ".items", "n.in");
}

TEST_F(DmHostFactoriesTest, ForEachFromTheFactoryGathersItsOutputs) {
    auto const loop = DmForEachCompound::createForEachCompound("loop");
    ASSERT_NE(loop, nullptr);
    ASSERT_NE(KestoTest::loopingSelfNodeOf(*loop), nullptr);
    EXPECT_TRUE(loop->getPortsInterface().empty());
    ASSERT_TRUE(loop->addPortDescription(output("results", arrayOf(DmLibrary::getIntType())), kFailOnClash));
    EXPECT_TRUE(loop->getPortsInterface()["results"]->isIterationTarget());
    auto const inside = insideOf(*loop, "results");
    ASSERT_NE(inside, nullptr);
    EXPECT_TRUE(inside->isInput());
    EXPECT_EQ(inside->getType(), DmLibrary::getIntType());
    addNode(*loop, "n", makeOp());
    expectConnected(*loop, "n.out", ".results");
}

TEST_F(DmHostFactoriesTest, LoopFactoriesResolveTheNameAsTheFlagsSay) {
    EXPECT_EQ(DmWhileCompound::createWhileCompound(""), nullptr);
    EXPECT_EQ(DmIterateCompound::createIterateCompound("a loop", kNameMustBeLegal), nullptr);
    EXPECT_EQ(DmForEachCompound::createForEachCompound(""), nullptr);
    EXPECT_EQ(DmWhileCompound::createWhileCompound("a loop", kNameLegalize)->getName(), "a_loop");
    EXPECT_EQ(DmIterateCompound::createIterateCompound("a loop", kNameLegalize)->getName(), "a_loop");
    EXPECT_EQ(DmForEachCompound::createForEachCompound("a loop")->getName(), "a loop");
}

// ---------------------------------------------------------------------------
// Joining an overload set

TEST_F(DmHostFactoriesTest, FactoryCompoundJoiningASetTakesTheSetsInterface) {
    auto const ns = makeNamespace("ns");
    auto const first = placedWithPorts(*ns);
    auto const second = DmCompound::createCompound("graph");
    EXPECT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    auto const set = setOf(*ns, "graph");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->size(), 2u);
    EXPECT_EQ(second->get_owner(), set.get());
    EXPECT_EQ(portNames(second->getPortsInterface()), (Names{"a", "r"}));
    // Its own clones, not the set's or the first overload's.
    auto const a = second->getPortsInterface()["a"];
    EXPECT_EQ(a->getNodeDef(), second.get());
    EXPECT_NE(a, set->getPortsInterface()["a"]);
    EXPECT_NE(a, first->getPortsInterface()["a"]);
    EXPECT_TRUE(a->isInput());
    EXPECT_EQ(a->getType(), DmLibrary::getIntType());
    // The self node shows them inverted, and the set stays concrete.
    auto const self = second->getSelfNode();
    EXPECT_EQ(portNames(self->getPorts()), (Names{"a", "r"}));
    EXPECT_TRUE((*self)["a"]->isOutput());
    EXPECT_TRUE((*self)["r"]->isInput());
    EXPECT_EQ(set->getPortsInterface()["a"]->getType(), DmLibrary::getIntType());
    EXPECT_EQ(set->getPortsInterface()["r"]->getType(), DmLibrary::getIntType());
}

TEST_F(DmHostFactoriesTest, CompoundThatJoinedASetIsBuiltLikeAnyOther) {
    auto const ns = makeNamespace("ns");
    auto const first = placedWithPorts(*ns);
    auto const second = DmCompound::createCompound("graph");
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    addNode(*second, "n", makeOp());
    expectConnected(*second, ".a", "n.in");
    expectConnected(*second, "n.out", ".r");
    EXPECT_EQ(second->getConnections().size(), 2u);
    EXPECT_TRUE(first->getConnections().empty());
}

TEST_F(DmHostFactoriesTest, CompoundWithPortsOfItsOwnKeepsThemWhenJoiningASet) {
    auto const ns = makeNamespace("ns");
    placedWithPorts(*ns);
    auto const second = DmCompound::createCompound("graph");
    second->addPortDescription(input("a", DmLibrary::getFloatType()), kFailOnClash);
    // It joins, but lacks "r": the result says so, and nothing is added to it.
    EXPECT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kFailure);
    auto const set = setOf(*ns, "graph");
    EXPECT_EQ(second->get_owner(), set.get());
    EXPECT_EQ(portNames(second->getPortsInterface()), Names{"a"});
    EXPECT_EQ(second->getPortsInterface()["a"]->getType(), DmLibrary::getFloatType());
    // The overloads disagree on "a".
    EXPECT_EQ(set->getPortsInterface()["a"]->getType(), DmLibrary::getAutoType());
}

TEST_F(DmHostFactoriesTest, CompoundJoiningAsTheFirstOverloadGivesTheSetItsInterface) {
    auto const ns = makeNamespace("ns");
    auto const compound = DmCompound::createCompound("graph");
    ASSERT_EQ(compound->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    EXPECT_TRUE(compound->getPortsInterface().empty());
    compound->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    EXPECT_EQ(portNames(setOf(*ns, "graph")->getPortsInterface()), Names{"a"});
}

TEST_F(DmHostFactoriesTest, WhileJoiningASetOfWhileLoopsTakesTheSetsInterfaceBesideItsCondition) {
    auto const ns = makeNamespace("ns");
    auto const first = DmWhileCompound::createWhileCompound("loop");
    first->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const second = DmWhileCompound::createWhileCompound("loop");
    EXPECT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    EXPECT_EQ(portNames(second->getPortsInterface()), (Names{"looping_condition", "a"}));
    EXPECT_EQ(portNames(second->getSelfNode()->getPorts()), (Names{"looping_condition", "a"}));
    EXPECT_EQ(second->getLoopingConditionPort()->getPortDescription()->getType(), DmLibrary::getBoolType());
}

TEST_F(DmHostFactoriesTest, NodeOnTheSetKeepsItsPortsWhenACompoundJoins) {
    auto const ns = makeNamespace("ns");
    placedWithPorts(*ns);
    auto const set = setOf(*ns, "graph");
    auto const node = DmNode::createNode("user", set);
    auto const a = (*node)["a"];
    ASSERT_NE(a, nullptr);
    auto const second = DmCompound::createCompound("graph");
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    EXPECT_EQ(portNames(node->getPorts()), (Names{"a", "r"}));
    EXPECT_EQ((*node)["a"], a);
    EXPECT_EQ(a->getPortDescription()->getType(), DmLibrary::getIntType());
}

// ---------------------------------------------------------------------------
// C++ operators

TEST_F(DmHostFactoriesTest, CppOperatorWithoutAPackNameHasAnEmptyOne) {
    auto const op = DmCppOperator::createCppOperator("scale", DmExternOperator::kUnsafe);
    ASSERT_NE(op, nullptr);
    EXPECT_EQ(op->getName(), "scale");
    EXPECT_EQ(op->getCancellationPolicy(), DmExternOperator::kUnsafe);
    EXPECT_EQ(op->getPackName(), "");
    EXPECT_TRUE(op->getPortsInterface().empty());
    EXPECT_TRUE(op->getJobPorts().empty());
}

TEST_F(DmHostFactoriesTest, CppOperatorFactoryResolvesTheNameAsTheFlagsSay) {
    EXPECT_EQ(DmCppOperator::createCppOperator("", DmExternOperator::kSafe), nullptr);
    EXPECT_EQ(DmCppOperator::createCppOperator("1st", DmExternOperator::kSafe, kNameMustBeLegal), nullptr);
    auto const legal = DmCppOperator::createCppOperator("1st", DmExternOperator::kSafe, kNameLegalize);
    ASSERT_NE(legal, nullptr);
    EXPECT_EQ(legal->getName(), "_1st");
    EXPECT_EQ(legal->getPackName(), "");
}

TEST_F(DmHostFactoriesTest, CppOperatorWithAPackNameKeepsIt) {
    auto const op = DmCppOperator::createCppOperator("scale", DmExternOperator::kSafe, "geometry");
    ASSERT_NE(op, nullptr);
    EXPECT_EQ(op->getPackName(), "geometry");
    auto const legal =
        DmCppOperator::createCppOperator("a b", DmExternOperator::kSafe, "geometry", kNameLegalize);
    ASSERT_NE(legal, nullptr);
    EXPECT_EQ(legal->getName(), "a_b");
    EXPECT_EQ(legal->getPackName(), "geometry");
}

TEST_F(DmHostFactoriesTest, CppOperatorFromTheFactoryServesNodesInACompound) {
    auto const ns = makeNamespace("ns");
    auto const op = DmCppOperator::createCppOperator("scale", DmExternOperator::kSafe);
    op->addPortDescription(input("in", DmLibrary::getIntType()), kFailOnClash);
    op->addPortDescription(output("out", DmLibrary::getIntType()), kFailOnClash);
    ASSERT_EQ(op->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const compound = DmCompound::createCompound("graph");
    compound->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    addNode(*compound, "s", setOf(*ns, "scale"));
    expectConnected(*compound, ".a", "s.in");
}
