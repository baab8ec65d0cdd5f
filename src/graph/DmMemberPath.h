#pragma once

#include <string>
#include <string_view>

namespace Kesto {

/// Finds the member at a "."-separated `path` below an owner whose members
/// are `members` (may be null): the first component here, the rest through
/// the member's own getMember. False when a component is missing.
template <class MemberMap, class Out>
bool findMemberByPath(MemberMap const* members, std::string const& path, Out& out) {
    if (members == nullptr || members->empty()) {
        return false;
    }
    std::string::size_type const dot = path.find('.');
    auto const found = members->find(std::string_view(path).substr(0, dot));
    if (found == members->end()) {
        return false;
    }
    if (dot == std::string::npos) {
        out = found->second;
        return true;
    }
    return found->second->getMember(path.substr(dot + 1), out);
}

} // namespace Kesto
