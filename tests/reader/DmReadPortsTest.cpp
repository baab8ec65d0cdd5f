// Ports of definitions in graph files: each check of the second pass, in its
// order, and the defaults and links of the third.
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "reader/NodeDefReadingTestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Kesto;

namespace {

class DmReadPortsTest : public KestoTest::NodeDefReadingTest {
protected:
    /// Loads the operator "math::f" with the `ports` (comma separated).
    DmStatus loadPorts(std::string const& ports) {
        return load(operators(op("math::f", R"(, "ports": [)" + ports + "]")));
    }

    std::shared_ptr<DmPortDescription> port(std::string const& name) {
        auto const f = cppOperator("math::f");
        return f ? f->getPortsInterface()[name] : nullptr;
    }
};

} // namespace

TEST_F(DmReadPortsTest, PortWithoutANameIsWarnedAndLeftOut) {
    ASSERT_EQ(loadPorts(R"({"portDirection": "input", "portType": "int"}, )" + opPort("a", "input", "int")),
              DmStatus::kSuccess);
    EXPECT_EQ(printed(), (std::vector<std::string>{
                             warning("Missing port name.", "Port needs to have at least a name.")}));
    EXPECT_EQ(cppOperator("math::f")->getPortsInterface().size(), 1u);
}

TEST_F(DmReadPortsTest, IllegalPortNameIsWarnedAndThePortIsAdded) {
    ASSERT_EQ(loadPorts(opPort("2a", "input", "int")), DmStatus::kSuccess);
    EXPECT_EQ(printed(), (std::vector<std::string>{warning(
                             "Illegal port name",
                             "The port \"2a\" on node definition \"math::f\" has an illegal name.")}));
    EXPECT_TRUE(port("2a"));
}

TEST_F(DmReadPortsTest, BadDirectionIsWarnedAndThePortStaysInTheInterface) {
    ASSERT_EQ(loadPorts(opPort("a", "in", "int") +
                        R"(, {"portName": "b", "portType": "int", "portConvention": "byValue"})"),
              DmStatus::kSuccess);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{
                  warning("Missing port direction.", "The port 'math::f::a' does not have a direction."),
                  warning("Missing port direction.", "The port 'math::f::b' does not have a direction.")}));
    ASSERT_TRUE(port("a"));
    EXPECT_EQ(port("a")->getDirection(), kDirectionUnset);
    EXPECT_FALSE(port("a")->isComplete());
    EXPECT_EQ(port("a")->getType(), DmLibrary::getIntType());
    EXPECT_TRUE(port("b"));
}

TEST_F(DmReadPortsTest, AssociativeOutputIsAnErrorAndStaysPlain) {
    EXPECT_EQ(loadPorts(opPort("r", "output", "int", R"(, "isAssociative": "true")")), DmStatus::kFailure);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{error("Output port marked associative.",
                                              "The port 'math::f::r' can not be marked as associative.")}));
    EXPECT_EQ(port("r")->getPortKind(), kPortPlain);
}

TEST_F(DmReadPortsTest, AssociativeKeyThatIsNoStringCountsAsAbsent) {
    ASSERT_EQ(loadPorts(opPort("a", "input", "int", R"(, "isAssociative": true)")), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_FALSE(port("a")->isAssociative());
}

TEST_F(DmReadPortsTest, PortWithoutATypeIsAuto) {
    ASSERT_EQ(loadPorts(R"({"portName": "a", "portDirection": "input", "portConvention": "byValue"})"),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_EQ(port("a")->getType(), DmLibrary::getAutoType());
    EXPECT_TRUE(port("a")->isComplete());
}

TEST_F(DmReadPortsTest, ArrayOfAutoBecomesAutoWithAWarning) {
    ASSERT_EQ(
        loadPorts(opPort("a", "input", "array<auto>") + ", " + opPort("b", "input", "array< array<auto> >")),
        DmStatus::kSuccess);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{
                  warning("Illegal array of auto type.",
                          "The port 'math::f::a' has illegal type 'array<auto>', using 'auto' type instead."),
                  warning("Illegal array of auto type.", "The port 'math::f::b' has illegal type "
                                                         "'array< array<auto> >', using 'auto' type "
                                                         "instead.")}));
    EXPECT_EQ(port("a")->getType(), DmLibrary::getAutoType());
    EXPECT_EQ(port("b")->getType(), DmLibrary::getAutoType());
    EXPECT_TRUE(port("a")->isComplete());
}

