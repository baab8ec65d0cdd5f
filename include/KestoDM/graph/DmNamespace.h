#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/graph/DmCollect.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

class DmBaseType;
class DmGlobalVariable;
class DmMessageLogger;
class DmSelector;
class DmURI;

/// A named scope that owns, besides node definitions, types, global variables
/// and nested namespaces. Namespaces form the tree under a library's global
/// namespace; "a::b::T" names the type T of the namespace b nested in a.
///
/// Made by createNamespace, or as a child by addNestedNamespace and
/// fetchNamespace; always held by a shared reference, which the namespace can
/// hand out itself. It owns its children through shared references; they know
/// it by a plain pointer that nothing clears when it goes, so a child that must
/// outlive it is detached first. The library's three roots (global, built-in,
/// reserved) are namespaces that answer the matching root test.
///
/// Name lookups walk the path one component at a time; a leading "::" is
/// dropped, so "::a::T" and "a::T" are one name. Types are filed under their
/// own name in the namespace that holds them.
class KESTODM_API DmNamespace : public DmScope, public DmNamedEntity, public DmInstanceCounter<DmNamespace> {
protected:
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    using NamespaceMap =
        LinkedHashMap<std::string, std::shared_ptr<DmNamespace>, StringHasher, StringCompare>;
    using TypeMap = LinkedHashMap<std::string, std::shared_ptr<DmBaseType>, StringHasher, StringCompare>;
    using GlobalVariableMap =
        LinkedHashMap<std::string, std::shared_ptr<DmGlobalVariable>, StringHasher, StringCompare>;

    /// @name Construction
    /// @{
    /// A new namespace named after `name` as `flags` resolve it; null when the
    /// name is refused (empty, or without a legal form where one is asked for).
    /// `logger` receives the namespace's diagnostics and is handed to its children.
    static std::shared_ptr<DmNamespace> createNamespace(std::string const& name,
                                                        std::shared_ptr<DmMessageLogger> logger,
                                                        DmNameResolveFlags flags);

    /// For createNamespace and the library's root namespaces only.
    DmNamespace(InternalConstructor, std::string name, std::shared_ptr<DmMessageLogger> logger);
    ~DmNamespace() override;
    /// @}

    /// @name Identity
    /// @{
    /// Valid when the name is not empty.
    bool isValid() const override;
    DmNamedEntity* getAsNamedEntity() override { return this; }
    std::string const& getLocalScopeName() const override { return getName(); }
    /// The key of the namespace among its siblings: its name.
    std::string getMapEntryKey() const { return getName(); }
    /// The source the namespace was read from; null for one made in memory.
    std::shared_ptr<DmURI> const& getURI() const noexcept { return m_uri; }
    void setURI(std::shared_ptr<DmURI> const& uri) { m_uri = uri; }
    /// @}

    /// @name Nesting
    /// @{
    /// Moves the namespace under `scope`, which must be a namespace (kFailure
    /// otherwise), or detaches it from its parent for a null `scope` (always
    /// kSuccess). A const namespace stays where it is (kConstEntity), and only
    /// kFailOnClash is allowed (kInvalidArgument otherwise): namespaces are
    /// never renamed or overloaded. A move does not tell the old parent, which
    /// keeps its entry: detach first.
    DmStatus setScope(DmScope* scope, DmNameResolutionType type) override;

    /// Get or create: the nested namespace `name` in `out`, made (verbatim name,
    /// this namespace's logger) when absent; kSuccess in both cases. kFailure
    /// for the empty name.
    DmStatus addNestedNamespace(std::string const& name, std::shared_ptr<DmNamespace>& out);
    /// Adopts `child` under its own name: kFailure when the name is taken, even
    /// by `child` itself; kInvalidArgument for null, for this namespace and for
    /// one of its ancestors (a cycle).
    DmStatus addNestedNamespace(std::shared_ptr<DmNamespace> const& child);
    /// Detaches `child`. A namespace that is not nested here (by name and
    /// identity) is left alone, with kSuccess.
    DmStatus removeNestedNamespace(std::shared_ptr<DmNamespace> const& child);
    /// The namespace at the end of the path `name`, creating what is missing
    /// on the way; this namespace for the empty name (and for "::"). Null
    /// when a component cannot be made.
    std::shared_ptr<DmNamespace> fetchNamespace(std::string const& name);
    /// The nested namespaces by name, in the order of their addition.
    NamespaceMap const& getNestedNamespaces() const noexcept { return *m_nestedNamespaces; }
    /// @}

