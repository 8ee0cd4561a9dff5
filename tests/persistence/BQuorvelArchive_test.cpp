#include "ArchiveFiles.h"
#include "ArchiveTestSupport.h"
#include "platform/FileTestSupport.h"

#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/persistence/BQuorvelArchive.h>

namespace {

using namespace archive_files;
using namespace std::string_literals;

constexpr char kName[] = "class Test";

SP<ArchiveItem> Item(char const* text) {
    return new ArchiveItem(std::u16string(text, text + std::strlen(text)));
}
SP<ArchiveItem> AsItem(SP<BSmartObj> const& object) {
    return SP<ArchiveItem>(object);
}

class ObjectArchive : public testing::Test {
protected:
    std::u16string Path() const { return m_dir.U("a.qva"); }
    void Write(std::string const& bytes) const { WriteBytes(m_dir / "a.qva", bytes); }
    void Store(std::initializer_list<std::pair<BSmartObj*, char const*>> objects) const {
        BQuorvelArchive out(Path().c_str(), BArchive::WRITE, kName, 3);
        for (auto [object, name] : objects)
            out.Insert(object, name);
    }
    std::unique_ptr<BQuorvelArchive> Open(int version = 3, BString name = kName) const {
        return std::make_unique<BQuorvelArchive>(Path().c_str(), BArchive::READ, name, version);
    }
    std::unique_ptr<BQuorvelArchive> Open(std::string const& bytes) const {
        Write(bytes);
        return Open();
    }

