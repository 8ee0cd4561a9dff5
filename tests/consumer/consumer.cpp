// Uses the installed library through its one public header only: a tree stored and loaded
// again, and an error thrown across the library's boundary and caught here by its type.
#include <cstdio>
#include <filesystem>
#include <qv/qvcore.h>

int main() {
    std::filesystem::path file = std::filesystem::temp_directory_path() / "qvcore-consumer.qva";
    std::u16string path = file.u16string();
    {
        SP<BNode> root = new BNode;
        root->SetText(u"root");
        SP<BNode> child = new BNode;
        child->SetText(u"child");
        root->AddChild(child);
        BQuorvelArchive out(path.c_str(), BArchive::WRITE, BString("class QvConsumer"), 1);
        out.Insert(root, "tree");
    }
    BQuorvelArchive in(path.c_str(), BArchive::READ, BString("class QvConsumer"), 1);
    SP<BNode> loaded = in.TakeOut("tree");
    std::filesystem::remove(file);
    if (!loaded || loaded->ChildNum() != 1) {
        std::fprintf(stderr, "consumer: the tree did not come back\n");
        return 1;
    }
    try {
        BError(BError::kGeneralFailure).Throw();
    } catch (BError const& error) {
        std::printf("consumer: tree loaded, error %d caught\n", error.Error());
        return 0;
    }
    return 1;
}
