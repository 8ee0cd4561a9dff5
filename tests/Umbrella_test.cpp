// The umbrella is the public interface: it lists every public header and nothing else, and what
// it reaches is what gets installed. Whether each public header compiles on its own is checked
// by the generated translation units that tests/CMakeLists.txt adds to this program.
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <qv/qvcore.h>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::string ReadText(fs::path const& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// The qv/... paths a header includes with angle brackets.
std::vector<std::string> Includes(std::string const& text) {
    std::vector<std::string> found;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        auto const hash = line.find_first_not_of(" \t");
        auto const open = line.find("<qv/");
        if (hash == std::string::npos || line[hash] != '#' ||
            line.find("include") == std::string::npos || open == std::string::npos)
            continue;
        auto const close = line.find('>', open);
        if (close != std::string::npos)
            found.push_back(line.substr(open + 1, close - open - 1));
    }
    return found;
}

bool InFolder(std::string const& header, char const* folder) {
    return header.find(std::string("/") + folder + "/") != std::string::npos;
}

struct Headers {
    std::set<std::string> all;      // every header below qv/, the umbrella aside
    std::set<std::string> umbrella; // what qv/qvcore.h lists
    std::set<std::string> reached;  // what an installed copy of the umbrella needs
    std::map<std::string, std::string> text;
};

Headers Scan() {
    fs::path const root = QV_SOURCE_DIR;
    Headers h;
    for (auto const& entry : fs::recursive_directory_iterator(root / "qv")) {
        std::string header = fs::relative(entry.path(), root).string();
        if (entry.path().extension() == ".h" && header != "qv/qvcore.h") {
            h.all.insert(header);
            h.text[header] = ReadText(entry.path());
        }
    }
    std::vector<std::string> pending = Includes(ReadText(root / "qv/qvcore.h"));
    h.umbrella.insert(pending.begin(), pending.end());
    while (!pending.empty()) {
        std::string header = pending.back();
        pending.pop_back();
        if (!h.reached.insert(header).second)
            continue;
        for (auto const& next : Includes(h.text[header]))
            pending.push_back(next);
    }
    return h;
}

} // namespace

TEST(Umbrella, SeparatesPublicInternalAndPrivateHeaders) {
    Headers const h = Scan();
    ASSERT_FALSE(h.umbrella.empty());
    struct Rule {
        char const* name;
        // Holds for every header of the library; the header's path and whether the umbrella
        // lists it, and reaches it, are given.
        std::function<bool(std::string const&, bool listed, bool reached)> holds;
    };
    Rule const rules[] = {
        {"a header outside internal/, private/ and platform/ is public",
         [](std::string const& header, bool listed, bool) {
             return listed || InFolder(header, "internal") || InFolder(header, "private") ||
                    header.starts_with("qv/platform/");
         }},
        {"the umbrella lists no internal or private header",
         [](std::string const& header, bool listed, bool) {
             return !listed || !(InFolder(header, "internal") || InFolder(header, "private"));
         }},
        {"the umbrella lists no platform service",
         [&](std::string const& header, bool listed, bool) {
             return !listed ||
                    h.text.at(header).find("namespace qv::platform") == std::string::npos;
         }},
        {"no public or internal header needs a private one",
         [](std::string const& header, bool, bool reached) {
             return !reached || !InFolder(header, "private");
         }},
        {"internal headers declare in qv::detail",
         [&](std::string const& header, bool, bool) {
             return !InFolder(header, "internal") ||
                    h.text.at(header).find("namespace qv::detail") != std::string::npos;
         }},
    };
    for (auto const& header : h.umbrella)
        EXPECT_TRUE(h.all.contains(header)) << "the umbrella lists a missing header " << header;
    for (auto const& rule : rules)
        for (auto const& header : h.all)
            EXPECT_TRUE(rule.holds(header, h.umbrella.contains(header), h.reached.contains(header)))
                << rule.name << ": " << header;
}
