#pragma once

#include <KestoDM/platform/DmExport.h>

namespace Kesto {

/// Named accessors for the debugging switches, read at each call.
struct KESTODM_API BaDebugEvs {
    static bool get_KESTO_ALWAYS_PRINT_ERRORS();
    static bool get_KESTO_ABORT_ON_INTERNAL_ERRORS();
};

} // namespace Kesto
