// Port descriptions: construction and copies, the setters and what they
// refuse, struct members, links between ports, and equality.
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmPortsInterface.h>
#include <KestoDM/graph/DmTerminalNodeDef.h>
#include <KestoDM/graph/DmValueNodeDef.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmUnknownStructType.h>

#include "graph/ModelTestSupport.h"
#include "types/DmExternTypeFactory.h"

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
using KestoTest::output;
using KestoTest::port;

namespace {

using TypePtr = std::shared_ptr<DmBaseType const>;

TypePtr intType() {
    return DmLibrary::getIntType();
}

TypePtr floatType() {
    return DmLibrary::getFloatType();
}

TypePtr autoType() {
    return DmLibrary::getAutoType();
}

TypePtr arrayOf(TypePtr element) {
    return std::make_shared<DmArrayType>(std::move(element));
}

std::shared_ptr<DmNativeNodeDef> makeDef(std::string const& name = "op") {
    return DmNativeNodeDef::newNativeNodeDef(name, DmNativeNodeDef::kPass);
}

/// "Outer" { inner: "Inner" { x: int }, y: int }.
std::shared_ptr<DmStructType> makeNestedStruct() {
    auto outer = DmLibrary::createStructType("Outer");
    outer->addMember("inner", makeStruct("Inner"));
    outer->addMember("y", DmLibrary::getIntType());
    return outer;
}

std::shared_ptr<DmPortDescription> memberOf(DmPortDescription& port, std::string const& path) {
    std::shared_ptr<DmPortDescription> member;
    EXPECT_TRUE(port.getMember(path, member)) << path;
    return member;
}

class DmPortDescriptionTest : public KestoTest::ModelTest {};

} // namespace

// ---------------------------------------------------------------------------
// Construction

TEST_F(DmPortDescriptionTest, NewDescriptionHasNameTypeAndDirection) {
    auto const p = input("in", intType());
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->getName(), "in");
    EXPECT_EQ(p->getType(), intType());
    EXPECT_EQ(p->getDirection(), kDirectionInput);
    EXPECT_TRUE(p->isInput());
    EXPECT_FALSE(p->isOutput());
}

TEST_F(DmPortDescriptionTest, OutputDescriptionAnswersIsOutput) {
    auto const p = output("out", intType());
    EXPECT_EQ(p->getDirection(), kDirectionOutput);
    EXPECT_TRUE(p->isOutput());
    EXPECT_FALSE(p->isInput());
}

TEST_F(DmPortDescriptionTest, NewDescriptionStartsPlain) {
    auto const p = input("in", intType());
    EXPECT_EQ(p->getPortKind(), kPortPlain);
    EXPECT_FALSE(p->isAssociative());
    EXPECT_FALSE(p->isMultiIn());
    EXPECT_FALSE(p->isDefaultFanIn());
    EXPECT_EQ(p->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(p->getCppPassingConvention(), kPassInvalid);
    EXPECT_FALSE(p->hasCppPassingConvention());
    EXPECT_EQ(p->getFlags(), 0u);
    EXPECT_EQ(p->getDefaultValueOverride(), nullptr);
    EXPECT_FALSE(p->isLinked());
    EXPECT_EQ(p->getLinkedPort(), nullptr);
    EXPECT_FALSE(p->isStructMember());
    EXPECT_EQ(p->getParent(), nullptr);
    EXPECT_EQ(p->getNodeDef(), nullptr);
    EXPECT_FALSE(p->isUnknown());
    EXPECT_FALSE(p->isInUpdate());
}

TEST_F(DmPortDescriptionTest, DescriptionWithTypeAndDirectionIsComplete) {
    EXPECT_TRUE(input("in", intType())->isComplete());
    EXPECT_TRUE(output("out", autoType())->isComplete());
}

TEST_F(DmPortDescriptionTest, DescriptionWithoutTypeIsIncomplete) {
    auto const p = input("in", nullptr);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->getType(), nullptr);
    EXPECT_FALSE(p->isComplete());
}

TEST_F(DmPortDescriptionTest, DescriptionWithoutDirectionIsIncomplete) {
    auto const p = port("in", intType(), kDirectionUnset);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->getDirection(), kDirectionUnset);
    EXPECT_FALSE(p->isInput());
    EXPECT_FALSE(p->isOutput());
    EXPECT_FALSE(p->isComplete());
}

TEST_F(DmPortDescriptionTest, NewDescriptionWithRefusedNameIsNull) {
    EXPECT_EQ(DmPortDescription::newPortDescription("", intType(), kDirectionInput, kNameVerbatim), nullptr);
    EXPECT_EQ(DmPortDescription::newPortDescription("", intType(), kDirectionInput, kNameLegalize), nullptr);
    EXPECT_EQ(DmPortDescription::newPortDescription("", intType(), kDirectionInput, kNameMustBeLegal),
              nullptr);
}

TEST_F(DmPortDescriptionTest, MapEntryKeyIsTheName) {
    EXPECT_EQ(input("in", intType())->getMapEntryKey(), "in");
}

TEST_F(DmPortDescriptionTest, MultiInDescriptionIsAutoTypedInput) {
    auto const p = DmPortDescription::newMultiInPortDescription("entries", kNameVerbatim);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->getName(), "entries");
    EXPECT_EQ(p->getType(), autoType());
    EXPECT_EQ(p->getDirection(), kDirectionInput);
    EXPECT_EQ(p->getPortKind(), kPortMultiIn);
    EXPECT_TRUE(p->isMultiIn());
    EXPECT_FALSE(p->isUnknown());
}

TEST_F(DmPortDescriptionTest, MultiInDescriptionWithRefusedNameIsNull) {
    EXPECT_EQ(DmPortDescription::newMultiInPortDescription("", kNameVerbatim), nullptr);
}

TEST_F(DmPortDescriptionTest, MultiInDescriptionTurnedToOutputKeepsItsKind) {
    auto const p = DmPortDescription::newMultiInPortDescription("entries", kNameVerbatim);
    EXPECT_TRUE(p->setDirection(kDirectionOutput));
    EXPECT_EQ(p->getDirection(), kDirectionOutput);
    EXPECT_EQ(p->getPortKind(), kPortMultiIn);
}

// ---------------------------------------------------------------------------
// Copies

TEST_F(DmPortDescriptionTest, CopyTakesTypeDirectionKindAndAttributes) {
    auto const source = input("in", arrayOf(intType()));
    ASSERT_EQ(source->setPortKind(kPortDefaultFanIn), DmStatus::kSuccess);
    ASSERT_TRUE(source->setIterationAttribute(kIterationTarget));
    ASSERT_TRUE(source->setCppPassingConvention(kPassByReference));
    ASSERT_TRUE(source->setDefaultValueOverride(DmLibrary::getIntType()->createValue()));

    auto const copy = DmPortDescription::newPortDescription(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, source);
    EXPECT_EQ(copy->getName(), "in");
    EXPECT_EQ(copy->getType(), source->getType());
    EXPECT_EQ(copy->getDirection(), kDirectionInput);
    EXPECT_EQ(copy->getPortKind(), kPortDefaultFanIn);
    EXPECT_EQ(copy->getIterationAttribute(), kIterationTarget);
    EXPECT_EQ(copy->getCppPassingConvention(), kPassByReference);
    EXPECT_TRUE(copy->hasCppPassingConvention());
    EXPECT_EQ(copy->getFlags(), source->getFlags());
    ASSERT_NE(copy->getDefaultValueOverride(), nullptr);
    EXPECT_TRUE(DmBaseType::equivalent(copy->getDefaultValueOverride()->getType(), intType()));
    EXPECT_NE(copy->getRuntimeUID(), source->getRuntimeUID());
}

TEST_F(DmPortDescriptionTest, CloneTakesWhatACopyTakes) {
    auto const source = output("out", intType());
    ASSERT_TRUE(source->setIterationAttribute(kIterationCounter));
    ASSERT_TRUE(source->setCppPassingConvention(kPassByReturnValue));

    auto const copy = source->clone();
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, source);
    EXPECT_EQ(copy->getName(), "out");
    EXPECT_EQ(copy->getType(), intType());
    EXPECT_EQ(copy->getDirection(), kDirectionOutput);
    EXPECT_EQ(copy->getIterationAttribute(), kIterationCounter);
    EXPECT_EQ(copy->getCppPassingConvention(), kPassByReturnValue);
    EXPECT_TRUE(copy->hasCppPassingConvention());
    EXPECT_FALSE(copy->isUnknown());
}

