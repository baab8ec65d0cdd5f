#pragma once

#include <cstdint>

namespace Kesto {

/// The categories a message is reported under, from the most to the least
/// serious. The numbers are fixed: callers compare them ("below info").
struct BaMessageTypes {
    enum MessageCategory : std::int32_t {
        kMessageFatal = 0,
        kMessageInternalError = 1,
        kMessageSevereError = 2,
        kMessageError = 3,
        kMessageWarning = 4,
        kMessageInfo = 5
    };
};

} // namespace Kesto
