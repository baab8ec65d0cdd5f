#include "foundation/DmInstanceMap.h"

#include "TestEntities.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

using Kesto::DmNamedEntity;
using InstanceMap = Kesto::DmNamedEntity::InstanceMap;
using KestoTest::TestEntity;

namespace {

// The map never dereferences the entity pointers it stores (but in findWeak),
// so a distinct fake address per entry is enough to watch the table.
DmNamedEntity* fakeEntity(std::uint64_t i) {
    return reinterpret_cast<DmNamedEntity*>((i + 1) * 16);
}

std::uint64_t uidOf(std::uint64_t i) {
    return InstanceMap::mix(i + 1000);
}

void registerRange(InstanceMap& map, std::uint64_t first, std::uint64_t last) {
    for (std::uint64_t i = first; i < last; ++i) {
        map.registerEntity(uidOf(i), fakeEntity(i));
    }
}

} // namespace

TEST(InstanceMap, MixOfCounterZeroIsZero) {
    EXPECT_EQ(InstanceMap::mix(0), 0u);
}

TEST(InstanceMap, MixOfAllOnesIsTheInvalidUID) {
    EXPECT_EQ(InstanceMap::mix(~std::uint64_t(0)), DmNamedEntity::kInvalidRuntimeUID);
    EXPECT_EQ(DmNamedEntity::kInvalidRuntimeUID, 0xD8A8522ACA2B9437ull);
}

TEST(InstanceMap, MixGivesDistinctUIDsForDistinctCounters) {
    EXPECT_NE(InstanceMap::mix(1), InstanceMap::mix(2));
    EXPECT_NE(InstanceMap::mix(1), 1u);
}

TEST(InstanceMap, EmptyMapReservesEightyPairs) {
    InstanceMap map;
    EXPECT_EQ(map.getTableSize(), 0u);
    EXPECT_EQ(map.getCount(), 0u);
    EXPECT_GE(map.getCapacity(), 80u);
}

TEST(InstanceMap, KeepsUpToEightPairsAsAList) {
    InstanceMap map;
    registerRange(map, 0, 8);
    EXPECT_EQ(map.getTableSize(), 8u);
    EXPECT_EQ(map.getCount(), 8u);
    for (std::uint64_t i = 0; i < 8; ++i) {
        EXPECT_EQ(map.find(uidOf(i)), fakeEntity(i));
    }
}

TEST(InstanceMap, NinthEntryTurnsTheListIntoATableOfThirtyTwo) {
    InstanceMap map;
    registerRange(map, 0, 9);
    EXPECT_EQ(map.getTableSize(), 32u);
    EXPECT_EQ(map.getCount(), 9u);
    for (std::uint64_t i = 0; i < 9; ++i) {
        EXPECT_EQ(map.find(uidOf(i)), fakeEntity(i));
    }
}

TEST(InstanceMap, TableDoublesWhenHalfFull) {
    InstanceMap map;
    registerRange(map, 0, 16);
    EXPECT_EQ(map.getTableSize(), 32u);
    registerRange(map, 16, 17);
    EXPECT_EQ(map.getTableSize(), 64u);
    for (std::uint64_t i = 0; i < 17; ++i) {
        EXPECT_EQ(map.find(uidOf(i)), fakeEntity(i));
    }
}

TEST(InstanceMap, MissingKeyIsNotFoundInListAndTable) {
    InstanceMap map;
    registerRange(map, 0, 4);
    EXPECT_EQ(map.find(uidOf(99)), nullptr);
    registerRange(map, 4, 40);
    EXPECT_EQ(map.find(uidOf(99)), nullptr);
    EXPECT_EQ(map.find(DmNamedEntity::kInvalidRuntimeUID), nullptr);
}

TEST(InstanceMap, UnregisteringLeavesADeadPair) {
    InstanceMap map;
    registerRange(map, 0, 12);
    map.unregisterEntity(uidOf(3));
    EXPECT_EQ(map.getCount(), 12u);
    EXPECT_EQ(map.getDeadCount(), 1u);
    EXPECT_EQ(map.find(uidOf(3)), nullptr);
    EXPECT_EQ(map.find(uidOf(4)), fakeEntity(4));
}

