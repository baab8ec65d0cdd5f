#include <KestoDM/platform/BaDebugEvs.h>

#include <KestoDM/platform/BaEnvVar.h>

namespace Kesto {

bool BaDebugEvs::get_KESTO_ALWAYS_PRINT_ERRORS() {
    return BaEnvVar::getBool("KESTO_ALWAYS_PRINT_ERRORS");
}

bool BaDebugEvs::get_KESTO_ABORT_ON_INTERNAL_ERRORS() {
    return BaEnvVar::getBool("KESTO_ABORT_ON_INTERNAL_ERRORS");
}

} // namespace Kesto
