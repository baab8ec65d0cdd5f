#pragma once

#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/platform/DmExport.h>

#include "reader/DmJsonFormat.h"
#include "reader/DmRapidJson.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Kesto {

class DmAssetReference;
class DmBaseType;
class DmCompound;
class DmEntity;
class DmLibrary;
class DmMessageLogger;
class DmNamespace;
class DmNodeDef;
class DmPort;
class DmScope;
class DmTerminalStates;
class DmTerminalNodeDef;
class DmUnknownDefinitionsSupport;
class DmURI;
class DmExternOperator;

namespace Internal {

/// What one read of a file works with; shared by the file entry and the reader.
struct JsonReadContext {
    using CompoundMap = LinkedHashMap<std::string, std::shared_ptr<DmCompound>, StringHasher, StringCompare>;

    DmLibrary* library = nullptr;
    std::shared_ptr<DmMessageLogger> logger;
    DmNameResolutionType nameResolution = kFailOnClash;
    bool reload = false;
    std::shared_ptr<DmURI> uri;
    std::shared_ptr<DmAssetReference> asset;
    /// Receives the compounds read; may be null.
    std::shared_ptr<CompoundMap> result;
    /// Null when names must be defined before they are used.
    std::shared_ptr<DmUnknownDefinitionsSupport> unknownDefinitions;
    /// How many files, through their dependencies, led to this one.
    unsigned depth = 0;

    /// Dependencies are read at once, each nesting the reader on the stack:
    /// a chain of files longer than this is cut with an error.
    static constexpr unsigned kMaxDependencyDepth = 200;
};

/// What the messages of a read are about: the file's URI ("file:///a.json").
KESTODM_API std::string fileLocation(JsonReadContext const& context);
/// Reports a message of the read of `context`'s file to its logger, if any.
KESTODM_API void reportAboutFile(JsonReadContext const& context, int category, std::string title,
                                 std::string description);

/// A list that the early passes fill and the later ones drain in order; each
/// pass starts again from the first element.
template <class T>
class PassQueue {
public:
    void push(T item) { m_items.push_back(std::move(item)); }
    /// The next element of this pass; null (or empty) past the end.
    T next() { return m_cursor < m_items.size() ? m_items[m_cursor++] : T(); }
    void rewind() noexcept { m_cursor = 0; }
    std::size_t size() const noexcept { return m_items.size(); }
    bool empty() const noexcept { return m_items.empty(); }

private:
    std::vector<T> m_items;
    std::size_t m_cursor = 0;
};

/// Reads one parsed graph file into the library in four passes over its root,
/// each walking the sections in the format's fixed order, so that what a
/// later pass needs was made by an earlier one whatever the file's order:
///   1. dependencies, namespaces, types and globals by name, header metadata;
///   2. version check, struct members, operators, terminal definitions,
///      compounds and their ports;
///   3. defaults, port attributes, global values, terminal states;
///   4. nodes, connections, values, watch points, loop links.
/// A bad object is reported and skipped; the read goes on.
class KESTODM_API JsonReader {
public:
    using Value = rapidjson::Value;
    using Section = JsonFormat::Section;

    explicit JsonReader(JsonReadContext context);
    JsonReader(JsonReader const&) = delete;
    JsonReader& operator=(JsonReader const&) = delete;
    virtual ~JsonReader();

    /// Runs the four passes over `root`; kSuccess unless a pass failed as a whole.
    DmStatus read(Value const& root);

    /// @name Reading keys of an entity object
    /// Scalars of the format are strings; anything else counts as absent.
    /// @{
    /// The member `key` of `object`, null when absent or `object` is no object.
    static Value const* member(Value const& object, std::string_view key) noexcept;
    /// The string of `key`; empty when absent, empty or not a string.
    static std::string_view stringOf(Value const& object, std::string_view key) noexcept;
    /// A list of the format: an array, or one object standing for a list of one; false for null.
    static bool isList(Value const* value) noexcept;
    /// A boolean key: present when a non-empty string, true for "true", "TRUE", "True".
    static bool booleanOf(Value const& object, std::string_view key, bool* present = nullptr) noexcept;
    /// @}

