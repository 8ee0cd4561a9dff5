// The registry store: a file regedit exported loads with every value type and is written back
// byte for byte, Windows' listing orders and buffer rules, and a foreign file left as it was.
#include "platform/FileTestSupport.h"

#include <qv/platform/Registry.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace qv::platform;

namespace {

class RegistryStore : public ::testing::Test {
protected:
    void SetUp() override { SetRegistryDirectory(m_dir.U()); }
    void TearDown() override { SetRegistryDirectory(u""); }

    HKEY Open(char16_t const* path, std::uint32_t access = KEY_ALL_ACCESS_RW) {
        HKEY key = nullptr;
        EXPECT_EQ(
            RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, access, nullptr, &key, nullptr),
            ERROR_SUCCESS);
        return key;
    }
    static std::string Bytes(std::u16string const& text) {
        return std::string(reinterpret_cast<char const*>(text.c_str()), text.size() * 2 + 2);
    }
    // The data and the type of a value.
    static std::pair<std::string, std::uint32_t> Query(HKEY key, char16_t const* name) {
        std::uint32_t size = 0, type = 0;
        if (RegQueryValueExW(key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
            return {"missing", 0};
        std::string data(size, '\0');
        RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<unsigned char*>(data.data()),
                         &size);
        return {data, type};
    }
    // How many values, the longest name and the longest data.
    static std::vector<std::uint32_t> Info(HKEY key) {
        std::uint32_t values = 0, longestName = 0, longestData = 0;
        EXPECT_EQ(RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                   &values, &longestName, &longestData, nullptr, nullptr),
                  ERROR_SUCCESS);
        return {values, longestName, longestData};
    }
    void Set(HKEY key, char16_t const* name, std::uint32_t type, std::string const& data) {
        EXPECT_EQ(RegSetValueExW(key, name, 0, type,
                                 reinterpret_cast<unsigned char const*>(data.data()),
                                 static_cast<std::uint32_t>(data.size())),
                  ERROR_SUCCESS);
    }

    TempDir m_dir;
};

TEST_F(RegistryStore, RegeditExportLoadsEveryTypeAndIsWrittenBackByteForByte) {
    std::string exported = DataFile("registry_exported_by_regedit.reg");
    WriteBytes(m_dir / "HKEY_CURRENT_USER.reg", exported);
    HKEY key = Open(u"Software\\QvProbe");
    struct Row {
        char16_t const* name;
        std::uint32_t type;
        std::string data;
    } const rows[] = {
        {u"", REG_SZ, Bytes(u"default")},
        {u"Text", REG_SZ, Bytes(u"a \"quoted\" \\back\\slash")},
        {u"umlaut", REG_SZ, Bytes(u"Kamera S\u00fcd")},
        {u"Num", REG_DWORD, std::string("\x0a\0\0\0", 4)},
        {u"Q", REG_QWORD, std::string("\x05\0\0\0\0\0\0\0", 8)},
        {u"Exp", REG_EXPAND_SZ, Bytes(u"%PATH%;x")},
        {u"Multi", REG_MULTI_SZ, std::string("o\0n\0e\0\0\0t\0w\0o\0\0\0\0\0", 18)},
    };
    for (Row const& row : rows)
        EXPECT_EQ(Query(key, row.name), std::pair(row.data, row.type))
            << std::string(row.name, row.name + 1);
    HKEY wrap = Open(u"Software\\QvProbe\\Wrap");
    EXPECT_EQ(Query(wrap, u"LongBin").first.size(), 100u);
    EXPECT_EQ(Query(wrap, u"EmptyBin").first, "");

    // A write prints the whole root again: the keys above the exported one come first.
    Set(key, u"Text", REG_SZ, Bytes(u"a \"quoted\" \\back\\slash"));
    std::u16string ancestors = u"[HKEY_CURRENT_USER]\r\n\r\n[HKEY_CURRENT_USER\\Software]\r\n\r\n";
    std::string expected = exported;
    expected.insert(expected.find(std::string("[\0H", 3)),
                    reinterpret_cast<char const*>(ancestors.data()), ancestors.size() * 2);
    EXPECT_EQ(ReadBytes(m_dir / "HKEY_CURRENT_USER.reg"), expected);
    RegCloseKey(wrap);
    RegCloseKey(key);
}