TEST_F(DmReadPortsTest, UndefinedTypeIsWarnedAndKeptOnAnIncompletePort) {
    ASSERT_EQ(
        loadPorts(opPort("a", "input", "geo::Missing") + ", " + opPort("b", "input", "array<geo::Gone>")),
        DmStatus::kSuccess);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{
                  warning("Undefined port type.", "The port 'math::f::a' has undefined type 'geo::Missing'."),
                  warning("Undefined port type.",
                          "The port 'math::f::b' has undefined type 'array<geo::Gone>'.")}));
    ASSERT_TRUE(port("a"));
    EXPECT_EQ(port("a")->getType()->getTypeKind(), kTypeUndefined);
    EXPECT_EQ(port("a")->getType()->getName(), "Missing");
    EXPECT_FALSE(port("a")->isComplete());
    EXPECT_EQ(port("b")->getType()->getTypeKind(), kTypeArray);
    EXPECT_FALSE(port("b")->isComplete());
}

TEST_F(DmReadPortsTest, OldTypeSpellingsAreRenamed) {
    std::string const text =
        R"(, "types": [{"structName": "Math::FCurve"}])" +
        operators(op("math::f", R"(, "ports": [)" + opPort("a", "input", "Kesto::FCurve") + "]"));
    ASSERT_EQ(load(text), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_EQ(port("a")->getType(), type("Math::FCurve"));
}

TEST_F(DmReadPortsTest, OperatorPortWithoutAConventionIsAnError) {
    EXPECT_EQ(loadPorts(opPort("a", "input", "int", "", "")), DmStatus::kFailure);
    EXPECT_EQ(printed(), (std::vector<std::string>{error(
                             "Missing port convention.",
                             "Port 'math::f::a' of external operator must specify the passing convention")}));
    EXPECT_FALSE(port("a")->hasCppPassingConvention());
    EXPECT_EQ(port("a")->getCppPassingConvention(), kPassInvalid);
}

TEST_F(DmReadPortsTest, UnknownConventionIsAnError) {
    EXPECT_EQ(loadPorts(opPort("a", "input", "int", "", "byMagic")), DmStatus::kFailure);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{
                  error("Invalid port convention.", "The port 'math::f::a' has an invalid convention.")}));
    EXPECT_EQ(port("a")->getCppPassingConvention(), kPassInvalid);
}

TEST_F(DmReadPortsTest, EveryConventionSpellingIsRead) {
    std::vector<std::pair<std::string, CppPassingConvention>> const spellings = {
        {"byValue", kPassByValue},
        {"byReference", kPassByReference},
        {"byPtrConstValue", kPassByPtrValue},
        {"byPtrValue", kPassByPtrValue},
        {"byReferenceToPtr", kPassByReferenceToPtr},
        {"byReturnValue", kPassByReturnValue},
        {"byMutablePtrValue", kPassByMutablePtrValue},
        {"byReferenceToMutablePtr", kPassByReferenceToMutablePtr}};
    std::string ports;
    for (std::size_t i = 0; i < spellings.size(); ++i) {
        ports +=
            (i != 0 ? ", " : "") + opPort("p" + std::to_string(i), "input", "int", "", spellings[i].first);
    }
    ASSERT_EQ(loadPorts(ports), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    for (std::size_t i = 0; i < spellings.size(); ++i) {
        EXPECT_EQ(port("p" + std::to_string(i))->getCppPassingConvention(), spellings[i].second)
            << spellings[i].first;
    }
}

TEST_F(DmReadPortsTest, IterationLimitOnAnOutputIsAnErrorAndStaysUnset) {
    EXPECT_EQ(loadPorts(opPort("r", "output", "int", R"(, "portIterationLimit": "true")")),
              DmStatus::kFailure);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{
                  error("Invalid iteration limit", "The output port 'r' can not be an iteration limit.")}));
    EXPECT_EQ(port("r")->getIterationAttribute(), kIterationNone);
}

TEST_F(DmReadPortsTest, IterationCounterOnAnOutputIsAnErrorAndStaysUnset) {
    EXPECT_EQ(loadPorts(opPort("r", "output", "int", R"(, "portIterationCounter": "true")")),
              DmStatus::kFailure);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{error("Invalid iteration counter",
                                              "The output port 'r' can not be an iteration counter.")}));
    EXPECT_EQ(port("r")->getIterationAttribute(), kIterationNone);
}

