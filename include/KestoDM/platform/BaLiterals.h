#pragma once

#include <KestoDM/platform/DmExport.h>

#include <string_view>

namespace Kesto {

/// Strict conversion of literal text to numbers. The whole text must be the
/// number: no white space around it, no trailing characters, not empty. On
/// failure the output is left untouched.
///
/// Integers: an optional '+' or '-' sign, then decimal digits or `0x`/`0X`
/// and hex digits (the sign comes before `0x`). Leading zeros stay decimal
/// ("010" is 10). No digit separators. The unsigned form refuses any '-',
/// even "-0".
///
/// Floats: an optional '+' or '-' sign, then a decimal number with optional
/// fraction and exponent ("1e5", ".5", "5."), or "inf", "infinity", "nan" in
/// any case. Hex floats ("0x1p3") and suffixes ("1.5f") are refused.
///
/// A well-formed number that does not fit the type is kConversionOutOfRange.
struct KESTODM_API BaLiterals {
    enum ConversionResult : int { kConversionOk = 0, kConversionInvalid = 1, kConversionOutOfRange = 2 };

    static ConversionResult toValue(std::string_view text, long long& value);
    static ConversionResult toValue(std::string_view text, unsigned long long& value);
    static ConversionResult toValue(std::string_view text, float& value);
    static ConversionResult toValue(std::string_view text, double& value);
};

} // namespace Kesto
