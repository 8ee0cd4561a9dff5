#include <gtest/gtest.h>
#include <qv/tree/BBank.h>
#include <qv/tree/BNodeItr.h>
#include <string>
#include <vector>

namespace {

std::string Narrow(WString const& text) {
    return std::string(text.AsString().View());
}

} // namespace

TEST(BankPaths, SyntaxAndNames) {
    // Paths refused and paths taken; a path of one step is checked as a name too.
    struct Row {
        bool error;
        std::vector<char16_t const*> paths;
    } const rows[] = {
        {true, {nullptr, u"", u"a b", u"a/", u"a//b", u"//a", u"caf\u00e9"}},
        {false, {u"//", u"/", u"a", u"/a/b", u"A_b-c.9", u"\u00c4\u00fc\u00df"}},
    };
    for (Row const& row : rows)
        for (char16_t const* path : row.paths) {
            std::string name = path ? Narrow(WString(path)) : "null";
            EXPECT_EQ(BBank::PathSyntaxError(path), row.error) << name;
            bool const oneStep = path && !WString(path).Includes(BBank::DELIM);
            EXPECT_TRUE(!oneStep || BBank::CheckName(WString(path)) == !row.error) << name;
        }
}

TEST(BankPaths, ComposingAndTakingApart) {
    BBank bank;
    auto parent = [&](char16_t const* path) {
        WString parent(u"untouched");
        return bank.ParentPath(path, parent) ? Narrow(parent) : "false, " + Narrow(parent);
    };
    auto below = [](char16_t const* path, char16_t const* parent) {
        return std::string(BBank::IsGrandParent(path, parent) ? "below" : "not below");
    };
    struct Row {
        char const* name;
        std::string result;
        char const* expected;
    } const rows[] = {
        {"// + a", Narrow(BBank::ConcatPath(u"//", u"a")), "/a"},
        {"/a + /b", Narrow(BBank::ConcatPath(u"/a", u"/b")), "/a/b"},
        {"a + //", Narrow(BBank::ConcatPath(u"a", u"//")), ""},
        {"a b + c", Narrow(BBank::ConcatPath(u"a b", u"c")), ""},
        {"parent of /a", parent(u"/a"), "//"},
        {"parent of a/b", parent(u"a/b"), "a"},
        {"parent of //", parent(u"//"), "false, untouched"},
        {"parent of a b/c", parent(u"a b/c"), "a b"},
        {"a in a", below(u"a", u"a"), "below"},
        {"A/B in /a", below(u"A/B", u"/a"), "below"},
        {"/a/bc in /a/b", below(u"/a/bc", u"/a/b"), "not below"},
        {"// in a", below(u"//", u"a"), "not below"},
        {"nothing in //", below(u"", u"//"), "not below"},
        {"a in a/b", below(u"a", u"a/b"), "not below"},
    };
    for (Row const& row : rows)
        EXPECT_EQ(row.result, row.expected) << row.name;
}

TEST(BankNodes, ContainerAndPathRoundTrips) {
    struct Row {
        char16_t const* path;
        char const* result; // the path of what Container gives, and how many nodes it made
    } const rows[] = {
        {u"//", "//, 0"},
        {u"/", "null, 0"},
        {u"a/b", "/a/b, 2"},
        {u"A/B", "/a/b, 0"},
        {u"x/y%/z", "null, 1"},
        {nullptr, "null, 0"},
        {u"\u00dcber/Ma\u00df", "/\u00dcber/Ma\u00df, 2"},
    };
    BBank bank;
    auto count = [&] {
        int n = 0;
        for (BNodeItr it(bank.Root(), BNodeItr::ALL_NODES); it; ++it)
            ++n;
        return n;
    };
    for (Row const& row : rows) {
        int const before = count();
        BNode* node = bank.Container(row.path);
        WString const path = node ? bank.Path(node) : WString(u"null");
        // The path finds the node again, and making nothing.
        SP<BNode> found;
        EXPECT_TRUE(!node || (bank.ExistsContainer(path.CStr(), found) && found == node));
        EXPECT_EQ(path.ToUtf8() + ", " + std::to_string(count() - before), row.result)
            << (row.path ? Narrow(WString(row.path)) : "null");
    }
    EXPECT_FALSE(bank.ExistsContainer(u"no/such") || bank.ExistsContainer(nullptr));
}

TEST(BankNodes, PathsOfNodesAndObjects) {
    BBank bank;
    BBank copy = bank;
    SP<BSmartObj> shared = new BNode, lone = new BNode;
    copy.Container(u"a/hidden")->SetObj(shared);
    bank.Container(u"a")->Deactivate();
    bank.Container(u"b")->SetObj(shared);
    bank.Container(u"c/d")->SetObj(lone);
    EXPECT_EQ(bank.Root(), copy.Root()) << "copies share the tree";
    struct Row {
        char const* name;
        WString result;
        WString expected;
    } const rows[] = {
        {"by id, inactive branch first", bank.PathOfObject(shared->UniqueID()), u"/a/hidden"},
        {"by pointer", bank.PathOfObject(lone.get()), u"/c/d"},
        {"unknown id", bank.PathOfObject(-1L), u""},
        {"null object", bank.PathOfObject(nullptr), u""},
        {"unknown object", bank.PathOfObject(bank.Root().get()), u""},
        {"root", bank.Path(bank.Root()), u"//"},
        {"node of another tree", bank.Path(BBank().Container(u"a")), u""},
        {"PATH of null", BBank::PATH(nullptr), u""},
    };
    for (Row const& row : rows)
        EXPECT_EQ(row.result, row.expected) << row.name;
    EXPECT_NE(BBank().Root(), bank.Root()) << "a default bank has a root of its own";
}
