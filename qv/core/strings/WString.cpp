#include <algorithm>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <qv/platform/CodePage.h>

WString::WString(BString const& narrow) {
    if (narrow.IsEmpty())
        return;
    int size = qv::platform::MultiByteToWideChar(narrow.CStr(), -1, nullptr, 0);
    if (size <= 1)
        return;
    Block* b = CreateShared(static_cast<size_type>(size - 1));
    qv::platform::MultiByteToWideChar(narrow.CStr(), -1, b->Text(), size);
    b->Text()[size - 1] = 0;
    b->ForgetLength(); // left to a scan: the block was made empty
    Reset(b);
}

WString WString::FromUtf8(std::string_view utf8) {
    return WString(std::u16string_view(qv::platform::Utf8ToUtf16(utf8)));
}

std::string WString::ToUtf8() const {
    return qv::platform::Utf16ToUtf8(View());
}

char16_t* WString::Str() {
    Unshare();
    m_block->ExposeText();
    return m_block->Text();
}

void WString::CopyN(size_type n, char16_t const* text) {
    Clear();
    if (n == 0)
        return;
    size_type len = 0;
    while (text && len < n && text[len])
        ++len;
    // The block would have capacity n; n is often the size of the caller's buffer, so only
    // what was copied is kept.
    Reset(CreateShared(text, len, len));
}

unsigned long long WString::AllocatedMemory() const {
    return m_block ? Length() * 2 + 18 : 0;
}

bool WString::Includes16bitChars() const {
    for (char16_t const* p = CStr(); *p; ++p)
        if (*p >= 256)
            return true;
    return false;
}

void WString::ReplaceAt(char16_t const* text, size_type pos, size_type n) {
    size_type len = Length();
    if (pos > len)
        return;
    WString tail = Cut(pos);
    Append(text);
    if (n < tail.Length())
        Append(tail.CStr() + n);
}

BString WString::AsString() const {
    return BString(CStr());
}

char WString::AsChar(char16_t unit) {
    char16_t text[2] = {unit, 0};
    char out[8] = {};
    int n = qv::platform::WideCharToMultiByte(text, 1, out, sizeof out);
    return n == 1 ? out[0] : '?';
}

int WString::ICmpForQSort(void const* a, void const* b) {
    return static_cast<WString const*>(a)->ICmp(*static_cast<WString const*>(b));
}
