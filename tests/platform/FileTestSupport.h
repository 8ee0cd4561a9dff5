// What the file tests share: a fresh directory under the system's temporary directory, removed
// with its contents at the end of the test; whole files as bytes; streams that close themselves.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <qv/platform/FileStream.h>
#include <string>

class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "qvtestXXXXXX").string();
        m_path = ::mkdtemp(pattern.data()) ? pattern : std::string();
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::permissions(m_path, std::filesystem::perms::owner_all, ec);
        std::filesystem::remove_all(m_path, ec);
    }
    TempDir(TempDir const&) = delete;
    TempDir& operator=(TempDir const&) = delete;

    std::string const& Path() const { return m_path; }
    std::string operator/(std::string const& name) const { return m_path + "/" + name; }
    // The same as a 16-bit path, as the platform functions take it.
    std::u16string U(std::string const& name = {}) const {
        std::string const p = name.empty() ? m_path : *this / name;
        return std::u16string(p.begin(), p.end());
    }

private:
    std::string m_path;
};

inline std::string ReadBytes(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A file kept with the tests, such as the bytes Windows wrote for a known text.
inline std::string DataFile(char const* name) {
    return ReadBytes(std::string(QV_TEST_DATA_DIR "/") + name);
}

inline void WriteBytes(std::string const& path, std::string const& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// The bytes of UTF-16LE text with a byte order mark.
inline std::string Utf16File(std::u16string const& text) {
    std::string bytes = "\xFF\xFE";
    for (char16_t u : text) {
        bytes += static_cast<char>(u & 0xFF);
        bytes += static_cast<char>(u >> 8);
    }
    return bytes;
}

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};
using Stream = std::unique_ptr<std::FILE, FileCloser>;

// Opens through the platform layer; a failure fails the test.
inline Stream OpenStream(std::string const& path, char16_t const* mode) {
    std::FILE* f = nullptr;
    std::u16string const p(path.begin(), path.end());
    EXPECT_EQ(qv::platform::_wfopen_s(&f, p.c_str(), mode), 0) << path;
    return Stream(f);
}
