#include <KestoDM/platform/BaLiterals.h>

#include <charconv>
#include <limits>
#include <system_error>

namespace Kesto {

namespace {

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

struct Integer {
    BaLiterals::ConversionResult result = BaLiterals::kConversionInvalid;
    bool negative = false;
    unsigned long long magnitude = 0;
};

// Sign, then decimal or 0x-hex digits, as a magnitude; the callers decide
// what fits their type.
Integer parseInteger(std::string_view text) {
    Integer parsed;
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        parsed.negative = text.front() == '-';
        text.remove_prefix(1);
    }
    int base = 10;
    if (text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text.remove_prefix(2);
    }
    // from_chars would accept a second sign for signed types; only digits may follow.
    if (text.empty() || !isHexDigit(text.front())) {
        return parsed;
    }
    char const* const last = text.data() + text.size();
    auto const [ptr, ec] = std::from_chars(text.data(), last, parsed.magnitude, base);
    if (ptr != last) {
        return parsed;
    }
    parsed.result = ec == std::errc() ? BaLiterals::kConversionOk : BaLiterals::kConversionOutOfRange;
    return parsed;
}

template <class Float>
BaLiterals::ConversionResult parseFloat(std::string_view text, Float& value) {
    // from_chars takes '-' but not '+'.
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
            return BaLiterals::kConversionInvalid;
        }
    }
    if (text.empty()) {
        return BaLiterals::kConversionInvalid;
    }
    Float number{};
    char const* const last = text.data() + text.size();
    auto const [ptr, ec] = std::from_chars(text.data(), last, number, std::chars_format::general);
    if (ptr != last) {
        return BaLiterals::kConversionInvalid;
    }
    if (ec == std::errc::result_out_of_range) {
        return BaLiterals::kConversionOutOfRange;
    }
    if (ec != std::errc()) {
        return BaLiterals::kConversionInvalid;
    }
    value = number;
    return BaLiterals::kConversionOk;
}

} // namespace

BaLiterals::ConversionResult BaLiterals::toValue(std::string_view text, long long& value) {
    Integer const parsed = parseInteger(text);
    if (parsed.result != kConversionOk) {
        return parsed.result;
    }
    auto const maxPositive = static_cast<unsigned long long>(std::numeric_limits<long long>::max());
    if (!parsed.negative) {
        if (parsed.magnitude > maxPositive) {
            return kConversionOutOfRange;
        }
        value = static_cast<long long>(parsed.magnitude);
        return kConversionOk;
    }
    if (parsed.magnitude > maxPositive + 1) {
        return kConversionOutOfRange;
    }
    value = parsed.magnitude == maxPositive + 1 ? std::numeric_limits<long long>::min()
                                                : -static_cast<long long>(parsed.magnitude);
    return kConversionOk;
}

BaLiterals::ConversionResult BaLiterals::toValue(std::string_view text, unsigned long long& value) {
    if (!text.empty() && text.front() == '-') {
        return kConversionInvalid;
    }
    Integer const parsed = parseInteger(text);
    if (parsed.result != kConversionOk) {
        return parsed.result;
    }
    value = parsed.magnitude;
    return kConversionOk;
}

BaLiterals::ConversionResult BaLiterals::toValue(std::string_view text, float& value) {
    return parseFloat(text, value);
}

BaLiterals::ConversionResult BaLiterals::toValue(std::string_view text, double& value) {
    return parseFloat(text, value);
}

} // namespace Kesto
