#include <KestoDM/assets/DmURIParser.h>

#include <utility>

namespace Kesto {

namespace {

// The index of the colon that ends a spec's scheme key, or npos when the spec
// has no key. Only first occurrences count: the colon must come before every
// "?", "#" and "/".
std::size_t schemeKeyEnd(std::string const& spec) {
    std::size_t const colon = spec.find(':');
    if (colon == std::string::npos || colon > spec.find_first_of("?#/"))
        return std::string::npos;
    return colon;
}

} // namespace

DmURIParser::DmURIParser() = default;

DmURIParser::DmURIParser(std::string spec) : m_spec(std::move(spec)) {
    parse();
}

DmURIParser::DmURIParser(DmURIParser const& other) = default;

DmURIParser& DmURIParser::operator=(DmURIParser const& other) = default;

DmURIParser::~DmURIParser() = default;

std::shared_ptr<DmURIParser> DmURIParser::newURIParser() {
    return std::make_shared<DmURIParser>();
}

std::shared_ptr<DmURIParser> DmURIParser::newURIParser(std::string const& spec) {
    return std::make_shared<DmURIParser>(spec);
}

void DmURIParser::setScheme(std::string scheme) {
    m_scheme = std::move(scheme);
}

void DmURIParser::setNetLoc(std::string netLoc) {
    m_netLoc = std::move(netLoc);
}

void DmURIParser::setPath(std::string path) {
    m_path = std::move(path);
}

void DmURIParser::setQuery(std::string query) {
    m_query = std::move(query);
}

void DmURIParser::setFragment(std::string fragment) {
    m_fragment = std::move(fragment);
}

void DmURIParser::setSpec(std::string spec) {
    m_spec = std::move(spec);
}

void DmURIParser::parse() {
    std::string rest = m_spec;

    // The fragment and the query are cut at their last marker, so a "?" inside
    // a fragment stays in the fragment, and so does a second "#".
    std::size_t const hash = rest.rfind('#');
    if (hash != std::string::npos) {
        m_fragment = rest.substr(hash + 1);
        rest.erase(hash);
    }
    std::size_t const question = rest.rfind('?');
    if (question != std::string::npos) {
        m_query = rest.substr(question + 1);
        rest.erase(question);
    }

    // A colon after the first slash belongs to the path ("/a/b:c.json").
    std::size_t const colon = rest.find(':');
    std::size_t const slash = rest.find('/');
    if (colon != std::string::npos && (slash == std::string::npos || colon < slash)) {
        m_scheme = rest.substr(0, colon);
        rest.erase(0, colon + 1);
    }

    if (rest.compare(0, 2, "//") == 0) {
        std::size_t const pathStart = rest.find('/', 2);
        if (pathStart != std::string::npos) {
            m_netLoc = rest.substr(2, pathStart - 2);
            rest.erase(0, pathStart);
        } else {
            m_netLoc = rest.substr(2);
            rest.clear();
        }
    }

    m_path = std::move(rest);
}

std::string const& DmURIParser::build(bool forceNetLoc) {
    m_spec.clear();
    if (!m_scheme.empty()) {
        m_spec += m_scheme;
        m_spec += ':';
    }
    bool const withNetLoc = forceNetLoc || !m_netLoc.empty();
    if (withNetLoc) {
        m_spec += "//";
        m_spec += m_netLoc;
    }
    if (!m_path.empty()) {
        // After a network location the path must start a new segment.
        if (withNetLoc && m_path.front() != '/')
            m_spec += '/';
        m_spec += m_path;
    }
    if (!m_query.empty()) {
        m_spec += '?';
        m_spec += m_query;
    }
    if (!m_fragment.empty()) {
        m_spec += '#';
        m_spec += m_fragment;
    }
    return m_spec;
}

std::string DmURIParser::buildSpec(std::string const& scheme, std::string const& netLoc,
                                   std::string const& path, std::string const& query,
                                   std::string const& fragment) {
    DmURIParser parser;
    parser.m_scheme = scheme;
    parser.m_netLoc = netLoc;
    parser.m_path = path;
    parser.m_query = query;
    parser.m_fragment = fragment;
    return parser.build(false);
}

std::string DmURIParser::buildFileSpec(std::string const& path) {
    DmURIParser parser;
    parser.m_scheme = kFileSchemeKey;
    parser.m_path = path;
    return parser.build(false);
}

std::string DmURIParser::buildFilePathsSpec(std::string const& path) {
    DmURIParser parser;
    parser.m_scheme = kFilePathsSchemeKey;
    parser.m_path = path;
    return parser.build(false);
}

std::string DmURIParser::getSchemeKey(std::string const& spec) {
    std::size_t const colon = schemeKeyEnd(spec);
    return colon == std::string::npos ? std::string() : spec.substr(0, colon);
}

std::string DmURIParser::stripSchemeKey(std::string const& spec) {
    std::size_t const colon = schemeKeyEnd(spec);
    return colon == std::string::npos ? spec : spec.substr(colon + 1);
}

} // namespace Kesto