TEST_F(RegistryStore, ListsSubkeysInWindowsOrderValuesInCreationOrder) {
    HKEY key = Open(u"Software\\Order");
    for (char16_t const* name : {u"b", u"A", u"c"})
        RegCloseKey(Open((std::u16string(u"Software\\Order\\") + name).c_str()));
    for (char16_t const* name : {u"zeta", u"Alpha", u"mid"})
        Set(key, name, REG_SZ, Bytes(u"v"));
    auto list = [&](bool keys) {
        std::u16string names;
        char16_t name[16];
        for (std::uint32_t i = 0;; ++i) {
            std::uint32_t length = 16;
            long result =
                keys ? RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr)
                     : RegEnumValueW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr);
            if (result == ERROR_NO_MORE_ITEMS)
                return names;
            EXPECT_EQ(result, ERROR_SUCCESS);
            names += std::u16string(name) + u",";
        }
    };
    EXPECT_EQ(list(true), u"A,b,c,");
    EXPECT_EQ(list(false), u"zeta,Alpha,mid,");
    // Names compare without regard to case: the same key, the same value.
    Set(key, u"ALPHA", REG_SZ, Bytes(u"w"));
    EXPECT_EQ(list(false), u"zeta,Alpha,mid,");
    RegCloseKey(key);
}

TEST_F(RegistryStore, SmallBuffersAreAnsweredWithTheSizeNeeded) {
    HKEY key = Open(u"Software\\Sizes");
    Set(key, u"LongName", REG_BINARY, std::string(40, 'x'));
    std::uint32_t size = 8;
    unsigned char data[8];
    EXPECT_EQ(RegQueryValueExW(key, u"LongName", nullptr, nullptr, data, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 40u);
    char16_t name[4];
    std::uint32_t length = 4;
    EXPECT_EQ(RegEnumValueW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr),
              ERROR_MORE_DATA);
    EXPECT_EQ(Info(key), (std::vector<std::uint32_t>{1, 8, 40}));
    EXPECT_EQ(RegQueryValueExW(key, u"none", nullptr, nullptr, nullptr, &size),
              ERROR_FILE_NOT_FOUND);
    RegCloseKey(key);
}

// A store directory that cannot be made is the configuration tree's test; a file that is no
// export of ours is refused and left as it was.
TEST_F(RegistryStore, AForeignFileIsRefusedAndStaysAsItWas) {
    std::string foreign = "[HKEY_CURRENT_USER\\Software]\r\n\"a\"=\"b\"\r\n";
    WriteBytes(m_dir / "HKEY_CURRENT_USER.reg", foreign);
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, u"Software\\X", 0, nullptr, 0, KEY_ALL_ACCESS_RW,
                              nullptr, &key, nullptr),
              ERROR_ACCESS_DENIED);
    EXPECT_EQ(ReadBytes(m_dir / "HKEY_CURRENT_USER.reg"), foreign);
}

// What only a second process shows: two processes writing the store at once lose no value.
TEST_F(RegistryStore, ProcessesWritingAtOnceLoseNoValue) {
    HKEY key = Open(u"Software\\Shared");
    auto writeMany = [&](char16_t process) {
        for (char16_t i = 0; i < 20; ++i) {
            char16_t name[] = {process, static_cast<char16_t>(u'a' + i), 0};
            Set(key, name, REG_DWORD, std::string(4, static_cast<char>(i)));
        }
    };
    pid_t child = ::fork();
    if (child == 0) {
        // The child must see the parent's store as a separate process would.
        SetRegistryDirectory(m_dir.U());
        writeMany(u'C');
        ::_exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    writeMany(u'P');
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(Info(key)[0], 40u);
    RegCloseKey(key);
}

} // namespace
