// The library's three roots and the type singletons in them.
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include "graph/GraphTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::keysOf;
using KestoTest::makeLibrary;
using KestoTest::makeNamespace;

namespace {

using Names = std::vector<std::string>;

} // namespace

// ---------------------------------------------------------------------------
// The global namespace

TEST(DmLibraryNamespaces, GlobalNamespaceIsNamedAndIsTheGlobalRoot) {
    auto const library = makeLibrary();
    auto const& global = library->getGlobalNamespace();
    ASSERT_NE(global, nullptr);
    EXPECT_EQ(global->getName(), "_KestoGlobalNamespace");
    EXPECT_TRUE(global->isGlobalNamespace());
    EXPECT_FALSE(global->isBuiltInNamespace());
    EXPECT_FALSE(global->isReservedNamespace());
    EXPECT_EQ(global->getParentScope(), nullptr);
    EXPECT_FALSE(global->isConst());
}

TEST(DmLibraryNamespaces, GlobalNamespaceReportsToTheLibrarysLogger) {
    auto const library = makeLibrary();
    EXPECT_EQ(library->getGlobalNamespace()->getLogger(), library->getErrorLogger());
}

TEST(DmLibraryNamespaces, NamespacesMadeInTheGlobalNamespaceReportToTheLibrarysLogger) {
    auto const library = makeLibrary();
    auto const ns = library->getGlobalNamespace()->fetchNamespace("a::b");
    EXPECT_EQ(ns->getLogger(), library->getErrorLogger());
}

TEST(DmLibraryNamespaces, GlobalNamespaceIsOwnedBySharedReference) {
    auto const library = makeLibrary();
    auto const& global = library->getGlobalNamespace();
    EXPECT_EQ(global->fetchNamespace(""), global);
}

TEST(DmLibraryNamespaces, EachLibraryHasItsOwnGlobalNamespace) {
    auto const first = makeLibrary();
    auto const second = makeLibrary();
    EXPECT_NE(first->getGlobalNamespace(), second->getGlobalNamespace());
}

TEST(DmLibraryNamespaces, NewGlobalNamespaceHoldsOnlyTheBuiltInNamespace) {
    auto const library = makeLibrary();
    EXPECT_TRUE(library->getGlobalNamespace()->getTypes().empty());
    EXPECT_EQ(KestoTest::keysOf(library->getGlobalNamespace()->getNestedNamespaces()),
              std::vector<std::string>{"Core"});
}

// ---------------------------------------------------------------------------
// The built-in namespace

TEST(DmLibraryNamespaces, BuiltInNamespaceIsNamedAndIsTheBuiltInRoot) {
    auto const& ns = DmLibrary::getBuiltInNamespace();
    ASSERT_NE(ns, nullptr);
    EXPECT_EQ(ns->getName(), "_KestoBuiltInNamespace");
    EXPECT_TRUE(ns->isBuiltInNamespace());
    EXPECT_FALSE(ns->isGlobalNamespace());
    EXPECT_FALSE(ns->isReservedNamespace());
    EXPECT_EQ(ns->getParentScope(), nullptr);
}

TEST(DmLibraryNamespaces, BuiltInNamespaceIsOneForTheProcess) {
    auto const first = makeLibrary();
    auto const second = makeLibrary();
    EXPECT_EQ(DmLibrary::getBuiltInNamespace(), DmLibrary::getBuiltInNamespace());
    EXPECT_EQ(&DmLibrary::getBuiltInNamespace(), &DmLibrary::getBuiltInNamespace());
}

TEST(DmLibraryNamespaces, BuiltInNamespaceHoldsTheBuiltInTypesInOrder) {
    EXPECT_EQ(keysOf(DmLibrary::getBuiltInNamespace()->getTypes()),
              (Names{"auto", "bool", "char", "uchar", "short", "ushort", "int", "uint", "long", "ulong",
                     "float", "double", "any", "array<any>", "string"}));
}

