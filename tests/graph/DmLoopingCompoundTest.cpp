#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmForEachCompound.h>
#include <KestoDM/graph/DmIterateCompound.h>
#include <KestoDM/graph/DmLoopingCompound.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmWhileCompound.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmTypeKind.h>

#include "graph/LoopTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

using namespace Kesto;
using KestoTest::arrayOf;
using KestoTest::iconOf;
using KestoTest::input;
using KestoTest::insideOf;
using KestoTest::loopingSelfNodeOf;
using KestoTest::makeUnknownType;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::typeName;
using KestoTest::withRole;

namespace {

// What the three kinds of loop differ in, for the tests they share.

struct WhileKind {
    using Loop = DmWhileCompound;
    static std::shared_ptr<Loop> create(std::string const& name, DmNameResolveFlags flags = kNameVerbatim) {
        return Loop::createWhileCompound(name, flags);
    }
    static constexpr char const* icon = "../icons/LoopDo_While.svg";
    static constexpr bool arrayLoop = false;
    static std::vector<std::string> portsMade() { return {"looping_condition"}; }
    /// The pair that carries a value from one iteration to the next.
    static bool linkPair(Loop& loop, std::string const& first, std::string const& second) {
        return loop.linkStatePorts(first, second);
    }
    static constexpr IterationAttribute pairRole = kIterationState;
};

struct IterateKind {
    using Loop = DmIterateCompound;
    static std::shared_ptr<Loop> create(std::string const& name, DmNameResolveFlags flags = kNameVerbatim) {
        return Loop::createIterateCompound(name, flags);
    }
    static constexpr char const* icon = "../icons/LoopIterate.svg";
    static constexpr bool arrayLoop = true;
    static std::vector<std::string> portsMade() { return {}; }
    static bool linkPair(Loop& loop, std::string const& first, std::string const& second) {
        return loop.linkStatePorts(first, second);
    }
    static constexpr IterationAttribute pairRole = kIterationState;
};

struct ForEachKind {
    using Loop = DmForEachCompound;
    static std::shared_ptr<Loop> create(std::string const& name, DmNameResolveFlags flags = kNameVerbatim) {
        return Loop::createForEachCompound(name, flags);
    }
    static constexpr char const* icon = "../icons/LoopForEach.svg";
    static constexpr bool arrayLoop = true;
    static std::vector<std::string> portsMade() { return {}; }
    static bool linkPair(Loop& loop, std::string const& first, std::string const& second) {
        return loop.setInOutPort(first, second);
    }
    static constexpr IterationAttribute pairRole = kIterationInOutTarget;
};

template <class Kind>
class DmLoopingCompoundTest : public KestoTest::LoopTest {
protected:
    using Loop = typename Kind::Loop;

    static std::shared_ptr<Loop> makeLoop(std::string const& name = "loop") { return Kind::create(name); }

    /// A loop with the plain input "a" and the output "b", both of array<int>:
    /// a pair every kind can link.
    std::shared_ptr<Loop> makeLoopWithPair() {
        auto loop = makeLoop();
        loop->addPortDescription(input("a", m_intArray), kFailOnClash);
        loop->addPortDescription(output("b", m_intArray), kFailOnClash);
        return loop;
    }
};

struct KindNames {
    template <class Kind>
    static std::string GetName(int) {
        if (std::is_same<Kind, WhileKind>::value)
            return "While";
        if (std::is_same<Kind, IterateKind>::value)
            return "Iterate";
        return "ForEach";
    }
};

using Kinds = ::testing::Types<WhileKind, IterateKind, ForEachKind>;
TYPED_TEST_SUITE(DmLoopingCompoundTest, Kinds, KindNames);

/// A plain compound with the int input "x" and the int output "y", to put
/// nodes inside loops.
std::shared_ptr<DmCompound> makeInnerDef() {
    auto def = DmCompound::createCompound("inner");
    def->addPortDescription(input("x", DmLibrary::getIntType()), kFailOnClash);
    def->addPortDescription(output("y", DmLibrary::getIntType()), kFailOnClash);
    return def;
}

} // namespace

// ---------------------------------------------------------------------------
// Construction

