#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmUnknownNodeDef.h>
#include <KestoDM/graph/DmUnknownPortDescription.h>
#include <KestoDM/graph/DmValueNodeDef.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "graph/ModelTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

using namespace Kesto;
using KestoTest::input;
using KestoTest::makeNamespace;
using KestoTest::makeStruct;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::setOf;

namespace {

class DmNativeNodeDefTest : public KestoTest::ModelTest {};
class DmValueNodeDefTest : public KestoTest::ModelTest {};
class DmUnknownNodeDefTest : public KestoTest::ModelTest {};

} // namespace

// ---------------------------------------------------------------------------
// Native definitions

TEST_F(DmNativeNodeDefTest, NativeKindsHaveTheirNumbers) {
    EXPECT_EQ(sizeof(DmNativeNodeDef::NativeKind), 1u);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kIf), 0);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kGreater), 1);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kGreaterOrEqual), 2);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kLess), 3);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kLessOrEqual), 4);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kEqual), 5);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kNotEqual), 6);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kArraySize), 7);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kGetFromArray), 8);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kFirstInArray), 9);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kLastInArray), 10);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kSetInArray), 11);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kResizeArray), 12);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kArrayDimensions), 13);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kBuildArray), 14);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kToTypeAny), 15);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kFromTypeAny), 16);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kPromote), 17);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kPass), 18);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kError), 19);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kForceEval), 20);
    EXPECT_EQ(static_cast<int>(DmNativeNodeDef::kNumKinds), 21);
}

TEST_F(DmNativeNodeDefTest, NativeDefinitionIsABuiltInOverload) {
    static_assert(std::is_base_of<DmOverload, DmNativeNodeDef>::value, "natives stand in overload sets");
    auto const def = DmNativeNodeDef::newNativeNodeDef("greater", DmNativeNodeDef::kGreater);
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(def->getName(), "greater");
    EXPECT_EQ(def->getNativeKind(), DmNativeNodeDef::kGreater);
    EXPECT_TRUE(def->isBuiltIn());
    EXPECT_FALSE(def->isValueNodeDef());
    EXPECT_FALSE(def->isUnknown());
    EXPECT_FALSE(def->isTerminal());
    EXPECT_FALSE(def->isConverter());
    EXPECT_EQ(def->getScope(), nullptr);
    EXPECT_TRUE(def->getPortsInterface().empty());
}

TEST_F(DmNativeNodeDefTest, NewNativeNodeDefKeepsTheNameVerbatimByDefault) {
    auto const def = DmNativeNodeDef::newNativeNodeDef("my pass", DmNativeNodeDef::kPass);
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(def->getName(), "my pass");
}

TEST_F(DmNativeNodeDefTest, NewNativeNodeDefLegalizesWhenAsked) {
    auto const def = DmNativeNodeDef::newNativeNodeDef("my pass", DmNativeNodeDef::kPass, kNameLegalize);
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(def->getName(), "my_pass");
}

TEST_F(DmNativeNodeDefTest, NewNativeNodeDefRefusesAnIllegalNameWhenItMustBeLegal) {
    EXPECT_EQ(DmNativeNodeDef::newNativeNodeDef("my pass", DmNativeNodeDef::kPass, kNameMustBeLegal),
              nullptr);
}

TEST_F(DmNativeNodeDefTest, NewNativeNodeDefRefusesTheEmptyName) {
    EXPECT_EQ(DmNativeNodeDef::newNativeNodeDef("", DmNativeNodeDef::kPass), nullptr);
}

TEST_F(DmNativeNodeDefTest, ImportOfANativeDefinitionDoesNothing) {
    auto const ns = makeNamespace("target");
    auto const def = DmNativeNodeDef::newNativeNodeDef("pass", DmNativeNodeDef::kPass);
    ASSERT_NE(def, nullptr);
    auto const other = DmNativeNodeDef::newNativeNodeDef("other", DmNativeNodeDef::kIf);
    std::shared_ptr<DmNodeDef> out = other;
    EXPECT_EQ(def->import(ns, kFailOnClash, "pass", out, 0), DmStatus::kSuccess);
    EXPECT_EQ(out, other);
    EXPECT_TRUE(ns->getNodeDefs().empty());
    EXPECT_EQ(def->getScope(), nullptr);
}

TEST_F(DmNativeNodeDefTest, NativeDefinitionCanBePlacedOnce) {
    auto const ns = makeNamespace("Graph");
    auto const def = DmNativeNodeDef::newNativeNodeDef("pass", DmNativeNodeDef::kPass);
    ASSERT_NE(def, nullptr);
    ASSERT_TRUE(def->addPortDescription(input("input", DmLibrary::getAutoType()), kFailOnClash));
    ASSERT_TRUE(def->addPortDescription(output("output", DmLibrary::getAutoType()), kFailOnClash));
    EXPECT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const set = setOf(*ns, "pass");
    ASSERT_NE(set, nullptr);
    EXPECT_TRUE(set->isBuiltIn());
    EXPECT_EQ(def->get_owner(), set.get());
}

