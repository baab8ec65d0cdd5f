// Values of the built-in types: the datum held inline or in storage owned
// elsewhere (a struct member, an array slot), the set flag, assignment, the
// buffer operations and clones. Every rule runs for each of the thirteen
// value classes; the rules that need one kind in particular follow.
#include <KestoDM/platform/Any.h>
#include <KestoDM/platform/RuntimeAny.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmEnumValue.h>
#include <KestoDM/types/DmUnknownValue.h>

#include "types/ValueTestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <utility>

using namespace Kesto;
using namespace Kesto::ValueTest;

namespace {

// ---------------------------------------------------------------------------
// What each value class is tested with: its type, two distinct data (the
// first unlike the default), and a built-in value class of another kind.

template <class V>
struct Traits;

template <>
struct Traits<DmBoolValue> {
    static constexpr char const* kName = "Bool";
    static auto const& type() { return Singletons::boolType(); }
    static bool first() { return true; }
    static bool second() { return false; }
    using Other = DmIntValue;
};
template <>
struct Traits<DmCharValue> {
    static constexpr char const* kName = "Char";
    static auto const& type() { return Singletons::charType(); }
    static signed char first() { return -5; }
    static signed char second() { return 100; }
    using Other = DmUCharValue;
};
template <>
struct Traits<DmUCharValue> {
    static constexpr char const* kName = "UChar";
    static auto const& type() { return Singletons::ucharType(); }
    static unsigned char first() { return 200; }
    static unsigned char second() { return 7; }
    using Other = DmCharValue;
};
template <>
struct Traits<DmShortValue> {
    static constexpr char const* kName = "Short";
    static auto const& type() { return Singletons::shortType(); }
    static short first() { return -30000; }
    static short second() { return 12; }
    using Other = DmUShortValue;
};
template <>
struct Traits<DmUShortValue> {
    static constexpr char const* kName = "UShort";
    static auto const& type() { return Singletons::ushortType(); }
    static unsigned short first() { return 60000; }
    static unsigned short second() { return 3; }
    using Other = DmShortValue;
};
template <>
struct Traits<DmIntValue> {
    static constexpr char const* kName = "Int";
    static auto const& type() { return Singletons::intType(); }
    static int first() { return -123456; }
    static int second() { return 42; }
    using Other = DmUIntValue;
};
template <>
struct Traits<DmUIntValue> {
    static constexpr char const* kName = "UInt";
    static auto const& type() { return Singletons::uintType(); }
    static unsigned int first() { return 4000000000u; }
    static unsigned int second() { return 9u; }
    using Other = DmIntValue;
};
template <>
struct Traits<DmLongValue> {
    static constexpr char const* kName = "Long";
    static auto const& type() { return Singletons::longType(); }
    static std::int64_t first() { return std::numeric_limits<std::int64_t>::min() + 1; }
    static std::int64_t second() { return std::int64_t(1) << 40; }
    using Other = DmULongValue;
};
template <>
struct Traits<DmULongValue> {
    static constexpr char const* kName = "ULong";
    static auto const& type() { return Singletons::ulongType(); }
    static std::uint64_t first() { return std::numeric_limits<std::uint64_t>::max(); }
    static std::uint64_t second() { return 17u; }
    using Other = DmLongValue;
};
template <>
struct Traits<DmFloatValue> {
    static constexpr char const* kName = "Float";
    static auto const& type() { return Singletons::floatType(); }
    static float first() { return 1.5f; }
    static float second() { return -2.25f; }
    using Other = DmDoubleValue;
};
template <>
struct Traits<DmDoubleValue> {
    static constexpr char const* kName = "Double";
    static auto const& type() { return Singletons::doubleType(); }
    static double first() { return 0.1; }
    static double second() { return -1e300; }
    using Other = DmFloatValue;
};
template <>
struct Traits<DmAnyValue> {
    static constexpr char const* kName = "Any";
    static auto const& type() { return Singletons::anyType(); }
    static Any first() { return Internal::RuntimeAny::create<int>(5); }
    static Any second() { return Internal::RuntimeAny::create<String>(String("second")); }
    using Other = DmStringValue;
};
template <>
struct Traits<DmStringValue> {
    static constexpr char const* kName = "String";
    static auto const& type() { return Singletons::stringType(); }
    static String first() { return String("a text long enough to live on the heap"); }
    static String second() { return String("second"); }
    using Other = DmAnyValue;
};

/// Equality of data; an Any compares by record and by its int or String.
template <class T>
bool same(T const& a, T const& b) {
    return a == b;
}
bool same(Any const& a, Any const& b) {
    if (a.getTypeInfo() != b.getTypeInfo()) {
        return false;
    }
    if (a.isEmpty()) {
        return true;
    }
    if (int const* const number = a.get<int>()) {
        return *number == *b.get<int>();
    }
    if (String const* const text = a.get<String>()) {
        return *text == *b.get<String>();
    }
    return false;
}

/// Storage with room for one T and no object in it, as a construction needs.
template <class T>
struct RawSlot {
    alignas(T) unsigned char bytes[sizeof(T)];

