#include "reader/DmLiteralText.h"

#include <KestoDM/platform/BaLiterals.h>

namespace Kesto::Internal {

namespace {

bool endsWithEither(std::string_view text, char lower, char upper) noexcept {
    return !text.empty() && (text.back() == lower || text.back() == upper);
}

} // namespace

std::string_view trimIntegerSuffix(std::string_view text) noexcept {
    for (int i = 0; i < 2 && endsWithEither(text, 'l', 'L'); ++i) {
        text.remove_suffix(1);
    }
    if (endsWithEither(text, 'u', 'U')) {
        text.remove_suffix(1);
    }
    return text;
}

std::string_view trimFloatSuffix(std::string_view text) noexcept {
    if (endsWithEither(text, 'f', 'F')) {
        text.remove_suffix(1);
    }
    return text;
}

// Any failure of the conversion itself, too large numbers included, makes the
// text badly formed; only the type's own range gives "out of range".
LiteralResult parseSignedLiteral(std::string_view text, long long min, long long max, long long& out) {
    long long value = 0;
    if (BaLiterals::toValue(trimIntegerSuffix(text), value) != BaLiterals::kConversionOk) {
        return LiteralResult::kBadlyFormed;
    }
    if (value < min || value > max) {
        return LiteralResult::kOutOfRange;
    }
    out = value;
    return LiteralResult::kOk;
}

LiteralResult parseUnsignedLiteral(std::string_view text, unsigned long long max, unsigned long long& out) {
    unsigned long long value = 0;
    if (BaLiterals::toValue(trimIntegerSuffix(text), value) != BaLiterals::kConversionOk) {
        return LiteralResult::kBadlyFormed;
    }
    if (value > max) {
        return LiteralResult::kOutOfRange;
    }
    out = value;
    return LiteralResult::kOk;
}

LiteralResult parseFloatLiteral(std::string_view text, float& out) {
    return BaLiterals::toValue(trimFloatSuffix(text), out) == BaLiterals::kConversionOk
               ? LiteralResult::kOk
               : LiteralResult::kBadlyFormed;
}

LiteralResult parseDoubleLiteral(std::string_view text, double& out) {
    return BaLiterals::toValue(trimFloatSuffix(text), out) == BaLiterals::kConversionOk
               ? LiteralResult::kOk
               : LiteralResult::kBadlyFormed;
}

} // namespace Kesto::Internal
