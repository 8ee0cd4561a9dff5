#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/StringBase.h>
#include <qv/core/strings/WString.h>

namespace {

template <class Unit>
void CopyUnits(Unit* dst, Unit const* src, std::size_t n) {
    if (n)
        std::memmove(dst, src, n * sizeof(Unit));
}

template <class Unit>
std::size_t BoundedLength(Unit const* text, std::size_t max) {
    std::size_t n = 0;
    while (n < max && text[n])
        ++n;
    return n;
}

template <class Unit>
bool InSet(Unit const* set, Unit c) {
    for (; *set; ++set)
        if (*set == c)
            return true;
    return false;
}

// The capacity of a block that must hold needed units, growing one of the given capacity: at
// least double, so that a string built piece by piece costs a constant amount per unit. The
// spare room is not observable: AllocatedMemory counts the length, not the capacity.
std::uint64_t GrownCapacity(std::uint64_t capacity, std::uint64_t needed) {
    constexpr std::uint64_t kMinCapacity = 32;
    return std::max({needed, 2 * capacity, kMinCapacity});
}

} // namespace

// ---- blocks ---------------------------------------------------------------------------------

template <class S, class Unit>
auto StringBase<S, Unit>::CreateShared(Unit const* text, size_type length, size_type capacity)
    -> Block* {
    // A failed allocation has no result to report through; callers expect the operation to
    // succeed, so the failure travels as std::bad_alloc like any other C++ allocation.
    constexpr size_type kMax = (~std::size_t{0} - sizeof(Block)) / sizeof(Unit) - 1;
    if (capacity > kMax)
        throw std::bad_alloc();
    void* raw = std::malloc(sizeof(Block) + (capacity + 1) * sizeof(Unit));
    if (!raw)
        throw std::bad_alloc();
    Block* b = new (raw) Block{capacity, {0}, {0}};
    CopyUnits(b->Text(), text, length);
    b->End(length);
    return b;
}

template <class S, class Unit>
auto StringBase<S, Unit>::CreateShared() -> Block* {
    return CreateShared(nullptr, 0, 0);
}

template <class S, class Unit>
auto StringBase<S, Unit>::CreateShared(size_type capacity) -> Block* {
    return CreateShared(nullptr, 0, capacity);
}

template <class S, class Unit>
auto StringBase<S, Unit>::CreateShared(Unit const* text) -> Block* {
    size_type n = text ? Traits::Length(text) : 0;
    return CreateShared(text, n, n);
}

template <class S, class Unit>
auto StringBase<S, Unit>::CreateShared(Block const* block) -> Block* {
    // The copy's capacity is the length of the text, not the capacity of the original.
    std::uint32_t const known = block->KnownLength();
    size_type const n = known < Block::kLengthUnknown ? known : Traits::Length(block->Text());
    return CreateShared(block->Text(), n, n);
}

template <class S, class Unit>
void StringBase<S, Unit>::FreeBlock(Block* b) noexcept {
    b->~Block();
    std::free(b);
}

template <class S, class Unit>
S StringBase<S, Unit>::Adopt(Block* block) noexcept {
    S s;
    Ref(block);
    static_cast<StringBase&>(s).m_block = block;
    return s;
}

template <class S, class Unit>
void StringBase<S, Unit>::Reset(Block* b) noexcept {
    Ref(b);
    Block* old = m_block;
    m_block = b;
    Unref(old);
}

template <class S, class Unit>
void StringBase<S, Unit>::Unshare() {
    if (!m_block)
        Reset(CreateShared());
    else if (m_block->count.load(std::memory_order_acquire) > 1)
        Reset(CreateShared(m_block));
}

template <class S, class Unit>
Unit* StringBase<S, Unit>::TailRoom(size_type length, size_type n) {
    if (length + n > m_block->capacity)
        Reset(CreateShared(m_block->Text(), length, GrownCapacity(m_block->capacity, length + n)));
    return m_block->Text() + length;
}

template <class S, class Unit>
S StringBase<S, Unit>::Concat(Unit const* a, Unit const* b) {
    size_type la = a ? Traits::Length(a) : 0;
    size_type lb = b ? Traits::Length(b) : 0;
    if (la + lb == 0)
        return S();
    Block* block = CreateShared(a, la, la + lb);
    CopyUnits(block->Text() + la, b, lb);
    block->End(la + lb);
    return Adopt(block);
}

// ---- construction, assignment, access -------------------------------------------------------

