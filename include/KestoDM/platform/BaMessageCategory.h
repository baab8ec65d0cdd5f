#pragma once

namespace Kesto {

/// The category a stored record is counted and filtered under. kAll is not a
/// category of its own: as a filter it lets every record through.
enum class BaMessageCategory : int { kError = 1, kWarning = 2, kInfo = 3, kAll = 5 };

} // namespace Kesto
