// Types of graph files: how a type name of a file finds its type, and the
// struct, enum and class types that the `types` section defines.
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include "reader/JsonReader.h"
#include "reader/ReaderTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace Kesto;
using KestoTest::PrintingLibrary;
using MissingType = Internal::JsonReader::MissingType;

namespace {

class DmResolveTypeTest : public testing::Test {
protected:
    DmResolveTypeTest() : m_reader(context()) {}

    Internal::JsonReadContext context() {
        Internal::JsonReadContext out;
        out.library = m_library.get().get();
        out.logger = m_library->getErrorLogger();
        return out;
    }

    std::shared_ptr<DmStructType> placeStruct(std::string const& ns, std::string const& name) {
        auto type = DmLibrary::createStructType(name);
        EXPECT_EQ(type->setNamespace(m_library->getGlobalNamespace()->fetchNamespace(ns).get(), kFailOnClash),
                  DmStatus::kSuccess);
        return type;
    }

    PrintingLibrary m_library;
    Internal::JsonReader m_reader;
};

} // namespace

TEST_F(DmResolveTypeTest, BuiltInNameGivesTheBuiltInType) {
    EXPECT_EQ(m_reader.resolveType("int", MissingType::kNothing), DmLibrary::getIntType());
    EXPECT_EQ(m_reader.resolveType(" string ", MissingType::kNothing), DmLibrary::getStringType());
}

TEST_F(DmResolveTypeTest, QualifiedNameGivesTheTypeOfItsNamespace) {
    auto const point = placeStruct("geometry", "Point");
    EXPECT_EQ(m_reader.resolveType("geometry::Point", MissingType::kNothing), point);
    EXPECT_EQ(m_reader.resolveType(" geometry :: Point ", MissingType::kNothing), point);
}

TEST_F(DmResolveTypeTest, ArrayFormIsMadeOnDemand) {
    auto const point = placeStruct("geometry", "Point");
    auto const array = std::dynamic_pointer_cast<DmArrayType const>(
        m_reader.resolveType("array< geometry::Point >", MissingType::kNothing));
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(array->getElementType(), point);
    EXPECT_EQ(m_reader.resolveType("array<geometry::Point>", MissingType::kNothing), array);
}

TEST_F(DmResolveTypeTest, OldSpellingsAreRenamed) {
    auto const object = placeStruct("", "Object");
    auto const curve = placeStruct("Math", "FCurve");
    EXPECT_EQ(m_reader.resolveType("Kesto::Object", MissingType::kNothing), object);
    EXPECT_EQ(m_reader.resolveType("Kesto::FCurve", MissingType::kNothing), curve);
    auto const array = std::dynamic_pointer_cast<DmArrayType const>(
        m_reader.resolveType("array<Kesto::FCurve>", MissingType::kNothing));
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(array->getElementType(), curve);
}

TEST_F(DmResolveTypeTest, MissingNameGivesNothingInModeNothing) {
    EXPECT_EQ(m_reader.resolveType("nowhere::T", MissingType::kNothing), nullptr);
    EXPECT_EQ(m_reader.resolveType("array<nowhere::T>", MissingType::kNothing), nullptr);
    EXPECT_EQ(m_reader.resolveType("", MissingType::kUndefined), nullptr);
    // Nothing was made on the way.
    EXPECT_FALSE(m_library->getGlobalNamespace()->getNestedNamespaces().contains("nowhere"));
    EXPECT_TRUE(m_library.takePrinted().empty());
}

TEST_F(DmResolveTypeTest, MissingNameGivesAnUndefinedTypeInItsNamespace) {
    auto const type = m_reader.resolveType("a::b::T", MissingType::kUndefined);
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(type->getTypeKind(), kTypeUndefined);
    EXPECT_EQ(type->getName(), "T");
    std::shared_ptr<DmBaseType const> filed;
    ASSERT_TRUE(m_library->retrieveType("a::b::T", filed));
    EXPECT_EQ(filed, type);
    // Asked again, the name now names that type.
    EXPECT_EQ(m_reader.resolveType("a::b::T", MissingType::kNothing), type);
}

TEST_F(DmResolveTypeTest, ArrayOfAMissingElementIsTheArrayOfTheUndefinedElement) {
    auto const array = std::dynamic_pointer_cast<DmArrayType const>(
        m_reader.resolveType("array<a::T>", MissingType::kUndefined));
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(array->getName(), "array<a::T>");
    ASSERT_NE(array->getElementType(), nullptr);
    EXPECT_EQ(array->getElementType()->getTypeKind(), kTypeUndefined);
}

TEST_F(DmResolveTypeTest, PlaceholderModeGivesNothingUntilTheSupportMakesPlaceholders) {
    EXPECT_EQ(m_reader.resolveType("a::T", MissingType::kUnknown), nullptr);
    EXPECT_FALSE(m_library->getGlobalNamespace()->getNestedNamespaces().contains("a"));
}
