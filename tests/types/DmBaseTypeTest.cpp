// What every type shares: the fixed kind numbers, names, placement in a
// namespace, and the datum size of the extern (composite) types.
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmExternBaseType.h>
#include <KestoDM/types/DmMangledName.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmTypeKind.h>
#include <KestoDM/types/DmUninstantiableType.h>
#include <KestoDM/types/DmUnknownStructType.h>
#include <KestoDM/types/DmUnknownType.h>

#include "types/DmExternTypeFactory.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace Kesto;

namespace {

std::shared_ptr<DmStructType> makeStruct(std::string const& name) {
    return DmLibrary::createStructType(name);
}

std::shared_ptr<DmClassType> makeClass(std::string const& name) {
    return DmLibrary::createClassType(name);
}

std::shared_ptr<DmUnknownType> makeUnknown(std::string const& name) {
    return Internal::ExternTypeFactory::make<DmUnknownType>(name);
}

std::shared_ptr<DmEnumType> makeEnum(std::string const& name) {
    return DmLibrary::createEnumType(name);
}

std::string fullNameOf(DmBaseType const& type) {
    std::string name;
    type.resolveFullName(name);
    return name;
}

/// Stands for a namespace. Placement refuses a bad name resolution before it
/// looks at the namespace, so the address is never read.
DmNamespace* someNamespace() {
    alignas(64) static char storage[256];
    return reinterpret_cast<DmNamespace*>(storage);
}

} // namespace

// ---------------------------------------------------------------------------
// Kind numbers: they order types of different kinds and are written to files.

TEST(DmBaseType, TypeKindNumbersRunFromBoolZeroToAutoTwenty) {
    EXPECT_EQ(static_cast<int>(kTypeBool), 0);
    EXPECT_EQ(static_cast<int>(kTypeChar), 1);
    EXPECT_EQ(static_cast<int>(kTypeUChar), 2);
    EXPECT_EQ(static_cast<int>(kTypeShort), 3);
    EXPECT_EQ(static_cast<int>(kTypeUShort), 4);
    EXPECT_EQ(static_cast<int>(kTypeInt), 5);
    EXPECT_EQ(static_cast<int>(kTypeUInt), 6);
    EXPECT_EQ(static_cast<int>(kTypeLong), 7);
    EXPECT_EQ(static_cast<int>(kTypeULong), 8);
    EXPECT_EQ(static_cast<int>(kTypeFloat), 9);
    EXPECT_EQ(static_cast<int>(kTypeDouble), 10);
    EXPECT_EQ(static_cast<int>(kTypeAny), 11);
    EXPECT_EQ(static_cast<int>(kTypeString), 12);
    EXPECT_EQ(static_cast<int>(kTypeClass), 13);
    EXPECT_EQ(static_cast<int>(kTypeArray), 14);
    EXPECT_EQ(static_cast<int>(kTypeStruct), 15);
    EXPECT_EQ(static_cast<int>(kTypeEnum), 16);
    EXPECT_EQ(static_cast<int>(kTypeUndefined), 17);
    EXPECT_EQ(static_cast<int>(kTypeUnknown), 18);
    EXPECT_EQ(static_cast<int>(kTypeUnknownStruct), 19);
    EXPECT_EQ(static_cast<int>(kTypeAuto), 20);
}

TEST(DmBaseType, TypeKindIsFourBytes) {
    EXPECT_EQ(sizeof(DmTypeKind), 4u);
}

TEST(DmBaseType, ClassTypeKindIsThirteen) {
    EXPECT_EQ(makeClass("Widget")->getTypeKind(), 13);
}

TEST(DmBaseType, ArrayTypeKindIsFourteen) {
    EXPECT_EQ(DmArrayType(DmLibrary::getIntType()).getTypeKind(), 14);
}

TEST(DmBaseType, StructTypeKindIsFifteen) {
    EXPECT_EQ(makeStruct("Point")->getTypeKind(), 15);
}

TEST(DmBaseType, EnumTypeKindIsSixteen) {
    EXPECT_EQ(makeEnum("Color")->getTypeKind(), 16);
}

