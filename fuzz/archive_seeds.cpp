// Writes the seed corpus of the archive fuzzer: archives written by the library itself, and
// the older formats, which it only reads, byte by byte.
#include "ArchiveFiles.h"
#include "ArchiveTestSupport.h"

#include <qv/measures/BBitArray.h>
#include <qv/persistence/BQuorvelArchive.h>
#include <qv/tree/BNode.h>
#include <string>

namespace {

using namespace archive_files;

std::u16string Wide(std::string const& path) {
    return std::u16string(path.begin(), path.end());
}

SP<ArchiveItem> Item(char16_t const* text) {
    return new ArchiveItem(text);
}

void WriteTree(std::string const& path) {
    SP<ArchiveItem> root = Item(u"root");
    SP<ArchiveTag> tag = new ArchiveTag(5);
    ArchiveItem* shared = root->Add(Item(u"shared"));
    for (char16_t const* text : {u"a", u"b", u"c"}) {
        ArchiveItem* child = root->Add(Item(text));
        child->m_object = SP<BSmartObj>(shared);
        child->m_tags.AddTail(tag);
        child->Add(Item(u"leaf"));
    }
    BQuorvelArchive out(Wide(path).c_str(), BArchive::WRITE, "class Fuzz", 1);
    out.Insert(root, "root");
    out.Insert(tag, "tag");
}

// A tree of nodes, the library's own storable class, with shared objects and annotations.
void WriteNodes(std::string const& path) {
    SP<BNode> root = new BNode;
    root->SetText(u"root");
    SP<ArchiveItem> shared = Item(u"shared");
    for (char16_t const* path : {u"a/x", u"a/y", u"b", u"c/z/w"}) {
        BNode* node = root->QueryChild(path);
        node->SetObj(shared);
        node->AddAnnotation(shared);
        node->Lock(true);
    }
    root->Child(u"b")->Deactivate();
    BQuorvelArchive out(Wide(path).c_str(), BArchive::WRITE, "class Fuzz", 1);
    out.Insert(root, "root");
    out.Insert(root->Child(u"c/z"), "tree");
}

// Bit planes, the library's other storable class: one hung on a node, one inserted by name.
void WriteMasks(std::string const& path) {
    SP<BBitArray> mask = new BBitArray(9, 13, 5);
    for (int i = 0; i < 5; ++i)
        mask->SetBit(i * 2, i, i + 4);
    SP<BNode> root = new BNode;
    root->SetObj(mask);
    BQuorvelArchive out(Wide(path).c_str(), BArchive::WRITE, "class Fuzz", 1);
    out.Insert(root, "root");
    out.Insert(new BBitArray(1, 64, 3), "plane");
}

void WriteEmpty(std::string const& path) {
    BQuorvelArchive out(Wide(path).c_str(), BArchive::WRITE, "class Fuzz", 1);
}

void WriteOlder(std::string const& path, int format) {
    int width = format > 6 ? 8 : 4;
    WriteFile(path,
              Header("Fuzz", 1, "BArchive", format) +
                  Record("1", "tree", "class ArchiveItem", 3, ItemData(3, {2, 3}, 0, "root", width),
                         format) +
                  Record("2", "", "ArchiveItem", 3, ItemData(0, {}, 1, "kid", width), format) +
                  Record("3", "", "class ArchiveTag", 0, Le32(9), format));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    std::string const dir = argv[1];
    WriteTree(dir + "/tree.qva");
    WriteNodes(dir + "/nodes.qva");
    WriteMasks(dir + "/masks.qva");
    WriteEmpty(dir + "/empty.qva");
    WriteOlder(dir + "/format6.qva", 6);
    WriteOlder(dir + "/format7.qva", 7);
    return 0;
}
