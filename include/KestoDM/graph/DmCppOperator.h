#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/types/DmExternSymbol.h>
#include <KestoDM/types/DmMangledName.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace Kesto {

class DmBaseType;
class DmJobPort;
class DmPortDescription;

/// An external operator implemented by a C++ function: the definition and,
/// as a DmExternSymbol, the function's symbol. It also records which ports
/// form in/out pairs (associated ports) and the job ports through which the
/// runtime hands the function services of the job.
///
/// Whether an operator may join overload resolution is the business of its
/// overload set alone: the lock is read and written on the owner, and a
/// detached operator reads as unlocked.
///
/// Made by createCppOperator: by the reader of graph files, or by a host
/// that declares the operators of its native code.
class KESTODM_API DmCppOperator : public DmExternOperator,
                                  public DmExternSymbol,
                                  public DmInstanceCounter<DmCppOperator> {
public:
    /// Port to the port it is paired with, keyed by address.
    using AssociatedPorts =
        std::unordered_map<DmPortDescription const*, std::shared_ptr<DmPortDescription const>>;
    using JobPorts = std::vector<std::shared_ptr<DmJobPort>>;

    /// @name Construction
    /// @{
    /// A new operator saved with no pack, null when `flags` refuse the name.
    static std::shared_ptr<DmCppOperator> createCppOperator(std::string const& name,
                                                            CancellationPolicy cancellationPolicy,
                                                            DmNameResolveFlags flags = kNameVerbatim);
    /// A new operator saved with the pack `packName`, null when `flags` refuse the name.
    static std::shared_ptr<DmCppOperator> createCppOperator(std::string const& name,
                                                            CancellationPolicy cancellationPolicy,
                                                            std::string const& packName,
                                                            DmNameResolveFlags flags = kNameVerbatim);

    DmCppOperator(InternalConstructor, std::string name, CancellationPolicy cancellationPolicy,
                  std::string packName);
    ~DmCppOperator() override;
    /// @}

    /// @name Symbol declarations
    /// Whether the operator's file declared its symbol in each mangling
    /// scheme. Both hold until the reader finds a key missing; an empty
    /// symbol that was declared stays distinct from one never given.
    /// @{
    bool isMangleNameDeclared(DmMangledName::Type type) const noexcept;
    void setMangleNameDeclared(DmMangledName::Type type, bool declared) noexcept;
    /// @}

    /// @name Overload lock
    /// @{
    /// The owner's answer; false without an owner.
    bool isOverloadsLocked() const override;
    /// Sets the lock on the owner. kFailure without an owner, and for
    /// unlocking while an input of the owner has the auto type.
    DmStatus setOverloadsLocked(bool locked) override;
    /// @}

    /// @name Associated ports
    /// @{
    AssociatedPorts const& getAssociatedPorts() const noexcept { return m_associatedPorts; }
    /// Pairs `first` with `second`, replacing an earlier partner of `first`;
    /// a null `first` does nothing.
    void associatePorts(std::shared_ptr<DmPortDescription const> const& first,
                        std::shared_ptr<DmPortDescription const> second);
    /// The partner of `port`, or null.
    std::shared_ptr<DmPortDescription const> getAssociatedPort(DmPortDescription const* port) const;
    /// @}

    /// @name Job ports
    /// @{
    /// In the order of adding.
    JobPorts const& getJobPorts() const noexcept { return m_jobPorts; }
    /// Makes a job port and appends it; a name already used is not checked.
    std::shared_ptr<DmJobPort> addJobPort(std::string const& name, std::shared_ptr<DmBaseType const> type,
                                          bool complete = true);
    /// @}

    /// @name Ports
    /// The associations follow the port descriptions they name.
    /// @{
    /// Replaces the port of its name; the old description's pairings pass to
    /// the new one, both as a key and as a partner.
    bool replaceExistingPort(std::shared_ptr<DmPortDescription> const& port) override;
    /// Removes the port and every pairing that names it.
    bool removePortDescription(std::shared_ptr<DmPortDescription> const& port) override;
    /// @}

private:
    AssociatedPorts m_associatedPorts;
    JobPorts m_jobPorts;
    bool m_msMangleNameDeclared = true;
    bool m_itaniumMangleNameDeclared = true;
};

} // namespace Kesto
