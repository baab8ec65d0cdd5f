#pragma once

#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>
#include <vector>

namespace Kesto {

class DmAssetReference;
class DmAssetResolver;
class DmAssetResolverContext;
class DmMessageLogger;

/// The resolvers of one library, in order of registration, at most one per
/// scheme key: the first registered under a key is the one that answers.
///
/// The library makes it in its constructor with its three resolvers
/// ("halvern", "file", "stream", in that order) and keeps it across
/// DmLibrary::reset; hosts add theirs through DmLibrary::registerAssetResolver.
/// No lock: it is used on its library's thread.
class KESTODM_API DmAssetResolverRegistry {
public:
    using Resolvers = std::vector<std::shared_ptr<DmAssetResolver>>;

    DmAssetResolverRegistry();
    DmAssetResolverRegistry(DmAssetResolverRegistry const&) = delete;
    DmAssetResolverRegistry& operator=(DmAssetResolverRegistry const&) = delete;
    virtual ~DmAssetResolverRegistry();

    /// @name Registration
    /// @{
    /// Appends `resolver` unless one with its scheme key is there already (the
    /// first wins). False, changing nothing, then and for a null resolver.
    bool add(std::shared_ptr<DmAssetResolver> const& resolver);
    Resolvers const& getResolvers() const noexcept { return m_resolvers; }
    /// @}

    /// @name Look-up
    /// @{
    /// The first resolver whose scheme key equals `key` exactly, or null.
    std::shared_ptr<DmAssetResolver> find(std::string const& key) const;
    /// The resolver for a reference: "halvern" for a spec in the long file
    /// form ("file:///..."), so that such a spec may use search paths; else
    /// the resolver of the spec's scheme key. A spec without a scheme has the
    /// empty key, which no built-in resolver has. Null when there is none.
    std::shared_ptr<DmAssetResolver>
    findForReference(std::shared_ptr<DmAssetReference> const& reference) const;
    /// @}

    /// @name Resolution
    /// @{
    /// Hands `reference` to its resolver and records that resolver in it;
    /// without a resolver the status becomes kNoResolver. True when the
    /// reference is resolved; false at once for a null reference.
    bool resolve(std::shared_ptr<DmAssetReference> const& reference,
                 std::shared_ptr<DmAssetResolverContext> const& context,
                 std::shared_ptr<DmMessageLogger> const& logger) const;
    /// @}

private:
    Resolvers m_resolvers;
};

} // namespace Kesto