TYPED_TEST(DmLoopingCompoundTest, LoopIsALoopingCompound) {
    using Loop = typename TypeParam::Loop;
    static_assert(std::is_base_of<DmLoopingCompound, Loop>::value, "every loop is a looping compound");
    static_assert(std::is_base_of<DmCompound, DmLoopingCompound>::value, "a loop is a compound");
    static_assert(std::is_abstract<DmLoopingCompound>::value, "only the three kinds are made");
    auto const loop = this->makeLoop();
    ASSERT_NE(loop, nullptr);
    EXPECT_EQ(loop->getName(), "loop");
    EXPECT_TRUE(loop->isValid());
    EXPECT_TRUE(loop->getNodes().empty());
    EXPECT_TRUE(loop->getConnections().empty());
}

TYPED_TEST(DmLoopingCompoundTest, FactoryResolvesTheNameWithTheFlags) {
    auto const verbatim = TypeParam::create("my loop", kNameVerbatim);
    ASSERT_NE(verbatim, nullptr);
    EXPECT_EQ(verbatim->getName(), "my loop");
    auto const legal = TypeParam::create("my loop", kNameLegalize);
    ASSERT_NE(legal, nullptr);
    EXPECT_EQ(legal->getName(), "my_loop");
    EXPECT_EQ(TypeParam::create("my loop", kNameMustBeLegal), nullptr);
    EXPECT_EQ(TypeParam::create("", kNameVerbatim), nullptr);
}

TYPED_TEST(DmLoopingCompoundTest, FactoryHandsOutTheLoopInitializedWithThePortsOfItsKind) {
    auto const loop = TypeParam::create("loop");
    ASSERT_NE(loop, nullptr);
    ASSERT_NE(loopingSelfNodeOf(*loop), nullptr);
    EXPECT_EQ(loop->getSelfNode()->getName(), "loop");
    EXPECT_EQ(portNames(loop->getPortsInterface()), TypeParam::portsMade());
    EXPECT_EQ(portNames(loop->getSelfNode()->getPorts()), TypeParam::portsMade());
}

TYPED_TEST(DmLoopingCompoundTest, LoopCarriesTheIconOfItsKindFromConstruction) {
    auto const loop = TypeParam::create("loop");
    EXPECT_EQ(iconOf(*loop), TypeParam::icon);
    EXPECT_EQ(TypeParam::Loop::kIcon, std::string(TypeParam::icon));
    EXPECT_STREQ(DmLoopingCompound::kIconKey, "icon");
}

TYPED_TEST(DmLoopingCompoundTest, InitializeMakesALoopingSelfNodeWithTheArrayFlagOfTheKind) {
    auto const loop = this->makeLoop();
    auto const* const selfNode = loopingSelfNodeOf(*loop);
    ASSERT_NE(selfNode, nullptr);
    EXPECT_EQ(selfNode->isArrayLoop(), TypeParam::arrayLoop);
}

TYPED_TEST(DmLoopingCompoundTest, SelfNodeIsNamedAsTheLoopAndOwnedByIt) {
    auto const loop = this->makeLoop("body");
    auto const selfNode = loop->getSelfNode();
    ASSERT_NE(selfNode, nullptr);
    EXPECT_TRUE(selfNode->isSelfNode());
    EXPECT_EQ(selfNode->getName(), "body");
    EXPECT_EQ(selfNode->getNodeDef(), loop.get());
    EXPECT_EQ(selfNode->getOwner(), loop.get());
    EXPECT_EQ(loop->getInstantiatedNodes().count(selfNode.get()), 1u);
}

TYPED_TEST(DmLoopingCompoundTest, InitializeMakesOnlyThePortsOfTheKind) {
    auto const loop = this->makeLoop();
    EXPECT_EQ(portNames(loop->getPortsInterface()), TypeParam::portsMade());
    EXPECT_EQ(portNames(loop->getSelfNode()->getPorts()), TypeParam::portsMade());
}

TYPED_TEST(DmLoopingCompoundTest, SecondInitializeKeepsTheSelfNodeAndThePorts) {
    auto const loop = this->makeLoop();
    auto const selfNode = loop->getSelfNode();
    loop->initialize();
    EXPECT_EQ(loop->getSelfNode(), selfNode);
    EXPECT_EQ(portNames(loop->getPortsInterface()), TypeParam::portsMade());
}

