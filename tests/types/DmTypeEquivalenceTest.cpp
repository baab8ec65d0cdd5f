// DmBaseType::equivalent and DmBaseType::lessThan, on which overload
// de-duplication and connection checks rest.
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmExternBaseType.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmTypeKind.h>
#include <KestoDM/types/DmUninstantiableType.h>
#include <KestoDM/types/DmUnknownStructType.h>
#include <KestoDM/types/DmUnknownType.h>

#include "types/DmExternTypeFactory.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace Kesto;

namespace {

using TypePtr = std::shared_ptr<DmBaseType const>;

std::shared_ptr<DmStructType> makeStruct(std::string const& name) {
    return DmLibrary::createStructType(name);
}

/// A struct with the given members, in order.
std::shared_ptr<DmStructType> makeStruct(std::string const& name,
                                         std::initializer_list<std::pair<char const*, TypePtr>> members) {
    auto type = makeStruct(name);
    for (auto const& member : members) {
        type->addMember(member.first, member.second);
    }
    return type;
}

/// An enum with the given keys and integers, in order.
std::shared_ptr<DmEnumType> makeEnum(std::string const& name,
                                     std::initializer_list<std::pair<char const*, int>> entries) {
    auto type = DmLibrary::createEnumType(name);
    for (auto const& entry : entries) {
        type->addEnumeration(entry.first, entry.second);
    }
    return type;
}

std::shared_ptr<DmClassType> makeClass(std::string const& name) {
    return DmLibrary::createClassType(name);
}

std::shared_ptr<DmUnknownType> makeUnknown(std::string const& name) {
    return Internal::ExternTypeFactory::make<DmUnknownType>(name);
}

std::shared_ptr<DmArrayType> arrayOf(TypePtr element) {
    return std::make_shared<DmArrayType>(std::move(element));
}

TypePtr intType() {
    return DmLibrary::getIntType();
}

TypePtr boolType() {
    return DmLibrary::getBoolType();
}

TypePtr doubleType() {
    return DmLibrary::getDoubleType();
}

/// Arrays nested `depth` times around `element`.
TypePtr nestArrays(TypePtr element, std::size_t depth) {
    for (std::size_t level = 0; level < depth; ++level) {
        element = arrayOf(std::move(element));
    }
    return element;
}

/// One type of each kind, in order of the kind numbers 0..20.
std::vector<TypePtr> oneTypeOfEachKind() {
    return {
        DmLibrary::getBoolType(),
        DmLibrary::getCharType(),
        DmLibrary::getUCharType(),
        DmLibrary::getShortType(),
        DmLibrary::getUShortType(),
        DmLibrary::getIntType(),
        DmLibrary::getUIntType(),
        DmLibrary::getLongType(),
        DmLibrary::getULongType(),
        DmLibrary::getFloatType(),
        DmLibrary::getDoubleType(),
        DmLibrary::getAnyType(),
        DmLibrary::getStringType(),
        makeClass("Widget"),
        arrayOf(intType()),
        makeStruct("Point", {{"x", intType()}}),
        makeEnum("Color", {{"red", 0}}),
        std::make_shared<DmUndefinedType>("Missing"),
        makeUnknown("Mystery"),
        Internal::ExternTypeFactory::make<DmUnknownStructType>("Shape"),
        DmLibrary::getAutoType(),
    };
}

} // namespace

// ---------------------------------------------------------------------------
// equivalent

TEST(DmTypeEquivalent, TheSameStructIsEquivalentToItself) {
    auto const type = makeStruct("Point", {{"x", intType()}});
    EXPECT_TRUE(DmBaseType::equivalent(*type, *type));
}

TEST(DmTypeEquivalent, TheSameClassIsEquivalentToItself) {
    auto const type = makeClass("Widget");
    EXPECT_TRUE(DmBaseType::equivalent(*type, *type));
}

TEST(DmTypeEquivalent, TheSameUnknownIsEquivalentToItself) {
    auto const type = makeUnknown("Mystery");
    EXPECT_TRUE(DmBaseType::equivalent(*type, *type));
}