    TempDir m_dir;
};

TEST_F(ObjectArchive, SharedObjectsAreStoredOnceAndLoadedAsOneInstance) {
    SP<ArchiveItem> root = Item("root");
    SP<ArchiveTag> tag = new ArchiveTag(42);
    SP<ArchiveItem> shared = Item("shared");
    for (char const* text : {"x", "y", "z"}) {
        ArchiveItem* child = root->Add(Item(text));
        child->m_object = shared;
        child->m_tags.AddTail(tag);
    }
    // The same tag through a pointer to its BSmartObj part: one object, one number.
    root->m_object = SP<BSmartObj>(tag);
    Store({{root, "tree"}});

    auto in = Open();
    SP<ArchiveItem> loaded = AsItem(in->TakeOut("tree"));
    ASSERT_EQ(loaded ? Kids(*loaded) : "<null>", "x y z");
    ArchiveTag* loadedTag = loaded->m_children[0]->m_tags[0];
    EXPECT_EQ(loadedTag->m_value, 42);
    EXPECT_EQ(SP<ArchiveTag>(loaded->m_object).get(), loadedTag);
    for (auto const& child : loaded->m_children)
        EXPECT_TRUE(child->m_parent == loaded.get() && child->m_tags[0].get() == loadedTag &&
                    child->m_object.get() == loaded->m_children[0]->m_object.get())
            << Text(child);
    // root, tag, three children, shared: six records and no more.
    EXPECT_TRUE(in->TakeOut("6"));
    EXPECT_FALSE(in->TakeOut("7"));
}

// Resolves in the reverse order of reading, its children one by one from the last, and a
// field it never read.
struct BackwardItem : ArchiveItem {
    void UpdateAssociations(BArchive& archive) override {
        archive.ResolveIndex(m_parent);
        archive.ResolveObjectList(m_tags);
        for (auto at = m_children.TailPosition(); at.IsValid(); at.Prev())
            archive.ResolveObjectRef(*at);
        archive.ResolveObjectRef(m_object);
        archive.ResolveObjectRef(m_unread);
    }
    SP<BSmartObj> m_unread;
};
[[maybe_unused]] bool const backwardRegistered =
    (RegisterArchiveCallback("class BackwardItem", &ArchiveItem::ReadAs<BackwardItem>), true);

TEST_F(ObjectArchive, ResolvingInAnyOrderFindsEachNumber) {
    // The children: an item, a tag (no item), the item again, an unknown class, a number no
    // record has.
    auto in = Open(
        Header() +
        Record("1", "tree", "class BackwardItem", 3, ItemData(3, {2, 3, 2, 4, 9}, 2, "r")) +
        Record("2", "", "class ArchiveItem", 3, ItemData(0, {}, 1, "a")) +
        Record("3", "", "class ArchiveTag", 0, Le32(7)) + Record("4", "", "class Nobody", 0, ""));
    SP<BackwardItem> root(in->TakeOut("tree"));
    ASSERT_EQ(root ? Kids(*root) : "<null>", "a <null> a <null> <null>");
    ArchiveItem* a = root->m_children[0];
    EXPECT_TRUE(root->m_children[2].get() == a && root->m_parent == a && a->m_parent == root);
    EXPECT_EQ(SP<ArchiveTag>(root->m_object)->m_value, 7);
    EXPECT_FALSE(root->m_unread);
    EXPECT_FALSE(in->TakeOut("4"));
    root->m_parent = nullptr;
}

TEST_F(ObjectArchive, LongListsResolveInLinearTimeInAnyOrder) {
    // Null and real references in turn, resolved backwards: each lookup must cost a constant,
    // or this list alone would take minutes.
    int const count = 200000;
    std::string children;
    for (int i = 0; i < count; ++i)
        children += Le64(i % 2 ? 0 : 2);
    std::string const data =
        Le64(0) + Le32(count) + children + Le32(0) + Le64(0) + WStr("r") + Le32(0);
    SP<ArchiveItem> root(Open(Header() + Record("1", "tree", "class BackwardItem", 3, data) +
                              Record("2", "", "class ArchiveItem", 3, ItemData(0, {}, 1, "kid")))
                             ->TakeOut("tree"));
    ASSERT_TRUE(root);
    ASSERT_EQ(root->m_children.Count(), count);
    int nulls = 0;
    for (auto const& child : root->m_children)
        nulls += child ? 0 : 1;
    EXPECT_EQ(nulls, count / 2);
    EXPECT_EQ(Text(root->m_children[count - 2]), "kid");
}

// Takes another object out from inside its read function, once its own bytes are read, and
// from inside its UpdateAssociations.
struct NestingItem : ArchiveItem {
    static SP<BSmartObj> Read(BArchive& archive, int version) {
        SP<NestingItem> item(ReadAs<NestingItem>(archive, version));
        item->m_fromRead = archive.TakeOut("x");
        return SP<BSmartObj>(item);
    }
    void UpdateAssociations(BArchive& archive) override {
        m_fromUpdate = archive.TakeOut("y");
        ArchiveItem::UpdateAssociations(archive);
    }
    SP<BSmartObj> m_fromRead, m_fromUpdate;
};
[[maybe_unused]] bool const nestingRegistered =
    (RegisterArchiveCallback("class NestingItem", &NestingItem::Read), true);

TEST_F(ObjectArchive, TakeOutFromInsideALoadKeepsTheOuterNumbers) {
    auto in =
        Open(Header() + Record("1", "tree", "class NestingItem", 3, ItemData(3, {2, 3}, 0, "r")) +
             Record("2", "x", "class ArchiveItem", 3, ItemData(0, {}, 1, "x")) +
             Record("3", "y", "class ArchiveItem", 3, ItemData(0, {2}, 1, "y")));
    SP<NestingItem> root(in->TakeOut("tree"));
    ASSERT_EQ(root ? Kids(*root) : "<null>", "x y");
    BSmartObj *x = root->m_children[0].get(), *y = root->m_children[1].get();
    EXPECT_TRUE(x == root->m_fromRead.get() && y == root->m_fromUpdate.get() &&
                root->m_object.get() == y && root->m_children[1]->m_children[0].get() == x);
    // The TakeOut inside the root's read function also worked off the later list, where the
    // root had just put y: x and y were resolved before the root existed.
    EXPECT_TRUE(!root->m_children[0]->m_parent && !root->m_children[1]->m_parent);
}

TEST_F(ObjectArchive, KeysByNameByHexadecimalIdAndNotedForLater) {
    // A lone item, then a chain of items 0 to 11: the lone item is the first object, the chain
    // follows in order. A second name for an object, and a second holder of a name, are not
    // kept.
    SP<ArchiveItem> lone = Item("lone"), root = Item("0");
    ArchiveItem* last = root;
    for (int i = 1; i < 12; ++i)
        last = last->Add(Item(std::to_string(i).c_str()));
    Store({{lone, "later"}, {root, "chain"}, {root, "again"}, {lone, "chain"}, {nullptr, "none"}});

    auto in = Open();
    in->TakeOutLater("later");
    SP<BSmartObj> chain = in->TakeOut("chain");
    EXPECT_EQ(Text(AsItem(chain)), "0");
    // The noted object was loaded on the way: its number now finds it without a load.
    SP<BSmartObj> noted = in->QueryObject(reinterpret_cast<void*>(1));
    EXPECT_EQ(Text(AsItem(noted)), "lone");
    EXPECT_EQ(in->TakeOut("later").get(), noted.get());
    EXPECT_EQ(in->TakeOut("2").get(), chain.get());
    EXPECT_EQ(Text(AsItem(in->TakeOut("b"))), "9"); // the eleventh object
    for (char const* key : {"B", "again", "none", "e", static_cast<char const*>(nullptr)})
        EXPECT_FALSE(in->TakeOut(key)) << (key ? key : "null");
}

TEST_F(ObjectArchive, AnObjectBelowTheTopLoadsAloneWithoutItsParent) {
    SP<ArchiveItem> root = Item("root");
    root->Add(Item("child"));
    Store({{root, "tree"}});

    auto in = Open();
    SP<ArchiveItem> child = AsItem(in->TakeOut("2"));
    ASSERT_TRUE(child);
    EXPECT_EQ(child->m_parent, nullptr);
    // The parent loaded later finds the child, which now refuses verification: null.
    child->m_sound = false;
    EXPECT_FALSE(in->TakeOut("tree"));
    EXPECT_EQ(child->m_updates, 1);
}

TEST_F(ObjectArchive, HeaderChecks) {
    Store({});
    // An application version above the file's, or another name, is refused.
    EXPECT_TRUE(!Open(4)->IsGood() && Open(3)->IsGood() && !Open(3, "class Other")->IsGood());
    // A name without "class ", given to writer and reader alike, gives a file its reader refuses.
    { BQuorvelArchive out(Path().c_str(), BArchive::WRITE, "Test", 3); }
    EXPECT_FALSE(Open(3, "Test")->IsGood());

    struct Row {
        char const* name;
        std::string bytes;
        int format; // 0: refused
    } const rows[] = {
        // Early writers left out "class "; the reader puts it in front of both strings.
        {"early writer", Header("Test", 3, "BArchive"), 8},
        {"misspelt archive class", Header(kName, 3, "class BArchiv"), 0},
        {"format 1", Header(kName, 3, "class BArchive", 1), 0},
        {"format 9", Header(kName, 3, "class BArchive", 9), 0},
        {"format 2", Header(kName, 3, "class BArchive", 2), 2},
    };
    for (Row const& row : rows) {
        auto in = Open(row.bytes);
        EXPECT_EQ(in->IsGood() ? in->Version() : 0, row.format) << row.name;
        EXPECT_FALSE(in->TakeOut("1")) << row.name << ": a header alone is an empty archive";
    }
    EXPECT_FALSE(BQuorvelArchive(m_dir.U("none/x.qva").c_str(), BArchive::READ, kName, 0).IsGood());
}

TEST_F(ObjectArchive, OlderFormatsReadWithTheirWidths) {
    // Format 6: 4-byte sizes and references; format 7: 4-byte sizes, 8-byte references.
    for (auto [format, width] : {std::pair{6, 4}, std::pair{7, 8}}) {
        Write(Header(kName, 3, "class BArchive", format) +
              Record("1", "tree", "class ArchiveItem", 3, ItemData(0, {2}, 0, "root", width),
                     format) +
              Record("2", "", "ArchiveItem", 3, ItemData(0, {}, 1, "leaf", width), format));
        SP<ArchiveItem> root = AsItem(Open()->TakeOut("tree"));
        ASSERT_EQ(root ? Kids(*root) : "<null>", "leaf") << format;
        EXPECT_EQ(root->m_children[0]->m_parent, root.get());
    }
}

TEST_F(ObjectArchive, WriteFailuresShowInIsGood) {
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP();
    BQuorvelArchive out(u"/dev/full", BArchive::WRITE, kName, 3);
    ASSERT_TRUE(out.IsGood());
    out.Insert(Item("a"), "a");
    out.Flush();
    EXPECT_TRUE(!out.IsGood() && !out.Flush() && out.WriteMemoryBlock("x", 1) == 0);
}

struct FailingWriter : BSmartObj {
    void WriteData(BArchive& archive) const override {
        archive << std::int32_t(1);
        throw BError(BError::kGeneralFailure, u"write");
    }
};

TEST_F(ObjectArchive, AnExceptionFromWriteDataInTheDestructorLeavesARefusedFile) {
    {
        BQuorvelArchive out(Path().c_str(), BArchive::WRITE, kName, 3);
        out.Insert(Item("good"), "good");
        EXPECT_TRUE(out.Flush());
        out.Insert(new FailingWriter, "bad");
    } // the destructor cannot report: the record keeps its placeholder
    EXPECT_FALSE(Open()->IsGood());

    BQuorvelArchive out(Path().c_str(), BArchive::WRITE, kName, 3);
    out.Insert(new FailingWriter, "bad");
    EXPECT_THROW(out.Flush(), BError);
}

TEST_F(ObjectArchive, PrefixAcrossTheReadAheadBufferIsRead) {
    // Opening reads the prefixes from a read-ahead buffer of 64 KiB, which starts at the first
    // record. The first record here is sized so that the second prefix begins `inBuffer`
    // bytes before the end of the first buffer: split at its first or its last field. A name is a
    // string up to its first zero byte.
    struct Row {
        char const* name;
        std::size_t inBuffer;
        std::string storedName;
        char const* key;
    } const rows[] = {
        {"split in the id", 2, "second", "second"},
        {"split in the size", 46, "second", "second"},
        {"zero byte in the name, split", 12, "sec\0ond"s, "sec"},
    };
    for (Row const& row : rows) {
        std::size_t const firstSize = 65536 - row.inBuffer;
        std::string const text((firstSize - 82) / 2, 'x'); // 82 bytes of prefix and fields
        std::string const first =
            Record("1", "first", "class ArchiveItem", 3, ItemData(0, {}, 0, text));
        ASSERT_EQ(first.size(), firstSize) << row.name;
        auto archive =
            Open(Header() + first +
                 Record("2", row.storedName, "class ArchiveItem", 3, ItemData(0, {}, 0, "b")));
        EXPECT_EQ(Text(AsItem(archive->TakeOut(row.key))), "b") << row.name;
        EXPECT_EQ(Text(AsItem(archive->TakeOut("first"))).size(), text.size()) << row.name;
    }
}

// Damaged, truncated and hostile archives, and read functions that give up: the archive stays
// sound, allocates within what the file holds, and never lets a reference number loose as if
// it were an object.

// Reads its references like an item, then gives up: by throwing or by returning null.
struct GivingUp : ArchiveItem {
    static SP<BSmartObj> Throw(BArchive& archive, int version) {
        SP<BSmartObj> item = ArchiveItem::Read(archive, version);
        throw BError(BError::kGeneralFailure, u"given up");
    }
    static SP<BSmartObj> Refuse(BArchive& archive, int version) {
        ArchiveItem::Read(archive, version);
        return nullptr;
    }
};
[[maybe_unused]] bool const givingUpRegistered =
    (RegisterArchiveCallback("class ThrowingItem", &GivingUp::Throw),
     RegisterArchiveCallback("class RefusingItem", &GivingUp::Refuse), true);

TEST_F(ObjectArchive, FilesThatLieAboutLengthsAreRefusedWhole) {
    std::string const good = Record("1", "a", "class ArchiveItem", 3, ItemData(0, {}, 0, "a"));
    std::string hostileName = good;
    hostileName.replace(7, 4, Le32(0xFFFFFFFF)); // the length of the name
    // A size of -n from a position beyond n would seek back into the records.
    std::string looping = Record("2", "b", "class ArchiveItem", 3, "");
    looping.replace(looping.size() - 8, 8, Le64(static_cast<std::uint64_t>(-20)));
    struct Row {
        char const* name;
        std::string bytes;
        bool good;
    } const rows[] = {
        {"sound", Header() + good + good, true},
        {"a size past the end", Header() + good + good.substr(0, good.size() - 1), false},
        {"a hostile name length", Header() + hostileName, false},
        {"a header cut before its format", Header().substr(0, Header().size() - 4), false},
        {"a negative size", Header() + good + looping, false},
    };
    for (Row const& row : rows)
        EXPECT_EQ(Open(row.bytes)->IsGood(), row.good) << row.name;
}

TEST_F(ObjectArchive, AReadFunctionThatThrowsLeavesNoNumberBehind) {
    auto in =
        Open(Header() + Record("1", "tree", "class ArchiveItem", 3, ItemData(0, {2, 3}, 0, "r")) +
             Record("2", "", "class ThrowingItem", 3, ItemData(0, {3}, 1, "t")) +
             Record("3", "", "class ArchiveItem", 3, ItemData(0, {}, 1, "c")));
    EXPECT_THROW(in->TakeOut("tree"), BError);
    // The half-done load is taken up by the next call: the root is resolved, and the child
    // that could not be built comes out null rather than as a number.
    SP<ArchiveItem> root(in->TakeOut("tree"));
    ASSERT_EQ(root ? Kids(*root) : "<null>", "<null> c"); // c was still in the later list
    EXPECT_EQ(root->m_updates, 1);
}

TEST_F(ObjectArchive, ReadFunctionsThatRefuseEachOtherEndTheLoad) {
    auto in = Open(Header() + Record("1", "a", "class RefusingItem", 3, ItemData(2, {}, 0, "a")) +
                   Record("2", "b", "class RefusingItem", 3, ItemData(1, {}, 0, "b")));
    for (char const* key : {"a", "b"})
        EXPECT_FALSE(in->TakeOut(key)) << key;
}

} // namespace
