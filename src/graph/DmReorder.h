#pragma once

#include <KestoDM/foundation/DmStatus.h>

#include <cstddef>
#include <iterator>
#include <string>

namespace Kesto {

/// Moves the entry `name` of an ordered map before the entry at index
/// `position` (the map's size: to the end). kFailure for an unknown name,
/// kInvalidArgument for a position past the end; an entry already in place
/// stays, with kSuccess. Definitions and their nodes reorder by these rules.
template <class Map>
DmStatus reorderEntry(Map& map, std::size_t position, std::string const& name) {
    if (position > map.size()) {
        return DmStatus::kInvalidArgument;
    }
    auto const entry = map.find(name);
    if (entry == map.end()) {
        return DmStatus::kFailure;
    }
    auto const before = std::next(map.begin(), static_cast<std::ptrdiff_t>(position));
    if (before != entry && before != std::next(entry)) {
        map.relocate(before, entry);
    }
    return DmStatus::kSuccess;
}

} // namespace Kesto
