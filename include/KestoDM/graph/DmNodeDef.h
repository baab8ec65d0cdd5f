#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/graph/DmPortsInterface.h>
#include <KestoDM/platform/DmExport.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>

namespace Kesto {

class DmBaseType;
class DmBaseValue;
class DmLibrary;
class DmNode;
class DmPortDescription;
class DmScope;
class DmURI;

/// The template of a node: a name, ports and flags. Every definition placed
/// in a scope sits in the overload set of its name (DmOverloadSet), and a
/// node is made from one overload or from a set.
///
/// A definition knows the nodes made from it by plain pointers and tells
/// them of every change of its ports, synchronously: adding, removing,
/// renaming, replacing and reordering a port reach every node at once.
/// Nodes hold their definition by a shared reference, so a definition lives
/// on after its scope entry while nodes use it.
class KESTODM_API DmNodeDef : public DmNamedEntity, public DmInstanceCounter<DmNodeDef> {
public:
    /// How the inputs of an associative definition group; 0 is none.
    enum Associativity : std::uint8_t {
        kNotAssociative = 0,
        kLeftToRight = 1,
        kRightToLeft = 2,
    };

    /// What an import lets through; bit 1 admits nodes without a definition.
    using ImportErrorFlags = std::uint32_t;
    static constexpr ImportErrorFlags kImportAllowMissingNodeDef = 1u;
    /// True when all the bits of `bits` are set in `flags`.
    static bool errorFlagSet(ImportErrorFlags flags, ImportErrorFlags bits) noexcept {
        return (flags & bits) == bits;
    }

    using InstantiatedNodes = std::unordered_set<DmNode*>;
    /// Type name to type, in the order met.
    using AllowedTypes =
        LinkedHashMap<std::string, std::shared_ptr<DmBaseType const>, StringHasher, StringCompare>;

    DmNodeDef(DmNodeDef const&) = delete;
    ~DmNodeDef() override;

    /// @name Identity
    /// @{
    DmScope* getScope() const noexcept { return m_scope; }
    /// Stores the scope pointer without registering anywhere.
    void initializeScope(DmScope* scope) noexcept { m_scope = scope; }
    /// True when the definition lives inside a compound, and so is private to it.
    bool isPrivate() const;
    std::shared_ptr<DmURI> const& getURI() const noexcept { return m_uri; }
    virtual void setURI(std::shared_ptr<DmURI> const& uri);
    std::shared_ptr<DmURI> const& getImportedURI() const noexcept { return m_importedURI; }
    void setImportedURI(std::shared_ptr<DmURI> const& uri) { m_importedURI = uri; }
    /// True when the definition was copied in from another (an imported URI is set).
    virtual bool isImported() const;
    DmLibrary* getLibrary() const noexcept { return m_library; }
    void setLibrary(DmLibrary* library) noexcept { m_library = library; }
    /// The scope path, "::" when it is not empty, and the name.
    void resolveFullName(std::string& out) const override;
    std::string getMapEntryKey() const { return getName(); }
    /// The unnamed text that a definition may carry; empty unless set.
    std::string const& getText() const noexcept { return m_text; }
    void setText(std::string text) { m_text = std::move(text); }
    /// @}

    /// @name Nature
    /// @{
    virtual bool isBuiltIn() const;
    virtual Associativity associativity() const;
    /// False on a const definition.
    bool setAssociativity(Associativity associativity);
    /// The flag, or else a value node definition.
    virtual bool isConverter() const;
    virtual void setConverter(bool converter);
    virtual bool isPromoter() const;
    /// Only compounds are promoters; false here.
    virtual bool setPromoter(bool promoter);
    virtual bool isValueNodeDef() const;
    /// Answered from the top of the chain of owners.
    virtual bool isOverloadsLocked() const;
    /// Unlocking is refused (kFailure) when an input has the auto type.
    virtual DmStatus setOverloadsLocked(bool locked);
    /// True when the definition stands alone in overload resolution.
    virtual bool isSingle() const = 0;
    virtual bool isTerminal() const;
    virtual bool isUnknown() const;
    /// True when some input has the auto type.
    bool hasAutoInputPort() const;
    /// @}

