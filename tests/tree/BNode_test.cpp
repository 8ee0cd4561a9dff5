#include <MessageCounter.h>
#include <cstdint>
#include <gtest/gtest.h>
#include <qv/operations/MessageNumbers.h>
#include <qv/tree/BNode.h>
#include <qv/tree/BNodeChildItr.h>
#include <qv/tree/BVisitor.h>
#include <string>
#include <vector>

namespace {

struct Message {
    unsigned int number;
    unsigned long long p1, p2;
    bool operator==(Message const&) const = default;
};
using Messages = std::vector<Message>;
constexpr unsigned kAdded = MSG_NODE_CHILD_ADDED, kRemoved = MSG_NODE_CHILD_REMOVED;

unsigned long long N(void const* p) {
    return reinterpret_cast<std::uintptr_t>(p);
}

struct Named : BAttribute {
    explicit Named(char16_t const* name) : m_name(name) {}
    WString Name() const override { return m_name; }
    WString m_name;
};

struct Sized : BSmartObj {
    explicit Sized(unsigned long long bytes) : m_bytes(bytes) {}
    unsigned long long AllocatedMemory() const override { return m_bytes; }
    unsigned long long m_bytes;
};

class NodeTest : public ::testing::Test {
protected:
    // What the tree announced since the last call.
    Messages Sent() {
        Messages sent;
        for (auto const& m : m_counter->Take())
            sent.push_back({m.number, m.param1, m.param2});
        return sent;
    }
    MessageCounter::Installed m_counter;
};

std::string Text(BNode const* n) {
    return WString(n->GetText()).ToUtf8();
}

// a(b(d), c)
SP<BNode> SmallTree() {
    SP<BNode> a = new BNode;
    a->SetText(u"a");
    a->QueryChild(u"b/d");
    a->QueryChild(u"c");
    return a;
}

// Writes down the visible order of a traversal.
struct Trace : BVisitor {
    bool TreatNode(BNode* n) override {
        Log("TreatNode " + Text(n));
        return changeNodes;
    }
    bool Treat(BSmartObj* o) override {
        Log(o ? "Treat" : "Treat null");
        return false;
    }
    void TreatAnnotation(SP<BSmartObj>, SP<BSmartObj const> owner) override {
        Log(owner == ownerExpected ? "Annotation" : "Annotation wrong owner");
    }
    void PushPath(BNode* n) override { Log("PushPath " + Text(n)); }
    void PopPath() override { Log("PopPath"); }
    void PushAttrib(BAttribute* a) override { Log("PushAttrib " + a->Name().ToUtf8()); }
    void PopAttrib(BAttribute* a) override { Log("PopAttrib " + a->Name().ToUtf8()); }
    void Log(std::string s) { log += (log.empty() ? "" : ", ") + s; }
    std::string log;
    bool changeNodes = false;
    BSmartObj const* ownerExpected = nullptr;
};

} // namespace

TEST_F(NodeTest, ChildMessagesCarryIndexAndComeInOrder) {
    SP<BNode> root = new BNode;
    SP<BNode> x = new BNode, y = new BNode, z = new BNode;
    Sent();
    // A position equal to the count appends; one within the list links in before that child.
    EXPECT_TRUE(root->AddChild(x, -1) && root->AddChild(y, 1) && root->AddChild(z, 0));
    EXPECT_TRUE(root->Child(0) == z && root->Child(2) == y);
    EXPECT_EQ(Sent(), (Messages{{kAdded, N(x), 0}, {kAdded, N(y), 1}, {kAdded, N(z), 0}}));
    EXPECT_TRUE(root->RemoveChild(1));
    root->RemoveChildren();
    EXPECT_EQ(Sent(), (Messages{{kRemoved, N(x), 0}, {kRemoved, N(z), 0}, {kRemoved, N(y), 0}}));
    EXPECT_TRUE(!x->Parent() && !y->Parent() && !z->Parent());
}

TEST_F(NodeTest, StateMessagesOnlyOnChange) {
    SP<BNode> n = new BNode;
    Sent();
    n->Activate(true);
    n->Lock(false); // neither changes anything, so neither is announced
    n->Deactivate();
    n->Lock(true);
    n->SetText(u"same");
    n->SetText(u"same");
    SP<BSmartObj> object = new BSmartObj;
    n->SetObj(object);
    n->SetObj(object);
    EXPECT_EQ(Sent(), (Messages{{MSG_NODE_ACTIVE_CHANGED, N(n), 0},
                                {MSG_NODE_LOCK_CHANGED, N(n), 0},
                                {MSG_NODE_TEXT_CHANGED, N(n), 0},
                                {MSG_NODE_TEXT_CHANGED, N(n), 0},
                                {MSG_NODE_OBJECT_CHANGED, N(n), 0}}));
    SP<BNode> withObject = new BNode(object);
    EXPECT_EQ(Sent(), (Messages{{MSG_NODE_OBJECT_CHANGED, N(withObject), 0}}));
}

