// Writes the seed corpus of the language fuzzer with the library itself: an exported map, a
// merged file with its "new entry!" cells, and files in the awkward corners of the cell grammar
// (quotes, escapes, tabs in quoted cells, five cells, a UTF-8 file), written through the same
// UTF-16LE text streams that write language files.
#include <filesystem>
#include <qv/core/files/BFile.h>
#include <qv/language/BLanguageMap.h>
#include <qv/platform/WideStream.h>
#include <string>

namespace {

WString Wide(std::string const& path) {
    return WString::FromUtf8(path);
}

void WriteText(std::string const& path, char16_t const* mode, char16_t const* text) {
    BFile file;
    if (file.Open(Wide(path), mode))
        qv::platform::fputws16(text, file);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2)
        return 1;
    std::string const dir = argv[1];
    char16_t const* grammar = u"# comment line\t\tthird\n"
                              u"$PLAIN\tDefault\tText\n"
                              u"$QUOTED\t\"tab\there\nand \"\"quotes\"\"\"\t\"x\"y\n"
                              u"$ESCAPES\ta\\nb\\tc\\\\d\\x41\t\n"
                              u"$FIVE\t1\t2\t\"3\n\"\t4\n"
                              u"\tstarts with a tab\n"
                              u"$ONE\n"
                              u"$UNTERMINATED\t\"runs to the end";
    WriteText(dir + "/grammar.lng", u"wt,ccs=UTF-16LE", grammar);
    WriteText(dir + "/utf8.lng", u"wt,ccs=UTF-8", u"$UTF8\tÜber\tÜbersetzt\n$Same\tÜber\t\n");

    BLanguageMap map;
    map.Add(u"$ERR_CREATE_FILE", u"Can't create", u"Kann nicht anlegen", false, false);
    map.Add(u"$Open", u"Open", u"Öffnen", false, false);
    map.Add(u"$MULTI_LINE", u"", u"a\tb", false, false);
    map.ExportMapFile(Wide(dir + "/export.lng"));

    // Merged files go to a directory of their own, since a merge's target has the reference's
    // name; the fuzzer reads the corpus directory with its subdirectories.
    std::filesystem::create_directory(dir + "/merged");
    int newEntries = 0;
    BLanguageMap::MergeMapFile(Wide(dir), Wide(dir), Wide(dir + "/merged"), u"grammar.lng",
                               newEntries);
    WriteText(dir + "/reference.lng", u"wt,ccs=UTF-16LE", u"$PLAIN\tDefault\n$NEW\tNew\n");
    BLanguageMap::MergeMapFile(Wide(dir), Wide(dir + "/none"), Wide(dir + "/merged"),
                               u"reference.lng", newEntries);
    return 0;
}