    JsonReadContext const& getContext() const noexcept { return m_context; }
    DmStatus getStatus() const noexcept { return m_status; }
    /// The pass now running, 1 to 4; 0 outside read.
    int getPass() const noexcept { return m_pass; }

protected:
    /// The walker: objects under an empty section stack are roots, objects
    /// under a section go to that section's handler, arrays are walked
    /// element by element, anything else is badly formed.
    void walk(Value const& value);
    /// Walks the list under `key` of `object` as section `section`, if there.
    void walkList(Value const& object, std::string_view key, Section section);
    /// The handler of `section` in the current pass, for one object of it.
    virtual void handle(Section section, Value const& object);

private:
    void walkRoot(Value const& object);

    /// @name Handlers
    /// @{
    void followDependency(Value const& object);
    void readHeader(Value const& object);
    void checkVersion(Value const& object);
    void readMetadataItem(Value const& object);
    /// @}

    // ---- Namespaces, types and global variables: JsonReaderTypes.cpp ----
public:
    /// What resolveType does with a name that names no type.
    enum class MissingType {
        kNothing = 0,   ///< gives null
        kUndefined = 1, ///< makes an undefined type of that name in its namespace
        kUnknown = 2,   ///< asks the unknown-definitions support for a placeholder
    };
    /// The type that a type name of the file names: a built-in, a type of the
    /// library's namespaces, or an array form. `name` is taken as the file
    /// writes it: it is normalised and its old spellings are renamed here. An
    /// array of a missing element is, with kUndefined, the array of the
    /// undefined element. Null without a library or for an empty name.
    std::shared_ptr<DmBaseType const> resolveType(std::string_view name, MissingType missing);

private:
    void readNamespace(Value const& object);
    void readType(Value const& object);
    /// The full name of a type of this file, also before it is filed.
    std::string typeNameOf(DmBaseType const& type) const;
    /// Files a type of this file in its namespace, or reports the clash.
    void placeType(std::shared_ptr<DmBaseType> const& type, DmNamespace& ns, std::string const& name);
    void readEnumMember(Value const& object);
    void readMethod(Value const& object);
    void readStructMember(Value const& object);
    void readGlobalVariable(Value const& object);
    /// walkList, except that a value under `key` that is neither a list nor
    /// an object is reported as a warning with these words and not walked.
    void walkListOrWarn(Value const& object, std::string_view key, Section section, std::string title,
                        std::string description);
    /// The entity on top of the entity stack as a `T`; null when it is none.
    template <class T>
    std::shared_ptr<T> topEntityAs() const;

    /// The full names of the globals that pass 1 made, one entry per global
    /// object (empty for one not made), for pass 3 to find them again.
    PassQueue<std::string> m_globalVariableNames;
    // ---- end of namespaces, types and global variables ----

    // ---- Operators, terminal node definitions and ports: JsonReaderDefinitions.cpp ----
    void readOperator(Value const& object);
    void readTerminalNodeDef(Value const& object);
    void readPort(Value const& object);
    void readJobPort(Value const& object);
    /// The `associativity` of a definition object; an unknown text is
    /// reported about `name` (the definition's full name) and gives none.
    DmNodeDef::Associativity readAssociativity(Value const& object, std::string const& name) const;
    /// True when the `ports` of `object` match the interface of `existing`
    /// port by port, in order, by name and direction; no `ports` matches an
    /// interface without ports.
    bool hasCompatiblePorts(Value const& object, DmNodeDef const& existing) const;
    /// Warns when `scope` already holds definitions named `local` whose ports
    /// differ from those of `object`, the definition of kind `kind`
    /// ("Operator", "Compound") and full name `name`. Silent under kMakeUnique,
    /// which gives the newcomer a name of its own.
    void warnOfIncompatibleOverload(Value const& object, DmScope const& scope, std::string const& local,
                                    std::string const& kind, std::string const& name) const;
    /// Warns about a definition with associative ports that is not a proper
    /// associative definition; run once its ports are read.
    void checkAssociativity(DmNodeDef const& definition) const;
    /// Pass 3 of an operator or terminal definition: its ports again.
    void walkPortsAgain(std::shared_ptr<DmNodeDef> const& definition, Value const& object);
    /// Pass 2 of a port object: makes the port and adds it to `definition`.
    void createPort(DmNodeDef& definition, Value const& object);
    /// Pass 3 of a port object: the default value and the feedback link.
    void completePort(DmNodeDef& definition, Value const& object);
    /// The type of a port or job port: missing names become undefined types,
    /// or placeholders with an unknown-definitions support.
    std::shared_ptr<DmBaseType const> resolvePortType(std::string_view text);
    // ---- end of operators, terminal node definitions and ports ----

