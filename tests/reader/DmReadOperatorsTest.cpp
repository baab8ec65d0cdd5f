// External operators of graph files: how they are made, placed, checked and
// given their symbols, flags, job ports and metadata.
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/graph/DmJobPort.h>
#include <KestoDM/graph/DmPortsInterface.h>
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

class DmReadOperatorsTest : public KestoTest::NodeDefReadingTest {
protected:
    /// A plain operator of one input and one output, with `more` keys.
    static std::string simple(std::string const& name, std::string const& more = std::string()) {
        return op(name, R"(, "ports": [)" + opPort("a", "input", "int") + ", " +
                            opPort("r", "output", "int") + "]" + more);
    }

    std::vector<std::string> associativeMessages(std::string const& ports, std::string const& associativity) {
        EXPECT_EQ(load(operators(op("ops::plus", associativity + R"(, "ports": [)" + ports + "]"))),
                  DmStatus::kSuccess);
        return printed();
    }
};

} // namespace

TEST_F(DmReadOperatorsTest, OperatorIsReadWithItsSymbolsPolicyFlagsPortsAndJobPorts) {
    std::string const text = operators(
        op("math::add", R"(, "resourceFileName": "libmath.so", "cancellationPolicy": "Unsafe",)"
                        R"( "isConverter": "true", "isPromoter": "True", "isDefaultOverload": "TRUE",)"
                        R"( "metadata": [{"metaName": "doc", "metaType": "string", "metaValue": "adds"}],)"
                        R"( "ports": [)" +
                            opPort("a", "input", "int") + ", " +
                            opPort("b", "input", "float", "", "byReference") + ", " +
                            opPort("sum", "output", "double", "", "byReturnValue") +
                            R"(], "jobPorts": [{"portName": "services", "portType": "string"}])"));
    ASSERT_EQ(load(text), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());

    auto const add = cppOperator("math::add");
    ASSERT_TRUE(add);
    EXPECT_EQ(add->getName(), "add");
    EXPECT_EQ(add->getScope(), library().getGlobalNamespace()->fetchNamespace("math").get());
    EXPECT_EQ(add->getURI(), uri());
    EXPECT_EQ(add->getMangleName(DmMangledName::kMangledNameMicrosoft), "?f@@YAXXZ");
    EXPECT_EQ(add->getMangleName(DmMangledName::kMangledNameItanium), "_Z1fv");
    EXPECT_TRUE(add->isMangleNameDeclared(DmMangledName::kMangledNameMicrosoft));
    EXPECT_TRUE(add->isMangleNameDeclared(DmMangledName::kMangledNameItanium));
    EXPECT_EQ(add->getResourceFileName(), "libmath.so");
    EXPECT_EQ(add->getCancellationPolicy(), DmExternOperator::kUnsafe);
    EXPECT_EQ(add->associativity(), DmNodeDef::kNotAssociative);
    EXPECT_TRUE(add->isConverter());
    EXPECT_TRUE(add->isPromoter());
    EXPECT_TRUE(add->isDefaultOverload());
    EXPECT_TRUE(add->isComplete());

    DmPortsInterface const& ports = add->getPortsInterface();
    ASSERT_EQ(ports.size(), 3u);
    std::vector<std::string> names;
    for (auto const& entry : ports) {
        names.push_back(entry.first);
        EXPECT_TRUE(entry.second->isComplete()) << entry.first;
        EXPECT_EQ(entry.second->getNodeDef(), add.get());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"a", "b", "sum"}));
    EXPECT_EQ(ports["a"]->getType(), DmLibrary::getIntType());
    EXPECT_EQ(ports["a"]->getDirection(), kDirectionInput);
    EXPECT_EQ(ports["a"]->getCppPassingConvention(), kPassByValue);
    EXPECT_TRUE(ports["a"]->hasCppPassingConvention());
    EXPECT_EQ(ports["b"]->getType(), DmLibrary::getFloatType());
    EXPECT_EQ(ports["b"]->getCppPassingConvention(), kPassByReference);
    EXPECT_EQ(ports["sum"]->getDirection(), kDirectionOutput);
    EXPECT_EQ(ports["sum"]->getCppPassingConvention(), kPassByReturnValue);

    ASSERT_EQ(add->getJobPorts().size(), 1u);
    EXPECT_EQ(add->getJobPorts()[0]->getName(), "services");
    EXPECT_EQ(add->getJobPorts()[0]->getType(), DmLibrary::getStringType());
    EXPECT_TRUE(add->getJobPorts()[0]->isComplete());

    auto const doc = add->getMetadata()->find("doc");
    ASSERT_EQ(doc.size(), 1u);
    std::string text2;
    EXPECT_EQ(doc[0]->getStringValue(text2), DmStatus::kSuccess);
    EXPECT_EQ(text2, "adds");
}

