#include <KestoDM/assets/DmAssetReference.h>

#include <KestoDM/assets/DmURIParser.h>

#include <utility>

namespace Kesto {

DmAssetReference::DmAssetReference() = default;

DmAssetReference::DmAssetReference(std::string spec) : m_assetSpec(std::move(spec)) {}

DmAssetReference::DmAssetReference(std::string spec, InputStream* inputStream)
    : m_assetSpec(std::move(spec)), m_externalInputStream(inputStream) {}

DmAssetReference::DmAssetReference(std::string spec, OutputStream* outputStream)
    : m_assetSpec(std::move(spec)), m_externalOutputStream(outputStream) {}

DmAssetReference::DmAssetReference(DmAssetReference const&) = default;
DmAssetReference::DmAssetReference(DmAssetReference&&) noexcept = default;
DmAssetReference& DmAssetReference::operator=(DmAssetReference const&) = default;
DmAssetReference& DmAssetReference::operator=(DmAssetReference&&) noexcept = default;
DmAssetReference::~DmAssetReference() = default;

std::shared_ptr<DmAssetReference> DmAssetReference::newAssetReference() {
    return std::make_shared<DmAssetReference>();
}

std::shared_ptr<DmAssetReference> DmAssetReference::newAssetReference(std::string const& spec) {
    return std::make_shared<DmAssetReference>(spec);
}

std::string DmAssetReference::getSchemeKey() const {
    return DmURIParser::getSchemeKey(m_assetSpec);
}

std::string DmAssetReference::stripSchemeKey() const {
    return DmURIParser::stripSchemeKey(m_assetSpec);
}

void DmAssetReference::setFilePath(std::string const& path) {
    m_filePath = path;
}

std::string DmAssetReference::getFilePath() const {
    return m_filePath.string();
}

std::string DmAssetReference::getBasePath() const {
    return m_filePath.parent_path().string();
}

std::string DmAssetReference::getFilename() const {
    return m_filePath.filename().string();
}

char const* DmAssetReference::resolveStatusText(ResolveStatus status) noexcept {
    switch (status) {
    case kUnresolved:
        return "Asset not resolved.";
    case kResolved:
        return "Asset resolved.";
    case kResolvingFilePaths:
        return "Asset file paths not searched.";
    case kFileNotFound:
        return "Asset file not found.";
    case kNoStream:
        return "Asset stream missing.";
    case kNoResolver:
        return "No asset resolver for the scheme.";
    }
    return "Unknown asset resolution state.";
}

} // namespace Kesto
