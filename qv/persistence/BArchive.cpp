#include <algorithm>
#include <cstdint>
#include <qv/core/Narrowing.h>
#include <qv/persistence/BArchive.h>
#include <qv/persistence/BIStreamArchive.h>
#include <qv/persistence/BOStreamArchive.h>
#include <qv/persistence/BQuorvelArchive.h>
#include <string>
#include <typeinfo>

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

// The archive of a kind behind an archive, or null. The class itself is the common case, and
// recognising it costs less than a cast through the hierarchy, which is paid per reference.
template <class Kind>
Kind* ArchiveOf(BArchive* archive) {
    if (typeid(*archive) == typeid(Kind))
        return static_cast<Kind*>(archive);
    return dynamic_cast<Kind*>(archive);
}

BQuorvelArchive* ObjectArchive(BArchive* archive) {
    return ArchiveOf<BQuorvelArchive>(archive);
}

} // namespace

template <>
BArchive& BArchive::operator<<(BString const& value) {
    return *this << value.View();
}

template <>
BArchive& BArchive::operator<<(std::string_view const& value) {
    unsigned char const tag = 'S';
    WriteBytes(&tag, 1);
    std::uint32_t length = Sizet_uint(value.size());
    WriteBytes(&length, 4);
    if (length)
        WriteBytes(value.data(), length);
    return *this;
}

