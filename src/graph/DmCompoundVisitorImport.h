#pragma once

#include "graph/DmCompoundVisitor.h"

#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

class DmMetadata;
class DmNode;
class DmPort;
class DmScope;

/// Copies a compound, node by node, into a scope under a new name. The walk
/// never stops early: a failing step records kFailure and the copy goes on,
/// as complete as it can be, but only a walk without failure hands it out.
class KESTODM_API DmCompoundVisitorImport : public DmCompoundVisitor<DmCompoundVisitorImport> {
public:
    DmCompoundVisitorImport(std::shared_ptr<DmCompound const> source, std::string name,
                            std::shared_ptr<DmScope> scope, DmNodeDef::ImportErrorFlags flags);

    std::shared_ptr<DmCompound> const& getImportedCompound() const noexcept { return m_imported; }
    DmStatus getStatus() const noexcept { return m_status; }
    bool checkStatus() const noexcept { return m_status == DmStatus::kSuccess; }

    /// @name Hooks of the walk
    /// @{
    void preVisit();
    void visitMetadata(DmMetadata const& metadata);
    void visitDefaultDisabledTerminals(DmCompound const& source);
    void visitPortDescription(DmPortDescription const& port);
    void visitNestedCompound(std::shared_ptr<DmCompound> const& nested);
    void visitNode(std::shared_ptr<DmNode> const& node);
    void visitConnection(DmConnection const& connection);
    void postVisit();
    /// @}

private:
    void fail() noexcept { m_status = DmStatus::kFailure; }
    /// The definition a copied node is made on: a private definition is
    /// replaced by its copy in the imported compound.
    std::shared_ptr<DmNodeDef> definitionFor(DmNode const& node) const;
    /// Copies a port's default value, metadata and watch point, then those of
    /// its entries and members.
    void copyPortState(DmPort const& source, DmPort& target);
    /// The port of the copy that stands where `port` stands in the source.
    std::shared_ptr<DmPort> counterpart(DmPort const& port) const;

    std::string m_name;
    std::shared_ptr<DmScope> m_scope;
    std::shared_ptr<DmCompound> m_imported;
    DmStatus m_status = DmStatus::kSuccess;
    DmNodeDef::ImportErrorFlags m_flags;
};

} // namespace Kesto
