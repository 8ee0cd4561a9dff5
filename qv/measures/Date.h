/// \file
/// Date: a calendar date held as the decimal number YYYYMMDD. See docs/measures.md.
#pragma once

#include <cstdint>
#include <qv/core/Export.h>

/// A plain value: copy it freely; threads may share a const one.
class QV_EXPORT Date {
public:
    /// Today, in local time.
    Date();
    /// Year modulo 10000, month modulo 100, day modulo 100.
    constexpr Date(unsigned long day, unsigned long month, unsigned long year) noexcept
        : m_date(static_cast<std::uint32_t>(year % 10000 * 10000 + month % 100 * 100 + day % 100)) {
    }
    /// The raw number, cut to 32 bits.
    constexpr explicit Date(unsigned long raw) noexcept : m_date(static_cast<std::uint32_t>(raw)) {}

    constexpr unsigned long GetDate() const noexcept { return m_date; }
    /// Sets the raw number and returns the old one.
    constexpr unsigned long ChangeDate(unsigned long raw) noexcept {
        unsigned long const old = m_date;
        m_date = static_cast<std::uint32_t>(raw);
        return old;
    }
    constexpr unsigned long GetYear() const noexcept { return m_date / 10000; }
    constexpr unsigned long GetMonth() const noexcept { return m_date / 100 % 100; }
    constexpr unsigned long GetDay() const noexcept { return m_date % 100; }

private:
    std::uint32_t m_date;
};