TEST(DmLibraryNamespaces, BuiltInNamespaceHoldsTheSingletons) {
    auto const& types = DmLibrary::getBuiltInNamespace()->getTypes();
    EXPECT_EQ(types.at("auto"), DmLibrary::getAutoType());
    EXPECT_EQ(types.at("bool"), DmLibrary::getBoolType());
    EXPECT_EQ(types.at("char"), DmLibrary::getCharType());
    EXPECT_EQ(types.at("uchar"), DmLibrary::getUCharType());
    EXPECT_EQ(types.at("short"), DmLibrary::getShortType());
    EXPECT_EQ(types.at("ushort"), DmLibrary::getUShortType());
    EXPECT_EQ(types.at("int"), DmLibrary::getIntType());
    EXPECT_EQ(types.at("uint"), DmLibrary::getUIntType());
    EXPECT_EQ(types.at("long"), DmLibrary::getLongType());
    EXPECT_EQ(types.at("ulong"), DmLibrary::getULongType());
    EXPECT_EQ(types.at("float"), DmLibrary::getFloatType());
    EXPECT_EQ(types.at("double"), DmLibrary::getDoubleType());
    EXPECT_EQ(types.at("any"), DmLibrary::getAnyType());
    EXPECT_EQ(types.at("array<any>"), DmLibrary::getArrayOfAnyType());
    EXPECT_EQ(types.at("string"), DmLibrary::getStringType());
}

TEST(DmLibraryNamespaces, BuiltInSingletonsSitInTheBuiltInNamespace) {
    DmNamespace const* const ns = DmLibrary::getBuiltInNamespace().get();
    for (auto const& entry : DmLibrary::getBuiltInNamespace()->getTypes()) {
        EXPECT_EQ(entry.second->getNamespace(), ns) << entry.first;
        EXPECT_TRUE(entry.second->isConst()) << entry.first;
    }
}

TEST(DmLibraryNamespaces, TypeSingletonIsInItsNamespaceWhenFirstHandedOut) {
    // Whatever the order of first calls, a singleton is never seen unplaced.
    EXPECT_EQ(DmLibrary::getStringType()->getNamespace(), DmLibrary::getBuiltInNamespace().get());
    EXPECT_EQ(DmLibrary::getTypeRegistryType()->getNamespace(), DmLibrary::getReservedNamespace().get());
}

TEST(DmLibraryNamespaces, BuiltInNamespaceIsConst) {
    EXPECT_TRUE(DmLibrary::getBuiltInNamespace()->isConst());
    auto const ns = makeNamespace("anywhere");
    auto const builtIn = std::const_pointer_cast<DmNamespace>(DmLibrary::getBuiltInNamespace());
    EXPECT_EQ(builtIn->setScope(ns.get(), kFailOnClash), DmStatus::kConstEntity);
    EXPECT_EQ(builtIn->getParentScope(), nullptr);
}

TEST(DmLibraryNamespaces, BuiltInNamespaceHasNoNestedNamespaces) {
    EXPECT_TRUE(DmLibrary::getBuiltInNamespace()->getNestedNamespaces().empty());
}

// ---------------------------------------------------------------------------
// The reserved namespace

TEST(DmLibraryNamespaces, ReservedNamespaceIsNamedAndIsTheReservedRoot) {
    auto const& ns = DmLibrary::getReservedNamespace();
    ASSERT_NE(ns, nullptr);
    EXPECT_EQ(ns->getName(), "_KestoReservedNamespace");
    EXPECT_TRUE(ns->isReservedNamespace());
    EXPECT_FALSE(ns->isGlobalNamespace());
    EXPECT_FALSE(ns->isBuiltInNamespace());
    EXPECT_TRUE(ns->isConst());
}

TEST(DmLibraryNamespaces, ReservedNamespaceIsOneForTheProcess) {
    EXPECT_EQ(&DmLibrary::getReservedNamespace(), &DmLibrary::getReservedNamespace());
    EXPECT_NE(DmLibrary::getReservedNamespace(), DmLibrary::getBuiltInNamespace());
}

TEST(DmLibraryNamespaces, ReservedNamespaceHoldsTheReservedTypesInOrder) {
    EXPECT_EQ(keysOf(DmLibrary::getReservedNamespace()->getTypes()),
              (Names{"__RuntimeServices__", "__TypeRegistry__", "__undefined__"}));
}

TEST(DmLibraryNamespaces, ReservedNamespaceHoldsTheSingletons) {
    auto const& types = DmLibrary::getReservedNamespace()->getTypes();
    EXPECT_EQ(types.at("__RuntimeServices__"), DmLibrary::getRuntimeServicesType());
    EXPECT_EQ(types.at("__TypeRegistry__"), DmLibrary::getTypeRegistryType());
    EXPECT_EQ(types.at("__undefined__"), DmLibrary::getUndefinedType());
    for (auto const& entry : types) {
        EXPECT_EQ(entry.second->getNamespace(), DmLibrary::getReservedNamespace().get()) << entry.first;
        EXPECT_TRUE(entry.second->isConst()) << entry.first;
    }
}

