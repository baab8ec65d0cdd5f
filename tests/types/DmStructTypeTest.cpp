// Struct types: members, layout (worked out on first need and cached),
// sub-members of struct-typed members, resolution and run-time records.
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>
#include <KestoDM/platform/UntypedTypeRep.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmExternBaseType.h>
#include <KestoDM/types/DmMangledName.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmTypeKind.h>
#include <KestoDM/types/DmUnknownType.h>

#include "types/DmExternTypeFactory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

using namespace Kesto;

namespace {

using MemberPtr = std::shared_ptr<DmStructType::Member>;

std::shared_ptr<DmStructType> makeStruct(std::string const& name) {
    return DmLibrary::createStructType(name);
}

std::vector<std::string> memberNames(DmStructType const& type) {
    std::vector<std::string> names;
    for (auto const& entry : type) {
        names.push_back(entry.first);
    }
    return names;
}

std::vector<std::string> subMemberNames(DmStructType::Member const& member) {
    std::vector<std::string> names;
    for (auto const& entry : member.getSubMembers()) {
        names.push_back(entry.first);
    }
    return names;
}

/// The sub-member `name` of `member`, or null.
MemberPtr subMember(DmStructType::Member const& member, std::string const& name) {
    auto const found = member.getSubMembers().find(name);
    return found == member.getSubMembers().end() ? nullptr : found->second;
}

/// Mixed members, laid out by hand:
///   flag   bool    @0   (1 byte, pad to 8)
///   ratio  double  @8   (8 bytes)
///   count  int     @16  (4 bytes, pad to 24)
///   label  string  @24  (16 bytes, aligned to 8)
///   nested Nested  @40  (8 bytes: x int @0, y bool @4, size rounded to its alignment 4)
///   size 48, alignment 8.
class DmStructTypeLayout : public testing::Test {
protected:
    DmStructTypeLayout() : m_nested(makeStruct("Nested")), m_mixed(makeStruct("Mixed")) {
        m_nested->addMember("x", DmLibrary::getIntType());
        m_nested->addMember("y", DmLibrary::getBoolType());
        m_mixed->addMember("flag", DmLibrary::getBoolType());
        m_mixed->addMember("ratio", DmLibrary::getDoubleType());
        m_mixed->addMember("count", DmLibrary::getIntType());
        m_mixed->addMember("label", DmLibrary::getStringType());
        m_mixed->addMember("nested", m_nested);
    }

    std::uint64_t offsetOf(std::string const& name) const {
        MemberPtr const member = m_mixed->findMember(name);
        return member ? member->getOffset() : ~std::uint64_t(0);
    }

    std::shared_ptr<DmStructType> m_nested;
    std::shared_ptr<DmStructType> m_mixed;
};

} // namespace

// ---------------------------------------------------------------------------
// Members

TEST(DmStructType, KindIsStruct) {
    EXPECT_EQ(makeStruct("Point")->getTypeKind(), kTypeStruct);
}

TEST(DmStructType, NewStructHasNoMembers) {
    auto const type = makeStruct("Point");
    EXPECT_EQ(type->size(), 0u);
    EXPECT_EQ(type->begin(), type->end());
}

TEST(DmStructType, AddMemberReturnsTheNewMember) {
    auto const type = makeStruct("Point");
    MemberPtr const member = type->addMember("x", DmLibrary::getIntType());
    ASSERT_NE(member, nullptr);
    EXPECT_EQ(member->getName(), "x");
    EXPECT_EQ(member->getType(), DmLibrary::getIntType());
    EXPECT_EQ(member->getParentType(), type.get());
    EXPECT_EQ(type->findMember("x"), member);
}

TEST(DmStructType, AddMemberWithATakenNameReturnsNull) {
    auto const type = makeStruct("Point");
    type->addMember("x", DmLibrary::getIntType());
    EXPECT_EQ(type->addMember("x", DmLibrary::getDoubleType()), nullptr);
}

TEST(DmStructType, AddMemberWithATakenNameKeepsTheFirstMember) {
    auto const type = makeStruct("Point");
    MemberPtr const first = type->addMember("x", DmLibrary::getIntType());
    type->addMember("x", DmLibrary::getDoubleType());
    EXPECT_EQ(type->size(), 1u);
    EXPECT_EQ(type->findMember("x"), first);
    EXPECT_EQ(first->getType(), DmLibrary::getIntType());
}