TEST(DmBaseType, UndefinedTypeKindIsSeventeen) {
    EXPECT_EQ(DmUndefinedType("Missing").getTypeKind(), 17);
}

TEST(DmBaseType, UnknownTypeKindIsEighteen) {
    EXPECT_EQ(makeUnknown("Mystery")->getTypeKind(), 18);
}

TEST(DmBaseType, UnknownStructTypeKindIsNineteen) {
    auto const type = Internal::ExternTypeFactory::make<DmUnknownStructType>("Shape");
    EXPECT_EQ(type->getTypeKind(), 19);
}

TEST(DmBaseType, AutoTypeKindIsTwenty) {
    EXPECT_EQ(DmLibrary::getAutoType()->getTypeKind(), 20);
}

// ---------------------------------------------------------------------------
// Names

TEST(DmBaseType, FullNameOfATypeWithoutNamespaceIsItsName) {
    EXPECT_EQ(fullNameOf(*makeStruct("Point")), "Point");
}

TEST(DmBaseType, ResolveFullNameAppendsToWhatTheStringHolds) {
    std::string out = "type: ";
    makeStruct("Point")->resolveFullName(out);
    EXPECT_EQ(out, "type: Point");
}

TEST(DmBaseType, MapEntryKeyOfAStructIsItsFullName) {
    auto const type = makeStruct("Point");
    EXPECT_EQ(type->getMapEntryKey(), "Point");
    EXPECT_EQ(type->getMapEntryKey(), fullNameOf(*type));
}

TEST(DmBaseType, MapEntryKeyOfABuiltInIsItsFullName) {
    EXPECT_EQ(DmLibrary::getIntType()->getMapEntryKey(), "int");
}

TEST(DmBaseType, MapEntryKeyOfAnArrayIsItsFullName) {
    DmArrayType const array(DmLibrary::getIntType());
    EXPECT_EQ(array.getMapEntryKey(), "array<int>");
}

TEST(DmBaseType, NewTypeHasNoNamespace) {
    EXPECT_EQ(makeStruct("Point")->getNamespace(), nullptr);
}

TEST(DmBaseType, MangledNameIsEmptyAtBirth) {
    EXPECT_TRUE(makeStruct("Point")->getTypeNameMangleName().isEmpty());
}

TEST(DmBaseType, SetTypeNameMangleNameKeepsBothEntries) {
    auto const type = makeStruct("Point");
    type->setTypeNameMangleName(DmMangledName("?AUPoint@@", "5Point"));
    EXPECT_EQ(type->getTypeNameMangleName().get(DmMangledName::kMangledNameMicrosoft), "?AUPoint@@");
    EXPECT_EQ(type->getTypeNameMangleName().get(DmMangledName::kMangledNameItanium), "5Point");
}

TEST(DmBaseType, PlatformMangledNameIsTheItaniumEntry) {
    DmMangledName const name("?AUPoint@@", "5Point");
    EXPECT_EQ(name.getPlatformName(), "5Point");
}

// ---------------------------------------------------------------------------
// Placement: only name resolution 0 (kFailOnClash) is allowed.

TEST(DmBaseType, InvalidArgumentStatusIsSix) {
    EXPECT_EQ(static_cast<int>(DmStatus::kInvalidArgument), 6);
}

TEST(DmBaseType, SetNamespaceToNullWithMakeUniqueIsInvalidArgument) {
    auto const type = makeStruct("Point");
    EXPECT_EQ(type->setNamespace(nullptr, kMakeUnique).getStatus(), DmStatus::kInvalidArgument);
}

TEST(DmBaseType, SetNamespaceToNullWithAsOverloadIsInvalidArgument) {
    auto const type = makeStruct("Point");
    EXPECT_EQ(type->setNamespace(nullptr, kAsOverload).getStatus(), DmStatus::kInvalidArgument);
}

