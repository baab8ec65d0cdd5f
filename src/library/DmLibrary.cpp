#include <KestoDM/library/DmLibrary.h>

#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolver.h>
#include <KestoDM/assets/DmAssetResolverContext.h>
#include <KestoDM/assets/DmAssetResolverFile.h>
#include <KestoDM/assets/DmAssetResolverFilePaths.h>
#include <KestoDM/assets/DmAssetResolverRegistry.h>
#include <KestoDM/assets/DmAssetResolverStream.h>
#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmStreamURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/assets/DmURIParser.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmNameUtils.h>
#include <KestoDM/foundation/DmOSUtils.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmGlobalVariable.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmSelector.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmStructType.h>

#include "graph/DmRootNamespaces.h"
#include "library/DmBuiltInDefinitions.h"
#include "library/DmLibraryFaults.h"
#include "types/DmExternTypeFactory.h"
#include "types/DmTypeSingletons.h"

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>

#include <atomic>
#include <string_view>
#include <system_error>

namespace Kesto {

namespace Internal {

namespace {
std::atomic<bool> s_failInitialization{false};
} // namespace

void setFailLibraryInitialization(bool fail) noexcept {
    s_failInitialization.store(fail);
}

bool shouldFailLibraryInitialization() noexcept {
    return s_failInitialization.load();
}

DmNamespace const& builtInNamespace() {
    return *DmLibrary::getBuiltInNamespace();
}

DmNamespace const& reservedNamespace() {
    return *DmLibrary::getReservedNamespace();
}

void placeProcessTypes() {
    DmLibrary::getBuiltInNamespace();
    DmLibrary::getReservedNamespace();
}

} // namespace Internal

// ---------------------------------------------------------------------------
// The three roots

/// The root of one library's content. Asked for a type it does not hold, it
/// tries the name as an array form ("array<ns::T>", white space ignored) and,
/// when the element exists, makes the array type and files it here: arrays
/// exist on demand, nested ones from the inside out. getType, which tries the
/// built-in types first and then findType, inherits that.
class DmLibrary::DmGlobalNamespace final : public DmNamespace {
public:
    DmGlobalNamespace(DmLibrary::InternalConstructor, std::shared_ptr<DmMessageLogger> logger)
        : DmNamespace(DmNamespace::InternalConstructor(), "_KestoGlobalNamespace", std::move(logger)) {}

    bool isGlobalNamespace() const override { return true; }

    bool findType(std::string const& name, std::shared_ptr<DmBaseType const>& out) const override {
        if (DmNamespace::findType(name, out)) {
            return true;
        }
        return findArrayType(name, out);
    }

    bool findType(std::string const& name, std::shared_ptr<DmBaseType>& out) const override {
        std::shared_ptr<DmBaseType const> found;
        if (!findType(name, found)) {
            return false;
        }
        out = std::const_pointer_cast<DmBaseType>(found);
        return true;
    }

    std::shared_ptr<DmBaseType const> getArrayType(std::shared_ptr<DmBaseType const> const& element) {
        if (!element || element->getTypeKind() == kTypeAuto) {
            return nullptr;
        }
        if (element->getTypeKind() == kTypeAny) {
            return DmLibrary::getArrayOfAnyType();
        }
        // The name is that of the array the element would get; looking it up
        // first spares making an array type only to drop it again.
        std::string elementName;
        element->resolveFullName(elementName);
        auto const found = getTypes().find(DmArrayType::makeArrayName(elementName));
        if (found != getTypes().end()) {
            return found->second;
        }
        auto const array = std::make_shared<DmArrayType>(element);
        if (array->setNamespace(this, kFailOnClash) != DmStatus::kSuccess) {
            return nullptr;
        }
        return array;
    }

private:
    // The white space of the classic locale.
    static bool isSpace(char c) noexcept {
        return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
    }

    bool findArrayType(std::string const& name, std::shared_ptr<DmBaseType const>& out) const {
        std::string compact;
        compact.reserve(name.size());
        for (char const c : name) {
            if (!isSpace(c)) {
                compact += c;
            }
        }
        std::string elementName;
        if (!DmLibrary::isArrayType(compact, elementName)) {
            return false;
        }
        std::shared_ptr<DmBaseType const> element;
        if (!getType(elementName, element)) {
            return false;
        }
        // Making an array on demand changes what the namespace holds, not what
        // it means: every name resolves as it would have before.
        out = const_cast<DmGlobalNamespace*>(this)->getArrayType(element);
        return out != nullptr;
    }
};

class DmLibrary::DmBuiltInNamespace final : public DmNamespace {
public:
    explicit DmBuiltInNamespace(DmLibrary::InternalConstructor)
        : DmNamespace(DmNamespace::InternalConstructor(), "_KestoBuiltInNamespace", nullptr) {}

