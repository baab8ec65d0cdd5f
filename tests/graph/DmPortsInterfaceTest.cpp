// The ordered, name-keyed collection of port descriptions of a definition:
// adding, finding, removing, renaming, replacing and reordering entries, and
// comparing two interfaces.
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmPortsInterface.h>
#include <KestoDM/types/DmArrayType.h>

#include "graph/ModelTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::input;
using KestoTest::output;
using KestoTest::portNames;

namespace {

using Names = std::vector<std::string>;

std::shared_ptr<DmBaseType const> intType() {
    return DmLibrary::getIntType();
}

/// An interface of the inputs "a", "b", "c" and "d", in that order.
DmPortsInterface makeABCD() {
    DmPortsInterface ports;
    for (auto const* name : {"a", "b", "c", "d"}) {
        EXPECT_TRUE(ports.addPortDescription(input(name, intType())));
    }
    return ports;
}

class DmPortsInterfaceTest : public KestoTest::ModelTest {};

} // namespace

// ---------------------------------------------------------------------------
// Queries

TEST_F(DmPortsInterfaceTest, NewInterfaceIsEmpty) {
    DmPortsInterface const ports;
    EXPECT_EQ(ports.size(), 0u);
    EXPECT_TRUE(ports.empty());
    EXPECT_TRUE(ports.begin() == ports.end());
    EXPECT_FALSE(ports.hasPort("a"));
    EXPECT_EQ(ports["a"], nullptr);
}

TEST_F(DmPortsInterfaceTest, AddAppendsInOrder) {
    DmPortsInterface ports;
    auto const b = input("b", intType());
    auto const a = output("a", intType());
    EXPECT_TRUE(ports.addPortDescription(b));
    EXPECT_TRUE(ports.addPortDescription(a));
    EXPECT_EQ(ports.size(), 2u);
    EXPECT_FALSE(ports.empty());
    EXPECT_EQ(portNames(ports), Names({"b", "a"}));
    EXPECT_EQ(ports["b"], b);
    EXPECT_EQ(ports["a"], a);
}

TEST_F(DmPortsInterfaceTest, AddRefusesATakenName) {
    DmPortsInterface ports;
    auto const first = input("in", intType());
    auto const second = output("in", intType());
    ASSERT_TRUE(ports.addPortDescription(first));
    EXPECT_FALSE(ports.addPortDescription(second));
    EXPECT_EQ(ports.size(), 1u);
    EXPECT_EQ(ports["in"], first);
}

TEST_F(DmPortsInterfaceTest, AddRefusesNull) {
    DmPortsInterface ports;
    EXPECT_FALSE(ports.addPortDescription(nullptr));
    EXPECT_TRUE(ports.empty());
}

TEST_F(DmPortsInterfaceTest, AddLeavesTheDescriptionWithoutDefinition) {
    DmPortsInterface ports;
    auto const p = input("in", intType());
    ASSERT_TRUE(ports.addPortDescription(p));
    EXPECT_EQ(p->getNodeDef(), nullptr);
}

TEST_F(DmPortsInterfaceTest, HasPortAndIndexingFindByName) {
    auto const ports = makeABCD();
    EXPECT_TRUE(ports.hasPort("c"));
    EXPECT_FALSE(ports.hasPort("e"));
    ASSERT_NE(ports["c"], nullptr);
    EXPECT_EQ(ports["c"]->getName(), "c");
    EXPECT_EQ(ports["e"], nullptr);
    EXPECT_FALSE(ports.hasPort("e"));
}

TEST_F(DmPortsInterfaceTest, FindGivesTheEntryOrEnd) {
    auto ports = makeABCD();
    auto const it = ports.find("b");
    ASSERT_TRUE(it != ports.end());
    EXPECT_EQ(it->first, "b");
    EXPECT_EQ(it->second, ports["b"]);
    EXPECT_TRUE(ports.find("e") == ports.end());

    DmPortsInterface const& constPorts = ports;
    EXPECT_TRUE(constPorts.find("d") != constPorts.end());
    EXPECT_TRUE(constPorts.find("e") == constPorts.end());
}

