#include <KestoDM/graph/DmWhileCompound.h>

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/types/DmBuiltInType.h>

#include "types/DmTypeSingletons.h"

#include <utility>

namespace Kesto {

// ---------------------------------------------------------------------------
// Construction

std::shared_ptr<DmWhileCompound> DmWhileCompound::createWhileCompound(std::string const& name,
                                                                      std::shared_ptr<DmMessageLogger> logger,
                                                                      DmNameResolveFlags flags) {
    return makeNamed<DmWhileCompound>(name, flags, InternalConstructor(), std::move(logger));
}

DmWhileCompound::DmWhileCompound(InternalConstructor tag, std::string name,
                                 std::shared_ptr<DmMessageLogger> logger)
    : DmLoopingCompound(tag, std::move(name), std::move(logger), "LoopDo_While.svg") {}

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
    return initialized(createWhileCompound(getName(), getLogger(), kNameVerbatim));
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
