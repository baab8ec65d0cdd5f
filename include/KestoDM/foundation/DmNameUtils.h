#pragma once

#include <KestoDM/platform/DmExport.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Kesto {

class DmScope;

/// Finds unique names. A name splits into a base and a trailing number
/// ("node12" is "node" and 12); a clash is resolved by giving the wanted base
/// the number after the highest one in use.
class KESTODM_API DmNameUtils {
public:
    DmNameUtils() = delete;

    struct NewNameContext {
        /// Names that count as taken besides those of the range.
        std::vector<std::string> const* reservedNames = nullptr;
        /// A name to ignore, typically the current name of the entity being
        /// renamed; empty ignores nothing.
        std::string exception;
        /// Renumber even when the wanted name is free.
        bool forceRename = false;
    };

    /// Makes `name` unique among `names` and the reserved names of `context`
    /// (which may be null). A free name stays as it is.
    static void getNewName(std::vector<std::string_view> const& names, std::string& name,
                           NewNameContext const* context);

    /// The same over a range of map entries, whose keys are the names.
    template <class Iterator>
    static void getNewName(Iterator first, Iterator last, std::string& name, NewNameContext const* context) {
        std::vector<std::string_view> names;
        for (; first != last; ++first)
            names.emplace_back(first->first);
        getNewName(names, name, context);
    }

    /// The full path of `scope` ("a::b" for b nested in a under a root; empty
    /// for a root): empties `out`, fills it with DmScope::resolveScopeName and
    /// returns it. Defined with the scopes, in the graph layer.
    static std::string& computeFullScopeName(DmScope const& scope, std::string& out);

private:
    friend struct DmNameUtilsTestAccess;

    /// The name without its trailing number. Leading zeros of the number stay
    /// with the base, so "abc007" gives "abc00".
    static std::string baseString(std::string const& name);
    /// The length of baseString.
    static int leading_len(char const* s);
    /// The trailing number, 0 when there is none; too many digits wrap around.
    static std::int64_t trailing_num(char const* s);

    static int digit(char c) { return c - '0'; }
    static bool isDigit(char c) { return c >= '0' && c <= '9'; }
    static bool isNonZeroDigit(char c) { return c >= '1' && c <= '9'; }
    static int istrlen(char const* s);
};

} // namespace Kesto
