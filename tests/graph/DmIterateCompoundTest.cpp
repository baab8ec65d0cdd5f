#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/graph/DmIterateCompound.h>
#include <KestoDM/graph/DmLoopingCompound.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>

#include "graph/LoopTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace Kesto;
using KestoTest::arrayOf;
using KestoTest::input;
using KestoTest::insideOf;
using KestoTest::loopingSelfNodeOf;
using KestoTest::makeIterate;
using KestoTest::output;
using KestoTest::withRole;

namespace {

class DmIterateCompoundTest : public KestoTest::LoopTest {
protected:
    /// An iterate loop with the input targets "items" and "weights", the
    /// output target "gathered", and the plain "start" and "next".
    std::shared_ptr<DmIterateCompound> makeLoop() {
        auto loop = makeIterate();
        loop->addPortDescription(withRole(input("items", m_intArray), kIterationTarget), kFailOnClash);
        loop->addPortDescription(withRole(input("weights", m_intArray), kIterationTarget), kFailOnClash);
        loop->addPortDescription(withRole(output("gathered", m_intArray), kIterationTarget), kFailOnClash);
        loop->addPortDescription(input("start", m_intArray), kFailOnClash);
        loop->addPortDescription(output("next", m_intArray), kFailOnClash);
        return loop;
    }
};

} // namespace

// ---------------------------------------------------------------------------
// Construction and the self node

TEST_F(DmIterateCompoundTest, IterateLoopRunsOverArrays) {
    auto const loop = makeIterate();
    auto const* const selfNode = loopingSelfNodeOf(*loop);
    ASSERT_NE(selfNode, nullptr);
    EXPECT_TRUE(selfNode->isArrayLoop());
    EXPECT_STREQ(DmIterateCompound::kIcon, "../icons/LoopIterate.svg");
}

TEST_F(DmIterateCompoundTest, IterateReservesNoPortName) {
    auto const loop = makeIterate();
    EXPECT_FALSE(loop->isReservedPortName("looping_condition"));
    auto const port = output("looping_condition", DmLibrary::getBoolType());
    ASSERT_TRUE(loop->addPortDescription(port, kFailOnClash));
    EXPECT_EQ(port->getName(), "looping_condition");
    EXPECT_TRUE(loop->removePortDescription(port));
}

TEST_F(DmIterateCompoundTest, OutputTargetShowsAsAnInputOfTheElementType) {
    auto const loop = makeLoop();
    auto const inside = insideOf(*loop, "gathered");
    ASSERT_NE(inside, nullptr);
    EXPECT_EQ(inside->getDirection(), kDirectionInput);
    EXPECT_EQ(inside->getType(), DmLibrary::getIntType());
    EXPECT_TRUE(inside->isIterationTarget());
}

TEST_F(DmIterateCompoundTest, OutputThatIsNoTargetShowsWithItsArrayType) {
    auto const loop = makeLoop();
    auto const inside = insideOf(*loop, "next");
    ASSERT_NE(inside, nullptr);
    EXPECT_EQ(inside->getDirection(), kDirectionInput);
    EXPECT_EQ(inside->getType(), m_intArray);
    EXPECT_EQ(loop->getPortsInterface()["next"]->getIterationAttribute(), kIterationNone);
}

// ---------------------------------------------------------------------------
// State pairs

TEST_F(DmIterateCompoundTest, LinkStatePortsJoinsTwoPortsThatAreNoTargets) {
    auto const loop = makeLoop();
    ASSERT_TRUE(loop->linkStatePorts("start", "next"));
    EXPECT_EQ(insideOf(*loop, "start")->getLinkedPort(), insideOf(*loop, "next").get());
    EXPECT_TRUE(insideOf(*loop, "start")->isIterationState());
    EXPECT_TRUE(insideOf(*loop, "next")->isIterationState());
}

