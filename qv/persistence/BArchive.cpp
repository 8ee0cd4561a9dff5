#include <algorithm>
#include <cstdint>
#include <qv/core/Narrowing.h>
#include <qv/persistence/BArchive.h>
#include <string>

namespace {

// A length read from a file may be damaged. Strings are therefore read in pieces that grow
// with what has arrived, so a false length of four billion never allocates more than twice
// the bytes the source really had (plus the first piece).
constexpr unsigned long long kFirstPiece = 64 * 1024;

// Reads up to count units into out; returns how many came.
template <class Unit>
unsigned long long ReadUnits(BArchive& archive, std::basic_string<Unit>& out,
                             unsigned long long count) {
    out.clear();
    unsigned long long piece = kFirstPiece;
    while (out.size() < count) {
        std::size_t have = out.size();
        std::size_t want = static_cast<std::size_t>(std::min(piece, count - have));
        out.resize(have + want);
        unsigned long long got = archive.ReadMemoryBlock(out.data() + have, want * sizeof(Unit));
        if (got < want * sizeof(Unit)) {
            out.resize(have + got / sizeof(Unit));
            break;
        }
        piece = std::max(piece, static_cast<unsigned long long>(out.size()));
    }
    return out.size();
}

} // namespace

template <>
BArchive& BArchive::operator<<(BString const& value) {
    unsigned char const tag = 'S';
    WriteMemoryBlock(&tag, 1);
    std::uint32_t length = Sizet_uint(value.Length());
    WriteMemoryBlock(&length, 4);
    if (length)
        WriteMemoryBlock(value.CStr(), length);
    return *this;
}

template <>
BArchive& BArchive::operator>>(BString& value) {
    // The tag is read whatever the mode: a closed archive yields nothing and so throws.
    unsigned char tag = 0;
    if (ReadMemoryBlock(&tag, 1) != 1 || tag != 'S')
        throw ARCHIVE_BAD_STRING;
    std::uint32_t length = 0;
    *this >> length;
    if (length == 0) {
        value.Clear();
        return *this;
    }
    std::string bytes;
    ReadUnits(*this, bytes, length);
    // A short read is not reported: the rest of the stated length stays blanks. Beyond the
    // first piece the padding is limited to what was allocated for the bytes that came, so a
    // damaged length cannot make us allocate what the file never held.
    if (bytes.size() < length)
        bytes.resize(std::min<unsigned long long>(
                         length, std::max<unsigned long long>(kFirstPiece, 2 * bytes.size())),
                     ' ');
    value = BString(std::string_view(bytes));
    return *this;
}

template <>
BArchive& BArchive::operator<<(WString const& value) {
    std::int32_t count = Sizet_int(value.Length());
    WriteMemoryBlock(&count, 4);
    if (count > 0)
        WriteMemoryBlock(value.CStr(), static_cast<unsigned long long>(count) * 2);
    return *this;
}

template <>
BArchive& BArchive::operator>>(WString& value) {
    std::int32_t count = 0;
    *this >> count;
    std::u16string units;
    if (count > 0 && ReadUnits(*this, units, static_cast<unsigned long long>(count)) ==
                         static_cast<unsigned long long>(count)) {
        value = WString(std::u16string_view(units));
        return *this;
    }
    // A count of 0 or below, or a short read, leaves the string empty.
    value.Clear();
    return *this;
}
