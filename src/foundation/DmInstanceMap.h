#pragma once

#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/platform/DmExport.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

namespace Kesto {

/// The process-wide table from RuntimeUID to live entity.
///
/// UIDs are a bijective mix of a counter, so their low bits serve as table
/// indexes directly. Up to 8 pairs the table is a plain list; beyond that it is
/// an open-addressing array of power-of-two size with triangular probing, kept
/// at most half full. Unregistering only nulls the value (a dead pair), so it
/// never moves a pair; dead pairs are dropped in bulk by the compaction that
/// runs at the start of each registration once they are more than half.
///
/// One mutex guards the table; it is held only for the compaction, the table
/// operation and the value read. The class is exported for the library's tests,
/// which build maps of their own to watch the growth and compaction.
class KESTODM_API DmNamedEntity::InstanceMap {
public:
    using RuntimeUID = DmNamedEntity::RuntimeUID;
    using Pair = std::pair<RuntimeUID, DmNamedEntity*>;

    InstanceMap();
    /// The one map of the process, in which every named entity registers.
    static InstanceMap& processWide() noexcept;
    InstanceMap(InstanceMap const&) = delete;
    InstanceMap& operator=(InstanceMap const&) = delete;
    /// Reports the entities still registered as a leak.
    ~InstanceMap();

    /// The mix that turns a counter value into a UID (MurmurHash3's 64-bit block
    /// step and finaliser). Counter 0 gives 0; all ones gives kInvalidRuntimeUID.
    static constexpr RuntimeUID mix(std::uint64_t counter) noexcept {
        std::uint64_t x = counter * 0x87C37B91114253D5ull;
        x = (x << 31) | (x >> 33);
        x *= 0x4CF5AD432745937Full;
        x ^= x >> 33;
        x *= 0xFF51AFD7ED558CCDull;
        x ^= x >> 33;
        x *= 0xC4CEB9FE1A85EC53ull;
        x ^= x >> 33;
        return x;
    }

    /// A fresh UID from the counter.
    RuntimeUID nextRuntimeUID() noexcept { return mix(m_counter.fetch_add(1)); }

    void registerEntity(RuntimeUID uid, DmNamedEntity* entity);
    /// Points the pair of `uid` at the object that took the UID over.
    void moveEntity(RuntimeUID uid, DmNamedEntity* entity);
    void unregisterEntity(RuntimeUID uid);
    /// The live entity of `uid` as a weak reference, taken under the lock so that
    /// an entity dying meanwhile is still read whole.
    std::weak_ptr<DmNamedEntity> findWeak(RuntimeUID uid, bool& found) const;
    DmNamedEntity* find(RuntimeUID uid) const;

    /// @name Introspection for tests and benchmarks
    /// @{
    std::size_t getTableSize() const;
    std::size_t getCount() const;
    std::size_t getDeadCount() const;
    std::size_t getCapacity() const;
    /// @}

private:
    using Table = std::vector<Pair>;

    static std::size_t lookup(Table const& table, RuntimeUID uid) noexcept;
    static void insert(Table& table, std::size_t& count, RuntimeUID uid, DmNamedEntity* entity);
    void compact();

    std::atomic<std::uint64_t> m_counter{0};
    mutable std::mutex m_mutex;
    Table m_table;
    std::size_t m_count = 0;
    std::size_t m_dead = 0;
};

} // namespace Kesto
