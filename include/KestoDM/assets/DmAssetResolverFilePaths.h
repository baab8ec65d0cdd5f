#pragma once

#include <KestoDM/assets/DmAssetResolver.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/BaIndexedVector.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/String.h>

#include <memory>
#include <string>

namespace Kesto {

/// The resolver of "halvern" specs, and of specs in the long file form
/// ("file:///..."), which the registry sends here too. It looks a path up as
/// an absolute path, then next to the file that refers to it, then in each
/// search path in the order of their addition.
///
/// The library makes one in its constructor; DmLibrary::addURISearchPath
/// fills its search paths, which survive DmLibrary::reset.
class KESTODM_API DmAssetResolverFilePaths : public DmAssetResolver,
                                             public DmInstanceCounter<DmAssetResolverFilePaths> {
public:
    using SearchPaths = BaIndexedVector<String>;

    DmAssetResolverFilePaths();
    ~DmAssetResolverFilePaths() override;

    /// @name Resolution
    /// @{
    /// Sets kResolvingFilePaths, then tries the path of the spec (see the
    /// class comment). The status stays kResolvingFilePaths when the spec has
    /// no path or no try was possible, and is kFileNotFound after a failed try.
    bool resolve(std::shared_ptr<DmAssetReference> const& reference,
                 std::shared_ptr<DmAssetResolverContext> const& context,
                 std::shared_ptr<DmMessageLogger> const& logger) const override;
    /// "halvern".
    std::string const& schemeKey() const override;
    /// kAccessFile.
    AccessMode getAccessMode() const override;
    /// @}

    /// @name Search paths
    /// In order of addition; duplicates are kept, and searching goes in order of addition.
    /// @{
    void addSearchPath(String const& path);
    std::shared_ptr<SearchPaths> const& getSearchPaths() const noexcept { return m_searchPaths; }
    /// @}

private:
    std::shared_ptr<SearchPaths> m_searchPaths;
};

} // namespace Kesto
