#pragma once

#include <cstdint>

namespace Kesto {

/// The one-byte result of every fallible operation. A code below 3 is a success;
/// the reserved codes stay in the enumeration so that the numbers never move.
class DmStatus {
public:
    enum Status : std::int8_t {
        kSuccess = 0,
        kSuccessReserved1 = 1,
        kSuccessReplaced = 2,
        kFailure = 3,
        kFileError = 4,
        kReserved5 = 5,
        kInvalidArgument = 6,
        kConnectionError = 7,
        kReserved8 = 8,
        kConstEntity = 9,
    };

    constexpr DmStatus(Status status) noexcept : m_status(status) {}
    constexpr DmStatus(DmStatus const&) noexcept = default;
    constexpr DmStatus(DmStatus&&) noexcept = default;
    constexpr DmStatus& operator=(DmStatus const&) noexcept = default;
    constexpr DmStatus& operator=(DmStatus&&) noexcept = default;
    constexpr DmStatus& operator=(Status status) noexcept {
        m_status = status;
        return *this;
    }

    constexpr bool isSuccess() const noexcept { return m_status < kFailure; }
    constexpr bool isFailure() const noexcept { return !isSuccess(); }
    constexpr explicit operator bool() const noexcept { return isSuccess(); }
    constexpr Status getStatus() const noexcept { return m_status; }

    constexpr bool operator==(DmStatus other) const noexcept { return m_status == other.m_status; }
    constexpr bool operator!=(DmStatus other) const noexcept { return m_status != other.m_status; }
    constexpr bool operator==(Status other) const noexcept { return m_status == other; }
    constexpr bool operator!=(Status other) const noexcept { return m_status != other; }

private:
    Status m_status;
};

static_assert(sizeof(DmStatus) == 1, "DmStatus is one byte");

} // namespace Kesto
