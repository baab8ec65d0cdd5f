#pragma once

#include <KestoDM/platform/DmExport.h>

#include <cstdint>

namespace Kesto {
namespace Internal {

/// Counts the tries of DmAssetUtils that went to the file system (each one an
/// existence test with its path made canonical), process-wide, so that tests
/// and benchmarks can see what the table of JSON files spares. Not for hosts.
KESTODM_API std::uint64_t assetFileSystemCallCount() noexcept;
KESTODM_API void resetAssetFileSystemCallCount() noexcept;

} // namespace Internal
} // namespace Kesto