TEST_F(DmPortsInterfaceTest, IndexOfGivesThePositionOrTheSize) {
    auto const ports = makeABCD();
    EXPECT_EQ(ports.indexOf("a"), 0u);
    EXPECT_EQ(ports.indexOf("c"), 2u);
    EXPECT_EQ(ports.indexOf("d"), 3u);
    EXPECT_EQ(ports.indexOf("e"), 4u);
}

TEST_F(DmPortsInterfaceTest, IterationFollowsTheOrderOfAdding) {
    auto ports = makeABCD();
    Names names;
    for (auto const& entry : ports) {
        EXPECT_EQ(entry.first, entry.second->getName());
        names.push_back(entry.first);
    }
    EXPECT_EQ(names, Names({"a", "b", "c", "d"}));
    EXPECT_EQ(portNames(ports.getPorts()), Names({"a", "b", "c", "d"}));
    DmPortsInterface const& constPorts = ports;
    EXPECT_EQ(constPorts.getPorts().size(), 4u);
}

TEST_F(DmPortsInterfaceTest, CopiesShareOneStorage) {
    DmPortsInterface ports;
    DmPortsInterface copy = ports;
    ASSERT_TRUE(copy.addPortDescription(input("in", intType())));
    EXPECT_TRUE(ports.hasPort("in"));
    EXPECT_EQ(ports.size(), 1u);
    EXPECT_EQ(ports["in"], copy["in"]);

    DmPortsInterface assigned;
    assigned = ports;
    ASSERT_TRUE(ports.addPortDescription(output("out", intType())));
    EXPECT_EQ(portNames(assigned), Names({"in", "out"}));
}

// ---------------------------------------------------------------------------
// Equality

TEST_F(DmPortsInterfaceTest, EmptyInterfacesAreEqual) {
    EXPECT_TRUE(DmPortsInterface() == DmPortsInterface());
    EXPECT_FALSE(DmPortsInterface() != DmPortsInterface());
}

TEST_F(DmPortsInterfaceTest, InterfacesWithPairwiseEqualDescriptionsAreEqual) {
    DmPortsInterface left;
    DmPortsInterface right;
    ASSERT_TRUE(left.addPortDescription(input("in", intType())));
    ASSERT_TRUE(left.addPortDescription(output("out", intType())));
    ASSERT_TRUE(right.addPortDescription(input("in", DmLibrary::getFloatType())));
    ASSERT_TRUE(right.addPortDescription(output("out", DmLibrary::getStringType())));
    EXPECT_TRUE(left == right);
    EXPECT_FALSE(left != right);
}

TEST_F(DmPortsInterfaceTest, InterfacesOfDifferentSizesAreNotEqual) {
    DmPortsInterface left;
    DmPortsInterface right;
    ASSERT_TRUE(left.addPortDescription(input("in", intType())));
    ASSERT_TRUE(right.addPortDescription(input("in", intType())));
    ASSERT_TRUE(right.addPortDescription(output("out", intType())));
    EXPECT_FALSE(left == right);
    EXPECT_FALSE(right == left);
    EXPECT_TRUE(left != right);
}

TEST_F(DmPortsInterfaceTest, InterfacesInAnotherOrderAreNotEqual) {
    DmPortsInterface left;
    DmPortsInterface right;
    ASSERT_TRUE(left.addPortDescription(input("a", intType())));
    ASSERT_TRUE(left.addPortDescription(input("b", intType())));
    ASSERT_TRUE(right.addPortDescription(input("b", intType())));
    ASSERT_TRUE(right.addPortDescription(input("a", intType())));
    EXPECT_FALSE(left == right);
}

TEST_F(DmPortsInterfaceTest, InterfacesWithADifferentDescriptionAreNotEqual) {
    DmPortsInterface left;
    DmPortsInterface right;
    ASSERT_TRUE(left.addPortDescription(input("a", intType())));
    ASSERT_TRUE(right.addPortDescription(output("a", intType())));
    EXPECT_FALSE(left == right);
}

TEST_F(DmPortsInterfaceTest, EqualityOfInterfacesWithLinkedPairsTerminates) {
    DmPortsInterface left;
    DmPortsInterface right;
    auto const leftIn = input("state", intType());
    auto const leftOut = output("state", intType());
    auto const rightIn = input("state", intType());
    auto const rightOut = output("state", intType());
    ASSERT_TRUE(leftIn->link(*leftOut, kIterationFeedback));
    ASSERT_TRUE(rightIn->link(*rightOut, kIterationFeedback));
    ASSERT_TRUE(left.addPortDescription(leftIn));
    ASSERT_TRUE(right.addPortDescription(rightIn));
    EXPECT_TRUE(left == right);
}

