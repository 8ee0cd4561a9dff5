#include "platform/FileTestSupport.h"

#include <qv/core/BError.h>
#include <qv/platform/Registry.h>
#include <qv/profiles/BConfigRegistry.h>

namespace {

class ConfigRegistry : public ::testing::Test {
protected:
    void SetUp() override { BConfigRegistry::SetStoreDirectory(WString(m_dir.U().c_str())); }
    void TearDown() override { BConfigRegistry::SetStoreDirectory(WString()); }

    static BArray<WString> Names(BConfig const& config, bool subSections) {
        BArray<WString> names;
        EXPECT_EQ(subSections ? config.QuerySubSections(names) : config.QueryKeys(names), 0);
        return names;
    }

    TempDir m_dir;
};

TEST_F(ConfigRegistry, RootNamesAreExactAndTheSeparatorIsDroppedUnseen) {
    struct Row {
        char16_t const* writeAt;
        char16_t const* readAt;
        bool same;
    } const rows[] = {
        {u"HKLM\\Software\\X", u"HKEY_LOCAL_MACHINE\\Software\\X", true},
        {u"hklm\\Software\\X", u"HKCU\\hklm\\Software\\X", true},
        {u"HKU/Software\\Z", u"HKEY_USERS\\Software\\Z", true},
        {u"HKLM\\Software\\X", u"HKCU\\Software\\X", false},
    };
    for (Row const& row : rows) {
        BConfigRegistry writer{WString(row.writeAt)};
        ASSERT_EQ(writer.WriteString(u"probe", WString(row.readAt)), 0);
        WString read;
        BConfigRegistry reader{WString(row.readAt)};
        EXPECT_EQ(reader.ReadString(u"probe", read) == 0 && read == WString(row.readAt), row.same)
            << WString(row.writeAt).ToUtf8();
    }
    // A root name alone, or nothing, is the root itself.
    BConfigRegistry(WString(u"HKCU")).WriteString(u"atRoot", u"1");
    WString value;
    EXPECT_EQ(BConfigRegistry(WString()).ReadString(u"atRoot", value), 0);
}

TEST_F(ConfigRegistry, TypedValuesTravelAsText) {
    BConfigRegistry config{WString(u"Software\\Typed")};
    EXPECT_EQ(config.WriteFloat(u"f", 1.0f / 3.0f) + config.WriteDouble(u"d", 1.0 / 3.0) +
                  config.WriteBool(u"b", true) + config.WriteInt(u"i", -42),
              0);
    WString f, d, b, i;
    EXPECT_EQ(config.ReadString(u"f", f) + config.ReadString(u"d", d) + config.ReadString(u"b", b) +
                  config.ReadString(u"i", i),
              0);
    EXPECT_EQ((f + u"|" + d + u"|" + b + u"|" + i).ToUtf8(),
              "0.33333334|0.3333333333333333|True|-42");
    struct Row {
        char16_t const* text;
        int result;
        bool value;
    } const bools[] = {
        {u"true", 0, true}, {u"7", 0, true}, {u"False", 0, false}, {u"maybe", 32767, true}};
    for (Row const& row : bools) {
        config.WriteString(u"flag", WString(row.text));
        bool value = true;
        int const result = config.ReadBool(u"flag", value);
        EXPECT_EQ(std::pair(result, value), std::pair(row.result, row.value))
            << WString(row.text).ToUtf8();
    }
    int missing = 5, number = 5;
    EXPECT_EQ(std::pair(config.ReadInt(u"missing", missing), missing), std::pair(32767, 5));
    EXPECT_EQ(std::pair(config.ReadInt(u"i", number), number), std::pair(0, -42));
}

TEST_F(ConfigRegistry, OnlyTextValuesAreListedAndRead) {
    BConfigRegistry config{WString(u"Software\\Mixed")};
    using namespace qv::platform;
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\Mixed", 0, KEY_ALL_ACCESS_RW, &key);
    std::uint32_t number = 7;
    RegSetValueExW(key, u"dword", 0, REG_DWORD, reinterpret_cast<unsigned char*>(&number), 4);
    RegCloseKey(key);
    config.WriteString(u"text", u"7");
    BArray<WString> keys = Names(config, false);
    EXPECT_EQ(keys.Count() == 1 ? keys[0].ToUtf8() : "", "text");
    int value = 0;
    EXPECT_EQ(config.ReadInt(u"dword", value), 32767);
}

TEST_F(ConfigRegistry, ChildrenComeIntoBeingAndCopiesTakeTheWholeTree) {
    BConfigRegistry source{WString(u"Software\\Source")};
    source.WriteString(u"top", u"1");
    source.Child(u"inner")->Child(u"deep")->WriteString(u"leaf", u"2");
    EXPECT_EQ(Names(source, true).Count(), 1u);
    EXPECT_THROW(source.Child(WString()), BError);

    SP<BConfig> target = new BConfigRegistry(WString(u"HKLM\\Software\\Target"));
    EXPECT_EQ(source.CopyTo(target), 0);
    WString leaf;
    EXPECT_EQ(target->Child(u"inner")->Child(u"deep")->ReadString(u"leaf", leaf), 0);
    EXPECT_EQ(leaf, WString(u"2"));
    EXPECT_EQ(source.CopyTo(SP<BConfig>()), 32767);
}

TEST_F(ConfigRegistry, AStoreThatCannotBeWrittenMakesNothing) {
    WriteBytes(m_dir / "file", "x");
    BConfigRegistry::SetStoreDirectory(WString(m_dir.U("file/store").c_str()));
    EXPECT_THROW(BConfigRegistry(WString(u"Software\\New")), BError);
}

} // namespace
