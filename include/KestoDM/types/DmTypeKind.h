#pragma once

#include <cstdint>

namespace Kesto {

/// The kind of a type. The numbers are fixed: they order types of different
/// kinds in DmBaseType::lessThan and are written to files.
enum DmTypeKind : std::int32_t {
    kTypeBool = 0,
    kTypeChar = 1,
    kTypeUChar = 2,
    kTypeShort = 3,
    kTypeUShort = 4,
    kTypeInt = 5,
    kTypeUInt = 6,
    kTypeLong = 7,
    kTypeULong = 8,
    kTypeFloat = 9,
    kTypeDouble = 10,
    kTypeAny = 11,
    kTypeString = 12,
    kTypeClass = 13,
    kTypeArray = 14,
    kTypeStruct = 15,
    kTypeEnum = 16,
    kTypeUndefined = 17,
    kTypeUnknown = 18,
    kTypeUnknownStruct = 19,
    kTypeAuto = 20,
};

/// The kinds of type that files define (class, struct, enum, and the
/// undefined and unknown stand-ins): what collect gathers and what a file's
/// URI is given to.
constexpr bool isFileDefinedKind(DmTypeKind kind) noexcept {
    switch (kind) {
    case kTypeClass:
    case kTypeStruct:
    case kTypeEnum:
    case kTypeUndefined:
    case kTypeUnknown:
    case kTypeUnknownStruct:
        return true;
    default:
        return false;
    }
}

} // namespace Kesto