template <class S, class Unit>
StringBase<S, Unit>::StringBase(Unit const* text) {
    if (text && *text)
        Reset(CreateShared(text));
}

template <class S, class Unit>
StringBase<S, Unit>::StringBase(std::basic_string_view<Unit> text) {
    // The view may hold a terminator: the string ends there, as the text form would.
    size_type n = BoundedLength(text.data(), text.size());
    if (n)
        Reset(CreateShared(text.data(), n, n));
}

template <class S, class Unit>
auto StringBase<S, Unit>::operator=(StringBase const& other) noexcept -> StringBase& {
    if (m_block != other.m_block)
        Reset(other.m_block);
    return *this;
}

template <class S, class Unit>
auto StringBase<S, Unit>::operator=(StringBase&& other) noexcept -> StringBase& {
    if (this != &other) {
        Block* old = m_block;
        m_block = other.m_block;
        other.m_block = nullptr;
        Unref(old);
    }
    return *this;
}

template <class S, class Unit>
S& StringBase<S, Unit>::operator=(Unit const* text) {
    // The new block is made before the old one goes, so text may point into this string.
    if (!text || !*text)
        Clear();
    else
        Reset(CreateShared(text));
    return Self();
}

template <class S, class Unit>
void StringBase<S, Unit>::Clear() noexcept {
    Block* old = m_block;
    m_block = nullptr;
    Unref(old);
}

template <class S, class Unit>
void StringBase<S, Unit>::SetAt(size_type pos, Unit c) {
    Unshare();
    m_block->Text()[pos] = c;
    // Within a known text a unit changes or the text ends there; anything else (the
    // terminator overwritten, a unit written behind it) leaves the end to a later scan. No
    // scan here: SetAt stays constant-time on a block whose length is not known.
    std::uint32_t const known = m_block->KnownLength();
    if (known >= Block::kLengthUnknown)
        return;
    if (pos >= known)
        m_block->ForgetLength();
    else if (c == 0)
        m_block->KeepLength(pos);
}

template <class S, class Unit>
void StringBase<S, Unit>::Fill(size_type n, Unit c) {
    // A block of our own that is large enough is filled in place, so that reading one string
    // after another into the same variable (as the archive's record scan does) allocates once.
    if (n && m_block && m_block->capacity >= n &&
        m_block->count.load(std::memory_order_acquire) == 1) {
        std::fill_n(m_block->Text(), n, c);
        m_block->Text()[n] = 0;
        m_block->KeepLength(c ? n : 0);
        return;
    }
    Clear();
    if (n == 0)
        return;
    Block* b = CreateShared(n);
    std::fill_n(b->Text(), n, c);
    b->Text()[n] = 0;
    b->KeepLength(c ? n : 0);
    Reset(b);
}

template <class S, class Unit>
auto StringBase<S, Unit>::ScanLength() const -> size_type {
    size_type const n = Traits::Length(m_block->Text());
    // Only an unknown length is filled in: a block exposed meanwhile (BString::Str() on a
    // shared block, from another holder) must stay exposed.
    std::uint32_t unknown = Block::kLengthUnknown;
    if (n < Block::kLengthUnknown)
        m_block->length.compare_exchange_strong(unknown, static_cast<std::uint32_t>(n),
                                                std::memory_order_relaxed);
    return n;
}

// ---- comparison -----------------------------------------------------------------------------

template <class S, class Unit>
bool StringBase<S, Unit>::Less(Unit const* a, Unit const* b) {
    return Traits::Less(a, b);
}

template <class S, class Unit>
int StringBase<S, Unit>::Cmp(Unit const* text) const {
    return Traits::Cmp(CStr(), text ? text : EmptyText());
}

template <class S, class Unit>
int StringBase<S, Unit>::ICmp(Unit const* text) const {
    return Traits::ICmp(CStr(), text ? text : EmptyText());
}

template <class S, class Unit>
bool StringBase<S, Unit>::Equal(S const& other) const {
    if (m_block == other.m_block)
        return true;
    return Traits::Equal(CStr(), other.CStr());
}

template <class S, class Unit>
bool StringBase<S, Unit>::Equal(Unit const* text) const {
    return Traits::Equal(CStr(), text ? text : EmptyText());
}

// ---- search ---------------------------------------------------------------------------------

template <class S, class Unit>
bool StringBase<S, Unit>::Includes(Unit const* needle) const {
    if (!needle || !*needle)
        return true;
    return !IsEmpty() && Traits::Find(CStr(), needle) != nullptr;
}