    bool isBuiltInNamespace() const override { return true; }
};

class DmLibrary::DmReservedNamespace final : public DmNamespace {
public:
    explicit DmReservedNamespace(DmLibrary::InternalConstructor)
        : DmNamespace(DmNamespace::InternalConstructor(), "_KestoReservedNamespace", nullptr) {}

    bool isReservedNamespace() const override { return true; }
};

namespace {

template <class Type>
void place(std::shared_ptr<Type> const& type, DmNamespace& ns) {
    // Cannot fail: the singleton is const and in no namespace yet (placeType
    // keeps it so until the process-wide namespaces exist), and the names differ.
    type->setNamespace(&ns, kFailOnClash);
}

} // namespace

std::shared_ptr<DmNamespace const> const& DmLibrary::getBuiltInNamespace() {
    // A function-local static: made once, thread-safely, on first call, and
    // read-only afterwards, so every library of every thread shares it.
    static std::shared_ptr<DmNamespace const> const s_namespace = [] {
        auto ns = std::make_shared<DmBuiltInNamespace>(InternalConstructor());
        place(Internal::TypeSingletons::autoType(), *ns);
        place(Internal::TypeSingletons::boolType(), *ns);
        place(Internal::TypeSingletons::charType(), *ns);
        place(Internal::TypeSingletons::ucharType(), *ns);
        place(Internal::TypeSingletons::shortType(), *ns);
        place(Internal::TypeSingletons::ushortType(), *ns);
        place(Internal::TypeSingletons::intType(), *ns);
        place(Internal::TypeSingletons::uintType(), *ns);
        place(Internal::TypeSingletons::longType(), *ns);
        place(Internal::TypeSingletons::ulongType(), *ns);
        place(Internal::TypeSingletons::floatType(), *ns);
        place(Internal::TypeSingletons::doubleType(), *ns);
        place(Internal::TypeSingletons::anyType(), *ns);
        place(Internal::TypeSingletons::arrayOfAnyType(), *ns);
        place(Internal::TypeSingletons::stringType(), *ns);
        ns->makeConst();
        return std::shared_ptr<DmNamespace const>(std::move(ns));
    }();
    return s_namespace;
}

std::shared_ptr<DmNamespace const> const& DmLibrary::getReservedNamespace() {
    static std::shared_ptr<DmNamespace const> const s_namespace = [] {
        auto ns = std::make_shared<DmReservedNamespace>(InternalConstructor());
        place(Internal::TypeSingletons::runtimeServicesType(), *ns);
        place(Internal::TypeSingletons::typeRegistryType(), *ns);
        place(Internal::TypeSingletons::undefinedType(), *ns);
        ns->makeConst();
        return std::shared_ptr<DmNamespace const>(std::move(ns));
    }();
    return s_namespace;
}

// ---------------------------------------------------------------------------
// Construction

std::shared_ptr<DmLibrary> DmLibrary::newLibrary(std::shared_ptr<BaContext> context,
                                                 std::ostream* errorStream,
                                                 DmExternOperator::CancellationPolicy policy) {
    // One allocation for the library and its shared count; make_shared also
    // connects shared_from_this before initialize runs.
    auto library = std::make_shared<DmLibrary>(InternalConstructor(), std::move(context), policy);
    if (!library->initialize(errorStream)) {
        library->reportInitializationFailure();
    }
    return library;
}

DmLibrary::DmLibrary(InternalConstructor, std::shared_ptr<BaContext> context,
                     DmExternOperator::CancellationPolicy policy)
    : m_context(std::move(context)), m_uris(std::make_shared<URIMap>()),
      m_assetResolverRegistry(std::make_shared<DmAssetResolverRegistry>()),
      m_defaultCancellationPolicy(policy) {
    m_uris->max_load_factor(1.0f);
    m_jsonFiles.max_load_factor(1.0f);
    // The order of registration is the order of search.
    m_assetResolverRegistry->add(std::make_shared<DmAssetResolverFilePaths>());
    m_assetResolverRegistry->add(std::make_shared<DmAssetResolverFile>());
    m_assetResolverRegistry->add(std::make_shared<DmAssetResolverStream>());
}

DmLibrary::~DmLibrary() {
    if (m_errorLogger) {
        m_errorLogger->printAndClearMessages();
    }
    forgetURIs();
}

// Files that depend on each other give URIs that hold each other: the
// register owns them all, so it cuts those links when it lets them go.
void DmLibrary::forgetURIs() {
    if (!m_uris) {
        return;
    }
    for (auto const& entry : *m_uris) {
        if (entry.second) {
            entry.second->getDependencies()->clear();
        }
    }
    m_uris->clear();
}

bool DmLibrary::initialize(std::ostream* errorStream) {
    m_errorLogger = std::make_shared<DmMessageLogger>(errorStream);
    m_globalNamespace = std::make_shared<DmGlobalNamespace>(InternalConstructor(), m_errorLogger);
    // Both process-wide namespaces, so that every type singleton sits in its
    // namespace before this library's thread can use one.
    getBuiltInNamespace();
    getReservedNamespace();
    Internal::buildBuiltInDefinitions(*this, *m_globalNamespace);
    return !Internal::shouldFailLibraryInitialization();
}

void DmLibrary::reportInitializationFailure() {
    m_errorLogger->reportMessage(std::make_shared<DmMessageReport>(
        BaMessageTypes::kMessageError, std::string(), "the library could not be initialized",
        "library initialization failed"));
}

bool DmLibrary::reset() {
    // The resolvers and their search paths stay: they are the host's setup,
    // not content.
    m_resourceFilePaths.clear();
    forgetURIs();
    m_jsonFiles.clear();
    m_unknownDefinitionsSupport.reset();
    m_globalNamespace.reset();
    // Messages not yet printed are lost with the old log.
    std::ostream* errorStream = nullptr;
    if (m_errorLogger) {
        errorStream = m_errorLogger->getErrorStream();
        m_errorLogger->clear();
        m_errorLogger.reset();
    }
    if (initialize(errorStream)) {
        return true;
    }
    reportInitializationFailure();
    return false;
}

DmLibrary::DmGlobalNamespace& DmLibrary::globalNamespace() const {
    return static_cast<DmGlobalNamespace&>(*m_globalNamespace);
}

// ---------------------------------------------------------------------------
// Types

bool DmLibrary::retrieveType(std::string const& name, std::shared_ptr<DmBaseType const>& out) {
    if (getBuiltInNamespace()->findType(name, out)) {
        return true;
    }
    if (m_globalNamespace->getType(name, out)) {
        return true;
    }
    return getReservedNamespace()->findType(name, out);
}

std::shared_ptr<DmBaseType const> DmLibrary::getArrayType(std::shared_ptr<DmBaseType const> const& element) {
    return globalNamespace().getArrayType(element);
}

bool DmLibrary::isArrayType(std::string const& typeName, std::string& elementTypeName) {
    static constexpr std::string_view kOpening = "array<";
    // "array<" + at least one character + ">".
    if (typeName.size() > kOpening.size() + 1 && typeName.compare(0, kOpening.size(), kOpening) == 0 &&
        typeName.back() == '>') {
        elementTypeName.assign(typeName, kOpening.size(), typeName.size() - kOpening.size() - 1);
        return true;
    }
    elementTypeName.clear();
    return false;
}

namespace {

// Visits `ns` and then, depth first, every namespace nested in it.
template <class Visit>
void walkNamespaces(DmNamespace const& ns, Visit const& visit) {
    visit(ns);
    for (auto const& entry : ns.getNestedNamespaces()) {
        walkNamespaces(*entry.second, visit);
    }
}

// Adds the entities of a namespace's map to `out` under their full names.
template <class Entries, class Map>
void addByFullName(Entries const& entries, Map& out) {
    for (auto const& entry : entries) {
        std::string fullName;
        entry.second->resolveFullName(fullName);
        out.insert(std::move(fullName), entry.second);
    }
}

template <class Map>
void addTypesByFullName(DmNamespace const& ns, Map& types) {
    addByFullName(ns.getTypes(), types);
}

template <class Map>
Map collectTypes(DmNamespace const& global, bool withReserved) {
    Map types;
    addTypesByFullName(*DmLibrary::getBuiltInNamespace(), types);
    walkNamespaces(global, [&types](DmNamespace const& ns) { addTypesByFullName(ns, types); });
    if (withReserved) {
        addTypesByFullName(*DmLibrary::getReservedNamespace(), types);
    }
    return types;
}

template <class Map>
Map collectGlobalVariables(DmNamespace const& global) {
    Map variables;
    walkNamespaces(
        global, [&variables](DmNamespace const& ns) { addByFullName(*ns.getGlobalVariables(), variables); });
    return variables;
}

} // namespace

DmLibrary::TypeMap DmLibrary::getTypes(bool withReserved) const {
    return collectTypes<TypeMap>(*m_globalNamespace, withReserved);
}

DmLibrary::ConstTypeMap DmLibrary::getConstTypes(bool withReserved) const {
    return collectTypes<ConstTypeMap>(*m_globalNamespace, withReserved);
}

// ---------------------------------------------------------------------------
// Type factories

std::shared_ptr<DmStructType> DmLibrary::createStructType(std::string const& name) {
    return Internal::ExternTypeFactory::make<DmStructType>(name);
}

std::shared_ptr<DmEnumType> DmLibrary::createEnumType(std::string const& name) {
    return Internal::ExternTypeFactory::make<DmEnumType>(name);
}

std::shared_ptr<DmClassType> DmLibrary::createClassType(std::string const& name) {
    return Internal::ExternTypeFactory::make<DmClassType>(name);
}

// ---------------------------------------------------------------------------
// Other content

DmLibrary::NodeDefMap DmLibrary::getNodeDefs() const {
    NodeDefMap defs;
    walkNamespaces(*m_globalNamespace,
                   [&defs](DmNamespace const& ns) { addByFullName(ns.getNodeDefs(), defs); });
    return defs;
}

DmLibrary::CompoundMap DmLibrary::getCompounds() const {
    struct AcceptAll : DmSelector {
        bool select(std::shared_ptr<DmNamedEntity> const&) const override { return true; }
    };
    DmCollectList list;
    collect(list, AcceptAll(), kCollectCompounds, kCollectNested);
    CompoundMap compounds;
    for (auto const& entity : list) {
        // The overloads of one set share its full name: the first stays.
        std::string fullName;
        entity->resolveFullName(fullName);
        compounds.insert(std::move(fullName), std::static_pointer_cast<DmCompound>(entity));
    }
    return compounds;
}

DmLibrary::ConstNamespaceMap DmLibrary::getConstNamespaces() const {
    ConstNamespaceMap namespaces;
    for (auto const& entry : m_globalNamespace->getNestedNamespaces()) {
        walkNamespaces(*entry.second, [&namespaces](DmNamespace const& ns) {
            std::string fullName;
            DmNameUtils::computeFullScopeName(ns, fullName);
            namespaces.insert(std::move(fullName),
                              std::static_pointer_cast<DmNamespace const>(ns.weak_from_this().lock()));
        });
    }
    return namespaces;
}

DmLibrary::GlobalVariableMap DmLibrary::getGlobalVariables() const {
    return collectGlobalVariables<GlobalVariableMap>(*m_globalNamespace);
}

DmLibrary::ConstGlobalVariableMap DmLibrary::getConstGlobalVariables() const {
    return collectGlobalVariables<ConstGlobalVariableMap>(*m_globalNamespace);
}

void DmLibrary::collect(DmCollectList& list, DmSelector const& selector, DmCollectMask mask,
                        DmCollectFlags flags) const {
    m_globalNamespace->collect(list, selector, mask, flags);
}

// ---------------------------------------------------------------------------
// Resource directories

DmStatus DmLibrary::addResourceFilePath(std::string const& path) {
    m_resourceFilePaths.push_back(path);
    return DmStatus::kSuccess;
}

DmStatus DmLibrary::clearResourceFilePaths() {
    m_resourceFilePaths.clear();
    return DmStatus::kSuccess;
}

// ---------------------------------------------------------------------------
// The register of URIs

void DmLibrary::registerURI(std::shared_ptr<DmURI> const& uri) {
    if (uri) {
        m_uris->insert(uri->getMapEntryKey(), uri);
    }
}

std::shared_ptr<DmURI> DmLibrary::findURI(std::string_view key) const {
    static constexpr std::string_view kLongForm = DmURIParser::kFileSchemeLongForm;
    std::string fullKey;
    if (key.substr(0, kLongForm.size()) != kLongForm) {
        fullKey = kLongForm;
    }
    fullKey += key;
    auto const found = m_uris->find(fullKey);
    return found != m_uris->end() ? found->second : nullptr;
}

void DmLibrary::unregisterURI(std::shared_ptr<DmURI> const& uri) {
    if (uri) {
        m_uris->erase(uri->getMapEntryKey());
    }
}

// ---------------------------------------------------------------------------
// Assets

bool DmLibrary::registerAssetResolver(std::shared_ptr<DmAssetResolver> const& resolver) {
    return m_assetResolverRegistry->add(resolver);
}

bool DmLibrary::addURISearchPath(String const& path) {
    std::string canonical;
    if (!DmOSUtils::getExistingStrictCanonicalPath(path.view(), std::string_view(), canonical)) {
        return false;
    }
    auto const resolver = std::dynamic_pointer_cast<DmAssetResolverFilePaths>(
        m_assetResolverRegistry->find(DmURIParser::kFilePathsSchemeKey));
    if (resolver) {
        resolver->addSearchPath(String(canonical));
    }
    return true;
}

std::shared_ptr<DmLibrary::SearchPaths const> DmLibrary::getURISearchPaths() const {
    auto const resolver = std::dynamic_pointer_cast<DmAssetResolverFilePaths>(
        m_assetResolverRegistry->find(DmURIParser::kFilePathsSchemeKey));
    if (!resolver) {
        return nullptr;
    }
    return resolver->getSearchPaths();
}

bool DmLibrary::resolveAssetReference(std::shared_ptr<DmAssetReference> const& reference,
                                      std::shared_ptr<DmAssetResolverContext> const& context) const {
    return m_assetResolverRegistry->resolve(reference, context, m_errorLogger);
}

std::shared_ptr<DmAssetReference>
DmLibrary::createAssetReferenceFromURI(std::shared_ptr<DmURI> const& uri) const {
    if (!uri || !uri->isValid()) {
        return nullptr;
    }
    std::shared_ptr<DmAssetReference> reference;
    if (auto const fileURI = std::dynamic_pointer_cast<DmFileURI>(uri)) {
        std::string canonical;
        if (!DmOSUtils::getExistingStrictCanonicalPath(fileURI->getFilePath(), std::string_view(),
                                                       canonical)) {
            return nullptr;
        }
        reference = std::make_shared<DmAssetReference>(DmURIParser::buildFileSpec(canonical));
        reference->setFilePath(canonical);
    } else if (auto const streamURI = std::dynamic_pointer_cast<DmStreamURI>(uri)) {
        if (streamURI->getInputStream() != nullptr) {
            reference = std::make_shared<DmAssetReference>(streamURI->getName(), streamURI->getInputStream());
        } else {
            reference =
                std::make_shared<DmAssetReference>(streamURI->getName(), streamURI->getOutputStream());
        }
    } else {
        return nullptr;
    }
    reference->setAssetIdentity(reference->getAssetSpec());
    reference->setResolver(m_assetResolverRegistry->findForReference(reference).get());
    reference->setResolveStatus(DmAssetReference::kResolved);
    return reference;
}

std::shared_ptr<DmURI>
DmLibrary::createURIFromAssetReference(std::shared_ptr<DmAssetReference> const& reference) {
    if (!reference || !reference->isResolved() || reference->getResolver() == nullptr) {
        return nullptr;
    }
    std::string name;
    std::shared_ptr<DmURI> uri;
    switch (reference->getResolver()->getAccessMode()) {
    case DmAssetResolver::kAccessFile:
        // Named by the file name alone: the first file of a name gives the URI
        // that every later file of that name shares.
        name = reference->getFilename();
        uri = findURI(name);
        if (!uri) {
            uri = std::make_shared<DmFileURI>(name, reference->getBasePath());
        }
        break;
    case DmAssetResolver::kAccessInputStream:
        name = reference->getAssetIdentity();
        uri = findURI(name);
        if (!uri) {
            uri = std::make_shared<DmStreamURI>(name, reference->getExternalInputStream());
        }
        break;
    case DmAssetResolver::kAccessOutputStream:
        name = reference->getAssetIdentity();
        uri = findURI(name);
        if (!uri) {
            uri = std::make_shared<DmStreamURI>(name, reference->getExternalOutputStream());
        }
        break;
    default:
        return nullptr;
    }
    if (uri->isValid()) {
        registerURI(uri);
    }
    return uri;
}

// ---------------------------------------------------------------------------
// The table of JSON files

bool DmLibrary::cacheJsonFilenamesForLoad(std::string const& directory) {
    namespace fs = boost::filesystem;
    if (m_jsonFiles.contains(directory)) {
        return false;
    }
    boost::system::error_code error;
    fs::path const path(directory);
    if (!fs::is_directory(path, error) || error) {
        return false;
    }
    std::size_t const before = m_jsonFiles.size();
    for (fs::directory_iterator it(path, error), end; !error && it != end; it.increment(error)) {
        fs::path const& file = it->path();
        boost::system::error_code statusError;
        if (fs::is_regular_file(it->status(statusError)) && !statusError && file.extension() == ".json") {
            m_jsonFiles.insert(file.lexically_normal().string(), false);
        }
    }
    // A directory that gave nothing new is not remembered: a later call lists
    // it again, and finds the files made in between.
    if (m_jsonFiles.size() == before) {
        return false;
    }
    m_jsonFiles.insert(directory, true);
    return true;
}

bool DmLibrary::isJsonFileLoaded(std::string const& name) const {
    auto const found = m_jsonFiles.find(name);
    return found != m_jsonFiles.end() && found->second;
}

std::pair<bool, bool> DmLibrary::isJsonFilenameCachedForLoad(std::string const& path) const {
    if (m_jsonFiles.contains(path)) {
        return {true, true};
    }
    std::string parent;
    std::string filename;
    DmOSUtils::getParentPathAndFilename(path, parent, filename);
    return {m_jsonFiles.contains(parent), false};
}

void DmLibrary::setJsonFileAsLoaded(std::string const& name) {
    if (name.empty()) {
        return;
    }
    m_jsonFiles[name] = true;
}

// ---------------------------------------------------------------------------
// Type singletons: each reached through its namespace first, so that it is in
// place before any caller sees it.

std::shared_ptr<DmAnyType> const& DmLibrary::getAnyType() {
    return Internal::placed(Internal::TypeSingletons::anyType());
}

std::shared_ptr<DmArrayType> const& DmLibrary::getArrayOfAnyType() {
    return Internal::placed(Internal::TypeSingletons::arrayOfAnyType());
}

std::shared_ptr<DmAutoType> const& DmLibrary::getAutoType() {
    return Internal::placed(Internal::TypeSingletons::autoType());
}

std::shared_ptr<DmBoolType> const& DmLibrary::getBoolType() {
    return Internal::placed(Internal::TypeSingletons::boolType());
}

std::shared_ptr<DmCharType> const& DmLibrary::getCharType() {
    return Internal::placed(Internal::TypeSingletons::charType());
}

std::shared_ptr<DmUCharType> const& DmLibrary::getUCharType() {
    return Internal::placed(Internal::TypeSingletons::ucharType());
}

std::shared_ptr<DmShortType> const& DmLibrary::getShortType() {
    return Internal::placed(Internal::TypeSingletons::shortType());
}

std::shared_ptr<DmUShortType> const& DmLibrary::getUShortType() {
    return Internal::placed(Internal::TypeSingletons::ushortType());
}

std::shared_ptr<DmIntType> const& DmLibrary::getIntType() {
    return Internal::placed(Internal::TypeSingletons::intType());
}

std::shared_ptr<DmUIntType> const& DmLibrary::getUIntType() {
    return Internal::placed(Internal::TypeSingletons::uintType());
}

std::shared_ptr<DmLongType> const& DmLibrary::getLongType() {
    return Internal::placed(Internal::TypeSingletons::longType());
}

std::shared_ptr<DmULongType> const& DmLibrary::getULongType() {
    return Internal::placed(Internal::TypeSingletons::ulongType());
}

std::shared_ptr<DmFloatType> const& DmLibrary::getFloatType() {
    return Internal::placed(Internal::TypeSingletons::floatType());
}

std::shared_ptr<DmDoubleType> const& DmLibrary::getDoubleType() {
    return Internal::placed(Internal::TypeSingletons::doubleType());
}

std::shared_ptr<DmStringType> const& DmLibrary::getStringType() {
    return Internal::placed(Internal::TypeSingletons::stringType());
}

std::shared_ptr<DmUndefinedType> const& DmLibrary::getUndefinedType() {
    return Internal::placed(Internal::TypeSingletons::undefinedType());
}

std::shared_ptr<DmClassType> const& DmLibrary::getRuntimeServicesType() {
    return Internal::placed(Internal::TypeSingletons::runtimeServicesType());
}

std::shared_ptr<DmClassType> const& DmLibrary::getTypeRegistryType() {
    return Internal::placed(Internal::TypeSingletons::typeRegistryType());
}

} // namespace Kesto
