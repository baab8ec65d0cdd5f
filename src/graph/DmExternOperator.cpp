#include <KestoDM/graph/DmExternOperator.h>

namespace Kesto {

std::shared_ptr<DmExternOperator>
DmExternOperator::createExternOperator(std::string const& name, CancellationPolicy cancellationPolicy,
                                       std::string const& packName, DmNameResolveFlags flags) {
    return makeNamed<DmExternOperator>(name, flags, InternalConstructor(), cancellationPolicy, packName);
}

DmExternOperator::DmExternOperator(InternalConstructor, std::string name,
                                   CancellationPolicy cancellationPolicy, std::string packName)
    : DmOverload(std::move(name), true), m_cancellationPolicy(cancellationPolicy),
      m_packName(std::move(packName)) {}

DmExternOperator::~DmExternOperator() = default;

void DmExternOperator::initialize() {}

bool DmExternOperator::isPromoter() const {
    return m_isPromoter;
}

bool DmExternOperator::setPromoter(bool promoter) {
    m_isPromoter = promoter;
    return true;
}

DmStatus DmExternOperator::import(std::shared_ptr<DmScope> const&, DmNameResolutionType, std::string const&,
                                  std::shared_ptr<DmNodeDef>&, ImportErrorFlags) {
    return DmStatus::kFailure;
}

} // namespace Kesto
