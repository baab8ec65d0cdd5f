#include <KestoDM/graph/DmIterateCompound.h>

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/graph/DmPortDescription.h>

#include <utility>

namespace Kesto {

// ---------------------------------------------------------------------------
// Construction

std::shared_ptr<DmIterateCompound>
DmIterateCompound::createIterateCompound(std::string const& name, std::shared_ptr<DmMessageLogger> logger,
                                         DmNameResolveFlags flags) {
    return makeNamed<DmIterateCompound>(name, flags, InternalConstructor(), std::move(logger));
}

DmIterateCompound::DmIterateCompound(InternalConstructor tag, std::string name,
                                     std::shared_ptr<DmMessageLogger> logger)
    : DmLoopingCompound(tag, std::move(name), std::move(logger), "LoopIterate.svg") {}

DmIterateCompound::~DmIterateCompound() = default;

std::shared_ptr<DmCompound> DmIterateCompound::clone() const {
    return initialized(createIterateCompound(getName(), getLogger(), kNameVerbatim));
}

bool DmIterateCompound::isArrayLoop() const {
    return true;
}

// ---------------------------------------------------------------------------
// Ports

bool DmIterateCompound::linkStatePorts(std::string const& first, std::string const& second) {
    // A state carried between an element and a whole value would change its nature.
    DmPortDescription const* const firstPort = findSelfPortDescription(first);
    DmPortDescription const* const secondPort = findSelfPortDescription(second);
    if (firstPort == nullptr || secondPort == nullptr ||
        firstPort->isIterationTarget() != secondPort->isIterationTarget()) {
        return false;
    }
    return linkSelfPorts(first, second, kIterationState);
}

bool DmIterateCompound::resetStatePort(std::string const& name) {
    return unlinkSelfPort(name);
}

} // namespace Kesto
