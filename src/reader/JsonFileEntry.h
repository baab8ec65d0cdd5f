#pragma once

#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/platform/DmExport.h>

#include "reader/JsonReader.h"

namespace Kesto::Internal {

/// One graph file to be read into a library: its URI, the asset it resolved
/// to, and how its definitions are placed. read() checks that the file is
/// new to the library and is a graph file at all, marks it as loaded (which
/// ends cycles of dependencies) and runs the reader over it.
class KESTODM_API JsonFileEntry {
public:
    explicit JsonFileEntry(JsonReadContext context);

    /// kSuccess also for a file that was read before (unless reloading);
    /// kFileError for a missing or unreadable asset; the parse failure (5);
    /// kInvalidArgument for a text that is no graph file; else the reader's status.
    DmStatus read();

    /// Whether `root` has a header with the format version item.
    static bool hasFormatVersion(rapidjson::Value const& root);

private:
    DmStatus assetFailure() const;
    void report(int category, std::string title, std::string description) const;

    JsonReadContext m_context;
};

} // namespace Kesto::Internal
