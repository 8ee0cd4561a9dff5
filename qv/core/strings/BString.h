/// \file
/// BString: a copy-on-write string of bytes in the ANSI code page, one pointer wide. Null is
/// the empty string. The operations shared with WString live in StringBase.
#pragma once

#include <concepts>
#include <iosfwd>
#include <qv/core/Export.h>
#include <qv/core/strings/StringBase.h>

/// A plain value, copied freely: copies share the text until one writes. Equality compares
/// exact bytes while Cmp and ICmp follow the locale, and a failed Search answers 65535.
/// Threads: as StringBase.
class QV_EXPORT BString : public StringBase<BString, char> {
public:
    using StringBase::StringBase;
    using StringBase::operator=;
    using StringBase::FRead;
    using StringBase::FWrite;

    BString() noexcept = default;
    /// Wide text converted to the ANSI code page; null or empty gives null. Characters the
    /// code page lacks come out as the conversion makes them; nothing is reported.
    BString(char16_t const* wide);

    /// The held text without unsharing, null on a null string: the caller must not write
    /// through it while the block is shared. The block stops caching its length for good.
    char* Str() const {
        if (!m_block)
            return nullptr;
        m_block->ExposeText();
        return m_block->Text();
    }

    /// The byte at the index, without a check: the string must hold a block and the index
    /// lie within it.
    template <std::integral I>
    char operator[](I index) const {
        return m_block->Text()[index];
    }

    /// @name The binary record of FRead(FILE *) and FWrite(FILE *) on a C++ stream, with the
    /// same answers.
    ///@{
    bool FRead(std::istream& stream);
    bool FWrite(std::ostream& stream) const;
    ///@}

    /// The constant empty text that CStr() gives for a null string.
    static char const* const static_empty_str;
};

class WString;

/// Orders strings of either width case-blind, as their ICmp does: the comparator of the
/// case-blind maps of narrow names and of translation keys alike.
struct StrILess {
    bool operator()(BString const& a, BString const& b) const { return a.ICmp(b) < 0; }
    // A template only so that WString need not be complete here.
    template <std::same_as<WString> S>
    bool operator()(S const& a, S const& b) const {
        return a.ICmp(b) < 0;
    }
};

extern template class StringBase<BString, char>;