TEST(DmTypeEquivalent, TypesOfDifferentKindsAreNotEquivalent) {
    std::vector<TypePtr> const types = oneTypeOfEachKind();
    for (std::size_t i = 0; i < types.size(); ++i) {
        for (std::size_t j = 0; j < types.size(); ++j) {
            if (i != j) {
                EXPECT_FALSE(DmBaseType::equivalent(types[i], types[j])) << "kinds " << i << " and " << j;
            }
        }
    }
}

TEST(DmTypeEquivalent, IntIsNotEquivalentToUInt) {
    EXPECT_FALSE(DmBaseType::equivalent(*DmLibrary::getIntType(), *DmLibrary::getUIntType()));
}

TEST(DmTypeEquivalent, StructIsNotEquivalentToAnUnknownStructOfTheSameMembers) {
    auto const known = makeStruct("Shape", {{"x", intType()}});
    auto const unknown = Internal::ExternTypeFactory::make<DmUnknownStructType>("Shape");
    unknown->addMember("x", intType());
    EXPECT_FALSE(DmBaseType::equivalent(*known, *unknown));
}

TEST(DmTypeEquivalent, TwoIntTypeObjectsAreEquivalent) {
    auto const second = std::make_shared<DmIntType>();
    EXPECT_TRUE(DmBaseType::equivalent(*DmLibrary::getIntType(), *second));
}

TEST(DmTypeEquivalent, TwoClassTypesOfTheSameNameAreNotEquivalent) {
    EXPECT_FALSE(DmBaseType::equivalent(*makeClass("Widget"), *makeClass("Widget")));
}

TEST(DmTypeEquivalent, TwoUndefinedTypesOfTheSameNameAreNotEquivalent) {
    DmUndefinedType const first("Missing");
    DmUndefinedType const second("Missing");
    EXPECT_FALSE(DmBaseType::equivalent(first, second));
}

TEST(DmTypeEquivalent, TwoUnknownTypesOfTheSameNameAreNotEquivalent) {
    EXPECT_FALSE(DmBaseType::equivalent(*makeUnknown("Mystery"), *makeUnknown("Mystery")));
}

TEST(DmTypeEquivalent, TwoArraysOfIntAreEquivalent) {
    EXPECT_TRUE(DmBaseType::equivalent(*arrayOf(intType()), *arrayOf(intType())));
}

TEST(DmTypeEquivalent, ArraysOfDifferentElementsAreNotEquivalent) {
    EXPECT_FALSE(DmBaseType::equivalent(*arrayOf(intType()), *arrayOf(doubleType())));
}

TEST(DmTypeEquivalent, ArraysOfEquivalentStructsAreEquivalent) {
    auto const first = makeStruct("A", {{"x", intType()}, {"y", doubleType()}});
    auto const second = makeStruct("B", {{"x", intType()}, {"y", doubleType()}});
    EXPECT_TRUE(DmBaseType::equivalent(*arrayOf(first), *arrayOf(second)));
}

TEST(DmTypeEquivalent, ArraysOfClassesOfTheSameNameAreNotEquivalent) {
    EXPECT_FALSE(DmBaseType::equivalent(*arrayOf(makeClass("Widget")), *arrayOf(makeClass("Widget"))));
}

TEST(DmTypeEquivalent, ArrayIsNotEquivalentToItsElement) {
    EXPECT_FALSE(DmBaseType::equivalent(*arrayOf(intType()), *intType()));
}

TEST(DmTypeEquivalent, ArraysNestedAThousandLevelsAreEquivalent) {
    TypePtr const first = nestArrays(intType(), 1000);
    TypePtr const second = nestArrays(intType(), 1000);
    EXPECT_TRUE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, ArraysNestedAThousandLevelsOverDifferentElementsAreNotEquivalent) {
    TypePtr const first = nestArrays(intType(), 1000);
    TypePtr const second = nestArrays(doubleType(), 1000);
    EXPECT_FALSE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, ArraysNestedToDifferentDepthsAreNotEquivalent) {
    EXPECT_FALSE(DmBaseType::equivalent(*nestArrays(intType(), 3), *nestArrays(intType(), 4)));
}

