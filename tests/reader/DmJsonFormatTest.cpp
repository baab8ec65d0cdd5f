// The vocabulary of graph files: section keys, spellings of enumerations,
// booleans and the normal form of names.
#include "reader/DmJsonFormat.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Kesto;
namespace JsonFormat = Kesto::Internal::JsonFormat;

// ---------------------------------------------------------------------------
// Sections

TEST(DmJsonFormat, RootSectionsInReadingOrder) {
    std::vector<std::string> keys;
    for (JsonFormat::Section const section : JsonFormat::kRootSections) {
        keys.emplace_back(JsonFormat::sectionKey(section));
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"header", "dependencies", "namespaces", "types",
                                              "globalVariables", "operators", "terminalNodes", "compounds"}));
}

TEST(DmJsonFormat, EverySectionHasItsKey) {
    std::vector<std::string> keys;
    for (int number = 0; number <= 25; ++number) {
        keys.emplace_back(JsonFormat::sectionKey(static_cast<JsonFormat::Section>(number)));
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"",
                                              "header",
                                              "dependencies",
                                              "namespaces",
                                              "types",
                                              "globalVariables",
                                              "operators",
                                              "terminalNodes",
                                              "ports",
                                              "jobPorts",
                                              "compounds",
                                              "compoundNodes",
                                              "connections",
                                              "values",
                                              "watchPoints",
                                              "reservedNodeNames",
                                              "structMembers",
                                              "enumMembers",
                                              "metadata",
                                              "methods",
                                              "whileCompound",
                                              "ports",
                                              "iterateCompound",
                                              "ports",
                                              "forEachCompound",
                                              "ports"}));
}

TEST(DmJsonFormat, VersionAndItsItem) {
    EXPECT_EQ(JsonFormat::kFormatVersion, 100);
    EXPECT_EQ(JsonFormat::kFormatVersionItem, "mvrkFileFormatVersion");
}

TEST(DmJsonFormat, ReservedSpellings) {
    EXPECT_EQ(JsonFormat::Reserved::kPortTypeKind, "portTypeKind");
    EXPECT_EQ(JsonFormat::Reserved::kNotCppPort, "NotCppPort");
    EXPECT_EQ(JsonFormat::Reserved::kNative, "native");
    EXPECT_EQ(JsonFormat::Reserved::kStruct, "struct");
    EXPECT_EQ(JsonFormat::Reserved::kClass, "class");
    EXPECT_EQ(JsonFormat::Reserved::kArray, "array");
    EXPECT_EQ(JsonFormat::Reserved::kIsFanIn, "isFanIn");
    EXPECT_EQ(JsonFormat::Reserved::kMetaKey, "metaKey");
    EXPECT_EQ(JsonFormat::Reserved::kUniqueId, "unique_id");
    EXPECT_EQ(JsonFormat::Reserved::kValueNode, "valueNode");
    EXPECT_EQ(JsonFormat::Reserved::kTerminalOutput, "_terminal_output");
    EXPECT_EQ(JsonFormat::Reserved::kData, "data");
    EXPECT_EQ(JsonFormat::Reserved::kNativeMarker, "<NATIVE>");
}

TEST(DmJsonFormat, MetadataTypesAndMethods) {
    EXPECT_EQ(JsonFormat::MetaType::kString, "string");
    EXPECT_EQ(JsonFormat::MetaType::kLong, "long");
    EXPECT_EQ(JsonFormat::MetaType::kDouble, "double");
    EXPECT_EQ(JsonFormat::MetaType::kBool, "bool");
    EXPECT_EQ(JsonFormat::kDeserializeMethod, "deserialize");
    EXPECT_EQ(JsonFormat::kSerializeMethod, "serialize");
    EXPECT_EQ(JsonFormat::kMsTypeManglePrefix, ".?A");
    EXPECT_EQ(JsonFormat::kStatePortKind, "state");
    EXPECT_EQ(JsonFormat::kInOutTargetPortKind, "inOutTarget");
}

// ---------------------------------------------------------------------------
// Booleans

TEST(DmJsonFormat, ThreeSpellingsOfTrue) {
    EXPECT_TRUE(JsonFormat::isTrueText("true"));
    EXPECT_TRUE(JsonFormat::isTrueText("TRUE"));
    EXPECT_TRUE(JsonFormat::isTrueText("True"));
    for (char const* text : {"", "false", "tRUE", "truE", " true", "true ", "1", "yes", "on", "t"}) {
        EXPECT_FALSE(JsonFormat::isTrueText(text)) << text;
    }
    EXPECT_EQ(JsonFormat::kTrue, "true");
    EXPECT_EQ(JsonFormat::kFalse, "false");
}

