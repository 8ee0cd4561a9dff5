// Opens an arbitrary file as an object archive and loads what it can, then writes what came
// out to a second archive. Whatever the bytes, the archive must not crash, hang, leak or
// allocate beyond what the file holds.
#include "ArchiveTestSupport.h"

#include <cstdint>
#include <cstdio>
#include <qv/persistence/BQuorvelArchive.h>
#include <qv/tree/BNode.h>
#include <string>
#include <unistd.h>
#include <unordered_set>
#include <vector>

namespace {

std::string const& FilePath(char const* suffix) {
    static std::string const in = "/tmp/qv-archive-fuzz-" + std::to_string(::getpid()) + ".qva";
    static std::string const out = in + ".out";
    return *suffix ? out : in;
}

std::u16string Wide(std::string const& path) {
    return std::u16string(path.begin(), path.end());
}

void WriteInput(uint8_t const* data, size_t size) {
    std::FILE* file = std::fopen(FilePath("").c_str(), "wb");
    if (!file)
        return;
    std::fwrite(data, 1, size, file);
    std::fclose(file);
}

// A file may describe owners in a cycle (a node whose object or annotation is the node
// itself, an item that holds its own parent): loading builds the graph the file describes, as
// the same calls would. Such cycles are broken here, for every node reachable from what the
// loads gave, so that LeakSanitizer reports what the library itself loses.
void BreakNodeCycles(std::vector<SP<BSmartObj>> const& roots) {
    std::unordered_set<BSmartObj*> seen;
    std::vector<BSmartObj*> pending;
    std::vector<SP<BNode>> nodes;
    auto visit = [&](BSmartObj* object) {
        if (object && seen.insert(object).second)
            pending.push_back(object);
    };
    for (auto const& root : roots)
        visit(root);
    while (!pending.empty()) {
        BSmartObj* object = pending.back();
        pending.pop_back();
        if (auto* node = dynamic_cast<BNode*>(object)) {
            nodes.push_back(node);
            visit(node->GetObj());
            for (auto const& child : node->Children())
                visit(child);
            for (auto const& attribute : node->Attributes())
                visit(attribute.get());
            for (auto const& annotation : node->Annotations())
                visit(annotation);
        } else if (auto* item = dynamic_cast<ArchiveItem*>(object)) {
            visit(item->m_object);
            for (auto const& child : item->m_children)
                visit(child);
            for (auto const& tag : item->m_tags)
                visit(tag.get());
        }
    }
    for (auto const& node : nodes)
        node->Clear();
}

void LoadAndStore() {
    std::vector<SP<BSmartObj>> loaded;
    {
        BQuorvelArchive in(Wide(FilePath("")).c_str(), BArchive::READ, "class Fuzz", 0);
        BQuorvelArchive out(Wide(FilePath("o")).c_str(), BArchive::WRITE, "class Fuzz", 0);
        for (char const* key : {"root", "1", "2", "3", "a", "tree"}) {
            loaded.push_back(in.TakeOut(key));
            out.Insert(loaded.back(), key);
        }
    }
    BreakNodeCycles(loaded);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    WriteInput(data, size);
    LoadAndStore();
    ArchiveItem::BreakCycles();
    return 0;
}
