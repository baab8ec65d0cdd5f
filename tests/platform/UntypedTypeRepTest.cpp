#include <KestoDM/platform/UntypedTypeRep.h>

#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/String.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <utility>
#include <vector>

using Kesto::Ptr;
using Kesto::String;
using Kesto::Internal::UntypedTypeRep;

namespace {

// Raw storage for one object of up to 64 bytes, as the layer's users keep it.
struct alignas(16) Slot {
    unsigned char bytes[64];
    void* get() { return bytes; }
};

template <class T>
T& as(Slot& slot) {
    return *std::launder(reinterpret_cast<T*>(slot.bytes));
}

bool allZero(void const* storage, std::size_t size) {
    auto const* bytes = static_cast<unsigned char const*>(storage);
    for (std::size_t i = 0; i < size; ++i) {
        if (bytes[i] != 0) {
            return false;
        }
    }
    return true;
}

// A struct with a String member, laid out by hand as a caller of makeStruct would.
struct Person {
    std::int32_t age;
    String name;
    double height;
};

UntypedTypeRep personRep() {
    return UntypedTypeRep::makeStruct({{offsetof(Person, age), UntypedTypeRep::of<std::int32_t>()},
                                       {offsetof(Person, name), UntypedTypeRep::of<String>()},
                                       {offsetof(Person, height), UntypedTypeRep::of<double>()}},
                                      sizeof(Person), alignof(Person));
}

} // namespace

TEST(UntypedTypeRep, DefaultIsEmptyAndDoesNothing) {
    UntypedTypeRep const rep;
    EXPECT_FALSE(rep.isValid());
    EXPECT_EQ(rep.size(), 0u);
    EXPECT_EQ(rep.alignment(), 1u);
    EXPECT_FALSE(rep.needsDestruction());
    EXPECT_EQ(rep.allocate(4), nullptr);
    Slot slot{};
    slot.bytes[0] = 9;
    rep.defaultConstruct(slot.get());
    rep.destroy(slot.get());
    EXPECT_EQ(slot.bytes[0], 9);
}

TEST(UntypedTypeRep, DescribesBuiltinTypes) {
    EXPECT_EQ(UntypedTypeRep::of<signed char>().size(), 1u);
    EXPECT_EQ(UntypedTypeRep::of<short>().alignment(), alignof(short));
    EXPECT_EQ(UntypedTypeRep::of<int>().size(), sizeof(int));
    EXPECT_EQ(UntypedTypeRep::of<std::int64_t>().size(), 8u);
    EXPECT_EQ(UntypedTypeRep::of<double>().alignment(), alignof(double));
    EXPECT_EQ(UntypedTypeRep::of<bool>().size(), sizeof(bool));
    EXPECT_FALSE(UntypedTypeRep::of<int>().needsDestruction());
    EXPECT_FALSE(UntypedTypeRep::of<float>().needsDestruction());
    EXPECT_TRUE(UntypedTypeRep::of<String>().needsDestruction());
    EXPECT_TRUE(UntypedTypeRep::of<Ptr<void>>().needsDestruction());
    EXPECT_EQ(UntypedTypeRep::of<String>().size(), 16u);
    EXPECT_EQ(UntypedTypeRep::of<Ptr<void>>().size(), 16u);
    EXPECT_TRUE(UntypedTypeRep::of<int>().isValid());
}

TEST(UntypedTypeRep, CopiesOfARepShareOneDescription) {
    EXPECT_TRUE(UntypedTypeRep::of<int>().isSameAs(UntypedTypeRep::of<int>()));
    EXPECT_FALSE(UntypedTypeRep::of<int>().isSameAs(UntypedTypeRep::of<unsigned int>()));
    EXPECT_TRUE(UntypedTypeRep::opaque16().isSameAs(UntypedTypeRep::opaque16()));
}

TEST(UntypedTypeRep, HandlesIntsInRawStorage) {
    UntypedTypeRep const rep = UntypedTypeRep::of<int>();
    Slot a;
    Slot b;
    std::memset(a.bytes, 0xab, sizeof a.bytes);
    rep.defaultConstruct(a.get());
    EXPECT_EQ(as<int>(a), 0);
    as<int>(a) = 41;
    rep.copyConstruct(b.get(), a.get());
    EXPECT_EQ(as<int>(b), 41);
    as<int>(a) = 5;
    rep.copyAssign(b.get(), a.get());
    EXPECT_EQ(as<int>(b), 5);
    as<int>(a) = 6;
    rep.moveAssign(b.get(), a.get());
    EXPECT_EQ(as<int>(b), 6);
    rep.destroy(a.get());
    rep.destroy(b.get());
}

