// The level of a log message. The library hands it to the sink as a 32-bit value and never
// looks at it; these names are the levels our sinks understand.
#pragma once

#include <cstdint>

namespace Qv {

enum class ELog : std::int32_t {
    Trace = 0,
    Debug = 1,
    Info = 2,
    Warning = 3,
    Error = 4,
    Fatal = 5
};

} // namespace Qv
