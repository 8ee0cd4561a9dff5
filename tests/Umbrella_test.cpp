// The umbrella is the public interface: it lists every public header and nothing else, and what
// it reaches is what gets installed. Whether each public header compiles on its own is checked
// by the generated translation units that tests/CMakeLists.txt adds to this program.
#include <filesystem>
#include <fstream>
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

} // namespace

TEST(Umbrella, SeparatesPublicInternalAndPrivateHeaders) {
    fs::path const root = QV_SOURCE_DIR;
    std::map<std::string, std::string> text; // every header below qv/, the umbrella aside
    for (auto const& entry : fs::recursive_directory_iterator(root / "qv")) {
        std::string header = fs::relative(entry.path(), root).string();
        if (entry.path().extension() == ".h" && header != "qv/qvcore.h")
            text[header] = ReadText(entry.path());
    }
    // What the umbrella lists, and what an installed copy of it needs.
    std::vector<std::string> pending = Includes(ReadText(root / "qv/qvcore.h"));
    std::set<std::string> const listed(pending.begin(), pending.end());
    std::set<std::string> reached;
    ASSERT_FALSE(listed.empty());
    while (!pending.empty()) {
        std::string header = pending.back();
        pending.pop_back();
        if (auto const found = text.find(header);
            reached.insert(header).second && found != text.end())
            for (auto const& next : Includes(found->second))
                pending.push_back(next);
    }
    for (auto const& header : listed)
        EXPECT_TRUE(text.contains(header)) << "the umbrella lists a missing header " << header;
    for (auto const& [header, content] : text) {
        bool const hidden = InFolder(header, "internal") || InFolder(header, "private");
        bool const isListed = listed.contains(header);
        EXPECT_TRUE(isListed || hidden || header.starts_with("qv/platform/"))
            << "a header outside internal/, private/ and platform/ is public: " << header;
        EXPECT_FALSE(isListed && hidden) << "the umbrella lists an internal or private " << header;
        EXPECT_FALSE(isListed && content.find("namespace qv::platform") != std::string::npos)
            << "the umbrella lists a platform service " << header;
        EXPECT_FALSE(reached.contains(header) && InFolder(header, "private"))
            << "a public or internal header needs the private " << header;
        EXPECT_TRUE(!InFolder(header, "internal") ||
                    content.find("namespace qv::detail") != std::string::npos)
            << "internal headers declare in qv::detail: " << header;
    }
}
