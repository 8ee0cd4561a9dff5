// Writing archive files byte by byte.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

namespace archive_files {

inline std::string Le(std::uint64_t value, int width) {
    std::string out;
    for (int i = 0; i < width; ++i)
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
    return out;
}
inline std::string Le32(std::uint32_t value) {
    return Le(value, 4);
}
inline std::string Le64(std::uint64_t value) {
    return Le(value, 8);
}
// A narrow string in its stored form.
inline std::string Str(std::string_view text) {
    return "S" + Le32(static_cast<std::uint32_t>(text.size())) + std::string(text);
}
// A wide string of ASCII text in its stored form.
inline std::string WStr(std::string_view text) {
    std::string out = Le32(static_cast<std::uint32_t>(text.size()));
    for (char c : text)
        out += std::string{c, '\0'};
    return out;
}
inline std::string Header(std::string_view name = "class Test", std::int32_t application = 3,
                          std::string_view archiveClass = "class BArchive", int format = 8) {
    return Str(name) + Le32(static_cast<std::uint32_t>(application)) + Str(archiveClass) +
           Le32(static_cast<std::uint32_t>(format));
}
// A record; the size field is 8 bytes wide in format 8 and 4 bytes before.
inline std::string Record(std::string_view id, std::string_view name, std::string_view className,
                          std::int32_t version, std::string const& data, int format = 8) {
    return Str(id) + Str(name) + Str(className) + Le32(static_cast<std::uint32_t>(version)) +
           Le(data.size(), format >= 8 ? 8 : 4) + data;
}
// The data of an ArchiveItem: object, children, no tags, parent, text, value; references in
// the given width.
inline std::string ItemData(std::uint64_t object, std::initializer_list<std::uint64_t> children,
                            std::uint64_t parent, std::string_view text, int width = 8) {
    std::string out = Le(object, width) + Le32(static_cast<std::uint32_t>(children.size()));
    for (std::uint64_t child : children)
        out += Le(child, width);
    return out + Le32(0) + Le(parent, width) + WStr(text) + Le32(0);
}

inline void WriteFile(std::string const& path, std::string const& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

} // namespace archive_files