    T& object() { return *std::launder(reinterpret_cast<T*>(bytes)); }
    void destroy() { object().~T(); }
};

template <class V>
class DmBuiltInValueKinds : public ValueTestBase {
protected:
    using Native = typename V::DataType;
    using Sample = Traits<V>;
};

using Kinds = ::testing::Types<DmBoolValue, DmCharValue, DmUCharValue, DmShortValue, DmUShortValue,
                               DmIntValue, DmUIntValue, DmLongValue, DmULongValue, DmFloatValue,
                               DmDoubleValue, DmAnyValue, DmStringValue>;

struct KindNames {
    template <class V>
    static std::string GetName(int) {
        return Traits<V>::kName;
    }
};

} // namespace

TYPED_TEST_SUITE(DmBuiltInValueKinds, Kinds, KindNames);

// ---------------------------------------------------------------------------
// A new value

TYPED_TEST(DmBuiltInValueKinds, NewValueHasItsSingletonTypeAndTheDefaultDatum) {
    using Native = typename TestFixture::Native;
    TypeParam const value;
    EXPECT_EQ(value.getType(), TestFixture::Sample::type());
    EXPECT_TRUE(same(value.getData(), Native()));
    EXPECT_FALSE(value.isMemberValue());
}

TYPED_TEST(DmBuiltInValueKinds, NewValueIsImplicit) {
    TypeParam const value;
    EXPECT_TRUE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, NewValueIsValid) {
    TypeParam const value;
    EXPECT_TRUE(value.isValid());
}

TYPED_TEST(DmBuiltInValueKinds, TypeMakesAnImplicitValueOfThisClass) {
    using Native = typename TestFixture::Native;
    std::shared_ptr<DmBaseValue> const made = TestFixture::Sample::type()->createValue();
    auto const value = as<TypeParam>(made);
    ASSERT_NE(value, nullptr);
    EXPECT_TRUE(value->isImplicit());
    EXPECT_TRUE(same(value->getData(), Native()));
    auto const byDefault = as<TypeParam>(TestFixture::Sample::type()->createDefaultValue());
    ASSERT_NE(byDefault, nullptr);
    EXPECT_TRUE(byDefault->isImplicit());
    EXPECT_TRUE(same(byDefault->getData(), Native()));
}

// ---------------------------------------------------------------------------
// setData and assign