TEST_F(DmPortDescriptionTest, CopyIsIndependentOfItsSource) {
    auto const source = input("in", intType());
    auto const copy = DmPortDescription::newPortDescription(*source);
    ASSERT_TRUE(copy->setDirection(kDirectionOutput));
    ASSERT_TRUE(copy->setType(floatType()));
    EXPECT_EQ(source->getDirection(), kDirectionInput);
    EXPECT_EQ(source->getType(), intType());
}

TEST_F(DmPortDescriptionTest, CloneLosesTheLinkButKeepsTheIterationAttribute) {
    auto const a = input("a", arrayOf(intType()));
    auto const b = output("b", arrayOf(intType()));
    ASSERT_TRUE(a->link(*b, kIterationFeedback));

    auto const copy = a->clone();
    EXPECT_FALSE(copy->isLinked());
    EXPECT_EQ(copy->getLinkedPort(), nullptr);
    EXPECT_EQ(copy->getIterationAttribute(), kIterationFeedback);
    EXPECT_TRUE(copy->isFeedback());
    EXPECT_EQ(a->getLinkedPort(), b.get());
    EXPECT_EQ(b->getLinkedPort(), a.get());
}

TEST_F(DmPortDescriptionTest, CopyLeavesTheDefinitionBehind) {
    auto const def = makeDef();
    auto const p = input("in", intType());
    ASSERT_TRUE(def->addPortDescription(p, kFailOnClash));
    ASSERT_EQ(p->getNodeDef(), def.get());

    EXPECT_EQ(DmPortDescription::newPortDescription(*p)->getNodeDef(), nullptr);
    EXPECT_EQ(p->clone()->getNodeDef(), nullptr);
}

TEST_F(DmPortDescriptionTest, CopyOfAMemberIsNoMember) {
    auto const p = input("p", makeStruct("T"));
    auto const member = memberOf(*p, "x");
    ASSERT_NE(member, nullptr);
    ASSERT_TRUE(member->isStructMember());

    auto const copy = member->clone();
    EXPECT_FALSE(copy->isStructMember());
    EXPECT_EQ(copy->getParent(), nullptr);
    EXPECT_EQ(copy->getName(), "x");
    EXPECT_EQ(copy->getType(), intType());
}

TEST_F(DmPortDescriptionTest, CopyBuildsMembersOfItsOwn) {
    auto const p = input("p", makeStruct("T"));
    ASSERT_EQ(p->getMembers().size(), 1u);

    auto const copy = p->clone();
    auto const& members = copy->getMembers();
    ASSERT_EQ(keysOf(members), std::vector<std::string>({"x"}));
    EXPECT_EQ(members.find("x")->second->getParent(), copy.get());
    EXPECT_NE(members.find("x")->second, p->getMembers().find("x")->second);
}

TEST_F(DmPortDescriptionTest, CopyWithTypeTakesTheNewType) {
    auto const source = input("in", intType());
    ASSERT_TRUE(source->setCppPassingConvention(kPassByValue));
    auto const copy = DmPortDescription::newPortDescription(*source, floatType());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getType(), floatType());
    EXPECT_EQ(copy->getName(), "in");
    EXPECT_EQ(copy->getDirection(), kDirectionInput);
    EXPECT_EQ(copy->getCppPassingConvention(), kPassByValue);
    EXPECT_EQ(source->getType(), intType());
}

