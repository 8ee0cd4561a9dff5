#include "persistence/ArchiveFiles.h"
#include "persistence/ArchiveTestSupport.h"
#include "platform/FileTestSupport.h"

#include <functional>
#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/persistence/BIStreamArchive.h>
#include <qv/persistence/BOStreamArchive.h>
#include <qv/tree/BNode.h>
#include <string>

namespace {

using namespace archive_files;

std::string const kId("\x7A\x9F\xB8\x18\xD3\x86\xF8\x44\xA3\x85\x4F\xE4\x83\x31\xC3\x62", 16);
std::string const kEA(8, '\xEA');

std::string StreamHeader(std::string_view name) {
    return Le64(16) + kId + WStr("BStreamArchive") + Le32(9) + WStr(name);
}
// A stream object: the flag, the prefix with id "0" and the unfilled size, then the data.
std::string StreamObject(std::string_view name, std::string_view className, int version,
                         std::string const& data) {
    return Le64(1) + Str("0") + Str(name) + Str(className) +
           Le32(static_cast<std::uint32_t>(version)) + kEA + data;
}
// A node without object, attributes or annotations; its children follow in place.
std::string StreamNode(std::string_view text, std::vector<std::string> const& children = {},
                       unsigned flags = 1) {
    std::string b = Le64(0) + Le32(static_cast<std::uint32_t>(children.size()));
    for (auto const& c : children)
        b += c;
    b += Le32(0) + Str(text) + Le64(0) + static_cast<char>(flags) + WStr(text) + Le32(0);
    return StreamObject("", "class BNode", 2, b);
}

struct Counted : BSmartObj {
    QV_DECLARE_CLASSNAME(Counted)
    void WriteData(BArchive& a) const override { a << value; }
    bool VerifyObj() override {
        ++verified;
        return false; // the stream reader asks and does not heed the answer
    }
    static SP<BSmartObj> Read(BArchive& a, int) {
        SP<Counted> c = new Counted;
        a >> c->value;
        return c;
    }
    std::int32_t value = 0;
    int verified = 0;
};
QV_REGISTER_CLASSNAME(Counted);
[[maybe_unused]] bool const registered =
    (RegisterArchiveCallback(Counted::CLASSNAME(), &Counted::Read), true);

// The error number and first argument of what a call throws.
std::string Thrown(std::function<void()> const& call) {
    try {
        call();
    } catch (BError const& e) {
        return std::to_string(e.Error()) + " " + e.Argument(0).ToUtf8();
    }
    return "nothing";
}

class StreamArchiveTest : public ::testing::Test {
protected:
    WString Path() const { return WString(path.c_str()); }
    std::string Bytes() const { return ReadBytes(dir / "s.qvs"); }
    void Write(std::string const& bytes) const { WriteBytes(dir / "s.qvs", bytes); }
    void Store(std::function<void(BOStreamArchive&)> const& fill, char16_t const* name = u"N") {
        BOStreamArchive out(Path(), name);
        ASSERT_TRUE(out.IsGood());
        fill(out);
    }

    TempDir dir;
    std::u16string path = dir.U("s.qvs");
};

} // namespace

TEST_F(StreamArchiveTest, FilesAreWrittenByteForByte) {
    // The archive name in 16-bit units, a null, a named object, a node tree in place.
    SP<BNode> root = new BNode;
    root->SetText(u"r");
    root->QueryChild(u"a");
    SP<Counted> counted = new Counted;
    counted->value = 7;
    Store(
        [&](BOStreamArchive& a) {
            a.Insert(nullptr, "x");
            a.Insert(counted, "one");
            a.Insert(root, nullptr);
        },
        u"Scan \u00fc");
    EXPECT_EQ(Bytes(), Le64(16) + kId + WStr("BStreamArchive") + Le32(9) + Le32(6) +
                           WStr("Scan ").substr(4) + Le(0xFC, 2) + Le64(0) +
                           StreamObject("one", "class Counted", 0, Le32(7)) +
                           StreamNode("r", {StreamNode("a")}));
}

