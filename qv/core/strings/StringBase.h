/// \file
/// The one implementation behind WString and BString.
///
/// A string is one pointer: null (the empty string) or a shared block that holds the capacity,
/// an atomic reference count, the length when it is known and the zero-terminated text in one
/// malloc'ed allocation. Copies share the block; every writer unshares first. The terminator is
/// the truth: the length is a cache of where it stands, kept by the string's own writers and
/// given up for good on a block whose writable text was handed out (Str()), so that a string a
/// caller wrote through a pointer stays consistent.
///
/// S is the derived class (WString or BString), so that operations hand back the caller's own
/// type; Unit is its character. The twins' differences come from StringTraits<Unit>; the
/// decisions are in docs/strings.md and docs/string-formats.md.
#pragma once

#include <atomic>
#include <concepts>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <qv/core/Export.h>
#include <qv/core/strings/internal/StringTraits.h>
#include <string_view>
#include <type_traits>

/// The shared block of a string: its header, with the terminated text right behind it.
template <class Unit>
struct SharedString {
    std::uint64_t capacity;          // characters the block can hold, without the terminator
    std::atomic<std::int32_t> count; // string objects that hold the block
    // Units before the terminator, or one of the two marks below. Atomic because a
    // BString::Str() on a shared block marks it while another holder may read it.
    std::atomic<std::uint32_t> length;

    // Not known now; the next Length() scans and keeps what it finds.
    static constexpr std::uint32_t kLengthUnknown = 0xFFFFFFFE;
    // Writable text was handed out, so anyone may change the text behind our back: the
    // length is never kept again on this block. A grown or unshared copy starts afresh.
    static constexpr std::uint32_t kLengthExposed = 0xFFFFFFFF;

    // The cached length, kLengthUnknown when the text must be scanned.
    std::uint32_t KnownLength() const { return length.load(std::memory_order_relaxed); }
    // The string's own writer has left the text n units long.
    void KeepLength(std::uint64_t n) {
        if (length.load(std::memory_order_relaxed) != kLengthExposed)
            length.store(n < kLengthUnknown ? static_cast<std::uint32_t>(n) : kLengthUnknown,
                         std::memory_order_relaxed);
    }
    // Terminates the text after n units and keeps that length.
    void End(std::uint64_t n) {
        Text()[n] = 0;
        KeepLength(n);
    }
    void ForgetLength() { KeepLength(kLengthUnknown); }
    void ExposeText() { length.store(kLengthExposed, std::memory_order_relaxed); }

    Unit* Text() { return reinterpret_cast<Unit*>(this + 1); }
    Unit const* Text() const { return reinterpret_cast<Unit const*>(this + 1); }
};

// The text starts 16 bytes into the block for both widths, as it always has: the length sits
// in what was padding.
static_assert(sizeof(SharedString<char>) == 16 && sizeof(SharedString<char16_t>) == 16);

using SharedBString = SharedString<char>;
using SharedWString = SharedString<char16_t>;

// Exported as a template, so that both explicit instantiations in StringBase.cpp (the one
// definition of every operation the twins share) leave the library: an attribute on the
// instantiations themselves would come too late, after WString and BString have named them.
/// The operations both twins share. Positions and lengths count characters (bytes or UTF-16
/// units). An empty string is null or a block with empty text; the operations treat both
/// alike unless told. Failures are answered by false, an empty result or the not-found value
/// of Search, with the string unchanged; no BError is raised, and only a failed allocation
/// throws (std::bad_alloc). Bounds are the caller's duty where an operation says "no check".
///
/// Threads: the reference count is the only shared state, so strings that share a block may
/// live in different threads; one string object used by two threads at once is not protected.
/// Text pointers handed out (CStr, View) are borrowed: they hold until the string changes.
template <class S, class Unit>
class QV_EXPORT StringBase {
public:
    using Traits = qv::detail::StringTraits<Unit>;
    using CharArg = typename Traits::CharArg;
    using size_type = unsigned long long;

    // Construction, assignment, access.
    /// @name Construction. Copies share the block (one atomic increment); a move leaves the
    /// source null. Text is copied into a block of its own length; null or empty text gives
    /// null. A view ends at its first zero unit, if it holds one.
    ///@{
    StringBase() noexcept = default;
    StringBase(StringBase const& other) noexcept : m_block(other.m_block) { Ref(m_block); }
    StringBase(StringBase&& other) noexcept : m_block(other.m_block) { other.m_block = nullptr; }
    StringBase(Unit const* text);
    StringBase(std::basic_string_view<Unit> text);
    ///@}
    ~StringBase() { Unref(m_block); }