TEST(DmStructType, SizeCountsTheMembers) {
    auto const type = makeStruct("Point");
    type->addMember("x", DmLibrary::getIntType());
    type->addMember("y", DmLibrary::getIntType());
    type->addMember("z", DmLibrary::getIntType());
    EXPECT_EQ(type->size(), 3u);
}

TEST(DmStructType, MembersIterateInOrderOfAddition) {
    auto const type = makeStruct("Record");
    type->addMember("zeta", DmLibrary::getIntType());
    type->addMember("alpha", DmLibrary::getIntType());
    type->addMember("mid", DmLibrary::getIntType());
    EXPECT_EQ(memberNames(*type), (std::vector<std::string>{"zeta", "alpha", "mid"}));
}

TEST(DmStructType, FindMemberOfAnAbsentNameIsNull) {
    auto const type = makeStruct("Point");
    type->addMember("x", DmLibrary::getIntType());
    EXPECT_EQ(type->findMember("y"), nullptr);
}

// ---------------------------------------------------------------------------
// Layout

TEST_F(DmStructTypeLayout, MemberOffsetsFollowEachMembersAlignment) {
    m_mixed->getSizeOf();
    EXPECT_EQ(offsetOf("flag"), 0u);
    EXPECT_EQ(offsetOf("ratio"), 8u);
    EXPECT_EQ(offsetOf("count"), 16u);
    EXPECT_EQ(offsetOf("label"), 24u);
    EXPECT_EQ(offsetOf("nested"), 40u);
}

TEST_F(DmStructTypeLayout, SizeIsTheEndOfTheLastMemberRoundedToTheAlignment) {
    EXPECT_EQ(m_mixed->getSizeOf(), 48u);
}

TEST_F(DmStructTypeLayout, AlignmentIsTheLargestMemberAlignment) {
    EXPECT_EQ(m_mixed->getAlignmentOf(), 8u);
}

TEST_F(DmStructTypeLayout, NestedStructIsEightBytesAlignedToFour) {
    EXPECT_EQ(m_nested->getSizeOf(), 8u);
    EXPECT_EQ(m_nested->getAlignmentOf(), 4u);
}

TEST_F(DmStructTypeLayout, UntypedTypeRepHasTheStructsSizeAndAlignment) {
    Internal::UntypedTypeRep const rep = m_mixed->getUntypedTypeRep();
    ASSERT_TRUE(rep.isValid());
    EXPECT_EQ(rep.size(), 48u);
    EXPECT_EQ(rep.alignment(), 8u);
}

TEST_F(DmStructTypeLayout, StructAllocatorIsTheUntypedTypeRep) {
    EXPECT_TRUE(m_mixed->getStructAllocator().isSameAs(m_mixed->getUntypedTypeRep()));
}

TEST_F(DmStructTypeLayout, LayoutIsCachedBetweenReads) {
    EXPECT_TRUE(m_mixed->getUntypedTypeRep().isSameAs(m_mixed->getUntypedTypeRep()));
}

TEST_F(DmStructTypeLayout, SubMemberOffsetsAreAbsoluteWithinTheOuterStruct) {
    m_mixed->getSizeOf();
    MemberPtr const nested = m_mixed->findMember("nested");
    ASSERT_NE(nested, nullptr);
    MemberPtr const x = subMember(*nested, "x");
    MemberPtr const y = subMember(*nested, "y");
    ASSERT_NE(x, nullptr);
    ASSERT_NE(y, nullptr);
    EXPECT_EQ(x->getOffset(), 40u);
    EXPECT_EQ(y->getOffset(), 44u);
}

TEST_F(DmStructTypeLayout, IsNotPODWithAStringMember) {
    EXPECT_FALSE(m_mixed->isPOD());
}

TEST_F(DmStructTypeLayout, IsPODWithOnlyPODMembers) {
    EXPECT_TRUE(m_nested->isPOD());
}

