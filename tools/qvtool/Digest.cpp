#include "Digest.h"

#include "Report.h"

#include <cstdio>
#include <fstream>
#include <iterator>

namespace qvtool {

int Sha1(std::vector<std::string> const& files) {
    int status = kExitSound;
    for (std::string const& file : files) {
        std::ifstream in(file, std::ios::binary);
        if (!in) {
            std::fprintf(stderr, "qvtool: %s: cannot be read\n", file.c_str());
            status = kExitUsage;
            continue;
        }
        std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        WString digest;
        if (!Crypt::BSha1::Encrypt(bytes.data(), bytes.size(), digest)) {
            std::fprintf(stderr, "qvtool: %s: no digest\n", file.c_str());
            status = kExitDamaged;
            continue;
        }
        std::printf("%s  %s\n", Utf8(digest).c_str(), file.c_str());
    }
    return status;
}

int NewGuid() {
    BGuid guid;
    std::printf("%s\n", Utf8(guid.ToString()).c_str());
    return kExitSound;
}

} // namespace qvtool
