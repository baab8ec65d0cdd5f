// Libraries on different threads share the process-wide namespaces and type
// singletons. The build under ThreadSanitizer (scripts/test, build-tsan) runs
// this file to show that sharing them is free of data races.
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include "library/LibraryTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace Kesto;

namespace {

constexpr int kRounds = 500;
constexpr std::size_t kBuiltInCount = 15;
constexpr std::size_t kReservedCount = 3;

/// Lets the threads start their work at one moment, so that even the first
/// calls that make the process-wide namespaces overlap.
class StartingLine {
public:
    explicit StartingLine(int runners) : m_waiting(runners) {}

    void wait() {
        m_waiting.fetch_sub(1);
        while (m_waiting.load() > 0) {
            std::this_thread::yield();
        }
    }

private:
    std::atomic<int> m_waiting;
};

/// One library's work: namespaces, a struct, arrays made on demand, the type
/// collections, and a reset at the end of each round.
void useOneLibrary(StartingLine& start, std::atomic<int>& failures) {
    start.wait();
    auto const library = KestoTest::makeLibrary();
    auto const fail = [&failures] { failures.fetch_add(1); };
    for (int round = 0; round < kRounds; ++round) {
        // First, while another thread may be making the built-in namespace:
        // naming an array reads where its element type is placed.
        auto const ints = library->getArrayType(DmLibrary::getIntType());
        if (!ints || ints->getName() != "array<int>") {
            fail();
        }
        auto const ns = library->getGlobalNamespace()->fetchNamespace("a::b");
        if (!ns) {
            fail();
            continue;
        }
        auto const type = DmLibrary::createStructType("T");
        type->addMember("x", DmLibrary::getIntType());
        type->addMember("y", DmLibrary::getStringType());
        if (type->setNamespace(ns.get(), kFailOnClash) != DmStatus::kSuccess) {
            fail();
        }
        std::shared_ptr<DmBaseType const> array;
        if (!library->retrieveType("array<array<a::b::T>>", array) || !array ||
            array->getName() != "array<array<a::b::T>>") {
            fail();
        }
        if (library->getArrayType(DmLibrary::getAnyType()) != DmLibrary::getArrayOfAnyType()) {
            fail();
        }
        std::shared_ptr<DmBaseType const> builtIn;
        if (!library->retrieveType("double", builtIn) || builtIn != DmLibrary::getDoubleType()) {
            fail();
        }
        // Built-ins, T, array<a::b::T>, array<array<a::b::T>>, array<int>, reserved.
        if (library->getConstTypes(true).size() != kBuiltInCount + 4 + kReservedCount) {
            fail();
        }
        if (!library->reset()) {
            fail();
        }
    }
}

/// Reads the built-in and reserved namespaces while the libraries work.
void readTheProcessNamespaces(StartingLine& start, std::atomic<int> const& working,
                              std::atomic<int>& failures) {
    start.wait();
    int reads = 0;
    while (working.load() > 0 || reads < kRounds) {
        auto const& builtIn = DmLibrary::getBuiltInNamespace();
        std::shared_ptr<DmBaseType const> out;
        if (!builtIn->findType("int", out) || out != DmLibrary::getIntType()) {
            failures.fetch_add(1);
        }
        if (builtIn->getTypes().size() != kBuiltInCount) {
            failures.fetch_add(1);
        }
        std::string name;
        DmLibrary::getArrayOfAnyType()->resolveFullName(name);
        if (name != "array<any>") {
            failures.fetch_add(1);
        }
        if (!DmLibrary::getReservedNamespace()->findType("__undefined__", out) ||
            out != DmLibrary::getUndefinedType()) {
            failures.fetch_add(1);
        }
        ++reads;
    }
}

} // namespace

TEST(DmLibraryConcurrency, TwoLibrariesAndAReaderShareTheProcessNamespacesSafely) {
    StartingLine start(3);
    std::atomic<int> failures{0};
    std::atomic<int> working{2};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&] {
            useOneLibrary(start, failures);
            working.fetch_sub(1);
        });
    }
    threads.emplace_back([&] { readTheProcessNamespaces(start, working, failures); });
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures.load(), 0);
    EXPECT_EQ(DmLibrary::getBuiltInNamespace()->getTypes().size(), kBuiltInCount);
    EXPECT_EQ(DmLibrary::getReservedNamespace()->getTypes().size(), kReservedCount);
}