TEST_F(DmNativeNodeDefTest, PlacedNativeDefinitionRefusesToMove) {
    auto const from = makeNamespace("from");
    auto const to = makeNamespace("to");
    auto const def = DmNativeNodeDef::newNativeNodeDef("pass", DmNativeNodeDef::kPass);
    ASSERT_NE(def, nullptr);
    ASSERT_EQ(def->setScope(from.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->setScope(to.get(), kMakeUnique), DmStatus::kFailure);
    EXPECT_EQ(def->setScope(nullptr, kFailOnClash), DmStatus::kFailure);
    EXPECT_EQ(def->getScope(), from.get());
    EXPECT_TRUE(from->hasNodeDef("pass"));
    EXPECT_TRUE(to->getNodeDefs().empty());
}

TEST_F(DmNativeNodeDefTest, PlacedNativeDefinitionMayBeAskedForItsOwnScope) {
    auto const ns = makeNamespace("Graph");
    auto const def = DmNativeNodeDef::newNativeNodeDef("pass", DmNativeNodeDef::kPass);
    ASSERT_NE(def, nullptr);
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(setOf(*ns, "pass")->size(), 1u);
}

// ---------------------------------------------------------------------------
// Value node definitions

TEST_F(DmValueNodeDefTest, ValueNodeDefinitionIsAConstBuiltInOfItsType) {
    static_assert(std::is_base_of<DmNativeNodeDef, DmValueNodeDef>::value, "value definitions are native");
    auto const def = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(def->getType(), DmLibrary::getIntType());
    EXPECT_TRUE(def->isValueNodeDef());
    EXPECT_TRUE(def->isBuiltIn());
    EXPECT_TRUE(def->isConst());
    EXPECT_EQ(def->getScope(), nullptr);
    EXPECT_EQ(def->getNativeKind(), DmNativeNodeDef::kNumKinds);
}

TEST_F(DmValueNodeDefTest, ValueNodeDefinitionIsAConverter) {
    auto const def = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(def, nullptr);
    EXPECT_TRUE(def->isConverter());
}

TEST_F(DmValueNodeDefTest, SameTypeGivesTheSameDefinition) {
    auto const first = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    auto const second = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, second);
}

TEST_F(DmValueNodeDefTest, EachTypeHasItsOwnDefinition) {
    auto const ints = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    auto const floats = DmValueNodeDef::getValueNodeDef(DmLibrary::getFloatType());
    ASSERT_NE(ints, nullptr);
    ASSERT_NE(floats, nullptr);
    EXPECT_NE(ints, floats);
    EXPECT_EQ(floats->getType(), DmLibrary::getFloatType());
}

TEST_F(DmValueNodeDefTest, EquivalentTypeObjectsHaveADefinitionEach) {
    auto const first = makeStruct("Point");
    auto const second = makeStruct("Point");
    ASSERT_TRUE(DmBaseType::equivalent(*first, *second));
    auto const firstDef = DmValueNodeDef::getValueNodeDef(first);
    auto const secondDef = DmValueNodeDef::getValueNodeDef(second);
    ASSERT_NE(firstDef, nullptr);
    ASSERT_NE(secondDef, nullptr);
    EXPECT_NE(firstDef, secondDef);
    EXPECT_EQ(firstDef->getType(), first);
    EXPECT_EQ(secondDef->getType(), second);
}

TEST_F(DmValueNodeDefTest, DefinitionGoesWhenNoLongerHeld) {
    auto const before = count<DmValueNodeDef>();
    auto def = DmValueNodeDef::getValueNodeDef(DmLibrary::getLongType());
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(count<DmValueNodeDef>(), before + 1);
    def.reset();
    EXPECT_EQ(count<DmValueNodeDef>(), before);
}

TEST_F(DmValueNodeDefTest, NodeKeepsTheDefinitionOfItsType) {
    auto def = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(def, nullptr);
    auto const node = DmNode::createNode("value", def);
    ASSERT_NE(node, nullptr);
    DmNodeDef const* const held = def.get();
    def.reset();
    EXPECT_EQ(DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType()).get(), held);
    EXPECT_EQ(node->getNodeDef(), held);
}

