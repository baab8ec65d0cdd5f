#pragma once

#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>

#include <boost/filesystem/path.hpp>

#include <string>
#include <string_view>

namespace Kesto {

/// The URI of a file. Its name is the long file form of the path it was made
/// from ("file:///" + path, or the text itself when it already begins with
/// "file:///"); its path is absolute and lexically canonical, resolved
/// against the base directory it was made with. The name is not derived from
/// the path: "a/b.json" made against "/x" has the name "file:///a/b.json" and
/// the path "/x/a/b.json", and an absolute "/a/b.json" has the name
/// "file:////a/b.json".
///
/// Valid when the path could be made and each of its elements is a valid path
/// element. The file need not exist, so a URI can name the target of a save.
///
/// Made from a path and a base directory; `setPath` points it elsewhere.
/// Held through std::shared_ptr<DmURI>.
class KESTODM_API DmFileURI : public DmURI, public DmInstanceCounter<DmFileURI> {
public:
    /// @name Construction
    /// @{
    /// Resolves `path` against the directory `basePath` (ignored for an
    /// absolute path; empty means the current directory).
    DmFileURI(std::string_view path, std::string_view basePath);
    DmFileURI(DmFileURI const& other);
    ~DmFileURI() override;
    /// @}

    /// @name Path
    /// @{
    /// Renames the URI and resolves its path as the constructor does; returns
    /// isValid(). A path holding "file:///" other than at its start changes
    /// nothing but makes the URI invalid.
    bool setPath(std::string_view path, std::string_view basePath);

    /// The absolute path; empty when it could not be made.
    std::string getFilePath() const;
    /// The directory of the file: the parent of the path.
    std::string getBasePath() const;
    /// @}

    /// @name Queries
    /// @{
    bool isValid() const override;
    /// @}

private:
    void buildPath(std::string_view path, std::string_view basePath);
    bool validatePath() const;

    boost::filesystem::path m_path;
    bool m_valid = false;
};

} // namespace Kesto
