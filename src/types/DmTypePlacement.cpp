#include "types/DmTypePlacement.h"

#include <KestoDM/types/DmBaseType.h>

namespace Kesto {
namespace Internal {

// No namespace class exists yet, so a type is placed in none: it can only be
// taken out of its (absent) namespace.

void appendTypeScope(DmBaseType const&, std::string&) {}

DmStatus placeType(DmBaseType&, DmNamespace*& current, DmNamespace* target) {
    if (target == current) {
        return DmStatus::kSuccess;
    }
    if (target == nullptr) {
        current = nullptr;
        return DmStatus::kSuccess;
    }
    return DmStatus::kFailure;
}

} // namespace Internal
} // namespace Kesto
