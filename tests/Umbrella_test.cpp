// Consumers include one header; it must reach every public header of the library. Headers in
// private/ and internal/ folders are not public and stay out of it.
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <qv/qvcore.h>
#include <sstream>

TEST(Umbrella, IncludesEveryPublicHeader) {
    namespace fs = std::filesystem;
    fs::path root = QV_SOURCE_DIR;
    std::ifstream umbrella(root / "qv/qvcore.h");
    std::stringstream text;
    text << umbrella.rdbuf();
    for (auto const& entry : fs::recursive_directory_iterator(root / "qv")) {
        // Internal and private headers serve the library's own headers and sources, and the
        // platform services are reached through the classes built on them.
        std::string folder = entry.path().parent_path().filename().string();
        if (entry.path().extension() != ".h" || entry.path().filename() == "qvcore.h" ||
            folder == "private" || folder == "internal" || folder == "platform")
            continue;
        std::string include = "#include <" + fs::relative(entry.path(), root).string() + ">";
        EXPECT_NE(text.str().find(include), std::string::npos) << include;
    }
}
