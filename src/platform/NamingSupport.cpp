#include <KestoDM/platform/NamingSupport.h>

namespace Kesto {
namespace Internal {

namespace {

// Plain byte tests: the <cctype> ones depend on the locale and reject
// negative chars.
bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isAsciiDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isNameByte(char c) {
    return isAsciiLetter(c) || isAsciiDigit(c) || c == '_';
}

} // namespace

bool NamingSupport::isLegalName(std::string_view name) {
    if (name.empty() || isAsciiDigit(name.front())) {
        return false;
    }
    for (char const c : name) {
        if (!isNameByte(c)) {
            return false;
        }
    }
    return true;
}

void NamingSupport::getLegalName(std::string_view in, std::string& out) {
    out.clear();
    bool hasNameByte = false;
    for (char const c : in) {
        if (isNameByte(c)) {
            hasNameByte = true;
            break;
        }
    }
    if (!hasNameByte) {
        return;
    }
    out.reserve(in.size() + 1);
    if (isAsciiDigit(in.front())) {
        out += '_';
    }
    for (char const c : in) {
        out += isNameByte(c) ? c : '_';
    }
}

} // namespace Internal
} // namespace Kesto