TEST_F(DmPortDescriptionTest, CopyWithNonArrayTypeDropsTheIterationState) {
    auto const source = input("state", arrayOf(intType()));
    ASSERT_TRUE(source->setIterationAttribute(kIterationState));
    auto const copy = DmPortDescription::newPortDescription(*source, intType());
    EXPECT_EQ(copy->getType(), intType());
    EXPECT_EQ(copy->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(source->getIterationAttribute(), kIterationState);
}

// ---------------------------------------------------------------------------
// Direction, iteration attribute and passing convention

TEST_F(DmPortDescriptionTest, SetDirectionStoresTheDirection) {
    auto const p = input("in", intType());
    EXPECT_TRUE(p->setDirection(kDirectionOutput));
    EXPECT_EQ(p->getDirection(), kDirectionOutput);
    EXPECT_TRUE(p->setDirection(kDirectionUnset));
    EXPECT_EQ(p->getDirection(), kDirectionUnset);
}

TEST_F(DmPortDescriptionTest, SetDirectionReachesEveryMemberRecursively) {
    auto const p = input("p", makeNestedStruct());
    auto const inner = memberOf(*p, "inner");
    auto const x = memberOf(*p, "inner.x");
    auto const y = memberOf(*p, "y");
    ASSERT_EQ(x->getDirection(), kDirectionInput);

    EXPECT_TRUE(p->setDirection(kDirectionOutput));
    EXPECT_EQ(inner->getDirection(), kDirectionOutput);
    EXPECT_EQ(x->getDirection(), kDirectionOutput);
    EXPECT_EQ(y->getDirection(), kDirectionOutput);
}

TEST_F(DmPortDescriptionTest, SetDirectionOnAMemberIsRefused) {
    auto const p = input("p", makeStruct("T"));
    auto const x = memberOf(*p, "x");
    EXPECT_FALSE(x->setDirection(kDirectionOutput));
    EXPECT_EQ(x->getDirection(), kDirectionInput);
}

TEST_F(DmPortDescriptionTest, SetIterationAttributeStoresTheAttribute) {
    auto const p = input("in", arrayOf(intType()));
    EXPECT_TRUE(p->setIterationAttribute(kIterationState));
    EXPECT_EQ(p->getIterationAttribute(), kIterationState);
    EXPECT_TRUE(p->setIterationAttribute(kIterationNone));
    EXPECT_EQ(p->getIterationAttribute(), kIterationNone);
}

TEST_F(DmPortDescriptionTest, IterationTestsFollowTheAttribute) {
    auto const p = input("in", arrayOf(intType()));
    struct Expectation {
        IterationAttribute attribute;
        bool target, state, limit, inOut, feedback, counter;
    };
    std::vector<Expectation> const table = {
        {kIterationNone, false, false, false, false, false, false},
        {kIterationTarget, true, false, false, false, false, false},
        {kIterationState, false, true, false, false, false, false},
        {kIterationLimit, false, false, true, false, false, false},
        {kIterationInOutTarget, false, false, false, true, false, false},
        {kIterationFeedback, false, false, false, false, true, false},
        {kIterationCounter, false, false, false, false, false, true},
    };
    for (auto const& row : table) {
        ASSERT_TRUE(p->setIterationAttribute(row.attribute));
        EXPECT_EQ(p->isIterationTarget(), row.target) << int(row.attribute);
        EXPECT_EQ(p->isIterationState(), row.state) << int(row.attribute);
        EXPECT_EQ(p->isIterationLimit(), row.limit) << int(row.attribute);
        EXPECT_EQ(p->isIterationInOutTarget(), row.inOut) << int(row.attribute);
        EXPECT_EQ(p->isFeedback(), row.feedback) << int(row.attribute);
        EXPECT_EQ(p->isIterationCounter(), row.counter) << int(row.attribute);
    }
}

TEST_F(DmPortDescriptionTest, SetIterationAttributeReachesEveryMemberRecursively) {
    auto const p = input("p", makeNestedStruct());
    auto const inner = memberOf(*p, "inner");
    auto const x = memberOf(*p, "inner.x");
    auto const y = memberOf(*p, "y");

    EXPECT_TRUE(p->setIterationAttribute(kIterationTarget));
    EXPECT_EQ(inner->getIterationAttribute(), kIterationTarget);
    EXPECT_EQ(x->getIterationAttribute(), kIterationTarget);
    EXPECT_EQ(y->getIterationAttribute(), kIterationTarget);
}

TEST_F(DmPortDescriptionTest, SetIterationAttributeOnAMemberIsRefused) {
    auto const p = input("p", makeStruct("T"));
    auto const x = memberOf(*p, "x");
    EXPECT_FALSE(x->setIterationAttribute(kIterationTarget));
    EXPECT_EQ(x->getIterationAttribute(), kIterationNone);
}

TEST_F(DmPortDescriptionTest, SetCppPassingConventionStoresTheValueAndTheFlag) {
    auto const p = input("in", intType());
    EXPECT_TRUE(p->setCppPassingConvention(kPassByPtrValue));
    EXPECT_EQ(p->getCppPassingConvention(), kPassByPtrValue);
    EXPECT_TRUE(p->hasCppPassingConvention());
    EXPECT_EQ(p->getFlags() & DmPortDescription::kHasCppPassingConvention,
              DmPortDescription::kHasCppPassingConvention);
}

TEST_F(DmPortDescriptionTest, SetCppPassingConventionReachesEveryMemberRecursively) {
    auto const p = input("p", makeNestedStruct());
    auto const inner = memberOf(*p, "inner");
    auto const x = memberOf(*p, "inner.x");
    auto const y = memberOf(*p, "y");

    EXPECT_TRUE(p->setCppPassingConvention(kPassByReferenceToMutablePtr));
    EXPECT_EQ(inner->getCppPassingConvention(), kPassByReferenceToMutablePtr);
    EXPECT_EQ(x->getCppPassingConvention(), kPassByReferenceToMutablePtr);
    EXPECT_EQ(y->getCppPassingConvention(), kPassByReferenceToMutablePtr);
}

TEST_F(DmPortDescriptionTest, SetCppPassingConventionOnAMemberIsRefused) {
    auto const p = input("p", makeStruct("T"));
    auto const x = memberOf(*p, "x");
    EXPECT_FALSE(x->setCppPassingConvention(kPassByValue));
    EXPECT_EQ(x->getCppPassingConvention(), kPassInvalid);
    EXPECT_FALSE(x->hasCppPassingConvention());
}

TEST_F(DmPortDescriptionTest, AssignOperationsStoreEvenOnAMember) {
    auto const p = input("p", makeStruct("T"));
    auto const x = memberOf(*p, "x");
    x->assignDirection(kDirectionOutput);
    x->assignIterationAttribute(kIterationLimit);
    x->assignCppPassingConvention(kPassByMutablePtrValue);
    EXPECT_EQ(x->getDirection(), kDirectionOutput);
    EXPECT_EQ(x->getIterationAttribute(), kIterationLimit);
    EXPECT_EQ(x->getCppPassingConvention(), kPassByMutablePtrValue);
    EXPECT_EQ(p->getDirection(), kDirectionInput);
}

TEST_F(DmPortDescriptionTest, AssignIterationAttributeKeepsStateOnANonArrayPort) {
    auto const p = input("in", intType());
    p->assignIterationAttribute(kIterationState);
    EXPECT_EQ(p->getIterationAttribute(), kIterationState);
}

// ---------------------------------------------------------------------------
// Members

TEST_F(DmPortDescriptionTest, PortOfNonStructTypeHasNoMembers) {
    auto const p = input("in", intType());
    EXPECT_TRUE(p->getMembers().empty());
}

TEST_F(DmPortDescriptionTest, GetMemberOnNonStructPortIsFalse) {
    auto const p = input("in", intType());
    std::shared_ptr<DmPortDescription> out;
    EXPECT_FALSE(p->getMember("x", out));
    EXPECT_EQ(out, nullptr);
}

TEST_F(DmPortDescriptionTest, PortWithoutTypeHasNoMembers) {
    auto const p = input("in", nullptr);
    p->initializeMembers();
    EXPECT_TRUE(p->getMembers().empty());
    std::shared_ptr<DmPortDescription> out;
    EXPECT_FALSE(p->getMember("x", out));
}

TEST_F(DmPortDescriptionTest, MembersFollowTheStructInOrder) {
    auto const type = makeStruct("T", "b");
    type->addMember("a", DmLibrary::getFloatType());
    auto const p = output("p", type);

    auto const& members = p->getMembers();
    ASSERT_EQ(keysOf(members), std::vector<std::string>({"b", "a"}));
    auto const b = members.find("b")->second;
    auto const a = members.find("a")->second;
    EXPECT_EQ(b->getName(), "b");
    EXPECT_EQ(b->getType(), intType());
    EXPECT_EQ(a->getType(), floatType());
    for (auto const& member : {a, b}) {
        EXPECT_EQ(member->getDirection(), kDirectionOutput);
        EXPECT_EQ(member->getParent(), p.get());
        EXPECT_TRUE(member->isStructMember());
        EXPECT_FALSE(member->isLinked());
    }
}

TEST_F(DmPortDescriptionTest, MembersAreBuiltOnce) {
    auto const p = input("p", makeStruct("T"));
    p->initializeMembers();
    auto const first = p->getMembers().find("x")->second;
    p->initializeMembers();
    EXPECT_EQ(p->getMembers().find("x")->second, first);
    EXPECT_EQ(p->getMembers().size(), 1u);
}

TEST_F(DmPortDescriptionTest, MembersOfNestedStructsAreBuiltRecursively) {
    auto const p = input("p", makeNestedStruct());
    auto const& members = p->getMembers();
    ASSERT_EQ(keysOf(members), std::vector<std::string>({"inner", "y"}));
    auto const inner = members.find("inner")->second;
    auto const& innerMembers = inner->getMembers();
    ASSERT_EQ(keysOf(innerMembers), std::vector<std::string>({"x"}));
    auto const x = innerMembers.find("x")->second;
    EXPECT_EQ(x->getParent(), inner.get());
    EXPECT_EQ(x->getType(), intType());
    EXPECT_EQ(x->getDirection(), kDirectionInput);
}

TEST_F(DmPortDescriptionTest, MembersOfUnknownStructTypeAreBuilt) {
    auto const type = Internal::ExternTypeFactory::make<DmUnknownStructType>("U");
    type->addMember("m", DmLibrary::getIntType());
    ASSERT_EQ(type->getTypeKind(), kTypeUnknownStruct);
    auto const p = input("p", type);
    ASSERT_EQ(keysOf(p->getMembers()), std::vector<std::string>({"m"}));
    EXPECT_EQ(p->getMembers().find("m")->second->getParent(), p.get());
}

TEST_F(DmPortDescriptionTest, MembersTakeConventionAndAttributeSetBeforeTheyWereBuilt) {
    auto const p = input("p", makeNestedStruct());
    ASSERT_TRUE(p->setCppPassingConvention(kPassByReference));
    ASSERT_TRUE(p->setIterationAttribute(kIterationInOutTarget));

    auto const y = memberOf(*p, "y");
    auto const x = memberOf(*p, "inner.x");
    EXPECT_EQ(y->getCppPassingConvention(), kPassByReference);
    EXPECT_EQ(y->getIterationAttribute(), kIterationInOutTarget);
    EXPECT_EQ(x->getCppPassingConvention(), kPassByReference);
    EXPECT_EQ(x->getIterationAttribute(), kIterationInOutTarget);
}

TEST_F(DmPortDescriptionTest, MembersOfAPortWithoutConventionHaveNone) {
    auto const p = input("p", makeStruct("T"));
    auto const x = memberOf(*p, "x");
    EXPECT_EQ(x->getCppPassingConvention(), kPassInvalid);
    EXPECT_EQ(x->getIterationAttribute(), kIterationNone);
}

TEST_F(DmPortDescriptionTest, GetMemberFindsADirectMember) {
    auto const p = input("p", makeNestedStruct());
    std::shared_ptr<DmPortDescription> out;
    ASSERT_TRUE(p->getMember("y", out));
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->getName(), "y");
    EXPECT_EQ(out->getParent(), p.get());
}

TEST_F(DmPortDescriptionTest, GetMemberFollowsADottedPath) {
    auto const p = input("p", makeNestedStruct());
    std::shared_ptr<DmPortDescription> out;
    ASSERT_TRUE(p->getMember("inner.x", out));
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->getName(), "x");
    EXPECT_EQ(out->getParent()->getName(), "inner");
    EXPECT_EQ(out->getParent()->getParent(), p.get());
}