TEST(InstanceMap, DeadPairsUpToHalfAreKept) {
    InstanceMap map;
    registerRange(map, 0, 10);
    for (std::uint64_t i = 0; i < 5; ++i) {
        map.unregisterEntity(uidOf(i));
    }
    registerRange(map, 10, 11);
    EXPECT_EQ(map.getCount(), 11u);
    EXPECT_EQ(map.getDeadCount(), 5u);
}

TEST(InstanceMap, CompactionDropsDeadPairsOnTheNextRegistration) {
    InstanceMap map;
    registerRange(map, 0, 20);
    for (std::uint64_t i = 0; i < 15; ++i) {
        map.unregisterEntity(uidOf(i));
    }
    EXPECT_EQ(map.getDeadCount(), 15u);
    registerRange(map, 20, 21);
    EXPECT_EQ(map.getDeadCount(), 0u);
    EXPECT_EQ(map.getCount(), 6u);
    EXPECT_EQ(map.getTableSize(), 6u); // back to the list form
    for (std::uint64_t i = 0; i < 15; ++i) {
        EXPECT_EQ(map.find(uidOf(i)), nullptr);
    }
    for (std::uint64_t i = 15; i < 21; ++i) {
        EXPECT_EQ(map.find(uidOf(i)), fakeEntity(i));
    }
}

TEST(InstanceMap, CompactionOfALargeTableRebuildsATable) {
    InstanceMap map;
    registerRange(map, 0, 100);
    for (std::uint64_t i = 0; i < 100; i += 2) {
        map.unregisterEntity(uidOf(i));
    }
    map.unregisterEntity(uidOf(1));
    registerRange(map, 100, 101);
    EXPECT_EQ(map.getDeadCount(), 0u);
    EXPECT_EQ(map.getCount(), 50u);
    EXPECT_EQ(map.getTableSize(), 128u);
    EXPECT_EQ(map.find(uidOf(1)), nullptr);
    for (std::uint64_t i = 3; i < 100; i += 2) {
        EXPECT_EQ(map.find(uidOf(i)), fakeEntity(i));
    }
    EXPECT_EQ(map.find(uidOf(100)), fakeEntity(100));
}

TEST(InstanceMap, LookupsWorkAfterGrowthWithDeadPairs) {
    InstanceMap map;
    registerRange(map, 0, 8);
    map.unregisterEntity(uidOf(0));
    map.unregisterEntity(uidOf(1));
    registerRange(map, 8, 20); // grows; dead pairs move into the table too
    EXPECT_EQ(map.getDeadCount(), 2u);
    EXPECT_EQ(map.getCount(), 20u);
    EXPECT_EQ(map.find(uidOf(0)), nullptr);
    for (std::uint64_t i = 2; i < 20; ++i) {
        EXPECT_EQ(map.find(uidOf(i)), fakeEntity(i));
    }
}

TEST(InstanceMap, MovingAnEntryPointsItAtTheNewObject) {
    InstanceMap map;
    registerRange(map, 0, 12);
    map.moveEntity(uidOf(5), fakeEntity(500));
    EXPECT_EQ(map.find(uidOf(5)), fakeEntity(500));
    EXPECT_EQ(map.getCount(), 12u);
}

TEST(InstanceMap, FindsEntitiesFromManyThreadsAtOnce) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 2000;
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&failures, t] {
            std::vector<std::shared_ptr<TestEntity>> mine;
            std::vector<DmNamedEntity::RuntimeUID> gone;
            for (int round = 0; round < kRounds; ++round) {
                mine.push_back(TestEntity::make("e" + std::to_string(t) + "_" + std::to_string(round)));
                auto const& latest = mine.back();
                if (DmNamedEntity::findByRuntimeUID(latest->getRuntimeUID()).get() != latest.get()) {
                    ++failures;
                }
                if (round % 3 == 0) {
                    gone.push_back(mine.front()->getRuntimeUID());
                    mine.erase(mine.begin());
                }
                if (!gone.empty() && DmNamedEntity::findByRuntimeUID(gone.back()) != nullptr) {
                    ++failures;
                }
            }
            for (auto const& entity : mine) {
                if (DmNamedEntity::findByRuntimeUID(entity->getRuntimeUID()).get() != entity.get()) {
                    ++failures;
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures.load(), 0);
}
