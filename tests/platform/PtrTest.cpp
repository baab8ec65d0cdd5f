#include <KestoDM/platform/Ptr.h>

#include <gtest/gtest.h>

#include <thread>
#include <utility>
#include <vector>

using Kesto::Ptr;
using Kesto::staticPtrCast;

namespace {

// Counts its destructor calls, so a test sees each object destroyed exactly once.
struct Tracked {
    explicit Tracked(int* destroyed, int value = 0) : m_destroyed(destroyed), m_value(value) {}
    virtual ~Tracked() { ++*m_destroyed; }
    int* m_destroyed;
    int m_value;
};

struct DerivedTracked : Tracked {
    DerivedTracked(int* destroyed, int* derivedDestroyed)
        : Tracked(destroyed), m_derivedDestroyed(derivedDestroyed) {}
    ~DerivedTracked() override { ++*m_derivedDestroyed; }
    int* m_derivedDestroyed;
};

// A class with no virtual destructor: Ptr<void> must still destroy it as itself.
struct Plain {
    explicit Plain(int* destroyed) : m_destroyed(destroyed) {}
    ~Plain() { ++*m_destroyed; }
    int* m_destroyed;
};

int s_deleterCalls = 0;

void countingDeleter(Plain* object) {
    ++s_deleterCalls;
    delete object;
}

} // namespace

TEST(Ptr, IsSixteenBytes) {
    EXPECT_EQ(sizeof(Ptr<void>), 16u);
    EXPECT_EQ(sizeof(Ptr<Tracked>), 16u);
}

TEST(Ptr, DefaultIsNull) {
    Ptr<Tracked> const null;
    EXPECT_FALSE(null);
    EXPECT_EQ(null.get(), nullptr);
    EXPECT_EQ(null.use_count(), 0);
    EXPECT_TRUE(null == nullptr);
    EXPECT_TRUE(nullptr == null);
    EXPECT_FALSE(null != nullptr);
    Ptr<void> const fromNull = nullptr;
    EXPECT_FALSE(fromNull);
}

TEST(Ptr, MakeBuildsTheObjectAndCountsOwners) {
    int destroyed = 0;
    {
        Ptr<Tracked> const first = Ptr<Tracked>::make(&destroyed, 7);
        ASSERT_TRUE(first);
        EXPECT_EQ(first->m_value, 7);
        EXPECT_EQ((*first).m_value, 7);
        EXPECT_EQ(first.use_count(), 1);
        {
            Ptr<Tracked> const second = first;
            Ptr<Tracked> third;
            third = second;
            EXPECT_EQ(first.use_count(), 3);
            EXPECT_TRUE(third == first);
        }
        EXPECT_EQ(first.use_count(), 1);
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(Ptr, MoveTransfersOwnershipWithoutCounting) {
    int destroyed = 0;
    Ptr<Tracked> source = Ptr<Tracked>::make(&destroyed);
    Tracked* const object = source.get();
    Ptr<Tracked> target = std::move(source);
    EXPECT_EQ(target.get(), object);
    EXPECT_EQ(target.use_count(), 1);
    EXPECT_FALSE(source); // a moved-from Ptr is null
    target.reset();
    EXPECT_FALSE(target);
    EXPECT_EQ(destroyed, 1);
}

TEST(Ptr, TakesOwnershipOfARawPointer) {
    int destroyed = 0;
    {
        Ptr<Plain> const owner(new Plain(&destroyed));
        EXPECT_EQ(owner.use_count(), 1);
    }
    EXPECT_EQ(destroyed, 1);
    Ptr<Plain> const null(static_cast<Plain*>(nullptr));
    EXPECT_FALSE(null);
    EXPECT_EQ(null.use_count(), 0);
}

TEST(Ptr, VoidErasureDestroysTheRightTypeExactlyOnce) {
    int plainDestroyed = 0;
    int baseDestroyed = 0;
    int derivedDestroyed = 0;
    {
        Ptr<void> const made = Ptr<Plain>::make(&plainDestroyed);
        Ptr<void> const raw(new Plain(&plainDestroyed));
        // Made as a derived object, seen as its base, erased: still destroyed as derived.
        Ptr<Tracked> const base = Ptr<DerivedTracked>::make(&baseDestroyed, &derivedDestroyed);
        Ptr<void> erased = base;
        EXPECT_EQ(erased.use_count(), 2);
        EXPECT_EQ(erased.get(), static_cast<void*>(base.get()));
        Ptr<void> const moved = std::move(erased);
        EXPECT_EQ(moved.use_count(), 2);
        EXPECT_EQ(plainDestroyed, 0);
    }
    EXPECT_EQ(plainDestroyed, 2);
    EXPECT_EQ(baseDestroyed, 1);
    EXPECT_EQ(derivedDestroyed, 1);
}

TEST(Ptr, CastsBackFromVoidSharingOwnership) {
    int destroyed = 0;
    Ptr<void> erased = Ptr<Tracked>::make(&destroyed, 42);
    Ptr<Tracked> const typed = staticPtrCast<Tracked>(erased);
    EXPECT_EQ(typed->m_value, 42);
    EXPECT_EQ(typed.use_count(), 2);
    EXPECT_TRUE(typed == erased);
    EXPECT_FALSE(typed != erased);
    erased.reset();
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(typed.use_count(), 1);
    Ptr<Tracked> const viaInternal = Kesto::Internal::staticPtrCast<Tracked>(Ptr<void>(typed));
    EXPECT_EQ(viaInternal.get(), typed.get());
    EXPECT_FALSE(staticPtrCast<Tracked>(Ptr<void>()));
}

TEST(Ptr, CustomDeleterFreesTheObject) {
    int destroyed = 0;
    s_deleterCalls = 0;
    {
        Ptr<Plain> const owner(new Plain(&destroyed), &countingDeleter);
        Ptr<void> const erased = owner;
        EXPECT_EQ(erased.use_count(), 2);
    }
    EXPECT_EQ(s_deleterCalls, 1);
    EXPECT_EQ(destroyed, 1);
}

TEST(Ptr, CustomDeleterIsNotCalledForANullObject) {
    s_deleterCalls = 0;
    {
        Ptr<Plain> const owner(static_cast<Plain*>(nullptr), &countingDeleter);
        EXPECT_FALSE(owner);
    }
    EXPECT_EQ(s_deleterCalls, 0);
}

TEST(Ptr, ComparesByAddress) {
    int destroyed = 0;
    Ptr<Tracked> const a = Ptr<Tracked>::make(&destroyed);
    Ptr<Tracked> const b = Ptr<Tracked>::make(&destroyed);
    EXPECT_TRUE(a == a);
    EXPECT_TRUE(a != b);
    EXPECT_TRUE(Ptr<void>(a) == a);
    EXPECT_TRUE(a != nullptr);
    EXPECT_TRUE(nullptr != a);
    EXPECT_FALSE(a == nullptr);
}

TEST(Ptr, CountsStayRightAcrossThreads) {
    int destroyed = 0;
    Ptr<void> const shared = Ptr<Plain>::make(&destroyed);
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([shared] {
            for (int i = 0; i < 10000; ++i) {
                Ptr<void> copy = shared;
                Ptr<void> moved = std::move(copy);
                static_cast<void>(moved);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(shared.use_count(), 1);
    EXPECT_EQ(destroyed, 0);
}
