#include "platform/FileTestSupport.h"

#include <gtest/gtest.h>
#include <qv/language/BResId.h>
#include <qv/platform/StringResources.h>
#include <string>

using qv::platform::LibraryModule;

namespace {

std::string Row(unsigned int id) {
    return static_cast<WString>(BResId(id)).ToUtf8();
}

bool Fixed(WString& text, unsigned int id) {
    text = WString::FromInt(id);
    return false;
}

// Reads rows from the host program's module while it lives, then from the library's again.
struct HostRows {
    HostRows() { BResId::SetResourceModule(qv::platform::GetModuleHandleW(nullptr)); }
    ~HostRows() { BResId::SetResourceModule(LibraryModule()); }
};

} // namespace

TEST(BResId, LibraryRowsById) {
    struct Case {
        char const* name;
        unsigned int id;
        char const* text;
    } const cases[] = {
        {"general failure", 32767, "$ERR_ERROR"},
        {"first row", 5000, "$ERR_FILE_NOT_EXISTS"},
        {"last row", 48370, "LOAD"},
        {"key under two ids", 12670, "$ERR_INIT_MEM"},
        {"gap", 12345, ""},
        {"ids are 16 bits wide", 0x10000 + 28484, ""},
    };
    for (Case const& c : cases)
        EXPECT_EQ(Row(c.id), c.text) << c.name;
}

TEST(BResId, CallbackAndModuleReplaceable) {
    BResId::RegisterLoadByResourceIdCallback(&Fixed);
    BResId::RegisterLoadByResourceIdCallback(nullptr); // ignored
    EXPECT_EQ(Row(28484), "28484");                    // whatever the callback answered
    BResId::RegisterLoadByResourceIdCallback(&BResId::LoadStringFromModule);
    {
        HostRows host;
        EXPECT_EQ(Row(28484), "");
        BResId::SetResourceModule(nullptr); // ignored
        EXPECT_EQ(Row(28484), "");
    }
    EXPECT_EQ(Row(28484), "CALIBRATION");
    WString text(u"kept");
    EXPECT_FALSE(BResId::LoadStringFromModule(text, 1));
    EXPECT_EQ(text.ToUtf8(), "kept");
}

TEST(BResId, ApplicationRowsFromAFile) {
    TempDir dir;
    WriteBytes(dir / "rows.txt", "100\tHundred\n"
                                 "# comment\n"
                                 "28484\tKALIBRIERUNG  \n"
                                 "abc\tnot an id\n"
                                 "70000\ttoo large\n"
                                 "101\t\n"
                                 "102\ttab\tinside\r\n"
                                 "100\tHundert, \xC3\xBC"
                                 "ber UTF-8\n"
                                 "103 no tab\n"
                                 "104\t" +
                                     std::string(3000, 'x'));
    WriteBytes(dir / "rows16.txt", Utf16File(u"105\tÜbersetzt\r\n106\tzwei"));
    HostRows host;
    HMODULE const hostModule = qv::platform::GetModuleHandleW(nullptr);
    EXPECT_EQ(qv::platform::LoadStringTable(hostModule, WString(dir.U("rows.txt").c_str())), 6);
    EXPECT_EQ(qv::platform::LoadStringTable(nullptr, WString(dir.U("rows16.txt").c_str())), 2);
    EXPECT_EQ(qv::platform::LoadStringTable(hostModule, u"/no/such/rows.txt"), -1);
    struct Case {
        char const* name;
        unsigned int id;
        std::string text;
    } const cases[] = {
        {"later row wins", 100, "Hundert, über UTF-8"},
        {"blanks kept", 28484, "KALIBRIERUNG  "},
        {"empty row is none", 101, ""},
        {"text after the first tab", 102, "tab\tinside"},
        {"long line", 104, std::string(3000, 'x')},
        {"UTF-16 file", 105, "Übersetzt"},
        {"last line without line feed", 106, "zwei"},
    };
    for (Case const& c : cases)
        EXPECT_EQ(Row(c.id), c.text) << c.name;
}

TEST(StringResources, LoadStringWForms) {
    HMODULE const library = qv::platform::GetModuleHandleW(u"QVCORE.dll");
    EXPECT_EQ(library, LibraryModule());
    EXPECT_EQ(qv::platform::GetModuleHandleW(u"other.dll"), nullptr);
    char16_t const* stored = nullptr;
    EXPECT_EQ(qv::platform::LoadStringW(library, 28484, reinterpret_cast<char16_t*>(&stored), 0),
              11);
    EXPECT_EQ(std::u16string(stored, 11), u"CALIBRATION");
    char16_t buffer[4] = u"xyz";
    EXPECT_EQ(qv::platform::LoadStringW(library, 28484, buffer, 4), 3);
    EXPECT_EQ(std::u16string(buffer), u"CAL");
    EXPECT_EQ(qv::platform::LoadStringW(library, 12345, buffer, 4), 0);
    EXPECT_EQ(std::u16string(buffer), u"");
    EXPECT_EQ(qv::platform::LoadStringW(library, 28484, nullptr, 0), 0);
}