template <class S, class Unit>
bool StringBase<S, Unit>::Includes(CharArg c) const {
    Unit u = static_cast<Unit>(c);
    return u != 0 && !IsEmpty() && View().find(u) != size_type(-1);
}

template <class S, class Unit>
bool StringBase<S, Unit>::IIncludes(Unit const* needle) const {
    if (!needle || !*needle)
        return true;
    return !IsEmpty() && Traits::IFind(CStr(), needle) != nullptr;
}

template <class S, class Unit>
bool StringBase<S, Unit>::IIncludes(CharArg c) const {
    Unit u = static_cast<Unit>(c);
    return u != 0 && !IsEmpty() && Traits::IFindChar(CStr(), u) != nullptr;
}

template <class S, class Unit>
bool StringBase<S, Unit>::IncludesPos(Unit const* needle, size_type& pos) const {
    pos = 0;
    if (!needle || !*needle)
        return true;
    if (IsEmpty())
        return false;
    Unit const* hit = Traits::Find(CStr(), needle);
    if (!hit)
        return false;
    pos = static_cast<size_type>(hit - CStr());
    return true;
}

template <class S, class Unit>
bool StringBase<S, Unit>::IncludesPos(CharArg c, size_type& pos) const {
    pos = 0;
    Unit u = static_cast<Unit>(c);
    if (u == 0 || IsEmpty())
        return false;
    auto at = View().find(u);
    if (at == std::basic_string_view<Unit>::npos)
        return false;
    pos = at;
    return true;
}

template <class S, class Unit>
auto StringBase<S, Unit>::Search(Unit const* needle, size_type from) const -> size_type {
    if (!needle || !*needle || IsEmpty() || from >= Length())
        return Traits::kNotFound;
    Unit const* hit = Traits::Find(CStr() + from, needle);
    return hit ? static_cast<size_type>(hit - CStr()) : Traits::kNotFound;
}

template <class S, class Unit>
auto StringBase<S, Unit>::Search(Unit c, size_type from) const -> size_type {
    if (c == 0 || IsEmpty())
        return Traits::kNotFound;
    auto at = View().find(c, from);
    return at == std::basic_string_view<Unit>::npos ? Traits::kNotFound : at;
}

template <class S, class Unit>
bool StringBase<S, Unit>::StartsWith(Unit const* text) const {
    if (!text)
        return true;
    if (!m_block)
        return false;
    return Traits::NCmp(CStr(), text, Traits::Length(text)) == 0;
}

template <class S, class Unit>
bool StringBase<S, Unit>::IStartsWith(Unit const* text) const {
    if (!text)
        return true;
    if (!m_block)
        return false;
    return Traits::NICmp(CStr(), text, Traits::Length(text)) == 0;
}

template <class S, class Unit>
bool StringBase<S, Unit>::EndsWith(Unit const* text) const {
    if (!text)
        return true;
    if (!m_block)
        return false;
    size_type len = Length(), n = Traits::Length(text);
    return n <= len && Traits::TailEqual(CStr() + (len - n), text);
}

template <class S, class Unit>
bool StringBase<S, Unit>::IEndsWith(Unit const* text) const {
    if (!text)
        return true;
    if (!m_block)
        return false;
    size_type len = Length(), n = Traits::Length(text);
    return n <= len && Traits::TailIEqual(CStr() + (len - n), text);
}

template <class S, class Unit>
template <class Pred>
bool StringBase<S, Unit>::All(Pred pred) const {
    for (Unit const* p = CStr(); *p; ++p)
        if (!pred(*p))
            return false;
    return true;
}

template <class S, class Unit>
bool StringBase<S, Unit>::IsAlpha() const {
    return All(Traits::IsAlpha);
}

template <class S, class Unit>
bool StringBase<S, Unit>::IsAlphaNum() const {
    return All(Traits::IsAlnum);
}

template <class S, class Unit>
bool StringBase<S, Unit>::IsDigit() const {
    return All(Traits::IsDigit);
}

template <class S, class Unit>
bool StringBase<S, Unit>::IsPrint() const {
    return All(Traits::IsPrint);
}

template <class S, class Unit>
bool StringBase<S, Unit>::IsAlphaNumUnderscore() const {
    return All([](Unit c) { return c == Unit('_') || Traits::IsAlnum(c); });
}

