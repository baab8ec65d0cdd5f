#pragma once

#include <KestoDM/platform/DmExport.h>

#include <string_view>

namespace Kesto::Internal {

/// Number texts of graph files: integers may end in "l", "ll" and "u" in the
/// C manner ("12", "12L", "12uLL"), floats in one "f". The suffix says nothing
/// of the type: the caller's type decides the range.
enum class LiteralResult { kOk, kBadlyFormed, kOutOfRange };

/// The text without its integer suffix: one "l"/"L", then another, then one "u"/"U".
KESTODM_API std::string_view trimIntegerSuffix(std::string_view text) noexcept;
/// The text without one trailing "f"/"F".
KESTODM_API std::string_view trimFloatSuffix(std::string_view text) noexcept;

/// A signed integer within [min, max], suffix trimmed.
KESTODM_API LiteralResult parseSignedLiteral(std::string_view text, long long min, long long max,
                                             long long& out);
/// An unsigned integer up to `max`, suffix trimmed; a minus sign is badly formed.
KESTODM_API LiteralResult parseUnsignedLiteral(std::string_view text, unsigned long long max,
                                               unsigned long long& out);
/// Floating texts, one "f" trimmed; overflow is what the conversion reports.
KESTODM_API LiteralResult parseFloatLiteral(std::string_view text, float& out);
KESTODM_API LiteralResult parseDoubleLiteral(std::string_view text, double& out);

} // namespace Kesto::Internal
