#pragma once

#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

/// Splits a URI spec into scheme, network location, path, query and fragment,
/// and puts those five together again:
///
///     scheme:[//netLoc]path[?query][#fragment]
///
/// The syntax is close to RFC 3986 but is the library's own: nothing is
/// escaped, decoded or validated, and any text splits into some parts. `parse`
/// takes the last "#" and the last "?", while the scheme key split
/// (`getSchemeKey`, `stripSchemeKey`) looks at first occurrences only, so that
/// a colon inside a query or fragment never counts as the end of a key.
///
/// Made on a spec (which is parsed at once) or empty and filled part by part;
/// `newURIParser` gives a shared one. A plain value: copies are independent.
class KESTODM_API DmURIParser {
public:
    /// @name Scheme keys
    /// The schemes the library resolves, as bare keys, with their colon, and in
    /// the long form that URI names use.
    /// @{
    static constexpr char kFileSchemeKey[] = "file";
    static constexpr char kFileScheme[] = "file:";
    static constexpr char kFileSchemeLongForm[] = "file:///";
    static constexpr char kFilePathsSchemeKey[] = "halvern";
    static constexpr char kFilePathsScheme[] = "halvern:";
    static constexpr char kStreamSchemeKey[] = "stream";
    static constexpr char kStreamScheme[] = "stream:";
    static constexpr char kStreamSchemeLongForm[] = "stream:/";
    /// @}

    /// @name Construction
    /// @{
    /// Every part empty.
    DmURIParser();
    /// Takes the spec and parses it.
    explicit DmURIParser(std::string spec);
    DmURIParser(DmURIParser const& other);
    DmURIParser& operator=(DmURIParser const& other);
    virtual ~DmURIParser();

    static std::shared_ptr<DmURIParser> newURIParser();
    static std::shared_ptr<DmURIParser> newURIParser(std::string const& spec);
    /// @}

    /// @name Parts
    /// @{
    std::string const& getSpec() const noexcept { return m_spec; }
    std::string const& getScheme() const noexcept { return m_scheme; }
    std::string const& getNetLoc() const noexcept { return m_netLoc; }
    /// With its leading "/" when the spec had one.
    std::string const& getPath() const noexcept { return m_path; }
    std::string const& getQuery() const noexcept { return m_query; }
    std::string const& getFragment() const noexcept { return m_fragment; }

    /// Each setter changes its part only; the spec is stale until `build`.
    void setScheme(std::string scheme);
    void setNetLoc(std::string netLoc);
    void setPath(std::string path);
    void setQuery(std::string query);
    void setFragment(std::string fragment);
    /// Replaces the spec and leaves the parts as they are until `parse`.
    void setSpec(std::string spec);
    /// @}

    /// @name Splitting and building
    /// @{
    /// Splits the spec. Only the parts that the spec has are written (the
    /// path always is): a second parse of a spec that lacks, say, a query
    /// keeps the query of the first. Make a new parser for a new spec.
    void parse();

    /// Rebuilds the spec from the parts and returns it. "//" and the network
    /// location are written when there is a network location or when
    /// `forceNetLoc` asks for them; a path that does not begin with "/" is
    /// then given one.
    std::string const& build(bool forceNetLoc);

    /// The spec of those parts, as `build(false)` makes it.
    static std::string buildSpec(std::string const& scheme, std::string const& netLoc,
                                 std::string const& path, std::string const& query,
                                 std::string const& fragment);
    /// "file:" followed by the path (`/a/b` gives `file:/a/b`).
    static std::string buildFileSpec(std::string const& path);
    /// "halvern:" followed by the path.
    static std::string buildFilePathsSpec(std::string const& path);
    /// @}

    /// @name Scheme keys of specs
    /// A spec has a key when its first ":" comes before its first "?", "#"
    /// and "/" (each counting as infinitely far when absent).
    /// @{
    /// The text before that colon, or empty when the spec has no key.
    static std::string getSchemeKey(std::string const& spec);
    /// The text after that colon, or the whole spec when it has no key.
    static std::string stripSchemeKey(std::string const& spec);
    /// @}

private:
    std::string m_spec;
    std::string m_scheme;
    std::string m_netLoc;
    std::string m_path;
    std::string m_query;
    std::string m_fragment;
};

} // namespace Kesto
