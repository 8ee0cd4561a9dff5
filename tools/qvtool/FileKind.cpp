// Binary formats are known by fixed bytes at the start: the stream archive's number 16 and
// format identifier, the binary profile's two magic numbers, the object archive's header
// (checked by reading it). Text formats are told apart by their first meaningful line, after
// the byte order mark has decided between UTF-16LE and bytes.
#include "FileKind.h"

#include "Report.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <regex>
#include <sstream>
#include <vector>

namespace qvtool {

namespace {

constexpr std::size_t kSniffBytes = 4096;
constexpr std::uint32_t kBinaryProfileAnsiMagic = 1497451525;
constexpr std::uint32_t kBinaryProfileUnicodeMagic = 1765886982;
constexpr std::array<unsigned char, 24> kStreamArchiveStart = {
    0x10, 0,    0,    0,    0,    0,    0,    0,    0x7A, 0x9F, 0xB8, 0x18,
    0xD3, 0x86, 0xF8, 0x44, 0xA3, 0x85, 0x4F, 0xE4, 0x83, 0x31, 0xC3, 0x62};

std::vector<unsigned char> Head(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<unsigned char> bytes(kSniffBytes);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes;
}

// The head as UTF-8 text: UTF-16LE behind its byte order mark, else the bytes as they are.
std::string HeadText(std::vector<unsigned char> const& bytes) {
    if (bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE) {
        std::u16string units;
        for (std::size_t i = 2; i + 1 < bytes.size(); i += 2)
            units.push_back(static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8));
        return Utf8(WString(std::u16string_view(units)));
    }
    return std::string(bytes.begin(), bytes.end());
}

FileKind TextKind(std::string const& text) {
    if (text.rfind("Windows Registry Editor Version 5.00", 0) == 0 ||
        text.rfind("REGEDIT4", 0) == 0)
        return FileKind::RegistryFile;
    static std::regex const profilerLine(R"(^\d\d:\d\d:\d\d\t(Start|Stop)\t)");
    static std::regex const section(R"(^\s*\[[^\]\r\n]*\])");
    static std::regex const keyValue(R"(^[^=\[;\r\n]+=)");
    std::istringstream lines(text);
    std::string line;
    // The first line that tells decides; a language file's header or comment lines tell
    // nothing (their first cell has no dollar sign and they hold no '=').
    while (std::getline(lines, line)) {
        if (line.find_first_not_of(" \t\r") == std::string::npos)
            continue;
        if (std::regex_search(line, profilerLine))
            return FileKind::ProfilerLog;
        if (line[0] == '$' && line.find('\t') != std::string::npos)
            return FileKind::LanguageFile;
        if (std::regex_search(line, section) || std::regex_search(line, keyValue))
            return FileKind::IniProfile;
    }
    return FileKind::Unknown;
}

bool HasObjectArchiveHeader(std::string const& path) {
    BArchiveInspector inspector(Wide(path).c_str());
    return inspector.IsArchive();
}

} // namespace

FileKind Recognise(std::string const& path) {
    std::vector<unsigned char> bytes = Head(path);
    if (bytes.size() >= kStreamArchiveStart.size() &&
        std::equal(kStreamArchiveStart.begin(), kStreamArchiveStart.end(), bytes.begin()))
        return FileKind::StreamArchive;
    if (bytes.size() >= 4) {
        std::uint32_t magic =
            bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
        if (magic == kBinaryProfileAnsiMagic)
            return FileKind::BinaryProfileAnsi;
        if (magic == kBinaryProfileUnicodeMagic)
            return FileKind::BinaryProfileUnicode;
    }
    if (!bytes.empty() && bytes[0] == 0x53 && HasObjectArchiveHeader(path))
        return FileKind::ObjectArchive;
    if (std::memchr(bytes.data(), 0, bytes.size()) != nullptr &&
        !(bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE))
        return FileKind::Unknown;
    return TextKind(HeadText(bytes));
}

std::string HeadTextOf(std::string const& path) {
    return HeadText(Head(path));
}

char const* KindName(FileKind kind) {
    switch (kind) {
    case FileKind::ObjectArchive:
        return "object archive";
    case FileKind::StreamArchive:
        return "stream archive";
    case FileKind::BinaryProfileAnsi:
        return "binary profile (ANSI form)";
    case FileKind::BinaryProfileUnicode:
        return "binary profile (Unicode form)";
    case FileKind::RegistryFile:
        return "registry store file";
    case FileKind::LanguageFile:
        return "language file";
    case FileKind::ProfilerLog:
        return "profiler log";
    case FileKind::IniProfile:
        return "ini or text profile";
    case FileKind::Unknown:
        break;
    }
    return "unknown";
}

} // namespace qvtool