TYPED_TEST(DmLoopingCompoundTest, CloneIsAnInitializedEmptyLoopOfTheSameKindAndName) {
    auto const loop = this->makeLoopWithPair();
    ASSERT_EQ(loop->addNode(DmNode::createNode("n", makeInnerDef()), kFailOnClash), DmStatus::kSuccess);
    auto const clone = loop->clone();
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone, loop);
    EXPECT_NE(std::dynamic_pointer_cast<typename TypeParam::Loop>(clone), nullptr);
    EXPECT_EQ(clone->getName(), "loop");
    EXPECT_EQ(iconOf(*clone), TypeParam::icon);
    EXPECT_TRUE(clone->getNodes().empty());
    EXPECT_EQ(portNames(clone->getPortsInterface()), TypeParam::portsMade());
    auto const* const selfNode = loopingSelfNodeOf(*clone);
    ASSERT_NE(selfNode, nullptr);
    EXPECT_EQ(selfNode->isArrayLoop(), TypeParam::arrayLoop);
    EXPECT_EQ(portNames(selfNode->getPorts()), TypeParam::portsMade());
}

// ---------------------------------------------------------------------------
// The self node's view of the ports

TYPED_TEST(DmLoopingCompoundTest, PlainPortShowsInvertedWithItsOwnType) {
    auto const loop = this->makeLoop();
    auto const port = input("a", this->m_intArray);
    ASSERT_TRUE(loop->addPortDescription(port, kFailOnClash));
    auto const inside = insideOf(*loop, "a");
    ASSERT_NE(inside, nullptr);
    EXPECT_NE(inside, port);
    EXPECT_EQ(inside->getDirection(), kDirectionOutput);
    EXPECT_EQ(inside->getType(), this->m_intArray);
    EXPECT_EQ(inside->getIterationAttribute(), kIterationNone);
}

TYPED_TEST(DmLoopingCompoundTest, LimitAndCounterPortsShowAsPlainPorts) {
    auto const loop = this->makeLoop();
    loop->addPortDescription(withRole(input("limit", DmLibrary::getIntType()), kIterationLimit),
                             kFailOnClash);
    loop->addPortDescription(withRole(input("counter", DmLibrary::getIntType()), kIterationCounter),
                             kFailOnClash);
    auto const limit = insideOf(*loop, "limit");
    auto const counter = insideOf(*loop, "counter");
    ASSERT_NE(limit, nullptr);
    ASSERT_NE(counter, nullptr);
    EXPECT_EQ(limit->getDirection(), kDirectionOutput);
    EXPECT_EQ(limit->getType(), DmLibrary::getIntType());
    EXPECT_TRUE(limit->isIterationLimit());
    EXPECT_EQ(counter->getDirection(), kDirectionOutput);
    EXPECT_EQ(counter->getType(), DmLibrary::getIntType());
    EXPECT_TRUE(counter->isIterationCounter());
}

TYPED_TEST(DmLoopingCompoundTest, InputTargetShowsAsAnOutputOfTheElementType) {
    auto const loop = this->makeLoop();
    ASSERT_TRUE(
        loop->addPortDescription(withRole(input("items", this->m_intArray), kIterationTarget), kFailOnClash));
    auto const inside = insideOf(*loop, "items");
    ASSERT_NE(inside, nullptr);
    EXPECT_EQ(inside->getDirection(), kDirectionOutput);
    EXPECT_EQ(inside->getType(), DmLibrary::getIntType());
    EXPECT_TRUE(inside->isIterationTarget());
}

TYPED_TEST(DmLoopingCompoundTest, TargetLeavesTheLoopsOwnDescriptionAsItIs) {
    auto const loop = this->makeLoop();
    auto const port = withRole(input("items", this->m_intArray), kIterationTarget);
    ASSERT_TRUE(loop->addPortDescription(port, kFailOnClash));
    EXPECT_EQ(loop->getPortsInterface()["items"], port);
    EXPECT_EQ(port->getType(), this->m_intArray);
    EXPECT_EQ(port->getDirection(), kDirectionInput);
    EXPECT_TRUE(port->isIterationTarget());
}

