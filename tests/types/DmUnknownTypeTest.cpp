// Stand-ins for types that a file names but no loaded file defines: the
// unknown type and the unknown struct.
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/UntypedTypeRep.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmExternBaseType.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmTypeKind.h>
#include <KestoDM/types/DmUnknownStructType.h>
#include <KestoDM/types/DmUnknownType.h>

#include "types/DmExternTypeFactory.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace Kesto;

namespace {

std::shared_ptr<DmUnknownType> makeUnknown(std::string const& name) {
    return Internal::ExternTypeFactory::make<DmUnknownType>(name);
}

std::shared_ptr<DmUnknownStructType> makeUnknownStruct(std::string const& name) {
    return Internal::ExternTypeFactory::make<DmUnknownStructType>(name);
}

} // namespace

// ---------------------------------------------------------------------------
// Unknown type

TEST(DmUnknownType, KindIsEighteen) {
    EXPECT_EQ(makeUnknown("Mystery")->getTypeKind(), 18);
}

TEST(DmUnknownType, KeepsTheNameTheFileGave) {
    EXPECT_EQ(makeUnknown("Mystery")->getName(), "Mystery");
}

TEST(DmUnknownType, IsNotFullyResolved) {
    EXPECT_FALSE(makeUnknown("Mystery")->isFullyResolved());
}

TEST(DmUnknownType, DatumIsSixteenBytesAlignedToEight) {
    auto const type = makeUnknown("Mystery");
    EXPECT_EQ(type->getSizeOf(), 16u);
    EXPECT_EQ(type->getAlignmentOf(), 8u);
}

TEST(DmUnknownType, UntypedTypeRepHoldsTheRawTextAsAString) {
    Internal::UntypedTypeRep const rep = makeUnknown("Mystery")->getUntypedTypeRep();
    ASSERT_TRUE(rep.isValid());
    EXPECT_EQ(rep.size(), 16u);
    EXPECT_EQ(rep.alignment(), 8u);
    EXPECT_TRUE(rep.needsDestruction());
}

TEST(DmUnknownType, HasNoRuntimeTypeInfo) {
    EXPECT_EQ(makeUnknown("Mystery")->getRuntimeTypeInfo(), nullptr);
}

TEST(DmUnknownType, SetNamespaceToNullWithFailOnClashSucceeds) {
    EXPECT_EQ(makeUnknown("Mystery")->setNamespace(nullptr, kFailOnClash).getStatus(), DmStatus::kSuccess);
}

// ---------------------------------------------------------------------------
// Unknown struct

TEST(DmUnknownStructType, KindIsNineteen) {
    EXPECT_EQ(makeUnknownStruct("Shape")->getTypeKind(), 19);
}

TEST(DmUnknownStructType, IsNotFullyResolvedWithoutMembers) {
    EXPECT_FALSE(makeUnknownStruct("Shape")->isFullyResolved());
}

TEST(DmUnknownStructType, IsNotFullyResolvedEvenWithResolvedMembers) {
    auto const type = makeUnknownStruct("Shape");
    type->addMember("x", DmLibrary::getIntType());
    type->addMember("y", DmLibrary::getDoubleType());
    EXPECT_FALSE(type->isFullyResolved());
}

TEST(DmUnknownStructType, KeepsTheMembersTheFileShowed) {
    auto const type = makeUnknownStruct("Shape");
    ASSERT_NE(type->addMember("x", DmLibrary::getIntType()), nullptr);
    EXPECT_EQ(type->size(), 1u);
    ASSERT_NE(type->findMember("x"), nullptr);
    EXPECT_EQ(type->findMember("x")->getType(), DmLibrary::getIntType());
}

TEST(DmUnknownStructType, IsLaidOutLikeAStruct) {
    auto const type = makeUnknownStruct("Shape");
    type->addMember("flag", DmLibrary::getBoolType());
    type->addMember("value", DmLibrary::getDoubleType());
    EXPECT_EQ(type->getSizeOf(), 16u);
    EXPECT_EQ(type->getAlignmentOf(), 8u);
}

TEST(DmUnknownStructType, SetNamespaceToNullWithFailOnClashSucceeds) {
    auto const type = makeUnknownStruct("Shape");
    EXPECT_EQ(type->setNamespace(nullptr, kFailOnClash).getStatus(), DmStatus::kSuccess);
    EXPECT_EQ(type->getNamespace(), nullptr);
}

TEST(DmUnknownStructType, SetNamespaceToNullWithFailOnClashSucceedsWithMembers) {
    auto const inner = makeUnknown("Mystery");
    auto const type = makeUnknownStruct("Shape");
    type->addMember("x", DmLibrary::getIntType());
    type->addMember("inner", inner);
    EXPECT_EQ(type->setNamespace(nullptr, kFailOnClash).getStatus(), DmStatus::kSuccess);
    EXPECT_EQ(type->getNamespace(), nullptr);
    EXPECT_EQ(inner->getNamespace(), nullptr);
}

TEST(DmUnknownStructType, SetNamespaceWithMakeUniqueIsInvalidArgument) {
    auto const type = makeUnknownStruct("Shape");
    type->addMember("x", DmLibrary::getIntType());
    EXPECT_EQ(type->setNamespace(nullptr, kMakeUnique).getStatus(), DmStatus::kInvalidArgument);
}

TEST(DmUnknownStructType, SetNamespaceWithAsOverloadIsInvalidArgument) {
    EXPECT_EQ(makeUnknownStruct("Shape")->setNamespace(nullptr, kAsOverload).getStatus(),
              DmStatus::kInvalidArgument);
}
