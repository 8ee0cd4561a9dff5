// The stored form of nodes, through real object archive files.
#include "persistence/ArchiveFiles.h"
#include "platform/FileTestSupport.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <qv/persistence/BQuorvelArchive.h>
#include <qv/persistence/BReadObjCallbackMap.h>
#include <qv/tree/BNode.h>
#include <string>
#include <vector>

namespace {

using namespace archive_files;

std::string NodeHeader() {
    return Header("class QvTest", 3);
}
std::string NodeRecord(std::string const& id, std::string const& name, int version,
                       std::string const& data) {
    return Record(id, name, "class BNode", version, data);
}

// The data of a node with no object, attributes or annotations, children by number.
std::string NodeData(std::string const& narrow, std::string const& wide, std::uint64_t parent,
                     std::vector<std::uint64_t> const& children, int version = 2,
                     unsigned flags = 1) {
    std::string b = Le64(0) + Le32(static_cast<std::uint32_t>(children.size()));
    for (auto c : children)
        b += Le64(c);
    b += Le32(0) + Str(narrow) + Le64(parent) + static_cast<char>(flags);
    if (version >= 1)
        b += WStr(wide);
    if (version >= 2)
        b += Le32(0);
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
    void Store(BNode* root, char const* name = "tree") {
        BQuorvelArchive archive(path.c_str(), BArchive::WRITE, BString("class QvTest"), 3);
        archive.Insert(root, name);
    }
    SP<BNode> Load(char const* key) {
        BQuorvelArchive archive(path.c_str(), BArchive::READ, BString("class QvTest"), 3);
        EXPECT_TRUE(archive.IsGood());
        return archive.TakeOut(key);
    }
    std::string FileBytes() const { return ReadBytes(dir / "tree.qva"); }
    void Write(std::string const& bytes) const { WriteBytes(dir / "tree.qva", bytes); }

    TempDir dir;
    std::u16string path = dir.U("tree.qva");
};

} // namespace

TEST_F(NodeArchiveTest, TwoNodeTreeIsStoredByteForByte) {
    SP<BNode> root = new BNode;
    root->SetText(u"root");
    root->QueryChild(u"a");
    Store(root);
    EXPECT_EQ(FileBytes(), NodeHeader() +
                               NodeRecord("1", "tree", 2, NodeData("root", "root", 0, {2})) +
                               NodeRecord("2", "", 2, NodeData("a", "a", 1, {})));
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
    root->QueryChild(u"c/d")->Deactivate();
    Store(root);

    SP<BNode> loaded = Load("tree");
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(loaded->IsMessageDispatcher()) << "the flag is not stored";
    EXPECT_EQ(WString(loaded->GetText()), WString(u"Messung \u00fc"));
    ASSERT_EQ(loaded->ChildNum(), 2);
    BNode* lb = loaded->Child(0);
    EXPECT_EQ(lb->Sister(), loaded->Child(1));
    EXPECT_TRUE(lb->IsLocked());
    ASSERT_NE(lb->GetObj(), nullptr);
    EXPECT_EQ(static_cast<Payload*>(lb->GetObj())->value, 42);
    EXPECT_NE(lb->Attrib(u"colour"), nullptr);
    EXPECT_EQ(lb->AnnotationNum(), 1);
    BNode* d = loaded->Child(u"c/d");
    EXPECT_FALSE(d->IsActive());
    EXPECT_EQ(d->Root(), loaded.get());
}

TEST_F(NodeArchiveTest, OlderVersionsAndTheNarrowText) {
    std::string file = NodeHeader();
    file += NodeRecord("1", "v0", 0, NodeData("narrow0", "", 0, {2}, 0));
    file += NodeRecord("2", "v1", 1, NodeData("narrow1", "wide1", 1, {}, 1, 3));
    file += NodeRecord("3", "v2", 2, NodeData("narrow2", "wide2", 0, {}));
    Write(file);
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
    std::string file = NodeHeader();
    file += NodeRecord("1", "one", 2, NodeData("1", "1", 2, {1, 2}));
    file += NodeRecord("2", "", 2, NodeData("2", "2", 1, {1, 99}));
    file += NodeRecord("3", "three", 2, NodeData("3", "3", 0, {2}));
    Write(file);
    {
        BQuorvelArchive archive(path.c_str(), BArchive::READ, BString("class QvTest"), 3);
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
    std::string const data =
        Le64(0) + Le32(0) + Le32(0) + "X" + Le32(1) + "a" + Le64(0) + "\1" + WStr("a") + Le32(0);
    std::string file = NodeHeader();
    file += NodeRecord("1", "bad", 2, data);
    file += NodeRecord("2", "good", 2, NodeData("g", "g", 0, {}));
    Write(file);
    BQuorvelArchive archive(path.c_str(), BArchive::READ, BString("class QvTest"), 3);
    SP<BSmartObj> bad;
    EXPECT_NO_THROW(bad = archive.TakeOut("bad"));
    EXPECT_FALSE(bad);
    EXPECT_TRUE(archive.TakeOut("good")) << "the archive goes on with other records";
}

TEST_F(NodeArchiveTest, LoadedNodesOwnNodesThroughChildrenOnly) {
    // Node 1 is its own object and annotates node 2, which is its child: both would close a
    // cycle of owners.
    std::string const data = Le64(1) + Le32(1) + Le64(2) + Le32(0) + Str("1") + Le64(0) + "\1" +
                             WStr("1") + Le32(1) + Le64(2);
    std::string file = NodeHeader();
    file += NodeRecord("1", "one", 2, data);
    file += NodeRecord("2", "", 2, NodeData("2", "2", 1, {}));
    Write(file);
    SP<BNode> one = Load("one");
    ASSERT_TRUE(one);
    EXPECT_EQ(one->GetObj(), nullptr);
    EXPECT_EQ(one->AnnotationNum(), 0);
    EXPECT_EQ(one->ChildNum(), 1);
}
