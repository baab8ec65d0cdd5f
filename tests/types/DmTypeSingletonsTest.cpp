// The process-wide type singletons that DmLibrary hands out: one object each,
// const from birth, made once even when first asked for from many threads.
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmTypeKind.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include "types/DmTypeSingletons.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

using namespace Kesto;

namespace {

constexpr std::size_t kSingletonCount = 18;
using Singletons = std::array<DmBaseType const*, kSingletonCount>;

/// Every singleton, through DmLibrary, in a fixed order.
Singletons allSingletons() {
    return {
        DmLibrary::getAutoType().get(),
        DmLibrary::getBoolType().get(),
        DmLibrary::getCharType().get(),
        DmLibrary::getUCharType().get(),
        DmLibrary::getShortType().get(),
        DmLibrary::getUShortType().get(),
        DmLibrary::getIntType().get(),
        DmLibrary::getUIntType().get(),
        DmLibrary::getLongType().get(),
        DmLibrary::getULongType().get(),
        DmLibrary::getFloatType().get(),
        DmLibrary::getDoubleType().get(),
        DmLibrary::getAnyType().get(),
        DmLibrary::getArrayOfAnyType().get(),
        DmLibrary::getStringType().get(),
        DmLibrary::getUndefinedType().get(),
        DmLibrary::getRuntimeServicesType().get(),
        DmLibrary::getTypeRegistryType().get(),
    };
}

/// The same, in reverse order: threads that ask in different orders race on
/// different singletons first.
Singletons allSingletonsBackwards() {
    Singletons result{};
    result[17] = DmLibrary::getTypeRegistryType().get();
    result[16] = DmLibrary::getRuntimeServicesType().get();
    result[15] = DmLibrary::getUndefinedType().get();
    result[14] = DmLibrary::getStringType().get();
    result[13] = DmLibrary::getArrayOfAnyType().get();
    result[12] = DmLibrary::getAnyType().get();
    result[11] = DmLibrary::getDoubleType().get();
    result[10] = DmLibrary::getFloatType().get();
    result[9] = DmLibrary::getULongType().get();
    result[8] = DmLibrary::getLongType().get();
    result[7] = DmLibrary::getUIntType().get();
    result[6] = DmLibrary::getIntType().get();
    result[5] = DmLibrary::getUShortType().get();
    result[4] = DmLibrary::getShortType().get();
    result[3] = DmLibrary::getUCharType().get();
    result[2] = DmLibrary::getCharType().get();
    result[1] = DmLibrary::getBoolType().get();
    result[0] = DmLibrary::getAutoType().get();
    return result;
}

/// Run in a fresh child process: no type exists yet, so the eight threads
/// make the first calls. Exits 0 when every thread saw the same objects, 2
/// when types existed before the threads started (the run would not test a
/// first call), 1 when the threads disagree or a singleton is null.
[[noreturn]] void firstCallsFromEightThreads() {
    if (DmInstanceCounter<DmBaseType>::getInstanceCount() != 0) {
        std::fprintf(stderr, "types existed before the first call: %u\n",
                     DmInstanceCounter<DmBaseType>::getInstanceCount());
        std::exit(2);
    }
    constexpr std::size_t kThreads = 8;
    std::vector<Singletons> seen(kThreads);
    std::atomic<std::size_t> ready{0};
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < kThreads; ++index) {
        threads.emplace_back([&seen, &ready, index] {
            ready.fetch_add(1);
            while (ready.load() < kThreads) {
                std::this_thread::yield();
            }
            seen[index] = index % 2 == 0 ? allSingletons() : allSingletonsBackwards();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t index = 0; index < kThreads; ++index) {
        for (std::size_t which = 0; which < kSingletonCount; ++which) {
            if (seen[index][which] == nullptr || seen[index][which] != seen[0][which]) {
                std::fprintf(stderr, "thread %zu saw another object for singleton %zu\n", index, which);
                std::exit(1);
            }
        }
    }
    std::exit(0);
}

} // namespace

// ---------------------------------------------------------------------------
// The extra singletons

TEST(DmTypeSingletons, ArrayOfAnyIsAnArrayOfTheAnySingleton) {
    std::shared_ptr<DmArrayType> const& type = DmLibrary::getArrayOfAnyType();
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(type->getTypeKind(), kTypeArray);
    EXPECT_EQ(type->getElementType(), DmLibrary::getAnyType());
}

TEST(DmTypeSingletons, ArrayOfAnyIsNamedArrayOfAny) {
    EXPECT_EQ(DmLibrary::getArrayOfAnyType()->getName(), "array<any>");
}

TEST(DmTypeSingletons, UndefinedIsNamedUndefined) {
    EXPECT_EQ(DmLibrary::getUndefinedType()->getName(), "__undefined__");
}

TEST(DmTypeSingletons, UndefinedKindIsUndefined) {
    EXPECT_EQ(DmLibrary::getUndefinedType()->getTypeKind(), kTypeUndefined);
}

TEST(DmTypeSingletons, RuntimeServicesIsAClassNamedRuntimeServices) {
    std::shared_ptr<DmClassType> const& type = DmLibrary::getRuntimeServicesType();
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(type->getName(), "__RuntimeServices__");
    EXPECT_EQ(type->getTypeKind(), 13);
}

TEST(DmTypeSingletons, TypeRegistryIsAClassNamedTypeRegistry) {
    std::shared_ptr<DmClassType> const& type = DmLibrary::getTypeRegistryType();
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(type->getName(), "__TypeRegistry__");
    EXPECT_EQ(type->getTypeKind(), 13);
}

TEST(DmTypeSingletons, RuntimeServicesAndTypeRegistryAreDistinctClasses) {
    EXPECT_NE(DmLibrary::getRuntimeServicesType().get(), DmLibrary::getTypeRegistryType().get());
}

// ---------------------------------------------------------------------------
// All of them

TEST(DmTypeSingletons, EverySingletonIsConst) {
    Singletons const singletons = allSingletons();
    for (std::size_t which = 0; which < kSingletonCount; ++which) {
        ASSERT_NE(singletons[which], nullptr) << "singleton " << which;
        EXPECT_TRUE(singletons[which]->isConst()) << singletons[which]->getName();
    }
}

TEST(DmTypeSingletons, EverySingletonIsTheSameObjectOnEveryCall) {
    EXPECT_EQ(allSingletons(), allSingletons());
}

TEST(DmTypeSingletons, SingletonsAreDistinctObjects) {
    Singletons const singletons = allSingletons();
    for (std::size_t i = 0; i < kSingletonCount; ++i) {
        for (std::size_t j = i + 1; j < kSingletonCount; ++j) {
            EXPECT_NE(singletons[i], singletons[j]) << singletons[i]->getName();
        }
    }
}

TEST(DmTypeSingletons, DmLibraryHandsOutTheInternalSingletons) {
    EXPECT_EQ(&DmLibrary::getIntType(), &Internal::TypeSingletons::intType());
    EXPECT_EQ(&DmLibrary::getArrayOfAnyType(), &Internal::TypeSingletons::arrayOfAnyType());
    EXPECT_EQ(&DmLibrary::getUndefinedType(), &Internal::TypeSingletons::undefinedType());
    EXPECT_EQ(&DmLibrary::getTypeRegistryType(), &Internal::TypeSingletons::typeRegistryType());
}

TEST(DmTypeSingletons, ArrayOfAnyCannotBeRenamed) {
    std::shared_ptr<DmArrayType> const& type = DmLibrary::getArrayOfAnyType();
    ASSERT_TRUE(type->isConst());
    EXPECT_FALSE(type->setName("renamed", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(type->getName(), "array<any>");
}

TEST(DmTypeSingletons, CallsFromEightThreadsSeeTheSameObjects) {
    Singletons const expected = allSingletons();
    std::vector<Singletons> seen(8);
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < seen.size(); ++index) {
        threads.emplace_back([&seen, index] { seen[index] = allSingletonsBackwards(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (Singletons const& singletons : seen) {
        EXPECT_EQ(singletons, expected);
    }
}

// The singletons of this process may already exist (made by earlier tests of
// the same run), so the first calls are made in a child process: the
// "threadsafe" death-test style starts the test binary afresh for this test
// alone, and the child checks that no type existed before its threads began.
TEST(DmTypeSingletons, FirstCallsFromEightThreadsAtOnceMakeOneObjectEach) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(firstCallsFromEightThreads(), testing::ExitedWithCode(0), "");
}