template <>
BArchive& BArchive::operator>>(BString& value) {
    // The tag is read whatever the mode: a closed archive yields nothing and so throws.
    unsigned char tag = 0;
    if (ReadBytes(&tag, 1) != 1 || tag != 'S')
        throw ARCHIVE_BAD_STRING;
    std::uint32_t length = 0;
    *this >> length;
    if (length <= kFirstPiece) {
        // The common case, read straight over blanks: a short read leaves them at the end.
        value.Fill(length, ' ');
        if (length)
            ReadBytes(value.Str(), length);
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

void BArchive::SkipString() {
    unsigned char tag = 0;
    if (ReadBytes(&tag, 1) != 1 || tag != 'S')
        throw ARCHIVE_BAD_STRING;
    std::uint32_t length = 0;
    *this >> length;
    char scratch[256];
    for (std::uint32_t left = length; left > 0;) {
        std::uint32_t piece = std::min<std::uint32_t>(left, sizeof scratch);
        if (ReadBytes(scratch, piece) != piece)
            return; // a short read is not reported, as for the string itself
        left -= piece;
    }
}

template <>
BArchive& BArchive::operator<<(WString const& value) {
    std::int32_t count = Sizet_int(value.Length());
    WriteBytes(&count, 4);
    if (count > 0)
        WriteBytes(value.CStr(), static_cast<unsigned long long>(count) * 2);
    return *this;
}

template <>
BArchive& BArchive::operator>>(WString& value) {
    std::int32_t count = 0;
    *this >> count;
    ReadUnitsOf(count, value);
    return *this;
}

void BArchive::ReadUnitsOf(std::int32_t count, WString& value) {
    if (count > 0 && static_cast<unsigned long long>(count) <= kFirstPiece) {
        // Blanks give the string a buffer of its own, which the units are read into.
        unsigned long long const bytes = static_cast<unsigned long long>(count) * 2;
        value.Fill(static_cast<std::size_t>(count), u' ');
        if (ReadBytes(value.Str(), bytes) != bytes)
            value.Clear();
        return;
    }
    std::u16string units;
    if (count > 0 && ReadUnits(*this, units, static_cast<unsigned long long>(count)) ==
                         static_cast<unsigned long long>(count)) {
        value = WString(std::u16string_view(units));
        return;
    }
    // A count of 0 or below, or a short read, leaves the string empty.
    value.Clear();
}

void BArchive::ReadSharedText(WString& value) {
    // Only short texts are looked for: names are short, and a long text seldom repeats. The
    // recent texts sit in a few slots chosen by length and end units, so a lookup is one
    // comparison; the slots keep at most their few short blocks between loads.
    constexpr std::int32_t kShortText = 32;
    constexpr std::size_t kSlots = 16;
    thread_local WString recent[kSlots];
    std::int32_t count = 0;
    *this >> count;
    if (count <= 0 || count > kShortText) {
        ReadUnitsOf(count, value);
        return;
    }
    char16_t units[kShortText];
    unsigned long long const bytes = static_cast<unsigned long long>(count) * 2;
    if (ReadBytes(units, bytes) != bytes) {
        value.Clear(); // a short read leaves the string empty, as operator>> does
        return;
    }
    std::u16string_view text(units, static_cast<std::size_t>(count));
    WString& slot =
        recent[(static_cast<std::size_t>(count) * 31 + units[0] * 7u + units[count - 1]) % kSlots];
    if (slot.View() != text)
        slot = WString(text);
    value = slot;
}

NArchive::ReadFunction BArchive::SmartObjReadFunction(BString className) {
    return NArchive::BReadObjCallbackMap::Instance().Find(className.CStr());
}

// The kind of an archive is found out from the object itself. The stream archives have their
// own branches beside the object archive's: on writing an object in place, on reading the
// next object converted to the field's type.
bool BArchive::IsObjectArchive() const {
    return ObjectArchive(const_cast<BArchive*>(this)) != nullptr;
}

// The object archive asks these once per reference too: its own class is told apart first,
// since a cast through the hierarchy that fails costs more than the rest of a reference.
BIStreamArchive* BArchive::StreamReader() {
    if (typeid(*this) == typeid(BQuorvelArchive))
        return nullptr;
    return ArchiveOf<BIStreamArchive>(this);
}

bool BArchive::IsStreamWriter() const {
    if (typeid(*this) == typeid(BQuorvelArchive))
        return false;
    return ArchiveOf<BOStreamArchive>(const_cast<BArchive*>(this)) != nullptr;
}

SP<BSmartObj> BArchive::ReadInPlace(BIStreamArchive* stream, bool& ended) {
    return stream->Next(ended);
}

unsigned long long BArchive::Number(BSmartObj* object) {
    return MapPointerToIndex(object);
}

// Formats up to 6 stored references in 4 bytes; from 7 on in 8, the upper half 0.
void BArchive::WriteNumber(unsigned long long number) {
    if (Version() > 6) {
        *this << number;
    } else {
        *this << static_cast<std::uint32_t>(number);
    }
}

bool BArchive::ReadNumber(unsigned long long& number) {
    // Four bytes land in the low half: the image is little-endian.
    std::size_t const width = Version() > 6 ? 8 : 4;
    std::uint64_t value = 0;
    if (!TakeFromWindow(&value, width) && !(CanRead() && ReadMemoryBlock(&value, width) == width))
        return false;
    number = value;
    return true;
}

unsigned long long BArchive::ReadIndex() {
    unsigned long long number = 0;
    ReadNumber(number);
    return number;
}

void BArchive::WriteRef(BSmartObj* object) {
    if (IsObjectArchive()) {
        WriteNumber(Number(object));
        if (object)
            Insert(object, nullptr);
    } else if (IsStreamWriter()) {
        Insert(object, nullptr); // the flag, and the object in place
    }
}

void BArchive::ReadRef(void* field, bool load) {
    unsigned long long number = 0;
    if (auto* archive = ObjectArchive(this)) {
        if (ReadNumber(number))
            archive->NoteReference(field, number, load);
    } else if (StreamReader()) {
        ReadNumber(number); // a plain reference: the stream holds 0, and the field stays null
    }
}

void BArchive::NoteListElement(void* field, unsigned long long number) {
    static_cast<BQuorvelArchive*>(this)->NoteReference(field, number, true);
}

SP<BSmartObj> BArchive::Resolve(void* field, bool& noted) {
    auto* archive = ObjectArchive(this);
    unsigned long long number = 0;
    noted = archive && archive->TakeReference(field, number);
    if (!noted)
        return nullptr;
    return QueryObject(reinterpret_cast<void*>(static_cast<std::uintptr_t>(number)));
}
