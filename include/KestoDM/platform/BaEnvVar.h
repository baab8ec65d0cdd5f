#pragma once

#include <KestoDM/platform/DmExport.h>

#include <string>
#include <string_view>
#include <vector>

namespace Kesto {

/// A typed switch read from the process environment. Every switch of the
/// library is declared in one table so that tools can list them all.
///
/// Values are read from the environment at every call, never cached; an
/// unset variable gives the default text.
///
/// Boolean text: a whole-text integer is true when non-zero; "true", "yes"
/// and "on" in any case are true; anything else ("", "false", "off",
/// garbage) is false.
///
/// Integer text: the whole text must be a decimal integer with an optional
/// '+' or '-' sign and fit a long long; otherwise the default is used.
class KESTODM_API BaEnvVar {
public:
    enum class Kind { kBool, kInt, kString };

    std::string const& getName() const { return m_name; }
    Kind getKind() const { return m_kind; }
    std::string const& getDefault() const { return m_default; }
    std::string const& getDescription() const { return m_description; }

    /// True when the variable is present in the environment, even if empty.
    bool isSet() const;
    bool getBool() const;
    long long getInt() const;
    /// The environment text, or the default when unset.
    std::string getString() const;

    /// The declared switch of that name, or null.
    static BaEnvVar const* find(std::string_view name);
    /// Every declared switch, in declaration order. Lives until process end,
    /// so it may be used from static destructors.
    static std::vector<BaEnvVar const*> const& getAll();

    /// By name; an undeclared name gives false, 0 or "".
    static bool getBool(std::string_view name);
    static long long getInt(std::string_view name);
    static std::string getString(std::string_view name);

    /// Replaces `$NAME` and `${NAME}` (NAME = [A-Za-z_][A-Za-z0-9_]*, the
    /// longest such run after a bare `$`) by the value of that environment
    /// variable, any variable, declared or not; an unset one gives "".
    /// A `$` followed by neither a name start nor `{` stays as it is, and so
    /// does a `${` with no closing `}` or with an invalid name before it.
    static std::string expandEnvironmentPath(std::string_view path);

private:
    BaEnvVar(std::string name, Kind kind, std::string defaultValue, std::string description);
    static std::vector<BaEnvVar> const& table();
    std::string currentText() const;

    std::string m_name;
    Kind m_kind;
    std::string m_default;
    std::string m_description;
};

} // namespace Kesto
