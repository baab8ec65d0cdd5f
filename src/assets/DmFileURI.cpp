#include <KestoDM/assets/DmFileURI.h>

#include <KestoDM/assets/DmURIParser.h>
#include <KestoDM/foundation/DmOSUtils.h>

namespace fs = boost::filesystem;

namespace Kesto {

DmFileURI::DmFileURI(std::string_view path, std::string_view basePath) : DmURI(std::string()) {
    buildPath(path, basePath);
}

DmFileURI::DmFileURI(DmFileURI const& other)
    : DmURI(other), DmInstanceCounter<DmFileURI>(other), m_path(other.m_path), m_valid(other.m_valid) {}

DmFileURI::~DmFileURI() = default;

bool DmFileURI::setPath(std::string_view path, std::string_view basePath) {
    buildPath(path, basePath);
    return isValid();
}

std::string DmFileURI::getFilePath() const {
    return m_path.string();
}

std::string DmFileURI::getBasePath() const {
    return m_path.parent_path().string();
}

bool DmFileURI::isValid() const {
    return m_valid;
}

void DmFileURI::buildPath(std::string_view path, std::string_view basePath) {
    std::string_view const longForm = DmURIParser::kFileSchemeLongForm;
    std::size_t const found = path.find(longForm);
    if (found != 0 && found != std::string_view::npos) {
        // "x/file:///y" is no path and no URI: keep the old name and path.
        m_valid = false;
        return;
    }
    std::string name;
    if (found == 0) {
        name = path;
    } else {
        name = longForm;
        name += path;
    }
    setName(std::move(name));

    // The name is kept as it was given; only the path is resolved. So the
    // long form of a relative path and the bare path name the same URI.
    std::string_view const relative = std::string_view(getName()).substr(longForm.size());
    std::string canonical;
    if (DmOSUtils::getCanonicalPath(relative, basePath, canonical)) {
        // The canonical form drops a trailing separator, but a path that ends
        // in one names a directory, not a file: keep the separator so that the
        // path shows it and validatePath finds no file name.
        if (!relative.empty() && relative.back() == '/' && canonical.back() != '/')
            canonical += '/';
        m_path = canonical;
    } else {
        m_path.clear();
    }
    m_path.make_preferred();
    m_valid = validatePath();
}

bool DmFileURI::validatePath() const {
    if (m_path.empty())
        return false;

    // The file name is what follows the last separator. Boost would call it
    // "." for a path that ends in one; here that is an empty name.
    std::string const& text = m_path.native();
    if (text.back() == fs::path::preferred_separator || text.back() == '/')
        return false;
    std::string const fileName = m_path.filename().string();
    if (fileName.empty() || !DmOSUtils::isValidPathElement(fileName))
        return false;

    fs::path const parent = m_path.parent_path();
    auto element = parent.begin();
    if (parent.has_root_name() && element != parent.end())
        ++element;
    if (element != parent.end() && element->string() == "/")
        ++element;
    for (; element != parent.end(); ++element) {
        std::string const part = element->string();
        if (part != "." && part != ".." && !DmOSUtils::isValidPathElement(part))
            return false;
    }
    return true;
}

} // namespace Kesto
