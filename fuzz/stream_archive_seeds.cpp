// Writes the seed corpus of the stream archive fuzzer with the library itself: node trees with
// objects, attributes and annotations in place, items with lists and plain references, nulls
// and an empty archive.
#include "ArchiveTestSupport.h"

#include <qv/persistence/BOStreamArchive.h>
#include <qv/tree/BNode.h>
#include <string>

namespace {

WString Wide(std::string const& path) {
    return WString(std::u16string(path.begin(), path.end()).c_str());
}

void WriteNodes(std::string const& path) {
    SP<BNode> root = new BNode;
    root->SetText(u"root");
    SP<ArchiveItem> shared = new ArchiveItem(u"shared");
    for (char16_t const* where : {u"a/x", u"a/y", u"b", u"c/z/w"}) {
        BNode* node = root->QueryChild(where);
        node->SetObj(shared);
        node->AddAnnotation(new ArchiveTag(3));
        node->Lock(true);
    }
    root->Child(u"b")->Deactivate();
    BOStreamArchive out(Wide(path), u"Fuzz");
    out.Insert(root, "root");
    out.Insert(nullptr, nullptr);
    out.Insert(shared, "shared");
}

void WriteItems(std::string const& path) {
    SP<ArchiveItem> root = new ArchiveItem(u"root");
    SP<ArchiveTag> tag = new ArchiveTag(5);
    for (char16_t const* text : {u"a", u"b"}) {
        ArchiveItem* child = root->Add(new ArchiveItem(text));
        child->m_tags.AddTail(tag);
        child->Add(new ArchiveItem(u"leaf"));
    }
    BOStreamArchive out(Wide(path), u"Fuzz");
    out.Insert(root, "root");
}

void WriteEmpty(std::string const& path) {
    BOStreamArchive out(Wide(path), u"Fuzz");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    std::string const dir = argv[1];
    WriteNodes(dir + "/nodes.qvs");
    WriteItems(dir + "/items.qvs");
    WriteEmpty(dir + "/empty.qvs");
    return 0;
}
