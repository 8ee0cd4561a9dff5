// BArchive: the abstract store that a storable class talks to. A class writes its fields with
// the streaming operators and its object head with BSmartObj::WritePrefix; the concrete
// archives decide where the bytes go.
#pragma once

#include <bit>
#include <qv/core/BSmartObj.h>
#include <type_traits>

static_assert(std::endian::native == std::endian::little,
              "archives store the memory image of values, which the file formats fix as "
              "little-endian");

// Thrown when a narrow string cannot be read. It never leaves the library: the prefix reader
// and the archive's header check catch it and count the file as invalid.
enum ARCHIVE_EXCEPTION { ARCHIVE_BAD_STRING = 1 };

class BArchive : public BSmartObj {
public:
    enum MODE { READ = 0, WRITE = 1 };

    BArchive() = default;
    BArchive(BArchive const& other) : BSmartObj(other) {}

    // The format version of the archive, not of an object.
    int Version() const override = 0;

    // The virtual operations in the order of their slots.
    virtual void ThrowError() const = 0;
    virtual bool IsGood() const = 0;
    virtual MODE Mode() const = 0;
    virtual void Insert(BSmartObj* object, char const* name) = 0;
    virtual SP<BSmartObj> TakeOut(char const* name) = 0;
    virtual SP<BSmartObj> QueryObject(void* reference) const = 0;
    virtual unsigned long long ReadMemoryBlock(void* buffer, unsigned long long size) = 0;
    virtual unsigned long long WriteMemoryBlock(void const* buffer, unsigned long long size) = 0;
    virtual bool VerifyObjects() = 0;
    virtual unsigned int MapPointerToIndex(void* object) = 0;
    virtual bool Force64bitFormat() const = 0;

    // Plain values travel as their memory image. long is refused: it is 4 bytes in the files
    // that Windows writes and 8 here, so a field must name its width (std::int32_t ...).
    template <class T>
    BArchive& operator<<(T const& value) {
        CheckPlain<T>();
        WriteMemoryBlock(&value, sizeof(T));
        return *this;
    }
    template <class T>
    BArchive& operator>>(T& value) {
        CheckPlain<T>();
        if (Mode() == READ && IsGood())
            ReadMemoryBlock(&value, sizeof(T));
        return *this;
    }

    // True when reading is possible: read mode on a good archive.
    bool CanRead() const { return Mode() == READ && IsGood(); }

private:
    template <class T>
    static constexpr void CheckPlain() {
        static_assert(std::is_trivially_copyable_v<T>, "only plain values stream as bytes");
        static_assert(!std::is_same_v<T, long> && !std::is_same_v<T, unsigned long>,
                      "long has another width on Windows; stream a fixed-width type");
    }
};

// A narrow string: the tag byte 'S', the length as 4 bytes, the bytes without terminator.
template <>
BArchive& BArchive::operator<<(BString const& value);
template <>
BArchive& BArchive::operator>>(BString& value);
// A wide string: the count as 4 signed bytes, then UTF-16LE units, no tag, no terminator.
template <>
BArchive& BArchive::operator<<(WString const& value);
template <>
BArchive& BArchive::operator>>(WString& value);