TEST_F(NodeTest, DecorationRulesAndMessages) {
    SP<BNode> n = new BNode;
    SP<Named> first = new Named(u"colour"), second = new Named(u"colour"),
              other = new Named(u"size");
    Sent();
    EXPECT_TRUE(n->AddAttrib(first) && n->AddAttrib(other));
    EXPECT_FALSE(n->AddAttrib(other)) << "the same object again";
    EXPECT_TRUE(n->AddAttrib(second)) << "replaces the one of the same name";
    EXPECT_TRUE(n->AttribNum() == 2 && n->Attrib(1) == second) << "the new one goes to the end";
    EXPECT_EQ(n->Attrib(u"Colour"), nullptr) << "attribute names compare with case";
    EXPECT_EQ(Sent().size(), 3u);

    SP<BSmartObj> note = new BSmartObj;
    EXPECT_TRUE(n->AddAnnotation(note) && !n->AddAnnotation(note));
    Sent();
    EXPECT_TRUE(n->RemoveAnnotation(note) && !n->RemoveAnnotation(note));
    EXPECT_EQ(Sent(), (Messages{{MSG_NODE_DECOR_CHANGED, N(n), N(note)}}));
    n->RemoveAttribs();
    n->RemoveAttribs();
    n->RemoveAnnotations();
    EXPECT_EQ(Sent().size(), 1u) << "one message, and none for empty lists";
}

TEST_F(NodeTest, RootSilencesItsTree) {
    SP<BNode> root = SmallTree();
    BNode* b = root->Child(u"b");
    b->IsMessageDispatcher(false);
    EXPECT_TRUE(b->IsMessageDispatcher()) << "no effect on a node with a parent";
    root->IsMessageDispatcher(false);
    Sent();
    b->SetText(u"B");
    root->Child(u"B/d")->Lock(true);
    EXPECT_TRUE(Sent().empty());
    SP<BNode> keep = b;
    root->RemoveChild(b);
    EXPECT_TRUE(Sent().empty()) << "removal is announced by the silent root";
    keep->SetText(u"free");
    EXPECT_EQ(Sent().size(), 1u) << "the freed branch speaks by its own flag";
}

TEST_F(NodeTest, AddingAndRemovingKeepsParentsConsistent) {
    SP<BNode> one = SmallTree(), two = SmallTree();
    BNode* b = one->Child(u"b");
    EXPECT_FALSE(two->AddChild(b) || two->RemoveChild(b)) << "b belongs to another parent";
    EXPECT_EQ(b->Parent(), one.get());
    EXPECT_FALSE(b->AddChild(one) || one->AddChild(one)) << "a node below itself";
    EXPECT_TRUE(one->IsGrandParent(b->Child(0)) && !one->IsGrandParent(one) && one->Includes(one) &&
                !b->Includes(one));

    SP<BNode> held = b;
    EXPECT_TRUE(one->RemoveChild(u"B"));
    EXPECT_EQ(held->Child(0)->Root(), held.get()) << "the removed branch, whole, is a root";
    EXPECT_FALSE(one->RemoveChild(u"b/d")) << "a path of two steps is not a child";

    SP<BNode> d = held->Child(0);
    held = nullptr; // the parent dies, the child held elsewhere lives on as a root
    EXPECT_TRUE(!d->Parent() && !d->Sister());
}

TEST_F(NodeTest, PathsFoldCaseAndSkipLeadingSlashes) {
    SP<BNode> root = new BNode;
    BNode* y = root->QueryChild(u"x/y");
    EXPECT_TRUE(root->QueryChild(u"X/Y") == y && root->ChildNum() == 1) << "nothing made again";
    EXPECT_TRUE(root->Child(u"/x") == root->Child(u"x") && !root->Child(u"x/"));
    BNode* empty = root->Child(u"x")->QueryChild(u"");
    EXPECT_EQ(root->Child(u"x/"), empty) << "an empty last step finds an empty text";
    BNode* unnamed = root->QueryChild(u"/z");
    EXPECT_EQ(Text(unnamed->Parent()) + "/" + Text(unnamed), "/z") << "no slash is skipped";
}

