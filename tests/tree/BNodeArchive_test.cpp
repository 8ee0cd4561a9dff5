// The stored form of nodes, through real object archive files.
#include "persistence/ArchiveFiles.h"
#include "persistence/ArchiveTestSupport.h"
#include "platform/FileTestSupport.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <qv/persistence/BQuorvelArchive.h>
#include <qv/persistence/BReadObjCallbackMap.h>
#include <qv/tree/BNode.h>
#include <qv/tree/BNodeAttribItr.h>
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

// The data of a node record, its associations by number.
std::string NodeData(std::string const& narrow, std::string const& wide, std::uint64_t parent,
                     std::vector<std::uint64_t> const& children, int version = 2,
                     unsigned flags = 1, std::uint64_t object = 0,
                     std::vector<std::uint64_t> const& annotations = {}) {
    std::string b = Le64(object) + Le32(static_cast<std::uint32_t>(children.size()));
    for (auto c : children)
        b += Le64(c);
    b += Le32(0) + Str(narrow) + Le64(parent) + static_cast<char>(flags);
    if (version >= 1)
        b += WStr(wide);
    if (version >= 2)
        b += Le32(static_cast<std::uint32_t>(annotations.size()));
    for (auto a : annotations)
        b += Le64(a);
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

[[maybe_unused]] bool const registered = [] {
    RegisterArchiveCallback(Tag::CLASSNAME(), &Tag::Read);
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

// A node's associations as text: its text, then the texts of a node object and of node
// annotations, then its children in brackets.
std::string Shape(BNode const* node) {
    auto text = [](BSmartObj* n) { return WString(static_cast<BNode*>(n)->GetText()).ToUtf8(); };
    std::string out = text(const_cast<BNode*>(node));
    if (dynamic_cast<BNode*>(node->GetObj()))
        out += " o" + text(node->GetObj());
    for (SP<BSmartObj> const& annotation : node->Annotations())
        out += " a" + text(annotation.get());
    for (int i = 0; i < node->ChildNum(); ++i)
        out += (i ? ", " : " (") + Shape(node->Child(i)) + (i + 1 == node->ChildNum() ? ")" : "");
    return out;
}

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
    SP<BSmartObj> shared(new ArchiveTag(42)); // an object with a virtual base
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
    EXPECT_EQ(dynamic_cast<ArchiveTag*>(lb->GetObj())->m_value, 42);
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
    EXPECT_EQ(Shape(v0), "narrow0 (wide1)");
    EXPECT_TRUE(v0->Child(0)->IsLocked());
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
        SP<BNode> one = archive.TakeOut("one"), three = archive.TakeOut("three");
        ASSERT_TRUE(one && three);
        EXPECT_EQ(Shape(one), "1 (2)") << "neither its ancestor nor a missing record stays";
        EXPECT_EQ(Shape(three), "3") << "a child belongs to one list only";
        EXPECT_EQ(one->Child(0)->Parent(), one.get());
        EXPECT_EQ(one->Parent(), nullptr);
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

// The associations of a node record: object, children and annotations by number.
struct Links {
    std::uint64_t object = 0;
    std::vector<std::uint64_t> children;
    std::vector<std::uint64_t> annotations;
};

TEST_F(NodeArchiveTest, NodesHeldAsObjectsOrAnnotationsComeBackUnlessTheyCloseACycle) {
    struct Row {
        char const* name;
        std::vector<Links> nodes; // node i has the id and text i + 1; node 1 is taken out
        char const* shape;
    };
    Row const rows[] = {
        {"free node as object", {{2, {}, {}}, {}}, "1 o2"},
        {"free node as annotation", {{0, {}, {2}}, {}}, "1 a2"},
        {"sibling as object", {{0, {2, 3}, {}}, {3, {}, {}}, {}}, "1 (2 o3, 3)"},
        {"sibling as annotation", {{0, {2, 3}, {}}, {0, {}, {3}}, {}}, "1 (2 a3, 3)"},
        {"own child as annotation", {{0, {2}, {2}}, {}}, "1 a2 (2)"},
        {"shared node object",
         {{0, {2, 3}, {}}, {4, {}, {}}, {4, {}, {4}}, {}},
         "1 (2 o4, 3 o4 a4)"},
        {"node object with children", {{2, {}, {}}, {0, {3}, {}}, {}}, "1 o2"},
        {"itself as object", {{1, {}, {}}}, "1"},
        {"itself as annotation", {{0, {}, {1}}}, "1"},
        {"ancestor as object", {{0, {2}, {}}, {0, {3}, {}}, {1, {}, {}}}, "1 (2 (3))"},
        {"ancestor as annotation", {{0, {2}, {}}, {0, {}, {1}}}, "1 (2)"},
        {"each other's object", {{2, {}, {}}, {1, {}, {}}}, "1 o2"},
        {"cycle through a child's object", {{0, {2}, {}}, {3, {}, {}}, {0, {}, {1}}}, "1 (2 o3)"},
    };
    for (Row const& row : rows) {
        std::string file = NodeHeader();
        for (std::size_t i = 0; i < row.nodes.size(); ++i) {
            std::string id = std::to_string(i + 1);
            file += NodeRecord(id, i == 0 ? "one" : "", 2,
                               NodeData(id, id, 0, row.nodes[i].children, 2, 1, row.nodes[i].object,
                                        row.nodes[i].annotations));
        }
        Write(file);
        SP<BNode> one = Load("one");
        ASSERT_TRUE(one) << row.name;
        EXPECT_EQ(Shape(one), row.shape) << row.name;
        // LeakSanitizer checks that no cycle of owners was built.
    }
}

// A node and its branch as text: text, attribute names in brackets, the number of
// annotations after a hash, then the children in parentheses.
std::string Outline(BNode const* node) {
    std::string out(WString(node->GetText()).AsString().View());
    for (SP<BAttribute> const& attribute : node->Attributes())
        out += "[" + std::string(attribute->Name().AsString().View()) + "]";
    if (node->AnnotationNum())
        out += "#" + std::to_string(node->AnnotationNum());
    if (node->ChildNum()) {
        out += " (";
        for (BNode* child = node->Child(0); child; child = child->Sister())
            out += (child == node->Child(0) ? "" : ", ") + Outline(child);
        out += ")";
    }
    return out;
}

TEST_F(NodeArchiveTest, LoadedTreeIsEditedLikeABuiltOne) {
    // Leaves share a text, one has an attribute, one an annotation: the parts of a loaded
    // node that are shared or made only when needed must behave as a built tree's.
    SP<BNode> root = new BNode;
    root->SetText(u"root");
    for (int i = 0; i < 3; ++i)
        root->QueryChild(u"x")->SetText(u"leaf");
    root->Child(1)->AddAttrib(new Tag(u"t"));
    root->Child(2)->AddAnnotation(new ArchiveTag(7));
    Store(root);

    struct Row {
        char const* name;
        void (*edit)(BNode& root);
        char const* outline;
    };
    Row const rows[] = {
        {"as loaded", [](BNode&) {}, "root (leaf, leaf[t], leaf#1)"},
        {"one shared text changed", [](BNode& r) { r.Child(0)->SetText(u"x"); },
         "root (x, leaf[t], leaf#1)"},
        {"attribute on a node that had none",
         [](BNode& r) { r.Child(0)->AddAttrib(new Tag(u"n")); }, "root (leaf[n], leaf[t], leaf#1)"},
        {"attribute added while an iterator walks",
         [](BNode& r) {
             BNodeAttribItr walk(*r.Child(0));
             r.Child(0)->AddAttrib(new Tag(u"late"));
             walk.Restart();
             if (walk)
                 walk.RemoveCurrent();
         },
         "root (leaf, leaf[t], leaf#1)"},
        {"decor removed and copied",
         [](BNode& r) {
             r.Child(1)->RemoveAttribs();
             r.Child(2)->RemoveAnnotations();
             r.Child(0)->Copy(*r.Child(1));
             r.Child(1)->AddAnnotation(r.Child(2));
         },
         "root (leaf, leaf#1, leaf)"},
        {"children removed and added",
         [](BNode& r) {
             r.RemoveChild(1);
             r.Child(0)->AddChild(new BNode, -1);
             r.AddChild(new BNode, 0);
         },
         "root (, leaf (), leaf#1)"},
        {"attribute copied from a loaded node",
         [](BNode& r) {
             SP<BNode> copy = new BNode;
             copy->Copy(*r.Child(1));
             r.Child(0)->AddAttrib(copy->Attrib(0));
         },
         "root (leaf[t], leaf[t], leaf#1)"},
    };
    for (Row const& row : rows) {
        SP<BNode> loaded = Load("tree");
        ASSERT_TRUE(loaded) << row.name;
        row.edit(*loaded);
        EXPECT_EQ(Outline(loaded), row.outline) << row.name;
        // The address sanitizer checks that the edited tree frees what the load gave it.
    }
}

TEST_F(NodeArchiveTest, TextsThatLookAlikeLoadAsWritten) {
    // Texts that agree in length and in their ends, around the length up to which loaded
    // texts are shared; each must come back as it was written, in any order.
    std::u16string const texts[] = {u"axb",
                                    u"ayb",
                                    u"axb",
                                    u"ab",
                                    u"aab",
                                    u"",
                                    u"a",
                                    std::u16string(32, u'q'),
                                    std::u16string(31, u'q') + u"r",
                                    std::u16string(32, u'q'),
                                    std::u16string(33, u'q'),
                                    std::u16string(33, u'q'),
                                    u"\u00fcb",
                                    u"\u00fcb"};
    SP<BNode> root = new BNode;
    for (std::u16string const& text : texts) {
        SP<BNode> child = new BNode;
        child->SetText(WString(std::u16string_view(text)));
        root->AddChild(child, -1);
    }
    Store(root);
    SP<BNode> loaded = Load("tree");
    ASSERT_TRUE(loaded);
    ASSERT_EQ(loaded->ChildNum(), static_cast<int>(std::size(texts)));
    for (int i = 0; i < loaded->ChildNum(); ++i)
        EXPECT_EQ(std::u16string(loaded->Child(i)->GetText()), texts[i]) << "child " << i;
}

TEST_F(NodeArchiveTest, LoadedBranchOutlivesItsTree) {
    // Loaded nodes share memory blocks: a branch held after its tree is gone keeps what it
    // stands on, and loads after it take no memory that a living node still uses.
    SP<BNode> root = new BNode;
    root->QueryChild(u"a/b")->AddAnnotation(new ArchiveTag(7));
    root->QueryChild(u"c");
    Store(root);
    SP<BNode> kept = Load("tree")->Child(u"a");
    ASSERT_TRUE(kept);
    for (int load = 0; load < 3; ++load)
        ASSERT_TRUE(Load("tree")) << "load " << load;
    EXPECT_EQ(kept->Parent(), nullptr) << "its tree is gone";
    EXPECT_EQ(Outline(kept), "a (b#1)");
    kept->QueryChild(u"d");
    EXPECT_EQ(Outline(kept), "a (b#1, d)");
}
