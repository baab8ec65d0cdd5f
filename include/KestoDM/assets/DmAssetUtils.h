#pragma once

#include <KestoDM/platform/BaIndexedVector.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/String.h>

#include <memory>
#include <string>

namespace Kesto {

class DmAssetReference;
class DmAssetResolverContext;

/// The steps of a file search, shared by the file resolvers.
///
/// Every try asks the library's table of JSON files first: when the try's
/// directory has been listed, the table's answer stands and the file system
/// is not touched (a file made after the listing stays missing until
/// DmLibrary::reset). Otherwise the path must exist once made canonical,
/// symbolic links resolved. A successful try resolves the reference with the
/// try's path as file and "file:" + that path as identity; a failed one sets
/// kFileNotFound.
///
/// In the relative and search-path tries a path that begins with "/" counts
/// from the try's directory, so that "file:///a.json" is tried as "/a.json"
/// and then as "a.json" in each directory.
///
/// Static functions only.
class KESTODM_API DmAssetUtils {
public:
    DmAssetUtils() = delete;

    /// @name Paths
    /// @{
    /// Drops the "/" in front of a drive letter, which the long file form
    /// leaves there ("/C:/a.json" becomes "C:/a.json"). Any other path, a
    /// rooted one ("/home/a.json") included, is left alone.
    static void adjustURIPath(std::string& path);
    /// @}

    /// @name Tries
    /// Each returns whether the reference is now resolved.
    /// @{
    /// Tries `path` as it stands when it is absolute; false, changing nothing, when it is not.
    static bool updateAssetFromAbsolutePath(std::shared_ptr<DmAssetReference> const& reference,
                                            std::shared_ptr<DmAssetResolverContext> const& context,
                                            std::string const& path);
    /// Tries `path` in the directory of the context's relative reference;
    /// false, changing nothing, when the context has no such reference with a file.
    static bool updateAssetFromRelativePath(std::shared_ptr<DmAssetReference> const& reference,
                                            std::shared_ptr<DmAssetResolverContext> const& context,
                                            std::string const& path);
    /// Tries `path` in each search path in order, up to the first hit; false,
    /// changing nothing, when there are none.
    static bool updateAssetFromSearchPaths(std::shared_ptr<DmAssetReference> const& reference,
                                           std::shared_ptr<DmAssetResolverContext> const& context,
                                           BaIndexedVector<String> const& searchPaths,
                                           std::string const& path);
    /// The tries of a file spec in their order: the spec's path (adjusted) as
    /// an absolute path, next to the referring file, then in each search path
    /// when `searchPaths` is given. False for a spec without a path.
    static bool resolveFileSpec(std::shared_ptr<DmAssetReference> const& reference,
                                std::shared_ptr<DmAssetResolverContext> const& context,
                                BaIndexedVector<String> const* searchPaths);
    /// @}
};

} // namespace Kesto
