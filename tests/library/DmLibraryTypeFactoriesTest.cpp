// The types a host makes through the library: struct, enum and class types,
// placed in a namespace, found by their full names and used for values.
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmClassValue.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmEnumValue.h>
#include <KestoDM/types/DmExternBaseType.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmStructValue.h>
#include <KestoDM/types/DmTypeKind.h>

#include "graph/ModelTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

using namespace Kesto;
using KestoTest::makeLibrary;
using KestoTest::namespaceAt;

namespace {

/// Also expects the types that a test makes to be gone when it ends.
class DmLibraryTypeFactoriesTest : public KestoTest::ModelTest {
protected:
    void SetUp() override {
        ModelTest::SetUp();
        expectBackAtEnd<DmBaseType>("types");
        expectBackAtEnd<DmExternBaseType>("extern types");
        expectBackAtEnd<DmStructType>("struct types");
        expectBackAtEnd<DmEnumType>("enum types");
        expectBackAtEnd<DmClassType>("class types");
    }
};

std::shared_ptr<DmBaseType const> typeNamed(DmLibrary& library, std::string const& name) {
    std::shared_ptr<DmBaseType const> type;
    library.retrieveType(name, type);
    return type;
}

// Hosts go through the factories: the constructors' tag cannot be made outside the library.
static_assert(!std::is_default_constructible<DmExternBaseType::InternalConstructor>::value,
              "only the library makes extern types");

} // namespace

// ---------------------------------------------------------------------------
// What each factory makes

TEST_F(DmLibraryTypeFactoriesTest, CreateStructTypeMakesAnEmptyStructInNoNamespace) {
    auto const type = DmLibrary::createStructType("Point");
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(type->getName(), "Point");
    EXPECT_EQ(type->getTypeKind(), kTypeStruct);
    EXPECT_EQ(type->size(), 0u);
    EXPECT_EQ(type->getNamespace(), nullptr);
    EXPECT_FALSE(type->isConst());
}

TEST_F(DmLibraryTypeFactoriesTest, CreateEnumTypeMakesAnEnumWithoutKeysInNoNamespace) {
    auto const type = DmLibrary::createEnumType("Color");
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(type->getName(), "Color");
    EXPECT_EQ(type->getTypeKind(), kTypeEnum);
    EXPECT_EQ(type->size(), 0u);
    EXPECT_EQ(type->getDefaultValue(), 0);
    EXPECT_EQ(type->getNamespace(), nullptr);
}

TEST_F(DmLibraryTypeFactoriesTest, CreateClassTypeMakesAClassWithoutNativeInformationInNoNamespace) {
    auto const type = DmLibrary::createClassType("Widget");
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(type->getName(), "Widget");
    EXPECT_EQ(type->getTypeKind(), kTypeClass);
    EXPECT_TRUE(type->getTypeNameMangleName().getPlatformName().empty());
    EXPECT_EQ(type->getCppClassInfo().getSerializer(), nullptr);
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
    EXPECT_EQ(type->getNamespace(), nullptr);
}

TEST_F(DmLibraryTypeFactoriesTest, EachCallMakesANewType) {
    EXPECT_NE(DmLibrary::createStructType("Point"), DmLibrary::createStructType("Point"));
}

TEST_F(DmLibraryTypeFactoriesTest, FactoriesRefuseTheEmptyName) {
    EXPECT_EQ(DmLibrary::createStructType(""), nullptr);
    EXPECT_EQ(DmLibrary::createEnumType(""), nullptr);
    EXPECT_EQ(DmLibrary::createClassType(""), nullptr);
}

TEST_F(DmLibraryTypeFactoriesTest, FactoriesTakeTheNameAsItStands) {
    EXPECT_EQ(DmLibrary::createStructType("my point")->getName(), "my point");
    EXPECT_EQ(DmLibrary::createEnumType("2d")->getName(), "2d");
}

// ---------------------------------------------------------------------------
// Placed and used