TEST_F(StreamArchiveTest, ObjectsComeBackInOrderWhateverTheName) {
    SP<Counted> shared = new Counted;
    shared->value = 5;
    SP<BNode> root = new BNode;
    root->SetText(u"root");
    root->QueryChild(u"a/b")->SetObj(shared);
    root->QueryChild(u"c")->SetObj(shared);
    root->Child(u"c")->Lock(true);
    root->Child(u"a")->Deactivate();
    // An item with every reference form: an object with a virtual base, a child, a tag held
    // twice, a plain parent reference.
    SP<ArchiveItem> item = new ArchiveItem(u"item");
    SP<ArchiveTag> tag = new ArchiveTag(4);
    item->m_object = SP<BSmartObj>(new ArchiveTag(9));
    ArchiveItem* kid = item->Add(new ArchiveItem(u"kid"));
    kid->m_tags.AddTail(tag);
    kid->m_tags.AddTail(tag);
    kid->m_value = 3;
    Store([&](BOStreamArchive& a) {
        a.Insert(nullptr, "nothing");
        a.Insert(root, "tree");
        a.Insert(item, "item");
        a.Insert(shared, "shared");
    });

    BIStreamArchive in(Path(), u"N");
    ASSERT_TRUE(in.IsGood());
    EXPECT_FALSE(in.TakeOut("tree")) << "the first object is the stored null";
    SP<BNode> tree = in.TakeOut("no such name");
    ASSERT_TRUE(tree && tree->ChildNum() == 2);
    BNode *a = tree->Child(0), *c = tree->Child(1), *b = a->Child(0);
    ASSERT_TRUE(b && b->GetObj() && c->GetObj());
    EXPECT_TRUE(WString(tree->GetText()) == WString(u"root") && !a->IsActive() && c->IsLocked());
    for (BNode* node : {tree.get(), a, b, c})
        EXPECT_EQ(node->Parent(), nullptr) << "a stream holds no parents";
    EXPECT_NE(b->GetObj(), c->GetObj()) << "an object reached twice comes back twice";
    EXPECT_EQ(static_cast<Counted*>(c->GetObj())->value, 5);

    SP<ArchiveItem> back = in.TakeOut("");
    ASSERT_TRUE(back && back->m_object);
    ASSERT_EQ(Kids(*back) + " " + std::to_string(SP<ArchiveTag>(back->m_object)->m_value), "kid 9");
    ArchiveItem* k = back->m_children[0];
    EXPECT_TRUE(k->m_value == 3 && !k->m_parent) << "the plain parent reference took 8 bytes";
    ASSERT_EQ(k->m_tags.Count(), 2);
    EXPECT_NE(k->m_tags[0].get(), k->m_tags[1].get()) << "a tag held twice comes back twice";
    EXPECT_EQ(k->m_updates, 0) << "nothing calls UpdateAssociations";

    SP<Counted> last = in.TakeOut("");
    EXPECT_EQ(last ? last->verified : -1, 1) << "VerifyObj is asked once";
    EXPECT_FALSE(in.TakeOut("")) << "the end of the file gives null";
    EXPECT_TRUE(in.IsGood());
}

TEST_F(StreamArchiveTest, EachDirectionRefusesTheOthersWork) {
    Store([](BOStreamArchive&) {});
    BIStreamArchive in(Path(), u"N");
    BOStreamArchive out(WString(dir.U("out.qvs").c_str()), u"N");
    char byte = 'x';
    EXPECT_EQ(in.WriteMemoryBlock(&byte, 1), 0u);
    EXPECT_EQ(out.ReadMemoryBlock(&byte, 1), 0u);
    EXPECT_FALSE(out.TakeOut("x"));
    EXPECT_EQ(Thrown([&] { out.ThrowError(); }), "31182 BOStreamArchive");
    EXPECT_EQ(Thrown([&] { in.ThrowError(); }), "31182 BIStreamArchive");
    EXPECT_TRUE(
        Thrown([&] { in.Insert(nullptr, "x"); }).ends_with(" BIStreamArchive - invalid method"));
}

TEST_F(StreamArchiveTest, DamagedAndForeignFiles) {
    // What opening a file and taking out its first object comes to.
    auto outcome = [&](std::string const& bytes) -> std::string {
        Write(bytes);
        try {
            BIStreamArchive in(Path(), u"N");
            SP<BNode> node = in.TakeOut("");
            return std::string(in.IsGood() ? "good" : "not good") +
                   (node ? ", " + std::to_string(node->ChildNum()) + " children" : "");
        } catch (BError const&) {
            return "throws";
        }
    };
    std::string const good = StreamHeader("N");
    std::string deep = StreamNode("leaf");
    for (int i = 0; i < 2100; ++i)
        deep = StreamNode("n", {deep});
    struct Row {
        char const* name;
        std::string bytes;
        char const* outcome;
    } const rows[] = {
        {"good header", good, "good"},
        {"empty file", "", "throws"},
        {"other first number", Le64(17) + good.substr(8), "throws"},
        {"wrong identifier", Le64(16) + std::string(16, '\0') + good.substr(24), "not good"},
        {"older version", Le64(16) + kId + WStr("BStreamArchive") + Le32(8) + WStr("N"),
         "not good"},
        {"name in other case", StreamHeader("n"), "not good"},
        {"unknown class", good + StreamObject("", "class Nobody", 0, ""), "throws"},
        {"class without its prefix word", good + StreamObject("", "BNode", 2, ""), "throws"},
        {"prefix cut short", good + Le64(1) + Str("0") + Str(""), "good"},
        {"null children are dropped",
         good + StreamObject("", "class BNode", 2,
                             Le64(0) + Le32(2) + Le64(0) + StreamNode("a") + Le32(0) + Str("p") +
                                 Le64(0) + "\1" + WStr("p") + Le32(0)),
         "good, 1 children"},
        {"nesting too deep", good + deep, "throws"},
    };
    for (Row const& row : rows)
        EXPECT_EQ(outcome(row.bytes), row.outcome) << row.name;
    EXPECT_FALSE(BIStreamArchive(WString(dir.U("missing.qvs").c_str()), u"N").IsGood());
    BOStreamArchive unwritable(WString(dir.U("no/such/dir.qvs").c_str()), u"N");
    EXPECT_FALSE(unwritable.IsGood());
    EXPECT_THROW(unwritable.Insert(nullptr, nullptr), BError);
}

TEST_F(StreamArchiveTest, WritingTooDeepAStructureThrows) {
    SP<BNode> root = new BNode;
    BNode* tip = root;
    for (int i = 0; i < 2100; ++i)
        tip = tip->QueryChild(u"n");
    BOStreamArchive out(Path(), u"N");
    EXPECT_THROW(out.Insert(root, nullptr), BError);
}
