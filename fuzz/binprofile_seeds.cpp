// Seeds of the binary profile fuzzer: a Unicode-form file written by the library with every
// value type, and an ANSI-form file built byte by byte (the library only reads that form).
#include <fstream>
#include <qv/profiles/BBinProfile.h>
#include <string>

int main(int argc, char** argv) {
    if (argc < 2)
        return 2;
    std::string dir = argv[1];
    {
        BBinProfile profile(WString::FromUtf8(dir + "/unicode.bin"), kProfileNew);
        profile.SetSection(u"Camera");
        profile.WriteInt(u"Gain", 5);
        profile.WriteDouble(u"Gamma", 1.5);
        profile.WriteBoolean(u"On", true);
        profile.WriteString(u"Name", u"left");
        unsigned char block[5] = {1, 2, 3, 4, 5};
        profile.WriteMem(u"Block", block, sizeof block);
    }
    auto u32 = [](std::uint32_t v) { return std::string(reinterpret_cast<char*>(&v), 4); };
    auto narrow = [&](std::string const& s) {
        return u32(static_cast<std::uint32_t>(s.size())) +
               u32(~static_cast<std::uint32_t>(s.size())) + s + std::string(1, '\0');
    };
    std::ofstream(dir + "/ansi.bin", std::ios::binary) << u32(1497451525) + narrow("[cam]name") +
                                                              u32(2) + narrow("left") +
                                                              narrow("[cam]gain") + u32(1) + u32(7);
    return 0;
}
