// The binary profile reader on hostile files: any bytes must give a profile without a crash, a
// hang or an allocation beyond the file's size, and every value read must be readable back
// through the interface.
#include <cstdint>
#include <cstdio>
#include <qv/profiles/BBinProfile.h>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static std::string const path = "/tmp/binprofile_fuzzer_" + std::to_string(getpid()) + ".bin";
    if (std::FILE* file = std::fopen(path.c_str(), "wb")) {
        std::fwrite(data, 1, size, file);
        std::fclose(file);
    }
    BBinProfile profile(WString::FromUtf8(path), kProfileReadOnly);
    for (WString const& key : profile.Keys()) {
        SP<BVariant> value = profile.Value(key);
        if (!value)
            __builtin_trap(); // a listed key must hold a value
        profile.SetSection(key.Sub(1).SubCh(0, u']'));
        profile.ReadString(key, WString());
    }
    return 0;
}
