#include <qv/language/BResId.h>

BResId::LoadByResourceIdCallback BResId::m_stc_LoadByResourceIdCallback =
    &BResId::LoadStringFromModule;

// Null, the host program's module, at first; the library's start-up makes it the library's own,
// which holds the rows the library itself needs.
HMODULE BResId::m_stc_hModule = nullptr;

namespace {

[[maybe_unused]] bool const libraryModuleSet =
    (BResId::SetResourceModule(qv::platform::LibraryModule()), true);

} // namespace

BResId::operator WString() const {
    WString text;
    m_stc_LoadByResourceIdCallback(text, m_id);
    return text;
}

void BResId::RegisterLoadByResourceIdCallback(LoadByResourceIdCallback callback) {
    if (callback)
        m_stc_LoadByResourceIdCallback = callback;
}

void BResId::SetResourceModule(HMODULE module) {
    if (module)
        m_stc_hModule = module;
}

bool BResId::LoadStringFromModule(WString& text, unsigned int id) {
    char16_t const* stored = nullptr;
    int const length =
        qv::platform::LoadStringW(m_stc_hModule, id, reinterpret_cast<char16_t*>(&stored), 0);
    if (length < 1)
        return false;
    text.CopyN(static_cast<WString::size_type>(length), stored);
    return true;
}
