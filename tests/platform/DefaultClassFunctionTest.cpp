#include <KestoDM/platform/DefaultClassFunction.h>

#include <KestoDM/platform/Ptr.h>

#include <gtest/gtest.h>

#include <type_traits>

using Kesto::Internal::DefaultClassFunction;
using Kesto::Internal::getDefaultClassFunction;

TEST(DefaultClassFunction, SymbolIsThePrefixAndTheMangledName) {
    EXPECT_EQ(getDefaultClassFunction("N3Geo4MeshE"), "kesto_default_N3Geo4MeshE");
    EXPECT_EQ(getDefaultClassFunction("5Plain"), "kesto_default_5Plain");
}

TEST(DefaultClassFunction, EmptyNameHasNoSymbol) {
    EXPECT_EQ(getDefaultClassFunction(""), "");
}

TEST(DefaultClassFunction, FunctionTakesNothingAndGivesAPtrToVoid) {
    EXPECT_TRUE((std::is_same_v<DefaultClassFunction, Kesto::Ptr<void> (*)()>));
}
