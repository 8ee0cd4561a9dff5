// Writes the seed corpus of the ini fuzzer into the directory argv[1]: files made by the
// engine itself in each encoding, and hand-made files with the rules it reads (quotes,
// comments, duplicate names, lone carriage returns, no line end at the end).
#include <cstdio>
#include <qv/platform/PrivateProfile.h>
#include <string>

using namespace qv::platform;

namespace {

void Bytes(std::string const& path, std::string const& bytes) {
    if (std::FILE* file = std::fopen(path.c_str(), "wb")) {
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    }
}

std::u16string Wide(std::string const& path) {
    return std::u16string(path.begin(), path.end());
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2)
        return 1;
    std::string const dir = argv[1];
    std::u16string const ansi = Wide(dir + "/ansi.ini");
    WritePrivateProfileStringW(u"Camera", u"Gain", u"12", ansi.c_str());
    WritePrivateProfileStringW(u"Camera", u"Name", u"\u00C4 \"quoted\" ", ansi.c_str());
    unsigned char const block[4] = {1, 2, 0xAB, 0xFF};
    WritePrivateProfileStructW(u"Blocks", u"b", block, 4, ansi.c_str());
    std::u16string const unicode = Wide(dir + "/unicode.ini");
    CreateUnicodePrivateProfile(unicode.c_str(), true);
    WritePrivateProfileStringW(u"S", u"k", u"\u20AC\u4E00", unicode.c_str());
    WritePrivateProfileSectionW(u"T", u"a=1\0b = 2\0", unicode.c_str());
    Bytes(dir + "/rules.ini", "  [ Sec A ] x\r\n  key1 = v \r\n;c=1\r\nnovalue\r\n=e\r\nKEY1=d\r\n"
                              "[sec a]\r\nk='q'\r\n[a]b]\r\nlone\rcr=1\n[nobracket\nlast=1");
    Bytes(dir + "/utf8.ini", "\xEF\xBB\xBF[S]\nk=\xE2\x82\xAC\n");
    return 0;
}