TEST_F(DmLibraryTypeFactoriesTest, AStructPlacedInANamespaceIsFoundByItsFullName) {
    auto const library = makeLibrary();
    auto const point = DmLibrary::createStructType("Point");
    point->addMember("x", DmLibrary::getIntType());
    point->addMember("y", DmLibrary::getIntType());
    ASSERT_EQ(point->setNamespace(namespaceAt(*library, "geometry"), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(point->getMapEntryKey(), "geometry::Point");
    EXPECT_EQ(typeNamed(*library, "geometry::Point"), point);
    EXPECT_TRUE(library->getTypes(false).contains("geometry::Point"));
    auto const array = typeNamed(*library, "array<geometry::Point>");
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(array->getTypeKind(), kTypeArray);
}

TEST_F(DmLibraryTypeFactoriesTest, AStructValueHasTheMembersOfTheType) {
    auto const library = makeLibrary();
    auto const point = DmLibrary::createStructType("Point");
    point->addMember("x", DmLibrary::getIntType());
    point->addMember("y", DmLibrary::getIntType());
    ASSERT_EQ(point->setNamespace(namespaceAt(*library, "geometry"), kFailOnClash), DmStatus::kSuccess);
    auto const value = std::dynamic_pointer_cast<DmStructValue>(point->createDefaultValue());
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getStructType(), point);
    ASSERT_TRUE(value->setMember("y", KestoTest::intValue(7)));
    auto const y = std::dynamic_pointer_cast<DmIntValue>(value->findMember("y"));
    ASSERT_NE(y, nullptr);
    EXPECT_EQ(y->getData(), 7);
    auto const x = std::dynamic_pointer_cast<DmIntValue>(value->findMember("x"));
    ASSERT_NE(x, nullptr);
    EXPECT_EQ(x->getData(), 0);
    EXPECT_EQ(value->getSizeOf(), 8u);
}

TEST_F(DmLibraryTypeFactoriesTest, AnEnumPlacedInANamespaceGivesValuesByKey) {
    auto const library = makeLibrary();
    auto const color = DmLibrary::createEnumType("Color");
    ASSERT_TRUE(color->addEnumeration(String("red")));
    ASSERT_TRUE(color->addEnumeration(String("green"), 5));
    ASSERT_EQ(color->setNamespace(namespaceAt(*library, "paint"), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(typeNamed(*library, "paint::Color"), color);
    auto const value = std::dynamic_pointer_cast<DmEnumValue>(color->createDefaultValue());
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getData(), 0);
    ASSERT_TRUE(value->setEnumerationFromName(String("green")));
    EXPECT_EQ(value->getData(), 5);
    String key;
    ASSERT_TRUE(value->getEnumerationName(key));
    EXPECT_EQ(key.str(), "green");
}

TEST_F(DmLibraryTypeFactoriesTest, AClassPlacedInANamespaceGivesValuesWithoutAnObject) {
    auto const library = makeLibrary();
    auto const widget = DmLibrary::createClassType("Widget");
    ASSERT_EQ(widget->setNamespace(namespaceAt(*library, "ui"), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(typeNamed(*library, "ui::Widget"), widget);
    auto const value = std::dynamic_pointer_cast<DmClassValue>(widget->createDefaultValue());
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getData().get(), nullptr);
}

TEST_F(DmLibraryTypeFactoriesTest, ATypeOfATakenNameIsRefusedByTheNamespace) {
    auto const library = makeLibrary();
    auto const first = DmLibrary::createStructType("Point");
    auto const second = DmLibrary::createEnumType("Point");
    DmNamespace* const geometry = namespaceAt(*library, "geometry");
    ASSERT_EQ(first->setNamespace(geometry, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setNamespace(geometry, kFailOnClash), DmStatus::kFailure);
    EXPECT_EQ(second->getNamespace(), nullptr);
    EXPECT_EQ(typeNamed(*library, "geometry::Point"), first);
}

TEST_F(DmLibraryTypeFactoriesTest, AMadeTypeServesAsAMemberOfAnother) {
    auto const library = makeLibrary();
    auto const point = DmLibrary::createStructType("Point");
    point->addMember("x", DmLibrary::getFloatType());
    auto const segment = DmLibrary::createStructType("Segment");
    segment->addMember("from", point);
    segment->addMember("to", point);
    DmNamespace* const geometry = namespaceAt(*library, "geometry");
    ASSERT_EQ(point->setNamespace(geometry, kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(segment->setNamespace(geometry, kFailOnClash), DmStatus::kSuccess);
    EXPECT_TRUE(segment->isFullyResolved());
    EXPECT_EQ(segment->getSizeOf(), 8u);
    auto const value = std::dynamic_pointer_cast<DmStructValue>(segment->createDefaultValue());
    ASSERT_NE(value, nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<DmStructValue>(value->findMember("to")), nullptr);
}
