#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>
#include <vector>

namespace Kesto {

class DmOverload;

/// The definitions of one name in one scope. Its interface is the merged view
/// of its overloads: a port on which they disagree has the auto type here,
/// and becomes concrete again when the overload that disagreed leaves. A node
/// made from a set shows that merged interface.
class KESTODM_API DmOverloadSet : public DmNodeDef, public DmInstanceCounter<DmOverloadSet> {
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    using OverloadList = std::vector<std::shared_ptr<DmOverload>>;

    /// A set named, scoped and associative as `overload`, holding it, with
    /// clones of its ports as interface. Null for a null overload.
    static std::shared_ptr<DmOverloadSet> newOverloadSet(std::shared_ptr<DmOverload> const& overload,
                                                         bool builtIn);

    DmOverloadSet(InternalConstructor, std::string name, bool builtIn);
    ~DmOverloadSet() override;

    /// @name Overloads
    /// @{
    OverloadList const& getOverloads() const noexcept { return *m_overloads; }
    std::size_t size() const noexcept { return m_overloads->size(); }
    bool empty() const noexcept { return m_overloads->empty(); }
    DmOverload* getDefaultOverload() const noexcept { return m_defaultOverload; }
    /// Appends `overload`, even when its ports do not fit: a port missing on
    /// it makes the result kFailure, and a port whose type differs becomes
    /// auto in the set. kFailure when it is there already. The caller sets
    /// the overload's owner.
    DmStatus addOverload(std::shared_ptr<DmOverload> const& overload);
    /// Takes `overload` out and narrows the auto ports of the set again where
    /// the remaining overloads agree. kFailure when it is not in the set.
    DmStatus removeOverload(std::shared_ptr<DmOverload> const& overload);
    /// @}

    /// @name Answers for the set
    /// @{
    bool isBuiltIn() const override;
    bool isValueNodeDef() const override;
    /// Exactly one overload, which is terminal.
    bool isTerminal() const override;
    /// The first overload is a placeholder.
    bool isUnknown() const override;
    Associativity associativity() const override;
    bool isConverter() const override;
    bool isImported() const override;
    /// Locked and holding exactly one overload.
    bool isSingle() const override;
    /// Unlocking is refused (kFailure) while an input of the set is auto.
    DmStatus setOverloadsLocked(bool locked) override;
    AllowedTypes getAllowedTypesForPort(std::string const& name) const override;
    /// Renames the port on every overload that has it, then on the set and
    /// its nodes, keeping the port's place.
    bool renamePortDescription(std::string const& oldName, std::string const& newName) override;
    std::shared_ptr<DmBaseValue> findUnconnectedPortValue(std::string const& name) const override;
    /// @}

    /// @name Placement
    /// @{
    DmStatus setScope(DmScope* scope, DmNameResolutionType type) override;
    /// Renames the set to a name unique among the scope's definitions.
    bool setName(std::string const& name, DmNameResolutionType type, DmNameResolveFlags flags) override;
    /// Imports each overload into `scope` under one name, as overloads.
    DmStatus import(std::shared_ptr<DmScope> const& scope, DmNameResolutionType type, std::string const& name,
                    std::shared_ptr<DmNodeDef>& out, ImportErrorFlags flags) override;
    /// @}

private:
    friend class DmOverload;

    /// Keeps the default pointer in step with DmOverload::setIsDefaultOverload.
    void setDefaultOverload(DmOverload* overload) noexcept { m_defaultOverload = overload; }
    /// Brings the set's port `name` in line with the overloads after one of
    /// them changed its port of that name: gone when no overload has it, of
    /// the common type when they agree, auto when they do not.
    void mergePort(std::string const& name);
    /// Renames the set's port when an overload renamed its own and no other
    /// overload keeps the old name; merges both names otherwise.
    void mergeRenamedPort(std::string const& oldName, std::string const& newName);
    /// A clone of `port` for the set's interface, of type `type`.
    std::shared_ptr<DmPortDescription> cloneForSet(DmPortDescription const& port,
                                                   std::shared_ptr<DmBaseType const> const& type);

    std::shared_ptr<OverloadList> m_overloads;
    DmOverload* m_defaultOverload = nullptr;
    bool m_builtIn;
    bool m_valueNodeDef = false;
};

} // namespace Kesto
