// The road of one graph file into the library: the loadGraph family.

#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolverContext.h>
#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/library/DmUnknownDefinitionsSupport.h>
#include <KestoDM/types/DmBaseType.h>

#include "library/DmUnknownDefinitionsGuard.h"
#include "reader/JsonFileEntry.h"

#include <utility>

namespace Kesto {

DmStatus DmLibrary::loadGraph(std::string const& assetSpec, LoadOptions const& options,
                              std::shared_ptr<CompoundMap> const& result) {
    return loadGraph(std::make_shared<DmAssetReference>(assetSpec), options, result);
}

DmStatus DmLibrary::loadGraph(std::shared_ptr<DmAssetReference> const& assetReference,
                              LoadOptions const& options, std::shared_ptr<CompoundMap> const& result) {
    if (!assetReference) {
        return DmStatus::kInvalidArgument;
    }
    auto const context = std::make_shared<DmAssetResolverContext>();
    context->setLibrary(shared_from_this());
    if (!resolveAssetReference(assetReference, context)) {
        DmAssetReference::ResolveStatus const status = assetReference->getResolveStatus();
        return status == DmAssetReference::kFileNotFound || status == DmAssetReference::kNoStream
                   ? DmStatus::kFileError
                   : DmStatus::kInvalidArgument;
    }
    return loadGraphWithContext(createURIFromAssetReference(assetReference), assetReference, options, result);
}

DmStatus DmLibrary::loadGraph(std::shared_ptr<DmURI> const& uri, LoadOptions const& options,
                              std::shared_ptr<CompoundMap> const& result) {
    if (!uri || !uri->isValid()) {
        return DmStatus::kInvalidArgument;
    }
    return loadGraphWithContext(uri, createAssetReferenceFromURI(uri), options, result);
}

DmStatus DmLibrary::loadGraph(std::string_view path, std::string_view basePath, LoadOptions const& options,
                              std::shared_ptr<CompoundMap> const& result) {
    std::shared_ptr<DmURI> uri = findURI(path);
    if (!uri) {
        uri = std::make_shared<DmFileURI>(path, basePath);
        if (uri->isValid()) {
            registerURI(uri);
        }
    }
    return loadGraph(uri, options, result);
}

DmStatus DmLibrary::loadGraphWithContext(std::shared_ptr<DmURI> const& uri,
                                         std::shared_ptr<DmAssetReference> const& assetReference,
                                         LoadOptions const& options,
                                         std::shared_ptr<CompoundMap> const& result) {
    unsigned int const errorsBefore = m_errorLogger->getErrorCount();
    DmStatus status = DmStatus::kSuccess;
    {
        Internal::UnknownDefinitionsGuard const guard(m_unknownDefinitionsSupport, m_errorLogger);
        Internal::JsonReadContext context;
        context.library = this;
        context.logger = m_errorLogger;
        context.nameResolution = options.nameResolution;
        context.reload = options.reloadMode == 1;
        context.uri = uri;
        context.asset = assetReference;
        context.result = result;
        context.unknownDefinitions = m_unknownDefinitionsSupport;
        status = Internal::JsonFileEntry(std::move(context)).read();
    }
    unsigned int const errorsAfter = m_errorLogger->getErrorCount();
    m_errorLogger->printAndClearMessages();
    if (status.isFailure()) {
        return status;
    }
    return errorsAfter != errorsBefore ? DmStatus::kFailure : status;
}

void DmLibrary::setUnknownDefinitionsSupport(std::shared_ptr<DmUnknownDefinitionsSupport> support) {
    m_unknownDefinitionsSupport = std::move(support);
}

void DmLibrary::setURIForExternalOperatorsAndTypes(std::shared_ptr<DmURI> const& uri) {
    for (auto const& entry : getNodeDefs()) {
        auto const set = std::dynamic_pointer_cast<DmOverloadSet>(entry.second);
        if (!set) {
            continue;
        }
        for (std::shared_ptr<DmOverload> const& overload : set->getOverloads()) {
            auto const op = std::dynamic_pointer_cast<DmExternOperator>(overload);
            if (op && !op->isBuiltIn()) {
                op->setURI(uri);
            }
        }
    }
    for (auto const& entry : getTypes(false)) {
        if (isFileDefinedKind(entry.second->getTypeKind())) {
            entry.second->setURI(uri);
        }
    }
}

} // namespace Kesto