TEST(UntypedTypeRep, CopiesShareAndDestroyReleasesAString) {
    UntypedTypeRep const rep = UntypedTypeRep::of<String>();
    String const text("text of the test");
    Slot a;
    Slot b;
    rep.defaultConstruct(a.get());
    EXPECT_TRUE(as<String>(a).empty());
    rep.copyAssign(a.get(), &text);
    EXPECT_EQ(text.useCount(), 2u);
    rep.copyConstruct(b.get(), a.get());
    EXPECT_EQ(text.useCount(), 3u);
    EXPECT_EQ(as<String>(b).data(), text.data());
    rep.destroy(b.get());
    EXPECT_EQ(text.useCount(), 2u);
    // A move leaves the source live (empty) and the count unchanged.
    rep.moveConstruct(b.get(), a.get());
    EXPECT_EQ(text.useCount(), 2u);
    EXPECT_TRUE(as<String>(a).empty());
    rep.moveAssign(a.get(), b.get());
    EXPECT_EQ(as<String>(a), text);
    rep.destroy(a.get());
    rep.destroy(b.get());
    EXPECT_EQ(text.useCount(), 1u);
}

TEST(UntypedTypeRep, AllocatesZeroedAlignedStorage) {
    for (UntypedTypeRep const& rep :
         {UntypedTypeRep::of<char>(), UntypedTypeRep::of<double>(), UntypedTypeRep::of<String>(),
          UntypedTypeRep::opaque16(), personRep()}) {
        void* const storage = rep.allocate(7);
        ASSERT_NE(storage, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(storage) % rep.alignment(), 0u);
        EXPECT_TRUE(allZero(storage, 7 * rep.size()));
        rep.deallocate(storage);
    }
    EXPECT_EQ(UntypedTypeRep::of<int>().allocate(0), nullptr);
    UntypedTypeRep::of<int>().deallocate(nullptr);
}

TEST(UntypedTypeRep, AllocatesOverAlignedStorage) {
    struct alignas(64) Wide {
        char byte;
    };
    UntypedTypeRep const rep = UntypedTypeRep::of<Wide>();
    EXPECT_EQ(rep.alignment(), 64u);
    void* const storage = rep.allocate(3);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(storage) % 64, 0u);
    EXPECT_TRUE(allZero(storage, 3 * 64));
    rep.deallocate(storage);
}

TEST(UntypedTypeRep, Opaque16IsSixteenPlainBytes) {
    UntypedTypeRep const rep = UntypedTypeRep::opaque16();
    EXPECT_TRUE(rep.isValid());
    EXPECT_EQ(rep.size(), 16u);
    EXPECT_EQ(rep.alignment(), 8u);
    EXPECT_FALSE(rep.needsDestruction());
    Slot a;
    Slot b;
    std::memset(a.bytes, 0xcd, sizeof a.bytes);
    rep.defaultConstruct(a.get());
    EXPECT_TRUE(allZero(a.bytes, 16));
    EXPECT_EQ(a.bytes[16], 0xcd);
    for (unsigned char i = 0; i < 16; ++i) {
        a.bytes[i] = i;
    }
    rep.copyConstruct(b.get(), a.get());
    EXPECT_EQ(std::memcmp(a.bytes, b.bytes, 16), 0);
    rep.destroy(a.get());
}

