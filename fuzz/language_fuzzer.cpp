// Reads an arbitrary file as a language file: imports it with a report, translates the report
// through the map it filled, exports the map, and merges the file with itself as reference and
// translation. Whatever the bytes (odd lengths, lone surrogates, unterminated quotes, very long
// lines), nothing may crash, hang or allocate beyond what the file holds.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <qv/language/BLanguageMap.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A directory of this process holding the input and, below it, the merge's target.
std::string const& Directory() {
    static std::string const dir = [] {
        std::string pattern = "/tmp/qv-language-fuzz-XXXXXX";
        std::string made = ::mkdtemp(pattern.data()) ? pattern : "/tmp";
        std::string const out = made + "/out";
        ::mkdir(out.c_str(), 0700);
        return made;
    }();
    return dir;
}

WString Wide(std::string const& path) {
    return WString::FromUtf8(path);
}

void WriteInput(uint8_t const* data, size_t size) {
    std::FILE* file = std::fopen((Directory() + "/in.lng").c_str(), "wb");
    if (!file)
        return;
    std::fwrite(data, 1, size, file);
    std::fclose(file);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    WriteInput(data, size);
    WString const dir = Wide(Directory());
    BLanguageMap map;
    map.SetReportMissingTranslations(size % 2 == 1);
    WString report;
    map.ImportMapFiles(dir, u"in.lng", &report, size % 3 == 1);
    map.TranslateExt(report);
    WString keys;
    map.TranslateBack(u"", keys, u"$", BLanguageMap::DEFAULT);
    map.ExportMapFile(Wide(Directory() + "/out/export.lng"));
    int newEntries = 0;
    BLanguageMap::MergeMapFile(dir, dir, dir + u"/out", u"in.lng", newEntries);
    return 0;
}