TEST_F(DmPortDescriptionTest, GetMemberWithUnknownHeadIsFalse) {
    auto const p = input("p", makeNestedStruct());
    std::shared_ptr<DmPortDescription> out;
    EXPECT_FALSE(p->getMember("z", out));
    EXPECT_FALSE(p->getMember("z.x", out));
    EXPECT_EQ(out, nullptr);
}

TEST_F(DmPortDescriptionTest, GetMemberWithUnknownTailIsFalse) {
    auto const p = input("p", makeNestedStruct());
    std::shared_ptr<DmPortDescription> out;
    EXPECT_FALSE(p->getMember("inner.z", out));
}

TEST_F(DmPortDescriptionTest, GetMemberBelowANonStructMemberIsFalse) {
    auto const p = input("p", makeNestedStruct());
    std::shared_ptr<DmPortDescription> out;
    EXPECT_FALSE(p->getMember("y.x", out));
}

TEST_F(DmPortDescriptionTest, FullNameOfAMemberIsParentDotName) {
    auto const p = input("p", makeNestedStruct());
    EXPECT_EQ(fullName(*memberOf(*p, "y")), "p.y");
    EXPECT_EQ(fullName(*memberOf(*p, "inner")), "p.inner");
    EXPECT_EQ(fullName(*memberOf(*p, "inner.x")), "p.inner.x");
}

TEST_F(DmPortDescriptionTest, FullNameOfAPortIsItsName) {
    auto const ns = makeNamespace("ns");
    auto const def = makeDef();
    auto const p = input("in", intType());
    ASSERT_TRUE(def->addPortDescription(p, kFailOnClash));
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(fullName(*p), "in");
}

TEST_F(DmPortDescriptionTest, FullNameAppendsToWhatIsThere) {
    auto const p = input("p", makeStruct("T"));
    std::string out = "port ";
    memberOf(*p, "x")->resolveFullName(out);
    EXPECT_EQ(out, "port p.x");
    out = "port ";
    p->resolveFullName(out);
    EXPECT_EQ(out, "port p");
}

TEST_F(DmPortDescriptionTest, SetNodeDefStoresWithoutChecks) {
    auto const def = makeDef();
    auto const p = input("in", intType());
    p->setNodeDef(def.get());
    EXPECT_EQ(p->getNodeDef(), def.get());
    EXPECT_FALSE(def->getPortsInterface().hasPort("in"));
    p->setNodeDef(nullptr);
    EXPECT_EQ(p->getNodeDef(), nullptr);
}

TEST_F(DmPortDescriptionTest, MemberReachesTheDefinitionOfItsTopmostPort) {
    auto const def = makeDef();
    auto const p = input("p", makeNestedStruct());
    ASSERT_TRUE(def->addPortDescription(p, kFailOnClash));
    EXPECT_EQ(p->getNodeDef(), def.get());
    EXPECT_EQ(memberOf(*p, "inner")->getNodeDef(), def.get());
    EXPECT_EQ(memberOf(*p, "inner.x")->getNodeDef(), def.get());
}

// ---------------------------------------------------------------------------
// Type

TEST_F(DmPortDescriptionTest, SetTypeStoresTheNewType) {
    auto const p = input("in", intType());
    EXPECT_TRUE(p->setType(floatType()));
    EXPECT_EQ(p->getType(), floatType());
}

TEST_F(DmPortDescriptionTest, SetTypeGivesATypeToAnUntypedPort) {
    auto const p = input("in", nullptr);
    EXPECT_TRUE(p->setType(intType()));
    EXPECT_EQ(p->getType(), intType());
}

TEST_F(DmPortDescriptionTest, SetTypeRebuildsMembersFromTheNewType) {
    auto const p = input("p", makeStruct("T", "x"));
    ASSERT_EQ(keysOf(p->getMembers()), std::vector<std::string>({"x"}));
    EXPECT_TRUE(p->setType(makeStruct("U", "y")));
    EXPECT_EQ(keysOf(p->getMembers()), std::vector<std::string>({"y"}));
}

TEST_F(DmPortDescriptionTest, SetTypeToNonStructDropsTheMembers) {
    auto const p = input("p", makeStruct("T"));
    ASSERT_EQ(p->getMembers().size(), 1u);
    EXPECT_TRUE(p->setType(intType()));
    EXPECT_TRUE(p->getMembers().empty());
}

TEST_F(DmPortDescriptionTest, SetTypeOnAMemberIsRefused) {
    auto const p = input("p", makeStruct("T"));
    auto const x = memberOf(*p, "x");
    EXPECT_FALSE(x->setType(floatType()));
    EXPECT_EQ(x->getType(), intType());
}

TEST_F(DmPortDescriptionTest, SetTypeOnAMemberTakesAnEquivalentType) {
    auto const p = input("p", makeStruct("T"));
    auto const x = memberOf(*p, "x");
    EXPECT_TRUE(x->setType(intType()));
    EXPECT_EQ(x->getType(), intType());
}

TEST_F(DmPortDescriptionTest, SetTypeToNonArrayClearsTheIterationState) {
    auto const p = input("state", arrayOf(intType()));
    ASSERT_TRUE(p->setIterationAttribute(kIterationState));
    EXPECT_TRUE(p->setType(intType()));
    EXPECT_EQ(p->getType(), intType());
    EXPECT_EQ(p->getIterationAttribute(), kIterationNone);
}

TEST_F(DmPortDescriptionTest, SetTypeToAnotherArrayKeepsTheIterationState) {
    auto const p = input("state", arrayOf(intType()));
    ASSERT_TRUE(p->setIterationAttribute(kIterationState));
    auto const floats = arrayOf(floatType());
    EXPECT_TRUE(p->setType(floats));
    EXPECT_EQ(p->getType(), floats);
    EXPECT_EQ(p->getIterationAttribute(), kIterationState);
}

TEST_F(DmPortDescriptionTest, SetTypeToNullClearsTheIterationState) {
    auto const p = input("state", arrayOf(intType()));
    ASSERT_TRUE(p->setIterationAttribute(kIterationState));
    EXPECT_TRUE(p->setType(nullptr));
    EXPECT_EQ(p->getType(), nullptr);
    EXPECT_EQ(p->getIterationAttribute(), kIterationNone);
}

TEST_F(DmPortDescriptionTest, SetTypeToNonArrayKeepsOtherIterationAttributes) {
    auto const p = input("target", arrayOf(intType()));
    ASSERT_TRUE(p->setIterationAttribute(kIterationTarget));
    EXPECT_TRUE(p->setType(intType()));
    EXPECT_EQ(p->getIterationAttribute(), kIterationTarget);
}

TEST_F(DmPortDescriptionTest, PortOfAPlainDefinitionTakesAnyType) {
    auto const def = makeDef();
    auto const p = input("in", intType());
    ASSERT_TRUE(def->addPortDescription(p, kFailOnClash));
    EXPECT_TRUE(p->setType(floatType()));
    EXPECT_EQ(p->getType(), floatType());
    EXPECT_TRUE(p->setType(autoType()));
    EXPECT_EQ(p->getType(), autoType());
}

TEST_F(DmPortDescriptionTest, PortOfAValueNodeDefinitionRefusesAnotherType) {
    auto const type = makeStruct("Constant");
    auto const def = DmValueNodeDef::getValueNodeDef(type);
    ASSERT_NE(def, nullptr);
    for (auto const* name : {DmValueNodeDef::kValuePortName, DmValueNodeDef::kOutputPortName}) {
        auto const p = def->getPortsInterface()[name];
        ASSERT_NE(p, nullptr) << name;
        ASSERT_EQ(p->getNodeDef(), def.get());
        EXPECT_FALSE(p->setType(intType())) << name;
        EXPECT_EQ(p->getType(), type) << name;
    }
}

TEST_F(DmPortDescriptionTest, PortOfAValueNodeDefinitionTakesItsOwnType) {
    auto const type = makeStruct("Constant");
    auto const def = DmValueNodeDef::getValueNodeDef(type);
    ASSERT_NE(def, nullptr);
    auto const p = def->getPortsInterface()[DmValueNodeDef::kValuePortName];
    ASSERT_NE(p, nullptr);
    EXPECT_TRUE(p->setType(type));
    EXPECT_EQ(p->getType(), type);
}