template <class S, class Unit>
bool StringBase<S, Unit>::IsCharSet(Unit const* set) const {
    Unit const* s = set ? set : EmptyText();
    return All([s](Unit c) { return InSet(s, c); });
}

template <class S, class Unit>
auto StringBase<S, Unit>::TokenCount(Unit sep) const -> size_type {
    if (IsEmpty())
        return 0;
    size_type n = 1;
    for (Unit const* p = CStr(); *p; ++p)
        n += *p == sep;
    return n;
}

// ---- extraction and cutting -----------------------------------------------------------------

template <class S, class Unit>
S StringBase<S, Unit>::Token(size_type n, Unit sep) const {
    if (IsEmpty())
        return S();
    Unit const* p = CStr();
    for (size_type passed = 0; passed < n; ++p) {
        if (!*p)
            return S();
        passed += *p == sep;
    }
    // Reaching the terminator right behind the nth separator gives empty as well.
    Unit const* end = p;
    while (*end && *end != sep)
        ++end;
    size_type len = static_cast<size_type>(end - p);
    return len ? Adopt(CreateShared(p, len, len)) : S();
}

template <class S, class Unit>
S StringBase<S, Unit>::Sub(size_type pos) const {
    size_type len = Length();
    if (pos >= len)
        return S();
    return Adopt(CreateShared(CStr() + pos, len - pos, len - pos));
}

template <class S, class Unit>
S StringBase<S, Unit>::Sub(size_type pos, size_type n) const {
    size_type len = Length();
    if (n == 0 || pos >= len)
        return S();
    // The block would have capacity n even when n runs past the end; callers pass huge counts
    // to mean "the rest", so the capacity is bounded by what is there to copy.
    size_type take = std::min(n, len - pos);
    return Adopt(CreateShared(CStr() + pos, take, take));
}

template <class S, class Unit>
S StringBase<S, Unit>::SubCh(size_type pos, CharArg c) const {
    size_type len = Length();
    if (pos >= len)
        return S();
    Unit const* start = CStr() + pos;
    Unit const* end = start;
    while (*end && *end != static_cast<Unit>(c))
        ++end;
    size_type n = static_cast<size_type>(end - start);
    return n ? Adopt(CreateShared(start, n, n)) : S();
}

template <class S, class Unit>
S StringBase<S, Unit>::Cut(size_type pos) {
    if (pos >= Length())
        return S();
    S rest = Sub(pos);
    CutAt(pos);
    return rest;
}

template <class S, class Unit>
S StringBase<S, Unit>::Cut(size_type pos, size_type n) {
    S part = Sub(pos, n);
    Remove(pos, n);
    return part;
}

template <class S, class Unit>
bool StringBase<S, Unit>::CutAt(size_type pos) {
    if (IsEmpty() || pos >= Length())
        return false;
    Unshare();
    m_block->End(pos);
    return true;
}

template <class S, class Unit>
Unit const* StringBase<S, Unit>::FindChar(Unit c, bool first) const {
    std::basic_string_view<Unit> text = View();
    auto at = first ? text.find(c) : text.rfind(c);
    return c == 0 || at == text.npos ? nullptr : CStr() + at;
}

template <class S, class Unit>
bool StringBase<S, Unit>::CutAfter(CharArg c, bool first) {
    Unshare();
    Unit const* hit = FindChar(static_cast<Unit>(c), first);
    if (!hit || hit[1] == 0)
        return false;
    m_block->End(static_cast<size_type>(hit - CStr()) + 1);
    return true;
}

template <class S, class Unit>
bool StringBase<S, Unit>::Split(S& rest, CharArg c, bool first) {
    Unshare();
    Unit const* hit = FindChar(static_cast<Unit>(c), first);
    if (!hit) {
        rest.Clear();
        return false;
    }
    size_type pos = static_cast<size_type>(hit - CStr());
    rest = S(hit); // rest may be this very string: the copy is taken before the cut
    if (&rest != &Self())
        m_block->End(pos);
    return true;
}

template <class S, class Unit>
void StringBase<S, Unit>::Remove(size_type pos, size_type n) {
    size_type len = Length();
    if (len == 0 || pos >= len || n == 0)
        return;
    Unshare();
    Unit* text = m_block->Text();
    if (n >= len - pos) {
        m_block->End(pos);
        return;
    }
    CopyUnits(text + pos, text + pos + n, len - pos - n + 1);
    m_block->KeepLength(len - n);
}

