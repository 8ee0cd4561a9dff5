/// \file
/// WString: a copy-on-write string of UTF-16 units, one pointer wide. Null is the empty string.
/// The operations shared with BString live in StringBase; this class adds what only the wide
/// twin has, and the conversions that Linux callers need (UTF-8, std::u16string_view).
#pragma once

#include <concepts>
#include <qv/core/Export.h>
#include <qv/core/strings/StringBase.h>
#include <string>
#include <string_view>

class BString;

/// A plain value, copied freely: copies share the text until one writes. Equality and order
/// follow the user's locale (lstrcmpW), not code units. Threads: as StringBase.
class QV_EXPORT WString : public StringBase<WString, char16_t> {
public:
    using StringBase::StringBase;
    using StringBase::operator=;
    using StringBase::ReplaceAt;

    WString() noexcept = default;
    /// Narrow text converted from the ANSI code page; an empty string gives null. Characters
    /// the code page lacks come out as the conversion makes them; nothing is reported.
    WString(BString const& narrow);

    /// @name UTF-8 in and out. Invalid sequences and lone surrogates become U+FFFD; nothing
    /// here fails. FromUtf8 ends at a zero byte, if the text holds one.
    ///@{
    static WString FromUtf8(std::string_view utf8);
    std::string ToUtf8() const;
    ///@}

    /// Unshares and hands out the writable text, never null (a null string gets an empty
    /// block). Write within the length; a terminator written shortens the string. From then
    /// on the block counts its length afresh on every call instead of keeping it.
    char16_t* Str();

    /// @name The unit at the index without a bounds check; 0 on a null string.
    ///@{
    template <std::integral I>
    char16_t operator[](I index) const {
        return m_block ? m_block->Text()[index] : 0;
    }
    char16_t GetAt(size_type index) const { return (*this)[index]; }
    ///@}

    /// Releases the block and copies at most \p n units of \p text, stopping at a terminator;
    /// \p text need not be terminated within \p n units. \p n = 0 leaves null; null text
    /// leaves an empty block.
    void CopyN(size_type n, char16_t const* text);
    /// The length times 2 plus 18, the size of a block holding the text; 0 on null.
    unsigned long long AllocatedMemory() const;
    /// Some unit is 256 or above; false for an empty string.
    bool Includes16bitChars() const;
    /// Replaces \p n units at \p pos by \p text (null replaces them by nothing); the length
    /// may change, and \p n past the end replaces the rest. \p pos past the end changes
    /// nothing; at the end it appends.
    void ReplaceAt(char16_t const* text, size_type pos, size_type n);

    /// The text converted to the ANSI code page, as BString(char16_t const*) does.
    BString AsString() const;
    /// One unit in the ANSI code page, or '?' when it does not give exactly one byte.
    static char AsChar(char16_t unit);
    /// For qsort over an array of WString: ICmp of the two strings \p a and \p b point at.
    static int ICmpForQSort(void const* a, void const* b);

    /// @name Memory images: each byte becomes two units, high nibble first, each nibble n the
    /// unit 0x30 + n (so the digits run from '0' to '?'). This is not hexadecimal. Encoding
    /// null data or 0 bytes leaves null. Decoding wants exactly 2n units (false otherwise,
    /// nothing written) and stops with false at the first unit outside 0x30 to 0x3F, the bytes
    /// before it written; null \p data with n above 0 answers false.
    ///@{
    void EncodeMemory(void const* data, unsigned long long n);
    bool DecodeMemory(void* data, unsigned long long n) const;
    ///@}

    /// Orders case-blind, as ICmp does: the comparator of the maps of translation keys.
    struct ILess {
        bool operator()(WString const& a, WString const& b) const { return a.ICmp(b) < 0; }
    };
};

extern template class StringBase<WString, char16_t>;
