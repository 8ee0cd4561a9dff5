#include "Language.h"

#include <cstdio>
#include <filesystem>

namespace qvtool::language {

namespace {

namespace fs = std::filesystem;

// The map is filled through the public import of a directory, with the file's own name as the
// pattern: the one way in that keeps the reader's report.
int ImportInto(BLanguageMap& map, std::string const& file, bool replace, WString* report) {
    fs::path path = fs::absolute(file);
    return map.ImportMapFiles(WString::FromUtf8(path.parent_path().string()),
                              WString::FromUtf8(path.filename().string()), report, replace);
}

json Entries(BLanguageMap const& map) {
    json entries = json::array();
    for (auto const& entry : map.Entries())
        entries.push_back({{"key", Utf8(entry.key)},
                           {"default", Utf8(entry.defaultText)},
                           {"text", Utf8(entry.text)}});
    return entries;
}

} // namespace

json Info(std::string const& path) {
    BLanguageMap map;
    int result = ImportInto(map, path, false, nullptr);
    return {{"entries", map.Entries().size()}, {"import result", result}};
}

json Dump(std::string const& path) {
    BLanguageMap map;
    WString report;
    int result = ImportInto(map, path, false, &report);
    json dump = {{"import result", result}, {"entries", Entries(map)}};
    if (!report.IsEmpty())
        dump["report"] = Utf8(report);
    return dump;
}

json Check(std::string const& path) {
    BLanguageMap map;
    WString report;
    int result = ImportInto(map, path, false, &report);
    json verdict = {{"sound", result == 0}, {"entries", map.Entries().size()}};
    if (result != 0)
        verdict["damage"] = {{"import result", result}, {"reason", Utf8(report)}};
    return verdict;
}

int Import(std::vector<std::string> const& files, bool replace) {
    BLanguageMap map;
    int status = kExitSound;
    for (std::string const& file : files) {
        if (!fs::is_regular_file(file))
            throw Failure{kExitUsage, file + ": no such file"};
        WString report;
        int result = ImportInto(map, file, replace, &report);
        std::printf("%s: %s\n", file.c_str(), result == 0 ? "imported" : "imported with remarks");
        if (!report.IsEmpty())
            std::printf("%s\n", Utf8(report).c_str());
        if (result != 0)
            status = kExitDamaged;
    }
    std::printf("%zu entries\n", map.Entries().size());
    return status;
}

int Export(std::string const& target, std::vector<std::string> const& files) {
    BLanguageMap map;
    for (std::string const& file : files) {
        if (!fs::is_regular_file(file))
            throw Failure{kExitUsage, file + ": no such file"};
        ImportInto(map, file, true, nullptr);
    }
    if (map.ExportMapFile(WString::FromUtf8(target)) != 0)
        throw Failure{kExitDamaged, target + ": cannot be written"};
    std::printf("%s: %zu entries\n", target.c_str(), map.Entries().size());
    return kExitSound;
}

int Merge(std::string const& reference, std::string const& translation, std::string const& target,
          std::string const& pattern) {
    int newEntries = 0;
    int result = BLanguageMap::MergeMapFiles(
        WString::FromUtf8(reference), WString::FromUtf8(translation), WString::FromUtf8(target),
        WString::FromUtf8(pattern), newEntries);
    if (result != 0)
        throw Failure{kExitDamaged, "merge of " + reference + " and " + translation +
                                        " failed with code " + std::to_string(result)};
    std::printf("merged into %s: %d new entries\n", target.c_str(), newEntries);
    return kExitSound;
}

} // namespace qvtool::language
