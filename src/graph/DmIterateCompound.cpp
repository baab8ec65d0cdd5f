#include <KestoDM/graph/DmIterateCompound.h>

#include <KestoDM/graph/DmPortDescription.h>

#include <utility>

namespace Kesto {

// ---------------------------------------------------------------------------
// Construction

std::shared_ptr<DmIterateCompound> DmIterateCompound::createIterateCompound(std::string const& name,
                                                                            DmNameResolveFlags flags) {
    return initialized(makeNamed<DmIterateCompound>(name, flags, InternalConstructor()));
}

DmIterateCompound::DmIterateCompound(InternalConstructor tag, std::string name)
    : DmLoopingCompound(tag, std::move(name), "LoopIterate.svg") {}

DmIterateCompound::~DmIterateCompound() = default;

std::shared_ptr<DmCompound> DmIterateCompound::clone() const {
    return createIterateCompound(getName(), kNameVerbatim);
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