// ---- changing -------------------------------------------------------------------------------

template <class S, class Unit>
S& StringBase<S, Unit>::Append(S const& other) {
    Unshare();
    // The source may be this string; unsharing gives it a private block, whose text survives
    // until the append below is done.
    S keep = other;
    return AppendUnits(keep.CStr(), keep.Length());
}

template <class S, class Unit>
S& StringBase<S, Unit>::Append(Unit const* text) {
    return text ? AppendUnits(text, Traits::Length(text)) : Self();
}

template <class S, class Unit>
S& StringBase<S, Unit>::AppendUnits(Unit const* text, size_type n) {
    Unshare();
    size_type len = Length();
    if (len + n > m_block->capacity) {
        // text may lie in this very block, so the grown block is filled before this one goes.
        Block* b = CreateShared(m_block->Text(), len, GrownCapacity(m_block->capacity, len + n));
        CopyUnits(b->Text() + len, text, n);
        b->End(len + n);
        Reset(b);
        return Self();
    }
    CopyUnits(m_block->Text() + len, text, n);
    m_block->End(len + n);
    return Self();
}

template <class S, class Unit>
S& StringBase<S, Unit>::Append(Unit c) {
    Unshare();
    size_type const len = Length();
    Unit* tail = TailRoom(len, 1);
    tail[0] = c;
    tail[1] = 0;
    m_block->KeepLength(c ? len + 1 : len);
    return Self();
}

template <class S, class Unit>
S& StringBase<S, Unit>::Prepend(Unit const* text) {
    if (!text || !*text)
        return Self();
    *this = Concat(text, CStr());
    return Self();
}

template <class S, class Unit>
S& StringBase<S, Unit>::Prepend(Unit c) {
    if (c == 0)
        return Self();
    Unit text[2] = {c, 0};
    return Prepend(text);
}

template <class S, class Unit>
S& StringBase<S, Unit>::Insert(Unit const* text, size_type pos) {
    if (!text || !*text)
        return Self();
    size_type len = Length();
    if (pos > len)
        return Self();
    if (len == 0) {
        *this = text;
        return Self();
    }
    size_type n = Traits::Length(text);
    Block* b = CreateShared(CStr(), pos, len + n);
    CopyUnits(b->Text() + pos, text, n);
    CopyUnits(b->Text() + pos + n, CStr() + pos, len - pos);
    b->End(len + n);
    Reset(b);
    return Self();
}

template <class S, class Unit>
S& StringBase<S, Unit>::Insert(Unit c, size_type pos) {
    size_type len = Length();
    if (pos >= len)
        return Self();
    Append(c); // a placeholder at the end, which the move below overwrites
    Unit* text = m_block->Text();
    CopyUnits(text + pos + 1, text + pos, len - pos);
    text[pos] = c;
    if (c == 0)
        m_block->KeepLength(pos);
    return Self();
}

template <class S, class Unit>
bool StringBase<S, Unit>::Replace(Unit c1, Unit c2, bool caseSensitive) {
    if (IsEmpty() || c1 == 0 || c2 == 0)
        return false;
    if (Traits::kReplaceSameCharAlwaysTrue && c1 == c2)
        return true;
    auto find = [&](Unit const* from) -> Unit const* {
        if (!caseSensitive)
            return Traits::IFindChar(from, c1);
        for (; *from; ++from)
            if (*from == c1)
                return from;
        return nullptr;
    };
    Unit const* hit = find(CStr());
    if (!hit)
        return false;
    // Positions, not pointers, survive the unsharing.
    size_type pos = static_cast<size_type>(hit - CStr());
    Unshare();
    Unit* text = m_block->Text();
    for (hit = text + pos; hit; hit = find(text + pos + 1)) {
        pos = static_cast<size_type>(hit - text);
        text[pos] = c2;
    }
    return true;
}

template <class S, class Unit>
bool StringBase<S, Unit>::Replace(Unit const* from, Unit const* to, bool caseSensitive) {
    if (!from || !*from || IsEmpty())
        return false;
    if (!to)
        to = EmptyText();
    auto find = caseSensitive ? Traits::Find : Traits::IFind;
    // One pass over the text gives the same result as replacing hit by hit and searching on
    // behind each inserted replacement: the replacement itself is never searched.
    Unit const* text = CStr();
    Unit const* hit = find(text, from);
    if (!hit)
        return false;
    size_type nFrom = Traits::Length(from), nTo = Traits::Length(to);
    std::basic_string<Unit> out;
    Unit const* rest = text;
    for (; hit; hit = find(rest, from)) {
        out.append(rest, static_cast<std::size_t>(hit - rest));
        out.append(to, nTo);
        rest = hit + nFrom;
    }
    out.append(rest);
    *this = S(std::basic_string_view<Unit>(out));
    if (out.empty())
        Reset(CreateShared());
    return true;
}