TYPED_TEST(DmLoopingCompoundTest, SelfNodeDescriptionOfATargetBelongsToTheLoop) {
    auto const loop = this->makeLoop();
    loop->addPortDescription(withRole(input("items", this->m_intArray), kIterationTarget), kFailOnClash);
    auto const inside = insideOf(*loop, "items");
    ASSERT_NE(inside, nullptr);
    EXPECT_EQ(inside->getNodeDef(), loop.get());
    EXPECT_EQ(inside->getName(), "items");
}

TYPED_TEST(DmLoopingCompoundTest, TargetOfAnArrayOfArraysShowsTheInnerArray) {
    auto const loop = this->makeLoop();
    auto const nested = arrayOf(this->m_intArray);
    loop->addPortDescription(withRole(input("rows", nested), kIterationTarget), kFailOnClash);
    auto const inside = insideOf(*loop, "rows");
    ASSERT_NE(inside, nullptr);
    EXPECT_EQ(inside->getType(), this->m_intArray);
    EXPECT_EQ(typeName(inside->getType()), "array<int>");
}

TYPED_TEST(DmLoopingCompoundTest, TargetOfAnUnknownArrayTypeShowsAnUnknownTypeOfTheElementName) {
    auto const loop = this->makeLoop();
    auto const unknown = makeUnknownType("array<geo::Point>");
    loop->addPortDescription(withRole(input("points", unknown), kIterationTarget), kFailOnClash);
    auto const inside = insideOf(*loop, "points");
    ASSERT_NE(inside, nullptr);
    ASSERT_NE(inside->getType(), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<DmUnknownType const>(inside->getType()), nullptr);
    EXPECT_EQ(inside->getType()->getTypeKind(), kTypeUnknown);
    EXPECT_EQ(inside->getType()->getName(), "geo::Point");
    EXPECT_EQ(inside->getDirection(), kDirectionOutput);
}

TYPED_TEST(DmLoopingCompoundTest, TargetOfAnUnknownTypeShowsAnUnknownTypeOfTheSameName) {
    auto const loop = this->makeLoop();
    auto const unknown = makeUnknownType("Mystery");
    loop->addPortDescription(withRole(input("things", unknown), kIterationTarget), kFailOnClash);
    auto const inside = insideOf(*loop, "things");
    ASSERT_NE(inside, nullptr);
    ASSERT_NE(inside->getType(), nullptr);
    EXPECT_EQ(inside->getType()->getTypeKind(), kTypeUnknown);
    EXPECT_EQ(inside->getType()->getName(), "Mystery");
    // An element stands apart from the type it is the element of.
    EXPECT_NE(inside->getType(), unknown);
}

TYPED_TEST(DmLoopingCompoundTest, TargetThatIsNoArrayDoesNotShowInside) {
    auto const loop = this->makeLoop();
    EXPECT_TRUE(loop->addPortDescription(withRole(input("count", DmLibrary::getIntType()), kIterationTarget),
                                         kFailOnClash));
    EXPECT_NE(loop->getPortsInterface()["count"], nullptr);
    EXPECT_EQ(insideOf(*loop, "count"), nullptr);
}

TYPED_TEST(DmLoopingCompoundTest, TargetWithoutTypeDoesNotShowInside) {
    auto const loop = this->makeLoop();
    EXPECT_TRUE(
        loop->addPortDescription(withRole(input("pending", nullptr), kIterationTarget), kFailOnClash));
    EXPECT_NE(loop->getPortsInterface()["pending"], nullptr);
    EXPECT_EQ(insideOf(*loop, "pending"), nullptr);
}

TYPED_TEST(DmLoopingCompoundTest, SelfNodeInvertsAndViewsTargetsEvenWhenAskedNotToInvert) {
    auto const loop = this->makeLoop();
    auto const selfNode = loop->getInternalSelfNode();
    ASSERT_TRUE(selfNode->addPort(input("plain", DmLibrary::getIntType()), false));
    ASSERT_TRUE(selfNode->addPort(withRole(input("items", this->m_intArray), kIterationTarget), false));
    EXPECT_EQ(insideOf(*loop, "plain")->getDirection(), kDirectionOutput);
    EXPECT_EQ(insideOf(*loop, "items")->getDirection(), kDirectionOutput);
    EXPECT_EQ(insideOf(*loop, "items")->getType(), DmLibrary::getIntType());
}