TEST(DmBaseType, SetNamespaceToANamespaceWithMakeUniqueIsInvalidArgument) {
    auto const type = makeStruct("Point");
    EXPECT_EQ(type->setNamespace(someNamespace(), kMakeUnique).getStatus(), DmStatus::kInvalidArgument);
    EXPECT_EQ(type->getNamespace(), nullptr);
}

TEST(DmBaseType, SetNamespaceToANamespaceWithAsOverloadIsInvalidArgument) {
    auto const type = makeStruct("Point");
    EXPECT_EQ(type->setNamespace(someNamespace(), kAsOverload).getStatus(), DmStatus::kInvalidArgument);
    EXPECT_EQ(type->getNamespace(), nullptr);
}

TEST(DmBaseType, SetNamespaceWithAnUnlistedResolutionIsInvalidArgument) {
    auto const type = makeStruct("Point");
    EXPECT_EQ(type->setNamespace(nullptr, static_cast<DmNameResolutionType>(7)).getStatus(),
              DmStatus::kInvalidArgument);
}

TEST(DmBaseType, SetNamespaceOfAConstSingletonWithMakeUniqueIsInvalidArgument) {
    std::shared_ptr<DmIntType> const& type = DmLibrary::getIntType();
    EXPECT_EQ(type->setNamespace(nullptr, kMakeUnique).getStatus(), DmStatus::kInvalidArgument);
}

TEST(DmBaseType, SetNamespaceOfAClassWithAsOverloadIsInvalidArgument) {
    auto const type = makeClass("Widget");
    EXPECT_EQ(type->setNamespace(nullptr, kAsOverload).getStatus(), DmStatus::kInvalidArgument);
}

TEST(DmBaseType, SetNamespaceToNullWithFailOnClashOnATypeWithoutNamespaceSucceeds) {
    auto const type = makeStruct("Point");
    EXPECT_EQ(type->setNamespace(nullptr, kFailOnClash).getStatus(), DmStatus::kSuccess);
    EXPECT_EQ(type->getNamespace(), nullptr);
}

// ---------------------------------------------------------------------------
// Extern types: a datum takes the room of one shared pointer.

TEST(DmBaseType, ClassDatumIsSixteenBytes) {
    EXPECT_EQ(makeClass("Widget")->getSizeOf(), 16u);
}

TEST(DmBaseType, ClassDatumIsAlignedToEight) {
    EXPECT_EQ(makeClass("Widget")->getAlignmentOf(), 8u);
}

TEST(DmBaseType, UnknownDatumIsSixteenBytes) {
    EXPECT_EQ(makeUnknown("Mystery")->getSizeOf(), 16u);
}

TEST(DmBaseType, UnknownDatumIsAlignedToEight) {
    EXPECT_EQ(makeUnknown("Mystery")->getAlignmentOf(), 8u);
}

TEST(DmBaseType, ArrayDatumIsSixteenBytes) {
    EXPECT_EQ(DmArrayType(DmLibrary::getIntType()).getSizeOf(), 16u);
}

TEST(DmBaseType, ArrayDatumIsAlignedToEight) {
    EXPECT_EQ(DmArrayType(DmLibrary::getIntType()).getAlignmentOf(), 8u);
}

TEST(DmBaseType, EnumDatumIsFourBytes) {
    EXPECT_EQ(makeEnum("Color")->getSizeOf(), 4u);
}

TEST(DmBaseType, EnumDatumIsAlignedToFour) {
    EXPECT_EQ(makeEnum("Color")->getAlignmentOf(), 4u);
}

TEST(DmBaseType, EnumIsPOD) {
    EXPECT_TRUE(makeEnum("Color")->isPOD());
}

TEST(DmBaseType, PackNameIsEmptyAtBirth) {
    EXPECT_EQ(makeClass("Widget")->getPackName(), "");
}

TEST(DmBaseType, SetPackNameChangesThePackName) {
    auto const type = makeStruct("Point");
    type->setPackName("geometry");
    EXPECT_EQ(type->getPackName(), "geometry");
    type->setPackName("shapes");
    EXPECT_EQ(type->getPackName(), "shapes");
}
