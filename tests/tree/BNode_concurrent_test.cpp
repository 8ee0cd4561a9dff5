// Nodes that one load placed side by side are let go on several threads at once: the block they
// share must be freed exactly once, by whichever thread drops its last node, and never while a
// neighbour still lives.
#include "../ThreadTestSupport.h"
#include "../platform/FileTestSupport.h"

#include <qv/persistence/BQuorvelArchive.h>
#include <qv/tree/BNode.h>
#include <qv/tree/BNodeChildItr.h>
#include <vector>

TEST(BNodeThreads, NodesOfOneLoadAreReleasedOnManyThreads) {
    constexpr int kThreads = 4;
    constexpr int kChildren = 4000;
    TempDir dir;
    std::u16string const path = dir.U("tree.qva");
    {
        SP<BNode> root = new BNode;
        for (int i = 0; i < kChildren; ++i)
            root->AddChild(new BNode);
        BQuorvelArchive archive(path.c_str(), BArchive::WRITE, BString("class QvTest"), 3);
        archive.Insert(root, "tree");
    }
    for (int round = 0; round < 3; ++round) {
        // Neighbours go to different threads, so every block is shared between all of them.
        std::vector<std::vector<SP<BNode>>> parts(kThreads);
        {
            BQuorvelArchive archive(path.c_str(), BArchive::READ, BString("class QvTest"), 3);
            SP<BNode> root = archive.TakeOut("tree");
            ASSERT_TRUE(root);
            ASSERT_EQ(root->ChildNum(), kChildren);
            int i = 0;
            for (BNodeChildItr child(*root); child; ++child)
                parts[i++ % kThreads].emplace_back(child.Current());
            root->RemoveChildren();
        }
        std::vector<std::future<void>> released;
        for (auto& part : parts)
            released.push_back(thread_test::Start([&part] {
                for (SP<BNode> const& node : part)
                    EXPECT_FALSE(node->Parent());
                part.clear();
            }));
        for (auto& done : released)
            done.get();
    }
}
