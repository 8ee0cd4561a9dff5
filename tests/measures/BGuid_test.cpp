#include <cstring>
#include <gtest/gtest.h>
#include <qv/measures/BGuid.h>
#include <string>

namespace {

TEST(Guid, TextFormsAndLayout) {
    struct Case {
        char const* name;
        char16_t const* text;
        bool parses;
    } const cases[] = {
        {"upper case", u"00112233-4455-6677-8899-AABBCCDDEEFF", true},
        {"braces", u"{00112233-4455-6677-8899-aabbccddeeff}", false},
        {"one short", u"00112233-4455-6677-8899-aabbccddeef", false},
        {"not hexadecimal", u"00112233-4455-6677-8899-aabbccddeefg", false},
        {"null", nullptr, false},
    };
    // The bytes of the record as Windows lays them out (docs/probes/uuid_probe.out.txt).
    unsigned char const windows[16] = {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66,
                                       0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
    unsigned char const nil[16] = {};
    for (auto const& c : cases) {
        BGuid const g(c.text);
        _GUID const id = g.Id();
        EXPECT_EQ(std::memcmp(&id, c.parses ? windows : nil, 16), 0) << c.name;
        EXPECT_EQ(g.ToString().ToUtf8(), c.parses ? "00112233-4455-6677-8899-aabbccddeeff"
                                                  : "00000000-0000-0000-0000-000000000000")
            << c.name;
    }
}

TEST(Guid, RoundTripsAndIdentity) {
    BGuid const a;
    EXPECT_NE(a, BGuid());
    std::string const text = a.ToString().ToUtf8();
    ASSERT_EQ(text.size(), 36u);
    EXPECT_EQ(text[14], '4'); // a random identifier
    EXPECT_EQ(BGuid(a.ToString().CStr()), a);
    BGuid const copy(a);
    EXPECT_EQ(copy, a);
    // A copy is an object of its own: its object number differs.
    EXPECT_NE(copy.BSmartObj::Id(), a.BSmartObj::Id());
    EXPECT_EQ(BGuid(a.Id()), a);
}

} // namespace