TEST_F(DmReadOperatorsTest, OperatorAndItsSetGoWithTheLibrary) {
    ASSERT_EQ(load(operators(simple("math::add"))), DmStatus::kSuccess);
    EXPECT_TRUE(cppOperator("math::add"));
    // The fixture checks that dropping the library leaves no definition alive.
}

TEST_F(DmReadOperatorsTest, OperatorWithoutANameIsWarnedOnceAndSkippedInEveryPass) {
    // The second operator's default comes from pass 3: the queue stays in step.
    std::string const second =
        op("math::neg", R"(, "ports": [)" + opPort("a", "input", "int", R"(, "portDefault": "5")") + "]");
    ASSERT_EQ(load(operators(R"({"msMangle": "x", "ports": []}, )" + second)), DmStatus::kSuccess);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{warning("Missing compound external operator name.",
                                                "External operator needs to have at least a name.")}));
    auto const neg = cppOperator("math::neg");
    ASSERT_TRUE(neg);
    auto const value =
        std::dynamic_pointer_cast<DmIntValue>(neg->getPortsInterface()["a"]->getDefaultValueOverride());
    ASSERT_TRUE(value);
    EXPECT_EQ(value->getData(), 5);
}

TEST_F(DmReadOperatorsTest, IllegalNameIsWarnedAndTheOperatorIsStillMade) {
    ASSERT_EQ(load(operators(simple("math::1add"))), DmStatus::kSuccess);
    EXPECT_EQ(printed(), (std::vector<std::string>{warning(
                             "Illegal operator name", "The operator \"math::1add\" has an illegal name.")}));
    EXPECT_TRUE(cppOperator("math::1add"));
}

TEST_F(DmReadOperatorsTest, NameIsNormalisedBeforeItIsSplit) {
    ASSERT_EQ(load(operators(simple(" math :: add "))), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_TRUE(cppOperator("math::add"));
}

TEST_F(DmReadOperatorsTest, AbsentCancellationPolicyIsTheLibrarysDefault) {
    ASSERT_EQ(load(operators(simple("a") + ", " + simple("b", R"(, "cancellationPolicy": "None")"))),
              DmStatus::kSuccess);
    EXPECT_EQ(cppOperator("a")->getCancellationPolicy(), library().getDefaultCancellationPolicy());
    EXPECT_EQ(cppOperator("a")->getCancellationPolicy(), DmExternOperator::kSafe);
    EXPECT_EQ(cppOperator("b")->getCancellationPolicy(), DmExternOperator::kNone);
}

TEST_F(DmReadOperatorsTest, UnknownCancellationPolicyIsAnErrorAndTheDefaultIsUsed) {
    EXPECT_EQ(load(operators(simple("math::add", R"(, "cancellationPolicy": "safe")"))), DmStatus::kFailure);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{
                  error("Invalid cancellation policy.",
                        "the node 'math::add' has an invalid cancellation policy annotation 'safe'. It must "
                        "be one of 'None', 'Safe' or 'Unsafe'. Using default.")}));
    ASSERT_TRUE(cppOperator("math::add"));
    EXPECT_EQ(cppOperator("math::add")->getCancellationPolicy(), DmExternOperator::kSafe);
}

TEST_F(DmReadOperatorsTest, UnknownAssociativityIsAnErrorAndLeavesNone) {
    EXPECT_EQ(load(operators(simple("math::add", R"(, "associativity": "leftToLeft")"))), DmStatus::kFailure);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{
                  error("Invalid associativity constant.",
                        "the node 'math::add' has an invalid associativity annotation. It must be one of "
                        "leftToRight or rightToLeft.")}));
    EXPECT_EQ(cppOperator("math::add")->associativity(), DmNodeDef::kNotAssociative);
}

