#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmForEachCompound.h>
#include <KestoDM/graph/DmLoopingCompound.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmTypeKind.h>

#include "graph/LoopTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::arrayOf;
using KestoTest::input;
using KestoTest::insideOf;
using KestoTest::loopingSelfNodeOf;
using KestoTest::makeForEach;
using KestoTest::makeLogger;
using KestoTest::makeUnknownType;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::withRole;

namespace {

class DmForEachCompoundTest : public KestoTest::LoopTest {
protected:
    /// A for-each loop with the input target "items", the plain input
    /// "start" and the outputs "gathered" and "total".
    std::shared_ptr<DmForEachCompound> makeLoop() {
        auto loop = makeForEach();
        loop->addPortDescription(withRole(input("items", m_intArray), kIterationTarget), kFailOnClash);
        loop->addPortDescription(input("start", m_intArray), kFailOnClash);
        loop->addPortDescription(output("gathered", m_intArray), kFailOnClash);
        loop->addPortDescription(output("total", m_intArray), kFailOnClash);
        return loop;
    }
};

} // namespace

// ---------------------------------------------------------------------------
// Construction

TEST_F(DmForEachCompoundTest, ForEachLoopRunsOverArrays) {
    auto const loop = makeForEach();
    auto const* const selfNode = loopingSelfNodeOf(*loop);
    ASSERT_NE(selfNode, nullptr);
    EXPECT_TRUE(selfNode->isArrayLoop());
    EXPECT_STREQ(DmForEachCompound::kIcon, "../icons/LoopForEach.svg");
    EXPECT_FALSE(loop->isReservedPortName("looping_condition"));
}

// ---------------------------------------------------------------------------
// Outputs default to targets

