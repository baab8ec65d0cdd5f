#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/BaLeaks.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

struct Counted : Kesto::DmInstanceCounter<Counted> {};
struct CountedTwice : Counted, Kesto::DmInstanceCounter<CountedTwice> {};
struct Leaked : Kesto::DmInstanceCounter<Leaked> {};

using CountedCounter = Kesto::DmInstanceCounter<Counted>;
using CountedTwiceCounter = Kesto::DmInstanceCounter<CountedTwice>;

} // namespace

TEST(DmInstanceCounter, CountsConstructionAndDestruction) {
    unsigned int const before = CountedCounter::getInstanceCount();
    {
        Counted a;
        EXPECT_EQ(CountedCounter::getInstanceCount(), before + 1);
        Counted const b(a);
        EXPECT_EQ(CountedCounter::getInstanceCount(), before + 2);
        Counted c(std::move(a));
        EXPECT_EQ(CountedCounter::getInstanceCount(), before + 3);
        c = b; // assignment makes no object
        EXPECT_EQ(CountedCounter::getInstanceCount(), before + 3);
    }
    EXPECT_EQ(CountedCounter::getInstanceCount(), before);
}

TEST(DmInstanceCounter, EachCountedLevelKeepsItsOwnCount) {
    unsigned int const base = CountedCounter::getInstanceCount();
    unsigned int const derived = CountedTwiceCounter::getInstanceCount();
    {
        CountedTwice const object;
        EXPECT_EQ(CountedCounter::getInstanceCount(), base + 1);
        EXPECT_EQ(CountedTwiceCounter::getInstanceCount(), derived + 1);
    }
    EXPECT_EQ(CountedCounter::getInstanceCount(), base);
    EXPECT_EQ(CountedTwiceCounter::getInstanceCount(), derived);
}

TEST(DmInstanceCounter, LeakReportNamesTheClassReadably) {
    EXPECT_EQ(Kesto::Internal::demangledTypeName(typeid(Kesto::DmInstanceCounter<int>)),
              "Kesto::DmInstanceCounter<int>");
}

TEST(DmInstanceCounter, ReportsLeakedObjectsAtProcessEnd) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // The child leaks one object (in static storage, so no heap leak) and ends;
    // the counter's checker reports it on the way out.
    EXPECT_EXIT(
        {
            setenv("KESTO_REPORT_LEAKS", "1", 1);
            alignas(Leaked) static unsigned char storage[sizeof(Leaked)];
            new (storage) Leaked();
            std::exit(0);
        },
        testing::ExitedWithCode(0), "KestoDM leak: 1 instance\\(s\\) of \\(anonymous namespace\\)::Leaked");
}

TEST(DmInstanceCounter, ReportsNothingWhenAllObjectsAreGone) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("KESTO_REPORT_LEAKS", "1", 1);
            { Leaked const object; }
            std::fprintf(stderr, "done\n");
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^done\n$");
}
