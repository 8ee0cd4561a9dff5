// Reads an arbitrary file as an ini file through every reading service, then edits it: a key
// set, a key and a section deleted, whole sections listed. Whatever the bytes, the engine must
// not crash, hang or allocate beyond what the file holds, and an edit must keep the file
// readable with the value just written.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <qv/platform/PrivateProfile.h>
#include <string>
#include <unistd.h>
#include <vector>

using namespace qv::platform;

namespace {

// A fresh name for each input: the input is written behind the engine's back, and such a
// write is only seen once the engine checks the file's stamp again (docs/profiles.md).
std::string NextPath() {
    static unsigned count = 0;
    return "/tmp/qv-ini-fuzz-" + std::to_string(::getpid()) + "-" + std::to_string(count++) +
           ".ini";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    std::string const native = NextPath();
    if (std::FILE* file = std::fopen(native.c_str(), "wb")) {
        std::fwrite(data, 1, size, file);
        std::fclose(file);
    }
    std::u16string const wide(native.begin(), native.end());
    char16_t const* path = wide.c_str();
    std::vector<char16_t> buffer(4096);
    auto const n = static_cast<std::uint32_t>(buffer.size());
    GetPrivateProfileSectionNamesW(buffer.data(), n, path);
    // The first section's name, to aim the other calls at something that exists.
    std::u16string const first(buffer.data());
    GetPrivateProfileStringW(first.c_str(), nullptr, nullptr, buffer.data(), n, path);
    std::u16string const key(buffer.data());
    GetPrivateProfileStringW(first.c_str(), key.c_str(), u"d", buffer.data(), 7, path);
    GetPrivateProfileSectionW(first.c_str(), buffer.data(), 64, path);
    GetPrivateProfileIntW(first.c_str(), key.c_str(), 5, path);
    unsigned char block[8];
    GetPrivateProfileStructW(first.c_str(), key.c_str(), block, sizeof block, path);

    if (!WritePrivateProfileStringW(first.c_str(), u"fuzz", u"value", path))
        std::abort();
    if (GetPrivateProfileStringW(first.c_str(), u"fuzz", u"", buffer.data(), n, path) != 5)
        std::abort();
    WritePrivateProfileStringW(first.c_str(), key.c_str(), nullptr, path);
    WritePrivateProfileStringW(u"other", nullptr, nullptr, path);
    WritePrivateProfileSectionW(first.c_str(), u"a=1\0", path);
    ConvertPrivateProfileToUnicode(path);
    if (GetPrivateProfileIntW(first.c_str(), u"a", 0, path) != 1)
        std::abort();
    std::remove(native.c_str());
    std::string const slash = native.substr(0, native.rfind('/') + 1);
    std::remove((slash + "." + native.substr(slash.size()) + ".lock").c_str());
    return 0;
}
