/// \file
/// The byte of a colour channel from a float product, as the x86 conversion gives it: the value
/// truncated to a 32-bit integer, and its low byte. A value outside the 32-bit range (and NaN)
/// converts to the processor's "integer indefinite", whose low byte is 0. Channels are limited
/// to 0.0 to 1.0 everywhere except after reading a foreign file, so this only decides what
/// damaged input gives, without undefined behaviour.
#pragma once

#include <cstdint>

namespace qv::detail {

constexpr std::uint8_t ColorByte(double value) noexcept {
    if (!(value > -2147483649.0 && value < 2147483648.0))
        return 0;
    return static_cast<std::uint8_t>(static_cast<std::int32_t>(value));
}

} // namespace qv::detail
