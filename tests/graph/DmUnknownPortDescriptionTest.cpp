// Placeholder port descriptions: the ports of definitions that could not be
// read. They behave as any description, and their copies are placeholders too.
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmTerminalNodeDef.h>
#include <KestoDM/graph/DmUnknownPortDescription.h>
#include <KestoDM/types/DmArrayType.h>

#include "graph/ModelTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace Kesto;
using KestoTest::input;
using KestoTest::output;

namespace {

std::shared_ptr<DmBaseType const> intType() {
    return DmLibrary::getIntType();
}

std::shared_ptr<DmUnknownPortDescription>
unknown(std::string const& name, std::shared_ptr<DmBaseType const> type, PortDirection direction) {
    return DmUnknownPortDescription::newPortDescription(name, std::move(type), direction, kNameVerbatim);
}

class DmUnknownPortDescriptionTest : public KestoTest::ModelTest {};

} // namespace

TEST_F(DmUnknownPortDescriptionTest, NewPlaceholderIsUnknown) {
    auto const p = unknown("in", intType(), kDirectionInput);
    ASSERT_NE(p, nullptr);
    EXPECT_TRUE(p->isUnknown());
    EXPECT_EQ(p->getName(), "in");
    EXPECT_EQ(p->getType(), intType());
    EXPECT_EQ(p->getDirection(), kDirectionInput);
    EXPECT_TRUE(p->isComplete());
    EXPECT_EQ(p->getPortKind(), kPortPlain);
    EXPECT_EQ(p->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(p->getCppPassingConvention(), kPassInvalid);
    EXPECT_FALSE(p->hasCppPassingConvention());
}

TEST_F(DmUnknownPortDescriptionTest, PlaceholderIsUnknownThroughItsBaseClass) {
    std::shared_ptr<DmPortDescription> const p = unknown("in", intType(), kDirectionInput);
    EXPECT_TRUE(p->isUnknown());
}

TEST_F(DmUnknownPortDescriptionTest, PlaceholderCountsAsADescription) {
    auto const descriptions = count<DmPortDescription>();
    auto const placeholders = count<DmUnknownPortDescription>();
    {
        auto const p = unknown("in", intType(), kDirectionInput);
        EXPECT_EQ(count<DmPortDescription>(), descriptions + 1);
        EXPECT_EQ(count<DmUnknownPortDescription>(), placeholders + 1);
    }
    EXPECT_EQ(count<DmPortDescription>(), descriptions);
    EXPECT_EQ(count<DmUnknownPortDescription>(), placeholders);
}

TEST_F(DmUnknownPortDescriptionTest, PlaceholderWithoutTypeOrDirectionIsIncomplete) {
    EXPECT_FALSE(unknown("in", nullptr, kDirectionInput)->isComplete());
    EXPECT_FALSE(unknown("in", intType(), kDirectionUnset)->isComplete());
}

TEST_F(DmUnknownPortDescriptionTest, PlaceholderWithRefusedNameIsNull) {
    EXPECT_EQ(DmUnknownPortDescription::newPortDescription("", intType(), kDirectionInput, kNameVerbatim),
              nullptr);
    EXPECT_EQ(DmUnknownPortDescription::newMultiInPortDescription("", kNameVerbatim), nullptr);
}

TEST_F(DmUnknownPortDescriptionTest, MultiInPlaceholderIsAnAutoTypedInput) {
    auto const p = DmUnknownPortDescription::newMultiInPortDescription("entries", kNameVerbatim);
    ASSERT_NE(p, nullptr);
    EXPECT_TRUE(p->isUnknown());
    EXPECT_EQ(p->getType(), DmLibrary::getAutoType());
    EXPECT_EQ(p->getDirection(), kDirectionInput);
    EXPECT_EQ(p->getPortKind(), kPortMultiIn);
}

TEST_F(DmUnknownPortDescriptionTest, CopyOfAPlainDescriptionIsAPlaceholder) {
    auto const source = output("out", intType());
    ASSERT_TRUE(source->setIterationAttribute(kIterationCounter));
    ASSERT_TRUE(source->setCppPassingConvention(kPassByReturnValue));
    auto const value = DmLibrary::getIntType()->createValue();
    ASSERT_TRUE(source->setDefaultValueOverride(value));

    auto const copy = DmUnknownPortDescription::newPortDescription(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy->isUnknown());
    EXPECT_FALSE(source->isUnknown());
    EXPECT_EQ(copy->getName(), "out");
    EXPECT_EQ(copy->getType(), intType());
    EXPECT_EQ(copy->getDirection(), kDirectionOutput);
    EXPECT_EQ(copy->getIterationAttribute(), kIterationCounter);
    EXPECT_EQ(copy->getCppPassingConvention(), kPassByReturnValue);
    EXPECT_TRUE(copy->hasCppPassingConvention());
    ASSERT_NE(copy->getDefaultValueOverride(), nullptr);
    EXPECT_TRUE(DmBaseType::equivalent(copy->getDefaultValueOverride()->getType(), intType()));
}

TEST_F(DmUnknownPortDescriptionTest, CopyWithTypeIsAPlaceholderOfThatType) {
    auto const source = input("in", intType());
    auto const copy = DmUnknownPortDescription::newPortDescription(*source, DmLibrary::getFloatType());
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy->isUnknown());
    EXPECT_EQ(copy->getType(), DmLibrary::getFloatType());
    EXPECT_EQ(copy->getName(), "in");
    EXPECT_EQ(copy->getDirection(), kDirectionInput);
}

