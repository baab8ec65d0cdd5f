#pragma once

#include <KestoDM/platform/DmExport.h>

#include <atomic>
#include <string>
#include <typeinfo>

namespace Kesto {
namespace Internal {

/// Readable name of a class for leak reports ("Kesto::DmNode" rather than its mangled form).
KESTODM_API std::string demangledTypeName(std::type_info const& type);

/// Hands a non-zero count at process end to the leak report.
KESTODM_API void reportInstanceLeak(std::type_info const& type, unsigned int count);

} // namespace Internal

/// Empty base that counts the live objects of class T. Every counted level of a
/// class hierarchy keeps its own count, so one object may be in several counts.
/// A count that is not zero when the process ends is reported as a leak.
///
/// The counters are shared by every module of the process: the template has
/// default visibility, so the library and the host see one count per class.
template <class T>
class KESTODM_API DmInstanceCounter {
public:
    DmInstanceCounter() noexcept { increment(); }
    DmInstanceCounter(DmInstanceCounter const&) noexcept { increment(); }
    DmInstanceCounter& operator=(DmInstanceCounter const&) noexcept { return *this; }
    ~DmInstanceCounter() { m_count.fetch_sub(1); }

    /// Number of live objects of T (including objects of classes derived from T).
    static unsigned int getInstanceCount() noexcept { return m_count.load(); }

private:
    struct InstanceChecker {
        ~InstanceChecker() {
            unsigned int const count = m_count.load();
            if (count != 0) {
                Internal::reportInstanceLeak(typeid(T), count);
            }
        }
    };

    static void increment() noexcept {
        m_count.fetch_add(1);
        // Using the checker here makes the compiler emit it for every counted class.
        static_cast<void>(&m_checker);
    }

    static inline std::atomic<unsigned int> m_count{0};
    static inline InstanceChecker m_checker{};
};

} // namespace Kesto