TEST_F(DmReadOperatorsTest, MissingMangledNamesAreInformationWithTheirOwnTitles) {
    std::string const text =
        operators(R"({"name": "math::add", "ports": [)" + opPort("a", "input", "int") + "]}");
    ASSERT_EQ(load(text), DmStatus::kSuccess);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{
                  info("Missing mangled name",
                       "The external operator 'math::add' does not have a MSVC mangled name."),
                  info("Missing mangled name.",
                       "The external operator 'math::add' does not have an Itanium mangled name.")}));
    auto const add = cppOperator("math::add");
    ASSERT_TRUE(add);
    EXPECT_FALSE(add->isMangleNameDeclared(DmMangledName::kMangledNameMicrosoft));
    EXPECT_FALSE(add->isMangleNameDeclared(DmMangledName::kMangledNameItanium));
    EXPECT_EQ(add->getMangleName(DmMangledName::kMangledNameItanium), "");
}

TEST_F(DmReadOperatorsTest, OperatorWithoutPortsIsWarned) {
    ASSERT_EQ(load(operators(op("math::nop", ""))), DmStatus::kSuccess);
    EXPECT_EQ(printed(), (std::vector<std::string>{
                             warning("Missing external operator port interface.",
                                     "The external operator 'math::nop' does not have a port interface.")}));
    ASSERT_TRUE(cppOperator("math::nop"));
    EXPECT_EQ(cppOperator("math::nop")->getPortsInterface().size(), 0u);
}

TEST_F(DmReadOperatorsTest, PortsThatAreNoListAreWarnedAndNotRead) {
    ASSERT_EQ(load(operators(op("math::nop", R"(, "ports": "a")"))), DmStatus::kSuccess);
    EXPECT_EQ(printed(), (std::vector<std::string>{
                             warning("Missing external operator port interface.",
                                     "The external operator 'math::nop' does not have a port interface.")}));
}

TEST_F(DmReadOperatorsTest, OnePortObjectReadsAsAListOfOne) {
    ASSERT_EQ(load(operators(op("math::nop", R"(, "ports": )" + opPort("a", "input", "int")))),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_TRUE(cppOperator("math::nop")->getPortsInterface().hasPort("a"));
}

TEST_F(DmReadOperatorsTest, OperatorRepeatingANameWithDifferentPortsIsWarned) {
    ASSERT_EQ(loadAs("b.json", operators(simple("math::add")), kAsOverload), DmStatus::kSuccess);
    std::string const other = op("math::add", R"(, "ports": [)" + opPort("a", "input", "int") + ", " +
                                                  opPort("r", "input", "int") + "]");
    ASSERT_EQ(load(operators(other), kAsOverload), DmStatus::kSuccess);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{
                  warning("Invalid overload ports interface.",
                          "Operator 'math::add' defined in 'file:///a.json' has incompatible ports interface "
                          "with existing definition from 'file:///b.json'.")}));
    // Placed as an overload all the same.
    ASSERT_TRUE(set("math::add"));
    EXPECT_EQ(set("math::add")->getOverloads().size(), 2u);
}

TEST_F(DmReadOperatorsTest, PortsDifferingInNumberOrNameAreIncompatibleToo) {
    ASSERT_EQ(loadAs("b.json", operators(simple("math::add")), kAsOverload), DmStatus::kSuccess);
    std::string const fewer = op("math::add", R"(, "ports": [)" + opPort("a", "input", "int") + "]");
    std::string const renamed = op("math::add", R"(, "ports": [)" + opPort("x", "input", "int") + ", " +
                                                    opPort("r", "output", "int") + "]");
    std::string const none = op("math::add", "");
    ASSERT_EQ(load(operators(fewer + ", " + renamed + ", " + none), kAsOverload), DmStatus::kSuccess);
    std::string const message = "Operator 'math::add' defined in 'file:///a.json' has incompatible ports "
                                "interface with existing definition from 'file:///b.json'.";
    std::vector<std::string> const lines = printed();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], warning("Invalid overload ports interface.", message));
    EXPECT_EQ(lines[1], warning("Invalid overload ports interface.", message));
    EXPECT_EQ(lines[2], warning("Invalid overload ports interface.", message));
    EXPECT_EQ(lines[3], warning("Missing external operator port interface.",
                                "The external operator 'math::add' does not have a port interface."));
}

