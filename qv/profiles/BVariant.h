/// \file
/// BVariant: one typed value of a binary profile, with the record form it takes in the file: a
/// 32-bit type code, then the value part of its type. TVariant<T> holds numbers, booleans and
/// strings, BVarMemBlock a block of bytes. docs/profiles.md shows the binary profile's layout.
#pragma once

#include <cstdint>
#include <cstdio>
#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>

class QV_EXPORT BVariant : public BSmartObj {
public:
    /// The type codes of the file.
    enum : std::uint32_t {
        kInt = 1,
        kNarrowString = 2,
        kDouble = 3,
        kMemBlock = 4,
        kBool = 5,
        kWideString = 6,
    };

    // The virtual operations in the order of their slots. A null file does nothing.

    /// Writes the type code as 32 bits, then the value part.
    virtual void WriteTo(std::FILE* file);
    virtual std::uint32_t GetTypeCode() const = 0;
    /// Reads the value part of a record. A part the file cuts short leaves a defined value:
    /// zero, false or empty.
    virtual void ReadValue(std::FILE* file) = 0;
    virtual void WriteValue(std::FILE* file) = 0;

    /// A new variant of the type a code names, or null for an unknown code.
    static SP<BVariant> Make(std::uint32_t typeCode);
};