TEST_F(DmPortDescriptionTest, PortOfATerminalDefinitionRefusesTheAutoType) {
    auto const def = DmTerminalNodeDef::createTerminalNodeDef("result", kNameVerbatim);
    ASSERT_NE(def, nullptr);
    auto const p = input("in", intType());
    ASSERT_TRUE(def->addPortDescription(p, kFailOnClash));
    EXPECT_FALSE(p->setType(autoType()));
    EXPECT_EQ(p->getType(), intType());
}

TEST_F(DmPortDescriptionTest, PortOfATerminalDefinitionTakesOtherTypes) {
    auto const def = DmTerminalNodeDef::createTerminalNodeDef("result", kNameVerbatim);
    auto const p = input("in", intType());
    ASSERT_TRUE(def->addPortDescription(p, kFailOnClash));
    EXPECT_TRUE(p->setType(floatType()));
    EXPECT_EQ(p->getType(), floatType());
    auto const floats = arrayOf(floatType());
    EXPECT_TRUE(p->setType(floats));
    EXPECT_EQ(p->getType(), floats);
}

// ---------------------------------------------------------------------------
// Port kind

TEST_F(DmPortDescriptionTest, SetPortKindToTheSameKindSucceedsAtOnce) {
    auto const p = output("out", intType());
    EXPECT_EQ(p->setPortKind(kPortPlain), DmStatus::kSuccess);
    EXPECT_EQ(p->getPortKind(), kPortPlain);

    auto const multi = DmPortDescription::newMultiInPortDescription("entries", kNameVerbatim);
    ASSERT_TRUE(multi->setDirection(kDirectionOutput));
    EXPECT_EQ(multi->setPortKind(kPortMultiIn), DmStatus::kSuccess);
    EXPECT_EQ(multi->getPortKind(), kPortMultiIn);
}

TEST_F(DmPortDescriptionTest, AcceptsMultiInOnAnInput) {
    auto const p = input("in", intType());
    EXPECT_EQ(p->setPortKind(kPortMultiIn), DmStatus::kSuccess);
    EXPECT_EQ(p->getPortKind(), kPortMultiIn);
    EXPECT_TRUE(p->isMultiIn());
}

TEST_F(DmPortDescriptionTest, RejectsMultiInOnAnOutput) {
    auto const p = output("out", intType());
    EXPECT_EQ(p->setPortKind(kPortMultiIn), DmStatus::kFailure);
    EXPECT_EQ(p->getPortKind(), kPortPlain);
}

TEST_F(DmPortDescriptionTest, RejectsMultiInWithoutDirection) {
    auto const p = port("in", intType(), kDirectionUnset);
    EXPECT_EQ(p->setPortKind(kPortMultiIn), DmStatus::kFailure);
    EXPECT_EQ(p->getPortKind(), kPortPlain);
}

TEST_F(DmPortDescriptionTest, RejectsFanInOnIntegerInput) {
    auto const p = input("in", intType());
    EXPECT_EQ(p->setPortKind(kPortDefaultFanIn), DmStatus::kFailure);
    EXPECT_EQ(p->getPortKind(), kPortPlain);
    EXPECT_FALSE(p->isDefaultFanIn());
}

TEST_F(DmPortDescriptionTest, AcceptsFanInOnArrayInput) {
    auto const p = input("in", arrayOf(intType()));
    EXPECT_EQ(p->setPortKind(kPortDefaultFanIn), DmStatus::kSuccess);
    EXPECT_EQ(p->getPortKind(), kPortDefaultFanIn);
    EXPECT_TRUE(p->isDefaultFanIn());
}

TEST_F(DmPortDescriptionTest, AcceptsFanInOnAutoInput) {
    auto const p = input("in", autoType());
    EXPECT_EQ(p->setPortKind(kPortDefaultFanIn), DmStatus::kSuccess);
    EXPECT_EQ(p->getPortKind(), kPortDefaultFanIn);
}

TEST_F(DmPortDescriptionTest, RejectsFanInOnArrayOutput) {
    auto const p = output("out", arrayOf(intType()));
    EXPECT_EQ(p->setPortKind(kPortDefaultFanIn), DmStatus::kFailure);
    EXPECT_EQ(p->getPortKind(), kPortPlain);
}

TEST_F(DmPortDescriptionTest, RejectsFanInOnUntypedInput) {
    auto const p = input("in", nullptr);
    EXPECT_EQ(p->setPortKind(kPortDefaultFanIn), DmStatus::kFailure);
    EXPECT_EQ(p->getPortKind(), kPortPlain);
}

TEST_F(DmPortDescriptionTest, RejectsFanInOnArrayStructMember) {
    auto const type = makeStruct("T");
    type->addMember("values", arrayOf(intType()));
    auto const p = input("p", type);
    auto const values = memberOf(*p, "values");
    ASSERT_EQ(values->getDirection(), kDirectionInput);
    EXPECT_EQ(values->setPortKind(kPortDefaultFanIn), DmStatus::kFailure);
    EXPECT_EQ(values->getPortKind(), kPortPlain);
}

TEST_F(DmPortDescriptionTest, RefusedKindLeavesTheFormerKind) {
    auto const p = input("in", intType());
    ASSERT_EQ(p->setPortKind(kPortMultiIn), DmStatus::kSuccess);
    EXPECT_EQ(p->setPortKind(kPortDefaultFanIn), DmStatus::kFailure);
    EXPECT_EQ(p->getPortKind(), kPortMultiIn);
}

TEST_F(DmPortDescriptionTest, PlainAndAssociativeKindsNeedNoInput) {
    auto const p = output("out", intType());
    EXPECT_EQ(p->setPortKind(kPortAssociative), DmStatus::kSuccess);
    EXPECT_EQ(p->getPortKind(), kPortAssociative);
    EXPECT_TRUE(p->isAssociative());
    EXPECT_EQ(p->setPortKind(kPortPlain), DmStatus::kSuccess);
    EXPECT_EQ(p->getPortKind(), kPortPlain);
}

TEST_F(DmPortDescriptionTest, PortKindReachesThePortOfThatNameOnEveryOverload) {
    auto const ns = makeNamespace("ns");
    auto const first = makeDef("op");
    auto const second = makeDef("op");
    auto const third = makeDef("op");
    auto const mine = input("in", arrayOf(intType()));
    auto const theirs = input("in", arrayOf(floatType()));
    auto const others = input("in", arrayOf(DmLibrary::getBoolType()));
    ASSERT_TRUE(first->addPortDescription(mine, kFailOnClash));
    ASSERT_TRUE(second->addPortDescription(theirs, kFailOnClash));
    ASSERT_TRUE(third->addPortDescription(others, kFailOnClash));
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    ASSERT_EQ(third->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    ASSERT_NE(first->get_owner(), nullptr);
    ASSERT_EQ(second->get_owner(), first->get_owner());
    ASSERT_EQ(third->get_owner(), first->get_owner());
    auto const theirType = theirs->getType();

    EXPECT_EQ(mine->setPortKind(kPortDefaultFanIn), DmStatus::kSuccess);
    EXPECT_EQ(mine->getPortKind(), kPortDefaultFanIn);
    EXPECT_EQ(theirs->getPortKind(), kPortDefaultFanIn);
    EXPECT_EQ(others->getPortKind(), kPortDefaultFanIn);
    EXPECT_EQ(theirs->getType(), theirType);
}

TEST_F(DmPortDescriptionTest, PortKindOfAnOverloadLeavesOtherPortsAlone) {
    auto const ns = makeNamespace("ns");
    auto const first = makeDef("op");
    auto const second = makeDef("op");
    auto const mine = input("in", intType());
    auto const other = input("other", intType());
    ASSERT_TRUE(first->addPortDescription(mine, kFailOnClash));
    ASSERT_TRUE(second->addPortDescription(input("in", intType()), kFailOnClash));
    ASSERT_TRUE(second->addPortDescription(other, kFailOnClash));
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);

    EXPECT_EQ(mine->setPortKind(kPortMultiIn), DmStatus::kSuccess);
    EXPECT_EQ(second->getPortsInterface()["in"]->getPortKind(), kPortMultiIn);
    EXPECT_EQ(other->getPortKind(), kPortPlain);
}

