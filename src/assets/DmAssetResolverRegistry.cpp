#include <KestoDM/assets/DmAssetResolverRegistry.h>

#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolver.h>
#include <KestoDM/assets/DmURIParser.h>

#include <string_view>

namespace Kesto {

DmAssetResolverRegistry::DmAssetResolverRegistry() = default;

DmAssetResolverRegistry::~DmAssetResolverRegistry() = default;

bool DmAssetResolverRegistry::add(std::shared_ptr<DmAssetResolver> const& resolver) {
    if (!resolver || find(resolver->schemeKey())) {
        return false;
    }
    m_resolvers.push_back(resolver);
    return true;
}

std::shared_ptr<DmAssetResolver> DmAssetResolverRegistry::find(std::string const& key) const {
    for (auto const& resolver : m_resolvers) {
        if (resolver->schemeKey() == key) {
            return resolver;
        }
    }
    return nullptr;
}

std::shared_ptr<DmAssetResolver>
DmAssetResolverRegistry::findForReference(std::shared_ptr<DmAssetReference> const& reference) const {
    if (!reference) {
        return nullptr;
    }
    // The long file form goes to the file-paths resolver, so that such a spec
    // may use the search paths.
    static constexpr std::string_view kLongForm = DmURIParser::kFileSchemeLongForm;
    std::string const& spec = reference->getAssetSpec();
    if (spec.compare(0, kLongForm.size(), kLongForm) == 0) {
        return find(DmURIParser::kFilePathsSchemeKey);
    }
    return find(reference->getSchemeKey());
}

bool DmAssetResolverRegistry::resolve(std::shared_ptr<DmAssetReference> const& reference,
                                      std::shared_ptr<DmAssetResolverContext> const& context,
                                      std::shared_ptr<DmMessageLogger> const& logger) const {
    if (!reference) {
        return false;
    }
    auto const resolver = findForReference(reference);
    if (resolver) {
        resolver->resolve(reference, context, logger);
    } else {
        reference->setResolveStatus(DmAssetReference::kNoResolver);
    }
    reference->setResolver(resolver.get());
    return reference->isResolved();
}

} // namespace Kesto
