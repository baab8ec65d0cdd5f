#pragma once

#include <KestoDM/platform/DmExport.h>

#include <boost/filesystem/path.hpp>

#include <cstdint>
#include <memory>
#include <string>

namespace Kesto {

class DmAssetResolver;
class InputStream;
class OutputStream;

/// A request for an asset, and after resolution the answer to it. It carries
/// the spec as requested ("halvern:a.json", "file:/x/a.json", "stream:/name"),
/// the identity of what was found (a "file:" spec of the full path, or the
/// spec itself for a stream), how far resolution got, the file found and the
/// host's streams, which it does not own.
///
/// A plain value: made with a constructor or newAssetReference, copied and
/// moved freely. The resolver registry fills it in (DmLibrary::resolveAssetReference).
class KESTODM_API DmAssetReference {
public:
    /// How far resolution got. Two bytes wide.
    enum ResolveStatus : std::uint16_t {
        kUnresolved = 0,         ///< resolution was not tried
        kResolved = 1,           ///< the asset was found
        kResolvingFilePaths = 2, ///< set by the file-paths resolver on entry; stays when no try was possible
        kFileNotFound = 3,       ///< a file search failed
        kNoStream = 4,           ///< a stream reference without an input stream
        kNoResolver = 5,         ///< no resolver for the scheme
    };

    /// @name Construction
    /// All leave the status kUnresolved.
    /// @{
    DmAssetReference();
    explicit DmAssetReference(std::string spec);
    /// A reference to a stream of the host, which must outlive the reference.
    DmAssetReference(std::string spec, InputStream* inputStream);
    DmAssetReference(std::string spec, OutputStream* outputStream);
    DmAssetReference(DmAssetReference const&);
    DmAssetReference(DmAssetReference&&) noexcept;
    DmAssetReference& operator=(DmAssetReference const&);
    DmAssetReference& operator=(DmAssetReference&&) noexcept;
    ~DmAssetReference();

    static std::shared_ptr<DmAssetReference> newAssetReference();
    static std::shared_ptr<DmAssetReference> newAssetReference(std::string const& spec);
    /// @}

    /// @name Spec and identity
    /// @{
    std::string const& getAssetSpec() const noexcept { return m_assetSpec; }
    void setAssetSpec(std::string spec) { m_assetSpec = std::move(spec); }
    std::string const& getAssetIdentity() const noexcept { return m_assetIdentity; }
    void setAssetIdentity(std::string identity) { m_assetIdentity = std::move(identity); }
    /// The scheme key of the spec ("halvern" of "halvern:a.json"); empty when it has none.
    std::string getSchemeKey() const;
    /// The spec without its scheme key and colon; the whole spec when it has no key.
    std::string stripSchemeKey() const;
    /// @}

    /// @name Resolution
    /// @{
    ResolveStatus getResolveStatus() const noexcept { return m_resolveStatus; }
    void setResolveStatus(ResolveStatus status) noexcept { m_resolveStatus = status; }
    bool isResolved() const noexcept { return m_resolveStatus == kResolved; }
    /// A short sentence that says what `status` means, for messages.
    static char const* resolveStatusText(ResolveStatus status) noexcept;
    /// The resolver that handled the reference (null when none had its key); not owned.
    DmAssetResolver const* getResolver() const noexcept { return m_resolver; }
    void setResolver(DmAssetResolver const* resolver) noexcept { m_resolver = resolver; }
    /// @}

    /// @name The file found
    /// @{
    bool hasFilePath() const noexcept { return !m_filePath.empty(); }
    void setFilePath(std::string const& path);
    std::string getFilePath() const;
    /// The directory of the file; empty while there is no file.
    std::string getBasePath() const;
    std::string getFilename() const;
    /// @}

    /// @name Streams of the host
    /// @{
    InputStream* getExternalInputStream() const noexcept { return m_externalInputStream; }
    OutputStream* getExternalOutputStream() const noexcept { return m_externalOutputStream; }
    /// @}

private:
    std::string m_assetSpec;
    std::string m_assetIdentity;
    ResolveStatus m_resolveStatus = kUnresolved;
    boost::filesystem::path m_filePath;
    InputStream* m_externalInputStream = nullptr;
    OutputStream* m_externalOutputStream = nullptr;
    DmAssetResolver const* m_resolver = nullptr;
};

} // namespace Kesto
