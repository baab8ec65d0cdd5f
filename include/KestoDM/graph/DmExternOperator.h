#pragma once

#include <cstdint>

namespace Kesto {

/// A node definition whose body is compiled code outside the graph.
class DmExternOperator {
public:
    /// How an operator may be cancelled while it runs. A library gives its
    /// operators a default policy; an operator's own annotation overrides it.
    enum CancellationPolicy : std::uint8_t {
        kNone = 0,
        kSafe = 1,
        kUnsafe = 2,
    };
};

} // namespace Kesto
