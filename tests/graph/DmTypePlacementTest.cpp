// How types sit in namespaces: DmBaseType::setNamespace and the full names
// that follow from it.
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmUnknownStructType.h>

#include "GraphTestSupport.h"
#include "library/LibraryTestSupport.h"
#include "types/DmExternTypeFactory.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace Kesto;
using KestoTest::fullName;
using KestoTest::makeLibrary;
using KestoTest::makeLogger;
using KestoTest::makeNamespace;
using KestoTest::makeStruct;

// ---------------------------------------------------------------------------
// Full names

TEST(DmTypePlacement, TypeInANamespaceHasTheNamespaceInItsFullName) {
    auto const library = makeLibrary();
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(library->getGlobalNamespace()->fetchNamespace("ns").get(), kFailOnClash),
              DmStatus::kSuccess);
    EXPECT_EQ(type->getName(), "T");
    EXPECT_EQ(fullName(*type), "ns::T");
    EXPECT_EQ(type->getMapEntryKey(), "ns::T");
}

TEST(DmTypePlacement, TypeDeepInNamespacesHasTheWholePath) {
    auto const library = makeLibrary();
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(library->getGlobalNamespace()->fetchNamespace("a::b").get(), kFailOnClash),
              DmStatus::kSuccess);
    EXPECT_EQ(fullName(*type), "a::b::T");
}

TEST(DmTypePlacement, TypeInTheGlobalNamespaceHasNoPrefix) {
    auto const library = makeLibrary();
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(library->getGlobalNamespace().get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(type->getNamespace(), library->getGlobalNamespace().get());
    EXPECT_EQ(fullName(*type), "T");
}

TEST(DmTypePlacement, TypeWithoutANamespaceHasNoPrefix) {
    EXPECT_EQ(fullName(*makeStruct("T")), "T");
}

TEST(DmTypePlacement, BuiltInTypesHaveNoPrefix) {
    EXPECT_EQ(fullName(*DmLibrary::getIntType()), "int");
    EXPECT_EQ(fullName(*DmLibrary::getArrayOfAnyType()), "array<any>");
    EXPECT_EQ(fullName(*DmLibrary::getUndefinedType()), "__undefined__");
}

TEST(DmTypePlacement, FullNameAppendsToWhatIsThere) {
    auto const library = makeLibrary();
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(library->getGlobalNamespace()->fetchNamespace("ns").get(), kFailOnClash),
              DmStatus::kSuccess);
    std::string out = "type ";
    type->resolveFullName(out);
    EXPECT_EQ(out, "type ns::T");
}

TEST(DmTypePlacement, ArrayOfANamespacedStructIsNamedAfterTheFullName) {
    auto const library = makeLibrary();
    auto const element = makeStruct("T");
    ASSERT_EQ(element->setNamespace(library->getGlobalNamespace()->fetchNamespace("ns").get(), kFailOnClash),
              DmStatus::kSuccess);
    auto const array = std::make_shared<DmArrayType>(element);
    EXPECT_EQ(array->getNamespace(), nullptr);
    EXPECT_EQ(array->getName(), "array<ns::T>");
    // Having no namespace of its own, the array adds no prefix.
    EXPECT_EQ(fullName(*array), "array<ns::T>");
}

TEST(DmTypePlacement, LibraryArrayOfANamespacedStructHasNoPrefixOfItsOwn) {
    auto const library = makeLibrary();
    auto const element = makeStruct("T");
    ASSERT_EQ(element->setNamespace(library->getGlobalNamespace()->fetchNamespace("ns").get(), kFailOnClash),
              DmStatus::kSuccess);
    auto const array = library->getArrayType(element);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(array->getNamespace(), library->getGlobalNamespace().get());
    EXPECT_EQ(fullName(*array), "array<ns::T>");
}

TEST(DmTypePlacement, TypeInAnOrphanNamespaceKeepsItsNameAndReports) {
    auto const logger = makeLogger();
    auto const ns = makeNamespace("ns", logger);
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(fullName(*type), "ns::T");
    ASSERT_EQ(logger->getMessageCount(), 1u);
    EXPECT_EQ(logger->begin()->getTitle(), "missing parent scope");
    EXPECT_EQ(logger->begin()->getDescription(), "the scope ns does not have a parent");
}

// ---------------------------------------------------------------------------
// setNamespace

