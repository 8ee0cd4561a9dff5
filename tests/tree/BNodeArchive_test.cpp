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

// A node and its branch as text: its text, "!" when locked, "~" when inactive, its
// attributes' names in brackets, " o" and the text of a node held as its object, " a" and the
// text of each annotation ("*" for one that is no node), then its children in parentheses, "^"
// marking a child whose parent is another.
std::string Outline(BNode* node) {
    auto text = [](BSmartObj const* o) {
        auto const* n = dynamic_cast<BNode const*>(o);
        return n ? WString(n->GetText()).ToUtf8() : std::string("*");
    };
    std::string out = text(node) + (node->IsLocked() ? "!" : "") + (node->IsActive() ? "" : "~");
    for (SP<BAttribute> const& attribute : node->Attributes())
        out += "[" + attribute->Name().ToUtf8() + "]";
    if (dynamic_cast<BNode*>(node->GetObj()))
        out += " o" + text(node->GetObj());
    for (SP<BSmartObj> const& annotation : node->Annotations())
        out += " a" + text(annotation.get());
    for (int i = 0; i < node->ChildNum(); ++i)
        out += std::string(i ? ", " : " (") + (node->Child(i)->Parent() == node ? "" : "^") +
               Outline(node->Child(i)) + (i + 1 == node->ChildNum() ? ")" : "");
    return out;
}

// Node records with the ids and texts 1, 2, ..., the first named "one": their object,
// children and annotations by number.
struct Links {
    std::uint64_t object = 0;
    std::vector<std::uint64_t> children, annotations;
};
std::string Linked(std::vector<Links> const& nodes) {
    std::string file;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        std::string const id = std::to_string(i + 1);
        file += NodeRecord(
            id, i ? "" : "one", 2,
            NodeData(id, id, 0, nodes[i].children, 2, 1, nodes[i].object, nodes[i].annotations));
    }
    return file;
}

} // namespace

TEST_F(NodeArchiveTest, TwoNodeTreeIsStoredByteForByte) {
    SP<BNode> root = new BNode;
    root->SetText(u"root");
    root->QueryChild(u"a");
    Store(root);
    EXPECT_EQ(FileBytes(), Header("class QvTest", 3) +
                               NodeRecord("1", "tree", 2, NodeData("root", "root", 0, {2})) +
                               NodeRecord("2", "", 2, NodeData("a", "a", 1, {})));
}

TEST_F(NodeArchiveTest, TreeComesBackWhole) {
    SP<BNode> root = new BNode;
    root->SetText(u"Messung \u00fc");
    root->IsMessageDispatcher(false);
    SP<BSmartObj> shared(new ArchiveTag(42)); // an object with a virtual base
    BNode* node = root->QueryChild(u"b");
    node->SetObj(shared);
    node->AddAttrib(new Tag(u"colour"));
    node->AddAnnotation(shared);
    node->Lock(true);
    root->QueryChild(u"c/d")->Deactivate();
    Store(root);

    SP<BNode> loaded = Load("tree");
    ASSERT_TRUE(loaded);
    EXPECT_EQ(Outline(loaded), "Messung \u00fc (b![colour] a*, c (d~))");
    EXPECT_TRUE(loaded->IsMessageDispatcher()) << "the flag is not stored";
    BNode* b = loaded->Child(0);
    EXPECT_EQ(dynamic_cast<ArchiveTag*>(b->GetObj())->m_value, 42);
    EXPECT_EQ(b->Annotations().GetHead().get(), b->GetObj()) << "one object, stored once";
}

TEST_F(NodeArchiveTest, DeepChainsStoreLoadAndDieWithoutRecursion) {
    constexpr int kDepth = 200000;
    SP<BNode> root = new BNode;
    BNode* tip = root;
    for (int i = 0; i < kDepth; ++i)
        tip = tip->QueryChild(u"n");
    Store(root);
    SP<BNode> held = tip;
    root = nullptr; // the chain above the tip dies
    EXPECT_EQ(held->Parent(), nullptr);
    SP<BNode> loaded = Load("tree");
    ASSERT_TRUE(loaded);
    int depth = 0;
    for (BNode* n = loaded; n->ChildNum() == 1; n = n->Child(0))
        ++depth;
    EXPECT_EQ(depth, kDepth);
}