    /// @name Placement
    /// @{
    /// Moves the definition into `scope` (null: out of its scope), resolving
    /// a clash with a definition of the same name as `type` says.
    virtual DmStatus setScope(DmScope* scope, DmNameResolutionType type);
    /// Renames the definition and its scope entry; false on a const or value
    /// node definition, for a refused name, and under kFailOnClash for a taken one.
    bool setName(std::string const& name, DmNameResolutionType type, DmNameResolveFlags flags) override;
    /// Copies the definition into `scope` under `name`; `out` receives the copy.
    virtual DmStatus import(std::shared_ptr<DmScope> const& scope, DmNameResolutionType type,
                            std::string const& name, std::shared_ptr<DmNodeDef>& out,
                            ImportErrorFlags flags) = 0;
    /// @}

    /// @name Ports
    /// Each operation changes the interface, then tells every node made from
    /// this definition.
    /// @{
    DmPortsInterface const& getPortsInterface() const noexcept { return m_ports; }
    DmPortsInterface& getPortsInterface() noexcept { return m_ports; }
    /// Adds `port`, which must belong to no definition yet. Under
    /// kFailOnClash a taken name is refused, under kMakeUnique the port is
    /// renamed, under kAsOverload the name is taken as it is.
    virtual bool addPortDescription(std::shared_ptr<DmPortDescription> const& port,
                                    DmNameResolutionType type);
    virtual bool removePortDescription(std::shared_ptr<DmPortDescription> const& port);
    /// Puts `port` in the place of the port of its name.
    virtual bool replaceExistingPort(std::shared_ptr<DmPortDescription> const& port);
    /// Moves the port `name` before the port at `position`; see DmPortsInterface.
    virtual DmStatus reorderPortDescription(std::size_t position, std::string const& name);
    virtual bool renamePortDescription(std::string const& oldName, std::string const& newName);
    /// The types the port may take: its own type on an overload, the union
    /// over the overloads on a set. Empty for an unknown port.
    virtual AllowedTypes getAllowedTypesForPort(std::string const& name) const;
    /// The value an unconnected port takes: its description's default value
    /// override; null for an unknown port.
    virtual std::shared_ptr<DmBaseValue> findUnconnectedPortValue(std::string const& name) const;
    /// Makes `name` unique among the ports.
    virtual void getUniquePortName(std::string& name) const;
    /// @}

    /// @name Nodes
    /// @{
    InstantiatedNodes const& getInstantiatedNodes() const noexcept { return m_instantiatedNodes; }
    void registerNode(DmNode* node);
    void unregisterNode(DmNode* node);
    /// No node uses the definition, and it is no value node definition.
    bool hasNoReference() const;
    /// @}

protected:
    DmNodeDef(std::string name, bool complete);

    /// The port operations without the checks of the derived classes: change
    /// the interface and tell the nodes.
    bool addPortAndPropagate(std::shared_ptr<DmPortDescription> const& port);
    bool removePortAndPropagate(std::shared_ptr<DmPortDescription> const& port);
    bool replacePortAndPropagate(std::shared_ptr<DmPortDescription> const& port);
    bool renamePortAndPropagate(std::string const& oldName, std::string const& newName);

    /// Where every rename of a definition starts. `resolved` gets the name as
    /// `flags` resolve it: kRefused for a const definition or a refused name,
    /// kStored inside an update (the name is stored, nothing more to do), kGoOn otherwise.
    enum class RenameStart { kRefused, kStored, kGoOn };
    RenameStart beginRename(std::string const& name, DmNameResolveFlags flags, std::string& resolved);
    /// Stores the name only (the entity's own setName).
    bool storeName(std::string const& name, DmNameResolveFlags flags);
    /// Re-keys this definition's entry in its scope, in place.
    bool rekeyScopeEntry(std::string const& oldName, std::string const& newName);

    /// The definition's own lock flag, without owners.
    bool lockedFlag() const noexcept { return m_overloadsLocked; }
    void setLockedFlag(bool locked) noexcept { m_overloadsLocked = locked; }

private:
    friend class DmScope;

    DmScope* m_scope = nullptr;
    DmPortsInterface m_ports;
    std::shared_ptr<DmURI> m_uri;
    std::shared_ptr<DmURI> m_importedURI;
    DmLibrary* m_library = nullptr;
    bool m_converter = false;
    bool m_overloadsLocked = true;
    Associativity m_associativity = kNotAssociative;
    InstantiatedNodes m_instantiatedNodes;
    std::string m_text;
};

/// Marks a definition as in update while it lives, so that renames coming
/// back from the port level are not told to the nodes twice.
class KESTODM_API NodeDefUpdateHelper : public DmNamedEntity::UpdateHelper {
public:
    explicit NodeDefUpdateHelper(DmNodeDef& def) noexcept : UpdateHelper(def) {}
    ~NodeDefUpdateHelper() override;
};

} // namespace Kesto
