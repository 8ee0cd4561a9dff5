#include <gtest/gtest.h>
#include <qv/tree/BNodeItr.h>
#include <qv/tree/BVisitor.h>
#include <string>
#include <vector>

namespace {

// r(a(b, c(d)), e, f(g), h): a node's text is its letter.
SP<BNode> Tree() {
    SP<BNode> r = new BNode;
    r->SetText(u"r");
    for (char16_t const* path : {u"a/b", u"a/c/d", u"e", u"f/g", u"h"})
        r->QueryChild(path);
    return r;
}

std::string Walk(BNode* start, BNodeItr::EMode mode) {
    std::string out;
    for (BNodeItr it(start, mode); it; ++it)
        out += WString(it.Current()->GetText()).ToUtf8();
    return out;
}

} // namespace

TEST(NodeWalk, DepthFirstOrderInBothModes) {
    struct Row {
        char const* name;
        std::vector<char16_t const*> inactive;
        char16_t const* start; // path below r, or null for r itself
        char const* all;
        char const* active;
    } const rows[] = {
        {"all active", {}, nullptr, "rabcdefgh", "rabcdefgh"},
        {"inactive sisters in a row", {u"e", u"f"}, nullptr, "rabcdefgh", "rabcdh"},
        {"inactive last child", {u"h"}, nullptr, "rabcdefgh", "rabcdefg"},
        {"inactive first child", {u"a"}, nullptr, "rabcdefgh", "refgh"},
        {"inactive root", {u""}, nullptr, "rabcdefgh", ""},
        {"start inside, below an inactive node", {u"a"}, u"a/c", "cd", "cd"},
    };
    for (Row const& row : rows) {
        SP<BNode> r = Tree();
        for (char16_t const* path : row.inactive)
            (*path ? r->Child(path) : r.get())->Deactivate();
        BNode* start = row.start ? r->Child(row.start) : r.get();
        EXPECT_EQ(Walk(start, BNodeItr::ALL_NODES), row.all) << row.name;
        EXPECT_EQ(Walk(start, BNodeItr::ACTIVE_NODES), row.active) << row.name;
    }
    EXPECT_EQ(Walk(nullptr, BNodeItr::ALL_NODES), "");
}

namespace {

// Removes from its parent the node it has just been given, and writes down what it met.
struct Pruner : BVisitor {
    bool TreatNode(BNode* node) override {
        std::string text = WString(node->GetText()).ToUtf8();
        met += text;
        if (text == prune)
            node->Parent()->RemoveChild(node);
        return false;
    }
    std::string prune;
    std::string met;
};

} // namespace

TEST(NodeWalk, AVisitorMayRemoveTheNodeItWasGiven) {
    // The first child with a branch, the last child, the deepest node: each time the walk
    // still meets every node once.
    for (auto [prune, left] : {std::pair{"a", "refgh"}, {"h", "rabcdefg"}, {"d", "rabcefgh"}}) {
        SP<BNode> r = Tree();
        SP<Pruner> pruner = new Pruner;
        pruner->prune = prune;
        r->Traverse(pruner);
        EXPECT_EQ(pruner->met + " " + Walk(r, BNodeItr::ALL_NODES),
                  "rabcdefgh " + std::string(left))
            << prune;
    }
}
