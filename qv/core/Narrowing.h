/// \file
/// Checked narrowing of 64-bit sizes into the 32-bit fields of file formats and interfaces:
/// each function returns the narrower value, or throws BError(32767) with its own name in
/// argument 0 ("Sizet_int" and so on), so that an over-long string fails instead of writing a
/// wrong length. Any thread may call them.
#pragma once

#include <qv/core/Export.h>

/// @name Checked narrowing
///@{
/// Accepts 0 to 2^31 - 1.
QV_EXPORT int Sizet_int(unsigned long long value);
/// Accepts 0 to 2^32 - 1.
QV_EXPORT unsigned int Sizet_uint(unsigned long long value);
/// Accepts 0 to 255.
QV_EXPORT unsigned char Sizet_byte(unsigned long long value);
/// Accepts -2^31 to 2^31 - 1.
QV_EXPORT int Longptr_int(long long value);
/// Accepts the same 64-bit patterns as Longptr_int: what a signed 32-bit number gives when
/// widened with its sign, and 0 to 2^31 - 1. 0x80000000 to 0xFFFFFFFF throw.
QV_EXPORT int Dwordptr_int(unsigned long long value);
///@}
