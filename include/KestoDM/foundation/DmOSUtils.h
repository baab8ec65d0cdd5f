#pragma once

#include <KestoDM/platform/DmExport.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <system_error>
#include <variant>

namespace Kesto {

/// Paths and files. Paths are narrow strings in the native format.
class KESTODM_API DmOSUtils {
public:
    DmOSUtils() = delete;

    /// Owns a FILE*, which it closes when destroyed.
    class KESTODM_API FileHandle {
    public:
        FileHandle() noexcept = default;
        explicit FileHandle(std::FILE* file) noexcept : m_file(file) {}
        FileHandle(FileHandle&& other) noexcept : m_file(other.release()) {}
        FileHandle& operator=(FileHandle&& other) noexcept;
        FileHandle(FileHandle const&) = delete;
        FileHandle& operator=(FileHandle const&) = delete;
        ~FileHandle();

        std::FILE* get() const noexcept { return m_file; }
        /// Gives up ownership; the caller closes the file.
        std::FILE* release() noexcept {
            std::FILE* file = m_file;
            m_file = nullptr;
            return file;
        }
        explicit operator bool() const noexcept { return m_file != nullptr; }

    private:
        std::FILE* m_file = nullptr;
    };

    /// `a / b` in the preferred separators.
    static std::string appendPaths(std::string_view a, std::string_view b);
    /// Whether both name the same existing file; false if either is empty or
    /// cannot be examined.
    static bool equivalentPath(std::string_view a, std::string_view b);

    /// std::fopen, with the descriptor closed on exec so that child processes
    /// do not inherit it. On failure the errno; a null name or mode gives
    /// std::errc::invalid_argument.
    static std::variant<FileHandle, std::errc> fopen(char const* name, char const* mode);

    /// @name Canonical paths
    /// Each resolves `path` against the directory `base` (an absolute path
    /// ignores base; an empty or relative base counts from the current
    /// directory) and writes `out` only on success. An empty path fails.
    /// - Canonical: lexically normal ("." and ".." folded, no trailing
    ///   separator); symbolic links stay.
    /// - Strict: symbolic links resolved; the path must exist.
    /// - Existing: fails when the result does not exist.
    /// @{
    static bool getCanonicalPath(std::string_view path, std::string_view base, std::string& out);
    static bool getExistingCanonicalPath(std::string_view path, std::string_view base, std::string& out);
    static bool getStrictCanonicalPath(std::string_view path, std::string_view base, std::string& out);
    static bool getExistingStrictCanonicalPath(std::string_view path, std::string_view base,
                                               std::string& out);
    /// The existing strict path, relative to the strict form of `base`.
    static bool getExistingStrictRelativePath(std::string_view path, std::string_view base, std::string& out);
    /// @}

    static void getParentPathAndFilename(std::string_view path, std::string& parent, std::string& filename);

    /// Whether the path starts at a root directory. On Linux that means it
    /// begins with "/": there are no root names (drive letters), so a path is
    /// absolute exactly when it has a root directory. Empty is not absolute.
    static bool isAbsolutePath(std::string const& path);

    /// Whether `element` may be one name between separators: not empty, no
    /// blank at either end, none of the bytes 1..31 or *?:[]"<>|(){}&'!\;/,
    /// and no trailing '.' except in "." and "..".
    static bool isValidPathElement(std::string_view element);

private:
    static bool resolvePath(std::string_view path, std::string_view base, bool strict, bool existing,
                            std::string& out);
};

} // namespace Kesto
