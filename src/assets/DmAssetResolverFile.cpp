#include <KestoDM/assets/DmAssetResolverFile.h>

#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetUtils.h>
#include <KestoDM/assets/DmURIParser.h>

namespace Kesto {

DmAssetResolverFile::DmAssetResolverFile() = default;

DmAssetResolverFile::~DmAssetResolverFile() = default;

bool DmAssetResolverFile::resolve(std::shared_ptr<DmAssetReference> const& reference,
                                  std::shared_ptr<DmAssetResolverContext> const& context,
                                  std::shared_ptr<DmMessageLogger> const&) const {
    if (!reference) {
        return false;
    }
    // A "file:" spec names one file: without search paths, a spec that no try
    // could use is simply not found.
    reference->setResolveStatus(DmAssetReference::kFileNotFound);
    return DmAssetUtils::resolveFileSpec(reference, context, nullptr);
}

std::string const& DmAssetResolverFile::schemeKey() const {
    static std::string const s_key = DmURIParser::kFileSchemeKey;
    return s_key;
}

DmAssetResolver::AccessMode DmAssetResolverFile::getAccessMode() const {
    return kAccessFile;
}

} // namespace Kesto