TEST_F(DmForEachCompoundTest, OutputGoesInAsATargetClone) {
    auto const loop = makeForEach();
    auto const port = output("gathered", m_intArray);
    ASSERT_TRUE(loop->addPortDescription(port, kFailOnClash));
    auto const added = loop->getPortsInterface()["gathered"];
    ASSERT_NE(added, nullptr);
    EXPECT_NE(added, port);
    EXPECT_TRUE(added->isIterationTarget());
    EXPECT_EQ(added->getType(), m_intArray);
    EXPECT_EQ(added->getDirection(), kDirectionOutput);
    EXPECT_EQ(added->getNodeDef(), loop.get());
    // The given description stays as it was, and belongs to nothing.
    EXPECT_EQ(port->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(port->getNodeDef(), nullptr);
}

TEST_F(DmForEachCompoundTest, ArrayOutputShowsInsideAsAnInputOfTheElementType) {
    auto const loop = makeForEach();
    ASSERT_TRUE(loop->addPortDescription(output("gathered", m_intArray), kFailOnClash));
    auto const inside = insideOf(*loop, "gathered");
    ASSERT_NE(inside, nullptr);
    EXPECT_EQ(inside->getDirection(), kDirectionInput);
    EXPECT_EQ(inside->getType(), DmLibrary::getIntType());
    EXPECT_TRUE(inside->isIterationTarget());
}

TEST_F(DmForEachCompoundTest, OutputThatIsATargetGoesInAsGiven) {
    auto const loop = makeForEach();
    auto const port = withRole(output("gathered", m_intArray), kIterationTarget);
    ASSERT_TRUE(loop->addPortDescription(port, kFailOnClash));
    EXPECT_EQ(loop->getPortsInterface()["gathered"], port);
    EXPECT_EQ(port->getNodeDef(), loop.get());
}

TEST_F(DmForEachCompoundTest, OutputWithAnotherRoleBecomesATarget) {
    auto const loop = makeForEach();
    ASSERT_TRUE(
        loop->addPortDescription(withRole(output("count", m_intArray), kIterationCounter), kFailOnClash));
    EXPECT_TRUE(loop->getPortsInterface()["count"]->isIterationTarget());
}

TEST_F(DmForEachCompoundTest, InputGoesInAsGiven) {
    auto const loop = makeForEach();
    auto const port = input("start", m_intArray);
    ASSERT_TRUE(loop->addPortDescription(port, kFailOnClash));
    EXPECT_EQ(loop->getPortsInterface()["start"], port);
    EXPECT_EQ(port->getIterationAttribute(), kIterationNone);
    auto const inside = insideOf(*loop, "start");
    EXPECT_EQ(inside->getType(), m_intArray);
    EXPECT_EQ(inside->getDirection(), kDirectionOutput);
}

TEST_F(DmForEachCompoundTest, OutputTargetCloneIsRenamedUnderMakeUnique) {
    auto const loop = makeForEach();
    loop->addPortDescription(input("value", m_intArray), kFailOnClash);
    auto const port = output("value", m_intArray);
    ASSERT_TRUE(loop->addPortDescription(port, kMakeUnique));
    EXPECT_EQ(portNames(loop->getPortsInterface()), (std::vector<std::string>{"value", "value1"}));
    EXPECT_TRUE(loop->getPortsInterface()["value1"]->isIterationTarget());
    EXPECT_EQ(port->getName(), "value");
}

TEST_F(DmForEachCompoundTest, OutputOfATakenNameIsRefusedUnderFailOnClash) {
    auto const loop = makeForEach();
    loop->addPortDescription(input("value", m_intArray), kFailOnClash);
    EXPECT_FALSE(loop->addPortDescription(output("value", m_intArray), kFailOnClash));
    EXPECT_EQ(loop->getPortsInterface().size(), 1u);
    EXPECT_EQ(insideOf(*loop, "value")->getDirection(), kDirectionOutput);
}

TEST_F(DmForEachCompoundTest, OutputOfAnotherDefinitionIsRefused) {
    auto const other = makeForEach("other");
    auto const port = withRole(output("gathered", m_intArray), kIterationTarget);
    ASSERT_TRUE(other->addPortDescription(port, kFailOnClash));
    port->setIterationAttribute(kIterationNone);
    auto const loop = makeForEach();
    EXPECT_FALSE(loop->addPortDescription(port, kFailOnClash));
    EXPECT_EQ(loop->getPortsInterface().size(), 0u);
    EXPECT_EQ(port->getNodeDef(), other.get());
}

TEST_F(DmForEachCompoundTest, NullPortIsRefused) {
    auto const loop = makeForEach();
    EXPECT_FALSE(loop->addPortDescription(nullptr, kFailOnClash));
}

TEST_F(DmForEachCompoundTest, OutputThatIsNoArrayBecomesATargetThatDoesNotShowInside) {
    auto const loop = makeForEach();
    ASSERT_TRUE(loop->addPortDescription(output("sum", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_TRUE(loop->getPortsInterface()["sum"]->isIterationTarget());
    EXPECT_EQ(insideOf(*loop, "sum"), nullptr);
}

TEST_F(DmForEachCompoundTest, OutputOfUnknownTypeShowsAnUnknownElementInside) {
    auto const loop = makeForEach();
    ASSERT_TRUE(loop->addPortDescription(output("points", makeUnknownType("array<Point>")), kFailOnClash));
    auto const inside = insideOf(*loop, "points");
    ASSERT_NE(inside, nullptr);
    EXPECT_EQ(inside->getType()->getTypeKind(), kTypeUnknown);
    EXPECT_EQ(inside->getType()->getName(), "Point");
    EXPECT_EQ(inside->getDirection(), kDirectionInput);
}

TEST_F(DmForEachCompoundTest, ElementOfAnOutputIsFedFromInside) {
    auto const loop = makeForEach();
    loop->addPortDescription(withRole(input("items", m_intArray), kIterationTarget), kFailOnClash);
    loop->addPortDescription(output("gathered", m_intArray), kFailOnClash);
    std::shared_ptr<DmConnection> connection;
    EXPECT_EQ(loop->makeConnection(".items", ".gathered", connection), DmStatus::kSuccess);
    EXPECT_NE(connection, nullptr);
}

// ---------------------------------------------------------------------------
// In-out pairs

TEST_F(DmForEachCompoundTest, SetInOutPortLinksTheSelfNodeDescriptions) {
    auto const loop = makeLoop();
    ASSERT_TRUE(loop->setInOutPort("items", "gathered"));
    auto const items = insideOf(*loop, "items");
    auto const gathered = insideOf(*loop, "gathered");
    EXPECT_EQ(items->getLinkedPort(), gathered.get());
    EXPECT_EQ(gathered->getLinkedPort(), items.get());
    EXPECT_TRUE(items->isIterationInOutTarget());
    EXPECT_TRUE(gathered->isIterationInOutTarget());
    EXPECT_FALSE(loop->getPortsInterface()["items"]->isLinked());
}

TEST_F(DmForEachCompoundTest, SetInOutPortJoinsAPortThatIsNoTarget) {
    auto const loop = makeLoop();
    EXPECT_TRUE(loop->setInOutPort("start", "total"));
    EXPECT_TRUE(insideOf(*loop, "start")->isIterationInOutTarget());
}

TEST_F(DmForEachCompoundTest, SetInOutPortWithAMissingPortIsFalse) {
    auto const loop = makeLoop();
    EXPECT_FALSE(loop->setInOutPort("items", "missing"));
    EXPECT_FALSE(loop->setInOutPort("missing", "gathered"));
    EXPECT_FALSE(insideOf(*loop, "items")->isLinked());
    EXPECT_TRUE(insideOf(*loop, "items")->isIterationTarget());
    EXPECT_TRUE(insideOf(*loop, "gathered")->isIterationTarget());
}

TEST_F(DmForEachCompoundTest, SetInOutPortRefusesTwoInputs) {
    auto const loop = makeLoop();
    EXPECT_FALSE(loop->setInOutPort("items", "start"));
    EXPECT_TRUE(insideOf(*loop, "items")->isIterationTarget());
    EXPECT_FALSE(insideOf(*loop, "start")->isLinked());
}

TEST_F(DmForEachCompoundTest, InOutPortSetBySetInOutPortDoesNotAnswerAsInOut) {
    auto const loop = makeLoop();
    ASSERT_TRUE(loop->setInOutPort("items", "gathered"));
    EXPECT_FALSE(loop->isInOutPort("items"));
    EXPECT_FALSE(loop->isInOutPort("gathered"));
}

TEST_F(DmForEachCompoundTest, IsInOutPortAnswersForAStatePair) {
    auto const loop = makeLoop();
    ASSERT_TRUE(insideOf(*loop, "start")->link(*insideOf(*loop, "total"), kIterationState));
    EXPECT_TRUE(loop->isInOutPort("start"));
    EXPECT_TRUE(loop->isInOutPort("total"));
    EXPECT_FALSE(loop->isInOutPort("items"));
}

TEST_F(DmForEachCompoundTest, IsInOutPortOfAMissingPortIsFalse) {
    auto const loop = makeLoop();
    EXPECT_FALSE(loop->isInOutPort("missing"));
}

TEST_F(DmForEachCompoundTest, ResetInOutPortDissolvesThePair) {
    auto const loop = makeLoop();
    ASSERT_TRUE(loop->setInOutPort("items", "gathered"));
    EXPECT_TRUE(loop->resetInOutPort("gathered"));
    for (auto const& name : {"items", "gathered"}) {
        auto const inside = insideOf(*loop, name);
        EXPECT_FALSE(inside->isLinked()) << name;
        EXPECT_EQ(inside->getIterationAttribute(), kIterationNone) << name;
    }
}

TEST_F(DmForEachCompoundTest, ResetInOutPortOfAMissingOrUnlinkedPortIsFalse) {
    auto const loop = makeLoop();
    EXPECT_FALSE(loop->resetInOutPort("missing"));
    EXPECT_FALSE(loop->resetInOutPort("items"));
    EXPECT_TRUE(insideOf(*loop, "items")->isIterationTarget());
}

TEST_F(DmForEachCompoundTest, RemovingAnInOutPortFreesItsPartner) {
    auto const loop = makeLoop();
    ASSERT_TRUE(loop->setInOutPort("items", "gathered"));
    EXPECT_TRUE(loop->removePortDescription(loop->getPortsInterface()["gathered"]));
    EXPECT_EQ(loop->getPortsInterface()["gathered"], nullptr);
    EXPECT_FALSE(insideOf(*loop, "items")->isLinked());
    EXPECT_EQ(insideOf(*loop, "items")->getIterationAttribute(), kIterationNone);
}

// ---------------------------------------------------------------------------
// Lifetime

TEST_F(DmForEachCompoundTest, ForEachWithLinkedPortsLeavesNothingBehind) {
    unsigned int const forEaches = count<DmForEachCompound>();
    {
        auto const loop = makeLoop();
        ASSERT_TRUE(loop->setInOutPort("items", "gathered"));
        ASSERT_TRUE(loop->setInOutPort("start", "total"));
        auto const clone = loop->clone();
        EXPECT_EQ(count<DmForEachCompound>(), forEaches + 2);
    }
    EXPECT_EQ(count<DmForEachCompound>(), forEaches);
}
