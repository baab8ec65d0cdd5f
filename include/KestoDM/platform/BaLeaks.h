#pragma once

#include <KestoDM/platform/DmExport.h>

#include <string>
#include <vector>

namespace Kesto {

/// Collects reports of library objects still alive at process end. Reports
/// come from static destructors, so the store is never destroyed and every
/// call is safe during static destruction. Thread-safe.
struct KESTODM_API BaLeaks {
    struct Record {
        std::string className;
        unsigned long count;
    };

    /// Records the report. When KESTO_REPORT_LEAKS is on at that moment, also
    /// writes `KestoDM leak: <count> instance(s) of <className>` and a newline
    /// to standard error and flushes it.
    static void report_leaks(char const* className, unsigned long count);
    /// The reports so far, in order.
    static std::vector<Record> getReports();
    static void clearReports();
};

} // namespace Kesto
