#include <KestoDM/platform/BaMessageRecord.h>

#include <utility>

namespace Kesto {

BaMessageRecord::BaMessageRecord(BaMessageCategory category, std::string location, std::string title,
                                 std::string description, std::string detail, std::string source, int line,
                                 int column)
    : m_category(category), m_location(std::move(location)), m_title(std::move(title)),
      m_description(std::move(description)), m_detail(std::move(detail)), m_source(std::move(source)),
      m_line(line), m_column(column) {}

BaMessageRecord::~BaMessageRecord() = default;

std::string const& BaMessageRecord::getSubject() const {
    return m_location;
}

std::string BaMessageRecord::getFormattedDescription() const {
    std::string line;
    switch (m_category) {
    case BaMessageCategory::kWarning:
        line = "warning: ";
        break;
    case BaMessageCategory::kInfo:
        line = "info: ";
        break;
    default:
        line = "error: ";
        break;
    }
    if (!m_source.empty()) {
        line += m_source;
        if (m_line >= 0) {
            line += ':';
            line += std::to_string(m_line);
            if (m_column >= 0) {
                line += ':';
                line += std::to_string(m_column);
            }
        }
        line += ": ";
    }
    std::string const& subject = getSubject();
    if (!subject.empty()) {
        line += subject;
        line += ": ";
    }
    line += m_title;
    if (!m_description.empty()) {
        line += ": ";
        line += m_description;
    }
    if (!m_detail.empty()) {
        line += " (";
        line += m_detail;
        line += ')';
    }
    return line;
}

} // namespace Kesto
