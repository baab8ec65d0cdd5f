#include <KestoDM/graph/DmWhileCompound.h>

#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/types/DmBuiltInType.h>

#include "types/DmTypeSingletons.h"

#include <utility>

namespace Kesto {

// ---------------------------------------------------------------------------
// Construction

std::shared_ptr<DmWhileCompound> DmWhileCompound::createWhileCompound(std::string const& name,
                                                                      DmNameResolveFlags flags) {
    return initialized(makeNamed<DmWhileCompound>(name, flags, InternalConstructor()));
}

DmWhileCompound::DmWhileCompound(InternalConstructor tag, std::string name)
    : DmLoopingCompound(tag, std::move(name), "LoopDo_While.svg") {}

DmWhileCompound::~DmWhileCompound() = default;

void DmWhileCompound::initialize() {
    if (getInternalSelfNode()) {
        return;
    }
    // Taken as it is: a unique name would rename the reserved one.
    addPortDescription(DmPortDescription::newPortDescription(kLoopingConditionPortName,
                                                             Internal::TypeSingletons::boolType(),
                                                             kDirectionOutput, kNameVerbatim),
                       kAsOverload);
    DmLoopingCompound::initialize();
}

std::shared_ptr<DmCompound> DmWhileCompound::clone() const {
    return createWhileCompound(getName(), kNameVerbatim);
}

bool DmWhileCompound::isArrayLoop() const {
    return false;
}

// ---------------------------------------------------------------------------
// Ports

bool DmWhileCompound::isReservedPortName(std::string const& name) const {
    return name == kLoopingConditionPortName;
}

std::shared_ptr<DmPort> DmWhileCompound::getLoopingConditionPort() const {
    auto const& selfNode = getInternalSelfNode();
    return selfNode ? (*selfNode)[kLoopingConditionPortName] : nullptr;
}

bool DmWhileCompound::linkStatePorts(std::string const& first, std::string const& second) {
    return linkSelfPorts(first, second, kIterationState);
}

bool DmWhileCompound::resetStatePort(std::string const& name) {
    return unlinkSelfPort(name);
}

} // namespace Kesto
