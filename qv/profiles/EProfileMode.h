/// \file
/// What a BProfileBase store may do with its file.
#pragma once

#include <cstdint>

enum EProfileMode : std::int32_t {
    /// Reads only; every write or deletion throws.
    kProfileReadOnly = 0,
    /// Starts from an empty file (or an empty store).
    kProfileNew = 1,
    /// Reads and writes.
    kProfileReadWrite = 2,
};
