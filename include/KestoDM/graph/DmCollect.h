#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace Kesto {

class DmNamedEntity;

/// What DmNamespace::collect gathers; the bits combine with `|`.
enum DmCollectMask : std::uint8_t {
    /// Types that files define: class, struct, enum, undefined, unknown and
    /// unknown struct. Built-ins, auto and arrays are passed over.
    kCollectTypes = 1,
    /// Compounds among the overloads of the scope's definitions.
    kCollectCompounds = 2,
    /// External operators among the overloads of the scope's definitions.
    kCollectExternOperators = 4,
};

/// How DmNamespace::collect walks; the bits combine with `|`.
enum DmCollectFlags : std::uint8_t {
    /// Descend into nested namespaces, depth first, in their order.
    kCollectNested = 1,
};

constexpr DmCollectMask operator|(DmCollectMask a, DmCollectMask b) noexcept {
    return static_cast<DmCollectMask>(static_cast<std::uint8_t>(a) | static_cast<std::uint8_t>(b));
}

constexpr DmCollectFlags operator|(DmCollectFlags a, DmCollectFlags b) noexcept {
    return static_cast<DmCollectFlags>(static_cast<std::uint8_t>(a) | static_cast<std::uint8_t>(b));
}

/// The list that collect appends to, in the order of the walk.
using DmCollectList = std::vector<std::shared_ptr<DmNamedEntity>>;

} // namespace Kesto