TEST(DmTypeEquivalent, StructsWithDifferentNamesAndTheSameMembersAreEquivalent) {
    auto const first = makeStruct("Point", {{"x", intType()}, {"y", intType()}});
    auto const second = makeStruct("Vector", {{"x", intType()}, {"y", intType()}});
    EXPECT_TRUE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, StructsWithEquivalentMemberTypesAreEquivalent) {
    auto const first = makeStruct("A", {{"items", arrayOf(intType())}, {"n", std::make_shared<DmIntType>()}});
    auto const second = makeStruct("B", {{"items", arrayOf(intType())}, {"n", intType()}});
    EXPECT_TRUE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, StructsWithEquivalentNestedStructsAreEquivalent) {
    auto const first = makeStruct("A", {{"inner", makeStruct("I", {{"x", intType()}})}});
    auto const second = makeStruct("B", {{"inner", makeStruct("J", {{"x", intType()}})}});
    EXPECT_TRUE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, StructsWithTheSameMembersInAnotherOrderAreNotEquivalent) {
    auto const first = makeStruct("A", {{"x", intType()}, {"y", doubleType()}});
    auto const second = makeStruct("B", {{"y", doubleType()}, {"x", intType()}});
    EXPECT_FALSE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, StructsWithDifferentMemberNamesAreNotEquivalent) {
    auto const first = makeStruct("A", {{"x", intType()}});
    auto const second = makeStruct("B", {{"y", intType()}});
    EXPECT_FALSE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, StructsWithDifferentMemberTypesAreNotEquivalent) {
    auto const first = makeStruct("A", {{"x", intType()}});
    auto const second = makeStruct("B", {{"x", doubleType()}});
    EXPECT_FALSE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, StructsWithDifferentMemberCountsAreNotEquivalent) {
    auto const first = makeStruct("A", {{"x", intType()}});
    auto const second = makeStruct("B", {{"x", intType()}, {"y", intType()}});
    EXPECT_FALSE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, StructsWithClassMembersOfTheSameNameAreNotEquivalent) {
    auto const first = makeStruct("A", {{"w", makeClass("Widget")}});
    auto const second = makeStruct("B", {{"w", makeClass("Widget")}});
    EXPECT_FALSE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, EnumsWithTheSameKeysAndIntegersAreEquivalent) {
    auto const first = makeEnum("Color", {{"red", 0}, {"green", 5}});
    auto const second = makeEnum("Hue", {{"red", 0}, {"green", 5}});
    EXPECT_TRUE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, EnumsWithADifferentIntegerAreNotEquivalent) {
    auto const first = makeEnum("Color", {{"red", 0}, {"green", 5}});
    auto const second = makeEnum("Color", {{"red", 0}, {"green", 6}});
    EXPECT_FALSE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, EnumsWithADifferentKeyAreNotEquivalent) {
    auto const first = makeEnum("Color", {{"red", 0}, {"green", 1}});
    auto const second = makeEnum("Color", {{"red", 0}, {"blue", 1}});
    EXPECT_FALSE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, EnumsWithDifferentKeyCountsAreNotEquivalent) {
    auto const first = makeEnum("Color", {{"red", 0}});
    auto const second = makeEnum("Color", {{"red", 0}, {"green", 1}});
    EXPECT_FALSE(DmBaseType::equivalent(*first, *second));
}

TEST(DmTypeEquivalent, TwoMissingTypesAreEquivalent) {
    EXPECT_TRUE(DmBaseType::equivalent(TypePtr(), TypePtr()));
}

TEST(DmTypeEquivalent, AMissingTypeIsNotEquivalentToAType) {
    EXPECT_FALSE(DmBaseType::equivalent(TypePtr(), intType()));
    EXPECT_FALSE(DmBaseType::equivalent(intType(), TypePtr()));
}

// ---------------------------------------------------------------------------
// lessThan