    /// @name Assignment. A string shares the other's block. Text is copied into a new block
    /// before the old one goes, so it may point into this string; null or empty text leaves
    /// null.
    ///@{
    StringBase& operator=(StringBase const& other) noexcept;
    StringBase& operator=(StringBase&& other) noexcept;
    S& operator=(Unit const* text);
    ///@}

    /// Releases the block and leaves null.
    void Clear() noexcept;
    /// The characters before the terminator; 0 on null. Kept in the block while the string's
    /// own writers change it, counted again after writable text was handed out.
    size_type Length() const {
        if (!m_block)
            return 0;
        std::uint32_t const n = m_block->KnownLength();
        return n < Block::kLengthUnknown ? n : ScanLength();
    }
    /// True on null or empty text.
    bool IsEmpty() const { return !m_block || m_block->Text()[0] == 0; }
    /// @name The text. CStr(), the conversion and View never give null: a null string gives a
    /// constant empty text. CStr(pos) gives the text from \p pos on without a check, and null
    /// on a null string (even for 0).
    ///@{
    Unit const* CStr() const { return m_block ? m_block->Text() : EmptyText(); }
    Unit const* CStr(size_type pos) const { return m_block ? m_block->Text() + pos : nullptr; }
    operator Unit const*() const { return CStr(); }
    std::basic_string_view<Unit> View() const { return {CStr(), Length()}; }
    ///@}

    /// Unshares and writes \p c at \p pos, without a check.
    void SetAt(size_type pos, Unit c);
    /// The string becomes \p n copies of \p c; \p n = 0 leaves null.
    void Fill(size_type n, Unit c);

    // Comparison. A null text argument counts as empty; null equals empty.
    /// @name Equality, the same as operator==: BString compares exact bytes, WString by the
    /// user's locale (lstrcmpW gives 0), so two spellings its collator calls equal are equal.
    ///@{
    bool Equal(S const& other) const;
    bool Equal(Unit const* text) const;
    // Hidden friends rather than members: with a member, the rewritten reversed form of
    // a == b is an equally good candidate and C++20 calls the comparison ambiguous.
    friend bool operator==(S const& a, S const& b) { return a.Equal(b); }
    friend bool operator==(S const& a, Unit const* text) { return a.Equal(text); }
    ///@}
    /// The order of sorted containers: BString by unsigned bytes, WString by the locale.
    friend bool operator<(S const& a, S const& b) { return Less(a.CStr(), b.CStr()); }
    /// @name Three-way comparison under the user's locale (lstrcmp), below, at or above 0;
    /// ICmp and IEqual ignore case. BString's Cmp may call equal what operator== does not.
    ///@{
    int Cmp(S const& other) const { return Cmp(other.CStr()); }
    int Cmp(Unit const* text) const;
    int ICmp(S const& other) const { return ICmp(other.CStr()); }
    int ICmp(Unit const* text) const;
    bool IEqual(S const& other) const { return ICmp(other) == 0; }
    bool IEqual(Unit const* text) const { return ICmp(text) == 0; }
    ///@}