TEST(DmStructType, SizeOfDoubleThenBoolIsRoundedUpToSixteen) {
    auto const type = makeStruct("Padded");
    type->addMember("value", DmLibrary::getDoubleType());
    type->addMember("flag", DmLibrary::getBoolType());
    EXPECT_EQ(type->getSizeOf(), 16u);
}

TEST(DmStructType, IsPODWithNumbersAndAPODStructMember) {
    auto const inner = makeStruct("Inner");
    inner->addMember("a", DmLibrary::getCharType());
    auto const outer = makeStruct("Outer");
    outer->addMember("b", DmLibrary::getDoubleType());
    outer->addMember("inner", inner);
    EXPECT_TRUE(outer->isPOD());
}

TEST(DmStructType, IsNotPODWithAStructMemberHoldingAString) {
    auto const inner = makeStruct("Inner");
    inner->addMember("text", DmLibrary::getStringType());
    auto const outer = makeStruct("Outer");
    outer->addMember("inner", inner);
    EXPECT_FALSE(outer->isPOD());
}

TEST(DmStructType, AddingAMemberAfterTheLayoutWasReadLaysItOutAnew) {
    auto const type = makeStruct("Growing");
    type->addMember("count", DmLibrary::getIntType());
    ASSERT_EQ(type->getSizeOf(), 4u);
    ASSERT_EQ(type->getAlignmentOf(), 4u);
    MemberPtr const value = type->addMember("value", DmLibrary::getDoubleType());
    EXPECT_EQ(type->getSizeOf(), 16u);
    EXPECT_EQ(type->getAlignmentOf(), 8u);
    EXPECT_EQ(value->getOffset(), 8u);
}

TEST(DmStructType, AddingAMemberAfterTheLayoutWasReadGivesANewRep) {
    auto const type = makeStruct("Growing");
    type->addMember("count", DmLibrary::getIntType());
    Internal::UntypedTypeRep const before = type->getUntypedTypeRep();
    type->addMember("value", DmLibrary::getDoubleType());
    EXPECT_FALSE(type->getUntypedTypeRep().isSameAs(before));
}

TEST(DmStructType, RefreshInternalsLaysTheStructOutAgain) {
    auto const type = makeStruct("Point");
    type->addMember("x", DmLibrary::getIntType());
    Internal::UntypedTypeRep const before = type->getUntypedTypeRep();
    type->refreshInternals();
    Internal::UntypedTypeRep const after = type->getUntypedTypeRep();
    EXPECT_FALSE(after.isSameAs(before));
    EXPECT_EQ(after.size(), 4u);
}

TEST(DmStructType, SubMembersOfThreeLevelsHaveAbsoluteOffsets) {
    // inner: a int @0, b double @8 (16 bytes, align 8)
    // mid:   flag bool @0, inner @8 (24 bytes)
    // outer: c char @0, mid @8 → mid.flag @8, mid.inner @16, mid.inner.a @16, mid.inner.b @24
    auto const inner = makeStruct("Inner");
    inner->addMember("a", DmLibrary::getIntType());
    inner->addMember("b", DmLibrary::getDoubleType());
    auto const mid = makeStruct("Mid");
    mid->addMember("flag", DmLibrary::getBoolType());
    mid->addMember("inner", inner);
    auto const outer = makeStruct("Outer");
    outer->addMember("c", DmLibrary::getCharType());
    MemberPtr const midMember = outer->addMember("mid", mid);
    ASSERT_EQ(outer->getSizeOf(), 32u);

    MemberPtr const flag = subMember(*midMember, "flag");
    MemberPtr const innerMember = subMember(*midMember, "inner");
    ASSERT_NE(flag, nullptr);
    ASSERT_NE(innerMember, nullptr);
    MemberPtr const a = subMember(*innerMember, "a");
    MemberPtr const b = subMember(*innerMember, "b");
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(midMember->getOffset(), 8u);
    EXPECT_EQ(flag->getOffset(), 8u);
    EXPECT_EQ(innerMember->getOffset(), 16u);
    EXPECT_EQ(a->getOffset(), 16u);
    EXPECT_EQ(b->getOffset(), 24u);
}

