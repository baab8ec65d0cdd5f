#include <KestoDM/assets/DmAssetResolver.h>

namespace Kesto {

DmAssetResolver::DmAssetResolver() : DmEntity(true) {}

DmAssetResolver::DmAssetResolver(DmAssetResolver const&) = default;

DmAssetResolver::~DmAssetResolver() = default;

InputStream* DmAssetResolver::createInputStream(std::shared_ptr<DmAssetReference> const&) const {
    return nullptr;
}

} // namespace Kesto
