#include "foundation/DmInstanceMap.h"

#include <KestoDM/platform/BaLeaks.h>

namespace Kesto {

namespace {

constexpr std::size_t kListLimit = 8;
constexpr std::size_t kInitialReserve = 80;
constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

std::size_t nextPowerOfTwo(std::size_t value) noexcept {
    std::size_t power = 1;
    while (power < value) {
        power <<= 1;
    }
    return power;
}

} // namespace

DmNamedEntity::InstanceMap::InstanceMap() {
    m_table.reserve(kInitialReserve);
}

DmNamedEntity::InstanceMap::~InstanceMap() {
    if (m_count != m_dead) {
        BaLeaks::report_leaks("DmNamedEntity in InstanceMap", static_cast<unsigned long>(m_count - m_dead));
    }
}

std::size_t DmNamedEntity::InstanceMap::lookup(Table const& table, RuntimeUID uid) noexcept {
    std::size_t const size = table.size();
    if (size <= kListLimit) {
        for (std::size_t i = 0; i < size; ++i) {
            if (table[i].first == uid) {
                return i;
            }
        }
        return kNotFound;
    }
    std::size_t const mask = size - 1;
    std::size_t index = static_cast<std::size_t>(uid) & mask;
    std::size_t step = 1;
    while (table[index].first != uid) {
        if (table[index].first == kInvalidRuntimeUID) {
            return kNotFound;
        }
        index = (index + step++) & mask;
    }
    return index;
}

void DmNamedEntity::InstanceMap::insert(Table& table, std::size_t& count, RuntimeUID uid,
                                        DmNamedEntity* entity) {
    if (table.size() < kListLimit) {
        ++count;
        table.emplace_back(uid, entity);
        return;
    }
    if (count * 2 >= table.size()) {
        Table grown(count * 4, Pair(kInvalidRuntimeUID, nullptr));
        std::size_t ignored = 0;
        for (Pair const& pair : table) {
            if (pair.first != kInvalidRuntimeUID) {
                insert(grown, ignored, pair.first, pair.second);
            }
        }
        table.swap(grown);
    }
    ++count;
    std::size_t const mask = table.size() - 1;
    std::size_t index = static_cast<std::size_t>(uid) & mask;
    std::size_t step = 1;
    while (table[index].first != kInvalidRuntimeUID) {
        index = (index + step++) & mask;
    }
    table[index] = Pair(uid, entity);
}

void DmNamedEntity::InstanceMap::compact() {
    if (m_dead * 2 <= m_count) {
        return;
    }
    Table fresh;
    fresh.reserve(kInitialReserve);
    std::size_t const live = m_count - m_dead;
    if (live > kListLimit) {
        fresh.reserve((nextPowerOfTwo(live) / 2) * 5);
    }
    std::size_t freshCount = 0;
    for (Pair const& pair : m_table) {
        if (pair.first != kInvalidRuntimeUID && pair.second != nullptr) {
            insert(fresh, freshCount, pair.first, pair.second);
        }
    }
    m_table.swap(fresh);
    m_count = freshCount;
    m_dead = 0;
}

void DmNamedEntity::InstanceMap::registerEntity(RuntimeUID uid, DmNamedEntity* entity) {
    std::lock_guard<std::mutex> lock(m_mutex);
    compact();
    insert(m_table, m_count, uid, entity);
}

void DmNamedEntity::InstanceMap::moveEntity(RuntimeUID uid, DmNamedEntity* entity) {
    std::lock_guard<std::mutex> lock(m_mutex);
    compact();
    std::size_t const index = lookup(m_table, uid);
    if (index != kNotFound) {
        m_table[index].second = entity;
    }
}

void DmNamedEntity::InstanceMap::unregisterEntity(RuntimeUID uid) {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t const index = lookup(m_table, uid);
    if (index != kNotFound && m_table[index].second != nullptr) {
        m_table[index].second = nullptr;
        ++m_dead;
    }
}

std::weak_ptr<DmNamedEntity> DmNamedEntity::InstanceMap::findWeak(RuntimeUID uid, bool& found) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t const index = lookup(m_table, uid);
    DmNamedEntity* const entity = index == kNotFound ? nullptr : m_table[index].second;
    found = entity != nullptr;
    return found ? entity->weak_from_this() : std::weak_ptr<DmNamedEntity>();
}

DmNamedEntity* DmNamedEntity::InstanceMap::find(RuntimeUID uid) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t const index = lookup(m_table, uid);
    return index == kNotFound ? nullptr : m_table[index].second;
}

std::size_t DmNamedEntity::InstanceMap::getTableSize() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_table.size();
}

std::size_t DmNamedEntity::InstanceMap::getCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_count;
}

std::size_t DmNamedEntity::InstanceMap::getDeadCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_dead;
}

std::size_t DmNamedEntity::InstanceMap::getCapacity() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_table.capacity();
}

} // namespace Kesto
