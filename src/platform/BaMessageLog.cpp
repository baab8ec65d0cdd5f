#include <KestoDM/platform/BaMessageLog.h>

namespace Kesto {

BaMessageLog::BaMessageLog() = default;
BaMessageLog::~BaMessageLog() = default;

} // namespace Kesto
