/// \file
/// Time: a time of day held as the decimal number HHMMSScc (cc hundredths of a second). See
/// docs/measures.md.
#pragma once

#include <cstdint>
#include <qv/core/Export.h>

/// The number may be negative; the accessors then read its absolute value. A plain value: copy
/// it freely; threads may share a const one.
class QV_EXPORT Time {
public:
    /// Now, in local time, the hundredths from the milliseconds.
    Time();
    /// Minute modulo 10000, second and hundredths modulo 100; the sum wraps in 32 bits.
    constexpr Time(unsigned short hour, unsigned short minute, unsigned short second,
                   unsigned short hundredths) noexcept
        : m_time(static_cast<std::int32_t>(hour * 1000000ll + minute % 10000 * 10000ll +
                                           second % 100 * 100ll + hundredths % 100)) {}
    /// The raw number, cut to 32 bits.
    constexpr explicit Time(long raw) noexcept : m_time(static_cast<std::int32_t>(raw)) {}

    constexpr long GetTime() const noexcept { return m_time; }
    /// Sets the raw number and returns the old one.
    constexpr long ChangeTime(long raw) noexcept {
        long const old = m_time;
        m_time = static_cast<std::int32_t>(raw);
        return old;
    }
    constexpr unsigned short GetHour() const noexcept { return Part(Magnitude() / 1000000); }
    constexpr unsigned short GetMin() const noexcept { return Part(Magnitude() / 10000 % 100); }
    constexpr unsigned short GetSec() const noexcept { return Part(Magnitude() / 100 % 100); }
    constexpr unsigned short Get100Sec() const noexcept { return Part(Magnitude() % 100); }

private:
    constexpr std::uint32_t Magnitude() const noexcept {
        auto const bits = static_cast<std::uint32_t>(m_time);
        return m_time < 0 ? 0u - bits : bits;
    }
    static constexpr unsigned short Part(std::uint32_t v) noexcept {
        return static_cast<unsigned short>(v);
    }

    std::int32_t m_time;
};