TEST(DmLibraryNamespaces, SpecialTypesAreConstClassTypes) {
    EXPECT_EQ(DmLibrary::getRuntimeServicesType()->getName(), "__RuntimeServices__");
    EXPECT_EQ(DmLibrary::getRuntimeServicesType()->getTypeKind(), kTypeClass);
    EXPECT_EQ(DmLibrary::getTypeRegistryType()->getName(), "__TypeRegistry__");
    EXPECT_EQ(DmLibrary::getTypeRegistryType()->getTypeKind(), kTypeClass);
    EXPECT_NE(DmLibrary::getRuntimeServicesType(), DmLibrary::getTypeRegistryType());
}

TEST(DmLibraryNamespaces, NewLibraryLeavesTheReservedTypesInPlace) {
    auto const library = makeLibrary();
    EXPECT_EQ(DmLibrary::getReservedNamespace()->getTypes().size(), 3u);
    EXPECT_EQ(DmLibrary::getUndefinedType()->getNamespace(), DmLibrary::getReservedNamespace().get());
}

// ---------------------------------------------------------------------------
// The global namespace's getType

TEST(DmLibraryNamespaces, GlobalGetTypeFindsBuiltInsFirst) {
    auto const library = makeLibrary();
    auto const impostor = KestoTest::makeStruct("int");
    ASSERT_EQ(impostor->setNamespace(library->getGlobalNamespace().get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(library->getGlobalNamespace()->getType("int", out));
    EXPECT_EQ(out, DmLibrary::getIntType());
}

TEST(DmLibraryNamespaces, GlobalGetTypeMakesArrayTypesOnDemand) {
    auto const library = makeLibrary();
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(library->getGlobalNamespace()->getType("array<int>", out));
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->getTypeKind(), kTypeArray);
    EXPECT_EQ(out->getName(), "array<int>");
    EXPECT_EQ(library->getGlobalNamespace()->getTypes().at("array<int>"), out);
}

TEST(DmLibraryNamespaces, GlobalFindTypeMakesArrayTypesOnDemandToo) {
    auto const library = makeLibrary();
    std::shared_ptr<DmBaseType const> constOut;
    EXPECT_TRUE(library->getGlobalNamespace()->findType("array<float>", constOut));
    std::shared_ptr<DmBaseType> out;
    EXPECT_TRUE(library->getGlobalNamespace()->findType("array<float>", out));
    EXPECT_EQ(out, constOut);
    EXPECT_EQ(library->getGlobalNamespace()->getTypes().size(), 1u);
}

TEST(DmLibraryNamespaces, GlobalGetTypeIgnoresWhiteSpaceInArrayNames) {
    auto const library = makeLibrary();
    std::shared_ptr<DmBaseType const> spaced;
    std::shared_ptr<DmBaseType const> compact;
    EXPECT_TRUE(library->getGlobalNamespace()->getType(" array < array<\tint >\n>\r", spaced));
    EXPECT_TRUE(library->getGlobalNamespace()->getType("array<array<int>>", compact));
    EXPECT_EQ(spaced, compact);
    ASSERT_NE(compact, nullptr);
    EXPECT_EQ(compact->getName(), "array<array<int>>");
}

TEST(DmLibraryNamespaces, GlobalGetTypeMakesNestedArraysFromTheInsideOut) {
    auto const library = makeLibrary();
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(library->getGlobalNamespace()->getType("array<array<long>>", out));
    EXPECT_EQ(keysOf(library->getGlobalNamespace()->getTypes()),
              (Names{"array<long>", "array<array<long>>"}));
}

TEST(DmLibraryNamespaces, GlobalGetTypeOfAnArrayOfAMissingTypeMakesNothing) {
    auto const library = makeLibrary();
    std::shared_ptr<DmBaseType const> out;
    EXPECT_FALSE(library->getGlobalNamespace()->getType("array<array<missing>>", out));
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(library->getGlobalNamespace()->getTypes().empty());
}

TEST(DmLibraryNamespaces, GlobalGetTypeOfAnArrayOfAutoIsFalse) {
    auto const library = makeLibrary();
    std::shared_ptr<DmBaseType const> out;
    EXPECT_FALSE(library->getGlobalNamespace()->getType("array<auto>", out));
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(library->getGlobalNamespace()->getTypes().empty());
}

TEST(DmLibraryNamespaces, NestedNamespacesMakeNoArrays) {
    auto const library = makeLibrary();
    auto const ns = library->getGlobalNamespace()->fetchNamespace("a");
    std::shared_ptr<DmBaseType const> out;
    EXPECT_FALSE(ns->findType("array<int>", out));
    EXPECT_FALSE(library->getGlobalNamespace()->findType("a::array<int>", out));
}
