#pragma once

#include <KestoDM/platform/BaMessageCategory.h>
#include <KestoDM/platform/BaMessageRecordContainer.h>
#include <KestoDM/platform/DmExport.h>

#include <string>

namespace Kesto {

/// One message: a category, what it is about, a title, a description, an
/// optional detail and an optional source position. A record may hold
/// nested records (its own container), e.g. the causes of an error.
class KESTODM_API BaMessageRecord : public BaMessageRecordContainer {
public:
    /// `line` and `column` are -1 when there is no position.
    BaMessageRecord(BaMessageCategory category, std::string location, std::string title,
                    std::string description, std::string detail, std::string source, int line, int column);
    ~BaMessageRecord() override;

    BaMessageCategory getCategory() const { return m_category; }
    std::string const& getLocation() const { return m_location; }
    std::string const& getTitle() const { return m_title; }
    std::string const& getDescription() const { return m_description; }
    std::string const& getDetailedDescription() const { return m_detail; }
    std::string const& getSource() const { return m_source; }
    int getLine() const { return m_line; }
    int getColumn() const { return m_column; }

    /// What the printed line names; the location here. Subclasses that know
    /// an entity give its full name instead.
    virtual std::string const& getSubject() const;

    /// The record as one line, without its nested records:
    /// `error: <source>:<line>:<column>: <subject>: <title>: <description> (<detail>)`,
    /// where each empty part (and its separator) is left out, the column only
    /// shown with a line, and the prefix is `warning:` or `info:` for those
    /// categories (any other category prints as an error).
    std::string getFormattedDescription() const;

private:
    BaMessageCategory m_category;
    std::string m_location;
    std::string m_title;
    std::string m_description;
    std::string m_detail;
    std::string m_source;
    int m_line;
    int m_column;
};

} // namespace Kesto
