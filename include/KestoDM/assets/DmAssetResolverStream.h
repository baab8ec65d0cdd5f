#pragma once

#include <KestoDM/assets/DmAssetResolver.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

/// The resolver of "stream" specs: the asset is an input stream of the host,
/// carried by the reference itself. Nothing is looked up.
///
/// The library makes one in its constructor.
class KESTODM_API DmAssetResolverStream : public DmAssetResolver,
                                          public DmInstanceCounter<DmAssetResolverStream> {
public:
    DmAssetResolverStream();
    ~DmAssetResolverStream() override;

    /// @name Resolution
    /// @{
    /// Resolved, with the spec as identity, when the reference carries an
    /// input stream; else kNoStream. An output stream alone does not resolve.
    bool resolve(std::shared_ptr<DmAssetReference> const& reference,
                 std::shared_ptr<DmAssetResolverContext> const& context,
                 std::shared_ptr<DmMessageLogger> const& logger) const override;
    /// "stream".
    std::string const& schemeKey() const override;
    /// kAccessInputStream.
    AccessMode getAccessMode() const override;
    /// @}
};

} // namespace Kesto
