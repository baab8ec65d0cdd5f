#include <KestoDM/foundation/DmMessageReport.h>

#include <KestoDM/foundation/DmNamedEntity.h>

namespace Kesto {

namespace {

bool hasOwner(std::weak_ptr<DmNamedEntity const> const& entity) noexcept {
    std::weak_ptr<DmNamedEntity const> const none;
    return entity.owner_before(none) || none.owner_before(entity);
}

} // namespace

BaMessageCategory DmMessageReport::toRecordCategory(BaMessageTypes::MessageCategory category) noexcept {
    if (category == BaMessageTypes::kMessageWarning) {
        return BaMessageCategory::kWarning;
    }
    if (category == BaMessageTypes::kMessageInfo) {
        return BaMessageCategory::kInfo;
    }
    return BaMessageCategory::kError;
}

DmMessageReport::DmMessageReport(std::shared_ptr<DmNamedEntity const> const& entity,
                                 BaMessageTypes::MessageCategory category, std::string title,
                                 std::string description)
    : DmMessageReport(entity, category, std::move(title), std::move(description), std::string(),
                      std::string(), -1, -1) {}

DmMessageReport::DmMessageReport(std::shared_ptr<DmNamedEntity const> const& entity,
                                 BaMessageTypes::MessageCategory category, std::string title,
                                 std::string description, std::string detail)
    : DmMessageReport(entity, category, std::move(title), std::move(description), std::move(detail),
                      std::string(), -1, -1) {}

DmMessageReport::DmMessageReport(std::shared_ptr<DmNamedEntity const> const& entity,
                                 BaMessageTypes::MessageCategory category, std::string title,
                                 std::string description, std::string detail, int line, int column)
    : DmMessageReport(entity, category, std::move(title), std::move(description), std::move(detail),
                      std::string(), line, column) {}

DmMessageReport::DmMessageReport(std::shared_ptr<DmNamedEntity const> const& entity,
                                 BaMessageTypes::MessageCategory category, std::string title,
                                 std::string description, std::string detail, std::string source, int line,
                                 int column)
    : BaMessageRecord(toRecordCategory(category), std::string(), std::move(title), std::move(description),
                      std::move(detail), std::move(source), line, column),
      m_entity(entity), m_internalCategory(category) {}

DmMessageReport::DmMessageReport(BaMessageTypes::MessageCategory category, std::string location,
                                 std::string title, std::string description)
    : BaMessageRecord(toRecordCategory(category), std::move(location), std::move(title),
                      std::move(description), std::string(), std::string(), -1, -1),
      m_internalCategory(category) {}

DmMessageReport::~DmMessageReport() = default;

std::string const& DmMessageReport::getEntityName() const {
    if (!m_entityName.empty()) {
        return m_entityName;
    }
    if (std::shared_ptr<DmNamedEntity const> const entity = m_entity.lock()) {
        entity->resolveFullName(m_entityName);
    }
    if (m_entityName.empty()) {
        m_entityName = "<unknown>";
    }
    return m_entityName;
}

std::string const& DmMessageReport::getSubject() const {
    if (hasOwner(m_entity)) {
        return getEntityName();
    }
    return getLocation();
}

} // namespace Kesto
