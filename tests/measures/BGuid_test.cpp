// Identifiers: the platform's layout and text forms, parsing failures and identity.
#include <cstring>
#include <gtest/gtest.h>
#include <qv/measures/BGuid.h>
#include <qv/platform/Uuid.h>
#include <string>
#include <vector>

namespace {

bool IsZero(_GUID const& g) {
    static constexpr _GUID kNil{};
    return std::memcmp(&g, &kNil, sizeof g) == 0;
}

TEST(Guid, TextFormsAndLayout) {
    struct Case {
        std::string name;
        char16_t const* text;
        bool parses;
    };
    std::vector<Case> const cases = {
        {"lower case", u"00112233-4455-6677-8899-aabbccddeeff", true},
        {"upper case", u"00112233-4455-6677-8899-AABBCCDDEEFF", true},
        {"braces", u"{00112233-4455-6677-8899-aabbccddeeff}", false},
        {"one short", u"00112233-4455-6677-8899-aabbccddeef", false},
        {"one long", u"00112233-4455-6677-8899-aabbccddeeff0", false},
        {"hyphen moved", u"0011223-34455-6677-8899-aabbccddeeff", false},
        {"not hexadecimal", u"00112233-4455-6677-8899-aabbccddeefg", false},
        {"no hyphens", u"00112233445566778899aabbccddeeff", false},
        {"empty", u"", false},
        {"null", nullptr, false},
    };
    for (auto const& c : cases) {
        BGuid const g(c.text);
        if (!c.parses) {
            EXPECT_TRUE(IsZero(g.Id())) << c.name;
            continue;
        }
        // The bytes of the record as Windows lays them out (docs/probes/uuid_probe.out.txt).
        unsigned char const windows[16] = {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66,
                                           0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
        _GUID const id = g.Id();
        EXPECT_EQ(std::memcmp(&id, windows, 16), 0) << c.name;
        EXPECT_EQ(g.ToString().ToUtf8(), "00112233-4455-6677-8899-aabbccddeeff") << c.name;
    }
}

TEST(Guid, RoundTripsAndIdentity) {
    BGuid const a;
    BGuid const b;
    EXPECT_NE(a, b);
    std::string const text = a.ToString().ToUtf8();
    ASSERT_EQ(text.size(), 36u);
    EXPECT_EQ(text[14], '4'); // a random identifier
    EXPECT_EQ(BGuid(a.ToString().CStr()), a);
    BGuid const copy(a);
    EXPECT_EQ(copy, a);
    // A copy is an object of its own: its object number differs.
    EXPECT_NE(copy.BSmartObj::Id(), a.BSmartObj::Id());
    EXPECT_EQ(BGuid(a.Id()), a);
    EXPECT_EQ(BGuid(nullptr), BGuid(u"rubbish"));
}

TEST(Guid, PlatformServiceAnswers) {
    using namespace qv::platform;
    _GUID g{1, 2, 3, {4}};
    EXPECT_EQ(UuidFromStringW(u"not a uuid", &g), RPC_S_INVALID_STRING_UUID);
    EXPECT_EQ(g.Data1, 1u) << "left as it was";
    // The layout of a parsed record is checked through BGuid above.
    EXPECT_EQ(UuidFromStringW(nullptr, &g), RPC_S_OK);
    EXPECT_TRUE(IsZero(g));
    RPC_STATUS status = -1;
    EXPECT_TRUE(UuidEqual(nullptr, &g, &status));
    EXPECT_EQ(status, RPC_S_OK);
    char16_t* text = nullptr;
    ASSERT_EQ(UuidToStringW(&g, &text), RPC_S_OK);
    EXPECT_EQ(std::u16string(text), u"00000000-0000-0000-0000-000000000000");
    RpcStringFreeW(&text);
    EXPECT_EQ(text, nullptr);
}

} // namespace
