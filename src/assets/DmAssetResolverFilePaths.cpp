#include <KestoDM/assets/DmAssetResolverFilePaths.h>

#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetUtils.h>
#include <KestoDM/assets/DmURIParser.h>

namespace Kesto {

DmAssetResolverFilePaths::DmAssetResolverFilePaths() : m_searchPaths(std::make_shared<SearchPaths>()) {}

DmAssetResolverFilePaths::~DmAssetResolverFilePaths() = default;

bool DmAssetResolverFilePaths::resolve(std::shared_ptr<DmAssetReference> const& reference,
                                       std::shared_ptr<DmAssetResolverContext> const& context,
                                       std::shared_ptr<DmMessageLogger> const&) const {
    if (!reference) {
        return false;
    }
    reference->setResolveStatus(DmAssetReference::kResolvingFilePaths);
    return DmAssetUtils::resolveFileSpec(reference, context, m_searchPaths.get());
}

std::string const& DmAssetResolverFilePaths::schemeKey() const {
    static std::string const s_key = DmURIParser::kFilePathsSchemeKey;
    return s_key;
}

DmAssetResolver::AccessMode DmAssetResolverFilePaths::getAccessMode() const {
    return kAccessFile;
}

void DmAssetResolverFilePaths::addSearchPath(String const& path) {
    m_searchPaths->push_back(path);
}

} // namespace Kesto
