#include <KestoDM/platform/UntypedArray.h>

#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/platform/UntypedTypeRep.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <string>

using Kesto::Ptr;
using Kesto::String;
using Kesto::Internal::UntypedArray;
using Kesto::Internal::UntypedTypeRep;

namespace {

template <class T>
T& element(UntypedArray& array, std::size_t index) {
    return *std::launder(static_cast<T*>(array.get_element(index)));
}

// A value whose live objects are counted, to see every element constructed and destroyed.
struct Counted {
    Counted() { ++s_live; }
    Counted(Counted const& other) : value(other.value) { ++s_live; }
    Counted& operator=(Counted const&) = default;
    ~Counted() { --s_live; }
    int value = 0;
    static int s_live;
};
int Counted::s_live = 0;

} // namespace

TEST(UntypedArray, DefaultConstructsTheElementsBelowTheSize) {
    UntypedArray array(UntypedTypeRep::of<int>(), 3, 8);
    EXPECT_TRUE(array.getUntypedTypeRep().isSameAs(UntypedTypeRep::of<int>()));
    EXPECT_EQ(array.size(), 3u);
    EXPECT_EQ(array.capacity(), 8u);
    ASSERT_NE(array.storage(), nullptr);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(element<int>(array, i), 0);
    }
    EXPECT_EQ(array.get_element(1), static_cast<char*>(array.storage()) + sizeof(int));
}

TEST(UntypedArray, CapacityIsAtLeastTheSize) {
    UntypedArray const array(UntypedTypeRep::of<int>(), 5, 2);
    EXPECT_EQ(array.size(), 5u);
    EXPECT_EQ(array.capacity(), 5u);
}

TEST(UntypedArray, EmptyArrayAllocatesNothing) {
    UntypedArray const array(UntypedTypeRep::of<int>(), 0, 0);
    EXPECT_EQ(array.size(), 0u);
    EXPECT_EQ(array.storage(), nullptr);
    EXPECT_EQ(array.get_element(0), nullptr);
}

TEST(UntypedArray, ElementOutOfBoundsIsNull) {
    UntypedArray array(UntypedTypeRep::of<int>(), 2, 10);
    UntypedArray const& constArray = array;
    EXPECT_NE(array.get_element(1), nullptr);
    EXPECT_EQ(array.get_element(2), nullptr);
    EXPECT_EQ(constArray.get_element(2), nullptr);
    EXPECT_EQ(array.get_element(SIZE_MAX), nullptr);
}

TEST(UntypedArray, ResizeGrowsAndShrinksKeepingTheElements) {
    UntypedArray array(UntypedTypeRep::of<int>(), 2, 2);
    element<int>(array, 0) = 10;
    element<int>(array, 1) = 11;
    array.resize(5);
    EXPECT_EQ(array.size(), 5u);
    EXPECT_GE(array.capacity(), 5u);
    EXPECT_EQ(element<int>(array, 0), 10);
    EXPECT_EQ(element<int>(array, 1), 11);
    EXPECT_EQ(element<int>(array, 4), 0);
    array.resize(1);
    EXPECT_EQ(array.size(), 1u);
    EXPECT_EQ(array.get_element(1), nullptr);
    // A slot given up and taken again holds a new default element.
    array.resize(2);
    EXPECT_EQ(element<int>(array, 1), 0);
}

TEST(UntypedArray, ResizePastCapacityAtLeastDoublesIt) {
    UntypedArray array(UntypedTypeRep::of<int>(), 0, 4);
    array.resize(5);
    EXPECT_EQ(array.capacity(), 8u);
    array.resize(20);
    EXPECT_EQ(array.capacity(), 20u);
}

TEST(UntypedArray, StringElementsShareAndReleaseTheirBuffers) {
    String const text("element text");
    {
        UntypedArray array(UntypedTypeRep::of<String>(), 3, 3);
        EXPECT_TRUE(element<String>(array, 2).empty());
        for (std::size_t i = 0; i < 3; ++i) {
            element<String>(array, i) = text;
        }
        EXPECT_EQ(text.useCount(), 4u);
        // Growing moves the elements: no count changes.
        array.resize(10);
        EXPECT_EQ(text.useCount(), 4u);
        EXPECT_EQ(element<String>(array, 1).data(), text.data());
        array.resize(1);
        EXPECT_EQ(text.useCount(), 2u);
        element<String>(array, 0) = String("own text");
        EXPECT_EQ(text.useCount(), 1u);
        array.resize(4);
        element<String>(array, 3) = text;
    }
    EXPECT_EQ(text.useCount(), 1u);
}

TEST(UntypedArray, CloneIsADeepCopy) {
    String const text("cloned");
    UntypedArray array(UntypedTypeRep::of<String>(), 2, 16);
    element<String>(array, 0) = text;
    Ptr<UntypedArray> const copy = array.clone();
    ASSERT_TRUE(copy);
    EXPECT_NE(copy->storage(), array.storage());
    EXPECT_EQ(copy->size(), 2u);
    EXPECT_TRUE(copy->getUntypedTypeRep().isSameAs(array.getUntypedTypeRep()));
    EXPECT_EQ(element<String>(*copy, 0), text);
    EXPECT_EQ(text.useCount(), 3u);
    element<String>(*copy, 1) = String("only in the copy");
    EXPECT_TRUE(element<String>(array, 1).empty());
}

TEST(UntypedArray, DestructionDestroysEveryLiveElementOnce) {
    Counted::s_live = 0;
    {
        UntypedArray array(UntypedTypeRep::of<Counted>(), 4, 4);
        EXPECT_EQ(Counted::s_live, 4);
        array.resize(9);
        EXPECT_EQ(Counted::s_live, 9);
        array.resize(2);
        EXPECT_EQ(Counted::s_live, 2);
        Ptr<UntypedArray> const copy = array.clone();
        EXPECT_EQ(Counted::s_live, 4);
    }
    EXPECT_EQ(Counted::s_live, 0);
}

TEST(UntypedArray, CreateGivesAnArrayValueAsPtrToVoid) {
    Counted::s_live = 0;
    {
        Ptr<void> const value = UntypedArray::create(UntypedTypeRep::of<Counted>(), 3);
        ASSERT_TRUE(value);
        Ptr<UntypedArray> const array = Kesto::staticPtrCast<UntypedArray>(value);
        EXPECT_EQ(array->size(), 3u);
        EXPECT_EQ(array->capacity(), 3u);
        EXPECT_EQ(Counted::s_live, 3);
    }
    EXPECT_EQ(Counted::s_live, 0);
}

TEST(UntypedArray, EmptyElementRepHoldsNothing) {
    UntypedArray array(UntypedTypeRep(), 3, 3);
    EXPECT_EQ(array.size(), 0u);
    EXPECT_EQ(array.storage(), nullptr);
    array.resize(4);
    EXPECT_EQ(array.size(), 0u);
}