TEST_F(NodeArchiveTest, HandMadeRecordsLoadAsTheirOutlines) {
    std::string const unreadable =
        Le64(0) + Le32(0) + Le32(0) + "X" + Le32(1) + "a" + Le64(0) + "\1" + WStr("a") + Le32(0);
    struct Row {
        char const* name;
        std::string records;
        char const* outlines; // of the keys taken out one after the other, "|" between
        std::vector<char const*> keys = {"one"};
    } const rows[] = {
        {"older versions; the narrow text is dropped",
         NodeRecord("1", "v0", 0, NodeData("narrow0", "", 0, {2}, 0)) +
             NodeRecord("2", "v1", 1, NodeData("narrow1", "wide1", 1, {}, 1, 3)) +
             NodeRecord("3", "v2", 2, NodeData("narrow2", "wide2", 0, {})),
         "narrow0 (wide1!) | wide2",
         {"v0", "v2"}},
        // Node 1 lists itself and node 2; node 2 lists node 1 back and a record that does not
        // exist; node 3 lists node 2, which node 1 claimed first.
        {"damaged references leave a tree",
         NodeRecord("1", "one", 2, NodeData("1", "1", 2, {1, 2})) +
             NodeRecord("2", "", 2, NodeData("2", "2", 1, {1, 99})) +
             NodeRecord("3", "three", 2, NodeData("3", "3", 0, {2})),
         "1 (2) | 3",
         {"one", "three"}},
        {"an unreadable string gives null, the archive goes on",
         NodeRecord("1", "bad", 2, unreadable) +
             NodeRecord("2", "good", 2, NodeData("g", "g", 0, {})),
         "<null> | g",
         {"bad", "good"}},
        // Nodes held as objects or annotations come back unless they close a cycle.
        {"free node as object", Linked({{2, {}, {}}, {}}), "1 o2"},
        {"sibling as annotation", Linked({{0, {2, 3}, {}}, {0, {}, {3}}, {}}), "1 (2 a3, 3)"},
        {"own child as annotation", Linked({{0, {2}, {2}}, {}}), "1 a2 (2)"},
        {"shared node object", Linked({{0, {2, 3}, {}}, {4, {}, {}}, {4, {}, {4}}, {}}),
         "1 (2 o4, 3 o4 a4)"},
        {"itself as object", Linked({{1, {}, {}}}), "1"},
        {"ancestor as annotation", Linked({{0, {2}, {}}, {0, {}, {1}}}), "1 (2)"},
        {"cycle through a child's object", Linked({{0, {2}, {}}, {3, {}, {}}, {0, {}, {1}}}),
         "1 (2 o3)"},
    };
    for (Row const& row : rows) {
        Write(Header("class QvTest", 3) + row.records);
        BQuorvelArchive archive(path.c_str(), BArchive::READ, BString("class QvTest"), 3);
        std::string outlines;
        for (char const* key : row.keys) {
            SP<BNode> node = archive.TakeOut(key);
            outlines += (outlines.empty() ? "" : " | ") + (node ? Outline(node) : "<null>");
            EXPECT_TRUE(!node || !node->Parent()) << row.name << ": " << key;
        }
        EXPECT_EQ(outlines, row.outlines) << row.name;
    }
    // LeakSanitizer checks that no cycle of owners was built.
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
    } const rows[] = {
        {"one shared text changed", [](BNode& r) { r.Child(0)->SetText(u"x"); },
         "root (x, leaf[t], leaf a*)"},
        {"attribute on a node that had none",
         [](BNode& r) { r.Child(0)->AddAttrib(new Tag(u"n")); },
         "root (leaf[n], leaf[t], leaf a*)"},
        {"attribute added while an iterator walks",
         [](BNode& r) {
             BNodeAttribItr walk(*r.Child(0));
             r.Child(0)->AddAttrib(new Tag(u"late"));
             walk.Restart();
             if (walk)
                 walk.RemoveCurrent();
         },
         "root (leaf, leaf[t], leaf a*)"},
        {"decor removed and copied",
         [](BNode& r) {
             r.Child(1)->RemoveAttribs();
             r.Child(2)->RemoveAnnotations();
             r.Child(0)->Copy(*r.Child(1));
             r.Child(1)->AddAnnotation(r.Child(2));
         },
         "root (leaf, leaf aleaf, leaf)"},
        {"children removed and added",
         [](BNode& r) {
             r.RemoveChild(1);
             r.Child(0)->AddChild(new BNode, -1);
             r.AddChild(new BNode, 0);
         },
         "root (, leaf (), leaf a*)"},
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
    std::u16string const q32(32, u'q');
    std::u16string const texts[] = {u"axb", u"ayb", u"axb", u"", q32, q32 + u"q", q32, u"\u00fcb"};
    SP<BNode> root = new BNode;
    for (std::u16string const& text : texts)
        if (SP<BNode> child = new BNode; root->AddChild(child, -1))
            child->SetText(WString(std::u16string_view(text)));
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
    kept->QueryChild(u"d");
    EXPECT_EQ(Outline(kept), "a (b a*, d)");
}