TEST(DmTypeLessThan, TypesOfDifferentKindsOrderByKindNumber) {
    std::vector<TypePtr> const types = oneTypeOfEachKind();
    ASSERT_EQ(types.size(), 21u);
    for (std::size_t i = 0; i < types.size(); ++i) {
        ASSERT_EQ(static_cast<std::size_t>(types[i]->getTypeKind()), i);
        for (std::size_t j = i + 1; j < types.size(); ++j) {
            EXPECT_TRUE(DmBaseType::lessThan(types[i], types[j])) << "kinds " << i << " < " << j;
            EXPECT_FALSE(DmBaseType::lessThan(types[j], types[i])) << "kinds " << j << " < " << i;
        }
    }
}

TEST(DmTypeLessThan, BoolIsLessThanInt) {
    EXPECT_TRUE(DmBaseType::lessThan(*DmLibrary::getBoolType(), *DmLibrary::getIntType()));
    EXPECT_FALSE(DmBaseType::lessThan(*DmLibrary::getIntType(), *DmLibrary::getBoolType()));
}

TEST(DmTypeLessThan, IntIsLessThanAStruct) {
    auto const type = makeStruct("Point", {{"x", intType()}});
    EXPECT_TRUE(DmBaseType::lessThan(*DmLibrary::getIntType(), *type));
    EXPECT_FALSE(DmBaseType::lessThan(*type, *DmLibrary::getIntType()));
}

TEST(DmTypeLessThan, LessThanOfIntWithItselfIsFalse) {
    EXPECT_FALSE(DmBaseType::lessThan(*DmLibrary::getIntType(), *DmLibrary::getIntType()));
}

TEST(DmTypeLessThan, TwoIntTypeObjectsAreNotLessEitherWay) {
    auto const second = std::make_shared<DmIntType>();
    EXPECT_FALSE(DmBaseType::lessThan(*DmLibrary::getIntType(), *second));
    EXPECT_FALSE(DmBaseType::lessThan(*second, *DmLibrary::getIntType()));
}

TEST(DmTypeLessThan, DistinctClassesOrderByAddress) {
    auto const first = makeClass("Widget");
    auto const second = makeClass("Widget");
    bool const firstLess = DmBaseType::lessThan(*first, *second);
    bool const secondLess = DmBaseType::lessThan(*second, *first);
    EXPECT_NE(firstLess, secondLess);
    EXPECT_EQ(firstLess, std::less<DmBaseType const*>()(first.get(), second.get()));
}

TEST(DmTypeLessThan, LessThanOfAClassWithItselfIsFalse) {
    auto const type = makeClass("Widget");
    EXPECT_FALSE(DmBaseType::lessThan(*type, *type));
}

TEST(DmTypeLessThan, DistinctUndefinedTypesOrderByAddress) {
    auto const first = std::make_shared<DmUndefinedType>("Missing");
    auto const second = std::make_shared<DmUndefinedType>("Missing");
    bool const firstLess = DmBaseType::lessThan(*first, *second);
    bool const secondLess = DmBaseType::lessThan(*second, *first);
    EXPECT_NE(firstLess, secondLess);
    EXPECT_EQ(firstLess, std::less<DmBaseType const*>()(first.get(), second.get()));
}

TEST(DmTypeLessThan, DistinctUnknownTypesOrderByAddress) {
    auto const first = makeUnknown("Mystery");
    auto const second = makeUnknown("Mystery");
    bool const firstLess = DmBaseType::lessThan(*first, *second);
    bool const secondLess = DmBaseType::lessThan(*second, *first);
    EXPECT_NE(firstLess, secondLess);
    EXPECT_EQ(firstLess, std::less<DmBaseType const*>()(first.get(), second.get()));
}

TEST(DmTypeLessThan, ArraysOrderByElement) {
    EXPECT_TRUE(DmBaseType::lessThan(*arrayOf(boolType()), *arrayOf(intType())));
    EXPECT_FALSE(DmBaseType::lessThan(*arrayOf(intType()), *arrayOf(boolType())));
}