TEST(UntypedTypeRep, StructRepAppliesOperationsMemberWise) {
    UntypedTypeRep const rep = personRep();
    ASSERT_TRUE(rep.isValid());
    EXPECT_EQ(rep.size(), sizeof(Person));
    EXPECT_EQ(rep.alignment(), alignof(Person));
    EXPECT_TRUE(rep.needsDestruction());

    String const name("Ada");
    Slot a;
    Slot b;
    std::memset(a.bytes, 0xee, sizeof a.bytes);
    rep.defaultConstruct(a.get());
    EXPECT_EQ(as<Person>(a).age, 0);
    EXPECT_TRUE(as<Person>(a).name.empty());
    EXPECT_EQ(as<Person>(a).height, 0.0);
    as<Person>(a).age = 36;
    as<Person>(a).name = name;
    as<Person>(a).height = 1.7;

    // A copy shares the String's buffer: a deep copy of the struct, not of the text.
    rep.copyConstruct(b.get(), a.get());
    EXPECT_EQ(as<Person>(b).age, 36);
    EXPECT_EQ(as<Person>(b).height, 1.7);
    EXPECT_EQ(as<Person>(b).name.data(), name.data());
    EXPECT_EQ(name.useCount(), 3u);

    rep.destroy(b.get());
    EXPECT_EQ(name.useCount(), 2u);
    rep.moveConstruct(b.get(), a.get());
    EXPECT_EQ(name.useCount(), 2u);
    EXPECT_TRUE(as<Person>(a).name.empty());
    rep.copyAssign(a.get(), b.get());
    EXPECT_EQ(name.useCount(), 3u);
    EXPECT_EQ(as<Person>(a).age, 36);
    rep.moveAssign(a.get(), b.get());
    EXPECT_EQ(name.useCount(), 2u);

    rep.destroy(a.get());
    rep.destroy(b.get());
    EXPECT_EQ(name.useCount(), 1u);
}

TEST(UntypedTypeRep, StructRepZeroesPaddingAndOpaqueMembers) {
    // {char at 0, opaque16 at 8}: bytes 1..7 are padding.
    UntypedTypeRep const rep =
        UntypedTypeRep::makeStruct({{0, UntypedTypeRep::of<char>()}, {8, UntypedTypeRep::opaque16()}}, 24, 8);
    ASSERT_TRUE(rep.isValid());
    EXPECT_FALSE(rep.needsDestruction());
    Slot slot;
    std::memset(slot.bytes, 0x77, sizeof slot.bytes);
    rep.defaultConstruct(slot.get());
    EXPECT_TRUE(allZero(slot.bytes, 24));
    EXPECT_EQ(slot.bytes[24], 0x77);
}

TEST(UntypedTypeRep, StructRepsNest) {
    UntypedTypeRep const inner = personRep();
    UntypedTypeRep const outer =
        UntypedTypeRep::makeStruct({{0, inner}, {sizeof(Person), UntypedTypeRep::of<String>()}},
                                   sizeof(Person) + sizeof(String), alignof(Person));
    ASSERT_TRUE(outer.isValid());
    String const text("nested");
    void* const storage = outer.allocate(1);
    outer.defaultConstruct(storage);
    auto* const person = std::launder(static_cast<Person*>(storage));
    person->name = text;
    *std::launder(reinterpret_cast<String*>(static_cast<char*>(storage) + sizeof(Person))) = text;
    EXPECT_EQ(text.useCount(), 3u);
    outer.destroy(storage);
    outer.deallocate(storage);
    EXPECT_EQ(text.useCount(), 1u);
}

TEST(UntypedTypeRep, StructRepOfUnsoundLayoutIsEmpty) {
    UntypedTypeRep const intRep = UntypedTypeRep::of<int>();
    // Alignment not a power of two.
    EXPECT_FALSE(UntypedTypeRep::makeStruct({{0, intRep}}, 6, 3).isValid());
    // Size not a multiple of the alignment.
    EXPECT_FALSE(UntypedTypeRep::makeStruct({{0, intRep}}, 6, 4).isValid());
    // Member past the end.
    EXPECT_FALSE(UntypedTypeRep::makeStruct({{4, intRep}}, 4, 4).isValid());
    // Misaligned member.
    EXPECT_FALSE(UntypedTypeRep::makeStruct({{2, intRep}}, 8, 4).isValid());
    // Member aligned more than the struct.
    EXPECT_FALSE(UntypedTypeRep::makeStruct({{0, UntypedTypeRep::of<double>()}}, 8, 4).isValid());
    // Empty member rep.
    EXPECT_FALSE(UntypedTypeRep::makeStruct({{0, UntypedTypeRep()}}, 8, 4).isValid());
    // A struct with no members is sound.
    EXPECT_TRUE(UntypedTypeRep::makeStruct({}, 0, 1).isValid());
}