TYPED_TEST(DmLoopingCompoundTest, SelfNodeRefusesATakenNameForATarget) {
    auto const loop = this->makeLoop();
    loop->addPortDescription(input("items", DmLibrary::getIntType()), kFailOnClash);
    EXPECT_FALSE(loop->getInternalSelfNode()->addPort(
        withRole(input("items", this->m_intArray), kIterationTarget), true));
    EXPECT_EQ(insideOf(*loop, "items")->getType(), DmLibrary::getIntType());
}

TYPED_TEST(DmLoopingCompoundTest, ReplacingATargetShowsTheNewElementType) {
    auto const loop = this->makeLoop();
    loop->addPortDescription(withRole(input("items", this->m_intArray), kIterationTarget), kFailOnClash);
    auto const floats = arrayOf(DmLibrary::getFloatType());
    ASSERT_TRUE(loop->replaceExistingPort(withRole(input("items", floats), kIterationTarget)));
    auto const inside = insideOf(*loop, "items");
    ASSERT_NE(inside, nullptr);
    EXPECT_EQ(inside->getType(), DmLibrary::getFloatType());
    EXPECT_EQ(inside->getDirection(), kDirectionOutput);
    EXPECT_TRUE(inside->isIterationTarget());
}

TYPED_TEST(DmLoopingCompoundTest, ReplacingAPlainPortByATargetShowsTheElementType) {
    auto const loop = this->makeLoop();
    loop->addPortDescription(input("items", this->m_intArray), kFailOnClash);
    ASSERT_TRUE(loop->replaceExistingPort(withRole(input("items", this->m_intArray), kIterationTarget)));
    EXPECT_EQ(insideOf(*loop, "items")->getType(), DmLibrary::getIntType());
}

TYPED_TEST(DmLoopingCompoundTest, ReplacingByATargetThatCannotShowLeavesTheOldSelfPort) {
    auto const loop = this->makeLoop();
    loop->addPortDescription(input("count", DmLibrary::getIntType()), kFailOnClash);
    auto const before = insideOf(*loop, "count");
    auto const replacement = withRole(input("count", DmLibrary::getIntType()), kIterationTarget);
    EXPECT_TRUE(loop->replaceExistingPort(replacement));
    EXPECT_EQ(loop->getPortsInterface()["count"], replacement);
    EXPECT_EQ(insideOf(*loop, "count"), before);
    EXPECT_EQ(before->getIterationAttribute(), kIterationNone);
    EXPECT_FALSE(loop->getInternalSelfNode()->replacePort(replacement, true));
}

TYPED_TEST(DmLoopingCompoundTest, ReplacingAPortKeepsTheLinkOfItsSelfNodePort) {
    auto const loop = this->makeLoopWithPair();
    ASSERT_TRUE(TypeParam::linkPair(*loop, "a", "b"));
    ASSERT_TRUE(loop->replaceExistingPort(input("a", arrayOf(DmLibrary::getFloatType()))));
    auto const a = insideOf(*loop, "a");
    auto const b = insideOf(*loop, "b");
    EXPECT_EQ(a->getType()->getName(), "array<float>");
    EXPECT_EQ(a->getLinkedPort(), b.get());
    EXPECT_EQ(b->getLinkedPort(), a.get());
    EXPECT_EQ(a->getIterationAttribute(), TypeParam::pairRole);
    EXPECT_EQ(b->getIterationAttribute(), TypeParam::pairRole);
}

