#include <KestoDM/platform/RuntimeAny.h>

#include <KestoDM/platform/Any.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/platform/UntypedArray.h>

#include <gtest/gtest.h>

using Kesto::Any;
using Kesto::Ptr;
using Kesto::String;
using Kesto::Internal::GlobalRttiTable;
using Kesto::Internal::RttiTable;
using Kesto::Internal::RuntimeAny;
using Kesto::Internal::RuntimeTypeInfo;
using Kesto::Internal::UntypedArray;
using Kesto::Internal::UntypedTypeRep;

namespace {

struct Mesh {
    explicit Mesh(int* destroyed) : m_destroyed(destroyed) {}
    ~Mesh() { ++*m_destroyed; }
    int* m_destroyed;
};

RttiTable& table() {
    return GlobalRttiTable::get();
}

} // namespace

TEST(RuntimeAny, HoldsAnEnumAsItsIntWithTheEnumsRecord) {
    RuntimeTypeInfo const* const color =
        table().getOrInsertEnum(table().getOrInsertMangle("N9RuntimeAny5ColorE"));
    ASSERT_NE(color, nullptr);
    Any const any = RuntimeAny::create(2, color);
    ASSERT_TRUE(any.hasValue());
    EXPECT_EQ(any.getTypeInfo(), color);
    EXPECT_EQ(*static_cast<int const*>(any.data()), 2);
    // It is the enum, not an int.
    EXPECT_EQ(any.get<int>(), nullptr);
}

TEST(RuntimeAny, EnumWithoutAnEnumRecordIsEmpty) {
    EXPECT_TRUE(RuntimeAny::create(2, nullptr).isEmpty());
    EXPECT_TRUE(RuntimeAny::create(2, table().getBuiltin<int>()).isEmpty());
    EXPECT_TRUE(RuntimeAny::create(2, table().getOrInsertMangle("N9RuntimeAny9UnresolvE")).isEmpty());
}

TEST(RuntimeAny, HoldsAnObjectWithTheClassRecordSharingIt) {
    RuntimeTypeInfo const* const mesh =
        table().getOrInsertClass(table().getOrInsertMangle("N9RuntimeAny4MeshE"));
    ASSERT_NE(mesh, nullptr);
    int destroyed = 0;
    {
        Ptr<void> const object = Ptr<Mesh>::make(&destroyed);
        Any const any = RuntimeAny::create(object, mesh);
        ASSERT_TRUE(any.hasValue());
        EXPECT_EQ(any.getTypeInfo(), mesh);
        EXPECT_EQ(*static_cast<Ptr<void> const*>(any.data()), object);
        EXPECT_EQ(object.use_count(), 2);
        EXPECT_EQ(any.get<Ptr<void>>(), nullptr);
        Any const copy = any;
        EXPECT_EQ(object.use_count(), 3);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(RuntimeAny, HoldsAnArrayWithTheArrayRecord) {
    RuntimeTypeInfo const* const strings = table().getOrInsertArray(table().getBuiltin<String>());
    Ptr<void> const array = UntypedArray::create(UntypedTypeRep::of<String>(), 2);
    Any const any = RuntimeAny::create(array, strings);
    EXPECT_EQ(any.getTypeInfo(), strings);
    EXPECT_EQ(*static_cast<Ptr<void> const*>(any.data()), array);
}

TEST(RuntimeAny, ObjectWithoutAClassOrArrayRecordIsEmpty) {
    int destroyed = 0;
    Ptr<void> const object = Ptr<Mesh>::make(&destroyed);
    EXPECT_TRUE(RuntimeAny::create(object, nullptr).isEmpty());
    EXPECT_TRUE(RuntimeAny::create(object, table().getBuiltin<Ptr<void>>()).isEmpty());
    EXPECT_TRUE(RuntimeAny::create(object, table().getOrInsertMangle("N9RuntimeAny9UnresolvE")).isEmpty());
    EXPECT_EQ(object.use_count(), 1);
}

TEST(RuntimeAny, CopiesAStructValueThatFits) {
    UntypedTypeRep const rep = UntypedTypeRep::makeStruct(
        {{0, UntypedTypeRep::of<int>()}, {8, UntypedTypeRep::of<String>()}}, 24, 8);
    RuntimeTypeInfo const* const pair =
        table().getOrInsertStruct(table().getOrInsertMangle("N9RuntimeAny4PairE"),
                                  {table().getBuiltin<int>(), table().getBuiltin<String>()}, rep);
    ASSERT_NE(pair, nullptr);
    String const text("in a struct");
    void* const value = rep.allocate(1);
    rep.defaultConstruct(value);
    *std::launder(reinterpret_cast<String*>(static_cast<char*>(value) + 8)) = text;
    {
        Any const any = RuntimeAny::createCopy(pair, value);
        EXPECT_EQ(any.getTypeInfo(), pair);
        EXPECT_EQ(text.useCount(), 3u);
    }
    EXPECT_EQ(text.useCount(), 2u);
    rep.destroy(value);
    rep.deallocate(value);
    EXPECT_EQ(text.useCount(), 1u);
}

TEST(RuntimeAny, CopyOfAValueThatDoesNotFitOrHasNoRepIsEmpty) {
    UntypedTypeRep const big = UntypedTypeRep::makeStruct({}, 40, 8);
    RuntimeTypeInfo const* const record =
        table().getOrInsertStruct(table().getOrInsertMangle("N9RuntimeAny3BigE"), {}, big);
    ASSERT_NE(record, nullptr);
    unsigned char bytes[40] = {};
    EXPECT_TRUE(RuntimeAny::createCopy(record, bytes).isEmpty());
    EXPECT_TRUE(RuntimeAny::createCopy(table().getOrInsertMangle("N9RuntimeAny9UnresolvE"), bytes).isEmpty());
    EXPECT_TRUE(RuntimeAny::createCopy(nullptr, bytes).isEmpty());
    EXPECT_TRUE(RuntimeAny::createCopy(table().getBuiltin<int>(), nullptr).isEmpty());
}
