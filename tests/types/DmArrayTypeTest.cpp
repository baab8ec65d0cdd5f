// Array types: names that follow the element, array values, run-time records
// and resolution.
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>
#include <KestoDM/platform/UntypedArray.h>
#include <KestoDM/platform/UntypedTypeRep.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmExternBaseType.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmTypeKind.h>
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

std::shared_ptr<DmArrayType> arrayOf(std::shared_ptr<DmBaseType const> element) {
    return std::make_shared<DmArrayType>(std::move(element));
}

std::string fullNameOf(DmBaseType const& type) {
    std::string name;
    type.resolveFullName(name);
    return name;
}

} // namespace

// ---------------------------------------------------------------------------
// Names

TEST(DmArrayType, ArrayOfIntIsNamedArrayOfInt) {
    EXPECT_EQ(arrayOf(DmLibrary::getIntType())->getName(), "array<int>");
}

TEST(DmArrayType, ArrayOfArrayOfIntIsNamedArrayOfArrayOfInt) {
    EXPECT_EQ(arrayOf(arrayOf(DmLibrary::getIntType()))->getName(), "array<array<int>>");
}

TEST(DmArrayType, ArrayOfAnElementWithoutNameIsNamedArray) {
    // The factories refuse the empty name; the library's own code can still make such a type.
    EXPECT_EQ(arrayOf(std::make_shared<DmStructType>(Internal::ExternTypeFactory::tag(), ""))->getName(),
              "array");
}

TEST(DmArrayType, ArrayWithoutElementIsNamedArray) {
    EXPECT_EQ(arrayOf(nullptr)->getName(), "array");
}

TEST(DmArrayType, MakeArrayNameWrapsTheElementFullName) {
    EXPECT_EQ(DmArrayType::makeArrayName("geometry::Point"), "array<geometry::Point>");
}

TEST(DmArrayType, MakeArrayNameOfAnEmptyElementNameIsArray) {
    EXPECT_EQ(DmArrayType::makeArrayName(""), "array");
}

// The element's full name carries its namespace's scope in front; no namespace
// exists yet, so here it is the bare name. The namespaced form ("array<ns::T>")
// is tested with namespaces.
TEST(DmArrayType, FullNameOfAnArrayOfAStructTIsArrayOfT) {
    EXPECT_EQ(fullNameOf(*arrayOf(makeStruct("T"))), "array<T>");
}

TEST(DmArrayType, SetElementTypeRenamesTheArray) {
    auto const array = arrayOf(DmLibrary::getIntType());
    array->setElementType(DmLibrary::getDoubleType());
    EXPECT_EQ(array->getName(), "array<double>");
}

TEST(DmArrayType, SetElementTypeReplacesTheElement) {
    auto const array = arrayOf(DmLibrary::getIntType());
    array->setElementType(DmLibrary::getDoubleType());
    EXPECT_EQ(array->getElementType(), DmLibrary::getDoubleType());
}

// ---------------------------------------------------------------------------
// Element and values

TEST(DmArrayType, ElementTypeIsTheOneGiven) {
    auto const point = makeStruct("Point");
    EXPECT_EQ(arrayOf(point)->getElementType(), point);
}

TEST(DmArrayType, KindIsArray) {
    EXPECT_EQ(arrayOf(DmLibrary::getIntType())->getTypeKind(), kTypeArray);
}

TEST(DmArrayType, ElementAllocatorHasTheElementsSize) {
    Internal::UntypedTypeRep const element = arrayOf(DmLibrary::getIntType())->getElementAllocator();
    EXPECT_EQ(element.size(), sizeof(int));
}

TEST(DmArrayType, AllocateArrayOfThreeIntsGivesAnUntypedArrayOfThree) {
    Ptr<void> const value = arrayOf(DmLibrary::getIntType())->allocateArray(3);
    ASSERT_NE(value, nullptr);
    Ptr<Internal::UntypedArray> const array = staticPtrCast<Internal::UntypedArray>(value);
    EXPECT_EQ(array->size(), 3u);
    EXPECT_EQ(array->getUntypedTypeRep().size(), sizeof(int));
}

TEST(DmArrayType, AllocatedIntElementsAreZero) {
    Ptr<void> const value = arrayOf(DmLibrary::getIntType())->allocateArray(3);
    ASSERT_NE(value, nullptr);
    Ptr<Internal::UntypedArray> const array = staticPtrCast<Internal::UntypedArray>(value);
    for (std::size_t index = 0; index < 3; ++index) {
        auto const* element = static_cast<int const*>(array->get_element(index));
        ASSERT_NE(element, nullptr);
        EXPECT_EQ(*element, 0) << "element " << index;
    }
}

