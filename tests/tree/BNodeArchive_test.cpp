// The stored form of nodes, through real object archive files.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <qv/persistence/BQuorvelArchive.h>
#include <qv/persistence/BReadObjCallbackMap.h>
#include <qv/tree/BNode.h>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// Little-endian bytes as the file formats spell them.
struct Bytes {
    std::vector<unsigned char> data;
    Bytes& U8(unsigned v) {
        data.push_back(static_cast<unsigned char>(v));
        return *this;
    }
    Bytes& I32(std::int64_t v) {
        for (int i = 0; i < 4; ++i)
            U8(static_cast<unsigned>((v >> (8 * i)) & 0xFF));
        return *this;
    }
    Bytes& U64(std::uint64_t v) {
        for (int i = 0; i < 8; ++i)
            U8(static_cast<unsigned>((v >> (8 * i)) & 0xFF));
        return *this;
    }
    Bytes& Str(std::string const& s) {
        U8('S').I32(static_cast<std::int64_t>(s.size()));
        data.insert(data.end(), s.begin(), s.end());
        return *this;
    }
    Bytes& WStr(std::string const& ascii) {
        I32(static_cast<std::int64_t>(ascii.size()));
        for (char c : ascii)
            U8(static_cast<unsigned char>(c)).U8(0);
        return *this;
    }
    Bytes& Append(Bytes const& other) {
        data.insert(data.end(), other.data.begin(), other.data.end());
        return *this;
    }
};

Bytes Header(std::string const& name, int version, int format = 8) {
    Bytes b;
    b.Str(name).I32(version).Str("class BArchive").I32(format);
    return b;
}

Bytes Record(std::string const& id, std::string const& name, int version, Bytes const& data) {
    Bytes b;
    b.Str(id).Str(name).Str("class BNode").I32(version).U64(data.data.size()).Append(data);
    return b;
}

// The data of a node with no object, attributes or annotations, children by number.
Bytes NodeData(std::string const& narrow, std::string const& wide, std::uint64_t parent,
               std::vector<std::uint64_t> const& children, int version = 2, unsigned flags = 1) {
    Bytes b;
    b.U64(0).I32(static_cast<std::int64_t>(children.size()));
    for (auto c : children)
        b.U64(c);
    b.I32(0).Str(narrow).U64(parent).U8(flags);
    if (version >= 1)
        b.WStr(wide);
    if (version >= 2)
        b.I32(0);
    return b;
}

struct Tag : BAttribute {
    QV_DECLARE_CLASSNAME(Tag)
    explicit Tag(char16_t const* name = u"") : m_name(name) {}
    WString Name() const override { return m_name; }
    void WriteData(BArchive& a) const override { a << m_name; }
    static SP<BSmartObj> Read(BArchive& a, int) {
        SP<Tag> tag = new Tag;
        a >> tag->m_name;
        return SP<BSmartObj>(static_cast<BSmartObj*>(tag.get()));
    }
    WString m_name;
};
QV_REGISTER_CLASSNAME(Tag);

struct Payload : BSmartObj {
    QV_DECLARE_CLASSNAME(Payload)
    void WriteData(BArchive& a) const override { a << value; }
    static SP<BSmartObj> Read(BArchive& a, int) {
        SP<Payload> p = new Payload;
        a >> p->value;
        return p;
    }
    std::int32_t value = 0;
};
QV_REGISTER_CLASSNAME(Payload);

[[maybe_unused]] bool const registered = [] {
    RegisterArchiveCallback(Tag::CLASSNAME(), &Tag::Read);
    RegisterArchiveCallback(Payload::CLASSNAME(), &Payload::Read);
    return true;
}();

class NodeArchiveTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::temp_directory_path() /
              ("qv_node_archive_" +
               std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "_" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(dir);
        path = WString::FromUtf8((dir / "tree.qva").string());
    }
    void TearDown() override { fs::remove_all(dir); }

    void Store(BNode* root, char const* name = "tree") {
        BQuorvelArchive archive(path.CStr(), BArchive::WRITE, BString("class QvTest"), 3);
        archive.Insert(root, name);
    }
    SP<BNode> Load(char const* key) {
        BQuorvelArchive archive(path.CStr(), BArchive::READ, BString("class QvTest"), 3);
        EXPECT_TRUE(archive.IsGood());
        return archive.TakeOut(key);
    }
    std::vector<unsigned char> FileBytes() {
        std::ifstream in(dir / "tree.qva", std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    void WriteFile(Bytes const& bytes) {
        std::ofstream out(dir / "tree.qva", std::ios::binary);
        out.write(reinterpret_cast<char const*>(bytes.data.data()),
                  static_cast<std::streamsize>(bytes.data.size()));
    }

    fs::path dir;
    WString path;
};

} // namespace

TEST_F(NodeArchiveTest, TwoNodeTreeIsStoredByteForByte) {
    SP<BNode> root = new BNode;
    root->SetText(u"root");
    root->QueryChild(u"a");
    Store(root);
    Bytes expected = Header("class QvTest", 3);
    expected.Append(Record("1", "tree", 2, NodeData("root", "root", 0, {2})));
    expected.Append(Record("2", "", 2, NodeData("a", "a", 1, {})));
    EXPECT_EQ(FileBytes(), expected.data);
}

TEST_F(NodeArchiveTest, TreeComesBackWhole) {
    SP<BNode> root = new BNode;
    root->SetText(u"Messung \u00fc");
    root->IsMessageDispatcher(false);
    SP<Payload> shared = new Payload;
    shared->value = 42;
    BNode* b = root->QueryChild(u"b");
    b->SetObj(shared);
    b->AddAttrib(new Tag(u"colour"));
    b->AddAnnotation(shared);
    b->Lock(true);
    BNode* c = root->QueryChild(u"c");
    c->SetObj(shared);
    c->Deactivate();
    root->QueryChild(u"c/d");
    Store(root);

    SP<BNode> loaded = Load("tree");
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(loaded->IsMessageDispatcher()) << "the flag is not stored";
    EXPECT_EQ(WString(loaded->GetText()), WString(u"Messung \u00fc"));
    ASSERT_EQ(loaded->ChildNum(), 2);
    BNode* lb = loaded->Child(0);
    BNode* lc = loaded->Child(1);
    EXPECT_EQ(WString(lb->GetText()), WString(u"b"));
    EXPECT_EQ(lb->Parent(), loaded.get());
    EXPECT_EQ(lb->Sister(), lc);
    EXPECT_TRUE(lb->IsLocked());
    EXPECT_FALSE(lc->IsActive());
    ASSERT_NE(lb->GetObj(), nullptr);
    EXPECT_EQ(lb->GetObj(), lc->GetObj()) << "one record, one instance";
    EXPECT_EQ(static_cast<Payload*>(lb->GetObj())->value, 42);
    ASSERT_NE(lb->Attrib(u"colour"), nullptr);
    EXPECT_EQ(lb->AnnotationNum(), 1);
    EXPECT_EQ(loaded->Child(u"c/d")->Root(), loaded.get());
}

TEST_F(NodeArchiveTest, NodeBelowTheTopTakenOutAlone) {
    SP<BNode> root = new BNode;
    root->QueryChild(u"a/b");
    Store(root);
    SP<BNode> a = Load("2");
    ASSERT_TRUE(a);
    EXPECT_EQ(a->Parent(), nullptr) << "the parent is referred to, never loaded for it";
    EXPECT_EQ(a->Child(0)->Parent(), a.get());
}

TEST_F(NodeArchiveTest, OlderVersionsAndTheNarrowText) {
    Bytes file = Header("class QvTest", 3);
    file.Append(Record("1", "v0", 0, NodeData("narrow0", "", 0, {2}, 0)));
    file.Append(Record("2", "v1", 1, NodeData("narrow1", "wide1", 1, {}, 1, 3)));
    file.Append(Record("3", "v2", 2, NodeData("narrow2", "wide2", 0, {})));
    WriteFile(file);
    SP<BNode> v0 = Load("v0");
    ASSERT_TRUE(v0);
    EXPECT_EQ(WString(v0->GetText()), WString(u"narrow0"));
    BNode* v1 = v0->Child(0);
    ASSERT_NE(v1, nullptr);
    EXPECT_EQ(WString(v1->GetText()), WString(u"wide1"));
    EXPECT_TRUE(v1->IsLocked());
    EXPECT_EQ(WString(Load("v2")->GetText()), WString(u"wide2")) << "the narrow text is dropped";
}