TEST_F(DmReadPortsTest, IterationAttributesOverwriteOneAnotherInOrder) {
    ASSERT_EQ(loadPorts(opPort("limit", "input", "int", R"(, "portIterationLimit": "true")") + ", " +
                        opPort("counter", "input", "int",
                               R"(, "portIterationLimit": "true", "portIterationCounter": "true")") +
                        ", " +
                        opPort("target", "output", "array<int>",
                               R"(, "portIterationCounter": "false", "portIterationTarget": "true")") +
                        ", " +
                        opPort("all", "input", "array<int>",
                               R"(, "portIterationLimit": "true", "portIterationCounter": "true",)"
                               R"( "portIterationTarget": "true")")),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_EQ(port("limit")->getIterationAttribute(), kIterationLimit);
    EXPECT_EQ(port("counter")->getIterationAttribute(), kIterationCounter);
    EXPECT_EQ(port("target")->getIterationAttribute(), kIterationTarget);
    EXPECT_EQ(port("all")->getIterationAttribute(), kIterationTarget);
}

TEST_F(DmReadPortsTest, DefaultFanInNeedsAnArrayOrAutoInput) {
    ASSERT_EQ(loadPorts(opPort("list", "input", "array<int>", R"(, "isDefaultFanIn": "true")") + ", " +
                        opPort("one", "input", "int", R"(, "isDefaultFanIn": "true")")),
              DmStatus::kSuccess);
    EXPECT_EQ(printed(), (std::vector<std::string>{warning("Unable to set port Description as DefaultFanIn ",
                                                           "for port 'one on nodeDef 'math::f'.")}));
    EXPECT_TRUE(port("list")->isDefaultFanIn());
    EXPECT_FALSE(port("one")->isDefaultFanIn());
    EXPECT_TRUE(port("one"));
}

TEST_F(DmReadPortsTest, AssociatedPortPairsTwoPortsOfAnOperator) {
    ASSERT_EQ(loadPorts(opPort("in", "input", "int") + ", " +
                        opPort("out", "output", "int", R"(, "portAssociated": "in")") + ", " +
                        opPort("other", "output", "int", R"(, "portAssociated": "nowhere")")),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const f = cppOperator("math::f");
    EXPECT_EQ(f->getAssociatedPort(port("out").get()), port("in"));
    EXPECT_FALSE(f->getAssociatedPort(port("in").get()));
    EXPECT_FALSE(f->getAssociatedPort(port("other").get()));
}

TEST_F(DmReadPortsTest, AssociatedPortOnATerminalIsWarned) {
    std::string const text = terminals(R"({"name": "out::t", "ports": [{"portName": "a", "portType": "int"},)"
                                       R"( {"portName": "b", "portType": "int", "portAssociated": "a"}]})");
    ASSERT_EQ(load(text), DmStatus::kSuccess);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{warning(
                  "Invalid port association.",
                  "The in/out association between ports 'b' and 'a' can only be done in a C++ external "
                  "operator, but 'out::t' is not.")}));
    EXPECT_EQ(terminal("out::t")->getPortsInterface().size(), 2u);
}

TEST_F(DmReadPortsTest, SecondPortOfOneNameIsRefused) {
    EXPECT_EQ(loadPorts(opPort("a", "input", "int") + ", " + opPort("a", "output", "float")),
              DmStatus::kFailure);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{error(
                  "Invalid port.", "The port 'math::f::a' could not be added to its node definition'")}));
    ASSERT_EQ(cppOperator("math::f")->getPortsInterface().size(), 1u);
    EXPECT_EQ(port("a")->getType(), DmLibrary::getIntType());
}