    // ---- Compounds, nodes, connections, values, watch points: JsonReaderCompounds.cpp ----
    void readCompound(Value const& object);
    void readCompoundNode(Value const& object);
    void readConnection(Value const& object);
    void readValueEntry(Value const& object);
    void readWatchPoint(Value const& object);
    void readReservedNodeNames(Value const& object);
    void readLoopSpecialisation(Section section, Value const& object);
    void readLoopPort(Section section, Value const& object);
    /// The normalised `name` of a compound object; empty when it has none,
    /// which leaves the object out of every pass.
    static std::string compoundNameOf(Value const& object);
    /// The section of the loop key that decides a compound's class, or kNoSection.
    static Section loopSectionOf(Value const& object) noexcept;
    /// The compound open on the definition stack, or null.
    DmCompound* openCompound() const noexcept;
    /// The definition `name` (normalised) names for a node of `compound`:
    /// from the compound outward to the global namespace, or from the global
    /// namespace alone after a leading "::".
    std::shared_ptr<DmNodeDef> findNodeDefFor(DmCompound const& compound, std::string const& name) const;
    /// Reads `terminalStates` of `object` into `states`; `owner` names the
    /// node or compound in messages, `onCompound` says which.
    void readTerminalStates(Value const& object, DmTerminalStates& states, std::string const& owner,
                            bool onCompound);
    /// Sets the terminal "<definition>::<port>" `name` on or off in `states`.
    void applyTerminalState(DmTerminalStates& states, std::string const& name, bool enabled,
                            std::string const& owner, bool onCompound);
    /// The port a value or watch point path names in the open compound:
    /// "node.port" or ".port" (the interface node), members after further
    /// points. Null, reported, when there is none.
    std::shared_ptr<DmPort> findPortOfPath(DmCompound const& compound, std::string const& path);
    // ---- end of compounds ----

    /// @name Messages
    /// @{
    /// What the reader's messages are about: the file's URI.
    std::string location() const;
    void report(int category, std::string title, std::string description) const;
    void reportBadlyFormed() const;
    /// @}

    JsonReadContext m_context;
    int m_pass = 0;
    DmStatus m_status = DmStatus::kSuccess;
    std::vector<Section> m_sections;
    std::vector<std::shared_ptr<DmEntity>> m_entities;
    std::vector<std::shared_ptr<DmNodeDef>> m_definitions;
    PassQueue<std::shared_ptr<DmCompound>> m_compounds;
    PassQueue<std::shared_ptr<DmExternOperator>> m_operators;
    PassQueue<std::shared_ptr<DmTerminalNodeDef>> m_terminalNodeDefs;
    PassQueue<std::shared_ptr<DmBaseType>> m_types;
    /// Types whose name was taken when they were made: they are compared with
    /// the type there, and filed or reported, once their members are read.
    struct DeferredType {
        std::shared_ptr<DmNamespace> ns;
        std::string name;
    };
    std::unordered_map<DmBaseType const*, DeferredType> m_deferredTypes;
};

} // namespace Internal
} // namespace Kesto
