// WString: a copy-on-write string of UTF-16 units, one pointer wide. Null is the empty string.
// The operations shared with BString live in StringBase; this class adds what only the wide
// twin has, and the conversions that Linux callers need (UTF-8, std::u16string_view).
#pragma once

#include <concepts>
#include <qv/core/Export.h>
#include <qv/core/strings/StringBase.h>
#include <string>
#include <string_view>

class BString;

class QV_EXPORT WString : public StringBase<WString, char16_t> {
public:
    using StringBase::StringBase;
    using StringBase::operator=;
    using StringBase::ReplaceAt;

    WString() noexcept = default;
    // Narrow text in the ANSI code page; an empty string gives null.
    WString(BString const& narrow);

    // UTF-8 in and out. Invalid sequences become U+FFFD; nothing here fails.
    static WString FromUtf8(std::string_view utf8);
    std::string ToUtf8() const;

    // Unshares and hands out the writable text; never null.
    char16_t* Str();

    // The unit at the index without a bounds check; 0 on a null string.
    template <std::integral I>
    char16_t operator[](I index) const {
        return m_block ? m_block->Text()[index] : 0;
    }
    char16_t GetAt(size_type index) const { return (*this)[index]; }

    // Releases the block and copies at most n units of text, stopping at a terminator; text
    // need not be terminated within n units.
    void CopyN(size_type n, char16_t const* text);
    unsigned long long AllocatedMemory() const;
    bool Includes16bitChars() const;
    // Replaces n units at pos by text; the length may change.
    void ReplaceAt(char16_t const* text, size_type pos, size_type n);

    BString AsString() const;
    // One unit in the ANSI code page, or '?' when it does not give exactly one byte.
    static char AsChar(char16_t unit);
    static int ICmpForQSort(void const* a, void const* b);

    // Memory images: each byte becomes two units, high nibble first, each nibble n the unit
    // 0x30 + n (so the digits run from '0' to '?'). This is not hexadecimal. Decoding wants
    // exactly 2n units and stops with false at the first unit outside 0x30 to 0x3F, the bytes
    // before it written.
    void EncodeMemory(void const* data, unsigned long long n);
    bool DecodeMemory(void* data, unsigned long long n) const;

    struct ILess {
        bool operator()(WString const& a, WString const& b) const { return a.ICmp(b) < 0; }
    };
};

extern template class StringBase<WString, char16_t>;