    /// @name Node definitions
    /// @{
    /// Looks the path `name` up from here ("a::b::op" is op of b nested in
    /// a), without creating anything.
    bool findNodeDef(std::string const& name, std::shared_ptr<DmNodeDef>& out) const override;
    bool findNodeDef(std::string const& name, std::shared_ptr<DmOverloadSet>& out) const override;
    /// @}

    /// @name Types
    /// @{
    /// Looks the path `name` up from here, without creating anything: false
    /// (out untouched) when a component is missing.
    virtual bool findType(std::string const& name, std::shared_ptr<DmBaseType>& out) const;
    virtual bool findType(std::string const& name, std::shared_ptr<DmBaseType const>& out) const;
    /// As findType, but the built-in types come first: a built-in name always
    /// means the built-in type, whatever this namespace holds.
    virtual bool getType(std::string const& name, std::shared_ptr<DmBaseType const>& out) const;

    /// Files `type` under its name. A taken name is kSuccess when the type
    /// there is equivalent (DmBaseType::equivalent), which then stays, and
    /// kFailure otherwise; null is kInvalidArgument. Types are placed by
    /// DmBaseType::setNamespace, which calls this.
    DmStatus registerType(std::shared_ptr<DmBaseType> const& type);
    /// Removes `type`; kFailure when it is not the type filed under its name.
    DmStatus unregisterType(std::shared_ptr<DmBaseType> const& type);
    /// The types of this namespace by name, in the order of registration.
    TypeMap const& getTypes() const noexcept { return *m_types; }
    /// @}

    /// @name Global variables
    /// @{
    /// Files `variable` under its name: kFailure when the name is taken (the
    /// variable there stays), kInvalidArgument for null. Variables are placed
    /// by DmGlobalVariable::setNamespace, which calls this.
    DmStatus registerGlobalVariable(std::shared_ptr<DmGlobalVariable> const& variable);
    /// Removes `variable`; kFailure when it is not the variable filed under
    /// its name, kInvalidArgument for null.
    DmStatus unregisterGlobalVariable(std::shared_ptr<DmGlobalVariable> const& variable);
    /// The global variables of this namespace by name, in the order of registration.
    std::shared_ptr<GlobalVariableMap const> getGlobalVariables() const noexcept { return m_globalVariables; }
    /// @}

    /// @name Collecting
    /// @{
    /// Appends to `list`, in this order: with kCollectTypes, the types of this
    /// namespace that files define (class, struct, enum, undefined, unknown,
    /// unknown struct) and `selector` accepts; with kCollectCompounds or
    /// kCollectExternOperators, the matching overloads of the definitions here
    /// that are not built in; with kCollectNested, the same from each nested
    /// namespace in turn.
    void collect(DmCollectList& list, DmSelector const& selector, DmCollectMask mask,
                 DmCollectFlags flags) const;
    /// @}

private:
    /// The shared reference that owns this namespace; null while none does.
    std::shared_ptr<DmNamespace> self() const;
    /// The lookup of a "::" path shared by types and definitions: `findHere`
    /// answers for a plain name, `findInChild` continues in a nested namespace.
    template <class Out, class FindHere, class FindInChild>
    bool walkPath(std::string const& name, Out& out, FindHere const& findHere,
                  FindInChild const& findInChild) const;
    /// True when `scope` is this namespace or one above it.
    bool isSelfOrAncestor(DmScope const* scope) const noexcept;

    std::shared_ptr<GlobalVariableMap> m_globalVariables;
    std::shared_ptr<NamespaceMap> m_nestedNamespaces;
    std::shared_ptr<TypeMap> m_types;
    std::shared_ptr<DmURI> m_uri;
};

} // namespace Kesto
