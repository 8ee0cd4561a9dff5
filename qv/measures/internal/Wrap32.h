/// \file
/// The 32-bit arithmetic of the plane's value types. Their fields are the 32-bit LONG of the
/// Windows records, and sums, products and quotients wrap in 32 bits there; here the operands
/// are widened to 64 bits, where nothing overflows, and the result is cut back, which C++20
/// defines as the same modular result.
#pragma once

#include <cstdint>

namespace qv::detail {

constexpr std::int32_t Wrap32(long long value) noexcept {
    return static_cast<std::int32_t>(value);
}

} // namespace qv::detail
