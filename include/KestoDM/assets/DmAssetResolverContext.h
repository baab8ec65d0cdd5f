#pragma once

#include <KestoDM/platform/DmExport.h>

#include <memory>

namespace Kesto {

class DmAssetReference;
class DmLibrary;

/// What a resolution may use besides the reference: the library, whose table
/// of JSON files spares file-system calls, and the reference of the file that
/// refers to the asset, next to which a relative path is looked up. Either
/// may be null, as both are after newAssetResolverContext.
///
/// A plain value, copied and moved freely.
class KESTODM_API DmAssetResolverContext {
public:
    /// @name Construction
    /// @{
    DmAssetResolverContext();
    DmAssetResolverContext(DmAssetResolverContext const&);
    DmAssetResolverContext(DmAssetResolverContext&&) noexcept;
    DmAssetResolverContext& operator=(DmAssetResolverContext const&);
    DmAssetResolverContext& operator=(DmAssetResolverContext&&) noexcept;
    ~DmAssetResolverContext();

    static std::shared_ptr<DmAssetResolverContext> newAssetResolverContext();
    /// @}

    /// @name Parts
    /// @{
    void setLibrary(std::shared_ptr<DmLibrary> library);
    std::shared_ptr<DmLibrary> library() const { return m_library; }
    /// The reference of the referring file; a relative path is looked up in its directory.
    void setRelativeAssetReference(std::shared_ptr<DmAssetReference> reference);
    std::shared_ptr<DmAssetReference> relativeAssetReference() const { return m_relativeAssetReference; }
    /// @}

private:
    std::shared_ptr<DmAssetReference> m_relativeAssetReference;
    std::shared_ptr<DmLibrary> m_library;
};

} // namespace Kesto
