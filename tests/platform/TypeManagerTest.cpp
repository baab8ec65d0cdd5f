#include <KestoDM/platform/TypeManager.h>

#include <KestoDM/platform/String.h>
#include <KestoDM/platform/UntypedTypeRep.h>

#include <gtest/gtest.h>

#include <new>

using Kesto::String;
using Kesto::Internal::TypeManager;
using Kesto::Internal::UntypedTypeRep;

namespace {

struct alignas(8) StringSlot {
    unsigned char bytes[sizeof(String)];
    String& get() { return *std::launder(reinterpret_cast<String*>(bytes)); }
};

} // namespace

TEST(TypeManager, HandlesAStringThroughItsRep) {
    UntypedTypeRep const rep = UntypedTypeRep::of<String>();
    String const text("managed");
    StringSlot a;
    StringSlot b;
    TypeManager::construct(rep, a.bytes);
    EXPECT_TRUE(a.get().empty());
    TypeManager::copy(rep, a.bytes, &text);
    EXPECT_EQ(a.get(), text);
    TypeManager::copyConstruct(rep, b.bytes, a.bytes);
    EXPECT_EQ(text.useCount(), 3u);
    TypeManager::destroy(rep, b.bytes);
    TypeManager::moveConstruct(rep, b.bytes, a.bytes);
    EXPECT_TRUE(a.get().empty());
    EXPECT_EQ(text.useCount(), 2u);
    TypeManager::move(rep, a.bytes, b.bytes);
    EXPECT_EQ(a.get(), text);
    TypeManager::destroy(rep, a.bytes);
    TypeManager::destroy(rep, b.bytes);
    EXPECT_EQ(text.useCount(), 1u);
}

TEST(TypeManager, DoesNothingWithTheEmptyRep) {
    int value = 3;
    TypeManager::construct(UntypedTypeRep(), &value);
    TypeManager::destroy(UntypedTypeRep(), &value);
    EXPECT_EQ(value, 3);
}
