#include <KestoDM/foundation/DmNameUtils.h>

#include <algorithm>
#include <cstring>

namespace Kesto {

int DmNameUtils::istrlen(char const* s) {
    return static_cast<int>(std::strlen(s));
}

int DmNameUtils::leading_len(char const* s) {
    int const n = istrlen(s);
    if (n == 0)
        return 0;
    int pos = n;
    while (pos > 0 && isDigit(s[pos - 1]))
        --pos;
    while (pos < n && s[pos] == '0')
        ++pos;
    // A number of zeros only keeps its last zero as the number.
    if (pos == n && s[pos - 1] == '0')
        return n - 1;
    return pos;
}

std::int64_t DmNameUtils::trailing_num(char const* s) {
    int const n = istrlen(s);
    int pos = n;
    while (pos > 0 && isDigit(s[pos - 1]))
        --pos;
    // Unsigned so that overlong numbers wrap instead of overflowing.
    std::uint64_t value = 0;
    for (; pos < n; ++pos)
        value = value * 10u + static_cast<std::uint64_t>(digit(s[pos]));
    return static_cast<std::int64_t>(value);
}

std::string DmNameUtils::baseString(std::string const& name) {
    if (name.empty())
        return {};
    return name.substr(0, static_cast<std::size_t>(leading_len(name.c_str())));
}

void DmNameUtils::getNewName(std::vector<std::string_view> const& names, std::string& name,
                             NewNameContext const* context) {
    std::string const base = baseString(name);
    bool const force = context && context->forceRename;
    bool taken = force;
    std::int64_t highest = force ? 0 : -1;

    auto const consider = [&](std::string_view candidate) {
        if (context && !context->exception.empty() && candidate == context->exception)
            return;
        if (candidate == name)
            taken = true;
        std::string const owned(candidate);
        if (baseString(owned) == base)
            highest = std::max(highest, trailing_num(owned.c_str()));
    };
    for (auto const candidate : names)
        consider(candidate);
    if (context && context->reservedNames) {
        for (auto const& candidate : *context->reservedNames)
            consider(candidate);
    }

    if (taken && highest >= 0)
        name = base + std::to_string(static_cast<std::uint64_t>(highest) + 1u);
}

} // namespace Kesto