TYPED_TEST(DmLoopingCompoundTest, ElementOfAnInputTargetFeedsANodeInside) {
    auto const loop = this->makeLoop();
    loop->addPortDescription(withRole(input("items", this->m_intArray), kIterationTarget), kFailOnClash);
    ASSERT_EQ(loop->addNode(DmNode::createNode("n", makeInnerDef()), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmConnection> connection;
    EXPECT_EQ(loop->makeConnection(".items", "n.x", connection), DmStatus::kSuccess);
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(loop->getBindingConnections().size(), 1u);
}

// ---------------------------------------------------------------------------
// Pairs and removal

TYPED_TEST(DmLoopingCompoundTest, PairLinksTheSelfNodeDescriptionsAndLeavesTheLoopsOwn) {
    auto const loop = this->makeLoopWithPair();
    ASSERT_TRUE(TypeParam::linkPair(*loop, "a", "b"));
    auto const a = insideOf(*loop, "a");
    auto const b = insideOf(*loop, "b");
    EXPECT_EQ(a->getLinkedPort(), b.get());
    EXPECT_EQ(b->getLinkedPort(), a.get());
    EXPECT_EQ(a->getIterationAttribute(), TypeParam::pairRole);
    EXPECT_EQ(b->getIterationAttribute(), TypeParam::pairRole);
    EXPECT_FALSE(loop->getPortsInterface()["a"]->isLinked());
    EXPECT_FALSE(loop->getPortsInterface()["b"]->isLinked());
    EXPECT_EQ(loop->getPortsInterface()["a"]->getIterationAttribute(), kIterationNone);
}

TYPED_TEST(DmLoopingCompoundTest, PairWithAMissingPortIsRefused) {
    auto const loop = this->makeLoopWithPair();
    EXPECT_FALSE(TypeParam::linkPair(*loop, "a", "missing"));
    EXPECT_FALSE(TypeParam::linkPair(*loop, "missing", "b"));
    EXPECT_FALSE(insideOf(*loop, "a")->isLinked());
    EXPECT_FALSE(insideOf(*loop, "b")->isLinked());
}

TYPED_TEST(DmLoopingCompoundTest, PairOfTwoPortsOfOneDirectionIsRefused) {
    auto const loop = this->makeLoopWithPair();
    loop->addPortDescription(input("c", this->m_intArray), kFailOnClash);
    EXPECT_FALSE(TypeParam::linkPair(*loop, "a", "c"));
    EXPECT_FALSE(insideOf(*loop, "a")->isLinked());
    EXPECT_EQ(insideOf(*loop, "a")->getIterationAttribute(), kIterationNone);
}

TYPED_TEST(DmLoopingCompoundTest, PortOfAPairCannotJoinASecondPair) {
    auto const loop = this->makeLoopWithPair();
    loop->addPortDescription(output("c", this->m_intArray), kFailOnClash);
    ASSERT_TRUE(TypeParam::linkPair(*loop, "a", "b"));
    EXPECT_FALSE(TypeParam::linkPair(*loop, "a", "c"));
    EXPECT_EQ(insideOf(*loop, "a")->getLinkedPort(), insideOf(*loop, "b").get());
    EXPECT_FALSE(insideOf(*loop, "c")->isLinked());
}

TYPED_TEST(DmLoopingCompoundTest, RemovingAPortOfAPairFreesItsPartner) {
    auto const loop = this->makeLoopWithPair();
    ASSERT_TRUE(TypeParam::linkPair(*loop, "a", "b"));
    ASSERT_TRUE(loop->removePortDescription(loop->getPortsInterface()["a"]));
    EXPECT_EQ(loop->getPortsInterface()["a"], nullptr);
    EXPECT_EQ(insideOf(*loop, "a"), nullptr);
    auto const b = insideOf(*loop, "b");
    EXPECT_FALSE(b->isLinked());
    EXPECT_EQ(b->getIterationAttribute(), kIterationNone);
}

TYPED_TEST(DmLoopingCompoundTest, RemovingAPortOfAnotherDefinitionIsRefusedAndKeepsThePair) {
    auto const loop = this->makeLoopWithPair();
    ASSERT_TRUE(TypeParam::linkPair(*loop, "a", "b"));
    EXPECT_FALSE(loop->removePortDescription(input("a", this->m_intArray)));
    EXPECT_NE(loop->getPortsInterface()["a"], nullptr);
    EXPECT_EQ(insideOf(*loop, "a")->getLinkedPort(), insideOf(*loop, "b").get());
}

TYPED_TEST(DmLoopingCompoundTest, RemovingAPortOfAConstLoopIsRefusedAndKeepsThePair) {
    auto const loop = this->makeLoopWithPair();
    ASSERT_TRUE(TypeParam::linkPair(*loop, "a", "b"));
    loop->makeConst();
    EXPECT_FALSE(loop->removePortDescription(loop->getPortsInterface()["a"]));
    EXPECT_NE(loop->getPortsInterface()["a"], nullptr);
    EXPECT_EQ(insideOf(*loop, "a")->getLinkedPort(), insideOf(*loop, "b").get());
    EXPECT_EQ(insideOf(*loop, "b")->getIterationAttribute(), TypeParam::pairRole);
}

TYPED_TEST(DmLoopingCompoundTest, RemovingNullIsRefused) {
    auto const loop = this->makeLoopWithPair();
    EXPECT_FALSE(loop->removePortDescription(nullptr));
    EXPECT_EQ(loop->getPortsInterface().size(), TypeParam::portsMade().size() + 2);
}

TYPED_TEST(DmLoopingCompoundTest, RemovingAPortOutsideAPairRemovesItFromBothSides) {
    auto const loop = this->makeLoopWithPair();
    auto const port = loop->getPortsInterface()["a"];
    ASSERT_TRUE(loop->removePortDescription(port));
    EXPECT_EQ(loop->getPortsInterface()["a"], nullptr);
    EXPECT_EQ(insideOf(*loop, "a"), nullptr);
    EXPECT_EQ(port->getNodeDef(), nullptr);
}

TYPED_TEST(DmLoopingCompoundTest, RemovingATargetThatDoesNotShowInsideRemovesIt) {
    auto const loop = this->makeLoop();
    auto const port = withRole(input("count", DmLibrary::getIntType()), kIterationTarget);
    loop->addPortDescription(port, kFailOnClash);
    EXPECT_TRUE(loop->removePortDescription(port));
    EXPECT_EQ(loop->getPortsInterface()["count"], nullptr);
}

TYPED_TEST(DmLoopingCompoundTest, FeedbackLinksTheLoopsOwnPorts) {
    auto const loop = this->makeLoopWithPair();
    EXPECT_TRUE(loop->linkFeedbackPorts("a", "b"));
    auto const a = loop->getPortsInterface()["a"];
    auto const b = loop->getPortsInterface()["b"];
    EXPECT_EQ(a->getLinkedPort(), b.get());
    EXPECT_TRUE(a->isFeedback());
    EXPECT_TRUE(b->isFeedback());
    EXPECT_FALSE(loop->linkFeedbackPorts("a", "missing"));
}

// ---------------------------------------------------------------------------
// Lifetime

TYPED_TEST(DmLoopingCompoundTest, LoopIsCountedAtEachLevelOfItsClass) {
    using Loop = typename TypeParam::Loop;
    unsigned int const compounds = this->template count<DmCompound>();
    unsigned int const loops = this->template count<DmLoopingCompound>();
    unsigned int const own = this->template count<Loop>();
    unsigned int const whiles = this->template count<DmWhileCompound>();
    unsigned int const iterates = this->template count<DmIterateCompound>();
    unsigned int const forEaches = this->template count<DmForEachCompound>();
    {
        auto const loop = this->makeLoop();
        EXPECT_EQ(this->template count<DmCompound>(), compounds + 1);
        EXPECT_EQ(this->template count<DmLoopingCompound>(), loops + 1);
        EXPECT_EQ(this->template count<Loop>(), own + 1);
        unsigned int const others = this->template count<DmWhileCompound>() - whiles +
                                    this->template count<DmIterateCompound>() - iterates +
                                    this->template count<DmForEachCompound>() - forEaches;
        EXPECT_EQ(others, 1u);
    }
    EXPECT_EQ(this->template count<DmCompound>(), compounds);
    EXPECT_EQ(this->template count<DmLoopingCompound>(), loops);
    EXPECT_EQ(this->template count<Loop>(), own);
}

TYPED_TEST(DmLoopingCompoundTest, LoopWithNodesConnectionsAndPairsLeavesNothingBehind) {
    auto loop = this->makeLoopWithPair();
    loop->addPortDescription(withRole(input("items", this->m_intArray), kIterationTarget), kFailOnClash);
    loop->addPortDescription(withRole(input("unknown", makeUnknownType("Mystery")), kIterationTarget),
                             kFailOnClash);
    ASSERT_TRUE(TypeParam::linkPair(*loop, "a", "b"));
    ASSERT_EQ(loop->addNode(DmNode::createNode("n", makeInnerDef()), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmConnection> connection;
    ASSERT_EQ(loop->makeConnection(".items", "n.x", connection), DmStatus::kSuccess);
    auto const clone = loop->clone();
    loop.reset();
    connection.reset();
    EXPECT_NE(clone, nullptr);
}