TEST(DmArrayType, AllocateArrayOfZeroGivesAnEmptyArray) {
    Ptr<void> const value = arrayOf(DmLibrary::getIntType())->allocateArray(0);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(staticPtrCast<Internal::UntypedArray>(value)->size(), 0u);
}

TEST(DmArrayType, EachAllocateArrayGivesANewArray) {
    auto const type = arrayOf(DmLibrary::getIntType());
    Ptr<void> const first = type->allocateArray(1);
    Ptr<void> const second = type->allocateArray(1);
    EXPECT_NE(first, second);
}

TEST(DmArrayType, UntypedTypeRepIsThatOfAPointer) {
    Internal::UntypedTypeRep const rep = arrayOf(DmLibrary::getIntType())->getUntypedTypeRep();
    EXPECT_EQ(rep.size(), 16u);
    EXPECT_EQ(rep.alignment(), 8u);
}

// ---------------------------------------------------------------------------
// Run-time records

TEST(DmArrayType, RuntimeTypeInfoOfArrayOfIntIsTheTablesArrayRecordOfInt) {
    Internal::RttiTable& table = Internal::GlobalRttiTable::get();
    Internal::RuntimeTypeInfo const* const info = arrayOf(DmLibrary::getIntType())->getRuntimeTypeInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info, table.getOrInsertArray(table.getBuiltin<int>()));
}

TEST(DmArrayType, RuntimeTypeInfoOfArrayOfIntIsNamedArrayOfInt) {
    Internal::RuntimeTypeInfo const* const info = arrayOf(DmLibrary::getIntType())->getRuntimeTypeInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->getMangledName(), "array<int>");
    EXPECT_EQ(info->getKind(), Internal::RuntimeTypeInfo::Kind::kArray);
    EXPECT_EQ(info->getElementType(), Internal::GlobalRttiTable::get().getBuiltin<int>());
}

TEST(DmArrayType, RuntimeTypeInfoOfNestedArrayIsNamedArrayOfArrayOfInt) {
    Internal::RuntimeTypeInfo const* const info =
        arrayOf(arrayOf(DmLibrary::getIntType()))->getRuntimeTypeInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->getMangledName(), "array<array<int>>");
}

TEST(DmArrayType, TwoArrayTypesOfIntShareOneRuntimeTypeInfo) {
    EXPECT_EQ(arrayOf(DmLibrary::getIntType())->getRuntimeTypeInfo(),
              arrayOf(DmLibrary::getIntType())->getRuntimeTypeInfo());
}

TEST(DmArrayType, RuntimeTypeInfoOfAnArrayOfAStructWithoutMangledNameIsNull) {
    auto const point = makeStruct("Point");
    point->addMember("x", DmLibrary::getIntType());
    EXPECT_EQ(arrayOf(point)->getRuntimeTypeInfo(), nullptr);
}

TEST(DmArrayType, RuntimeTypeInfoOfAnArrayWithoutElementIsNull) {
    EXPECT_EQ(arrayOf(nullptr)->getRuntimeTypeInfo(), nullptr);
}

// ---------------------------------------------------------------------------
// Resolution

TEST(DmArrayType, ArrayOfIntIsFullyResolved) {
    EXPECT_TRUE(arrayOf(DmLibrary::getIntType())->isFullyResolved());
}

TEST(DmArrayType, ArrayOfUnknownIsNotFullyResolved) {
    auto const unknown = Internal::ExternTypeFactory::make<DmUnknownType>("Mystery");
    EXPECT_FALSE(arrayOf(unknown)->isFullyResolved());
}

TEST(DmArrayType, ArrayOfArrayOfUnknownIsNotFullyResolved) {
    auto const unknown = Internal::ExternTypeFactory::make<DmUnknownType>("Mystery");
    EXPECT_FALSE(arrayOf(arrayOf(unknown))->isFullyResolved());
}

TEST(DmArrayType, ArrayBecomesResolvedWhenItsElementIsReplacedByAResolvedOne) {
    auto const unknown = Internal::ExternTypeFactory::make<DmUnknownType>("Mystery");
    auto const array = arrayOf(unknown);
    array->setElementType(DmLibrary::getIntType());
    EXPECT_TRUE(array->isFullyResolved());
}
