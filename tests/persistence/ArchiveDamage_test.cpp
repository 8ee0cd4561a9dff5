// Damaged, truncated and hostile archives, and read functions that give up: the archive stays
// sound, allocates within what the file holds, and never lets a reference number loose as if
// it were an object.
#include "ArchiveFiles.h"
#include "ArchiveTestSupport.h"
#include "platform/FileTestSupport.h"

#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/persistence/BQuorvelArchive.h>

namespace {

using namespace archive_files;

constexpr char kName[] = "class Test";

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
bool const registered = [] {
    RegisterArchiveCallback("class ThrowingItem", &GivingUp::Throw);
    RegisterArchiveCallback("class RefusingItem", &GivingUp::Refuse);
    return true;
}();

class DamagedArchive : public testing::Test {
protected:
    std::unique_ptr<BQuorvelArchive> Open(std::string const& bytes) {
        WriteBytes(m_dir / "d.qva", bytes);
        return std::make_unique<BQuorvelArchive>(m_dir.U("d.qva").c_str(), BArchive::READ, kName,
                                                 0);
    }
    TempDir m_dir;
};

TEST_F(DamagedArchive, AHostileListCountStaysWithinTheFile) {
    std::string data = Le64(0) + Le32(0x7FFFFFFF) + Le64(1) + Le64(1);
    std::string const bytes = Header() + Record("1", "tree", "class ArchiveItem", 3, data);
    auto in = Open(bytes);
    SP<ArchiveItem> root(in->TakeOut("tree"));
    ASSERT_TRUE(root);
    ASSERT_EQ(root->m_children.Count(), 2);
    EXPECT_EQ(root->m_children[0].get(), root.get());
    root->m_children.RemoveAll(); // the file made the item its own child
}

TEST_F(DamagedArchive, FilesThatLieAboutLengthsAreRefusedWhole) {
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

TEST_F(DamagedArchive, AReadFunctionThatThrowsLeavesNoNumberBehind) {
    auto in =
        Open(Header() + Record("1", "tree", "class ArchiveItem", 3, ItemData(0, {2, 3}, 0, "r")) +
             Record("2", "", "class ThrowingItem", 3, ItemData(0, {3}, 1, "t")) +
             Record("3", "", "class ArchiveItem", 3, ItemData(0, {}, 1, "c")));
    EXPECT_THROW(in->TakeOut("tree"), BError);
    // The half-done load is taken up by the next call: the root is resolved, and the child
    // that could not be built comes out null rather than as a number.
    SP<ArchiveItem> root(in->TakeOut("tree"));
    ASSERT_TRUE(root);
    EXPECT_EQ(Kids(*root), "<null> c"); // c was still in the later list, loaded now
    EXPECT_EQ(root->m_updates, 1);
}

TEST_F(DamagedArchive, ReadFunctionsThatRefuseEachOtherEndTheLoad) {
    auto in = Open(Header() + Record("1", "a", "class RefusingItem", 3, ItemData(2, {}, 0, "a")) +
                   Record("2", "b", "class RefusingItem", 3, ItemData(1, {}, 0, "b")));
    EXPECT_FALSE(in->TakeOut("a"));
    EXPECT_FALSE(in->TakeOut("b"));
}

} // namespace