TEST_F(NodeArchiveTest, DamagedReferencesLeaveATree) {
    // Node 1 lists itself and node 2; node 2 lists node 1 back and a record that does not
    // exist; node 3 lists node 2, which node 1 claimed first.
    Bytes file = Header("class QvTest", 3);
    file.Append(Record("1", "one", 2, NodeData("1", "1", 2, {1, 2})));
    file.Append(Record("2", "", 2, NodeData("2", "2", 1, {1, 99})));
    file.Append(Record("3", "three", 2, NodeData("3", "3", 0, {2})));
    WriteFile(file);
    {
        BQuorvelArchive archive(path.CStr(), BArchive::READ, BString("class QvTest"), 3);
        SP<BNode> one = archive.TakeOut("one");
        SP<BNode> three = archive.TakeOut("three");
        ASSERT_TRUE(one);
        ASSERT_TRUE(three);
        BNode* two = one->ChildNum() == 1 ? one->Child(0) : nullptr;
        ASSERT_NE(two, nullptr);
        EXPECT_EQ(two->Parent(), one.get());
        EXPECT_EQ(two->ChildNum(), 0) << "neither its ancestor nor a missing record stays";
        EXPECT_EQ(one->Parent(), nullptr);
        EXPECT_EQ(three->ChildNum(), 0) << "a child belongs to one list only";
        EXPECT_FALSE(one->IsGrandParent(one));
    }
    // LeakSanitizer checks that no cycle of owners was built.
}

TEST_F(NodeArchiveTest, DeepChainStoresAndLoadsInLinearTime) {
    constexpr int kDepth = 50000;
    SP<BNode> root = new BNode;
    BNode* tip = root;
    for (int i = 0; i < kDepth; ++i)
        tip = tip->QueryChild(u"n");
    Store(root);
    root = nullptr;
    SP<BNode> loaded = Load("tree");
    ASSERT_TRUE(loaded);
    int depth = 0;
    for (BNode* n = loaded; n->ChildNum() == 1; n = n->Child(0))
        ++depth;
    EXPECT_EQ(depth, kDepth);
}

TEST_F(NodeArchiveTest, UnreadableStringInsideARecordGivesNull) {
    Bytes data;
    data.U64(0).I32(0).I32(0).U8('X').I32(1).U8('a').U64(0).U8(1).WStr("a").I32(0);
    Bytes file = Header("class QvTest", 3);
    file.Append(Record("1", "bad", 2, data));
    file.Append(Record("2", "good", 2, NodeData("g", "g", 0, {})));
    WriteFile(file);
    BQuorvelArchive archive(path.CStr(), BArchive::READ, BString("class QvTest"), 3);
    SP<BSmartObj> bad;
    EXPECT_NO_THROW(bad = archive.TakeOut("bad"));
    EXPECT_FALSE(bad);
    EXPECT_TRUE(archive.TakeOut("good")) << "the archive goes on with other records";
}

TEST_F(NodeArchiveTest, LoadedNodesOwnNodesThroughChildrenOnly) {
    // Node 1 is its own object and annotates node 2, which is its child: both would close a
    // cycle of owners.
    Bytes data;
    data.U64(1).I32(1).U64(2).I32(0).Str("1").U64(0).U8(1).WStr("1").I32(1).U64(2);
    Bytes file = Header("class QvTest", 3);
    file.Append(Record("1", "one", 2, data));
    file.Append(Record("2", "", 2, NodeData("2", "2", 1, {})));
    WriteFile(file);
    SP<BNode> one = Load("one");
    ASSERT_TRUE(one);
    EXPECT_EQ(one->GetObj(), nullptr);
    EXPECT_EQ(one->AnnotationNum(), 0);
    EXPECT_EQ(one->ChildNum(), 1);
}
