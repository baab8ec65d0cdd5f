#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/graph/DmCollect.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/platform/BaIndexedVector.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/String.h>

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Kesto {

class BaContext;
class DmAnyType;
class DmArrayType;
class DmAssetReference;
class DmAssetResolver;
class DmAssetResolverContext;
class DmAssetResolverRegistry;
class DmAutoType;
class DmBaseType;
class DmBaseValue;
class DmBoolType;
class DmCharType;
class DmClassType;
class DmCompound;
class DmDoubleType;
class DmEnumType;
class DmFloatType;
class DmGlobalVariable;
class DmIntType;
class DmLongType;
class DmMessageLogger;
class DmUnknownDefinitionsSupport;
class SerializationData;
class DmNodeDef;
class DmSelector;
class DmShortType;
class DmStructType;
class DmStringType;
class DmUCharType;
class DmUIntType;
class DmULongType;
class DmUShortType;
class DmUndefinedType;
class DmURI;

/// The object through which a host enters the system. A library owns the
/// message log, the global namespace "_KestoGlobalNamespace" under which all
/// user content hangs, the list of resource directories, the register of URIs,
/// the table of JSON files met while loading and the asset resolvers. The
/// built-in namespace, the reserved namespace and the type singletons are the
/// process's, shared by every library.
///
/// Made only by newLibrary, whose constructor registers the resolvers
/// "halvern", "file" and "stream" in that order; reset drops the user content
/// and starts afresh, keeping the resolvers and their search paths; dropping
/// the last reference prints the messages still in the log, then releases the
/// members in reverse order.
///
/// One library belongs to one thread at a time: it has no lock. What it shares
/// with other libraries (the process-wide namespaces and type singletons) is
/// made once, thread-safely, and only read afterwards.
class KESTODM_API DmLibrary : public std::enable_shared_from_this<DmLibrary>,
                              public DmInstanceCounter<DmLibrary> {
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    class DmGlobalNamespace;
    class DmBuiltInNamespace;
    class DmReservedNamespace;

    using TypeMap = LinkedHashMap<std::string, std::shared_ptr<DmBaseType>, StringHasher, StringCompare>;
    using ConstTypeMap =
        LinkedHashMap<std::string, std::shared_ptr<DmBaseType const>, StringHasher, StringCompare>;
    using NodeDefMap = LinkedHashMap<std::string, std::shared_ptr<DmNodeDef>, StringHasher, StringCompare>;
    using CompoundMap = LinkedHashMap<std::string, std::shared_ptr<DmCompound>, StringHasher, StringCompare>;
    using ConstNamespaceMap =
        LinkedHashMap<std::string, std::shared_ptr<DmNamespace const>, StringHasher, StringCompare>;
    using GlobalVariableMap =
        LinkedHashMap<std::string, std::shared_ptr<DmGlobalVariable>, StringHasher, StringCompare>;
    using ConstGlobalVariableMap =
        LinkedHashMap<std::string, std::shared_ptr<DmGlobalVariable const>, StringHasher, StringCompare>;
    /// JSON files and listed directories by path; see cacheJsonFilenamesForLoad.
    using JsonFileMap = LinkedHashMap<std::string, bool, StringHasher, StringCompare>;
    /// URIs by name, in order of first registration.
    using URIMap = LinkedHashMap<std::string, std::shared_ptr<DmURI>, StringHasher, StringCompare>;
    /// The search paths of the "halvern" resolver, in order of addition.
    using SearchPaths = BaIndexedVector<String>;

    /// How loadGraph places what a file defines. Two bytes, passed by reference.
    struct LoadOptions {
        /// How a name of the file that clashes with a name in the library is
        /// solved; handed to the reader unchanged.
        DmNameResolutionType nameResolution = kFailOnClash;
        /// 1: read the file even when it was loaded already; anything else:
        /// skip such a file and succeed.
        std::uint8_t reloadMode = 0;
    };

    /// @name Construction
    /// @{
    /// Makes a library. Never returns null because initialization failed: the
    /// failure is reported in the library's log instead. `errorStream` receives
    /// printed messages; it is not owned and may be null.
    static std::shared_ptr<DmLibrary> newLibrary(std::shared_ptr<BaContext> context,
                                                 std::ostream* errorStream,
                                                 DmExternOperator::CancellationPolicy policy);

    DmLibrary(InternalConstructor, std::shared_ptr<BaContext> context,
              DmExternOperator::CancellationPolicy policy);
    DmLibrary(DmLibrary const&) = delete;
    DmLibrary& operator=(DmLibrary const&) = delete;
    /// Prints and clears the messages left in the log, then releases the members.
    ~DmLibrary();

    /// Returns the library to its state after newLibrary: the resource
    /// directories, the register of URIs, the table of JSON files, the global
    /// namespace with all definitions under it and the log (unprinted messages
    /// are lost) go, and initialization runs again on the same error stream.
    /// The context, the cancellation policy, the asset resolvers with their
    /// search paths and the process-wide namespaces stay. False, with an error
    /// in the new log, when initialization fails.
    bool reset();
    /// @}

    /// @name Queries
    /// @{
    std::shared_ptr<BaContext> const& getContext() const noexcept { return m_context; }
    std::shared_ptr<DmMessageLogger> const& getErrorLogger() const noexcept { return m_errorLogger; }
    DmExternOperator::CancellationPolicy getDefaultCancellationPolicy() const noexcept {
        return m_defaultCancellationPolicy;
    }
    /// @}

    /// @name Namespaces
    /// @{
    /// The root of this library's content, named "_KestoGlobalNamespace". Asked
    /// for a type, it makes array types on demand ("array<ns::T>", white space
    /// ignored). A new one after each reset.
    std::shared_ptr<DmNamespace> const& getGlobalNamespace() const noexcept { return m_globalNamespace; }
    /// "_KestoBuiltInNamespace", the process's, holding auto, bool, char, uchar,
    /// short, ushort, int, uint, long, ulong, float, double, any, array<any> and
    /// string in that order. Made on first call; const.
    static std::shared_ptr<DmNamespace const> const& getBuiltInNamespace();
    /// "_KestoReservedNamespace", the process's, holding "__RuntimeServices__",
    /// "__TypeRegistry__" and "__undefined__" in that order. Made on first call; const.
    static std::shared_ptr<DmNamespace const> const& getReservedNamespace();
    /// @}

    /// @name Types
    /// @{
    /// The type of `name`: a built-in, else one of the global namespace (arrays
    /// made on demand), else a reserved one. False when none has the name;
    /// `out` is then as the last lookup left it.
    bool retrieveType(std::string const& name, std::shared_ptr<DmBaseType const>& out);
    /// The library's one array type of `element`: whatever the global namespace
    /// files under the array's name, else a new array type filed there. The
    /// array of any is the built-in one. Null for a null element, for auto (no
    /// array of it exists), and when filing the new array fails.
    std::shared_ptr<DmBaseType const> getArrayType(std::shared_ptr<DmBaseType const> const& element);
    /// True when `typeName` has the array form "array<element>", with the
    /// element's name in `elementTypeName`; false with it empty otherwise.
    /// White space counts as part of the name.
    static bool isArrayType(std::string const& typeName, std::string& elementTypeName);
    /// Every type by full name: the built-ins, then those of the global
    /// namespace and its nested namespaces (depth first), then, with
    /// `withReserved`, the reserved ones. A full name met twice keeps the first.
    TypeMap getTypes(bool withReserved) const;
    ConstTypeMap getConstTypes(bool withReserved) const;
    /// @}

    /// @name Type factories
    /// New, empty types for a host to define, in no namespace: place one with
    /// DmBaseType::setNamespace (resolution kFailOnClash), then look it up by
    /// its full name like any type of the library. Null for the empty name.
    /// @{
    /// A struct without members; add them with DmStructType::addMember.
    static std::shared_ptr<DmStructType> createStructType(std::string const& name);
    /// An enum without keys; add them with DmEnumType::addEnumeration.
    static std::shared_ptr<DmEnumType> createEnumType(std::string const& name);
    /// A class without a mangled name or serializer; give it those with
    /// setTypeNameMangleName and DmClassType::setCppClassInfo.
    static std::shared_ptr<DmClassType> createClassType(std::string const& name);
    /// @}

    /// @name Other content
    /// Maps by full name, new at each call.
    /// @{
    /// The node definitions of the namespaces; empty until definitions exist.
    NodeDefMap getNodeDefs() const;
    /// The compounds that a walk of the global namespace collects; empty until compounds exist.
    CompoundMap getCompounds() const;
    /// The namespaces under the global namespace, depth first, by full path ("a", "a::b").
    ConstNamespaceMap getConstNamespaces() const;
    /// The global variables of the global namespace and its nested namespaces,
    /// depth first, each namespace's in the order of filing, by full name ("v", "a::v").
    /// A full name met twice keeps the first.
    GlobalVariableMap getGlobalVariables() const;
    ConstGlobalVariableMap getConstGlobalVariables() const;
    /// Appends what DmNamespace::collect gathers from the global namespace.
    void collect(DmCollectList& list, DmSelector const& selector, DmCollectMask mask,
                 DmCollectFlags flags) const;
    /// @}

    /// @name Loading graph files
    /// Each reads one graph file, and through its dependencies the files it
    /// names, into this library. `result`, when not null, receives the
    /// compounds read, by name. A file is read once per library unless
    /// `reloadMode` is 1. The messages of the load are printed and cleared at
    /// its end; an error among them fails a load that otherwise succeeded
    /// (kFailure). An unresolved asset gives kFileError when the file or
    /// stream was not found and kInvalidArgument otherwise, with no message.
    /// @{
    /// Resolves `assetSpec` ("file:///a.json", "halvern:a.json", "stream:name",
    /// or a path) with this library's resolvers.
    DmStatus loadGraph(std::string const& assetSpec, LoadOptions const& options,
                       std::shared_ptr<CompoundMap> const& result = nullptr);
    DmStatus loadGraph(std::shared_ptr<DmAssetReference> const& assetReference, LoadOptions const& options,
                       std::shared_ptr<CompoundMap> const& result = nullptr);
    /// kInvalidArgument for an invalid URI.
    DmStatus loadGraph(std::shared_ptr<DmURI> const& uri, LoadOptions const& options,
                       std::shared_ptr<CompoundMap> const& result = nullptr);
    /// The file URI of `path` resolved against `basePath`, from the register
    /// or made (and registered when valid).
    DmStatus loadGraph(std::string_view path, std::string_view basePath, LoadOptions const& options,
                       std::shared_ptr<CompoundMap> const& result = nullptr);
    /// Reads a value from hand-written text: "1.5", "abc", "\"quoted text\"",
    /// or a struct in the compact form "{x=1, y:2}" (keys and bare values
    /// need no quotes). Any other text is read as one string, so arrays have
    /// no hand-written form. False, with the reason in `logger`, when the text does not
    /// read as a value of the value's type.
    static bool readValue(DmMessageLogger& logger, std::string const& text,
                          std::shared_ptr<DmBaseValue>& value);
    /// Reads the JSON object `jsonText` into the serialization data `out`, as
    /// a class value of a graph file is read. Messages are printed and
    /// cleared; kFailure when an error was reported.
    DmStatus loadClassValue(std::string const& jsonText, DmNameResolutionType nameResolution,
                            SerializationData* out);
    /// The placeholder support of loads: when set, names that a file uses
    /// before they are defined get placeholders. Null until a configuration
    /// load makes one, or the host sets one.
    std::shared_ptr<DmUnknownDefinitionsSupport> const& getUnknownDefinitionsSupport() const noexcept {
        return m_unknownDefinitionsSupport;
    }
    void setUnknownDefinitionsSupport(std::shared_ptr<DmUnknownDefinitionsSupport> support);
    /// Points every external operator that is not built in, and every class,
    /// struct, enum, undefined and unknown type, at `uri`.
    void setURIForExternalOperatorsAndTypes(std::shared_ptr<DmURI> const& uri);
    /// @}

    /// @name Resource directories
    /// @{
    /// The resource directories in the order of their addition, duplicates kept.
    std::vector<std::string> const& getResourceFilePaths() const noexcept { return m_resourceFilePaths; }
    /// Appends `path` without any check; always kSuccess.
    DmStatus addResourceFilePath(std::string const& path);
    /// Empties the list; always kSuccess.
    DmStatus clearResourceFilePaths();
    /// @}

    /// @name The register of URIs
    /// Every URI that loading met, unique by name (DmURI::getMapEntryKey).
    /// @{
    /// The URI filed under `key` when it begins with "file:///", else under
    /// "file:///" + `key`, so that a bare path finds its file URI. A URI filed
    /// under a name without that prefix, such as a stream URI, is never found.
    std::shared_ptr<DmURI> findURI(std::string_view key) const;
    /// Takes `uri` out of the register; null does nothing.
    void unregisterURI(std::shared_ptr<DmURI> const& uri);
    URIMap const& getURIs() const noexcept { return *m_uris; }
    /// @}

    /// @name Assets
    /// How a spec becomes a file or a stream: see DmAssetResolverRegistry.
    /// @{
    std::shared_ptr<DmAssetResolverRegistry> const& getAssetResolverRegistry() noexcept {
        return m_assetResolverRegistry;
    }
    std::shared_ptr<DmAssetResolverRegistry const> getAssetResolverRegistry() const noexcept {
        return m_assetResolverRegistry;
    }
    /// Adds a resolver of the host. A scheme key that a resolver has already
    /// keeps that resolver: false, and nothing changes.
    bool registerAssetResolver(std::shared_ptr<DmAssetResolver> const& resolver);
    /// Adds the existing directory `path`, made canonical (symbolic links
    /// resolved), to the search paths of the "halvern" resolver. False, adding
    /// nothing, when the directory does not exist; true also when that
    /// resolver is not a DmAssetResolverFilePaths. Searching goes in order of addition.
    bool addURISearchPath(String const& path);
    /// The search paths of the "halvern" resolver; null when it has none.
    std::shared_ptr<SearchPaths const> getURISearchPaths() const;
    /// Resolves `reference` through the registry, with this library's log.
    /// True when resolved; the reference's ResolveStatus tells why not.
    bool resolveAssetReference(std::shared_ptr<DmAssetReference> const& reference,
                               std::shared_ptr<DmAssetResolverContext> const& context) const;
    /// A resolved reference to what `uri` names: for a file URI the existing
    /// file, canonical, as "file:" spec and identity; for a stream URI its
    /// name and stream. Null for a null or invalid URI, a file that does not
    /// exist, or another kind of URI.
    std::shared_ptr<DmAssetReference> createAssetReferenceFromURI(std::shared_ptr<DmURI> const& uri) const;
    /// The URI of a resolved reference, found in the register or made and
    /// registered (when valid). A file's URI is named after the file name
    /// only ("file:///a.json"), so two files of one name in different
    /// directories share the URI made for the first. A stream's URI is named
    /// after the identity; being no file URI, it is never found again, so each
    /// call makes a new one and the register keeps the first. Null for a null
    /// or unresolved reference, one without a resolver, or a resolver of
    /// another access mode.
    std::shared_ptr<DmURI> createURIFromAssetReference(std::shared_ptr<DmAssetReference> const& reference);
    /// @}

    /// @name The table of JSON files
    /// The load pipeline remembers which directories it has listed and which
    /// JSON files they hold, so that most existence tests of a load are one
    /// hash lookup instead of a file-system call. A file's key is its full path
    /// in lexically normal form, false until the file is loaded, true after; a
    /// listed directory's key is the path as given, true.
    /// @{
    /// Lists `directory` (not recursively) and files every regular file with
    /// the extension ".json". True when that added a file; the directory is
    /// then remembered. False, and the directory is not remembered, when it is
    /// known already, does not exist, is no directory, or holds no new JSON file.
    bool cacheJsonFilenamesForLoad(std::string const& directory);
    /// True when `name` is a loaded file (or a listed directory).
    bool isJsonFileLoaded(std::string const& name) const;
    /// {true, true} when `path` is in the table; else {listed, false}, where
    /// `listed` says whether its directory was listed, in which case the file
    /// does not exist as far as the load is concerned.
    std::pair<bool, bool> isJsonFilenameCachedForLoad(std::string const& path) const;
    /// Marks `name` as loaded; the empty name is ignored.
    void setJsonFileAsLoaded(std::string const& name);
    JsonFileMap const& getJsonFiles() const noexcept { return m_jsonFiles; }
    /// @}

    /// @name Type singletons
    /// Shared by every library of the process, made on first call and const
    /// from birth: no library can alter them. Each is in its process-wide
    /// namespace by the time it is returned.
    /// @{
    static std::shared_ptr<DmAnyType> const& getAnyType();
    static std::shared_ptr<DmArrayType> const& getArrayOfAnyType();
    static std::shared_ptr<DmAutoType> const& getAutoType();
    static std::shared_ptr<DmBoolType> const& getBoolType();
    static std::shared_ptr<DmCharType> const& getCharType();
    static std::shared_ptr<DmUCharType> const& getUCharType();
    static std::shared_ptr<DmShortType> const& getShortType();
    static std::shared_ptr<DmUShortType> const& getUShortType();
    static std::shared_ptr<DmIntType> const& getIntType();
    static std::shared_ptr<DmUIntType> const& getUIntType();
    static std::shared_ptr<DmLongType> const& getLongType();
    static std::shared_ptr<DmULongType> const& getULongType();
    static std::shared_ptr<DmFloatType> const& getFloatType();
    static std::shared_ptr<DmDoubleType> const& getDoubleType();
    static std::shared_ptr<DmStringType> const& getStringType();
    /// "__undefined__": the type of what was named but never defined.
    static std::shared_ptr<DmUndefinedType> const& getUndefinedType();
    /// "__RuntimeServices__": the opaque class of the runtime services handle an operator may ask for.
    static std::shared_ptr<DmClassType> const& getRuntimeServicesType();
    /// "__TypeRegistry__": the opaque class of the type registry handle.
    static std::shared_ptr<DmClassType> const& getTypeRegistryType();
    /// @}

private:
    bool initialize(std::ostream* errorStream);
    void reportInitializationFailure();
    DmGlobalNamespace& globalNamespace() const;
    /// Files `uri` under its name at the end of the register; a name filed
    /// already keeps its URI.
    void registerURI(std::shared_ptr<DmURI> const& uri);
    /// Empties the register, cutting the dependencies between its URIs.
    void forgetURIs();
    DmStatus loadGraphWithContext(std::shared_ptr<DmURI> const& uri,
                                  std::shared_ptr<DmAssetReference> const& assetReference,
                                  LoadOptions const& options, std::shared_ptr<CompoundMap> const& result);

    // Members are released in reverse order of declaration.
    std::shared_ptr<BaContext> m_context;
    std::shared_ptr<DmMessageLogger> m_errorLogger;
    std::shared_ptr<DmNamespace> m_globalNamespace;
    std::vector<std::string> m_resourceFilePaths;
    std::shared_ptr<URIMap> m_uris;
    JsonFileMap m_jsonFiles;
    std::shared_ptr<DmAssetResolverRegistry> m_assetResolverRegistry;
    std::shared_ptr<DmUnknownDefinitionsSupport> m_unknownDefinitionsSupport;
    DmExternOperator::CancellationPolicy m_defaultCancellationPolicy;
};

} // namespace Kesto