TEST_F(DmIterateCompoundTest, LinkStatePortsJoinsTwoTargets) {
    auto const loop = makeLoop();
    ASSERT_TRUE(loop->linkStatePorts("items", "gathered"));
    auto const items = insideOf(*loop, "items");
    auto const gathered = insideOf(*loop, "gathered");
    EXPECT_EQ(items->getLinkedPort(), gathered.get());
    // The pair's role takes the place of the target role on the self node.
    EXPECT_TRUE(items->isIterationState());
    EXPECT_TRUE(gathered->isIterationState());
    EXPECT_TRUE(loop->getPortsInterface()["items"]->isIterationTarget());
}

TEST_F(DmIterateCompoundTest, LinkStatePortsRefusesATargetWithANonTarget) {
    auto const loop = makeLoop();
    EXPECT_FALSE(loop->linkStatePorts("items", "next"));
    EXPECT_FALSE(loop->linkStatePorts("start", "gathered"));
    for (auto const& name : {"items", "next", "start", "gathered"}) {
        EXPECT_FALSE(insideOf(*loop, name)->isLinked()) << name;
    }
    EXPECT_TRUE(insideOf(*loop, "items")->isIterationTarget());
    EXPECT_EQ(insideOf(*loop, "next")->getIterationAttribute(), kIterationNone);
}

TEST_F(DmIterateCompoundTest, LinkStatePortsWithAMissingPortIsFalse) {
    auto const loop = makeLoop();
    EXPECT_FALSE(loop->linkStatePorts("start", "missing"));
    EXPECT_FALSE(loop->linkStatePorts("missing", "next"));
    EXPECT_FALSE(insideOf(*loop, "start")->isLinked());
    EXPECT_FALSE(insideOf(*loop, "next")->isLinked());
}

TEST_F(DmIterateCompoundTest, LinkStatePortsRefusesTwoTargetsOfOneDirection) {
    auto const loop = makeLoop();
    EXPECT_FALSE(loop->linkStatePorts("items", "weights"));
    EXPECT_TRUE(insideOf(*loop, "items")->isIterationTarget());
    EXPECT_TRUE(insideOf(*loop, "weights")->isIterationTarget());
}

TEST_F(DmIterateCompoundTest, ResetStatePortDissolvesThePair) {
    auto const loop = makeLoop();
    ASSERT_TRUE(loop->linkStatePorts("start", "next"));
    EXPECT_TRUE(loop->resetStatePort("start"));
    EXPECT_FALSE(insideOf(*loop, "start")->isLinked());
    EXPECT_FALSE(insideOf(*loop, "next")->isLinked());
    EXPECT_EQ(insideOf(*loop, "start")->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(insideOf(*loop, "next")->getIterationAttribute(), kIterationNone);
}

TEST_F(DmIterateCompoundTest, ResetStatePortOfAMissingOrUnlinkedPortIsFalse) {
    auto const loop = makeLoop();
    EXPECT_FALSE(loop->resetStatePort("missing"));
    EXPECT_FALSE(loop->resetStatePort("items"));
    EXPECT_TRUE(insideOf(*loop, "items")->isIterationTarget());
}

TEST_F(DmIterateCompoundTest, RemovingAStatePortFreesItsPartner) {
    auto const loop = makeLoop();
    ASSERT_TRUE(loop->linkStatePorts("items", "gathered"));
    EXPECT_TRUE(loop->removePortDescription(loop->getPortsInterface()["items"]));
    EXPECT_EQ(insideOf(*loop, "items"), nullptr);
    EXPECT_FALSE(insideOf(*loop, "gathered")->isLinked());
    EXPECT_EQ(insideOf(*loop, "gathered")->getIterationAttribute(), kIterationNone);
}

// ---------------------------------------------------------------------------
// Lifetime

TEST_F(DmIterateCompoundTest, IterateWithLinkedPortsLeavesNothingBehind) {
    unsigned int const iterates = count<DmIterateCompound>();
    {
        auto const loop = makeLoop();
        ASSERT_TRUE(loop->linkStatePorts("items", "gathered"));
        ASSERT_TRUE(loop->linkStatePorts("start", "next"));
        EXPECT_EQ(count<DmIterateCompound>(), iterates + 1);
    }
    EXPECT_EQ(count<DmIterateCompound>(), iterates);
}