TEST_F(DmReadPortsTest, PortMetadataIsReadAndAWrongFormIgnored) {
    ASSERT_EQ(
        loadPorts(opPort("a", "input", "int", R"(, "metadata": [{"metaName": "min", "metaValue": "1L"}])") +
                  ", " + opPort("b", "input", "int", R"(, "metadata": "x")")),
        DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_EQ(port("a")->getMetadata()->find("min").size(), 1u);
    EXPECT_TRUE(port("b")->getMetadata()->find("min").empty());
}

TEST_F(DmReadPortsTest, DefaultValueIsReadInTheThirdPass) {
    ASSERT_EQ(loadPorts(opPort("a", "input", "int", R"(, "portDefault": "42")") + ", " +
                        opPort("b", "input", "array<float>", R"(, "portDefault": ["1.5", "2"])") + ", " +
                        opPort("c", "input", "int", R"(, "portDefault": null)")),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const a = std::dynamic_pointer_cast<DmIntValue>(port("a")->getDefaultValueOverride());
    ASSERT_TRUE(a);
    EXPECT_EQ(a->getData(), 42);
    ASSERT_TRUE(port("b")->getDefaultValueOverride());
    EXPECT_EQ(port("b")->getDefaultValueOverride()->getType(),
              library().getArrayType(DmLibrary::getFloatType()));
    EXPECT_FALSE(port("c")->getDefaultValueOverride());
}

TEST_F(DmReadPortsTest, DefaultOfAnAutoPortTakesItsDefaultType) {
    ASSERT_EQ(loadPorts(R"({"portName": "a", "portDirection": "input", "portConvention": "byValue",)"
                        R"( "portDefaultType": "string", "portDefault": "hello"})"),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const value = std::dynamic_pointer_cast<DmStringValue>(port("a")->getDefaultValueOverride());
    ASSERT_TRUE(value);
    EXPECT_EQ(port("a")->getType(), DmLibrary::getAutoType());
}

TEST_F(DmReadPortsTest, DefaultTypeOfAConcretePortIsIgnored) {
    ASSERT_EQ(loadPorts(opPort("a", "input", "int", R"(, "portDefaultType": "string", "portDefault": "7")")),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_TRUE(std::dynamic_pointer_cast<DmIntValue>(port("a")->getDefaultValueOverride()));
}

TEST_F(DmReadPortsTest, DefaultThatDoesNotReadIsAnError) {
    EXPECT_EQ(loadPorts(opPort("a", "input", "int", R"(, "portDefault": "x1")")), DmStatus::kFailure);
    EXPECT_EQ(printed(), (std::vector<std::string>{
                             KestoTest::line("error", "<value>", "Badly formed value.",
                                             "The value 'x1' is not a valid value."),
                             error("Invalid default port value.",
                                   "Unable to process the default value for port 'math::f::a'.")}));
    EXPECT_FALSE(port("a")->getDefaultValueOverride());
}

TEST_F(DmReadPortsTest, DefaultOfAnAutoPortWithoutADefaultTypeIsAnError) {
    EXPECT_EQ(loadPorts(R"({"portName": "a", "portDirection": "input", "portConvention": "byValue",)"
                        R"( "portDefault": "1"})"),
              DmStatus::kFailure);
    EXPECT_EQ(printed(), (std::vector<std::string>{
                             KestoTest::line("error", "<value>", "Auto type found when reading value.",
                                             "Unable to read a value of auto type 'auto'."),
                             error("Invalid default port value.",
                                   "Unable to process the default value for port 'math::f::a'.")}));
    EXPECT_FALSE(port("a")->getDefaultValueOverride());
}

TEST_F(DmReadPortsTest, FeedbackLinkOutsideACompoundIsRefused) {
    EXPECT_EQ(loadPorts(opPort("a", "input", "int", R"(, "linkedFeedbackPort": "r")") + ", " +
                        opPort("r", "output", "int")),
              DmStatus::kFailure);
    EXPECT_EQ(printed(), (std::vector<std::string>{error(
                             "Invalid port attribute.",
                             "The feedback attribute can only be on non looping construct compounds.")}));
    EXPECT_FALSE(port("a")->isLinked());
}

namespace {

class DmReadCompoundPortsTest : public KestoTest::NodeDefReadingTest {
protected:
    /// Loads the compound "g::c" with the `ports` and `more` keys.
    DmStatus loadCompound(std::string const& ports, std::string const& more = std::string()) {
        return load(R"(, "compounds": [{"name": "g::c", "ports": [)" + ports + "]" + more + "}]");
    }

    std::shared_ptr<DmCompound> compound() {
        auto const all = library().getCompounds();
        auto const found = all.find("g::c");
        return found != all.end() ? found->second : nullptr;
    }

    std::shared_ptr<DmPortDescription> port(std::string const& name) {
        auto const c = compound();
        return c ? c->getPortsInterface()[name] : nullptr;
    }
};

} // namespace

TEST_F(DmReadCompoundPortsTest, CompoundPortsNeedNoConvention) {
    ASSERT_EQ(
        loadCompound(R"({"portName": "a", "portDirection": "input", "portType": "int", "portDefault": "4"},)"
                     R"( {"portName": "r", "portDirection": "output", "portType": "int"})"),
        DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    ASSERT_TRUE(port("a"));
    EXPECT_FALSE(port("a")->hasCppPassingConvention());
    auto const value = std::dynamic_pointer_cast<DmIntValue>(port("a")->getDefaultValueOverride());
    ASSERT_TRUE(value);
    EXPECT_EQ(value->getData(), 4);
    EXPECT_EQ(port("r")->getDirection(), kDirectionOutput);
}

TEST_F(DmReadCompoundPortsTest, DefaultOfAnAutoInputIsKeptOnTheInterfaceNode) {
    ASSERT_EQ(loadCompound(R"({"portName": "a", "portDirection": "input", "portDefaultType": "float",)"
                           R"( "portDefault": "2.5"})"),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_FALSE(port("a")->getDefaultValueOverride());
    std::shared_ptr<DmPort> const selfPort = (*compound()->getSelfNode())["a"];
    ASSERT_TRUE(selfPort);
    auto const value = std::dynamic_pointer_cast<DmFloatValue>(selfPort->getDefaultValue());
    ASSERT_TRUE(value);
    EXPECT_EQ(value->getData(), 2.5f);
}

TEST_F(DmReadCompoundPortsTest, FeedbackLinksAnInputToAnOutput) {
    ASSERT_EQ(
        loadCompound(
            R"({"portName": "a", "portDirection": "input", "portType": "int",)"
            R"( "linkedFeedbackPort": "r"}, {"portName": "r", "portDirection": "output", "portType": "int"})"),
        DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_EQ(port("a")->getLinkedPort(), port("r").get());
    EXPECT_TRUE(port("a")->isFeedback());
    EXPECT_TRUE(port("r")->isFeedback());
}

TEST_F(DmReadCompoundPortsTest, FeedbackNamingAMissingPortIsNotFound) {
    EXPECT_EQ(loadCompound(R"({"portName": "a", "portDirection": "input", "portType": "int",)"
                           R"( "linkedFeedbackPort": "nowhere"})"),
              DmStatus::kFailure);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{
                  error("Feedback port not found.", "The output feedback port 'nowhere' was not found.")}));
    EXPECT_FALSE(port("a")->isLinked());
}

TEST_F(DmReadCompoundPortsTest, FeedbackNamingAnInputIsNotFound) {
    EXPECT_EQ(
        loadCompound(
            R"({"portName": "a", "portDirection": "input", "portType": "int",)"
            R"( "linkedFeedbackPort": "b"}, {"portName": "b", "portDirection": "input", "portType": "int"})"),
        DmStatus::kFailure);
    EXPECT_EQ(printed(), (std::vector<std::string>{error("Feedback port not found.",
                                                         "The output feedback port 'b' was not found.")}));
}

TEST_F(DmReadCompoundPortsTest, FeedbackOnAnOutputIsRefused) {
    EXPECT_EQ(
        loadCompound(
            R"({"portName": "a", "portDirection": "input", "portType": "int"},)"
            R"( {"portName": "r", "portDirection": "output", "portType": "int", "linkedFeedbackPort": "a"})"),
        DmStatus::kFailure);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{
                  error("Invalid port attribute.", "The feedback attribute must be on an input port.")}));
    EXPECT_FALSE(port("r")->isLinked());
}

TEST_F(DmReadCompoundPortsTest, FeedbackOnALoopingCompoundIsRefused) {
    EXPECT_EQ(
        loadCompound(
            R"({"portName": "a", "portDirection": "input", "portType": "int",)"
            R"( "linkedFeedbackPort": "r"}, {"portName": "r", "portDirection": "output", "portType": "int"})",
            R"(, "whileCompound": {"ports": []})"),
        DmStatus::kFailure);
    EXPECT_EQ(printed(), (std::vector<std::string>{error(
                             "Invalid port attribute.",
                             "The feedback attribute can only be on non looping construct compounds.")}));
    EXPECT_FALSE(port("a")->isFeedback());
}