    // Search and character classes. The character 0 never occurs in a string.
    /// @name The needle occurs; IIncludes ignores case. An empty or null needle is always
    /// included, even in an empty string; a character never in an empty string.
    ///@{
    bool Includes(S const& needle) const { return Includes(needle.CStr()); }
    bool Includes(Unit const* needle) const;
    bool Includes(CharArg c) const;
    bool IIncludes(S const& needle) const { return IIncludes(needle.CStr()); }
    bool IIncludes(Unit const* needle) const;
    bool IIncludes(CharArg c) const;
    ///@}
    /// @name As Includes (case-sensitive), with the position of the first occurrence in \p pos,
    /// which is set to 0 first: an empty needle answers true with 0.
    ///@{
    bool IncludesPos(S const& needle, size_type& pos) const {
        return IncludesPos(needle.CStr(), pos);
    }
    bool IncludesPos(Unit const* needle, size_type& pos) const;
    bool IncludesPos(CharArg c, size_type& pos) const;
    ///@}
    /// @name The position of the first occurrence at or behind \p from, case-sensitive. Not
    /// found, an empty needle, an empty string or \p from at or past the end: BString answers
    /// 65535 (not all ones: callers test for that value), WString all ones.
    ///@{
    size_type Search(S const& needle, size_type from = 0) const {
        return Search(needle.CStr(), from);
    }
    size_type Search(Unit const* needle, size_type from = 0) const;
    size_type Search(Unit c, size_type from = 0) const;
    ///@}
    /// @name Prefix and suffix tests; the I forms ignore case. A null text is true; a null
    /// string is false, even for an empty text, while a block with empty text starts and ends
    /// with the empty text. BString's EndsWith compares exact bytes, WString's the locale rule.
    ///@{
    bool StartsWith(S const& text) const { return StartsWith(text.CStr()); }
    bool StartsWith(Unit const* text) const;
    bool IStartsWith(S const& text) const { return IStartsWith(text.CStr()); }
    bool IStartsWith(Unit const* text) const;
    bool EndsWith(S const& text) const { return EndsWith(text.CStr()); }
    bool EndsWith(Unit const* text) const;
    bool IEndsWith(S const& text) const { return IEndsWith(text.CStr()); }
    bool IEndsWith(Unit const* text) const;
    ///@}
    /// @name Every character is a letter, a letter or digit, a digit (IsNumeric too), printable,
    /// a letter, digit or underscore, or one of \p set; true for an empty string. The classes
    /// are the C runtime's, for the ANSI code page or UTF-16.
    ///@{
    bool IsAlpha() const;
    bool IsAlphaNum() const;
    bool IsDigit() const;
    bool IsPrint() const;
    bool IsNumeric() const { return IsDigit(); }
    bool IsAlphaNumUnderscore() const;
    bool IsCharSet(Unit const* set) const;
    ///@}
    /// @name The number of tokens Token finds: 0 for an empty string, else one more than the
    /// separators ("a;" has 2).
    ///@{
    size_type TokenCount(Unit sep) const;
    size_type GetTokenCount(Unit sep) const { return TokenCount(sep); }
    ///@}

    // Extraction and cutting. A position past the end is an ordinary no-op.
    /// @name Token \p n (from 0) between separators \p sep: adjacent separators delimit empty
    /// tokens, nothing is trimmed. Empty past the last token.
    ///@{
    S Token(size_type n, Unit sep) const;
    S GetToken(size_type n, Unit sep) const { return Token(n, sep); }
    ///@}
    /// A new string from \p pos to the end; empty when \p pos is at or past the end.
    S Sub(size_type pos) const;
    /// A new string of at most \p n characters from \p pos; a huge \p n means the rest.
    S Sub(size_type pos, size_type n) const;
    /// A new string from \p pos up to, not including, the next \p c, or the rest; empty when
    /// \p pos is at or past the end or \p c stands there.
    S SubCh(size_type pos, CharArg c) const;
    /// Returns Sub(pos) and truncates this string at \p pos; nothing changes when \p pos is at
    /// or past the end.
    S Cut(size_type pos);
    /// Returns Sub(pos, n) and removes those characters.
    S Cut(size_type pos, size_type n);
    /// Truncates at \p pos; false, unchanged, when \p pos is at or past the end.
    bool CutAt(size_type pos);
    /// Truncates behind the first (or, with \p first false, the last) \p c, which stays.
    /// False when there is none or it is the last character; a null string may then be left
    /// holding an empty block.
    bool CutAfter(CharArg c, bool first = true);
    /// Moves the text from the first (or last) \p c on, \p c included, into \p rest and cuts
    /// this string before it. Not found: false, \p rest cleared, this string as it was.
    bool Split(S& rest, CharArg c, bool first = true);
    /// Removes \p n characters at \p pos, or truncates at \p pos when fewer follow.
    void Remove(size_type pos, size_type n);

