// The library's type queries: array types, retrieveType, the collections
// and collect.
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/graph/DmCollect.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include "graph/GraphTestSupport.h"
#include "library/BuiltInsTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::AcceptAll;
using KestoTest::fullName;
using KestoTest::keysOf;
using KestoTest::makeClass;
using KestoTest::makeLibrary;
using KestoTest::makeStruct;
using KestoTest::namesOf;
using KestoTest::namespaceAt;

namespace {

using Names = std::vector<std::string>;

std::shared_ptr<DmStructType> placeStruct(DmLibrary& library, std::string const& path,
                                          std::string const& name) {
    auto type = makeStruct(name);
    EXPECT_EQ(type->setNamespace(namespaceAt(library, path), kFailOnClash), DmStatus::kSuccess);
    return type;
}

Names builtInNames() {
    return {"auto", "bool",  "char",  "uchar",  "short", "ushort",     "int",   "uint",
            "long", "ulong", "float", "double", "any",   "array<any>", "string"};
}

Names concat(Names left, Names const& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

} // namespace

// ---------------------------------------------------------------------------
// isArrayType

TEST(DmLibraryTypes, IsArrayTypeGivesTheElementName) {
    std::string element;
    EXPECT_TRUE(DmLibrary::isArrayType("array<int>", element));
    EXPECT_EQ(element, "int");
}

TEST(DmLibraryTypes, IsArrayTypeGivesTheInnerArrayOfANestedArray) {
    std::string element;
    EXPECT_TRUE(DmLibrary::isArrayType("array<array<a::T>>", element));
    EXPECT_EQ(element, "array<a::T>");
}

TEST(DmLibraryTypes, IsArrayTypeOfAPlainNameIsFalseWithAnEmptyElement) {
    std::string element = "left over";
    EXPECT_FALSE(DmLibrary::isArrayType("int", element));
    EXPECT_EQ(element, "");
}

TEST(DmLibraryTypes, IsArrayTypeRefusesIncompleteForms) {
    std::string element = "left over";
    EXPECT_FALSE(DmLibrary::isArrayType("array", element));
    EXPECT_EQ(element, "");
    EXPECT_FALSE(DmLibrary::isArrayType("array<>", element));
    EXPECT_FALSE(DmLibrary::isArrayType("array<int", element));
    EXPECT_FALSE(DmLibrary::isArrayType("Array<int>", element));
    EXPECT_FALSE(DmLibrary::isArrayType("ns::array<int>", element));
    EXPECT_FALSE(DmLibrary::isArrayType("", element));
    EXPECT_EQ(element, "");
}

TEST(DmLibraryTypes, IsArrayTypeKeepsWhiteSpace) {
    std::string element;
    EXPECT_TRUE(DmLibrary::isArrayType("array< int >", element));
    EXPECT_EQ(element, " int ");
    EXPECT_FALSE(DmLibrary::isArrayType(" array<int>", element));
}

// ---------------------------------------------------------------------------
// getArrayType

TEST(DmLibraryTypes, GetArrayTypeMakesAnArrayOfTheElement) {
    auto const library = makeLibrary();
    auto const array = library->getArrayType(DmLibrary::getIntType());
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(array->getTypeKind(), kTypeArray);
    EXPECT_EQ(array->getName(), "array<int>");
    auto const typed = std::dynamic_pointer_cast<DmArrayType const>(array);
    ASSERT_NE(typed, nullptr);
    EXPECT_EQ(typed->getElementType(), DmLibrary::getIntType());
}

TEST(DmLibraryTypes, GetArrayTypeFilesTheArrayInTheGlobalNamespace) {
    auto const library = makeLibrary();
    auto const array = library->getArrayType(DmLibrary::getIntType());
    EXPECT_EQ(array->getNamespace(), library->getGlobalNamespace().get());
    EXPECT_EQ(library->getGlobalNamespace()->getTypes().at("array<int>"), array);
}

TEST(DmLibraryTypes, GetArrayTypeGivesOneArrayPerElement) {
    auto const library = makeLibrary();
    auto const first = library->getArrayType(DmLibrary::getIntType());
    auto const second = library->getArrayType(DmLibrary::getIntType());
    EXPECT_EQ(first, second);
    EXPECT_EQ(library->getGlobalNamespace()->getTypes().size(), 1u);
}

TEST(DmLibraryTypes, GetArrayTypeGivesEachLibraryItsOwnArray) {
    auto const first = makeLibrary();
    auto const second = makeLibrary();
    EXPECT_NE(first->getArrayType(DmLibrary::getIntType()), second->getArrayType(DmLibrary::getIntType()));
}

TEST(DmLibraryTypes, GetArrayTypeOfAnyIsTheBuiltInArrayOfAny) {
    auto const library = makeLibrary();
    EXPECT_EQ(library->getArrayType(DmLibrary::getAnyType()), DmLibrary::getArrayOfAnyType());
    EXPECT_TRUE(library->getGlobalNamespace()->getTypes().empty());
}

TEST(DmLibraryTypes, GetArrayTypeOfAutoIsNull) {
    auto const library = makeLibrary();
    EXPECT_EQ(library->getArrayType(DmLibrary::getAutoType()), nullptr);
    EXPECT_TRUE(library->getGlobalNamespace()->getTypes().empty());
}

TEST(DmLibraryTypes, GetArrayTypeOfNullIsNull) {
    auto const library = makeLibrary();
    EXPECT_EQ(library->getArrayType(nullptr), nullptr);
}

TEST(DmLibraryTypes, GetArrayTypeOfAnArrayNests) {
    auto const library = makeLibrary();
    auto const inner = library->getArrayType(DmLibrary::getIntType());
    auto const outer = library->getArrayType(inner);
    ASSERT_NE(outer, nullptr);
    EXPECT_EQ(outer->getName(), "array<array<int>>");
}

TEST(DmLibraryTypes, GetArrayTypeOfANamespacedStructUsesItsFullName) {
    auto const library = makeLibrary();
    auto const element = placeStruct(*library, "ns", "T");
    auto const array = library->getArrayType(element);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(array->getName(), "array<ns::T>");
    EXPECT_EQ(fullName(*array), "array<ns::T>");
    EXPECT_EQ(library->getGlobalNamespace()->getTypes().at("array<ns::T>"), array);
}

TEST(DmLibraryTypes, GetArrayTypeGivesWhatTheGlobalNamespaceFilesUnderTheArraysName) {
    auto const library = makeLibrary();
    auto const squatter = makeStruct("array<int>");
    ASSERT_EQ(squatter->setNamespace(library->getGlobalNamespace().get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(library->getArrayType(DmLibrary::getIntType()), squatter);
}

TEST(DmLibraryTypes, GetArrayTypeOfUndefinedAndStringWorks) {
    auto const library = makeLibrary();
    ASSERT_NE(library->getArrayType(DmLibrary::getUndefinedType()), nullptr);
    EXPECT_EQ(library->getArrayType(DmLibrary::getUndefinedType())->getName(), "array<__undefined__>");
    EXPECT_EQ(library->getArrayType(DmLibrary::getStringType())->getName(), "array<string>");
}

// ---------------------------------------------------------------------------
// retrieveType

TEST(DmLibraryTypes, RetrieveTypeFindsABuiltIn) {
    auto const library = makeLibrary();
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(library->retrieveType("double", out));
    EXPECT_EQ(out, DmLibrary::getDoubleType());
}

TEST(DmLibraryTypes, RetrieveTypeFindsANamespacedType) {
    auto const library = makeLibrary();
    auto const type = placeStruct(*library, "a::b", "T");
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(library->retrieveType("a::b::T", out));
    EXPECT_EQ(out, type);
    EXPECT_TRUE(library->retrieveType("::a::b::T", out));
    EXPECT_EQ(out, type);
}

TEST(DmLibraryTypes, RetrieveTypeMakesNestedArraysOfANamespacedType) {
    auto const library = makeLibrary();
    auto const type = placeStruct(*library, "a", "T");
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(library->retrieveType("array<array<a::T>>", out));
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->getName(), "array<array<a::T>>");
    auto const& types = library->getGlobalNamespace()->getTypes();
    EXPECT_EQ(keysOf(types), (Names{"array<a::T>", "array<array<a::T>>"}));
    std::shared_ptr<DmBaseType const> again;
    EXPECT_TRUE(library->retrieveType("array<array<a::T>>", again));
    EXPECT_EQ(again, out);
}

TEST(DmLibraryTypes, RetrieveTypeFindsAReservedType) {
    auto const library = makeLibrary();
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(library->retrieveType("__RuntimeServices__", out));
    EXPECT_EQ(out, DmLibrary::getRuntimeServicesType());
    EXPECT_TRUE(library->retrieveType("__undefined__", out));
    EXPECT_EQ(out, DmLibrary::getUndefinedType());
}

TEST(DmLibraryTypes, RetrieveTypeFindsABuiltInBeforeAUserTypeOfTheSameName) {
    auto const library = makeLibrary();
    auto const impostor = makeStruct("int");
    ASSERT_EQ(impostor->setNamespace(library->getGlobalNamespace().get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(library->retrieveType("int", out));
    EXPECT_EQ(out, DmLibrary::getIntType());
}

TEST(DmLibraryTypes, RetrieveTypeFindsAUserTypeBeforeAReservedOneOfTheSameName) {
    auto const library = makeLibrary();
    auto const mine = makeClass("__TypeRegistry__");
    ASSERT_EQ(mine->setNamespace(library->getGlobalNamespace().get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(library->retrieveType("__TypeRegistry__", out));
    EXPECT_EQ(out, mine);
}

TEST(DmLibraryTypes, RetrieveTypeMissIsFalseAndLeavesTheOutput) {
    auto const library = makeLibrary();
    std::shared_ptr<DmBaseType const> out = DmLibrary::getBoolType();
    EXPECT_FALSE(library->retrieveType("no::such::Type", out));
    EXPECT_EQ(out, DmLibrary::getBoolType());
}

TEST(DmLibraryTypes, RetrieveTypeOfAnArrayOfAMissingTypeIsFalse) {
    auto const library = makeLibrary();
    std::shared_ptr<DmBaseType const> out;
    EXPECT_FALSE(library->retrieveType("array<Missing>", out));
    EXPECT_TRUE(library->getGlobalNamespace()->getTypes().empty());
}

// ---------------------------------------------------------------------------
// getTypes and getConstTypes

TEST(DmLibraryTypes, GetTypesOfANewLibraryHoldsTheBuiltInsOnly) {
    auto const library = makeLibrary();
    EXPECT_EQ(keysOf(library->getTypes(false)), builtInNames());
}

TEST(DmLibraryTypes, GetTypesWithoutReservedHoldsNoRuntimeServices) {
    auto const library = makeLibrary();
    EXPECT_FALSE(library->getTypes(false).contains("__RuntimeServices__"));
    EXPECT_FALSE(library->getConstTypes(false).contains("__RuntimeServices__"));
}

TEST(DmLibraryTypes, GetTypesWithReservedEndsWithTheReservedTypes) {
    auto const library = makeLibrary();
    EXPECT_EQ(keysOf(library->getTypes(true)),
              concat(builtInNames(), {"__RuntimeServices__", "__TypeRegistry__", "__undefined__"}));
}

TEST(DmLibraryTypes, GetTypesPutsUserTypesBetweenBuiltInsAndReserved) {
    auto const library = makeLibrary();
    auto const top = makeStruct("Top");
    ASSERT_EQ(top->setNamespace(library->getGlobalNamespace().get(), kFailOnClash), DmStatus::kSuccess);
    placeStruct(*library, "a", "T");
    placeStruct(*library, "a::b", "U");
    placeStruct(*library, "c", "V");
    placeStruct(*library, "a", "W");
    auto const types = library->getTypes(true);
    EXPECT_EQ(keysOf(types), concat(concat(builtInNames(), {"Top", "a::T", "a::W", "a::b::U", "c::V"}),
                                    {"__RuntimeServices__", "__TypeRegistry__", "__undefined__"}));
    EXPECT_EQ(types.at("Top"), top);
}

TEST(DmLibraryTypes, GetTypesKeepsTheBuiltInOfAFullNameMetTwice) {
    auto const library = makeLibrary();
    auto const impostor = makeStruct("int");
    ASSERT_EQ(impostor->setNamespace(library->getGlobalNamespace().get(), kFailOnClash), DmStatus::kSuccess);
    auto const types = library->getTypes(false);
    EXPECT_EQ(types.size(), builtInNames().size());
    EXPECT_EQ(types.at("int"), DmLibrary::getIntType());
}

TEST(DmLibraryTypes, GetConstTypesHoldsTheSameAsGetTypes) {
    auto const library = makeLibrary();
    placeStruct(*library, "a", "T");
    library->getArrayType(DmLibrary::getIntType());
    auto const types = library->getTypes(true);
    auto const constTypes = library->getConstTypes(true);
    EXPECT_EQ(keysOf(types), keysOf(constTypes));
    for (auto const& entry : types) {
        EXPECT_EQ(constTypes.at(entry.first), entry.second) << entry.first;
    }
}

TEST(DmLibraryTypes, GetTypesIsANewMapEachTime) {
    auto const library = makeLibrary();
    auto types = library->getTypes(false);
    types.erase("int");
    EXPECT_TRUE(library->getTypes(false).contains("int"));
}

// ---------------------------------------------------------------------------
// The other collections

TEST(DmLibraryTypes, ANewLibraryListsNoUserEntities) {
    auto const library = makeLibrary();
    library->getGlobalNamespace()->fetchNamespace("a::b");
    EXPECT_TRUE(KestoTest::withoutBuiltIns(keysOf(library->getNodeDefs())).empty());
    EXPECT_TRUE(library->getCompounds().empty());
    EXPECT_TRUE(library->getGlobalVariables().empty());
    EXPECT_TRUE(library->getConstGlobalVariables().empty());
}

TEST(DmLibraryTypes, GetConstNamespacesOfANewLibraryHoldsTheBuiltInNamespaces) {
    auto const library = makeLibrary();
    EXPECT_EQ(keysOf(library->getConstNamespaces()), KestoTest::builtInNamespaceNames());
}

TEST(DmLibraryTypes, GetConstNamespacesHoldsTheNamespacesByFullPathDepthFirst) {
    auto const library = makeLibrary();
    auto const& global = library->getGlobalNamespace();
    auto const b = global->fetchNamespace("a::b");
    global->fetchNamespace("c");
    global->fetchNamespace("a::d");
    auto const namespaces = library->getConstNamespaces();
    EXPECT_EQ(KestoTest::withoutBuiltIns(keysOf(namespaces)), (Names{"a", "a::b", "a::d", "c"}));
    EXPECT_EQ(namespaces.at("a::b"), b);
    EXPECT_EQ(namespaces.at("a"), global->getNestedNamespaces().at("a"));
}

TEST(DmLibraryTypes, GetConstNamespacesReportsNothing) {
    auto const library = makeLibrary();
    library->getGlobalNamespace()->fetchNamespace("a::b");
    library->getConstNamespaces();
    EXPECT_EQ(library->getErrorLogger()->getMessageCount(), 0u);
}

// ---------------------------------------------------------------------------
// collect

TEST(DmLibraryTypes, CollectWalksTheGlobalNamespace) {
    auto const library = makeLibrary();
    auto const top = makeStruct("Top");
    ASSERT_EQ(top->setNamespace(library->getGlobalNamespace().get(), kFailOnClash), DmStatus::kSuccess);
    placeStruct(*library, "a", "T");
    library->getArrayType(DmLibrary::getIntType());
    DmCollectList list;
    library->collect(list, AcceptAll(), kCollectTypes, kCollectNested);
    EXPECT_EQ(namesOf(list), (Names{"Top", "T"}));
}

TEST(DmLibraryTypes, CollectPassesTheFlagsOn) {
    auto const library = makeLibrary();
    auto const top = makeStruct("Top");
    ASSERT_EQ(top->setNamespace(library->getGlobalNamespace().get(), kFailOnClash), DmStatus::kSuccess);
    placeStruct(*library, "a", "T");
    DmCollectList list;
    library->collect(list, AcceptAll(), kCollectTypes, DmCollectFlags{});
    EXPECT_EQ(namesOf(list), (Names{"Top"}));
}

TEST(DmLibraryTypes, CollectLeavesTheBuiltInAndReservedNamespacesAlone) {
    auto const library = makeLibrary();
    DmCollectList list;
    library->collect(list, AcceptAll(), kCollectTypes | kCollectCompounds | kCollectExternOperators,
                     kCollectNested);
    EXPECT_TRUE(list.empty());
}

// ---------------------------------------------------------------------------
// Resource directories

TEST(DmLibraryTypes, ResourceFilePathsKeepOrderAndDuplicates) {
    auto const library = makeLibrary();
    EXPECT_TRUE(library->getResourceFilePaths().empty());
    EXPECT_EQ(library->addResourceFilePath("/b"), DmStatus::kSuccess);
    EXPECT_EQ(library->addResourceFilePath("/a"), DmStatus::kSuccess);
    EXPECT_EQ(library->addResourceFilePath("/b"), DmStatus::kSuccess);
    EXPECT_EQ(library->getResourceFilePaths(), (Names{"/b", "/a", "/b"}));
}

TEST(DmLibraryTypes, ClearResourceFilePathsEmptiesTheList) {
    auto const library = makeLibrary();
    library->addResourceFilePath("/a");
    EXPECT_EQ(library->clearResourceFilePaths(), DmStatus::kSuccess);
    EXPECT_TRUE(library->getResourceFilePaths().empty());
    EXPECT_EQ(library->clearResourceFilePaths(), DmStatus::kSuccess);
}
