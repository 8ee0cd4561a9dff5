/// \file
/// Qv::ELog: the level of a log message. See docs/locks.md.
#pragma once

#include <cstdint>

namespace Qv {

/// The library hands the level to the sink as a 32-bit value and never looks at it; these
/// names are the levels our sinks understand, from the least to the most severe.
enum class ELog : std::int32_t {
    Trace = 0,
    Debug = 1,
    Info = 2,
    Warning = 3,
    Error = 4,
    Fatal = 5
};

} // namespace Qv
