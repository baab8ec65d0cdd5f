#include <KestoDM/platform/BaLeaks.h>

#include <KestoDM/platform/BaEnvVar.h>

#include <cstdio>
#include <mutex>

namespace Kesto {

namespace {

struct LeakStore {
    std::mutex mutex;
    std::vector<BaLeaks::Record> records;
};

// Never destroyed: reports arrive from static destructors, possibly after
// this file's own statics would be gone. The static pointer keeps it
// reachable, so leak checkers do not count it.
LeakStore& store() {
    static LeakStore* const instance = new LeakStore();
    return *instance;
}

} // namespace

void BaLeaks::report_leaks(char const* className, unsigned long count) {
    char const* const name = className != nullptr ? className : "<unknown>";
    LeakStore& leaks = store();
    std::lock_guard<std::mutex> const lock(leaks.mutex);
    leaks.records.push_back(Record{name, count});
    if (BaEnvVar::getBool("KESTO_REPORT_LEAKS")) {
        std::fprintf(stderr, "KestoDM leak: %lu instance(s) of %s\n", count, name);
        std::fflush(stderr);
    }
}

std::vector<BaLeaks::Record> BaLeaks::getReports() {
    LeakStore& leaks = store();
    std::lock_guard<std::mutex> const lock(leaks.mutex);
    return leaks.records;
}

void BaLeaks::clearReports() {
    LeakStore& leaks = store();
    std::lock_guard<std::mutex> const lock(leaks.mutex);
    leaks.records.clear();
}

} // namespace Kesto
