#include <qv/language/QVTl.h>
// Own header above, what it builds on below.
#include <qv/language/BLanguageMap.h>

WString QVTl(WString const& text) {
    SP<BLanguageMap> const map = BLanguageMap::Instance();
    return map ? map->Translate(text) : text;
}

WString QVTlExt(WString const& text) {
    SP<BLanguageMap> const map = BLanguageMap::Instance();
    return map ? map->TranslateExt(text) : text;
}