TEST_F(NodeTest, ChildTextSuggestion) {
    SP<BNode> root = new BNode;
    root->QueryChild(u"a");
    EXPECT_EQ(root->ChildTextSuggestion(u"Scan"), WString(u"Scan002")) << "the count plus one";
    root->QueryChild(u"scan003");
    EXPECT_EQ(root->ChildTextSuggestion(u"Scan"), WString(u"Scan004")) << "Scan003 is taken";
}

TEST_F(NodeTest, CopySharesDecorAndDoublesChildren) {
    SP<BNode> source = SmallTree();
    SP<BSmartObj> object = new BSmartObj;
    SP<Named> attribute = new Named(u"a");
    source->SetObj(object);
    source->AddAttrib(attribute);
    source->Lock(true);
    SP<BNode> copy = new BNode;
    copy->SetText(u"mine");
    copy->QueryChild(u"old");
    Sent();
    copy->Copy(*source);
    EXPECT_EQ(Text(copy), "mine") << "Copy leaves the text";
    EXPECT_TRUE(copy->IsLocked() && copy->GetObj() == object && copy->Attrib(0) == attribute &&
                copy->ChildNum() == 2 && copy->Child(u"b/d") != source->Child(u"b/d"));
    Messages const sent = Sent();
    EXPECT_TRUE(sent.front().number == kRemoved &&
                sent.back() == (Message{MSG_NODE_OBJECT_CHANGED, N(copy), 0}));

    *copy = *source->Child(u"b");
    EXPECT_EQ(Text(copy), "b");
    source->Copy(*source->Child(u"b")); // the source lies inside the target
    EXPECT_TRUE(source->ChildNum() == 1 && Text(source->Child(0)) == "d");
    // Clear drops the rest but keeps text and flags.
    source->SetObj(object);
    source->Deactivate();
    source->Clear();
    EXPECT_TRUE(!source->ChildNum() && !source->GetObj() && !source->IsActive() &&
                Text(source) == "a");
}

TEST_F(NodeTest, ActivityOfBranchesAndTheMemoryOfActiveNodes) {
    SP<BNode> root = SmallTree(); // a(b(d), c)
    root->Child(u"b")->Deactivate();
    EXPECT_TRUE(root->Child(u"b/d")->IsActive() && !root->Child(u"b/d")->IsBranchActive());
    root->Deactivate();
    root->SetObj(new Sized(10));
    root->Child(u"b/d")->SetObj(new Sized(5));
    root->Child(u"c")->SetObj(new Sized(1));
    EXPECT_EQ(root->AllocatedMemory(), 16u);
    EXPECT_EQ(root->AllocatedMemory(true), 0u) << "an inactive node: the walk does not begin";
    root->Activate(true);
    EXPECT_EQ(root->AllocatedMemory(true), 11u);
}

TEST_F(NodeTest, TheChildIteratorRemovesSafely) {
    SP<BNode> root = SmallTree();
    SP<BNode> b = root->Child(0);
    Sent();
    BNodeChildItr children(*root);
    children.RemoveCurrent();
    EXPECT_TRUE(children.Current() == root->Child(0) && !b->Parent());
    EXPECT_EQ(Sent(), (Messages{{kRemoved, N(b), 0}}));
    children.RemoveCurrent();
    children.RemoveCurrent(); // no effect at the end
    EXPECT_TRUE(!children && root->ChildNum() == 0);
}

TEST_F(NodeTest, TraverseCallsBackInTheDocumentedOrder) {
    SP<BNode> r = new BNode;
    r->SetText(u"R");
    r->AddAttrib(new Named(u"A1"));
    r->AddAttrib(new Named(u"A2"));
    r->AddAnnotation(new BSmartObj);
    r->QueryChild(u"C/G");
    SP<Trace> trace = new Trace;
    trace->ownerExpected = r;
    r->Traverse(trace);
    EXPECT_EQ(trace->log,
              "PushPath R, PushAttrib A1, PushAttrib A2, TreatNode R, Treat null, Annotation, "
              "PushPath C, TreatNode C, Treat null, PushPath G, TreatNode G, Treat null, PopPath, "
              "PopPath, PopAttrib A2, PopAttrib A1, PopPath");

    r->Child(u"C")->Deactivate();
    trace->changeNodes = true;
    Sent();
    r->Traverse(trace);
    EXPECT_EQ(Sent(), (Messages{{MSG_NODE_TREATED, N(r), 0}}));
    for (bool inactiveToo : {false, true}) {
        trace->VisitInactiveNodes(inactiveToo);
        trace->log.clear();
        r->TraverseObjects(trace);
        EXPECT_EQ(trace->log, inactiveToo ? "Treat null, Treat null, Treat null" : "Treat null")
            << "inactive branches are passed over unless asked for";
    }
}