// ---------------------------------------------------------------------------
// Removing

TEST_F(DmPortsInterfaceTest, RemoveDropsTheEntry) {
    auto ports = makeABCD();
    auto const b = ports["b"];
    EXPECT_TRUE(ports.removePortDescription(b));
    EXPECT_EQ(portNames(ports), Names({"a", "c", "d"}));
    EXPECT_FALSE(ports.hasPort("b"));
}

TEST_F(DmPortsInterfaceTest, RemoveUnlinksThePortFirst) {
    DmPortsInterface ports;
    auto const in = input("in", intType());
    auto const out = output("out", intType());
    ASSERT_TRUE(in->link(*out, kIterationFeedback));
    ASSERT_TRUE(ports.addPortDescription(in));
    ASSERT_TRUE(ports.addPortDescription(out));

    EXPECT_TRUE(ports.removePortDescription(in));
    EXPECT_FALSE(in->isLinked());
    EXPECT_FALSE(out->isLinked());
    EXPECT_EQ(in->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(out->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(portNames(ports), Names({"out"}));
}

TEST_F(DmPortsInterfaceTest, RemoveOfAnUnlinkedPortSucceeds) {
    DmPortsInterface ports;
    auto const p = input("in", intType());
    ASSERT_TRUE(ports.addPortDescription(p));
    EXPECT_TRUE(ports.removePortDescription(p));
    EXPECT_TRUE(ports.empty());
}

TEST_F(DmPortsInterfaceTest, RemoveRefusesADescriptionThatIsNotTheEntryOfItsName) {
    auto ports = makeABCD();
    auto const entry = ports["b"];
    auto const stranger = input("b", intType());
    EXPECT_FALSE(ports.removePortDescription(stranger));
    EXPECT_EQ(portNames(ports), Names({"a", "b", "c", "d"}));
    EXPECT_EQ(ports["b"], entry);
}

TEST_F(DmPortsInterfaceTest, RemoveRefusesAnUnknownName) {
    auto ports = makeABCD();
    EXPECT_FALSE(ports.removePortDescription(input("e", intType())));
    EXPECT_EQ(ports.size(), 4u);
}

// ---------------------------------------------------------------------------
// Renaming

TEST_F(DmPortsInterfaceTest, RenameKeepsThePosition) {
    auto ports = makeABCD();
    auto const b = ports["b"];
    EXPECT_TRUE(ports.renamePortDescription("b", "bee"));
    EXPECT_EQ(portNames(ports), Names({"a", "bee", "c", "d"}));
    EXPECT_EQ(b->getName(), "bee");
    EXPECT_EQ(ports["bee"], b);
    EXPECT_FALSE(ports.hasPort("b"));
    EXPECT_EQ(ports.indexOf("bee"), 1u);
}

TEST_F(DmPortsInterfaceTest, RenameTakesTheNameVerbatim) {
    auto ports = makeABCD();
    EXPECT_TRUE(ports.renamePortDescription("a", "two words"));
    EXPECT_EQ(ports["two words"]->getName(), "two words");
    EXPECT_EQ(portNames(ports), Names({"two words", "b", "c", "d"}));
}

TEST_F(DmPortsInterfaceTest, RenameRefusesAnUnknownOldName) {
    auto ports = makeABCD();
    EXPECT_FALSE(ports.renamePortDescription("e", "f"));
    EXPECT_EQ(portNames(ports), Names({"a", "b", "c", "d"}));
}

TEST_F(DmPortsInterfaceTest, RenameRefusesATakenNewName) {
    auto ports = makeABCD();
    auto const b = ports["b"];
    auto const c = ports["c"];
    EXPECT_FALSE(ports.renamePortDescription("b", "c"));
    EXPECT_EQ(portNames(ports), Names({"a", "b", "c", "d"}));
    EXPECT_EQ(b->getName(), "b");
    EXPECT_EQ(ports["b"], b);
    EXPECT_EQ(ports["c"], c);
}

// ---------------------------------------------------------------------------
// Replacing

TEST_F(DmPortsInterfaceTest, ReplaceSwapsTheEntryInPlace) {
    auto ports = makeABCD();
    auto const old = ports["c"];
    auto const replacement = output("c", DmLibrary::getFloatType());
    EXPECT_TRUE(ports.replaceExistingPort(replacement));
    EXPECT_EQ(ports["c"], replacement);
    EXPECT_NE(ports["c"], old);
    EXPECT_EQ(portNames(ports), Names({"a", "b", "c", "d"}));
    EXPECT_EQ(ports.size(), 4u);
}

TEST_F(DmPortsInterfaceTest, ReplaceRefusesAnUnknownName) {
    auto ports = makeABCD();
    EXPECT_FALSE(ports.replaceExistingPort(input("e", intType())));
    EXPECT_EQ(portNames(ports), Names({"a", "b", "c", "d"}));
    EXPECT_FALSE(ports.hasPort("e"));
}

// ---------------------------------------------------------------------------
// Reordering

TEST_F(DmPortsInterfaceTest, ReorderMovesAnEntryToTheFront) {
    auto ports = makeABCD();
    auto const c = ports["c"];
    EXPECT_EQ(ports.reorderPortDescription(0, "c"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(ports), Names({"c", "a", "b", "d"}));
    EXPECT_EQ(ports["c"], c);
}

TEST_F(DmPortsInterfaceTest, ReorderMovesAnEntryBackwards) {
    auto ports = makeABCD();
    EXPECT_EQ(ports.reorderPortDescription(1, "d"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(ports), Names({"a", "d", "b", "c"}));
}

TEST_F(DmPortsInterfaceTest, ReorderMovesAnEntryForwards) {
    auto ports = makeABCD();
    EXPECT_EQ(ports.reorderPortDescription(3, "a"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(ports), Names({"b", "c", "a", "d"}));
}

TEST_F(DmPortsInterfaceTest, ReorderToTheSizeMovesAnEntryToTheEnd) {
    auto ports = makeABCD();
    EXPECT_EQ(ports.reorderPortDescription(ports.size(), "b"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(ports), Names({"a", "c", "d", "b"}));
}

TEST_F(DmPortsInterfaceTest, ReorderToWhereTheEntryIsChangesNothing) {
    auto ports = makeABCD();
    EXPECT_EQ(ports.reorderPortDescription(1, "b"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(ports), Names({"a", "b", "c", "d"}));
    EXPECT_EQ(ports.reorderPortDescription(2, "b"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(ports), Names({"a", "b", "c", "d"}));
    EXPECT_EQ(ports.reorderPortDescription(0, "a"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(ports), Names({"a", "b", "c", "d"}));
    EXPECT_EQ(ports.reorderPortDescription(ports.size(), "d"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(ports), Names({"a", "b", "c", "d"}));
}

TEST_F(DmPortsInterfaceTest, ReorderRefusesAnUnknownName) {
    auto ports = makeABCD();
    EXPECT_EQ(ports.reorderPortDescription(0, "e"), DmStatus::kFailure);
    EXPECT_EQ(portNames(ports), Names({"a", "b", "c", "d"}));
}

TEST_F(DmPortsInterfaceTest, ReorderRefusesAPositionPastTheEnd) {
    auto ports = makeABCD();
    EXPECT_EQ(ports.reorderPortDescription(ports.size() + 1, "a"), DmStatus::kInvalidArgument);
    EXPECT_EQ(portNames(ports), Names({"a", "b", "c", "d"}));
}

TEST_F(DmPortsInterfaceTest, ReorderKeepsEveryEntryFindable) {
    auto ports = makeABCD();
    ASSERT_EQ(ports.reorderPortDescription(0, "d"), DmStatus::kSuccess);
    ASSERT_EQ(ports.reorderPortDescription(ports.size(), "a"), DmStatus::kSuccess);
    EXPECT_EQ(portNames(ports), Names({"d", "b", "c", "a"}));
    for (auto const* name : {"a", "b", "c", "d"}) {
        ASSERT_NE(ports[name], nullptr) << name;
        EXPECT_EQ(ports[name]->getName(), name);
    }
    EXPECT_EQ(ports.indexOf("a"), 3u);
    EXPECT_EQ(ports.indexOf("d"), 0u);
}
