#pragma once

#include <KestoDM/assets/DmAssetResolver.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

/// The resolver of "file:" specs in the short form ("file:a.json",
/// "file:/x/a.json"). It looks a path up as an absolute path, then next to the
/// file that refers to it; it never uses search paths.
///
/// The library makes one in its constructor.
class KESTODM_API DmAssetResolverFile : public DmAssetResolver,
                                        public DmInstanceCounter<DmAssetResolverFile> {
public:
    DmAssetResolverFile();
    ~DmAssetResolverFile() override;

    /// @name Resolution
    /// @{
    /// Sets kFileNotFound, then tries the path of the spec; so a spec that no
    /// try could use fails as "not found".
    bool resolve(std::shared_ptr<DmAssetReference> const& reference,
                 std::shared_ptr<DmAssetResolverContext> const& context,
                 std::shared_ptr<DmMessageLogger> const& logger) const override;
    /// "file".
    std::string const& schemeKey() const override;
    /// kAccessFile.
    AccessMode getAccessMode() const override;
    /// @}
};

} // namespace Kesto
