#include <KestoDM/graph/DmTerminalNodeDef.h>

namespace Kesto {

std::shared_ptr<DmTerminalNodeDef> DmTerminalNodeDef::createTerminalNodeDef(std::string const& name,
                                                                            DmNameResolveFlags flags) {
    return makeNamed<DmTerminalNodeDef>(name, flags, InternalConstructor());
}

DmTerminalNodeDef::DmTerminalNodeDef(InternalConstructor, std::string name)
    : DmOverload(std::move(name), true) {}

DmTerminalNodeDef::~DmTerminalNodeDef() = default;

bool DmTerminalNodeDef::isTerminal() const {
    return true;
}

bool DmTerminalNodeDef::isOverloadsLocked() const {
    return true;
}

DmStatus DmTerminalNodeDef::setOverloadsLocked(bool locked) {
    return locked ? DmStatus::kSuccess : DmStatus::kFailure;
}

DmStatus DmTerminalNodeDef::setScope(DmScope* scope, DmNameResolutionType type) {
    DmStatus const status = DmNodeDef::setScope(scope, type);
    if (status.isSuccess() && get_owner() != nullptr) {
        setIsDefaultOverload(true);
    }
    return status;
}

DmStatus DmTerminalNodeDef::import(std::shared_ptr<DmScope> const&, DmNameResolutionType, std::string const&,
                                   std::shared_ptr<DmNodeDef>&, ImportErrorFlags) {
    return DmStatus::kFailure;
}

} // namespace Kesto