    // Changing. Every writer unshares first: strings sharing the block keep their text.
    /// @name Appends; null text does nothing. A string may be appended to itself. A block
    /// that must grow at least doubles, so appending piece by piece costs amortised linear
    /// copying; the end is found from the kept length, or by a scan on a block whose
    /// writable text was handed out.
    ///@{
    S& Append(S const& other);
    S& Append(Unit const* text);
    S& Append(Unit c);
    S& operator+=(S const& other) { return Append(other); }
    S& operator+=(Unit const* text) { return Append(text); }
    S& operator+=(Unit c) { return Append(c); }
    ///@}
    /// @name A new string holding the concatenation; null when both sides are empty.
    ///@{
    friend S operator+(S const& a, S const& b) { return Concat(a.CStr(), b.CStr()); }
    friend S operator+(S const& a, Unit const* b) { return Concat(a.CStr(), b); }
    friend S operator+(Unit const* a, S const& b) { return Concat(a, b.CStr()); }
    ///@}
    /// @name Puts the argument in front; null or empty text and the character 0 change nothing.
    ///@{
    S& Prepend(S const& other) { return Prepend(other.CStr()); }
    S& Prepend(Unit const* text);
    S& Prepend(Unit c);
    ///@}
    /// Inserts \p text at \p pos, which may be the end (so it can append). Null or empty
    /// text, or \p pos past the end, changes nothing.
    S& Insert(Unit const* text, size_type pos);
    /// Inserts \p c at \p pos; \p pos at or past the end changes nothing, so this cannot
    /// append.
    S& Insert(Unit c, size_type pos);
    /// @name Replacing; the IReplace forms and \p caseSensitive false find in either case.
    /// A character: every \p c1 becomes \p c2, scanning forward once. False for an empty
    /// string, a zero character, or no \p c1; with \p c1 equal to \p c2, WString answers true
    /// at once, BString only when \p c1 occurs. A text: every occurrence of \p from becomes
    /// \p to (null counts as empty), from left to right; the inserted text is never searched,
    /// so "a" by "aa" in "aaa" gives six. False for a null or empty \p from, an empty string or
    /// no hit. Replacing everything by nothing leaves a block with empty text.
    ///@{
    bool Replace(Unit c1, Unit c2, bool caseSensitive = true);
    bool Replace(Unit const* from, Unit const* to, bool caseSensitive = true);
    bool Replace(S const& from, S const& to, bool caseSensitive = true) {
        return Replace(from.CStr(), to.CStr(), caseSensitive);
    }
    bool IReplace(Unit c1, Unit c2) { return Replace(c1, c2, false); }
    bool IReplace(Unit const* from, Unit const* to) { return Replace(from, to, false); }
    bool IReplace(S const& from, S const& to) { return Replace(from, to, false); }
    ///@}
    /// Overwrites in place from \p pos, never growing: as much of \p text as fits before the
    /// end. Null or empty text, an empty string or \p pos at or past the end changes nothing.
    void ReplaceAt(Unit const* text, size_type pos);
    /// @name Remove leading (TrimLeft) or trailing (TrimRight) white space, copies of \p c, or
    /// characters of \p set; true when something went. False for an empty string, \p c = 0, or
    /// a null or empty set. Trimming everything on the right leaves a block with empty text.
    ///@{
    bool TrimLeft();
    bool TrimLeft(Unit c);
    bool TrimLeft(Unit const* set);
    bool TrimRight();
    bool TrimRight(Unit c);
    bool TrimRight(Unit const* set);
    ///@}
    /// @name TrimLeft(c), TrimRight(c), or every \p c removed; each returns this string.
    ///@{
    S& EraseLeadingChars(Unit c);
    S& EraseTrailingChars(Unit c);
    S& EraseAllChars(Unit c);
    ///@}
    /// @name Case, character by character by the C runtime's mapping. ToLower and ToUpper
    /// change this string and return a copy sharing the result; Lower and Upper leave it alone.
    ///@{
    S ToLower();
    S ToUpper();
    S Lower() const;
    S Upper() const;
    ///@}

    // Numbers, formatted text, visible forms and file forms (StringFormats.cpp).
    /// @name The leading number, read as the MSVC runtime's atoi and atof do; 0 when there is
    /// none.
    ///@{
    int AtoI() const;
    double AtoF() const;
    ///@}
    /// The digits of \p value in \p radix 2 to 36 (negative with a sign only in radix 10); a
    /// bad radix leaves the string as it was.
    S& ItoA(long long value, int radix = 10);
    /// The decimal digits of \p value.
    static S FromInt(long long value);
    /// @name The whole text must be the number, white space around it allowed. The target is
    /// written by the scan even when the result is false.
    ///@{
    bool Convert(float& value) const;
    bool Convert(double& value) const;
    ///@}
    /// BString: decimal, else hexadecimal. WString: a floating-point number rounded half away
    /// from zero and saturated to the int range, else hexadecimal. So "ff" gives 255.
    bool Convert(int& value) const;

    /// Formats as the MSVC runtime's vsnprintf_s does (qv/platform/WideFormat.h), first into a
    /// fixed buffer and, when the text is longer, into heap buffers of 32768 elements and more.
    /// A null or invalid format clears the string; when no heap buffer can be had, BString
    /// keeps its old text and WString is left empty. Strings of either class may be passed
    /// directly; they go in as their text.
    template <class... Args>
    void Printf(Unit const* format, Args const&... args) {
        PrintfArgs(format, PassArg(args)...);
    }
    /// Printf with a va_list.
    void VPrintf(Unit const* format, va_list args);