// ---------------------------------------------------------------------------
// Enumerations

TEST(DmJsonFormat, PortDirections) {
    EXPECT_EQ(JsonFormat::parsePortDirection("input"), kDirectionInput);
    EXPECT_EQ(JsonFormat::parsePortDirection("output"), kDirectionOutput);
    EXPECT_EQ(kDirectionInput, 1);
    EXPECT_EQ(kDirectionOutput, 2);
    for (char const* text : {"", "Input", "OUTPUT", "in", "inout"}) {
        EXPECT_FALSE(JsonFormat::parsePortDirection(text).has_value()) << text;
    }
    EXPECT_EQ(JsonFormat::portDirectionText(kDirectionInput), "input");
    EXPECT_EQ(JsonFormat::portDirectionText(kDirectionOutput), "output");
}

TEST(DmJsonFormat, PassingConventionsAreReadByEverySpelling) {
    EXPECT_EQ(JsonFormat::parsePassingConvention("byValue"), kPassByValue);
    EXPECT_EQ(JsonFormat::parsePassingConvention("byReference"), kPassByReference);
    EXPECT_EQ(JsonFormat::parsePassingConvention("byPtrConstValue"), kPassByPtrValue);
    EXPECT_EQ(JsonFormat::parsePassingConvention("byPtrValue"), kPassByPtrValue);
    EXPECT_EQ(JsonFormat::parsePassingConvention("byReferenceToPtr"), kPassByReferenceToPtr);
    EXPECT_EQ(JsonFormat::parsePassingConvention("byReturnValue"), kPassByReturnValue);
    EXPECT_EQ(JsonFormat::parsePassingConvention("byMutablePtrValue"), kPassByMutablePtrValue);
    EXPECT_EQ(JsonFormat::parsePassingConvention("byReferenceToMutablePtr"), kPassByReferenceToMutablePtr);
    for (char const* text : {"", "ByValue", "byvalue", "byConstReference", "byPtr"}) {
        EXPECT_EQ(JsonFormat::parsePassingConvention(text), kPassInvalid) << text;
    }
}

TEST(DmJsonFormat, PassingConventionNumbers) {
    EXPECT_EQ(kPassByValue, 0);
    EXPECT_EQ(kPassByReference, 1);
    EXPECT_EQ(kPassByPtrValue, 2);
    EXPECT_EQ(kPassByReferenceToPtr, 3);
    EXPECT_EQ(kPassByReturnValue, 4);
    EXPECT_EQ(kPassByMutablePtrValue, 5);
    EXPECT_EQ(kPassByReferenceToMutablePtr, 6);
    EXPECT_EQ(kPassInvalid, 7);
}

TEST(DmJsonFormat, PassingConventionsAreWrittenWithoutTheReadOnlySynonym) {
    EXPECT_EQ(JsonFormat::passingConventionText(kPassByValue), "byValue");
    EXPECT_EQ(JsonFormat::passingConventionText(kPassByReference), "byReference");
    EXPECT_EQ(JsonFormat::passingConventionText(kPassByPtrValue), "byPtrValue");
    EXPECT_EQ(JsonFormat::passingConventionText(kPassByReferenceToPtr), "byReferenceToPtr");
    EXPECT_EQ(JsonFormat::passingConventionText(kPassByReturnValue), "byReturnValue");
    EXPECT_EQ(JsonFormat::passingConventionText(kPassByMutablePtrValue), "byMutablePtrValue");
    EXPECT_EQ(JsonFormat::passingConventionText(kPassByReferenceToMutablePtr), "byReferenceToMutablePtr");
    EXPECT_EQ(JsonFormat::passingConventionText(kPassInvalid), "");
}

TEST(DmJsonFormat, Associativities) {
    EXPECT_EQ(JsonFormat::parseAssociativity("leftToRight"), DmNodeDef::kLeftToRight);
    EXPECT_EQ(JsonFormat::parseAssociativity("rightToLeft"), DmNodeDef::kRightToLeft);
    for (char const* text : {"", "LeftToRight", "left", "none"}) {
        EXPECT_FALSE(JsonFormat::parseAssociativity(text).has_value()) << text;
    }
    EXPECT_EQ(JsonFormat::associativityText(DmNodeDef::kLeftToRight), "leftToRight");
    EXPECT_EQ(JsonFormat::associativityText(DmNodeDef::kRightToLeft), "rightToLeft");
    EXPECT_EQ(JsonFormat::associativityText(DmNodeDef::kNotAssociative), "");
}

