#pragma once

#include <KestoDM/foundation/DmEntity.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Kesto {

class DmAssetReference;
class DmAssetResolverContext;
class DmMessageLogger;
class InputStream;

/// Turns the spec of an asset reference into a file path or an external
/// stream. Each resolver answers to one scheme key ("halvern", "file",
/// "stream"); the library's DmAssetResolverRegistry picks it by that key.
///
/// Abstract: the library makes the three built-in resolvers itself, and a
/// host derives its own and hands it to DmLibrary::registerAssetResolver.
class KESTODM_API DmAssetResolver : public DmEntity, public DmInstanceCounter<DmAssetResolver> {
public:
    /// What a resolved asset is. Two bytes wide.
    enum AccessMode : std::uint16_t {
        kAccessFile = 1,         ///< a file with a path
        kAccessInputStream = 2,  ///< an external input stream
        kAccessOutputStream = 3, ///< an external output stream
    };

    ~DmAssetResolver() override;

    /// @name Resolution
    /// @{
    /// Fills in `reference`: its ResolveStatus always, its identity and file
    /// path (or stream) when found. True when the status is now kResolved.
    /// A resolver reports nothing: the caller decides what the status means;
    /// `logger` is there for resolvers of the host.
    virtual bool resolve(std::shared_ptr<DmAssetReference> const& reference,
                         std::shared_ptr<DmAssetResolverContext> const& context,
                         std::shared_ptr<DmMessageLogger> const& logger) const = 0;
    /// The key that selects this resolver.
    virtual std::string const& schemeKey() const = 0;
    virtual AccessMode getAccessMode() const = 0;
    /// A stream for reading the asset; null here, and in every resolver of the library.
    virtual InputStream* createInputStream(std::shared_ptr<DmAssetReference> const& reference) const;
    /// @}

protected:
    DmAssetResolver();
    DmAssetResolver(DmAssetResolver const&);
};

} // namespace Kesto