TEST_F(DmPortDescriptionTest, PortKindSucceedsWhenAnotherOverloadLacksThePort) {
    auto const ns = makeNamespace("ns");
    auto const first = makeDef("op");
    auto const second = makeDef("op");
    auto const mine = input("in", intType());
    ASSERT_TRUE(first->addPortDescription(input("other", intType()), kFailOnClash));
    ASSERT_TRUE(second->addPortDescription(input("other", intType()), kFailOnClash));
    ASSERT_TRUE(second->addPortDescription(mine, kFailOnClash));
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    ASSERT_EQ(second->get_owner(), first->get_owner());

    EXPECT_EQ(mine->setPortKind(kPortMultiIn), DmStatus::kSuccess);
    EXPECT_EQ(mine->getPortKind(), kPortMultiIn);
    EXPECT_FALSE(first->getPortsInterface().hasPort("in"));
    EXPECT_EQ(first->getPortsInterface()["other"]->getPortKind(), kPortPlain);
}

TEST_F(DmPortDescriptionTest, RefusedPortKindDoesNotReachOtherOverloads) {
    auto const ns = makeNamespace("ns");
    auto const first = makeDef("op");
    auto const second = makeDef("op");
    auto const mine = output("out", intType());
    auto const theirs = output("out", floatType());
    ASSERT_TRUE(first->addPortDescription(mine, kFailOnClash));
    ASSERT_TRUE(second->addPortDescription(theirs, kFailOnClash));
    ASSERT_EQ(first->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(second->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);

    EXPECT_EQ(mine->setPortKind(kPortMultiIn), DmStatus::kFailure);
    EXPECT_EQ(mine->getPortKind(), kPortPlain);
    EXPECT_EQ(theirs->getPortKind(), kPortPlain);
}

TEST_F(DmPortDescriptionTest, PortKindOfADefinitionWithoutSetStaysWithIt) {
    auto const first = makeDef("op");
    auto const second = makeDef("op");
    auto const mine = input("in", intType());
    auto const theirs = input("in", intType());
    ASSERT_TRUE(first->addPortDescription(mine, kFailOnClash));
    ASSERT_TRUE(second->addPortDescription(theirs, kFailOnClash));

    EXPECT_EQ(mine->setPortKind(kPortMultiIn), DmStatus::kSuccess);
    EXPECT_EQ(mine->getPortKind(), kPortMultiIn);
    EXPECT_EQ(theirs->getPortKind(), kPortPlain);
}

// ---------------------------------------------------------------------------
// Associative ports

TEST_F(DmPortDescriptionTest, SetAssociativeOnPortOfAssociativeDefinition) {
    auto const def = makeDef();
    ASSERT_TRUE(def->setAssociativity(DmNodeDef::kLeftToRight));
    auto const p = input("in", intType());
    ASSERT_TRUE(def->addPortDescription(p, kFailOnClash));

    EXPECT_EQ(p->setAssociative(true), DmStatus::kSuccess);
    EXPECT_EQ(p->getPortKind(), kPortAssociative);
    EXPECT_TRUE(p->isAssociative());
    EXPECT_EQ(p->setAssociative(false), DmStatus::kSuccess);
    EXPECT_EQ(p->getPortKind(), kPortPlain);
}

TEST_F(DmPortDescriptionTest, SetAssociativeReplacesAnyKind) {
    auto const def = makeDef();
    ASSERT_TRUE(def->setAssociativity(DmNodeDef::kRightToLeft));
    auto const p = input("in", arrayOf(intType()));
    ASSERT_TRUE(def->addPortDescription(p, kFailOnClash));
    ASSERT_EQ(p->setPortKind(kPortDefaultFanIn), DmStatus::kSuccess);

    EXPECT_EQ(p->setAssociative(true), DmStatus::kSuccess);
    EXPECT_EQ(p->getPortKind(), kPortAssociative);
    ASSERT_EQ(p->setPortKind(kPortMultiIn), DmStatus::kSuccess);
    EXPECT_EQ(p->setAssociative(false), DmStatus::kSuccess);
    EXPECT_EQ(p->getPortKind(), kPortPlain);
}

TEST_F(DmPortDescriptionTest, SetAssociativeOnNonAssociativeDefinitionFails) {
    auto const def = makeDef();
    auto const p = input("in", intType());
    ASSERT_TRUE(def->addPortDescription(p, kFailOnClash));
    ASSERT_EQ(def->associativity(), DmNodeDef::kNotAssociative);

    EXPECT_EQ(p->setAssociative(true), DmStatus::kFailure);
    EXPECT_EQ(p->getPortKind(), kPortPlain);
    ASSERT_EQ(p->setPortKind(kPortMultiIn), DmStatus::kSuccess);
    EXPECT_EQ(p->setAssociative(false), DmStatus::kFailure);
    EXPECT_EQ(p->getPortKind(), kPortMultiIn);
}

TEST_F(DmPortDescriptionTest, SetAssociativeWithoutDefinitionIsNotTested) {
    auto const p = output("out", intType());
    EXPECT_EQ(p->setAssociative(true), DmStatus::kSuccess);
    EXPECT_EQ(p->getPortKind(), kPortAssociative);
    EXPECT_EQ(p->setAssociative(false), DmStatus::kSuccess);
    EXPECT_EQ(p->getPortKind(), kPortPlain);
}

TEST_F(DmPortDescriptionTest, SetAssociativeOnAMemberAsksTheDefinitionOfItsTopmostPort) {
    auto const plainDef = makeDef("plain");
    auto const plainPort = input("p", makeStruct("T"));
    ASSERT_TRUE(plainDef->addPortDescription(plainPort, kFailOnClash));
    auto const plainMember = memberOf(*plainPort, "x");
    EXPECT_EQ(plainMember->setAssociative(true), DmStatus::kFailure);
    EXPECT_EQ(plainMember->getPortKind(), kPortPlain);

    auto const associativeDef = makeDef("associative");
    ASSERT_TRUE(associativeDef->setAssociativity(DmNodeDef::kLeftToRight));
    auto const associativePort = input("p", makeStruct("T"));
    ASSERT_TRUE(associativeDef->addPortDescription(associativePort, kFailOnClash));
    auto const associativeMember = memberOf(*associativePort, "x");
    EXPECT_EQ(associativeMember->setAssociative(true), DmStatus::kSuccess);
    EXPECT_EQ(associativeMember->getPortKind(), kPortAssociative);
}

// ---------------------------------------------------------------------------
// Default value override

TEST_F(DmPortDescriptionTest, AcceptsDefaultValueOfTheSameType) {
    auto const p = input("in", intType());
    auto const value = DmLibrary::getIntType()->createValue();
    EXPECT_TRUE(p->setDefaultValueOverride(value));
    EXPECT_EQ(p->getDefaultValueOverride(), value);
}

TEST_F(DmPortDescriptionTest, AcceptsDefaultValueOfAnotherTypeOnAFreePort) {
    auto const p = input("in", intType());
    auto const value = DmLibrary::getFloatType()->createValue();
    EXPECT_TRUE(p->setDefaultValueOverride(value));
    EXPECT_EQ(p->getDefaultValueOverride(), value);
}

TEST_F(DmPortDescriptionTest, AcceptsDefaultValueOfAnotherTypeOnAPlainDefinition) {
    auto const def = makeDef();
    auto const p = input("in", intType());
    ASSERT_TRUE(def->addPortDescription(p, kFailOnClash));
    auto const value = DmLibrary::getStringType()->createValue();
    EXPECT_TRUE(p->setDefaultValueOverride(value));
    EXPECT_EQ(p->getDefaultValueOverride(), value);
    EXPECT_EQ(def->findUnconnectedPortValue("in"), value);
}

TEST_F(DmPortDescriptionTest, RefusesDefaultValueOfAnotherTypeOnAMember) {
    auto const p = input("p", makeStruct("T"));
    auto const x = memberOf(*p, "x");
    EXPECT_FALSE(x->setDefaultValueOverride(DmLibrary::getFloatType()->createValue()));
    EXPECT_EQ(x->getDefaultValueOverride(), nullptr);
}

TEST_F(DmPortDescriptionTest, AcceptsDefaultValueOfTheSameTypeOnAMember) {
    auto const p = input("p", makeStruct("T"));
    auto const x = memberOf(*p, "x");
    auto const value = DmLibrary::getIntType()->createValue();
    EXPECT_TRUE(x->setDefaultValueOverride(value));
    EXPECT_EQ(x->getDefaultValueOverride(), value);
}

TEST_F(DmPortDescriptionTest, RefusesDefaultValueOfAnotherTypeOnAValueNodeDefinition) {
    auto const type = makeStruct("Constant");
    auto const def = DmValueNodeDef::getValueNodeDef(type);
    ASSERT_NE(def, nullptr);
    auto const p = def->getPortsInterface()[DmValueNodeDef::kValuePortName];
    ASSERT_NE(p, nullptr);
    auto const before = p->getDefaultValueOverride();
    EXPECT_FALSE(p->setDefaultValueOverride(DmLibrary::getIntType()->createValue()));
    EXPECT_EQ(p->getDefaultValueOverride(), before);
}

TEST_F(DmPortDescriptionTest, AcceptsDefaultValueOfItsTypeOnAValueNodeDefinition) {
    auto const type = makeStruct("Constant");
    auto const def = DmValueNodeDef::getValueNodeDef(type);
    ASSERT_NE(def, nullptr);
    auto const p = def->getPortsInterface()[DmValueNodeDef::kValuePortName];
    ASSERT_NE(p, nullptr);
    auto const value = type->createValue();
    EXPECT_TRUE(p->setDefaultValueOverride(value));
    EXPECT_EQ(p->getDefaultValueOverride(), value);
}

TEST_F(DmPortDescriptionTest, RefusesNullDefaultValue) {
    auto const p = input("in", intType());
    EXPECT_FALSE(p->setDefaultValueOverride(nullptr));
    EXPECT_EQ(p->getDefaultValueOverride(), nullptr);

    auto const value = DmLibrary::getIntType()->createValue();
    ASSERT_TRUE(p->setDefaultValueOverride(value));
    EXPECT_FALSE(p->setDefaultValueOverride(nullptr));
    EXPECT_EQ(p->getDefaultValueOverride(), value);
}

// ---------------------------------------------------------------------------
// Names

TEST_F(DmPortDescriptionTest, SetNameRenamesAFreeDescription) {
    auto const p = input("in", intType());
    EXPECT_TRUE(p->setName("value", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(p->getName(), "value");
    EXPECT_EQ(p->getMapEntryKey(), "value");
    EXPECT_FALSE(p->isInUpdate());
}

TEST_F(DmPortDescriptionTest, SetNameRefusesAnEmptyName) {
    auto const p = input("in", intType());
    EXPECT_FALSE(p->setName("", kFailOnClash, kNameVerbatim));
    EXPECT_FALSE(p->setName("", kFailOnClash, kNameLegalize));
    EXPECT_EQ(p->getName(), "in");

    auto const def = makeDef();
    ASSERT_TRUE(def->addPortDescription(p, kFailOnClash));
    EXPECT_FALSE(p->setName("", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(p->getName(), "in");
    EXPECT_EQ(KestoTest::portNames(def->getPortsInterface()), std::vector<std::string>({"in"}));
}

TEST_F(DmPortDescriptionTest, SetNameToTheCurrentNameChangesNothing) {
    auto const def = makeDef();
    auto const a = input("a", intType());
    auto const b = input("b", intType());
    ASSERT_TRUE(def->addPortDescription(a, kFailOnClash));
    ASSERT_TRUE(def->addPortDescription(b, kFailOnClash));

    EXPECT_TRUE(a->setName("a", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(a->getName(), "a");
    EXPECT_EQ(KestoTest::portNames(def->getPortsInterface()), std::vector<std::string>({"a", "b"}));
    EXPECT_EQ(def->getPortsInterface()["a"], a);
}

TEST_F(DmPortDescriptionTest, SetNameRenamesTheEntryOfItsDefinitionInPlace) {
    auto const def = makeDef();
    auto const a = input("a", intType());
    auto const b = input("b", intType());
    auto const c = output("c", intType());
    ASSERT_TRUE(def->addPortDescription(a, kFailOnClash));
    ASSERT_TRUE(def->addPortDescription(b, kFailOnClash));
    ASSERT_TRUE(def->addPortDescription(c, kFailOnClash));

    EXPECT_TRUE(b->setName("middle", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(b->getName(), "middle");
    EXPECT_EQ(KestoTest::portNames(def->getPortsInterface()), std::vector<std::string>({"a", "middle", "c"}));
    EXPECT_EQ(def->getPortsInterface()["middle"], b);
    EXPECT_FALSE(def->getPortsInterface().hasPort("b"));
    EXPECT_EQ(b->getNodeDef(), def.get());
    EXPECT_FALSE(b->isInUpdate());
}

TEST_F(DmPortDescriptionTest, SetNameMakesTheNameUniqueAmongThePortsOfItsDefinition) {
    auto const def = makeDef();
    auto const a = input("a", intType());
    auto const b = input("b", intType());
    ASSERT_TRUE(def->addPortDescription(a, kFailOnClash));
    ASSERT_TRUE(def->addPortDescription(b, kFailOnClash));

    EXPECT_TRUE(b->setName("a", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(b->getName(), "a1");
    EXPECT_EQ(a->getName(), "a");
    EXPECT_EQ(KestoTest::portNames(def->getPortsInterface()), std::vector<std::string>({"a", "a1"}));
    EXPECT_EQ(def->getPortsInterface()["a1"], b);
    EXPECT_EQ(def->getPortsInterface()["a"], a);
}

// ---------------------------------------------------------------------------
// Completeness

TEST_F(DmPortDescriptionTest, SetCompletenessStoresTheFlag) {
    auto const p = input("in", intType());
    p->setCompleteness(false);
    EXPECT_FALSE(p->isComplete());
    p->setCompleteness(true);
    EXPECT_TRUE(p->isComplete());
}

TEST_F(DmPortDescriptionTest, CompletingRebuildsMembersFromTheFinalType) {
    auto const type = makeStruct("T", "x");
    auto const p = input("p", type);
    ASSERT_EQ(keysOf(p->getMembers()), std::vector<std::string>({"x"}));
    type->addMember("y", DmLibrary::getFloatType());
    EXPECT_EQ(keysOf(p->getMembers()), std::vector<std::string>({"x"}));

    p->setCompleteness(true);
    EXPECT_TRUE(p->isComplete());
    EXPECT_EQ(keysOf(p->getMembers()), std::vector<std::string>({"x", "y"}));
}

TEST_F(DmPortDescriptionTest, MarkingIncompleteKeepsTheMembers) {
    auto const type = makeStruct("T", "x");
    auto const p = input("p", type);
    auto const x = memberOf(*p, "x");
    type->addMember("y", DmLibrary::getFloatType());

    p->setCompleteness(false);
    EXPECT_FALSE(p->isComplete());
    EXPECT_EQ(keysOf(p->getMembers()), std::vector<std::string>({"x"}));
    EXPECT_EQ(p->getMembers().find("x")->second, x);
}

// ---------------------------------------------------------------------------
// Links

TEST_F(DmPortDescriptionTest, LinkPairsAnInputWithAnOutput) {
    auto const in = input("in", arrayOf(intType()));
    auto const out = output("out", arrayOf(intType()));
    EXPECT_TRUE(in->link(*out, kIterationFeedback));
    EXPECT_TRUE(in->isLinked());
    EXPECT_TRUE(out->isLinked());
    EXPECT_EQ(in->getLinkedPort(), out.get());
    EXPECT_EQ(out->getLinkedPort(), in.get());
    EXPECT_EQ(in->getIterationAttribute(), kIterationFeedback);
    EXPECT_EQ(out->getIterationAttribute(), kIterationFeedback);
}

TEST_F(DmPortDescriptionTest, LinkRefusesTwoInputs) {
    auto const a = input("a", intType());
    auto const b = input("b", intType());
    EXPECT_FALSE(a->link(*b, kIterationState));
    EXPECT_FALSE(a->isLinked());
    EXPECT_FALSE(b->isLinked());
    EXPECT_EQ(a->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(b->getIterationAttribute(), kIterationNone);
}

TEST_F(DmPortDescriptionTest, LinkRefusesTwoOutputs) {
    auto const a = output("a", intType());
    auto const b = output("b", intType());
    EXPECT_FALSE(a->link(*b, kIterationState));
    EXPECT_FALSE(a->isLinked());
    EXPECT_FALSE(b->isLinked());
}

TEST_F(DmPortDescriptionTest, LinkAcceptsPortsWithoutDirection) {
    auto const a = port("a", intType(), kDirectionUnset);
    auto const b = port("b", intType(), kDirectionUnset);
    EXPECT_TRUE(a->link(*b, kIterationFeedback));
    EXPECT_EQ(a->getLinkedPort(), b.get());
    EXPECT_EQ(b->getLinkedPort(), a.get());
}

TEST_F(DmPortDescriptionTest, LinkRefusesAStructMember) {
    auto const p = input("p", makeStruct("T"));
    auto const x = memberOf(*p, "x");
    auto const out = output("out", intType());
    EXPECT_FALSE(x->link(*out, kIterationFeedback));
    EXPECT_FALSE(out->link(*x, kIterationFeedback));
    EXPECT_FALSE(x->isLinked());
    EXPECT_FALSE(out->isLinked());
    EXPECT_EQ(out->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(x->getIterationAttribute(), kIterationNone);
}

TEST_F(DmPortDescriptionTest, LinkRefusesALinkedPortWithAThirdPort) {
    auto const a = input("a", intType());
    auto const b = output("b", intType());
    auto const c = output("c", intType());
    auto const d = input("d", intType());
    ASSERT_TRUE(a->link(*b, kIterationFeedback));

    EXPECT_FALSE(a->link(*c, kIterationTarget));
    EXPECT_FALSE(c->link(*a, kIterationTarget));
    EXPECT_FALSE(d->link(*b, kIterationTarget));
    EXPECT_EQ(a->getLinkedPort(), b.get());
    EXPECT_EQ(b->getLinkedPort(), a.get());
    EXPECT_FALSE(c->isLinked());
    EXPECT_FALSE(d->isLinked());
    EXPECT_EQ(a->getIterationAttribute(), kIterationFeedback);
    EXPECT_EQ(b->getIterationAttribute(), kIterationFeedback);
    EXPECT_EQ(c->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(d->getIterationAttribute(), kIterationNone);
}

TEST_F(DmPortDescriptionTest, UnlinkClearsBothSidesAndTheirAttributes) {
    auto const in = input("in", intType());
    auto const out = output("out", intType());
    ASSERT_TRUE(in->link(*out, kIterationFeedback));

    EXPECT_TRUE(in->unlink());
    EXPECT_FALSE(in->isLinked());
    EXPECT_FALSE(out->isLinked());
    EXPECT_EQ(in->getLinkedPort(), nullptr);
    EXPECT_EQ(out->getLinkedPort(), nullptr);
    EXPECT_EQ(in->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(out->getIterationAttribute(), kIterationNone);
}

TEST_F(DmPortDescriptionTest, UnlinkWorksFromEitherSide) {
    auto const in = input("in", intType());
    auto const out = output("out", intType());
    ASSERT_TRUE(in->link(*out, kIterationFeedback));
    EXPECT_TRUE(out->unlink());
    EXPECT_FALSE(in->isLinked());
    EXPECT_FALSE(out->isLinked());
    EXPECT_FALSE(in->unlink());
}

TEST_F(DmPortDescriptionTest, UnlinkOfANeverLinkedPortFailsAndClearsNothing) {
    auto const p = input("in", arrayOf(intType()));
    ASSERT_TRUE(p->setIterationAttribute(kIterationTarget));
    EXPECT_FALSE(p->unlink());
    EXPECT_EQ(p->getIterationAttribute(), kIterationTarget);
    EXPECT_FALSE(p->isLinked());
}

TEST_F(DmPortDescriptionTest, UnlinkOfAMemberFails) {
    auto const p = input("p", makeStruct("T"));
    auto const x = memberOf(*p, "x");
    EXPECT_FALSE(x->unlink());
}

TEST_F(DmPortDescriptionTest, UnlinkedPortsCanBeLinkedAgain) {
    auto const in = input("in", intType());
    auto const out = output("out", intType());
    auto const other = output("other", intType());
    ASSERT_TRUE(in->link(*out, kIterationFeedback));
    ASSERT_TRUE(in->unlink());
    EXPECT_TRUE(in->link(*other, kIterationState));
    EXPECT_EQ(in->getLinkedPort(), other.get());
    EXPECT_EQ(other->getLinkedPort(), in.get());
    EXPECT_EQ(in->getIterationAttribute(), kIterationState);
    EXPECT_FALSE(out->isLinked());
}

// ---------------------------------------------------------------------------
// Equality

TEST_F(DmPortDescriptionTest, EqualityIgnoresTypeKindAndDefaultValue) {
    auto const a = input("in", intType());
    auto const b = input("in", arrayOf(floatType()));
    ASSERT_EQ(b->setPortKind(kPortDefaultFanIn), DmStatus::kSuccess);
    ASSERT_TRUE(b->setDefaultValueOverride(DmLibrary::getFloatType()->createValue()));
    ASSERT_TRUE(b->setCppPassingConvention(kPassByReference));
    EXPECT_TRUE(*a == *b);
    EXPECT_FALSE(*a != *b);
}

TEST_F(DmPortDescriptionTest, DescriptionsWithDifferentNamesAreNotEqual) {
    EXPECT_FALSE(*input("a", intType()) == *input("b", intType()));
    EXPECT_TRUE(*input("a", intType()) != *input("ab", intType()));
}

TEST_F(DmPortDescriptionTest, DescriptionsWithDifferentDirectionsAreNotEqual) {
    EXPECT_FALSE(*input("a", intType()) == *output("a", intType()));
}

TEST_F(DmPortDescriptionTest, DescriptionsWithDifferentIterationAttributesAreNotEqual) {
    auto const a = input("a", arrayOf(intType()));
    auto const b = input("a", arrayOf(intType()));
    ASSERT_TRUE(b->setIterationAttribute(kIterationTarget));
    EXPECT_FALSE(*a == *b);
    ASSERT_TRUE(a->setIterationAttribute(kIterationTarget));
    EXPECT_TRUE(*a == *b);
}

TEST_F(DmPortDescriptionTest, EqualityOfMutuallyLinkedPairsTerminates) {
    auto const a = input("state", arrayOf(intType()));
    auto const b = output("state", arrayOf(intType()));
    auto const c = input("state", arrayOf(floatType()));
    auto const d = output("state", arrayOf(floatType()));
    ASSERT_TRUE(a->link(*b, kIterationFeedback));
    ASSERT_TRUE(c->link(*d, kIterationFeedback));

    EXPECT_TRUE(*a == *c);
    EXPECT_TRUE(*b == *d);
    EXPECT_FALSE(*a == *d);
}

TEST_F(DmPortDescriptionTest, LinkedDescriptionEqualsItself) {
    auto const a = input("in", intType());
    auto const b = output("out", intType());
    ASSERT_TRUE(a->link(*b, kIterationFeedback));
    EXPECT_TRUE(*a == *a);
    EXPECT_TRUE(*b == *b);
    EXPECT_FALSE(*a == *b);
}

TEST_F(DmPortDescriptionTest, LinkedDescriptionIsNotEqualToAnUnlinkedOne) {
    auto const a = input("in", intType());
    auto const b = output("out", intType());
    ASSERT_TRUE(a->link(*b, kIterationFeedback));
    auto const lone = input("in", intType());
    ASSERT_TRUE(lone->setIterationAttribute(kIterationFeedback));

    EXPECT_FALSE(*a == *lone);
    EXPECT_FALSE(*lone == *a);
}

TEST_F(DmPortDescriptionTest, LinkedDescriptionsWithDifferentPartnersAreNotEqual) {
    auto const a = input("in", intType());
    auto const b = output("out", intType());
    auto const c = input("in", intType());
    auto const d = output("other", intType());
    ASSERT_TRUE(a->link(*b, kIterationFeedback));
    ASSERT_TRUE(c->link(*d, kIterationFeedback));

    EXPECT_FALSE(*a == *c);
    EXPECT_TRUE(*a != *c);
}
