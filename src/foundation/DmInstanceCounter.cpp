#include <KestoDM/foundation/DmInstanceCounter.h>

#include <KestoDM/platform/BaLeaks.h>

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace Kesto {
namespace Internal {

std::string demangledTypeName(std::type_info const& type) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> demangled(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    if (status == 0 && demangled) {
        return demangled.get();
    }
    return type.name();
}

void reportInstanceLeak(std::type_info const& type, unsigned int count) {
    BaLeaks::report_leaks(demangledTypeName(type).c_str(), count);
}

} // namespace Internal
} // namespace Kesto
