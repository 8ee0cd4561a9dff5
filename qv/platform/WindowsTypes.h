/// \file
/// The plain records of the Windows interface that public signatures use, under their Windows
/// names, so that code written against the Windows declarations compiles unchanged. Each has
/// exactly the fields, widths and order of its Windows counterpart: the records are copied
/// byte for byte into files and hashes, so the layout is checked at compile time. Windows'
/// LONG and DWORD are 32 bits wide there; long is 64 bits here, so the fields are spelt with
/// fixed widths.
#pragma once

#include <qv/platform/CriticalSection.h>

#include <cstdint>

/// A calendar time: eight unsigned 16-bit fields in the order Windows declares them.
struct _SYSTEMTIME {
    std::uint16_t wYear;
    std::uint16_t wMonth;
    std::uint16_t wDayOfWeek;
    std::uint16_t wDay;
    std::uint16_t wHour;
    std::uint16_t wMinute;
    std::uint16_t wSecond;
    std::uint16_t wMilliseconds;
};
static_assert(sizeof(_SYSTEMTIME) == 16);

/// A 128-bit identifier in the platform's layout: a 32-bit field, two 16-bit fields and eight
/// bytes, the numbers in the machine's byte order.
struct _GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
static_assert(sizeof(_GUID) == 16);

/// A point of the plane in whole units.
struct tagPOINT {
    std::int32_t x;
    std::int32_t y;
};
static_assert(sizeof(tagPOINT) == 8);

/// An extent of the plane in whole units.
struct tagSIZE {
    std::int32_t cx;
    std::int32_t cy;
};
static_assert(sizeof(tagSIZE) == 8);

/// A rectangle; right and bottom lie outside it.
struct tagRECT {
    std::int32_t left;
    std::int32_t top;
    std::int32_t right;
    std::int32_t bottom;
};
static_assert(sizeof(tagRECT) == 16);

/// An opaque handle naming a message receiver registered by the application (a window on
/// Windows). Null names none.
struct HWND__;
using HWND = HWND__*;

/// The critical section under the name Windows gives its record.
using _RTL_CRITICAL_SECTION = qv::platform::CRITICAL_SECTION;
