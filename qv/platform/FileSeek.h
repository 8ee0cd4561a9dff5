// The C runtime's 64-bit stream positions under their Windows names. Positions beyond 2 GiB
// need them wherever long is 32 bits; POSIX gives them as fseeko and ftello.
#pragma once

#include <cstdio>

namespace qv::platform {

// 0 on success, -1 on failure (a negative target, a stream that cannot seek).
int _fseeki64(std::FILE* stream, long long offset, int origin);
// The position, or -1.
long long _ftelli64(std::FILE* stream);

} // namespace qv::platform
