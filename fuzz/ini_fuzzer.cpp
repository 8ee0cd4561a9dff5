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

std::u16string const& Path() {
    static std::u16string const path = [] {
        std::string const p = "/tmp/qv-ini-fuzz-" + std::to_string(::getpid()) + ".ini";
        return std::u16string(p.begin(), p.end());
    }();
    return path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    std::string const native(Path().begin(), Path().end());
    if (std::FILE* file = std::fopen(native.c_str(), "wb")) {
        std::fwrite(data, 1, size, file);
        std::fclose(file);
    }
    char16_t const* path = Path().c_str();
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
    return 0;
}