template <class S, class Unit>
void StringBase<S, Unit>::ReplaceAt(Unit const* text, size_type pos) {
    if (!text || !*text || IsEmpty())
        return;
    size_type len = Length();
    if (pos >= len)
        return;
    size_type n = std::min(len - pos, static_cast<size_type>(Traits::Length(text)));
    Unshare();
    CopyUnits(m_block->Text() + pos, text, n);
}

template <class S, class Unit>
template <class Pred>
bool StringBase<S, Unit>::TrimLeftIf(Pred pred) {
    if (IsEmpty())
        return false;
    Unit const* p = CStr();
    while (*p && pred(*p))
        ++p;
    if (p == CStr())
        return false;
    *this = p; // assigning from our own text is safe: the new block comes first
    return true;
}

template <class S, class Unit>
template <class Pred>
bool StringBase<S, Unit>::TrimRightIf(Pred pred) {
    if (IsEmpty())
        return false;
    size_type len = Length(), end = len;
    Unit const* text = CStr();
    while (end > 0 && pred(text[end - 1]))
        --end;
    if (end == len)
        return false;
    Unshare();
    m_block->End(end);
    return true;
}

template <class S, class Unit>
bool StringBase<S, Unit>::TrimLeft() {
    return TrimLeftIf(Traits::IsSpace);
}

template <class S, class Unit>
bool StringBase<S, Unit>::TrimLeft(Unit c) {
    return c != 0 && TrimLeftIf([c](Unit u) { return u == c; });
}

template <class S, class Unit>
bool StringBase<S, Unit>::TrimLeft(Unit const* set) {
    return set && *set && TrimLeftIf([set](Unit u) { return InSet(set, u); });
}

template <class S, class Unit>
bool StringBase<S, Unit>::TrimRight() {
    return TrimRightIf(Traits::IsSpace);
}

template <class S, class Unit>
bool StringBase<S, Unit>::TrimRight(Unit c) {
    return c != 0 && TrimRightIf([c](Unit u) { return u == c; });
}

template <class S, class Unit>
bool StringBase<S, Unit>::TrimRight(Unit const* set) {
    return set && *set && TrimRightIf([set](Unit u) { return InSet(set, u); });
}

template <class S, class Unit>
S& StringBase<S, Unit>::EraseLeadingChars(Unit c) {
    TrimLeft(c);
    return Self();
}

template <class S, class Unit>
S& StringBase<S, Unit>::EraseTrailingChars(Unit c) {
    TrimRight(c);
    return Self();
}

template <class S, class Unit>
S& StringBase<S, Unit>::EraseAllChars(Unit c) {
    if (c == 0 || !Includes(static_cast<CharArg>(c)))
        return Self();
    Unshare();
    Unit* out = m_block->Text();
    for (Unit const* in = out; *in; ++in)
        if (*in != c)
            *out++ = *in;
    m_block->End(static_cast<size_type>(out - m_block->Text()));
    return Self();
}

template <class S, class Unit>
S StringBase<S, Unit>::ToLower() {
    if (m_block) {
        Unshare();
        Unit* p = m_block->Text();
        for (; *p; ++p)
            *p = Traits::ToLower(*p);
        m_block->KeepLength(static_cast<size_type>(p - m_block->Text()));
    }
    return Self();
}

template <class S, class Unit>
S StringBase<S, Unit>::ToUpper() {
    if (m_block) {
        Unshare();
        Unit* p = m_block->Text();
        for (; *p; ++p)
            *p = Traits::ToUpper(*p);
        m_block->KeepLength(static_cast<size_type>(p - m_block->Text()));
    }
    return Self();
}

template <class S, class Unit>
S StringBase<S, Unit>::Lower() const {
    S copy = static_cast<S const&>(*this);
    return copy.ToLower();
}

template <class S, class Unit>
S StringBase<S, Unit>::Upper() const {
    S copy = static_cast<S const&>(*this);
    return copy.ToUpper();
}

template class StringBase<BString, char>;
template class StringBase<WString, char16_t>;