TEST_F(DmValueNodeDefTest, PortsAreValueAndOutputOfTheType) {
    auto const def = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(def, nullptr);
    EXPECT_STREQ(DmValueNodeDef::kValuePortName, "value");
    EXPECT_STREQ(DmValueNodeDef::kOutputPortName, "output");
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"value", "output"}));
    auto const value = def->getPortsInterface()["value"];
    auto const out = def->getPortsInterface()["output"];
    ASSERT_NE(value, nullptr);
    ASSERT_NE(out, nullptr);
    EXPECT_TRUE(value->isInput());
    EXPECT_TRUE(out->isOutput());
    EXPECT_EQ(value->getType(), DmLibrary::getIntType());
    EXPECT_EQ(out->getType(), DmLibrary::getIntType());
    EXPECT_EQ(value->getNodeDef(), def.get());
    EXPECT_EQ(out->getNodeDef(), def.get());
}

TEST_F(DmValueNodeDefTest, IconMetadataPointsAtTheValueIcon) {
    auto const def = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(def, nullptr);
    EXPECT_STREQ(DmValueNodeDef::kIcon, "../icons/value.svg");
    auto const items = def->getMetadata()->find("icon");
    ASSERT_EQ(items.size(), 1u);
    std::string icon;
    ASSERT_EQ(items.front()->getStringValue(icon), DmStatus::kSuccess);
    EXPECT_EQ(icon, "../icons/value.svg");
}

TEST_F(DmValueNodeDefTest, NoTypeGivesNoDefinition) {
    EXPECT_EQ(DmValueNodeDef::getValueNodeDef(nullptr), nullptr);
}

TEST_F(DmValueNodeDefTest, AutoTypeGivesNoDefinition) {
    EXPECT_EQ(DmValueNodeDef::getValueNodeDef(DmLibrary::getAutoType()), nullptr);
}

TEST_F(DmValueNodeDefTest, ArrayOfAutoGivesNoDefinition) {
    auto const arrayOfAuto = std::make_shared<DmArrayType>(DmLibrary::getAutoType());
    EXPECT_EQ(DmValueNodeDef::getValueNodeDef(arrayOfAuto), nullptr);
}

TEST_F(DmValueNodeDefTest, ArrayOfAConcreteTypeHasADefinition) {
    auto const arrayOfInt = std::make_shared<DmArrayType>(DmLibrary::getIntType());
    auto const def = DmValueNodeDef::getValueNodeDef(arrayOfInt);
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(def->getType(), arrayOfInt);
}

TEST_F(DmValueNodeDefTest, ValueNodeDefinitionAlwaysHasAReference) {
    auto const def = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(def, nullptr);
    EXPECT_TRUE(def->getInstantiatedNodes().empty());
    EXPECT_FALSE(def->hasNoReference());
}

TEST_F(DmValueNodeDefTest, ValueNodeDefinitionRefusesARename) {
    auto const def = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(def, nullptr);
    auto const name = def->getName();
    EXPECT_FALSE(def->setName("renamed", kFailOnClash, kNameVerbatim));
    EXPECT_FALSE(def->setName("renamed", kMakeUnique, kNameVerbatim));
    EXPECT_EQ(def->getName(), name);
}

TEST_F(DmValueNodeDefTest, ValueNodeDefinitionRefusesAThirdPort) {
    auto const def = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(def, nullptr);
    auto const third = input("third", DmLibrary::getIntType());
    EXPECT_FALSE(def->addPortDescription(third, kMakeUnique));
    EXPECT_EQ(def->getPortsInterface().size(), 2u);
    EXPECT_EQ(third->getNodeDef(), nullptr);
}

TEST_F(DmValueNodeDefTest, ValueNodeDefinitionRefusesToLoseAPort) {
    auto const def = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(def, nullptr);
    auto const value = def->getPortsInterface()["value"];
    EXPECT_FALSE(def->removePortDescription(value));
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"value", "output"}));
    EXPECT_EQ(value->getNodeDef(), def.get());
}

TEST_F(DmValueNodeDefTest, ValueNodeDefinitionRefusesToRenameAPort) {
    auto const def = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(def, nullptr);
    EXPECT_FALSE(def->renamePortDescription("value", "constant"));
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"value", "output"}));
}

TEST_F(DmValueNodeDefTest, PortTypesOfAValueNodeDefinitionDoNotChange) {
    auto const def = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(def, nullptr);
    auto const value = def->getPortsInterface()["value"];
    EXPECT_FALSE(value->setType(DmLibrary::getFloatType()));
    EXPECT_EQ(value->getType(), DmLibrary::getIntType());
}

TEST_F(DmValueNodeDefTest, ValueNodeDefinitionCannotBePlaced) {
    auto const ns = makeNamespace("geo");
    auto const def = DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType());
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kConstEntity);
    EXPECT_EQ(def->getScope(), nullptr);
    EXPECT_TRUE(ns->getNodeDefs().empty());
}