TEST_F(DmReadOperatorsTest, OperatorRepeatingANameWithTheSamePortsJoinsTheSetSilently) {
    ASSERT_EQ(loadAs("b.json", operators(simple("math::add")), kAsOverload), DmStatus::kSuccess);
    ASSERT_EQ(load(operators(simple("math::add")), kAsOverload), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_EQ(set("math::add")->getOverloads().size(), 2u);
}

TEST_F(DmReadOperatorsTest, MakeUniqueRenamesWithoutComparingPorts) {
    ASSERT_EQ(loadAs("b.json", operators(simple("math::add")), kMakeUnique), DmStatus::kSuccess);
    ASSERT_EQ(load(operators(op("math::add", "")), kMakeUnique), DmStatus::kSuccess);
    EXPECT_EQ(printed(), (std::vector<std::string>{
                             warning("Missing external operator port interface.",
                                     "The external operator 'math::add' does not have a port interface.")}));
    EXPECT_TRUE(cppOperator("math::add"));
    EXPECT_TRUE(cppOperator("math::add1"));
}

TEST_F(DmReadOperatorsTest, TakenNameUnderFailOnClashLeavesTheNewOperatorOut) {
    ASSERT_EQ(loadAs("b.json", operators(simple("math::add"))), DmStatus::kSuccess);
    ASSERT_EQ(load(operators(simple("math::add"))), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    ASSERT_EQ(set("math::add")->getOverloads().size(), 1u);
    EXPECT_EQ(cppOperator("math::add")->getURI(), uri("b.json"));
}

TEST_F(DmReadOperatorsTest, OverloadsUnlockedUnlocksTheSet) {
    ASSERT_EQ(load(operators(simple("a", R"(, "overloadsUnlocked": "true")") + ", " + simple("b"))),
              DmStatus::kSuccess);
    EXPECT_FALSE(cppOperator("a")->isOverloadsLocked());
    EXPECT_FALSE(set("a")->isOverloadsLocked());
    EXPECT_TRUE(cppOperator("b")->isOverloadsLocked());
}

TEST_F(DmReadOperatorsTest, FalseFlagsLeaveTheOperatorPlain) {
    ASSERT_EQ(load(operators(
                  simple("a", R"(, "isConverter": "false", "isPromoter": "no", "isDefaultOverload": "")"))),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_FALSE(cppOperator("a")->isConverter());
    EXPECT_FALSE(cppOperator("a")->isPromoter());
    EXPECT_FALSE(cppOperator("a")->isDefaultOverload());
}

TEST_F(DmReadOperatorsTest, ProperAssociativeOperatorIsSilent) {
    std::string const ports = opPort("a", "input", "int", R"(, "isAssociative": "true")") + ", " +
                              opPort("b", "input", "int", R"(, "isAssociative": "true")") + ", " +
                              opPort("r", "output", "int");
    EXPECT_TRUE(associativeMessages(ports, R"(, "associativity": "rightToLeft")").empty());
    auto const plus = cppOperator("ops::plus");
    EXPECT_EQ(plus->associativity(), DmNodeDef::kRightToLeft);
    EXPECT_TRUE(plus->getPortsInterface()["a"]->isAssociative());
    EXPECT_TRUE(plus->getPortsInterface()["b"]->isAssociative());
    EXPECT_FALSE(plus->getPortsInterface()["r"]->isAssociative());
}

TEST_F(DmReadOperatorsTest, AssociativePortsWithoutAssociativityAreWarned) {
    std::string const ports = opPort("a", "input", "int", R"(, "isAssociative": "true")") + ", " +
                              opPort("b", "input", "int", R"(, "isAssociative": "true")") + ", " +
                              opPort("r", "output", "int");
    EXPECT_EQ(
        associativeMessages(ports, ""),
        (std::vector<std::string>{warning("Invalid associative node definition.",
                                          "Associative node 'ops::plus' does not declare if associativity is "
                                          "leftToRight or rightToLeft.")}));
}

TEST_F(DmReadOperatorsTest, AssociativeOperatorNeedsExactlyTwoAssociativePorts) {
    std::string const ports = opPort("a", "input", "int", R"(, "isAssociative": "true")") + ", " +
                              opPort("b", "input", "int") + ", " + opPort("r", "output", "int");
    EXPECT_EQ(
        associativeMessages(ports, R"(, "associativity": "leftToRight")"),
        (std::vector<std::string>{warning("Invalid associative node definition.",
                                          "Associative node 'ops::plus' must have exactly two associative "
                                          "ports.")}));
}

TEST_F(DmReadOperatorsTest, AssociativeOperatorNeedsExactlyOneOutput) {
    std::string const ports = opPort("a", "input", "int", R"(, "isAssociative": "true")") + ", " +
                              opPort("b", "input", "int", R"(, "isAssociative": "true")") + ", " +
                              opPort("r", "output", "int") + ", " + opPort("s", "output", "int");
    EXPECT_EQ(associativeMessages(ports, R"(, "associativity": "leftToRight")"),
              (std::vector<std::string>{warning("Invalid associative node definition.",
                                                "Associative node 'ops::plus' must have exactly one output "
                                                "port.")}));
}

TEST_F(DmReadOperatorsTest, WrongMetadataAndJobPortFormsAreWarned) {
    ASSERT_EQ(load(operators(simple("math::add", R"(, "metadata": "x", "jobPorts": "y")"))),
              DmStatus::kSuccess);
    EXPECT_EQ(
        printed(),
        (std::vector<std::string>{
            warning("Incorrect metadata format.", "The external operator 'math::add' has an incorrect "
                                                  "metadata format."),
            warning("Incorrect job port format.", "The external operator 'math::add' has an incorrect job "
                                                  "port format.")}));
    EXPECT_TRUE(cppOperator("math::add"));
}

TEST_F(DmReadOperatorsTest, InstanceNamePortIsNoLongerSupported) {
    ASSERT_EQ(load(operators(simple("a", R"(, "instanceNamePort": "name")") + ", " +
                             simple("b", R"(, "instanceNamePort": "")"))),
              DmStatus::kSuccess);
    EXPECT_EQ(printed(), (std::vector<std::string>{warning(
                             "InstanceNamePort no longer supported",
                             "InstanceNamePort no longer supported, please recompile your external operators "
                             "without it. You may want to use RuntimeServices job port instead.")}));
    EXPECT_TRUE(cppOperator("a"));
}

TEST_F(DmReadOperatorsTest, JobPortsNeedANameAndAConcreteType) {
    std::string const jobs = R"(, "jobPorts": [{"portType": "int"}, {"portName": "none"},)"
                             R"( {"portName": "auto", "portType": "auto"},)"
                             R"( {"portName": "autos", "portType": "array<auto>"},)"
                             R"( {"portName": "missing", "portType": "geo::Missing"},)"
                             R"( {"portName": "ints", "portType": "array<int>"}])";
    ASSERT_EQ(load(operators(simple("math::add", jobs))), DmStatus::kSuccess);
    EXPECT_EQ(
        printed(),
        (std::vector<std::string>{
            warning("Missing job port name.", "Job port needs to have at least a name."),
            warning("Missing job port type.", "Job port 'none' must have a concrete type."),
            warning("Missing job port type.", "Job port 'auto' must have a concrete type."),
            warning(
                "Illegal array of auto type.",
                "The job port 'autos' has illegal type 'array<auto>'. Job ports must have concrete types."),
            warning("Undefined job port type.",
                    "The job port 'missing' has undefined type 'geo::Missing'.")}));
    auto const& jobPorts = cppOperator("math::add")->getJobPorts();
    ASSERT_EQ(jobPorts.size(), 2u);
    EXPECT_EQ(jobPorts[0]->getName(), "missing");
    EXPECT_EQ(jobPorts[0]->getType()->getTypeKind(), kTypeUndefined);
    EXPECT_FALSE(jobPorts[0]->isComplete());
    EXPECT_EQ(jobPorts[1]->getName(), "ints");
    EXPECT_EQ(jobPorts[1]->getType(), library().getArrayType(DmLibrary::getIntType()));
}

TEST_F(DmReadOperatorsTest, OperatorsAreReadAfterTheTypesTheirPortsName) {
    // Operators come before types in the text; types are made in the first pass.
    std::string const text =
        operators(op("geo::len", R"(, "ports": [)" + opPort("p", "input", "geo::Point") + "]")) +
        R"(, "types": [{"structName": "geo::Point", "structMembers": )"
        R"([{"memberName": "x", "memberType": "float"}]}])";
    ASSERT_EQ(load(text), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_EQ(cppOperator("geo::len")->getPortsInterface()["p"]->getType(), type("geo::Point"));
}
