#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/BaMessageRecord.h>
#include <KestoDM/platform/BaMessageTypes.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

class DmNamedEntity;

/// One message of the log: a category, a short title, a description and
/// optional detail and source position, about an entity or a location.
/// The report holds its entity weakly and works out the entity's full name
/// only when first asked, so reporting is cheap and never keeps an entity alive.
class KESTODM_API DmMessageReport : public BaMessageRecord, public DmInstanceCounter<DmMessageReport> {
public:
    /// @name Construction
    /// Every caller gives finished text; nothing is composed here.
    /// @{
    DmMessageReport(std::shared_ptr<DmNamedEntity const> const& entity,
                    BaMessageTypes::MessageCategory category, std::string title, std::string description);
    DmMessageReport(std::shared_ptr<DmNamedEntity const> const& entity,
                    BaMessageTypes::MessageCategory category, std::string title, std::string description,
                    std::string detail);
    DmMessageReport(std::shared_ptr<DmNamedEntity const> const& entity,
                    BaMessageTypes::MessageCategory category, std::string title, std::string description,
                    std::string detail, int line, int column);
    DmMessageReport(std::shared_ptr<DmNamedEntity const> const& entity,
                    BaMessageTypes::MessageCategory category, std::string title, std::string description,
                    std::string detail, std::string source, int line, int column);
    /// A report about no entity; `location` says what it is about ("<value>").
    DmMessageReport(BaMessageTypes::MessageCategory category, std::string location, std::string title,
                    std::string description);
    ~DmMessageReport() override;
    /// @}

    /// @name Queries
    /// @{
    std::weak_ptr<DmNamedEntity const> const& getEntity() const noexcept { return m_entity; }
    /// The entity's full name, fixed at the first call; "<unknown>" when the
    /// entity is gone by then or there never was one.
    virtual std::string const& getEntityName() const;
    BaMessageTypes::MessageCategory getInternalCategory() const noexcept { return m_internalCategory; }
    /// What the printed line names: the entity when the report has one, else the location.
    std::string const& getSubject() const override;
    /// @}

    /// The record category of a message category: errors up to 3, then warning, then info.
    static BaMessageCategory toRecordCategory(BaMessageTypes::MessageCategory category) noexcept;

private:
    std::weak_ptr<DmNamedEntity const> m_entity;
    mutable std::string m_entityName;
    BaMessageTypes::MessageCategory m_internalCategory;
};

} // namespace Kesto