TEST(DmTypePlacement, SetNamespacePlacesAndFilesTheType) {
    auto const ns = makeNamespace("ns");
    auto const type = makeStruct("T");
    EXPECT_EQ(type->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(type->getNamespace(), ns.get());
    EXPECT_EQ(ns->getTypes().at("T"), type);
}

TEST(DmTypePlacement, SetNamespaceWithMakeUniqueIsAnInvalidArgument) {
    auto const ns = makeNamespace("ns");
    auto const type = makeStruct("T");
    EXPECT_EQ(type->setNamespace(ns.get(), kMakeUnique), DmStatus::kInvalidArgument);
    EXPECT_EQ(type->getNamespace(), nullptr);
    EXPECT_TRUE(ns->getTypes().empty());
}

TEST(DmTypePlacement, SetNamespaceAsOverloadIsAnInvalidArgument) {
    auto const ns = makeNamespace("ns");
    auto const type = makeStruct("T");
    EXPECT_EQ(type->setNamespace(ns.get(), kAsOverload), DmStatus::kInvalidArgument);
    EXPECT_EQ(type->setNamespace(nullptr, kAsOverload), DmStatus::kInvalidArgument);
}

TEST(DmTypePlacement, SetNamespaceToTheSameNamespaceSucceeds) {
    auto const ns = makeNamespace("ns");
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(type->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(ns->getTypes().size(), 1u);
}

TEST(DmTypePlacement, SetNamespaceMovesBetweenNamespaces) {
    auto const first = makeNamespace("first");
    auto const second = makeNamespace("second");
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(first.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(type->setNamespace(second.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(type->getNamespace(), second.get());
    EXPECT_TRUE(first->getTypes().empty());
    EXPECT_EQ(second->getTypes().at("T"), type);
}

TEST(DmTypePlacement, SetNamespaceToNullTakesTheTypeOut) {
    auto const ns = makeNamespace("ns");
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(type->setNamespace(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(type->getNamespace(), nullptr);
    EXPECT_TRUE(ns->getTypes().empty());
}

TEST(DmTypePlacement, SetNamespaceToNullWithoutANamespaceSucceeds) {
    auto const type = makeStruct("T");
    EXPECT_EQ(type->setNamespace(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(type->getNamespace(), nullptr);
}

TEST(DmTypePlacement, FailedRegistrationLeavesTheTypeInNoNamespaceButPointingAtTheOld) {
    auto const first = makeNamespace("first");
    auto const second = makeNamespace("second");
    auto const type = makeStruct("T", "x");
    auto const holder = makeStruct("T", "y");
    ASSERT_EQ(type->setNamespace(first.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(holder->setNamespace(second.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(type->setNamespace(second.get(), kFailOnClash), DmStatus::kFailure);
    EXPECT_EQ(type->getNamespace(), first.get());
    EXPECT_TRUE(first->getTypes().empty());
    EXPECT_EQ(second->getTypes().at("T"), holder);
}

TEST(DmTypePlacement, EquivalentNewcomerIsPlacedWhileTheFirstStaysFiled) {
    auto const ns = makeNamespace("ns");
    auto const first = makeStruct("T");
    auto const second = makeStruct("T");
    ASSERT_EQ(first->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->getNamespace(), ns.get());
    EXPECT_EQ(ns->getTypes().at("T"), first);
}

TEST(DmTypePlacement, TakingAnEquivalentNewcomerOutKeepsTheFirstFiled) {
    auto const ns = makeNamespace("ns");
    auto const first = makeStruct("T");
    auto const second = makeStruct("T");
    ASSERT_EQ(first->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(second->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setNamespace(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->getNamespace(), nullptr);
    EXPECT_EQ(ns->getTypes().at("T"), first);
}

TEST(DmTypePlacement, ConstTypeWithoutANamespaceIsPlacedOnce) {
    auto const first = makeNamespace("first");
    auto const second = makeNamespace("second");
    auto const type = makeStruct("T");
    type->makeConst();
    EXPECT_EQ(type->setNamespace(first.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(type->getNamespace(), first.get());
    EXPECT_EQ(type->setNamespace(second.get(), kFailOnClash), DmStatus::kConstEntity);
    EXPECT_EQ(type->getNamespace(), first.get());
    EXPECT_TRUE(second->getTypes().empty());
}

TEST(DmTypePlacement, ConstTypeInANamespaceCannotBeTakenOut) {
    auto const ns = makeNamespace("ns");
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    type->makeConst();
    EXPECT_EQ(type->setNamespace(nullptr, kFailOnClash), DmStatus::kConstEntity);
    EXPECT_EQ(ns->getTypes().at("T"), type);
}

TEST(DmTypePlacement, ResolutionTypeIsTestedBeforeConstness) {
    auto const ns = makeNamespace("ns");
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    type->makeConst();
    EXPECT_EQ(type->setNamespace(nullptr, kMakeUnique), DmStatus::kInvalidArgument);
}

TEST(DmTypePlacement, TypeSingletonsCannotBeTakenElsewhere) {
    auto const ns = makeNamespace("ns");
    EXPECT_EQ(DmLibrary::getIntType()->setNamespace(ns.get(), kFailOnClash), DmStatus::kConstEntity);
    EXPECT_EQ(DmLibrary::getUndefinedType()->setNamespace(ns.get(), kFailOnClash), DmStatus::kConstEntity);
    EXPECT_EQ(DmLibrary::getIntType()->getNamespace(), DmLibrary::getBuiltInNamespace().get());
    EXPECT_TRUE(ns->getTypes().empty());
}

TEST(DmTypePlacement, TypeThatNothingOwnsCannotBePlaced) {
    auto const ns = makeNamespace("ns");
    DmStructType type(Internal::ExternTypeFactory::tag(), "T");
    EXPECT_EQ(type.setNamespace(ns.get(), kFailOnClash), DmStatus::kInvalidArgument);
    EXPECT_EQ(type.getNamespace(), nullptr);
    EXPECT_TRUE(ns->getTypes().empty());
}

TEST(DmTypePlacement, UnknownStructTakesItsMemberTypesAlong) {
    auto const ns = makeNamespace("ns");
    auto const member = makeStruct("M");
    auto const type = Internal::ExternTypeFactory::make<DmUnknownStructType>("U");
    ASSERT_NE(type->addMember("m", member), nullptr);
    EXPECT_EQ(type->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(member->getNamespace(), ns.get());
    EXPECT_EQ(ns->getTypes().at("U"), type);
    EXPECT_EQ(ns->getTypes().at("M"), member);
}
