#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/foundation/LinkedHashSet.h>
#include <KestoDM/platform/DmExport.h>

#include <cstddef>
#include <memory>
#include <string>

namespace Kesto {

class DmMessageLogger;
class DmNamedEntity;
class DmNodeDef;
class DmOverloadSet;

/// A container in which node definitions live, and a link in a chain of scopes
/// that gives every definition its "::"-separated full name. Namespaces are
/// scopes (DmNamespace), and so are compounds, which hold nested definitions.
/// The chains end at the three roots of a library: the global, built-in and
/// reserved namespaces, whose path is empty.
///
/// A scope is never made on its own: it is the base of a concrete class, whose
/// factory hands it the message logger that receives its diagnostics. A scope
/// owns its nested scopes and definitions through shared references and knows
/// its parent by a plain pointer; no destructor clears a child's parent, so a
/// child that must outlive its parent is detached first (setScope(nullptr, ...)).
class KESTODM_API DmScope : public DmInstanceCounter<DmScope> {
public:
    using ScopeSet = LinkedHashSet<std::shared_ptr<DmScope>>;
    using NodeDefMap = LinkedHashMap<std::string, std::shared_ptr<DmNodeDef>, StringHasher, StringCompare>;

    /// Separates the components of a scoped name.
    static constexpr char const kSeparator[] = "::";
    static constexpr std::size_t kSeparatorLength = 2;

    DmScope(DmScope const&) = delete;
    DmScope& operator=(DmScope const&) = delete;

    /// @name Identity
    /// @{
    /// A scope as such is always valid; named scopes add their own test.
    virtual bool isValid() const;
    /// The entity that stands for this scope in messages.
    virtual DmNamedEntity* getAsNamedEntity() = 0;
    DmNamedEntity const* getAsNamedEntity() const { return const_cast<DmScope*>(this)->getAsNamedEntity(); }
    /// The roots of the scope chains; false for every other scope.
    virtual bool isGlobalNamespace() const;
    virtual bool isBuiltInNamespace() const;
    virtual bool isReservedNamespace() const;
    /// The scope's own name, the last component of its path.
    virtual std::string const& getLocalScopeName() const = 0;
    /// @}

    /// @name Nesting
    /// @{
    DmScope* getParentScope() noexcept { return m_parent; }
    DmScope const* getParentScope() const noexcept { return m_parent; }
    /// Sets the parent pointer only; the parent's containers are the business
    /// of setScope and of the nesting operations of the concrete classes.
    void setParent(DmScope* parent) noexcept { m_parent = parent; }
    /// Moves the scope under `scope` (null: detaches it), resolving a name
    /// clash as `type` says.
    virtual DmStatus setScope(DmScope* scope, DmNameResolutionType type) = 0;
    /// The scopes nested here, in the order of their addition.
    ScopeSet const& getNestedScopes() const noexcept { return *m_nestedScopes; }
    /// @}

    /// @name Node definitions
    /// @{
    /// The definitions of this scope by name, in the order of registration;
    /// each entry is an overload set.
    NodeDefMap const& getNodeDefs() const noexcept { return *m_nodeDefs; }
    /// Places `def` here: it joins the overload set of its name, which is
    /// made when there is none. A set given itself is filed as it is
    /// (kInvalidArgument when the name is taken). The definition's scope
    /// pointer is set first, whatever the outcome.
    DmStatus registerNodeDef(std::shared_ptr<DmNodeDef> const& def);
    /// Takes `def` out of its set here; an emptied set goes, except the set
    /// of a placeholder that nodes still use. kSuccess when the name is not here.
    DmStatus unregisterNodeDef(std::shared_ptr<DmNodeDef> const& def);
    /// The entry of `name` in this scope alone: a name with "::" is not
    /// looked up here. False (out untouched) when absent.
    virtual bool findNodeDef(std::string const& name, std::shared_ptr<DmNodeDef>& out) const;
    /// As above, cast to the set; `out` is null, with true, when the entry is
    /// no overload set.
    virtual bool findNodeDef(std::string const& name, std::shared_ptr<DmOverloadSet>& out) const;
    bool hasNodeDef(std::string const& name) const;
    /// Makes `name` unique among the definitions of this scope; the
    /// `exception` (a definition's present name) never counts as taken.
    void getUniqueNodeDefName(std::string& name, std::string const& exception = std::string()) const;
    /// @}

    /// @name Names
    /// @{
    /// Appends the full path of this scope to `out`: the names from below the
    /// root down to this scope, joined by "::". The roots have the empty path,
    /// and a scope right under a root has its own name alone. A scope that is
    /// no root but has no parent reports "missing parent scope" (category 3)
    /// and still appends its own name.
    void resolveScopeName(std::string& out) const;
    /// True when both chains agree by name, level by level, up to a common
    /// scope or up to roots of the same kind. Identical scopes are equal; null is not.
    bool equalScopeName(DmScope const* other) const;
    /// Splits `fullName` at its last "::": `scope` gets what stands before,
    /// `local` what follows. Without a separator `scope` is empty and `local`
    /// the whole name.
    static void resolveLocalNameAndScope(std::string const& fullName, std::string& scope, std::string& local);
    /// @}

    /// The logger that receives the scope's diagnostics, or null. A compound
    /// reports to its library's.
    virtual std::shared_ptr<DmMessageLogger> getLogger() const;

    virtual ~DmScope();

protected:
    /// `logger` receives the diagnostics of the scope; it may be null for the
    /// process-wide roots, which never report.
    explicit DmScope(std::shared_ptr<DmMessageLogger> logger);

    /// kSuccess when inserted, kFailure when the scope is already there.
    DmStatus addNestedScope(std::shared_ptr<DmScope> const& scope);
    /// kSuccess when removed, kFailure when the scope is not there.
    DmStatus removeNestedScope(std::shared_ptr<DmScope> const& scope);

    /// Re-keys the entry `oldName` as `newName` in place; false when the old
    /// name is absent or the new one taken.
    bool rekeyNodeDef(std::string const& oldName, std::string const& newName);

private:
    friend class DmNodeDef;

    /// Files a set under its name; kInvalidArgument when the name is taken.
    DmStatus registerOverloadSet(std::shared_ptr<DmOverloadSet> const& set);

    std::shared_ptr<DmMessageLogger> m_logger;
    DmScope* m_parent = nullptr;
    std::shared_ptr<ScopeSet> m_nestedScopes;
    std::shared_ptr<NodeDefMap> m_nodeDefs;
};

} // namespace Kesto
