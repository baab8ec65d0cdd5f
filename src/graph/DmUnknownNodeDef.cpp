#include <KestoDM/graph/DmUnknownNodeDef.h>

namespace Kesto {

std::shared_ptr<DmUnknownNodeDef> DmUnknownNodeDef::newUnknownNodeDef(std::string const& name,
                                                                      DmNameResolveFlags flags) {
    return makeNamed<DmUnknownNodeDef>(name, flags, InternalConstructor());
}

DmUnknownNodeDef::DmUnknownNodeDef(InternalConstructor, std::string name)
    : DmOverload(std::move(name), true) {}

DmUnknownNodeDef::~DmUnknownNodeDef() = default;

bool DmUnknownNodeDef::isUnknown() const {
    return true;
}

DmStatus DmUnknownNodeDef::import(std::shared_ptr<DmScope> const&, DmNameResolutionType, std::string const&,
                                  std::shared_ptr<DmNodeDef>&, ImportErrorFlags) {
    return DmStatus::kFailure;
}

} // namespace Kesto
