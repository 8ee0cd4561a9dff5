// Checked narrowing of 64-bit sizes into the 32-bit fields of file formats and interfaces:
// the narrower value, or BError(32767) naming the function in argument 0, so that an
// over-long string fails instead of writing a wrong length.
#pragma once

#include <qv/core/Export.h>

QV_EXPORT int Sizet_int(unsigned long long value);
QV_EXPORT unsigned int Sizet_uint(unsigned long long value);
QV_EXPORT unsigned char Sizet_byte(unsigned long long value);
QV_EXPORT int Longptr_int(long long value);
// Accepts what a signed 32-bit number gives when widened with its sign, and 0 to 2^31 - 1.
QV_EXPORT int Dwordptr_int(unsigned long long value);