TEST(DmStructType, EmptyStructIsZeroBytes) {
    EXPECT_EQ(makeStruct("Empty")->getSizeOf(), 0u);
}

// ---------------------------------------------------------------------------
// Member paths, names and sub-members

TEST(DmStructType, MemberPathOfATopLevelMemberIsItsName) {
    auto const type = makeStruct("Point");
    EXPECT_EQ(type->addMember("a", DmLibrary::getIntType())->getMemberPath(), "a");
}

TEST_F(DmStructTypeLayout, MemberPathOfASubMemberIsDotted) {
    MemberPtr const nested = m_mixed->findMember("nested");
    ASSERT_NE(nested, nullptr);
    MemberPtr const x = subMember(*nested, "x");
    ASSERT_NE(x, nullptr);
    EXPECT_EQ(x->getMemberPath(), "nested.x");
}

TEST(DmStructType, MemberPathOfASubSubMemberHasTwoDots) {
    auto const inner = makeStruct("Inner");
    inner->addMember("c", DmLibrary::getIntType());
    auto const mid = makeStruct("Mid");
    mid->addMember("b", inner);
    auto const outer = makeStruct("Outer");
    MemberPtr const a = outer->addMember("a", mid);
    MemberPtr const b = subMember(*a, "b");
    ASSERT_NE(b, nullptr);
    MemberPtr const c = subMember(*b, "c");
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->getMemberPath(), "a.b.c");
}

TEST_F(DmStructTypeLayout, SubMembersMirrorTheMembersOfTheMemberType) {
    MemberPtr const nested = m_mixed->findMember("nested");
    ASSERT_NE(nested, nullptr);
    EXPECT_EQ(nested->size(), 2u);
    EXPECT_EQ(subMemberNames(*nested), (std::vector<std::string>{"x", "y"}));
    EXPECT_EQ(subMember(*nested, "x")->getType(), DmLibrary::getIntType());
    EXPECT_EQ(subMember(*nested, "y")->getType(), DmLibrary::getBoolType());
}

TEST(DmStructType, MemberOfANonStructTypeHasNoSubMembers) {
    auto const type = makeStruct("Point");
    EXPECT_EQ(type->addMember("x", DmLibrary::getIntType())->size(), 0u);
}

TEST(DmStructType, MemberOfAnArrayOfStructsHasNoSubMembers) {
    auto const inner = makeStruct("Inner");
    inner->addMember("x", DmLibrary::getIntType());
    auto const type = makeStruct("Outer");
    EXPECT_EQ(type->addMember("items", std::make_shared<DmArrayType>(inner))->size(), 0u);
}

TEST(DmStructType, MemberFullNameIsTheStructFullNameAndTheMemberName) {
    auto const type = makeStruct("Point");
    MemberPtr const member = type->addMember("x", DmLibrary::getIntType());
    std::string fullName;
    member->resolveFullName(fullName);
    EXPECT_EQ(fullName, "Point::x");
}

TEST(DmStructType, SetTypeToAStructRebuildsTheSubMembers) {
    auto const nested = makeStruct("Nested");
    nested->addMember("x", DmLibrary::getIntType());
    nested->addMember("y", DmLibrary::getDoubleType());
    auto const type = makeStruct("Outer");
    MemberPtr const member = type->addMember("a", DmLibrary::getIntType());
    ASSERT_EQ(member->size(), 0u);
    member->setType(nested);
    EXPECT_EQ(member->getType(), nested);
    EXPECT_EQ(subMemberNames(*member), (std::vector<std::string>{"x", "y"}));
    ASSERT_NE(subMember(*member, "y"), nullptr);
    EXPECT_EQ(subMember(*member, "y")->getMemberPath(), "a.y");
}

TEST(DmStructType, SetTypeDropsTheLayout) {
    // a int @0, b int @4 (8 bytes) → a Nested{x int @0, y double @8} @0, b int @16 (24 bytes)
    auto const nested = makeStruct("Nested");
    nested->addMember("x", DmLibrary::getIntType());
    nested->addMember("y", DmLibrary::getDoubleType());
    auto const type = makeStruct("Outer");
    MemberPtr const a = type->addMember("a", DmLibrary::getIntType());
    MemberPtr const b = type->addMember("b", DmLibrary::getIntType());
    ASSERT_EQ(type->getSizeOf(), 8u);
    a->setType(nested);
    EXPECT_EQ(type->getSizeOf(), 24u);
    EXPECT_EQ(type->getAlignmentOf(), 8u);
    EXPECT_EQ(b->getOffset(), 16u);
}