TEST(DmTypeLessThan, ArraysOfTheSameElementAreNotLessEitherWay) {
    auto const first = arrayOf(intType());
    auto const second = arrayOf(intType());
    EXPECT_FALSE(DmBaseType::lessThan(*first, *second));
    EXPECT_FALSE(DmBaseType::lessThan(*second, *first));
}

TEST(DmTypeLessThan, NestedArraysOrderByTheInnermostElement) {
    EXPECT_TRUE(DmBaseType::lessThan(*nestArrays(boolType(), 5), *nestArrays(doubleType(), 5)));
    EXPECT_FALSE(DmBaseType::lessThan(*nestArrays(doubleType(), 5), *nestArrays(boolType(), 5)));
}

TEST(DmTypeLessThan, StructWithFewerMembersIsLess) {
    auto const fewer = makeStruct("A", {{"z", doubleType()}});
    auto const more = makeStruct("B", {{"a", boolType()}, {"b", boolType()}});
    EXPECT_TRUE(DmBaseType::lessThan(*fewer, *more));
    EXPECT_FALSE(DmBaseType::lessThan(*more, *fewer));
}

TEST(DmTypeLessThan, StructMemberNameThatIsAPrefixIsLess) {
    auto const shorter = makeStruct("A", {{"ab", intType()}});
    auto const longer = makeStruct("B", {{"abc", intType()}});
    EXPECT_TRUE(DmBaseType::lessThan(*shorter, *longer));
    EXPECT_FALSE(DmBaseType::lessThan(*longer, *shorter));
}

TEST(DmTypeLessThan, StructsOrderByTheFirstDifferingByteOfMemberNames) {
    auto const abd = makeStruct("A", {{"abd", intType()}});
    auto const abc = makeStruct("B", {{"abc", intType()}});
    EXPECT_FALSE(DmBaseType::lessThan(*abd, *abc));
    EXPECT_TRUE(DmBaseType::lessThan(*abc, *abd));
}

TEST(DmTypeLessThan, StructMemberNamesCompareAsUnsignedBytes) {
    // 0xC3 (the lead byte of "é" in UTF-8) is above 'z' as an unsigned byte.
    auto const accented = makeStruct("A", {{"\xC3\xA9", intType()}});
    auto const plain = makeStruct("B", {{"z", intType()}});
    EXPECT_TRUE(DmBaseType::lessThan(*plain, *accented));
    EXPECT_FALSE(DmBaseType::lessThan(*accented, *plain));
}

TEST(DmTypeLessThan, StructMemberNamesCompareCaseSensitively) {
    auto const upper = makeStruct("A", {{"X", intType()}});
    auto const lower = makeStruct("B", {{"x", intType()}});
    EXPECT_TRUE(DmBaseType::lessThan(*upper, *lower));
    EXPECT_FALSE(DmBaseType::lessThan(*lower, *upper));
}

TEST(DmTypeLessThan, StructMemberNamesDecideBeforeMemberTypes) {
    auto const first = makeStruct("A", {{"a", doubleType()}});
    auto const second = makeStruct("B", {{"b", boolType()}});
    EXPECT_TRUE(DmBaseType::lessThan(*first, *second));
    EXPECT_FALSE(DmBaseType::lessThan(*second, *first));
}

TEST(DmTypeLessThan, StructsWithTheSameNamesOrderByTheFirstDifferingMemberType) {
    auto const first = makeStruct("A", {{"a", intType()}, {"b", boolType()}, {"c", doubleType()}});
    auto const second = makeStruct("B", {{"a", intType()}, {"b", doubleType()}, {"c", boolType()}});
    EXPECT_TRUE(DmBaseType::lessThan(*first, *second));
    EXPECT_FALSE(DmBaseType::lessThan(*second, *first));
}

TEST(DmTypeLessThan, StructsWithNestedStructMembersOrderByTheNestedMembers) {
    auto const first = makeStruct("A", {{"inner", makeStruct("I", {{"x", boolType()}})}});
    auto const second = makeStruct("B", {{"inner", makeStruct("J", {{"x", intType()}})}});
    EXPECT_TRUE(DmBaseType::lessThan(*first, *second));
    EXPECT_FALSE(DmBaseType::lessThan(*second, *first));
}