TEST_F(DmValueNodeDefTest, NodeOnAValueNodeDefinitionHasBothPorts) {
    auto const def = DmValueNodeDef::getValueNodeDef(DmLibrary::getFloatType());
    ASSERT_NE(def, nullptr);
    auto const node = DmNode::createNode("constant", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"value", "output"}));
    EXPECT_EQ(def->getInstantiatedNodes().count(node.get()), 1u);
    EXPECT_FALSE(def->hasNoReference());
}

// ---------------------------------------------------------------------------
// Placeholders for definitions that could not be found

TEST_F(DmUnknownNodeDefTest, PlaceholderIsUnknown) {
    static_assert(std::is_base_of<DmOverload, DmUnknownNodeDef>::value,
                  "placeholders stand in overload sets");
    auto const def = DmUnknownNodeDef::newUnknownNodeDef("missing");
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(def->getName(), "missing");
    EXPECT_TRUE(def->isUnknown());
    EXPECT_FALSE(def->isBuiltIn());
    EXPECT_FALSE(def->isTerminal());
    EXPECT_FALSE(def->isValueNodeDef());
    EXPECT_TRUE(def->getPortsInterface().empty());
    EXPECT_EQ(def->getScope(), nullptr);
}

TEST_F(DmUnknownNodeDefTest, NewUnknownNodeDefRefusesTheEmptyName) {
    EXPECT_EQ(DmUnknownNodeDef::newUnknownNodeDef(""), nullptr);
}

TEST_F(DmUnknownNodeDefTest, NewUnknownNodeDefKeepsTheNameVerbatimByDefault) {
    auto const def = DmUnknownNodeDef::newUnknownNodeDef("my op");
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(def->getName(), "my op");
}

TEST_F(DmUnknownNodeDefTest, NewUnknownNodeDefLegalizesWhenAsked) {
    auto const def = DmUnknownNodeDef::newUnknownNodeDef("my op", kNameLegalize);
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(def->getName(), "my_op");
    EXPECT_EQ(DmUnknownNodeDef::newUnknownNodeDef("my op", kNameMustBeLegal), nullptr);
}

TEST_F(DmUnknownNodeDefTest, PlaceholderCannotBeImported) {
    auto const ns = makeNamespace("target");
    auto const def = DmUnknownNodeDef::newUnknownNodeDef("missing");
    ASSERT_NE(def, nullptr);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(def->import(ns, kFailOnClash, "missing", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(ns->getNodeDefs().empty());
}

TEST_F(DmUnknownNodeDefTest, PlaceholderTakesPortsOfAnyKind) {
    auto const def = DmUnknownNodeDef::newUnknownNodeDef("missing");
    ASSERT_NE(def, nullptr);
    EXPECT_TRUE(def->addPortDescription(DmUnknownPortDescription::newPortDescription(
                                            "in", DmLibrary::getAutoType(), kDirectionInput, kNameVerbatim),
                                        kFailOnClash));
    EXPECT_TRUE(def->addPortDescription(output("out", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_EQ(portNames(def->getPortsInterface().getPorts()), (std::vector<std::string>{"in", "out"}));
    EXPECT_TRUE(def->hasAutoInputPort());
}

TEST_F(DmUnknownNodeDefTest, PlaceholderMovesBetweenScopes) {
    auto const from = makeNamespace("from");
    auto const to = makeNamespace("to");
    auto const def = DmUnknownNodeDef::newUnknownNodeDef("missing");
    ASSERT_NE(def, nullptr);
    ASSERT_EQ(def->setScope(from.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->setScope(to.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_FALSE(from->hasNodeDef("missing"));
    EXPECT_TRUE(to->hasNodeDef("missing"));
}

TEST_F(DmUnknownNodeDefTest, SetOfAPlaceholderIsUnknownAndNotBuiltIn) {
    auto const ns = makeNamespace("geo");
    auto const def = DmUnknownNodeDef::newUnknownNodeDef("missing");
    ASSERT_NE(def, nullptr);
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const set = setOf(*ns, "missing");
    ASSERT_NE(set, nullptr);
    EXPECT_TRUE(set->isUnknown());
    EXPECT_FALSE(set->isBuiltIn());
}

TEST_F(DmUnknownNodeDefTest, NodeOnAPlaceholderShowsItsPorts) {
    auto const def = DmUnknownNodeDef::newUnknownNodeDef("missing");
    ASSERT_NE(def, nullptr);
    ASSERT_TRUE(def->addPortDescription(input("in", DmLibrary::getIntType()), kFailOnClash));
    auto const node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"in"}));
    ASSERT_TRUE(def->addPortDescription(output("out", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_EQ(portNames(node->getPorts()), (std::vector<std::string>{"in", "out"}));
}
