#include "reader/DmJsonFormat.h"

#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include <cerrno>
#include <climits>
#include <cstdlib>

namespace Kesto::Internal::JsonFormat {

namespace {

bool isSpace(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

bool isOrdinary(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

void replaceFirst(std::string& text, std::string_view from, std::string_view to) {
    std::size_t const at = text.find(from);
    if (at != std::string::npos) {
        text.replace(at, from.size(), to);
    }
}

struct ConventionSpelling {
    std::string_view text;
    CppPassingConvention convention;
};

// Writing order; the read-only synonym comes last so that the writer never finds it first.
constexpr ConventionSpelling kConventions[] = {
    {"byValue", kPassByValue},
    {"byReference", kPassByReference},
    {"byPtrValue", kPassByPtrValue},
    {"byReferenceToPtr", kPassByReferenceToPtr},
    {"byReturnValue", kPassByReturnValue},
    {"byMutablePtrValue", kPassByMutablePtrValue},
    {"byReferenceToMutablePtr", kPassByReferenceToMutablePtr},
    {"byPtrConstValue", kPassByPtrValue},
};

} // namespace

std::string_view sectionKey(Section section) noexcept {
    switch (section) {
    case kNoSection:
        return {};
    case kHeader:
        return Key::kHeader;
    case kDependencies:
        return Key::kDependencies;
    case kNamespaces:
        return Key::kNamespaces;
    case kTypes:
        return Key::kTypes;
    case kGlobalVariables:
        return Key::kGlobalVariables;
    case kOperators:
        return Key::kOperators;
    case kTerminalNodes:
        return Key::kTerminalNodes;
    case kPorts:
    case kWhileCompoundPorts:
    case kIterateCompoundPorts:
    case kForEachCompoundPorts:
        return Key::kPorts;
    case kJobPorts:
        return Key::kJobPorts;
    case kCompounds:
        return Key::kCompounds;
    case kCompoundNodes:
        return Key::kCompoundNodes;
    case kConnections:
        return Key::kConnections;
    case kValues:
        return Key::kValues;
    case kWatchPoints:
        return Key::kWatchPoints;
    case kReservedNodeNames:
        return Key::kReservedNodeNames;
    case kStructMembers:
        return Key::kStructMembers;
    case kEnumMembers:
        return Key::kEnumMembers;
    case kMetadata:
        return Key::kMetadata;
    case kMethods:
        return Key::kMethods;
    case kWhileCompound:
        return Key::kWhileCompound;
    case kIterateCompound:
        return Key::kIterateCompound;
    case kForEachCompound:
        return Key::kForEachCompound;
    }
    return {};
}

bool isTrueText(std::string_view text) noexcept {
    return text == "true" || text == "TRUE" || text == "True";
}

std::optional<PortDirection> parsePortDirection(std::string_view text) noexcept {
    if (text == "input") {
        return kDirectionInput;
    }
    if (text == "output") {
        return kDirectionOutput;
    }
    return std::nullopt;
}

std::string_view portDirectionText(PortDirection direction) noexcept {
    switch (direction) {
    case kDirectionInput:
        return "input";
    case kDirectionOutput:
        return "output";
    default:
        return {};
    }
}

CppPassingConvention parsePassingConvention(std::string_view text) noexcept {
    for (ConventionSpelling const& spelling : kConventions) {
        if (spelling.text == text) {
            return spelling.convention;
        }
    }
    return kPassInvalid;
}

std::string_view passingConventionText(CppPassingConvention convention) noexcept {
    for (ConventionSpelling const& spelling : kConventions) {
        if (spelling.convention == convention) {
            return spelling.text;
        }
    }
    return {};
}

std::optional<DmNodeDef::Associativity> parseAssociativity(std::string_view text) noexcept {
    if (text == "leftToRight") {
        return DmNodeDef::kLeftToRight;
    }
    if (text == "rightToLeft") {
        return DmNodeDef::kRightToLeft;
    }
    return std::nullopt;
}

std::string_view associativityText(DmNodeDef::Associativity associativity) noexcept {
    switch (associativity) {
    case DmNodeDef::kLeftToRight:
        return "leftToRight";
    case DmNodeDef::kRightToLeft:
        return "rightToLeft";
    default:
        return {};
    }
}

std::optional<DmExternOperator::CancellationPolicy> parseCancellationPolicy(std::string_view text) noexcept {
    if (text == "None") {
        return DmExternOperator::kNone;
    }
    if (text == "Safe") {
        return DmExternOperator::kSafe;
    }
    if (text == "Unsafe") {
        return DmExternOperator::kUnsafe;
    }
    return std::nullopt;
}

std::string_view cancellationPolicyText(DmExternOperator::CancellationPolicy policy) noexcept {
    switch (policy) {
    case DmExternOperator::kNone:
        return "None";
    case DmExternOperator::kSafe:
        return "Safe";
    case DmExternOperator::kUnsafe:
        return "Unsafe";
    }
    return {};
}

std::string normalizeName(std::string_view name) {
    std::string out;
    out.reserve(name.size());
    std::size_t i = 0;
    while (i < name.size()) {
        if (!isSpace(name[i])) {
            out += name[i++];
            continue;
        }
        std::size_t const runEnd = name.find_first_not_of(" \t\n\r\f\v", i);
        bool const between = !out.empty() && isOrdinary(out.back()) && runEnd != std::string_view::npos &&
                             isOrdinary(name[runEnd]);
        if (between) {
            out.append(name.substr(i, runEnd - i));
        }
        i = runEnd == std::string_view::npos ? name.size() : runEnd;
    }
    return out;
}

std::string normalizeTypeName(std::string_view name) {
    std::string out = normalizeName(name);
    replaceFirst(out, "Kesto::Object", "Object");
    replaceFirst(out, "Kesto::FCurve", "Math::FCurve");
    return out;
}

std::optional<int> parseEnumValue(std::string_view text) {
    std::string const copy(text);
    char* end = nullptr;
    errno = 0;
    long const value = std::strtol(copy.c_str(), &end, 10);
    if (end == copy.c_str() || errno == ERANGE || value < INT_MIN || value > INT_MAX) {
        return std::nullopt;
    }
    return static_cast<int>(value);
}

bool namesArrayOfAuto(std::string_view typeName) {
    std::string name(typeName);
    std::string element;
    bool array = false;
    while (DmLibrary::isArrayType(name, element)) {
        array = true;
        name = element;
    }
    return array && name == DmLibrary::getAutoType()->getName();
}

} // namespace Kesto::Internal::JsonFormat
