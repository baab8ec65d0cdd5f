#include <KestoDM/platform/DefaultClassFunction.h>

namespace Kesto {
namespace Internal {

std::string getDefaultClassFunction(std::string const& mangledName) {
    if (mangledName.empty()) {
        return std::string();
    }
    return "kesto_default_" + mangledName;
}

} // namespace Internal
} // namespace Kesto
