#include <qv/profiles/BProfileBase.h>

QV_REGISTER_CLASSNAME(BProfileBase);

BProfileBase::~BProfileBase() = default;

WString BProfileBase::IndexedKey(WString const& key, int index) {
    WString text;
    text.Printf(u"%s%d", key, index);
    return text;
}
