#include <KestoDM/graph/DmNativeNodeDef.h>

namespace Kesto {

std::shared_ptr<DmNativeNodeDef> DmNativeNodeDef::newNativeNodeDef(std::string const& name, NativeKind kind,
                                                                   DmNameResolveFlags flags) {
    return makeNamed<DmNativeNodeDef>(name, flags, InternalConstructor(), kind);
}

DmNativeNodeDef::DmNativeNodeDef(InternalConstructor, std::string name, NativeKind kind)
    : DmOverload(std::move(name), true), m_nativeKind(kind) {}

DmNativeNodeDef::~DmNativeNodeDef() = default;

bool DmNativeNodeDef::isBuiltIn() const {
    return true;
}

DmStatus DmNativeNodeDef::import(std::shared_ptr<DmScope> const&, DmNameResolutionType, std::string const&,
                                 std::shared_ptr<DmNodeDef>&, ImportErrorFlags) {
    return DmStatus::kSuccess;
}

} // namespace Kesto