TEST_F(DmUnknownPortDescriptionTest, CopyWithNonArrayTypeDropsTheIterationState) {
    auto const source = unknown("state", std::make_shared<DmArrayType>(intType()), kDirectionInput);
    ASSERT_TRUE(source->setIterationAttribute(kIterationState));
    auto const copy = DmUnknownPortDescription::newPortDescription(*source, intType());
    EXPECT_EQ(copy->getType(), intType());
    EXPECT_EQ(copy->getIterationAttribute(), kIterationNone);
}

TEST_F(DmUnknownPortDescriptionTest, CloneIsAPlaceholder) {
    auto const p = unknown("in", intType(), kDirectionInput);
    ASSERT_EQ(p->setPortKind(kPortMultiIn), DmStatus::kSuccess);
    auto const copy = p->clone();
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, p);
    EXPECT_TRUE(copy->isUnknown());
    EXPECT_NE(std::dynamic_pointer_cast<DmUnknownPortDescription>(copy), nullptr);
    EXPECT_EQ(copy->getName(), "in");
    EXPECT_EQ(copy->getPortKind(), kPortMultiIn);
}

TEST_F(DmUnknownPortDescriptionTest, CloneOfAPlainDescriptionIsPlain) {
    auto const copy = input("in", intType())->clone();
    EXPECT_FALSE(copy->isUnknown());
    EXPECT_EQ(std::dynamic_pointer_cast<DmUnknownPortDescription>(copy), nullptr);
}

TEST_F(DmUnknownPortDescriptionTest, PlainCopyOfAPlaceholderIsPlain) {
    auto const p = unknown("in", intType(), kDirectionInput);
    auto const copy = DmPortDescription::newPortDescription(*p);
    ASSERT_NE(copy, nullptr);
    EXPECT_FALSE(copy->isUnknown());
    EXPECT_EQ(copy->getName(), "in");
}

TEST_F(DmUnknownPortDescriptionTest, CloneOfALinkedPlaceholderIsNotLinked) {
    auto const a = unknown("a", intType(), kDirectionInput);
    auto const b = unknown("b", intType(), kDirectionOutput);
    ASSERT_TRUE(a->link(*b, kIterationFeedback));
    auto const copy = a->clone();
    EXPECT_FALSE(copy->isLinked());
    EXPECT_EQ(copy->getIterationAttribute(), kIterationFeedback);
}

TEST_F(DmUnknownPortDescriptionTest, PlaceholderBehavesAsAnyDescription) {
    auto const p = unknown("p", KestoTest::makeStruct("T"), kDirectionInput);
    std::shared_ptr<DmPortDescription> x;
    ASSERT_TRUE(p->getMember("x", x));
    EXPECT_EQ(x->getParent(), p.get());
    EXPECT_EQ(KestoTest::fullName(*x), "p.x");
    EXPECT_TRUE(p->setDirection(kDirectionOutput));
    EXPECT_EQ(x->getDirection(), kDirectionOutput);
    EXPECT_EQ(p->setPortKind(kPortMultiIn), DmStatus::kFailure);
    EXPECT_TRUE(p->setName("q", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(p->getName(), "q");
}

TEST_F(DmUnknownPortDescriptionTest, PlaceholderEqualsAPlainDescriptionOfTheSameName) {
    auto const p = unknown("in", intType(), kDirectionInput);
    auto const plain = input("in", intType());
    EXPECT_TRUE(*p == *plain);
    EXPECT_TRUE(*plain == *p);
}

TEST_F(DmUnknownPortDescriptionTest, TerminalDefinitionTakesAnAutoTypedPlaceholder) {
    auto const def = DmTerminalNodeDef::createTerminalNodeDef("result", kNameVerbatim);
    ASSERT_NE(def, nullptr);
    auto const placeholder = unknown("in", DmLibrary::getAutoType(), kDirectionInput);
    EXPECT_TRUE(def->addPortDescription(placeholder, kFailOnClash));
    EXPECT_EQ(def->getPortsInterface()["in"], placeholder);
    EXPECT_FALSE(def->addPortDescription(input("plain", DmLibrary::getAutoType()), kFailOnClash));
    EXPECT_FALSE(def->getPortsInterface().hasPort("plain"));
}

TEST_F(DmUnknownPortDescriptionTest, PlaceholderOfATerminalDefinitionRefusesTheAutoType) {
    auto const def = DmTerminalNodeDef::createTerminalNodeDef("result", kNameVerbatim);
    auto const placeholder = unknown("in", intType(), kDirectionInput);
    ASSERT_TRUE(def->addPortDescription(placeholder, kFailOnClash));
    EXPECT_FALSE(placeholder->setType(DmLibrary::getAutoType()));
    EXPECT_EQ(placeholder->getType(), intType());
}
