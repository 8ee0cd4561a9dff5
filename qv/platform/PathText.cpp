#include <qv/platform/CodePage.h>
#include <qv/platform/PathText.h>

namespace qv::platform {

std::string NativePath(std::u16string_view path) {
    std::string native = Utf16ToUtf8(path);
    for (char& c : native)
        if (c == '\\')
            c = '/';
    return native;
}

} // namespace qv::platform