TEST(DmTypeLessThan, StructsWithEquivalentMembersAreNotLessEitherWay) {
    auto const first = makeStruct("A", {{"x", intType()}, {"y", arrayOf(doubleType())}});
    auto const second = makeStruct("B", {{"x", intType()}, {"y", arrayOf(doubleType())}});
    EXPECT_FALSE(DmBaseType::lessThan(*first, *second));
    EXPECT_FALSE(DmBaseType::lessThan(*second, *first));
}

TEST(DmTypeLessThan, LessThanOfAStructWithItselfIsFalse) {
    auto const type = makeStruct("Point", {{"x", intType()}, {"w", makeClass("Widget")}});
    EXPECT_FALSE(DmBaseType::lessThan(*type, *type));
}

TEST(DmTypeLessThan, EnumWithFewerKeysIsLess) {
    auto const fewer = makeEnum("A", {{"z", 0}});
    auto const more = makeEnum("B", {{"a", 0}, {"b", 1}});
    EXPECT_TRUE(DmBaseType::lessThan(*fewer, *more));
    EXPECT_FALSE(DmBaseType::lessThan(*more, *fewer));
}

TEST(DmTypeLessThan, EnumsOrderByTheFirstDifferingKey) {
    auto const first = makeEnum("A", {{"red", 9}, {"blue", 8}});
    auto const second = makeEnum("B", {{"red", 0}, {"green", 1}});
    EXPECT_TRUE(DmBaseType::lessThan(*first, *second));
    EXPECT_FALSE(DmBaseType::lessThan(*second, *first));
}

TEST(DmTypeLessThan, EnumKeyThatIsAPrefixIsLess) {
    auto const shorter = makeEnum("A", {{"ab", 0}});
    auto const longer = makeEnum("B", {{"abc", 0}});
    EXPECT_TRUE(DmBaseType::lessThan(*shorter, *longer));
    EXPECT_FALSE(DmBaseType::lessThan(*longer, *shorter));
}

TEST(DmTypeLessThan, LessThanOfAnEnumWithItselfIsTrue) {
    auto const type = makeEnum("Color", {{"red", 0}, {"green", 1}});
    EXPECT_TRUE(DmBaseType::lessThan(*type, *type));
}

TEST(DmTypeLessThan, LessThanOfAnEnumWithoutKeysWithItselfIsTrue) {
    auto const type = makeEnum("Empty", {});
    EXPECT_TRUE(DmBaseType::lessThan(*type, *type));
}

TEST(DmTypeLessThan, EnumsWithTheSameKeysAreEachLessThanTheOther) {
    auto const first = makeEnum("A", {{"red", 0}, {"green", 1}});
    auto const second = makeEnum("B", {{"red", 0}, {"green", 1}});
    EXPECT_TRUE(DmBaseType::lessThan(*first, *second));
    EXPECT_TRUE(DmBaseType::lessThan(*second, *first));
}

TEST(DmTypeLessThan, EnumsWithTheSameKeysAndDifferentIntegersAreEachLessThanTheOther) {
    auto const first = makeEnum("A", {{"red", 0}, {"green", 1}});
    auto const second = makeEnum("B", {{"red", 7}, {"green", 3}});
    EXPECT_TRUE(DmBaseType::lessThan(*first, *second));
    EXPECT_TRUE(DmBaseType::lessThan(*second, *first));
}

TEST(DmTypeLessThan, AMissingTypeIsLessThanAType) {
    EXPECT_TRUE(DmBaseType::lessThan(TypePtr(), intType()));
    EXPECT_FALSE(DmBaseType::lessThan(intType(), TypePtr()));
}

TEST(DmTypeLessThan, TwoMissingTypesAreNotLessEitherWay) {
    EXPECT_FALSE(DmBaseType::lessThan(TypePtr(), TypePtr()));
}
