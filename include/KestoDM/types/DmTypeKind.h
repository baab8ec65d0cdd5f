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

} // namespace Kesto