TYPED_TEST(DmBuiltInValueKinds, SetDataFromAnLvalueStoresTheDatumAndClearsImplicitness) {
    using Native = typename TestFixture::Native;
    TypeParam value;
    Native const datum = TestFixture::Sample::first();
    EXPECT_TRUE(value.setData(datum));
    EXPECT_TRUE(same(value.getData(), datum));
    EXPECT_FALSE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, SetDataFromAnRvalueStoresTheDatumAndClearsImplicitness) {
    TypeParam value;
    EXPECT_TRUE(value.setData(TestFixture::Sample::first()));
    EXPECT_TRUE(same(value.getData(), TestFixture::Sample::first()));
    EXPECT_FALSE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, SetDataOfTheDefaultDatumStillClearsImplicitness) {
    using Native = typename TestFixture::Native;
    TypeParam value;
    EXPECT_TRUE(value.setData(Native()));
    EXPECT_FALSE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, ValueWasSetClearsImplicitness) {
    TypeParam value;
    value.valueWasSet();
    EXPECT_FALSE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, WritingThroughGetDataKeepsTheValueImplicit) {
    TypeParam value;
    value.getData() = TestFixture::Sample::first();
    EXPECT_TRUE(same(value.getData(), TestFixture::Sample::first()));
    EXPECT_TRUE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, AssignCopiesTheDatumAndClearsImplicitness) {
    auto const source = std::make_shared<TypeParam>();
    ASSERT_TRUE(source->setData(TestFixture::Sample::first()));
    TypeParam target;
    EXPECT_TRUE(target.assign(source));
    EXPECT_TRUE(same(target.getData(), TestFixture::Sample::first()));
    EXPECT_TRUE(same(source->getData(), TestFixture::Sample::first()));
    EXPECT_FALSE(target.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, AssignFromAnImplicitValueCopiesItsDatumAndClearsImplicitness) {
    using Native = typename TestFixture::Native;
    auto const source = std::make_shared<TypeParam>();
    TypeParam target;
    ASSERT_TRUE(target.setData(TestFixture::Sample::first()));
    EXPECT_TRUE(target.assign(source));
    EXPECT_TRUE(same(target.getData(), Native()));
    EXPECT_FALSE(target.isImplicit());
    EXPECT_TRUE(source->isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, AssignFromItselfSucceedsKeepsTheDatumAndClearsImplicitness) {
    auto const value = std::make_shared<TypeParam>();
    value->getData() = TestFixture::Sample::first();
    EXPECT_TRUE(value->assign(value));
    EXPECT_TRUE(same(value->getData(), TestFixture::Sample::first()));
    EXPECT_FALSE(value->isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, AssignFromNullFailsAndLeavesTheValue) {
    using Native = typename TestFixture::Native;
    TypeParam value;
    EXPECT_FALSE(value.assign(nullptr));
    EXPECT_TRUE(same(value.getData(), Native()));
    EXPECT_TRUE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, AssignFromAValueOfAnotherKindFailsAndLeavesTheValue) {
    using Native = typename TestFixture::Native;
    using Other = typename TestFixture::Sample::Other;
    auto const other = std::make_shared<Other>();
    other->valueWasSet();
    TypeParam value;
    EXPECT_FALSE(value.assign(other));
    EXPECT_TRUE(same(value.getData(), Native()));
    EXPECT_TRUE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, MoveAssignTakesTheDatumAndClearsImplicitness) {
    std::shared_ptr<DmBaseValue> source = std::make_shared<TypeParam>();
    ASSERT_TRUE(static_cast<TypeParam&>(*source).setData(TestFixture::Sample::first()));
    TypeParam target;
    EXPECT_TRUE(target.moveAssign(std::move(source)));
    EXPECT_TRUE(same(target.getData(), TestFixture::Sample::first()));
    EXPECT_FALSE(target.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, MoveAssignFromNullOrAnotherKindFailsAndLeavesTheValue) {
    using Native = typename TestFixture::Native;
    using Other = typename TestFixture::Sample::Other;
    TypeParam value;
    EXPECT_FALSE(value.moveAssign(nullptr));
    EXPECT_FALSE(value.moveAssign(std::make_shared<Other>()));
    EXPECT_TRUE(same(value.getData(), Native()));
    EXPECT_TRUE(value.isImplicit());
}

// ---------------------------------------------------------------------------
// Buffer operations

TYPED_TEST(DmBuiltInValueKinds, EveryBufferOperationWithANullBufferFailsAndChangesNothing) {
    using Native = typename TestFixture::Native;
    TypeParam value;
    EXPECT_FALSE(value.copyConstructIntoBuffer(nullptr));
    EXPECT_FALSE(value.moveConstructIntoBuffer(nullptr));
    EXPECT_FALSE(value.copyAssignIntoBuffer(nullptr));
    EXPECT_FALSE(value.moveAssignIntoBuffer(nullptr));
    EXPECT_FALSE(value.copyConstructFromBuffer(nullptr));
    EXPECT_FALSE(value.moveConstructFromBuffer(nullptr));
    EXPECT_FALSE(value.copyAssignFromBuffer(nullptr));
    EXPECT_FALSE(value.moveAssignFromBuffer(nullptr));
    EXPECT_TRUE(same(value.getData(), Native()));
    EXPECT_TRUE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, CopyConstructIntoBufferWritesTheDatumAndLeavesAnImplicitValueImplicit) {
    TypeParam value;
    value.getData() = TestFixture::Sample::first();
    RawSlot<typename TestFixture::Native> slot;
    EXPECT_TRUE(value.copyConstructIntoBuffer(slot.bytes));
    EXPECT_TRUE(same(slot.object(), TestFixture::Sample::first()));
    EXPECT_TRUE(same(value.getData(), TestFixture::Sample::first()));
    EXPECT_TRUE(value.isImplicit());
    slot.destroy();
}

TYPED_TEST(DmBuiltInValueKinds, MoveConstructIntoBufferWritesTheDatumAndLeavesAnImplicitValueImplicit) {
    TypeParam value;
    value.getData() = TestFixture::Sample::first();
    RawSlot<typename TestFixture::Native> slot;
    EXPECT_TRUE(value.moveConstructIntoBuffer(slot.bytes));
    EXPECT_TRUE(same(slot.object(), TestFixture::Sample::first()));
    EXPECT_TRUE(value.isImplicit());
    slot.destroy();
}

TYPED_TEST(DmBuiltInValueKinds, CopyAssignIntoBufferWritesTheDatumAndLeavesAnImplicitValueImplicit) {
    TypeParam value;
    value.getData() = TestFixture::Sample::first();
    typename TestFixture::Native target = TestFixture::Sample::second();
    EXPECT_TRUE(value.copyAssignIntoBuffer(&target));
    EXPECT_TRUE(same(target, TestFixture::Sample::first()));
    EXPECT_TRUE(same(value.getData(), TestFixture::Sample::first()));
    EXPECT_TRUE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, MoveAssignIntoBufferWritesTheDatumAndLeavesAnImplicitValueImplicit) {
    TypeParam value;
    value.getData() = TestFixture::Sample::first();
    typename TestFixture::Native target = TestFixture::Sample::second();
    EXPECT_TRUE(value.moveAssignIntoBuffer(&target));
    EXPECT_TRUE(same(target, TestFixture::Sample::first()));
    EXPECT_TRUE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, IntoBufferOperationsLeaveASetValueSet) {
    TypeParam value;
    ASSERT_TRUE(value.setData(TestFixture::Sample::first()));
    typename TestFixture::Native target{};
    EXPECT_TRUE(value.copyAssignIntoBuffer(&target));
    EXPECT_TRUE(value.moveAssignIntoBuffer(&target));
    EXPECT_FALSE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, CopyConstructFromBufferReadsTheDatumAndClearsImplicitness) {
    typename TestFixture::Native const source = TestFixture::Sample::first();
    TypeParam value;
    EXPECT_TRUE(value.copyConstructFromBuffer(&source));
    EXPECT_TRUE(same(value.getData(), TestFixture::Sample::first()));
    EXPECT_TRUE(same(source, TestFixture::Sample::first()));
    EXPECT_FALSE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, MoveConstructFromBufferReadsTheDatumAndClearsImplicitness) {
    typename TestFixture::Native source = TestFixture::Sample::first();
    TypeParam value;
    EXPECT_TRUE(value.moveConstructFromBuffer(&source));
    EXPECT_TRUE(same(value.getData(), TestFixture::Sample::first()));
    EXPECT_FALSE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, CopyAssignFromBufferReadsTheDatumAndClearsImplicitness) {
    typename TestFixture::Native const source = TestFixture::Sample::first();
    TypeParam value;
    EXPECT_TRUE(value.copyAssignFromBuffer(&source));
    EXPECT_TRUE(same(value.getData(), TestFixture::Sample::first()));
    EXPECT_TRUE(same(source, TestFixture::Sample::first()));
    EXPECT_FALSE(value.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, MoveAssignFromBufferReadsTheDatumAndClearsImplicitness) {
    typename TestFixture::Native source = TestFixture::Sample::first();
    TypeParam value;
    EXPECT_TRUE(value.moveAssignFromBuffer(&source));
    EXPECT_TRUE(same(value.getData(), TestFixture::Sample::first()));
    EXPECT_FALSE(value.isImplicit());
}

// ---------------------------------------------------------------------------
// Clones

TYPED_TEST(DmBuiltInValueKinds, CloneIsANewValueOfThisClassWithTheDatumAndType) {
    TypeParam value;
    ASSERT_TRUE(value.setData(TestFixture::Sample::first()));
    std::shared_ptr<DmBaseValue> const cloned = value.clone();
    auto const clone = as<TypeParam>(cloned);
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone.get(), &value);
    EXPECT_EQ(clone->getType(), value.getType());
    EXPECT_TRUE(same(clone->getData(), TestFixture::Sample::first()));
    EXPECT_FALSE(clone->isMemberValue());
}

TYPED_TEST(DmBuiltInValueKinds, CloneKeepsTheSetFlag) {
    TypeParam implicitValue;
    TypeParam setValue;
    ASSERT_TRUE(setValue.setData(TestFixture::Sample::first()));
    EXPECT_TRUE(implicitValue.clone()->isImplicit());
    EXPECT_FALSE(setValue.clone()->isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, CloneOfAnOwningValueIsIndependent) {
    TypeParam value;
    ASSERT_TRUE(value.setData(TestFixture::Sample::first()));
    auto const clone = as<TypeParam>(value.clone());
    ASSERT_NE(clone, nullptr);
    ASSERT_TRUE(clone->setData(TestFixture::Sample::second()));
    EXPECT_TRUE(same(value.getData(), TestFixture::Sample::first()));
    ASSERT_TRUE(value.setData(typename TestFixture::Native()));
    EXPECT_TRUE(same(clone->getData(), TestFixture::Sample::second()));
}

// ---------------------------------------------------------------------------
// Member values: the datum lives in storage owned elsewhere

TYPED_TEST(DmBuiltInValueKinds, MemberValueReadsItsStorageAndIsImplicit) {
    OwnedSlot<typename TestFixture::Native> slot;
    *slot.object = TestFixture::Sample::first();
    auto const member = as<TypeParam>(TestFixture::Sample::type()->createMemberValue(slot.bytes()));
    ASSERT_NE(member, nullptr);
    EXPECT_TRUE(member->isMemberValue());
    EXPECT_EQ(member->getType(), TestFixture::Sample::type());
    EXPECT_TRUE(same(member->getData(), TestFixture::Sample::first()));
    EXPECT_EQ(&member->getData(), slot.object.get());
    EXPECT_TRUE(member->isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, MemberValueSetDataWritesItsStorage) {
    OwnedSlot<typename TestFixture::Native> slot;
    TypeParam member(slot.bytes());
    EXPECT_TRUE(member.setData(TestFixture::Sample::first()));
    EXPECT_TRUE(same(*slot.object, TestFixture::Sample::first()));
    EXPECT_FALSE(member.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, MemberValueSeesWritesToItsStorage) {
    OwnedSlot<typename TestFixture::Native> slot;
    TypeParam const member(slot.bytes());
    *slot.object = TestFixture::Sample::first();
    EXPECT_TRUE(same(member.getData(), TestFixture::Sample::first()));
}

TYPED_TEST(DmBuiltInValueKinds, AssignIntoAMemberValueWritesItsStorage) {
    OwnedSlot<typename TestFixture::Native> slot;
    TypeParam member(slot.bytes());
    auto const source = std::make_shared<TypeParam>();
    ASSERT_TRUE(source->setData(TestFixture::Sample::first()));
    EXPECT_TRUE(member.assign(source));
    EXPECT_TRUE(same(*slot.object, TestFixture::Sample::first()));
}

TYPED_TEST(DmBuiltInValueKinds, AssignFromAMemberValueReadsItsStorage) {
    OwnedSlot<typename TestFixture::Native> slot;
    *slot.object = TestFixture::Sample::first();
    auto const member = std::make_shared<TypeParam>(slot.bytes());
    TypeParam target;
    EXPECT_TRUE(target.assign(member));
    EXPECT_TRUE(same(target.getData(), TestFixture::Sample::first()));
}

TYPED_TEST(DmBuiltInValueKinds, FromBufferIntoAMemberValueWritesItsStorage) {
    OwnedSlot<typename TestFixture::Native> slot;
    TypeParam member(slot.bytes());
    typename TestFixture::Native const source = TestFixture::Sample::first();
    EXPECT_TRUE(member.copyAssignFromBuffer(&source));
    EXPECT_TRUE(same(*slot.object, TestFixture::Sample::first()));
    EXPECT_FALSE(member.isImplicit());
}

TYPED_TEST(DmBuiltInValueKinds, CloneOfAMemberValueSharesTheStorage) {
    OwnedSlot<typename TestFixture::Native> slot;
    TypeParam member(slot.bytes());
    auto const clone = as<TypeParam>(member.clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_TRUE(clone->isMemberValue());
    EXPECT_EQ(&clone->getData(), slot.object.get());
    ASSERT_TRUE(clone->setData(TestFixture::Sample::first()));
    EXPECT_TRUE(same(*slot.object, TestFixture::Sample::first()));
    EXPECT_TRUE(same(member.getData(), TestFixture::Sample::first()));
}

TYPED_TEST(DmBuiltInValueKinds, MemberValueKeepsItsStorageAlive) {
    OwnedSlot<typename TestFixture::Native> slot;
    auto const member = std::make_shared<TypeParam>(slot.bytes());
    std::weak_ptr<typename TestFixture::Native> const storage = slot.object;
    slot.object.reset();
    ASSERT_FALSE(storage.expired());
    EXPECT_TRUE(member->setData(TestFixture::Sample::first()));
    EXPECT_TRUE(same(member->getData(), TestFixture::Sample::first()));
    EXPECT_TRUE(same(*storage.lock(), TestFixture::Sample::first()));
}

// ---------------------------------------------------------------------------
// Rules for one kind in particular

namespace {

/// A second value class over the int type: the same type, another class.
class OtherIntValue : public DmBuiltInValue<int> {
public:
    OtherIntValue() : DmBuiltInValue<int>(Singletons::intType(), 0) {}
    std::shared_ptr<DmBaseValue> clone() const override { return std::make_shared<OtherIntValue>(*this); }
    Any toAny() const override { return Any(); }
};

/// An int value made without a type.
class TypelessIntValue : public DmBuiltInValue<int> {
public:
    TypelessIntValue() : DmBuiltInValue<int>(nullptr, 0) {}
    std::shared_ptr<DmBaseValue> clone() const override { return std::make_shared<TypelessIntValue>(*this); }
    Any toAny() const override { return Any(); }
};

} // namespace

class DmBuiltInValueRules : public ValueTestBase {};

TEST_F(DmBuiltInValueRules, ValueWithoutTypeIsNotValid) {
    EXPECT_FALSE(TypelessIntValue().isValid());
}

TEST_F(DmBuiltInValueRules, AssignFromAnotherValueClassOfTheVerySameTypeFails) {
    auto const other = std::make_shared<OtherIntValue>();
    ASSERT_TRUE(other->setData(7));
    ASSERT_EQ(other->getType(), Singletons::intType());
    DmIntValue value;
    EXPECT_FALSE(value.assign(other));
    EXPECT_EQ(value.getData(), 0);
    EXPECT_TRUE(value.isImplicit());
}

TEST_F(DmBuiltInValueRules, AssignIntoAnotherValueClassOfTheVerySameTypeFails) {
    auto const source = std::make_shared<DmIntValue>();
    ASSERT_TRUE(source->setData(7));
    OtherIntValue other;
    EXPECT_FALSE(other.assign(source));
    EXPECT_FALSE(other.moveAssign(source));
    EXPECT_EQ(other.getData(), 0);
    EXPECT_TRUE(other.isImplicit());
}

TEST_F(DmBuiltInValueRules, IntValueRefusesAnEnumValue) {
    auto const type = makeEnumType("Color", {{"red", 0}, {"green", 1}});
    auto const enumValue = as<DmEnumValue>(type->createValue());
    ASSERT_NE(enumValue, nullptr);
    ASSERT_TRUE(enumValue->setData(1));
    DmIntValue value;
    EXPECT_FALSE(value.assign(enumValue));
    EXPECT_FALSE(value.moveAssign(enumValue));
    EXPECT_EQ(value.getData(), 0);
    EXPECT_TRUE(value.isImplicit());
}

TEST_F(DmBuiltInValueRules, EnumValueRefusesAnIntValue) {
    auto const type = makeEnumType("Color", {{"red", 0}, {"green", 1}});
    auto const enumValue = as<DmEnumValue>(type->createValue());
    ASSERT_NE(enumValue, nullptr);
    auto const source = std::make_shared<DmIntValue>();
    ASSERT_TRUE(source->setData(1));
    EXPECT_FALSE(enumValue->assign(source));
    EXPECT_EQ(enumValue->getData(), 0);
    EXPECT_TRUE(enumValue->isImplicit());
}

TEST_F(DmBuiltInValueRules, StringValueRefusesAnUnknownValue) {
    auto const type = makeUnknownType("Widget");
    auto const unknown = as<DmUnknownValue>(type->createValue());
    ASSERT_NE(unknown, nullptr);
    ASSERT_TRUE(unknown->setData(String("raw")));
    DmStringValue value;
    EXPECT_FALSE(value.assign(unknown));
    EXPECT_TRUE(value.getData().empty());
    EXPECT_TRUE(value.isImplicit());
}

TEST_F(DmBuiltInValueRules, MoveAssignOfAStringLeavesTheSourceEmpty) {
    auto const source = std::make_shared<DmStringValue>();
    ASSERT_TRUE(source->setData(String("moved text")));
    DmStringValue target;
    EXPECT_TRUE(target.moveAssign(source));
    EXPECT_EQ(target.getData(), String("moved text"));
    EXPECT_TRUE(source->getData().empty());
}

TEST_F(DmBuiltInValueRules, CopyAssignOfAStringSharesTheText) {
    auto const source = std::make_shared<DmStringValue>();
    ASSERT_TRUE(source->setData(String("shared text")));
    DmStringValue target;
    ASSERT_TRUE(target.assign(source));
    EXPECT_EQ(source->getData().useCount(), 2u);
    EXPECT_EQ(target.getData().data(), source->getData().data());
}

TEST_F(DmBuiltInValueRules, MoveConstructIntoBufferLeavesTheStringDatumEmpty) {
    DmStringValue value;
    ASSERT_TRUE(value.setData(String("moved text")));
    RawSlot<String> slot;
    EXPECT_TRUE(value.moveConstructIntoBuffer(slot.bytes));
    EXPECT_EQ(slot.object(), String("moved text"));
    EXPECT_TRUE(value.getData().empty());
    slot.destroy();
}

TEST_F(DmBuiltInValueRules, MoveAssignIntoBufferLeavesTheStringDatumEmpty) {
    DmStringValue value;
    ASSERT_TRUE(value.setData(String("moved text")));
    String target("old");
    EXPECT_TRUE(value.moveAssignIntoBuffer(&target));
    EXPECT_EQ(target, String("moved text"));
    EXPECT_TRUE(value.getData().empty());
}

TEST_F(DmBuiltInValueRules, MoveFromBufferLeavesTheStringInTheBufferEmpty) {
    String first("first moved text");
    String second("second moved text");
    DmStringValue value;
    EXPECT_TRUE(value.moveConstructFromBuffer(&first));
    EXPECT_EQ(value.getData(), String("first moved text"));
    EXPECT_TRUE(first.empty());
    EXPECT_TRUE(value.moveAssignFromBuffer(&second));
    EXPECT_EQ(value.getData(), String("second moved text"));
    EXPECT_TRUE(second.empty());
}

TEST_F(DmBuiltInValueRules, CopyFromBufferLeavesTheStringInTheBuffer) {
    String const text("copied text");
    DmStringValue value;
    EXPECT_TRUE(value.copyConstructFromBuffer(&text));
    EXPECT_EQ(text, String("copied text"));
    EXPECT_EQ(text.useCount(), 2u);
}

TEST_F(DmBuiltInValueRules, DroppingAStringValueReleasesItsText) {
    String const text("text held by a value");
    {
        DmStringValue value;
        ASSERT_TRUE(value.setData(text));
        EXPECT_EQ(text.useCount(), 2u);
    }
    EXPECT_EQ(text.useCount(), 1u);
}

TEST_F(DmBuiltInValueRules, MemberValueChangedBySetDataChangesTheStructBuffer) {
    auto const type =
        makeStructType("Pair", {{"count", Singletons::intType()}, {"ratio", Singletons::doubleType()}});
    auto const value = as<DmStructValue>(type->createValue());
    ASSERT_NE(value, nullptr);
    auto const count = member<DmIntValue>(*value, "count");
    auto const ratio = member<DmDoubleValue>(*value, "ratio");
    ASSERT_NE(count, nullptr);
    ASSERT_NE(ratio, nullptr);
    EXPECT_TRUE(count->isMemberValue());
    EXPECT_TRUE(count->setData(41));
    EXPECT_TRUE(ratio->setData(2.5));
    EXPECT_EQ(atOffset<int>(*value, *type, "count"), 41);
    EXPECT_EQ(atOffset<double>(*value, *type, "ratio"), 2.5);
}

TEST_F(DmBuiltInValueRules, MemberValueOfAStructSeesTheStructBufferChange) {
    auto const type = makeStructType("Single", {{"count", Singletons::intType()}});
    auto const value = as<DmStructValue>(type->createValue());
    ASSERT_NE(value, nullptr);
    auto const count = member<DmIntValue>(*value, "count");
    ASSERT_NE(count, nullptr);
    auto const source = as<DmStructValue>(type->createValue());
    ASSERT_NE(source, nullptr);
    ASSERT_TRUE(member<DmIntValue>(*source, "count")->setData(13));
    ASSERT_TRUE(value->assign(source));
    EXPECT_EQ(count->getData(), 13);
}
