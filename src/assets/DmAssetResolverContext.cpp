#include <KestoDM/assets/DmAssetResolverContext.h>

#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/library/DmLibrary.h>

#include <utility>

namespace Kesto {

DmAssetResolverContext::DmAssetResolverContext() = default;
DmAssetResolverContext::DmAssetResolverContext(DmAssetResolverContext const&) = default;
DmAssetResolverContext::DmAssetResolverContext(DmAssetResolverContext&&) noexcept = default;
DmAssetResolverContext& DmAssetResolverContext::operator=(DmAssetResolverContext const&) = default;
DmAssetResolverContext& DmAssetResolverContext::operator=(DmAssetResolverContext&&) noexcept = default;
DmAssetResolverContext::~DmAssetResolverContext() = default;

std::shared_ptr<DmAssetResolverContext> DmAssetResolverContext::newAssetResolverContext() {
    return std::make_shared<DmAssetResolverContext>();
}

void DmAssetResolverContext::setLibrary(std::shared_ptr<DmLibrary> library) {
    m_library = std::move(library);
}

void DmAssetResolverContext::setRelativeAssetReference(std::shared_ptr<DmAssetReference> reference) {
    m_relativeAssetReference = std::move(reference);
}

} // namespace Kesto
