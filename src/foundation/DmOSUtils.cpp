#include <KestoDM/foundation/DmOSUtils.h>

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>

#include <cerrno>
#include <cstring>

#if !defined(__GLIBC__) && !defined(_WIN32)
#include <fcntl.h>
#endif

namespace fs = boost::filesystem;

namespace Kesto {

namespace {

// Boost 1.74 paths do not take a string_view.
fs::path toPath(std::string_view s) {
    return fs::path(s.begin(), s.end());
}

} // namespace

DmOSUtils::FileHandle& DmOSUtils::FileHandle::operator=(FileHandle&& other) noexcept {
    if (this != &other) {
        if (m_file)
            std::fclose(m_file);
        m_file = other.release();
    }
    return *this;
}

DmOSUtils::FileHandle::~FileHandle() {
    if (m_file)
        std::fclose(m_file);
}

std::string DmOSUtils::appendPaths(std::string_view a, std::string_view b) {
    fs::path result = toPath(a);
    result /= toPath(b);
    result.make_preferred();
    return result.string();
}

bool DmOSUtils::equivalentPath(std::string_view a, std::string_view b) {
    if (a.empty() || b.empty())
        return false;
    boost::system::error_code ec;
    bool const same = fs::equivalent(toPath(a), toPath(b), ec);
    return !ec && same;
}

std::variant<DmOSUtils::FileHandle, std::errc> DmOSUtils::fopen(char const* name, char const* mode) {
    if (!name || !mode)
        return std::errc::invalid_argument;
    std::string fullMode(mode);
#if defined(__GLIBC__)
    fullMode += 'e'; // O_CLOEXEC at open, so no fork in between can leak it
#elif defined(_WIN32)
    fullMode += 'N';
#endif
    errno = 0;
    std::FILE* file = std::fopen(name, fullMode.c_str());
    if (!file)
        return errno != 0 ? static_cast<std::errc>(errno) : std::errc::io_error;
#if !defined(__GLIBC__) && !defined(_WIN32)
    int const fd = ::fileno(file);
    ::fcntl(fd, F_SETFD, ::fcntl(fd, F_GETFD) | FD_CLOEXEC);
#endif
    return FileHandle(file);
}

bool DmOSUtils::resolvePath(std::string_view path, std::string_view base, bool strict, bool existing,
                            std::string& out) {
    if (path.empty())
        return false;
    boost::system::error_code ec;
    fs::path resolved = toPath(path);
    if (!resolved.is_absolute()) {
        fs::path const dir = fs::absolute(toPath(base), ec);
        if (ec)
            return false;
        resolved = dir / resolved;
    }
    if (strict) {
        // A path that need not exist keeps its missing tail, resolved up to there.
        resolved = existing ? fs::canonical(resolved, ec) : fs::weakly_canonical(resolved, ec);
        if (ec)
            return false;
    } else {
        resolved = resolved.lexically_normal();
        // Boost keeps a trailing separator as a "." element; canonical never
        // ends in one, so drop it here too.
        if (resolved.filename() == "." && resolved.has_relative_path())
            resolved = resolved.parent_path();
    }
    if (existing && !fs::exists(resolved, ec))
        return false;
    out = resolved.string();
    return true;
}

bool DmOSUtils::getCanonicalPath(std::string_view path, std::string_view base, std::string& out) {
    return resolvePath(path, base, false, false, out);
}

bool DmOSUtils::getExistingCanonicalPath(std::string_view path, std::string_view base, std::string& out) {
    return resolvePath(path, base, false, true, out);
}

bool DmOSUtils::getStrictCanonicalPath(std::string_view path, std::string_view base, std::string& out) {
    return resolvePath(path, base, true, false, out);
}

bool DmOSUtils::getExistingStrictCanonicalPath(std::string_view path, std::string_view base,
                                               std::string& out) {
    return resolvePath(path, base, true, true, out);
}

bool DmOSUtils::getExistingStrictRelativePath(std::string_view path, std::string_view base,
                                              std::string& out) {
    std::string target;
    if (!resolvePath(path, base, true, true, target))
        return false;
    boost::system::error_code ec;
    fs::path dir = fs::absolute(toPath(base), ec);
    if (!ec)
        dir = fs::canonical(dir, ec);
    if (ec)
        return false;
    fs::path const relative = fs::path(target).lexically_relative(dir);
    if (relative.empty())
        return false;
    out = relative.string();
    return true;
}

void DmOSUtils::getParentPathAndFilename(std::string_view path, std::string& parent, std::string& filename) {
    fs::path const p = toPath(path);
    parent = p.parent_path().string();
    filename = p.filename().string();
}

bool DmOSUtils::isAbsolutePath(std::string const& path) {
#if defined(_WIN32)
    return toPath(path).has_root_directory();
#else
    return !path.empty() && path.front() == '/';
#endif
}

bool DmOSUtils::isValidPathElement(std::string_view element) {
    if (element.empty())
        return false;
    if (element.front() == ' ' || element.back() == ' ')
        return false;
    static constexpr std::string_view kForbiddenSymbols = "*?:[]\"<>|(){}&'!\\;/";
    for (char const c : element) {
        auto const byte = static_cast<unsigned char>(c);
        if ((byte >= 1 && byte <= 31) || kForbiddenSymbols.find(c) != std::string_view::npos)
            return false;
    }
    if (element.back() != '.' || element.size() == 1)
        return true;
    return element == "..";
}

} // namespace Kesto
