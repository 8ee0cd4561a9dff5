#include <qv/language/BLanguageMap.h>
#include <qv/language/QVTl.h>

WString QVTl(WString const& text) {
    SP<BLanguageMap> const map = BLanguageMap::Instance();
    return map ? map->Translate(text) : text;
}

WString QVTlExt(WString const& text) {
    SP<BLanguageMap> const map = BLanguageMap::Instance();
    return map ? map->TranslateExt(text) : text;
}
