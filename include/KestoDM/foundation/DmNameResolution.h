#pragma once

#include <cstdint>

namespace Kesto {

/// What to do when a name is already taken in the target scope.
enum DmNameResolutionType : std::uint8_t {
    kFailOnClash = 0, ///< refuse with kInvalidArgument
    kMakeUnique = 1,  ///< rename the newcomer to a fresh name
    kAsOverload = 2,  ///< let the newcomer join the overload set of that name
};

/// How a proposed name becomes the stored name.
enum DmNameResolveFlags : std::uint8_t {
    kNameVerbatim = 0,    ///< taken as it stands; only the empty name fails
    kNameLegalize = 1,    ///< replaced by its legal form; fails if there is none
    kNameMustBeLegal = 2, ///< fails unless the legal form equals the name
};

} // namespace Kesto
