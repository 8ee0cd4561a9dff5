// A profiler log is UTF-16 text of runs: a line "hh:mm:ss<TAB>Start<TAB>text", a line
// "milliseconds<TAB>text" per step and a line "hh:mm:ss<TAB>Stop<TAB>text".
#include "Formats.h"

#include <regex>
#include <vector>

namespace qvtool::profiler_log {

namespace {

struct Parse {
    json runs = json::array();
    std::size_t lines = 0;
    std::size_t badLine = 0; // 1-based; 0 when every line fits
};

Parse Read(std::string const& path) {
    static std::regex const edge(R"(^(\d\d:\d\d:\d\d)\t(Start|Stop)\t(.*)$)");
    static std::regex const step(R"(^(-?\d+)\t(.*)$)");
    Parse parse;
    BFile file(Wide(path).c_str(), u"r,ccs=UNICODE");
    if (!file)
        throw Failure{kExitUsage, path + ": cannot be read"};
    WString line;
    json* run = nullptr;
    while (line.ReadLn(file)) {
        std::string text = Utf8(line);
        ++parse.lines;
        std::smatch match;
        if (std::regex_match(text, match, edge) && match[2] == "Start") {
            parse.runs.push_back(
                {{"start", match[1]}, {"text", match[3]}, {"steps", json::array()}});
            run = &parse.runs.back();
        } else if (std::regex_match(text, match, edge) && run) {
            (*run)["stop"] = match[1];
            run = nullptr;
        } else if (std::regex_match(text, match, step) && run) {
            (*run)["steps"].push_back({{"ms", std::stoll(match[1])}, {"text", match[2]}});
        } else if (!text.empty() && parse.badLine == 0) {
            parse.badLine = parse.lines;
        }
    }
    return parse;
}

} // namespace

json Info(std::string const& path) {
    Parse parse = Read(path);
    return {{"runs", parse.runs.size()}, {"lines", parse.lines}};
}

json Dump(std::string const& path) {
    return {{"runs", Read(path).runs}};
}

json Check(std::string const& path) {
    Parse parse = Read(path);
    if (parse.badLine)
        return {
            {"sound", false},
            {"damage",
             {{"line", parse.badLine}, {"reason", "the line is no start, step or stop of a run"}}}};
    return {{"sound", true}, {"runs", parse.runs.size()}};
}

} // namespace qvtool::profiler_log