    /// Every character visible: \\n \\t \\r and \\\\ for line feed, tab, carriage return
    /// and backslash, \\xhh for the others that need escaping (BString: every byte from 0x80;
    /// WString: what is not printable, shown by its low 8 bits only). Shares the block when
    /// nothing needs escaping.
    S Printable() const;
    /// Undoes the escapes of Printable from left to right in one pass; \\x without two
    /// hexadecimal digits behind it disappears with what follows it, up to four characters.
    /// Another backslash stays as it is.
    void ResolveEsc();

    /// @name The binary record: length n and its complement as 32-bit little-endian words, n
    /// units (little-endian), a zero unit. FRead refuses a bad header and leaves the string; a
    /// short read or a non-zero terminator clears it. FWrite is false for a string over 2^32 - 1
    /// characters or a failed write. A null stream answers false.
    ///@{
    bool FRead(std::FILE* stream);
    bool FWrite(std::FILE* stream) const;
    ///@}
    /// Reads one line in pieces of 511 characters and drops the line feeds at its end; false
    /// only without a stream or when the end of the file was flagged before. Holds the
    /// stream's lock for the whole line.
    bool ReadLn(std::FILE* stream);

protected:
    void PrintfArgs(Unit const* format, ...);
    // What a Printf argument passes through the C variable arguments: the text of a string,
    // the value of anything that can travel there.
    template <class T>
    static auto PassArg(T const& value) {
        if constexpr (requires { value.View(); })
            return value.CStr();
        else if constexpr (std::is_array_v<T>)
            return static_cast<std::remove_extent_t<T> const*>(value);
        else {
            static_assert(std::is_trivially_copyable_v<T>,
                          "Printf takes numbers, characters, pointers and strings");
            return value;
        }
    }
    // The record's reading and writing over any byte stream; read returns the bytes it got.
    using RecordRead = std::size_t (*)(void* stream, void* data, std::size_t bytes);
    using RecordWrite = bool (*)(void* stream, void const* data, std::size_t bytes);
    bool ReadRecord(RecordRead read, void* stream);
    bool WriteRecord(RecordWrite write, void* stream) const;

    using Block = SharedString<Unit>;

    // The one constant empty text of this width, handed out for a null string.
    static constexpr Unit kEmptyText[1] = {};
    static constexpr Unit const* EmptyText() noexcept { return kEmptyText; }
    // The order of operator<. Out of line, like Length, Cmp and ICmp: the platform's text
    // services they call are not exported, so no inline code in this header may call them.
    static bool Less(Unit const* a, Unit const* b);
    static Block* CreateShared();
    static Block* CreateShared(size_type capacity);
    static Block* CreateShared(Unit const* text);
    static Block* CreateShared(Block const* block);
    static Block* CreateShared(Unit const* text, size_type length, size_type capacity);
    static S Adopt(Block* block) noexcept;
    static S Concat(Unit const* a, Unit const* b);

    static void Ref(Block* b) noexcept {
        if (b)
            b->count.fetch_add(1, std::memory_order_relaxed);
    }
    static void Unref(Block* b) noexcept {
        // A count of 1 means this holder is the only one, so nobody can take a reference
        // concurrently and the atomic decrement can be skipped.
        if (b && (b->count.load(std::memory_order_acquire) == 1 ||
                  b->count.fetch_sub(1, std::memory_order_acq_rel) == 1))
            FreeBlock(b);
    }
    static void FreeBlock(Block* b) noexcept;
    // Length() when the block does not know it: scans, and keeps the result unless the text
    // is exposed.
    size_type ScanLength() const;
    void Reset(Block* b) noexcept; // takes b's first reference, releases the old block
    void Unshare();                // afterwards the object always holds a private block
    // On a private block: keeps its first length units and makes room for n more and a
    // terminator behind them, growing geometrically; returns where the n units go.
    Unit* TailRoom(size_type length, size_type n);
    // Appends n units of text, which may lie in this string's own block.
    S& AppendUnits(Unit const* text, size_type n);
    S& Self() noexcept { return static_cast<S&>(*this); }
    template <class Pred>
    bool All(Pred pred) const;
    template <class Pred>
    bool TrimLeftIf(Pred pred);
    template <class Pred>
    bool TrimRightIf(Pred pred);
    Unit const* FindChar(Unit c, bool first) const;

    Block* m_block = nullptr;
};
