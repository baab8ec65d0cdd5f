#include <KestoDM/graph/DmUnknownPortDescription.h>

#include <KestoDM/types/DmUninstantiableType.h>

#include "types/DmTypeSingletons.h"

#include <utility>

namespace Kesto {

std::shared_ptr<DmUnknownPortDescription>
DmUnknownPortDescription::newPortDescription(std::string const& name, std::shared_ptr<DmBaseType const> type,
                                             PortDirection direction, DmNameResolveFlags flags) {
    return makeNamed<DmUnknownPortDescription>(name, flags, InternalConstructor(), std::move(type),
                                               direction);
}

std::shared_ptr<DmUnknownPortDescription>
DmUnknownPortDescription::newPortDescription(DmPortDescription const& source) {
    return std::make_shared<DmUnknownPortDescription>(InternalConstructor(), source);
}

std::shared_ptr<DmUnknownPortDescription>
DmUnknownPortDescription::newPortDescription(DmPortDescription const& source,
                                             std::shared_ptr<DmBaseType const> type) {
    auto copy = newPortDescription(source);
    copy->setType(std::move(type));
    return copy;
}

std::shared_ptr<DmUnknownPortDescription>
DmUnknownPortDescription::newMultiInPortDescription(std::string const& name, DmNameResolveFlags flags) {
    auto port = newPortDescription(name, Internal::TypeSingletons::autoType(), kDirectionInput, flags);
    if (port) {
        port->assignPortKind(kPortMultiIn);
    }
    return port;
}

std::shared_ptr<DmPortDescription> DmUnknownPortDescription::clone() const {
    return newPortDescription(*this);
}

DmUnknownPortDescription::DmUnknownPortDescription(InternalConstructor tag, std::string name,
                                                   std::shared_ptr<DmBaseType const> type,
                                                   PortDirection direction)
    : DmPortDescription(tag, std::move(name), std::move(type), direction) {}

DmUnknownPortDescription::DmUnknownPortDescription(InternalConstructor tag, DmPortDescription const& source)
    : DmPortDescription(tag, source) {}

DmUnknownPortDescription::~DmUnknownPortDescription() = default;

bool DmUnknownPortDescription::isUnknown() const {
    return true;
}

} // namespace Kesto