TEST(DmStructType, SetTypeToANonStructClearsTheSubMembers) {
    auto const nested = makeStruct("Nested");
    nested->addMember("x", DmLibrary::getIntType());
    auto const type = makeStruct("Outer");
    MemberPtr const member = type->addMember("a", nested);
    ASSERT_EQ(member->size(), 1u);
    member->setType(DmLibrary::getIntType());
    EXPECT_EQ(member->size(), 0u);
}

TEST(DmStructType, RefusesAMemberOfItsOwnType) {
    auto const type = makeStruct("Self");
    type->addMember("value", DmLibrary::getIntType());
    EXPECT_EQ(type->addMember("self", type), nullptr);
    EXPECT_EQ(type->size(), 1u);
    EXPECT_EQ(type->getSizeOf(), 4u);
}

TEST(DmStructType, RefusesAMemberThatHoldsTheStructThroughAnotherStruct) {
    auto const a = makeStruct("A");
    auto const b = makeStruct("B");
    ASSERT_NE(b->addMember("a", a), nullptr);
    EXPECT_EQ(a->addMember("b", b), nullptr);
    EXPECT_EQ(a->size(), 0u);
    EXPECT_TRUE(a->isFullyResolved());
}

TEST(DmStructType, SetTypeRefusesATypeThatHoldsTheMembersStruct) {
    auto const a = makeStruct("A");
    auto const b = makeStruct("B");
    MemberPtr const member = a->addMember("m", DmLibrary::getIntType());
    ASSERT_NE(b->addMember("a", a), nullptr);
    EXPECT_FALSE(member->setType(b));
    EXPECT_EQ(member->getType(), DmLibrary::getIntType());
    EXPECT_FALSE(member->setType(a));
    EXPECT_TRUE(member->setType(DmLibrary::getDoubleType()));
}

// ---------------------------------------------------------------------------
// Resolution

TEST(DmStructType, StructOfBuiltInsIsFullyResolved) {
    auto const type = makeStruct("Point");
    type->addMember("x", DmLibrary::getIntType());
    type->addMember("label", DmLibrary::getStringType());
    EXPECT_TRUE(type->isFullyResolved());
}

TEST(DmStructType, StructWithAnUnknownMemberIsNotFullyResolved) {
    auto const type = makeStruct("Point");
    type->addMember("x", DmLibrary::getIntType());
    type->addMember("mystery", Internal::ExternTypeFactory::make<DmUnknownType>("Mystery"));
    EXPECT_FALSE(type->isFullyResolved());
}

TEST(DmStructType, StructWithAStructMemberHoldingAnUnknownIsNotFullyResolved) {
    auto const inner = makeStruct("Inner");
    inner->addMember("mystery", Internal::ExternTypeFactory::make<DmUnknownType>("Mystery"));
    auto const outer = makeStruct("Outer");
    outer->addMember("inner", inner);
    EXPECT_FALSE(outer->isFullyResolved());
}

// ---------------------------------------------------------------------------
// Run-time records. Records live in the process-wide table and the first
// classification of a mangled name stands, so each test uses a name of its own.

TEST(DmStructType, RuntimeTypeInfoIsNullWithoutMangledName) {
    auto const type = makeStruct("Point");
    type->addMember("x", DmLibrary::getIntType());
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
}

TEST(DmStructType, RuntimeTypeInfoWithAMangledNameIsAStructRecordOfThatName) {
    auto const type = makeStruct("Point");
    type->addMember("x", DmLibrary::getIntType());
    type->addMember("y", DmLibrary::getDoubleType());
    type->setTypeNameMangleName(DmMangledName("", "N4Test5PointE"));
    Internal::RuntimeTypeInfo const* const info = type->getRuntimeTypeInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->getKind(), Internal::RuntimeTypeInfo::Kind::kStruct);
    EXPECT_EQ(info->getMangledName(), "N4Test5PointE");
}

