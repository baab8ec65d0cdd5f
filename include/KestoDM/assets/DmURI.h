#pragma once

#include <KestoDM/foundation/DmEntity.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/LinkedHashMap.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

/// Names a place that definitions come from or go to: a file or a host's
/// stream. Namespaces, types and node definitions point to the URI they were
/// read from, and the writer groups them by it. URIs are kept unique by name
/// in a library's register, so the name is the URI's identity and its key in
/// every map.
///
/// A URI knows, by name, the URIs it needs (its dependencies: a file that
/// uses types of another file depends on that file's URI).
///
/// Abstract in use: made as one of its concrete kinds, DmFileURI or
/// DmStreamURI, and held through std::shared_ptr<DmURI>.
class KESTODM_API DmURI : public DmEntity, public DmInstanceCounter<DmURI> {
public:
    /// URIs by name, in order of insertion.
    using URIMap = LinkedHashMap<std::string, std::shared_ptr<DmURI>, StringHasher, StringCompare>;

    ~DmURI() override;

    /// @name Identity
    /// @{
    std::string const& getName() const noexcept { return m_name; }
    void setName(std::string name);
    /// The key of the URI in maps: a copy of its name.
    std::string getMapEntryKey() const { return m_name; }

    /// Names compared byte by byte, case-sensitively; the kind plays no part.
    bool operator==(DmURI const& other) const noexcept { return m_name == other.m_name; }
    bool operator!=(DmURI const& other) const noexcept { return !(*this == other); }
    bool operator==(std::string const& name) const noexcept { return m_name == name; }
    bool operator!=(std::string const& name) const noexcept { return !(*this == name); }
    /// @}

    /// @name Dependencies
    /// @{
    /// The URIs this one needs, by name, in order of addition. Never null.
    std::shared_ptr<URIMap> const& getDependencies() const noexcept { return m_dependencies; }

    /// Adds `uri` under its name. False for null, for this URI itself, and
    /// when the name is there already (the URI filed first stays).
    bool addDependency(std::shared_ptr<DmURI> const& uri);
    /// Erases the dependency of the same name; false when there was none.
    bool removeDependency(std::shared_ptr<DmURI> const& uri);
    /// Whether this URI needs `uri`, directly or through its dependencies,
    /// matched by name. Each URI is visited once, so cycles end the walk.
    bool hasDependency(std::shared_ptr<DmURI> const& uri) const;
    /// @}

protected:
    explicit DmURI(std::string name);
    /// Copies the name; the copy gets its own map, holding the same URIs, so
    /// that dependencies added to one do not appear in the other.
    DmURI(DmURI const& other);

private:
    std::string m_name;
    std::shared_ptr<URIMap> m_dependencies;
};

/// Equal when the URI's name is the text.
inline bool operator==(std::string const& name, DmURI const& uri) noexcept {
    return uri == name;
}
inline bool operator!=(std::string const& name, DmURI const& uri) noexcept {
    return uri != name;
}

} // namespace Kesto
