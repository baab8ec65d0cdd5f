#include <KestoDM/platform/Any.h>

#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/platform/RuntimeAny.h>
#include <KestoDM/platform/String.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

using Kesto::Any;
using Kesto::Ptr;
using Kesto::String;
using Kesto::Internal::GlobalRttiTable;
using Kesto::Internal::RuntimeAny;

namespace {

struct Counted {
    explicit Counted(int* destroyed) : m_destroyed(destroyed) {}
    ~Counted() { ++*m_destroyed; }
    int* m_destroyed;
};

template <class T>
void expectHolds(T const& value) {
    Any const any = RuntimeAny::create(value);
    ASSERT_TRUE(any.hasValue());
    EXPECT_EQ(any.getTypeInfo(), GlobalRttiTable::get().getBuiltin<T>());
    ASSERT_NE(any.get<T>(), nullptr);
    EXPECT_EQ(*any.get<T>(), value);
    EXPECT_EQ(any.data(), static_cast<void const*>(any.get<T>()));
}

} // namespace

TEST(Any, IsThirtyTwoBytesAlignedToEight) {
    EXPECT_EQ(sizeof(Any), 32u);
    EXPECT_EQ(alignof(Any), 8u);
}

TEST(Any, DefaultIsEmpty) {
    Any const any;
    EXPECT_TRUE(any.isEmpty());
    EXPECT_FALSE(any.hasValue());
    EXPECT_EQ(any.getTypeInfo(), nullptr);
    EXPECT_EQ(any.data(), nullptr);
    EXPECT_EQ(any.get<int>(), nullptr);
    Any const copy = any;
    EXPECT_TRUE(copy.isEmpty());
}

TEST(Any, HoldsEachBuiltin) {
    expectHolds<signed char>(-5);
    expectHolds<unsigned char>(200);
    expectHolds<short>(-300);
    expectHolds<unsigned short>(60000);
    expectHolds<int>(-70000);
    expectHolds<unsigned int>(4000000000u);
    expectHolds<std::int64_t>(-(std::int64_t(1) << 40));
    expectHolds<std::uint64_t>(std::uint64_t(1) << 63);
    expectHolds<float>(1.5f);
    expectHolds<double>(-2.25);
    expectHolds<bool>(true);
    expectHolds<String>(String("held text"));
    int destroyed = 0;
    expectHolds<Ptr<void>>(Ptr<Counted>::make(&destroyed));
    EXPECT_EQ(destroyed, 1);
}

TEST(Any, GetOfAnotherTypeIsNull) {
    Any const any = RuntimeAny::create(7);
    EXPECT_NE(any.get<int>(), nullptr);
    EXPECT_EQ(any.get<unsigned int>(), nullptr);
    EXPECT_EQ(any.get<std::int64_t>(), nullptr);
    EXPECT_EQ(any.get<String>(), nullptr);
    EXPECT_EQ(any.get<Any>(), nullptr);
}

TEST(Any, StringCountsStayRightThroughCopyMoveAndDestroy) {
    String const text("counted text");
    {
        Any first = RuntimeAny::create(text);
        EXPECT_EQ(text.useCount(), 2u);
        EXPECT_EQ(first.get<String>()->data(), text.data());
        Any second = first;
        EXPECT_EQ(text.useCount(), 3u);
        Any third = std::move(second);
        EXPECT_TRUE(second.isEmpty()); // a moved-from Any is empty
        EXPECT_EQ(text.useCount(), 3u);
        Any fourth;
        fourth = third;
        EXPECT_EQ(text.useCount(), 4u);
        fourth = std::move(first);
        EXPECT_EQ(text.useCount(), 3u);
        third.reset();
        EXPECT_TRUE(third.isEmpty());
        EXPECT_EQ(text.useCount(), 2u);
        fourth = Any();
        EXPECT_EQ(text.useCount(), 1u);
        fourth = RuntimeAny::create(text);
        Any const& alias = fourth;
        fourth = alias;
        EXPECT_EQ(text.useCount(), 2u);
    }
    EXPECT_EQ(text.useCount(), 1u);
}

TEST(Any, PtrCountsStayRightThroughCopyMoveAndDestroy) {
    int destroyed = 0;
    Ptr<void> object = Ptr<Counted>::make(&destroyed);
    {
        Any first = RuntimeAny::create(object);
        Any second = first;
        EXPECT_EQ(object.use_count(), 3);
        Any third = std::move(first);
        EXPECT_EQ(object.use_count(), 3);
        EXPECT_EQ(*third.get<Ptr<void>>(), object);
        second = RuntimeAny::create(1.0);
        EXPECT_EQ(object.use_count(), 2);
    }
    EXPECT_EQ(object.use_count(), 1);
    object.reset();
    EXPECT_EQ(destroyed, 1);
}

TEST(Any, AssigningAnotherTypeReplacesTheValue) {
    String const text("replaced");
    Any any = RuntimeAny::create(text);
    any = RuntimeAny::create(3);
    EXPECT_EQ(text.useCount(), 1u);
    EXPECT_EQ(*any.get<int>(), 3);
    EXPECT_EQ(any.get<String>(), nullptr);
}

TEST(Any, WrappingAnAnyFlattens) {
    Any const inner = RuntimeAny::create(String("inner"));
    Any const wrapped = RuntimeAny::create(inner);
    EXPECT_EQ(wrapped.getTypeInfo(), inner.getTypeInfo());
    EXPECT_EQ(wrapped.getTypeInfo(), GlobalRttiTable::get().getBuiltin<String>());
    EXPECT_EQ(*wrapped.get<String>(), String("inner"));
    Any const twice = RuntimeAny::create(RuntimeAny::create(wrapped));
    EXPECT_EQ(twice.getTypeInfo(), inner.getTypeInfo());
    EXPECT_TRUE(RuntimeAny::create(Any()).isEmpty());
    // Through the "any" record as well.
    Any const viaRecord = RuntimeAny::createCopy(GlobalRttiTable::get().getBuiltin<Any>(), &inner);
    EXPECT_EQ(viaRecord.getTypeInfo(), inner.getTypeInfo());
}

TEST(Any, FitsValuesOfAtMostTwentyFourBytesAlignedToEight) {
    using Kesto::Internal::UntypedTypeRep;
    EXPECT_TRUE(Any::fits(UntypedTypeRep::of<String>()));
    EXPECT_TRUE(Any::fits(UntypedTypeRep::of<Ptr<void>>()));
    EXPECT_TRUE(Any::fits(UntypedTypeRep::makeStruct({}, 24, 8)));
    EXPECT_FALSE(Any::fits(UntypedTypeRep::makeStruct({}, 32, 8)));
    EXPECT_FALSE(Any::fits(UntypedTypeRep::makeStruct({}, 16, 16)));
    EXPECT_FALSE(Any::fits(UntypedTypeRep::of<Any>()));
    EXPECT_FALSE(Any::fits(UntypedTypeRep()));
}