TEST(DmStructType, RuntimeTypeInfoListsTheMemberRecordsInOrder) {
    auto const type = makeStruct("Pair");
    type->addMember("x", DmLibrary::getIntType());
    type->addMember("y", DmLibrary::getDoubleType());
    type->setTypeNameMangleName(DmMangledName("", "N4Test4PairE"));
    Internal::RuntimeTypeInfo const* const info = type->getRuntimeTypeInfo();
    ASSERT_NE(info, nullptr);
    Internal::RttiTable const& table = Internal::GlobalRttiTable::get();
    EXPECT_EQ(info->getMembers(), (std::vector<Internal::RuntimeTypeInfo const*>{
                                      table.getBuiltin<int>(), table.getBuiltin<double>()}));
    EXPECT_EQ(info->getUntypedTypeRep().size(), 16u);
}

TEST(DmStructType, RuntimeTypeInfoIsTheSameRecordOnEveryCall) {
    auto const type = makeStruct("Cached");
    type->addMember("x", DmLibrary::getIntType());
    type->setTypeNameMangleName(DmMangledName("", "N4Test6CachedE"));
    Internal::RuntimeTypeInfo const* const first = type->getRuntimeTypeInfo();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(type->getRuntimeTypeInfo(), first);
}

TEST(DmStructType, RuntimeTypeInfoIsWorkedOutAgainAfterAddMember) {
    // The new member's type has no record, so a record worked out again is
    // null; a stale cached record would still be returned.
    auto const type = makeStruct("Changing");
    type->addMember("x", DmLibrary::getIntType());
    type->setTypeNameMangleName(DmMangledName("", "N4Test8ChangingE"));
    ASSERT_NE(type->getRuntimeTypeInfo(), nullptr);
    type->addMember("other", makeStruct("NoMangledName"));
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
}

TEST(DmStructType, RuntimeTypeInfoIsNullOnceTheMembersNoLongerMatchTheRegisteredLayout) {
    // The table keeps the first layout of a mangled name; a struct that grew
    // since no longer has that native form.
    auto const type = makeStruct("Growing");
    type->addMember("x", DmLibrary::getIntType());
    type->setTypeNameMangleName(DmMangledName("", "N4Test7GrowingE"));
    ASSERT_NE(type->getRuntimeTypeInfo(), nullptr);
    type->addMember("y", DmLibrary::getIntType());
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
}

TEST(DmStructType, RuntimeTypeInfoIsWorkedOutAgainAfterSetType) {
    auto const type = makeStruct("Retyped");
    MemberPtr const member = type->addMember("x", DmLibrary::getIntType());
    type->setTypeNameMangleName(DmMangledName("", "N4Test7RetypedE"));
    ASSERT_NE(type->getRuntimeTypeInfo(), nullptr);
    member->setType(makeStruct("NoMangledName"));
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
}

TEST(DmStructType, RuntimeTypeInfoIsNullWhenAMemberHasNone) {
    auto const type = makeStruct("Holder");
    type->addMember("x", DmLibrary::getIntType());
    type->addMember("inner", makeStruct("NoMangledName"));
    type->setTypeNameMangleName(DmMangledName("", "N4Test6HolderE"));
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
}

TEST(DmStructType, RuntimeTypeInfoOfANestedStructWithMangledNamesListsTheInnerRecord) {
    auto const inner = makeStruct("Inner");
    inner->addMember("x", DmLibrary::getIntType());
    inner->setTypeNameMangleName(DmMangledName("", "N4Test5InnerE"));
    auto const outer = makeStruct("Outer");
    outer->addMember("inner", inner);
    outer->setTypeNameMangleName(DmMangledName("", "N4Test5OuterE"));
    Internal::RuntimeTypeInfo const* const info = outer->getRuntimeTypeInfo();
    ASSERT_NE(info, nullptr);
    ASSERT_NE(inner->getRuntimeTypeInfo(), nullptr);
    EXPECT_EQ(info->getMembers(),
              (std::vector<Internal::RuntimeTypeInfo const*>{inner->getRuntimeTypeInfo()}));
}
