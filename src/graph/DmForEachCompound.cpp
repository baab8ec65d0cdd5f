#include <KestoDM/graph/DmForEachCompound.h>

#include <KestoDM/graph/DmPortDescription.h>

#include <utility>

namespace Kesto {

// ---------------------------------------------------------------------------
// Construction

std::shared_ptr<DmForEachCompound> DmForEachCompound::createForEachCompound(std::string const& name,
                                                                            DmNameResolveFlags flags) {
    return initialized(makeNamed<DmForEachCompound>(name, flags, InternalConstructor()));
}

DmForEachCompound::DmForEachCompound(InternalConstructor tag, std::string name)
    : DmLoopingCompound(tag, std::move(name), "LoopForEach.svg") {}

DmForEachCompound::~DmForEachCompound() = default;

std::shared_ptr<DmCompound> DmForEachCompound::clone() const {
    return createForEachCompound(getName(), kNameVerbatim);
}

bool DmForEachCompound::isArrayLoop() const {
    return true;
}

// ---------------------------------------------------------------------------
// Ports

bool DmForEachCompound::addPortDescription(std::shared_ptr<DmPortDescription> const& port,
                                           DmNameResolutionType type) {
    // Outputs are arrays gathered over the iterations, so they default to
    // targets. A port of another definition goes the plain way, to be refused.
    if (port && port->isOutput() && !port->isIterationTarget() && port->getNodeDef() == nullptr) {
        auto const target = port->clone();
        target->setIterationAttribute(kIterationTarget);
        return DmLoopingCompound::addPortDescription(target, type);
    }
    return DmLoopingCompound::addPortDescription(port, type);
}

bool DmForEachCompound::setInOutPort(std::string const& first, std::string const& second) {
    return linkSelfPorts(first, second, kIterationInOutTarget);
}

bool DmForEachCompound::resetInOutPort(std::string const& name) {
    return unlinkSelfPort(name);
}

bool DmForEachCompound::isInOutPort(std::string const& name) const {
    DmPortDescription const* const port = findSelfPortDescription(name);
    return port != nullptr && port->isIterationState();
}

} // namespace Kesto