TEST(DmJsonFormat, CancellationPolicies) {
    EXPECT_EQ(JsonFormat::parseCancellationPolicy("None"), DmExternOperator::kNone);
    EXPECT_EQ(JsonFormat::parseCancellationPolicy("Safe"), DmExternOperator::kSafe);
    EXPECT_EQ(JsonFormat::parseCancellationPolicy("Unsafe"), DmExternOperator::kUnsafe);
    for (char const* text : {"", "none", "safe", "UNSAFE"}) {
        EXPECT_FALSE(JsonFormat::parseCancellationPolicy(text).has_value()) << text;
    }
    EXPECT_EQ(JsonFormat::cancellationPolicyText(DmExternOperator::kNone), "None");
    EXPECT_EQ(JsonFormat::cancellationPolicyText(DmExternOperator::kSafe), "Safe");
    EXPECT_EQ(JsonFormat::cancellationPolicyText(DmExternOperator::kUnsafe), "Unsafe");
}

// ---------------------------------------------------------------------------
// Names

TEST(DmJsonFormat, NormalizeDropsWhiteSpaceAtBothEnds) {
    EXPECT_EQ(JsonFormat::normalizeName("  add \t\n"), "add");
    EXPECT_EQ(JsonFormat::normalizeName(""), "");
    EXPECT_EQ(JsonFormat::normalizeName(" \t "), "");
}

TEST(DmJsonFormat, NormalizeDropsInnerWhiteSpaceExceptBetweenOrdinaryCharacters) {
    EXPECT_EQ(JsonFormat::normalizeName(" Math :: add "), "Math::add");
    EXPECT_EQ(JsonFormat::normalizeName("array< int >"), "array<int>");
    EXPECT_EQ(JsonFormat::normalizeName("my type"), "my type");
    EXPECT_EQ(JsonFormat::normalizeName("my \t type"), "my \t type");
    EXPECT_EQ(JsonFormat::normalizeName("a_1 b_2"), "a_1 b_2");
    EXPECT_EQ(JsonFormat::normalizeName("Math:: my add"), "Math::my add");
    EXPECT_EQ(JsonFormat::normalizeName("array < Geo :: Point >"), "array<Geo::Point>");
    EXPECT_EQ(JsonFormat::normalizeName("a -b"), "a-b");
}

TEST(DmJsonFormat, NormalizeTypeNameReplacesTheOldSpellings) {
    EXPECT_EQ(JsonFormat::normalizeTypeName("Kesto::Object"), "Object");
    EXPECT_EQ(JsonFormat::normalizeTypeName("Kesto::FCurve"), "Math::FCurve");
    EXPECT_EQ(JsonFormat::normalizeTypeName("array<Kesto::Object>"), "array<Object>");
    EXPECT_EQ(JsonFormat::normalizeTypeName("array<Kesto::FCurve>"), "array<Math::FCurve>");
    EXPECT_EQ(JsonFormat::normalizeTypeName(" array < Kesto :: Object > "), "array<Object>");
    EXPECT_EQ(JsonFormat::normalizeTypeName("Geo::Point"), "Geo::Point");
    EXPECT_EQ(JsonFormat::normalizeTypeName("Kesto::Objects"), "Objects");
}

TEST(DmJsonFormat, NormalizeTypeNameReplacesTheFirstOccurrenceOnly) {
    EXPECT_EQ(JsonFormat::normalizeTypeName("Kesto::Object<Kesto::Object>"), "Object<Kesto::Object>");
    EXPECT_EQ(JsonFormat::normalizeTypeName("Kesto::FCurve<Kesto::FCurve>"), "Math::FCurve<Kesto::FCurve>");
    EXPECT_EQ(JsonFormat::normalizeTypeName("Kesto::Object<Kesto::FCurve>"), "Object<Math::FCurve>");
}

TEST(DmJsonFormat, NormalizeNameLeavesTheOldSpellings) {
    EXPECT_EQ(JsonFormat::normalizeName("Kesto::Object"), "Kesto::Object");
}
