#include <KestoDM/assets/DmAssetResolverStream.h>

#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmURIParser.h>

namespace Kesto {

DmAssetResolverStream::DmAssetResolverStream() = default;

DmAssetResolverStream::~DmAssetResolverStream() = default;

bool DmAssetResolverStream::resolve(std::shared_ptr<DmAssetReference> const& reference,
                                    std::shared_ptr<DmAssetResolverContext> const&,
                                    std::shared_ptr<DmMessageLogger> const&) const {
    if (!reference) {
        return false;
    }
    // Only reading is resolved: a reference with an output stream alone has nothing to read.
    if (reference->getExternalInputStream() == nullptr) {
        reference->setResolveStatus(DmAssetReference::kNoStream);
        return false;
    }
    reference->setResolveStatus(DmAssetReference::kResolved);
    reference->setAssetIdentity(reference->getAssetSpec());
    return true;
}

std::string const& DmAssetResolverStream::schemeKey() const {
    static std::string const s_key = DmURIParser::kStreamSchemeKey;
    return s_key;
}

DmAssetResolver::AccessMode DmAssetResolverStream::getAccessMode() const {
    return kAccessInputStream;
}

} // namespace Kesto
