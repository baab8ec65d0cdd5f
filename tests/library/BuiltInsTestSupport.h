#pragma once

#include <string>
#include <vector>

namespace KestoTest {

/// The namespaces every library is born with, by full name, in the order of
/// a walk of the global namespace.
inline std::vector<std::string> const& builtInNamespaceNames() {
    static std::vector<std::string> const names{
        "Core",        "Core::Logic", "Core::Graph",          "Core::Internal",
        "Core::Array", "Core::Error", "Core::Type_Conversion"};
    return names;
}

/// The names that do not lie under the built-in "Core" namespace.
inline std::vector<std::string> withoutBuiltIns(std::vector<std::string> const& names) {
    std::vector<std::string> kept;
    for (auto const& name : names) {
        if (name != "Core" && name.rfind("Core::", 0) != 0) {
            kept.push_back(name);
        }
    }
    return kept;
}

} // namespace KestoTest
